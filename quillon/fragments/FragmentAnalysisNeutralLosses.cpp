// The energy validation, the neutral-loss search and the queries of the fragment analysis.

#include <quillon/companions/TarnwickIniInterface.h>
#include <quillon/fragments/AnalysisSupport.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/platform/Numbers.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <optional>
#include <vector>

namespace quillon {

using namespace fragments;

namespace {

// A function that can take part in the energy pairing.
struct EnergyFunction {
    int index;
    int number;
    double collisionEnergy;
    double coneVoltage;
};

} // namespace

bool CFragmentAnalysis::ValidateFragmentAnalysis(CSampleData* sample) {
    m_LowEnergyThreshold = -1.0;
    if (sample == nullptr)
        return false;
    std::vector<EnergyFunction> taking;
    double minEnergy = 100000.0;
    double maxEnergy = -1.0;
    double minVoltage = 100000.0;
    double maxVoltage = -1.0;
    CString lastIonMode;
    bool mixed = false;
    for (int f = 0; f < sample->GetFunctionCount(); ++f) {
        CFunctionData* function = sample->GetFunction(f);
        CString type;
        function->GetType(type);
        const CSpectrumData* spectrum = function->GetSpectrum();
        if (type.Find("MSMS") >= 0 || spectrum == nullptr || spectrum->GetContinuum() != 0)
            continue;
        const double energy = function->GetCollisionEnergy();
        const double voltage = function->GetConeVoltage();
        if (!(energy > 0.0 || voltage > 0.0))
            continue;
        taking.push_back({f, function->GetNumber(), energy, voltage});
        minEnergy = std::min(minEnergy, energy);
        maxEnergy = std::max(maxEnergy, energy);
        minVoltage = std::min(minVoltage, voltage);
        maxVoltage = std::max(maxVoltage, voltage);

        CString ionMode;
        function->GetIonMode(ionMode);
        if (!lastIonMode.IsEmpty() && ionMode.CompareNoCase(lastIonMode) != 0)
            mixed = true;
        lastIonMode = ionMode;

        if (m_ParentOffset == 0) {
            CString description;
            function->GetDescription(description);
            char first = 0;
            int offset = 0;
            if (std::sscanf(description.c_str(), "%c%d", &first, &offset) == 2 && offset > 0)
                m_ParentOffset = offset;
        }
    }
    if (mixed)
        return m_Enabled;

    m_Enabled = maxEnergy > minEnergy || maxVoltage > minVoltage;
    const bool byEnergy = maxEnergy > minEnergy;
    if (byEnergy || maxVoltage > minVoltage) {
        m_LowEnergyThreshold = byEnergy ? minEnergy : minVoltage;
        for (const EnergyFunction& f : taking) {
            const double level = byEnergy ? f.collisionEnergy : f.coneVoltage;
            (level <= m_LowEnergyThreshold ? m_LoEnergyFunctions : m_HiEnergyFunctions)
                .Add({f.index, f.number});
        }
    }
    const int n = sample->GetMSMetaboliteCount();
    for (int i = 0; i < n; ++i) {
        if (CMetaboliteData* m = sample->GetMetabolite(i))
            m->SetHiEnergy(HiEnergyFunctionNum(m->GetFunctionNum()));
    }
    return m_Enabled;
}

bool CFragmentAnalysis::DetermineNeutralLosses(CSampleData* sample) {
    CCompounds compounds;
    if (CTarnwickIniInterface().GetNeutralLosses(compounds, true)) {
        // The configured losses in reverse order.
        const int count = compounds.GetSize();
        m_NeutralLossEntries.SetSize(count);
        for (int k = 0; k < count; ++k) {
            const CCompoundData compound = compounds.GetAt(k);
            NeutralLossEntry& entry = m_NeutralLossEntries[count - 1 - k];
            CString name;
            CString formula;
            compound.GetName(name);
            compound.GetFormula(formula);
            entry.Mass = compound.GetMass();
            entry.NominalMass = NominalMass(entry.Mass);
            entry.Tag = 0;
            entry.Label.Format("%s  (%s)", name.c_str(), formula.c_str());
            entry.Value = 0.0;
        }
    }
    SearchForNeutralLosses(sample);
    m_HasNeutralLosses = !m_NeutralLossEntries.IsEmpty();
    return true;
}

void CFragmentAnalysis::SearchForNeutralLosses(CSampleData* sample) {
    const int n = sample->GetMSMetaboliteCount();
    if (m_NeutralLossEntries.IsEmpty() || n == 0)
        return;
    std::vector<std::optional<CSpectrumIndex>> filteredIndex(
        static_cast<size_t>(sample->GetFunctionCount()));
    std::vector<double> masses;
    const CStageProgress progress(n);
    for (int i = 0; i < n; ++i) {
        progress.At(i);
        CMetaboliteData* m = sample->GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy() || !m->ApplyDataFilters(sample->GetParams(), true))
            continue;
        int functionIndex = -1;
        int peakNumber = -1;
        if (!GetSpectrumForDaughtersOfMass(i, functionIndex, peakNumber))
            continue;
        if (CancelRequested())
            break;
        if (IsExcludedMass(*m))
            continue;
        const double parentMz = m->GetMzFound();
        CFunctionData* function = sample->GetFunction(functionIndex);
        if (function == nullptr)
            continue;
        std::optional<CSpectrumIndex>& index = filteredIndex[static_cast<size_t>(functionIndex)];
        if (!index)
            index.emplace(*function, true);
        const CSpectrumData* spectrum = function->GetSpectrum(index->Find(peakNumber), true);
        if (spectrum == nullptr)
            continue;
        masses.clear();
        CPeakData peak;
        for (int k = 0; k < spectrum->GetNumPeaks(); ++k) {
            spectrum->GetPeak(k, peak);
            masses.push_back(peak.GetMass());
        }
        const bool ascending = std::is_sorted(masses.begin(), masses.end());

        for (int k = 0; k < m_NeutralLossEntries.GetSize(); ++k) {
            const double expected = parentMz - m_NeutralLossEntries[k].Mass;
            if (!(expected >= 0.0))
                continue;
            const double low = expected - m_MassTolerance;
            const double high = expected + m_MassTolerance;
            bool first = true;
            auto from =
                ascending ? std::lower_bound(masses.begin(), masses.end(), low) : masses.begin();
            for (; from != masses.end() && !(*from > high); ++from) {
                if (*from < low)
                    continue;
                if (first)
                    m_NeutralLossSpectra.Add({k, peakNumber, functionIndex});
                first = false;
                m_NeutralLossOccurrences.Add({k, peakNumber, functionIndex, parentMz, *from});
            }
        }
    }
}

