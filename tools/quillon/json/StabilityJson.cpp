#include "StabilityJson.h"

namespace quillon::tool {

nlohmann::json StabilityJson(const CMetabolicStabilityInfo& info) {
    nlohmann::json entry = {{"parent", info.parent.str()},
                            {"process_parameters", info.processParameters.str()},
                            {"points_used", info.pointsUsed},
                            {"k_per_min", info.k},
                            {"k_standard_error", info.standardErrorK},
                            {"r_squared", info.rSquared},
                            {"flags", info.FlagsText()}};
    auto fit = [](bool valid, double value) {
        return valid ? nlohmann::json(value) : nlohmann::json();
    };
    entry["half_life_min"] = fit(info.HasHalfLife(), info.halfLife);
    entry["half_life_low_min"] = fit(info.HasHalfLife(), info.halfLifeLow);
    entry["half_life_high_min"] = fit(info.halfLifeHigh > 0, info.halfLifeHigh);
    entry["clint_ul_min_mg"] = fit(info.HasHalfLife(), info.intrinsicClearance);
    entry["scaled_clearance_ml_min_kg"] = fit(info.HasHalfLife(), info.scaledClearance);
    entry["points"] = nlohmann::json::array();
    for (const auto& point : info.points)
        entry["points"].push_back({{"sample", point.sampleNumber},
                                   {"time_min", point.time},
                                   {"amount", point.amount},
                                   {"percent_remaining", point.percentRemaining},
                                   {"used_in_fit", point.usedInFit}});
    entry["formation"] = nlohmann::json::array();
    for (const auto& formation : info.formation)
        entry["formation"].push_back(
            {{"name", formation.name.str()},
             {"shift", formation.label.str()},
             {"amount_at_time", formation.amountAtTime},
             {"time_of_maximum_min", formation.timeOfMaximum},
             {"maximum_percent_of_parent", formation.maximumPercentOfParent}});
    return entry;
}

} // namespace quillon::tool
