// Item counts of a metabolite's correlation lists, read at the sample's parent entry.
#include <quillon/metabolites/MetaboliteData.h>

namespace quillon {

int CMetaboliteData::GetNumCommonProductsParent(CSampleData* sample) const {
    CString masses;
    GetCommonProductsParent(sample, masses);
    return CountItems(masses);
}

int CMetaboliteData::GetNumCommonProductsMetabolite(CSampleData* sample, int entry) const {
    CString masses;
    GetCommonProductsMetabolite(sample, masses, entry);
    return CountItems(masses);
}

int CMetaboliteData::GetNumNeutralLosses(CSampleData* sample) const {
    CString losses;
    GetNeutralLossesFromAllParentSpectrumMasses(sample, losses);
    int count = CountItems(losses);
    if (count == 0 && !m_strNeutralLoss.IsEmpty())
        count = 1;
    GetCommonNeutralLosses(sample, losses);
    return count + CountItems(losses);
}

} // namespace quillon
