// check: reads a report and lists what reading passed over, could not read or took as a default
// (the library's read report, with line numbers).
#include "Commands.h"
#include "ReadFindings.h"

#include <iostream>
#include <memory>

namespace quillon::tool {

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
        for (const std::string& finding : ReadFindings(report))
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
