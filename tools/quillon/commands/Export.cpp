// quillon export: the whole model of a report as tables: JSON (one object of tables) or CSV (one
// file a table in a directory). Rows of one table refer to their owners by sample number,
// function number, trace number and metabolite index.
#include "AtomicSave.h"
#include "Command.h"
#include "Output.h"
#include "Report.h"

#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/metabolites/ElementalResultsData.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

namespace quillon::tool {
namespace {

struct ExportOptions {
    std::string report;
    std::string output;
    Format format = Format::Json;
};

// The tables of the export, by file name, in a fixed order.
struct ModelTables {
    Table samples{{"sample", "id", "type", "description", "file", "well", "plate", "subject time",
                   "subject text", "parent", "concentration", "date", "time", "instrument",
                   "control sample"},
                  {}};
    Table compounds{{"sample", "index", "mass", "formula", "name"}, {}};
    Table functions{{"sample", "function", "type", "description", "ion mode", "cone voltage",
                     "collision energy", "trace kind"},
                    {}};
    Table traces{{"sample", "function", "trace", "description", "max intensity", "points", "peaks"},
                 {}};
    Table tracePoints{{"sample", "function", "trace", "time", "intensity"}, {}};
    Table peaks{{"sample", "function", "trace", "peak", "cluster", "time", "area", "area %",
                 "found %", "height", "width"},
                {}};
    Table spectra{
        {"sample", "function", "spectrum", "peak", "time", "description", "bpm", "bpi", "points"},
        {}};
    Table spectrumPoints{{"sample", "function", "spectrum", "mass", "intensity"}, {}};
    Table metabolites{{"sample",        "index",      "group",     "name",        "formula",
                       "user label",    "metabolite", "m/z found", "mDa",         "ppm",
                       "peak",          "function",   "trace",     "time",        "area",
                       "relative area", "found",      "confirmed", "high energy", "isotope"},
                      {}};
    Table elemental{{"sample", "metabolite", "candidate", "formula", "mass", "calculated mass",
                     "mDa", "ppm", "DBE", "i-FIT", "i-FIT norm"},
                    {}};
    Table correlation{
        {"sample", "metabolite", "entry", "masses", "neutral losses", "common neutral losses"}, {}};

    std::vector<std::pair<std::string, const Table*>> Named() const {
        return {{"samples", &samples},          {"compounds", &compounds},
                {"functions", &functions},      {"traces", &traces},
                {"trace_points", &tracePoints}, {"peaks", &peaks},
                {"spectra", &spectra},          {"spectrum_points", &spectrumPoints},
                {"metabolites", &metabolites},  {"elemental", &elemental},
                {"correlation", &correlation}};
    }
};

std::string Text(void (CSampleData::*get)(CString&) const, const CSampleData& sample) {
    CString text;
    (sample.*get)(text);
    return text.str();
}

const char* KindName(TRACE_TYPE kind) {
    return kind == PDA_TRACE ? "diode array" : kind == ANALOG_TRACE ? "analog" : "MS";
}

void AddTrace(int number, int function, CChromatoData& trace, ModelTables& tables) {
    float maxIntensity = 0;
    trace.GetMaxIntensity(maxIntensity);
    tables.traces.rows.push_back({number, function, trace.GetTraceNumber(),
                                  trace.GetDescription().str(), Real(maxIntensity),
                                  trace.GetNumPeaks(), trace.GetNumberOfListPeaks()});
    CPeakData point;
    for (int p = 0; trace.GetPeak(p, point); ++p)
        tables.tracePoints.rows.push_back({number, function, trace.GetTraceNumber(),
                                           Real(point.GetMass()), Real(point.GetIntensity())});
    for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(p);
        tables.peaks.rows.push_back(
            {number, function, trace.GetTraceNumber(), peak.GetPeakID(), peak.GetPeakClusterID(),
             Real(peak.GetTime()), Real(peak.GetAreaAbs()), peak.GetRelativeArea(),
             Real(peak.GetAreaPercentTotal()), Real(peak.GetHeight()), Real(peak.GetWidth())});
    }
}

void AddAcquisition(CSampleData& sample, ModelTables& tables) {
    const int number = sample.GetNumber();
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        CString type, description, ionMode;
        function.GetType(type);
        function.GetDescription(description);
        function.GetIonMode(ionMode);
        tables.functions.rows.push_back({number, function.GetNumber(), type.str(),
                                         description.str(), ionMode.str(),
                                         function.GetConeVoltage(), function.GetCollisionEnergy(),
                                         KindName(function.GetTraceType())});
        for (int c = 0; c < function.GetNumChromatogram(); ++c)
            AddTrace(number, function.GetNumber(), *function.GetChromatogram(c), tables);
        for (int s = 0; s < function.GetNumSpectra(false); ++s) {
            CSpectrumData& spectrum = *function.GetSpectrum(s, false);
            CString desc;
            spectrum.GetDesc(desc);
            tables.spectra.rows.push_back({number, function.GetNumber(), s, spectrum.GetPeakID(),
                                           Real(spectrum.GetTime()), desc.str(),
                                           Real(spectrum.GetBPM()), Real(spectrum.GetBPI()),
                                           spectrum.GetNumPeaks()});
            CPeakData point;
            for (int p = 0; spectrum.GetPeak(p, point); ++p)
                tables.spectrumPoints.rows.push_back({number, function.GetNumber(), s,
                                                      Real(point.GetMass()),
                                                      Real(point.GetIntensity())});
        }
    }
    for (int a = 0; a < sample.GetAnalogCount(); ++a)
        AddTrace(number, sample.GetAnalogChannel(a)->GetFunctionNumber(),
                 *sample.GetAnalogChannel(a), tables);
}

