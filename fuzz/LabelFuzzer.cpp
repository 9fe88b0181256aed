// A label the user types, saved into a report and read back: whatever its bytes, the
// label reads back as written (up to its first NUL byte, with each tab, CR and LF as a blank) and
// every other record of the report is unchanged.

#include "FuzzSupport.h"
#include "support/ModelDump.h"

#include <quillon/quillon.h>

#include <fstream>
#include <sstream>

using namespace quillon;

namespace {

// One sample of the example batch with its metabolite sections (expected, unexpected, elemental
// candidates, MS/MS correlation) and without its traces, so that each input is quick to save.
const char* const kReport = QUILLON_SOURCE_DIR "/fuzz/data/label-report.txt";

struct Report {
    Report() {
        std::ifstream in(kReport, std::ios::binary);
        std::ostringstream bytes;
        bytes << in.rdbuf();
        text = bytes.str();
        fuzz::MemoryFile file(text);
        CDelimitFile input(file.Stream());
        fuzz::Require(samples.Read(&input) == 1 && samples.GetSamplesCount() > 0);
    }
    std::string text;
    CSamples samples;
};

// The label as the reader gives it back.
std::string AsSaved(std::string_view label) {
    std::string saved(label.substr(0, label.find('\0')));
    for (char& ch : saved) {
        if (ch == '\t' || ch == '\r' || ch == '\n')
            ch = ' ';
    }
    return saved;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::SilenceHost();
    static const Report report;
    if (size < 2)
        return 0;
    CSamples samples(report.samples);
    CSampleData& sample = *samples.GetSample(data[0] % samples.GetSamplesCount());
    if (sample.GetMetaboliteCount() == 0)
        return 0;
    CMetaboliteData& metabolite = *sample.GetMetabolite(data[1] % sample.GetMetaboliteCount());
    if (metabolite.IsMSMSCorrelation())
        return 0; // the correlation table has no label column
    const std::string_view label = fuzz::AsText(data + 2, size - 2);
    metabolite.SetUserLabel(CString(label));

    fuzz::MemoryFile original(report.text);
    CDelimitFile input(original.Stream());
    fuzz::MemoryFile savedFile;
    CDelimitFile saved(savedFile.Stream());
    samples.Write(&input, &saved);
    saved.Flush();

    fuzz::MemoryFile rereadFile(fuzz::Contents(savedFile));
    CDelimitFile rereadInput(rereadFile.Stream());
    CSamples reread;
    fuzz::Require(reread.Read(&rereadInput) == 1);
    metabolite.SetUserLabel(CString(AsSaved(label)));
    fuzz::Require(testing::ModelDump::Of(reread) == testing::ModelDump::Of(samples));
    return 0;
}
