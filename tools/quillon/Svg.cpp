#include "Svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace quillon::tool {

namespace {

constexpr double kWidth = 960;
constexpr double kHeight = 540;
constexpr double kLeft = 90;
constexpr double kRight = 30;
constexpr double kTop = 50;
constexpr double kTopWithSubtitle = 68;
constexpr double kLabelCharWidth = 6.5; // about the width of a character at font size 11
constexpr double kLabelHeight = 12;
constexpr double kLabelGap = 8; // the least room between two labels side by side
constexpr double kBottom = 70;

std::string Escape(const std::string& text) {
    std::string out;
    for (char ch : text) {
        switch (ch) {
        case '&':
            out += "&amp;";
            break;
        case '<':
            out += "&lt;";
            break;
        case '>':
            out += "&gt;";
            break;
        case '"':
            out += "&quot;";
            break;
        default:
            if (static_cast<unsigned char>(ch) >= 0x20 || ch == '\t')
                out += ch;
        }
    }
    return out;
}

// Characters of a UTF-8 text (its bytes other than continuation bytes).
size_t TextLength(const std::string& text) {
    return static_cast<size_t>(std::count_if(text.begin(), text.end(), [](char ch) {
        return (static_cast<unsigned char>(ch) & 0xC0) != 0x80;
    }));
}

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

// A tick step of 1, 2 or 5 times a power of ten giving about six ticks over the span.
double TickStep(double span) {
    if (!(span > 0))
        return 1;
    const double raw = span / 6;
    const double power = std::pow(10.0, std::floor(std::log10(raw)));
    for (double factor : {1.0, 2.0, 5.0, 10.0})
        if (raw <= factor * power)
            return factor * power;
    return 10 * power;
}

std::string TickText(double value, double step) {
    char text[32];
    const int decimals = step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step)));
    if (std::fabs(value) >= 1e6)
        std::snprintf(text, sizeof text, "%.2g", value);
    else
        std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

} // namespace

