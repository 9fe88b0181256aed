#pragma once

// A request and its answer as plain values, so that the router runs without sockets (tests, the
// fuzz target) and the network adapter only copies fields in and out.

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace quillon::tool::serve {

struct HttpRequest {
    std::string method;                         // "GET", "POST", ...
    std::string path;                           // "/api/v1/batch", percent-decoded
    std::string query;                          // "report=0&width=800", raw
    std::map<std::string, std::string> headers; // names in lower case
    std::string body;
};

struct HttpResponse {
    int status = 200;
    std::string contentType = "application/json";
    std::string body;
    std::vector<std::pair<std::string, std::string>> headers; // extra headers (Set-Cookie, ...)
};

} // namespace quillon::tool::serve
