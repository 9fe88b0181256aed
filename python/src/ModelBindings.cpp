// The report's model as Python objects: batch, samples, functions, traces, spectra and
// metabolites, with the points as numpy views and the reviewer's edits.
#include "Handles.h"

#include <pybind11/stl.h>

namespace quillon::python {

namespace {

[[noreturn]] void Gone(const char* what) {
    throw py::index_error(std::string("the ") + what + " is no longer in the batch");
}

template <class Get>
std::string TextOf(Get get) {
    CString text;
    get(text);
    return text.str();
}

const char* KindName(TRACE_TYPE type) {
    return type == PDA_TRACE ? "pda" : type == ANALOG_TRACE ? "analog" : "ms";
}

const char* MetaboliteKind(const CMetaboliteData& metabolite) {
    return metabolite.IsMSMSCorrelation() ? "msms"
           : metabolite.IsExpected()      ? "expected"
                                          : "unexpected";
}

py::object NoneUnless(bool valid, double value) {
    return valid ? py::object(py::float_(value)) : py::object(py::none());
}

py::dict Header(const CSampleData& s) {
    py::dict header;
    header["number"] = s.GetNumber();
    auto add = [&](const char* key, void (CSampleData::*get)(CString&) const) {
        header[key] = Text(TextOf([&](CString& t) { (s.*get)(t); }));
    };
    add("file_name", &CSampleData::GetFileName);
    CString text;
    s.GetWell(text);
    header["well"] = Text(text.str());
    s.GetPlateDescription(text);
    header["plate"] = Text(text.str());
    s.GetVialReference(text);
    header["vial_reference"] = Text(text.str());
    add("type", &CSampleData::GetType);
    add("id", &CSampleData::GetID);
    add("description", &CSampleData::GetDescription);
    add("process_parameters", &CSampleData::GetProcessParameters);
    add("inlet_file", &CSampleData::GetInletFileName);
    add("ms_method_file", &CSampleData::GetMSMethodFileName);
    add("ms_tune_file", &CSampleData::GetMSTuneFileName);
    add("injection_volume", &CSampleData::GetInjectionVolume);
    add("subject_time", &CSampleData::GetSubjectTime);
    add("subject_text", &CSampleData::GetSubjectText);
    add("subject_parent", &CSampleData::GetSubjectParent);
    header["concentration"] = s.GetConcentration();
    add("date", &CSampleData::GetDate);
    add("time", &CSampleData::GetTime);
    add("job_code", &CSampleData::GetJobCode);
    add("task_code", &CSampleData::GetTaskCode);
    add("user_name", &CSampleData::GetUserNameA);
    add("lab_name", &CSampleData::GetLabName);
    add("instrument", &CSampleData::GetInstrument);
    add("conditions", &CSampleData::GetCondtions);
    add("submitter", &CSampleData::GetSubmitter);
    add("processing_time", &CSampleData::GetProcessingTime);
    add("processing_info", &CSampleData::GetProcessingInfo);
    add("processing_warning", &CSampleData::GetProcessingWarning);
    header["lock_spray_enabled"] = s.GetLockSprayEnabled();
    header["mux_enabled"] = s.GetMUXEnabled();
    return header;
}

std::vector<TraceRef> FunctionTraces(const FunctionRef& f) {
    std::vector<TraceRef> traces;
    const int count = f.Get().GetNumChromatogram();
    for (int c = 0; c < count; ++c)
        traces.push_back({f.batch, f.sample, f.function, c});
    return traces;
}

std::vector<FunctionRef> Functions(const SampleRef& s) {
    std::vector<FunctionRef> functions;
    for (int f = 0; f < s.Get().GetFunctionCount(); ++f)
        functions.push_back({s.batch, s.index, f});
    return functions;
}

std::vector<TraceRef> AnalogTraces(const SampleRef& s) {
    std::vector<TraceRef> traces;
    for (int a = 0; a < s.Get().GetAnalogCount(); ++a)
        traces.push_back({s.batch, s.index, -1, a});
    return traces;
}

// Applies one edit through the library's edit code, as the tool does; a refused edit raises
// ValueError with the library's reason.
void Edit(const MetaboliteRef& m, CMetaboliteEdit::Kind kind, const std::string& label = {},
          int candidate = -1) {
    CMetaboliteEdit edit;
    edit.kind = kind;
    edit.sample = m.Sample().GetNumber();
    edit.metabolite = m.index;
    edit.label = label.c_str();
    edit.candidate = candidate;
    const std::string problem = CheckMetaboliteEdit(m.batch->Samples(), edit);
    if (!problem.empty())
        throw py::value_error(problem);
    ApplyMetaboliteEdit(m.batch->samples, edit);
}

py::dict Candidate(const CElementalResultsData& c) {
    py::dict row;
    row["mz"] = c.GetMass();
    row["calc_mz"] = c.GetCalcMass();
    row["mDa"] = c.GetmDa();
    row["ppm"] = c.GetPPM();
    row["dbe"] = c.GetDBE();
    row["formula"] = Text(c.GetFormula().str());
    row["i_fit"] = c.GetiFIT();
    return row;
}

void BindBatch(py::module_& m) {
    py::class_<BatchState, BatchPtr>(m, "Batch",
                                     "A report read into memory: its samples in number order.")
        .def_property_readonly(
            "path", [](const BatchState& b) { return b.path; },
            "The report file the batch was read from (or last saved to).")
        .def_property_readonly(
            "samples",
            [](const BatchPtr& b) {
                std::vector<SampleRef> samples;
                for (int i = 0; i < b->Samples().GetSamplesCount(); ++i)
                    samples.push_back({b, i});
                return samples;
            },
            "The samples, in ascending number order.")
        .def(
            "sample",
            [](const BatchPtr& b, int number) {
                for (int i = 0; i < b->Samples().GetSamplesCount(); ++i)
                    if (b->samples.GetSample(i)->GetNumber() == number)
                        return SampleRef{b, i};
                throw py::key_error("the batch has no sample " + std::to_string(number));
            },
            py::arg("number"), "The sample with that number; KeyError when there is none.")
        .def("__len__", [](BatchState& b) { return b.Samples().GetSamplesCount(); })
        .def_property_readonly(
            "read_report",
            [](BatchState& b) {
                static const char* kinds[] = {"unknown section", "stray block",  "stray block end",
                                              "stray line",      "sample error", "open block"};
                py::list entries;
                for (const CReadReport::Entry& e : b.Samples().GetReadReport().entries)
                    entries.append(py::dict(
                        py::arg("kind") = kinds[e.kind], py::arg("name") = Text(e.name.str()),
                        py::arg("offset") = e.offset, py::arg("detail") = Text(e.detail.str())));
                return entries;
            },
            "What reading passed over or could not read: dicts of kind, name, offset (bytes from "
            "the start of the file) and detail. Empty for a clean report.")
        .def("__repr__", [](const BatchState& b) {
            return "<quillon.Batch '" + b.path + "': " +
                   (b.busy ? std::string("busy")
                           : std::to_string(b.samples.GetSamplesCount()) + " samples") +
                   ">";
        });
}

void BindSample(py::module_& m) {
    py::class_<SampleRef>(m, "Sample", "One sample of the batch: header, functions, metabolites.")
        .def_property_readonly(
            "number", [](const SampleRef& s) { return s.Get().GetNumber(); }, "Sample number.")
        .def_property_readonly(
            "id",
            [](const SampleRef& s) { return Text(TextOf([&](CString& t) { s.Get().GetID(t); })); },
            "Sample identifier.")
        .def_property_readonly(
            "type",
            [](const SampleRef& s) {
                return Text(TextOf([&](CString& t) { s.Get().GetType(t); }));
            },
            "\"Analyte\", \"Control\", ...")
        .def_property_readonly(
            "description",
            [](const SampleRef& s) {
                return Text(TextOf([&](CString& t) { s.Get().GetDescription(t); }));
            },
            "Sample description.")
        .def_property_readonly(
            "time", [](const SampleRef& s) { return s.Get().GetSubjectTime(); },
            "Incubation time in minutes (the header's subject time as a number).")
        .def_property_readonly(
            "parent", [](const SampleRef& s) { return Text(s.Get().GetSubjectParent()); },
            "The parent compound the sample was incubated with.")
        .def_property_readonly(
            "control",
            [](const SampleRef& s) -> py::object {
                const CSampleData* control = s.Get().GetControlSample();
                return control ? py::object(py::int_(control->GetNumber())) : py::none();
            },
            "Number of the sample's control sample, or None.")
        .def_property_readonly(
            "header", [](const SampleRef& s) { return Header(s.Get()); },
            "The header fields as a dict.")
        .def_property_readonly("functions", &Functions, "The acquisition functions.")
        .def_property_readonly("analog_traces", &AnalogTraces,
                               "The analog channels (traces outside the functions).")
        .def_property_readonly(
            "metabolites",
            [](const SampleRef& s) {
                std::vector<MetaboliteRef> metabolites;
                for (int i = 0; i < s.Get().GetMetaboliteCount(); ++i)
                    metabolites.push_back({s.batch, s.index, i});
                return metabolites;
            },
            "Expected, unexpected and MS/MS metabolites, in that order; a metabolite's position "
            "is its index.")
        .def("__repr__", [](const SampleRef& s) {
            return "<quillon.Sample " + std::to_string(s.Get().GetNumber()) + ">";
        });
}

void BindAcquisition(py::module_& m) {
    py::class_<FunctionRef>(m, "Function", "An acquisition function: its traces and spectra.")
        .def_property_readonly(
            "number", [](const FunctionRef& f) { return f.Get().GetNumber(); }, "Function number.")
        .def_property_readonly(
            "description",
            [](const FunctionRef& f) {
                return Text(TextOf([&](CString& t) { f.Get().GetDescription(t); }));
            },
            "Function description.")
        .def_property_readonly(
            "kind", [](const FunctionRef& f) { return KindName(f.Get().GetTraceType()); },
            "\"ms\", \"pda\" or \"analog\".")
        .def_property_readonly("traces", &FunctionTraces, "The chromatograms of the function.")
        .def_property_readonly(
            "spectra",
            [](const FunctionRef& f) {
                std::vector<SpectrumRef> spectra;
                for (int p = 0; p < f.Get().GetNumSpectra(false); ++p)
                    spectra.push_back({f.batch, f.sample, f.function, p});
                return spectra;
            },
            "The spectra of the function (those read from the report).");

    py::class_<CChromatogramPeak>(m, "Peak", "An integrated chromatogram peak.")
        .def_property_readonly("peak_id", &CChromatogramPeak::GetPeakID, "Peak identifier.")
        .def_property_readonly("cluster", &CChromatogramPeak::GetPeakClusterID, "Peak cluster.")
        .def_property_readonly("time_min", &CChromatogramPeak::GetTime, "Apex time, min.")
        .def_property_readonly("area", &CChromatogramPeak::GetAreaAbs, "Absolute area.")
        .def_property_readonly("height", &CChromatogramPeak::GetHeight, "Height.");

    py::class_<TraceRef>(m, "Trace", "A chromatogram: time and intensity points and its peaks.")
        .def_property_readonly(
            "trace", [](const TraceRef& t) { return t.Get().GetTraceNumber(); }, "Trace number.")
        .def_property_readonly(
            "function",
            [](const TraceRef& t) { return t.function < 0 ? 0 : t.Get().GetFunctionNumber(); },
            "Number of the trace's function (0 for an analog channel).")
        .def_property_readonly(
            "description", [](const TraceRef& t) { return Text(t.Get().GetDescription().str()); },
            "Trace description.")
        .def_property_readonly(
            "kind", [](const TraceRef& t) { return KindName(t.Get().GetTraceType()); },
            "\"ms\", \"pda\" or \"analog\".")
        .def_property_readonly(
            "times", [](const TraceRef& t) { return PointView(t.batch, t.Get().GetPoints(), 0); },
            "Retention times (min), a read-only float32 view of the batch's memory.")
        .def_property_readonly(
            "intensities",
            [](const TraceRef& t) { return PointView(t.batch, t.Get().GetPoints(), 1); },
            "Intensities, a read-only float32 view of the batch's memory.")
        .def_property_readonly(
            "peaks",
            [](const TraceRef& t) {
                std::vector<CChromatogramPeak> peaks;
                const CChromatoData& trace = t.Get();
                for (int p = 0; p < trace.GetNumberOfListPeaks(); ++p)
                    peaks.push_back(*trace.GetChromatPeakData(p));
                return peaks;
            },
            "The integrated peaks (copies).")
        .def("__len__", [](const TraceRef& t) { return t.Get().GetNumPeaks(); });

    py::class_<SpectrumRef>(m, "Spectrum", "A spectrum: m/z and intensity points.")
        .def_property_readonly(
            "peak_id", [](const SpectrumRef& s) { return s.Get().GetPeakID(); },
            "Identifier of the chromatogram peak the spectrum was taken from.")
        .def_property_readonly(
            "cluster", [](const SpectrumRef& s) { return s.Get().GetPeakClusterID(); },
            "Peak cluster identifier.")
        .def_property_readonly(
            "function",
            [](const SpectrumRef& s) {
                return FunctionRef{s.batch, s.sample, s.function}.Get().GetNumber();
            },
            "Number of the spectrum's function.")
        .def_property_readonly(
            "time_min", [](const SpectrumRef& s) { return s.Get().GetTime(); }, "Time, min.")
        .def_property_readonly(
            "mz", [](const SpectrumRef& s) { return PointView(s.batch, s.Get().GetPoints(), 0); },
            "m/z values, a read-only float64 view of the batch's memory.")
        .def_property_readonly(
            "intensity",
            [](const SpectrumRef& s) { return PointView(s.batch, s.Get().GetPoints(), 1); },
            "Intensities, a read-only float64 view of the batch's memory.")
        .def(
            "get_peaks",
            [](const SpectrumRef& s) {
                return py::make_tuple(PointView(s.batch, s.Get().GetPoints(), 0),
                                      PointView(s.batch, s.Get().GetPoints(), 1));
            },
            "(mz, intensity): both arrays at once.")
        .def("__len__", [](const SpectrumRef& s) { return s.Get().GetNumPeaks(); });
}

void BindMetabolite(py::module_& m) {
    py::class_<MetaboliteRef>(m, "Metabolite",
                              "A metabolite of a sample; confirmed and label "
                              "can be set, and candidates deleted.")
        .def_readonly("index", &MetaboliteRef::index, "Position in the sample's metabolites.")
        .def_property_readonly(
            "sample", [](const MetaboliteRef& r) { return r.Sample().GetNumber(); },
            "Number of the metabolite's sample.")
        .def_property_readonly(
            "kind", [](const MetaboliteRef& r) { return MetaboliteKind(r.Get()); },
            "\"expected\", \"unexpected\" or \"msms\".")
        .def_property_readonly(
            "name", [](const MetaboliteRef& r) { return Text(r.Get().GetMetName()); }, "Name.")
        .def_property_readonly(
            "formula", [](const MetaboliteRef& r) { return Text(r.Get().GetFormula()); },
            "Formula.")
        .def_property_readonly(
            "mz", [](const MetaboliteRef& r) { return r.Get().GetMzFound(); }, "m/z found.")
        .def_property_readonly(
            "time_min", [](const MetaboliteRef& r) { return r.Get().GetPeakTime(); },
            "Peak time, min.")
        .def_property_readonly(
            "area",
            [](const MetaboliteRef& r) {
                return NoneUnless(r.Get().GetPeakArea() >= 0, r.Get().GetPeakArea());
            },
            "Peak area, or None without a peak.")
        .def_property_readonly(
            "found", [](const MetaboliteRef& r) { return r.Get().GetFound(); }, "Found.")
        .def_property_readonly(
            "high_energy", [](const MetaboliteRef& r) { return r.Get().IsHiEnergy(); },
            "Of a high-energy function.")
        .def_property_readonly(
            "peak_id", [](const MetaboliteRef& r) { return r.Get().GetPeakNum(); },
            "Peak identifier (below 1: no peak).")
        .def_property_readonly(
            "trace", [](const MetaboliteRef& r) { return r.Get().GetTraceNum(); }, "Trace number.")
        .def_property_readonly(
            "function", [](const MetaboliteRef& r) { return r.Get().GetFunctionNum(); },
            "Function number.")
        .def_property(
            "confirmed", [](const MetaboliteRef& r) { return r.Get().GetConfirmed(); },
            [](const MetaboliteRef& r, bool confirmed) {
                if (confirmed != r.Get().GetConfirmed())
                    Edit(r, confirmed ? CMetaboliteEdit::Confirm : CMetaboliteEdit::Unconfirm);
            },
            "Confirmed by the reviewer; setting it edits the batch (saved by Batch.save).")
        .def_property(
            "label", [](const MetaboliteRef& r) { return Text(r.Get().GetUserLabel()); },
            [](const MetaboliteRef& r, const std::string& label) {
                if (label != r.Get().GetUserLabel())
                    Edit(r, CMetaboliteEdit::SetLabel, label);
            },
            "The reviewer's label; one line (ValueError for a tab or line break).")
        .def_property_readonly(
            "elemental",
            [](const MetaboliteRef& r) {
                py::list candidates;
                CElementalResultsData candidate;
                for (int e = 0; r.Get().GetElementalResults(e, candidate); ++e)
                    candidates.append(Candidate(candidate));
                return candidates;
            },
            "Elemental composition candidates as dicts (mz, calc_mz, mDa, ppm, dbe, formula, "
            "i_fit).")
        .def(
            "delete_elemental",
            [](const MetaboliteRef& r, int k) { Edit(r, CMetaboliteEdit::DeleteElemental, {}, k); },
            py::arg("k"), "Deletes elemental candidate k (ValueError when there is none).")
        .def("__repr__", [](const MetaboliteRef& r) {
            return "<quillon.Metabolite " + std::to_string(r.index) + " '" +
                   std::string(r.Get().GetMetName()) + "'>";
        });
}

} // namespace

void BatchState::CheckIdle() const {
    if (busy)
        throw std::runtime_error("the batch is busy with an analysis or a save in another thread");
}

BusyBatch::BusyBatch(BatchState& batch) : m_batch(batch) {
    if (m_batch.busy.exchange(true))
        throw std::runtime_error("the batch is busy with an analysis or a save in another thread");
}

CSampleData& SampleRef::Get() const {
    CSampleData* sample = batch->Samples().GetSample(index);
    if (sample == nullptr)
        Gone("sample");
    return *sample;
}

CFunctionData& FunctionRef::Get() const {
    CFunctionData* f = SampleRef{batch, sample}.Get().GetFunction(function);
    if (f == nullptr)
        Gone("function");
    return *f;
}

CChromatoData& TraceRef::Get() const {
    CSampleData& s = SampleRef{batch, sample}.Get();
    CChromatoData* t = function < 0
                           ? s.GetAnalogChannel(trace)
                           : FunctionRef{batch, sample, function}.Get().GetChromatogram(trace);
    if (t == nullptr)
        Gone("trace");
    return *t;
}

CSpectrumData& SpectrumRef::Get() const {
    CSpectrumData* s = FunctionRef{batch, sample, function}.Get().GetSpectrum(spectrum, false);
    if (s == nullptr)
        Gone("spectrum");
    return *s;
}

CSampleData& MetaboliteRef::Sample() const {
    return SampleRef{batch, sample}.Get();
}

CMetaboliteData& MetaboliteRef::Get() const {
    CMetaboliteData* m = Sample().GetMetabolite(index);
    if (m == nullptr)
        Gone("metabolite");
    return *m;
}

template <class Number>
py::array PointView(const BatchPtr& batch, const TPointArray<Number>& points, int member) {
    static const Number kNone[1] = {};
    const Number* data = points.GetSize() > 0 ? &points[0].mass + member : kNone;
    py::capsule owner(new BatchPtr(batch), [](void* kept) { delete static_cast<BatchPtr*>(kept); });
    py::array_t<Number> view({py::ssize_t(points.GetSize())},
                             {py::ssize_t(sizeof(TPointPair<Number>))}, data, owner);
    py::detail::array_proxy(view.ptr())->flags &= ~py::detail::npy_api::NPY_ARRAY_WRITEABLE_;
    return view;
}

template py::array PointView(const BatchPtr&, const TPointArray<float>&, int);
template py::array PointView(const BatchPtr&, const TPointArray<double>&, int);

py::str Text(const std::string& text) {
    PyObject* decoded = PyUnicode_DecodeUTF8(text.data(), py::ssize_t(text.size()), "replace");
    if (decoded == nullptr)
        throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

void BindModel(py::module_& module) {
    BindBatch(module);
    BindSample(module);
    BindAcquisition(module);
    BindMetabolite(module);
}

} // namespace quillon::python
