#include "Tool.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
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

std::string CsvField(const std::string& text) {
    if (text.find_first_of(",\"\n") == std::string::npos)
        return text;
    std::string quoted = "\"";
    for (char ch : text) {
        if (ch == '"')
            quoted += '"';
        quoted += ch;
    }
    return quoted + "\"";
}

// Where output goes: collected and then written to standard output or atomically to a file.
void Emit(const std::string& text, const GlobalOptions& options) {
    if (options.output.empty() || options.output == "-")
        std::cout << text << std::flush;
    else
        WriteFileAtomically(options.output, text);
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

void PrintTable(const Table& table, const GlobalOptions& options) {
    std::ostringstream out;
    auto isNumeric = [&](size_t c) { return c < table.numeric.size() && table.numeric[c]; };
    if (options.format == "json") {
        nlohmann::json rows = nlohmann::json::array();
        for (const auto& row : table.rows) {
            nlohmann::json object = nlohmann::json::object();
            for (size_t c = 0; c < table.columns.size() && c < row.size(); ++c) {
                if (isNumeric(c) && !row[c].empty())
                    object[table.columns[c]] = ParseDouble(row[c].c_str());
                else if (isNumeric(c))
                    object[table.columns[c]] = nullptr;
                else
                    object[table.columns[c]] = row[c];
            }
            rows.push_back(std::move(object));
        }
        out << rows.dump(2) << "\n";
    } else if (options.format == "csv") {
        for (size_t c = 0; c < table.columns.size(); ++c)
            out << (c ? "," : "") << CsvField(table.columns[c]);
        out << "\n";
        for (const auto& row : table.rows) {
            for (size_t c = 0; c < row.size(); ++c)
                out << (c ? "," : "") << CsvField(row[c]);
            out << "\n";
        }
    } else {
        std::vector<size_t> width(table.columns.size(), 0);
        for (size_t c = 0; c < table.columns.size(); ++c)
            width[c] = table.columns[c].size();
        for (const auto& row : table.rows)
            for (size_t c = 0; c < row.size() && c < width.size(); ++c)
                width[c] = std::max(width[c], row[c].size());
        auto line = [&](const std::vector<std::string>& cells) {
            for (size_t c = 0; c < width.size(); ++c) {
                const std::string cell = c < cells.size() ? cells[c] : "";
                const std::string pad(width[c] - std::min(width[c], cell.size()), ' ');
                out << (c ? "  " : "") << (isNumeric(c) ? pad + cell : cell + pad);
            }
            out << "\n";
        };
        line(table.columns);
        std::vector<std::string> rule;
        for (size_t w : width)
            rule.push_back(std::string(w, '-'));
        line(rule);
        for (const auto& row : table.rows)
            line(row);
    }
    Emit(out.str(), options);
}

void PrintJson(const nlohmann::json& document, const GlobalOptions& options) {
    Emit(document.dump(2) + "\n", options);
}

void WriteFileAtomically(const std::string& path, const std::string& text) {
    const std::filesystem::path target(path);
    const std::filesystem::path folder =
        target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    std::string temporary = (folder / ("." + target.filename().string() + ".XXXXXX")).string();
    const int descriptor = ::mkstemp(temporary.data());
    if (descriptor < 0)
        throw ToolError("cannot write " + Quoted(path) + ": " + std::strerror(errno));
    size_t written = 0;
    int error = 0;
    while (written < text.size()) {
        const ssize_t n = ::write(descriptor, text.data() + written, text.size() - written);
        if (n < 0) {
            error = errno;
            break;
        }
        written += static_cast<size_t>(n);
    }
    if (error == 0 && ::fsync(descriptor) != 0)
        error = errno;
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    if (error == 0 && ::rename(temporary.c_str(), path.c_str()) != 0)
        error = errno;
    if (error != 0) {
        ::unlink(temporary.c_str());
        throw ToolError("cannot write " + Quoted(path) + ": " + std::strerror(error));
    }
}

void SaveReport(CSamples& samples, const std::string& inPath, const std::string& outPath) {
    const std::filesystem::path target(outPath);
    const std::filesystem::path folder =
        target.has_parent_path() ? target.parent_path() : std::filesystem::path(".");
    // The writer names the report in its molfile references: the temporary file carries the
    // target's name inside a private folder beside it, and is moved over the target at the end.
    std::string temporaryFolder = (folder / ".quillon-save-XXXXXX").string();
    if (::mkdtemp(temporaryFolder.data()) == nullptr)
        throw ToolError("cannot write " + Quoted(outPath) + ": " + std::strerror(errno));
    const std::string temporary = temporaryFolder + "/" + target.filename().string();
    int error = 0;
    std::string reason;
    try {
        CDelimitFile in(inPath.c_str(), CFile::modeRead);
        CDelimitFile out(temporary.c_str(), CFile::modeWrite | CFile::modeCreate);
        if (!samples.Write(&in, &out))
            reason = "the writer failed";
        out.Flush();
        if (reason.empty() && ::fsync(::fileno(out.m_pStream)) != 0)
            error = errno;
        out.Close();
    } catch (const CException& exception) {
        char text[512] = "";
        exception.GetErrorMessage(text, sizeof text);
        reason = text;
    }
    if (reason.empty() && error == 0 && ::rename(temporary.c_str(), outPath.c_str()) != 0)
        error = errno;
    ::unlink(temporary.c_str());
    ::rmdir(temporaryFolder.c_str());
    if (error != 0)
        reason = std::strerror(error);
    if (!reason.empty())
        throw ToolError("cannot save " + Quoted(outPath) + ": " + reason);
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
