#include <quillon/platform/File.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CFile, CObject)

CString CFile::GetFileName() const {
    const int separator = m_strFileName.ReverseFind('/');
    return separator < 0 ? m_strFileName : m_strFileName.Mid(separator + 1);
}

} // namespace quillon
