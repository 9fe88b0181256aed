#include "Tool.h"

#include "Output.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tool {

namespace {

std::string Quoted(const std::string& path) {
    return "'" + path + "'";
}

} // namespace

void AddOutputOptions(CLI::App& command, GlobalOptions& options) {
    command.add_option("--format", options.format, "Output format: table, csv or json")
        ->check(CLI::IsMember({"table", "csv", "json"}));
    command.add_option("-o,--output", options.output, "Write to FILE instead of standard output");
}

void LoadReport(const std::string& path, CSamples& samples) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        throw ToolError("cannot open " + Quoted(path) + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        throw ToolError("cannot open " + Quoted(path) + ": Is a directory");
    if (!S_ISREG(status.st_mode))
        throw ToolError("cannot open " + Quoted(path) + ": not a regular file");
    if (::access(path.c_str(), R_OK) != 0)
        throw ToolError("cannot open " + Quoted(path) + ": " + std::strerror(errno));
    if (!samples.Read(path.c_str()))
        throw ToolError("cannot read " + Quoted(path));
    if (samples.GetSamplesCount() == 0)
        throw ToolError(Quoted(path) + " is not a report: it holds no sample");
}

CSampleData& SampleByNumber(CSamples& samples, int number, const std::string& path) {
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        if (samples.GetSample(i)->GetNumber() == number)
            return *samples.GetSample(i);
    }
    throw ToolError(Quoted(path) + " has no sample " + std::to_string(number));
}

void PrintJson(const nlohmann::json& document, const GlobalOptions& options) {
    Output output(options.output);
    output.Write(document.dump(2) + "\n");
    output.Close();
}

std::string LibraryMessage(const CException& exception) {
    char text[512] = "";
    exception.GetErrorMessage(text, sizeof text);
    return text;
}

namespace {

// The library's file errors as the tool's: one line naming the file and the reason.
template <class Operation>
void AsToolError(Operation operation) {
    try {
        operation();
    } catch (const CException& exception) {
        throw ToolError(LibraryMessage(exception));
    }
}

} // namespace

void WriteFileAtomically(const std::string& path, const std::string& text) {
    AsToolError([&] { quillon::WriteFileAtomically(path, text); });
}

void SaveReport(CSamples& samples, const std::string& inPath, const std::string& outPath) {
    AsToolError([&] { SaveReportAtomically(samples, inPath, outPath); });
}

void Note(const GlobalOptions& options, const std::string& text) {
    if (!options.quiet)
        std::cerr << "quillon: " << text << "\n";
}

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

} // namespace quillon::tool
