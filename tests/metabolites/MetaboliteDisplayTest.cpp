#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MSMSMetabolite.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/metabolites/MetaboliteDisplay.h>

#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;

namespace {

std::string Chromatogram(const char* description, int trace) {
    return std::string("[CHROMATOGRAM]\n{\nDescription\t") + description + "\nTraceNumber\t" +
           std::to_string(trace) + "\n}\n";
}

// A sample with a mass chromatogram (1), a total ion current (2), a full-scan trace whose range
// holds a colon (3) and an analog channel (20).
CSampleData SampleWithTraces() {
    CSampleData sample;
    ReadBlock(sample,
              "{\nSample\t1\n[FUNCTION]\n{\nFunction\t1\nType\tMS\n" +
                  Chromatogram("TOF MS ES+ : 319.1030 ", 1) + Chromatogram("TOF MS ES+ TIC", 2) +
                  Chromatogram("TOF MS ES+ (50:1000)", 3) +
                  "}\n[ANALOG]\n{\nDescription\tANALOG 1 : Radio flow\nTraceNumber\t20\n}\n}\n");
    return sample;
}

template <class Getter>
std::string Text(Getter getter) {
    CString text = "stale";
    getter(text);
    return text.str();
}

} // namespace

TEST(MetaboliteDisplayTest, NumberTextsAreRoundedAndEmptyForMissingValues) {
    CSampleData sample;
    CMetaboliteData metabolite; // no area, no peak
    auto area = [&](CString& text) { GetAreaText(metabolite, text); };
    auto relative = [&](CString& text) { GetRelativeAreaText(metabolite, text); };
    auto time = [&](CString& text) { GetTimeText(metabolite, text); };
    auto ratio = [&](CString& text) { GetISAreaRatioText(metabolite, &sample, text); };
    EXPECT_EQ(Text(area) + Text(relative) + Text(time) + Text(ratio), "");

    metabolite.SetPeakArea(1234.56);
    metabolite.SetRelativePeakArea(60.0);
    metabolite.SetPeakNum(3);
    metabolite.SetPeakTime(9.6166);
    EXPECT_EQ(Text(area), "1235");
    EXPECT_EQ(Text([&](CString& text) { GetAreaText(metabolite, text, 1); }), "1234.6");
    EXPECT_EQ(Text(relative), "60.00");
    EXPECT_EQ(Text(time), "9.62");
    EXPECT_EQ(Text([&](CString& text) { GetTimeText(metabolite, text, -3); }), "10");
    EXPECT_EQ(Text(ratio), ""); // the sample has no internal standard

    sample.SetInternalStandard(0, 4938.24);
    EXPECT_EQ(Text(ratio), "0.250");
    sample.SetInternalStandard(0, 0.0);
    EXPECT_EQ(Text(ratio), "");

    // Lists of numbers get the decimal places on every number.
    auto reformat = [](const char* list, int decimals) {
        CString text = list;
        SetStringDecimalPlaces(text, decimals);
        return text.str();
    };
    EXPECT_EQ(reformat("101.05, 202.1", 3), "101.050,202.100");
    EXPECT_EQ(reformat("86.09640,86.0964", 4), "86.0964,86.0964");
    EXPECT_EQ(reformat("abc,,5", 1), "abc,,5.0");
    EXPECT_EQ(reformat("2.5,-1.25", -1), "2,-1");
}

TEST(MetaboliteDisplayTest, TraceTextNamesTheTraceAsABrowserColumn) {
    CSampleData sample = SampleWithTraces();
    CMetaboliteData metabolite;
    auto trace = [&](int number) {
        metabolite.SetTraceNum(number);
        return Text([&](CString& text) { GetTraceText(metabolite, &sample, text); });
    };
    EXPECT_EQ(trace(1), "319.1030");
    EXPECT_EQ(trace(2), "TIC");
    EXPECT_EQ(trace(3), "TOF MS ES+ (50:1000)");
    EXPECT_EQ(trace(20), "ANALOG 1 : Radio flow");
    EXPECT_EQ(trace(0), ""); // no trace number and no peak to find one by
}

TEST(MetaboliteDisplayTest, MSMSListHasOneRowPerCorrelationMetabolite) {
    CSampleData sample;
    sample.ExpectedMetabolitesValid(true);
    sample.MSMSMetabolitesValid(true);
    CMetaboliteData expected;
    expected.SetExpected();
    sample.AddMSMetabolite(expected);

    CMetaboliteData parent(319.1033, 319.1033, 0.0, true, 5, 1, 1, 9.62, -1.0, "", "Parent",
                           "C17H19ClN2S", "");
    parent.SetCorrelationMasses(0, "274.0452,238.0685,86.0964");
    CMetaboliteData product(305.0877, 319.1033, -14.0157, false, 6, 2, 9, 9.25, -1.0, "31.0422",
                            "Demethylation", "C16H17ClN2S", "");
    product.SetCorrelationMasses(0, "238.0685");
    product.SetNeutralLossesFromAllParentSpectrumMasses(0, "45.0578,81.0345");
    product.SetCommonNeutralLosses(0, "45.0578");
    sample.AddMSMSMetabolite(2, product); // entry 1 stays a default record until set
    sample.AddMSMSMetabolite(0, parent);
    sample.SetMSMSParentMetabolite(0);

    CArray<CMSMSMetabolite> list;
    ASSERT_EQ(sample.GetMSMSMetaboliteList(list), 2);
    const CMSMSMetabolite& first = list[0];
    EXPECT_EQ(first.Index, 1);
    EXPECT_EQ(first.Entry, 0);
    EXPECT_TRUE(first.Parent);
    EXPECT_EQ(first.CommonProducts, 3);
    EXPECT_EQ(first.NeutralLosses, 0);
    const CMSMSMetabolite& last = list[1];
    EXPECT_EQ(last.Entry, 2);
    EXPECT_FALSE(last.Parent);
    EXPECT_DOUBLE_EQ(last.SetMass, 305.0877);
    EXPECT_EQ(last.NeutralLoss, "31.0422");
    EXPECT_EQ(last.CommonProducts, 1);
    EXPECT_EQ(last.NeutralLosses, 3); // two matched and one shared
}
