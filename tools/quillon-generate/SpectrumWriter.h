#pragma once

#include "DrugModel.h"
#include "Random.h"
#include "ReportFile.h"
#include "SamplePlan.h"
#include "TraceStream.h"

#include <string>
#include <vector>

namespace quillon::generate {

// The header of a "SPECTRUM" section: where the spectrum was taken and what it is.
struct SpectrumHeader {
    std::string trace; // acquisition label, e.g. "1: TOF MS ES+"
    std::string description;
    std::string processing;
    bool continuum = false;
    int traceNumber = 0;
    int peakId = 0;
    int peakRef = 0;
    int clusterId = 0;
    int controlPeakId = 0;
    double time = 0.0;
    PeakResult extent{}; // extent of the chromatographic peak it was combined over
};

// A point of a spectrum: m/z (or wavelength) and intensity in percent of the base peak.
struct SpectrumPoint {
    double mass;
    double percent;
};

// Counts of what one spectrum section holds, for the batch summary.
struct SpectrumCounts {
    int points = 0;
    int masses = 0;
    int results = 0;
};

// Writes the spectra of the generated functions.
class CSpectrumWriter {
public:
    CSpectrumWriter(CReportFile& file, const CDrugModel& drug, int noisePeaks);

    // The low-energy spectrum of a component: isotope clusters of [M+H]+ and [M+Na]+ with the
    // sought masses and their results, and noise peaks.
    SpectrumCounts WriteLowEnergy(const SpectrumHeader& header, const Component& component,
                                  double baseIntensity, CRandom& random);
    // The high-energy spectrum of a component: its fragments with their isotope peaks, the
    // remaining precursor, and noise.
    SpectrumCounts WriteHighEnergy(const SpectrumHeader& header, const Component& component,
                                   const Biotransformation& change, double baseIntensity,
                                   CRandom& random);
    // A diode-array (ultraviolet) spectrum of the chromophore, in percent of its maximum.
    SpectrumCounts WriteUltraviolet(const SpectrumHeader& header, double maxAbsorbance,
                                    CRandom& random);
    // A survey spectrum between peaks: background ions and noise.
    SpectrumCounts WriteSurvey(const SpectrumHeader& header, double baseIntensity, CRandom& random);

private:
    void AddCluster(std::vector<SpectrumPoint>& points, const CFormula& ion, double percent,
                    double ppmError, CRandom& random) const;
    void AddNoise(std::vector<SpectrumPoint>& points, double maxPercent, CRandom& random) const;
    // Writes the section: header fields, the MASSES and RESULTS paragraphs when given, then the
    // points, normalised so that the base peak is 100.
    SpectrumCounts Write(const SpectrumHeader& header, std::vector<SpectrumPoint> points,
                         double baseIntensity, const std::vector<std::string>& masses,
                         const std::vector<std::string>& results, int massDecimals);

    CReportFile& m_file;
    const CDrugModel& m_drug;
    int m_noisePeaks;
};

} // namespace quillon::generate
