// The parents list, the filtered spectra and the fragment list of the fragment analysis.

#include <quillon/chemistry/IsotopePatterns.h>
#include <quillon/fragments/AnalysisSupport.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/fragments/FragmentList.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <optional>
#include <tuple>
#include <vector>

namespace quillon {

using namespace fragments;

namespace {

// Indices of the peaks that pass the intensity, mass range and loss tests, in spectrum order.
template <typename ValidLoss>
std::vector<int> PassingPeaks(const CSpectrumData& spectrum, double minIntensity, double maxMass,
                              double parentMz, ValidLoss validLoss) {
    std::vector<int> kept;
    CPeakData peak;
    for (int k = 0; k < spectrum.GetNumPeaks(); ++k) {
        spectrum.GetPeak(k, peak);
        const double mass = peak.GetMass();
        if (peak.GetIntensity() >= minIntensity && mass > 0.0 && mass <= maxMass &&
            validLoss(parentMz - mass))
            kept.push_back(k);
    }
    return kept;
}

} // namespace

void CFragmentAnalysis::FindParentMz(CSampleData* sample) {
    const int n = sample->GetMSMetaboliteCount();
    if (n == 0)
        return;
    double difference = 0.0;
    double bestShift = 1.0;
    double bestMz = 0.0;
    for (int i = 0; i < n; ++i) {
        const CMetaboliteData* m = sample->GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy())
            continue;
        if (std::fabs(m->GetMzFound() - m->GetMolecularMass()) > 0.0001)
            difference = m->GetMzFound() - m->GetMolecularMass();
        const double shift = std::fabs(m->GetMetabolite());
        if (shift <= 0.1) {
            m_ParentMz = m->GetPrecursor();
            if (m->GetFound() && shift < bestShift) {
                bestShift = shift;
                bestMz = m->GetMzFound();
            }
        }
    }
    m_ParentMz = bestMz > 0.0 ? bestMz : m_ParentMz + difference;
}

void CFragmentAnalysis::IndexPartners() {
    m_PartnerOrder.resize(static_cast<size_t>(m_Parents.GetSize()));
    for (size_t e = 0; e < m_PartnerOrder.size(); ++e)
        m_PartnerOrder[e] = static_cast<int>(e);
    std::stable_sort(m_PartnerOrder.begin(), m_PartnerOrder.end(), [&](int a, int b) {
        return m_Parents[a].PartnerIndex < m_Parents[b].PartnerIndex;
    });
}

int CFragmentAnalysis::FindParentEntry(int parentIndex) const {
    // The parents list is appended in ascending parent index.
    const auto found = std::lower_bound(
        m_Parents.begin(), m_Parents.end(), parentIndex,
        [](const ParentEntry& entry, int index) { return entry.ParentIndex < index; });
    if (found == m_Parents.end() || found->ParentIndex != parentIndex)
        return -1;
    return static_cast<int>(found - m_Parents.begin());
}

int CFragmentAnalysis::FindPartnerEntry(int partnerIndex) const {
    const auto found = std::lower_bound(
        m_PartnerOrder.begin(), m_PartnerOrder.end(), partnerIndex,
        [&](int entry, int index) { return m_Parents[entry].PartnerIndex < index; });
    if (found == m_PartnerOrder.end() || m_Parents[*found].PartnerIndex != partnerIndex)
        return -1;
    return *found;
}

bool CFragmentAnalysis::CreateParentsList(CSampleData* sample) {
    const int n = sample->GetMSMetaboliteCount();
    if (n == 0)
        return true;
    m_LastExpectedIndex = sample->GetExpectedMetaboliteCount() - 1;

    // The possible partners by (cluster, peak number), each list in ascending index, so that the
    // first partner after a parent is one binary search away.
    std::vector<std::tuple<int, int, int>> partners;
    for (int j = 0; j < n; ++j) {
        const CMetaboliteData* m = sample->GetMetabolite(j);
        if (m != nullptr && m->IsHiEnergy() && IsMSeFragments(*m))
            partners.emplace_back(m->GetPeakClusterNum(), m->GetPeakNum(), j);
    }
    std::sort(partners.begin(), partners.end());

    const CStageProgress progress(n);
    bool cancelled = false;
    for (int i = 0; i < n && !cancelled; ++i) {
        progress.At(i);
        CMetaboliteData* m = sample->GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy() || !m->GetOnDisplay() || !m->GetFound())
            continue;
        if (m->NotYetDisplayed() && !m->ApplyDataFilters(sample->GetParams(), false))
            continue;
        if (IsExcludedMass(*m) || m->GetPeakClusterNum() <= 0)
            continue;
        if (CancelRequested()) {
            cancelled = true;
            break;
        }
        if (sample->GetFunction(GetFunctionIndex(m->GetFunctionNum())) == nullptr)
            continue;
        const auto first =
            std::upper_bound(partners.begin(), partners.end(),
                             std::make_tuple(m->GetPeakClusterNum(), m->GetPeakNum(), i));
        if (first == partners.end() || std::get<0>(*first) != m->GetPeakClusterNum() ||
            std::get<1>(*first) != m->GetPeakNum())
            continue;
        const CMetaboliteData* partner = sample->GetMetabolite(std::get<2>(*first));
        ParentEntry entry;
        entry.ParentMz = m->GetMzFound();
        entry.ParentPeakTime = m->GetPeakTime();
        entry.ParentIndex = i;
        entry.PartnerIndex = std::get<2>(*first);
        entry.PartnerFunctionIndex = GetFunctionIndex(partner->GetFunctionNum());
        entry.PartnerPeakNumber = partner->GetPeakNum();
        entry.PartnerPeakCluster = partner->GetPeakClusterNum();
        m_Parents.Add(entry);
    }
    IndexPartners();
    if (cancelled)
        return false;
    m_HasParents = !m_Parents.IsEmpty();
    return true;
}

