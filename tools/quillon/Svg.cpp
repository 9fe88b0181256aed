#include "Svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace quillon::tool {

namespace {

// Ten colours that stay apart on screen and in print; series beyond them repeat the cycle.
const char* const kColours[] = {"#1f5fa8", "#c0392b", "#2e8b57", "#8e44ad", "#d35400",
                                "#555555", "#1a9bb0", "#b08a00", "#d6408f", "#7a4b2a"};
const char* Colour(size_t series) {
    return kColours[series % std::size(kColours)];
}
constexpr double kLabelFont = 11;
constexpr double kTickFont = 12;
constexpr double kAxisFont = 13;

struct Box {
    double left, top, right, bottom;
    bool Overlaps(const Box& other) const {
        return left < other.right && other.left < right && top < other.bottom && other.top < bottom;
    }
    bool Inside(const Box& other) const {
        return left >= other.left && right <= other.right && top >= other.top &&
               bottom <= other.bottom;
    }
};

struct Segment {
    double x1, y1, x2, y2;
};

struct LegendEntry {
    enum Kind { Line, Band, Point, Note };
    std::string text;
    Kind kind;
    size_t colour;
    double Width() const;
};

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
            if (static_cast<unsigned char>(ch) >= 0x20)
                out += ch;
        }
    }
    return out;
}

// The width a text takes at a font size: generous, so that wide sans-serif faces fit too.
double TextWidth(const std::string& text, double fontSize) {
    const auto characters = std::count_if(text.begin(), text.end(), [](char ch) {
        return (static_cast<unsigned char>(ch) & 0xC0) != 0x80;
    });
    return 0.66 * fontSize * static_cast<double>(characters) + 2;
}

double LegendEntry::Width() const {
    return TextWidth(text, kLabelFont) + (kind == Note ? 12 : 34);
}

std::string Number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f", value);
    return text;
}

// Whether the segment crosses the box (Liang-Barsky clipping).
bool Crosses(const Segment& s, const Box& box) {
    double t0 = 0, t1 = 1;
    const double dx = s.x2 - s.x1, dy = s.y2 - s.y1;
    const double p[] = {-dx, dx, -dy, dy};
    const double q[] = {s.x1 - box.left, box.right - s.x1, s.y1 - box.top, box.bottom - s.y1};
    for (int i = 0; i < 4; ++i) {
        if (p[i] == 0) {
            if (q[i] < 0)
                return false;
            continue;
        }
        const double t = q[i] / p[i];
        if (p[i] < 0)
            t0 = std::max(t0, t);
        else
            t1 = std::min(t1, t);
        if (t0 > t1)
            return false;
    }
    return true;
}

// Whether two segments cross or touch.
bool SegmentsCross(const Segment& a, const Segment& b) {
    auto side = [](double x1, double y1, double x2, double y2, double x, double y) {
        const double cross = (x2 - x1) * (y - y1) - (y2 - y1) * (x - x1);
        return (cross > 0) - (cross < 0);
    };
    return side(a.x1, a.y1, a.x2, a.y2, b.x1, b.y1) * side(a.x1, a.y1, a.x2, a.y2, b.x2, b.y2) <=
               0 &&
           side(b.x1, b.y1, b.x2, b.y2, a.x1, a.y1) * side(b.x1, b.y1, b.x2, b.y2, a.x2, a.y2) <= 0;
}

// An axis: its range from one round tick to another, the step, and one number format for all
// its tick labels (the same decimals, values in units of 10^exponent when they are large).
// Data 3.2-27.9 min over 700 pixels gives 0-30 in steps of 5 with no decimals.
struct Axis {
    double min = 0, max = 1, step = 1;
    int exponent = 0;
    int decimals = 0;