int CFragmentAnalysis::GetParentSpectrumCNLs(CSampleData* sample, int tag,
                                             CArray<NeutralLossEntry>& losses) const {
    losses.RemoveAll();
    const CSpectrumData* spectrum = ParentHighEnergySpectrum(sample);
    if (spectrum == nullptr)
        return 0;
    CArray<double> masses;
    CArray<float> intensities;
    GetFilteredNonIsotopicSpectrumMasses(masses, intensities, spectrum,
                                         std::max(m_ParentIntensityThreshold, m_IntensityThreshold),
                                         100000.0);
    // The first pair's difference for each nominal mass, ascending by nominal mass.
    std::map<int, NeutralLossEntry> byNominal;
    for (int i = 0; i < masses.GetSize(); ++i) {
        for (int j = i + 1; j < masses.GetSize(); ++j) {
            const double difference = masses[j] - masses[i];
            CString text;
            text.Format("%.0f", difference);
            const int nominal = ParseInt(text.c_str());
            if (byNominal.count(nominal) != 0)
                continue;
            NeutralLossEntry entry;
            entry.Mass = difference;
            entry.NominalMass = nominal;
            entry.Tag = tag;
            entry.Label = "Parent spectrum";
            entry.Value = 0.0;
            byNominal.emplace(nominal, entry);
        }
    }
    for (const auto& [nominal, entry] : byNominal)
        losses.Add(entry);
    return losses.GetSize();
}

void CFragmentAnalysis::GetNeutralLosses(CStringArray& lines) const {
    lines.RemoveAll();
    if (!m_HasNeutralLosses || m_NeutralLossEntries.IsEmpty())
        return;
    const size_t count = static_cast<size_t>(m_NeutralLossEntries.GetSize());
    std::vector<int> spectra(count, 0);
    std::vector<int> occurrences(count, 0);
    for (const NeutralLossSpectrum& s : m_NeutralLossSpectra) {
        if (s.EntryIndex >= 0 && static_cast<size_t>(s.EntryIndex) < count)
            ++spectra[static_cast<size_t>(s.EntryIndex)];
    }
    for (const NeutralLossOccurrence& o : m_NeutralLossOccurrences) {
        if (o.EntryIndex >= 0 && static_cast<size_t>(o.EntryIndex) < count)
            ++occurrences[static_cast<size_t>(o.EntryIndex)];
    }
    for (size_t k = 0; k < count; ++k) {
        const NeutralLossEntry& entry = m_NeutralLossEntries[static_cast<int>(k)];
        const int s = spectra[k];
        const int o = occurrences[k];
        CString line;
        if (o > 0)
            line.Format("Loss of %3d [%s] (%d %s in %d %s)", entry.NominalMass, entry.Label.c_str(),
                        o, o == 1 ? "occurrence" : "occurrences", s,
                        s == 1 ? "spectrum" : "spectra");
        else
            line.Format("Loss of %3d [%s] not confirmed in high energy data", entry.NominalMass,
                        entry.Label.c_str());
        lines.Add(line);
    }
}

