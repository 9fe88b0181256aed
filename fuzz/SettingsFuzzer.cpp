// The settings file and its neutral-loss list: any file is read, the list read from it is saved
// back as a whole and reads back with as many losses, and edits of single keys leave a file that
// reads again.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>

using namespace quillon;

namespace {

// A folder of this process for the settings file, in memory where the system offers it; removed
// when the process ends.
struct WorkFolder {
    WorkFolder() {
        const std::filesystem::path shared("/dev/shm");
        path =
            std::filesystem::is_directory(shared) ? shared : std::filesystem::temp_directory_path();
        path /= "quillon-fuzz-settings-" + std::to_string(::getpid());
        std::filesystem::create_directories(path);
    }
    ~WorkFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
    std::filesystem::path path;
};

const std::filesystem::path& Folder() {
    static const WorkFolder folder;
    return folder.path;
}

void UseWorkFolder() {
    static const bool installed = [] {
        HostHooks hooks;
        hooks.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
        hooks.workingDirectory = [] { return CString(Folder().string()); };
        SetHostHooks(hooks);
        return true;
    }();
    (void)installed;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    UseWorkFolder();
    const std::string path = (Folder() / "Tarnwick.ini").string();
    const std::string_view text = fuzz::AsText(data, size);
    std::ofstream(path, std::ios::binary | std::ios::trunc)
        .write(text.data(), static_cast<long>(text.size()));

    const CTarnwickIniInterface settings;
    CCompounds losses;
    settings.GetNeutralLosses(losses, false);
    CCompounds selected;
    settings.GetNeutralLosses(selected, true);
    fuzz::Require(selected.GetSize() <= losses.GetSize());

    settings.SetNeutralLosses(losses);
    CCompounds reread;
    settings.GetNeutralLosses(reread, false);
    fuzz::Require(reread.GetSize() == losses.GetSize());

    // Single-key edits with names and values cut from the input itself.
    CProfileFile ini(path);
    fuzz::Require(ini.Load());
    const std::string_view section = text.substr(0, std::min<size_t>(text.size(), 12));
    const std::string_view key = text.substr(text.size() / 2, 8);
    ini.GetString(section, key, "");
    ini.WriteString(section, key, text.substr(text.size() / 3, 16));
    ini.ReplaceSection(key, {std::string(section)});
    fuzz::Require(ini.Save());
    fuzz::Require(ini.Load());
    return 0;
}
