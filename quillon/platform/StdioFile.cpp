#include <quillon/platform/StdioFile.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CStdioFile, CFile)

namespace {

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
    std::free(m_lineBuffer);
}

BOOL CStdioFile::Open(const char* fileName, UINT openFlags, CFileException* error) {
    if (m_pStream != nullptr && m_bCloseOnDelete)
        CloseQuietly();
    m_pStream = nullptr;
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
    m_bCloseOnDelete = false;
    if (stream != nullptr && std::fclose(stream) != 0)
        ThrowError("close", errno);
}

void CStdioFile::CloseQuietly() noexcept {
    if (m_pStream != nullptr)
        std::fclose(m_pStream);
    m_pStream = nullptr;
    m_bCloseOnDelete = false;
}

char* CStdioFile::ReadString(char* buffer, UINT maxChars) {
    if (m_pStream == nullptr || buffer == nullptr || maxChars == 0)
        return nullptr;
    if (std::fgets(buffer, static_cast<int>(maxChars), m_pStream) == nullptr) {
        if (std::ferror(m_pStream))
            ThrowError("read", errno);
        buffer[0] = '\0';
        return nullptr;
    }
    if (!m_bTextMode)
        return buffer;
    size_t length = std::strlen(buffer);
    length = DropCarriageReturn(buffer, length);
    // A carriage return that filled the buffer may be the first half of a line end.
    if (length > 0 && buffer[length - 1] == '\r') {
        const int next = std::getc(m_pStream);
        if (next == '\n')
            buffer[length - 1] = '\n';
        else if (next != EOF)
            std::ungetc(next, m_pStream);
    }
    return buffer;
}

BOOL CStdioFile::ReadString(CString& line) {
    line.Empty();
    if (m_pStream == nullptr)
        return FALSE;
    errno = 0;
    const ssize_t read = ::getline(&m_lineBuffer, &m_lineCapacity, m_pStream);
    if (read < 0) {
        // Only the end of the file ends reading; a failed read or a line that cannot be held in
        // memory is an error, never a silent end.
        if (std::ferror(m_pStream) || !std::feof(m_pStream))
            ThrowError("read", errno != 0 ? errno : EIO);
        m_lastLineLength = 0;
        return FALSE;
    }
    m_lastLineLength = static_cast<int64_t>(read);
    size_t length = static_cast<size_t>(read);
    if (!m_bLineEndKnown && m_lineBuffer[length - 1] == '\n') {
        m_bLineEndKnown = true;
        m_bCrLfRead = length >= 2 && m_lineBuffer[length - 2] == '\r';
    }
    if (m_bTextMode)
        length = DropCarriageReturn(m_lineBuffer, length);
    if (length > 0 && m_lineBuffer[length - 1] == '\n')
        --length;
    line.str().assign(m_lineBuffer, length);
    return TRUE;
}

void CStdioFile::WriteString(const char* text) {
    if (m_pStream == nullptr)
        ThrowError("write", EBADF);
    if (text != nullptr && std::fputs(text, m_pStream) == EOF)
        ThrowError("write", errno);
}

void CStdioFile::WriteBytes(std::string_view bytes) {
    if (m_pStream == nullptr)
        ThrowError("write", EBADF);
    if (std::fwrite(bytes.data(), 1, bytes.size(), m_pStream) != bytes.size())
        ThrowError("write", errno);
}

int64_t CStdioFile::GetPosition() const {
    if (m_pStream == nullptr)
        ThrowError("read the position of", EBADF);
    const off_t position = ::ftello(m_pStream);
    if (position < 0)
        ThrowError("read the position of", errno);
    return position;
}

int64_t CStdioFile::Seek(int64_t offset, UINT from) {
    if (m_pStream == nullptr)
        ThrowError("seek in", EBADF);
    const int origin = from == current ? SEEK_CUR : from == end ? SEEK_END : SEEK_SET;
    if (::fseeko(m_pStream, offset, origin) != 0)
        ThrowError("seek in", errno);
    return GetPosition();
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
