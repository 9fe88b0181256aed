// Reviewing through the server, in process: every edit with undo and redo, stale pages, saving
// (in place, as a new file, refused over a report changed on disk, failing without harm) and the
// journal replayed into the same model after a crash.
#include "PageRequest.h"
#include "support/ChildProcess.h"
#include "support/ModelDump.h"
#include "support/TempFile.h"

#include <serve/LoadReports.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include <csignal>

#include <sys/resource.h>

namespace quillon::tool::serve {
namespace {

namespace fs = std::filesystem;
using quillon::testing::ModelDump;
using quillon::testing::ReadBytes;

// A sample of the example batch, and its first metabolite with elemental candidates (m/z
// 480.1183, four candidates).
constexpr int kSample = 4;
constexpr int kWithCandidates = 22;

// The model served, as text.
std::string ModelOf(ServedReport& report) {
    return report.WithSamples([](CSamples& samples) { return ModelDump::Of(samples); });
}

class ReviewTest : public ::testing::Test {
protected:
    void SetUp() override {
        fs::copy_file(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt", m_report);
        m_original = ReadBytes(m_report);
        Serve();
    }
    void TearDown() override {
        m_router.reset();
        m_reports.clear();
    }
    // A new server of the report, as after a restart.
    void Serve() {
        m_router.reset();
        m_reports.clear();
        m_reports = LoadReports({m_report.string()});
        m_router = std::make_unique<Router>(m_reports, PageSettings());
    }
    fs::path Journal() const { return m_folder / ".batch.txt.quillon-journal"; }

    // A request of the page; a change carries the current version unless version names another
    // (or none when negative).
    HttpRequest Request(const std::string& method, const std::string& target,
                        nlohmann::json body = nlohmann::json::object(),
                        std::optional<long long> version = std::nullopt) const {
        HttpRequest request = PageRequest(method, target);
        if (method != "GET" && version.value_or(0) >= 0)
            body["version"] = version ? *version : m_reports[0]->Version();
        request.body = body.dump();
        return request;
    }
    // Sends a request (see Request) expecting the status; answers the JSON answer.
    nlohmann::json Send(const std::string& method, const std::string& target, int status,
                        nlohmann::json body = nlohmann::json::object(),
                        std::optional<long long> version = std::nullopt) {
        const HttpResponse response = m_router->Handle(Request(method, target, body, version));
        EXPECT_EQ(response.status, status) << method << " " << target << ": " << response.body;
        return nlohmann::json::parse(response.body);
    }
    std::string Metabolite(int index) const {
        return "/api/v1/samples/" + std::to_string(kSample) + "/metabolites/" +
               std::to_string(index);
    }
    // Confirms, labels and deletes a candidate of metabolite m; undoes and redoes the delete.
    void Review(int m) {
        Send("PATCH", Metabolite(m), 200, {{"confirmed", true}});
        Send("PATCH", Metabolite(m), 200, {{"label", "hydroxylated, checked"}});
        Send("DELETE", Metabolite(m) + "/candidates/1", 200);
        Send("POST", "/api/v1/undo", 200);
        Send("POST", "/api/v1/redo", 200);
    }

    const quillon::testing::TempFile m_work{"batch.txt"};
    const fs::path m_folder = m_work.Folder();
    const fs::path m_report = m_work.Path();
    std::string m_original;
    ServedReports m_reports;
    std::unique_ptr<Router> m_router;
};

TEST_F(ReviewTest, EveryEditUndoesAndRedoesAndAStalePageIsRefused) {
    const int m = kWithCandidates;
    const std::string before = ModelOf(*m_reports[0]);
    const nlohmann::json candidates = Send("GET", Metabolite(m) + "/candidates", 200)["candidates"];
    ASSERT_EQ(candidates.size(), 4u);
    const long long first = m_reports[0]->Version();

    nlohmann::json answer = Send("PATCH", Metabolite(m), 200, {{"confirmed", true}});
    EXPECT_EQ(answer["changed"]["row"]["confirmed"], true);
    EXPECT_EQ(answer["changed"]["row"]["edited"], true);
    EXPECT_EQ(answer["review"]["unsaved"], 1);
    EXPECT_EQ(answer["version"], first + 1);
    // A page still at the first version is told the current one, and nothing changes.
    answer = Send("PATCH", Metabolite(m), 409, {{"label", "late"}}, first);
    EXPECT_EQ(answer["version"], first + 1);
    Send("PATCH", Metabolite(m), 428, {{"label", "x"}}, -1);

    answer = Send("PATCH", Metabolite(m), 200, {{"label", "hydroxylated, checked"}});
    EXPECT_EQ(answer["changed"]["row"]["label"], "hydroxylated, checked");
    answer = Send("DELETE", Metabolite(m) + "/candidates/0", 200);
    EXPECT_EQ(answer["changed"]["candidates"].size(), candidates.size() - 1);
    EXPECT_EQ(answer["changed"]["candidates"][0]["formula"], candidates[1]["formula"]);
    Send("PATCH", Metabolite(m), 200, {{"confirmed", false}});
    EXPECT_EQ(Send("GET", "/api/v1/review", 200)["review"]["unsaved"], 4);

    // Edits that cannot apply change nothing and are not counted.
    Send("PATCH", Metabolite(m), 400, {{"label", "two\nlines"}});
    Send("PATCH", Metabolite(m), 400, {{"label", "x"}, {"confirmed", true}});
    Send("DELETE", Metabolite(m) + "/candidates/99", 400);
    Send("PATCH", "/api/v1/samples/99999/metabolites/0", 400, {{"confirmed", true}});
    Send("POST", "/api/v1/redo", 409);
    const std::string edited = ModelOf(*m_reports[0]);

    for (int i = 0; i < 4; ++i)
        answer = Send("POST", "/api/v1/undo", 200);
    EXPECT_EQ(answer["changed"]["row"]["edited"], false);
    EXPECT_EQ(answer["review"]["unsaved"], 0);
    EXPECT_EQ(answer["review"]["can_redo"], true);
    Send("POST", "/api/v1/undo", 409);
    EXPECT_EQ(ModelOf(*m_reports[0]), before);
    EXPECT_EQ(Send("GET", Metabolite(m) + "/candidates", 200)["candidates"], candidates);

    for (int i = 0; i < 4; ++i)
        Send("POST", "/api/v1/redo", 200);
    EXPECT_EQ(ModelOf(*m_reports[0]), edited);
    EXPECT_EQ(Send("GET", "/api/v1/batch", 200)["review"]["unsaved"], 4);
}

TEST_F(ReviewTest, TheJournalReplaysIntoTheSameModelAfterACrash) {
    const std::string original = ModelOf(*m_reports[0]);
    const int m = kWithCandidates;
    Review(m);
    Send("PATCH", Metabolite(m + 1), 200, {{"label", "tab\u00e9 — non-ASCII"}});
    Send("POST", "/api/v1/undo", 200);
    const std::string reviewed = ModelOf(*m_reports[0]);
    ASSERT_TRUE(fs::exists(Journal()));
    // A second server of the report meanwhile neither offers this server's changes nor makes its
    // own.
    ServedReports second = LoadReports({m_report.string()});
    second[0]->WithSamples([&](CSamples& samples) {
        EXPECT_TRUE(second[0]->Review().State()["journal"].is_null());
        CMetaboliteEdit confirm;
        confirm.sample = kSample;
        confirm.metabolite = m;
        try {
            second[0]->Review().Edit(samples, confirm);
            ADD_FAILURE() << "the second server changed the report";
        } catch (const ApiError& error) {
            EXPECT_EQ(error.status, 409) << error.what();
        }
    });
    second.clear();
    // A crash in the middle of a line leaves a cut-off line at the end.
    std::ofstream(Journal(), std::ios::app) << "{\"time\":\"2026-11-25T14:0";

    Serve();
    nlohmann::json offer = Send("GET", "/api/v1/batch", 200)["review"]["journal"];
    EXPECT_EQ(offer["changes"], 3);
    EXPECT_EQ(offer["report_changed"], false);
    EXPECT_TRUE(offer["time"].is_string());
    // Nothing changes until the offer is answered.
    Send("PATCH", Metabolite(m), 409, {{"confirmed", false}});
    nlohmann::json answer = Send("POST", "/api/v1/journal/apply", 200);
    EXPECT_TRUE(answer["review"]["journal"].is_null());
    EXPECT_EQ(answer["review"]["unsaved"], 3);
    EXPECT_EQ(answer["review"]["can_redo"], true);
    EXPECT_EQ(ModelOf(*m_reports[0]), reviewed);
    // The resumed journal goes on: the cut-off line is gone, a redo replays after it.
    Send("POST", "/api/v1/redo", 200);
    const std::string redone = ModelOf(*m_reports[0]);
    Serve();
    Send("POST", "/api/v1/journal/apply", 200);
    EXPECT_EQ(ModelOf(*m_reports[0]), redone);

    Serve();
    Send("DELETE", "/api/v1/journal", 200);
    EXPECT_FALSE(fs::exists(Journal()));
    EXPECT_EQ(ModelOf(*m_reports[0]), original);
    Send("POST", "/api/v1/journal/apply", 409);

    // A journal that cannot be read is neither offered nor written after; a line that is no change
    // ends it.
    for (const char* damaged :
         {"not a journal\n", "{\"journal\":\"1\",\"size\":-4}\n", "{\"journal\":1}\n"}) {
        std::ofstream(Journal()) << damaged;
        Serve();
        EXPECT_TRUE(Send("GET", "/api/v1/review", 200)["review"]["journal"].is_null());
        Send("PATCH", Metabolite(m), 500, {{"confirmed", false}});
        EXPECT_EQ(ReadBytes(Journal()), damaged);
        EXPECT_EQ(ModelOf(*m_reports[0]), original);
    }
    // A journal without a whole change holds nothing to offer, and goes.
    std::ofstream(Journal()) << "{\"journal\":1,\"size\":1,\"modified_ns\":2,\"hash\":\"3\"}\n"
                             << "{\"op\":\"undo\",\"time\":12}\n";
    Serve();
    EXPECT_TRUE(Send("GET", "/api/v1/review", 200)["review"]["journal"].is_null());
    EXPECT_FALSE(fs::exists(Journal()));
}

TEST_F(ReviewTest, SavesWriteTheEditsAndNeverOverAReportChangedOnDisk) {
    const int m = kWithCandidates;
    Review(m);
    const std::string reviewed = ModelOf(*m_reports[0]);
    nlohmann::json answer = Send("POST", "/api/v1/save", 200);
    EXPECT_EQ(answer["review"]["unsaved"], 0);
    EXPECT_EQ(answer["review"]["can_undo"], false);
    EXPECT_TRUE(answer["review"]["saved_at"].is_string());
    EXPECT_FALSE(fs::exists(Journal()));
    Serve();
    EXPECT_EQ(ModelOf(*m_reports[0]), reviewed);
    const nlohmann::json reread = Send("GET", "/api/v1/batch", 200);
    EXPECT_EQ(reread["problem_count"], 0);
    EXPECT_TRUE(reread["review"]["journal"].is_null());

    // Another program replaces the report: saving over it is refused, saving as a new file
    // writes the edits into the report as it was read, and the review continues there.
    Send("PATCH", Metabolite(m), 200, {{"label", "second look"}});
    const std::string relabelled = ModelOf(*m_reports[0]);
    const std::string saved = ReadBytes(m_report);
    std::ofstream(m_folder / "other.txt", std::ios::binary)
        << saved << "# written by another program\n";
    fs::rename(m_folder / "other.txt", m_report);
    const std::string replaced = ReadBytes(m_report);
    EXPECT_EQ(Send("POST", "/api/v1/save", 409)["changed_on_disk"], true);
    EXPECT_EQ(ReadBytes(m_report), replaced);
    Send("POST", "/api/v1/save-as", 400, {{"name", "../outside.txt"}});
    Send("POST", "/api/v1/save-as", 400, {{"name", ".hidden"}});
    std::ofstream(m_folder / "taken.txt") << "another file\n";
    EXPECT_EQ(Send("POST", "/api/v1/save-as", 409, {{"name", "taken.txt"}})["exists"], true);
    EXPECT_EQ(ReadBytes(m_folder / "taken.txt"), "another file\n");
    answer = Send("POST", "/api/v1/save-as", 200, {{"name", "reviewed.txt"}});
    EXPECT_EQ(answer["review"]["file"], "reviewed.txt");
    EXPECT_EQ(answer["review"]["unsaved"], 0);
    EXPECT_EQ(ReadBytes(m_report), replaced);
    EXPECT_FALSE(fs::exists(Journal()));

    ServedReports copy = LoadReports({(m_folder / "reviewed.txt").string()});
    EXPECT_EQ(ModelOf(*copy[0]), relabelled);
    EXPECT_EQ(ReadBytes(m_folder / "reviewed.txt").find("another program"), std::string::npos);
}

// A save that fails half-way (a file-size limit, in a child process) is an error answer and
// leaves the report and the journal as they were.
TEST_F(ReviewTest, AFailedSaveLeavesTheReportAndTheJournal) {
    Review(kWithCandidates);
    const std::string journal = ReadBytes(Journal());
    const int failed = quillon::testing::RunInChild(false, [this] {
        ::signal(SIGXFSZ, SIG_IGN);
        const rlimit small{64 * 1024, 64 * 1024};
        return ::setrlimit(RLIMIT_FSIZE, &small) == 0 &&
               m_router->Handle(Request("POST", "/api/v1/save")).status == 500;
    });
    EXPECT_EQ(failed, 1);
    EXPECT_EQ(ReadBytes(m_report), m_original);
    EXPECT_EQ(ReadBytes(Journal()), journal);
}

} // namespace
} // namespace quillon::tool::serve
