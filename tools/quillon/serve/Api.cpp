#include "Api.h"

#include "ApiSample.h"
#include "ReviewApi.h"

#include "../ReadFindings.h"
#include "../json/ModelJson.h"
#include "../json/ModelRecords.h"
#include "../json/StabilityJson.h"

namespace quillon::tool::serve {

namespace {

std::vector<std::string_view> Segments(std::string_view path) {
    std::vector<std::string_view> segments;
    while (!path.empty()) {
        const size_t slash = path.find('/');
        if (slash != 0)
            segments.push_back(path.substr(0, slash));
        if (slash == std::string_view::npos || segments.size() > 8)
            break;
        path.remove_prefix(slash + 1);
    }
    return segments;
}

// The index of the report the query names ("report=1"), the first by default.
size_t ReportIndex(const ServedReports& reports, const Query& query) {
    if (reports.empty())
        throw ApiError(404, "no report is served");
    const auto index =
        query.Text("report")
            ? ParseInteger(*query.Text("report"), 0, static_cast<long long>(reports.size()) - 1)
            : 0;
    if (!index)
        throw ApiError(404, "no report " + *query.Text("report") + " is served");
    return static_cast<size_t>(*index);
}

nlohmann::json ReportsAnswer(ServedReports& reports) {
    nlohmann::json list = nlohmann::json::array();
    for (size_t i = 0; i < reports.size(); ++i)
        list.push_back(
            {{"report", i}, {"name", reports[i]->Name()}, {"version", reports[i]->Version()}});
    return {{"reports", std::move(list)}};
}

nlohmann::json BatchAnswer(CSamples& samples, const ReportReview& review) {
    nlohmann::json rows = nlohmann::json::array();
    JsonRowsSink sink(rows);
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        sink.BeginRow();
        SampleRecord(sink, *samples.GetSample(i));
    }
    CArray<MetaboliteCountInfo> summary;
    samples.CreateOverallMSSummaryData(summary, -1, -1);
    nlohmann::json found = nlohmann::json::array();
    for (const MetaboliteCountInfo& entry : summary)
        found.push_back({{"metabolite", entry.name.str()},
                         {"shift", entry.label.str()},
                         {"counts", std::vector<int>(entry.counts.begin(), entry.counts.end())}});
    CArray<CMetabolicStabilityInfo> series;
    samples.CreateMetabolicStabilityAnalysis(series);
    nlohmann::json stability = nlohmann::json::array();
    for (const CMetabolicStabilityInfo& info : series)
        stability.push_back(StabilityJson(info));
    return {{"samples", std::move(rows)},
            {"summary", std::move(found)},
            {"stability", std::move(stability)},
            {"problem_count", samples.GetReadReport().ProblemCount()},
            {"problems", ReadFindings(samples.GetReadReport())},
            {"review", review.State()}};
}

} // namespace

nlohmann::json ApiAnswer(ServedReports& reports, const std::string& method, std::string_view path,
                         const Query& query, std::string_view body, std::string_view ifMatch) {
    const std::vector<std::string_view> segments = Segments(path);
    if (segments.size() == 1 && segments[0] == "reports") {
        if (method != "GET")
            throw ApiError(405, "only GET is allowed here");
        return ReportsAnswer(reports);
    }
    const size_t index = ReportIndex(reports, query);
    ServedReport& report = *reports[index];
    nlohmann::json answer;
    if (auto review = ReviewAnswer(report, {method, body, ifMatch}, segments)) {
        answer = std::move(*review);
    } else if (segments.size() == 1 && segments[0] == "batch") {
        if (method != "GET")
            throw ApiError(405, "only GET is allowed here");
        answer = report.WithSamples(
            [&](CSamples& samples) { return BatchAnswer(samples, report.Review()); });
    } else if (segments.size() >= 2 && segments[0] == "samples") {
        answer = SampleAnswer(report, method, {segments.begin() + 1, segments.end()}, query);
    } else {
        throw ApiError(404, "no such resource: /api/v1/" + std::string(path));
    }
    answer["report"] = index;
    // A change's answer names the version it produced, taken with the model still locked.
    if (!answer.contains("version"))
        answer["version"] = report.Version();
    return answer;
}

} // namespace quillon::tool::serve
