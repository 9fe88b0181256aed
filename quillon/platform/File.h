#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>
#include <quillon/platform/Types.h>

#include <cstdint>

namespace quillon {

class CFileException;

// The interface of an open file, with the framework's open flags and seek origins. CStdioFile is
// the implementation the library uses.
class CFile : public CObject {
    QUILLON_DECLARE_DYNAMIC(CFile)

public:
    enum OpenFlags : UINT {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000,
    };
    enum SeekPosition { begin = 0, current = 1, end = 2 };

    CFile() = default;
    CFile(const CFile&) = delete;
    CFile& operator=(const CFile&) = delete;

    // Opens a file; returns FALSE and fills *error (when given) on failure.
    virtual BOOL Open(const char* fileName, UINT openFlags, CFileException* error = nullptr) = 0;
    // Closes the file; throws CFileException when buffered data cannot be written.
    virtual void Close() = 0;

    virtual int64_t GetPosition() const = 0;
    // Moves to offset from the origin and returns the new position; throws on failure.
    virtual int64_t Seek(int64_t offset, UINT from) = 0;
    void SeekToBegin() { Seek(0, begin); }
    int64_t SeekToEnd() { return Seek(0, end); }
    virtual int64_t GetLength() const = 0;
    // Cuts or extends the file to newLength bytes; throws on failure.
    virtual void SetLength(int64_t newLength) = 0;
    virtual void Flush() = 0;

    // The file's name without its folder ("report.txt").
    CString GetFileName() const;

protected:
    CString m_strFileName;
};

} // namespace quillon
