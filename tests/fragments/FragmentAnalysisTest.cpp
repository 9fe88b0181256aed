#include "support/Collect.h"
#include "support/FragmentReport.h"
#include "support/HostRecorder.h"

#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::FragmentReport;
using quillon::testing::HostRecorder;
using quillon::testing::LoadedReport;
using quillon::testing::MetaboliteRow;
using quillon::testing::SpectrumPoint;
using quillon::testing::VectorOf;

namespace {

// A found metabolite row with its peak identifier and mass shift.
MetaboliteRow Row(const char* name, int function, int peak, int cluster, double mz,
                  double shift = 0.0) {
    MetaboliteRow m;
    m.name = name;
    m.function = function;
    m.peak = peak;
    m.cluster = cluster;
    m.mzFound = mz;
    m.molecularMass = mz - 1.007276;
    m.precursor = m.molecularMass;
    m.shift = shift;
    return m;
}

// Functions for the validation tests: (collision energy, cone voltage, ion mode, type,
// description, continuum), each with one spectrum, and one metabolite per function.
struct FunctionSpec {
    double energy;
    int voltage;
    std::string ionMode = "ES+";
    std::string type = "MS";
    std::string description = "TOF MS";
    bool continuum = false;
};

std::string ValidationReport(const std::vector<FunctionSpec>& functions) {
    FragmentReport report;
    int number = 1;
    for (const FunctionSpec& f : functions) {
        report.Function(number, f.energy, f.voltage, f.ionMode, f.type, f.description);
        report.Spectrum(number, number, {{100.0, 50.0}}, f.continuum);
        ++number;
    }
    for (int n = 1; n < number; ++n) {
        MetaboliteRow row;
        row.name = "m" + std::to_string(n);
        row.function = n;
        row.peak = n;
        report.Unexpected(row);
    }
    return report.Text();
}

TEST(FragmentAnalysisTest, ValidationPairsLowAndHighEnergyFunctions) {
    { // Collision energies differ; the MS/MS and the continuum function take no part.
        LoadedReport loaded(ValidationReport({{5.0, 30},
                                              {25.0, 30, "es+"},
                                              {50.0, 30, "ES+", "MSMS"},
                                              {40.0, 30, "ES+", "MS", "TOF MS", true}}));
        CFragmentAnalysis* fa = loaded.Sample().GetFragmentAnalysis();
        EXPECT_TRUE(fa->IsEnabled());
        EXPECT_EQ(fa->GetLowEnergyThreshold(), 5.0);
        EXPECT_TRUE(fa->LoEnergyFunctionNum(1));
        EXPECT_TRUE(fa->HiEnergyFunctionNum(2));
        EXPECT_FALSE(fa->HiEnergyFunctionNum(3));
        EXPECT_FALSE(fa->HiEnergyFunctionNum(4));
        EXPECT_FALSE(loaded.Sample().GetMetabolite(0)->IsHiEnergy());
        EXPECT_TRUE(loaded.Sample().GetMetabolite(1)->IsHiEnergy());
    }
    { // Equal energies: the cone voltages decide; a "%c%d" description gives the offset.
        LoadedReport loaded(ValidationReport({{0.0, 20, "ES+", "MS", "S5 scan"}, {0.0, 40}}));
        CFragmentAnalysis* fa = loaded.Sample().GetFragmentAnalysis();
        EXPECT_EQ(fa->GetLowEnergyThreshold(), 20.0);
        EXPECT_TRUE(fa->HiEnergyFunctionNum(2));
        EXPECT_EQ(fa->GetParentOffset(), 5);
    }
    { // Mixed ion modes leave everything as it was; one function cannot pair.
        for (const auto& functions : {std::vector<FunctionSpec>{{5.0, 0}, {25.0, 0, "ES-"}},
                                      std::vector<FunctionSpec>{{5.0, 0}}}) {
            LoadedReport loaded(ValidationReport(functions));
            CFragmentAnalysis* fa = loaded.Sample().GetFragmentAnalysis();
            EXPECT_FALSE(fa->IsEnabled());
            EXPECT_FALSE(fa->HiEnergyFunctionNum(2));
            EXPECT_FALSE(fa->DoFragmentAnalysis(&loaded.Sample()));
        }
    }
    CFragmentAnalysis none;
    EXPECT_FALSE(none.ValidateFragmentAnalysis(nullptr));
}

TEST(FragmentAnalysisTest, MassDefectTestAndParameters) {
    CFragmentAnalysis fa;
    for (double loss : {0.0, 18.0106, 79.9568, 176.0321, -0.05})
        EXPECT_TRUE(fa.IsValidNeutralLoss(loss)) << loss;
    EXPECT_FALSE(fa.IsValidNeutralLoss(50.5));
    EXPECT_FALSE(fa.IsValidNeutralLoss(-0.5));

    fa.InitialiseParams(2.0, 0.02, false, 0.3, 0.4, 5.0, true);
    EXPECT_EQ(fa.GetMassDefectLower(), 0.5);
    EXPECT_EQ(fa.GetMassDefectUpper(), 0.5);
    EXPECT_TRUE(fa.IsValidNeutralLoss(50.5));
    EXPECT_TRUE(fa.GetExtraOption());
}

// A sample with a chlorinated parent and a hydroxy metabolite, both with high-energy partners,
// an excluded mass with a partner, a metabolite without a partner, and one without a cluster.
std::string AnalysisReport() {
    FragmentReport r;
    r.Compound(318.0957, "C17H19ClN2S", "Chlorpromazine");
    r.Function(1, 6.0);
    r.Spectrum(99, 0, {{319.103, 100.0}});
    r.Function(2, 30.0);
    r.Spectrum(1, 1,
               {{58.0651, 20.0},
                {59.068, 0.8}, // weak
                {86.0, 5.0},   // same nominal mass as the next: a duplicate fragment
                {86.0964, 65.0},
                {120.0, 0.5},  // weak
                {150.5, 30.0}, // implausible mass defect
                {274.0454, 80.0},
                {275.048, 17.0},  // M+1 of 274
                {276.0425, 35.0}, // M+2 (chlorine) of 274
                {400.0, 100.0}},  // heavier than the parent
               false, 1000.0);
    r.Spectrum(2, 1, {{58.0651, 10.0}, {86.0964, 50.0}, {317.0874, 60.0}});
    r.Spectrum(3, 3, {{100.0, 50.0}});
    auto row = [&](auto... args) { r.Unexpected(Row(args...)); };
    row("Parent", 1, 1, 1, 319.103, 0.0);            // 0
    row("MSe fragments", 2, 1, 1, 319.103, 0.0);     // 1
    row("Hydroxy", 1, 2, 2, 335.098, 15.9949);       // 2
    row("MSe fragments", 2, 2, 2, 335.098, 15.9949); // 3
    row("Exclude Mass", 1, 3, 3, 371.1, 53.0);       // 4
    row("MSe fragments", 2, 3, 3, 371.1, 53.0);      // 5
    row("Lonely", 1, 4, 4, 301.0, -17.1);            // 6: no partner
    row("NoCluster", 1, 5, 0, 303.0, -15.1);         // 7
    row("MSe fragments", 2, 5, 0, 303.0, -15.1);     // 8
    return r.Text();
}

// Sulfur trioxide, dimethylamine and water, configured in this order; one unselected entry.
const char* kLosses = "Loss 1=79.9568,1,15,3,Sulfur trioxide,SO3\n"
                      "Loss 2=45.0578,1,13,5,Dimethylamine,C2H7N\n"
                      "Loss 3=1.0,0,1,1,x,H\n"
                      "Loss 4=18.0106,1,5,3,Water,H2O\n";

TEST(FragmentAnalysisTest, WholeAnalysisBuildsParentsFragmentsAndNeutralLosses) {
    LoadedReport loaded(AnalysisReport(), kLosses);
    CSampleData& sample = loaded.Sample();
    CFragmentAnalysis* fa = sample.GetFragmentAnalysis();
    ASSERT_TRUE(fa->IsEnabled());
    ASSERT_TRUE(fa->DoFragmentAnalysis(&sample));
    EXPECT_TRUE(fa->HasResults());
    EXPECT_TRUE(fa->IsIsotopeModelValid());
    EXPECT_NEAR(fa->GetParentMass(), 319.103, 1e-9);

    // Parents: the excluded mass, the lonely one and the one without a cluster add nothing.
    CStringArray texts;
    CUIntArray indices;
    int lastExpected = 0;
    fa->GetParentMasses(texts, indices, lastExpected);
    EXPECT_EQ(VectorOf(texts), (std::vector<std::string>{"319.1030", "335.0980"}));
    EXPECT_EQ(VectorOf(indices), (std::vector<UINT>{0, 2}));
    EXPECT_EQ(lastExpected, -1);
    int function = 0, peak = 0;
    EXPECT_TRUE(fa->GetSpectrumForDaughtersOfMass(2, function, peak));
    EXPECT_EQ(function, 1);
    EXPECT_EQ(peak, 2);
    EXPECT_FALSE(fa->GetSpectrumForDaughtersOfMass(6, function, peak));
    EXPECT_EQ(function, -1);
    EXPECT_EQ(peak, -1);

    // The filtered spectrum of the parent's partner: weak, heavy, implausible and isotope
    // peaks gone, base peak rescaled from the kept intensities.
    CFunctionData* high = sample.GetFunction(1);
    ASSERT_EQ(high->GetNumSpectra(true), 3);
    const CSpectrumData* filtered = high->GetSpectrum(0, true);
    std::vector<double> kept;
    CPeakData point;
    for (int k = 0; k < filtered->GetNumPeaks(); ++k) {
        filtered->GetPeak(k, point);
        kept.push_back(std::round(point.GetMass() * 1000) / 1000);
    }
    EXPECT_EQ(kept, (std::vector<double>{58.065, 86.0, 86.096, 274.045}));
    EXPECT_NEAR(filtered->GetBPM(), 274.0454, 1e-3);
    EXPECT_NEAR(filtered->GetBPI(), 800.0, 1e-3);
    EXPECT_EQ(high->GetSpectrum(2, true)->GetNumPeaks(), 0); // the excluded mass's partner

    // Fragments: one 86 per parent. (The list's lines are compared with a transcription of the
    // analysis by the analysis fuzz target.)
    CUIntArray masses;
    fa->GetFragmentMasses(masses);
    EXPECT_EQ(VectorOf(masses), (std::vector<UINT>{58, 86, 274, 317}));
    CUIntArray parents, functions, peakIds;
    EXPECT_TRUE(
        fa->GetMetabolitesContainingFragment(86, parents, functions, peakIds, false, false));
    EXPECT_EQ(VectorOf(parents), (std::vector<UINT>{0, 2}));
    EXPECT_EQ(VectorOf(peakIds), (std::vector<UINT>{1, 2}));
    fa->GetMetabolitesContainingFragment(86, parents, functions, peakIds, false, true);
    EXPECT_EQ(VectorOf(parents), (std::vector<UINT>{0}));
    EXPECT_FALSE(fa->GetMetabolitesContainingFragment(87, parents, functions, peakIds, true, true));

    // Neutral losses, configured order reversed, the unselected one left out.
    fa->GetNeutralLosses(texts);
    EXPECT_EQ(VectorOf(texts),
              (std::vector<std::string>{
                  "Loss of  18 [Water  (H2O)] (1 occurrence in 1 spectrum)",
                  "Loss of  45 [Dimethylamine  (C2H7N)] (1 occurrence in 1 spectrum)",
                  "Loss of  80 [Sulfur trioxide  (SO3)] not confirmed in high energy data"}));
    EXPECT_EQ(fa->GetNeutralLossEntry(45), 1);
    EXPECT_EQ(fa->GetNeutralLossFromEntry(2), 80);
    CString label;
    EXPECT_TRUE(fa->GetNeutralLoss(0, label));
    EXPECT_EQ(label, "Water  (H2O)");
    int tag = 5;
    CStringArray pairs;
    EXPECT_TRUE(fa->GetMassesForNeutralLoss(1, tag, functions, peakIds, pairs));
    EXPECT_EQ(tag, 0);
    EXPECT_EQ(VectorOf(pairs), std::vector<std::string>{"319.1030 -> 274.0454"});
    EXPECT_FALSE(fa->GetPeaksForNeutralLoss(2, tag, functions, peakIds));
    EXPECT_EQ(tag, 0);
    EXPECT_FALSE(fa->GetPeaksForNeutralLoss(7, tag, functions, peakIds));
    EXPECT_EQ(tag, -1);
    CArray<double> parentMzs, fragmentMzs;
    EXPECT_TRUE(fa->GetMassesForNeutralLossInSpectrum(0, 2, parentMzs, fragmentMzs));
    EXPECT_FALSE(fa->GetMassesForNeutralLossInSpectrum(0, 1, parentMzs, fragmentMzs));

    // Peaks exactly at the expected mass +- tolerance match; one just beyond does not.
    CSpectrumData* hydroxy = high->GetSpectrum(1, true);
    hydroxy->SetNumPeaks(0);
    for (double mass : {317.0774, 317.0974, 317.0975})
        hydroxy->AddPeak(CPeakData(mass, 50.0));
    const int before = fa->GetNeutralLossOccurrences().GetSize();
    fa->SearchForNeutralLosses(&sample);
    EXPECT_EQ(fa->GetNeutralLossOccurrences().GetSize() - before, 2 + 1); // + the amine again

    // Common losses of the parent's own high-energy spectrum, ascending by nominal mass.
    CArray<NeutralLossEntry> losses;
    EXPECT_EQ(fa->GetParentSpectrumCNLs(&sample, 7, losses), 6);
    std::vector<int> nominal;
    for (const NeutralLossEntry& loss : losses)
        nominal.push_back(loss.NominalMass);
    EXPECT_EQ(nominal, (std::vector<int>{28, 126, 188, 216, 314, 342}));
    EXPECT_NEAR(losses[0].Mass, 86.0964 - 58.0651, 1e-4);
    EXPECT_EQ(losses[0].Tag, 7);
    EXPECT_EQ(losses[0].Label, "Parent spectrum");

    // A copy keeps the results but not the parent m/z.
    const CFragmentAnalysis copy = *fa;
    EXPECT_EQ(copy.GetFragmentEntries().GetSize(), fa->GetFragmentEntries().GetSize());
    EXPECT_EQ(copy.GetParentMass(), 0.0);
}

TEST(FragmentAnalysisTest, ProgressCancellationAndExceptionsGoThroughTheHooks) {
    LoadedReport loaded(AnalysisReport(), kLosses);
    CSampleData& sample = loaded.Sample();
    CFragmentAnalysis* fa = sample.GetFragmentAnalysis();
    { // Nine metabolites: each stage steps by 100 / 9 at every one of them.
        HostRecorder hooks;
        ASSERT_TRUE(fa->DoFragmentAnalysis(&sample));
        EXPECT_EQ(hooks.progressText, "Creating fragment analysis, press ESC to cancel... ");
        EXPECT_EQ(hooks.progressLower, 0);
        EXPECT_EQ(hooks.progressUpper, 300);
        EXPECT_EQ(hooks.stepped, 3 * 9 * 11);
        EXPECT_EQ(hooks.begun, 1);
        EXPECT_EQ(hooks.ended, 1);
    }
    { // Cancelled at the second parent: the first stays, nothing else is built.
        HostRecorder hooks;
        hooks.cancelAtPoll = 2;
        EXPECT_FALSE(fa->DoFragmentAnalysis(&sample));
        EXPECT_EQ(fa->GetParents().GetSize(), 1);
        EXPECT_FALSE(fa->HasParents());
        EXPECT_FALSE(fa->HasResults());
        EXPECT_TRUE(fa->GetFragmentEntries().IsEmpty());
        EXPECT_EQ(hooks.ended, 1);
    }
    { // An exception inside the run becomes a message; none leaves.
        HostRecorder hooks;
        HostHooks throwing = GetHostHooks();
        throwing.stepProgress = [](int) { throw std::runtime_error("boom"); };
        SetHostHooks(throwing);
        EXPECT_FALSE(fa->DoFragmentAnalysis(&sample));
        ASSERT_EQ(hooks.messages.size(), 1u);
        EXPECT_EQ(hooks.messages[0].text, "Unknown exception generated during fragment analysis");
        EXPECT_EQ(hooks.messages[0].icon, MessageIcon::Exclamation);
        EXPECT_EQ(hooks.ended, 1);
        // Nor when the message hook throws in turn.
        throwing.showMessage = [](const CString&, const CString&, MessageIcon) -> int {
            throw std::runtime_error("no window");
        };
        SetHostHooks(throwing);
        EXPECT_FALSE(fa->DoFragmentAnalysis(&sample));
    }
}

// Masses no instrument reports, empty spectra, a partner in a function that does not exist and a
// formula that cannot be read: only the pairs that can be made are made. (The analysis fuzz target
// runs the analysis and its queries over any bytes.)
TEST(FragmentAnalysisTest, BadInputIsSkippedWithoutHarm) {
    FragmentReport r;
    r.Compound(100.0, "Xx9", "unreadable formula");
    r.Function(1, 5.0);
    r.Spectrum(99, 0, {{100.0, 1.0}});
    r.Function(2, 25.0);
    r.Spectrum(1, 1, {{NAN, 50.0}, {-5.0, 50.0}, {50.0, -3.0}, {60.0, NAN}, {1e30, 50.0}});
    r.Spectrum(2, 2, {});
    auto row = [&](auto... args) { r.Unexpected(Row(args...)); };
    row("a", 1, 1, 1, 200.0);
    row("MSe fragments", 2, 1, 1, 200.0);
    row("b", 1, 2, 2, NAN);
    row("MSe fragments", 2, 2, 2, NAN);
    row("c", 1, 3, 3, -50.0);
    row("MSe fragments", 7, 3, 3, -50.0); // a function that does not exist
    row("d", 1, 4, 4, 1e30);
    row("MSe fragments", 2, 4, 4, 1e30); // no spectrum with that peak
    LoadedReport loaded(r.Text());
    CSampleData& sample = loaded.Sample();
    CFragmentAnalysis* fa = sample.GetFragmentAnalysis();
    EXPECT_NO_THROW(fa->DoFragmentAnalysis(&sample));
    EXPECT_FALSE(fa->IsIsotopeModelValid());
    EXPECT_EQ(fa->GetParents().GetSize(), 3); // a, b and d have partners in function 2
    CFragmentAnalysis empty;
    EXPECT_FALSE(empty.DoFragmentAnalysis(nullptr));
}

} // namespace