bool CFragmentAnalysis::CreateFragmentMassList(CSampleData* sample) {
    const int n = sample->GetMSMetaboliteCount();
    if (n == 0)
        return true;
    std::vector<std::optional<CSpectrumIndex>> spectrumIndex(
        static_cast<size_t>(sample->GetFunctionCount()));
    CFragmentList list;
    const CStageProgress progress(n);
    bool cancelled = false;
    for (int i = 0; i < n; ++i) {
        progress.At(i);
        const CMetaboliteData* m = sample->GetMetabolite(i);
        if (m == nullptr || !m->IsHiEnergy() || m->GetPeakClusterNum() < 1 || !IsMSeFragments(*m))
            continue;
        const int functionIndex = sample->GetFunctionEntryWithNumber(m->GetFunctionNum());
        CFunctionData* function = sample->GetFunction(functionIndex);
        if (function == nullptr)
            continue;
        if (CancelRequested()) {
            cancelled = true;
            break;
        }
        const int parentEntry = FindPartnerEntry(i);
        const int parentIndex = parentEntry < 0 ? -1 : m_Parents[parentEntry].ParentIndex;
        const double parentMz = parentEntry < 0 ? 0.0 : m_Parents[parentEntry].ParentMz;

        std::optional<CSpectrumIndex>& index = spectrumIndex[static_cast<size_t>(functionIndex)];
        if (!index)
            index.emplace(*function, false);
        const CSpectrumData* spectrum = function->GetSpectrum(index->Find(m->GetPeakNum()), false);
        if (spectrum == nullptr)
            continue;
        std::optional<CSpectrumData> filtered;
        try {
            filtered.emplace(*spectrum);
        } catch (const std::bad_alloc&) {
            continue; // no memory for this spectrum's peaks: it is left out
        }
        GetFilteredNonIsotopicSpectrum(*filtered, m_IntensityThreshold, parentMz);
        function->AddSpectrum(*filtered, true);

        FragmentEntry entry;
        entry.ParentIndex = parentIndex;
        entry.PartnerIndex = i;
        entry.FunctionIndex = functionIndex;
        entry.SpectrumPeakID = filtered->GetPeakID();
        entry.ClusterID = filtered->GetPeakClusterID();
        CPeakData peak;
        for (int k = 0; k < filtered->GetNumPeaks(); ++k) {
            filtered->GetPeak(k, peak);
            entry.NominalMass = NominalMass(peak.GetMass());
            list.Add(entry);
        }
    }
    list.CopyTo(m_Fragments);
    if (cancelled)
        return false;
    m_HasFragments = !m_Fragments.IsEmpty();
    return true;
}

void CFragmentAnalysis::RemoveIsotopePeaks(CArray<double>& masses,
                                           CArray<float>& intensities) const {
    const bool ascending = std::is_sorted(masses.begin(), masses.end());
    std::vector<double> groupMasses;
    std::vector<float> groupIntensities;
    for (int k = masses.GetSize() - 1; k >= 0; --k) {
        const double mass = masses[k];
        // The walk from the start of the list; an ascending list lets it begin at the window.
        int j = ascending
                    ? static_cast<int>(std::lower_bound(masses.begin(), masses.end(), mass - 2.5) -
                                       masses.begin())
                    : 0;
        groupMasses.clear();
        groupIntensities.clear();
        for (; j < masses.GetSize() && !(masses[j] > mass + 2.5); ++j) {
            if (masses[j] >= mass - 2.5) {
                groupMasses.push_back(masses[j]);
                groupIntensities.push_back(intensities[j]);
            }
        }
        if (groupMasses.size() < 2)
            continue;
        const std::vector<size_t> leading =
            InferIsotopePatterns(groupMasses, groupIntensities, *m_IsotopeModel);
        const bool leads = std::any_of(leading.begin(), leading.end(), [&](size_t g) {
            return std::fabs(groupMasses[g] - mass) <= 0.01;
        });
        if (!leads) {
            masses.RemoveAt(k);
            intensities.RemoveAt(k);
        }
    }
}

