#include <quillon/acquisition/ChromatoData.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace quillon;
using quillon::testing::Points;
using quillon::testing::PointsOf;
using quillon::testing::ReadBlock;

namespace {

// A trace with the given times and intensities.
CChromatoData TraceOf(const std::vector<float>& times, const std::vector<float>& intensities) {
    CChromatoData trace;
    trace.AddTimeIntensity(times.data(), intensities.data(), static_cast<int>(times.size()));
    return trace;
}

CChromatogramPeak PeakAt(float time, double start, double end, int id = 0) {
    CChromatogramPeak peak;
    peak.SetPeakID(id);
    peak.SetTime(time);
    peak.GetChromatPeakData()->SetStartTime(start);
    peak.GetChromatPeakData()->SetEndTime(end);
    return peak;
}

// The listed peaks' identifiers and extents, in list order.
using Extents = std::vector<std::tuple<int, double, double>>;
Extents ExtentsOf(const CChromatoData& trace) {
    Extents extents;
    for (int i = 0; i < trace.GetNumberOfListPeaks(); ++i) {
        const CChromatogramPeak& peak = *trace.GetChromatPeakData(i);
        extents.emplace_back(peak.GetPeakID(), peak.GetChromatPeakData()->GetStartTime(),
                             peak.GetChromatPeakData()->GetEndTime());
    }
    return extents;
}

} // namespace

TEST(ChromatoDataTest, ReadsFieldsPointsAndPeaks) {
    CChromatoData trace;
    ReadBlock(trace, "{\nDescription\tES+ 455.2:455.2\nProcDesc\tSmoothed\nMaxIntensity\t2000\n"
                     "TraceNumber\t5\nTraceNumberInFunction\t2\nUnknown\tvalue\n"
                     "[TRACE]\n{\n0.52\t1200\textra\n0.60\n0.70\t1300\n}\n"
                     "[PEAK]\n{\nPeak ID\t1\nTime\t0.6\n}\n"
                     "[OTHER]\n{\n[TRACE]\n{\n9\t9\n}\n}\n"
                     "[TRACE]\n{\n0.80\t1400\n}\n"
                     "[PEAK]\n{\nPeak ID\t2\n}\n"
                     "}\nDescription\tafter the block\n");
    EXPECT_EQ(trace.GetDescription(), "ES+ 455.2:455.2");
    EXPECT_EQ(trace.GetProcDesc(), "Smoothed");
    float maxIntensity = 0;
    trace.GetMaxIntensity(maxIntensity);
    EXPECT_FLOAT_EQ(maxIntensity, 2000.0f);
    EXPECT_EQ(trace.GetTraceNumber(), 5);
    EXPECT_EQ(trace.GetTraceNumberInFunction(), 2);
    // The short line is skipped; the second "TRACE" section appends.
    EXPECT_EQ(PointsOf(trace), (Points{{0.52f, 1200}, {0.70f, 1300}, {0.80f, 1400}}));
    ASSERT_EQ(trace.GetNumberOfListPeaks(), 2);
    EXPECT_EQ(trace.GetChromatPeakData(0)->GetPeakID(), 1);
    EXPECT_FLOAT_EQ(trace.GetChromatPeakData(0)->GetTime(), 0.6f);
    EXPECT_EQ(trace.GetChromatPeakData(1)->GetPeakID(), 2);
    EXPECT_EQ(trace.GetChromatPeakData(2), nullptr);
}

TEST(ChromatoDataTest, PercentScalingUsesTheMaxIntensityReadSoFar) {
    // The parameters field switches scaling on; the maximum intensity must come before the points.
    CChromatoData trace;
    ReadBlock(trace, "{\nCustomChartParameters\tp=1\nMaxIntensity\t2000\n"
                     "[TRACE]\n{\n1.0\t50\n}\n}\n");
    EXPECT_EQ(trace.GetCustomChartParams(), "p=1");
    EXPECT_EQ(PointsOf(trace), (Points{{1.0, 1000.0}}));

    // Points read before the maximum intensity are scaled with the 0 it had then.
    CChromatoData late;
    ReadBlock(late, "{\nCustomChartParameters\tp=1\n[TRACE]\n{\n1.0\t50\n}\n"
                    "MaxIntensity\t2000\n[TRACE]\n{\n2.0\t25\n}\n}\n");
    EXPECT_EQ(PointsOf(late), (Points{{1.0, 0.0}, {2.0, 500.0}}));
}

