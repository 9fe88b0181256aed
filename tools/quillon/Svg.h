#pragma once

// Figures as SVG: charts with axes, ticks, units and titles, of lines (chromatograms, fits),
// sticks (spectra), points and confidence bands, with labels placed where they overlap nothing.
// A figure holds one chart or several panels in a grid.

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace quillon::tool {

using ChartPoints = std::vector<std::pair<double, double>>;

// A label at a data point, placed above it or moved aside with a leader line; labels are placed
// in the order given (most important first) and one that finds no free place is left out.
struct ChartLabel {
    double x = 0.0;
    double y = 0.0;
    std::string text;
};

struct ChartLine {
    std::string name; // in the legend when not empty
    ChartPoints points;
    bool markers = false; // a dot at each point
    bool dashed = false;
};

// A shaded band between low and high over x: {x, low, high} in x order.
struct ChartBand {
    std::string name;
    std::vector<std::array<double, 3>> points;
};

struct Chart {
    std::string title;
    std::string subtitle; // a smaller line under the title, e.g. what the marks mean
    std::string xLabel;   // with its unit: "Time (min)"
    std::string yLabel;
    std::vector<ChartLine> lines;
    std::vector<ChartBand> bands;
    ChartPoints sticks; // drawn from y = 0
    ChartPoints points; // drawn as circles
    std::string pointsName;
    std::vector<ChartLabel> labels;
    ChartPoints marks;                    // peak marks: a small triangle above the point
    std::vector<std::string> legendNotes; // further lines of the legend ("R² = 0.991")
    bool wholeNumbersY = false;           // counts: ticks only at whole numbers
    bool yFromZero = true;                // false: the y range fits the data
};

struct FigureSize {
    int width = 960;
    int height = 540;
};

// "800x450" into a size of 200-8000 by 150-8000 pixels; false for anything else.
bool ParseFigureSize(const std::string& text, FigureSize& size);

// The panels in a grid of the given number of columns (rows as needed) under a figure title
// (none when empty), with notes as lines under the grid (a summary row).
std::string FigureSvg(const std::string& title, const std::vector<Chart>& panels, int columns,
                      FigureSize size, const std::vector<std::string>& notes = {});

// One chart as a figure of its own.
std::string ChartSvg(const Chart& chart, FigureSize size = {});

} // namespace quillon::tool
