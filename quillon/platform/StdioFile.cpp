#include <quillon/platform/StdioFile.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CStdioFile, CFile)

namespace {

// The sizes of the reads from the stream: the first read is small, so that the many small files
// (settings, lists, short reports) take small buffers; each read that fills its block doubles the
// next, up to the block that long reports are read in.
constexpr size_t kFirstReadBlockSize = size_t{64} << 10;
constexpr size_t kReadBlockSize = size_t{1} << 20;

// Where the next line feed is, or null. Most report lines are short: a plain scan of their first
// bytes beats a library search, which takes over for long lines.
const void* FindLineFeed(const char* from, size_t length) {
    constexpr size_t kShortLine = 32;
    const size_t scanned = std::min(length, kShortLine);
    for (size_t i = 0; i < scanned; ++i) {
        if (from[i] == '\n')
            return from + i;
    }
    return length > scanned ? std::memchr(from + scanned, '\n', length - scanned) : nullptr;
}

// Drops the carriage return of a line that ends in carriage return and line feed.
size_t DropCarriageReturn(char* line, size_t length) {
    if (length >= 2 && line[length - 1] == '\n' && line[length - 2] == '\r') {
        line[length - 2] = '\n';
        line[length - 1] = '\0';
        return length - 1;
    }
    return length;
}

} // namespace

CStdioFile::CStdioFile(FILE* stream) : m_pStream(stream) {}

CStdioFile::CStdioFile(const char* fileName, UINT openFlags) {
    CFileException error;
    if (!Open(fileName, openFlags, &error))
        throw error;
}

CStdioFile::~CStdioFile() {
    if (m_bCloseOnDelete)
        CloseQuietly();
    std::free(m_readBuffer);
}

BOOL CStdioFile::Open(const char* fileName, UINT openFlags, CFileException* error) {
    if (m_pStream != nullptr && m_bCloseOnDelete)
        CloseQuietly();
    m_pStream = nullptr;
    m_readStart = m_readEnd = 0;
    m_lineNumber = 0;
    m_strFileName = fileName;

    const UINT access = openFlags & 0x3;
    // Non-blocking, so that opening a pipe without a writer cannot hang; only regular files are
    // accepted below, for which the flag changes nothing.
    int flags = O_CLOEXEC | O_NONBLOCK;
    const char* streamMode = "r";
    if (access == modeWrite) {
        flags |= O_WRONLY;
        streamMode = "w";
    } else if (access == modeReadWrite) {
        flags |= O_RDWR;
        streamMode = "r+";
    } else {
        flags |= O_RDONLY;
    }
    if (openFlags & modeCreate) {
        flags |= O_CREAT;
        if (!(openFlags & modeNoTruncate))
            flags |= O_TRUNC;
    }

    int osError = 0;
    bool regular = true;
    const int descriptor = fileName ? ::open(fileName, flags, 0666) : -1;
    if (descriptor < 0) {
        osError = fileName ? errno : ENOENT;
    } else {
        struct stat status {};
        if (::fstat(descriptor, &status) != 0)
            osError = errno;
        else if (S_ISDIR(status.st_mode))
            osError = EISDIR;
        else if (!S_ISREG(status.st_mode))
            regular = false;
        else if ((m_pStream = ::fdopen(descriptor, streamMode)) == nullptr)
            osError = errno;
        if (osError != 0 || !regular)
            ::close(descriptor);
    }
    if (!regular) {
        if (error != nullptr)
            *error = CFileException::NotARegularFile(fileName);
        return FALSE;
    }
    if (osError != 0) {
        if (error != nullptr)
            *error =
                CFileException(CFileException::CauseFromErrno(osError), osError, fileName, "open");
        return FALSE;
    }
    m_bCloseOnDelete = true;
    m_bTextMode = !(openFlags & typeBinary);
    return TRUE;
}