TEST(ChromatoDataTest, ClassifiesTraces) {
    const struct {
        const char* description;
        TRACE_TYPE type;
        bool tic, massChromatogram;
    } cases[] = {{"Diode Array TIC", MS_TRACE, true, false},
                 {"TAC", MS_TRACE, true, false},
                 {"tic", MS_TRACE, false, false},
                 {"ES+ Mass:455.2", MS_TRACE, false, true},
                 {"455.2", MS_TRACE, false, true},
                 {"12:30:", MS_TRACE, false, false},
                 {"ES+ Mass:455.2", ANALOG_TRACE, false, false},
                 {"ES+ Mass:455.2", PDA_TRACE, false, true}};
    for (const auto& each : cases) {
        CChromatoData trace;
        trace.SetDescription(each.description);
        trace.SetTraceType(each.type);
        EXPECT_EQ(trace.IsTIC(), each.tic) << each.description;
        EXPECT_EQ(trace.IsMassChromatogram(), each.massChromatogram) << each.description;
    }

    CChromatoData combined;
    combined.SetCombinedTraceNumber(7);
    EXPECT_EQ(combined.GetTraceNumber(), 7);
    EXPECT_EQ(combined.GetFunctionNumber(), -100);
}

TEST(ChromatoDataTest, DataAndIntensityRanges) {
    const CChromatoData trace = TraceOf({0.0f, 0.5f, 1.0f, 1.5f, -2.0f}, {5, 0, 30, 20, 40});
    float low = -1, high = -1;
    EXPECT_EQ(trace.GetDataRange(low, high), TRUE);
    // A first time of 0 counts as unset, so the next time becomes the low.
    EXPECT_FLOAT_EQ(low, -2.0f);
    EXPECT_FLOAT_EQ(high, 1.5f);
    const CChromatoData positive = TraceOf({0.0f, 0.5f, 1.0f}, {1, 1, 1});
    positive.GetDataRange(low, high);
    EXPECT_FLOAT_EQ(low, 0.5f);
    EXPECT_FLOAT_EQ(high, 1.0f);

    // The 0 intensity at 0.5 is taken as the low, then counts as unset for the next point.
    EXPECT_EQ(trace.GetIntensityRange(0.5f, 1.5f, low, high), 3);
    EXPECT_FLOAT_EQ(low, 20.0f);
    EXPECT_FLOAT_EQ(high, 30.0f);
    EXPECT_EQ(trace.GetIntensityRange(1.5f, 0.5f, low, high), 0);
    EXPECT_FLOAT_EQ(low, 0.0f);
    EXPECT_FLOAT_EQ(high, 0.0f);
    EXPECT_EQ(CChromatoData().GetIntensityRange(0, 10, low, high), 0);
}

TEST(ChromatoDataTest, MaxIntensityFindsPeakAndValley) {
    const CChromatoData trace =
        TraceOf({1.0f, 2.0f, 3.0f, 4.0f, 5.0f, 6.0f}, {50, 500, 60, 60, 900, 40});
    float highest, lowest, timeOfHighest, timeOfLowest;

    // The window 2..5: the first of two equal lows wins, the lowest itself comes back as 0.
    EXPECT_EQ(trace.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 2.0f, 5.0f),
              TRUE);
    EXPECT_FLOAT_EQ(highest, 900.0f);
    EXPECT_FLOAT_EQ(timeOfHighest, 5.0f);
    EXPECT_FLOAT_EQ(timeOfLowest, 3.0f);
    EXPECT_FLOAT_EQ(lowest, 0.0f);

    // from equal to to looks at every point.
    trace.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 3.0f, 3.0f);
    EXPECT_FLOAT_EQ(timeOfHighest, 5.0f);
    EXPECT_FLOAT_EQ(timeOfLowest, 6.0f);

    // No point in the window below 100: the valley stays at the window's midpoint.
    const CChromatoData high = TraceOf({1, 2, 3}, {1000, 150, 800});
    high.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 1.0f, 3.0f);
    EXPECT_FLOAT_EQ(timeOfLowest, 2.0f);
    high.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 1.0f, 2.5f);
    EXPECT_FLOAT_EQ(timeOfLowest, 1.75f);

    // With custom chart parameters the search starts from the scaled maximum intensity.
    CChromatoData custom = high;
    custom.SetUsesCustomChartParams(1);
    custom.SetMaxintensity(1000.0f);
    custom.GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 1.0f, 2.5f);
    EXPECT_FLOAT_EQ(timeOfLowest, 2.0f);

    // No points: everything 0, both times at the midpoint.
    CChromatoData().GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, 2.0f, 4.0f);
    EXPECT_FLOAT_EQ(highest, 0.0f);
    EXPECT_FLOAT_EQ(lowest, 0.0f);
    EXPECT_FLOAT_EQ(timeOfHighest, 3.0f);
    EXPECT_FLOAT_EQ(timeOfLowest, 3.0f);
}

