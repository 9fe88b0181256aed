#include <quillon/document/Samples.h>
#include <quillon/platform/HostHooks.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <random>
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

// The number of sample headers of either kind in a text: no reading can make more samples.
int SampleHeaders(const std::string& text) {
    int count = 0;
    for (size_t at = text.find("[SAMPLE"); at != std::string::npos;
         at = text.find("[SAMPLE", at + 1))
        ++count;
    return count;
}

// Bytes that are no report at all and reports with markers, delimiters and line ends put in random
// places make no samples beyond their headers.
TEST(SamplesDamagedInputTest, GarbageAndMutatedReportsAreReadWithoutHarm) {
    TempFile file("garbage.txt");
    std::mt19937 random(12345);
    std::string garbage(64 * 1024, '\0');
    for (char& byte : garbage)
        byte = static_cast<char>(random());
    EXPECT_EQ(ReadSamples(file, garbage), 0);

    const std::string report =
        ReadBytes(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt");
    const std::string damage = "\t\n{}[];0-.eA";
    for (int mutant = 0; mutant < 30; ++mutant) {
        std::string mutated = report;
        for (int change = 0; change < 40; ++change)
            mutated[random() % mutated.size()] = damage[random() % damage.size()];
        EXPECT_LE(ReadSamples(file, mutated), SampleHeaders(mutated)) << "mutant " << mutant;
    }
}
