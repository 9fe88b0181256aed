#pragma once

// A direct transcription of the walks that the fragment analysis's fast stages replace (a forward
// scan for each parent's partner, a search of the parents for each partner, and a fragment list
// kept sorted by walking it from its start at every insertion): the analysis target requires the
// fast stages to give exactly its results.

#include <quillon/quillon.h>

#include <string>
#include <vector>

namespace quillon::fuzz {

inline bool NameIs(const CMetaboliteData& m, const char* name) {
    CString text;
    m.GetMetName(text);
    return text == name;
}

// What the transcription builds.
struct Reference {
    std::vector<ParentEntry> parents;
    std::vector<FragmentEntry> fragments;
    std::vector<NeutralLossSpectrum> spectra;
    std::vector<NeutralLossOccurrence> occurrences;
};

// Keeps the fragment list sorted by walking it from the start at every insertion.
inline void InsertByWalk(std::vector<FragmentEntry>& list, const FragmentEntry& e) {
    for (size_t at = 0; at < list.size(); ++at) {
        const FragmentEntry& f = list[at];
        const bool sameMass = f.NominalMass == e.NominalMass;
        const bool after = (sameMass && f.ClusterID > e.ClusterID) || f.NominalMass > e.NominalMass;
        if (e.ParentIndex >= 0) {
            if (sameMass && f.ParentIndex == e.ParentIndex)
                return; // duplicate
            if (sameMass && f.ClusterID == e.ClusterID && f.ParentIndex < 0) {
                list[at] = e;
                return;
            }
        } else if (sameMass && f.ClusterID == e.ClusterID) {
            return;
        }
        if (after) {
            list.insert(list.begin() + static_cast<std::ptrdiff_t>(at), e);
            return;
        }
    }
    list.push_back(e);
}

// The stages as first written, on their own copy of the sample; `fast` supplies the spectrum
// filter, the function pairing and the neutral-loss entries, which are not what is compared.
inline Reference Transcribe(CSampleData& sample, const CFragmentAnalysis& fast) {
    Reference out;
    const int n = sample.GetMSMetaboliteCount();
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        sample.GetFunction(f)->ClearFilteredSpectra();

    for (int i = 0; i < n; ++i) {
        CMetaboliteData* m = sample.GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy() || !m->GetOnDisplay() || !m->GetFound())
            continue;
        if (m->NotYetDisplayed() && !m->ApplyDataFilters(sample.GetParams(), false))
            continue;
        if (NameIs(*m, "Exclude Mass") || m->GetPeakClusterNum() <= 0)
            continue;
        if (sample.GetFunction(fast.GetFunctionIndex(m->GetFunctionNum())) == nullptr)
            continue;
        for (int j = i + 1; j < n; ++j) {
            CMetaboliteData* p = sample.GetMetabolite(j);
            if (p != nullptr && p->IsHiEnergy() &&
                p->GetPeakClusterNum() == m->GetPeakClusterNum() &&
                p->GetPeakNum() == m->GetPeakNum() && NameIs(*p, "MSe fragments")) {
                out.parents.push_back({m->GetMzFound(), m->GetPeakTime(), i, j,
                                       fast.GetFunctionIndex(p->GetFunctionNum()), p->GetPeakNum(),
                                       p->GetPeakClusterNum()});
                break;
            }
        }
    }

    for (int i = 0; i < n; ++i) {
        CMetaboliteData* m = sample.GetMetabolite(i);
        if (m == nullptr || !m->IsHiEnergy() || m->GetPeakClusterNum() < 1 ||
            !NameIs(*m, "MSe fragments"))
            continue;
        CFunctionData* function = sample.GetFunctionWithNumber(m->GetFunctionNum());
        if (function == nullptr)
            continue;
        int parentIndex = -1;
        double parentMz = 0.0;
        for (const ParentEntry& e : out.parents) {
            if (e.PartnerIndex == i) {
                parentIndex = e.ParentIndex;
                parentMz = e.ParentMz;
                break;
            }
        }
        const CSpectrumData* spectrum =
            function->GetSpectrum(function->GetSpectrumWithPeakID(m->GetPeakNum(), false), false);
        if (spectrum == nullptr)
            continue;
        CSpectrumData copy(*spectrum);
        fast.GetFilteredNonIsotopicSpectrum(copy, fast.GetIntensityThreshold(), parentMz);
        function->AddSpectrum(copy, true);
        CPeakData point;
        for (int k = 0; k < copy.GetNumPeaks(); ++k) {
            copy.GetPeak(k, point);
            const FragmentEntry e{static_cast<int>(point.GetMass() + 0.5),
                                  parentIndex,
                                  i,
                                  sample.GetFunctionEntryWithNumber(m->GetFunctionNum()),
                                  copy.GetPeakID(),
                                  copy.GetPeakClusterID()};
            InsertByWalk(out.fragments, e);
        }
    }

    const CArray<NeutralLossEntry>& entries = fast.GetNeutralLossEntries();
    for (int i = 0; i < n; ++i) {
        CMetaboliteData* m = sample.GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy() || !m->ApplyDataFilters(sample.GetParams(), true))
            continue;
        const ParentEntry* parent = nullptr;
        for (const ParentEntry& e : out.parents) {
            if (e.ParentIndex == i) {
                parent = &e;
                break;
            }
        }
        if (parent == nullptr || parent->PartnerFunctionIndex < 0 || NameIs(*m, "Exclude Mass"))
            continue;
        CFunctionData* function = sample.GetFunction(parent->PartnerFunctionIndex);
        const CSpectrumData* spectrum =
            function == nullptr
                ? nullptr
                : function->GetSpectrum(
                      function->GetSpectrumWithPeakID(parent->PartnerPeakNumber, true), true);
        if (spectrum == nullptr)
            continue;
        for (int k = 0; k < entries.GetSize(); ++k) {
            const double expected = m->GetMzFound() - entries[k].Mass;
            if (!(expected >= 0.0))
                continue;
            bool first = true;
            CPeakData point;
            for (int p = 0; p < spectrum->GetNumPeaks(); ++p) {
                spectrum->GetPeak(p, point);
                if (point.GetMass() < expected - fast.GetMassTolerance())
                    continue;
                if (point.GetMass() > expected + fast.GetMassTolerance())
                    break;
                if (first)
                    out.spectra.push_back(
                        {k, parent->PartnerPeakNumber, parent->PartnerFunctionIndex});
                first = false;
                out.occurrences.push_back({k, parent->PartnerPeakNumber,
                                           parent->PartnerFunctionIndex, m->GetMzFound(),
                                           point.GetMass()});
            }
        }
    }
    return out;
}

// The fragment lines as the display walk writes them, from a list.
inline std::vector<std::string> FragmentLines(const std::vector<FragmentEntry>& list) {
    std::vector<std::string> lines;
    if (list.empty())
        return lines;
    auto line = [&](int mass, int count) {
        lines.push_back(std::to_string(mass) + "  (" + std::to_string(count) +
                        (count == 1 ? " spectrum)" : " spectra)"));
    };
    int mass = list[0].NominalMass, count = 0, last = 0;
    for (const FragmentEntry& e : list) {
        if (e.NominalMass != mass) {
            line(mass, count);
            mass = e.NominalMass;
            count = 1;
            last = 0;
        } else if (e.ClusterID != last) {
            ++count;
            last = e.ClusterID;
        }
    }
    line(mass, count);
    return lines;
}

} // namespace quillon::fuzz
