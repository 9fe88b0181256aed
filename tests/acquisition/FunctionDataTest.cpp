#include <quillon/acquisition/FunctionData.h>

#include <quillon/platform/ChartSettings.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>

using namespace quillon;
using quillon::testing::ReadBlock;
using quillon::testing::TextOf;

namespace {

TRACE_TYPE Classify(const std::string& fields) {
    CFunctionData function;
    ReadBlock(function, "{\n" + fields + "}\n");
    return function.GetTraceType();
}

// Chart settings that name the kind of parameter text they hand out; scaling 4, offset 10.
class LabellingChartSettings final : public CChartSettings {
public:
    CString GetDefaultCustomChartParams(const char* description) const override {
        return CString("default:") + description;
    }
    CString GetCustomChartDADParams() const override { return "diode array"; }
    CString GetCustomChartUnits(const char*) const override { return "AU"; }
    float GetCustomChartScaling(const char*) const override { return 4.0f; }
    float GetCustomChartOffset(const char*) const override { return 10.0f; }
    int GetCustomChartVerticalAxisDecimalDigits(const char*) const override { return 2; }
    int GetCustomChartHeaderDecimalDigits(const char*) const override { return 1; }
    int GetCustomChartUseScientificNotation(const char*) const override { return 0; }
};

int PointCount(CFunctionData& function, int traceNumber) {
    const CChromatoData* trace = function.GetTrace(traceNumber);
    return trace != nullptr ? trace->GetNumPeaks() : -1;
}

CSpectrumData SpectrumWithPeakID(int peakID) {
    CSpectrumData spectrum;
    spectrum.SetPeakID(peakID);
    return spectrum;
}

} // namespace

TEST(FunctionDataTest, ClassifiesItsTraceTypeFromTypeAndDescription) {
    EXPECT_EQ(Classify("Type\tMS\n"), MS_TRACE);
    EXPECT_EQ(Classify("Type\tUV Diode Array\n"), PDA_TRACE);
    EXPECT_EQ(Classify("Type\tPDA\n"), PDA_TRACE);
    EXPECT_EQ(Classify("Type\tpda\n"), MS_TRACE);
    EXPECT_EQ(Classify("Type\tPDA\nDescription\tANALOG 1\n"), ANALOG_TRACE);
    EXPECT_EQ(Classify("Description\tScan\nType\tDAD\n"), PDA_TRACE);
    EXPECT_EQ(Classify("Description\tANALOG 2\nType\tDAD\n"), ANALOG_TRACE);
    // Each field reclassifies on what has been read so far.
    EXPECT_EQ(Classify("Type\tDAD\nDescription\tanalog\n"), PDA_TRACE);
}

