// The bundled example batch read back through the library: what the reader classes find must be
// what the generator wrote.

#include "ReportGenerator.h"
#include "WorkFolder.h"

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/chemistry/Formula.h>
#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/document/SampleData.h>
#include <quillon/document/Samples.h>
#include <quillon/file/FileRecord.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/platform/HostHooks.h>

#include <gtest/gtest.h>

#include <filesystem>

namespace quillon::generate {
namespace {

const std::string kExamples = std::string(QUILLON_SOURCE_DIR) + "/examples";
const std::string kReport = kExamples + "/" + QUILLON_EXAMPLE_REPORT;

// What the generator writes for the example's options (the defaults).
const BatchSummary& ExampleSummary() {
    static const BatchSummary summary = [] {
        const std::string folder = testing::ProcessWorkFolder() + "/example";
        std::filesystem::create_directories(folder);
        GeneratorOptions options;
        options.reportPath = folder + "/" + QUILLON_EXAMPLE_REPORT;
        return GenerateBatch(options);
    }();
    return summary;
}

// The example read by the document reader, once.
CSamples& Example() {
    static CSamples samples;
    static const int read = samples.Read(kReport.c_str());
    EXPECT_EQ(read, 1);
    return samples;
}

void ExpectChromatogram(const CChromatoData& read, const ChromatogramSummary& written) {
    EXPECT_EQ(read.GetTraceNumber(), written.traceNumber);
    EXPECT_EQ(read.GetTraceNumberInFunction(), written.traceInFunction);
    EXPECT_EQ(read.GetNumPeaks(), written.points);
    ASSERT_EQ(read.GetNumberOfListPeaks(), static_cast<int>(written.peakIds.size()));
    for (int p = 0; p < read.GetNumberOfListPeaks(); ++p) {
        EXPECT_EQ(read.GetChromatPeakData(p)->GetPeakID(), written.peakIds[static_cast<size_t>(p)]);
        EXPECT_GT(read.GetChromatPeakData(p)->GetAreaAbs(), 0.0f);
    }
}

TEST(ExampleBatchTest, SamplesHeadersCompoundsParametersAndMassDefectFilterReadBack) {
    const BatchSummary& written = ExampleSummary();
    CSamples& samples = Example();
    ASSERT_EQ(samples.GetSamplesCount(), static_cast<int>(written.samples.size()));
    CSampleData* control = nullptr;
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *samples.GetSample(s);
        const SampleSummary& expected = written.samples[static_cast<size_t>(s)];
        EXPECT_EQ(sample.GetNumber(), expected.number);
        EXPECT_EQ(sample.IsControl(), expected.sampleType == "QC"); // "QC" reads as "Control"
        EXPECT_EQ(sample.IsAnalyte(), expected.sampleType == "Analyte");
        // Every analyte is linked to the control of its group (same processing, same parent).
        if (sample.IsControl()) {
            control = &sample;
        } else {
            EXPECT_EQ(sample.GetControlSample(), control);
        }
        EXPECT_FLOAT_EQ(sample.GetSubjectTime(), static_cast<float>(expected.subjectTime));
        CString text;
        sample.GetFileName(text);
        EXPECT_FALSE(text.IsEmpty());
        sample.GetCondtions(text);
        EXPECT_FALSE(text.IsEmpty());
        sample.GetSubmitter(text);
        EXPECT_FALSE(text.IsEmpty());
        EXPECT_TRUE(sample.GetLockSprayEnabled());
        EXPECT_FALSE(sample.GetMUXEnabled());
        EXPECT_DOUBLE_EQ(sample.GetConcentration(), 10.0);
        // One "Info" line in the sample and one in its continuation: two lines of one text.
        sample.GetProcessingInfo(text);
        EXPECT_EQ(std::count(text.str().begin(), text.str().end(), '\n'), 1);

        ASSERT_EQ(sample.GetCompoundCount(), expected.compounds);
        EXPECT_DOUBLE_EQ(sample.GetCompound(0)->GetMass(), expected.compoundMass);
        EXPECT_EQ(sample.GetParameters()->PositiveAdducts().GetSize(), expected.positiveAdducts);
        EXPECT_EQ(sample.GetParameters()->NegativeAdducts().GetSize(), expected.negativeAdducts);
        EXPECT_EQ(sample.GetMDFMasses()->GetSize(), expected.mdfMasses);
        EXPECT_EQ(sample.GetMDFParams()->GetSize(), expected.mdfParameters);

        EXPECT_EQ(sample.GetExpectedMetaboliteCount(), expected.expectedRecords);
        EXPECT_EQ(sample.GetUnexpectedMetaboliteCount(), expected.unexpectedRecords);
        const int msms = sample.GetMSMSCorrelationMetaboliteCount();
        EXPECT_EQ(msms, expected.msmsRecords);
        // Every correlation row reached its metabolite: entries x entries texts in all.
        int correlationEntries = 0;
        for (int m = sample.GetMSMetaboliteCount(); m < sample.GetMetaboliteCount(); ++m)
            correlationEntries += sample.GetMetabolite(m)->GetCorrelationEntryCount();
        EXPECT_EQ(correlationEntries, expected.correlationRows > 0 ? msms * msms : 0);
        EXPECT_EQ(expected.correlationRows, msms * msms);
    }
}

TEST(ExampleBatchTest, FunctionsChromatogramsPeaksSpectraAndAnalogChannelsReadBack) {
    const BatchSummary& written = ExampleSummary();
    CSamples& samples = Example();
    ASSERT_EQ(samples.GetSamplesCount(), static_cast<int>(written.samples.size()));
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *samples.GetSample(s);
        const SampleSummary& expected = written.samples[static_cast<size_t>(s)];
        ASSERT_EQ(sample.GetFunctionCount(), static_cast<int>(expected.functions.size()));
        for (int f = 0; f < sample.GetFunctionCount(); ++f) {
            CFunctionData& function = *sample.GetFunction(f);
            const FunctionSummary& summary = expected.functions[static_cast<size_t>(f)];
            EXPECT_EQ(function.GetNumber(), summary.number);
            EXPECT_EQ(function.IsPDA(), summary.type == "Diode Array");
            ASSERT_EQ(function.GetNumChromatogram(),
                      static_cast<int>(summary.chromatograms.size()));
            for (int c = 0; c < function.GetNumChromatogram(); ++c) {
                const ChromatogramSummary& trace = summary.chromatograms[static_cast<size_t>(c)];
                ExpectChromatogram(*function.GetChromatogram(c), trace);
                // Every listed peak is found again by its identifier, function and trace.
                for (int peakId : trace.peakIds) {
                    const CChromatogramPeak* peak =
                        sample.GetCorispondingPeakInfo(peakId, summary.number, trace.traceNumber);
                    ASSERT_NE(peak, nullptr) << peakId;
                    EXPECT_EQ(peak->GetPeakID(), peakId);
                }
            }
            ASSERT_EQ(function.GetNumSpectra(false),
                      static_cast<int>(summary.spectrumPeakIds.size()));
            int masses = 0;
            int results = 0;
            for (int i = 0; i < function.GetNumSpectra(false); ++i) {
                CSpectrumData* spectrum = function.GetSpectrum(i, false);
                EXPECT_EQ(spectrum->GetPeakID(), summary.spectrumPeakIds[static_cast<size_t>(i)]);
                EXPECT_EQ(spectrum->GetNumPeaks(), summary.spectrumPoints[static_cast<size_t>(i)]);
                masses += spectrum->MassesGet()->GetSize();
                results += spectrum->GetNumResults();
            }
            EXPECT_EQ(masses, summary.spectrumMasses);
            EXPECT_EQ(results, summary.spectrumResults);
        }
        // The diode-array trace is written in percent of its maximum; read back, its highest
        // point is that maximum again.
        CChromatoData* diode = sample.GetFunction(2)->GetChromatogram(0);
        ASSERT_NE(diode, nullptr);
        float maximum = 0.0f;
        diode->GetMaxIntensity(maximum);
        float highest = 0.0f;
        for (int i = 0; i < diode->GetNumPeaks(); ++i) {
            CPeakData point;
            diode->GetPeak(i, point);
            highest = std::max(highest, static_cast<float>(point.GetIntensity()));
        }
        EXPECT_NEAR(highest, maximum, maximum * 1e-4);

        ASSERT_EQ(sample.GetAnalogCount(), static_cast<int>(expected.analogChannels.size()));
        for (int a = 0; a < sample.GetAnalogCount(); ++a) {
            ExpectChromatogram(*sample.GetAnalogChannel(a),
                               expected.analogChannels[static_cast<size_t>(a)]);
        }
        // The parent's spectrum is found from its peak; its peak lies on several traces of one
        // cluster (low- and high-energy mass chromatograms, both total ion currents, diode
        // array).
        ASSERT_NE(sample.GetCorrespondingSpectrum(1), nullptr);
        const int cluster = sample.GetCorispondingPeakInfo(1, 0)->GetPeakClusterID();
        EXPECT_GE(sample.GetNumberOfChroGraphsInCluster(cluster), 4);
    }
}

