// The fast stages of the fragment analysis against a direct transcription of the walks they
// replace (a forward scan for each parent's partner, a search of the parents for each partner,
// and a fragment list kept sorted by walking it from its start at every insertion), on random
// samples full of ties: shared clusters and peak numbers, repeated nominal masses, several
// parents per partner.

#include "support/FragmentReport.h"

#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/fragments/FragmentList.h>
#include <quillon/metabolites/MetaboliteData.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::FragmentReport;
using quillon::testing::LoadedReport;
using quillon::testing::MetaboliteRow;
using quillon::testing::SpectrumPoint;

namespace {

bool NameIs(const CMetaboliteData& m, const char* name) {
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
void InsertByWalk(std::vector<FragmentEntry>& list, const FragmentEntry& e) {
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
Reference Transcribe(CSampleData& sample, const CFragmentAnalysis& fast) {
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

// A random sample: parents and partners over few clusters and peak numbers, partner spectra
// over few nominal masses and cluster ids, some partners without parents, some parents
// sharing a partner, an excluded mass, spectra sharing peak identifiers.
std::string RandomReport(uint32_t seed, int metabolites) {
    std::mt19937 random(seed);
    auto uniform = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    // Parent m/z values shared by many metabolites, and the losses configured below, so that
    // spectra hold fragments at parent minus loss; fragment masses carry defects close to the
    // parents', so that most pass the mass-defect test.
    const double parentMzs[] = {301.1042, 319.1030, 335.0980, 350.1525, 420.2011};
    const double losses[] = {18.0106, 17.0265, 45.0578, 79.9568};
    FragmentReport r;
    r.Compound(318.0957, "C17H19ClN2S", "Chlorpromazine");
    r.Function(1, 6.0);
    r.Spectrum(999, 0, {{300.0, 100.0}});
    r.Function(2, 30.0);
    const int peaks = metabolites / 6 + 1;
    for (int id = 1; id <= peaks; ++id) {
        std::vector<SpectrumPoint> points;
        double mass = 40.0;
        const int count = pick(0, 25);
        for (int k = 0; k < count; ++k) {
            mass = std::floor(mass) + pick(0, 3) * (pick(0, 1) ? 1.0 : 0.0) + pick(1, 20) +
                   uniform(0.02, 0.12);
            const double intensity = uniform(0.2, 100.0);
            points.push_back({mass, intensity});
            if (pick(0, 3) == 0) { // a chlorine-like isotope peak
                points.push_back({mass + 1.9970, intensity * uniform(0.2, 0.5)});
                mass += 2.0;
            }
        }
        for (int k = pick(0, 8); k > 0; --k) {
            const double at = parentMzs[pick(0, 4)] - losses[pick(0, 3)] + uniform(-0.011, 0.011);
            points.push_back({at, uniform(2.0, 100.0)});
        }
        std::sort(points.begin(), points.end(),
                  [](const SpectrumPoint& a, const SpectrumPoint& b) { return a.mass < b.mass; });
        r.Spectrum(id, pick(0, 3), points, false, uniform(1e3, 1e5));
        if (pick(0, 9) == 0)
            r.Spectrum(id, pick(0, 3), {{100.0, 50.0}}); // a second spectrum with that identifier
    }
    for (int i = 0; i < metabolites; ++i) {
        MetaboliteRow m;
        const bool partner = pick(0, 2) == 0;
        m.name = partner ? "MSe fragments" : (pick(0, 15) == 0 ? "Exclude Mass" : "m");
        m.function = partner ? 2 : 1;
        m.peak = pick(1, peaks);
        m.cluster = pick(0, 3);
        m.mzFound = pick(0, 3) == 0 ? uniform(150.0, 450.0) : parentMzs[pick(0, 4)];
        m.molecularMass = m.mzFound - 1.007276;
        m.precursor = m.molecularMass;
        m.shift = pick(0, 4) == 0 ? 0.0 : uniform(-50.0, 50.0);
        m.found = pick(0, 9) != 0;
        r.Unexpected(m);
    }
    return r.Text();
}

const char* kLosses = "Loss 1=18.0106,1,5,3,Water,H2O\n"
                      "Loss 2=17.0265,1,7,3,Ammonia,NH3\n"
                      "Loss 3=45.0578,1,13,5,Dimethylamine,C2H7N\n"
                      "Loss 4=79.9568,1,15,3,Sulfur trioxide,SO3\n";

template <typename T>
std::vector<T> Vector(const CArray<T>& array) {
    return {array.begin(), array.end()};
}

// The fragment lines as the display walk writes them, from a list.
std::vector<std::string> FragmentLines(const std::vector<FragmentEntry>& list) {
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

TEST(FragmentAnalysisReferenceTest, FastStagesGiveTheResultsOfTheDirectWalks) {
    int totalFragments = 0, totalOccurrences = 0;
    for (uint32_t seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        LoadedReport loaded(RandomReport(seed, 40 + 60 * static_cast<int>(seed)), kLosses);
        CSampleData copy = loaded.Sample();
        CFragmentAnalysis* fast = loaded.Sample().GetFragmentAnalysis();
        ASSERT_TRUE(fast->DoFragmentAnalysis(&loaded.Sample()));
        const Reference reference = Transcribe(copy, *fast);

        EXPECT_EQ(Vector(fast->GetParents()), reference.parents);
        EXPECT_EQ(Vector(fast->GetFragmentEntries()), reference.fragments);
        EXPECT_EQ(Vector(fast->GetNeutralLossSpectra()), reference.spectra);
        EXPECT_EQ(Vector(fast->GetNeutralLossOccurrences()), reference.occurrences);
        CStringArray lines;
        fast->GetFragments(lines);
        std::vector<std::string> fastLines;
        for (const CString& line : lines)
            fastLines.emplace_back(line.c_str());
        EXPECT_EQ(fastLines, FragmentLines(reference.fragments));

        totalFragments += static_cast<int>(reference.fragments.size());
        totalOccurrences += static_cast<int>(reference.occurrences.size());
    }
    // The samples exercised what they are meant to.
    EXPECT_GT(totalFragments, 1000);
    EXPECT_GT(totalOccurrences, 20);
}

TEST(FragmentAnalysisReferenceTest, FragmentListPlacesEntriesAsTheWalkDoes) {
    // Entries with and without parents over few masses, clusters and parents, so that
    // duplicates, overwrites of parentless entries and equal keys all occur.
    std::mt19937 random(7);
    auto pick = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    for (int round = 0; round < 20; ++round) {
        std::vector<FragmentEntry> walked;
        CFragmentList fast;
        const int count = pick(1, 400);
        for (int i = 0; i < count; ++i) {
            const FragmentEntry e{
                pick(50, 60), pick(-1, 5) < 0 ? -1 : pick(0, 12), i, pick(0, 2), pick(1, 50),
                pick(0, 5)};
            InsertByWalk(walked, e);
            fast.Add(e);
        }
        CArray<FragmentEntry> list;
        fast.CopyTo(list);
        ASSERT_EQ(Vector(list), walked) << "round " << round;
    }
}

} // namespace
