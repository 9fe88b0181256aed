#pragma once

// A report as the server holds it: the model, the one lock every access to it takes (the library
// is not thread-safe), the model's version, the parent structures read with it, and the fragment
// analysis jobs of its samples.

#include "../Tool.h"
#include "ReportReview.h"

#include <quillon/quillon.h>

#include <nlohmann/json.hpp>

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace quillon::tool::serve {

// The fragment analysis of one sample run in the background. Its state and progress are read
// without the report's lock; its result is written once, before the state becomes "done".
struct FragmentJob {
    std::atomic<int> state{0}; // see FragmentJobState
    std::atomic<double> progress{0.0};
    std::atomic<bool> cancel{false};
    nlohmann::json result; // fragment and neutral-loss rows once done
    std::string message;   // why it failed
    std::thread worker;
};

enum FragmentJobState { kJobRunning = 0, kJobDone = 1, kJobCancelled = 2, kJobFailed = 3 };

class ServedReport {
public:
    // Reads the report (as LoadReport with options does, throwing ToolError) and keeps the molfile
    // text of each sample that embeds one. molfileFolder is where the library extracted them
    // while reading.
    ServedReport(const std::string& path, const std::string& molfileFolder,
                 const GlobalOptions& options);
    ~ServedReport(); // cancels running jobs and waits for them
    ServedReport(const ServedReport&) = delete;
    ServedReport& operator=(const ServedReport&) = delete;

    const std::string& Path() const { return m_path; }
    // The file name shown on the page: the report's, or the one it was last saved as.
    std::string Name() const { return m_review.Name(); }

    // The review of the report's model: use it inside WithSamples, except where ReportReview says.
    ReportReview& Review() { return m_review; }

    // Runs access with the model locked; access receives the samples.
    template <class Access>
    auto WithSamples(Access access) {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return access(m_samples);
    }
    // Counts up each time a reviewer's change (or its undo) alters the model, so that a change
    // made from a stale view is refused. The fragment analysis adds results beside what is
    // reviewed and leaves it alone.
    long long Version() const { return m_version.load(); }
    void Changed() { ++m_version; }

    // The molfile of the sample's parent as the report embeds it; empty when it has none.
    std::string Molfile(int sampleNumber) const;

    // The job of the sample, or null when none was started.
    std::shared_ptr<FragmentJob> Job(int sampleNumber);
    // Starts the sample's fragment analysis unless one is running; returns its job.
    std::shared_ptr<FragmentJob> StartJob(int sampleNumber);

private:
    void RunJob(int sampleNumber, FragmentJob& job);

    std::string m_path;
    ReportReview m_review;
    CSamples m_samples;
    std::mutex m_mutex;
    std::atomic<long long> m_version{1};
    std::map<int, std::string> m_molfiles;
    std::mutex m_jobsMutex;
    std::map<int, std::shared_ptr<FragmentJob>> m_jobs;
};

// Installs the host hooks the server needs, once before any report is read: molfiles extracted
// into molfileFolder, the settings file looked for beside the report a job runs on, progress and
// cancellation of the job running on the calling thread.
void InstallServerHooks(const std::string& molfileFolder);

} // namespace quillon::tool::serve
