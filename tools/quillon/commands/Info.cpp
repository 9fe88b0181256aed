// quillon info: the batch at a glance, one row per sample and the totals.
#include "Command.h"
#include "Output.h"
#include "Report.h"

namespace quillon::tool {
namespace {

struct InfoOptions {
    std::string report;
    std::string output;
    Format format = Format::Table;
};

int TraceCount(CSampleData& sample) {
    int traces = sample.GetAnalogCount();
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        traces += sample.GetFunction(f)->GetNumChromatogram();
    return traces;
}

int FoundCount(const CSampleData& sample) {
    int found = 0;
    for (int i = 0; i < sample.GetMSMetaboliteCount(); ++i)
        found += sample.GetMetabolite(i)->GetFound() ? 1 : 0;
    return found;
}

int Run(const InfoOptions& options) {
    LoadedReport report = LoadReport(options.report);
    Table table;
    table.columns = {"sample", "id",       "type",       "description", "time",  "functions",
                     "traces", "expected", "unexpected", "msms",        "found", "control"};
    std::vector<int> totals(6, 0);
    for (int i = 0; i < report.samples->GetSamplesCount(); ++i) {
        CSampleData& sample = *report.samples->GetSample(i);
        CString id, type, description, time;
        sample.GetID(id);
        sample.GetType(type);
        sample.GetDescription(description);
        sample.GetSubjectTime(time);
        const std::vector<int> counts{sample.GetFunctionCount(),
                                      TraceCount(sample),
                                      sample.GetExpectedMetaboliteCount(),
                                      sample.GetUnexpectedMetaboliteCount(),
                                      sample.GetMSMSCorrelationMetaboliteCount(),
                                      FoundCount(sample)};
        for (size_t c = 0; c < counts.size(); ++c)
            totals[c] += counts[c];
        const CSampleData* control = sample.GetControlSample();
        std::vector<nlohmann::json> row{sample.GetNumber(), id.str(), type.str(), description.str(),
                                        time.str()};
        row.insert(row.end(), counts.begin(), counts.end());
        row.push_back(control != nullptr ? nlohmann::json(control->GetNumber()) : nullptr);
        table.rows.push_back(std::move(row));
    }

    std::string text;
    if (options.format == Format::Json) {
        nlohmann::json totalsObject{{"samples", report.samples->GetSamplesCount()}};
        for (size_t c = 0; c < totals.size(); ++c)
            totalsObject[table.columns[5 + c]] = totals[c];
        text = nlohmann::json{{"report", report.path},
                              {"samples", ToJson(table)},
                              {"totals", totalsObject}}
                   .dump(2) +
               "\n";
    } else if (options.format == Format::Csv) {
        text = Render(table, Format::Csv);
    } else {
        std::vector<nlohmann::json> row{"total", "", "", "", ""};
        row.insert(row.end(), totals.begin(), totals.end());
        row.push_back(nullptr);
        table.rows.push_back(std::move(row));
        text = Render(table, Format::Table);
    }
    WriteOutput(options.output, text);
    return kExitSuccess;
}

const CommandRegistration registration{
    {"info", "The batch at a glance: one row per sample, then the totals",
     [](CLI::App& app, const GlobalOptions&) -> std::function<int()> {
         auto options = std::make_shared<InfoOptions>();
         app.footer("Example: quillon info examples/Chlorpromazine_HLM_batch.txt --format csv");
         app.add_option("REPORT", options->report, "The report file")->required();
         AddFormatOption(app, options->format);
         AddOutputOption(app, options->output);
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
