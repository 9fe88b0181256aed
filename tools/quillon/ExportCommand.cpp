// export: the whole model of a report as one JSON document or as CSV tables in a folder.
#include "Commands.h"

#include <filesystem>
#include <memory>

namespace quillon::tool {

namespace {

std::string Text(const CSampleData& sample, void (CSampleData::*get)(CString&) const) {
    CString text;
    (sample.*get)(text);
    return text.str();
}

// The tables of the model; JSON nests the same records under their sample.
struct Model {
    Table samples{{"sample", "id", "type", "description", "time", "parent", "control"},
                  {},
                  {true, false, false, false, true, false, true}};
    Table functions{{"sample", "function", "description", "traces", "spectra"},
                    {},
                    {true, true, false, true, true}};
    Table traces{{"sample", "function", "trace", "description", "points", "peaks"},
                 {},
                 {true, true, true, false, true, true}};
    Table tracePoints{{"sample", "trace", "time_min", "intensity"}, {}, {true, true, true, true}};
    Table peaks{{"sample", "trace", "peak_id", "cluster", "time_min", "area", "height"},
                {},
                {true, true, true, true, true, true, true}};
    Table spectra{{"sample", "function", "peak_id", "points"}, {}, {true, true, true, true}};
    Table spectrumPoints{{"sample", "peak_id", "mz", "intensity"}, {}, {true, true, true, true}};
    Table metabolites{
        {"sample", "index", "kind", "name", "formula", "mz", "time_min", "area", "found",
         "confirmed", "peak_id", "trace", "label"},
        {},
        {true, true, false, false, false, true, true, true, false, false, true, true, false}};
    Table elemental{
        {"sample", "metabolite", "mz", "calc_mz", "mDa", "ppm", "dbe", "formula", "i_fit"},
        {},
        {true, true, true, true, true, true, true, false, true}};
    Table correlation{{"sample", "metabolite", "entry", "masses_matched", "neutral_losses_matched",
                       "common_neutral_losses"},
                      {},
                      {true, true, true, false, false, false}};
};

void AddTrace(Model& model, const std::string& sample, int function, const CChromatoData& trace) {
    const std::string number = std::to_string(trace.GetTraceNumber());
    model.traces.rows.push_back({sample, std::to_string(function), number,
                                 trace.GetDescription().str(), std::to_string(trace.GetNumPeaks()),
                                 std::to_string(trace.GetNumberOfListPeaks())});
    CPeakData point;
    for (int i = 0; i < trace.GetNumPeaks(); ++i)
        if (trace.GetPeak(i, point))
            model.tracePoints.rows.push_back(
                {sample, number, Fixed(point.GetMass(), 4), Fixed(point.GetIntensity(), 3)});
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        model.peaks.rows.push_back({sample, number, std::to_string(peak.GetPeakID()),
                                    std::to_string(peak.GetPeakClusterID()),
                                    Fixed(peak.GetTime(), 4), Fixed(peak.GetAreaAbs(), 2),
                                    Fixed(peak.GetHeight(), 2)});
    }
}

Model Build(CSamples& samples) {
    Model model;
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *samples.GetSample(s);
        const std::string number = std::to_string(sample.GetNumber());
        const CSampleData* control = sample.GetControlSample();
        model.samples.rows.push_back(
            {number, Text(sample, &CSampleData::GetID), Text(sample, &CSampleData::GetType),
             Text(sample, &CSampleData::GetDescription), Text(sample, &CSampleData::GetSubjectTime),
             sample.GetSubjectParent(), control ? std::to_string(control->GetNumber()) : ""});
        for (int f = 0; f < sample.GetFunctionCount(); ++f) {
            CFunctionData& function = *sample.GetFunction(f);
            CString description;
            function.GetDescription(description);
            model.functions.rows.push_back({number, std::to_string(function.GetNumber()),
                                            description.str(),
                                            std::to_string(function.GetNumChromatogram()),
                                            std::to_string(function.GetNumSpectra(false))});
            for (int c = 0; c < function.GetNumChromatogram(); ++c)
                AddTrace(model, number, function.GetNumber(), *function.GetChromatogram(c));
            for (int p = 0; p < function.GetNumSpectra(false); ++p) {
                const CSpectrumData& spectrum = *function.GetSpectrum(p, false);
                const std::string id = std::to_string(spectrum.GetPeakID());
                model.spectra.rows.push_back({number, std::to_string(function.GetNumber()), id,
                                              std::to_string(spectrum.GetNumPeaks())});
                CPeakData point;
                for (int i = 0; i < spectrum.GetNumPeaks(); ++i)
                    if (spectrum.GetPeak(i, point))
                        model.spectrumPoints.rows.push_back({number, id, Fixed(point.GetMass(), 5),
                                                             Fixed(point.GetIntensity(), 3)});
            }
        }
        for (int a = 0; a < sample.GetAnalogCount(); ++a)
            AddTrace(model, number, 0, *sample.GetAnalogChannel(a));
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
            const std::string kind = metabolite.IsMSMSCorrelation() ? "msms"
                                     : metabolite.IsExpected()      ? "expected"
                                                                    : "unexpected";
            model.metabolites.rows.push_back(
                {number, std::to_string(m), kind, metabolite.GetMetName(), metabolite.GetFormula(),
                 Fixed(metabolite.GetMzFound(), 4), Fixed(metabolite.GetPeakTime(), 4),
                 metabolite.GetPeakArea() >= 0 ? Fixed(metabolite.GetPeakArea(), 2) : "",
                 metabolite.GetFound() ? "yes" : "no", metabolite.GetConfirmed() ? "yes" : "no",
                 std::to_string(metabolite.GetPeakNum()), std::to_string(metabolite.GetTraceNum()),
                 metabolite.GetUserLabel()});
            CElementalResultsData candidate;
            for (int e = 0; metabolite.GetElementalResults(e, candidate); ++e)
                model.elemental.rows.push_back(
                    {number, std::to_string(m), Fixed(candidate.GetMass(), 4),
                     Fixed(candidate.GetCalcMass(), 4), Fixed(candidate.GetmDa(), 1),
                     Fixed(candidate.GetPPM(), 1), Fixed(candidate.GetDBE(), 1),
                     candidate.GetFormula().str(), Fixed(candidate.GetiFIT(), 3)});
            for (int e = 0; e < metabolite.GetCorrelationEntryCount(); ++e) {
                CString masses, losses, common;
                metabolite.GetCorrelationMasses(e, masses);
                metabolite.GetNeutralLossesFromAllParentSpectrumMassesAt(e, losses);
                metabolite.GetCommonNeutralLossesAt(e, common);
                model.correlation.rows.push_back({number, std::to_string(m), std::to_string(e),
                                                  masses.str(), losses.str(), common.str()});
            }
        }
    }
    return model;
}

