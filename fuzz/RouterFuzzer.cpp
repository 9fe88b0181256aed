// The web server's router: any method, path, query, headers and body are answered with a status
// and, for errors, a JSON {"error": ...}, without harm to the model served. The input is lines:
// method, path, query, then "name: value" header lines up to an empty line, then the body. The
// served address and the token are sent unless the input gives its own. The report served is a
// private copy of the example, so that edits, undo, redo, the journal and saves in place run on
// it; changes that start a fragment analysis (a thread per job) or save under a new name (a file
// per input) are not sent.

#include "FuzzSupport.h"

#include <serve/LoadReports.h>
#include <serve/Router.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

using namespace quillon::tool::serve;

namespace {

constexpr const char* kToken = "0123456789abcdef0123456789abcdef";

std::string_view NextLine(std::string_view& rest) {
    const size_t end = rest.find('\n');
    const std::string_view line = rest.substr(0, end);
    rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    return line;
}

HttpRequest RequestOf(std::string_view input) {
    HttpRequest request;
    request.method = NextLine(input);
    request.path = NextLine(input);
    request.query = NextLine(input);
    request.headers = {{"host", "127.0.0.1:8765"},
                       {"cookie", std::string("quillon_token=") + kToken}};
    for (std::string_view line = NextLine(input); !line.empty(); line = NextLine(input)) {
        const size_t colon = line.find(':');
        std::string name(line.substr(0, colon));
        for (char& c : name)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        request.headers[name] =
            colon == std::string_view::npos ? std::string() : std::string(line.substr(colon + 1));
    }
    request.body = input;
    return request;
}

// A change this target does not send: see the top of the file.
bool Unsent(const HttpRequest& request) {
    return request.method != "GET" && (request.path.find("fragments") != std::string::npos ||
                                       request.path.find("save-as") != std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ServedReports* reports = [] {
        quillon::fuzz::SilenceHost();
        const std::filesystem::path copy = quillon::fuzz::ProcessFolder() / "batch.txt";
        std::filesystem::copy_file(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt",
                                   copy, std::filesystem::copy_options::overwrite_existing);
        return new ServedReports(LoadReports({copy.string()}));
    }();
    static Router router(*reports, {kToken, ServedHosts("127.0.0.1", 8765)});
    const HttpRequest request =
        RequestOf(std::string_view(reinterpret_cast<const char*>(data), size));
    if (Unsent(request))
        return 0;
    const HttpResponse response = router.Handle(request);
    if (response.status < 200 || response.status > 599)
        std::abort();
    if (response.status >= 400 && response.body.rfind("{\"error\":", 0) != 0)
        std::abort();
    return 0;
}
