#pragma once

#include <quillon/platform/HostHooks.h>

#include <string>
#include <vector>

namespace quillon::testing {

// Host hooks in force while the object lives: messages are recorded instead of shown, progress is
// counted, and a cancel is requested at a chosen poll. The hooks before are put back at the end.
class HostRecorder {
public:
    struct Message {
        std::string text;
        std::string title;
        MessageIcon icon;
    };

    HostRecorder() : m_saved(GetHostHooks()) {
        HostHooks hooks = m_saved;
        hooks.showMessage = [this](const CString& text, const CString& title, MessageIcon icon) {
            messages.push_back({text.c_str(), title.c_str(), icon});
            return kMessageOk;
        };
        hooks.beginProgress = [this](const CString& text, int lower, int upper) {
            progressText = text.c_str();
            progressLower = lower;
            progressUpper = upper;
            ++begun;
        };
        hooks.stepProgress = [this](int amount) { stepped += amount; };
        hooks.endProgress = [this] { ++ended; };
        hooks.cancelRequested = [this] { return ++polls == cancelAtPoll; };
        SetHostHooks(hooks);
    }
    HostRecorder(const HostRecorder&) = delete;
    HostRecorder& operator=(const HostRecorder&) = delete;
    ~HostRecorder() { SetHostHooks(m_saved); }

    std::vector<Message> messages;
    std::string progressText;
    int progressLower = -1, progressUpper = -1, begun = 0, stepped = 0, ended = 0, polls = 0;
    int cancelAtPoll = 0; // 0: never

private:
    HostHooks m_saved;
};

} // namespace quillon::testing