void CStdioFile::Close() {
    FILE* stream = m_pStream;
    m_pStream = nullptr;
    m_readStart = m_readEnd = 0;
    m_bCloseOnDelete = false;
    if (stream != nullptr && std::fclose(stream) != 0)
        ThrowError("close", errno);
}

void CStdioFile::CloseQuietly() noexcept {
    if (m_pStream != nullptr)
        std::fclose(m_pStream);
    m_pStream = nullptr;
    m_readStart = m_readEnd = 0;
    m_bCloseOnDelete = false;
}

bool CStdioFile::FillReadBuffer() {
    if (m_pStream == nullptr)
        return false;
    if (m_readStart > 0) {
        std::memmove(m_readBuffer, m_readBuffer + m_readStart, m_readEnd - m_readStart);
        m_readEnd -= m_readStart;
        m_readStart = 0;
    }
    if (m_readBlockSize == 0)
        m_readBlockSize = kFirstReadBlockSize;
    if (m_readCapacity - m_readEnd < m_readBlockSize) {
        // A line longer than the buffer grows it by half again, so a long line costs linear time.
        const size_t capacity =
            std::max(m_readCapacity + m_readCapacity / 2, m_readEnd + m_readBlockSize);
        char* grown = static_cast<char*>(std::realloc(m_readBuffer, capacity));
        if (grown == nullptr)
            ThrowError("read", ENOMEM);
        m_readBuffer = grown;
        m_readCapacity = capacity;
    }
    const size_t read =
        std::fread(m_readBuffer + m_readEnd, 1, m_readCapacity - m_readEnd, m_pStream);
    if (read == 0 && std::ferror(m_pStream))
        ThrowError("read", errno != 0 ? errno : EIO);
    m_readEnd += read;
    if (read >= m_readBlockSize)
        m_readBlockSize = std::min(m_readBlockSize * 2, kReadBlockSize);
    return read > 0;
}

void CStdioFile::DropReadAhead() {
    if (m_readEnd > m_readStart && m_pStream != nullptr) {
        const off_t ahead = static_cast<off_t>(m_readEnd - m_readStart);
        if (::fseeko(m_pStream, -ahead, SEEK_CUR) != 0)
            ThrowError("seek in", errno);
    }
    m_readStart = m_readEnd = 0;
}

std::string_view CStdioFile::BufferedInput() {
    if (m_readStart == m_readEnd)
        FillReadBuffer();
    return std::string_view(m_readBuffer + m_readStart, m_readEnd - m_readStart);
}

std::string_view CStdioFile::TakeLine(std::string_view raw) {
    m_lastLineLength = static_cast<int64_t>(raw.size());
    ++m_lineNumber;
    if (raw.empty() || raw.back() != '\n')
        return raw;
    raw.remove_suffix(1);
    const bool crlf = !raw.empty() && raw.back() == '\r';
    if (!m_bLineEndKnown) {
        m_bLineEndKnown = true;
        m_bCrLfRead = crlf;
    }
    if (crlf && m_bTextMode)
        raw.remove_suffix(1);
    return raw;
}

bool CStdioFile::ReadLineView(std::string_view& line) {
    line = std::string_view();
    if (m_pStream == nullptr)
        return false;
    size_t searched = m_readStart;
    for (;;) {
        const void* lineFeed = FindLineFeed(m_readBuffer + searched, m_readEnd - searched);
        if (lineFeed != nullptr) {
            const size_t end =
                static_cast<size_t>(static_cast<const char*>(lineFeed) - m_readBuffer) + 1;
            line = TakeLine(std::string_view(m_readBuffer + m_readStart, end - m_readStart));
            m_readStart = end;
            return true;
        }
        const size_t pending = m_readEnd - m_readStart;
        if (!FillReadBuffer()) {
            if (m_readEnd == m_readStart) {
                m_lastLineLength = 0;
                return false;
            }
            // The last line has no line feed.
            line = TakeLine(std::string_view(m_readBuffer + m_readStart, m_readEnd - m_readStart));
            m_readStart = m_readEnd;
            return true;
        }
        searched = m_readStart + pending; // only the new bytes are searched again
    }
}

