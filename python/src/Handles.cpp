// The lookups behind the Python objects, the batch's busy mark, and the numpy views.
#include "Handles.h"

namespace quillon::python {

namespace {

[[noreturn]] void Gone(const char* what) {
    throw py::index_error(std::string("the ") + what + " is no longer in the batch");
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

} // namespace quillon::python
