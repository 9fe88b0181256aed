#pragma once

#include <quillon/platform/Object.h>

namespace quillon {

// One point of a trace: a mass (the retention time, for a chromatogram) and an intensity.
class CPeakData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CPeakData)

public:
    CPeakData() = default;
    CPeakData(double mass, double intensity) : m_Mass(mass), m_Intensity(intensity) {}

    double GetMass() const { return m_Mass; }
    void SetMass(double mass) { m_Mass = mass; }
    double GetIntensity() const { return m_Intensity; }
    void SetIntensity(double intensity) { m_Intensity = intensity; }

private:
    double m_Mass = 0.0;
    double m_Intensity = 0.0;
};

} // namespace quillon
