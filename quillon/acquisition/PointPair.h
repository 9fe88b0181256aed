#pragma once

#include <quillon/acquisition/PeakData.h>

namespace quillon {

// A point as a trace or a spectrum stores it: its two numbers side by side, nothing else, so that
// a trace of a million points takes a million times the two numbers. Chromatograms keep floats
// (their points are given and read as floats), spectra doubles. CPeakData remains the value the
// interface hands out.
template <class Number>
struct TPointPair {
    Number mass = 0;
    Number intensity = 0;

    TPointPair() = default;
    TPointPair(Number pointMass, Number pointIntensity)
        : mass(pointMass), intensity(pointIntensity) {}
    explicit TPointPair(const CPeakData& point)
        : mass(static_cast<Number>(point.GetMass())),
          intensity(static_cast<Number>(point.GetIntensity())) {}

    double GetMass() const { return mass; }
    double GetIntensity() const { return intensity; }
    CPeakData ToPeakData() const { return CPeakData(mass, intensity); }
};

} // namespace quillon