BOOL CStdioFile::ReadString(CString& line) {
    std::string_view view;
    const bool read = ReadLineView(view);
    line.str().assign(view);
    return read ? TRUE : FALSE;
}

char* CStdioFile::ReadString(char* buffer, UINT maxChars) {
    if (m_pStream == nullptr || buffer == nullptr || maxChars == 0)
        return nullptr;
    // As fgets: at most maxChars - 1 characters, up to and including a line feed.
    size_t length = 0;
    while (length + 1 < maxChars) {
        const std::string_view input = BufferedInput();
        if (input.empty())
            break;
        const size_t room = std::min<size_t>(maxChars - 1 - length, input.size());
        const void* lineFeed = std::memchr(input.data(), '\n', room);
        const size_t take =
            lineFeed != nullptr
                ? static_cast<size_t>(static_cast<const char*>(lineFeed) - input.data()) + 1
                : room;
        std::memcpy(buffer + length, input.data(), take);
        ConsumeBuffered(take);
        length += take;
        if (lineFeed != nullptr)
            break;
    }
    buffer[length] = '\0';
    if (length == 0 && maxChars > 1)
        return nullptr;
    if (!m_bTextMode)
        return buffer;
    length = DropCarriageReturn(buffer, length);
    // A carriage return that filled the buffer may be the first half of a line end.
    if (length > 0 && buffer[length - 1] == '\r') {
        const std::string_view next = BufferedInput();
        if (!next.empty() && next.front() == '\n') {
            buffer[length - 1] = '\n';
            ConsumeBuffered(1);
        }
    }
    return buffer;
}

void CStdioFile::WriteString(const char* text) {
    if (m_pStream == nullptr)
        ThrowError("write", EBADF);
    DropReadAhead();
    if (text != nullptr && std::fputs(text, m_pStream) == EOF)
        ThrowError("write", errno);
}

void CStdioFile::WriteBytes(std::string_view bytes) {
    if (m_pStream == nullptr)
        ThrowError("write", EBADF);
    DropReadAhead();
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_pStream) != bytes.size())
        ThrowError("write", errno);
}

int64_t CStdioFile::GetPosition() const {
    if (m_pStream == nullptr)
        ThrowError("read the position of", EBADF);
    const off_t position = ::ftello(m_pStream);
    if (position < 0)
        ThrowError("read the position of", errno);
    return position - static_cast<off_t>(m_readEnd - m_readStart);
}

int64_t CStdioFile::Seek(int64_t offset, UINT from) {
    if (m_pStream == nullptr)
        ThrowError("seek in", EBADF);
    const int origin = from == current ? SEEK_CUR : from == end ? SEEK_END : SEEK_SET;
    DropReadAhead();
    if (::fseeko(m_pStream, offset, origin) != 0)
        ThrowError("seek in", errno);
    const int64_t position = GetPosition();
    if (position == 0)
        m_lineNumber = 0;
    return position;
}

int64_t CStdioFile::GetLength() const {
    if (m_pStream == nullptr)
        ThrowError("measure", EBADF);
    std::fflush(m_pStream);
    struct stat status {};
    if (::fstat(::fileno(m_pStream), &status) != 0)
        ThrowError("measure", errno);
    return status.st_size;
}

void CStdioFile::SetLength(int64_t newLength) {
    DropReadAhead();
    Flush();
    if (::ftruncate(::fileno(m_pStream), newLength) != 0)
        ThrowError("resize", errno);
}

void CStdioFile::Flush() {
    if (m_pStream == nullptr)
        ThrowError("flush", EBADF);
    if (std::fflush(m_pStream) != 0)
        ThrowError("write", errno);
}

void CStdioFile::ThrowError(const char* operation, int osError) const {
    throw CFileException(CFileException::CauseFromErrno(osError), osError, m_strFileName,
                         operation);
}

} // namespace quillon
