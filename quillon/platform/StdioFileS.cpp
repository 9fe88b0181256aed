#include <quillon/platform/StdioFileS.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CStdioFileS, CStdioFile)

} // namespace quillon