    // Ticks at least 70 pixels apart, at a step of 1, 2 or 5 times a power of ten, from a tick at
    // or below low to one at or above high: 3.2-27.9 over 700 pixels gives 0-30 in steps of 5.
    static Axis Of(double low, double high, double pixels, bool wholeNumbers, bool fromZero) {
        Axis axis;
        if (fromZero)
            low = std::min(low, 0.0);
        if (!(high > low))
            high = low + 1;
        const double raw = (high - low) / std::max(2.0, std::floor(pixels / 70));
        const double power = std::pow(10.0, std::floor(std::log10(raw)));
        axis.step = 10 * power;
        for (double factor : {1.0, 2.0, 5.0})
            if (raw <= factor * power * (1 + 1e-9)) {
                axis.step = factor * power;
                break;
            }
        if (wholeNumbers)
            axis.step = std::max(1.0, std::round(axis.step));
        axis.min = std::floor(low / axis.step + 1e-9) * axis.step;
        axis.max = std::ceil(high / axis.step - 1e-9) * axis.step;
        const double largest = std::max(std::fabs(axis.min), std::fabs(axis.max));
        if (largest >= 1e4)
            axis.exponent = 3 * static_cast<int>(std::floor(std::log10(largest) / 3));
        const double scaled = axis.step / std::pow(10.0, axis.exponent);
        axis.decimals = std::max(0, static_cast<int>(-std::floor(std::log10(scaled) + 1e-9)));
        return axis;
    }
    std::string Text(double value) const {
        char text[32];
        const double scaled = value / std::pow(10.0, exponent);
        std::snprintf(text, sizeof text, "%.*f", decimals, std::fabs(scaled) < 1e-12 ? 0 : scaled);
        return text;
    }
    // "Intensity" becomes "Intensity (×10⁶)" when the ticks are in millions.
    std::string Title(const std::string& label) const {
        if (exponent == 0)
            return label;
        const char* const superscripts[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
        std::string power;
        for (char digit : std::to_string(exponent))
            power += digit == '-' ? std::string("⁻") : superscripts[digit - '0'];
        return label + " (×10" + power + ")";
    }
    std::vector<double> Ticks() const {
        std::vector<double> ticks;
        const double last = std::floor(max / step + 1e-6);
        for (double i = std::ceil(min / step - 1e-6); i <= last; ++i)
            ticks.push_back(i == 0 ? 0 : i * step);
        return ticks;
    }
};

// The data range of a chart: {xLow, xHigh, yLow, yHigh}.
std::array<double, 4> DataRange(const Chart& chart) {
    std::array<double, 4> range = {1e300, -1e300, 1e300, -1e300};
    auto extend = [&](double x, double y) {
        if (!std::isfinite(x) || !std::isfinite(y))
            return;
        range[0] = std::min(range[0], x);
        range[1] = std::max(range[1], x);
        range[2] = std::min(range[2], y);
        range[3] = std::max(range[3], y);
    };
    for (const ChartLine& line : chart.lines)
        for (const auto& [x, y] : line.points)
            extend(x, y);
    for (const ChartBand& band : chart.bands)
        for (const auto& [x, low, high] : band.points) {
            extend(x, low);
            extend(x, high);
        }
    for (const auto& [x, y] : chart.sticks)
        extend(x, y);
    for (const auto& [x, y] : chart.points)
        extend(x, y);
    if (range[0] > range[1])
        range = {0, 1, 0, 1};
    return range;
}

// Draws one chart into the rectangle at (left, top) of the given size.
class PanelWriter {
public:
    PanelWriter(std::ostringstream& svg, const Chart& chart, Box area)
        : m_svg(svg), m_chart(chart), m_area(area) {}
    void Write();

private:
    void Layout();
    void WriteAxes();
    void WriteData();
    std::vector<LegendEntry> LegendEntries(double room) const;
    // At most four tenths of the panel's width, beside the plot.
    double LegendRoomBeside() const { return (m_area.right - m_area.left) * 0.4; }
    bool WriteLegend();
    void DrawLegend(const std::vector<LegendEntry>& entries, const Box& box);
    void WriteLabels();
    double X(double x) const {
        return m_plot.left + (x - m_x.min) / (m_x.max - m_x.min) * (m_plot.right - m_plot.left);
    }
    double Y(double y) const {
        return m_plot.bottom - (y - m_y.min) / (m_y.max - m_y.min) * (m_plot.bottom - m_plot.top);
    }
    // Text whose box is recorded, so that labels placed later keep clear of it.
    void Text(double x, double y, const std::string& text, double size, const char* anchor,
              const char* extra = "");

