// quillon metabolites: the metabolite table of one sample (or every sample) with the browser's
// column texts, after the browser's result filters.
#include "Command.h"
#include "Output.h"
#include "Report.h"

#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/metabolites/MetaboliteDisplay.h>

#include <cstdio>

namespace quillon::tool {
namespace {

struct MetabolitesOptions {
    std::string report;
    std::string output;
    Format format = Format::Table;
    std::optional<int> sample;
    std::vector<double> massDefect; // upper[, lower]
    std::optional<float> area;
    std::optional<float> relativeArea;
    bool areaExpected = false;
    std::optional<double> massError;
    std::vector<double> time; // low, high
    bool hideHighEnergy = false;
    bool isotopes = false;
    bool elemental = false;
    bool all = false;
};

// The browser's filter record for the options given.
CDivBroParams FilterParams(const MetabolitesOptions& options) {
    CDivBroParams params;
    if (!options.massDefect.empty()) {
        params.MassDefectFilterOn = true;
        params.MassDefectUpper = options.massDefect[0];
        params.MassDefectLower = options.massDefect.size() > 1 ? options.massDefect[1] : -1.0;
    }
    if (options.area || options.relativeArea) {
        params.AreaFilterOn = true;
        params.AreaMode = options.relativeArea ? 1 : 0;
        params.AreaThreshold = options.area.value_or(0.0F);
        params.RelativeAreaThreshold = options.relativeArea.value_or(0.0F);
        params.AreaFilterOnExpected = options.areaExpected;
    }
    if (options.massError) {
        params.MassErrorFilterOn = true;
        params.MassErrorLimit = *options.massError;
    }
    if (options.time.size() == 2) {
        params.TimeFilterOn = true;
        params.TimeLow = options.time[0];
        params.TimeHigh = options.time[1];
    }
    params.HideHighEnergy = options.hideHighEnergy;
    params.IsotopeFilterOn = options.isotopes;
    params.ElementalFilterOn = options.elemental;
    return params;
}

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string Group(const CMetaboliteData& metabolite) {
    return metabolite.IsExpected() ? "expected" : metabolite.IsUnexpected() ? "unexpected" : "msms";
}

void AddRows(CSampleData& sample, const CDivBroParams& params, bool all, Table& table) {
    for (int i = 0; i < sample.GetMSMetaboliteCount(); ++i) {
        const CMetaboliteData& metabolite = *sample.GetMetabolite(i);
        const bool shown = metabolite.ApplyDataFilters(&params, false);
        if (!shown && !all)
            continue;
        CString mDa, ppm, time, trace, area, relativeArea, ratio;
        metabolite.GetmDa(mDa);
        metabolite.GetPPM(ppm);
        GetTimeText(metabolite, time);
        GetTraceText(metabolite, &sample, trace);
        GetAreaText(metabolite, area);
        GetRelativeAreaText(metabolite, relativeArea);
        GetISAreaRatioText(metabolite, &sample, ratio);
        const CChromatogramPeak* peak =
            metabolite.GetPeakNum() > 0 ? sample.GetCorispondingPeakInfo(metabolite.GetPeakNum(), 0)
                                        : nullptr;
        const std::string foundPercent =
            peak != nullptr && metabolite.GetFound()
                ? Fixed(peak->GetAreaPercentTotal(), kRelativeAreaDecimals)
                : "";
        const std::string state = metabolite.GetConfirmed() ? "confirmed"
                                  : metabolite.GetFound()   ? "found"
                                                            : "";
        std::vector<nlohmann::json> row{
            sample.GetNumber(),
            i,
            Group(metabolite),
            metabolite.GetMetName(),
            metabolite.GetUserLabel(),
            metabolite.GetFormula(),
            metabolite.GetMzFound() > 0 ? Fixed(metabolite.GetMzFound(), 4) : std::string(),
            mDa.str(),
            ppm.str(),
            time.str(),
            trace.str(),
            area.str(),
            relativeArea.str(),
            foundPercent,
            ratio.str(),
            state,
            metabolite.IsHiEnergy()};
        if (all)
            row.push_back(shown);
        table.rows.push_back(std::move(row));
    }
}

int Run(const MetabolitesOptions& options) {
    const CDivBroParams params = FilterParams(options);
    LoadedReport report = LoadReport(options.report, params);
    Table table;
    table.columns = {"sample",          "index",      "group",  "name",    "label",
                     "formula",         "m/z found",  "mDa",    "ppm",     "time",
                     "trace",           "area",       "area %", "found %", "IS ratio",
                     "found/confirmed", "high energy"};
    if (options.all)
        table.columns.push_back("shown");
    if (options.sample) {
        AddRows(SampleByNumber(report, *options.sample), params, options.all, table);
    } else {
        for (int i = 0; i < report.samples->GetSamplesCount(); ++i)
            AddRows(*report.samples->GetSample(i), params, options.all, table);
    }
    WriteOutput(options.output, Render(table, options.format));
    return kExitSuccess;
}

const CommandRegistration registration{
    {"metabolites", "The metabolite table with the browser's column texts and filters",
     [](CLI::App& app, const GlobalOptions&) -> std::function<int()> {
         auto options = std::make_shared<MetabolitesOptions>();
         auto& o = *options;
         app.footer("Example: quillon metabolites examples/Chlorpromazine_HLM_batch.txt --sample 4 "
                    "--hide-high-energy --mass-error 5");
         app.add_option("REPORT", o.report, "The report file")->required();
         app.add_option("-s,--sample", o.sample, "Only the sample with this number");
         app.add_option("--mass-defect", o.massDefect,
                        "Keep unexpected metabolites whose mass defect is at most UPPER above or "
                        "LOWER below the nominal mass (UPPER[,LOWER]; LOWER defaults to UPPER)")
             ->delimiter(',')
             ->expected(1, 2);
         app.add_option("--area", o.area, "Keep peaks whose area is above this");
         app.add_option("--relative-area", o.relativeArea,
                        "Keep peaks whose area % is above this (instead of --area)");
         app.add_flag("--area-expected", o.areaExpected,
                      "Apply the area filter to expected metabolites too");
         app.add_option("--mass-error", o.massError,
                        "Keep expected metabolites whose mass error is at most this many mDa");
         app.add_option("--time", o.time,
                        "Keep unexpected metabolites eluting between LOW and HIGH minutes")
             ->delimiter(',')
             ->expected(2);
         app.add_flag("--hide-high-energy", o.hideHighEnergy, "Hide high-energy metabolites");
         app.add_flag("--isotopes", o.isotopes, "Hide isotope peaks");
         app.add_flag("--elemental", o.elemental,
                      "Keep only unexpected metabolites with elemental candidates");
         app.add_flag("--all", o.all,
                      "List the metabolites the filters reject too, with a 'shown' column");
         AddFormatOption(app, o.format);
         AddOutputOption(app, o.output);
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
