// The read report: what reading passed over, where, and that it changes nothing that is read.
#include <quillon/document/Samples.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

std::string Sample(int number) {
    return "[SAMPLE]\n{\nSample\t" + std::to_string(number) + "\n}\n";
}

} // namespace

TEST(SamplesReadReport, NotesWhatTheTopLevelPassesOverWithItsOffset) {
    // An unknown section with a sample header inside its block, stray lines and blocks, a header
    // without a block, and a sample the file ends inside.
    const std::string unknown = "[PLATE NOTES]\n{\nRow\t1\n[NESTED]\n{\n[SAMPLE]\n}\n}\n";
    const std::string stray = "loose line\n}\n{\nx\n}\n";
    const std::string noBlock = "[NO BLOCK]\n";
    const std::string open = "[SAMPLE]\n{\nSample\t3\n[COMPOUND]\n{\n1.0\tC\tX\n";
    TempFile input("report.txt");
    input.Write(Sample(1) + unknown + stray + noBlock + Sample(2) + open);

    CSamples samples;
    ASSERT_EQ(samples.Read(input.c_str()), 1);
    // Reading is unchanged: every sample is there, the one left open too.
    ASSERT_EQ(samples.GetSamplesCount(), 3);
    EXPECT_EQ(samples.GetSample(2)->GetNumber(), 3);

    const size_t unknownAt = Sample(1).size();
    const size_t strayAt = unknownAt + unknown.size();
    const size_t noBlockAt = strayAt + stray.size();
    const size_t openAt = noBlockAt + noBlock.size() + Sample(2).size();
    const CReadReport& report = samples.GetReadReport();
    ASSERT_EQ(report.entries.size(), 6U);
    const std::vector<std::pair<CReadReport::Kind, size_t>> expected{
        {CReadReport::UnknownSection, unknownAt},   {CReadReport::StrayLine, strayAt},
        {CReadReport::StrayBlockEnd, strayAt + 11}, {CReadReport::StrayBlock, strayAt + 13},
        {CReadReport::UnknownSection, noBlockAt},   {CReadReport::OpenBlock, openAt}};
    for (size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(report.entries[i].kind, expected[i].first) << i;
        EXPECT_EQ(report.entries[i].offset, static_cast<int64_t>(expected[i].second)) << i;
    }
    EXPECT_EQ(report.entries[0].name, "PLATE NOTES");
    EXPECT_FALSE(report.IsClean());

    // A clean report, read again into the same collection, leaves a clean read report, even
    // when its last sample's "}" is the file's last line.
    TempFile clean("clean.txt");
    clean.Write(Sample(1) + Sample(2));
    CSamples again;
    ASSERT_EQ(again.Read(clean.c_str()), 1);
    EXPECT_TRUE(again.GetReadReport().IsClean());
    ASSERT_EQ(samples.Read(clean.c_str()), 1);
    EXPECT_TRUE(samples.GetReadReport().IsClean());
}

TEST(SamplesReadReport, KeepsABoundedNumberOfEntries) {
    std::string garbage;
    for (size_t i = 0; i < CReadReport::kMaxEntries + 5; ++i)
        garbage += "noise\n";
    TempFile input("garbage.txt");
    input.Write(garbage);
    CSamples samples;
    ASSERT_EQ(samples.Read(input.c_str()), 1);
    EXPECT_EQ(samples.GetReadReport().entries.size(), CReadReport::kMaxEntries);
    EXPECT_EQ(samples.GetReadReport().omitted, 5U);
}