    std::ostringstream& m_svg; // the figure's
    std::ostringstream m_out;  // the panel's, added to the figure when it is complete
    const Chart& m_chart;
    Box m_area;
    Box m_plot{};
    Axis m_x, m_y;
    double m_titleSize = 15;
    std::vector<std::string> m_subtitle; // its lines
    double m_subtitleSize = 12;
    std::vector<Box> m_taken;        // text, points, marks and the legend
    std::vector<Segment> m_segments; // lines, sticks and leaders
    // Where the legend goes: inside the plot in a corner, inside above the data (whose range is
    // stretched upwards to make room), or right of the plot (which is narrowed to make room).
    enum class LegendPlace { Inside, AboveData, Beside };
    LegendPlace m_legendPlace = LegendPlace::Inside;
};

void PanelWriter::Text(double x, double y, const std::string& text, double size, const char* anchor,
                       const char* extra) {
    m_out << "<text x=\"" << Number(x) << "\" y=\"" << Number(y) << "\" font-size=\"" << size
          << "\" text-anchor=\"" << anchor << "\"" << extra << ">" << Escape(text) << "</text>\n";
}

void PanelWriter::Layout() {
    const double width = m_area.right - m_area.left;
    m_titleSize = std::min(15.0, width * 0.96 / std::max(1.0, TextWidth(m_chart.title, 1)));
    // Room above the plot for the title and for the top tick label, which reaches above it.
    double top = m_area.top + (m_chart.title.empty() ? 14 : m_titleSize + 20);
    // The subtitle on one line, or on two when one would need a font smaller than 10.
    m_subtitle.clear();
    if (!m_chart.subtitle.empty()) {
        const std::string& text = m_chart.subtitle;
        m_subtitle = {text};
        size_t cut = text.find("; ");
        if (cut == std::string::npos)
            cut = text.rfind(' ', text.size() / 2);
        if (TextWidth(text, 10) > width * 0.96 && cut != std::string::npos) {
            const bool semicolon = text.compare(cut, 2, "; ") == 0;
            m_subtitle = {text.substr(0, cut + (semicolon ? 1 : 0)),
                          text.substr(cut + (semicolon ? 2 : 1))};
        }
        double longest = 1;
        for (const std::string& line : m_subtitle)
            longest = std::max(longest, TextWidth(line, 1));
        m_subtitleSize = std::min(12.0, width * 0.96 / longest);
        top += 19 + (m_subtitleSize + 5) * static_cast<double>(m_subtitle.size() - 1);
    }
    const auto [xLow, xHigh, yLow, yHigh] = DataRange(m_chart);
    m_plot = Box{m_area.left, top, m_area.right - 24, m_area.bottom - 52};
    const double plotHeight = m_plot.bottom - m_plot.top;
    const double ySpan = yHigh - yLow > 0 ? yHigh - yLow : 1;
    const double yBottom = m_chart.yFromZero ? std::min(yLow, 0.0) : yLow - ySpan * 0.04;
    double yTop = yHigh + ySpan * (m_chart.labels.empty() ? 0.04 : 0.14);
    if (m_legendPlace == LegendPlace::AboveData) {
        const double legendHeight = 16.0 * static_cast<double>(LegendEntries(1e9).size()) + 20;
        yTop = yBottom + (yTop - yBottom) / (1 - std::min(0.6, legendHeight / plotHeight));
    }
    m_y = Axis::Of(yBottom, yTop, plotHeight * 70 / 45, m_chart.wholeNumbersY, m_chart.yFromZero);
    double widest = 0;
    for (double tick : m_y.Ticks())
        widest = std::max(widest, TextWidth(m_y.Text(tick), kTickFont));
    const double left = m_area.left + widest + 34;
    m_plot.left = left;
    if (m_legendPlace == LegendPlace::Beside) {
        double widest = 0;
        for (const LegendEntry& entry : LegendEntries(LegendRoomBeside()))
            widest = std::max(widest, entry.Width());
        m_plot.right = m_area.right - 16 - widest;
    }
    // The time or mass axis starts at a round tick and ends where the data does, a little past
    // it when sticks or points stand at the end, so that none touches the axis; never below zero.
    m_x = Axis::Of(xLow, xHigh, m_plot.right - left, false, false);
    const double xMargin =
        m_chart.sticks.empty() && m_chart.points.empty() ? 0 : (xHigh - xLow) * 0.03;
    if (xHigh > xLow)
        m_x.max = xHigh + xMargin;
    m_x.min = std::min(m_x.min, xLow >= 0 ? std::max(0.0, xLow - xMargin) : xLow - xMargin);
}

void PanelWriter::WriteAxes() {
    const double middle = (m_area.left + m_area.right) / 2;
    if (!m_chart.title.empty())
        Text(middle, m_area.top + m_titleSize + 4, m_chart.title, m_titleSize, "middle",
             " font-weight=\"bold\"");
    for (size_t i = 0; i < m_subtitle.size(); ++i)
        Text(middle,
             m_plot.top - 14 -
                 (m_subtitleSize + 5) * static_cast<double>(m_subtitle.size() - 1 - i),
             m_subtitle[i], m_subtitleSize, "middle", " fill=\"#444\"");
    m_out << "<g stroke=\"#222\">\n<line x1=\"" << m_plot.left << "\" y1=\"" << m_plot.bottom
          << "\" x2=\"" << m_plot.right << "\" y2=\"" << m_plot.bottom << "\"/>\n<line x1=\""
          << m_plot.left << "\" y1=\"" << m_plot.top << "\" x2=\"" << m_plot.left << "\" y2=\""
          << m_plot.bottom << "\"/>\n</g>\n<g fill=\"#222\">\n";
    for (double x : m_x.Ticks()) {
        m_out << "<line x1=\"" << Number(X(x)) << "\" y1=\"" << m_plot.bottom << "\" x2=\""
              << Number(X(x)) << "\" y2=\"" << m_plot.bottom + 5 << "\" stroke=\"#222\"/>";
        Text(X(x), m_plot.bottom + 18, m_x.Text(x), kTickFont, "middle");
    }
    for (double y : m_y.Ticks()) {
        m_out << "<line x1=\"" << m_plot.left - 5 << "\" y1=\"" << Number(Y(y)) << "\" x2=\""
              << m_plot.right << "\" y2=\"" << Number(Y(y)) << "\" stroke=\""
              << (y == m_y.min ? "#222" : "#e6e6e6") << "\"/>";
        Text(m_plot.left - 8, Y(y) + 4, m_y.Text(y), kTickFont, "end");
    }
    Text((m_plot.left + m_plot.right) / 2, m_area.bottom - 12, m_x.Title(m_chart.xLabel), kAxisFont,
         "middle");
    const double yMiddle = (m_plot.top + m_plot.bottom) / 2;
    const std::string yTitle = m_y.Title(m_chart.yLabel);
    const double ySize =
        std::min(kAxisFont, (m_plot.bottom - m_plot.top) / std::max(1.0, TextWidth(yTitle, 1)));
    m_out << "<text transform=\"translate(" << Number(m_area.left + 14) << "," << Number(yMiddle)
          << ") rotate(-90)\" text-anchor=\"middle\" font-size=\"" << Number(ySize) << "\">"
          << Escape(yTitle) << "</text>\n</g>\n";
}

void PanelWriter::WriteData() {
    for (size_t b = 0; b < m_chart.bands.size(); ++b) {
        const auto& points = m_chart.bands[b].points;
        m_out << "<path fill=\"" << Colour(b) << "\" fill-opacity=\"0.15\" d=\"";
        for (size_t i = 0; i < points.size(); ++i)
            m_out << (i ? 'L' : 'M') << Number(X(points[i][0])) << ',' << Number(Y(points[i][2]));
        for (size_t i = points.size(); i-- > 0;)
            m_out << 'L' << Number(X(points[i][0])) << ',' << Number(Y(points[i][1]));
        m_out << "Z\"/>\n";
    }
    for (size_t l = 0; l < m_chart.lines.size(); ++l) {
        const ChartLine& line = m_chart.lines[l];
        m_out << "<polyline fill=\"none\" stroke=\"" << Colour(l) << "\" stroke-width=\"1.5\""
              << (line.dashed ? " stroke-dasharray=\"6 4\"" : "") << " points=\"";
        double lastX = 0, lastY = 0;
        bool first = true;
        for (const auto& [x, y] : line.points) {
            if (!std::isfinite(x) || !std::isfinite(y))
                continue;
            m_out << Number(X(x)) << ',' << Number(Y(y)) << ' ';
            if (!first)
                m_segments.push_back({lastX, lastY, X(x), Y(y)});
            lastX = X(x), lastY = Y(y), first = false;
        }
        m_out << "\"/>\n";
        for (const auto& [x, y] : line.markers ? line.points : ChartPoints{}) {
            m_out << "<circle cx=\"" << Number(X(x)) << "\" cy=\"" << Number(Y(y))
                  << "\" r=\"3\" fill=\"" << Colour(l) << "\"/>\n";
            m_taken.push_back({X(x) - 3, Y(y) - 3, X(x) + 3, Y(y) + 3});
        }
    }
    for (const auto& [x, y] : m_chart.sticks) {
        m_out << "<line x1=\"" << Number(X(x)) << "\" y1=\"" << Number(Y(0)) << "\" x2=\""
              << Number(X(x)) << "\" y2=\"" << Number(Y(y))
              << "\" stroke=\"#1f5fa8\" stroke-width=\"1.5\"/>\n";
        m_segments.push_back({X(x), Y(0), X(x), Y(y)});
    }
    for (const auto& [x, y] : m_chart.points) {
        m_out << "<circle cx=\"" << Number(X(x)) << "\" cy=\"" << Number(Y(y))
              << "\" r=\"4\" fill=\"#c0392b\"/>\n";
        m_taken.push_back({X(x) - 4, Y(y) - 4, X(x) + 4, Y(y) + 4});
    }
    for (const auto& [x, y] : m_chart.marks) {
        m_out << "<path d=\"M" << Number(X(x)) << ',' << Number(Y(y) - 3)
              << " l-4,-7 h8 z\" fill=\"#c0392b\"/>\n";
        m_taken.push_back({X(x) - 4, Y(y) - 10, X(x) + 4, Y(y) - 3});
    }
}

// Cuts a legend text short, with an ellipsis, until it fits the room; a series name's bracketed
// ending is kept, since it tells similar names apart: "Demethylation + Hydroxylation (+2)" becomes
// "Demethylation + Hyd… (+2)".
void ShortenToFit(LegendEntry& entry, double room) {
    const size_t open = entry.text.rfind(" (");
    const size_t end = entry.kind != LegendEntry::Note && !entry.text.empty() &&
                               entry.text.back() == ')' && open != std::string::npos && open > 4
                           ? open
                           : entry.text.size();
    std::string name = entry.text.substr(0, end);
    const std::string ending = entry.text.substr(end);
    while (name.size() > 4 && entry.Width() > room) {
        name.erase(name.size() - (name.ends_with("…") ? 4 : 1));
        while (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0x80)
            name.pop_back();
        if (!name.empty())
            name.pop_back();
        name += "…";
        entry.text = name + ending;
    }
}

// The legend's entries, cut to the number of lines that fit beside the plot (the rest counted
// in a last line) and each text cut short to the room given.
std::vector<LegendEntry> PanelWriter::LegendEntries(double room) const {
    std::vector<LegendEntry> entries;
    for (size_t l = 0; l < m_chart.lines.size(); ++l)
        if (!m_chart.lines[l].name.empty())
            entries.push_back({m_chart.lines[l].name, LegendEntry::Line, l});
    for (size_t b = 0; b < m_chart.bands.size(); ++b)
        if (!m_chart.bands[b].name.empty())
            entries.push_back({m_chart.bands[b].name, LegendEntry::Band, b});
    if (!m_chart.pointsName.empty())
        entries.push_back({m_chart.pointsName, LegendEntry::Point, 1});
    for (const std::string& note : m_chart.legendNotes)
        entries.push_back({note, LegendEntry::Note, 0});
    const size_t fit = static_cast<size_t>(std::max(1.0, (m_plot.bottom - m_plot.top - 20) / 16));
    if (entries.size() > fit) {
        const size_t left = entries.size() - fit + 1;
        entries.resize(fit - 1);
        entries.push_back({"and " + std::to_string(left) + " more", LegendEntry::Note, 0});
    }
    for (LegendEntry& entry : entries)
        ShortenToFit(entry, room);
    return entries;
}

// The legend beside the plot, or in the corner of the plot that nothing crosses; false, with
// nothing drawn, when every corner is crossed.
bool PanelWriter::WriteLegend() {
    const bool beside = m_legendPlace == LegendPlace::Beside;
    const double room = beside ? LegendRoomBeside() : m_plot.right - m_plot.left - 12;
    const std::vector<LegendEntry> entries = LegendEntries(room);
    if (entries.empty())
        return true;
    double width = 0;
    for (const LegendEntry& entry : entries)
        width = std::max(width, entry.Width());
    const double height = 16.0 * static_cast<double>(entries.size()) + 8;
    if (beside) {
        DrawLegend(entries, Box{m_plot.right + 10, m_plot.top, m_plot.right + 10 + width,
                                m_plot.top + height});
        return true;
    }
    Box best{};
    size_t fewest = SIZE_MAX;
    for (const bool right : {true, false})
        for (const bool top : {true, false}) {
            const double left = right ? m_plot.right - width - 6 : m_plot.left + 6;
            const double upper = top ? m_plot.top + 6 : m_plot.bottom - height - 6;
            const Box box{left, upper, left + width, upper + height};
            const size_t crossed =
                std::count_if(m_segments.begin(), m_segments.end(),
                              [&](const Segment& s) { return Crosses(s, box); }) +
                std::count_if(m_taken.begin(), m_taken.end(),
                              [&](const Box& other) { return other.Overlaps(box); });
            if (crossed < fewest)
                fewest = crossed, best = box;
        }
    if (fewest > 0)
        return false;
    DrawLegend(entries, best);
    return true;
}

void PanelWriter::DrawLegend(const std::vector<LegendEntry>& entries, const Box& box) {
    m_taken.push_back(box);
    m_out << "<rect x=\"" << Number(box.left) << "\" y=\"" << Number(box.top) << "\" width=\""
          << Number(box.right - box.left) << "\" height=\"" << Number(box.bottom - box.top)
          << "\" fill=\"white\" fill-opacity=\"0.9\" stroke=\"#bbb\"/>\n";
    for (size_t i = 0; i < entries.size(); ++i) {
        const LegendEntry& entry = entries[i];
        const double y = box.top + 16.0 * static_cast<double>(i) + 16;
        const char* colour = Colour(entry.colour);
        const double x = box.left + 6;
        if (entry.kind == LegendEntry::Line)
            m_out << "<line x1=\"" << x << "\" y1=\"" << y - 4 << "\" x2=\"" << x + 20 << "\" y2=\""
                  << y - 4 << "\" stroke=\"" << colour << "\" stroke-width=\"2\"/>";
        else if (entry.kind == LegendEntry::Band)
            m_out << "<rect x=\"" << x << "\" y=\"" << y - 9 << "\" width=\"20\" height=\"10\" "
                  << "fill=\"" << colour << "\" fill-opacity=\"0.15\"/>";
        else if (entry.kind == LegendEntry::Point)
            m_out << "<circle cx=\"" << x + 10 << "\" cy=\"" << y - 4
                  << "\" r=\"4\" fill=\"#c0392b\"/>";
        Text(entry.kind == LegendEntry::Note ? x : x + 26, y, entry.text, kLabelFont, "start");
    }
}

// Each label above its point when that is free, else nearby with a leader line, else left out.
void PanelWriter::WriteLabels() {
    m_out << "<g fill=\"#333\">\n";
    std::vector<Box> labels;
    for (const ChartLabel& label : m_chart.labels) {
        const double ax = X(label.x), ay = Y(label.y);
        if (!(ax >= m_plot.left && ax <= m_plot.right && ay >= m_plot.top && ay <= m_plot.bottom))
            continue;
        const double width = TextWidth(label.text, kLabelFont) + 4, height = 15;
        struct Place {
            double dx, dy, cost;
        };
        std::vector<Place> places;
        for (double dy : {3.0, 14.0, 28.0, 44.0, 62.0, 82.0, 104.0, 130.0, 160.0})
            for (double k : {0.0, -0.6, 0.6, -1.2, 1.2, -1.8, 1.8, -2.5, 2.5}) {
                const double dx = k * (width + 6);
                places.push_back({dx, dy, std::fabs(dx) + dy * 1.5});
            }
        std::stable_sort(places.begin(), places.end(),
                         [](const Place& a, const Place& b) { return a.cost < b.cost; });
        for (const Place& place : places) {
            const Box box{ax + place.dx - width / 2, ay - place.dy - height,
                          ax + place.dx + width / 2, ay - place.dy};
            const bool leader = place.dx != 0 || place.dy > 20;
            const Segment line{ax, ay - 3, std::clamp(ax, box.left + 2, box.right - 2), box.bottom};
            auto free = [&](const Box& other) { return !other.Overlaps(box); };
            auto clear = [&](const Segment& s) { return !Crosses(s, box); };
            // A leader crosses no label and no line but those that meet at its point.
            const Box point{ax - 3, ay - 4, ax + 3, ay + 3};
            auto crossesLeader = [&](const Segment& s) {
                return !Crosses(s, point) &&
                       Crosses(s, Box{std::min(line.x1, line.x2), line.y2,
                                      std::max(line.x1, line.x2), line.y1}) &&
                       SegmentsCross(s, line);
            };
            if (!box.Inside(m_plot) || !std::all_of(m_taken.begin(), m_taken.end(), free) ||
                !std::all_of(m_segments.begin(), m_segments.end(), clear) ||
                (leader && (std::any_of(labels.begin(), labels.end(),
                                        [&](const Box& other) { return Crosses(line, other); }) ||
                            std::any_of(m_segments.begin(), m_segments.end(), crossesLeader))))
                continue;
            if (leader) {
                m_out << "<line x1=\"" << Number(line.x1) << "\" y1=\"" << Number(line.y1)
                      << "\" x2=\"" << Number(line.x2) << "\" y2=\"" << Number(line.y2)
                      << "\" stroke=\"#999\" stroke-width=\"0.8\"/>\n";
                m_segments.push_back(line);
            }
            Text((box.left + box.right) / 2, box.bottom - 4, label.text, kLabelFont, "middle");
            m_taken.push_back(box);
            labels.push_back(box);
            break;
        }
    }
    m_out << "</g>\n";
}

// The legend goes inside the plot where nothing crosses it; else beside the plot when that
// leaves the plot half the panel's width; else above the data; else beside the plot after all.
// Each try lays the panel out and draws it again.
void PanelWriter::Write() {
    const LegendPlace tries[] = {LegendPlace::Inside, LegendPlace::Beside, LegendPlace::AboveData,
                                 LegendPlace::Beside};
    for (size_t t = 0; t < std::size(tries); ++t) {
        m_legendPlace = tries[t];
        m_out.str("");
        m_taken.clear();
        m_segments.clear();
        Layout();
        if (t == 1 && m_plot.right - m_plot.left < (m_area.right - m_area.left) * 0.5)
            continue;
        WriteAxes();
        WriteData();
        if (WriteLegend() || t + 1 == std::size(tries))
            break;
    }
    WriteLabels();
    m_svg << m_out.str();
}

} // namespace

