#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

using namespace quillon;

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