std::string ChartSvg(const Chart& chart) {
    double xMin = 1e300, xMax = -1e300, yMin = 0, yMax = -1e300;
    auto extend = [&](double x, double y) {
        if (!std::isfinite(x) || !std::isfinite(y))
            return;
        xMin = std::min(xMin, x);
        xMax = std::max(xMax, x);
        yMin = std::min(yMin, y);
        yMax = std::max(yMax, y);
    };
    for (const auto& line : chart.lines)
        for (const auto& [x, y] : line)
            extend(x, y);
    for (const auto& [x, y] : chart.sticks)
        extend(x, y);
    for (const auto& [x, y] : chart.points)
        extend(x, y);
    if (xMin > xMax) {
        xMin = 0;
        xMax = 1;
    }
    if (yMax <= yMin)
        yMax = yMin + 1;
    if (xMax == xMin)
        xMax = xMin + 1;
    if (!chart.sticks.empty()) {
        // Sticks at the ends of the range stand clear of the axes.
        const double margin = (xMax - xMin) * 0.03;
        xMin -= margin;
        xMax += margin;
    }
    yMax += (yMax - yMin) * 0.08; // room for labels
    const double top = chart.subtitle.empty() ? kTop : kTopWithSubtitle;
    const double plotWidth = kWidth - kLeft - kRight;
    const double plotHeight = kHeight - top - kBottom;
    auto px = [&](double x) { return kLeft + (x - xMin) / (xMax - xMin) * plotWidth; };
    auto py = [&](double y) { return top + plotHeight - (y - yMin) / (yMax - yMin) * plotHeight; };

    std::ostringstream svg;
    svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth << "\" height=\""
        << kHeight << "\" viewBox=\"0 0 " << kWidth << ' ' << kHeight
        << "\" font-family=\"Helvetica, Arial, sans-serif\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
        << "<text x=\"" << kWidth / 2 << "\" y=\"28\" text-anchor=\"middle\" font-size=\"18\" "
        << "font-weight=\"bold\">" << Escape(chart.title) << "</text>\n";
    if (!chart.subtitle.empty())
        svg << "<text x=\"" << kWidth / 2 << "\" y=\"48\" text-anchor=\"middle\" font-size=\"13\" "
            << "fill=\"#444\">" << Escape(chart.subtitle) << "</text>\n";
    // Axes, ticks and grid.
    svg << "<g stroke=\"#222\" stroke-width=\"1\">\n"
        << "<line x1=\"" << kLeft << "\" y1=\"" << top + plotHeight << "\" x2=\""
        << kLeft + plotWidth << "\" y2=\"" << top + plotHeight << "\"/>\n"
        << "<line x1=\"" << kLeft << "\" y1=\"" << top << "\" x2=\"" << kLeft << "\" y2=\""
        << top + plotHeight << "\"/>\n</g>\n";
    svg << "<g font-size=\"12\" fill=\"#222\">\n";
    const double xStep = TickStep(xMax - xMin);
    for (double x = std::ceil(xMin / xStep) * xStep; x <= xMax + 1e-9 * xStep; x += xStep) {
        svg << "<line x1=\"" << Number(px(x)) << "\" y1=\"" << top + plotHeight << "\" x2=\""
            << Number(px(x)) << "\" y2=\"" << top + plotHeight + 5 << "\" stroke=\"#222\"/>"
            << "<text x=\"" << Number(px(x)) << "\" y=\"" << top + plotHeight + 20
            << "\" text-anchor=\"middle\">" << TickText(x, xStep) << "</text>\n";
    }
    const double yStep =
        chart.wholeNumbersY ? std::max(1.0, TickStep(yMax - yMin)) : TickStep(yMax - yMin);
    for (double y = std::ceil(yMin / yStep) * yStep; y <= yMax + 1e-9 * yStep; y += yStep) {
        svg << "<line x1=\"" << kLeft - 5 << "\" y1=\"" << Number(py(y)) << "\" x2=\"" << kLeft
            << "\" y2=\"" << Number(py(y)) << "\" stroke=\"#222\"/>"
            << "<line x1=\"" << kLeft << "\" y1=\"" << Number(py(y)) << "\" x2=\""
            << kLeft + plotWidth << "\" y2=\"" << Number(py(y)) << "\" stroke=\"#e6e6e6\"/>"
            << "<text x=\"" << kLeft - 8 << "\" y=\"" << Number(py(y) + 4)
            << "\" text-anchor=\"end\">" << TickText(y, yStep) << "</text>\n";
    }
    svg << "<text x=\"" << kLeft + plotWidth / 2 << "\" y=\"" << kHeight - 20
        << "\" text-anchor=\"middle\" font-size=\"14\">" << Escape(chart.xLabel) << "</text>\n"
        << "<text transform=\"translate(22," << top + plotHeight / 2
        << ") rotate(-90)\" text-anchor=\"middle\" font-size=\"14\">" << Escape(chart.yLabel)
        << "</text>\n</g>\n";
    // Data.
    const char* colours[] = {"#1f5fa8", "#c0392b", "#2e8b57", "#8e44ad", "#d35400", "#555"};
    for (size_t l = 0; l < chart.lines.size(); ++l) {
        svg << "<polyline fill=\"none\" stroke=\"" << colours[l % 6]
            << "\" stroke-width=\"1.5\" points=\"";
        for (const auto& [x, y] : chart.lines[l])
            if (std::isfinite(x) && std::isfinite(y))
                svg << Number(px(x)) << ',' << Number(py(y)) << ' ';
        svg << "\"/>\n";
    }
    for (const auto& [x, y] : chart.sticks)
        svg << "<line x1=\"" << Number(px(x)) << "\" y1=\"" << Number(py(0)) << "\" x2=\""
            << Number(px(x)) << "\" y2=\"" << Number(py(y)) << "\" stroke=\"#1f5fa8\" "
            << "stroke-width=\"1.5\"/>\n";
    for (const auto& [x, y] : chart.points)
        svg << "<circle cx=\"" << Number(px(x)) << "\" cy=\"" << Number(py(y))
            << "\" r=\"4\" fill=\"#c0392b\"/>\n";
    for (const auto& [x, y] : chart.marks)
        svg << "<path d=\"M" << Number(px(x)) << ',' << Number(py(y) - 4) << " l-4,-7 h8 z\" "
            << "fill=\"#c0392b\"/>\n";
    svg << "<g font-size=\"11\" fill=\"#333\" text-anchor=\"middle\">\n";
    struct Box {
        double left, right, bottom;
    };
    std::vector<Box> placed;
    for (const ChartLabel& label : chart.labels) {
        const double halfWidth =
            (kLabelCharWidth * static_cast<double>(TextLength(label.text)) + kLabelGap) / 2;
        const Box box{px(label.x) - halfWidth, px(label.x) + halfWidth, py(label.y) - 14};
        const bool overlaps = std::any_of(placed.begin(), placed.end(), [&](const Box& other) {
            return box.left < other.right && other.left < box.right &&
                   std::fabs(box.bottom - other.bottom) < kLabelHeight;
        });
        if (overlaps)
            continue;
        placed.push_back(box);
        svg << "<text x=\"" << Number(px(label.x)) << "\" y=\"" << Number(box.bottom) << "\">"
            << Escape(label.text) << "</text>\n";
    }
    svg << "</g>\n</svg>\n";
    return svg.str();
}

std::string StabilitySvg(const CMetabolicStabilityInfo& series) {
    Chart chart;
    chart.title = "Metabolic stability of " + series.parent.str();
    chart.xLabel = "Incubation time (min)";
    chart.yLabel = "ln(% parent remaining)";
    for (const auto& point : series.points)
        if (point.hasAmount && point.percentRemaining > 0)
            chart.points.push_back({point.time, std::log(point.percentRemaining)});
    if (series.HasHalfLife() && !series.times.empty()) {
        // The fitted line, through ln(100) at the start, falling by k per minute.
        const double start = series.times.front();
        const double end = series.times.back();
        const double offset = std::log(100.0);
        chart.lines.push_back({{start, offset}, {end, offset - series.k * (end - start)}});
        char text[96];
        std::snprintf(text, sizeof text, "t1/2 = %.1f min, k = %.4f /min", series.halfLife,
                      series.k);
        chart.labels.push_back({start + (end - start) * 0.5, offset, text});
    }
    return ChartSvg(chart);
}

} // namespace quillon::tool
