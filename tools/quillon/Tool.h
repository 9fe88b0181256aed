#pragma once

// What the subcommands of the quillon tool share: the options every subcommand takes, loading a
// report with a clear reason when it cannot be read, row output as table, CSV or JSON, and
// atomic saving.

#include <quillon/quillon.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon::tool {

// Exit codes of the tool.
constexpr int kExitOk = 0;
constexpr int kExitFailed = 1; // the input could not be read, or a check found problems
constexpr int kExitUsage = 2;
constexpr int kExitCancelled = 130;

// A failure that ends the tool with a message of one line and an exit code.
struct ToolError : std::runtime_error {
    ToolError(const std::string& message, int exitCode = kExitFailed)
        : std::runtime_error(message), code(exitCode) {}
    int code;
};

// The options all subcommands share.
struct GlobalOptions {
    bool quiet = false;
    std::string format = "table"; // table, csv or json
    std::string output;           // empty: standard output
};

// A subcommand: adds itself to the application; the returned function runs it.
using Registration = std::function<void(CLI::App& app, GlobalOptions& options)>;

// Adds the options shared by every subcommand that prints rows.
void AddOutputOptions(CLI::App& command, GlobalOptions& options);

// Reads a report into samples. Throws ToolError naming the file and the reason: missing, a
// folder, not a regular file, unreadable, or not a report (no sample in it).
void LoadReport(const std::string& path, CSamples& samples);

// The sample with that number; throws ToolError when the report has none.
CSampleData& SampleByNumber(CSamples& samples, int number, const std::string& path);

// Writes a JSON document to the output (standard output or the -o file, written atomically).
void PrintJson(const nlohmann::json& document, const GlobalOptions& options);

// The library's error as one line naming the file and the reason.
std::string LibraryMessage(const CException& exception);

// Writes text to path atomically: a temporary file beside it, flushed and synced, renamed over
// the target. Throws ToolError (the target untouched) when any step fails.
void WriteFileAtomically(const std::string& path, const std::string& text);
// Saves samples read from inPath into outPath through the library's writer, atomically.
void SaveReport(CSamples& samples, const std::string& inPath, const std::string& outPath);

// Runs the fragment analysis of the sample with the neutral-loss list of the settings file
// settingsPath (any name; only read, never written), or of Tarnwick.ini beside the report when
// settingsPath is empty. A named file that is missing or unreadable throws ToolError naming it; a
// list without a selected loss, or no file beside the report, is a warning. Progress: a bar on a
// terminal, one line otherwise, none when quiet. Ctrl-C cancels through the library's cancel hook:
// throws ToolError "cancelled" with kExitCancelled. Returns the sample's analysis with its results.
CFragmentAnalysis& RunFragmentAnalysis(CSampleData& sample, const std::string& settingsPath,
                                       const std::string& reportPath, const GlobalOptions& options);

// Writes a message line to standard error unless quiet.
void Note(const GlobalOptions& options, const std::string& text);

// A number as text with the given decimals ("%.*f").
std::string Fixed(double value, int decimals);

} // namespace quillon::tool
