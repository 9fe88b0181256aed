// The fragment analysis of one sample as the tool runs it: progress on standard error,
// cancellation on Ctrl-C, the neutral-loss list from the chosen settings file.
#include "Tool.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <filesystem>
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

// The settings file is looked for in the working directory: the folder of the given file, or the
// report's folder.
void UseSettingsFolder(const std::string& settings, const std::string& report) {
    const std::filesystem::path folder =
        std::filesystem::absolute(settings.empty() ? report : settings).parent_path();
    HostHooks hooks = GetHostHooks();
    hooks.workingDirectory = [folder] { return CString(folder.string()); };
    SetHostHooks(hooks);
}

} // namespace

CFragmentAnalysis& RunFragmentAnalysis(CSampleData& sample, const std::string& settingsPath,
                                       const std::string& reportPath,
                                       const GlobalOptions& options) {
    UseSettingsFolder(settingsPath, reportPath);
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
