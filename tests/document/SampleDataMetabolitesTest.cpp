#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>

#include "support/Collect.h"
#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;
using quillon::testing::TextOf;

namespace {

// Reads one sample whose block holds the given sections.
CSamples ReadSample(const std::string& sections) {
    TempFile file("report.txt");
    file.Write("[SAMPLE]\n{\nSample\t1\n[COMPOUND]\n{\n318.0957\tC17H19ClN2S\tDrug\n}\n" +
               sections + "}\n[SAMPLE]\n{\nSample\t2\n}\n");
    CSamples samples;
    EXPECT_EQ(samples.Read(file.c_str()), 1);
    return samples;
}

std::vector<std::string> Names(CSampleData& sample) {
    std::vector<std::string> names;
    for (int i = 0; i < sample.GetMetaboliteCount(); ++i)
        names.push_back(sample.GetMetabolite(i)->GetMetName());
    return names;
}

const std::string kExpected = "[EXPECTED METABOLITES]\n{\n"
                              ";Compound\tPrecursor\tMetabolite\tFound\tFormula\n"
                              "0\t318.0957\t0.0\t1\tC17H19ClN2S\t2,6\t1/1/2/319.1033/1/318.0960,"
                              "6/3/6/319.1033/1/318.0960\tParent\t0.2\t0.8\t1\t1\tref\tlabel\n"
                              "0\t334.09\t15.99\t0\t0\t\t0\tHydroxylation\n"
                              "0\t350.08\t31.98\t0\t1\t\tx/1\tBroken\n"
                              "0\t290.06\n"
                              "}\n";

} // namespace

// Rows of the MS layout: several peak identifiers give one record each, "0" and "1" are not
// formulae, short rows take defaults, an identifier that does not scan gives no record.
TEST(SampleDataMetabolites, ExpectedRowsAndGroupCounts) {
    CSamples samples = ReadSample(kExpected + "[UNEXPECTED METABOLITES]\n{\n"
                                              "0\t0\t0\t1\tC16H17ClN2S\t\t0\tM1\n}\n");
    CSampleData& sample = *samples.GetSample(0);
    EXPECT_EQ(Names(sample),
              (std::vector<std::string>{"Parent", "Parent", "Hydroxylation", "", "M1"}));
    EXPECT_EQ(sample.GetExpectedMetaboliteCount(), 4);
    EXPECT_EQ(sample.GetMSMetaboliteCount(), 5);

    const CMetaboliteData& second = *sample.GetMetabolite(1);
    EXPECT_EQ(second.GetPeakNum(), 6);
    EXPECT_EQ(second.GetFunctionNum(), 3);
    EXPECT_EQ(second.GetTraceNum(), 6);
    EXPECT_DOUBLE_EQ(second.GetMolecularMass(), 318.0960);
    EXPECT_DOUBLE_EQ(second.GetParentMass(), 318.0957); // from compound 0
    EXPECT_EQ(second.GetMoleculeReference(), "ref");
    EXPECT_EQ(TextOf(second, &CMetaboliteData::GetChroTraceList), "2,6");
    EXPECT_TRUE(second.GetConfirmed());
    EXPECT_EQ(TextOf(*sample.GetMetabolite(2), &CMetaboliteData::GetFormula), "");
    EXPECT_EQ(sample.GetMetabolite(3)->GetPrecursor(), 290.06);
    EXPECT_FALSE(sample.GetMetabolite(3)->GetMSMS()); // a missing column reads 0
    EXPECT_TRUE(sample.GetMetabolite(4)->IsUnexpected());
    EXPECT_EQ(sample.GetMetaboliteWithPeakID(6), &sample.GetMetabolite()[-3]);

    // Group counts follow the validity flags.
    CSampleData unexpectedOnly = sample;
    unexpectedOnly.ExpectedMetabolitesValid(false);
    EXPECT_EQ(unexpectedOnly.GetExpectedMetaboliteCount(), 0);
    EXPECT_EQ(unexpectedOnly.GetUnexpectedMetaboliteCount(), 5); // last unexpected index + 1
    unexpectedOnly.UnexpectedMetabolitesValid(false);
    EXPECT_EQ(unexpectedOnly.GetMSMetaboliteCount(), 0);
}

// Moving a metabolite into the expected block keeps the low-energy expected ones sorted by found
// m/z; a metabolite already at the end of the block stays.
TEST(SampleDataMetabolites, AddExpectedMetaboliteInsertsByFoundMass) {
    CSampleData sample;
    sample.ExpectedMetabolitesValid(true);
    sample.UnexpectedMetabolitesValid(true);
    auto add = [&](bool expected, double mz, const char* name) {
        CMetaboliteData m;
        if (expected)
            m.SetExpected();
        m.SetMzFound(mz);
        m.SetMetName(name);
        sample.AddMSMetabolite(m);
    };
    add(true, 100.0, "a");
    add(true, 300.0, "c");
    add(false, 200.0, "b");
    add(false, 300.0, "d");
    add(false, 50.0, "e");
    sample.AddExpectedMetabolite(3); // behind the equal 300
    EXPECT_EQ(Names(sample), (std::vector<std::string>{"a", "c", "d", "b", "e"}));
    sample.AddExpectedMetabolite(4);
    EXPECT_EQ(Names(sample), (std::vector<std::string>{"e", "a", "c", "d", "b"}));
    sample.AddExpectedMetabolite(4); // already at the end of the block: stays
    EXPECT_EQ(Names(sample), (std::vector<std::string>{"e", "a", "c", "d", "b"}));
}

