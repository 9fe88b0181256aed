#include <quillon/metabolites/ElementalResultsData.h>

#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CElementalResultsData, CObject)

CElementalResultsData::CElementalResultsData(double mass, double calcMass, double mDa, double ppm,
                                             double dbe, double iFit, double iFitNorm,
                                             CString formula, CString monoMassFormula)
    : m_dMass(mass), m_dCalcMass(calcMass), m_dmDa(mDa), m_dPPM(ppm), m_dDBE(dbe), m_diFIT(iFit),
      m_diFITnorm(iFitNorm), m_strFormula(std::move(formula)),
      m_strMonoMassFormula(std::move(monoMassFormula)) {}

} // namespace quillon
