#pragma once

// The metabolic stability of an incubation series as JSON, for the stability subcommand and the
// web server alike.

#include <quillon/quillon.h>

#include <nlohmann/json.hpp>

#include <string>

namespace quillon::tool {

// parent, process_parameters, points_used, k_per_min, k_standard_error, r_squared, flags,
// half_life_min, half_life_low_min, half_life_high_min, clint_ul_min_mg,
// scaled_clearance_ml_min_kg (null without a fit), points (sample, time_min, amount,
// percent_remaining, used_in_fit) and formation (name, shift, amount_at_time,
// time_of_maximum_min, maximum_percent_of_parent).
nlohmann::json StabilityJson(const CMetabolicStabilityInfo& info);

} // namespace quillon::tool
