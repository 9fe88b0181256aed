#include <quillon/document/SampleData.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;
using quillon::testing::TextOf;

namespace {

std::string Peak(int id, int cluster, const char* time = "0") {
    return "[PEAK]\n{\nPeak ID\t" + std::to_string(id) + "\nPeak Cluster ID\t" +
           std::to_string(cluster) + "\nTime\t" + time + "\n}\n";
}

// A "CHROMATOGRAM" section; points are "time\tintensity" lines.
std::string Chromatogram(const char* description, int trace, int inFunction, const char* points,
                         const std::string& peaks) {
    return std::string("[CHROMATOGRAM]\n{\nDescription\t") + description + "\nTraceNumber\t" +
           std::to_string(trace) + "\nTraceNumberInFunction\t" + std::to_string(inFunction) +
           "\n[TRACE]\n{\n" + points + "}\n" + peaks + "}\n";
}

// A "SPECTRUM" section with a peak identifier and optional "RESULTS" lines.
std::string Spectrum(int peakID, const char* results = "") {
    return "[SPECTRUM]\n{\nPeak ID\t" + std::to_string(peakID) + "\n[RESULTS]\n{\n" + results +
           "}\n}\n";
}

// A "[SAMPLE]" block with two functions, an analog channel and a function continued at the end.
// Cluster 3 is spread over five chromatograms (peak 10 sits on three of them, and trace 1 holds
// two peaks of cluster 3); trace numbers in function: traces 1 and 3 are 1, traces 2 and 4 are 2,
// trace 5 is 3, the analog channel 0.
std::string SampleBlock() {
    return "{\nSample\t1\n"
           "[FUNCTION]\n{\nFunction\t1\nType\tMS\n" +
           Chromatogram("TIC", 1, 1, "1.0\t10\n2.0\t20\n3.0\t10\n",
                        Peak(10, 3, "1.5") + Peak(11, 3, "2.5")) +
           Chromatogram("XIC:455.2", 2, 2, "0.5\t1\n4.0\t2\n", Peak(12, 4) + Peak(10, 3, "1.6")) +
           Spectrum(10, "455.2\t1\t50\t0.9\t1\tfine\n") + "}\n" +
           "[FUNCTION]\n{\nFunction\t2\nType\tMS\n" +
           Chromatogram("TIC", 3, 1, "0.8\t1\n5.0\t3\n", Peak(10, 3, "1.7")) +
           Chromatogram("XIC:455.2", 4, 2, "0.7\t1\n4.5\t3\n", Peak(13, 3)) +
           Spectrum(10, "455.2\t1\t50\t0.9\t0\tweak\n") + Spectrum(13) + "}\n" +
           "[ANALOG]\n{\nDescription\tAnalog 1\nTraceNumber\t20\nTraceNumberInFunction\t0\n}\n"
           "[FUNCTION_APPEND]\n{\nFunction\t1\n" +
           Chromatogram("BPI", 5, 3, "0.6\t1\n2.0\t1\n", Peak(14, 3)) + "}\n}\n";
}

class SampleDataNavigationTest : public ::testing::Test {
protected:
    void SetUp() override { ReadBlock(sample, SampleBlock()); }

    float PeakTime(const CChromatogramPeak* peak) { return peak ? peak->GetTime() : -1.0f; }

    CSampleData sample;
};

} // namespace

