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

// Identifiers, time, extent times, area and height are checked against what the generator wrote
// over whole generated batches; here the other fields, and a nested section that is not the peak's.
TEST(ChromatogramPeakTest, ReadsEveryFieldOfAPeakSection) {
    const CChromatogramPeak peak =
        ReadPeak("{\nPeak ID\t12\nIntensity\t120.5\t80.25\nWidth\t0.5\nPeak Ref\t7\n"
                 "Unknown\t99\n[NESTED]\n{\nPeak ID\t55\n}\n}\nPeak ID\t66\n");
    EXPECT_EQ(peak.GetPeakID(), 12);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetStartIntensity(), 120.5);
    EXPECT_DOUBLE_EQ(peak.GetChromatPeakData()->GetEndIntensity(), 80.25);
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
