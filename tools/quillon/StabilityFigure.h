#pragma once

// The metabolic stability figure and the fits by group behind it.

#include "Svg.h"

#include <quillon/quillon.h>

#include <string>
#include <vector>

namespace quillon::tool {

// The series to show: all of them, or the one chosen by its number (from 1) or its parent's name;
// with a header field to group by, each series' samples split by that field's text and each
// group fitted on its own (its name then reads "Chlorpromazine, TaskCode HLM-D01"; formation is
// left to the whole series). Throws ToolError (usage) for an unknown series or field.
std::vector<CMetabolicStabilityInfo> ChosenSeries(CSamples& samples,
                                                  const CArray<CMetabolicStabilityInfo>& series,
                                                  const std::string& chosen,
                                                  const std::string& groupBy);

// The mean and the sample standard deviation of the half-lives of the fits that have one, and
// how many those are: half-lives 50, 60, 70 min give 60 and 10 over 3.
struct HalfLifeSpread {
    int groups = 0;
    double mean = 0.0;
    double standardDeviation = 0.0; // 0 for fewer than two groups
};
HalfLifeSpread SpreadOf(const std::vector<CMetabolicStabilityInfo>& fits);
// "t½ over 3 groups: mean 60.0 min, SD 10.0 min"; one group has no SD. one group has no SD.
std::string SpreadText(const HalfLifeSpread& spread);

// Each series as a panel of ln(% parent remaining) against time with the regression's line, its
// 95% band and R² and t½ with its interval in the legend, beside a panel of the formation of its
// metabolites (when it has any). With grouped fits, a summary row of the half-lives underneath.
std::string StabilityFigureSvg(const std::vector<CMetabolicStabilityInfo>& fits, bool grouped,
                               FigureSize size);

} // namespace quillon::tool
