#include "Router.h"

#include "Assets.h"

#include <random>

namespace quillon::tool::serve {

namespace {

constexpr std::string_view kCookie = "quillon_token";

// Compares without stopping at the first difference, so that timing tells nothing of the token.
bool SameSecret(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    unsigned char difference = 0;
    for (size_t i = 0; i < a.size(); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

std::string HeaderOf(const HttpRequest& request, const std::string& name) {
    const auto found = request.headers.find(name);
    return found == request.headers.end() ? std::string() : found->second;
}

// The value of the named cookie in a Cookie header ("a=1; quillon_token=ab"), empty when absent.
std::string_view CookieValue(std::string_view header, std::string_view name) {
    while (!header.empty()) {
        const size_t semicolon = header.find(';');
        std::string_view part = header.substr(0, semicolon);
        header =
            semicolon == std::string_view::npos ? std::string_view() : header.substr(semicolon + 1);
        while (!part.empty() && part.front() == ' ')
            part.remove_prefix(1);
        if (part.size() > name.size() && part.substr(0, name.size()) == name &&
            part[name.size()] == '=')
            return part.substr(name.size() + 1);
    }
    return {};
}

bool Changes(const std::string& method) {
    return method == "POST" || method == "PUT" || method == "PATCH" || method == "DELETE";
}

HttpResponse JsonResponse(int status, const nlohmann::json& body) {
    HttpResponse response;
    response.status = status;
    response.body = body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
    response.headers.emplace_back("Cache-Control", "no-store");
    return response;
}

} // namespace

HttpResponse ErrorResponse(int status, const std::string& message) {
    return JsonResponse(status, {{"error", message}});
}

std::vector<std::string> ServedHosts(const std::string& host, int port) {
    const std::string suffix = ":" + std::to_string(port);
    std::vector<std::string> hosts = {host + suffix};
    if (host == "127.0.0.1" || host == "localhost" || host == "::1")
        hosts = {"127.0.0.1" + suffix, "localhost" + suffix, "[::1]" + suffix};
    return hosts;
}

std::string NewToken() {
    std::random_device source;
    std::string token;
    static const char kHex[] = "0123456789abcdef";
    for (int word = 0; word < 4; ++word) {
        const std::uint32_t bits = source();
        for (int shift = 28; shift >= 0; shift -= 4)
            token += kHex[(bits >> shift) & 0xF];
    }
    return token;
}

bool Router::HasToken(const HttpRequest& request, const Query& query) const {
    const auto given = query.Text("token");
    if (given && SameSecret(*given, m_settings.token))
        return true;
    return SameSecret(CookieValue(HeaderOf(request, "cookie"), kCookie), m_settings.token);
}

HttpResponse Router::Handle(const HttpRequest& request) {
    try {
        const std::string host = HeaderOf(request, "host");
        bool servedHost = false;
        for (const std::string& served : m_settings.hosts)
            servedHost = servedHost || host == served;
        if (!servedHost)
            return ErrorResponse(403, "this server answers only to " + m_settings.hosts.front());
        if (request.body.size() > m_settings.largestBody)
            return ErrorResponse(413, "the request body exceeds " +
                                          std::to_string(m_settings.largestBody) + " bytes");
        const Query query(request.query);
        if (!HasToken(request, query))
            return ErrorResponse(403, "open the address with the token that quillon serve "
                                      "printed");
        if (Changes(request.method) && HeaderOf(request, "x-quillon-request") != "1")
            return ErrorResponse(403, "a change needs the header X-Quillon-Request: 1");
        return Route(request, query);
    } catch (const ApiError& error) {
        nlohmann::json body = error.details;
        body["error"] = error.what();
        return JsonResponse(error.status, body);
    } catch (const std::bad_alloc&) {
        return ErrorResponse(503, "out of memory");
    } catch (const std::exception& error) {
        return ErrorResponse(500, error.what());
    }
}

HttpResponse Router::Route(const HttpRequest& request, const Query& query) {
    const std::string_view api = "/api/v1/";
    if (request.path.compare(0, api.size(), api) == 0)
        return JsonResponse(200, ApiAnswer(m_reports, request.method,
                                           std::string_view(request.path).substr(api.size()), query,
                                           request.body, HeaderOf(request, "if-match")));
    if (request.method != "GET" && request.method != "HEAD")
        throw ApiError(405, "only GET is allowed here");
    if (request.path == "/" && query.Has("token")) {
        HttpResponse response;
        response.status = 303;
        response.contentType = "text/plain";
        response.headers = {{"Location", "/"},
                            {"Set-Cookie", std::string(kCookie) + "=" + m_settings.token +
                                               "; Path=/; HttpOnly; SameSite=Strict"}};
        return response;
    }
    const Asset* asset = FindAsset(request.path == "/" ? "index.html" : request.path.substr(1));
    if (asset == nullptr)
        throw ApiError(404, "no such page: " + request.path);
    HttpResponse response;
    response.contentType = std::string(asset->contentType);
    response.body = std::string(asset->bytes);
    response.headers = {{"Cache-Control", "no-cache"},
                        {"X-Content-Type-Options", "nosniff"},
                        {"Content-Security-Policy",
                         "default-src 'self'; img-src 'self' data:; style-src 'self' "
                         "'unsafe-inline'; frame-ancestors 'none'"}};
    return response;
}

} // namespace quillon::tool::serve
