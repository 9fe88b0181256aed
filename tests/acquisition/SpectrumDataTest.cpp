#include <quillon/acquisition/SpectrumData.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include <string>
#include <utility>
#include <vector>

using namespace quillon;
using quillon::testing::Points;
using quillon::testing::PointsOf;
using quillon::testing::ReadBlock;
using quillon::testing::TextOf;

namespace {

CSpectrumData SpectrumOf(const std::vector<float>& masses, const std::vector<float>& intensities) {
    CSpectrumData spectrum;
    spectrum.AddMassIntensity(masses.data(), intensities.data(), static_cast<int>(masses.size()));
    return spectrum;
}

CResultsData Result(int found, int test, const char* text) {
    CResultsData result;
    result.SetFound(found);
    result.SetConfirmationTest(test, text);
    return result;
}

} // namespace

TEST(SpectrumDataTest, ReadsFieldsPointsMassesAndResults) {
    CSpectrumData spectrum;
    ReadBlock(spectrum, "{\n"
                        "Process\t3\nBPI\t2000\nBPM\t455.25\nTIC\t9000\n"
                        "Trace\tTIC\nState\tok\nDesc\tApex spectrum\nProcDesc\tcombined\n"
                        "TraceNumber\t7\nContinuum\tTRUE\n"
                        "Peak ID\t12\nPeak Cluster ID\t4\nPeak Ref\t2\nControl Peak ID\t30\n"
                        "Time\t5.5\nPeak\t5.2\t5.9\nIntensity\t10\t20\n"
                        "Unknown\t1\n"
                        "[MS]\n{\n100.5\t10\n200.25\t20\textra\n300\n}\n"
                        "[MASSES]\n{\n"
                        "455.2\t455.2\n"              // too short: ignored
                        "455.2\t455.21\t455.22\t80\n" // four fields
                        "456.2\t1\t2\t3\tx\ty\t2\n"   // seven fields, isotope
                        "457.2\t1\t2\t3\tx\ty\t0\n"   // seven fields, not an isotope
                        "458.2\t1\t2\t3\tx\ty\t-1\n"
                        "459.2\t1\t2\t3\tx\ty\tabc\n"
                        "}\n"
                        "[RESULTS]\n{\n"
                        "455.2\t1\t50\n"                     // three elements: ignored
                        "455.2\t1\t50.5\t0.9\n"              // no test
                        "456.2\t0\t10\t0.5\t0\tlow purity\n" // test failed, with text
                        "457.2\t1\t10\t0.5\tx\tignored\n"    // fifth element is not a test
                        "}\n"
                        "}\n");

    EXPECT_EQ(spectrum.GetProcess(), 3);
    EXPECT_FLOAT_EQ(spectrum.GetBPI(), 2000.0f);
    EXPECT_FLOAT_EQ(spectrum.GetBPM(), 455.25f);
    EXPECT_FLOAT_EQ(spectrum.GetTIC(), 9000.0f);
    EXPECT_EQ(TextOf(spectrum, &CSpectrumData::GetTrace), "TIC");
    EXPECT_EQ(TextOf(spectrum, &CSpectrumData::GetState), "ok");
    EXPECT_EQ(TextOf(spectrum, &CSpectrumData::GetDesc), "Apex spectrum");
    EXPECT_EQ(TextOf(spectrum, &CSpectrumData::GetProcDesc), "combined");
    EXPECT_EQ(spectrum.GetTraceNumber(), 7);
    EXPECT_EQ(spectrum.GetContinuum(), 1);
    EXPECT_EQ(spectrum.GetPeakID(), 12);
    EXPECT_EQ(spectrum.GetPeakClusterID(), 4);
    EXPECT_EQ(spectrum.GetPeakRef(), 2);
    EXPECT_EQ(spectrum.GetControlPeakID(), 30);
    EXPECT_FLOAT_EQ(spectrum.GetTime(), 5.5f);
    EXPECT_DOUBLE_EQ(spectrum.GetChromatPeakData()->GetStartTime(), 5.2);
    EXPECT_DOUBLE_EQ(spectrum.GetChromatPeakData()->GetEndTime(), 5.9);
    EXPECT_DOUBLE_EQ(spectrum.GetChromatPeakData()->GetEndIntensity(), 20.0);

    // Default chart parameters: the intensities are taken as they stand; short lines are skipped.
    EXPECT_EQ(PointsOf(spectrum), (Points{{100.5f, 10.0}, {200.25f, 20.0}}));

    const CArray<CMassesData>& masses = *spectrum.MassesGet();
    ASSERT_EQ(masses.GetSize(), 5);
    EXPECT_DOUBLE_EQ(masses[0].GetMono(), 455.2);
    EXPECT_DOUBLE_EQ(masses[0].GetExpected(), 455.21);
    EXPECT_DOUBLE_EQ(masses[0].GetObserved(), 455.22);
    EXPECT_DOUBLE_EQ(masses[0].GetPercentage(), 80.0);
    std::vector<bool> isotopes;
    for (const CMassesData& mass : masses)
        isotopes.push_back(mass.IsIsotope());
    EXPECT_EQ(isotopes, (std::vector<bool>{false, true, false, false, false}));

    ASSERT_EQ(spectrum.GetNumResults(), 3);
    CResultsData result;
    CString text;
    ASSERT_TRUE(spectrum.GetResults(0, result));
    EXPECT_DOUBLE_EQ(result.GetMono(), 455.2);
    EXPECT_EQ(result.GetFound(), 1);
    EXPECT_DOUBLE_EQ(result.GetPercentage(), 50.5);
    EXPECT_DOUBLE_EQ(result.GetPurity(), 0.9);
    EXPECT_EQ(result.GetConfirmationTest(&text), -1);
    ASSERT_TRUE(spectrum.GetResults(1, result));
    EXPECT_TRUE(result.HasTestFailed(&text));
    EXPECT_EQ(text, "low purity");
    ASSERT_TRUE(spectrum.GetResults(2, result));
    EXPECT_EQ(result.GetConfirmationTest(nullptr), -1);
    EXPECT_FALSE(spectrum.GetResults(3, result));
}

