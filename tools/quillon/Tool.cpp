#include "Tool.h"

#include "Output.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

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

namespace {

bool g_verbose = false;

// The standard input's copy: removed when the tool ends.
struct Spool {
    std::string path;
    ~Spool() {
        if (!path.empty())
            ::unlink(path.c_str());
    }
};

std::string SpoolStandardInput() {
    const char* folder = std::getenv("TMPDIR");
    std::string name =
        std::string(folder != nullptr && *folder ? folder : "/tmp") + "/quillon-stdin-XXXXXX";
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0)
        throw ToolError("cannot keep standard input in a temporary file: " +
                        std::string(std::strerror(errno)));
    std::vector<char> block(1 << 16);
    ssize_t got = 0;
    bool written = true;
    while (written && (got = ::read(STDIN_FILENO, block.data(), block.size())) != 0) {
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            break;
        for (ssize_t done = 0; written && done < got;) {
            const ssize_t step = ::write(descriptor, block.data() + done, got - done);
            written = step > 0 || (step < 0 && errno == EINTR);
            done += std::max<ssize_t>(step, 0);
        }
    }
    const int error = errno;
    ::close(descriptor);
    if (got < 0 || !written) {
        ::unlink(name.c_str());
        throw ToolError("cannot keep standard input in a temporary file: " +
                        std::string(std::strerror(error)));
    }
    return name;
}

// "1-6", "1-3, 5, 8-9": numbers in ascending order, runs shortened.
std::string Runs(std::vector<int> numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    std::string text;
    for (size_t i = 0; i < numbers.size();) {
        size_t last = i;
        while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1)
            ++last;
        text += (text.empty() ? "" : ", ") + std::to_string(numbers[i]);
        if (last > i)
            text += "-" + std::to_string(numbers[last]);
        i = last + 1;
    }
    return text;
}

} // namespace

std::string SpooledPath(const std::string& path) {
    if (path != "-")
        return path;
    static Spool spool;
    if (spool.path.empty())
        spool.path = SpoolStandardInput();
    return spool.path;
}

void SetVerbose(bool verbose) {
    g_verbose = verbose;
}

void Verbose(const std::string& text) {
    if (g_verbose)
        std::cerr << "quillon: " << text << "\n";
}

void LoadReport(const std::string& requested, CSamples& samples) {
    const auto start = std::chrono::steady_clock::now();
    const std::string path = SpooledPath(requested);
    const std::string name = requested == "-" ? "standard input" : Quoted(requested);
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0)
        throw ToolError("cannot open " + name + ": " + std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        throw ToolError("cannot open " + name + ": Is a directory");
    if (!S_ISREG(status.st_mode))
        throw ToolError("cannot open " + name + ": not a regular file");
    if (::access(path.c_str(), R_OK) != 0)
        throw ToolError("cannot open " + name + ": " + std::strerror(errno));
    Verbose("reading " + name + " (" + std::to_string(status.st_size) + " bytes)");
    if (!samples.Read(path.c_str()))
        throw ToolError("cannot read " + name);
    if (samples.GetSamplesCount() == 0)
        throw ToolError(name + " is not a report: it holds no sample");
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    Verbose("read " + name + ": " + std::to_string(samples.GetSamplesCount()) + " samples in " +
            Fixed(took.count(), 2) + " s");
}

std::string ProblemsSummary(const std::string& path, size_t problems) {
    return path + " has " + std::to_string(problems) + (problems == 1 ? " problem" : " problems") +
           " (quillon check " + path + " lists them)";
}

void LoadReport(const std::string& path, CSamples& samples, const GlobalOptions& options) {
    {
        // The library reports its progress in thousandths of the file.
        const HostHooks saved = GetHostHooks();
        struct RestoreHooks {
            const HostHooks& saved;
            ~RestoreHooks() { SetHostHooks(saved); }
        } restore{saved};
        if (!options.quiet && ::isatty(STDERR_FILENO)) {
            auto reached = std::make_shared<int>(0);
            HostHooks hooks = saved;
            const std::string text = "Reading " + path + " ";
            hooks.beginProgress = [reached](const CString&, int, int) { *reached = 0; };
            hooks.stepProgress = [reached, text](int amount) {
                const int percent = *reached / 10; // drawn again when the percentage moves
                *reached += amount;
                if (*reached / 10 != percent)
                    DrawProgressBar(text, *reached / 1000.0);
            };
            hooks.endProgress = [reached] {
                if (*reached > 0)
                    std::fprintf(stderr, "\r\033[K");
            };
            SetHostHooks(hooks);
        }
        LoadReport(path, samples);
    }
    const CReadReport& report = samples.GetReadReport();
    if (report.IsClean())
        return;
    if (options.strict)
        throw ToolError(ProblemsSummary(path, report.ProblemCount()));
    std::cerr << "quillon: warning: " << ProblemsSummary(path, report.ProblemCount()) << "\n";
}

void DrawProgressBar(const std::string& text, double share) {
    const int width = 30;
    share = std::clamp(share, 0.0, 1.0);
    const int filled = static_cast<int>(share * width);
    std::fprintf(stderr, "\r%s[%s%s] %3d%%", text.c_str(), std::string(filled, '#').c_str(),
                 std::string(width - filled, ' ').c_str(), static_cast<int>(share * 100));
}

CSampleData& SampleByNumber(CSamples& samples, int number, const std::string& path) {
    std::vector<int> numbers;
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        if (samples.GetSample(i)->GetNumber() == number)
            return *samples.GetSample(i);
        numbers.push_back(samples.GetSample(i)->GetNumber());
    }
    throw ToolError((path == "-" ? "standard input" : Quoted(path)) + " has no sample " +
                    std::to_string(number) + "; its samples are " + Runs(numbers));
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
    AsToolError([&] { SaveReportAtomically(samples, SpooledPath(inPath), outPath); });
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
