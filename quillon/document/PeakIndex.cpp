#include <quillon/document/PeakIndex.h>

#include <quillon/document/SampleData.h>

namespace quillon {

void CPeakIndex::Build(CSampleData& sample) {
    Clear();
    m_functionCount = sample.GetFunctionCount();
    int walkPlace = 0;
    for (int f = 0; f < m_functionCount; ++f) {
        CFunctionData* function = sample.GetFunction(f);
        // Only the first function of a number is found by number; the later ones still hold
        // peaks and spectra of the walk.
        const bool firstOfNumber = m_functions.try_emplace(function->GetNumber(), function).second;
        for (int c = 0; c < function->GetNumChromatogram(); ++c, ++walkPlace) {
            CChromatoData* chromatogram = function->GetChromatogram(c);
            if (firstOfNumber)
                m_traces.try_emplace(Key(function->GetNumber(), chromatogram->GetTraceNumber()),
                                     chromatogram, walkPlace);
            for (int p = 0; p < chromatogram->GetNumberOfListPeaks(); ++p) {
                CChromatogramPeak* peak = chromatogram->GetChromatPeakData(p);
                m_firstPeaks.try_emplace(peak->GetPeakID(), chromatogram, peak);
                if (firstOfNumber)
                    m_peaksInTrace.try_emplace(Key(walkPlace, peak->GetPeakID()), peak);
            }
        }
        for (int s = 0; s < function->GetNumSpectra(false); ++s) {
            CSpectrumData* spectrum = function->GetSpectrum(s, false);
            m_spectra.try_emplace(spectrum->GetPeakID(), spectrum);
        }
    }
    m_built = true;
}

void CPeakIndex::Clear() {
    m_built = false;
    m_functionCount = 0;
    m_functions.clear();
    m_traces.clear();
    m_peaksInTrace.clear();
    m_firstPeaks.clear();
    m_spectra.clear();
}

CFunctionData* CPeakIndex::Function(int number) const {
    const auto found = m_functions.find(number);
    return found != m_functions.end() ? found->second : nullptr;
}

std::pair<CChromatoData*, CChromatogramPeak*> CPeakIndex::FirstPeak(int peakID) const {
    const auto found = m_firstPeaks.find(peakID);
    return found != m_firstPeaks.end() ? found->second
                                       : std::pair<CChromatoData*, CChromatogramPeak*>{};
}

CChromatogramPeak* CPeakIndex::Peak(int peakID, int functionNumber, int trace) const {
    if (peakID < 1)
        return nullptr;
    if (functionNumber >= 1 && trace >= 1 && functionNumber <= m_functionCount) {
        if (Function(functionNumber) == nullptr)
            return nullptr;
        const auto chromatogram = m_traces.find(Key(functionNumber, trace));
        if (chromatogram != m_traces.end()) {
            const auto peak = m_peaksInTrace.find(Key(chromatogram->second.second, peakID));
            return peak != m_peaksInTrace.end() ? peak->second : nullptr;
        }
    }
    return FirstPeak(peakID).second;
}

CSpectrumData* CPeakIndex::Spectrum(int peakID) const {
    const auto found = m_spectra.find(peakID);
    return found != m_spectra.end() ? found->second : nullptr;
}

int CPeakIndex::PeakCluster(int peakID) const {
    const CChromatogramPeak* peak = peakID >= 1 ? FirstPeak(peakID).second : nullptr;
    return peak != nullptr ? peak->GetPeakClusterID() : -1;
}

} // namespace quillon
