#include <quillon/metabolites/Compounds.h>

#include <algorithm>
#include <cmath>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CCompounds, CObject)

namespace {

// Groups of the sort order: non-negative masses, then negative ones, then masses that are not a
// number at all (which a settings file can produce and which must not upset the sort).
int SignGroup(double mass) {
    if (std::isnan(mass))
        return 2;
    return mass >= 0.0 ? 0 : 1;
}

bool SortsBefore(const CCompoundData& a, const CCompoundData& b) {
    const int groupA = SignGroup(a.GetMass());
    const int groupB = SignGroup(b.GetMass());
    if (groupA != groupB)
        return groupA < groupB;
    if (groupA == 2)
        return false;
    return std::fabs(a.GetMass()) < std::fabs(b.GetMass());
}

} // namespace

CCompounds::CCompounds() : m_pList(std::make_shared<CArray<CCompoundData>>()) {}

int CCompounds::Add(const CCompoundData& compound) {
    return m_pList->Add(compound);
}

int CCompounds::GetSize() const {
    return m_pList->GetSize();
}

CCompoundData CCompounds::GetAt(int index) const {
    if (index < 0 || index >= m_pList->GetSize())
        return CCompoundData();
    return m_pList->GetAt(index);
}

void CCompounds::SetAt(int index, const CCompoundData& compound) {
    if (index >= 0 && index < m_pList->GetSize())
        m_pList->SetAt(index, compound);
}

void CCompounds::RemoveAt(int index) {
    m_pList->RemoveAt(index);
}

void CCompounds::RemoveAll() {
    m_pList->RemoveAll();
}

void CCompounds::Sort() {
    std::stable_sort(m_pList->begin(), m_pList->end(), SortsBefore);
}

} // namespace quillon
