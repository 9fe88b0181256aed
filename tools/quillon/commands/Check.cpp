// quillon check: reads a report and lists what a careful reader would want to know about it.
#include "Command.h"
#include "Output.h"
#include "Report.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <map>

namespace quillon::tool {
namespace {

struct CheckOptions {
    std::string report;
    std::string output;
    Format format = Format::Table;
    const GlobalOptions* global = nullptr;
};

const char* KindText(CReadReport::Kind kind) {
    switch (kind) {
    case CReadReport::UnknownSection:
        return "unknown section skipped";
    case CReadReport::StrayBlock:
        return "block outside any section skipped";
    case CReadReport::StrayBlockEnd:
        return "'}' that closes nothing";
    case CReadReport::StrayLine:
        return "line outside any section";
    case CReadReport::SampleError:
        return "sample could not be read";
    case CReadReport::OpenBlock:
        return "block left open at the end of the file";
    }
    return "";
}

// The line number (from 1) of each offset, counting the line ends before it in one pass.
std::map<int64_t, int64_t> LineNumbers(const std::string& path, std::vector<int64_t> offsets) {
    std::sort(offsets.begin(), offsets.end());
    std::map<int64_t, int64_t> lines;
    std::ifstream file(path, std::ios::binary);
    int64_t position = 0, line = 1;
    char buffer[1 << 16];
    size_t next = 0;
    while (next < offsets.size() && file) {
        file.read(buffer, sizeof buffer);
        const std::streamsize read = file.gcount();
        for (std::streamsize i = 0; i < read && next < offsets.size(); ++i, ++position) {
            while (next < offsets.size() && offsets[next] == position)
                lines[offsets[next++]] = line;
            line += buffer[i] == '\n' ? 1 : 0;
        }
    }
    for (; next < offsets.size(); ++next)
        lines[offsets[next]] = line;
    return lines;
}

int Run(const CheckOptions& options) {
    LoadedReport report = LoadReport(options.report);
    const CReadReport& read = report.samples->GetReadReport();
    std::vector<int64_t> offsets;
    for (const CReadReport::Entry& entry : read.entries)
        offsets.push_back(entry.offset);
    const std::map<int64_t, int64_t> lines = LineNumbers(options.report, offsets);

    Table table{{"line", "problem", "section", "detail"}, {}};
    for (const CReadReport::Entry& entry : read.entries)
        table.rows.push_back(
            {lines.at(entry.offset), KindText(entry.kind), entry.name.str(), entry.detail.str()});
    if (read.omitted > 0)
        table.rows.push_back(
            {nullptr, "more lines passed over", "", std::to_string(read.omitted) + " not listed"});

    // What the model itself shows: samples of the same number, and metabolites whose peak the
    // sample does not hold.
    std::map<int, int> samplesOfNumber;
    for (int i = 0; i < report.samples->GetSamplesCount(); ++i) {
        CSampleData& sample = *report.samples->GetSample(i);
        const int count = ++samplesOfNumber[sample.GetNumber()];
        if (count == 2 || sample.IsDuplicate())
            table.rows.push_back(
                {nullptr, "duplicate sample", "SAMPLE",
                 "sample " + std::to_string(sample.GetNumber()) + " appears more than once"});
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
            if (metabolite.GetPeakNum() > 0 &&
                sample.GetCorispondingPeakInfo(metabolite.GetPeakNum(), 0) == nullptr)
                table.rows.push_back({nullptr, "metabolite refers to a missing peak", "METABOLITES",
                                      "sample " + std::to_string(sample.GetNumber()) +
                                          ", metabolite " + std::to_string(m) + " (" +
                                          metabolite.GetMetName() + "): peak " +
                                          std::to_string(metabolite.GetPeakNum())});
        }
    }

    const bool clean = table.rows.empty();
    if (options.format == Format::Json) {
        WriteOutput(options.output, nlohmann::json{{"report", report.path},
                                                   {"samples", report.samples->GetSamplesCount()},
                                                   {"clean", clean},
                                                   {"problems", ToJson(table)}}
                                            .dump(2) +
                                        "\n");
    } else if (!clean || options.format == Format::Csv) {
        WriteOutput(options.output, Render(table, options.format));
    }
    if (!options.global->quiet)
        std::cerr << "quillon: '" << report.path << "': " << report.samples->GetSamplesCount()
                  << " samples, "
                  << (clean ? std::string("no problems found")
                            : std::to_string(table.rows.size()) + " problems found")
                  << '\n';
    return clean ? kExitSuccess : kExitProblem;
}

const CommandRegistration registration{
    {"check", "Reads a report and lists what was skipped, broken or duplicated (exit 1 if any)",
     [](CLI::App& app, const GlobalOptions& global) -> std::function<int()> {
         auto options = std::make_shared<CheckOptions>();
         options->global = &global;
         app.footer("Example: quillon check examples/Chlorpromazine_HLM_batch.txt && echo clean");
         app.add_option("REPORT", options->report, "The report file")->required();
         AddFormatOption(app, options->format);
         AddOutputOption(app, options->output);
         return [options] { return Run(*options); };
     }}};

} // namespace
} // namespace quillon::tool
