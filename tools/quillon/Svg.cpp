#include "Svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quillon::tool {

namespace {

// Figure size and the plot area's margins, in pixels.
constexpr double kWidth = 960, kHeight = 540;
constexpr double kLeft = 90, kRight = 30, kTop = 60, kBottom = 70;
// Approximate size of a label's characters at the label font size.
constexpr double kCharWidth = 6.6, kLabelHeight = 13, kLabelGap = 6;
constexpr int kLabelRaises = 3;

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", value);
    return text;
}

// A tick's text with as few decimals as the tick step needs.
std::string TickText(double value, double step) {
    const int decimals = step >= 1 ? 0 : static_cast<int>(std::ceil(-std::log10(step) - 1e-9));
    char text[32];
    if (std::fabs(value) >= 1e6 && step >= 1)
        std::snprintf(text, sizeof text, "%.3g", value);
    else
        std::snprintf(text, sizeof text, "%.*f", decimals,
                      std::fabs(value) < step / 2 ? 0.0 : value);
    return text;
}

} // namespace

std::string XmlEscape(const std::string& text) {
    std::string out;
    for (char c : text) {
        switch (c) {
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
            // Control characters are not allowed in XML 1.0.
            if (static_cast<unsigned char>(c) >= 0x20 || c == '\t')
                out += c;
        }
    }
    return out;
}

SvgChart::SvgChart(std::string title, std::string xLabel, std::string yLabel)
    : m_title(std::move(title)), m_xLabel(std::move(xLabel)), m_yLabel(std::move(yLabel)) {}

void SvgChart::SetRanges(double xLow, double xHigh, double yLow, double yHigh) {
    m_xLow = xLow;
    m_xHigh = xHigh > xLow ? xHigh : xLow + 1;
    m_yLow = yLow;
    m_yHigh = yHigh > yLow ? yHigh : yLow + 1;
}

double SvgChart::X(double x) const {
    return kLeft + (x - m_xLow) / (m_xHigh - m_xLow) * (kWidth - kLeft - kRight);
}

double SvgChart::Y(double y) const {
    const double clamped = std::clamp(y, m_yLow, m_yHigh);
    return kHeight - kBottom - (clamped - m_yLow) / (m_yHigh - m_yLow) * (kHeight - kTop - kBottom);
}

void SvgChart::AddLine(const std::vector<double>& x, const std::vector<double>& y,
                       const std::string& colour) {
    m_body += "<polyline fill=\"none\" stroke=\"" + colour +
              "\" stroke-width=\"1.2\" stroke-linejoin=\"round\" points=\"";
    for (size_t i = 0; i < x.size() && i < y.size(); ++i) {
        if (x[i] < m_xLow || x[i] > m_xHigh)
            continue;
        m_body += Number(X(x[i])) + "," + Number(Y(y[i])) + " ";
    }
    m_body += "\"/>\n";
}

void SvgChart::AddStick(double x, double y, const std::string& colour) {
    m_body += "<line x1=\"" + Number(X(x)) + "\" y1=\"" + Number(Y(m_yLow)) + "\" x2=\"" +
              Number(X(x)) + "\" y2=\"" + Number(Y(y)) + "\" stroke=\"" + colour +
              "\" stroke-width=\"1.5\"/>\n";
}

void SvgChart::AddMarker(double x, double y, const std::string& colour) {
    const double px = X(x), py = Y(y) - 3;
    m_body += "<path class=\"peak\" d=\"M" + Number(px) + "," + Number(py) +
              " l-4,-7 h8 z\" fill=\"" + colour + "\"/>\n";
}

bool SvgChart::AddLabel(double x, double y, const std::string& text) {
    const double width = kCharWidth * static_cast<double>(text.size()) + kLabelGap;
    const double centre = std::clamp(X(x), kLeft + width / 2, kWidth - kRight - width / 2);
    // Over the point, or raised a line or two when an earlier label is in the way.
    for (int raise = 0; raise < kLabelRaises; ++raise) {
        const double bottom = std::max(Y(y) - 12 - raise * kLabelHeight, kTop + kLabelHeight);
        const Box box{centre - width / 2, bottom - kLabelHeight, centre + width / 2, bottom};
        const bool overlaps =
            std::any_of(m_labels.begin(), m_labels.end(), [&box](const Box& other) {
                return box.left < other.right && other.left < box.right && box.top < other.bottom &&
                       other.top < box.bottom;
            });
        if (overlaps)
            continue;
        m_labels.push_back(box);
        m_body += "<text class=\"label\" x=\"" + Number(centre) + "\" y=\"" + Number(bottom - 2) +
                  "\" text-anchor=\"middle\">" + XmlEscape(text) + "</text>\n";
        return true;
    }
    return false;
}

void SvgChart::AddLegend(const std::string& text, const std::string& colour) {
    const double y = kTop + 14 + 16 * m_legendLines++;
    const double x = kWidth - kRight - 200;
    m_legend += "<line x1=\"" + Number(x) + "\" y1=\"" + Number(y - 4) + "\" x2=\"" +
                Number(x + 20) + "\" y2=\"" + Number(y - 4) + "\" stroke=\"" + colour +
                "\" stroke-width=\"2\"/>\n<text class=\"legend\" x=\"" + Number(x + 26) +
                "\" y=\"" + Number(y) + "\">" + XmlEscape(text) + "</text>\n";
}

