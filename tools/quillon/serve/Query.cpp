#include "Query.h"

#include <charconv>
#include <cmath>

namespace quillon::tool::serve {

namespace {

int HexDigit(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

constexpr size_t kMostParameters = 64;

} // namespace

std::string PercentDecode(std::string_view text) {
    std::string decoded;
    decoded.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '+') {
            decoded += ' ';
        } else if (text[i] != '%') {
            decoded += text[i];
        } else {
            const int high = i + 1 < text.size() ? HexDigit(text[i + 1]) : -1;
            const int low = i + 2 < text.size() ? HexDigit(text[i + 2]) : -1;
            if (high < 0 || low < 0)
                throw ApiError(400, "malformed query: a '%' must be followed by two hex digits");
            decoded += static_cast<char>(high * 16 + low);
            i += 2;
        }
    }
    return decoded;
}

Query::Query(std::string_view text) {
    while (!text.empty()) {
        const size_t amp = text.find('&');
        const std::string_view part = text.substr(0, amp);
        text = amp == std::string_view::npos ? std::string_view() : text.substr(amp + 1);
        if (part.empty())
            continue;
        if (m_values.size() == kMostParameters)
            throw ApiError(400, "malformed query: more than 64 parameters");
        const size_t equals = part.find('=');
        m_values[PercentDecode(part.substr(0, equals))] =
            equals == std::string_view::npos ? std::string()
                                             : PercentDecode(part.substr(equals + 1));
    }
}

std::optional<std::string> Query::Text(const std::string& name) const {
    const auto found = m_values.find(name);
    if (found == m_values.end())
        return std::nullopt;
    return found->second;
}

std::optional<double> Query::Number(const std::string& name) const {
    const auto text = Text(name);
    if (!text)
        return std::nullopt;
    double value = 0.0;
    const char* end = text->data() + text->size();
    const auto [stop, error] = std::from_chars(text->data(), end, value);
    if (text->empty() || error != std::errc() || stop != end || !std::isfinite(value))
        throw ApiError(400, "'" + name + "' must be a number, not '" + *text + "'");
    return value;
}

std::optional<long long> Query::Integer(const std::string& name, long long lowest,
                                        long long highest) const {
    const auto text = Text(name);
    if (!text)
        return std::nullopt;
    const auto value = ParseInteger(*text, lowest, highest);
    if (!value)
        throw ApiError(400, "'" + name + "' must be a whole number from " + std::to_string(lowest) +
                                " to " + std::to_string(highest) + ", not '" + *text + "'");
    return value;
}

bool Query::Flag(const std::string& name) const {
    const auto text = Text(name);
    if (!text || *text == "0" || *text == "false")
        return false;
    if (text->empty() || *text == "1" || *text == "true")
        return true;
    throw ApiError(400, "'" + name + "' must be 1 or 0, not '" + *text + "'");
}

std::optional<long long> ParseInteger(std::string_view text, long long lowest, long long highest) {
    long long value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (text.empty() || error != std::errc() || stop != end || value < lowest || value > highest)
        return std::nullopt;
    return value;
}

} // namespace quillon::tool::serve
