// The combined traces of the fragment analysis on the example batch.

#include <quillon/document/Samples.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/metabolites/DivBroParams.h>
#include <quillon/metabolites/MetaboliteNames.h>
#include <quillon/platform/HostHooks.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace quillon;

namespace {

class ExampleBatch : public ::testing::Test {
protected:
    void SetUp() override {
        HostHooks hooks = m_saved;
        hooks.workingDirectory = [] { return CString(QUILLON_SOURCE_DIR "/examples"); };
        SetHostHooks(hooks);
        ASSERT_EQ(m_samples.Read(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt"), 1);
    }
    void TearDown() override { SetHostHooks(m_saved); }

    HostHooks m_saved = GetHostHooks();
    CSamples m_samples;
};

float MaxIntensity(CChromatoData* trace) {
    float highest = 0.0f;
    CPeakData point;
    for (int i = 0; i < trace->GetNumPeaks(); ++i) {
        trace->GetPeak(i, point);
        highest = std::max(highest, static_cast<float>(point.GetIntensity()));
    }
    return highest;
}

bool HasSpectra(const CFragmentAnalysis& fa, int entry) {
    int tag = 0;
    CUIntArray functions, peaks;
    return fa.GetPeaksForNeutralLoss(entry, tag, functions, peaks);
}

TEST_F(ExampleBatch, CombinedTracesAreBuiltOnceFromTheChosenMetabolites) {
    CSampleData& sample = *m_samples.GetSample(2);
    ASSERT_TRUE(sample.GetFragmentAnalysis()->DoFragmentAnalysis(&sample));
    auto setup = [&](int trace, bool leaveOutParent) {
        return sample.SetupCombinedTrace(trace, CDivBroParams(), leaveOutParent, false);
    };
    EXPECT_EQ(sample.GetCombinedTrace(5), sample.GetCombinedTrace(-100));
    EXPECT_TRUE(sample.CombinedTraceNeedsData());
    EXPECT_FALSE(setup(-99, false));

    // The found expected metabolites on one grid, as many points as the longest trace.
    ASSERT_TRUE(setup(-100, false));
    CChromatoData* combined = sample.GetCombinedTrace(-100);
    EXPECT_EQ(combined->GetDescription(), "Combined Metabolite Peaks (Found Expected Peaks only)");
    EXPECT_EQ(combined->GetTraceNumber(), -100);
    EXPECT_GT(combined->GetNumPeaks(), 100);
    EXPECT_GT(combined->GetNumberOfListPeaks(), 1);
    const float withParent = MaxIntensity(combined);
    EXPECT_GT(withParent, 0.0f);
    const int points = combined->GetNumPeaks();
    EXPECT_FALSE(setup(-100, false)); // built already: untouched
    EXPECT_EQ(combined->GetNumPeaks(), points);

    // The same type again changes nothing; another type needs data; without the parent the
    // metabolites are no longer dwarfed.
    EXPECT_FALSE(sample.SetCombinedTraceType(CSampleData::COMBINED_EXPECTED_FOUND, -100));
    EXPECT_FALSE(sample.CombinedTraceNeedsData());
    EXPECT_TRUE(sample.SetCombinedTraceType(CSampleData::COMBINED_ALL_FOUND_AND_UNEXPECTED, -100));
    EXPECT_TRUE(sample.CombinedTraceNeedsData());
    ASSERT_TRUE(setup(-100, true));
    EXPECT_EQ(combined->GetDescription(),
              "Combined Metabolite Peaks (All Found and Unexpected Peaks)");
    EXPECT_LT(MaxIntensity(combined), withParent / 2);
    // A parent named in another case is left out all the same.
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        if (IsParent(*sample.GetMetabolite(m)))
            sample.GetMetabolite(m)->SetMetName("PARENT");
    }
    sample.CombinedTraceNeedsData(true, false, false);
    ASSERT_TRUE(setup(-100, true));
    EXPECT_LT(MaxIntensity(combined), withParent / 2);
    // The found unexpected metabolites alone: one listed peak each.
    int unexpected = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
        unexpected += !metabolite.IsExpected() && !metabolite.IsMSMSCorrelation() &&
                      !metabolite.IsHiEnergy() && metabolite.GetFound();
    }
    EXPECT_TRUE(sample.SetCombinedTraceType(CSampleData::COMBINED_UNEXPECTED_FOUND, -100));
    ASSERT_TRUE(setup(-100, false));
    EXPECT_EQ(combined->GetDescription(),
              "Combined Metabolite Peaks (Found Unexpected Peaks only)");
    EXPECT_GT(unexpected, 0);
    EXPECT_EQ(combined->GetNumberOfListPeaks(), unexpected);

    // Precursors of the fragment at 86 and carriers of a neutral loss.
    sample.CurrentFragment(86);
    ASSERT_TRUE(setup(-101, false));
    EXPECT_EQ(sample.GetCombinedTrace(-101)->GetDescription(), "Precursors of Fragment 86");
    EXPECT_GT(sample.GetCombinedTrace(-101)->GetNumberOfListPeaks(), 0);
    EXPECT_FALSE(setup(-102, false)); // no neutral loss chosen yet
    EXPECT_EQ(sample.GetCombinedTrace(-102)->GetDescription(), "Common Neutral Loss -1 ");
    const CFragmentAnalysis* fa = sample.GetFragmentAnalysis();
    int found = 0;
    while (found < fa->GetNeutralLossEntries().GetSize() && !HasSpectra(*fa, found))
        ++found;
    ASSERT_LT(found, fa->GetNeutralLossEntries().GetSize());
    sample.CurrentNeutralLoss(found);
    EXPECT_TRUE(sample.GetCombinedTrace(-102)->CombinedTraceNeedsData());
    ASSERT_TRUE(setup(-102, false));
    CString label;
    fa->GetNeutralLoss(found, label);
    EXPECT_EQ(std::string(sample.GetCombinedTrace(-102)->GetDescription().c_str()),
              "Common Neutral Loss " + std::to_string(fa->GetNeutralLossFromEntry(found)) + " " +
                  label.c_str());
    EXPECT_GT(sample.GetCombinedTrace(-102)->GetNumberOfListPeaks(), 0);
}

} // namespace
