// quillon summary: how often each expected metabolite was found, by sample.
#include "Command.h"
#include "Output.h"
#include "Report.h"

namespace quillon::tool {
namespace {

struct SummaryOptions {
    std::string report;
    std::string output;
    Format format = Format::Table;
};

int Run(const SummaryOptions& options) {
    LoadedReport report = LoadReport(options.report);
    CArray<MetaboliteCountInfo> summary;
    report.samples->CreateOverallMSSummaryData(summary, 0, -1);

    Table table;
    table.columns = {"metabolite", "shift"};
    for (int i = 0; i < report.samples->GetSamplesCount(); ++i)
        table.columns.push_back("sample " +
                                std::to_string(report.samples->GetSample(i)->GetNumber()));
    for (int r = 0; r < summary.GetSize(); ++r) {
        const MetaboliteCountInfo& info = summary[r];
        std::vector<nlohmann::json> row{info.name.str(), info.label.str()};
        row.insert(row.end(), info.counts.begin(), info.counts.end());
        table.rows.push_back(std::move(row));
    }
    WriteOutput(options.output, Render(table, options.format));
    return kExitSuccess;
}

const CommandRegistration registration{
    {"summary", "Found counts of the expected metabolites by sample",
     [](CLI::App& app, const GlobalOptions&) -> std::function<int()> {
         auto options = std::make_shared<SummaryOptions>();
         app.footer("Example: quillon summary examples/Chlorpromazine_HLM_batch.txt");
         app.add_option("REPORT", options->report, "The report file")->required();
         AddFormatOption(app, options->format);
         AddOutputOption(app, options->output);
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
