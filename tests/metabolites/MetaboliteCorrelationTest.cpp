#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;

namespace {

// A sample whose MS/MS correlation has its parent at the entry.
CSampleData SampleWithParent(int parentEntry) {
    CSampleData sample;
    sample.GetMSMSCorrelation()->ParentEntry(parentEntry);
    return sample;
}

std::string LossesAtParent(const CMetaboliteData& metabolite, CSampleData& sample) {
    CString text;
    metabolite.GetNeutralLossesFromAllParentSpectrumMasses(&sample, text);
    return text.str();
}

std::string ProductsAt(const CMetaboliteData& metabolite, int entry) {
    CString text;
    metabolite.GetCorrelationMasses(entry, text);
    return text.str();
}

} // namespace

TEST(MetaboliteCorrelationTest, ParentGettersAndSetterFollowTheSampleParentEntry) {
    CMetaboliteData metabolite;
    metabolite.SetCorrelationMasses(0, "274.0452");
    metabolite.SetCorrelationMasses(2, "238.0685,86.0964");
    metabolite.SetCommonNeutralLosses(2, "45.0578");
    CSampleData sample = SampleWithParent(2);
    CString text;
    metabolite.GetCommonProductsParent(&sample, text);
    EXPECT_EQ(text, "238.0685,86.0964");
    metabolite.GetCommonNeutralLosses(&sample, text);
    EXPECT_EQ(text, "45.0578");
    metabolite.GetCommonProductsMetabolite(&sample, text, 0);
    EXPECT_EQ(text, "274.0452");
    metabolite.GetCommonProductsMetabolite(&sample, text, 2); // the parent's own entry
    EXPECT_EQ(text, "");

    metabolite.SetNeutralLossesFromAllParentSpectrumMasses(&sample, "45.0578,81.0345");
    EXPECT_EQ(LossesAtParent(metabolite, sample), "45.0578,81.0345");
    CSampleData other = SampleWithParent(0);
    EXPECT_EQ(LossesAtParent(metabolite, other), ""); // entry 0 was grown empty
    metabolite.SetNeutralLossesFromAllParentSpectrumMasses(nullptr, "18.0106"); // entry 0
    EXPECT_EQ(LossesAtParent(metabolite, other), "18.0106");

    // Without a parent entry nothing is read or stored.
    CSampleData none = SampleWithParent(-1);
    metabolite.SetNeutralLossesFromAllParentSpectrumMasses(&none, "99.9");
    metabolite.GetCommonProductsParent(&none, text);
    EXPECT_EQ(text, "");
    EXPECT_EQ(LossesAtParent(metabolite, none), "");
    EXPECT_EQ(LossesAtParent(metabolite, other), "18.0106");
}

TEST(MetaboliteCorrelationTest, DeletingRemovesOneItemAndItsComma) {
    CSampleData sample = SampleWithParent(0);
    CMetaboliteData metabolite;
    metabolite.SetNeutralLossesFromAllParentSpectrumMasses(&sample, "100.1,200.2,300.3");
    EXPECT_FALSE(metabolite.DeleteNeutralLoss(&sample, 3));
    EXPECT_TRUE(metabolite.DeleteNeutralLoss(&sample, 1));
    EXPECT_EQ(LossesAtParent(metabolite, sample), "100.1,300.3");
    EXPECT_TRUE(metabolite.DeleteNeutralLoss(&sample, 1)); // the last item takes its comma
    EXPECT_EQ(LossesAtParent(metabolite, sample), "100.1");
    EXPECT_TRUE(metabolite.DeleteNeutralLoss(&sample, 0));
    EXPECT_EQ(LossesAtParent(metabolite, sample), "");
    EXPECT_FALSE(metabolite.DeleteNeutralLoss(&sample, 0));

    metabolite.SetCorrelationMasses(0, "274.0452,238.0685");
    EXPECT_TRUE(metabolite.DeleteProductIonParent(&sample, 0));
    EXPECT_EQ(ProductsAt(metabolite, 0), "238.0685");
    CSampleData none = SampleWithParent(-1);
    EXPECT_FALSE(metabolite.DeleteProductIonParent(&none, 0));
    EXPECT_FALSE(metabolite.DeleteNeutralLoss(&none, 0));
}

TEST(MetaboliteCorrelationTest, NonParentProductsAreUnitedAndDeletedFromEveryEntry) {
    CSampleData sample = SampleWithParent(1);
    CMetaboliteData metabolite;
    metabolite.SetCorrelationMasses(0, "274.0452,86.0964");
    metabolite.SetCorrelationMasses(1, "86.0964,58.0651"); // the parent's: never united or edited
    metabolite.SetCorrelationMasses(2, "86.0964,238.0685");
    metabolite.SetCorrelationMasses(3, "86.09640,6.0964");
    CString all;
    metabolite.GetCommonProductsNonParent(&sample, all);
    // An item is united unless the union already holds its text: "6.0964" is inside "86.0964".
    EXPECT_EQ(all, "274.0452,86.0964,238.0685,86.09640");

    EXPECT_FALSE(metabolite.DeleteProductIonNonParent(&sample, 4));
    // The ion goes from every non-parent entry, however many decimals it was written with.
    EXPECT_TRUE(metabolite.DeleteProductIonNonParent(&sample, 1));
    metabolite.GetCommonProductsNonParent(&sample, all);
    EXPECT_EQ(all, "274.0452,238.0685,6.0964");
    EXPECT_EQ(ProductsAt(metabolite, 1), "86.0964,58.0651");
    EXPECT_EQ(ProductsAt(metabolite, 3), "6.0964");
    EXPECT_EQ(metabolite.GetNumCommonProductsParent(&sample), 2);
}

TEST(MetaboliteCorrelationTest, ExpansionKeepsThePositiveNumbersOfEachEntry) {
    CMetaboliteData metabolite;
    metabolite.SetCorrelationMasses(0, "101.05,0,abc,202.1");
    metabolite.SetCorrelationMasses(2, "-5,58.0651");
    metabolite.ExpandCorrelationMasses();
    const CArray<CDoubleArray>& expanded = metabolite.GetExpandedCorrelationMasses();
    ASSERT_EQ(expanded.GetSize(), 3);
    EXPECT_EQ(std::vector<double>(expanded[0].begin(), expanded[0].end()),
              (std::vector<double>{101.05, 202.1}));
    EXPECT_EQ(expanded[1].GetSize(), 0);
    EXPECT_EQ(std::vector<double>(expanded[2].begin(), expanded[2].end()),
              (std::vector<double>{58.0651}));
    metabolite.ExpandCorrelationMasses(); // meant to run once: values are appended again
    EXPECT_EQ(metabolite.GetExpandedCorrelationMasses()[0].GetSize(), 4);
}