// Each "ELEMENTAL" section belongs to the unexpected record of the same place: the candidates of a
// found metabolite, an empty list for its high-energy partner.
TEST(ExampleBatchTest, ElementalCandidatesReadBackToTheirUnexpectedMetabolites) {
    const BatchSummary& written = ExampleSummary();
    CSamples& samples = Example();
    ASSERT_EQ(samples.GetSamplesCount(), static_cast<int>(written.samples.size()));
    int candidates = 0;
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *samples.GetSample(s);
        const std::vector<int>& rows = written.samples[static_cast<size_t>(s)].elementalRows;
        ASSERT_EQ(sample.GetUnexpectedMetaboliteCount(), static_cast<int>(rows.size()));
        EXPECT_EQ(sample.GetElementalEnabled(), !rows.empty());
        for (int i = 0; i < static_cast<int>(rows.size()); ++i) {
            const CMetaboliteData& metabolite =
                *sample.GetMetabolite(sample.GetExpectedMetaboliteCount() + i);
            EXPECT_TRUE(metabolite.IsUnexpected());
            EXPECT_TRUE(metabolite.IsElementalEnabled());
            ASSERT_EQ(metabolite.GetNumElementalResults(), rows[static_cast<size_t>(i)]);
            CElementalResultsData candidate;
            for (int c = 0; c < metabolite.GetNumElementalResults(); ++c) {
                ASSERT_TRUE(metabolite.GetElementalResults(c, candidate));
                // Every candidate explains the found m/z by its ion formula.
                EXPECT_NEAR(candidate.GetMass(), metabolite.GetMzFound(), 5e-5);
                const double ion =
                    CFormula::Parse(candidate.GetFormula().view()).MonoisotopicMass() -
                    CElements::kElectronMass;
                EXPECT_NEAR(candidate.GetCalcMass(), ion, 5e-6);
                EXPECT_NEAR(candidate.GetmDa(), (candidate.GetMass() - ion) * 1000.0, 1e-3);
                ++candidates;
            }
        }
        // No expected or MS/MS correlation metabolite takes candidates.
        for (int i = 0; i < sample.GetMetaboliteCount(); ++i) {
            if (!sample.GetMetabolite(i)->IsUnexpected()) {
                EXPECT_EQ(sample.GetMetabolite(i)->GetNumElementalResults(), 0);
            }
        }
    }
    EXPECT_GT(candidates, 0);
}