std::vector<double> SvgChart::Ticks(double low, double high, int count) {
    std::vector<double> ticks;
    if (!(high > low) || count < 1)
        return ticks;
    const double rough = (high - low) / count;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    double step = power;
    for (double factor : {1.0, 2.0, 5.0, 10.0})
        if (factor * power >= rough) {
            step = factor * power;
            break;
        }
    for (double tick = std::ceil(low / step - 1e-9) * step; tick <= high + step * 1e-9;
         tick += step)
        ticks.push_back(tick);
    return ticks;
}

std::string SvgChart::Render() const {
    const double plotBottom = kHeight - kBottom, plotRight = kWidth - kRight;
    std::string svg = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                      Number(kWidth) + "\" height=\"" + Number(kHeight) + "\" viewBox=\"0 0 " +
                      Number(kWidth) + " " + Number(kHeight) +
                      "\" font-family=\"Helvetica, Arial, sans-serif\">\n"
                      "<style>text{fill:#222} .tick{font-size:12px} .axis{font-size:14px} "
                      ".title{font-size:17px;font-weight:bold} .label{font-size:11px;fill:#333} "
                      ".legend{font-size:12px}</style>\n"
                      "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    svg += "<text class=\"title\" x=\"" + Number(kLeft) + "\" y=\"32\">" + XmlEscape(m_title) +
           "</text>\n";

    // Grid lines and ticks.
    svg += "<g class=\"axes\" stroke=\"#222\">\n";
    const std::vector<double> xTicks = Ticks(m_xLow, m_xHigh, 10);
    const std::vector<double> yTicks = Ticks(m_yLow, m_yHigh, 6);
    const double xStep = xTicks.size() > 1 ? xTicks[1] - xTicks[0] : 1;
    const double yStep = yTicks.size() > 1 ? yTicks[1] - yTicks[0] : 1;
    // Large intensities are shown as multiples of a power of ten named in the axis title.
    const int exponent = m_yHigh >= 1e4 ? static_cast<int>(std::floor(std::log10(m_yHigh))) : 0;
    const double yUnit = std::pow(10.0, exponent);
    std::string tickTexts;
    for (double tick : xTicks) {
        svg += "<line x1=\"" + Number(X(tick)) + "\" y1=\"" + Number(plotBottom) + "\" x2=\"" +
               Number(X(tick)) + "\" y2=\"" + Number(plotBottom + 6) + "\"/>\n";
        tickTexts += "<text class=\"tick\" x=\"" + Number(X(tick)) + "\" y=\"" +
                     Number(plotBottom + 21) + "\" text-anchor=\"middle\">" +
                     TickText(tick, xStep) + "</text>\n";
    }
    for (double tick : yTicks) {
        svg += "<line x1=\"" + Number(kLeft - 6) + "\" y1=\"" + Number(Y(tick)) + "\" x2=\"" +
               Number(kLeft) + "\" y2=\"" + Number(Y(tick)) + "\"/>\n";
        svg += "<line x1=\"" + Number(kLeft) + "\" y1=\"" + Number(Y(tick)) + "\" x2=\"" +
               Number(plotRight) + "\" y2=\"" + Number(Y(tick)) +
               "\" stroke=\"#e4e4e4\" stroke-width=\"0.8\"/>\n";
        tickTexts += "<text class=\"tick\" x=\"" + Number(kLeft - 10) + "\" y=\"" +
                     Number(Y(tick) + 4) + "\" text-anchor=\"end\">" +
                     TickText(tick / yUnit, yStep / yUnit) + "</text>\n";
    }
    svg += "<line x1=\"" + Number(kLeft) + "\" y1=\"" + Number(plotBottom) + "\" x2=\"" +
           Number(plotRight) + "\" y2=\"" + Number(plotBottom) + "\"/>\n";
    svg += "<line x1=\"" + Number(kLeft) + "\" y1=\"" + Number(kTop) + "\" x2=\"" + Number(kLeft) +
           "\" y2=\"" + Number(plotBottom) + "\"/>\n</g>\n";
    svg += tickTexts;
    svg += "<text class=\"axis\" x=\"" + Number((kLeft + plotRight) / 2) + "\" y=\"" +
           Number(kHeight - 20) + "\" text-anchor=\"middle\">" + XmlEscape(m_xLabel) + "</text>\n";
    svg += "<text class=\"axis\" transform=\"translate(24," + Number((kTop + plotBottom) / 2) +
           ") rotate(-90)\" text-anchor=\"middle\">" + XmlEscape(m_yLabel) +
           (exponent != 0 ? " (\u00d710<tspan baseline-shift=\"super\" font-size=\"10px\">" +
                                std::to_string(exponent) + "</tspan>)"
                          : std::string()) +
           "</text>\n";

    svg += "<g class=\"data\">\n" + m_body + "</g>\n";
    svg += m_legend;
    svg += "</svg>\n";
    return svg;
}

} // namespace quillon::tool
