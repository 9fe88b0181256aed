// The web server's answers, in process: the security checks, every route's shape, the filters,
// the fragment job and bad input.
#include "PageRequest.h"
#include "support/TempFile.h"

#include <serve/LoadReports.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

namespace quillon::tool::serve {
namespace {

using quillon::testing::ReadBytes;

// The example batch, read once for every test.
ServedReports& Example() {
    static ServedReports reports =
        LoadReports({QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt"});
    return reports;
}

class RouterTest : public ::testing::Test {
protected:
    HttpResponse Send(const HttpRequest& request) { return m_router.Handle(request); }
    // The JSON answer to a GET, expecting the status.
    nlohmann::json Get(const std::string& target, int status = 200) {
        const HttpResponse response = Send(PageRequest("GET", target));
        EXPECT_EQ(response.status, status) << target << ": " << response.body;
        EXPECT_EQ(response.contentType, "application/json") << target;
        nlohmann::json body = nlohmann::json::parse(response.body);
        if (status != 200) {
            EXPECT_TRUE(body["error"].is_string()) << target;
        }
        return body;
    }

    Router m_router{Example(), PageSettings()};
};

TEST_F(RouterTest, RefusesForeignHostsMissingTokensUnmarkedChangesAndLargeBodies) {
    HttpRequest request = PageRequest("GET", "/api/v1/batch");
    request.headers["host"] = "attacker.example:8765";
    EXPECT_EQ(Send(request).status, 403);

    request = PageRequest("GET", "/api/v1/batch");
    request.headers.erase("cookie");
    EXPECT_EQ(Send(request).status, 403);
    request.headers["cookie"] = "quillon_token=0123456789abcdef0123456789abcdee";
    EXPECT_EQ(Send(request).status, 403);
    request.query = std::string("token=") + kPageToken;
    EXPECT_EQ(Send(request).status, 200);

    // The first visit with the token sets the cookie and leaves the token out of the address.
    request = PageRequest("GET", std::string("/?token=") + kPageToken);
    request.headers.erase("cookie");
    const HttpResponse first = Send(request);
    EXPECT_EQ(first.status, 303);
    bool cookie = false;
    for (const auto& [name, value] : first.headers)
        cookie = cookie || (name == "Set-Cookie" &&
                            value.find(std::string("quillon_token=") + kPageToken) == 0 &&
                            value.find("HttpOnly") != std::string::npos &&
                            value.find("SameSite=Strict") != std::string::npos);
    EXPECT_TRUE(cookie);

    HttpRequest change = PageRequest("POST", "/api/v1/samples/1/fragments");
    change.headers.erase("x-quillon-request");
    EXPECT_EQ(Send(change).status, 403);
    change.method = "GET";
    change.body.assign(100 * 1024, 'x');
    EXPECT_EQ(Send(change).status, 413);
}

TEST_F(RouterTest, ServesThePageAndItsFilesOnly) {
    EXPECT_NE(Send(PageRequest("GET", "/")).contentType.find("text/html"), std::string::npos);
    EXPECT_EQ(Send(PageRequest("GET", "/app.js")).status, 200);
    for (const char* path : {"/../../etc/passwd", "/etc/passwd", "/api/v2/batch", "/app.js/x"})
        EXPECT_EQ(Send(PageRequest("GET", path)).status, 404) << path;
}

TEST_F(RouterTest, BatchAndSampleAnswersCarryTheModelAndItsVersion) {
    EXPECT_EQ(Get("/api/v1/reports")["reports"][0]["name"], "Chlorpromazine_HLM_batch.txt");
    const nlohmann::json batch = Get("/api/v1/batch");
    EXPECT_EQ(batch["report"], 0);
    ASSERT_EQ(batch["samples"].size(), 6u);
    EXPECT_EQ(batch["samples"][3]["sample"], 4);
    EXPECT_EQ(batch["summary"][0]["counts"].size(), 6u);
    EXPECT_EQ(batch["stability"].size(), 1u);
    const nlohmann::json sample = Get("/api/v1/samples/4");
    EXPECT_EQ(sample["sample"]["sample"], 4);
    EXPECT_FALSE(sample["traces"].empty());
    EXPECT_EQ(sample["version"], batch["version"]);
}

TEST_F(RouterTest, ADamagedReportIsServedWithWhatReadingPassedOver) {
    EXPECT_EQ(Get("/api/v1/batch")["problem_count"], 0);
    std::string text = ReadBytes(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt");
    const size_t time = text.find("SubjectTime\t") + std::strlen("SubjectTime\t");
    text.replace(time, text.find('\n', time) - time, "sixty");
    const quillon::testing::TempFile file("damaged-report.txt");
    file.Write(text);

    ServedReports damaged = LoadReports({file.Path()});
    Router router{damaged, PageSettings()};
    const nlohmann::json batch =
        nlohmann::json::parse(router.Handle(PageRequest("GET", "/api/v1/batch")).body);
    EXPECT_EQ(batch["problem_count"], 1);
    ASSERT_EQ(batch["problems"].size(), 1u);
    EXPECT_NE(batch["problems"][0].get<std::string>().find("\"SubjectTime\" holds \"sixty\""),
              std::string::npos)
        << batch["problems"];
}

TEST_F(RouterTest, MetaboliteFiltersKeepOnlyMatchingRows) {
    const std::string base = "/api/v1/samples/2/metabolites";
    const nlohmann::json all = Get(base);
    ASSERT_GT(all["metabolites"].size(), 2u);
    EXPECT_EQ(all["total"], all["metabolites"].size());
    EXPECT_TRUE(all["metabolites"][0]["found"].is_boolean());

    // Time and mass-defect windows sift the unexpected metabolites; the area threshold every
    // metabolite of a low-energy function.
    const nlohmann::json timed = Get(base + "?time_low=3&time_high=6");
    for (const nlohmann::json& row : timed["metabolites"])
        if (row["kind"] == "unexpected") {
            EXPECT_GE(row["time_min"].get<double>(), 3.0);
            EXPECT_LE(row["time_min"].get<double>(), 6.0);
        }
    const nlohmann::json strong = Get(base + "?area=1e30");
    EXPECT_LT(strong["metabolites"].size(), all["metabolites"].size());
    for (const nlohmann::json& row : strong["metabolites"])
        EXPECT_TRUE(row["high_energy"] == true) << row.dump();
    // Relative to its group and on unexpected rows only, in a sample with unexpected ones.
    const std::string fourth = "/api/v1/samples/4/metabolites";
    auto unexpected = [](const nlohmann::json& rows) {
        return std::count_if(rows.begin(), rows.end(),
                             [](const nlohmann::json& row) { return row["kind"] == "unexpected"; });
    };
    const nlohmann::json every = Get(fourth)["metabolites"];
    const nlohmann::json relative =
        Get(fourth + "?relative_area=50&area_unexpected_only=1&with_elemental=1")["metabolites"];
    EXPECT_LT(unexpected(relative), unexpected(every));
    EXPECT_GT(unexpected(relative), 0);
    for (const nlohmann::json& row : relative) {
        if (row["kind"] == "unexpected" && row["high_energy"] == false) {
            EXPECT_GT(row["area_percent"].get<double>(), 50.0) << row.dump();
            EXPECT_FALSE(
                Get(fourth + "/" + row["index"].dump() + "/candidates")["candidates"].empty());
        }
    }
    const std::string first = base + "/" + all["metabolites"][0]["index"].dump();
    EXPECT_EQ(Get(first)["metabolite"]["name"], all["metabolites"][0]["name"]);
    EXPECT_TRUE(Get(first + "/correlation")["correlation"].is_array());
}

TEST_F(RouterTest, PlotsAreThinnedToTheWidthUnlessAllPointsAreAsked) {
    // The parent of sample 2: its trace and its spectrum.
    const std::string sample = "/api/v1/samples/2";
    const nlohmann::json detail = Get(sample + "/metabolites/0");
    ASSERT_TRUE(detail["plot_trace"].is_number() && detail["spectrum_function"].is_number());
    const std::string trace = sample + "/traces/" + detail["plot_trace"].dump();
    const nlohmann::json full = Get(trace + "?full=1");
    const nlohmann::json thin = Get(trace + "?width=20");
    EXPECT_EQ(full["points"]["x"].size(), full["points"]["total"]);
    EXPECT_LE(thin["points"]["x"].size(), 40u);
    EXPECT_EQ(thin["points"]["total"], full["points"]["total"]);
    const auto highest = [](const nlohmann::json& y) {
        return *std::max_element(y.begin(), y.end());
    };
    EXPECT_EQ(highest(thin["points"]["y"]), highest(full["points"]["y"]));
    EXPECT_FALSE(full["peaks"].empty());

    const nlohmann::json spectrum =
        Get(sample + "/spectra/" + detail["metabolite"]["peak_id"].dump() +
            "?full=1&function=" + detail["spectrum_function"].dump());
    EXPECT_FALSE(spectrum["points"]["x"].empty());
    EXPECT_EQ(spectrum["spectrum"]["function"], detail["spectrum_function"]);
    EXPECT_TRUE(Get(sample + "/combined/all?width=300")["points"]["x"].is_array());
    EXPECT_TRUE(Get(sample + "/peaks")["peaks"].is_array());
}

TEST_F(RouterTest, BadRequestsAreClearErrors) {
    const std::string sample = "/api/v1/samples/1";
    const std::pair<const char*, int> cases[] = {
        {"/api/v1/samples/99999", 404},
        {"/api/v1/samples/x1", 400},
        {"/api/v1/samples/99999999999999999999", 400},
        {"/api/v1/batch?report=3", 404},
        {"/api/v1/batch?report=-1", 404},
        {"/api/v1/nothing", 404},
    };
    for (const auto& [target, status] : cases)
        Get(target, status);
    const std::pair<std::string, int> beneath[] = {
        {"/metabolites/100000", 404},
        {"/metabolites/-1/candidates", 404},
        {"/metabolites?area=1e999", 400},
        {"/metabolites?time_low=5", 400},
        {"/metabolites?time_low=6&time_high=5", 400},
        {"/metabolites?hide_high_energy=maybe", 400},
        {"/metabolites?area=1&relative_area=1", 400},
        {"/metabolites?area_unexpected_only=1", 400},
        {"/metabolites?mass_defect_low=1.5&mass_defect_high=0.1", 400},
        {"/metabolites?mass_error=-1", 400},
        {"/metabolites?area=%zz", 400},
        {"/traces/0", 404},
        {"/traces/1?width=100000000", 400},
        {"/traces/1?width=0", 400},
        {"/combined/some", 404},
        {"/spectra/-3", 404},
        {"/nothing/here/at/all", 404},
    };
    for (const auto& [rest, status] : beneath)
        Get(sample + rest, status);
    EXPECT_EQ(Send(PageRequest("PUT", "/api/v1/batch")).status, 405);
}

TEST_F(RouterTest, FragmentAnalysisRunsAsAJob) {
    const std::string sample = "/api/v1/samples/2/fragments";
    ASSERT_EQ(Send(PageRequest("POST", sample)).status, 200);
    nlohmann::json job;
    for (int poll = 0; poll < 2000; ++poll) {
        job = Get(sample);
        if (job["state"] != "running")
            break;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    ASSERT_EQ(job["state"], "done") << job.dump();
    EXPECT_EQ(job["progress"], 1.0);
    ASSERT_FALSE(job["result"]["rows"].empty());
    EXPECT_TRUE(job["result"]["rows"][0]["kind"].is_string());

    EXPECT_EQ(Send(PageRequest("DELETE", sample)).status, 200);
}

} // namespace
} // namespace quillon::tool::serve
