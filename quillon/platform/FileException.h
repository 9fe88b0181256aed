#pragma once

#include <quillon/platform/Exception.h>
#include <quillon/platform/String.h>

namespace quillon {

// A failure of a file operation: opening, reading, writing, seeking or sizing a file.
class CFileException : public CException {
    QUILLON_DECLARE_DYNAMIC(CFileException)

public:
    enum Cause {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    CFileException() = default;
    // operation names what failed ("open", "read", "write", ...); osError is the errno value.
    CFileException(Cause cause, int osError, const char* fileName, const char* operation);

    // The failure to open something that is not a regular file (a directory, a pipe, a device).
    static CFileException NotARegularFile(const char* fileName);

    // The cause that matches an errno value.
    static Cause CauseFromErrno(int osError);

    BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext = nullptr) const override;
    const char* what() const noexcept override { return m_message.c_str(); }

    Cause m_cause = none;
    int m_lOsError = 0;
    CString m_strFileName;

private:
    CString m_message;
};

} // namespace quillon
