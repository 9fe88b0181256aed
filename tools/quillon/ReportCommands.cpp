// info, metabolites and summary: what a report holds.
#include "Commands.h"

#include <quillon/metabolites/MetaboliteDisplay.h>

#include <iostream>
#include <memory>

namespace quillon::tool {

namespace {

std::string Text(const CSampleData& sample, void (CSampleData::*get)(CString&) const) {
    CString text;
    (sample.*get)(text);
    return text.str();
}

int FoundCount(CSampleData& sample) {
    int found = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        found += sample.GetMetabolite(m)->GetFound() && !sample.GetMetabolite(m)->IsHiEnergy();
    return found;
}

int TraceCount(CSampleData& sample) {
    int traces = sample.GetAnalogCount();
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        traces += sample.GetFunction(f)->GetNumChromatogram();
    return traces;
}

} // namespace

void RegisterInfo(CLI::App& app, GlobalOptions& options) {
    auto path = std::make_shared<std::string>();
    CLI::App* command =
        app.add_subcommand("info", "The batch at a glance: one row per sample, then totals\n"
                                   "  example: quillon info batch.txt --format csv");
    command->add_option("REPORT", *path, "The report file")->required();
    AddOutputOptions(*command, options);
    command->callback([path, &options] {
        CSamples samples;
        LoadReport(*path, samples, options);
        Table table{{"sample", "id", "type", "description", "time", "functions", "traces",
                     "expected", "unexpected", "msms", "found", "control"},
                    {},
                    {true, false, false, false, true, true, true, true, true, true, true, true}};
        int totals[6] = {};
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            CSampleData& sample = *samples.GetSample(i);
            const int values[6] = {sample.GetFunctionCount(),
                                   TraceCount(sample),
                                   sample.GetExpectedMetaboliteCount(),
                                   sample.GetUnexpectedMetaboliteCount(),
                                   sample.GetMSMSCorrelationMetaboliteCount(),
                                   FoundCount(sample)};
            std::vector<std::string> row = {
                std::to_string(sample.GetNumber()), Text(sample, &CSampleData::GetID),
                Text(sample, &CSampleData::GetType), Text(sample, &CSampleData::GetDescription),
                Text(sample, &CSampleData::GetSubjectTime)};
            for (int v = 0; v < 6; ++v) {
                row.push_back(std::to_string(values[v]));
                totals[v] += values[v];
            }
            const CSampleData* control = sample.GetControlSample();
            row.push_back(control != nullptr ? std::to_string(control->GetNumber()) : "");
            table.rows.push_back(std::move(row));
        }
        if (options.format == "table") {
            std::vector<std::string> total = {
                "", "total", std::to_string(samples.GetSamplesCount()) + " samples", "", ""};
            for (int value : totals)
                total.push_back(std::to_string(value));
            total.push_back("");
            table.rows.push_back(std::move(total));
        }
        PrintTable(table, options);
    });
}

