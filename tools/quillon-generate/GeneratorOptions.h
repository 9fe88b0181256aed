#pragma once

#include <cstdint>
#include <string>

namespace quillon::generate {

// What to generate. The defaults give the small example batch.
struct GeneratorOptions {
    std::string reportPath = "report.txt";
    std::string iniPath;  // empty: "Tarnwick.ini" beside the report
    int samples = 6;      // one control and five incubation times per group of six
    int metabolites = 12; // searched (expected) biotransformations besides the parent
    int unexpected = 3;   // unexpected products in the data
    int pointsPerTrace = 600;
    int surveySpectra = 1; // extra survey spectra per mass-spectrometry function
    int noisePeaks = 12;   // random peaks in every mass spectrum
    uint64_t seed = 20260312;
    bool windowsLineEnds = false;
    // Above 0: the report holds one bulk sample of this many metabolites with their high-energy
    // partners and product-ion spectra, and nothing else.
    int bulkMetabolites = 0;
    // The parent's first-order half-life in the incubations, minutes.
    double halfLifeMinutes = 55.0;
    // Scale of the sample-to-sample variation of amounts (the injection spread of +-7% and the
    // spread of +-5% per peak): 1 as usual, 0 for none.
    double variation = 1.0;
};

// Parses the command line into options. Returns false with a message (the usage text, or the
// reason) when the arguments are wrong or help or the version was asked for (the message is
// then the text to print); helpRequested tells the two apart.
bool ParseCommandLine(int argc, const char* const argv[], GeneratorOptions& options,
                      std::string& message, bool& helpRequested);

// The path of the settings file: the option, or "Tarnwick.ini" in the report's folder.
std::string SettingsPath(const GeneratorOptions& options);

} // namespace quillon::generate
