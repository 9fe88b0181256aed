#include <quillon/acquisition/ChromatogramPeak.h>

#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;

namespace {

CChromatogramPeak ReadPeak(const std::string& block) {
    CChromatogramPeak peak;
    ReadBlock(peak, block);
    return peak;
}

} // namespace

TEST(ChromatogramPeakTest, ReadsEveryFieldOfAPeakSection) {
    const CChromatogramPeak peak =
        ReadPeak("{\nPeak ID\t12\nPeak Cluster ID\t3\nTime\t4.25\nPeak\t4.1\t4.6\n"
                 "Intensity\t120.5\t80.25\nAreaAbs\t5400.5\nHeight\t900\nWidth\t0.5\nPeak Ref\t7\n"
                 "Unknown\t99\n[NESTED]\n{\nPeak ID\t55\n}\n}\nPeak ID\t66\n");
    EXPECT_EQ(peak.GetPeakID(), 12);
    EXPECT_EQ(peak.GetPeakClusterID(), 3);
    EXPECT_FLOAT_EQ(peak.GetTime(), 4.25f);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetStartTime(), 4.1);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetEndTime(), 4.6);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetStartIntensity(), 120.5);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetEndIntensity(), 80.25);
    EXPECT_FLOAT_EQ(peak.GetAreaAbs(), 5400.5f);
    EXPECT_FLOAT_EQ(peak.GetHeight(), 900.0f);
    EXPECT_FLOAT_EQ(peak.GetWidth(), 0.5f);
    EXPECT_EQ(peak.GetPeakRef(), 7);

    // Extent lines need two values; a time or identifier that does not scan reads 0.
    const CChromatogramPeak shortLines =
        ReadPeak("{\nPeak\t4.1\nIntensity\t120\nTime\tabc\nPeak ID\n}\n");
    EXPECT_DOUBLE_EQ(shortLines.GetChromatPeakData()->GetStartTime(), 0.0);
    EXPECT_DOUBLE_EQ(shortLines.GetChromatPeakData()->GetStartIntensity(), 0.0);
    EXPECT_FLOAT_EQ(shortLines.GetTime(), 0.0f);
    EXPECT_EQ(shortLines.GetPeakID(), 0);
}

// A confirmation test fails only on 0; with no test the peak has not failed one.
TEST(ChromatogramPeakTest, ConfirmationTestFailsOnlyOnZero) {
    CChromatogramPeak peak;
    CString text = "stale";
    EXPECT_FALSE(peak.HasTestFailed(&text));
    EXPECT_EQ(text, "");
    peak.SetConfirmationTest(0, "missing isotope");
    EXPECT_TRUE(peak.HasTestFailed(&text));
    EXPECT_EQ(text, "missing isotope");
    peak.SetConfirmationTest(1, "ratio ok");
    EXPECT_FALSE(peak.HasTestFailed(nullptr));
    peak.SetPeakClusterID("17");
    EXPECT_EQ(peak.GetPeakClusterID(), 17);
}
