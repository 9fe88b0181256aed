#include <quillon/chemistry/IsotopePatterns.h>

#include <algorithm>
#include <cmath>

namespace quillon {

namespace {

// True when the peak at (mass, intensity) is an isotope peak of the leading peak by the model.
bool ExplainedBy(double leadMass, double leadIntensity, double mass, double intensity,
                 const std::vector<IsotopePeak>& model, double ratioTolerance) {
    if (!(leadIntensity > 0.0) || !(intensity >= 0.0)) {
        return false;
    }
    const IsotopePeak& monoisotopic = model.front();
    const double ratio = intensity / leadIntensity;
    for (size_t j = 1; j < model.size(); ++j) {
        const double offset = model[j].mass - monoisotopic.mass;
        if (std::fabs(mass - leadMass - offset) > kIsotopeSpacingTolerance) {
            continue;
        }
        const double expected = model[j].relativeIntensity / monoisotopic.relativeIntensity;
        if (ratio >= expected / ratioTolerance && ratio <= expected * ratioTolerance) {
            return true;
        }
    }
    return false;
}

} // namespace

std::vector<size_t> InferIsotopePatterns(std::span<const double> masses,
                                         std::span<const float> intensities,
                                         const CIsotopeModel& model, double ratioTolerance) {
    const size_t count = std::min(masses.size(), intensities.size());
    std::vector<size_t> kept;
    const std::vector<IsotopePeak>& peaks = model.Peaks();
    if (peaks.empty() || !(peaks.front().relativeIntensity > 0.0)) {
        for (size_t i = 0; i < count; ++i) {
            kept.push_back(i);
        }
        return kept;
    }
    std::vector<bool> explained(count, false);
    for (size_t lead = 0; lead < count; ++lead) {
        if (explained[lead]) {
            continue;
        }
        kept.push_back(lead);
        for (size_t q = lead + 1; q < count; ++q) {
            if (!explained[q] && ExplainedBy(masses[lead], intensities[lead], masses[q],
                                             intensities[q], peaks, ratioTolerance)) {
                explained[q] = true;
            }
        }
    }
    return kept;
}

} // namespace quillon
