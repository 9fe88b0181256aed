// fragments and stability: the analyses run over a loaded report.
#include "Commands.h"
#include "FigureOptions.h"
#include "RowPrinter.h"
#include "StabilityFigure.h"
#include "Svg.h"
#include "json/ModelRecords.h"
#include "json/StabilityJson.h"

#include <cmath>
#include <memory>

namespace quillon::tool {

namespace {

// The rows of one series in a table: the series with its fit, then each time point, then the
// formation of each metabolite; the columns a row does not fill are empty.
void StabilityRows(RowSink& rows, const CMetabolicStabilityInfo& info, const std::string& flags) {
    const bool fitted = info.HasHalfLife();
    auto row = [&](std::string_view parent, const FieldValue& sample, const FieldValue& time,
                   const FieldValue& amount, const FieldValue& percent, bool series) {
        rows.BeginRow();
        rows.Put("parent", parent);
        rows.Put("sample", sample);
        rows.Put("time_min", time);
        rows.Put("amount", amount);
        rows.Put("percent_remaining", percent);
        auto fit = [&](const char* key, bool valid, double value) {
            rows.Put(key, series && valid ? FieldValue(value) : FieldValue(Null{}));
        };
        fit("k_per_min", !info.Has(CMetabolicStabilityInfo::kTooFewTimePoints), info.k);
        fit("half_life_min", fitted, info.halfLife);
        fit("half_life_95_low", fitted, info.halfLifeLow);
        fit("half_life_95_high", info.halfLifeHigh > 0, info.halfLifeHigh);
        fit("clint_ul_min_mg", fitted, info.intrinsicClearance);
        fit("clearance_ml_min_kg", fitted, info.scaledClearance);
        fit("r_squared", info.pointsUsed > 2, info.rSquared);
        rows.Put("flags", series ? std::string_view(flags) : std::string_view());
        rows.EndRow();
    };
    row(info.parent.view(), Null{}, Null{}, Null{}, Null{}, true);
    for (const auto& point : info.points)
        row({}, static_cast<long long>(point.sampleNumber), point.time,
            point.hasAmount ? FieldValue(point.amount) : FieldValue(Null{}),
            info.initialAmount > 0 && point.hasAmount ? FieldValue(point.percentRemaining)
                                                      : FieldValue(Null{}),
            false);
    for (const auto& formation : info.formation) {
        const std::string name = "  " + formation.name.str() + " " + formation.label.str();
        row(name, Null{}, formation.timeOfMaximum, Null{}, formation.maximumPercentOfParent, false);
    }
}

} // namespace

void RegisterFragments(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        int sample = 0;
        std::string settings;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "fragments",
        "Runs the fragment analysis of one sample: its fragment masses and neutral losses\n"
        "  example: quillon fragments batch.txt --sample 4 --settings Tarnwick.ini");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--sample", settings->sample, "The sample's number")->required();
    command->add_option("--settings", settings->settings,
                        "The settings file with the neutral-loss list (default: Tarnwick.ini "
                        "beside the report)");
    AddOutputOptions(*command, options);
    command->callback([settings, &options] {
        CSamples samples;
        LoadReport(settings->path, samples, options);
        CSampleData& sample = SampleByNumber(samples, settings->sample, settings->path);
        const CFragmentAnalysis* analysis =
            &RunFragmentAnalysis(sample, settings->settings, settings->path, options);
        RowPrinter rows(options);
        FragmentRows(rows, sample.GetNumber(), *analysis);
        rows.Close();
    });
}

void RegisterStability(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        MetabolicStabilityParameters parameters;
        std::string plot;
        std::string series;
        std::string groupBy;
        FigureSize size;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "stability",
        "Metabolic stability of each incubation series: half-life, its 95% interval, intrinsic\n"
        "clearance and the formation of metabolites\n"
        "  example: quillon stability batch.txt --protein 1.0 --plot stability.svg");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--protein", settings->parameters.proteinMgPerMl,
                        "Microsomal protein in the incubation, mg/mL (default 0.5)");
    command->add_option("--protein-per-liver", settings->parameters.proteinMgPerGramLiver,
                        "Microsomal protein per gram of liver, mg/g (default 45)");
    command->add_option("--liver-per-kg", settings->parameters.liverGramsPerKg,
                        "Liver per kilogram of body weight, g/kg (default 20)");
    command->add_option("--plot", settings->plot,
                        "Also draw ln(% remaining) against time with the fit and its 95% band, "
                        "and the formation of the metabolites, as an SVG file");
    command->add_option("--series", settings->series,
                        "Only the series of this number (from 1) or parent name");
    command->add_option("--group-by", settings->groupBy,
                        "Fit the samples of each value of this header field (e.g. TaskCode) on "
                        "their own, with the mean and SD of the half-life across the groups");
    AddFigureSizeOption(*command, settings->size);
    AddOutputOptions(*command, options);
    command->callback([settings, &options] {
        const MetabolicStabilityParameters& scaling = settings->parameters;
        for (const auto& [value, option] :
             {std::pair{scaling.proteinMgPerMl, "--protein"},
              std::pair{scaling.proteinMgPerGramLiver, "--protein-per-liver"},
              std::pair{scaling.liverGramsPerKg, "--liver-per-kg"}})
            if (!std::isfinite(value) || value <= 0.0)
                throw ToolError(std::string(option) + " takes a number above 0", kExitUsage);
        CSamples samples;
        LoadReport(settings->path, samples, options);
        CArray<CMetabolicStabilityInfo> series;
        samples.CreateMetabolicStabilityAnalysis(series, settings->parameters);
        for (const CMetabolicStabilityInfo& info : series) {
            std::string used;
            for (const auto& point : info.points)
                if (point.usedInFit)
                    used += (used.empty() ? "" : ", ") + std::string("sample ") +
                            std::to_string(point.sampleNumber) + " at " + Fixed(point.time, 1) +
                            " min";
            Note(options, info.parent.str() + ": fitted " + (used.empty() ? "no sample" : used));
        }
        const std::vector<CMetabolicStabilityInfo> fits =
            ChosenSeries(samples, series, settings->series, settings->groupBy);
        const HalfLifeSpread spread = SpreadOf(fits);
        if (options.format == "json") {
            nlohmann::json document = nlohmann::json::array();
            for (const CMetabolicStabilityInfo& info : fits)
                document.push_back(StabilityJson(info));
            if (!settings->groupBy.empty())
                document.push_back({{"summary_of_groups", settings->groupBy},
                                    {"groups_with_half_life", spread.groups},
                                    {"half_life_mean_min", spread.mean},
                                    {"half_life_sd_min", spread.standardDeviation}});
            PrintJson(document, options);
        } else {
            RowPrinter rows(options);
            for (const CMetabolicStabilityInfo& info : fits)
                StabilityRows(rows, info, info.FlagsText());
            if (!settings->groupBy.empty()) {
                rows.BeginRow();
                rows.Put("parent", "mean of " + settings->groupBy + " groups");
                rows.Put("half_life_min",
                         spread.groups > 0 ? FieldValue(spread.mean) : FieldValue(Null{}));
                rows.Put("flags", SpreadText(spread));
                rows.EndRow();
            }
            rows.Close();
        }
        if (!settings->plot.empty())
            WriteFileAtomically(settings->plot, StabilityFigureSvg(fits, !settings->groupBy.empty(),
                                                                   settings->size));
    });
}

} // namespace quillon::tool
