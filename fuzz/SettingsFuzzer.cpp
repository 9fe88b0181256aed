// The settings file and its neutral-loss list: any file is read, the list read from it is saved
// back as a whole and reads back with as many losses, and edits of single keys leave a file that
// reads again.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <utility>

using namespace quillon;

namespace {

void UseProcessFolder() {
    HostHooks hooks;
    hooks.workingDirectory = [] { return CString(fuzz::ProcessFolder().string()); };
    fuzz::SilenceHost(std::move(hooks));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    UseProcessFolder();
    const std::string path = (fuzz::ProcessFolder() / "Tarnwick.ini").string();
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
