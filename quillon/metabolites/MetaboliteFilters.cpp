// The browser's result filters applied to one metabolite.

#include <quillon/metabolites/MetaboliteData.h>

#include <quillon/metabolites/DivBroParams.h>
#include <quillon/platform/Numbers.h>

#include <cmath>
#include <cstdlib>

namespace quillon {

namespace {

// Predicted masses carry four decimals; a mass defect within this of a limit counts as on it.
constexpr double kMassDefectRounding = 1e-9;

} // namespace

bool CMetaboliteData::ApplyDataFilters(const CDivBroParams* params, bool keepHighEnergy) const {
    if (params == nullptr)
        return true;
    const bool timeFilterOn = params->TimeFilterOn && params->TimeLow < params->TimeHigh;
    return ApplyDataFilters(
        params->MassDefectFilterOn, params->MassDefectUpper, params->MassDefectLower,
        params->AreaFilterOn, params->AreaMode, params->AreaThreshold,
        params->RelativeAreaThreshold, params->AreaFilterOnExpected, params->MassErrorFilterOn,
        params->MassErrorLimit, params->IsotopeFilterOn, params->ElementalFilterOn, timeFilterOn,
        params->TimeLow, params->TimeHigh, keepHighEnergy ? false : params->HideHighEnergy);
}

bool CMetaboliteData::ApplyDataFilters(bool massDefectFilterOn, double massDefectUpper,
                                       double massDefectLower, bool areaFilterOn, int areaMode,
                                       float areaThreshold, float relativeAreaThreshold,
                                       bool areaFilterOnExpected, bool massErrorFilterOn,
                                       double massErrorLimit, bool isotopeFilterOn,
                                       bool elementalFilterOn, bool timeFilterOn, double timeLow,
                                       double timeHigh, bool hideHighEnergy) const {
    const bool msms = m_bMSMSCorrelation;
    const bool expected = IsExpected();

    if (hideHighEnergy && !msms && m_bHiEnergy && !m_bExpected)
        return false;

    // An unexpected isotope peak has no predicted mass to be in error from.
    bool testMassError = expected && massErrorFilterOn;
    if (isotopeFilterOn && m_bIsIsotope) {
        if (m_bExpected && !msms)
            return false;
        if (!m_bExpected)
            testMassError = false;
    }
    if (testMassError && std::fabs(ParseDouble(m_strmDa)) > massErrorLimit)
        return false;

    if (areaFilterOn && !m_bHiEnergy) {
        if (!areaFilterOnExpected && expected)
            return true;
        if (areaMode == 1) {
            if (!(m_dRelativePeakArea > relativeAreaThreshold))
                return false;
        } else if (!(m_dPeakArea > areaThreshold)) {
            return false;
        }
    }

    if (m_bExpected || msms)
        return true;

    // Unexpected metabolites only.
    if (elementalFilterOn && !(m_bElementalEnabled && m_ElementalResults.GetSize() > 0))
        return false;
    if (timeFilterOn && (m_dPeakTime < timeLow || m_dPeakTime > timeHigh))
        return false;
    if (!massDefectFilterOn || m_bHiEnergy)
        return true;

    // Mass defect d of the predicted mass, 0 <= d < 1: 301.95 has d = 0.95, a negative defect of
    // 0.05 below the nominal mass 302.
    const double lowerLimit = massDefectLower < 0.0 ? massDefectUpper : massDefectLower;
    double defect = m_dMetabolite - std::trunc(m_dMetabolite);
    if (defect < 0.0)
        defect += 1.0;
    return defect <= massDefectUpper + kMassDefectRounding ||
           defect >= 1.0 - lowerLimit - kMassDefectRounding;
}

} // namespace quillon
