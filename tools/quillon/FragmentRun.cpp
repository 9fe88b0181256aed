// The fragment analysis of one sample as the tool runs it: progress on standard error,
// cancellation on Ctrl-C, the neutral-loss list from the chosen settings file.
#include "Tool.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

namespace quillon::tool {

namespace {

std::atomic<bool> g_interrupted{false};

void OnInterrupt(int) {
    g_interrupted = true;
}

// Progress and cancellation through the library's hooks for the life of the object: a bar on a
// terminal, one line otherwise (none when quiet), and Ctrl-C asks the analysis to stop.
class ProgressAndCancel {
public:
    ProgressAndCancel(const GlobalOptions& options, const std::string& what)
        : m_saved(GetHostHooks()) {
        HostHooks hooks = m_saved;
        if (!options.quiet && ::isatty(STDERR_FILENO)) {
            hooks.beginProgress = [this, what](const CString&, int lower, int upper) {
                m_text = "Fragment analysis of " + what + " (Ctrl-C cancels) ";
                m_lower = lower;
                m_upper = upper > lower ? upper : lower + 1;
                m_position = lower;
                Draw();
            };
            hooks.stepProgress = [this](int amount) {
                m_position += amount;
                Draw();
            };
            hooks.endProgress = [] { std::fprintf(stderr, "\r\033[K"); };
        } else if (!options.quiet) {
            hooks.beginProgress = [&options, what](const CString&, int, int) {
                Note(options, "running the fragment analysis of " + what);
            };
        }
        hooks.cancelRequested = [] { return g_interrupted.load(); };
        g_interrupted = false;
        SetHostHooks(hooks);
        m_previousHandler = std::signal(SIGINT, OnInterrupt);
    }
    ProgressAndCancel(const ProgressAndCancel&) = delete;
    ProgressAndCancel& operator=(const ProgressAndCancel&) = delete;
    ~ProgressAndCancel() {
        std::signal(SIGINT, m_previousHandler);
        SetHostHooks(m_saved);
    }

private:
    void Draw() const {
        DrawProgressBar(m_text, double(m_position - m_lower) / (m_upper - m_lower));
    }

    HostHooks m_saved;
    void (*m_previousHandler)(int) = nullptr;
    std::string m_text;
    int m_lower = 0;
    int m_upper = 1;
    int m_position = 0;
};

constexpr std::uintmax_t kMaxSettingsBytes = 16 << 20;

// The whole of a settings file, read with the reason of any failure naming the file.
std::string ReadSettings(const std::filesystem::path& path) {
    const std::string shown = "'" + path.string() + "'";
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (error)
        throw ToolError("cannot open " + shown + ": " + error.message());
    if (std::filesystem::is_directory(status))
        throw ToolError("cannot open " + shown + ": Is a directory");
    if (!std::filesystem::is_regular_file(status))
        throw ToolError("cannot open " + shown + ": not a regular file");
    if (std::filesystem::file_size(path, error) > kMaxSettingsBytes)
        throw ToolError("cannot read " + shown + ": larger than a settings file can be");
    std::ifstream in(path, std::ios::binary);
    if (!in)
        throw ToolError("cannot open " + shown + ": " + std::strerror(errno));
    std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (in.bad())
        throw ToolError("cannot read " + shown + ": " + std::strerror(errno));
    return text;
}

// The neutral-loss list for the life of the object. The library reads the list from its settings
// file name in the host's working directory and offers it only from a file it could save back to;
// the tool reads the file the user named (of any name, read-only or not) and hands the library a
// private copy in a folder of its own, removed afterwards. Without a named file the one beside the
// report is used when present. Warns when the list holds no selected loss.
class NeutralLossSettings {
public:
    NeutralLossSettings(const std::string& settings, const std::string& report,
                        const GlobalOptions& options)
        : m_saved(GetHostHooks()) {
        std::filesystem::path source = settings;
        if (settings.empty()) {
            source = std::filesystem::absolute(report).parent_path() / kSettingsName;
            std::error_code error;
            if (!std::filesystem::exists(source, error)) {
                Note(options, "warning: no neutral-loss list: '" + source.string() +
                                  "' is missing (--settings names another file)");
                UseFolder("/dev/null");
                return;
            }
        }
        const std::string text = ReadSettings(source);
        MakeCopy(text);
        CCompounds losses;
        if (!CTarnwickIniInterface().GetNeutralLosses(losses, true) || losses.GetSize() == 0)
            Note(options, "warning: '" + source.string() + "' lists no selected neutral loss");
    }
    NeutralLossSettings(const NeutralLossSettings&) = delete;
    NeutralLossSettings& operator=(const NeutralLossSettings&) = delete;
    ~NeutralLossSettings() {
        SetHostHooks(m_saved);
        if (!m_folder.empty()) {
            std::error_code error;
            std::filesystem::remove_all(m_folder, error);
        }
    }

private:
    static constexpr const char* kSettingsName = "Tarnwick.ini";

    void MakeCopy(const std::string& text) {
        std::string folder =
            (std::filesystem::temp_directory_path() / "quillon-settings-XXXXXX").string();
        if (::mkdtemp(folder.data()) == nullptr)
            throw ToolError("cannot make a folder in " +
                            std::filesystem::temp_directory_path().string() + ": " +
                            std::strerror(errno));
        m_folder = folder;
        std::ofstream out(m_folder / kSettingsName, std::ios::binary);
        out << text;
        out.close();
        if (!out)
            throw ToolError("cannot copy the settings file into " + m_folder.string());
        UseFolder(m_folder.string());
    }

    void UseFolder(const std::string& folder) {
        HostHooks hooks = GetHostHooks();
        hooks.workingDirectory = [folder] { return CString(folder); };
        SetHostHooks(hooks);
    }

    HostHooks m_saved;
    std::filesystem::path m_folder;
};

} // namespace

CFragmentAnalysis& RunFragmentAnalysis(CSampleData& sample, const std::string& settingsPath,
                                       const std::string& reportPath,
                                       const GlobalOptions& options) {
    const NeutralLossSettings losses(settingsPath, reportPath, options);
    const std::string what = "sample " + std::to_string(sample.GetNumber());
    CFragmentAnalysis& analysis = *sample.GetFragmentAnalysis();
    bool done = false;
    {
        const ProgressAndCancel progress(options, what);
        done = analysis.DoFragmentAnalysis(&sample);
    }
    if (g_interrupted)
        throw ToolError("cancelled", kExitCancelled);
    if (!done && !analysis.HasNeutralLosses())
        Note(options, what + ": no fragment analysis (no low- and high-energy function pair)");
    return analysis;
}

} // namespace quillon::tool
