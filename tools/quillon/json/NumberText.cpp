#include "NumberText.h"

#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

namespace quillon::tool {

namespace {

template <class Number>
char* WriteWithCharconv(char* out, Number value) {
    if (!std::isfinite(value))
        return nullptr;
    const auto [end, error] = std::to_chars(out, out + kShortestRoom, value);
    return error == std::errc() ? end : nullptr;
}

template <class Number>
bool AppendText(std::string& out, Number value) {
    char text[kShortestRoom];
    const char* end = WriteShortest(text, value);
    if (end == nullptr)
        return false;
    out.append(text, static_cast<size_t>(end - text));
    return true;
}

// A float that holds a whole number below 10^4 (a trace's intensity 33.0f) as that number, the
// common case, without the general search for the shortest text: "33". Below 10^4 the plain
// digits are always shorter than the scientific form. nullptr for every other value.
char* WriteSmallWhole(char* out, float value) {
    if (!(std::fabs(value) < 1e4f))
        return nullptr;
    const auto whole = static_cast<int>(value);
    if (static_cast<float>(whole) != value || (whole == 0 && std::signbit(value)))
        return nullptr;
    return std::to_chars(out, out + kShortestRoom, whole).ptr;
}

bool IsFloatValue(double value) {
    return std::isfinite(value) && std::fabs(value) <= std::numeric_limits<float>::max() &&
           static_cast<double>(static_cast<float>(value)) == value;
}

} // namespace

char* WriteShortest(char* out, float value) {
    char* end = WriteSmallWhole(out, value);
    return end != nullptr ? end : WriteWithCharconv(out, value);
}

char* WriteShortest(char* out, double value) {
    if (IsFloatValue(value))
        return WriteShortest(out, static_cast<float>(value));
    return WriteWithCharconv(out, value);
}

bool AppendShortest(std::string& out, float value) {
    return AppendText(out, value);
}

bool AppendShortest(std::string& out, double value) {
    return AppendText(out, value);
}

double AsShortestDouble(float value) {
    char text[kShortestRoom];
    const char* end = WriteShortest(text, value);
    double widened = value;
    if (end != nullptr)
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
