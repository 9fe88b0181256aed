#include <quillon/document/Samples.h>
#include <quillon/platform/HostHooks.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBytes;
using quillon::testing::TempFile;

namespace {

// Reads bytes as a report; the messages a damaged sample raises are not shown.
int ReadSamples(const TempFile& file, const std::string& bytes) {
    file.Write(bytes);
    HostHooks hooks;
    hooks.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
    SetHostHooks(hooks);
    CSamples samples;
    const int result = samples.Read(file.c_str());
    SetHostHooks({});
    EXPECT_EQ(result, 1);
    return samples.GetSamplesCount();
}

} // namespace

// A report cut off anywhere is read as far as it goes: never more samples than the whole file
// holds, and all of them once the cut lies past the last sample's header.
TEST(SamplesDamagedInputTest, TruncatedReportsReadAsFarAsTheyGo) {
    const std::string report =
        ReadBytes(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt");
    ASSERT_FALSE(report.empty());
    TempFile file("cut.txt");
    const int whole = ReadSamples(file, report);
    ASSERT_GT(whole, 1);

    constexpr int kCuts = 24;
    int previous = 0;
    for (int cut = 1; cut <= kCuts; ++cut) {
        const size_t length = report.size() * static_cast<size_t>(cut) / kCuts;
        const int count = ReadSamples(file, report.substr(0, length));
        EXPECT_LE(count, whole) << "cut at " << length;
        EXPECT_GE(count, previous) << "cut at " << length;
        previous = count;
    }
    EXPECT_EQ(previous, whole);
    const size_t lastHeader = report.rfind("[SAMPLE]");
    EXPECT_EQ(ReadSamples(file, report.substr(0, lastHeader + 20)), whole);
}
