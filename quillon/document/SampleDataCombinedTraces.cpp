// The sample's combined traces, the current fragment and neutral loss that select two of them,
// and the look-ups of its diode-array TIC and first analog trace.

#include <quillon/document/SampleData.h>
#include <quillon/metabolites/DivBroParams.h>
#include <quillon/metabolites/MetaboliteNames.h>

#include <quillon/metabolites/MetaboliteData.h>

#include <algorithm>
#include <cfloat>
#include <cmath>
#include <set>
#include <vector>

namespace quillon {

namespace {

constexpr const char* kCombinedPeaks = "Combined Metabolite Peaks";

CString Describe(int type, int fragment, const CFragmentAnalysis& analysis, int neutralLoss) {
    CString text;
    switch (type) {
    case CSampleData::COMBINED_EXPECTED_FOUND:
        text.Format("%s (%s)", kCombinedPeaks, "Found Expected Peaks only");
        break;
    case CSampleData::COMBINED_ALL_FOUND:
        text.Format("%s (%s)", kCombinedPeaks, "All Found Peaks");
        break;
    case CSampleData::COMBINED_UNEXPECTED_FOUND:
        text.Format("%s (%s)", kCombinedPeaks, "Found Unexpected Peaks only");
        break;
    case CSampleData::COMBINED_PRECURSORS_OF_FRAGMENT:
        text.Format("%s %d", "Precursors of Fragment", fragment);
        break;
    case CSampleData::COMBINED_COMMON_NEUTRAL_LOSS: {
        CString label;
        analysis.GetNeutralLoss(neutralLoss, label);
        text.Format("%s %d %s", "Common Neutral Loss",
                    analysis.GetNeutralLossFromEntry(neutralLoss), label.c_str());
        break;
    }
    default:
        text.Format("%s (%s)", kCombinedPeaks, "All Found and Unexpected Peaks");
        break;
    }
    return text;
}

} // namespace

CChromatoData CSampleData::EmptyCombinedTrace() {
    CChromatoData trace;
    InitialiseCombinedTrace(&trace);
    return trace;
}

void CSampleData::InitialiseCombinedTrace(CChromatoData* trace) {
    if (trace == nullptr)
        return;
    trace->Initialise(nullptr);
    trace->SetDescription(kCombinedPeaks);
    trace->SetProcDesc(kCombinedPeaks);
    trace->CombinedTraceNeedsData(true);
    trace->SetCombinedTraceNumber(-100);
}

void CSampleData::CurrentFragment(int fragment) {
    if (fragment != m_nCurrentFragment)
        GetCombinedTrace(-101)->CombinedTraceNeedsData(true);
    m_nCurrentFragment = fragment;
}

void CSampleData::CurrentNeutralLoss(int loss) {
    if (loss != m_nCurrentNeutralLoss)
        GetCombinedTrace(-102)->CombinedTraceNeedsData(true);
    m_nCurrentNeutralLoss = loss;
}

int CSampleData::GetCombinedTraceNum(bool precursors, bool neutralLoss) {
    return precursors ? -101 : neutralLoss ? -102 : -100;
}

bool CSampleData::IsCombinedTraceNum(int trace) {
    return trace == -100 || trace == -101 || trace == -102;
}

void CSampleData::CombinedTraceNeedsData(bool needs, bool precursorsToo, bool neutralLossToo) {
    GetCombinedTrace(-100)->CombinedTraceNeedsData(needs);
    if (precursorsToo)
        GetCombinedTrace(-101)->CombinedTraceNeedsData(needs);
    if (neutralLossToo)
        GetCombinedTrace(-102)->CombinedTraceNeedsData(needs);
}

bool CSampleData::CombinedTraceNeedsData() const {
    return m_CombinedTraces[0].CombinedTraceNeedsData();
}

bool CSampleData::SetCombinedTraceType(int type, int traceNumber) {
    if (!IsCombinedTraceNum(traceNumber) || type == m_nCombinedTraceType)
        return false;
    GetCombinedTrace(traceNumber)->CombinedTraceNeedsData(true);
    m_nCombinedTraceType = type;
    return true;
}

bool CSampleData::SetupCombinedTrace(int traceNumber, const CDivBroParams& filters,
                                     bool leaveOutParent, bool confirmedOnly) {
    const CDivBroParams& f = filters;
    return SetupCombinedTrace(
        traceNumber, f.MassDefectFilterOn, f.MassDefectUpper, f.MassDefectLower, f.AreaFilterOn,
        f.AreaMode, f.AreaThreshold, f.RelativeAreaThreshold, f.AreaFilterOnExpected,
        f.MassErrorFilterOn, f.MassErrorLimit, f.IsotopeFilterOn, f.ElementalFilterOn,
        f.TimeFilterOn, f.TimeLow, f.TimeHigh, f.HideHighEnergy, leaveOutParent, confirmedOnly);
}

bool CSampleData::SetupCombinedTrace(int traceNumber, bool massDefectOn, double upperMassDefect,
                                     double lowerMassDefect, bool areaOn, int areaMode,
                                     float areaThreshold, float relativeAreaThreshold,
                                     bool areaOnExpected, bool massErrorOn, double massErrorLimit,
                                     bool isotopeOn, bool elementalOn, bool timeOn, double timeLow,
                                     double timeHigh, bool hideHighEnergy, bool leaveOutParent,
                                     bool confirmedOnly) {
    if (!IsCombinedTraceNum(traceNumber))
        return false;
    CChromatoData* trace = GetCombinedTrace(traceNumber);
    if (!trace->CombinedTraceNeedsData())
        return false;
    trace->Initialise(nullptr);
    trace->CombinedTraceNeedsData(false);
    trace->SetCombinedTraceNumber(traceNumber);
    const int type = traceNumber == -101   ? COMBINED_PRECURSORS_OF_FRAGMENT
                     : traceNumber == -102 ? COMBINED_COMMON_NEUTRAL_LOSS
                                           : m_nCombinedTraceType;
    trace->SetDescription(
        Describe(type, m_nCurrentFragment, m_FragmentAnalysis, m_nCurrentNeutralLoss));

    // The time span and the grid size.
    const int count = GetMetaboliteCount();
    float start = FLT_MAX;
    float end = 0.0f;
    int size = 0;
    for (int i = 0; i < count; ++i) {
        CMetaboliteData* m = GetMetabolite(i);
        CChromatoData* own = m == nullptr || IsExcludedMass(*m) ? nullptr : m->GetTrace(this);
        if (own == nullptr)
            continue;
        float low = 0.0f;
        float high = 0.0f;
        own->GetDataRange(low, high);
        start = std::min(start, low);
        end = std::max(end, high);
        size = std::max(size, own->GetNumPeaks());
    }
    if (count == 0 || size == 0)
        return false;

    std::set<UINT> carriers; // peak numbers carrying the neutral loss, or parents of the fragment
    if (type == COMBINED_COMMON_NEUTRAL_LOSS) {
        int tag = 0;
        CUIntArray functionIndices;
        CUIntArray peakNumbers;
        if (!m_FragmentAnalysis.GetPeaksForNeutralLoss(m_nCurrentNeutralLoss, tag, functionIndices,
                                                       peakNumbers))
            return false;
        carriers.insert(peakNumbers.begin(), peakNumbers.end());
    } else if (type == COMBINED_PRECURSORS_OF_FRAGMENT) {
        CUIntArray parents;
        CUIntArray functionIndices;
        CUIntArray peakIds;
        m_FragmentAnalysis.GetMetabolitesContainingFragment(m_nCurrentFragment, parents,
                                                            functionIndices, peakIds, false, false);
        carriers.insert(parents.begin(), parents.end());
    }

    std::vector<float> times(static_cast<size_t>(size));
    std::vector<float> intensities(static_cast<size_t>(size), 0.0f);
    const double spacing = size > 1 ? (static_cast<double>(end) - start) / (size - 1) : 0.0;
    for (int i = 0; i < size; ++i)
        times[static_cast<size_t>(i)] = static_cast<float>(start + i * spacing);
    if (size > 1)
        times.back() = end;

    CArray<float> cutTimes;
    CArray<float> cutIntensities;
    for (int i = 0; i < count; ++i) {
        CMetaboliteData* m = GetMetabolite(i);
        if (m == nullptr || m->IsHiEnergy() || IsExcludedMass(*m) || IsMSeFragments(*m) ||
            (leaveOutParent && IsParent(*m)) || (confirmedOnly && !m->GetConfirmed()))
            continue;
        bool selected = false;
        switch (type) {
        case COMBINED_EXPECTED_FOUND:
            selected = m->IsExpected() && m->GetFound();
            break;
        case COMBINED_ALL_FOUND:
            selected = (m->IsExpected() || m->IsMSMSCorrelation()) && m->GetFound();
            break;
        case COMBINED_UNEXPECTED_FOUND:
            selected = !m->IsExpected() && !m->IsMSMSCorrelation() && m->GetFound();
            break;
        case COMBINED_PRECURSORS_OF_FRAGMENT:
            selected = carriers.count(static_cast<UINT>(i)) != 0;
            break;
        case COMBINED_COMMON_NEUTRAL_LOSS:
            selected = carriers.count(static_cast<UINT>(m->GetPeakNum())) != 0;
            break;
        default:
            selected = m->GetFound();
            break;
        }
        if (selected && type != COMBINED_PRECURSORS_OF_FRAGMENT &&
            type != COMBINED_COMMON_NEUTRAL_LOSS)
            selected = m->ApplyDataFilters(massDefectOn, upperMassDefect, lowerMassDefect, areaOn,
                                           areaMode, areaThreshold, relativeAreaThreshold,
                                           areaOnExpected, massErrorOn, massErrorLimit, isotopeOn,
                                           elementalOn, timeOn, timeLow, timeHigh, hideHighEnergy);
        CChromatoData* own = selected ? m->GetTrace(this) : nullptr;
        if (own == nullptr)
            continue;
        const CChromatogramPeak* peak =
            GetCorispondingPeakInfo(m->GetPeakNum(), m->GetFunctionNum(), own->GetTraceNumber());
        if (peak == nullptr)
            continue;
        own->GetPeakData(cutTimes, cutIntensities, *peak->GetChromatPeakData());
        for (int p = 0; p < cutTimes.GetSize(); ++p) {
            const double offset = spacing > 0.0 ? (cutTimes[p] - start) / spacing : 0.0;
            const double nearest = std::round(offset);
            if (!(nearest >= 0.0 && nearest < size && std::fabs(offset - nearest) <= 0.5))
                continue;
            intensities[static_cast<size_t>(nearest)] += cutIntensities[p];
        }
        trace->AddChromatogramPeak(*peak, true);
    }
    trace->SetTimeIntensity(times.data(), intensities.data(), size);
    trace->SortChromatogramPeaks();
    return true;
}

int CSampleData::GetPDATIC() {
    int found = 0;
    for (int f = 0; f < GetFunctionCount(); ++f) {
        CFunctionData* function = GetFunction(f);
        if (!function->IsPDA())
            continue;
        for (int c = 0; c < function->GetNumChromatogram(); ++c) {
            const CString& description = function->GetChromatogram(c)->GetDescription();
            if (description.Find("TIC") >= 0 || description.Find("TAC") >= 0) {
                found = function->GetChromatogram(c)->GetTraceNumber();
                break;
            }
        }
    }
    return found;
}

int CSampleData::GetAnalog1() {
    for (int f = 0; f < GetFunctionCount(); ++f) {
        CFunctionData* function = GetFunction(f);
        if (function->IsAnalog() && function->GetNumChromatogram() > 0)
            return function->GetChromatogram(0)->GetTraceNumber();
    }
    return 0;
}

} // namespace quillon
