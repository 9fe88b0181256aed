#include "Operation.h"

#include <cstdio>
#include <filesystem>
#include <stdexcept>

namespace quillon::python {

namespace {

thread_local Operation* t_current = nullptr;

constexpr auto kPollInterval = std::chrono::milliseconds(50);

// The report file as the reader sees it, stopping (as at its end) once the operation asks to:
// every few thousand lines it tells the operation how far it has got.
class PolledReportFile : public CDelimitFile {
public:
    PolledReportFile(const char* path, Operation& operation)
        : CDelimitFile(path, CFile::modeRead), m_operation(operation), m_length(GetLength()) {}

    bool ReadLineView(std::string_view& line) override {
        if (m_stopped)
            return false;
        if (++m_lines == kLinesPerPoll) {
            m_lines = 0;
            const double fraction = m_length > 0 ? double(GetPosition()) / double(m_length) : 0.0;
            if (!PollWithGil(fraction)) {
                m_stopped = true;
                return false;
            }
        }
        return CDelimitFile::ReadLineView(line);
    }

private:
    static constexpr int kLinesPerPoll = 4096;

    bool PollWithGil(double fraction) {
        py::gil_scoped_acquire gil;
        return m_operation.Poll(fraction);
    }

    Operation& m_operation;
    int64_t m_length = 0;
    int m_lines = 0;
    bool m_stopped = false;
};

} // namespace

Operation::Operation(py::object progress, std::string workingDirectory)
    : m_progress(std::move(progress)), m_workingDirectory(std::move(workingDirectory)),
      m_lastPoll(std::chrono::steady_clock::now()), m_previous(t_current) {
    t_current = this;
}

Operation::~Operation() {
    t_current = m_previous;
}

Operation* Operation::Current() {
    return t_current;
}

bool Operation::Poll(double fraction, bool final) {
    if (m_stopped)
        return false;
    const auto now = std::chrono::steady_clock::now();
    if (!final && now - m_lastPoll < kPollInterval)
        return true;
    m_lastPoll = now;
    try {
        if (PyErr_CheckSignals() != 0)
            throw py::error_already_set();
        if (!m_progress.is_none())
            m_progress(std::min(std::max(fraction, 0.0), 1.0));
    } catch (py::error_already_set& error) {
        m_error.emplace(std::move(error));
        m_stopped = true;
    }
    return !m_stopped;
}

bool Operation::PollWithoutGil(double fraction, bool final) {
    if (m_stopped)
        return false;
    if (!final && std::chrono::steady_clock::now() - m_lastPoll < kPollInterval)
        return true;
    py::gil_scoped_acquire gil;
    return Poll(fraction, final);
}

void Operation::BeginRange(int lower, int upper) {
    m_lower = lower;
    m_upper = upper > lower ? upper : lower + 1;
    m_position = lower;
    PollWithoutGil(0.0, true);
}

void Operation::Step(int amount) {
    m_position += amount;
    PollWithoutGil(double(m_position - m_lower) / double(m_upper - m_lower), false);
}

bool Operation::CancelRequested() {
    return !PollWithoutGil(double(m_position - m_lower) / double(m_upper - m_lower), false);
}

void Operation::RaiseIfStopped() {
    if (m_error) {
        py::error_already_set error = std::move(*m_error);
        m_error.reset();
        throw error;
    }
    if (!m_stopped && !m_progress.is_none())
        m_progress(1.0);
}

void InstallHostHooks() {
    HostHooks hooks;
    hooks.showMessage = [](const CString& text, const CString& title, MessageIcon) {
        if (Operation* operation = Operation::Current())
            operation->messages.push_back(text.str());
        else
            std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
        return kMessageOk;
    };
    hooks.workingDirectory = [] {
        const Operation* operation = Operation::Current();
        if (operation != nullptr && !operation->WorkingDirectory().empty())
            return CString(operation->WorkingDirectory());
        std::error_code error;
        return CString(std::filesystem::current_path(error).string());
    };
    hooks.beginProgress = [](const CString&, int lower, int upper) {
        if (Operation* operation = Operation::Current())
            operation->BeginRange(lower, upper);
    };
    hooks.stepProgress = [](int amount) {
        if (Operation* operation = Operation::Current())
            operation->Step(amount);
    };
    hooks.cancelRequested = [] {
        Operation* operation = Operation::Current();
        return operation != nullptr && operation->CancelRequested();
    };
    SetHostHooks(std::move(hooks));
}

BatchPtr ReadBatch(const std::string& path, py::object progress) {
    auto batch = std::make_shared<BatchState>();
    batch->path = path;
    Operation operation(std::move(progress));
    std::optional<CFileException> failure;
    {
        py::gil_scoped_release released;
        try {
            PolledReportFile file(path.c_str(), operation);
            batch->samples.Read(&file);
        } catch (const CFileException& exception) {
            failure = exception;
        }
    }
    operation.RaiseIfStopped();
    if (failure)
        RaiseOSError(failure->m_lOsError, failure->what(), path);
    return batch;
}

} // namespace quillon::python
