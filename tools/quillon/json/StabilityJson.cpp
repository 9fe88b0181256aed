#include "StabilityJson.h"

#include <utility>

namespace quillon::tool {

std::string StabilityFlagsText(const CMetabolicStabilityInfo& info) {
    std::string text;
    const std::pair<int, const char*> names[] = {
        {CMetabolicStabilityInfo::kNoParent, "no parent"},
        {CMetabolicStabilityInfo::kNoInitialAmount, "no initial amount"},
        {CMetabolicStabilityInfo::kTooFewTimePoints, "too few time points"},
        {CMetabolicStabilityInfo::kNoDecline, "no decline"},
        {CMetabolicStabilityInfo::kPoorFit, "poor fit"},
        {CMetabolicStabilityInfo::kOpenInterval, "open interval"}};
    for (const auto& [flag, name] : names)
        if (info.flags & flag)
            text += (text.empty() ? "" : "; ") + std::string(name);
    return text;
}

nlohmann::json StabilityJson(const CMetabolicStabilityInfo& info) {
    nlohmann::json entry = {{"parent", info.parent.str()},
                            {"process_parameters", info.processParameters.str()},
                            {"points_used", info.pointsUsed},
                            {"k_per_min", info.k},
                            {"k_standard_error", info.standardErrorK},
                            {"r_squared", info.rSquared},
                            {"flags", StabilityFlagsText(info)}};
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
