#pragma once

// Figures as SVG: a chart with axes, ticks, units and title, of lines (chromatograms), sticks
// (spectra) and points, with labels at given places.

#include <quillon/stability/MetabolicStabilityInfo.h>

#include <string>
#include <vector>

namespace quillon::tool {

struct ChartLabel {
    double x = 0.0;
    double y = 0.0;
    std::string text;
};

struct Chart {
    std::string title;
    std::string subtitle; // a smaller line under the title, e.g. what the marks mean
    std::string xLabel;   // with its unit: "Time (min)"
    std::string yLabel;
    std::vector<std::vector<std::pair<double, double>>> lines; // each drawn as a polyline
    std::vector<std::pair<double, double>> sticks;             // drawn from y = 0
    std::vector<std::pair<double, double>> points;             // drawn as circles
    // At a data point, above it; in order of importance: a label that would overlap one placed
    // before it is left out.
    std::vector<ChartLabel> labels;
    std::vector<std::pair<double, double>> marks; // peak marks: a small triangle
    bool wholeNumbersY = false;                   // counts: ticks only at whole numbers
};

// The chart as a standalone SVG document (960 x 540).
std::string ChartSvg(const Chart& chart);

// ln(% remaining) against time with the fitted line, for one stability series.
std::string StabilitySvg(const CMetabolicStabilityInfo& series);

} // namespace quillon::tool
