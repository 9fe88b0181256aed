// The metabolites of a sample as Python objects, with the reviewer's edits made through the
// library's edit code, as the tool makes them.
#include "Handles.h"

#include <pybind11/stl.h>

namespace quillon::python {

namespace {

const char* MetaboliteKind(const CMetaboliteData& metabolite) {
    return metabolite.IsMSMSCorrelation() ? "msms"
           : metabolite.IsExpected()      ? "expected"
                                          : "unexpected";
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
} // namespace

void BindMetabolites(py::module_& m) {
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

} // namespace quillon::python
