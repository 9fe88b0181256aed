// The _quillon extension: the library's model, tables and analyses for the quillon package.
#include "Operation.h"

#include <pybind11/stl.h>

namespace quillon::python {

namespace {

struct ReadError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

BatchPtr Read(const std::string& path, py::object progress) {
    BatchPtr batch = ReadBatch(path, std::move(progress));
    if (batch->samples.GetSamplesCount() == 0)
        throw ReadError("'" + path + "' is not a report: it holds no sample");
    return batch;
}

} // namespace

[[noreturn]] void RaiseOSError(int osError, const std::string& message, const std::string& path) {
    py::object error = py::reinterpret_borrow<py::object>(PyExc_OSError)(
        osError != 0 ? osError : EIO, message, path);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
    throw py::error_already_set();
}

} // namespace quillon::python

namespace py = pybind11;

PYBIND11_MODULE(_quillon, m) {
    namespace qp = quillon::python;
    m.doc() = "The quillon library's model of a metabolite-identification report.";
    py::register_exception<qp::ReadError>(m, "ReadError", PyExc_ValueError);
    qp::InstallHostHooks();
    qp::BindModel(m);
    qp::BindAcquisition(m);
    qp::BindMetabolites(m);
    qp::BindTables(m);
    qp::BindAnalyses(m);
    m.def("_read", &qp::Read, py::arg("path"), py::arg("progress") = py::none(),
          "Reads a report; the caller has checked the file.");
}
