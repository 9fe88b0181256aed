#pragma once

// The metabolite table as the browser shows it: its rows and its result filters, shared by the
// metabolites subcommand and the web server.

#include "json/Record.h"

#include <quillon/quillon.h>

#include <optional>
#include <utility>

namespace quillon::tool {

// The browser's result filters; an empty one is off.
struct MetaboliteFilter {
    std::optional<std::pair<double, double>> massDefect; // lower, upper (Da)
    std::optional<double> area;                          // least peak area
    std::optional<double> massError;                     // largest mass error (ppm)
    std::optional<std::pair<double, double>> time;       // low, high retention time (min)
    bool hideHighEnergy = false;
};

// The filter as the library's parameter record (the area filter applies to expected
// metabolites too).
CDivBroParams FilterParams(const MetaboliteFilter& filter);

// The metabolite's record followed by the browser's derived columns: trace_name (the trace
// column's text), area_percent (of its group), found_percent (of the sample's found area),
// is_ratio (area over the internal standard's, as the browser rounds it); null when absent.
void MetaboliteRow(RecordSink& rows, CSampleData& sample, int index);

} // namespace quillon::tool
