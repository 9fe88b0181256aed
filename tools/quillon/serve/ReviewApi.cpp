#include "ReviewApi.h"

#include "ApiSample.h"
#include "EditJson.h"
#include "Query.h"

namespace quillon::tool::serve {

namespace {

nlohmann::json BodyOf(const ChangeRequest& request) {
    if (request.body.empty())
        return nlohmann::json::object();
    nlohmann::json body = nlohmann::json::parse(request.body, nullptr, false);
    if (!body.is_object())
        throw ApiError(400, "the request body is not a JSON object");
    return body;
}

// The version the change was made against: If-Match, else the body's "version".
long long VersionOf(const ChangeRequest& request, const nlohmann::json& body) {
    std::string_view tag = request.ifMatch;
    if (tag.substr(0, 2) == "W/")
        tag.remove_prefix(2);
    if (tag.size() >= 2 && tag.front() == '"' && tag.back() == '"')
        tag = tag.substr(1, tag.size() - 2);
    if (!tag.empty()) {
        const auto version = ParseInteger(tag, 0, 1LL << 62);
        if (!version)
            throw ApiError(400, "If-Match names no version: " + std::string(request.ifMatch));
        return *version;
    }
    if (body.contains("version") && body.at("version").is_number_integer())
        return body.at("version").get<long long>();
    throw ApiError(428, "a change names the version of the model it was made against "
                        "(If-Match, or \"version\" in its body)");
}

int NumberOf(std::string_view segment, const char* what) {
    const auto number = ParseInteger(segment, -1'000'000'000, 1'000'000'000);
    if (!number)
        throw ApiError(400, std::string(what) + " must be a whole number, not '" +
                                std::string(segment) + "'");
    return static_cast<int>(*number);
}

// The edit a PATCH of a metabolite asks for: {"confirmed": true|false} or {"label": "text"}.
CMetaboliteEdit PatchEdit(const nlohmann::json& body, int sample, int metabolite) {
    const bool confirm = body.contains("confirmed");
    const bool label = body.contains("label");
    if (confirm == label)
        throw ApiError(400, "a change sets either \"confirmed\" or \"label\"");
    nlohmann::json edit = {{"sample", sample}, {"metabolite", metabolite}};
    if (confirm) {
        if (!body.at("confirmed").is_boolean())
            throw ApiError(400, "\"confirmed\" is true or false");
        edit["kind"] = body.at("confirmed").get<bool>() ? "confirm" : "unconfirm";
    } else {
        edit["kind"] = "label";
        edit["label"] = body.at("label");
    }
    return EditOfJson(edit);
}

// The edit the request asks for, when it is a PATCH of a metabolite or a DELETE of a candidate.
std::optional<CMetaboliteEdit> EditOf(const ChangeRequest& request, const nlohmann::json& body,
                                      std::span<const std::string_view> segments) {
    const bool metabolite =
        segments.size() >= 4 && segments[0] == "samples" && segments[2] == "metabolites";
    if (metabolite && segments.size() == 4 && request.method == "PATCH")
        return PatchEdit(body, NumberOf(segments[1], "a sample number"),
                         NumberOf(segments[3], "a metabolite index"));
    if (metabolite && segments.size() == 6 && segments[4] == "candidates" &&
        request.method == "DELETE") {
        CMetaboliteEdit edit;
        edit.kind = CMetaboliteEdit::DeleteElemental;
        edit.sample = NumberOf(segments[1], "a sample number");
        edit.metabolite = NumberOf(segments[3], "a metabolite index");
        edit.candidate = NumberOf(segments[5], "a candidate index");
        return edit;
    }
    return std::nullopt;
}

// What a review operation names: "undo", "save-as", "journal/apply", ...
std::string OperationOf(std::span<const std::string_view> segments) {
    std::string name;
    for (std::string_view segment : segments)
        name += (name.empty() ? "" : "/") + std::string(segment);
    return name;
}

nlohmann::json Changed(CSamples& samples, const ReportReview& review, const CMetaboliteEdit& edit) {
    for (int i = 0; i < samples.GetSamplesCount(); ++i) {
        CSampleData& sample = *samples.GetSample(i);
        if (sample.GetNumber() == edit.sample)
            return {{"sample", edit.sample},
                    {"metabolite", edit.metabolite},
                    {"row", MetaboliteRowJson(sample, edit.metabolite, review)},
                    {"candidates", CandidatesJson(sample, edit.metabolite)}};
    }
    return nullptr;
}

// Runs operation on the review, the model locked and its version checked.
nlohmann::json Operate(ServedReport& report, const ChangeRequest& request,
                       const nlohmann::json& body, const std::string& operation,
                       const std::optional<CMetaboliteEdit>& edit) {
    return report.WithSamples([&](CSamples& samples) {
        ReportReview& review = report.Review();
        const long long version = VersionOf(request, body);
        if (version != report.Version()) {
            ApiError stale(409, "the report changed since this page loaded it (in another tab?): "
                                "reload the page to see the changes");
            stale.details = {{"version", report.Version()}, {"stale", true}};
            throw stale;
        }
        nlohmann::json answer = nlohmann::json::object();
        std::optional<CMetaboliteEdit> changed;
        if (edit) {
            review.Edit(samples, *edit);
            changed = edit;
        } else if (operation == "undo") {
            changed = review.Undo(samples);
        } else if (operation == "redo") {
            changed = review.Redo(samples);
        } else if (operation == "save") {
            review.Save(samples);
        } else if (operation == "save-as") {
            if (!body.contains("name") || !body.at("name").is_string())
                throw ApiError(400, "save-as needs the new file's \"name\"");
            const auto replace = body.find("replace");
            review.SaveAs(samples, body.at("name").get<std::string>(),
                          replace != body.end() && *replace == true);
        } else if (operation == "journal/apply") {
            review.ApplyJournal(samples);
        } else {
            review.DiscardJournal();
        }
        if (changed || operation == "journal/apply")
            report.Changed();
        if (changed)
            answer["changed"] = Changed(samples, review, *changed);
        answer["review"] = review.State();
        answer["version"] = report.Version();
        return answer;
    });
}

} // namespace

std::optional<nlohmann::json> ReviewAnswer(ServedReport& report, const ChangeRequest& request,
                                           std::span<const std::string_view> segments) {
    if (segments.size() == 1 && segments[0] == "review") {
        if (request.method != "GET")
            throw ApiError(405, "only GET is allowed here");
        return report.WithSamples([&](CSamples&) {
            return nlohmann::json{{"review", report.Review().State()}};
        });
    }
    const std::string operation = OperationOf(segments);
    const bool post = operation == "undo" || operation == "redo" || operation == "save" ||
                      operation == "save-as" || operation == "journal/apply";
    if (post || operation == "journal") {
        if (request.method != (post ? "POST" : "DELETE"))
            throw ApiError(405,
                           std::string("only ") + (post ? "POST" : "DELETE") + " is allowed here");
        return Operate(report, request, BodyOf(request), operation, std::nullopt);
    }
    if (request.method != "PATCH" && request.method != "DELETE")
        return std::nullopt;
    const nlohmann::json body = BodyOf(request);
    const std::optional<CMetaboliteEdit> edit = EditOf(request, body, segments);
    if (!edit)
        return std::nullopt;
    return Operate(report, request, body, "edit", edit);
}

} // namespace quillon::tool::serve
