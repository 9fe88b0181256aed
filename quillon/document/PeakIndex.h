#pragma once

#include <cstdint>
#include <unordered_map>
#include <utility>

namespace quillon {

class CChromatoData;
class CChromatogramPeak;
class CFunctionData;
class CSampleData;
class CSpectrumData;

// The sample's functions, chromatograms, peaks and spectra by the numbers a metabolite row
// carries, indexed in one walk so that each row's lookups take constant time. Every lookup finds
// what the sample's own walks find first (functions by index, their chromatograms by index, the
// chromatograms' peaks in order): CSampleData::GetCorispondingPeakInfo, GetFunctionWithNumber,
// GetCorrespondingSpectrum and RetrievePeakClusterNum give the same answers, each in time
// linear in the sample.
//
// The index holds pointers into the sample: it is valid until the sample's functions change, and
// must be built again (or dropped) after that.
class CPeakIndex {
public:
    CPeakIndex() = default;
    explicit CPeakIndex(CSampleData& sample) { Build(sample); }

    // Indexes the sample as it stands now, replacing what was indexed before.
    void Build(CSampleData& sample);
    void Clear();
    bool IsBuilt() const { return m_built; }

    // The first function with that number; null when none.
    CFunctionData* Function(int number) const;
    // The first peak with the identifier in walk order and the chromatogram holding it; nulls
    // when none.
    std::pair<CChromatoData*, CChromatogramPeak*> FirstPeak(int peakID) const;
    // The peak a metabolite row names: within the given trace of the function with that number
    // when both numbers are at least 1 and the function number does not exceed the function count
    // (null when that function does not exist, or its trace lacks the peak); otherwise, or when
    // the function lacks the trace, the first peak with the identifier. Null for an identifier
    // below 1. Example: peak 7 in trace 3 of function 2 -> that trace's first peak 7.
    CChromatogramPeak* Peak(int peakID, int functionNumber, int trace) const;
    // The first acquired (unfiltered) spectrum with that peak identifier; null when none.
    CSpectrumData* Spectrum(int peakID) const;
    // The cluster of the first peak with that identifier; -1 when none or for an identifier
    // below 1.
    int PeakCluster(int peakID) const;

private:
    // A pair of 32-bit numbers as one key.
    static uint64_t Key(int high, int low) {
        return (static_cast<uint64_t>(static_cast<uint32_t>(high)) << 32) |
               static_cast<uint32_t>(low);
    }

    bool m_built = false;
    int m_functionCount = 0;
    std::unordered_map<int, CFunctionData*> m_functions;
    // By (function number, trace number): the first chromatogram with that trace number in the
    // first function with that number, and its place in the walk.
    std::unordered_map<uint64_t, std::pair<CChromatoData*, int>> m_traces;
    // By (chromatogram's place in the walk, peak identifier): the chromatogram's first such peak.
    std::unordered_map<uint64_t, CChromatogramPeak*> m_peaksInTrace;
    std::unordered_map<int, std::pair<CChromatoData*, CChromatogramPeak*>> m_firstPeaks;
    std::unordered_map<int, CSpectrumData*> m_spectra;
};

} // namespace quillon
