#include "Tool.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
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

// "42", "-7": printed as an integer in JSON.
bool IsWholeNumber(const std::string& text) {
    const size_t digits = text.find_first_not_of('-') == 1 ? 1 : 0;
    return text.size() > digits && text.size() < 19 &&
           text.find_first_not_of("0123456789", digits) == std::string::npos;
}

// Where output goes: collected and then written to standard output or atomically to a file.
void Emit(const std::string& text, const GlobalOptions& options) {
    if (options.output.empty() || options.output == "-")
        std::cout << text << std::flush;
    else
        WriteFileAtomically(options.output, text);
}

// A file written in place of a target: made in a private folder beside the target (named after
// it and this process, with a random suffix) under the target's own name, since the report writer
// names the file in what it writes, then moved over the target. Whatever is left of it when the
// object goes is removed, so a failure at any step leaves the target as it was and no litter.
class PendingFile {
public:
    explicit PendingFile(const std::string& target) : m_shownTarget(target) {
        std::error_code error;
        std::filesystem::path resolved(target);
        // Replace the file a link points to, not the link.
        if (std::filesystem::is_symlink(std::filesystem::symlink_status(resolved, error))) {
            resolved = std::filesystem::canonical(resolved, error);
            if (error)
                Fail(error.message());
        }
        m_target = resolved.string();
        m_exists = ::stat(m_target.c_str(), &m_status) == 0;
        if (m_exists && S_ISDIR(m_status.st_mode))
            Fail("Is a directory");
        if (m_exists && !S_ISREG(m_status.st_mode))
            Fail("not a regular file");
        // Renaming would replace a read-only file too: honour its protection instead.
        if (m_exists && ::access(m_target.c_str(), W_OK) != 0)
            Fail(std::strerror(errno));
        const std::filesystem::path folder =
            resolved.has_parent_path() ? resolved.parent_path() : std::filesystem::path(".");
        const std::string name = resolved.filename().string();
        m_folder = (folder / ("." + name + "." + std::to_string(::getpid()) + ".XXXXXX")).string();
        if (::mkdtemp(m_folder.data()) == nullptr) {
            m_folder.clear();
            Fail(std::strerror(errno));
        }
        m_path = m_folder + "/" + name;
    }
    PendingFile(const PendingFile&) = delete;
    PendingFile& operator=(const PendingFile&) = delete;
    ~PendingFile() {
        if (!m_committed && !m_path.empty())
            ::unlink(m_path.c_str());
        if (!m_folder.empty())
            ::rmdir(m_folder.c_str());
    }

    // Where to write the new content.
    const std::string& Path() const { return m_path; }

    // Gives the written file the target's owner and permissions (a new target keeps the
    // default mode it was created with), syncs it to the disk, renames it over the target and
    // syncs the folder, so that the new name survives a crash. Throws ToolError.
    void Commit() {
        const int descriptor = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0)
            Fail(std::strerror(errno));
        int error = 0;
        if (m_exists) {
            // Only a privileged user may give the file away; the permissions matter more.
            [[maybe_unused]] const int owned =
                ::fchown(descriptor, m_status.st_uid, m_status.st_gid);
            if (::fchmod(descriptor, m_status.st_mode & 07777) != 0)
                error = errno;
        }
        if (error == 0 && ::fsync(descriptor) != 0)
            error = errno;
        ::close(descriptor);
        if (error == 0 && ::rename(m_path.c_str(), m_target.c_str()) != 0)
            error = errno;
        if (error != 0)
            Fail(std::strerror(error));
        m_committed = true;
        const std::string folder = std::filesystem::path(m_target).has_parent_path()
                                       ? std::filesystem::path(m_target).parent_path().string()
                                       : std::string(".");
        const int folderDescriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (folderDescriptor >= 0) {
            ::fsync(folderDescriptor);
            ::close(folderDescriptor);
        }
    }

private:
    [[noreturn]] void Fail(const std::string& reason) const {
        throw ToolError("cannot write " + Quoted(m_shownTarget) + ": " + reason);
    }

    std::string m_shownTarget; // as the user named it
    std::string m_target;      // the file to replace, links followed
    std::string m_folder;
    std::string m_path;
    struct stat m_status {};
    bool m_exists = false;
    bool m_committed = false;
};

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
                if (isNumeric(c) && IsWholeNumber(row[c]))
                    object[table.columns[c]] = std::atoll(row[c].c_str());
                else if (isNumeric(c) && !row[c].empty())
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
    PendingFile pending(path);
    const int descriptor =
        ::open(pending.Path().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        throw ToolError("cannot write " + Quoted(path) + ": " + std::strerror(errno));
    int error = 0;
    for (size_t written = 0; written < text.size() && error == 0;) {
        const ssize_t n = ::write(descriptor, text.data() + written, text.size() - written);
        if (n > 0)
            written += static_cast<size_t>(n);
        else if (n < 0 && errno != EINTR)
            error = errno;
    }
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    if (error != 0)
        throw ToolError("cannot write " + Quoted(path) + ": " + std::strerror(error));
    pending.Commit();
}

void SaveReport(CSamples& samples, const std::string& inPath, const std::string& outPath) {
    PendingFile pending(outPath);
    try {
        CDelimitFile in(inPath.c_str(), CFile::modeRead);
        CDelimitFile out(pending.Path().c_str(), CFile::modeWrite | CFile::modeCreate);
        if (!samples.Write(&in, &out))
            throw ToolError("cannot save " + Quoted(outPath) + ": the writer failed");
        out.Flush();
        out.Close();
    } catch (const CException& exception) {
        char text[512] = "";
        exception.GetErrorMessage(text, sizeof text);
        throw ToolError("cannot save " + Quoted(outPath) + ": " + text);
    }
    pending.Commit();
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
