// info and summary: what a report holds.
#include "Commands.h"
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
        LoadReport(*path, samples, options);
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
