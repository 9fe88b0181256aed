// Elemental-composition candidates of a metabolite and its mass errors from its formula.

#include <quillon/metabolites/MetaboliteData.h>

#include <quillon/chemistry/Elements.h>
#include <quillon/chemistry/Formula.h>
#include <quillon/platform/Numbers.h>

#include <cmath>
#include <cstdlib>
#include <string_view>

namespace quillon {

namespace {

// The monoisotopic mass of a formula text such as "C17H19ClN2S", blanks allowed anywhere. One
// trailing charge sign makes it the mass of the singly charged ion: "C17H20ClN2S+" is an electron
// lighter than the neutral formula, "C17H18ClN2S-" an electron heavier. False for a text that
// does not parse (mass unchanged).
bool FormulaMass(const CString& text, double& mass) {
    std::string_view formula = text.view();
    while (!formula.empty() && (formula.back() == ' ' || formula.back() == '\t'))
        formula.remove_suffix(1);
    double electrons = 0.0;
    if (!formula.empty() && (formula.back() == '+' || formula.back() == '-')) {
        electrons = formula.back() == '+' ? -1.0 : 1.0;
        formula.remove_suffix(1);
    }
    CFormula parsed;
    if (!CFormula::TryParse(formula, parsed))
        return false;
    mass = parsed.MonoisotopicMass() + electrons * CElements::kElectronMass;
    return true;
}

} // namespace

int CMetaboliteData::ElementalNewField(const CStringArray& fields) {
    const int count = fields.GetSize();
    if (count < 5)
        return 0;
    CElementalResultsData candidate;
    candidate.SetMass(ParseDouble(fields[0]));
    candidate.SetCalcMass(ParseDouble(fields[1]));
    candidate.SetmDa(ParseDouble(fields[2]));
    candidate.SetPPM(ParseDouble(fields[3]));
    candidate.SetDBE(ParseDouble(fields[4]));
    const CString formula = count > 5 ? fields[5] : CString();
    candidate.SetFormula(formula);
    CString monoMassFormula = count > 6 ? fields[6] : CString();
    if (monoMassFormula.IsEmpty()) {
        monoMassFormula = formula;
        monoMassFormula.Remove(' ');
    }
    candidate.SetMonoMassFormula(monoMassFormula);
    candidate.SetiFIT(count > 7 ? ParseDouble(fields[7]) : -1.0);
    candidate.SetiFITnorm(count > 8 ? ParseDouble(fields[8]) : -1.0);
    AddElementalResults(candidate);
    return 1;
}

void CMetaboliteData::CalculateIsotopicMassFromFormula() {
    if (m_strFormula.IsEmpty())
        return;
    double mass = 0.0;
    if (FormulaMass(m_strFormula, mass))
        m_dPrecursor = mass;
}

void CMetaboliteData::CalculatemDaAndPPM() {
    if (m_strFormula.IsEmpty()) {
        if (m_dMolecularMass == std::floor(m_dMolecularMass))
            return;
    } else if (!FormulaMass(m_strFormula, m_dPrecursor)) {
        return;
    }
    // Without a measured mass there is no error to state.
    if (m_dMolecularMass == 0.0)
        return;
    const double mDa = (m_dMolecularMass - m_dPrecursor) * 1000.0;
    SetmDa(mDa);
    SetPPM(mDa / m_dMolecularMass * 1000.0);
}

} // namespace quillon
