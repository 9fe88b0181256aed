#include <quillon/metabolites/CompoundData.h>

#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CCompoundData, CObject)

CCompoundData::CCompoundData(double mass, CString formula, CString name)
    : m_dMass(mass), m_strFormula(std::move(formula)), m_strName(std::move(name)) {}

} // namespace quillon
