#pragma once

#include "BatchSummary.h"
#include "DrugModel.h"
#include "GeneratorOptions.h"
#include "ReportFile.h"
#include "SamplePlan.h"
#include "SpectrumWriter.h"
#include "TraceStream.h"

#include <string>
#include <vector>

namespace quillon::generate {

// Writes one planned sample as a "[SAMPLE]" section with its continuation "SAMPLE_APPEND"
// section: header, compound, parameters, the low-energy, high-energy and diode-array functions,
// the analog channel, the metabolite results and the molfile list.
class CSampleWriter {
public:
    // reportName is the report file's own name (without folder), which names its molfiles.
    CSampleWriter(CReportFile& file, const CDrugModel& drug,
                  const std::vector<Biotransformation>& searched, const GeneratorOptions& options,
                  std::string reportName);

    SampleSummary Write(const SamplePlan& plan, int sampleIndex);

private:
    // Peak results of the sample being written, per component.
    struct ComponentPeaks {
        PeakResult low{};
        PeakResult high{};
        PeakResult pda{};
    };

    void WriteHeader(const SamplePlan& plan, SampleSummary& summary);
    void WriteCompoundAndParameters(SampleSummary& summary);
    void WriteLowEnergyFunction(const SamplePlan& plan, SampleSummary& summary);
    void WriteHighEnergyFunction(const SamplePlan& plan, SampleSummary& summary);
    void WriteDiodeArrayFunction(const SamplePlan& plan, SampleSummary& summary);
    void WriteAnalogChannel(const SamplePlan& plan, SampleSummary& summary);
    void WriteExpectedMetabolites(const SamplePlan& plan, SampleSummary& summary);
    void WriteUnexpectedMetabolites(const SamplePlan& plan, SampleSummary& summary);
    void WriteMSMSCorrelation(const SamplePlan& plan, SampleSummary& summary);
    void WriteMolfileList(SampleSummary& summary);
    void WriteAppendSection(const SamplePlan& plan, SampleSummary& summary);

    // Writes a "CHROMATOGRAM" section (its points split over two "CHROMATOGRAM_APPEND"
    // continuations when continued is set) and returns its peaks.
    std::vector<PeakResult> WriteChromatogram(const char* section, const std::string& description,
                                              int traceNumber, int traceInFunction,
                                              TraceShape shape, bool continued,
                                              ChromatogramSummary& summary);
    void WritePeak(const PeakResult& peak, int peakRef);
    void WriteFunctionHeader(int number, const char* ionMode, const char* type,
                             const char* description, int coneVoltage, double collisionEnergy);
    SpectrumHeader SpectrumAt(const char* trace, const PeakResult& extent, int traceNumber,
                              int peakId, int clusterId) const;
    // Writes the survey spectra first to first + count - 1 of the function's survey spectra.
    void WriteSurveySpectra(const char* trace, int traceNumber, FunctionSummary& summary, int first,
                            int count);
    // The lists the processing searched with; the reader of a report passes over them.
    void WriteSearchLists();
    TraceShape BaseShape() const;

    // One MS-layout metabolite row.
    void WriteMSRow(const Component& c, const std::string& formula, bool found,
                    const std::string& chroTrace, const std::string& peak, const std::string& name,
                    bool msms, bool confirmed, bool molfile);
    std::string PeakIdentifier(const Component& c, int peakId, int function, int trace,
                               double mz) const;
    double ShiftOf(const CFormula& neutral) const;

    CReportFile& m_file;
    const CDrugModel& m_drug;
    const std::vector<Biotransformation>& m_searched;
    const GeneratorOptions& m_options;
    std::string m_reportName;
    CSpectrumWriter m_spectra;
    CRandom m_random; // reseeded for every sample
    int m_sampleIndex = 0;
    std::vector<ComponentPeaks> m_peaks;
};

} // namespace quillon::generate
