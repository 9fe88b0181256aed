// The metabolic stability analysis across the samples of a collection.
#include <quillon/document/Samples.h>
#include <quillon/metabolites/MetaboliteNames.h>

#include <quillon/stability/MetabolicStabilityInfo.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon {

namespace {

// A found, low-energy metabolite with a peak area: the ones whose amounts the analysis follows.
bool Counts(const CMetaboliteData& metabolite) {
    return metabolite.GetFound() && !metabolite.IsHiEnergy() && !metabolite.IsMSMSCorrelation() &&
           metabolite.GetPeakArea() > 0.0;
}

// An area as an amount: its ratio to the internal standard's area when the sample has one.
double AmountOf(const CSampleData& sample, double area) {
    const bool standard =
        sample.GetInternalStandardEntry() >= 0 && sample.GetInternalStandardArea() > 0.0;
    return standard ? area / sample.GetInternalStandardArea() : area;
}

CString ShiftLabel(double shift) {
    CString label;
    if (std::fabs(shift) > 0.5)
        label.Format("%+.0f", shift);
    return label;
}

} // namespace

bool CSamples::CreateMetabolicStabilityAnalysis(CArray<CMetabolicStabilityInfo>& series) {
    return CreateMetabolicStabilityAnalysis(series, MetabolicStabilityParameters());
}

bool CSamples::CreateMetabolicStabilityAnalysis(CArray<CMetabolicStabilityInfo>& series,
                                                const MetabolicStabilityParameters& parameters) {
    series.RemoveAll();
    // Series by parent and processing parameters, in order of first appearance.
    std::vector<std::vector<int>> members;
    for (int i = 0; i < GetSamplesCount(); ++i) {
        const CSampleData& sample = m_Samples[i];
        if (sample.IsControl())
            continue;
        int found = -1;
        for (int s = 0; s < series.GetSize(); ++s) {
            if (series[s].parent == sample.GetSubjectParent() &&
                series[s].processParameters == sample.GetProcessParameters()) {
                found = s;
                break;
            }
        }
        if (found < 0) {
            CMetabolicStabilityInfo info;
            info.parent = sample.GetSubjectParent();
            info.processParameters = sample.GetProcessParameters();
            info.parameters = parameters;
            found = series.Add(std::move(info));
            members.emplace_back();
        }
        members[static_cast<size_t>(found)].push_back(i);
    }

    for (int s = 0; s < series.GetSize(); ++s) {
        CMetabolicStabilityInfo& info = series[s];
        std::vector<int>& indices = members[static_cast<size_t>(s)];
        std::stable_sort(indices.begin(), indices.end(), [this](int a, int b) {
            return m_Samples[a].GetSubjectTime() < m_Samples[b].GetSubjectTime();
        });
        std::vector<std::vector<double>> formationAmounts;
        for (size_t p = 0; p < indices.size(); ++p) {
            CSampleData& sample = m_Samples[indices[p]];
            CMetabolicStabilityInfo::Point point;
            point.sampleIndex = indices[p];
            point.sampleNumber = sample.GetNumber();
            const double time = sample.GetSubjectTime();
            point.time = std::isfinite(time) ? time : 0.0;
            for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
                const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
                if (!Counts(metabolite))
                    continue;
                if (IsParent(metabolite)) {
                    if (!point.hasAmount) {
                        point.hasAmount = true;
                        point.amount = AmountOf(sample, metabolite.GetPeakArea());
                    }
                    continue;
                }
                if (!metabolite.IsExpected() || IsExcludedMass(metabolite) ||
                    IsMSeFragments(metabolite))
                    continue;
                const CString name = metabolite.GetMetName();
                const CString label = ShiftLabel(metabolite.GetMetabolite());
                size_t f = 0;
                while (f < info.formation.size() &&
                       (info.formation[f].label != label || info.formation[f].name != name))
                    ++f;
                if (f == info.formation.size()) {
                    info.formation.push_back({name, label, {}, 0.0, 0.0});
                    formationAmounts.emplace_back(indices.size(), 0.0);
                }
                formationAmounts[f][p] += AmountOf(sample, metabolite.GetPeakArea());
            }
            info.points.push_back(point);
        }
        info.Evaluate(formationAmounts);
    }
    return series.GetSize() > 0;
}

} // namespace quillon
