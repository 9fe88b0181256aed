#include <quillon/document/SampleData.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/metabolites/MetaboliteData.h>

#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;
using quillon::testing::TempFile;

namespace {

CStringArray Row(std::initializer_list<const char*> fields) {
    CStringArray row;
    for (const char* field : fields)
        row.Add(field);
    return row;
}

CElementalResultsData Candidate(const CMetaboliteData& metabolite, int i) {
    CElementalResultsData candidate;
    EXPECT_TRUE(metabolite.GetElementalResults(i, candidate));
    return candidate;
}

std::string MassErrors(const CMetaboliteData& metabolite) {
    CString mDa;
    CString ppm;
    metabolite.GetmDa(mDa);
    metabolite.GetPPM(ppm);
    return mDa.str() + " " + ppm.str();
}

} // namespace

TEST(MetaboliteElementalTest, RowsNeedFiveColumnsAndFillTheRestWithDefaults) {
    CMetaboliteData metabolite;
    EXPECT_EQ(metabolite.ElementalNewField(Row({"301.1234", "301.1240", "-0.6", "-2.0"})), 0);
    EXPECT_EQ(metabolite.GetNumElementalResults(), 0);

    metabolite.ElementalNewField(Row({"301.1", "301.1", "-0.6", "-2.0", "7.5", "C17 H17N2O3"}));
    metabolite.ElementalNewField(Row(
        {"301.1", "301.1", "-0.6", "-2.0", "7.5", "C17H18N2O3+", "C17H17N2O3", "12.5", "0.25"}));
    EXPECT_EQ(metabolite.ElementalNewField(Row({"1", "2", "3", "4", "5", "C H4", ""})), 1);
    ASSERT_EQ(metabolite.GetNumElementalResults(), 3);

    // Columns 0 to 4 are checked on writing back (below); here what the row leaves out.
    const CElementalResultsData shortRow = Candidate(metabolite, 0);
    EXPECT_EQ(shortRow.GetMonoMassFormula(), "C17H17N2O3");
    EXPECT_DOUBLE_EQ(shortRow.GetiFIT(), -1.0);
    EXPECT_DOUBLE_EQ(shortRow.GetiFITnorm(), -1.0);
    const CElementalResultsData fullRow = Candidate(metabolite, 1);
    EXPECT_EQ(fullRow.GetMonoMassFormula(), "C17H17N2O3");
    EXPECT_DOUBLE_EQ(fullRow.GetiFITnorm(), 0.25);
    EXPECT_EQ(Candidate(metabolite, 2).GetMonoMassFormula(), "CH4"); // present but empty
    CElementalResultsData none;
    EXPECT_FALSE(metabolite.GetElementalResults(3, none));
}

TEST(MetaboliteElementalTest, MassErrorsComeFromTheFormulaOrTheStoredPrecursor) {
    CMetaboliteData metabolite;
    metabolite.SetMolecularMass(301.1234);
    metabolite.SetPrecursor(301.1240);
    metabolite.CalculatemDaAndPPM(); // no formula: the precursor as it stands
    EXPECT_EQ(MassErrors(metabolite), "-0.6 -2.0");

    // The protonated ion C17H20ClN2S+ weighs 319.10302: an electron less than the neutral
    // formula. Blanks, also before the charge sign, are allowed.
    metabolite.SetMolecularMass(319.1040);
    metabolite.SetFormula("C17H20ClN2S +");
    metabolite.CalculatemDaAndPPM();
    EXPECT_NEAR(metabolite.GetPrecursor(), 319.103024, 1e-6);
    EXPECT_EQ(MassErrors(metabolite), "1.0 3.1");
    metabolite.SetFormula("C17H20ClN2S");
    metabolite.CalculatemDaAndPPM();
    EXPECT_NEAR(metabolite.GetPrecursor(), 319.103572, 1e-6);
    EXPECT_EQ(MassErrors(metabolite), "0.4 1.3");

    // A formula that does not parse changes nothing.
    for (const char* bad : {"C17H20Xq", "C17H20ClN2S++", "(C2H5", "+"}) {
        metabolite.SetFormula(bad);
        metabolite.CalculatemDaAndPPM();
        metabolite.CalculateIsotopicMassFromFormula();
        EXPECT_NEAR(metabolite.GetPrecursor(), 319.103572, 1e-6) << bad;
        EXPECT_EQ(MassErrors(metabolite), "0.4 1.3") << bad;
    }
    // Without a formula a whole measured mass computes nothing.
    metabolite.SetFormula("");
    metabolite.SetMolecularMass(300.0);
    metabolite.CalculatemDaAndPPM();
    metabolite.CalculateIsotopicMassFromFormula();
    EXPECT_NEAR(metabolite.GetPrecursor(), 319.103572, 1e-6);
    EXPECT_EQ(MassErrors(metabolite), "0.4 1.3");
}