// Reading ends with the area passes: every sample has metabolite area totals, and its found
// expected metabolites have their share of the group's area.
TEST(ExampleBatchTest, AreaPercentagesAreDerivedWhenTheBatchIsRead) {
    CSamples& samples = Example();
    ASSERT_GT(samples.GetSamplesCount(), 0);
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *samples.GetSample(s);
        EXPECT_GT(sample.GetAreaTotal(true, MS_TRACE), 0.0);
        int withShare = 0;
        for (int i = 0; i < sample.GetExpectedMetaboliteCount(); ++i) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(i);
            if (!metabolite.GetFound() || metabolite.IsHiEnergy() || metabolite.GetPeakNum() < 1)
                continue;
            EXPECT_GT(metabolite.GetRelativePeakArea(), 0.0) << i;
            EXPECT_LE(metabolite.GetRelativePeakArea(), 100.0) << i;
            ++withShare;
        }
        EXPECT_GT(withShare, 0);
    }
}

TEST(ExampleBatchTest, NeutralLossListReadsBackFromTheSettingsFile) {
    const BatchSummary& written = ExampleSummary();
    // The settings file is found in the host's working directory: here, the examples folder.
    const HostHooks saved = GetHostHooks();
    HostHooks hooks = saved;
    hooks.workingDirectory = [] { return CString(kExamples); };
    SetHostHooks(hooks);
    const CTarnwickIniInterface settings;
    CCompounds all;
    const bool readAll = settings.GetNeutralLosses(all, false);
    CCompounds selected;
    const bool readSelected = settings.GetNeutralLosses(selected, true);
    SetHostHooks(saved);
    ASSERT_TRUE(readAll);
    ASSERT_TRUE(readSelected);
    EXPECT_EQ(all.GetSize(), written.neutralLosses);
    EXPECT_EQ(selected.GetSize(), written.selectedNeutralLosses);
    bool sawCommaInName = false;
    for (int i = 0; i < all.GetSize(); ++i) {
        const CCompoundData loss = all.GetAt(i);
        CString formula;
        CString name;
        loss.GetFormula(formula);
        loss.GetName(name);
        EXPECT_NEAR(loss.GetMass(), CFormula::Parse(formula.view()).MonoisotopicMass(), 5e-5);
        sawCommaInName = sawCommaInName || name.Find(',') >= 0;
    }
    EXPECT_TRUE(sawCommaInName); // a name with a comma is read whole by its stated length
}

// Each expected metabolite's mass shift is its formula's mass less the parent's: the
// transformation table's formula changes are the chemistry they are named for.
TEST(ExampleBatchTest, MassShiftsEqualTheFormulaDifferences) {
    CSamples& samples = Example();
    const double parentMass = CFormula::Parse("C17H19ClN2S").MonoisotopicMass();
    int checked = 0;
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *samples.GetSample(s);
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
            const std::string formula = metabolite.GetFormula();
            if (!metabolite.IsExpected() || formula.empty())
                continue;
            EXPECT_NEAR(metabolite.GetMetabolite(),
                        CFormula::Parse(formula).MonoisotopicMass() - parentMass, 1e-4)
                << metabolite.GetMetName();
            if (std::string(metabolite.GetMetName()) == "Oxidative Dechlorination") {
                EXPECT_EQ(formula, "C17H20N2OS"); // Cl replaced by OH: -17.9661
                EXPECT_NEAR(metabolite.GetMetabolite(), -17.9661, 1e-4);
            }
            ++checked;
        }
    }
    EXPECT_GT(checked, 20);
}

} // namespace
} // namespace quillon::generate
