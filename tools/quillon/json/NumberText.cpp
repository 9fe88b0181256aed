#include "NumberText.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
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

constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3,  1e4,  1e5, 1e6,
                                   1e7, 1e8, 1e9, 1e10, 1e11, 1e12};
constexpr int kMostDecimals = 12;

// For each float exponent, the most decimals d for which the float's spacing times 10^d is below
// 1, so that at most one d-decimal number reads back to the float (-1 when even d = 0 fails).
constexpr std::array<signed char, 256> kDecimalsFor = [] {
    std::array<signed char, 256> table{};
    for (int biased = 0; biased < 256; ++biased) {
        double spacing = 1.0; // 2^(biased - 150), the spacing of floats with this exponent
        for (int e = biased - 150; e > 0; --e)
            spacing *= 2.0;
        for (int e = biased - 150; e < 0; ++e)
            spacing /= 2.0;
        int decimals = -1;
        while (decimals < kMostDecimals && spacing * kPowersOfTen[decimals + 1] < 1.0)
            ++decimals;
        table[static_cast<size_t>(biased)] = static_cast<signed char>(decimals);
    }
    return table;
}();

constexpr std::uint64_t kPowersOfTenInt[] = {
    1,        10,        100,        1000,        10000,        100000,       1000000,
    10000000, 100000000, 1000000000, 10000000000, 100000000000, 1000000000000};

// Writes fraction as exactly places digits, leading zeros included, two at a time from the end:
// (45, 4) -> "0045". Returns the end.
char* WritePlaces(char* out, std::uint64_t fraction, int places) {
    static constexpr char kPairs[] =
        "00010203040506070809101112131415161718192021222324252627282930"
        "31323334353637383940414243444546474849505152535455565758596061"
        "6263646566676869707172737475767778798081828384858687888990919293"
        "949596979899";
    char* end = out + places;
    char* at = end;
    for (; places >= 2; places -= 2, fraction /= 100) {
        at -= 2;
        std::memcpy(at, kPairs + 2 * (fraction % 100), 2);
    }
    if (places == 1)
        *--at = static_cast<char>('0' + fraction);
    return end;
}

// The text std::to_chars gives a float of magnitude in [0.01, 2^22) with few enough digits, found
// without its general search. With d the most decimals of kDecimalsFor, the integer n nearest
// value * 10^d is the only d-decimal candidate; when it reads back to value, n / 10^d with its
// trailing zeros dropped is the shortest text, and the nearest to value. value * 10^d and the
// edges of the interval that reads back to value (value plus or minus half the spacing, times
// 10^d) are exact in a double for d <= 12 (25 significant bits times 5^d < 2^28). The cases that
// would need more care give nullptr, for std::to_chars: a power of two (its interval is
// lopsided), a candidate on the interval's edge or halfway between two integers, more digits
// than d decimals, and a whole number from 10^4 up ending in 0 (which may be shorter in
// scientific notation).
// 260.7292f: d = 4, n = 2607292 -> "260.7292"; a whole number is its digits: 33.0f -> "33".
char* WriteFewDigits(char* out, float value) {
    const float magnitude = std::fabs(value);
    // Whole numbers below 10^4 (most intensities) first, the cheapest test.
    if (magnitude >= 1.0f && magnitude < 1e4f) {
        const auto whole = static_cast<int>(value);
        if (static_cast<float>(whole) == value)
            return std::to_chars(out, out + kShortestRoom, whole).ptr;
    }
    if (!(magnitude >= 0.01f && magnitude < 4194304.0f))
        return nullptr;
    const auto bits = std::bit_cast<std::uint32_t>(magnitude);
    const int decimals = kDecimalsFor[bits >> 23];
    if ((bits & 0x7fffffu) == 0 || decimals < 0)
        return nullptr;
    const double exact = magnitude;
    const double half = (static_cast<double>(std::bit_cast<float>(bits + 1)) - exact) / 2;
    const double scale = kPowersOfTen[decimals];
    const double scaled = exact * scale;
    const auto below = static_cast<std::int64_t>(scaled);
    const double rest = scaled - static_cast<double>(below);
    const std::int64_t nearest = below + (rest > 0.5);
    const double candidate = static_cast<double>(nearest);
    if (rest == 0.5 || !(candidate > (exact - half) * scale && candidate < (exact + half) * scale))
        return nullptr;
    // The whole part from the float itself: rounding never carries into it, for a whole number
    // next to value is a float of its own, outside value's interval.
    const auto whole = static_cast<std::uint64_t>(magnitude);
    const std::uint64_t fraction =
        static_cast<std::uint64_t>(nearest) - whole * kPowersOfTenInt[decimals];
    if (fraction == 0 && magnitude >= 1e4f && whole % 10 == 0)
        return nullptr;
    if (value < 0)
        *out++ = '-';
    out = std::to_chars(out, out + kShortestRoom, whole).ptr;
    if (fraction == 0)
        return out;
    *out++ = '.';
    char* end = WritePlaces(out, fraction, decimals);
    while (end[-1] == '0')
        --end;
    return end;
}

bool IsFloatValue(double value) {
    return std::isfinite(value) && std::fabs(value) <= std::numeric_limits<float>::max() &&
           static_cast<double>(static_cast<float>(value)) == value;
}

} // namespace

char* WriteShortest(char* out, float value) {
    char* end = WriteFewDigits(out, value);
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
    // A plain loop: find_first_of would search the three characters once per character.
    for (const char ch : text)
        if (ch == '.' || ch == 'e' || ch == 'E')
            return false;
    return true;
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
