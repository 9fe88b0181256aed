#pragma once

// The server's answer to any request, a plain function of the request so that it is tested and
// fuzzed without sockets. Before anything else it checks, in this order:
// - the Host header names the address served (a foreign name means DNS rebinding): 403;
// - the body is within the limit: 413;
// - the token: the "quillon_token" cookie or a "token" query parameter equal to the server's;
//   403 without either. The first page visit with "?token=" sets the cookie (HttpOnly,
//   SameSite=Strict) and is sent on to "/" so that the token leaves the address bar;
// - requests that change something (POST, PUT, PATCH, DELETE) carry "X-Quillon-Request: 1", which
//   a foreign page cannot send without the browser asking first: 403 without it.
// Then "/" is the page, "/app.js" and the like its files, "/api/v1/..." the API (Api.h). Every
// error is {"error": "..."} with its status, and what the error names besides ({"version": 8} for
// a change made from a stale page).

#include "Api.h"
#include "Http.h"

#include <string>
#include <vector>

namespace quillon::tool::serve {

struct RouterSettings {
    std::string token;              // 32 hex digits
    std::vector<std::string> hosts; // Host header values accepted ("127.0.0.1:8765", ...)
    size_t largestBody = 64 * 1024;
};

// The Host values a server bound to host:port answers to: that address, and for a loopback
// address also "localhost" and "127.0.0.1" with the port.
std::vector<std::string> ServedHosts(const std::string& host, int port);

// 128 random bits as 32 hex digits from the system's random source.
std::string NewToken();

class Router {
public:
    Router(ServedReports& reports, RouterSettings settings)
        : m_reports(reports), m_settings(std::move(settings)) {}

    HttpResponse Handle(const HttpRequest& request);

private:
    HttpResponse Route(const HttpRequest& request, const Query& query);
    bool HasToken(const HttpRequest& request, const Query& query) const;

    ServedReports& m_reports;
    RouterSettings m_settings;
};

// {"error": message} with the status.
HttpResponse ErrorResponse(int status, const std::string& message);

} // namespace quillon::tool::serve