// The continuation's trace 5 is found in function 1, the analog channel outside every function.
TEST_F(SampleDataNavigationTest, FindsFunctionsTracesAndChromatograms) {
    ASSERT_EQ(sample.GetFunctionCount(), 2);
    ASSERT_EQ(sample.GetAnalogCount(), 1);
    EXPECT_EQ(sample.GetFunctionEntryWithNumber(2), 1);
    EXPECT_EQ(sample.GetFunctionWithNumber(7), nullptr);

    EXPECT_EQ(sample.GetFunctionContainingTrace(3), sample.GetFunction(1));
    EXPECT_EQ(sample.GetFunctionContainingTrace(5), sample.GetFunction(0));
    EXPECT_EQ(sample.GetFunctionContainingTrace(20), nullptr); // an analog channel
    EXPECT_EQ(sample.GetFunctionContainingTrace(-100), nullptr);

    EXPECT_EQ(sample.GetTrace(4), sample.GetFunction(1)->GetChromatogram(1));
    EXPECT_EQ(sample.GetTrace(20), sample.GetAnalogChannel(0));
    EXPECT_EQ(sample.GetTrace(-5), nullptr);
    EXPECT_EQ(sample.GetTrace(-102), sample.GetCombinedTrace(-102));
    EXPECT_NE(sample.GetTrace(-101), sample.GetTrace(-100));

    EXPECT_EQ(sample.GetTraceNum(2, "TIC"), 3);
    EXPECT_EQ(sample.GetTraceNum(1, "XIC:455.2"), 2);
    EXPECT_EQ(sample.GetTraceNum(1, "tic"), 0);
    EXPECT_EQ(sample.GetTraceNum(-102, ""), -102);

    EXPECT_EQ(sample.GetChromatogramIndex(0, 5), 2);
    EXPECT_EQ(sample.GetChromatogramIndex(1, 3), 0);
    EXPECT_EQ(sample.GetChromatogramIndex(1, 1), -1);
    EXPECT_EQ(sample.GetChromatogramIndex(5, 1), -1);
    EXPECT_EQ(sample.GetChromatogramIndex(0, CString("BPI")), 2);

    EXPECT_TRUE(sample.SameTrace(2, 4));
    EXPECT_FALSE(sample.SameTrace(1, 2));
    EXPECT_FALSE(sample.SameTrace(1, 99));
    EXPECT_FALSE(sample.SameTrace(20, 20)); // exists, but its number in function is 0

    EXPECT_EQ(sample.GetCorrespondingSpectrum(10), sample.GetFunction(0)->GetSpectrum(0, false));
    EXPECT_EQ(sample.GetCorrespondingSpectrum(13), sample.GetFunction(1)->GetSpectrum(1, false));
}

TEST_F(SampleDataNavigationTest, FindsPeaksByIdentifierInWalkOrder) {
    EXPECT_FLOAT_EQ(PeakTime(sample.GetCorispondingPeakInfo(10, 0)), 1.5f);
    EXPECT_FLOAT_EQ(PeakTime(sample.GetCorispondingPeakInfo(10, 1)), 1.6f);
    EXPECT_FLOAT_EQ(PeakTime(sample.GetCorispondingPeakInfo(10, 2)), 1.7f);
    EXPECT_EQ(sample.GetCorispondingPeakInfo(10, 3), nullptr);
    EXPECT_EQ(sample.GetNumberOfChroGraphs(10), 3);

    EXPECT_EQ(sample.GetCorispondingChroMatogram(10, 2), sample.GetTrace(3));
    EXPECT_EQ(sample.GetCorispondingChroMatogram(10, 3), nullptr);
    EXPECT_EQ(sample.GetCorispondingChromatNumber(14, 0), 5);
    EXPECT_EQ(sample.GetCorispondingChromatNumber(10, 3), 0);

    // The look-up by function number and trace is checked against the peak index.
    EXPECT_EQ(sample.RetrievePeakClusterNum(12, 99), 4);
    EXPECT_EQ(sample.RetrievePeakClusterNum(99, 1), -1);
}