// Short extent lines and a mixed-case "Continuum" change nothing; with custom chart parameters
// the base peak intensity in force when each point line is read makes it a percentage.
TEST(SpectrumDataTest, ShortLinesAndPercentScaling) {
    CSpectrumData spectrum;
    ReadBlock(spectrum, "{\nPeak\t5.2\nIntensity\t10\nContinuum\tTrue\n}\n");
    EXPECT_DOUBLE_EQ(spectrum.GetChromatPeakData()->GetStartTime(), 0.0);
    EXPECT_DOUBLE_EQ(spectrum.GetChromatPeakData()->GetStartIntensity(), 0.0);
    EXPECT_EQ(spectrum.GetContinuum(), 0);
    CSpectrumData scaled;
    scaled.SetUsesCustomChartParams(1);
    ReadBlock(scaled, "{\n[MS]\n{\n100\t50\n}\nBPI\t2000\n[MS]\n{\n200\t50\n}\n}\n");
    EXPECT_EQ(PointsOf(scaled), (Points{{100.0, 0.0}, {200.0, 1000.0}}));
}

// A copy leaves the description behind (the fields it copies are checked over whole models); a
// move carries the description and the printed mark.
TEST(SpectrumDataTest, CopiesLeaveTheDescriptionBehindAndMovesCarryIt) {
    CSpectrumData source = SpectrumOf({100.0f}, {5.0f});
    source.SetDesc("apex");
    source.SetHasPrinted(1);
    CSpectrumData target;
    target.SetDesc("target's");
    target = source;
    EXPECT_EQ(TextOf(target, &CSpectrumData::GetDesc), "target's");
    EXPECT_EQ(TextOf(CSpectrumData(source), &CSpectrumData::GetDesc), "");
    target = std::move(source);
    EXPECT_EQ(TextOf(target, &CSpectrumData::GetDesc), "apex");
    EXPECT_EQ(target.GetHasPrinted(), 1);
    EXPECT_EQ(target.GetNumPeaks(), 1);
}