TEST(FunctionDataTest, ReadsFieldsAndStampsItsChromatogramsAndSpectra) {
    LabellingChartSettings settings;
    SetChartSettings(&settings);
    CFunctionData function;
    ReadBlock(function, "{\n"
                        "Function\t2\nIonMode\tES+\nType\tMS\nDescription\tScan (100:900)\n"
                        "ConeVoltage\t30\nCollisionEnergy\t6.5\nScanCycleTime\t0.3\n"
                        "InterScanDelay\t0.02\nUnknown\tx\n"
                        "[CHROMATOGRAM]\n{\nDescription\tTIC\nTraceNumber\t1\n"
                        "[TRACE]\n{\n0.5\t10\n1.0\t20\n}\n}\n"
                        "[SPECTRUM]\n{\nDesc\tapex\nPeak ID\t4\n[MS]\n{\n100\t1\n}\n}\n"
                        "[NOT A SECTION]\n{\nFunction\t99\n}\n"
                        "}\n");
    SetChartSettings(nullptr);

    EXPECT_EQ(function.GetNumber(), 2);
    EXPECT_EQ(TextOf(function, &CFunctionData::GetIonMode), "ES+");
    EXPECT_EQ(function.GetConeVoltage(), 30);
    EXPECT_DOUBLE_EQ(function.GetCollisionEnergy(), 6.5);
    double duration = 0.0;
    function.GetScanDuration(duration);
    EXPECT_NEAR(duration, 0.28, 1e-12);
    int start = -1;
    int end = -1;
    EXPECT_TRUE(function.GetFunctionRange(start, end));
    EXPECT_EQ(start, 100);
    EXPECT_EQ(end, 900);
    // Without "(" or ":" the range is the number at the description's start, both ends.
    CFunctionData unranged;
    unranged.SetDescription("12 to 900");
    EXPECT_TRUE(unranged.GetFunctionRange(start, end));
    EXPECT_EQ(start, 12);
    EXPECT_EQ(end, 12);
    EXPECT_EQ(function.GetFunctionText(1), "2:MSES+");
    EXPECT_EQ(function.GetFunctionText(0), "MSES+");

    ASSERT_EQ(function.GetNumChromatogram(), 1);
    const CChromatoData* trace = function.GetChromatogram(0);
    EXPECT_EQ(trace->GetFunctionNumber(), 2);
    EXPECT_EQ(trace->GetCustomChartParams(), "default:Scan (100:900)");
    EXPECT_EQ(trace->GetNumPeaks(), 2);

    ASSERT_EQ(function.GetNumSpectra(false), 1);
    const CSpectrumData* spectrum = function.GetSpectrum();
    EXPECT_EQ(TextOf(*spectrum, &CSpectrumData::GetDesc), ""); // stored spectra carry none
    EXPECT_EQ(spectrum->GetPeakID(), 4);
    EXPECT_EQ(TextOf(*spectrum, &CSpectrumData::GetCustomChartParams), "default:Scan (100:900)");
}

TEST(FunctionDataTest, DiodeArrayTracesReadPercentagesOfTheirMaximum) {
    LabellingChartSettings settings;
    SetChartSettings(&settings);
    CFunctionData function;
    ReadBlock(function, "{\nFunction\t3\nType\tDAD\n"
                        "[CHROMATOGRAM]\n{\nMaxIntensity\t2000\nTraceNumber\t8\n"
                        "[TRACE]\n{\n1.0\t50\n}\n}\n"
                        "[SPECTRUM]\n{\nBPI\t400\n[MS]\n{\n254\t25\n}\n}\n}\n");
    const CChromatoData* trace = function.GetTrace(8);
    const float scaledMaximum = trace != nullptr ? trace->GetScaledMaxIntensity() : 0.0f;
    SetChartSettings(nullptr);
    ASSERT_NE(trace, nullptr);
    EXPECT_FLOAT_EQ(scaledMaximum, 510.0f); // 2000 / 4 + 10
    EXPECT_EQ(trace->GetTraceType(), PDA_TRACE);
    EXPECT_EQ(trace->GetCustomChartParams(), "diode array");
    CPeakData point;
    ASSERT_TRUE(trace->GetPeak(0, point));
    EXPECT_DOUBLE_EQ(point.GetIntensity(), 1000.0);

    const CSpectrumData* spectrum = function.GetSpectrum(0, false);
    ASSERT_TRUE(spectrum->GetPeak(0, point));
    EXPECT_DOUBLE_EQ(point.GetIntensity(), 100.0);
}

