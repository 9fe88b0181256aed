#include <quillon/acquisition/PeakList.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CPeakList, CObject)

} // namespace quillon
