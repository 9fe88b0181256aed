#pragma once

#include <quillon/platform/File.h>
#include <quillon/platform/FileException.h>

#include <cstdio>
#include <string_view>

namespace quillon {

// A file read and written through a C stream. In text mode (the default) a line that ends in
// carriage return and line feed reads exactly like one that ends in a line feed, and the file
// remembers which of the two its first line had; writing writes the text as it stands. Errors of
// the file itself throw CFileException.
//
// Reading goes through a read buffer of the file's own, filled in large blocks, from which whole
// lines are handed out as views without copying; positions, seeks and writes account for what the
// buffer holds, so the file behaves as if read byte by byte.
class CStdioFile : public CFile {
    QUILLON_DECLARE_DYNAMIC(CStdioFile)

public:
    CStdioFile() = default;
    // Attaches an open stream, which the object does not close.
    explicit CStdioFile(FILE* stream);
    // Opens a file; throws CFileException when it cannot be opened.
    CStdioFile(const char* fileName, UINT openFlags);
    ~CStdioFile() override;

    BOOL Open(const char* fileName, UINT openFlags, CFileException* error = nullptr) override;
    void Close() override;

    // Reads at most maxChars - 1 characters of a line, with its line feed when it fits, into
    // buffer; returns buffer, or null at end of file.
    virtual char* ReadString(char* buffer, UINT maxChars);
    // Reads one whole line of any length without its line end. Returns TRUE when a line was read
    // (a last line without a line feed included), FALSE at end of file with an empty text.
    virtual BOOL ReadString(CString& line);
    // The same line as a view into the read buffer, valid until the next read, seek or write.
    // Every reading of whole lines goes through it, so a derived file can watch lines here.
    virtual bool ReadLineView(std::string_view& line);
    // The bytes the last whole-line ReadString consumed, its line end ("\n" or "\r\n")
    // included; 0 after end of file.
    int64_t GetLastLineLength() const { return m_lastLineLength; }
    // The number (from 1) of the line the last whole-line read took: the whole lines read since
    // the file was opened or sought to its start. A reader that seeks back to read lines again
    // sets it back to what it was there.
    int64_t GetLineNumber() const { return m_lineNumber; }
    void SetLineNumber(int64_t number) { m_lineNumber = number; }
    // Writes the text as it stands (up to its first NUL byte).
    virtual void WriteString(const char* text);
    // Writes the bytes as they are, NUL bytes included.
    void WriteBytes(std::string_view bytes);
    // The line end of the first line that ReadString(CString&) read with one: "\r\n" or "\n";
    // "\n" before such a line was read.
    const char* GetLineEndRead() const { return m_bCrLfRead ? "\r\n" : "\n"; }

    int64_t GetPosition() const override;
    int64_t Seek(int64_t offset, UINT from) override;
    int64_t GetLength() const override;
    void SetLength(int64_t newLength) override;
    void Flush() override;

    FILE* m_pStream = nullptr;

protected:
    [[noreturn]] void ThrowError(const char* operation, int osError) const;

    // Bulk access for readers that take many lines at a time. BufferedInput gives the unread bytes
    // the read buffer holds, filling it first when it is empty (empty at end of file); its last
    // line may be incomplete. ConsumeBuffered marks the first count of them as read.
    std::string_view BufferedInput();
    void ConsumeBuffered(size_t count) { m_readStart += count; }
    // Takes a raw line (its line feed included, when it has one) as the line just read: notes its
    // length and the file's line end, and returns it without its line end.
    std::string_view TakeLine(std::string_view raw);

    bool m_bCloseOnDelete = false;
    bool m_bTextMode = true;

private:
    void CloseQuietly() noexcept;

    // Reads more of the file behind the unread bytes of the read buffer, moving them to its
    // start and growing it when a line fills it whole. Returns false at end of file.
    bool FillReadBuffer();
    // Gives the stream back the bytes read ahead, so that it stands where the reader does.
    void DropReadAhead();

    int64_t m_lastLineLength = 0;
    int64_t m_lineNumber = 0;
    bool m_bLineEndKnown = false;
    bool m_bCrLfRead = false;
    // The read buffer: bytes [m_readStart, m_readEnd) are read from the stream but not yet taken.
    char* m_readBuffer = nullptr;
    size_t m_readCapacity = 0;
    // The size of the next read from the stream (0 before the first).
    size_t m_readBlockSize = 0;
    size_t m_readStart = 0;
    size_t m_readEnd = 0;
};

} // namespace quillon
