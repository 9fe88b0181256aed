#include <quillon/document/SampleData.h>

#include <quillon/metabolites/DivBroParams.h>
#include <quillon/metabolites/MetaboliteData.h>

#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;

namespace {

std::string Peak(int id, const char* area) {
    return "[PEAK]\n{\nPeak ID\t" + std::to_string(id) + "\nAreaAbs\t" + area + "\n}\n";
}

std::string Chromatogram(const char* description, int trace, const std::string& peaks) {
    return std::string("[CHROMATOGRAM]\n{\nDescription\t") + description + "\nTraceNumber\t" +
           std::to_string(trace) + "\nTraceNumberInFunction\t1\n" + peaks + "}\n";
}

// Function 1 (MS): the mass chromatogram 1 with peaks 1 to 4 and 7, the total ion current 3 with
// peak 5. Function 2 (diode array): trace 4 with peak 6.
std::string SampleBlock() {
    return "{\nSample\t1\n[FUNCTION]\n{\nFunction\t1\nType\tMS\n" +
           Chromatogram("TOF MS ES+ : 319.1030", 1,
                        Peak(1, "300") + Peak(2, "100") + Peak(3, "100") + Peak(4, "40") +
                            Peak(7, "60") + Peak(8, "10")) +
           Chromatogram("TOF MS ES+ TIC", 3, Peak(5, "70")) +
           "}\n[FUNCTION]\n{\nFunction\t2\nType\tDiode Array\n" +
           Chromatogram("Diode Array : TIC", 4, Peak(6, "80")) + "}\n}\n";
}

CMetaboliteData Metabolite(bool expected, int peak, int trace, bool found) {
    CMetaboliteData metabolite;
    if (expected)
        metabolite.SetExpected();
    else
        metabolite.SetUnexpected();
    metabolite.SetPeakNum(peak);
    metabolite.SetTraceNum(trace);
    metabolite.SetFound(found);
    return metabolite;
}

class SampleDataAreasTest : public ::testing::Test {
protected:
    void SetUp() override {
        ReadBlock(sample, SampleBlock());
        sample.AddMSMetabolite(Metabolite(true, 1, 1, true));
        sample.AddMSMetabolite(Metabolite(true, 2, 1, true));
        sample.AddMSMetabolite(Metabolite(true, 3, 1, false));
        sample.AddMSMetabolite(Metabolite(true, 6, 4, true));
        CMetaboliteData highEnergy = Metabolite(true, 4, 1, true);
        highEnergy.SetHiEnergy(true);
        sample.AddMSMetabolite(highEnergy);
        sample.AddMSMetabolite(Metabolite(false, 7, 1, true));
        sample.AddMSMetabolite(Metabolite(false, 5, 3, true));
        CMetaboliteData msms;
        msms.SetMSMSCorrelation();
        msms.SetPeakNum(1);
        sample.AddMSMSMetabolite(0, msms);
        // Beyond the first MS/MS correlation metabolite: never reached.
        sample.AddMSMetabolite(Metabolite(true, 8, 1, true));
    }

    CChromatogramPeak& PeakOf(int id) { return *sample.GetCorispondingPeakInfo(id, 0); }
    CMetaboliteData& MetaboliteOf(int peak) { return *sample.GetMetaboliteWithPeakID(peak); }

    CSampleData sample;
};

} // namespace

TEST_F(SampleDataAreasTest, TotalsAndPercentagesArePerGroupAndDetectorKind) {
    sample.DetermineAreaTotals();
    EXPECT_DOUBLE_EQ(sample.GetAreaTotal(true, MS_TRACE), 500.0);
    EXPECT_DOUBLE_EQ(sample.GetAreaTotal(true, PDA_TRACE), 80.0);
    EXPECT_DOUBLE_EQ(sample.GetAreaTotal(true, ANALOG_TRACE), 0.0);
    EXPECT_DOUBLE_EQ(sample.GetAreaTotal(false, MS_TRACE), 130.0);

    sample.CalculateMetabolitePercentAreas(false);
    // Expected on the mass chromatogram: 300, 100 found and 100 not found.
    EXPECT_DOUBLE_EQ(PeakOf(1).GetRelativeArea(), 60.0);
    EXPECT_DOUBLE_EQ(PeakOf(2).GetRelativeArea(), 20.0);
    EXPECT_DOUBLE_EQ(PeakOf(3).GetRelativeArea(), 20.0);
    EXPECT_FLOAT_EQ(PeakOf(1).GetAreaPercentTotal(), 75.0f);
    EXPECT_FLOAT_EQ(PeakOf(2).GetAreaPercentTotal(), 25.0f);
    EXPECT_FLOAT_EQ(PeakOf(3).GetAreaPercentTotal(), 0.0f);
    EXPECT_DOUBLE_EQ(MetaboliteOf(1).GetRelativePeakArea(), 60.0);
    EXPECT_DOUBLE_EQ(MetaboliteOf(1).GetPeakArea(), 300.0);
    EXPECT_DOUBLE_EQ(MetaboliteOf(3).GetPeakArea(), 100.0);
    EXPECT_DOUBLE_EQ(MetaboliteOf(3).GetRelativePeakArea(), -1.0); // not found
    // The diode-array peak is alone in its kind.
    EXPECT_DOUBLE_EQ(PeakOf(6).GetRelativeArea(), 100.0);
    EXPECT_FLOAT_EQ(PeakOf(6).GetAreaPercentTotal(), 100.0f);
    // Unexpected: the total ion current counts in the total but has no found percentage.
    EXPECT_NEAR(PeakOf(7).GetRelativeArea(), 60.0 / 130.0 * 100.0, 1e-9);
    EXPECT_FLOAT_EQ(PeakOf(7).GetAreaPercentTotal(), 100.0f);
    EXPECT_FLOAT_EQ(PeakOf(5).GetAreaPercentTotal(), 0.0f);
    // Neither the high-energy peak nor one after the MS/MS correlation metabolites is touched.
    for (int id : {4, 8}) {
        EXPECT_DOUBLE_EQ(PeakOf(id).GetRelativeArea(), 0.0) << id;
        EXPECT_FLOAT_EQ(PeakOf(id).GetAreaPercentTotal(), 0.0f) << id;
        EXPECT_DOUBLE_EQ(MetaboliteOf(id).GetPeakArea(), -1.0) << id;
    }
}

TEST_F(SampleDataAreasTest, FilteredMetabolitesKeepTheirRelativeAreaButLeaveTheFoundTotal) {
    CDivBroParams params;
    params.AreaFilterOn = true;
    params.AreaFilterOnExpected = true;
    params.AreaThreshold = 150.0f;
    sample.SetParams(&params);
    sample.DetermineAreaTotals();
    sample.CalculateMetabolitePercentAreas(true);
    EXPECT_DOUBLE_EQ(PeakOf(2).GetRelativeArea(), 20.0);
    EXPECT_DOUBLE_EQ(MetaboliteOf(2).GetPeakArea(), 100.0);
    EXPECT_FLOAT_EQ(PeakOf(2).GetAreaPercentTotal(), 0.0f);
    EXPECT_FLOAT_EQ(PeakOf(1).GetAreaPercentTotal(), 100.0f);
    // Both unexpected peaks are rejected too.
    EXPECT_FLOAT_EQ(PeakOf(7).GetAreaPercentTotal(), 0.0f);
    EXPECT_NEAR(PeakOf(7).GetRelativeArea(), 60.0 / 130.0 * 100.0, 1e-9);
}
