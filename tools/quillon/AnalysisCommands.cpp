// fragments and stability: the analyses run over a loaded report.
#include "Commands.h"
#include "FigureOptions.h"
#include "StabilityFigure.h"

#include <memory>

namespace quillon::tool {

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
        CStringArray fragments;
        CStringArray losses;
        analysis->GetFragments(fragments);
        analysis->GetNeutralLosses(losses);
        if (options.format == "json") {
            nlohmann::json document;
            document["sample"] = settings->sample;
            document["fragments"] = nlohmann::json::array();
            for (const FragmentEntry& entry : analysis->GetFragmentEntries())
                document["fragments"].push_back({{"nominal_mass", entry.NominalMass},
                                                 {"parent_index", entry.ParentIndex},
                                                 {"partner_index", entry.PartnerIndex},
                                                 {"function_index", entry.FunctionIndex},
                                                 {"spectrum_peak_id", entry.SpectrumPeakID},
                                                 {"cluster_id", entry.ClusterID}});
            document["neutral_losses"] = nlohmann::json::array();
            for (const NeutralLossEntry& entry : analysis->GetNeutralLossEntries())
                document["neutral_losses"].push_back({{"mass", entry.Mass},
                                                      {"nominal_mass", entry.NominalMass},
                                                      {"label", entry.Label.str()}});
            document["fragment_lines"] = nlohmann::json::array();
            for (const CString& line : fragments)
                document["fragment_lines"].push_back(line.str());
            document["neutral_loss_lines"] = nlohmann::json::array();
            for (const CString& line : losses)
                document["neutral_loss_lines"].push_back(line.str());
            PrintJson(document, options);
            return;
        }
        Table table{{"kind", "line"}, {}, {false, false}};
        for (const CString& line : fragments)
            table.rows.push_back({"fragment", line.str()});
        for (const CString& line : losses)
            table.rows.push_back({"neutral loss", line.str()});
        PrintTable(table, options);
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
        auto flagsText = [](const CMetabolicStabilityInfo& info) {
            std::string text;
            const std::pair<int, const char*> names[] = {
                {CMetabolicStabilityInfo::kNoParent, "no parent"},
                {CMetabolicStabilityInfo::kNoInitialAmount, "no initial amount"},
                {CMetabolicStabilityInfo::kTooFewTimePoints, "too few time points"},
                {CMetabolicStabilityInfo::kNoDecline, "no decline"},
                {CMetabolicStabilityInfo::kPoorFit, "poor fit"},
                {CMetabolicStabilityInfo::kOpenInterval, "open interval"}};
            for (const auto& [flag, name] : names)
                if (info.flags & flag)
                    text += (text.empty() ? "" : "; ") + std::string(name);
            return text;
        };
        auto orEmpty = [](bool valid, double value, int decimals) {
            return valid ? Fixed(value, decimals) : std::string();
        };
        if (options.format == "json") {
            nlohmann::json document = nlohmann::json::array();
            for (const CMetabolicStabilityInfo& info : fits) {
                nlohmann::json entry = {{"parent", info.parent.str()},
                                        {"process_parameters", info.processParameters.str()},
                                        {"points_used", info.pointsUsed},
                                        {"k_per_min", info.k},
                                        {"k_standard_error", info.standardErrorK},
                                        {"r_squared", info.rSquared},
                                        {"flags", flagsText(info)}};
                entry["half_life_min"] =
                    info.HasHalfLife() ? nlohmann::json(info.halfLife) : nlohmann::json();
                entry["half_life_low_min"] =
                    info.HasHalfLife() ? nlohmann::json(info.halfLifeLow) : nlohmann::json();
                entry["half_life_high_min"] =
                    info.halfLifeHigh > 0 ? nlohmann::json(info.halfLifeHigh) : nlohmann::json();
                entry["clint_ul_min_mg"] =
                    info.HasHalfLife() ? nlohmann::json(info.intrinsicClearance) : nlohmann::json();
                entry["scaled_clearance_ml_min_kg"] =
                    info.HasHalfLife() ? nlohmann::json(info.scaledClearance) : nlohmann::json();
                entry["points"] = nlohmann::json::array();
                for (const auto& point : info.points)
                    entry["points"].push_back({{"sample", point.sampleNumber},
                                               {"time_min", point.time},
                                               {"amount", point.amount},
                                               {"percent_remaining", point.percentRemaining},
                                               {"used_in_fit", point.usedInFit}});
                entry["formation"] = nlohmann::json::array();
                for (const auto& formation : info.formation)
                    entry["formation"].push_back(
                        {{"name", formation.name.str()},
                         {"shift", formation.label.str()},
                         {"amount_at_time", formation.amountAtTime},
                         {"time_of_maximum_min", formation.timeOfMaximum},
                         {"maximum_percent_of_parent", formation.maximumPercentOfParent}});
                document.push_back(std::move(entry));
            }
            if (!settings->groupBy.empty())
                document.push_back({{"summary_of_groups", settings->groupBy},
                                    {"groups_with_half_life", spread.groups},
                                    {"half_life_mean_min", spread.mean},
                                    {"half_life_sd_min", spread.standardDeviation}});
            PrintJson(document, options);
        } else {
            Table table{
                {"parent", "sample", "time_min", "amount", "percent_remaining", "k_per_min",
                 "half_life_min", "half_life_95_low", "half_life_95_high", "clint_ul_min_mg",
                 "clearance_ml_min_kg", "r_squared", "flags"},
                {},
                {false, true, true, true, true, true, true, true, true, true, true, true, false}};
            for (const CMetabolicStabilityInfo& info : fits) {
                const bool t = info.HasHalfLife();
                table.rows.push_back(
                    {info.parent.str(), "", "", "", "",
                     orEmpty(!info.Has(CMetabolicStabilityInfo::kTooFewTimePoints), info.k, 5),
                     orEmpty(t, info.halfLife, 1), orEmpty(t, info.halfLifeLow, 1),
                     orEmpty(info.halfLifeHigh > 0, info.halfLifeHigh, 1),
                     orEmpty(t, info.intrinsicClearance, 1), orEmpty(t, info.scaledClearance, 1),
                     orEmpty(info.pointsUsed > 2, info.rSquared, 4), flagsText(info)});
                for (const auto& point : info.points)
                    table.rows.push_back({"", std::to_string(point.sampleNumber),
                                          Fixed(point.time, 1),
                                          point.hasAmount ? Fixed(point.amount, 1) : "",
                                          orEmpty(info.initialAmount > 0 && point.hasAmount,
                                                  point.percentRemaining, 1),
                                          "", "", "", "", "", "", "", ""});
                for (const auto& formation : info.formation)
                    table.rows.push_back({"  " + formation.name.str() + " " + formation.label.str(),
                                          "", Fixed(formation.timeOfMaximum, 1), "",
                                          Fixed(formation.maximumPercentOfParent, 1), "", "", "",
                                          "", "", "", "", "max % of parent"});
            }
            if (!settings->groupBy.empty())
                table.rows.push_back({"mean of " + settings->groupBy + " groups", "", "", "", "",
                                      "", orEmpty(spread.groups > 0, spread.mean, 1), "", "", "",
                                      "", "", SpreadText(spread)});
            PrintTable(table, options);
        }
        if (!settings->plot.empty())
            WriteFileAtomically(settings->plot, StabilityFigureSvg(fits, !settings->groupBy.empty(),
                                                                   settings->size));
    });
}

} // namespace quillon::tool
