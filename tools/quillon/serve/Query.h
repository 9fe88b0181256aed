#pragma once

// A request's query string: "a=1&b=x%20y" as names and decoded values, and its values as numbers
// with a clear error for bad ones.

#include <nlohmann/json.hpp>

#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quillon::tool::serve {

// A request the server refuses: the status (4xx/5xx) and the message of its {"error": ...} answer,
// with details merged into that answer ({"version": 8} for a stale change).
struct ApiError : std::runtime_error {
    ApiError(int statusCode, const std::string& message)
        : std::runtime_error(message), status(statusCode) {}
    int status;
    nlohmann::json details = nlohmann::json::object();
};

// "%41+b" as "A b". Throws ApiError 400 for a '%' not followed by two hex digits.
std::string PercentDecode(std::string_view text);

class Query {
public:
    // Parses "a=1&b=2"; a name without '=' has the value "". The last of repeated names wins.
    // Throws ApiError 400 for a malformed escape or more than 64 parameters.
    explicit Query(std::string_view text);

    bool Has(const std::string& name) const { return m_values.count(name) != 0; }
    std::optional<std::string> Text(const std::string& name) const;
    // The value as a finite number; none when absent; ApiError 400 naming the parameter when it
    // is not one ("width=abc", "area=1e999").
    std::optional<double> Number(const std::string& name) const;
    // The value as a whole number within [lowest, highest]; none when absent; ApiError 400
    // otherwise.
    std::optional<long long> Integer(const std::string& name, long long lowest,
                                     long long highest) const;
    // "1", "true" or "" (present without a value) are true; "0" and "false" false; ApiError 400
    // otherwise. False when absent.
    bool Flag(const std::string& name) const;

private:
    std::map<std::string, std::string> m_values;
};

// A whole number written in decimal ("12", "-3") within [lowest, highest]; none otherwise.
std::optional<long long> ParseInteger(std::string_view text, long long lowest, long long highest);

} // namespace quillon::tool::serve
