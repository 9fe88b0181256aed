// The columns of the batch's tables, filled in one pass each straight into numpy arrays; the
// Python layer turns them into DataFrames with their dtypes.
#include "Handles.h"

#include <pybind11/stl.h>

#include <cmath>
#include <optional>
#include <utility>

namespace quillon::python {

namespace {

// Named columns of n rows: numeric ones as numpy arrays written in place, texts as lists.
class Columns {
public:
    explicit Columns(size_t rows) : m_rows(rows) {}
    template <class T>
    T* Numbers(const char* name) {
        py::array_t<T> column{py::ssize_t(m_rows)};
        m_columns[name] = column;
        return column.mutable_data();
    }
    py::list Texts(const char* name) {
        py::list column(m_rows);
        m_columns[name] = column;
        return column;
    }
    py::dict Take() { return std::move(m_columns); }

private:
    size_t m_rows;
    py::dict m_columns;
};

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

int TraceCount(CSampleData& sample) {
    int traces = sample.GetAnalogCount();
    for (int f = 0; f < sample.GetFunctionCount(); ++f)
        traces += sample.GetFunction(f)->GetNumChromatogram();
    return traces;
}

int FoundCount(CSampleData& sample) {
    int found = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        found += sample.GetMetabolite(m)->GetFound() && !sample.GetMetabolite(m)->IsHiEnergy();
    return found;
}

py::dict SampleColumns(const BatchPtr& batch) {
    CSamples& samples = batch->Samples();
    const int n = samples.GetSamplesCount();
    Columns columns(size_t(n > 0 ? n : 0));
    int* number = columns.Numbers<int>("sample");
    py::list id = columns.Texts("id"), type = columns.Texts("type"),
             description = columns.Texts("description");
    double* time = columns.Numbers<double>("time");
    py::list parent = columns.Texts("parent");
    double* control = columns.Numbers<double>("control");
    int* counts[6] = {columns.Numbers<int>("functions"), columns.Numbers<int>("traces"),
                      columns.Numbers<int>("expected"),  columns.Numbers<int>("unexpected"),
                      columns.Numbers<int>("msms"),      columns.Numbers<int>("found")};
    CString text;
    for (int i = 0; i < n; ++i) {
        CSampleData& s = *samples.GetSample(i);
        number[i] = s.GetNumber();
        s.GetID(text);
        id[i] = Text(text.str());
        s.GetType(text);
        type[i] = Text(text.str());
        s.GetDescription(text);
        description[i] = Text(text.str());
        time[i] = s.GetSubjectTime();
        parent[i] = Text(s.GetSubjectParent());
        control[i] = s.GetControlSample() ? s.GetControlSample()->GetNumber() : kMissing;
        const int values[6] = {s.GetFunctionCount(),
                               TraceCount(s),
                               s.GetExpectedMetaboliteCount(),
                               s.GetUnexpectedMetaboliteCount(),
                               s.GetMSMSCorrelationMetaboliteCount(),
                               FoundCount(s)};
        for (int c = 0; c < 6; ++c)
            counts[c][i] = values[c];
    }
    return columns.Take();
}

// A filter setting as the keyword argument that sets it.
std::string KeywordName(std::string_view key) {
    return std::string(key);
}

double NumberOrMissing(const CString& text, double value) {
    return text.IsEmpty() ? kMissing : value;
}

py::dict MetaboliteColumns(const SampleRef& ref, const CResultFilter& filter) {
    const std::string problem = ResultFilterProblem(filter, KeywordName);
    if (!problem.empty())
        throw py::value_error(problem);
    CSampleData& sample = ref.Get();
    const CDivBroParams params = ResultFilterParams(filter);
    std::vector<int> kept;
    kept.reserve(size_t(sample.GetMetaboliteCount()));
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        if (sample.GetMetabolite(m)->ApplyDataFilters(&params, false))
            kept.push_back(m);
    Columns columns(kept.size());
    int* number = columns.Numbers<int>("sample");
    int* index = columns.Numbers<int>("index");
    int8_t* kind = columns.Numbers<int8_t>("kind");
    py::list name = columns.Texts("name"), formula = columns.Texts("formula");
    double* mz = columns.Numbers<double>("mz");
    double* peakTime = columns.Numbers<double>("time_min");
    double* peakArea = columns.Numbers<double>("area");
    double* areaPercent = columns.Numbers<double>("area_percent");
    double* mDa = columns.Numbers<double>("mDa");
    double* ppm = columns.Numbers<double>("ppm");
    bool* found = columns.Numbers<bool>("found");
    bool* confirmed = columns.Numbers<bool>("confirmed");
    bool* highEnergy = columns.Numbers<bool>("high_energy");
    int* peak = columns.Numbers<int>("peak_id");
    int* trace = columns.Numbers<int>("trace");
    int* function = columns.Numbers<int>("function");
    py::list label = columns.Texts("label");
    CString text;
    for (size_t row = 0; row < kept.size(); ++row) {
        const CMetaboliteData& m = *sample.GetMetabolite(kept[row]);
        number[row] = sample.GetNumber();
        index[row] = kept[row];
        kind[row] = m.IsMSMSCorrelation() ? 2 : m.IsExpected() ? 0 : 1;
        name[row] = Text(m.GetMetName());
        formula[row] = Text(m.GetFormula());
        mz[row] = m.GetMzFound() > 0 ? m.GetMzFound() : kMissing;
        peakTime[row] = m.GetPeakTime();
        peakArea[row] = m.GetPeakArea() >= 0 ? m.GetPeakArea() : kMissing;
        areaPercent[row] = m.GetRelativePeakArea() >= 0 ? m.GetRelativePeakArea() : kMissing;
        m.GetmDa(text);
        mDa[row] = NumberOrMissing(text, m.GetmDa());
        m.GetPPM(text);
        ppm[row] = NumberOrMissing(text, m.GetPPM());
        found[row] = m.GetFound();
        confirmed[row] = m.GetConfirmed();
        highEnergy[row] = m.IsHiEnergy();
        peak[row] = m.GetPeakNum();
        trace[row] = m.GetTraceNum();
        function[row] = m.GetFunctionNum();
        label[row] = Text(m.GetUserLabel());
    }
    return columns.Take();
}

py::dict ElementalColumns(const SampleRef& ref) {
    CSampleData& sample = ref.Get();
    size_t rows = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        rows += size_t(sample.GetMetabolite(m)->GetNumElementalResults());
    Columns columns(rows);
    int* number = columns.Numbers<int>("sample");
    int* metabolite = columns.Numbers<int>("metabolite");
    int* candidateIndex = columns.Numbers<int>("candidate");
    double* values[6] = {columns.Numbers<double>("mz"),  columns.Numbers<double>("calc_mz"),
                         columns.Numbers<double>("mDa"), columns.Numbers<double>("ppm"),
                         columns.Numbers<double>("dbe"), nullptr};
    py::list formula = columns.Texts("formula");
    values[5] = columns.Numbers<double>("i_fit");
    size_t row = 0;
    CElementalResultsData c;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        for (int e = 0; row < rows && sample.GetMetabolite(m)->GetElementalResults(e, c);
             ++e, ++row) {
            number[row] = sample.GetNumber();
            metabolite[row] = m;
            candidateIndex[row] = e;
            const double numbers[6] = {c.GetMass(), c.GetCalcMass(), c.GetmDa(),
                                       c.GetPPM(),  c.GetDBE(),      c.GetiFIT()};
            for (int v = 0; v < 6; ++v)
                values[v][row] = numbers[v];
            formula[row] = Text(c.GetFormula().str());
        }
    }
    return columns.Take();
}

py::dict CorrelationColumns(const SampleRef& ref) {
    CSampleData& sample = ref.Get();
    size_t rows = 0;
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m)
        rows += size_t(sample.GetMetabolite(m)->GetCorrelationEntryCount());
    Columns columns(rows);
    int* number = columns.Numbers<int>("sample");
    int* metabolite = columns.Numbers<int>("metabolite");
    int* entry = columns.Numbers<int>("entry");
    // Lists of numbers, as the tool's JSON gives them.
    py::list masses = columns.Texts("masses_matched"),
             losses = columns.Texts("neutral_losses_matched"),
             common = columns.Texts("common_neutral_losses");
    size_t row = 0;
    CString text;
    std::vector<double> numbers;
    auto list = [&](py::list& column) {
        ParseNumberList(text.view(), numbers);
        column[row] = py::cast(numbers);
    };
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        const CMetaboliteData& metaboliteData = *sample.GetMetabolite(m);
        for (int e = 0; e < metaboliteData.GetCorrelationEntryCount() && row < rows; ++e, ++row) {
            number[row] = sample.GetNumber();
            metabolite[row] = m;
            entry[row] = e;
            metaboliteData.GetCorrelationMasses(e, text);
            list(masses);
            metaboliteData.GetNeutralLossesFromAllParentSpectrumMassesAt(e, text);
            list(losses);
            metaboliteData.GetCommonNeutralLossesAt(e, text);
            list(common);
        }
    }
    return columns.Take();
}

