#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

#include <utility>

namespace quillon {

// One candidate elemental formula for a metabolite's found mass: the measured and calculated m/z,
// the mass errors, the double-bond equivalent and the isotope-fit scores (-1 = none).
class CElementalResultsData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CElementalResultsData)

public:
    CElementalResultsData() = default;
    CElementalResultsData(double mass, double calcMass, double mDa, double ppm, double dbe,
                          double iFit, double iFitNorm, CString formula, CString monoMassFormula);

    double GetMass() const { return m_dMass; }
    void SetMass(double mass) { m_dMass = mass; }
    double GetCalcMass() const { return m_dCalcMass; }
    void SetCalcMass(double mass) { m_dCalcMass = mass; }
    double GetmDa() const { return m_dmDa; }
    void SetmDa(double mDa) { m_dmDa = mDa; }
    double GetPPM() const { return m_dPPM; }
    void SetPPM(double ppm) { m_dPPM = ppm; }
    double GetDBE() const { return m_dDBE; }
    void SetDBE(double dbe) { m_dDBE = dbe; }
    double GetiFIT() const { return m_diFIT; }
    void SetiFIT(double fit) { m_diFIT = fit; }
    double GetiFITnorm() const { return m_diFITnorm; }
    void SetiFITnorm(double fit) { m_diFITnorm = fit; }
    CString GetFormula() const { return m_strFormula; }
    void SetFormula(CString formula) { m_strFormula = std::move(formula); }
    CString GetMonoMassFormula() const { return m_strMonoMassFormula; }
    void SetMonoMassFormula(CString formula) { m_strMonoMassFormula = std::move(formula); }

private:
    double m_dMass = 0.0;
    double m_dCalcMass = 0.0;
    double m_dmDa = 0.0;
    double m_dPPM = 0.0;
    double m_dDBE = 0.0;
    double m_diFIT = -1.0;
    double m_diFITnorm = -1.0;
    CString m_strFormula;         // formula of the ion
    CString m_strMonoMassFormula; // formula of the neutral molecule
};

} // namespace quillon
