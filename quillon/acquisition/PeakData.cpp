#include <quillon/acquisition/PeakData.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CPeakData, CObject)

} // namespace quillon
