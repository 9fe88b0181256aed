// check: reads a report and lists what reading passed over, could not read or took as a default
// (the library's read report, with line numbers).
#include "Commands.h"

#include <algorithm>
#include <iostream>
#include <memory>

namespace quillon::tool {

namespace {

std::string Finding(const CReadReport::Entry& entry) {
    const std::string name = entry.name.str();
    const std::string detail = entry.detail.str();
    switch (entry.kind) {
    case CReadReport::UnknownSection:
        return "unknown section [" + name + "] skipped with its block";
    case CReadReport::StrayBlock:
        return "a block outside any section skipped";
    case CReadReport::StrayBlockEnd:
        return "a \"}\" closes no block";
    case CReadReport::StrayLine:
        return "a line outside any section (\"" + name + "\") passed over";
    case CReadReport::SampleError:
        return "a sample could not be read and was left out: " + detail;
    case CReadReport::OpenBlock:
        return "the block of [" + name + "] is left open at the end of the file";
    case CReadReport::BadNumber:
        return "\"" + name + "\" holds \"" + detail + "\", not a number: read as 0";
    case CReadReport::StrayRecord:
        return "a line that is no record of " +
               (name.empty() ? std::string("its data block") : "[" + name + "]") + " (\"" + detail +
               "\") passed over";
    case CReadReport::DuplicateSample:
        return "sample " + name + " appears again (the report holds it twice)";
    }
    return {};
}

} // namespace

void RegisterCheck(CLI::App& app, GlobalOptions& options) {
    auto path = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand(
        "check", "Reads a report and lists, with line numbers, what reading passed over or took\n"
                 "as a default: sections skipped, lines outside any section or that are no\n"
                 "record of their block, fields without the number they should hold, samples\n"
                 "that could not be read or appear twice, a block left open; exit code 1 when\n"
                 "something was found\n"
                 "  example: quillon check batch.txt");
    command->add_option("REPORT", *path, "The report file")->required();
    command->callback([path, &options] {
        // Reading errors are listed below with where they happened, not shown as they occur.
        const HostHooks saved = GetHostHooks();
        HostHooks silent = saved;
        silent.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
        SetHostHooks(silent);
        CSamples samples;
        try {
            LoadReport(*path, samples);
        } catch (...) {
            SetHostHooks(saved);
            throw;
        }
        SetHostHooks(saved);

        const CReadReport& report = samples.GetReadReport();
        // In the order of the file (a sample's open block is only known at its end).
        std::vector<const CReadReport::Entry*> entries;
        for (const CReadReport::Entry& entry : report.entries)
            entries.push_back(&entry);
        std::stable_sort(entries.begin(), entries.end(),
                         [](const auto* a, const auto* b) { return a->line < b->line; });
        std::vector<std::string> findings;
        for (const CReadReport::Entry* entry : entries)
            findings.push_back("line " + std::to_string(entry->line) + ": " + Finding(*entry));
        if (report.omitted > 0)
            findings.push_back(std::to_string(report.omitted) + " more problems not listed");
        for (const std::string& finding : findings)
            std::cout << *path << ": " << finding << "\n";
        if (!report.IsClean())
            throw ToolError(std::to_string(report.ProblemCount()) +
                            (report.ProblemCount() == 1 ? " problem" : " problems") +
                            " found in '" + *path + "'");
        Note(options, "'" + *path + "': " + std::to_string(samples.GetSamplesCount()) +
                          " samples, no problems found");
    });
}

} // namespace quillon::tool
