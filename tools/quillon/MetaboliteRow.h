#pragma once

// The metabolite table as the browser shows it: its rows and its result filters, shared by the
// metabolites subcommand and the web server.

#include "json/Record.h"

#include <quillon/quillon.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace quillon::tool {

// The browser's result filters, as the metabolites subcommand and the server take them; an empty
// one is off.
struct MetaboliteFilter {
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
// non-finite limit, a mass defect of 1 Da or more, a time range that is not low below high, both
// area limits, or areaUnexpectedOnly without one.
std::string FilterProblem(const MetaboliteFilter& filter, FilterSettingName name);

// The filter as the library's parameter record; the filter must have no FilterProblem.
CDivBroParams FilterParams(const MetaboliteFilter& filter);

// The metabolite's record followed by the browser's derived columns: trace_name (the trace
// column's text), area_percent (of its group), found_percent (of the sample's found area),
// is_ratio (area over the internal standard's, as the browser rounds it); null when absent.
void MetaboliteRow(RecordSink& rows, CSampleData& sample, int index);

} // namespace quillon::tool
