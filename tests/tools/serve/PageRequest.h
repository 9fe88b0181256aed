#pragma once

#include <serve/Http.h>
#include <serve/Router.h>

#include <string>

namespace quillon::tool::serve {

// The token and the address the in-process servers of the tests answer to.
constexpr const char* kPageToken = "0123456789abcdef0123456789abcdef";
inline RouterSettings PageSettings() {
    return {kPageToken, ServedHosts("127.0.0.1", 8765)};
}

// A request as the served page sends it: to its address, with its token cookie, and a change
// marked as the page's own. The target may carry a query ("/api/v1/batch?report=1").
inline HttpRequest PageRequest(const std::string& method, const std::string& target) {
    HttpRequest request;
    request.method = method;
    const size_t question = target.find('?');
    request.path = target.substr(0, question);
    if (question != std::string::npos)
        request.query = target.substr(question + 1);
    request.headers = {{"host", "127.0.0.1:8765"},
                       {"cookie", std::string("quillon_token=") + kPageToken}};
    if (method != "GET")
        request.headers["x-quillon-request"] = "1";
    return request;
}

} // namespace quillon::tool::serve
