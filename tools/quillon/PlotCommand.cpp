// plot: a trace, a combined trace or a spectrum of one sample as an SVG figure.
#include "Commands.h"
#include "FigureOptions.h"
#include "Svg.h"
#include "json/ModelRecords.h"

#include <algorithm>
#include <cmath>
#include <iostream>
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

// The trace with its listed peaks marked at their apex and labelled with their metabolites, the
// labels of larger peaks (by area) placed first.
Chart TraceChart(CSampleData& sample, const CChromatoData& trace, const std::string& title) {
    Chart chart;
    chart.title = title;
    chart.xLabel = "Retention time (min)";
    chart.yLabel = "Intensity";
    chart.lines.push_back({"", PointsOf(trace), false, false});
    const auto& points = chart.lines.back().points;
    std::vector<std::pair<double, ChartLabel>> labels; // area, label
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        const auto nearest = std::min_element(points.begin(), points.end(), [&](auto a, auto b) {
            return std::abs(a.first - peak.GetTime()) < std::abs(b.first - peak.GetTime());
        });
        if (nearest == points.end() ||
            std::find(chart.marks.begin(), chart.marks.end(), *nearest) != chart.marks.end())
            continue; // a peak listed twice is marked and labelled once
        chart.marks.push_back(*nearest);
        const CMetaboliteData* metabolite = sample.GetMetaboliteWithPeakID(peak.GetPeakID());
        const std::string name = metabolite != nullptr ? metabolite->GetMetName() : "";
        if (!name.empty())
            labels.push_back({metabolite->GetPeakArea(), {nearest->first, nearest->second, name}});
    }
    std::stable_sort(labels.begin(), labels.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    for (auto& [area, label] : labels)
        chart.labels.push_back(std::move(label));
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

// The spectrum of a peak in the function with that number (0: the first function that has one),
// as sticks. Labelled, in this order: the peaks of the peak's metabolite's isotope cluster (its
// m/z and up to 4.2 above, at 1% or more) and then the most intense others at 5% of the base peak
// or more; noise below stays unlabelled. Points that are all at most 100 are percentages.
Chart SpectrumChart(CSampleData& sample, int peakID, int functionNumber, const std::string& where) {
    CSpectrumData* spectrum = nullptr;
    CFunctionData* function = nullptr;
    for (int f = 0; f < sample.GetFunctionCount() && spectrum == nullptr; ++f) {
        CFunctionData* candidate = sample.GetFunction(f);
        if (functionNumber > 0 && candidate->GetNumber() != functionNumber)
            continue;
        const int index = candidate->GetSpectrumWithPeakID(peakID, false);
        if (index >= 0)
            spectrum = candidate->GetSpectrum(index, false), function = candidate;
    }
    if (spectrum == nullptr)
        throw ToolError(where + " has no spectrum of peak " + std::to_string(peakID) +
                        (functionNumber > 0 ? " in function " + std::to_string(functionNumber)
                                            : std::string()));
    const CMetaboliteData* metabolite = sample.GetMetaboliteWithPeakID(peakID);
    CString description;
    function->GetDescription(description);
    Chart chart;
    chart.title = where + ": spectrum of peak " + std::to_string(peakID) +
                  (metabolite != nullptr ? std::string(", ") + metabolite->GetMetName() : "") +
                  ", function " + std::to_string(function->GetNumber()) +
                  (description.IsEmpty() ? "" : ": " + description.str());
    chart.xLabel = "m/z";
    CPeakData point;
    double base = 0;
    for (int i = 0; i < spectrum->GetNumPeaks(); ++i)
        if (spectrum->GetPeak(i, point)) {
            chart.sticks.emplace_back(point.GetMass(), point.GetIntensity());
            base = std::max(base, static_cast<double>(point.GetIntensity()));
        }
    if (chart.sticks.empty())
        throw ToolError(where + ": the spectrum of peak " + std::to_string(peakID) +
                        " holds no points");
    chart.yLabel = IntensitiesArePercent(*spectrum) ? "Relative intensity (%)" : "Intensity";
    const double mono = metabolite != nullptr ? metabolite->GetMzFound() : 0.0;
    auto isotope = [&](const std::pair<double, double>& stick) {
        return mono > 0 && stick.first > mono - 0.05 && stick.first < mono + 4.2 &&
               stick.second >= 0.01 * base;
    };
    auto byIntensity = chart.sticks;
    std::stable_sort(byIntensity.begin(), byIntensity.end(),
                     [](const auto& a, const auto& b) { return a.second > b.second; });
    for (const bool cluster : {true, false})
        for (const auto& stick : byIntensity)
            if (isotope(stick) == cluster && (cluster || stick.second >= 0.05 * base) &&
                chart.labels.size() < 12)
                chart.labels.push_back({stick.first, stick.second, Fixed(stick.first, 4)});
    return chart;
}

// The combined trace of the chosen metabolites, the parent left out.
Chart CombinedChart(CSampleData& sample, const std::string& which, const std::string& where) {
    const auto type = which == "expected" ? CSampleData::COMBINED_EXPECTED_FOUND
                      : which == "all"    ? CSampleData::COMBINED_ALL_FOUND_AND_UNEXPECTED
                                          : CSampleData::COMBINED_UNEXPECTED_FOUND;
    const std::string what = which == "expected" ? "the expected metabolites found"
                             : which == "all"    ? "all found metabolites"
                                                 : "the unexpected metabolites found";
    sample.SetCombinedTraceType(type, -100);
    sample.CombinedTraceNeedsData(true, false, false);
    sample.SetupCombinedTrace(-100, CDivBroParams(), /*leaveOutParent=*/true, false);
    const CChromatoData* trace = sample.GetTrace(-100);
    if (trace == nullptr || trace->GetNumberOfListPeaks() == 0)
        throw ToolError(where + " has no " + what.substr(what.find(' ') + 1) + " to draw" +
                        (which == "unexpected" ? "" : " besides the parent"));
    return TraceChart(sample, *trace,
                      where + ": combined trace of " + what +
                          (which == "unexpected" ? "" : ", parent left out"));
}

struct PlotSettings {
    std::string path;
    int sample = 0;
    int trace = 0;
    std::string combined;
    int spectrum = -1;
    int function = 0;
    bool fragments = false;
    std::string settings;
    std::string output;
    FigureSize size;
};

// The chart that the settings ask for; exactly one kind is chosen (spectrum: a peak is given).
Chart ChosenChart(const PlotSettings& settings, bool spectrum, CSampleData& sample,
                  const GlobalOptions& options) {
    const std::string where = "sample " + std::to_string(settings.sample);
    if (settings.fragments) {
        const CFragmentAnalysis& analysis =
            RunFragmentAnalysis(sample, settings.settings, settings.path, options);
        Chart chart = FragmentChart(analysis, where);
        if (chart.sticks.empty())
            throw ToolError(where + " has no fragments to plot");
        return chart;
    }
    if (!settings.combined.empty())
        return CombinedChart(sample, settings.combined, where);
    if (spectrum)
        return SpectrumChart(sample, settings.spectrum, settings.function, where);
    const CChromatoData* found = sample.GetTrace(settings.trace);
    if (found == nullptr)
        throw ToolError(where + " has no trace " + std::to_string(settings.trace));
    if (found->GetNumPeaks() == 0)
        throw ToolError(where + ": trace " + std::to_string(settings.trace) +
                        " holds no points to draw");
    return TraceChart(sample, *found,
                      where + ", trace " + std::to_string(settings.trace) + ": " +
                          found->GetDescription().str());
}

} // namespace

