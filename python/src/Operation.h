#pragma once

// A long library call made from Python: the GIL is released while it runs, its progress reaches
// a Python callable, Ctrl-C cancels it through the library's cancel hook, and the messages the
// library shows are collected instead of printed.

#include "Handles.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace quillon::python {

class Operation {
public:
    // progress: None or a callable taking the fraction done (0 to 1). workingDirectory: where the
    // library looks for the host settings file during this operation ("" for the process's).
    explicit Operation(py::object progress, std::string workingDirectory = {});
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;
    ~Operation();

    // With the GIL held: checks for a signal and reports the fraction, at most every 50 ms
    // unless final. Returns false when the operation is to stop (Ctrl-C, or the callable raised).
    bool Poll(double fraction, bool final = false);
    // Progress and cancellation as the library's hooks give them, without the GIL.
    void BeginRange(int lower, int upper);
    void Step(int amount);
    bool CancelRequested();
    // With the GIL held, after the library returned: raises what Poll caught (KeyboardInterrupt
    // or the callable's exception).
    void RaiseIfStopped();

    std::vector<std::string> messages;
    const std::string& WorkingDirectory() const { return m_workingDirectory; }
    // The operation running on this thread, or null.
    static Operation* Current();

private:
    bool PollWithoutGil(double fraction, bool final);

    py::object m_progress;
    std::string m_workingDirectory;
    std::optional<py::error_already_set> m_error;
    bool m_stopped = false;
    std::chrono::steady_clock::time_point m_lastPoll;
    int m_lower = 0;
    int m_upper = 1;
    int m_position = 0;
    Operation* m_previous = nullptr;
};

// Installs the hooks that route the library's messages, progress and cancel polls to the
// operation running on the calling thread.
void InstallHostHooks();

// Reads the report at path into a new batch with the GIL released, polling the operation every
// few thousand lines. Raises KeyboardInterrupt when cancelled, quillon.ReadError when the file is
// no report. The caller has checked that the file exists and is readable.
BatchPtr ReadBatch(const std::string& path, py::object progress);

} // namespace quillon::python
