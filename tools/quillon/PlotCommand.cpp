// plot: a trace, a combined trace or a spectrum of one sample as an SVG figure.
#include "Commands.h"
#include "Svg.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <set>

namespace quillon::tool {

namespace {

std::vector<std::pair<double, double>> PointsOf(const CChromatoData& trace) {
    std::vector<std::pair<double, double>> points;
    CPeakData point;
    for (int i = 0; i < trace.GetNumPeaks(); ++i)
        if (trace.GetPeak(i, point))
            points.emplace_back(point.GetMass(), point.GetIntensity());
    return points;
}

// The trace with its listed peaks marked at their apex and labelled with their metabolites.
Chart TraceChart(CSampleData& sample, const CChromatoData& trace, const std::string& title) {
    Chart chart;
    chart.title = title;
    chart.xLabel = "Retention time (min)";
    chart.yLabel = "Intensity";
    chart.lines.push_back(PointsOf(trace));
    const auto& points = chart.lines.back();
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        const auto nearest = std::min_element(points.begin(), points.end(), [&](auto a, auto b) {
            return std::abs(a.first - peak.GetTime()) < std::abs(b.first - peak.GetTime());
        });
        if (nearest == points.end())
            continue;
        chart.marks.push_back(*nearest);
        const CMetaboliteData* metabolite = sample.GetMetaboliteWithPeakID(peak.GetPeakID());
        const std::string name = metabolite != nullptr ? metabolite->GetMetName() : "";
        if (!name.empty())
            chart.labels.push_back({nearest->first, nearest->second, name});
    }
    return chart;
}

// How a neutral loss is named on a figure: "−H2O" from the label "Water  (H2O)", the nominal
// mass ("−45") for a loss without a formula.
std::string LossText(const NeutralLossEntry& loss) {
    const std::string kMinus = "\u2212";
    const std::string label = loss.Label.str();
    const size_t open = label.rfind('(');
    const size_t close = label.rfind(')');
    if (open != std::string::npos && close != std::string::npos && close > open + 1)
        return kMinus + label.substr(open + 1, close - open - 1);
    return kMinus + std::to_string(loss.NominalMass);
}

// The fragment analysis as a figure: a stick at each fragment's nominal m/z, as tall as the
// number of high-energy spectra that hold it. A fragment at its metabolite's m/z minus a listed
// neutral loss is marked and labelled with the loss ("274 −C2H7N"); the most common others with
// their mass.
Chart FragmentChart(const CFragmentAnalysis& analysis, const std::string& where) {
    std::map<int, std::set<std::string>> losses; // nominal fragment m/z: the losses that form it
    const auto& entries = analysis.GetNeutralLossEntries();
    for (const NeutralLossOccurrence& occurrence : analysis.GetNeutralLossOccurrences())
        if (occurrence.EntryIndex >= 0 && occurrence.EntryIndex < entries.GetSize())
            losses[static_cast<int>(std::lround(occurrence.FragmentMz))].insert(
                LossText(entries[occurrence.EntryIndex]));

    Chart chart;
    chart.title = where + ": fragments of the high-energy spectra";
    chart.xLabel = "m/z (nominal fragment mass)";
    chart.yLabel = "High-energy spectra with the fragment";
    chart.wholeNumbersY = true;
    CUIntArray masses;
    analysis.GetFragmentMasses(masses);
    std::vector<ChartLabel> lossLabels;
    std::vector<ChartLabel> massLabels;
    for (const UINT mass : masses) {
        CUIntArray parents, functions, peaks;
        analysis.GetMetabolitesContainingFragment(static_cast<int>(mass), parents, functions, peaks,
                                                  true, true);
        const double x = mass;
        const double spectra = functions.GetSize();
        chart.sticks.emplace_back(x, spectra);
        const auto formed = losses.find(static_cast<int>(mass));
        if (formed == losses.end()) {
            massLabels.push_back({x, spectra, std::to_string(mass)});
            continue;
        }
        std::string text = std::to_string(mass);
        for (const std::string& loss : formed->second)
            text += " " + loss;
        chart.marks.emplace_back(x, spectra);
        lossLabels.push_back({x, spectra, text});
    }
    std::stable_sort(massLabels.begin(), massLabels.end(),
                     [](const ChartLabel& a, const ChartLabel& b) { return a.y > b.y; });
    chart.labels = lossLabels;
    chart.labels.insert(chart.labels.end(), massLabels.begin(), massLabels.end());
    chart.subtitle = std::to_string(analysis.GetParents().GetSize()) +
                     " metabolites with a high-energy partner (parent compound m/z " +
                     Fixed(analysis.GetParentMass(), 4) +
                     "); marked: a metabolite's m/z minus a listed neutral loss";
    return chart;
}

} // namespace

