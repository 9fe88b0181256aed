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
    bool strict = false;  // a report with problems is an error, not a warning
    bool verbose = false; // what the tool does (files read, samples, time) on standard error
    std::string format = "table"; // table, csv or json
    std::string output;           // empty: standard output
};

// A subcommand: adds itself to the application; the returned function runs it.
using Registration = std::function<void(CLI::App& app, GlobalOptions& options)>;

// Adds the options shared by every subcommand that prints rows.
void AddOutputOptions(CLI::App& command, GlobalOptions& options);

// Reads a report into samples. Throws ToolError naming the file and the reason: missing, a
// folder, not a regular file, unreadable, or not a report (no sample in it). The path "-" reads
// standard input (see SpooledPath). With --verbose, says what was read and how long it took.
void LoadReport(const std::string& path, CSamples& samples);
// The same for a subcommand that goes on to use what it read: a progress bar while reading on a
// terminal (not when quiet), and when the read report is not clean, one warning line on standard
// error (even when quiet), or with --strict a ToolError (exit 1) before any output:
//   "batch.txt has 3 problems (quillon check batch.txt lists them)"
void LoadReport(const std::string& path, CSamples& samples, const GlobalOptions& options);
// The line above, for a report with that many problems (1: "1 problem").
std::string ProblemsSummary(const std::string& path, size_t problems);

// Draws a progress bar on standard error in place of the previous one: the text, then the bar
// filled to share (0..1) and the percentage.
void DrawProgressBar(const std::string& text, double share);

// The file a report path names: the path itself, or for "-" a private temporary file (mode 0600)
// holding all of standard input, written on the first call and removed when the tool ends, since
// the reader and the writer need a file they can seek in.
std::string SpooledPath(const std::string& path);

// The sample with that number; throws ToolError naming the report's sample numbers when it has
// none ("'b.txt' has no sample 9; its samples are 1-6").
CSampleData& SampleByNumber(CSamples& samples, int number, const std::string& path);

// Turns the messages of --verbose on or off for the whole run.
void SetVerbose(bool verbose);
// Writes a line on standard error when --verbose is on: "quillon: read b.txt: 6 samples in 0.21 s".
void Verbose(const std::string& text);

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
