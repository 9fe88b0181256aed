#pragma once

// The browser's result filters as a caller sets them (the metabolite table of every front end:
// the command line, the web page, scripts), checked in one place and turned into the parameter
// record CMetaboliteData::ApplyDataFilters reads.

#include <quillon/metabolites/DivBroParams.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillon {

// The filters; an empty one is off.
struct CResultFilter {
    // How far the predicted mass may lie below the next whole mass and above a whole mass (Da):
    // {0.05, 0.25} keeps 301.20 and 301.96, not 301.50.
    std::optional<std::pair<double, double>> massDefect;
    std::optional<double> area;         // least peak area
    std::optional<double> relativeArea; // least peak area in % of its group
    bool areaUnexpectedOnly = false;    // the area filter passes expected metabolites
    std::optional<double> massError;    // largest mass error (mDa, either sign)
    bool hideIsotopes = false;
    bool withElemental = false;
    std::optional<std::pair<double, double>> time; // low, high retention time (min)
    bool hideHighEnergy = false;
};

// The name a caller gives a filter setting, from its key ("mass_defect", "area",
// "relative_area", "area_unexpected_only", "mass_error", "time"): "--relative-area" on the
// command line, "'relative_area'" in the API.
using FilterSettingName = std::string (*)(std::string_view key);

// Why the filter cannot be applied ("" when it can), naming the setting by name(): a negative or
// non-finite limit, a mass defect of 1 Da or more, a time range whose low end is above its high,
// both area limits, or areaUnexpectedOnly without one.
std::string ResultFilterProblem(const CResultFilter& filter, FilterSettingName name);

// The filter as the library's parameter record; the filter must have no ResultFilterProblem.
CDivBroParams ResultFilterParams(const CResultFilter& filter);

} // namespace quillon
