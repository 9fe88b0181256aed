// The bundled example batch read back through the library: what the reader classes find must be
// what the generator wrote.

#include "ReportGenerator.h"

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/document/SampleData.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Formula.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

namespace quillon::generate {
namespace {

const std::string kExamples = std::string(QUILLON_SOURCE_DIR) + "/examples";
const std::string kReport = kExamples + "/" + QUILLON_EXAMPLE_REPORT;

// What the generator writes for the example's options (the defaults).
const BatchSummary& ExampleSummary() {
    static const BatchSummary summary = [] {
        const std::string folder = std::string(QUILLON_GENERATE_WORK_DIR) + "/example";
        std::filesystem::create_directories(folder);
        GeneratorOptions options;
        options.reportPath = folder + "/" + QUILLON_EXAMPLE_REPORT;
        return GenerateBatch(options);
    }();
    return summary;
}

// The acquisition sections of one sample, read by the library's function and chromatogram
// readers.
struct Acquisition {
    std::vector<CFunctionData> functions;
    std::vector<CChromatoData> analogChannels;
};

// Reads every "[SAMPLE]" with the sample reader, adding each "SAMPLE_APPEND" to the sample
// before it.
std::vector<std::unique_ptr<CSampleData>> ReadSamples() {
    CDelimitFile file(kReport.c_str(), CFile::modeRead);
    CFileRecord record;
    record.AddParagraph("SAMPLE", 0);
    record.AddParagraph("SAMPLE_APPEND", 1);
    std::vector<std::unique_ptr<CSampleData>> samples;
    while (record.Read(&file)) {
        if (record.GetID() == 0) {
            samples.push_back(std::make_unique<CSampleData>());
        }
        if (record.GetID() >= 0 && !samples.empty()) {
            samples.back()->Read(&file);
        }
    }
    return samples;
}

// Reads the "FUNCTION" and "ANALOG" sections of every sample with their own readers.
std::vector<Acquisition> ReadAcquisitions() {
    CDelimitFile file(kReport.c_str(), CFile::modeRead);
    CFileRecord top;
    top.AddParagraph("SAMPLE", 0);
    top.AddParagraph("SAMPLE_APPEND", 1); // holds no acquisition data: passed over whole
    std::vector<Acquisition> samples;
    while (top.Read(&file)) {
        if (top.GetID() == 1) {
            CFileRecord append;
            while (append.Read(&file)) {
            }
        }
        if (top.GetID() != 0) {
            continue;
        }
        samples.emplace_back();
        CFileRecord sample;
        sample.AddParagraph("FUNCTION", 0);
        sample.AddParagraph("ANALOG", 1);
        while (sample.Read(&file)) {
            if (sample.GetType() != RECORD_PARAGRAPH) {
                continue;
            }
            if (sample.GetID() == 0) {
                samples.back().functions.emplace_back();
                samples.back().functions.back().Read(&file);
            } else if (sample.GetID() == 1) {
                samples.back().analogChannels.emplace_back();
                samples.back().analogChannels.back().Read(&file);
            }
        }
    }
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

TEST(ExampleBatchTest, SampleHeadersCompoundsParametersAndMassDefectFilterReadBack) {
    const BatchSummary& written = ExampleSummary();
    const auto samples = ReadSamples();
    ASSERT_EQ(samples.size(), written.samples.size());
    for (size_t s = 0; s < samples.size(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        CSampleData& sample = *samples[s];
        const SampleSummary& expected = written.samples[s];
        EXPECT_EQ(sample.GetNumber(), expected.number);
        EXPECT_EQ(sample.IsControl(), expected.sampleType == "QC"); // "QC" reads as "Control"
        EXPECT_EQ(sample.IsAnalyte(), expected.sampleType == "Analyte");
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
    }
}

TEST(ExampleBatchTest, FunctionsChromatogramsPeaksAndSpectraReadBack) {
    const BatchSummary& written = ExampleSummary();
    const std::vector<Acquisition> samples = ReadAcquisitions();
    ASSERT_EQ(samples.size(), written.samples.size());
    for (size_t s = 0; s < samples.size(); ++s) {
        SCOPED_TRACE("sample " + std::to_string(s + 1));
        const SampleSummary& expected = written.samples[s];
        std::vector<CFunctionData> functions = samples[s].functions;
        ASSERT_EQ(functions.size(), expected.functions.size());
        for (size_t f = 0; f < functions.size(); ++f) {
            CFunctionData& function = functions[f];
            const FunctionSummary& summary = expected.functions[f];
            EXPECT_EQ(function.GetNumber(), summary.number);
            EXPECT_EQ(function.IsPDA(), summary.type == "Diode Array");
            ASSERT_EQ(function.GetNumChromatogram(),
                      static_cast<int>(summary.chromatograms.size()));
            for (int c = 0; c < function.GetNumChromatogram(); ++c) {
                ExpectChromatogram(*function.GetChromatogram(c),
                                   summary.chromatograms[static_cast<size_t>(c)]);
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
        CChromatoData* diode = functions[2].GetChromatogram(0);
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

        ASSERT_EQ(samples[s].analogChannels.size(), expected.analogChannels.size());
        for (size_t a = 0; a < expected.analogChannels.size(); ++a) {
            ExpectChromatogram(samples[s].analogChannels[a], expected.analogChannels[a]);
        }
    }
}

TEST(ExampleBatchTest, NeutralLossListReadsBackFromTheSettingsFile) {
    const BatchSummary& written = ExampleSummary();
    const CTarnwickIniInterface settings{CString(kExamples)};
    CCompounds all;
    ASSERT_TRUE(settings.GetNeutralLosses(all, false));
    EXPECT_EQ(all.GetSize(), written.neutralLosses);
    CCompounds selected;
    ASSERT_TRUE(settings.GetNeutralLosses(selected, true));
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

} // namespace
} // namespace quillon::generate