void RegisterMetabolites(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::string path;
        int sample = 0;
        std::vector<double> massDefect;
        double area = -1.0;
        double massError = -1.0;
        std::vector<double> time;
        bool hideHighEnergy = false;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "metabolites",
        "The metabolite table with the browser's column texts, filtered as the browser filters\n"
        "  example: quillon metabolites batch.txt --sample 4 --area 10000 --time 5 15");
    command->add_option("REPORT", settings->path, "The report file")->required();
    command->add_option("--sample", settings->sample, "Only the sample with this number");
    command
        ->add_option("--mass-defect", settings->massDefect,
                     "Keep mass defects between LOWER and UPPER (two numbers, Da)")
        ->expected(2);
    command->add_option("--area", settings->area, "Keep peaks of at least this area");
    command->add_option("--mass-error", settings->massError,
                        "Keep mass errors up to this many ppm");
    command->add_option("--time", settings->time, "Keep retention times from LOW to HIGH (min)")
        ->expected(2);
    command->add_flag("--hide-high-energy", settings->hideHighEnergy,
                      "Leave out metabolites of high-energy functions");
    AddOutputOptions(*command, options);
    command->callback([settings, &options] {
        CSamples samples;
        LoadReport(settings->path, samples, options);
        CDivBroParams params;
        if (settings->massDefect.size() == 2) {
            params.MassDefectFilterOn = true;
            params.MassDefectLower = settings->massDefect[0];
            params.MassDefectUpper = settings->massDefect[1];
        }
        if (settings->area >= 0.0) {
            params.AreaFilterOn = true;
            params.AreaFilterOnExpected = true;
            params.AreaThreshold = static_cast<float>(settings->area);
        }
        if (settings->massError >= 0.0) {
            params.MassErrorFilterOn = true;
            params.MassErrorLimit = settings->massError;
        }
        if (settings->time.size() == 2) {
            params.TimeFilterOn = true;
            params.TimeLow = settings->time[0];
            params.TimeHigh = settings->time[1];
        }
        params.HideHighEnergy = settings->hideHighEnergy;
        if (settings->sample != 0)
            SampleByNumber(samples, settings->sample, settings->path);

        Table table{{"sample", "name", "formula", "mz", "mDa", "ppm", "time", "trace", "area",
                     "area_percent", "found_percent", "is_ratio", "found", "confirmed",
                     "high_energy"},
                    {},
                    {true, false, false, true, true, true, true, false, true, true, true, true,
                     false, false, false}};
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            CSampleData& sample = *samples.GetSample(i);
            if (settings->sample != 0 && sample.GetNumber() != settings->sample)
                continue;
            for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
                const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
                if (!metabolite.ApplyDataFilters(&params, false))
                    continue;
                CString mDa, ppm, time, trace, area, percent, ratio;
                metabolite.GetmDa(mDa);
                metabolite.GetPPM(ppm);
                GetTimeText(metabolite, time);
                GetTraceText(metabolite, &sample, trace);
                GetAreaText(metabolite, area);
                GetRelativeAreaText(metabolite, percent);
                GetISAreaRatioText(metabolite, &sample, ratio);
                std::string foundPercent;
                if (const CChromatogramPeak* peak = sample.GetCorispondingPeakInfo(
                        metabolite.GetPeakNum(), metabolite.GetFunctionNum(),
                        metabolite.GetTraceNum());
                    peak != nullptr && metabolite.GetFound())
                    foundPercent = Fixed(peak->GetAreaPercentTotal(), 2);
                table.rows.push_back(
                    {std::to_string(sample.GetNumber()), metabolite.GetMetName(),
                     metabolite.GetFormula(),
                     metabolite.GetMzFound() > 0 ? Fixed(metabolite.GetMzFound(), 4) : "",
                     mDa.str(), ppm.str(), time.str(), trace.str(), area.str(), percent.str(),
                     foundPercent, ratio.str(), metabolite.GetFound() ? "yes" : "no",
                     metabolite.GetConfirmed() ? "yes" : "no",
                     metabolite.IsHiEnergy() ? "yes" : "no"});
            }
        }
        PrintTable(table, options);
    });
}

void RegisterSummary(CLI::App& app, GlobalOptions& options) {
    auto path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand(
        "summary", "Found counts of each expected metabolite (name and mass shift) by sample\n"
                   "  example: quillon summary batch.txt --format json");
    command->add_option("REPORT", *path, "The report file")->required();
    AddOutputOptions(*command, options);
    command->callback([path, &options] {
        CSamples samples;
        LoadReport(*path, samples, options);
        CArray<MetaboliteCountInfo> summary;
        samples.CreateOverallMSSummaryData(summary, -1, -1);
        Table table{{"metabolite", "shift"}, {}, {false, false}};
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            table.columns.push_back("sample " + std::to_string(samples.GetSample(i)->GetNumber()));
            table.numeric.push_back(true);
        }
        for (const MetaboliteCountInfo& entry : summary) {
            std::vector<std::string> row = {entry.name.str(), entry.label.str()};
            for (int count : entry.counts)
                row.push_back(std::to_string(count));
            table.rows.push_back(std::move(row));
        }
        PrintTable(table, options);
    });
}

} // namespace quillon::tool
