#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

// A named mass with a formula: a parent drug of a sample, or an entry of a mass list such as the
// neutral-loss list. For a neutral loss the mass is the lost mass and the selected flag means
// "enabled in searches".
class CCompoundData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CCompoundData)

public:
    CCompoundData() = default;
    CCompoundData(double mass, CString formula, CString name);
    CCompoundData(const CCompoundData& source) = default;
    CCompoundData(CCompoundData&& source) = default;
    CCompoundData& operator=(const CCompoundData& source) = default;
    CCompoundData& operator=(CCompoundData&& source) = default;
    ~CCompoundData() override = default;

    double GetMass() const { return m_dMass; }
    void SetMass(double mass) { m_dMass = mass; }
    void GetFormula(CString& formula) const { formula = m_strFormula; }
    void SetFormula(const CString& formula) { m_strFormula = formula; }
    void GetName(CString& name) const { name = m_strName; }
    void SetName(const CString& name) { m_strName = name; }
    bool IsSelected() const { return m_bSelected; }
    void SetSelected(bool selected) { m_bSelected = selected; }

private:
    double m_dMass = 0.0;
    CString m_strFormula;
    CString m_strName;
    bool m_bSelected = false;
};

} // namespace quillon