void AddMetabolites(CSampleData& sample, ModelTables& tables) {
    const int number = sample.GetNumber();
    for (int i = 0; i < sample.GetMetaboliteCount(); ++i) {
        CMetaboliteData& m = *sample.GetMetabolite(i);
        CString mDa, ppm;
        m.GetmDa(mDa);
        m.GetPPM(ppm);
        const char* group = m.IsExpected() ? "expected" : m.IsUnexpected() ? "unexpected" : "msms";
        tables.metabolites.rows.push_back({number,
                                           i,
                                           group,
                                           m.GetMetName(),
                                           m.GetFormula(),
                                           m.GetUserLabel(),
                                           m.GetMetabolite(),
                                           m.GetMzFound(),
                                           mDa.str(),
                                           ppm.str(),
                                           m.GetPeakNum(),
                                           m.GetFunctionNum(),
                                           m.GetTraceNum(),
                                           m.GetPeakTime(),
                                           m.GetPeakArea(),
                                           m.GetRelativePeakArea(),
                                           m.GetFound(),
                                           m.GetConfirmed(),
                                           m.IsHiEnergy(),
                                           m.IsIsotope()});
        CElementalResultsData candidate;
        for (int k = 0; m.GetElementalResults(k, candidate); ++k)
            tables.elemental.rows.push_back(
                {number, i, k, candidate.GetFormula().str(), candidate.GetMass(),
                 candidate.GetCalcMass(), candidate.GetmDa(), candidate.GetPPM(),
                 candidate.GetDBE(), candidate.GetiFIT(), candidate.GetiFITnorm()});
        for (int e = 0; e < m.GetCorrelationEntryCount(); ++e) {
            CString masses, losses, common;
            m.GetCorrelationMasses(e, masses);
            m.GetNeutralLossesFromAllParentSpectrumMassesAt(e, losses);
            m.GetCommonNeutralLossesAt(e, common);
            tables.correlation.rows.push_back(
                {number, i, e, masses.str(), losses.str(), common.str()});
        }
    }
}

ModelTables BuildTables(LoadedReport& report) {
    ModelTables tables;
    for (int i = 0; i < report.samples->GetSamplesCount(); ++i) {
        CSampleData& sample = *report.samples->GetSample(i);
        const int number = sample.GetNumber();
        CString plate;
        sample.GetPlateDescription(plate);
        const CSampleData* control = sample.GetControlSample();
        tables.samples.rows.push_back(
            {number, Text(&CSampleData::GetID, sample), Text(&CSampleData::GetType, sample),
             Text(&CSampleData::GetDescription, sample), Text(&CSampleData::GetFileName, sample),
             sample.GetWell(), plate.str(), sample.GetSubjectTime(), sample.GetSubjectText(),
             sample.GetSubjectParent(), sample.GetConcentration(),
             Text(&CSampleData::GetDate, sample), Text(&CSampleData::GetTime, sample),
             sample.GetInstrument(),
             control != nullptr ? nlohmann::json(control->GetNumber()) : nlohmann::json()});
        for (int c = 0; c < sample.GetCompoundCount(); ++c) {
            const CCompoundData& compound = *sample.GetCompound(c);
            CString formula, name;
            compound.GetFormula(formula);
            compound.GetName(name);
            tables.compounds.rows.push_back(
                {number, c, compound.GetMass(), formula.str(), name.str()});
        }
        AddAcquisition(sample, tables);
        AddMetabolites(sample, tables);
    }
    return tables;
}

int Run(const ExportOptions& options) {
    if (options.format == Format::Table)
        throw ToolError{"export writes json or csv (--format json|csv)", kExitUsage};
    if (options.format == Format::Csv && (options.output.empty() || options.output == "-"))
        throw ToolError{"export --format csv writes a directory: name it with -o DIR", kExitUsage};
    LoadedReport report = LoadReport(options.report);
    const ModelTables tables = BuildTables(report);

    if (options.format == Format::Json) {
        nlohmann::json model{{"report", report.path}};
        for (const auto& [name, table] : tables.Named())
            model[name] = ToJson(*table);
        WriteOutput(options.output, model.dump(1) + "\n");
        return kExitSuccess;
    }
    std::error_code error;
    std::filesystem::create_directories(options.output, error);
    if (error || !std::filesystem::is_directory(options.output))
        throw ToolError{"cannot create directory '" + options.output +
                        "': " + (error ? error.message() : std::string("Not a directory"))};
    for (const auto& [name, table] : tables.Named())
        WriteOutput((std::filesystem::path(options.output) / (name + ".csv")).string(),
                    Render(*table, Format::Csv));
    return kExitSuccess;
}

const CommandRegistration registration{
    {"export", "The whole model as JSON, or as CSV files (one a table) in a directory",
     [](CLI::App& app, const GlobalOptions&) -> std::function<int()> {
         auto options = std::make_shared<ExportOptions>();
         app.footer("Examples:\n  quillon export examples/Chlorpromazine_HLM_batch.txt --format "
                    "json -o batch.json\n  quillon export examples/Chlorpromazine_HLM_batch.txt "
                    "--format csv -o batch-tables/");
         app.add_option("REPORT", options->report, "The report file")->required();
         AddFormatOption(app, options->format);
         app.add_option("-o,--output", options->output,
                        "The JSON file (standard output when not given), or the CSV directory");
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
