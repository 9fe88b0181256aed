#include "ModelRecords.h"

#include "NumberText.h"

#include <algorithm>
#include <vector>

namespace quillon::tool {

namespace {

// A number given as text in the report, or null when the text holds none.
void NumberFromText(RecordSink& sink, std::string_view key, std::string_view text) {
    double number = 0.0;
    if (ParseNumberText(text, number))
        sink.Field(key, number);
    else
        sink.FieldNull(key);
}

// A comma-separated list of numbers as an array; items that are not numbers are left out.
void NumberList(RecordSink& sink, std::string_view key, const CString& text,
                std::vector<double>& numbers) {
    ParseNumberList(text.view(), numbers);
    sink.Field(key, std::span<const double>(numbers));
}

int TraceCount(CSampleData& sample) {
    int traces = sample.GetAnalogCount();
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        traces += sample.GetFunction(f)->GetNumChromatogram();
    return traces;
}

int FoundCount(const CSampleData& sample) {
    int found = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        found += sample.GetMetabolite(m)->GetFound() && !sample.GetMetabolite(m)->IsHiEnergy();
    return found;
}

const char* Kind(const CMetaboliteData& metabolite) {
    return metabolite.IsMSMSCorrelation() ? "msms"
           : metabolite.IsExpected()      ? "expected"
                                          : "unexpected";
}

} // namespace

void SampleRecord(RecordSink& sink, CSampleData& sample) {
    CString text;
    sink.Field("sample", sample.GetNumber());
    sample.GetID(text);
    sink.Field("id", text);
    sample.GetType(text);
    sink.Field("type", text);
    sample.GetDescription(text);
    sink.Field("description", text);
    sample.GetSubjectTime(text);
    NumberFromText(sink, "time", text.view());
    sink.Field("parent", sample.GetSubjectParent());
    const CSampleData* control = sample.GetControlSample();
    sink.FieldIf("control", control != nullptr, control ? control->GetNumber() : 0);
    sink.Field("functions", sample.GetFunctionCount());
    sink.Field("traces", TraceCount(sample));
    sink.Field("expected", sample.GetExpectedMetaboliteCount());
    sink.Field("unexpected", sample.GetUnexpectedMetaboliteCount());
    sink.Field("msms", sample.GetMSMSCorrelationMetaboliteCount());
    sink.Field("found", FoundCount(sample));
}

void FunctionRecord(RecordSink& sink, int sample, CFunctionData& function) {
    CString description;
    function.GetDescription(description);
    sink.Field("sample", sample);
    sink.Field("function", function.GetNumber());
    sink.Field("description", description);
    sink.Field("traces", function.GetNumChromatogram());
    sink.Field("spectra", function.GetNumSpectra(false));
}

void TraceRecord(RecordSink& sink, int sample, int function, const CChromatoData& trace) {
    sink.Field("sample", sample);
    sink.Field("function", function);
    sink.Field("trace", trace.GetTraceNumber());
    sink.Field("description", trace.GetDescription());
    sink.Field("points", trace.GetNumPeaks());
    sink.Field("peaks", trace.GetNumberOfListPeaks());
}

void TracePointRecord(RecordSink& sink, const TraceKey& key, float time, float intensity) {
    sink.Field("sample", key.sample);
    sink.Field("function", key.function);
    sink.Field("trace", key.trace);
    sink.Field("time_min", time);
    sink.Field("intensity", intensity);
}

void PeakRecord(RecordSink& sink, const TraceKey& key, const CChromatogramPeak& peak) {
    sink.Field("sample", key.sample);
    sink.Field("function", key.function);
    sink.Field("trace", key.trace);
    sink.Field("peak_id", peak.GetPeakID());
    sink.Field("cluster", peak.GetPeakClusterID());
    sink.Field("time_min", peak.GetTime());
    sink.Field("area", peak.GetAreaAbs());
    sink.Field("height", peak.GetHeight());
    sink.Field("width", peak.GetWidth());
    sink.Field("area_percent", peak.GetAreaPercentTotal());
}

bool IntensitiesArePercent(const CSpectrumData& spectrum) {
    if (spectrum.UseCustomChartParams())
        return true;
    CPeakData point;
    for (int i = 0; i < spectrum.GetNumPeaks(); ++i)
        if (spectrum.GetPeak(i, point) && point.GetIntensity() > 100.0f)
            return false;
    return true;
}

void SpectrumRecord(RecordSink& sink, int sample, int function, const CSpectrumData& spectrum) {
    sink.Field("sample", sample);
    sink.Field("function", function);
    sink.Field("peak_id", spectrum.GetPeakID());
    sink.Field("cluster", spectrum.GetPeakClusterID());
    sink.Field("trace", spectrum.GetTraceNumber());
    sink.Field("time_min", spectrum.GetTime());
    sink.Field("points", spectrum.GetNumPeaks());
}

void SpectrumPointRecord(RecordSink& sink, const SpectrumKey& key, double mz, double intensity) {
    sink.Field("sample", key.sample);
    sink.Field("function", key.function);
    sink.Field("peak_id", key.peakId);
    sink.Field("mz", mz);
    sink.Field("intensity", intensity);
}

void MetaboliteRecord(RecordSink& sink, CSampleData& sample, int index) {
    const CMetaboliteData& metabolite = *sample.GetMetabolite(index);
    CString text;
    sink.Field("sample", sample.GetNumber());
    sink.Field("index", index);
    sink.Field("kind", Kind(metabolite));
    sink.Field("name", metabolite.GetMetName());
    sink.Field("formula", metabolite.GetFormula());
    sink.FieldIf("mz", metabolite.GetMzFound() > 0, metabolite.GetMzFound());
    metabolite.GetmDa(text);
    NumberFromText(sink, "mDa", text.view());
    metabolite.GetPPM(text);
    NumberFromText(sink, "ppm", text.view());
    sink.Field("time_min", metabolite.GetPeakTime());
    sink.FieldIf("area", metabolite.GetPeakArea() >= 0, metabolite.GetPeakArea());
    sink.Field("found", metabolite.GetFound());
    sink.Field("confirmed", metabolite.GetConfirmed());
    sink.Field("high_energy", metabolite.IsHiEnergy());
    sink.Field("function", metabolite.GetFunctionNum());
    sink.Field("trace", metabolite.GetTraceNum());
    sink.Field("peak_id", metabolite.GetPeakNum());
    sink.Field("cluster", metabolite.GetPeakClusterNum());
    sink.Field("label", metabolite.GetUserLabel());
}

void ElementalRecord(RecordSink& sink, int sample, int metabolite, int candidate,
                     const CElementalResultsData& result) {
    sink.Field("sample", sample);
    sink.Field("metabolite", metabolite);
    sink.Field("candidate", candidate);
    sink.Field("mz", result.GetMass());
    sink.Field("calc_mz", result.GetCalcMass());
    sink.Field("mDa", result.GetmDa());
    sink.Field("ppm", result.GetPPM());
    sink.Field("dbe", result.GetDBE());
    sink.Field("formula", result.GetFormula());
    sink.Field("i_fit", result.GetiFIT());
}

void CorrelationRecord(RecordSink& sink, int sample, int metabolite, int entry,
                       const CMetaboliteData& data) {
    std::vector<double> numbers;
    CString list;
    sink.Field("sample", sample);
    sink.Field("metabolite", metabolite);
    sink.Field("entry", entry);
    data.GetCorrelationMasses(entry, list);
    NumberList(sink, "masses_matched", list, numbers);
    data.GetNeutralLossesFromAllParentSpectrumMassesAt(entry, list);
    NumberList(sink, "neutral_losses_matched", list, numbers);
    data.GetCommonNeutralLossesAt(entry, list);
    NumberList(sink, "common_neutral_losses", list, numbers);
}

} // namespace quillon::tool