nlohmann::json Rows(const Table& table) {
    nlohmann::json rows = nlohmann::json::array();
    for (const auto& row : table.rows) {
        nlohmann::json object;
        for (size_t c = 0; c < table.columns.size() && c < row.size(); ++c) {
            if (c < table.numeric.size() && table.numeric[c])
                object[table.columns[c]] =
                    row[c].empty() ? nlohmann::json() : nlohmann::json(ParseDouble(row[c].c_str()));
            else
                object[table.columns[c]] = row[c];
        }
        rows.push_back(std::move(object));
    }
    return rows;
}

} // namespace

void RegisterExport(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        std::string format = "json";
        std::string output;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "export", "The whole model: samples, functions, traces with points, peaks, spectra with\n"
                  "points, metabolites, elemental candidates, correlation; JSON in one file or\n"
                  "CSV as one file per table in a folder\n"
                  "  example: quillon export batch.txt --format csv -o batch-tables");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--format", settings->format, "json or csv")
        ->check(CLI::IsMember({"json", "csv"}));
    command->add_option("-o,--output", settings->output,
                        "The JSON file (standard output when left out) or the CSV folder");
    command->callback([settings, &options] {
        CSamples samples;
        LoadReport(settings->path, samples, options);
        const Model model = Build(samples);
        const std::pair<const char*, const Table*> tables[] = {
            {"samples", &model.samples},
            {"functions", &model.functions},
            {"traces", &model.traces},
            {"trace_points", &model.tracePoints},
            {"peaks", &model.peaks},
            {"spectra", &model.spectra},
            {"spectrum_points", &model.spectrumPoints},
            {"metabolites", &model.metabolites},
            {"elemental", &model.elemental},
            {"correlation", &model.correlation}};
        if (settings->format == "json") {
            nlohmann::json document = {{"report", settings->path}};
            for (const auto& [name, table] : tables)
                document[name] = Rows(*table);
            GlobalOptions out = options;
            out.output = settings->output;
            PrintJson(document, out);
            return;
        }
        if (settings->output.empty())
            throw ToolError("export --format csv needs -o FOLDER", kExitUsage);
        std::error_code error;
        std::filesystem::create_directories(settings->output, error);
        if (error)
            throw ToolError("cannot create '" + settings->output + "': " + error.message());
        for (const auto& [name, table] : tables) {
            GlobalOptions out = options;
            out.format = "csv";
            out.output =
                (std::filesystem::path(settings->output) / (std::string(name) + ".csv")).string();
            PrintTable(*table, out);
        }
        Note(options,
             "wrote " + std::to_string(std::size(tables)) + " tables to " + settings->output);
    });
}

} // namespace quillon::tool