void CFragmentAnalysis::GetFilteredNonIsotopicSpectrumMasses(CArray<double>& masses,
                                                             CArray<float>& intensities,
                                                             const CSpectrumData* spectrum,
                                                             double minIntensity,
                                                             double maxMass) const {
    masses.RemoveAll();
    intensities.RemoveAll();
    if (spectrum == nullptr)
        return;
    const std::vector<int> kept =
        PassingPeaks(*spectrum, minIntensity, maxMass, m_ParentMz,
                     [this](double loss) { return IsValidNeutralLoss(loss); });
    CPeakData peak;
    for (int k : kept) {
        spectrum->GetPeak(k, peak);
        masses.Add(peak.GetMass());
        intensities.Add(static_cast<float>(peak.GetIntensity()));
    }
    if (m_IsotopeModelValid && m_IsotopeModel && masses.GetSize() >= 2)
        RemoveIsotopePeaks(masses, intensities);
}

void CFragmentAnalysis::GetFilteredNonIsotopicSpectrum(CSpectrumData& spectrum, double minIntensity,
                                                       double maxMass) const {
    CArray<double> masses;
    CArray<float> intensities;
    GetFilteredNonIsotopicSpectrumMasses(masses, intensities, &spectrum, minIntensity, maxMass);
    const double oldBPI = spectrum.GetBPI();
    spectrum.SetNumPeaks(0);
    float largest = 0.0f;
    double largestMass = 0.0;
    for (int k = 0; k < masses.GetSize(); ++k) {
        spectrum.AddPeak(CPeakData(masses[k], intensities[k]));
        if (k == 0 || intensities[k] > largest) {
            largest = intensities[k];
            largestMass = masses[k];
        }
    }
    spectrum.SetBPM(static_cast<float>(largestMass));
    spectrum.SetBPI(largest * oldBPI * 0.01);
}

int CFragmentAnalysis::GetSpectrumMassFragments(CSampleData* sample, int functionIndex, int peakId,
                                                double maxMass, CArray<double>& masses,
                                                CArray<float>& intensities) const {
    masses.RemoveAll();
    intensities.RemoveAll();
    CFunctionData* function = sample == nullptr ? nullptr : sample->GetFunction(functionIndex);
    if (function == nullptr)
        return 0;
    const CSpectrumData* spectrum =
        function->GetSpectrum(function->GetSpectrumWithPeakID(peakId, false), false);
    if (spectrum == nullptr)
        return 0;
    GetFilteredNonIsotopicSpectrumMasses(masses, intensities, spectrum, m_IntensityThreshold,
                                         maxMass);
    return masses.GetSize();
}

bool CFragmentAnalysis::GetParentHighEnergySpectrum(CSampleData* sample, int& functionIndex,
                                                    int& peakNum) const {
    functionIndex = -1;
    peakNum = -1;
    if (sample == nullptr)
        return false;
    const CMetaboliteData* best = nullptr;
    double bestMz = 0.0;
    const int n = sample->GetMSMetaboliteCount();
    for (int i = 0; i < n; ++i) {
        const CMetaboliteData* m = sample->GetMetabolite(i);
        if (m == nullptr || !m->IsHiEnergy() || IsExcludedMass(*m) || m->GetPeakClusterNum() <= 0 ||
            std::fabs(m->GetMetabolite()) > 0.1)
            continue;
        if (m->GetMzFound() > bestMz) {
            bestMz = m->GetMzFound();
            best = m;
        }
    }
    if (best == nullptr)
        return false;
    functionIndex = GetFunctionIndex(best->GetFunctionNum());
    if (sample->GetFunction(functionIndex) == nullptr)
        return false;
    peakNum = best->GetPeakNum();
    return true;
}

const CSpectrumData* CFragmentAnalysis::ParentHighEnergySpectrum(CSampleData* sample) const {
    int functionIndex = -1;
    int peakNum = -1;
    if (!GetParentHighEnergySpectrum(sample, functionIndex, peakNum))
        return nullptr;
    CFunctionData* function = sample->GetFunction(functionIndex);
    return function->GetSpectrum(function->GetSpectrumWithPeakID(peakNum, false), false);
}

int CFragmentAnalysis::GetParentSpectrumMasses(CSampleData* sample, CArray<double>& masses) const {
    masses.RemoveAll();
    const CSpectrumData* spectrum = ParentHighEnergySpectrum(sample);
    if (spectrum == nullptr)
        return 0;
    const std::vector<int> kept =
        PassingPeaks(*spectrum, m_IntensityThreshold, HUGE_VAL, m_ParentMz,
                     [this](double loss) { return IsValidNeutralLoss(loss); });
    CPeakData peak;
    for (int k : kept) {
        spectrum->GetPeak(k, peak);
        masses.Add(peak.GetMass());
    }
    return masses.GetSize();
}

} // namespace quillon