TEST(ChromatoDataTest, NearestPointPrefersTheLaterOnATie) {
    const CChromatoData trace = TraceOf({1.0f, 2.0f, 3.0f}, {10, 20, 30});
    int index = 2;
    EXPECT_DOUBLE_EQ(trace.GetNearestPeak(&index, 2.5f).GetIntensity(), 30.0);
    EXPECT_EQ(index, 2);
    EXPECT_DOUBLE_EQ(trace.GetNearestPeak(&index, 2.4f).GetIntensity(), 20.0);
    EXPECT_EQ(index, 1);
    // Before the first point the missing neighbour counts as time 0.
    index = 0;
    EXPECT_DOUBLE_EQ(trace.GetNearestPeak(&index, 0.4f).GetMass(), 0.0);
    EXPECT_EQ(index, -1);
    // Past the last point the missing point counts as time 0.
    index = 3;
    EXPECT_DOUBLE_EQ(trace.GetNearestPeak(&index, 2.9f).GetMass(), 3.0);
    EXPECT_EQ(index, 2);
    EXPECT_DOUBLE_EQ(trace.GetNearestPeak(nullptr, 1.0f).GetMass(), 0.0);
}

// Peaks sort by the size of their time (a negative time marks a peak); overlapping neighbours
// are cut at the valley between their apexes, or at the midpoint when no point there lies
// below 100; touching extents keep their ends and widths.
TEST(ChromatoDataTest, SortsPeaksAndTrimsOverlapsAtTheValley) {
    // Valley at 3.0 between apexes at 2.0 and 4.0; another at 6.0 between 4.0 and 7.0.
    CChromatoData trace = TraceOf({1, 2, 3, 4, 5, 6, 7, 8}, {10, 500, 40, 700, 300, 20, 600, 5});
    trace.AddChromatogramPeak(PeakAt(7.0f, 5.5, 8.0, 3));
    trace.AddChromatogramPeak(PeakAt(-2.0f, 1.0, 3.5, 1));
    trace.AddChromatogramPeak(PeakAt(4.0f, 2.5, 6.5, 2));
    trace.SortChromatogramPeaks();
    EXPECT_EQ(ExtentsOf(trace), (Extents{{1, 1.0, 3.0}, {2, 3.0, 6.0}, {3, 6.0, 8.0}}));
    EXPECT_FLOAT_EQ(trace.GetChromatPeakData(1)->GetWidth(), 3.0f);

    // Equal sizes keep their order.
    CChromatoData equal = TraceOf({1, 2, 3, 4}, {10, 500, 300, 400});
    equal.AddChromatogramPeak(PeakAt(2.0f, 1.5, 2.5, 1));
    equal.AddChromatogramPeak(PeakAt(-1.5f, 1.0, 1.5, 2));
    equal.AddChromatogramPeak(PeakAt(-2.0f, 2.5, 2.5, 3));
    equal.AddChromatogramPeak(PeakAt(4.0f, 2.4, 4.5, 4));
    equal.SortChromatogramPeaks();
    EXPECT_EQ(ExtentsOf(equal),
              (Extents{{2, 1.0, 1.5}, {1, 1.5, 2.5}, {3, 2.5, 3.0}, {4, 3.0, 4.5}}));
    EXPECT_FLOAT_EQ(equal.GetChromatPeakData(1)->GetWidth(), 0.0f);
}

// The points inside a peak's extent, and peaks added to the list, a duplicate only on request.
TEST(ChromatoDataTest, PeakDataCutsThePointsToAnExtentAndPeaksAddWithoutDuplicates) {
    CChromatoData trace = TraceOf({1.0f, 1.5f, 2.0f, 2.5f, 3.0f}, {1, 2, 3, 4, 5});
    CArray<float> times, intensities;
    times.Add(99.0f);
    EXPECT_EQ(trace.GetPeakData(times, intensities, CPeakList(1.5, 2.5, 0, 0)), 3);
    ASSERT_EQ(times.GetSize(), 3);
    EXPECT_FLOAT_EQ(times[0], 1.5f);
    EXPECT_FLOAT_EQ(times[2], 2.5f);
    EXPECT_FLOAT_EQ(intensities[1], 3.0f);
    EXPECT_EQ(trace.GetPeakData(times, intensities, CPeakList(5.0, 4.0, 0, 0)), 0);
    EXPECT_EQ(intensities.GetSize(), 0);

    EXPECT_EQ(trace.AddChromatogramPeak(), 0);
    EXPECT_EQ(trace.AddChromatogramPeak(PeakAt(1.0f, 0, 2, 5), true), 1);
    EXPECT_EQ(trace.AddChromatogramPeak(PeakAt(1.5f, 0, 2, 5), false), 1);
    EXPECT_EQ(trace.AddChromatogramPeak(PeakAt(1.5f, 0, 2, 5), true), 2);
    EXPECT_EQ(trace.AddChromatogramPeak(PeakAt(1.5f, 0, 2, 6), false), 3);
    EXPECT_EQ(trace.GetNumberOfListPeaks(), 4);
}
