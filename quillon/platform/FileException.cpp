#include <quillon/platform/FileException.h>

#include <cerrno>
#include <cstring>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CFileException, CException)

CFileException::CFileException(Cause cause, int osError, const char* fileName,
                               const char* operation)
    : m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {
    const char* reason = osError != 0 ? std::strerror(osError) : "unexpected end of file";
    if (m_strFileName.IsEmpty())
        m_message.Format("Cannot %s the file: %s.", operation, reason);
    else
        m_message.Format("Cannot %s the file \"%s\": %s.", operation, m_strFileName.c_str(),
                         reason);
}

CFileException CFileException::NotARegularFile(const char* fileName) {
    CFileException error(invalidFile, 0, fileName, "open");
    if (error.m_strFileName.IsEmpty())
        error.m_message = "Cannot open the file: not a regular file.";
    else
        error.m_message.Format("Cannot open the file \"%s\": not a regular file.", fileName);
    return error;
}

CFileException::Cause CFileException::CauseFromErrno(int osError) {
    switch (osError) {
    case 0:
        return none;
    case ENOENT:
        return fileNotFound;
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        return badPath;
    case EMFILE:
    case ENFILE:
        return tooManyOpenFiles;
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
        return accessDenied;
    case EBADF:
        return invalidFile;
    case ESPIPE:
    case EINVAL:
        return badSeek;
    case EIO:
        return hardIO;
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return diskFull;
    default:
        return genericException;
    }
}

BOOL CFileException::GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) const {
    if (helpContext != nullptr)
        *helpContext = 0;
    if (buffer == nullptr || maxChars == 0)
        return FALSE;
    std::strncpy(buffer, m_message.c_str(), maxChars - 1);
    buffer[maxChars - 1] = '\0';
    return TRUE;
}

} // namespace quillon