// The MS/MS table: rows may come in any order and grow the array; neutral-loss texts are kept
// only as numbers; correlation texts of one character read as empty; an entry far beyond the
// array is skipped rather than allocated.
TEST(SampleDataMetabolites, MSMSCorrelationRowsAndTable) {
    CSamples samples =
        ReadSample("[EXPECTED METABOLITES]\n{\n0\t0\t0\t1\t0\t\t0\tParent\n}\n"
                   "[MSMS CORRELATION]\n{\nMassWindow\t0.0200\nParentEntry\t1\n[METABOLITES]\n{\n"
                   "3\t335.1\t319.1\t5\t16.0\t1\t4\t2\t9.50\t18.0106\t\tM3\tC17H19ClN2OS\n"
                   "1\t319.1\t319.1\t5\t0.0\t0\t1\t1\t9.62\tno\t\tParent\n"
                   "0\t301.1\t319.1\t5\t-18.0\t1\t2\t1\t8.10\tH2O\t\tM0\n"
                   "2000000000\t1\t1\n"
                   "}\n[CORRELATION TABLE]\n{\n"
                   "3\t1\t274.0452,238.0685\t45.0578\t5\n"
                   "0\t3\t0\t0\t0\n"
                   "9\t0\t1.0,2.0\n"
                   "1\t0\n"
                   "}\n}\n");
    CSampleData& sample = *samples.GetSample(0);
    ASSERT_EQ(sample.GetMetaboliteCount(), 5);
    EXPECT_EQ(sample.GetMSMSCorrelationMetaboliteCount(), 4);
    EXPECT_EQ(sample.GetMSMSCorrelation()->ParentEntry(), 1);
    EXPECT_DOUBLE_EQ(sample.GetMSMSCorrelation()->MassWindow(), 0.02);
    const CMetaboliteData& m3 = *sample.GetMetabolite(4);
    EXPECT_EQ(TextOf(m3, &CMetaboliteData::GetNeutralLoss), "18.0106");
    EXPECT_TRUE(sample.GetMetabolite(2)->IsMSMSParent());
    EXPECT_EQ(TextOf(*sample.GetMetabolite(1), &CMetaboliteData::GetNeutralLoss), "");
    EXPECT_EQ(TextOf(*sample.GetMetabolite(2), &CMetaboliteData::GetNeutralLoss), "");
    EXPECT_TRUE(sample.GetMetabolite(3)->IsUnexpected()); // entry 2 was never read

    CString text;
    m3.GetCorrelationMasses(1, text);
    EXPECT_EQ(text, "274.0452,238.0685");
    m3.GetCommonNeutralLossesAt(1, text);
    EXPECT_EQ(text, ""); // one character
    EXPECT_EQ(sample.GetMetabolite(1)->GetCorrelationEntryCount(), 4);

    sample.SetMSMSParentMetabolite(3);
    EXPECT_FALSE(sample.GetMetabolite(2)->IsMSMSParent());
    EXPECT_TRUE(sample.GetMetabolite(4)->IsMSMSParent());
}

// Found counts by name and mass shift across samples, high-energy records left out.
TEST(SampleDataMetabolites, OverallSummaryCountsFoundMetabolitesBySample) {
    CSamples samples;
    for (int n = 1; n <= 3; ++n) {
        CSampleData sample;
        sample.SetNumber(n);
        sample.ExpectedMetabolitesValid(n != 3);
        auto add = [&](const char* name, double shift, bool found, bool hiEnergy) {
            CMetaboliteData m;
            m.SetExpected();
            m.SetMetName(name);
            m.SetMetabolite(shift);
            m.SetFound(found);
            m.SetHiEnergy(hiEnergy);
            sample.AddMSMetabolite(m);
        };
        add("Hydroxylation", 15.9949, true, false);
        add("Hydroxylation", 15.9949, n == 2, false);
        add("Parent", 0.2, n == 1, false);
        add("MSe fragments", 0.0, true, true);
        samples.AddSample(sample);
    }
    CArray<MetaboliteCountInfo> summary;
    ASSERT_TRUE(samples.CreateOverallMSSummaryData(summary, -5, -1));
    ASSERT_EQ(summary.GetSize(), 2);
    EXPECT_EQ(summary[0].name, "Hydroxylation");
    EXPECT_EQ(summary[0].label, "+16");
    EXPECT_EQ(summary[0].counts, (std::vector<int>{1, 2, 0}));
    EXPECT_EQ(summary[1].label, "");
    EXPECT_EQ(summary[1].counts, (std::vector<int>{1, 0, 0}));
    ASSERT_TRUE(samples.CreateOverallMSSummaryData(summary, 2, 1));
    EXPECT_EQ(summary.GetSize(), 0);
}
