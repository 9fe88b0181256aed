#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace quillon::tool {

namespace {

template <class Number>
bool AppendWithCharconv(std::string& out, Number value) {
    if (!std::isfinite(value))
        return false;
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    if (error != std::errc())
        return false;
    out.append(text, end);
    return true;
}

bool IsFloatValue(double value) {
    return std::isfinite(value) && std::fabs(value) <= std::numeric_limits<float>::max() &&
           static_cast<double>(static_cast<float>(value)) == value;
}

} // namespace

bool AppendShortest(std::string& out, float value) {
    return AppendWithCharconv(out, value);
}

bool AppendShortest(std::string& out, double value) {
    if (IsFloatValue(value))
        return AppendWithCharconv(out, static_cast<float>(value));
    return AppendWithCharconv(out, value);
}

double AsShortestDouble(float value) {
    char text[32];
    const auto [end, error] = std::to_chars(text, text + sizeof text, value);
    double widened = value;
    if (error == std::errc())
        std::from_chars(text, end, widened);
    return widened;
}

double AsShortestDouble(double value) {
    return IsFloatValue(value) ? AsShortestDouble(static_cast<float>(value)) : value;
}

bool LooksIntegral(std::string_view text) {
    return text.find_first_of(".eE") == std::string_view::npos;
}

} // namespace quillon::tool

namespace quillon::tool {

bool ParseNumberText(std::string_view text, double& number) {
    const size_t start = text.find_first_not_of(" \t");
    if (start == std::string_view::npos)
        return false;
    text = text.substr(start, text.find_last_not_of(" \t") + 1 - start);
    if (!text.empty() && text.front() == '+')
        text.remove_prefix(1);
    double value = 0.0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
        return false;
    number = value;
    return true;
}

} // namespace quillon::tool
