// The web server's router: any method, path, query, headers and body are answered with a status
// and, for errors, a JSON {"error": ...}, without harm to the model served. The input is lines:
// method, path, query, then "name: value" header lines up to an empty line, then the body. The
// served address and the token are sent unless the input gives its own; no request carries the
// change header, so that no fragment analysis starts and no edit, journal or save reaches the
// example report on disk.

#include "FuzzSupport.h"

#include <serve/LoadReports.h>
#include <serve/Router.h>

#include <cstdlib>
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
        if (name != "x-quillon-request")
            request.headers[name] = colon == std::string_view::npos
                                        ? std::string()
                                        : std::string(line.substr(colon + 1));
    }
    request.body = input;
    return request;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static ServedReports* reports = [] {
        quillon::fuzz::SilenceHost();
        return new ServedReports(
            LoadReports({QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt"}));
    }();
    static Router router(*reports, {kToken, ServedHosts("127.0.0.1", 8765)});
    const HttpResponse response =
        router.Handle(RequestOf(std::string_view(reinterpret_cast<const char*>(data), size)));
    if (response.status < 200 || response.status > 599)
        std::abort();
    if (response.status >= 400 && response.body.rfind("{\"error\":", 0) != 0)
        std::abort();
    return 0;
}
