// Area totals of a sample's metabolites and the two area percentages of each metabolite peak.

#include <quillon/document/SampleData.h>

#include <quillon/document/PeakIndex.h>

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/metabolites/MetaboliteData.h>

#include <utility>

namespace quillon {

namespace {

// A metabolite that takes part in the area percentages, with its trace and peak.
struct AreaMember {
    CMetaboliteData* metabolite;
    CChromatoData* trace;
    CChromatogramPeak* peak;
    int group; // 0 expected, 1 unexpected
    int kind;  // 0 mass spectrometry (any kind but the two below), 1 diode array, 2 analog
};

int KindIndex(TRACE_TYPE type) {
    return type == PDA_TRACE ? 1 : type == ANALOG_TRACE ? 2 : 0;
}

// Calls visit for every low-energy metabolite before the first MS/MS correlation metabolite that
// has both a trace (CMetaboliteData::GetTrace) and a peak.
template <class Visit>
void ForEachAreaMember(CSampleData& sample, const CPeakIndex& peaks, Visit visit) {
    for (int i = 0; i < sample.GetMetaboliteCount(); ++i) {
        CMetaboliteData* metabolite = sample.GetMetabolite(i);
        if (metabolite == nullptr || metabolite->IsHiEnergy())
            continue;
        if (metabolite->IsMSMSCorrelation())
            return;
        const auto [holder, peak] = peaks.FirstPeak(metabolite->GetPeakNum());
        CChromatoData* trace =
            metabolite->GetTraceNum() < 1 ? holder : sample.GetTrace(metabolite->GetTraceNum());
        if (trace == nullptr || peak == nullptr)
            continue;
        visit(AreaMember{metabolite, trace, peak, metabolite->IsExpected() ? 0 : 1,
                         KindIndex(trace->GetTraceType())});
    }
}

// A trace whose peaks take part in the found percentages: a mass chromatogram, or a diode-array
// or analog trace.
bool HasFoundPercentage(const CChromatoData& trace) {
    return trace.IsMassChromatogram() || trace.GetTraceType() == PDA_TRACE ||
           trace.GetTraceType() == ANALOG_TRACE;
}

} // namespace

double CSampleData::GetAreaTotal(bool expected, TRACE_TYPE kind) const {
    return m_AreaTotals[expected ? 0 : 1][KindIndex(kind)];
}

void CSampleData::DetermineAreaTotals() {
    for (auto& group : m_AreaTotals)
        for (double& total : group)
            total = 0.0;
    ForEachAreaMember(*this, CPeakIndex(*this), [this](const AreaMember& member) {
        m_AreaTotals[member.group][member.kind] += member.peak->GetAreaAbs();
    });
}

void CSampleData::CalculateMetabolitePercentAreas(bool applyFilters) {
    const CPeakIndex peaks(*this);
    double foundTotals[2][3] = {};
    auto rejected = [&](const AreaMember& member) {
        return applyFilters && !member.metabolite->ApplyDataFilters(m_pParams, false);
    };

    ForEachAreaMember(*this, peaks, [&](const AreaMember& member) {
        CChromatogramPeak& peak = *member.peak;
        // A total of 0 comes only from peaks of area 0, whose share is then 0 too.
        const double total = m_AreaTotals[member.group][member.kind];
        peak.SetRelativeArea(total != 0.0 ? peak.GetAreaAbs() / total * 100.0 : 0.0);
        if (member.metabolite->GetPeakArea() < 0.0)
            member.metabolite->SetPeakArea(peak.GetAreaAbs());
        if (rejected(member))
            return;
        if (!HasFoundPercentage(*member.trace)) {
            peak.SetAreaPercentTotal(0.0f);
            return;
        }
        if (member.metabolite->GetFound())
            foundTotals[member.group][member.kind] += peak.GetAreaAbs();
        else
            peak.SetAreaPercentTotal(0.0f);
    });

    for (auto& group : foundTotals)
        for (double& total : group)
            if (total == 0.0)
                total = 1.0;

    ForEachAreaMember(*this, peaks, [&](const AreaMember& member) {
        if (rejected(member) || !HasFoundPercentage(*member.trace) ||
            !member.metabolite->GetFound())
            return;
        CChromatogramPeak& peak = *member.peak;
        peak.SetAreaPercentTotal(
            static_cast<float>(peak.GetAreaAbs() / foundTotals[member.group][member.kind] * 100.0));
        member.metabolite->SetRelativePeakArea(peak.GetRelativeArea());
    });
}

} // namespace quillon
