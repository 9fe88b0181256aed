#include <quillon/platform/Exception.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CException, CObject)

BOOL CException::GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext) const {
    if (helpContext != nullptr)
        *helpContext = 0;
    if (buffer != nullptr && maxChars > 0)
        buffer[0] = '\0';
    return FALSE;
}

const char* CException::what() const noexcept {
    return "quillon exception";
}

} // namespace quillon
