// quillon plot: a chromatogram with its peaks labelled by metabolite, or a spectrum with its
// largest masses labelled, as an SVG figure.
#include "Command.h"
#include "Output.h"
#include "Report.h"
#include "Svg.h"

#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/acquisition/PeakList.h>
#include <quillon/acquisition/SpectrumData.h>

#include <algorithm>
#include <cstdio>
#include <set>

namespace quillon::tool {
namespace {

constexpr const char kTraceColour[] = "#1f4e9c";
constexpr const char kPeakColour[] = "#c0392b";
constexpr const char kStickColour[] = "#1f4e9c";
// How many of a spectrum's masses get a label, largest first.
constexpr int kLabelledMasses = 10;

struct PlotOptions {
    std::string report;
    std::string output;
    int sample = 0;
    std::optional<int> trace;
    std::optional<int> spectrum;
    bool percent = false;
};

std::string SampleTitle(const CSampleData& sample) {
    CString id;
    sample.GetID(id);
    return "Sample " + std::to_string(sample.GetNumber()) +
           (id.IsEmpty() ? "" : " (" + id.str() + ")");
}

std::string Fixed(double value, int decimals) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

// The names of the metabolites at a peak: those of its identifier on this trace, else those of its
// identifier on any trace, else those of its cluster (a total ion current peak has identifiers of
// its own but shares its cluster with the mass chromatograms' peaks); "" when none.
std::string PeakNames(CSampleData& sample, const CChromatoData& trace,
                      const CChromatogramPeak& peak) {
    std::vector<std::string> names;
    for (int pass = 0; pass < 3 && names.empty(); ++pass) {
        for (int i = 0; i < sample.GetMetaboliteCount(); ++i) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(i);
            if (metabolite.IsHiEnergy() || metabolite.GetPeakNum() < 1 ||
                std::string_view(metabolite.GetMetName()) == "MSe fragments")
                continue;
            const bool samePeak = metabolite.GetPeakNum() == peak.GetPeakID();
            const bool matches =
                pass == 0   ? samePeak && metabolite.GetTrace(&sample) == &trace
                : pass == 1 ? samePeak
                            : peak.GetPeakClusterID() > 0 &&
                                  metabolite.GetPeakClusterNum() == peak.GetPeakClusterID();
            if (!matches)
                continue;
            const std::string name = *metabolite.GetUserLabel() != '\0' ? metabolite.GetUserLabel()
                                                                        : metabolite.GetMetName();
            if (!name.empty() && std::find(names.begin(), names.end(), name) == names.end())
                names.push_back(name);
        }
    }
    std::string joined;
    for (const std::string& name : names)
        joined += (joined.empty() ? "" : " / ") + name;
    return joined;
}

std::string PlotTrace(CSampleData& sample, CChromatoData& trace, bool percent) {
    std::vector<double> times, intensities;
    CPeakData point;
    double highest = 0;
    for (int p = 0; trace.GetPeak(p, point); ++p) {
        times.push_back(point.GetMass());
        intensities.push_back(point.GetIntensity());
        highest = std::max(highest, point.GetIntensity());
    }
    if (times.empty())
        throw ToolError{"trace " + std::to_string(trace.GetTraceNumber()) + " of sample " +
                        std::to_string(sample.GetNumber()) + " has no points"};
    const double scale = percent && highest > 0 ? 100.0 / highest : 1.0;
    for (double& intensity : intensities)
        intensity *= scale;

    CString units;
    trace.GetCustomUnits(units);
    const std::string yLabel =
        percent ? "Relative intensity (%)"
                : "Intensity" + (units.IsEmpty() ? std::string() : " (" + units.str() + ")");
    SvgChart chart(SampleTitle(sample) + ": " + trace.GetDescription().str(), "Time (min)", yLabel);
    // Head room above the highest point for the labels.
    chart.SetRanges(times.front(), times.back(), 0, highest * scale * 1.15);
    chart.AddLine(times, intensities, kTraceColour);

    // Each peak's apex: the highest point within its extent (or its nearest point).
    struct Apex {
        double time, intensity;
        std::string label;
    };
    std::vector<Apex> apexes;
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        const CPeakList& extent = *peak.GetChromatPeakData();
        Apex apex{peak.GetTime(), 0, {}};
        double nearest = 1e300;
        for (size_t i = 0; i < times.size(); ++i) {
            const bool inside =
                times[i] >= extent.GetStartTime() && times[i] <= extent.GetEndTime();
            if (inside && intensities[i] > apex.intensity)
                apex.intensity = intensities[i];
            if (std::abs(times[i] - peak.GetTime()) < nearest) {
                nearest = std::abs(times[i] - peak.GetTime());
                if (!(extent.GetEndTime() > extent.GetStartTime()))
                    apex.intensity = intensities[i];
            }
        }
        const std::string names = PeakNames(sample, trace, peak);
        apex.label = names.empty() ? Fixed(peak.GetTime(), 2) : names;
        apexes.push_back(std::move(apex));
    }
    std::sort(apexes.begin(), apexes.end(),
              [](const Apex& a, const Apex& b) { return a.intensity > b.intensity; });
    for (const Apex& apex : apexes) {
        chart.AddMarker(apex.time, apex.intensity, kPeakColour);
        chart.AddLabel(apex.time, apex.intensity, apex.label);
    }
    return chart.Render();
}

