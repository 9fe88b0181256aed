#pragma once

// What the Python objects hold: a shared batch and the indices that lead from it to one sample,
// function, trace, spectrum or metabolite. Every object keeps its batch alive, and each access
// looks the record up again, so an object never points into memory its batch has let go.

#include <quillon/quillon.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <atomic>
#include <memory>
#include <string>

namespace quillon::python {

namespace py = pybind11;

// A report read into memory, and the file it was read from (the one a save copies). While an
// analysis or a save runs on it without the GIL, it is busy: other threads are refused rather
// than let in to read what is being written.
struct BatchState {
    CSamples samples;
    std::string path;
    std::atomic<bool> busy{false};

    // Raises RuntimeError while the batch is busy.
    void CheckIdle() const;
    // The samples, once CheckIdle has let the caller through.
    CSamples& Samples() {
        CheckIdle();
        return samples;
    }
};
using BatchPtr = std::shared_ptr<BatchState>;

// Marks the batch busy for its lifetime; raises RuntimeError when it already is.
class BusyBatch {
public:
    explicit BusyBatch(BatchState& batch);
    BusyBatch(const BusyBatch&) = delete;
    BusyBatch& operator=(const BusyBatch&) = delete;
    ~BusyBatch() { m_batch.busy = false; }

private:
    BatchState& m_batch;
};

struct SampleRef {
    BatchPtr batch;
    int index = 0;
    CSampleData& Get() const;
};

struct FunctionRef {
    BatchPtr batch;
    int sample = 0;
    int function = 0;
    CFunctionData& Get() const;
};

// A trace of a function, or (function -1) an analog channel of the sample.
struct TraceRef {
    BatchPtr batch;
    int sample = 0;
    int function = -1;
    int trace = 0;
    CChromatoData& Get() const;
};

struct SpectrumRef {
    BatchPtr batch;
    int sample = 0;
    int function = 0;
    int spectrum = 0;
    CSpectrumData& Get() const;
};

struct MetaboliteRef {
    BatchPtr batch;
    int sample = 0;
    int index = 0;
    CMetaboliteData& Get() const;
    CSampleData& Sample() const;
};

// A read-only numpy array of one member (0: time or mass, 1: intensity) of a point list, viewing
// the library's memory in place; the array keeps the batch alive.
template <class Number>
py::array PointView(const BatchPtr& batch, const TPointArray<Number>& points, int member);

// Raises the OSError subclass of osError (FileNotFoundError, PermissionError, ...) naming path.
[[noreturn]] void RaiseOSError(int osError, const std::string& message, const std::string& path);

// A string of the library as a Python str, undecodable bytes replaced rather than refused.
py::str Text(const std::string& text);

// None, or the value when it is valid.
inline py::object NoneUnless(bool valid, double value) {
    return valid ? py::object(py::float_(value)) : py::object(py::none());
}

// A text the library hands out through an output argument, as a std::string.
template <class Get>
std::string TextOf(Get get) {
    CString text;
    get(text);
    return text.str();
}

void BindModel(py::module_& module);
void BindAcquisition(py::module_& module);
void BindMetabolites(py::module_& module);
void BindTables(py::module_& module);
void BindAnalyses(py::module_& module);

} // namespace quillon::python
