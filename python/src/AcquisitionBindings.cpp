// Functions, traces and spectra as Python objects, their points as numpy views.
#include "Handles.h"

#include <pybind11/stl.h>

namespace quillon::python {

namespace {

const char* KindName(TRACE_TYPE type) {
    return type == PDA_TRACE ? "pda" : type == ANALOG_TRACE ? "analog" : "ms";
}

std::vector<TraceRef> FunctionTraces(const FunctionRef& f) {
    std::vector<TraceRef> traces;
    const int count = f.Get().GetNumChromatogram();
    for (int c = 0; c < count; ++c)
        traces.push_back({f.batch, f.sample, f.function, c});
    return traces;
}

void BindFunction(py::module_& m) {
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
}

void BindTrace(py::module_& m) {
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
}

void BindSpectrum(py::module_& m) {
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

} // namespace

void BindAcquisition(py::module_& m) {
    BindFunction(m);
    BindTrace(m);
    BindSpectrum(m);
}

} // namespace quillon::python
