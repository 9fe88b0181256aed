#pragma once

// Helpers shared by the stages of the fragment analysis; not part of the public interface.

#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/metabolites/MetaboliteNames.h>
#include <quillon/platform/HostHooks.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <unordered_map>

namespace quillon::fragments {

// A mass rounded to its nominal value by adding 0.5 and truncating; saturates instead of
// overflowing for masses no instrument reports.
inline int NominalMass(double mass) {
    const double rounded = mass + 0.5;
    if (!(rounded < static_cast<double>(INT_MAX)))
        return std::isnan(rounded) ? 0 : INT_MAX;
    if (!(rounded > static_cast<double>(INT_MIN)))
        return INT_MIN;
    return static_cast<int>(rounded);
}

// Steps the host's progress bar along one stage's walk of n metabolites: by 100 / n at every
// metabolite, or, with more than 100 metabolites, by 1 at every (n / 100 + 1)-th, so that each
// stage fills about a third of the range 0 to 300.
class CStageProgress {
public:
    explicit CStageProgress(int count)
        : m_step(count > 0 ? 100 / count : 0), m_every(count / 100 + 1) {}
    void At(int index) const {
        if (m_step > 0)
            StepProgress(m_step);
        else if (index % m_every == 0)
            StepProgress(1);
    }

private:
    int m_step;
    int m_every;
};

// First index of each peak identifier among the first `limit` spectra of a function's list:
// the answer of CFunctionData::GetSpectrumWithPeakID without a walk per question.
class CSpectrumIndex {
public:
    CSpectrumIndex(CFunctionData& function, bool filtered) {
        const int count = function.GetNumSpectra(filtered);
        const int acquired = function.GetNumSpectra(false);
        const int limit = count < acquired ? count : acquired;
        m_first.reserve(static_cast<size_t>(limit > 0 ? limit : 0));
        for (int i = 0; i < limit; ++i)
            m_first.try_emplace(function.GetSpectrum(i, filtered)->GetPeakID(), i);
    }
    int Find(int peakID) const {
        const auto found = m_first.find(peakID);
        return found == m_first.end() ? -1 : found->second;
    }

private:
    std::unordered_map<int, int> m_first;
};

} // namespace quillon::fragments
