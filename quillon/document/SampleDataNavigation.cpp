// The sample's lookups across functions, traces, chromatogram peaks, peak clusters and spectra.
// Every walk runs over the functions by index, within each over its chromatograms by index and
// within each chromatogram over its listed peaks in order.

#include <quillon/document/SampleData.h>

namespace quillon {

namespace {

bool IsCombinedTraceNumber(int trace) {
    return trace == -100 || trace == -101 || trace == -102;
}

// Calls visit(chromatogram) for every chromatogram of every function in walk order until visit
// returns true; returns that chromatogram, or null when the walk ran to its end.
template <class Visit>
CChromatoData* FindChromatogram(CSampleData& sample, Visit visit) {
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData* function = sample.GetFunction(f);
        for (int c = 0; c < function->GetNumChromatogram(); ++c) {
            CChromatoData* chromatogram = function->GetChromatogram(c);
            if (visit(*chromatogram))
                return chromatogram;
        }
    }
    return nullptr;
}

// The first peak of the chromatogram that satisfies match; null when none.
template <class Match>
CChromatogramPeak* FindPeak(CChromatoData& chromatogram, Match match) {
    for (int p = 0; p < chromatogram.GetNumberOfListPeaks(); ++p) {
        CChromatogramPeak* peak = chromatogram.GetChromatPeakData(p);
        if (match(*peak))
            return peak;
    }
    return nullptr;
}

auto WithPeakID(int peakID) {
    return [peakID](const CChromatogramPeak& peak) { return peak.GetPeakID() == peakID; };
}

auto InCluster(int cluster) {
    return [cluster](const CChromatogramPeak& peak) { return peak.GetPeakClusterID() == cluster; };
}

// The number of chromatograms that hold at least one peak satisfying match and, when given, share
// the trace number in function sameTrace.
template <class Match>
int CountChromatograms(CSampleData& sample, Match match, const int* sameTrace) {
    int count = 0;
    FindChromatogram(sample, [&](CChromatoData& chromatogram) {
        if ((sameTrace == nullptr || chromatogram.GetTraceNumberInFunction() == *sameTrace) &&
            FindPeak(chromatogram, match) != nullptr)
            ++count;
        return false;
    });
    return count;
}

// The n-th (from 1) chromatogram that holds a peak of the cluster and, when given, shares the
// trace number in function sameTrace; null when there are fewer.
CChromatoData* NthChromatogramInCluster(CSampleData& sample, int cluster, int n,
                                        const int* sameTrace) {
    int seen = 0;
    return FindChromatogram(sample, [&](CChromatoData& chromatogram) {
        if (sameTrace != nullptr && chromatogram.GetTraceNumberInFunction() != *sameTrace)
            return false;
        return FindPeak(chromatogram, InCluster(cluster)) != nullptr && ++seen == n;
    });
}

// The n-th (from 0) peak with that identifier in walk order, and the chromatogram holding it.
CChromatogramPeak* NthPeakWithID(CSampleData& sample, int peakID, int n, CChromatoData** holder) {
    int seen = 0;
    CChromatogramPeak* found = nullptr;
    CChromatoData* chromatogram = FindChromatogram(sample, [&](CChromatoData& candidate) {
        found = FindPeak(candidate, [&](const CChromatogramPeak& peak) {
            return peak.GetPeakID() == peakID && seen++ == n;
        });
        return found != nullptr;
    });
    if (holder != nullptr)
        *holder = chromatogram;
    return found;
}

} // namespace

int CSampleData::GetFunctionEntryWithNumber(int number) {
    for (int f = 0; f < m_Functions.GetSize(); ++f) {
        if (m_Functions[f].GetNumber() == number)
            return f;
    }
    return -1;
}

CFunctionData* CSampleData::GetFunctionWithNumber(int number) {
    return GetFunction(GetFunctionEntryWithNumber(number));
}

CFunctionData* CSampleData::GetFunctionContainingTrace(int trace) {
    if (trace < 0)
        return nullptr;
    for (CFunctionData& function : m_Functions) {
        if (function.GetTrace(trace) != nullptr)
            return &function;
    }
    return nullptr;
}

CChromatoData* CSampleData::GetTrace(int trace) {
    if (IsCombinedTraceNumber(trace))
        return GetCombinedTrace(trace);
    if (trace < 0)
        return nullptr;
    for (CFunctionData& function : m_Functions) {
        if (CChromatoData* chromatogram = function.GetTrace(trace))
            return chromatogram;
    }
    for (CChromatoData& channel : m_AnalogChannels) {
        if (channel.GetTraceNumber() == trace)
            return &channel;
    }
    return nullptr;
}

int CSampleData::GetTraceNum(int functionNumber, CString description) {
    if (IsCombinedTraceNumber(functionNumber))
        return functionNumber;
    CFunctionData* function = GetFunctionWithNumber(functionNumber);
    if (description.IsEmpty() || function == nullptr)
        return 0;
    for (int c = 0; c < function->GetNumChromatogram(); ++c) {
        const CChromatoData* chromatogram = function->GetChromatogram(c);
        if (chromatogram->GetDescription() == description)
            return chromatogram->GetTraceNumber();
    }
    return 0;
}

int CSampleData::GetChromatogramIndex(int functionIndex, int trace) {
    CFunctionData* function = GetFunction(functionIndex);
    if (function == nullptr || trace < 1)
        return -1;
    for (int c = 0; c < function->GetNumChromatogram(); ++c) {
        if (function->GetChromatogram(c)->GetTraceNumber() == trace)
            return c;
    }
    return -1;
}

int CSampleData::GetChromatogramIndex(int functionIndex, CString description) {
    CFunctionData* function = GetFunction(functionIndex);
    if (function == nullptr || description.IsEmpty())
        return -1;
    for (int c = 0; c < function->GetNumChromatogram(); ++c) {
        if (function->GetChromatogram(c)->GetDescription() == description)
            return c;
    }
    return -1;
}