std::string PlotSpectrum(CSampleData& sample, int peakID) {
    CSpectrumData* spectrum = sample.GetCorrespondingSpectrum(peakID);
    if (spectrum == nullptr)
        throw ToolError{"sample " + std::to_string(sample.GetNumber()) +
                            " has no spectrum for peak " + std::to_string(peakID),
                        kExitUsage};
    std::vector<std::pair<double, double>> sticks;
    double highest = 0, lowMass = 1e300, highMass = 0;
    CPeakData point;
    for (int p = 0; spectrum->GetPeak(p, point); ++p) {
        sticks.emplace_back(point.GetMass(), point.GetIntensity());
        highest = std::max(highest, point.GetIntensity());
        lowMass = std::min(lowMass, point.GetMass());
        highMass = std::max(highMass, point.GetMass());
    }
    if (sticks.empty())
        throw ToolError{"the spectrum of peak " + std::to_string(peakID) + " has no masses"};

    std::string title = SampleTitle(sample) + ": spectrum of peak " + std::to_string(peakID) +
                        " at " + Fixed(spectrum->GetTime(), 2) + " min";
    if (const CMetaboliteData* metabolite = sample.GetMetaboliteWithPeakID(peakID))
        title += " (" + std::string(metabolite->GetMetName()) + ")";
    SvgChart chart(title, "m/z", "Relative intensity (%)");
    const double margin = std::max(10.0, (highMass - lowMass) * 0.05);
    chart.SetRanges(std::max(0.0, lowMass - margin), highMass + margin, 0, 115);
    const double scale = highest > 0 ? 100.0 / highest : 1.0;
    for (const auto& [mass, intensity] : sticks)
        chart.AddStick(mass, intensity * scale, kStickColour);
    std::sort(sticks.begin(), sticks.end(),
              [](const auto& a, const auto& b) { return a.second > b.second; });
    for (size_t i = 0; i < sticks.size() && i < static_cast<size_t>(kLabelledMasses); ++i)
        chart.AddLabel(sticks[i].first, sticks[i].second * scale, Fixed(sticks[i].first, 4));
    return chart.Render();
}

int Run(const PlotOptions& options) {
    if (options.trace.has_value() == options.spectrum.has_value())
        throw ToolError{"plot draws one thing: give --trace or --spectrum", kExitUsage};
    LoadedReport report = LoadReport(options.report);
    CSampleData& sample = SampleByNumber(report, options.sample);
    std::string svg;
    if (options.trace) {
        CChromatoData* trace = sample.GetTrace(*options.trace);
        if (trace == nullptr)
            throw ToolError{"sample " + std::to_string(options.sample) + " has no trace " +
                                std::to_string(*options.trace),
                            kExitUsage};
        svg = PlotTrace(sample, *trace, options.percent);
    } else {
        svg = PlotSpectrum(sample, *options.spectrum);
    }
    WriteOutput(options.output, svg);
    return kExitSuccess;
}

const CommandRegistration registration{
    {"plot", "Draws a trace or a spectrum of a sample as an SVG figure",
     [](CLI::App& app, const GlobalOptions&) -> std::function<int()> {
         auto options = std::make_shared<PlotOptions>();
         auto& o = *options;
         app.footer("Examples:\n  quillon plot examples/Chlorpromazine_HLM_batch.txt --sample 4 "
                    "--trace 1 -o trace.svg\n  quillon plot "
                    "examples/Chlorpromazine_HLM_batch.txt --sample 4 --spectrum 3 -o "
                    "spectrum.svg");
         app.add_option("REPORT", o.report, "The report file")->required();
         app.add_option("-s,--sample", o.sample, "The sample's number")->required();
         auto* trace = app.add_option("--trace", o.trace, "The trace number to draw");
         app.add_option("--spectrum", o.spectrum, "The peak identifier whose spectrum to draw")
             ->excludes(trace);
         app.add_flag("--percent", o.percent, "Trace intensities as % of the highest point");
         app.add_option("-o,--output", o.output, "The SVG file (standard output when not given)");
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