TEST(FunctionDataTest, AppendedChromatogramsExtendTheirTraceOrStartANewOne) {
    CFunctionData function;
    ReadBlock(function, "{\nFunction\t1\n"
                        "[CHROMATOGRAM]\n{\nTraceNumber\t5\n[TRACE]\n{\n1\t1\n}\n}\n"
                        "[CHROMATOGRAM_APPEND]\n{\nTraceNumber\t5\n[TRACE]\n{\n2\t2\n}\n}\n"
                        "[CHROMATOGRAM_APPEND]\n{\nTraceNumber\t5\n[TRACE]\n{\n3\t3\n4\t4\n}\n}\n"
                        "[CHROMATOGRAM_APPEND]\n{\nTraceNumber\t9\n[TRACE]\n{\n5\t5\n}\n}\n"
                        "[CHROMATOGRAM]\n{\nTraceNumber\t6\n[TRACE]\n{\n6\t6\n}\n}\n"
                        "IonMode\tES-\n"
                        "}\n");

    ASSERT_EQ(function.GetNumChromatogram(), 3);
    EXPECT_EQ(PointCount(function, 5), 4);
    // The trace numbered in an append's first line is not read again by a new trace.
    const CChromatoData* started = function.GetChromatogram(1);
    EXPECT_EQ(started->GetTraceNumber(), -1);
    EXPECT_EQ(started->GetNumPeaks(), 1);
    // Sections and fields after the appends are read as usual.
    EXPECT_EQ(PointCount(function, 6), 1);
    EXPECT_EQ(TextOf(function, &CFunctionData::GetIonMode), "ES-");

    // An empty append section reads nothing of what follows it.
    CFunctionData emptyAppend;
    ReadBlock(emptyAppend, "{\nFunction\t1\n"
                           "[CHROMATOGRAM]\n{\nTraceNumber\t0\n[TRACE]\n{\n1\t1\n}\n}\n"
                           "[CHROMATOGRAM_APPEND]\n{\n}\n"
                           "[CHROMATOGRAM]\n{\nTraceNumber\t6\n[TRACE]\n{\n6\t6\n}\n}\n"
                           "Description\tafter\n}\n");
    ASSERT_EQ(emptyAppend.GetNumChromatogram(), 2);
    EXPECT_EQ(PointCount(emptyAppend, 0), 1);
    EXPECT_EQ(PointCount(emptyAppend, 6), 1);
    EXPECT_EQ(emptyAppend.GetChromatogram(0)->GetDescription(), "");
    EXPECT_EQ(TextOf(emptyAppend, &CFunctionData::GetDescription), "after");
}

TEST(FunctionDataTest, SpectrumListsAndThePeakIdentifierSearch) {
    CFunctionData function;
    EXPECT_EQ(function.AddSpectrum(), 1);                             // a count
    EXPECT_EQ(function.AddSpectrum(SpectrumWithPeakID(7), false), 1); // an index
    EXPECT_EQ(function.AddSpectrum(SpectrumWithPeakID(3), true), 0);
    EXPECT_EQ(function.AddSpectrum(SpectrumWithPeakID(7), true), 1);
    EXPECT_EQ(function.AddSpectrum(SpectrumWithPeakID(8), true), 2);

    EXPECT_EQ(function.GetSpectrumWithPeakID(7, false), 1);
    EXPECT_EQ(function.GetSpectrumWithPeakID(7, true), 1);
    EXPECT_EQ(function.GetSpectrumWithPeakID(3, true), 0);
    // Filtered spectra beyond the number of acquired ones are out of reach.
    EXPECT_EQ(function.GetSpectrumWithPeakID(8, true), -1);
    EXPECT_EQ(function.GetSpectrumWithPeakID(99, false), -1);

    EXPECT_EQ(function.GetSpectrum(2, false), nullptr);
    EXPECT_EQ(function.GetSpectrum(2, true)->GetPeakID(), 8);
    EXPECT_EQ(function.GetSpectrum()->GetPeakID(), 7);

    function.ClearFilteredSpectra();
    EXPECT_EQ(function.GetNumSpectra(true), 0);
    EXPECT_EQ(function.GetNumSpectra(false), 2);

    CFunctionData onlyFiltered;
    onlyFiltered.AddSpectrum(SpectrumWithPeakID(3), true);
    EXPECT_EQ(onlyFiltered.GetSpectrumWithPeakID(3, true), -1);
    EXPECT_EQ(onlyFiltered.GetSpectrum(), nullptr);
}
