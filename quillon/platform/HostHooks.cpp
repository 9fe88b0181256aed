#include <quillon/platform/HostHooks.h>

#include <cstdio>
#include <filesystem>

namespace quillon {

namespace {

HostHooks& Hooks() {
    static HostHooks hooks;
    return hooks;
}

} // namespace

void SetHostHooks(HostHooks hooks) {
    Hooks() = std::move(hooks);
}

const HostHooks& GetHostHooks() {
    return Hooks();
}

int ShowMessage(const CString& text, const CString& title, MessageIcon icon) {
    if (const auto& show = Hooks().showMessage)
        return show(text, title, icon);
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    return kMessageOk;
}

CString GetWorkingDirectory() {
    if (const auto& directory = Hooks().workingDirectory)
        return directory();
    std::error_code error;
    return CString(std::filesystem::current_path(error).string());
}

CString GetMolfileDirectory() {
    if (const auto& directory = Hooks().molfileDirectory)
        return directory();
    return CString("./");
}

void BeginProgress(const CString& text, int lower, int upper) {
    if (const auto& begin = Hooks().beginProgress)
        begin(text, lower, upper);
}

void StepProgress(int amount) {
    if (const auto& step = Hooks().stepProgress)
        step(amount);
}

void EndProgress() {
    if (const auto& end = Hooks().endProgress)
        end();
}

bool CancelRequested() {
    const auto& cancel = Hooks().cancelRequested;
    return cancel && cancel();
}

} // namespace quillon
