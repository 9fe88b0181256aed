#pragma once

#include <quillon/platform/String.h>

#include <functional>

namespace quillon {

// What the host application supplies to the library. A host replaces a hook with SetHostHooks;
// an empty hook falls back to the default stated beside it, which suits a command-line program.
// The library reads these hooks only on the caller's thread and never changes them itself.

enum class MessageIcon { Information, Exclamation, Error, Question };

// The answer of a message box: the library only shows information, so OK is the one answer.
constexpr int kMessageOk = 1;

struct HostHooks {
    // Shows a message to the user. Default: writes "title: text" to standard error.
    std::function<int(const CString& text, const CString& title, MessageIcon icon)> showMessage;
    // The host suite's working directory, where its settings file lives. Default: the current
    // working directory of the process.
    std::function<CString()> workingDirectory;
    // The directory where embedded molfiles are extracted, used as a plain prefix of file names
    // (so it ends with a path separator). Default: "./", the current working directory.
    std::function<CString()> molfileDirectory;
    // A long operation begins: shows the status text and a progress bar over [lower, upper].
    // Default: nothing is shown.
    std::function<void(const CString& text, int lower, int upper)> beginProgress;
    // Advances the progress bar by the given amount. Default: nothing.
    std::function<void(int amount)> stepProgress;
    // The long operation ends: the bar and the status text go. Default: nothing.
    std::function<void()> endProgress;
    // Polled between items of a long operation: true when the user asked to cancel since the
    // last poll. Default: never.
    std::function<bool()> cancelRequested;
};

// Replaces the host hooks as a whole.
void SetHostHooks(HostHooks hooks);
// The hooks in force.
const HostHooks& GetHostHooks();

// Shows a message through the message hook; returns its answer.
int ShowMessage(const CString& text, const CString& title, MessageIcon icon);

// The host's working directory, through the working-directory hook.
CString GetWorkingDirectory();

// The molfile directory, through the molfile-directory hook.
CString GetMolfileDirectory();

// Progress and cancellation through their hooks (each does nothing, or answers false, by default).
void BeginProgress(const CString& text, int lower, int upper);
void StepProgress(int amount);
void EndProgress();
bool CancelRequested();

} // namespace quillon
