#pragma once

#include <string>
#include <vector>

namespace quillon::tool {

// A chart drawn as a stand-alone SVG figure: a title, two axes with evenly spaced round ticks
// and their units, and what is plotted in data coordinates (lines, sticks, marked and labelled
// points). Labels that would overlap an earlier one are left out, so the larger features should
// be labelled first.
class SvgChart {
public:
    SvgChart(std::string title, std::string xLabel, std::string yLabel);

    // The data ranges shown; the y range starts at 0 unless a lower value is given.
    void SetRanges(double xLow, double xHigh, double yLow, double yHigh);

    void AddLine(const std::vector<double>& x, const std::vector<double>& y,
                 const std::string& colour);
    // A vertical line from the x axis up to (x, y).
    void AddStick(double x, double y, const std::string& colour);
    // A small triangle over (x, y).
    void AddMarker(double x, double y, const std::string& colour);
    // A text centred above (x, y); false (and nothing drawn) when it would overlap a label.
    bool AddLabel(double x, double y, const std::string& text);
    // A line of the legend in the top right corner.
    void AddLegend(const std::string& text, const std::string& colour);

    // The whole SVG document.
    std::string Render() const;

    // Round tick values covering low..high, about `count` of them (1, 2 or 5 times a power of 10
    // apart): 0..9.7 gives 0, 2, 4, 6, 8.
    static std::vector<double> Ticks(double low, double high, int count);

private:
    double X(double x) const;
    double Y(double y) const;

    struct Box {
        double left, top, right, bottom;
    };

    std::string m_title, m_xLabel, m_yLabel;
    double m_xLow = 0, m_xHigh = 1, m_yLow = 0, m_yHigh = 1;
    std::string m_body;
    std::string m_legend;
    int m_legendLines = 0;
    std::vector<Box> m_labels;
};

// Text made safe inside an SVG element or attribute.
std::string XmlEscape(const std::string& text);

} // namespace quillon::tool