namespace quillon::tool {

namespace {

// "Water  (H2O)" -> "Water", "H2O"; a label without a formula is all name.
std::pair<std::string_view, std::string_view> NameAndFormula(std::string_view label) {
    const size_t open = label.rfind(" (");
    if (open == std::string_view::npos || label.empty() || label.back() != ')')
        return {label, {}};
    std::string_view name = label.substr(0, open);
    name = name.substr(0, name.find_last_not_of(' ') + 1);
    return {name, label.substr(open + 2, label.size() - open - 3)};
}

void FragmentRow(RowSink& rows, int sample, int nominalMass, std::span<const int> clusters) {
    rows.BeginRow();
    rows.Field("sample", sample);
    rows.Field("kind", "fragment");
    rows.FieldNull("mass");
    rows.Field("nominal_mass", nominalMass);
    rows.Field("spectra", static_cast<int>(clusters.size()));
    rows.FieldNull("occurrences");
    rows.Field("clusters", clusters);
    rows.FieldNull("neutral_loss");
    rows.FieldNull("formula");
    rows.EndRow();
}

} // namespace

void FragmentRows(RowSink& rows, int sample, const CFragmentAnalysis& analysis) {
    const auto& fragments = analysis.GetFragmentEntries();
    std::vector<int> clusters;
    for (int i = 0; analysis.HasFragments() && i < fragments.GetSize(); ++i) {
        const FragmentEntry& entry = fragments[i];
        if (std::find(clusters.begin(), clusters.end(), entry.ClusterID) == clusters.end())
            clusters.push_back(entry.ClusterID);
        if (i + 1 == fragments.GetSize() || fragments[i + 1].NominalMass != entry.NominalMass) {
            std::sort(clusters.begin(), clusters.end());
            FragmentRow(rows, sample, entry.NominalMass, clusters);
            clusters.clear();
        }
    }
    const auto& losses = analysis.GetNeutralLossEntries();
    std::vector<int> spectra(static_cast<size_t>(losses.GetSize()), 0);
    std::vector<int> occurrences(spectra.size(), 0);
    for (const NeutralLossSpectrum& found : analysis.GetNeutralLossSpectra())
        if (found.EntryIndex >= 0 && static_cast<size_t>(found.EntryIndex) < spectra.size())
            ++spectra[static_cast<size_t>(found.EntryIndex)];
    for (const NeutralLossOccurrence& found : analysis.GetNeutralLossOccurrences())
        if (found.EntryIndex >= 0 && static_cast<size_t>(found.EntryIndex) < spectra.size())
            ++occurrences[static_cast<size_t>(found.EntryIndex)];
    for (size_t k = 0; analysis.HasNeutralLosses() && k < spectra.size(); ++k) {
        const NeutralLossEntry& loss = losses[static_cast<int>(k)];
        const auto [name, formula] = NameAndFormula(loss.Label.view());
        rows.BeginRow();
        rows.Field("sample", sample);
        rows.Field("kind", "neutral_loss");
        rows.Field("mass", loss.Mass);
        rows.Field("nominal_mass", loss.NominalMass);
        rows.Field("spectra", spectra[k]);
        rows.Field("occurrences", occurrences[k]);
        rows.Field("clusters", std::span<const int>());
        rows.Field("neutral_loss", name);
        rows.Field("formula", formula);
        rows.EndRow();
    }
}

} // namespace quillon::tool
