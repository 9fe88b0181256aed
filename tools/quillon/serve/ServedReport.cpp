#include "ServedReport.h"

#include "../Tool.h"
#include "../json/ModelJson.h"
#include "../json/ModelRecords.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace quillon::tool::serve {

namespace {

// What the hooks need to know about the job on this thread.
struct JobContext {
    FragmentJob* job = nullptr;
    std::string folder; // the report's folder, where its settings file lives
    int lower = 0;
    int upper = 1;
    int position = 0;
};
thread_local JobContext t_job;

// Molfiles are at most a few hundred kilobytes; a larger file is not kept.
constexpr std::uintmax_t kLargestMolfile = 4u << 20;

std::string ReadSmallFile(const std::string& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error || size > kLargestMolfile)
        return {};
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

void InstallServerHooks(const std::string& molfileFolder) {
    HostHooks hooks = GetHostHooks();
    const std::string prefix =
        molfileFolder.empty() || molfileFolder.back() == '/' ? molfileFolder : molfileFolder + "/";
    hooks.molfileDirectory = [prefix] { return CString(prefix); };
    const auto previousFolder = hooks.workingDirectory;
    hooks.workingDirectory = [previousFolder] {
        if (!t_job.folder.empty())
            return CString(t_job.folder);
        return previousFolder ? previousFolder()
                              : CString(std::filesystem::current_path().string());
    };
    hooks.beginProgress = [](const CString&, int lower, int upper) {
        t_job.lower = lower;
        t_job.upper = upper > lower ? upper : lower + 1;
        t_job.position = lower;
    };
    hooks.stepProgress = [](int amount) {
        t_job.position += amount;
        if (t_job.job != nullptr)
            t_job.job->progress = std::min(1.0, double(t_job.position - t_job.lower) /
                                                    double(t_job.upper - t_job.lower));
    };
    hooks.endProgress = [] {};
    hooks.cancelRequested = [] { return t_job.job != nullptr && t_job.job->cancel.load(); };
    SetHostHooks(hooks);
}

ServedReport::ServedReport(const std::string& path, const std::string& molfileFolder,
                           const GlobalOptions& options)
    : m_path(path), m_review(path) {
    LoadReport(path, m_samples, options);
    for (int i = 0; i < m_samples.GetSamplesCount(); ++i) {
        CSampleData& sample = *m_samples.GetSample(i);
        const CString reference = sample.GetMoleculeReference();
        if (reference.IsEmpty() || molfileFolder.empty())
            continue;
        std::string text =
            ReadSmallFile(CMolfile::MolfilePath(reference, sample.GetNumber()).str());
        if (!text.empty())
            m_molfiles[sample.GetNumber()] = std::move(text);
    }
}

ServedReport::~ServedReport() {
    const std::lock_guard<std::mutex> lock(m_jobsMutex);
    for (auto& [number, job] : m_jobs) {
        job->cancel = true;
        if (job->worker.joinable())
            job->worker.join();
    }
}

std::string ServedReport::Molfile(int sampleNumber) const {
    const auto found = m_molfiles.find(sampleNumber);
    return found == m_molfiles.end() ? std::string() : found->second;
}

std::shared_ptr<FragmentJob> ServedReport::Job(int sampleNumber) {
    const std::lock_guard<std::mutex> lock(m_jobsMutex);
    const auto found = m_jobs.find(sampleNumber);
    return found == m_jobs.end() ? nullptr : found->second;
}

std::shared_ptr<FragmentJob> ServedReport::StartJob(int sampleNumber) {
    const std::lock_guard<std::mutex> lock(m_jobsMutex);
    std::shared_ptr<FragmentJob>& slot = m_jobs[sampleNumber];
    if (slot && slot->state == kJobRunning)
        return slot;
    if (slot && slot->worker.joinable())
        slot->worker.join();
    slot = std::make_shared<FragmentJob>();
    FragmentJob& job = *slot;
    job.worker = std::thread([this, sampleNumber, &job] { RunJob(sampleNumber, job); });
    return slot;
}

void ServedReport::RunJob(int sampleNumber, FragmentJob& job) {
    t_job = JobContext{&job, std::filesystem::absolute(m_path).parent_path().string()};
    try {
        WithSamples([&](CSamples& samples) {
            CSampleData& sample = SampleByNumber(samples, sampleNumber, m_path);
            CFragmentAnalysis& analysis = *sample.GetFragmentAnalysis();
            const bool done = analysis.DoFragmentAnalysis(&sample);
            if (job.cancel) {
                job.state = kJobCancelled;
                return;
            }
            nlohmann::json rows = nlohmann::json::array();
            JsonRowsSink sink(rows);
            FragmentRows(sink, sampleNumber, analysis);
            job.result = {{"rows", std::move(rows)},
                          {"analysed", done || analysis.HasNeutralLosses()},
                          {"parent_mz", JsonNumber(analysis.GetParentMass())}};
            job.progress = 1.0;
            job.state = kJobDone;
        });
    } catch (const std::exception& error) {
        job.message = error.what();
        job.state = kJobFailed;
    }
    t_job = JobContext{};
}

} // namespace quillon::tool::serve