// Each "ELEMENTAL" section goes to the next metabolite that is not expected and has no
// candidates yet; written back, each metabolite's candidates come out in the same form.
TEST(MetaboliteElementalTest, SectionsFillTheNonExpectedMetabolitesAndWriteBack) {
    CSampleData sample;
    sample.ExpectedMetabolitesValid(true);
    sample.UnexpectedMetabolitesValid(true);
    CMetaboliteData expected;
    expected.SetExpected();
    CMetaboliteData unexpected;
    unexpected.SetUnexpected();
    sample.AddMSMetabolite(expected);
    sample.AddMSMetabolite(expected);
    sample.AddMSMetabolite(unexpected);
    sample.AddMSMetabolite(unexpected);

    const std::string firstList = "{\n;m/z Found\tCalc. m/z\tmDa\tPPM\tDBE\tm/zFormula\t"
                                  "MassFormula\ti-FIT\n"
                                  "301.123400\t301.124000\t-0.600000\t-2.000000\t7.500000\t"
                                  "C17H18N2O3\tC17H17N2O3\t12.500000\t0.000000\n"
                                  "301.123400\t301.125000\t-1.600000\t-5.300000\t8.000000\t"
                                  "C18H18N2O2\tC18H17N2O2\t40.000000\t27.500000\n}\n";
    const std::string secondList = "{\n;m/z Found\tCalc. m/z\tmDa\tPPM\tDBE\tm/zFormula\t"
                                   "MassFormula\ti-FIT\n"
                                   "0.000000\t1.000000\t0\t0\t0\tH\tH\t1\t1\n}\n";
    EXPECT_EQ(ReadBlock(sample, "{\n[ELEMENTAL]\n" + firstList + "[ELEMENTAL]\n" + secondList +
                                    "[ELEMENTAL]\n" + firstList + "SampleID\tafter\n}\n"),
              "AFTER");
    ASSERT_EQ(sample.GetExpectedMetaboliteCount(), 2);
    EXPECT_TRUE(sample.GetElementalEnabled());
    EXPECT_EQ(sample.GetMetabolite(0)->GetNumElementalResults(), 0);
    EXPECT_EQ(sample.GetMetabolite(1)->GetNumElementalResults(), 0);
    EXPECT_EQ(sample.GetMetabolite(2)->GetNumElementalResults(), 2);
    EXPECT_EQ(sample.GetMetabolite(3)->GetNumElementalResults(), 1);
    // The third section found no metabolite left and was passed over as a whole.
    CString id;
    sample.GetID(id);
    EXPECT_EQ(id, "after");

    TempFile written;
    {
        CDelimitFile file(written.c_str(), CFile::modeWrite | CFile::modeCreate);
        for (int n = 1; n <= 3; ++n)
            EXPECT_EQ(sample.WriteElementalComposition(&file, n), 1);
    }
    // The candidate of mass 0 is not written: its list comes back as a header alone.
    EXPECT_EQ(written.Read(), firstList +
                                  "{\n;m/z Found\tCalc. m/z\tmDa\tPPM\tDBE\tm/zFormula\t"
                                  "MassFormula\ti-FIT\n}\n" +
                                  "{\n}\n");
}
