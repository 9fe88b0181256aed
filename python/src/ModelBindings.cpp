// The batch and its samples as Python objects.
#include "Handles.h"

#include <pybind11/stl.h>

namespace quillon::python {

namespace {

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

} // namespace

void BindModel(py::module_& module) {
    BindBatch(module);
    BindSample(module);
}

} // namespace quillon::python
