#pragma once

#include <quillon/platform/Object.h>

namespace quillon {

// One line of a spectrum's "MASSES" paragraph: a mass the processing looked for in the spectrum,
// with the mass it expected there, the mass it observed, its percentage and whether the line
// belongs to an isotope of another mass.
class CMassesData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CMassesData)

public:
    CMassesData(double mono = 0.0, double expected = 0.0, double observed = 0.0,
                double percentage = 0.0, bool isotope = false);
    CMassesData(const CMassesData& source);
    CMassesData& operator=(const CMassesData& source);
    ~CMassesData() override;

    double GetMono() const { return m_mono; }
    void SetMono(double mono) { m_mono = mono; }
    double GetExpected() const { return m_expected; }
    void SetExpected(double expected) { m_expected = expected; }
    double GetObserved() const { return m_observed; }
    void SetObserved(double observed) { m_observed = observed; }
    double GetPercentage() const { return m_percentage; }
    void SetPercentage(double percentage) { m_percentage = percentage; }
    bool IsIsotope() const { return m_isotope; }
    void IsIsotope(bool isotope) { m_isotope = isotope; }

private:
    // Copies the five members from source, or resets them to 0 and false when source is null.
    void Initialise(const CMassesData* source);

    double m_mono = 0.0;
    double m_expected = 0.0;
    double m_observed = 0.0;
    double m_percentage = 0.0;
    bool m_isotope = false;
};

} // namespace quillon