TEST(SpectrumDataTest, MassIntensityCopyRespectsStartCountAndLimit) {
    const CSpectrumData spectrum = SpectrumOf({100, 200, 300, 400}, {1, 2, 3, 4});
    float masses[4] = {};
    float intensities[4] = {};
    EXPECT_EQ(spectrum.GetMassIntensity(masses, intensities, 1, 10, 0.0), 3); // limit 0: ignored
    EXPECT_FLOAT_EQ(masses[0], 200.0f);
    EXPECT_FLOAT_EQ(intensities[2], 4.0f);
    EXPECT_EQ(spectrum.GetMassIntensity(masses, nullptr, 0, 2, 0.0), 2);
    EXPECT_EQ(spectrum.GetMassIntensity(nullptr, intensities, 0, 4, 250.0), 2);
    EXPECT_EQ(spectrum.GetMassIntensity(masses, intensities, 0, 0, 0.0), 0);
    EXPECT_EQ(spectrum.GetMassIntensity(masses, intensities, 9, 4, 0.0), 0);
}

TEST(SpectrumDataTest, RangesAndMaximaOverTheMasses) {
    const CSpectrumData spectrum = SpectrumOf({100.4f, 150.0f, 299.2f}, {5.0f, -2.0f, 9.0f});
    int low = -1;
    int high = -1;
    EXPECT_TRUE(spectrum.GetDataRange(low, high));
    EXPECT_EQ(low, 100);
    EXPECT_EQ(high, 300);

    float highest = -1.0f;
    float lowest = -1.0f;
    spectrum.GetMaxIntensity(highest, lowest, 0, 0); // no window
    EXPECT_FLOAT_EQ(highest, 9.0f);
    EXPECT_FLOAT_EQ(lowest, -2.0f);
    spectrum.GetMaxIntensity(highest, lowest, 120, 200); // only 150
    EXPECT_FLOAT_EQ(highest, 0.0f);
    EXPECT_FLOAT_EQ(lowest, -2.0f);
    spectrum.GetMaxIntensity(highest, lowest, 90, 120); // only 100.4
    EXPECT_FLOAT_EQ(highest, 5.0f);
    EXPECT_FLOAT_EQ(lowest, 0.0f);

    const CSpectrumData empty;
    empty.GetDataRange(low, high);
    EXPECT_EQ(low, 0);
    EXPECT_EQ(high, 0);

    // Masses no int can hold: NaN is passed over, the others count as the ends of the range.
    const float huge = std::numeric_limits<float>::infinity();
    const CSpectrumData wild =
        SpectrumOf({std::nanf(""), 50.5f, 3e9f, huge, -3e9f}, {1.0f, 1.0f, 1.0f, 1.0f, 1.0f});
    wild.GetDataRange(low, high);
    EXPECT_EQ(low, INT_MIN);
    EXPECT_EQ(high, INT_MAX);
}

TEST(SpectrumDataTest, IsPositiveLooksAtFoundResultsAndTheirTests) {
    CSpectrumData spectrum;
    spectrum.AddResults(Result(0, 1, "unused"));
    spectrum.AddResults(Result(1, 0, "ratio"));
    spectrum.AddResults(Result(1, 0, "ratio"));
    spectrum.AddResults(Result(1, 0, "shape"));

    int passed = -1;
    CString message = "earlier";
    EXPECT_TRUE(spectrum.IsPositive(-1, passed, &message));
    EXPECT_EQ(passed, 0); // every found result failed its test
    EXPECT_EQ(message, "earlier,ratio,shape");

    EXPECT_FALSE(spectrum.IsPositive(0, passed, nullptr)); // not found
    EXPECT_EQ(passed, 0);
    EXPECT_FALSE(spectrum.IsPositive(5, passed, nullptr)); // outside the results
    EXPECT_TRUE(spectrum.IsPositive(3));

    spectrum.AddResults(Result(1, 1, "fine"));
    message.Empty();
    EXPECT_TRUE(spectrum.IsPositive(-1, passed, &message));
    EXPECT_EQ(passed, 1);
    EXPECT_EQ(message, "ratio,shape");

    const CSpectrumData none;
    EXPECT_FALSE(none.IsPositive(-1, passed, nullptr));

    // A result finds its mass within the tolerance, once found.
    CResultsData found;
    found.SetMono(455.2);
    EXPECT_FALSE(found.IsMassFound(455.2)); // not found
    found.SetFound(1);
    EXPECT_TRUE(found.IsMassFound(455.20004));
    EXPECT_FALSE(found.IsMassFound(455.3));
}
