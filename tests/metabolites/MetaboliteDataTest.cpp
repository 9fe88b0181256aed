#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

using namespace quillon;

TEST(MetaboliteData, ConstructorsSetTheKindAndBothAreas) {
    const CMetaboliteData expected(true, 2, 318.1, 334.09, 15.99, 335.1, 334.0907, true, false,
                                   "2,6", 4, 7, 1, 6, 9.5, 1234.0, "Hydroxylation", "C17H19ClN2OS",
                                   "0.2", "0.6", false, true, "ref", true);
    EXPECT_TRUE(expected.IsExpected());
    EXPECT_EQ(expected.GetPeakArea(), 1234.0);
    EXPECT_EQ(expected.GetRelativePeakArea(), 1234.0);
    EXPECT_EQ(expected.GetPrecursor(), 334.09);
    EXPECT_EQ(expected.GetMolecularMass(), 334.0907);
    EXPECT_EQ(expected.GetPeakClusterNum(), 4);
    EXPECT_EQ(expected.GetPeakNum(), 7);
    EXPECT_EQ(expected.GetTraceNum(), 6);
    EXPECT_FALSE(expected.GetMSMS());
    EXPECT_TRUE(expected.IsAnalogPDA());
    EXPECT_TRUE(expected.IsIsotope());
    EXPECT_STREQ(expected.GetMetName(), "Hydroxylation");

    const CMetaboliteData correlation(319.1, 319.2, 16.0, true, 5, 3, 2, 9.62, -1.0, "18.0106",
                                      "M1", "C17H19ClN2OS", "");
    EXPECT_TRUE(correlation.IsMSMSCorrelation());
    EXPECT_TRUE(correlation.GetFound() && correlation.GetConfirmed());
    EXPECT_FALSE(correlation.GetMSMS());
    EXPECT_EQ(correlation.GetMSMSSpectrumSetMass(), 319.1);
}

TEST(MetaboliteData, TextsListsAndCandidateCount) {
    CMetaboliteData record;
    record.SetmDa(1.26);
    CString text;
    record.GetmDa(text);
    EXPECT_EQ(text, "1.3");
    EXPECT_DOUBLE_EQ(record.GetmDa(), 1.3);

    record.SetChroTraceList("112,5");
    EXPECT_FALSE(record.TraceNumInList(12));
    EXPECT_TRUE(record.TraceNumInList(0));
    record.SetChroTraceList("5,12");
    EXPECT_TRUE(record.TraceNumInList(12));

    EXPECT_EQ(CMetaboliteData::CountItems("a,,b"), 3);
    EXPECT_EQ(CMetaboliteData::CountItems(""), 0);

    // Deleting outside the candidates changes nothing.
    record.AddElementalResults();
    EXPECT_EQ(record.AddElementalResults(), 2);
    EXPECT_EQ(record.DeleteElementalResult(2), 2);
    EXPECT_EQ(record.DeleteElementalResult(-1), 2);
}