// The found counts of each expected metabolite: (names, shifts, sample numbers, counts as an
// array of one row per metabolite and one column per sample).
py::tuple Summary(const BatchPtr& batch) {
    CArray<MetaboliteCountInfo> summary;
    batch->Samples().CreateOverallMSSummaryData(summary, -1, -1);
    const int samples = batch->samples.GetSamplesCount();
    py::list names, shifts, numbers;
    for (int i = 0; i < samples; ++i)
        numbers.append(batch->samples.GetSample(i)->GetNumber());
    py::array_t<int> counts({py::ssize_t(summary.GetSize()), py::ssize_t(samples)});
    auto cells = counts.mutable_unchecked<2>();
    for (int row = 0; row < summary.GetSize(); ++row) {
        names.append(Text(summary[row].name.str()));
        shifts.append(Text(summary[row].label.str()));
        for (int c = 0; c < samples; ++c)
            cells(row, c) =
                c < int(summary[row].counts.size()) ? summary[row].counts[size_t(c)] : 0;
    }
    return py::make_tuple(names, shifts, numbers, counts);
}

} // namespace

void BindTables(py::module_& m) {
    m.def("_sample_columns", &SampleColumns);
    m.def(
        "_metabolite_columns",
        [](const SampleRef& sample, std::optional<std::pair<double, double>> massDefect,
           std::optional<double> area, std::optional<double> relativeArea, bool areaUnexpectedOnly,
           std::optional<double> massError, bool hideIsotopes, bool withElemental,
           std::optional<std::pair<double, double>> time, bool hideHighEnergy) {
            return MetaboliteColumns(sample,
                                     {massDefect, area, relativeArea, areaUnexpectedOnly, massError,
                                      hideIsotopes, withElemental, time, hideHighEnergy});
        },
        py::arg("sample"), py::arg("mass_defect") = py::none(), py::arg("area") = py::none(),
        py::arg("relative_area") = py::none(), py::arg("area_unexpected_only") = false,
        py::arg("mass_error") = py::none(), py::arg("hide_isotopes") = false,
        py::arg("with_elemental") = false, py::arg("time") = py::none(),
        py::arg("hide_high_energy") = false);
    m.def("_elemental_columns", &ElementalColumns);
    m.def("_correlation_columns", &CorrelationColumns);
    m.def("_summary", &Summary);
}

} // namespace quillon::python
