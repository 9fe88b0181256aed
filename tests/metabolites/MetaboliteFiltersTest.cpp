#include <quillon/metabolites/DivBroParams.h>
#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

using namespace quillon;

namespace {

enum class Kind { Expected, Unexpected, MSMS };

// A found metabolite of the kind with a peak well above any threshold used here, at 5 minutes,
// with a predicted mass of defect 0.1.
CMetaboliteData Metabolite(Kind kind) {
    CMetaboliteData metabolite;
    if (kind == Kind::Expected)
        metabolite.SetExpected();
    else if (kind == Kind::MSMS)
        metabolite.SetMSMSCorrelation();
    else
        metabolite.SetUnexpected();
    metabolite.SetPeakArea(1000.0);
    metabolite.SetRelativePeakArea(50.0);
    metabolite.SetPeakTime(5.0);
    metabolite.SetMetabolite(335.1);
    metabolite.SetmDa(CString("0.0"));
    return metabolite;
}

bool Passes(const CMetaboliteData& metabolite, const CDivBroParams& params,
            bool keepHighEnergy = false) {
    return metabolite.ApplyDataFilters(&params, keepHighEnergy);
}

} // namespace

TEST(MetaboliteFiltersTest, TheParameterRecordSwitchesFiltersOnAndOff) {
    CMetaboliteData lateHighEnergy = Metabolite(Kind::Unexpected);
    lateHighEnergy.SetHiEnergy(true);
    lateHighEnergy.SetPeakTime(30.0);
    EXPECT_TRUE(lateHighEnergy.ApplyDataFilters(nullptr, false));

    CDivBroParams params; // every filter off
    EXPECT_TRUE(Passes(lateHighEnergy, params));

    params.TimeFilterOn = true;
    params.TimeLow = 10.0;
    params.TimeHigh = 10.0; // not below: the window is off
    EXPECT_TRUE(Passes(lateHighEnergy, params));
    params.TimeHigh = 20.0;
    EXPECT_FALSE(Passes(lateHighEnergy, params));
    params.TimeFilterOn = false;

    params.HideHighEnergy = true;
    EXPECT_FALSE(Passes(lateHighEnergy, params));
    EXPECT_TRUE(Passes(lateHighEnergy, params, true)); // kept on request
    // Only unexpected high-energy peaks are hidden.
    CMetaboliteData partner = Metabolite(Kind::Expected);
    partner.SetHiEnergy(true);
    EXPECT_TRUE(Passes(partner, params));
    CMetaboliteData msms = Metabolite(Kind::MSMS);
    msms.SetHiEnergy(true);
    EXPECT_TRUE(Passes(msms, params));
}

TEST(MetaboliteFiltersTest, IsotopeMassErrorAndAreaTestsRunInOrder) {
    CDivBroParams params;
    params.IsotopeFilterOn = true;
    CMetaboliteData isotope = Metabolite(Kind::Expected);
    isotope.IsIsotope(true);
    EXPECT_FALSE(Passes(isotope, params));
    CMetaboliteData unexpectedIsotope = Metabolite(Kind::Unexpected);
    unexpectedIsotope.IsIsotope(true);
    EXPECT_TRUE(Passes(unexpectedIsotope, params));
    // ... but it still meets the later tests.
    params.AreaFilterOn = true;
    params.AreaThreshold = 1000.0f;
    EXPECT_FALSE(Passes(unexpectedIsotope, params));
    params = CDivBroParams();

    // Mass error: the limit itself passes, in either direction.
    params.MassErrorFilterOn = true;
    params.MassErrorLimit = 3.1;
    CMetaboliteData expected = Metabolite(Kind::Expected);
    expected.SetmDa(CString("-3.1"));
    EXPECT_TRUE(Passes(expected, params));
    expected.SetmDa(CString("-3.2"));
    EXPECT_FALSE(Passes(expected, params));
    params.MassErrorFilterOn = false;

    // Area: the threshold itself fails; mode 1 compares the relative area.
    params.AreaFilterOn = true;
    params.AreaThreshold = 1000.0f;
    params.AreaFilterOnExpected = true;
    EXPECT_FALSE(Passes(expected, params));
    params.AreaThreshold = 999.0f;
    EXPECT_TRUE(Passes(expected, params));
    params.AreaMode = 1;
    params.RelativeAreaThreshold = 50.0f;
    EXPECT_FALSE(Passes(expected, params));
    params.RelativeAreaThreshold = 49.0f;
    EXPECT_TRUE(Passes(expected, params));
    // A high-energy peak is exempt from the area test.
    params.RelativeAreaThreshold = 90.0f;
    CMetaboliteData highEnergy = Metabolite(Kind::Unexpected);
    highEnergy.SetHiEnergy(true);
    EXPECT_TRUE(Passes(highEnergy, params));

    // With the area filter off for expected metabolites, an expected one passes at the area test
    // at once; the mass-error test before it still applies.
    params.AreaFilterOnExpected = false;
    EXPECT_TRUE(Passes(expected, params));
    params.MassErrorFilterOn = true;
    params.MassErrorLimit = 1.0;
    EXPECT_FALSE(Passes(expected, params));
}

TEST(MetaboliteFiltersTest, ElementalTimeAndMassDefectTestsOnlyConcernUnexpectedMetabolites) {
    CDivBroParams params;
    params.ElementalFilterOn = true;
    params.TimeFilterOn = true;
    params.TimeLow = 6.0;
    params.TimeHigh = 8.0;
    params.MassDefectFilterOn = true;
    params.MassDefectUpper = 0.05;
    params.MassDefectLower = 0.05;
    // Expected and MS/MS correlation metabolites pass whatever their results, time and mass.
    EXPECT_TRUE(Passes(Metabolite(Kind::Expected), params));
    EXPECT_TRUE(Passes(Metabolite(Kind::MSMS), params));

    CMetaboliteData unexpected = Metabolite(Kind::Unexpected);
    unexpected.SetMetabolite(301.95);
    EXPECT_FALSE(Passes(unexpected, params)); // no elemental results
    unexpected.AddElementalResults();
    EXPECT_FALSE(Passes(unexpected, params)); // results not enabled
    unexpected.SetElementalEnabled(true);
    EXPECT_FALSE(Passes(unexpected, params)); // 5 minutes is outside 6 to 8
    unexpected.SetPeakTime(6.0);
    EXPECT_TRUE(Passes(unexpected, params)); // limits are inclusive; defect 0.95 = 1 - 0.05
    unexpected.SetPeakTime(8.0);
    EXPECT_TRUE(Passes(unexpected, params));

    // Mass defect d of the predicted mass against the upper limit and 1 - lower limit.
    params.ElementalFilterOn = false;
    params.TimeFilterOn = false;
    params.MassDefectLower = 0.04;
    EXPECT_FALSE(Passes(unexpected, params)); // 0.95 is neither <= 0.05 nor >= 0.96
    params.MassDefectLower = -1.0;            // the upper limit serves both sides
    EXPECT_TRUE(Passes(unexpected, params));
    params.MassDefectUpper = 0.04;
    EXPECT_FALSE(Passes(unexpected, params));
    unexpected.SetMetabolite(300.03);
    EXPECT_TRUE(Passes(unexpected, params));
    unexpected.SetMetabolite(-14.0157); // a mass shift: d = 0.9843
    EXPECT_TRUE(Passes(unexpected, params));
    unexpected.SetMetabolite(300.5);
    EXPECT_FALSE(Passes(unexpected, params));
    unexpected.SetHiEnergy(true); // high-energy peaks are exempt
    EXPECT_TRUE(Passes(unexpected, params));
}
