#pragma once

#include <string>
#include <vector>

namespace quillon::generate {

// What the generator wrote, counted as a reader should find it: the yardstick of the read-back
// tests.
struct ChromatogramSummary {
    int traceNumber = 0;
    int traceInFunction = 0;
    int points = 0; // including the points of its continuation sections
    std::vector<int> peakIds;
};

struct FunctionSummary {
    int number = 0;
    std::string type;
    std::vector<ChromatogramSummary> chromatograms;
    std::vector<int> spectrumPeakIds;
    std::vector<int> spectrumPoints;
    int spectrumMasses = 0;  // MASSES lines over all spectra
    int spectrumResults = 0; // RESULTS lines over all spectra
};

struct SampleSummary {
    int number = 0;
    std::string sampleType; // as written ("QC" or "Analyte")
    double subjectTime = 0.0;
    int headerFields = 0; // distinct header field names written
    std::vector<FunctionSummary> functions;
    std::vector<ChromatogramSummary> analogChannels;
    int compounds = 0;
    double compoundMass = 0.0;
    int positiveAdducts = 0;
    int negativeAdducts = 0;
    int expectedRecords = 0; // records the expected rows stand for (one per peak identifier)
    int unexpectedRecords = 0;
    int highEnergyPartners = 0; // "MSe fragments" records among the expected ones
    int msmsRecords = 0;
    int correlationRows = 0;
    std::vector<int> elementalRows; // per "ELEMENTAL" section
    int mdfMasses = 0;
    int mdfParameters = 0;
    int molfiles = 0;
};

struct BatchSummary {
    std::vector<SampleSummary> samples;
    int neutralLosses = 0;
    int selectedNeutralLosses = 0;
};

} // namespace quillon::generate