bool CSampleData::SameTrace(int trace1, int trace2) {
    const CChromatoData* first = GetTrace(trace1);
    const CChromatoData* second = GetTrace(trace2);
    return first != nullptr && second != nullptr && first->GetTraceNumberInFunction() >= 1 &&
           second->GetTraceNumberInFunction() >= 1 &&
           first->GetTraceNumberInFunction() == second->GetTraceNumberInFunction();
}

CSpectrumData* CSampleData::GetCorrespondingSpectrum(int peakID) {
    for (CFunctionData& function : m_Functions) {
        for (int s = 0; s < function.GetNumSpectra(false); ++s) {
            CSpectrumData* spectrum = function.GetSpectrum(s, false);
            if (spectrum->GetPeakID() == peakID)
                return spectrum;
        }
    }
    return nullptr;
}

CChromatogramPeak* CSampleData::GetCorispondingPeakInfo(int peakID, int n) {
    return NthPeakWithID(*this, peakID, n, nullptr);
}

CChromatogramPeak* CSampleData::GetCorispondingPeakInfo(int peakID, int functionNumber, int trace) {
    if (peakID < 1)
        return nullptr;
    // The function number is compared with the number of functions, as the browser expects.
    if (functionNumber >= 1 && trace >= 1 && functionNumber <= GetFunctionCount()) {
        CFunctionData* function = GetFunctionWithNumber(functionNumber);
        if (function == nullptr)
            return nullptr;
        if (CChromatoData* chromatogram = function->GetTrace(trace))
            return FindPeak(*chromatogram, WithPeakID(peakID));
    }
    return GetCorispondingPeakInfo(peakID, 0);
}

CChromatoData* CSampleData::GetCorispondingChroMatogram(int peakID, int n) {
    CChromatoData* holder = nullptr;
    NthPeakWithID(*this, peakID, n, &holder);
    return holder;
}

int CSampleData::GetCorispondingChromatNumber(int peakID, int n) {
    const CChromatoData* chromatogram = GetCorispondingChroMatogram(peakID, n);
    return chromatogram != nullptr ? chromatogram->GetTraceNumber() : 0;
}

int CSampleData::GetNumberOfChroGraphs(int peakID) {
    return CountChromatograms(*this, WithPeakID(peakID), nullptr);
}

int CSampleData::GetNumberOfChroGraphsInCluster(int cluster) {
    if (cluster < 1)
        return 1;
    return CountChromatograms(*this, InCluster(cluster), nullptr);
}

int CSampleData::GetNumberOfSameTracesInCluster(int cluster, int trace) {
    if (cluster < 1 || trace < 1)
        return 1;
    const CChromatoData* given = GetTrace(trace);
    if (given == nullptr)
        return -1;
    const int sameTrace = given->GetTraceNumberInFunction();
    return CountChromatograms(*this, InCluster(cluster), &sameTrace);
}

int CSampleData::GetTraceInCluster(int cluster, int n) {
    if (cluster < 1)
        return -1;
    const CChromatoData* chromatogram = NthChromatogramInCluster(*this, cluster, n, nullptr);
    return chromatogram != nullptr ? chromatogram->GetTraceNumber() : -1;
}

int CSampleData::GetSameTraceInCluster(int cluster, int n, int trace) {
    const CChromatoData* given = cluster >= 1 ? GetTrace(trace) : nullptr;
    if (given == nullptr)
        return -1;
    const int sameTrace = given->GetTraceNumberInFunction();
    const CChromatoData* chromatogram = NthChromatogramInCluster(*this, cluster, n, &sameTrace);
    return chromatogram != nullptr ? chromatogram->GetTraceNumber() : -1;
}

int CSampleData::GetSamePeakInCluster(int cluster, int n, int trace) {
    const CChromatoData* given = cluster >= 1 ? GetTrace(trace) : nullptr;
    if (given == nullptr)
        return -1;
    const int sameTrace = given->GetTraceNumberInFunction();
    CChromatoData* chromatogram = NthChromatogramInCluster(*this, cluster, n, &sameTrace);
    if (chromatogram == nullptr)
        return -1;
    return FindPeak(*chromatogram, InCluster(cluster))->GetPeakID();
}

int CSampleData::RetrievePeakClusterNum(int peakID, int /*trace*/) {
    if (peakID < 1)
        return -1;
    const CChromatogramPeak* peak = GetCorispondingPeakInfo(peakID, 0);
    return peak != nullptr ? peak->GetPeakClusterID() : -1;
}

int CSampleData::GetMaxChromatogramRange(float& start, float& end) {
    start = 0.0f;
    end = 0.0f;
    for (int f = 0; f < GetFunctionCount(); ++f) {
        CFunctionData* function = GetFunction(f);
        for (int c = 0; c < function->GetNumChromatogram(); ++c) {
            float low = 0.0f;
            float high = 0.0f;
            function->GetChromatogram(c)->GetDataRange(low, high);
            if (f == 0 && c == 0) {
                start = low;
                end = high;
                continue;
            }
            if (low < start)
                start = low;
            if (high > end)
                end = high;
        }
    }
    return 1;
}

int CSampleData::IsPositive(int trace, int& flags, CString* text) {
    flags = 0;
    int positive = 0;
    for (const CFunctionData& function : m_Functions) {
        int passed = 1;
        if (function.IsPositive(trace, passed, text)) {
            flags |= passed;
            positive = 1;
        }
    }
    return positive;
}

int CSampleData::IsPositive(int trace) {
    int flags = 0;
    return IsPositive(trace, flags, nullptr);
}

} // namespace quillon
