// Generated batches read back through the library: what the reader classes find must be what the
// generator wrote, and what it wrote must hang together (peaks are the integrals of their traces,
// metabolites point at peaks, spectra carry the parent's isotopes and real neutral losses, the
// parent decays with the half-life asked for). The seed alone decides the bytes; that the defaults
// give the bundled example byte for byte is the ExampleRegeneratesByteForByte test.

#include "GeneratorOptions.h"
#include "ParentMolfile.h"
#include "ReportGenerator.h"
#include "support/HostRecorder.h"
#include "support/TempFile.h"

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/chemistry/Formula.h>
#include <quillon/chemistry/IsotopeModel.h>
#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/document/SampleData.h>
#include <quillon/document/Samples.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/stability/MetabolicStabilityInfo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <set>

namespace quillon::generate {
namespace {

using quillon::testing::ReadBytes;

// A batch as the library reads it, with the generator's account of what it wrote.
struct ReadBack {
    explicit ReadBack(const GeneratorOptions& options)
        : written(GenerateBatch(options)),
          folder(std::filesystem::path(options.reportPath).parent_path().string()) {
        EXPECT_EQ(samples.Read(options.reportPath.c_str()), 1) << options.reportPath;
    }
    BatchSummary written;
    std::string folder; // the report's, and its settings file's
    CSamples samples;
};

// The default options, writing the example's report name (and "Tarnwick.ini" beside it) in a
// folder of its own.
GeneratorOptions InFolder(const std::string& name) {
    static const quillon::testing::TempFile work;
    GeneratorOptions options;
    std::filesystem::create_directories(work.Folder() / name);
    options.reportPath = (work.Folder() / name / QUILLON_EXAMPLE_REPORT).string();
    return options;
}

// The bundled example as the defaults write it; and a batch with every scale option turned up,
// another seed and a second control group.
ReadBack& Batch(int which) {
    static ReadBack example(InFolder("example"));
    static ReadBack scaled([] {
        GeneratorOptions options = InFolder("scaled");
        options.samples = 7;
        options.metabolites = 40;
        options.unexpected = 6;
        options.pointsPerTrace = 1500;
        options.surveySpectra = 3;
        options.noisePeaks = 40;
        options.seed = 7;
        return options;
    }());
    return which == 0 ? example : scaled;
}

// The host's working directory, where the settings file is found, is the folder while the object
// lives.
struct InWorkingDirectory {
    explicit InWorkingDirectory(const std::string& folder) {
        HostHooks hooks = saved;
        hooks.workingDirectory = [folder] { return CString(folder); };
        SetHostHooks(hooks);
    }
    ~InWorkingDirectory() { SetHostHooks(saved); }
    const HostHooks saved = GetHostHooks();
};

std::string WithCrLf(const std::string& text) {
    std::string crlf;
    for (const char c : text) {
        if (c == '\n')
            crlf.push_back('\r');
        crlf.push_back(c);
    }
    return crlf;
}

TEST(GeneratedBatchBytesTest, TheSeedDecidesTheBytesAndWindowsLineEndsChangeNothingElse) {
    const std::string report = ReadBytes(Batch(0).folder + "/" + QUILLON_EXAMPLE_REPORT);
    GeneratorOptions reseeded = InFolder("reseeded");
    reseeded.seed += 1;
    GenerateBatch(reseeded);
    EXPECT_FALSE(report == ReadBytes(reseeded.reportPath));

    GeneratorOptions windows = InFolder("windows");
    windows.windowsLineEnds = true;
    GenerateBatch(windows);
    EXPECT_TRUE(ReadBytes(windows.reportPath) == WithCrLf(report));
    EXPECT_TRUE(ReadBytes(SettingsPath(windows)) ==
                WithCrLf(ReadBytes(Batch(0).folder + "/Tarnwick.ini")));
}

class GeneratedBatchTest : public ::testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(ExampleAndScaled, GeneratedBatchTest, ::testing::Values(0, 1));

// Every trace of a sample: the chromatograms of its functions, then its analog channels.
std::vector<CChromatoData*> Traces(CSampleData& sample) {
    std::vector<CChromatoData*> traces;
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        for (int c = 0; c < sample.GetFunction(f)->GetNumChromatogram(); ++c)
            traces.push_back(sample.GetFunction(f)->GetChromatogram(c));
    for (int a = 0; a < sample.GetAnalogCount(); ++a)
        traces.push_back(sample.GetAnalogChannel(a));
    return traces;
}

void ExpectChromatogram(const CChromatoData& read, const ChromatogramSummary& written) {
    EXPECT_EQ(read.GetTraceNumber(), written.traceNumber);
    EXPECT_EQ(read.GetTraceNumberInFunction(), written.traceInFunction);
    EXPECT_EQ(read.GetNumPeaks(), written.points);
    ASSERT_EQ(read.GetNumberOfListPeaks(), static_cast<int>(written.peakIds.size()));
    for (int p = 0; p < read.GetNumberOfListPeaks(); ++p)
        EXPECT_EQ(read.GetChromatPeakData(p)->GetPeakID(), written.peakIds[static_cast<size_t>(p)]);
}

void ExpectHeaderCompoundsAndParameters(CSampleData& sample, const SampleSummary& expected) {
    EXPECT_EQ(sample.GetNumber(), expected.number);
    EXPECT_EQ(sample.IsControl(), expected.sampleType == "QC"); // "QC" reads as "Control"
    EXPECT_EQ(sample.IsAnalyte(), expected.sampleType == "Analyte");
    EXPECT_FLOAT_EQ(sample.GetSubjectTime(), static_cast<float>(expected.subjectTime));
    ASSERT_EQ(sample.GetCompoundCount(), expected.compounds);
    EXPECT_DOUBLE_EQ(sample.GetCompound(0)->GetMass(), expected.compoundMass);
    EXPECT_EQ(sample.GetParameters()->PositiveAdducts().GetSize(), expected.positiveAdducts);
    EXPECT_EQ(sample.GetParameters()->NegativeAdducts().GetSize(), expected.negativeAdducts);
    EXPECT_EQ(sample.GetMDFMasses()->GetSize(), expected.mdfMasses);
    EXPECT_EQ(sample.GetMDFParams()->GetSize(), expected.mdfParameters);
}

void ExpectAcquisition(CSampleData& sample, const SampleSummary& expected) {
    ASSERT_EQ(sample.GetFunctionCount(), static_cast<int>(expected.functions.size()));
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        const FunctionSummary& summary = expected.functions[static_cast<size_t>(f)];
        EXPECT_EQ(function.GetNumber(), summary.number);
        EXPECT_EQ(function.IsPDA(), summary.type == "Diode Array");
        ASSERT_EQ(function.GetNumChromatogram(), static_cast<int>(summary.chromatograms.size()));
        for (int c = 0; c < function.GetNumChromatogram(); ++c)
            ExpectChromatogram(*function.GetChromatogram(c),
                               summary.chromatograms[static_cast<size_t>(c)]);
        ASSERT_EQ(function.GetNumSpectra(false), static_cast<int>(summary.spectrumPeakIds.size()));
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
    ASSERT_EQ(sample.GetAnalogCount(), static_cast<int>(expected.analogChannels.size()));
    for (int a = 0; a < sample.GetAnalogCount(); ++a)
        ExpectChromatogram(*sample.GetAnalogChannel(a),
                           expected.analogChannels[static_cast<size_t>(a)]);
    // The parent's spectrum is found from its peak; its peak lies on several traces of one
    // cluster (low- and high-energy mass chromatograms, both total ion currents, diode array).
    ASSERT_NE(sample.GetCorrespondingSpectrum(1), nullptr);
    const int cluster = sample.GetCorispondingPeakInfo(1, 0)->GetPeakClusterID();
    EXPECT_GE(sample.GetNumberOfChroGraphsInCluster(cluster), 4);
}

// The metabolite groups and their correlation entries; each "ELEMENTAL" section belongs to the
// unexpected record of the same place (the candidates of a found metabolite, an empty list for
// its high-energy partner); and, from the area passes that end reading, the found low-energy
// expected metabolites have their share of the group's area. Answers the candidates seen.
int ExpectMetabolites(CSampleData& sample, const SampleSummary& expected) {
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

    const std::vector<int>& rows = expected.elementalRows;
    EXPECT_EQ(sample.GetUnexpectedMetaboliteCount(), static_cast<int>(rows.size()));
    EXPECT_EQ(sample.GetElementalEnabled(), !rows.empty());
    int candidates = 0;
    int withShare = 0;
    for (int i = 0; i < sample.GetMetaboliteCount(); ++i) {
        const CMetaboliteData& metabolite = *sample.GetMetabolite(i);
        const int unexpected = i - sample.GetExpectedMetaboliteCount();
        if (!metabolite.IsUnexpected() || unexpected >= static_cast<int>(rows.size())) {
            EXPECT_EQ(metabolite.GetNumElementalResults(), 0) << i;
        } else {
            EXPECT_TRUE(metabolite.IsElementalEnabled());
            EXPECT_EQ(metabolite.GetNumElementalResults(), rows[static_cast<size_t>(unexpected)]);
        }
        CElementalResultsData candidate;
        for (int c = 0; metabolite.GetElementalResults(c, candidate); ++c, ++candidates) {
            // Every candidate explains the found m/z by its ion formula.
            EXPECT_NEAR(candidate.GetMass(), metabolite.GetMzFound(), 5e-5);
            const double ion = CFormula::Parse(candidate.GetFormula().view()).MonoisotopicMass() -
                               CElements::kElectronMass;
            EXPECT_NEAR(candidate.GetCalcMass(), ion, 5e-6);
            EXPECT_NEAR(candidate.GetmDa(), (candidate.GetMass() - ion) * 1000.0, 1e-3);
        }
        if (metabolite.IsExpected() && metabolite.GetFound() && !metabolite.IsHiEnergy() &&
            metabolite.GetPeakNum() > 0) {
            EXPECT_GT(metabolite.GetRelativePeakArea(), 0.0) << i;
            EXPECT_LE(metabolite.GetRelativePeakArea(), 100.0) << i;
            ++withShare;
        }
    }
    EXPECT_GT(withShare, 0);
    return candidates;
}

// What the reader finds is what the generator says it wrote, and every analyte is linked to the
// control of its group (same processing, same parent).
TEST_P(GeneratedBatchTest, EverySampleReadsBackAsWritten) {
    ReadBack& batch = Batch(GetParam());
    ASSERT_EQ(batch.samples.GetSamplesCount(), static_cast<int>(batch.written.samples.size()));
    CSampleData* control = nullptr;
    int controls = 0;
    int candidates = 0;
    for (int s = 0; s < batch.samples.GetSamplesCount(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *batch.samples.GetSample(s);
        const SampleSummary& expected = batch.written.samples[static_cast<size_t>(s)];
        ExpectHeaderCompoundsAndParameters(sample, expected);
        ExpectAcquisition(sample, expected);
        candidates += ExpectMetabolites(sample, expected);
        if (sample.IsControl()) {
            control = &sample;
            ++controls;
        } else {
            EXPECT_EQ(sample.GetControlSample(), control);
        }
    }
    EXPECT_EQ(controls, GetParam() == 0 ? 1 : 2);
    EXPECT_GT(candidates, 0);
}

// Each peak's area and height are those of its trace between its start and end (the diode-array
// trace written in percent of its maximum and scaled back when read), and each trace's stated
// maximum is its highest point.
TEST_P(GeneratedBatchTest, PeaksAreTheIntegralsOfTheirTraces) {
    int checked = 0;
    for (int s = 0; s < Batch(GetParam()).samples.GetSamplesCount(); ++s) {
        for (CChromatoData* trace : Traces(*Batch(GetParam()).samples.GetSample(s))) {
            const TPointArray<float>& points = trace->GetPoints();
            float maximum = 0.0f;
            trace->GetMaxIntensity(maximum);
            float highest = 0.0f;
            for (const auto& point : points)
                highest = std::max(highest, point.intensity);
            EXPECT_NEAR(highest, maximum, std::max(1e-4 * maximum, 0.5));
            for (int p = 0; p < trace->GetNumberOfListPeaks(); ++p) {
                const CChromatogramPeak& peak = *trace->GetChromatPeakData(p);
                const double start = peak.GetChromatPeakData()->GetStartTime();
                const double end = peak.GetChromatPeakData()->GetEndTime();
                double area = 0.0;
                double height = 0.0;
                for (int i = 1; i < points.GetSize(); ++i) {
                    const double before = points[i - 1].mass;
                    const double at = points[i].mass;
                    if (at < start - 1e-6 || at > end + 1e-6)
                        continue;
                    height = std::max(height, points[i].GetIntensity());
                    if (before >= start - 1e-6)
                        area += 0.5 * (points[i].GetIntensity() + points[i - 1].GetIntensity()) *
                                (at - before);
                }
                EXPECT_NEAR(peak.GetAreaAbs(), area, 1e-4 * area + 1e-3);
                EXPECT_NEAR(peak.GetHeight(), height, 1e-4 * height + 0.01);
                EXPECT_GT(peak.GetWidth(), 0.0f);
                // The apex lies in the extent (on its edge where a neighbour overlaps).
                EXPECT_LT(start, end);
                EXPECT_LE(start, peak.GetTime() + 1e-6);
                EXPECT_GE(end, peak.GetTime() - 1e-6);
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 50);
}

// A found metabolite names a peak of its function and trace, in the cluster it states, with a
// spectrum; a high-energy partner ("MSe fragments") names the peak and cluster of the low-energy
// metabolite before it, in the high-energy function; MS/MS metabolites name high-energy peaks.
// An expected metabolite's mass shift is its formula's mass less the parent's: the transformation
// table's formula changes are the chemistry they are named for.
TEST_P(GeneratedBatchTest, MetabolitesPointAtPeaksAndShiftByTheirFormulae) {
    const double parentMass = CFormula::Parse("C17H19ClN2S").MonoisotopicMass();
    int partners = 0;
    int shifts = 0;
    for (int s = 0; s < Batch(GetParam()).samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *Batch(GetParam()).samples.GetSample(s);
        int lastPeak = -1;
        int lastCluster = -1;
        for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
            const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
            const int peakId = metabolite.GetPeakNum();
            const int function = metabolite.GetFunctionNum();
            const std::string name = metabolite.GetMetName();
            const std::string formula = metabolite.GetFormula();
            SCOPED_TRACE(name + ", peak " + std::to_string(peakId));
            if (metabolite.IsExpected() && !formula.empty()) {
                EXPECT_NEAR(metabolite.GetMetabolite(),
                            CFormula::Parse(formula).MonoisotopicMass() - parentMass, 1e-4);
                // Cl replaced by OH.
                EXPECT_TRUE(name != "Oxidative Dechlorination" || formula == "C17H20N2OS");
                ++shifts;
            }
            if (!metabolite.GetFound() && !metabolite.IsMSMSCorrelation()) {
                EXPECT_EQ(peakId, 0); // not found: no peak
                continue;
            }
            if (metabolite.IsMSMSCorrelation()) {
                EXPECT_NE(sample.GetCorispondingPeakInfo(peakId, 2, metabolite.GetTraceNum()),
                          nullptr);
                continue;
            }
            const CChromatogramPeak* peak =
                sample.GetCorispondingPeakInfo(peakId, function, metabolite.GetTraceNum());
            ASSERT_NE(peak, nullptr);
            EXPECT_EQ(peak->GetPeakClusterID(), metabolite.GetPeakClusterNum());
            EXPECT_GE(sample.GetFunction(function - 1)->GetSpectrumWithPeakID(peakId, false), 0);
            if (name == "MSe fragments") {
                EXPECT_EQ(function, 2);
                EXPECT_EQ(peakId, lastPeak);
                EXPECT_EQ(metabolite.GetPeakClusterNum(), lastCluster);
                ++partners;
            } else if (function == 1) {
                lastPeak = peakId;
                lastCluster = metabolite.GetPeakClusterNum();
            } else {
                EXPECT_EQ(function, 3); // the diode-array peak of the same row
                EXPECT_EQ(metabolite.GetPeakClusterNum(), lastCluster);
            }
        }
    }
    EXPECT_GT(partners, 5);
    EXPECT_GT(shifts, 20);
}

TEST_P(GeneratedBatchTest, NeutralLossListReadsBackFromTheSettingsFile) {
    const ReadBack& batch = Batch(GetParam());
    const InWorkingDirectory folder(batch.folder);
    const CTarnwickIniInterface settings;
    CCompounds all;
    CCompounds selected;
    ASSERT_TRUE(settings.GetNeutralLosses(all, false) && settings.GetNeutralLosses(selected, true));
    EXPECT_EQ(all.GetSize(), batch.written.neutralLosses);
    EXPECT_EQ(selected.GetSize(), batch.written.selectedNeutralLosses);
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

// The scale options set the amounts: points per trace, survey spectra, searched
// biotransformations (all 40, no product twice, and the parent have a row), unexpected products
// (more than the default three) and noise peaks in the spectra.
TEST(GeneratedBatchScaleTest, ScaleOptionsSetTheAmounts) {
    CSamples& scaled = Batch(1).samples;
    ASSERT_EQ(scaled.GetSamplesCount(), 7);
    std::set<long> unexpected;
    for (int s = 0; s < scaled.GetSamplesCount(); ++s) {
        CSampleData& sample = *scaled.GetSample(s);
        for (CChromatoData* trace : Traces(sample))
            EXPECT_EQ(trace->GetNumPeaks(), 1500);
        for (int f = 0; f < sample.GetFunctionCount(); ++f) {
            CFunctionData& function = *sample.GetFunction(f);
            int survey = 0;
            for (int i = 0; i < function.GetNumSpectra(false); ++i)
                survey += function.GetSpectrum(i, false)->GetPeakID() == 0;
            EXPECT_EQ(survey, function.GetTraceType() == MS_TRACE ? 3 : 0);
        }
        // The nominal mass names the product (the measured mass varies from sample to sample).
        for (int i = sample.GetExpectedMetaboliteCount(); i < sample.GetMSMetaboliteCount(); ++i)
            unexpected.insert(std::lround(sample.GetMetabolite(i)->GetPrecursor()));
    }
    EXPECT_GT(unexpected.size(), 3u);
    CSampleData& last = *scaled.GetSample(scaled.GetSamplesCount() - 1);
    std::set<std::string> searched;
    for (int i = 0; i < last.GetExpectedMetaboliteCount(); ++i) {
        const std::string name = last.GetMetabolite(i)->GetMetName();
        if (name != "MSe fragments" && name != "Exclude Mass")
            searched.insert(name);
    }
    EXPECT_EQ(searched.size(), 41u);
    EXPECT_GT(last.GetFunction(0)->GetSpectrum(0, false)->GetNumPeaks(),
              Batch(0).samples.GetSample(0)->GetFunction(0)->GetSpectrum(0, false)->GetNumPeaks() +
                  20);
}

TEST(GeneratedBatchChemistryTest, SpectraShowIsotopeClustersAndFragmentsAtRealNeutralLosses) {
    CSampleData& sample = *Batch(0).samples.GetSample(3);
    const CFormula parentIon = CFormula::Parse("C17H20ClN2S");
    const double parentMz = parentIon.MonoisotopicMass() - CElements::kElectronMass;
    CIsotopeModel model(parentIon);
    const double mPlus2 = model.Peaks()[2].relativeIntensity; // 37Cl and 34S

    auto intensityNear = [](const CSpectrumData& spectrum, double mz) {
        double best = 0.0;
        for (const auto& point : spectrum.GetPoints())
            if (std::fabs(point.mass - mz) < mz * 10e-6)
                best = std::max(best, point.intensity);
        return best;
    };
    // The parent's spectra, low and high energy.
    auto parentSpectrum = [&sample](int function) {
        CFunctionData& f = *sample.GetFunction(function - 1);
        return f.GetSpectrum(f.GetSpectrumWithPeakID(1, false), false);
    };
    const CSpectrumData* low = parentSpectrum(1);
    const CSpectrumData* high = parentSpectrum(2);
    ASSERT_TRUE(low != nullptr && high != nullptr);
    EXPECT_DOUBLE_EQ(intensityNear(*low, parentMz), 100.0);
    EXPECT_NEAR(intensityNear(*low, model.Peaks()[2].mass), mPlus2, 0.1 * mPlus2);
    EXPECT_NEAR(low->GetBPM(), parentMz, parentMz * 5e-6);

    // The high-energy spectrum: loss of dimethylamine, then of hydrogen chloride, each with the
    // chlorine isotope peak where chlorine is left; and the side-chain iminium ion.
    const double dimethylamine = CFormula::Parse("C2H7N").MonoisotopicMass();
    const double fragment = parentMz - dimethylamine;
    EXPECT_GT(intensityNear(*high, fragment), 50.0);
    EXPECT_NEAR(intensityNear(*high, fragment + 1.99705) / intensityNear(*high, fragment),
                0.32 + 0.045, 0.08);
    EXPECT_GT(intensityNear(*high, fragment - CFormula::Parse("HCl").MonoisotopicMass()), 1.0);
    EXPECT_GT(intensityNear(*high, CFormula::Parse("C5H12N").MonoisotopicMass() -
                                       CElements::kElectronMass),
              20.0);
    EXPECT_LT(intensityNear(*high, parentMz), 40.0);
}

// The parent's molfile: a complete two-dimensional structure whose implicit hydrogens (filling each
// carbon to four bonds) make up the parent's formula. (Its extraction from the report is the
// molfile and tool tests'.)
TEST(GeneratedBatchChemistryTest, MolfileIsACompleteTwoDimensionalStructureOfTheParent) {
    const std::vector<std::string> lines = ParentMolfileLines("Chlorpromazine");
    ASSERT_GT(lines.size(), 5u);
    EXPECT_EQ(lines[1].substr(20, 2), "2D");
    const size_t atoms = std::stoul(lines[3].substr(0, 3));
    const size_t bonds = std::stoul(lines[3].substr(3, 3));
    ASSERT_EQ(lines.size(), 4 + atoms + bonds + 1);
    EXPECT_EQ(lines.back(), "M  END");
    std::vector<int> valence(atoms + 1, 0);
    for (size_t b = 0; b < bonds; ++b) {
        const std::string& line = lines[4 + atoms + b];
        const size_t first = std::stoul(line.substr(0, 3));
        const size_t second = std::stoul(line.substr(3, 3));
        ASSERT_TRUE(first >= 1 && first <= atoms && second >= 1 && second <= atoms);
        valence[first] += std::stoi(line.substr(6, 3));
        valence[second] += std::stoi(line.substr(6, 3));
    }
    CFormula structure;
    for (size_t a = 1; a <= atoms; ++a) {
        const std::string symbol = lines[3 + a].substr(31, 3);
        const std::string element = symbol.substr(0, symbol.find(' '));
        structure.SetCount(element, structure.Count(element) + 1);
        if (element == "C")
            structure.SetCount("H", structure.Count("H") + 4 - valence[a]);
    }
    EXPECT_EQ(structure, CFormula::Parse("C17H19ClN2S"));
}

// A bulk report holds one sample whose every metabolite pairs with its high-energy partner; the
// fragment analysis runs over all of them, and cancelled after a whole run leaves no filtered
// spectra of that run behind.
TEST(GeneratedBulkReportTest, EveryMetaboliteHasItsPartnerAndProductIonSpectrum) {
    const char* argv[] = {"quillon-generate", "--bulk-metabolites", "40"};
    GeneratorOptions options;
    std::string message;
    bool help = false;
    ASSERT_TRUE(ParseCommandLine(3, argv, options, message, help));
    const quillon::testing::TempFile report("bulk.txt");
    options.reportPath = report.Path();
    ReadBack batch(options);
    const InWorkingDirectory folder(batch.folder);
    ASSERT_EQ(batch.samples.GetSamplesCount(), 1);
    CSampleData& sample = *batch.samples.GetSample(0);
    ASSERT_EQ(sample.GetFunctionCount(), 2);
    CFunctionData* high = sample.GetFunction(1);
    ASSERT_EQ(high->GetNumSpectra(false), 40);
    for (int i = 0; i < 40; ++i) {
        EXPECT_EQ(high->GetSpectrum(i, false)->GetPeakID(), i + 1);
        EXPECT_EQ(high->GetSpectrum(i, false)->GetPeakClusterID(), i + 1);
    }
    EXPECT_EQ(sample.GetMetaboliteCount(), 80);

    CFragmentAnalysis* analysis = sample.GetFragmentAnalysis();
    EXPECT_TRUE(analysis->DoFragmentAnalysis(&sample));
    EXPECT_EQ(analysis->GetParents().GetSize(), 40);
    EXPECT_GT(analysis->GetFragmentEntries().GetSize(), 40);
    EXPECT_GT(analysis->GetNeutralLossOccurrences().GetSize(), 0);
    EXPECT_GT(high->GetNumSpectra(true), 0);
    quillon::testing::HostRecorder cancel;
    cancel.cancelAtPoll = 25; // in the middle of the parents
    EXPECT_FALSE(analysis->DoFragmentAnalysis(&sample));
    EXPECT_FALSE(analysis->HasResults());
    EXPECT_EQ(high->GetNumSpectra(true), 0);
}

// The stability analysis recovers the half-life the generator decayed the parent with, within 5%
// on low-noise duplicate series. (The example batch's, within 15%, is the tool test's.)
TEST(GeneratedBatchStabilityTest, HalfLivesAreRecovered) {
    for (double halfLife : {20.0, 55.0, 90.0}) {
        GeneratorOptions options = InFolder("stability-" + std::to_string(int(halfLife)));
        options.samples = 12;
        options.pointsPerTrace = 200;
        options.variation = 0.1;
        options.halfLifeMinutes = halfLife;
        ReadBack batch(options);
        CArray<CMetabolicStabilityInfo> series;
        ASSERT_TRUE(batch.samples.CreateMetabolicStabilityAnalysis(series));
        ASSERT_EQ(series.GetSize(), 1);
        EXPECT_NEAR(series[0].halfLife, halfLife, 0.05 * halfLife);
    }
}

} // namespace
} // namespace quillon::generate
