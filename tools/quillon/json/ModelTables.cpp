#include "ModelTables.h"

#include "ModelRecords.h"

namespace quillon::tool {

namespace {

// Each trace of the sample with its function number (0 for analog channels).
template <class Visit>
void ForEachTrace(CSampleData& sample, Visit visit) {
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        for (int c = 0; c < function.GetNumChromatogram(); ++c)
            visit(function.GetNumber(), *function.GetChromatogram(c));
    }
    for (int a = 0; a < sample.GetAnalogCount(); ++a)
        visit(0, *sample.GetAnalogChannel(a));
}

template <class Visit>
void ForEachSpectrum(CSampleData& sample, Visit visit) {
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        for (int p = 0; p < function.GetNumSpectra(false); ++p)
            visit(function.GetNumber(), *function.GetSpectrum(p, false));
    }
}

template <class Fill>
void Row(RowSink& rows, Fill fill) {
    rows.BeginRow();
    fill();
    rows.EndRow();
}

void TraceRows(ModelTable table, CSampleData& sample, RowSink& rows) {
    ForEachTrace(sample, [&](int function, const CChromatoData& trace) {
        const TraceKey key{sample.GetNumber(), function, trace.GetTraceNumber()};
        if (table == ModelTable::kTraces) {
            Row(rows, [&] { TraceRecord(rows, key.sample, function, trace); });
        } else if (table == ModelTable::kTracePoints) {
            CPeakData point;
            for (int i = 0; i < trace.GetNumPeaks(); ++i)
                if (trace.GetPeak(i, point))
                    Row(rows, [&] {
                        // The trace stores floats: narrowing back gives the stored values.
                        TracePointRecord(rows, key, static_cast<float>(point.GetMass()),
                                         static_cast<float>(point.GetIntensity()));
                    });
        } else {
            for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p)
                Row(rows, [&] { PeakRecord(rows, key, *trace.GetChromatPeakData(p)); });
        }
    });
}

void SpectrumRows(ModelTable table, CSampleData& sample, RowSink& rows) {
    ForEachSpectrum(sample, [&](int function, const CSpectrumData& spectrum) {
        if (table == ModelTable::kSpectra) {
            Row(rows, [&] { SpectrumRecord(rows, sample.GetNumber(), function, spectrum); });
            return;
        }
        const SpectrumKey key{sample.GetNumber(), function, spectrum.GetPeakID()};
        CPeakData point;
        for (int i = 0; i < spectrum.GetNumPeaks(); ++i)
            if (spectrum.GetPeak(i, point))
                Row(rows,
                    [&] { SpectrumPointRecord(rows, key, point.GetMass(), point.GetIntensity()); });
    });
}

void MetaboliteRows(ModelTable table, CSampleData& sample, RowSink& rows) {
    const int number = sample.GetNumber();
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        const CMetaboliteData& metabolite = *sample.GetMetabolite(m);
        if (table == ModelTable::kMetabolites) {
            Row(rows, [&] { MetaboliteRecord(rows, sample, m); });
        } else if (table == ModelTable::kElemental) {
            CElementalResultsData candidate;
            for (int e = 0; metabolite.GetElementalResults(e, candidate); ++e)
                Row(rows, [&] { ElementalRecord(rows, number, m, e, candidate); });
        } else {
            for (int e = 0; e < metabolite.GetCorrelationEntryCount(); ++e)
                Row(rows, [&] { CorrelationRecord(rows, number, m, e, metabolite); });
        }
    }
}

} // namespace

void WriteModelTable(ModelTable table, CSamples& samples, RowSink& rows) {
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *samples.GetSample(s);
        switch (table) {
        case ModelTable::kSamples:
            Row(rows, [&] { SampleRecord(rows, sample); });
            break;
        case ModelTable::kFunctions:
            for (int f = 0; f < sample.GetFunctionCount(); ++f)
                Row(rows,
                    [&] { FunctionRecord(rows, sample.GetNumber(), *sample.GetFunction(f)); });
            break;
        case ModelTable::kTraces:
        case ModelTable::kTracePoints:
        case ModelTable::kPeaks:
            TraceRows(table, sample, rows);
            break;
        case ModelTable::kSpectra:
        case ModelTable::kSpectrumPoints:
            SpectrumRows(table, sample, rows);
            break;
        case ModelTable::kMetabolites:
        case ModelTable::kElemental:
        case ModelTable::kCorrelation:
            MetaboliteRows(table, sample, rows);
            break;
        }
    }
}

} // namespace quillon::tool