bool CFragmentAnalysis::GetNeutralLoss(int entryIndex, CString& label) const {
    label.Empty();
    if (entryIndex < 0 || entryIndex >= m_NeutralLossEntries.GetSize())
        return false;
    label = m_NeutralLossEntries[entryIndex].Label;
    return true;
}

int CFragmentAnalysis::GetNeutralLossEntry(int nominalMass) const {
    for (int k = 0; k < m_NeutralLossEntries.GetSize(); ++k) {
        if (m_NeutralLossEntries[k].NominalMass == nominalMass)
            return k;
    }
    return -1;
}

int CFragmentAnalysis::GetNeutralLossFromEntry(int entryIndex) const {
    if (entryIndex < 0 || entryIndex >= m_NeutralLossEntries.GetSize())
        return -1;
    return m_NeutralLossEntries[entryIndex].NominalMass;
}

bool CFragmentAnalysis::GetPeaksForNeutralLoss(int entryIndex, int& tag,
                                               CUIntArray& functionIndices,
                                               CUIntArray& peakNumbers) const {
    functionIndices.RemoveAll();
    peakNumbers.RemoveAll();
    tag = -1;
    if (entryIndex < 0 || entryIndex >= m_NeutralLossEntries.GetSize())
        return false;
    tag = m_NeutralLossEntries[entryIndex].Tag;
    for (const NeutralLossSpectrum& s : m_NeutralLossSpectra) {
        if (s.EntryIndex == entryIndex) {
            functionIndices.Add(static_cast<UINT>(s.FunctionIndex));
            peakNumbers.Add(static_cast<UINT>(s.PeakNumber));
        }
    }
    return !functionIndices.IsEmpty();
}

bool CFragmentAnalysis::GetMassesForNeutralLoss(int entryIndex, int& tag,
                                                CUIntArray& functionIndices,
                                                CUIntArray& peakNumbers,
                                                CStringArray& texts) const {
    functionIndices.RemoveAll();
    peakNumbers.RemoveAll();
    texts.RemoveAll();
    tag = -1;
    if (entryIndex < 0 || entryIndex >= m_NeutralLossEntries.GetSize())
        return false;
    tag = m_NeutralLossEntries[entryIndex].Tag;
    for (const NeutralLossOccurrence& o : m_NeutralLossOccurrences) {
        if (o.EntryIndex == entryIndex) {
            functionIndices.Add(static_cast<UINT>(o.FunctionIndex));
            peakNumbers.Add(static_cast<UINT>(o.PeakNumber));
            CString text;
            text.Format("%8.4f -> %8.4f", o.ParentMz, o.FragmentMz);
            texts.Add(text);
        }
    }
    return !functionIndices.IsEmpty();
}

bool CFragmentAnalysis::GetMassesForNeutralLossInSpectrum(int entryIndex, int peakNumber,
                                                          CArray<double>& parentMzs,
                                                          CArray<double>& fragmentMzs) const {
    parentMzs.RemoveAll();
    fragmentMzs.RemoveAll();
    if (entryIndex < 0 || entryIndex >= m_NeutralLossEntries.GetSize())
        return false;
    for (const NeutralLossOccurrence& o : m_NeutralLossOccurrences) {
        if (o.EntryIndex == entryIndex && o.PeakNumber == peakNumber) {
            parentMzs.Add(o.ParentMz);
            fragmentMzs.Add(o.FragmentMz);
        }
    }
    return !parentMzs.IsEmpty();
}

bool CFragmentAnalysis::GetSpectrumForDaughtersOfMass(int parentMetaboliteIndex, int& functionIndex,
                                                      int& peakNumber) const {
    functionIndex = -1;
    peakNumber = -1;
    const int entry = FindParentEntry(parentMetaboliteIndex);
    if (entry >= 0) {
        functionIndex = m_Parents[entry].PartnerFunctionIndex;
        peakNumber = m_Parents[entry].PartnerPeakNumber;
    }
    return functionIndex >= 0;
}

bool CFragmentAnalysis::GetMetabolitesContainingFragment(int nominalMass, CUIntArray& parentIndices,
                                                         CUIntArray& functionIndices,
                                                         CUIntArray& peakIds,
                                                         bool includeWithoutParent,
                                                         bool onePerCluster) const {
    parentIndices.RemoveAll();
    functionIndices.RemoveAll();
    peakIds.RemoveAll();
    int lastCluster = 0;
    for (const FragmentEntry& entry : m_Fragments) {
        if (entry.NominalMass != nominalMass)
            continue;
        if (onePerCluster && entry.ClusterID == lastCluster)
            continue;
        lastCluster = entry.ClusterID;
        functionIndices.Add(static_cast<UINT>(entry.FunctionIndex));
        peakIds.Add(static_cast<UINT>(entry.SpectrumPeakID));
        if (entry.ParentIndex >= 0 || includeWithoutParent)
            parentIndices.Add(static_cast<UINT>(entry.ParentIndex));
    }
    return !functionIndices.IsEmpty();
}

} // namespace quillon
