// The molfiles of a report: the first byte of the input chooses whether the molfile list file
// exists (odd: it does), the rest is a report read into a collection, which extracts its molfiles
// into the molfile directory (a folder of this process, emptied after every input). Whatever the
// references say, every molfile is written inside that directory and listed there, nothing else
// is made, and the dimensions of each sample's structure and the search for a two-dimensional
// one run without harm.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <utility>

using namespace quillon;
namespace fs = std::filesystem;

namespace {

const fs::path& MolfileFolder() {
    static const fs::path folder = [] {
        fs::path path = fuzz::ProcessFolder() / "molfiles";
        fs::create_directories(path);
        return path;
    }();
    return folder;
}

void UseMolfileFolder() {
    HostHooks hooks;
    hooks.molfileDirectory = [] { return CString(MolfileFolder().string() + "/"); };
    fuzz::SilenceHost(std::move(hooks));
}

// Every line of the list is a molfile path in the folder; every file in the folder is the list or
// a molfile.
void CheckFolder(bool listed) {
    const std::string prefix = MolfileFolder().string() + "/";
    std::ifstream list(MolfileFolder() / "Molfiles.list", std::ios::binary);
    fuzz::Require(static_cast<bool>(list) == listed);
    std::string line;
    while (std::getline(list, line)) {
        fuzz::Require(line.starts_with(prefix) && line.ends_with(".mol"));
        fuzz::Require(std::string_view(line).substr(prefix.size()).find('/') ==
                      std::string_view::npos);
    }
    for (const fs::directory_entry& entry : fs::directory_iterator(MolfileFolder())) {
        const std::string name = entry.path().filename().string();
        fuzz::Require(entry.is_regular_file() &&
                      (name == "Molfiles.list" || name.ends_with(".mol")));
        fuzz::Require(listed || name != "Molfiles.list");
    }
}

void EmptyFolder() {
    for (const fs::directory_entry& entry : fs::directory_iterator(MolfileFolder()))
        fs::remove_all(entry.path());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0)
        return 0;
    UseMolfileFolder();
    const bool listed = (data[0] & 1) != 0;
    if (listed)
        std::ofstream(MolfileFolder() / "Molfiles.list");

    fuzz::MemoryFile report(fuzz::AsText(data + 1, size - 1));
    CDelimitFile input(report.Stream());
    CSamples samples;
    samples.Read(&input);
    CheckFolder(listed);

    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        CSampleData& sample = *samples.GetSample(i);
        const int dimensions = sample.SetMoleculeDimensions();
        fuzz::Require(sample.GetMoleculeDimensions() == dimensions);
        fuzz::Require(sample.GetMoleculeEnabled() || dimensions == 0);
        samples.GetSampleWith2DMolFile(sample.GetNumber());
    }
    samples.GetSampleWith2DMolFile(-1);
    EmptyFolder();
    return 0;
}
