#include <quillon/chemistry/Formula.h>

#include <gtest/gtest.h>

using quillon::CFormula;
using quillon::CFormulaError;

namespace {

// Monoisotopic masses summed by hand from the reference isotope masses.
constexpr double kWater = 2 * 1.00782503223 + 15.99491461957;
constexpr double kGlucose = 6 * 12.0 + 12 * 1.00782503223 + 6 * 15.99491461957;
constexpr double kChlorpromazine =
    17 * 12.0 + 19 * 1.00782503223 + 34.968852682 + 2 * 14.00307400443 + 31.9720711744;

TEST(FormulaTest, MonoisotopicMassesMatchHandSums) {
    EXPECT_NEAR(CFormula::Parse("H2O").MonoisotopicMass(), kWater, 1e-9);
    EXPECT_NEAR(CFormula::Parse("C6H12O6").MonoisotopicMass(), kGlucose, 1e-9);
    EXPECT_NEAR(CFormula::Parse("C17H19ClN2S").MonoisotopicMass(), kChlorpromazine, 1e-9);
    // The monoisotopic mass uses the most abundant isotope, also where it is not the lightest.
    EXPECT_NEAR(CFormula::Parse("Se").MonoisotopicMass(), 79.9165218, 1e-9);
    EXPECT_NEAR(CFormula::Parse("B").MonoisotopicMass(), 11.00930536, 1e-9);
}

TEST(FormulaTest, GroupsMultipliersAndBlanksGiveTheSameCounts) {
    const CFormula glucose = CFormula::Parse("C6H12O6");
    EXPECT_EQ(CFormula::Parse(" C6 H12\tO6 "), glucose);
    EXPECT_EQ(CFormula::Parse("(CH2O)6"), glucose);
    EXPECT_EQ(CFormula::Parse("[(CH2)2O]3H6"), CFormula::Parse("C6H18O3"));

    const CFormula propanol = CFormula::Parse("CH3(CH2)2OH");
    EXPECT_EQ(propanol.Count("C"), 3);
    EXPECT_EQ(propanol.Count("H"), 8);
    EXPECT_EQ(propanol.Count("N"), 0);

    // Two-letter symbols are read whole; repeated symbols add up.
    const CFormula mixed = CFormula::Parse("ClCH2CH2Br");
    EXPECT_EQ(mixed.Count("Cl"), 1);
    EXPECT_EQ(mixed.Count("C"), 2);
    EXPECT_EQ(mixed.Count("B"), 0);
}

TEST(FormulaTest, UnparsableTextIsAnErrorNeverAPartialMass) {
    for (const char* text : {"", "   ", "C6H12O6)", "(CH3", "C2(H", "()", "c6", "Xy2", "Co",
                             "C6H12O6!", "C6-H", "(CH2]2", "C99999999", "(C100000)101", "C0H0"}) {
        SCOPED_TRACE(text);
        EXPECT_THROW(CFormula::Parse(text), CFormulaError);
        CFormula untouched = CFormula::Parse("H2O");
        std::string reason;
        EXPECT_FALSE(CFormula::TryParse(text, untouched, &reason));
        EXPECT_FALSE(reason.empty());
        EXPECT_EQ(untouched, CFormula::Parse("H2O"));
    }

    // Brackets nested past the limit fail cleanly instead of exhausting the stack.
    const std::string deep = std::string(40000, '(') + "C" + std::string(40000, ')');
    EXPECT_THROW(CFormula::Parse(deep), CFormulaError);
    EXPECT_EQ(CFormula::Parse(std::string(64, '(') + "C" + std::string(64, ')')).Count("C"), 1);

    // What a group multiplies up to prints as a text that parses back.
    const CFormula large = CFormula::Parse("(C100000)100");
    EXPECT_EQ(large.ToString(), "C10000000");
    EXPECT_EQ(CFormula::Parse(large.ToString()), large);
}

TEST(FormulaTest, HillOrderTextArithmeticAndDoubleBonds) {
    EXPECT_EQ(CFormula::Parse("OH2").ToString(), "H2O");
    EXPECT_EQ(CFormula::Parse("ClC6H5").ToString(), "C6H5Cl");
    EXPECT_EQ(CFormula::Parse("NaCl").ToString(), "ClNa"); // no carbon: alphabetical

    // A hydroxylation adds O; a demethylation removes CH2.
    const CFormula parent = CFormula::Parse("C17H19ClN2S");
    EXPECT_EQ((parent + CFormula::Parse("O")).ToString(), "C17H19ClN2OS");
    const CFormula change = CFormula::Parse("CH2");
    EXPECT_EQ((parent - change).ToString(), "C16H17ClN2S");
    EXPECT_NEAR((parent - change).MonoisotopicMass(), kChlorpromazine - 14.01565006, 1e-8);

    const CFormula loss = CFormula::Parse("CH2") - CFormula::Parse("CH4");
    EXPECT_FALSE(loss.IsNonNegative());
    EXPECT_EQ(loss.ToString(), "H-2");
    EXPECT_NEAR(loss.MonoisotopicMass(), -2 * 1.00782503223, 1e-12);
    EXPECT_TRUE((parent - parent).IsEmpty());

    EXPECT_DOUBLE_EQ(CFormula::Parse("C6H6").DoubleBondEquivalent(), 4.0);
    EXPECT_DOUBLE_EQ(parent.DoubleBondEquivalent(), 9.0);
    EXPECT_DOUBLE_EQ(CFormula::Parse("CH4").DoubleBondEquivalent(), 0.0);
}

} // namespace
