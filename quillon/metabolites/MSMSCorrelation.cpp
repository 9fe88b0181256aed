#include <quillon/metabolites/MSMSCorrelation.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMSMSCorrelation, CObject)

} // namespace quillon
