#include "ApiSample.h"

#include "ApiPlots.h"

#include "../MetaboliteRow.h"
#include "../Tool.h"
#include "../json/ModelJson.h"
#include "../json/ModelRecords.h"

namespace quillon::tool::serve {

namespace {

constexpr long long kLargestNumber = 1'000'000'000;

int NumberIn(std::string_view segment, const char* what) {
    const auto number = ParseInteger(segment, -kLargestNumber, kLargestNumber);
    if (!number)
        throw ApiError(400, std::string(what) + " must be a whole number, not '" +
                                std::string(segment) + "'");
    return static_cast<int>(*number);
}

CSampleData& SampleOf(CSamples& samples, int number) {
    for (int i = 0; i < samples.GetSamplesCount(); ++i)
        if (samples.GetSample(i)->GetNumber() == number)
            return *samples.GetSample(i);
    throw ApiError(404, "no sample " + std::to_string(number));
}

int MetaboliteIndex(CSampleData& sample, std::string_view segment) {
    const int index = NumberIn(segment, "a metabolite index");
    if (index < 0 || index >= sample.GetMetaboliteCount())
        throw ApiError(404, "sample " + std::to_string(sample.GetNumber()) + " has no metabolite " +
                                std::to_string(index));
    return index;
}

void RequireMethod(const std::string& method, const char* allowed) {
    if (method != allowed)
        throw ApiError(405, std::string("only ") + allowed + " is allowed here");
}

nlohmann::json SampleSummary(CSampleData& sample) {
    nlohmann::json functions = nlohmann::json::array();
    JsonRowsSink functionRows(functions);
    nlohmann::json traces = nlohmann::json::array();
    JsonRowsSink traceRows(traces);
    for (int f = 0; f < sample.GetFunctionCount(); ++f) {
        CFunctionData& function = *sample.GetFunction(f);
        functionRows.BeginRow();
        FunctionRecord(functionRows, sample.GetNumber(), function);
        for (int c = 0; c < function.GetNumChromatogram(); ++c) {
            traceRows.BeginRow();
            TraceRecord(traceRows, sample.GetNumber(), function.GetNumber(),
                        *function.GetChromatogram(c));
        }
    }
    for (int a = 0; a < sample.GetAnalogCount(); ++a) {
        traceRows.BeginRow();
        TraceRecord(traceRows, sample.GetNumber(), 0, *sample.GetAnalogChannel(a));
    }
    return {{"sample", RecordJson([&](RecordSink& sink) { SampleRecord(sink, sample); })},
            {"functions", std::move(functions)},
            {"traces", std::move(traces)}};
}

std::string ParameterName(std::string_view key) {
    if (key == "mass_defect" || key == "time")
        return "'" + std::string(key) + "_low' and '" + std::string(key) + "_high'";
    return "'" + std::string(key) + "'";
}

// The browser's filters from the query: mass_defect_low/high (how far the predicted mass may lie
// below the next whole mass and above a whole mass, Da), area or relative_area (% of its group),
// area_unexpected_only, mass_error (mDa), hide_isotopes, with_elemental, time_low/high (min),
// hide_high_energy. Throws ApiError 400 for a setting the table cannot take.
CResultFilter FilterOf(const Query& query) {
    auto range = [&](const char* key) -> std::optional<std::pair<double, double>> {
        const auto lower = query.Number(key + std::string("_low"));
        const auto upper = query.Number(key + std::string("_high"));
        if (!lower && !upper)
            return std::nullopt;
        if (!lower || !upper)
            throw ApiError(400, ParameterName(key) + " go together");
        return std::make_pair(*lower, *upper);
    };
    CResultFilter filter;
    filter.massDefect = range("mass_defect");
    filter.area = query.Number("area");
    filter.relativeArea = query.Number("relative_area");
    filter.areaUnexpectedOnly = query.Flag("area_unexpected_only");
    filter.massError = query.Number("mass_error");
    filter.hideIsotopes = query.Flag("hide_isotopes");
    filter.withElemental = query.Flag("with_elemental");
    filter.time = range("time");
    filter.hideHighEnergy = query.Flag("hide_high_energy");
    const std::string problem = ResultFilterProblem(filter, ParameterName);
    if (!problem.empty())
        throw ApiError(400, problem);
    return filter;
}

nlohmann::json MetabolitesAnswer(CSampleData& sample, const Query& query,
                                 const ReportReview& review) {
    const CDivBroParams params = ResultFilterParams(FilterOf(query));
    nlohmann::json rows = nlohmann::json::array();
    JsonRowsSink sink(rows);
    for (int m = 0; m < sample.GetMetaboliteCount(); ++m) {
        if (!sample.GetMetabolite(m)->ApplyDataFilters(&params, false))
            continue;
        sink.BeginRow();
        MetaboliteRow(sink, sample, m);
        sink.Field("edited", review.Touched(sample.GetNumber(), m));
        // The predicted m/z, whose mass defect the filter tests: the snapshot page filters itself.
        sink.Field("predicted_mz", sample.GetMetabolite(m)->GetMetabolite());
    }
    return {{"total", sample.GetMetaboliteCount()}, {"metabolites", std::move(rows)}};
}

nlohmann::json CorrelationAnswer(CSampleData& sample, int index) {
    const CMetaboliteData& metabolite = *sample.GetMetabolite(index);
    nlohmann::json rows = nlohmann::json::array();
    JsonRowsSink sink(rows);
    for (int e = 0; e < metabolite.GetCorrelationEntryCount(); ++e) {
        sink.BeginRow();
        CorrelationRecord(sink, sample.GetNumber(), index, e, metabolite);
    }
    return {{"correlation", std::move(rows)}};
}

// One metabolite with the trace that holds its peak and the function of its spectrum (null
// without), so that the page can plot them. Peak ids repeat across functions: the metabolite's
// own function and trace come first, the first trace with its peak otherwise.
nlohmann::json MetaboliteAnswer(CSampleData& sample, int index, const ReportReview& review) {
    const CMetaboliteData& metabolite = *sample.GetMetabolite(index);
    const int peak = metabolite.GetPeakNum();
    int trace = 0;
    if (peak >= 1)
        trace = metabolite.GetTraceNum() >= 1 && sample.GetTrace(metabolite.GetTraceNum())
                    ? metabolite.GetTraceNum()
                    : sample.GetCorispondingChromatNumber(peak, 0);
    const CFunctionData* function = trace != 0 ? sample.GetFunctionContainingTrace(trace) : nullptr;
    int spectrumFunction = 0;
    const bool spectrum = function != nullptr && SpectrumOfPeak(sample, peak, function->GetNumber(),
                                                                spectrumFunction) != nullptr;
    return {{"metabolite", MetaboliteRowJson(sample, index, review)},
            {"plot_trace", trace != 0 ? nlohmann::json(trace) : nlohmann::json()},
            {"spectrum_function", spectrum ? nlohmann::json(spectrumFunction) : nlohmann::json()}};
}

nlohmann::json MetaboliteRoutes(CSampleData& sample, std::span<const std::string_view> rest,
                                const Query& query, const ReportReview& review) {
    if (rest.empty())
        return MetabolitesAnswer(sample, query, review);
    const int index = MetaboliteIndex(sample, rest[0]);
    if (rest.size() == 1)
        return MetaboliteAnswer(sample, index, review);
    if (rest.size() == 2 && rest[1] == "candidates")
        return {{"candidates", CandidatesJson(sample, index)}};
    if (rest.size() == 2 && rest[1] == "correlation")
        return CorrelationAnswer(sample, index);
    throw ApiError(404, "no such resource beneath a metabolite");
}

nlohmann::json FragmentAnswer(ServedReport& report, int number, const std::string& method) {
    if (method == "POST") {
        report.WithSamples([&](CSamples& samples) { SampleOf(samples, number); });
        report.StartJob(number);
    }
    const std::shared_ptr<FragmentJob> job = report.Job(number);
    if (method == "DELETE" && job)
        job->cancel = true;
    else if (method != "GET" && method != "POST" && method != "DELETE")
        throw ApiError(405, "GET, POST or DELETE are allowed here");
    static const char* const kStates[] = {"running", "done", "cancelled", "failed"};
    if (!job)
        return {{"state", "none"}, {"progress", 0.0}};
    const int state = job->state.load();
    nlohmann::json answer = {
        {"state", method == "DELETE" && state == kJobRunning ? "cancelling" : kStates[state]},
        {"progress", job->progress.load()}};
    if (state == kJobDone)
        answer["result"] = job->result;
    if (state == kJobFailed)
        answer["error"] = job->message;
    return answer;
}

} // namespace

nlohmann::json MetaboliteRowJson(CSampleData& sample, int index, const ReportReview& review) {
    nlohmann::json row = RecordJson([&](RecordSink& sink) { MetaboliteRow(sink, sample, index); });
    row["edited"] = review.Touched(sample.GetNumber(), index);
    return row;
}

nlohmann::json CandidatesJson(CSampleData& sample, int index) {
    nlohmann::json rows = nlohmann::json::array();
    JsonRowsSink sink(rows);
    CElementalResultsData candidate;
    for (int e = 0; sample.GetMetabolite(index)->GetElementalResults(e, candidate); ++e) {
        sink.BeginRow();
        ElementalRecord(sink, sample.GetNumber(), index, e, candidate);
    }
    return rows;
}

nlohmann::json SampleAnswer(ServedReport& report, const std::string& method,
                            std::span<const std::string_view> segments, const Query& query) {
    const int number = NumberIn(segments[0], "a sample number");
    const auto rest = segments.subspan(1);
    if (rest.size() == 1 && rest[0] == "fragments")
        return FragmentAnswer(report, number, method);
    RequireMethod(method, "GET");
    if (rest.size() == 1 && rest[0] == "structure") {
        report.WithSamples([&](CSamples& samples) { SampleOf(samples, number); });
        const std::string molfile = report.Molfile(number);
        if (molfile.empty())
            throw ApiError(404, "sample " + std::to_string(number) + " embeds no structure");
        return {{"molfile", molfile}};
    }
    return report.WithSamples([&](CSamples& samples) -> nlohmann::json {
        CSampleData& sample = SampleOf(samples, number);
        if (rest.empty())
            return SampleSummary(sample);
        if (rest[0] == "metabolites")
            return MetaboliteRoutes(sample, rest.subspan(1), query, report.Review());
        return PlotAnswer(sample, rest, query);
    });
}

} // namespace quillon::tool::serve
