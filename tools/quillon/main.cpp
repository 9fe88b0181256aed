// quillon: reads, analyses, exports, plots and edits metabolite-identification reports.
#include "Command.h"

#include <quillon/platform/HostHooks.h>

#include <algorithm>
#include <exception>
#include <iostream>

using namespace quillon;
using namespace quillon::tool;

namespace {

constexpr const char kProgram[] = "quillon";

// The library's messages go to standard error under the program's name.
void RouteLibraryMessages(const GlobalOptions& global) {
    HostHooks hooks = GetHostHooks();
    hooks.showMessage = [&global](const CString& text, const CString& title, MessageIcon icon) {
        if (!global.quiet || icon == MessageIcon::Error || icon == MessageIcon::Exclamation)
            std::cerr << kProgram << ": " << title.c_str() << ": " << text.c_str() << '\n';
        return kMessageOk;
    };
    SetHostHooks(std::move(hooks));
}

} // namespace

int main(int argc, char** argv) {
    GlobalOptions global;
    CLI::App app{"Reads, analyses, exports, plots and edits metabolite-identification reports.\n"
                 "Example: quillon info examples/Chlorpromazine_HLM_batch.txt",
                 kProgram};
    app.set_version_flag("--version", std::string(kProgram) + " " + QUILLON_VERSION);
    app.add_flag("-q,--quiet", global.quiet, "Print no messages except errors");
    app.require_subcommand(1);

    std::vector<Command> commands = Commands();
    std::sort(commands.begin(), commands.end(),
              [](const Command& a, const Command& b) { return a.name < b.name; });
    std::vector<std::pair<CLI::App*, std::function<int()>>> runners;
    for (const Command& command : commands) {
        CLI::App* sub = app.add_subcommand(command.name, command.description);
        sub->fallthrough();
        runners.emplace_back(sub, command.setup(*sub, global));
    }

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0)
            return app.exit(error);
        std::cerr << kProgram << ": " << error.what() << '\n'
                  << "Run '" << kProgram << " --help' for the options.\n";
        return kExitUsage;
    }

    RouteLibraryMessages(global);
    try {
        for (auto& [sub, run] : runners)
            if (sub->parsed())
                return run();
    } catch (const ToolError& error) {
        std::cerr << kProgram << ": " << error.message << '\n';
        return error.exitCode;
    } catch (const std::exception& error) {
        std::cerr << kProgram << ": " << error.what() << '\n';
        return kExitProblem;
    }
    return kExitUsage;
}
