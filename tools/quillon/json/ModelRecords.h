#pragma once

// The records of a loaded report, one function per kind. Each writes its fields to a sink, the
// full key of what it belongs to first (sample, function, trace, peak or spectrum), so that a row
// of any table can be told apart from the rows of every other sample, function and trace. The
// same functions feed the streamed export, the CSV tables, the subcommands' rows and answers built
// in memory (ModelJson.h).

#include "Record.h"

#include <quillon/quillon.h>

namespace quillon::tool {

// What a trace's points and peaks belong to. Analog channels have function 0.
struct TraceKey {
    int sample = 0;
    int function = 0;
    int trace = 0;
};

// What a spectrum's points belong to: a spectrum is named by its peak id within its function.
struct SpectrumKey {
    int sample = 0;
    int function = 0;
    int peakId = 0;
};

// One sample's summary row: sample, id, type, description, time (the subject time in min, null
// when it is not a number), parent, control (the control sample's number or null), functions,
// traces, expected, unexpected, msms, found (found metabolites that are not high-energy).
void SampleRecord(RecordSink& sink, CSampleData& sample);

// sample, function, description, traces, spectra.
void FunctionRecord(RecordSink& sink, int sample, CFunctionData& function);

// sample, function, trace, description, points, peaks.
void TraceRecord(RecordSink& sink, int sample, int function, const CChromatoData& trace);

// One trace point: sample, function, trace, time_min, intensity (floats as the trace stores them).
void TracePointRecord(RecordSink& sink, const TraceKey& key, float time, float intensity);

// One integrated peak of a trace: sample, function, trace, peak_id, cluster, time_min, area,
// height, width, area_percent.
void PeakRecord(RecordSink& sink, const TraceKey& key, const CChromatogramPeak& peak);

// The spectrum's intensities are percentages of its base peak: custom chart parameters are in
// force, or no point rises above 100. Figures and the page name their y axis by it.
bool IntensitiesArePercent(const CSpectrumData& spectrum);

// sample, function, peak_id, cluster, trace, time_min, points.
void SpectrumRecord(RecordSink& sink, int sample, int function, const CSpectrumData& spectrum);

// One spectrum point: sample, function, peak_id, mz, intensity.
void SpectrumPointRecord(RecordSink& sink, const SpectrumKey& key, double mz, double intensity);

// The metabolite at index (the index `edit --metabolite` takes): sample, index, kind (expected,
// unexpected or msms), name, formula, mz, mDa, ppm (null when the report gives none), time_min,
// area (null when there is no peak area), found, confirmed, high_energy, function, trace,
// peak_id, cluster, label.
void MetaboliteRecord(RecordSink& sink, CSampleData& sample, int index);

// The elemental candidate at candidate of the metabolite at metabolite: sample, metabolite,
// candidate, mz, calc_mz, mDa, ppm, dbe, formula, i_fit.
void ElementalRecord(RecordSink& sink, int sample, int metabolite, int candidate,
                     const CElementalResultsData& result);

// Correlation entry entry of the metabolite at metabolite: sample, metabolite, entry, and the
// lists masses_matched, neutral_losses_matched, common_neutral_losses as arrays of numbers.
void CorrelationRecord(RecordSink& sink, int sample, int metabolite, int entry,
                       const CMetaboliteData& data);

} // namespace quillon::tool

namespace quillon::tool {

// The fragment analysis of a sample as rows, fragments first, then the neutral losses, all with
// the keys sample, kind ("fragment" or "neutral_loss"), mass, nominal_mass, spectra, occurrences,
// clusters, neutral_loss, formula. A fragment: its nominal mass (mass null), the number of
// spectra (distinct peak clusters) holding it and their cluster ids. A neutral loss: its exact
// and nominal mass, the spectra and fragment peaks it was found in (0 when not confirmed), its
// name and formula as the settings file lists them ("Water  (H2O)": "Water", "H2O").
void FragmentRows(RowSink& rows, int sample, const CFragmentAnalysis& analysis);

} // namespace quillon::tool
