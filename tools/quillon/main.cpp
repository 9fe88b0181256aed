// quillon: read, analyse, export, plot and edit metabolite-identification reports.
#include "Commands.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <iostream>
#include <numeric>
#include <string_view>
#include <vector>

using namespace quillon;
using namespace quillon::tool;

namespace {

// Edits (insertions, deletions, substitutions) that turn a into b.
size_t EditDistance(std::string_view a, std::string_view b) {
    std::vector<size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t above = row[j];
            row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] != b[j - 1])});
            diagonal = above;
        }
    }
    return row[b.size()];
}

// The first word that is no option, when it names no subcommand: a message suggesting the nearest
// names (at most two edits away), or listing them all. Empty when the command line is fine.
std::string UnknownSubcommand(CLI::App& app, int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const std::string_view word = argv[i];
        if (word.empty() || word[0] == '-')
            continue;
        std::vector<std::string> names;
        for (const CLI::App* command : app.get_subcommands({}))
            names.push_back(command->get_name());
        if (std::find(names.begin(), names.end(), word) != names.end())
            return "";
        std::string message = "unknown subcommand '" + std::string(word) + "'";
        size_t nearest = 3;
        for (const std::string& name : names)
            nearest = std::min(nearest, EditDistance(word, name));
        std::string close;
        for (const std::string& name : names)
            if (EditDistance(word, name) == nearest)
                close += (close.empty() ? "'" : " or '") + name + "'";
        if (!close.empty())
            return message + "; did you mean " + close + "?";
        std::string all;
        for (const std::string& name : names)
            all += (all.empty() ? "" : ", ") + name;
        return message + "; the subcommands are " + all;
    }
    return "";
}

} // namespace

int main(int argc, char** argv) {
    CLI::App app{"quillon: read, analyse, export, plot and edit metabolite-identification reports"};
    app.set_version_flag("--version", std::string("quillon ") + QUILLON_VERSION);
    app.require_subcommand(1);
    // Options of the whole tool (--quiet) may also follow the subcommand.
    app.fallthrough();
    GlobalOptions options;
    app.add_flag("-q,--quiet", options.quiet,
                 "No messages on standard error, except the warning about a damaged report");
    app.add_flag("--strict", options.strict,
                 "A report with problems (see the check subcommand) is an error (exit code 1)\n"
                 "instead of a warning");
    app.add_flag("-v,--verbose", options.verbose,
                 "Say on standard error what the tool does: files read, samples, time taken");
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

    const std::string unknown = UnknownSubcommand(app, argc, argv);
    if (!unknown.empty()) {
        std::cerr << "quillon: " << unknown << "\n";
        return kExitUsage;
    }
    const auto start = std::chrono::steady_clock::now();
    app.parse_complete_callback([&options] { SetVerbose(options.verbose && !options.quiet); });
    try {
        app.parse(argc, argv);
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
        Verbose("done in " + Fixed(took.count(), 2) + " s");
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