TEST_F(SampleDataNavigationTest, CountsAndOrdersChromatogramsOfACluster) {
    // Trace 1 holds two peaks of cluster 3 and counts once.
    EXPECT_EQ(sample.GetNumberOfChroGraphsInCluster(3), 5);
    EXPECT_EQ(sample.GetNumberOfChroGraphsInCluster(99), 0);
    EXPECT_EQ(sample.GetNumberOfChroGraphsInCluster(0), 1);

    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(3, 4), 2);
    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(3, 5), 1);
    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(4, 3), 0);
    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(0, 1), 1);
    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(3, 0), 1);
    EXPECT_EQ(sample.GetNumberOfSameTracesInCluster(3, 99), -1);

    // Walk order: function 1's traces 1, 2, 5, then function 2's traces 3, 4; counted from 1.
    EXPECT_EQ(sample.GetTraceInCluster(3, 1), 1);
    EXPECT_EQ(sample.GetTraceInCluster(3, 3), 5);
    EXPECT_EQ(sample.GetTraceInCluster(3, 5), 4);
    EXPECT_EQ(sample.GetTraceInCluster(3, 6), -1);

    EXPECT_EQ(sample.GetSameTraceInCluster(3, 1, 3), 1);
    EXPECT_EQ(sample.GetSameTraceInCluster(3, 2, 1), 3);
    EXPECT_EQ(sample.GetSameTraceInCluster(3, 3, 1), -1);
    EXPECT_EQ(sample.GetSameTraceInCluster(3, 1, 99), -1);

    EXPECT_EQ(sample.GetSamePeakInCluster(3, 1, 1), 10);
    EXPECT_EQ(sample.GetSamePeakInCluster(3, 1, 2), 10); // trace 2's first peak is of cluster 4
    EXPECT_EQ(sample.GetSamePeakInCluster(3, 2, 2), 13);
    EXPECT_EQ(sample.GetSamePeakInCluster(3, 3, 2), -1);
}

// A sample is positive when any function is, a function when any spectrum is; the passed flags
// combine the same way.
TEST_F(SampleDataNavigationTest, RangeAndPositivityOverAllFunctions) {
    float start = -1.0f;
    float end = -1.0f;
    EXPECT_EQ(sample.GetMaxChromatogramRange(start, end), 1);
    EXPECT_FLOAT_EQ(start, 0.5f);
    EXPECT_FLOAT_EQ(end, 5.0f);

    int flags = -1;
    CString text;
    EXPECT_EQ(sample.IsPositive(-1, flags, &text), 1);
    EXPECT_EQ(flags, 1);
    EXPECT_EQ(text, "weak");
    EXPECT_EQ(sample.IsPositive(1), 0); // no spectrum has a second result
    // A function whose found results all failed their tests is positive and passes nothing.
    EXPECT_EQ(sample.GetFunction(1)->IsPositive(-1, flags, nullptr), 1);
    EXPECT_EQ(flags, 0);

    CSampleData empty;
    EXPECT_EQ(empty.GetMaxChromatogramRange(start, end), 1);
    EXPECT_FLOAT_EQ(start, 0.0f);
    EXPECT_FLOAT_EQ(end, 0.0f);
    EXPECT_EQ(empty.IsPositive(-1, flags, nullptr), 0);
    EXPECT_EQ(flags, 0);
}

TEST(SampleDataFunctionAppendTest, ContinuationsReadOnFromOutsideTheirBlock) {
    // The look-up of the function number consumes the block's "{", so the continued function
    // reads on past the block's "}" and takes the next section of the sample as its own.
    CSampleData sample;
    ReadBlock(sample, "{\n[FUNCTION]\n{\nFunction\t1\nType\tMS\n}\n"
                      "[FUNCTION_APPEND]\n{\nFunction\t1\nIonMode\tES-\n}\n"
                      "[ANALOG]\n{\nDescription\tANALOG 1\nTraceNumber\t20\n}\n"
                      "[FUNCTION_APPEND]\n{\nFunction\t7\nType\tDAD\n}\n"
                      "}\n");

    ASSERT_EQ(sample.GetFunctionCount(), 2);
    CFunctionData* continued = sample.GetFunction(0);
    EXPECT_EQ(TextOf(*continued, &CFunctionData::GetIonMode), "ES-");
    // The analog section's field, read by the function.
    EXPECT_EQ(TextOf(*continued, &CFunctionData::GetDescription), "ANALOG 1");
    EXPECT_TRUE(continued->IsAnalog());
    EXPECT_EQ(sample.GetAnalogCount(), 0);

    // An unknown function number starts a new function, without the number's line.
    CFunctionData* started = sample.GetFunction(1);
    EXPECT_EQ(started->GetNumber(), 0);
    EXPECT_TRUE(started->IsPDA());
}