bool ParseFigureSize(const std::string& text, FigureSize& size) {
    int width = 0, height = 0, end = 0;
    if (std::sscanf(text.c_str(), "%5dx%5d%n", &width, &height, &end) != 2 ||
        end != static_cast<int>(text.size()) || width < 200 || width > 8000 || height < 150 ||
        height > 8000)
        return false;
    size = {width, height};
    return true;
}

std::string FigureSvg(const std::string& title, const std::vector<Chart>& panels, int columns,
                      FigureSize size, const std::vector<std::string>& notes) {
    const double width = size.width, height = size.height;
    std::ostringstream svg;
    svg << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << size.width << "\" height=\""
        << size.height << "\" viewBox=\"0 0 " << size.width << ' ' << size.height
        << "\" font-family=\"Helvetica, Arial, sans-serif\">\n"
        << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
    double top = 0;
    if (!title.empty()) {
        const double font = std::min(18.0, width * 0.96 / std::max(1.0, TextWidth(title, 1)));
        svg << "<text x=\"" << width / 2 << "\" y=\"" << Number(font + 8)
            << "\" text-anchor=\"middle\" font-size=\"" << Number(font)
            << "\" font-weight=\"bold\">" << Escape(title) << "</text>\n";
        top = font + 14;
    }
    const double bottom = height - 18.0 * static_cast<double>(notes.size());
    for (size_t i = 0; i < notes.size(); ++i) {
        const double font = std::min(12.0, width * 0.96 / std::max(1.0, TextWidth(notes[i], 1)));
        svg << "<text x=\"" << width / 2 << "\" y=\"" << Number(bottom + 18.0 * i + 13)
            << "\" text-anchor=\"middle\" font-size=\"" << Number(font) << "\">" << Escape(notes[i])
            << "</text>\n";
    }
    columns = std::max(1, std::min(columns, static_cast<int>(panels.size())));
    const int rows = static_cast<int>((panels.size() + columns - 1) / columns);
    const double cellWidth = width / columns, cellHeight = (bottom - top) / std::max(1, rows);
    for (size_t p = 0; p < panels.size(); ++p) {
        const double left = cellWidth * static_cast<double>(p % columns);
        const double upper = top + cellHeight * static_cast<double>(p / columns);
        PanelWriter(svg, panels[p], Box{left, upper, left + cellWidth, upper + cellHeight}).Write();
    }
    svg << "</svg>\n";
    return svg.str();
}

std::string ChartSvg(const Chart& chart, FigureSize size) {
    return FigureSvg("", {chart}, 1, size);
}

} // namespace quillon::tool
