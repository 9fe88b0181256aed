// html: the results browser as one file that opens offline, for sharing a batch read-only.
#include "Commands.h"
#include "serve/LoadReports.h"
#include "serve/Snapshot.h"

#include <memory>

namespace quillon::tool {

void RegisterHtml(CLI::App& app, GlobalOptions& options) {
    struct Settings {
        std::vector<std::string> paths;
        std::string output;
    };
    auto settings = std::make_shared<Settings>();
    CLI::App* command = app.add_subcommand(
        "html", "Writes the results browser with the reports' data as one HTML file that opens\n"
                "offline, read-only (fragment analyses run and included)\n"
                "  example: quillon html batch.txt -o batch.html");
    command->add_option("REPORT", settings->paths, "The report files")->required();
    command->add_option("-o,--output", settings->output, "The HTML file to write")->required();
    command->callback([settings, &options] {
        serve::ServedReports reports = serve::LoadReports(settings->paths, options);
        const std::string page = serve::SnapshotPage(serve::SnapshotAnswers(reports));
        WriteFileAtomically(settings->output, page);
        Note(options,
             "wrote " + settings->output + " (" + std::to_string(page.size() / 1024) + " KiB)");
    });
}

} // namespace quillon::tool
