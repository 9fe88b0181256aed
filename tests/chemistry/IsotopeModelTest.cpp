#include <quillon/chemistry/IsotopeModel.h>

#include <gtest/gtest.h>

#include <cmath>

using quillon::CElements;
using quillon::CFormula;
using quillon::CFormulaError;
using quillon::CIsotopeModel;
using quillon::IsotopePeak;

namespace {

// The peak whose mass lies within half a unit of the given mass; fails the test when absent.
IsotopePeak PeakNear(const CIsotopeModel& model, double mass) {
    for (const IsotopePeak& peak : model.Peaks()) {
        if (std::fabs(peak.mass - mass) < 0.5) {
            return peak;
        }
    }
    ADD_FAILURE() << "no peak near " << mass;
    return {0.0, 0.0};
}

// Carbon-13 to carbon-12 and deuterium to hydrogen abundance ratios, for hand calculations.
constexpr double kC13 = 0.0107 / 0.9893;
constexpr double kH2 = 0.000115 / 0.999885;

TEST(IsotopeModelTest, GlucoseCarbonAndOxygenPeaks) {
    const CIsotopeModel model(CFormula::Parse("C6H12O6"));
    EXPECT_NEAR(model.MostAbundant().mass, 180.0633881, 1e-6);
    EXPECT_DOUBLE_EQ(model.Peaks()[0].relativeIntensity, 100.0);
    // M+1: six 13C, twelve 2H, six 17O.
    const double mPlus1 = 6 * kC13 + 12 * kH2 + 6 * (0.00038 / 0.99757);
    EXPECT_NEAR(PeakNear(model, 181.07).relativeIntensity, mPlus1 * 100, 0.02);
    // M+2: one 18O, two 13C, or one each of 13C and 2H or of 13C and 17O (17O2 is negligible).
    const double o17 = 0.00038 / 0.99757;
    const double mPlus2 =
        6 * (0.00205 / 0.99757) + 15 * kC13 * kC13 + 6 * 12 * kC13 * kH2 + 6 * 6 * kC13 * o17;
    EXPECT_NEAR(PeakNear(model, 182.07).relativeIntensity, mPlus2 * 100, 0.002);
}

TEST(IsotopeModelTest, ChlorineBromineAndSeleniumGiveLargePeaksBesideTheLightest) {
    const CIsotopeModel chloro(CFormula::Parse("C6H5Cl"));
    EXPECT_NEAR(chloro.Peaks().front().mass, 112.0079778, 1e-6);
    EXPECT_DOUBLE_EQ(chloro.Peaks().front().relativeIntensity, 100.0);
    EXPECT_NEAR(PeakNear(chloro, 113.01).relativeIntensity, (6 * kC13 + 5 * kH2) * 100, 0.01);
    EXPECT_NEAR(PeakNear(chloro, 114.0).relativeIntensity,
                (0.2424 / 0.7576 + 15 * kC13 * kC13) * 100, 0.02);
    // 37Cl is 1.99705 u heavier than 35Cl; the M+2 mass is almost only that.
    EXPECT_NEAR(PeakNear(chloro, 114.0).mass, 112.0079778 + 1.99705, 2e-4);

    const CIsotopeModel bromo(CFormula::Parse("C6H5Br"));
    EXPECT_NEAR(PeakNear(bromo, 157.95).relativeIntensity,
                (0.4931 / 0.5069 + 15 * kC13 * kC13) * 100, 0.03);

    // Two bromines: 1 : 2 : 1 in binomial proportion, M+2 the most abundant.
    const CIsotopeModel dibromo(CFormula::Parse("CH2Br2"));
    EXPECT_NEAR(dibromo.MostAbundant().mass, 12 + 2 * 1.00782503223 + 78.9183376 + 80.9162897,
                1e-4);
    const double half = 2 * 0.5069 * 0.4931;
    EXPECT_NEAR(PeakNear(dibromo, 171.85).relativeIntensity, 0.5069 * 0.5069 / half * 100, 0.01);
    EXPECT_NEAR(PeakNear(dibromo, 175.84).relativeIntensity, 0.4931 * 0.4931 / half * 100, 0.01);

    // Selenium has peaks below its most abundant one.
    const CIsotopeModel selenium(CFormula::Parse("Se"));
    ASSERT_EQ(selenium.Peaks().size(), 6u);
    EXPECT_NEAR(selenium.Peaks().front().mass, 73.922475934, 1e-9);
    EXPECT_NEAR(selenium.MostAbundant().mass, 79.9165218, 1e-9);
    EXPECT_NEAR(PeakNear(selenium, 77.9).relativeIntensity, 0.2377 / 0.4961 * 100, 1e-9);
}

TEST(IsotopeModelTest, PruningShiftingAndInvalidFormulae) {
    // A large molecule keeps its peaks in ascending mass, pruned at the threshold.
    const CIsotopeModel insulinSized(CFormula::Parse("C257H383N65O77S6"), 1.0);
    double previous = 0.0;
    for (const IsotopePeak& peak : insulinSized.Peaks()) {
        EXPECT_GT(peak.mass, previous);
        EXPECT_GE(peak.relativeIntensity, 1.0);
        previous = peak.mass;
    }
    // With 257 carbons the monoisotopic peak is not the most abundant.
    EXPECT_GT(insulinSized.MostAbundant().mass, insulinSized.Peaks().front().mass + 1.5);

    CIsotopeModel cation(CFormula::Parse("H3O"));
    const double neutral = cation.Peaks().front().mass;
    cation.ShiftMasses(-CElements::kElectronMass);
    EXPECT_NEAR(cation.Peaks().front().mass, neutral - 0.000548579909, 1e-12);

    EXPECT_THROW(CIsotopeModel{CFormula{}}, CFormulaError);
    EXPECT_THROW(CIsotopeModel(CFormula::Parse("CH2") - CFormula::Parse("CH4")), CFormulaError);
    // A formula the parser accepts but no molecule comes near is refused, not modelled for minutes.
    EXPECT_THROW(CIsotopeModel(CFormula::Parse("(Fe100000Se100000)100")), CFormulaError);
}

} // namespace
