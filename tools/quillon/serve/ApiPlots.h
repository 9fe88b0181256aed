#pragma once

// The plot data under /api/v1/samples/N/: traces with their labelled peaks, combined traces,
// spectra and the peak list. Points travel as two arrays, x and y, thinned to the plot's width
// (Decimate.h) unless "full=1" asks for all of them.

#include "Query.h"

#include <quillon/quillon.h>

#include <nlohmann/json.hpp>

#include <span>
#include <string_view>

namespace quillon::tool::serve {

// Widths a plot may ask for ("width=W"); "full=1" asks for every point instead.
constexpr long long kPlotPixels = 1000;
constexpr long long kWidestPlotPixels = 16384;

// The spectrum of the peak, looked for in the function with that number (any function when 0,
// the first acquired one winning); null when there is none. functionNumber receives its function.
const CSpectrumData* SpectrumOfPeak(CSampleData& sample, int peakId, int function,
                                    int& functionNumber);

// rest: "traces", "2" | "combined", "all" | "spectra", "17" (?function=F) | "peaks". Throws
// ApiError 404 for anything else or a trace or spectrum the sample lacks.
nlohmann::json PlotAnswer(CSampleData& sample, std::span<const std::string_view> rest,
                          const Query& query);

} // namespace quillon::tool::serve
