#include <quillon/metabolites/MetaboliteNames.h>

#include <cstring>
#include <strings.h>

namespace quillon {

bool IsParent(const CMetaboliteData& metabolite) {
    return ::strcasecmp(metabolite.GetMetName(), MetaboliteName::kParent) == 0;
}

bool IsExcludedMass(const CMetaboliteData& metabolite) {
    return std::strcmp(metabolite.GetMetName(), MetaboliteName::kExcludeMass) == 0;
}

bool IsMSeFragments(const CMetaboliteData& metabolite) {
    return std::strcmp(metabolite.GetMetName(), MetaboliteName::kMSeFragments) == 0;
}

} // namespace quillon
