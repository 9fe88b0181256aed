#include "Snapshot.h"

#include "Assets.h"

#include <chrono>
#include <set>
#include <thread>

namespace quillon::tool::serve {

namespace {

// Stores the answer to path under "path?report=R" (the key the page looks up, with a spectrum's
// "&function=F"); an answer that
// is an error (no structure, no spectrum) is left out, as the server would refuse it.
class Answers {
public:
    Answers(ServedReports& reports, nlohmann::json& store) : m_reports(reports), m_store(store) {}

    // extra: more query parameters; keyed: those of them that name the answer in the store.
    nlohmann::json Get(size_t report, const std::string& path, const std::string& extra = "",
                       const std::string& keyed = "") {
        const std::string query = "report=" + std::to_string(report);
        try {
            nlohmann::json answer = ApiAnswer(m_reports, "GET", path, Query(query + extra));
            m_store[path + "?" + query + keyed] = answer;
            return answer;
        } catch (const ApiError&) {
            return nullptr;
        }
    }

private:
    ServedReports& m_reports;
    nlohmann::json& m_store;
};

// Runs the sample's fragment analysis to its end and stores its answer.
void FragmentAnswers(Answers& answers, ServedReport& report, size_t index, int sample) {
    const std::shared_ptr<FragmentJob> job = report.StartJob(sample);
    while (job->state == kJobRunning)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    answers.Get(index, "samples/" + std::to_string(sample) + "/fragments");
}

void SampleAnswers(Answers& answers, size_t report, int sample) {
    const std::string base = "samples/" + std::to_string(sample);
    const std::string width = "&width=" + std::to_string(kSnapshotWidth);
    answers.Get(report, base);
    answers.Get(report, base + "/structure");
    for (const char* kind : {"expected", "all", "unexpected"})
        answers.Get(report, base + "/combined/" + kind, width);
    const nlohmann::json list = answers.Get(report, base + "/metabolites");
    std::set<long long> traces;
    std::set<std::pair<long long, long long>> spectra; // peak id, function
    for (const nlohmann::json& row : list["metabolites"]) {
        const std::string metabolite = base + "/metabolites/" + row["index"].dump();
        const nlohmann::json detail = answers.Get(report, metabolite);
        answers.Get(report, metabolite + "/candidates");
        answers.Get(report, metabolite + "/correlation");
        if (detail["plot_trace"].is_number() &&
            traces.insert(detail["plot_trace"].get<long long>()).second)
            answers.Get(report, base + "/traces/" + detail["plot_trace"].dump(), width);
        if (detail["spectrum_function"].is_number() &&
            spectra.insert({row["peak_id"].get<long long>(), detail["spectrum_function"]}).second) {
            const std::string function = "&function=" + detail["spectrum_function"].dump();
            answers.Get(report, base + "/spectra/" + row["peak_id"].dump(), function + "&full=1",
                        function);
        }
    }
}

// Text inlined into a <script> element must not close it or open a comment.
std::string ScriptSafe(std::string text) {
    for (const std::string_view bad : {"</", "<!--"}) {
        for (size_t at = text.find(bad); at != std::string::npos; at = text.find(bad, at + 2))
            text.replace(at, 1, "<\\");
    }
    return text;
}

} // namespace

nlohmann::json SnapshotAnswers(ServedReports& reports) {
    nlohmann::json store = nlohmann::json::object();
    store["reports"] = ApiAnswer(reports, "GET", "reports", Query(""));
    Answers answers(reports, store);
    for (size_t r = 0; r < reports.size(); ++r) {
        const nlohmann::json batch = answers.Get(r, "batch");
        for (const nlohmann::json& sample : batch["samples"]) {
            const int number = sample["sample"];
            SampleAnswers(answers, r, number);
            FragmentAnswers(answers, *reports[r], r, number);
        }
    }
    return store;
}

std::string SnapshotPage(const nlohmann::json& answers) {
    const Asset* page = FindAsset("index.html");
    const Asset* script = FindAsset("app.js");
    const Asset* style = FindAsset("app.css");
    std::string html(page->bytes);
    const std::string data = answers.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    auto replace = [&html](std::string_view from, const std::string& to) {
        const size_t at = html.find(from);
        if (at != std::string::npos)
            html.replace(at, from.size(), to);
    };
    replace("<link rel=\"stylesheet\" href=\"app.css\">",
            "<style>" + std::string(style->bytes) + "</style>");
    replace("<script src=\"app.js\"></script>",
            "<script>window.QUILLON_SNAPSHOT=" + ScriptSafe(data) + ";</script>\n<script>" +
                ScriptSafe(std::string(script->bytes)) + "</script>");
    return html;
}

} // namespace quillon::tool::serve
