// quillon: read, analyse, export, plot and edit metabolite-identification reports.
#include "Commands.h"

#include <csignal>
#include <iostream>

using namespace quillon;
using namespace quillon::tool;

int main(int argc, char** argv) {
    CLI::App app{"quillon: read, analyse, export, plot and edit metabolite-identification reports"};
    app.set_version_flag("--version", std::string("quillon ") + QUILLON_VERSION);
    app.require_subcommand(1);
    // Options of the whole tool (--quiet) may also follow the subcommand.
    app.fallthrough();
    GlobalOptions options;
    app.add_flag("-q,--quiet", options.quiet, "No messages on standard error");
    for (const Registration& add :
         {Registration(RegisterInfo), Registration(RegisterMetabolites),
          Registration(RegisterSummary), Registration(RegisterFragments),
          Registration(RegisterStability), Registration(RegisterPlot), Registration(RegisterExport),
          Registration(RegisterEdit), Registration(RegisterMolfiles), Registration(RegisterCheck),
          Registration(RegisterServe), Registration(RegisterHtml)})
        add(app, options);

    // A write beyond the file-size limit fails with an error, so that a save is abandoned cleanly,
    // instead of ending the tool.
    std::signal(SIGXFSZ, SIG_IGN);

    // The library's messages go to standard error under the program's name.
    HostHooks hooks = GetHostHooks();
    hooks.showMessage = [&options](const CString& text, const CString&, MessageIcon) {
        if (!options.quiet)
            std::cerr << "quillon: " << text.str() << "\n";
        return kMessageOk;
    };
    // Molfiles are extracted only by the molfiles subcommand, into the folder it is given. Every
    // other subcommand points the library at a folder that can hold no molfile list, so that a
    // "Molfiles.list" in the current folder is neither added to nor joined by .mol files.
    hooks.molfileDirectory = [] { return CString("/dev/null/"); };
    SetHostHooks(hooks);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? kExitOk : kExitUsage;
    } catch (const ToolError& error) {
        std::cerr << "quillon: " << error.what() << "\n";
        return error.code;
    } catch (const std::exception& error) {
        std::cerr << "quillon: " << error.what() << "\n";
        return kExitFailed;
    }
    return kExitOk;
}
