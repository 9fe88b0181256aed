// info, metabolites and summary: what a report holds.
#include "Commands.h"
#include "MetaboliteRow.h"
#include "RowPrinter.h"
#include "json/ModelRecords.h"

#include <map>
#include <memory>

namespace quillon::tool {

namespace {

// The sums of the count columns of the sample rows passing through it, for the table's last row.
class Totals : public RecordSink {
public:
    // Passes the row's fields on to rows, adding up the counts on the way.
    RecordSink& Add(RecordSink& rows) {
        m_rows = &rows;
        return *this;
    }
    void Put(std::string_view key, const FieldValue& value) override {
        if (IsCount(key))
            m_sums[std::string(key)] += std::get<long long>(value);
        m_rows->Put(key, value);
    }
    // The row of totals, keyed as the sample rows.
    void Write(RecordSink& rows, int samples) const {
        rows.FieldNull("sample");
        rows.Field("id", "total");
        const std::string count = std::to_string(samples) + " samples";
        rows.Field("type", std::string_view(count));
        for (const char* key : {"description", "time", "parent", "control"})
            rows.FieldNull(key);
        for (const char* key : kCounts)
            rows.Field(key, m_sums.count(key) ? m_sums.at(key) : 0LL);
    }

private:
    static constexpr const char* kCounts[] = {"functions",  "traces", "expected",
                                              "unexpected", "msms",   "found"};
    static bool IsCount(std::string_view key) {
        for (const char* count : kCounts)
            if (key == count)
                return true;
        return false;
    }
    RecordSink* m_rows = nullptr;
    std::map<std::string, long long> m_sums;
};

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
        LoadReport(*path, samples);
        RowPrinter rows(options);
        Totals totals;
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            rows.BeginRow();
            SampleRecord(totals.Add(rows), *samples.GetSample(i));
            rows.EndRow();
        }
        if (options.format == "table") {
            rows.BeginRow();
            totals.Write(rows, samples.GetSamplesCount());
            rows.EndRow();
        }
        rows.Close();
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
        LoadReport(settings->path, samples);
        MetaboliteFilter filter;
        if (settings->massDefect.size() == 2)
            filter.massDefect = {settings->massDefect[0], settings->massDefect[1]};
        if (settings->area >= 0.0)
            filter.area = settings->area;
        if (settings->massError >= 0.0)
            filter.massError = settings->massError;
        if (settings->time.size() == 2)
            filter.time = {settings->time[0], settings->time[1]};
        filter.hideHighEnergy = settings->hideHighEnergy;
        const CDivBroParams params = FilterParams(filter);
        if (settings->sample != 0)
            SampleByNumber(samples, settings->sample, settings->path);

        RowPrinter rows(options);
        for (int i = 0; i < samples.GetSamplesCount(); ++i) {
            CSampleData& sample = *samples.GetSample(i);
            if (settings->sample != 0 && sample.GetNumber() != settings->sample)
                continue;
            for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
                if (!sample.GetMetabolite(m)->ApplyDataFilters(&params, false))
                    continue;
                rows.BeginRow();
                MetaboliteRow(rows, sample, m);
                rows.EndRow();
            }
        }
        rows.Close();
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
        LoadReport(*path, samples);
        CArray<MetaboliteCountInfo> summary;
        samples.CreateOverallMSSummaryData(summary, -1, -1);
        std::vector<std::string> columns;
        for (int i = 0; i < samples.GetSamplesCount(); ++i)
            columns.push_back("sample " + std::to_string(samples.GetSample(i)->GetNumber()));
        RowPrinter rows(options);
        for (const MetaboliteCountInfo& entry : summary) {
            rows.BeginRow();
            rows.Field("metabolite", entry.name);
            rows.Field("shift", entry.label);
            for (size_t c = 0; c < columns.size() && c < entry.counts.size(); ++c)
                rows.Field(columns[c], entry.counts[c]);
            rows.EndRow();
        }
        rows.Close();
    });
}

} // namespace quillon::tool