void RegisterPlot(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        int sample = 0;
        int trace = 0;
        std::string combined;
        int spectrum = -1;
        bool fragments = false;
        std::string settings;
        std::string output;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "plot",
        "Draws a trace, a combined trace, a spectrum or the fragment analysis of one sample as an "
        "SVG figure\n"
        "  example: quillon plot batch.txt --sample 4 --trace 2 -o trace.svg\n"
        "  example: quillon plot batch.txt --sample 4 --fragments -o fragments.svg");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--sample", settings->sample, "The sample's number")->required();
    auto* trace = command->add_option("--trace", settings->trace, "A trace number");
    auto* combined =
        command
            ->add_option("--combined", settings->combined,
                         "The combined trace of the found metabolites: expected, all or "
                         "unexpected (all found, unexpected ones included)")
            ->check(CLI::IsMember({"expected", "all", "unexpected"}));
    auto* spectrum = command->add_option("--spectrum", settings->spectrum,
                                         "The spectrum of this peak identifier");
    auto* fragments =
        command->add_flag("--fragments", settings->fragments,
                          "The fragment analysis: fragment masses by the number of high-energy "
                          "spectra holding them, neutral losses marked");
    command
        ->add_option("--settings", settings->settings,
                     "With --fragments: the settings file with the neutral-loss list (default: "
                     "Tarnwick.ini beside the report)")
        ->needs(fragments);
    trace->excludes(combined)->excludes(spectrum)->excludes(fragments);
    combined->excludes(spectrum)->excludes(fragments);
    spectrum->excludes(fragments);
    command->add_option("-o,--output", settings->output, "The SVG file to write")->required();
    command->callback([settings, &options] {
        CSamples samples;
        LoadReport(settings->path, samples, options);
        CSampleData& sample = SampleByNumber(samples, settings->sample, settings->path);
        const std::string where = "sample " + std::to_string(settings->sample);
        Chart chart;
        if (settings->fragments) {
            const CFragmentAnalysis& analysis =
                RunFragmentAnalysis(sample, settings->settings, settings->path, options);
            chart = FragmentChart(analysis, where);
            if (chart.sticks.empty())
                throw ToolError(where + " has no fragments to plot");
        } else if (!settings->combined.empty()) {
            const int type = settings->combined == "expected" ? 0
                             : settings->combined == "all"    ? 1
                                                              : 2;
            sample.SetCombinedTraceType(type, -100);
            sample.CombinedTraceNeedsData(true, false, false);
            sample.SetupCombinedTrace(-100, false, 0, 0, false, 0, 0, 0, false, false, 0, false,
                                      false, false, 0, 0, true, true, false);
            const CChromatoData* trace = sample.GetTrace(-100);
            if (trace == nullptr || trace->GetNumPeaks() == 0)
                throw ToolError(where + " has no found metabolites to combine");
            chart = TraceChart(sample, *trace,
                               where + ": combined trace of the " + settings->combined +
                                   " found metabolites (parent left out)");
        } else if (settings->spectrum >= 0) {
            CSpectrumData* found = sample.GetCorrespondingSpectrum(settings->spectrum);
            if (found == nullptr)
                throw ToolError(where + " has no spectrum of peak " +
                                std::to_string(settings->spectrum));
            chart.title = where + ": spectrum of peak " + std::to_string(settings->spectrum);
            chart.xLabel = "m/z";
            chart.yLabel = "Intensity";
            CPeakData point;
            for (int i = 0; i < found->GetNumPeaks(); ++i)
                if (found->GetPeak(i, point))
                    chart.sticks.emplace_back(point.GetMass(), point.GetIntensity());
            auto strongest = chart.sticks;
            std::sort(strongest.begin(), strongest.end(),
                      [](auto a, auto b) { return a.second > b.second; });
            // The strongest masses, labelled unless a stronger label stands too close (8% of the
            // mass range), so that labels of an isotope cluster do not overlap.
            const double span =
                strongest.empty()
                    ? 1.0
                    : std::max_element(chart.sticks.begin(), chart.sticks.end())->first -
                          std::min_element(chart.sticks.begin(), chart.sticks.end())->first;
            for (const auto& stick : strongest) {
                const double mass = stick.first;
                if (chart.labels.size() == 6)
                    break;
                const bool crowded = std::any_of(chart.labels.begin(), chart.labels.end(),
                                                 [&](const ChartLabel& label) {
                                                     return std::abs(label.x - mass) < 0.08 * span;
                                                 });
                if (!crowded)
                    chart.labels.push_back({mass, stick.second, Fixed(mass, 4)});
            }
        } else {
            const CChromatoData* found = sample.GetTrace(settings->trace);
            if (found == nullptr)
                throw ToolError(where + " has no trace " + std::to_string(settings->trace));
            chart = TraceChart(sample, *found,
                               where + ", trace " + std::to_string(settings->trace) + ": " +
                                   found->GetDescription().str());
        }
        WriteFileAtomically(settings->output, ChartSvg(chart));
        Note(options, "wrote " + settings->output);
    });
}

} // namespace quillon::tool