void RegisterPlot(CLI::App& app, GlobalOptions& options) {
    auto settings = std::make_shared<PlotSettings>();
    CLI::App* command = app.add_subcommand(
        "plot",
        "Draws a trace, a combined trace, a spectrum or the fragment analysis of one sample as an "
        "SVG figure (one of --trace, --combined, --spectrum and --fragments)\n"
        "  example: quillon plot batch.txt --sample 4 --trace 2 -o trace.svg\n"
        "  example: quillon plot batch.txt --sample 4 --spectrum 3 --function 2 -o ms2.svg");
    command->add_option("REPORT", settings->path, "The report file ('-': standard input)")
        ->required();
    command->add_option("--sample", settings->sample, "The sample's number")->required();
    auto* trace = command->add_option("--trace", settings->trace, "A trace number");
    auto* combined =
        command
            ->add_option("--combined", settings->combined,
                         "The combined trace, parent left out, of the found metabolites: "
                         "expected (the expected ones), all, or unexpected (those alone)")
            ->check(CLI::IsMember({"expected", "all", "unexpected"}));
    auto* spectrum = command->add_option("--spectrum", settings->spectrum,
                                         "The spectrum of this peak identifier");
    command
        ->add_option(
            "--function", settings->function,
            "With --spectrum: the number of the function whose spectrum at that peak to draw, "
            "e.g. the high-energy function's (default: the first function that has one)")
        ->needs(spectrum)
        ->check(CLI::PositiveNumber);
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
    command->add_option("-o,--output", settings->output,
                        "The SVG file to write (default or '-': standard output)");
    AddFigureSizeOption(*command, settings->size);
    command->callback([settings, &options, trace, combined, spectrum, fragments] {
        if (trace->count() + combined->count() + spectrum->count() + fragments->count() == 0)
            throw ToolError("plot needs what to draw: --trace N, --combined KIND, --spectrum PEAK "
                            "or --fragments",
                            kExitUsage);
        CSamples samples;
        LoadReport(settings->path, samples, options);
        CSampleData& sample = SampleByNumber(samples, settings->sample, settings->path);
        const Chart chart = ChosenChart(*settings, spectrum->count() > 0, sample, options);
        const std::string svg = ChartSvg(chart, settings->size);
        if (settings->output.empty() || settings->output == "-") {
            std::cout << svg << std::flush;
            return;
        }
        WriteFileAtomically(settings->output, svg);
        Note(options, "wrote " + settings->output);
    });
}

} // namespace quillon::tool
