#include <quillon/platform/Numbers.h>

#include <charconv>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <locale.h>
#include <string>

namespace quillon {

namespace {

bool IsBlank(char ch) {
    return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\v' || ch == '\f' || ch == '\r';
}

// Skips blanks and a sign; returns where the number proper starts and whether it is negative.
size_t SkipToNumber(std::string_view text, bool& negative) {
    size_t at = 0;
    while (at < text.size() && IsBlank(text[at]))
        ++at;
    negative = false;
    if (at < text.size() && (text[at] == '+' || text[at] == '-')) {
        negative = text[at] == '-';
        ++at;
    }
    return at;
}

// The rare forms the fast conversion does not take (hexadecimal numbers, magnitudes beyond the
// double range) go through the C library in its "C" locale, whatever locale the process has.
locale_t CLocale() {
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return cLocale;
}

double ConvertInCLocale(std::string_view text, size_t& used) {
    const locale_t cLocale = CLocale();
    const std::string copy(text);
    char* end = nullptr;
    const double value = strtod_l(copy.c_str(), &end, cLocale);
    used = static_cast<size_t>(end - copy.c_str());
    return value;
}

// Powers of ten that a double holds exactly.
constexpr double kExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                        1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

// The common form of a report's numbers, digits with an optional fraction and no exponent
// ("318.0957", "12", ".5"), read at its start; false, with nothing read, for any other form and
// for more digits than a double holds exactly. Both the digits as a whole number (below 2^53) and
// the power of ten are exact doubles, so their quotient is the correctly rounded value, as the
// full conversion gives.
//   "318.0957" -> 3180957 / 1e4 = 318.0957, 8 characters
bool ParsePlainDecimal(const char* first, const char* last, double& value, const char*& end) {
    uint64_t digits = 0;
    int count = 0;
    const char* at = first;
    for (; at != last && *at >= '0' && *at <= '9'; ++at, ++count)
        digits = digits * 10 + static_cast<uint64_t>(*at - '0');
    int decimals = 0;
    if (at != last && *at == '.') {
        for (++at; at != last && *at >= '0' && *at <= '9'; ++at, ++count, ++decimals)
            digits = digits * 10 + static_cast<uint64_t>(*at - '0');
    }
    const bool exponent = at != last && (*at == 'e' || *at == 'E');
    if (count == 0 || count > 15 || exponent || decimals > 22)
        return false;
    value = static_cast<double>(digits) / kExactPowersOfTen[decimals];
    end = at;
    return true;
}

} // namespace

double ParseDouble(std::string_view text, size_t& used) {
    used = 0;
    bool negative = false;
    const size_t start = SkipToNumber(text, negative);
    const char* first = text.data() + start;
    const char* last = text.data() + text.size();
    if (first == last || *first == '+' || *first == '-')
        return 0.0;
    if (last - first > 1 && first[0] == '0' && (first[1] == 'x' || first[1] == 'X'))
        return ConvertInCLocale(text, used);
    double value = 0.0;
    if (const char* end = nullptr; ParsePlainDecimal(first, last, value, end)) {
        used = static_cast<size_t>(end - text.data());
        return negative ? -value : value;
    }
    const auto [end, error] = std::from_chars(first, last, value, std::chars_format::general);
    if (error == std::errc::result_out_of_range)
        return ConvertInCLocale(text, used);
    if (error != std::errc())
        return 0.0;
    used = static_cast<size_t>(end - text.data());
    return negative ? -value : value;
}

void ParseNumberList(std::string_view text, std::vector<double>& numbers) {
    numbers.clear();
    while (!text.empty()) {
        const size_t comma = text.find(',');
        const std::string_view item = text.substr(0, comma);
        size_t used = 0;
        const double number = ParseDouble(item, used);
        if (used > 0 && std::isfinite(number) &&
            item.find_first_not_of(" \t", used) == std::string_view::npos)
            numbers.push_back(number);
        text = comma == std::string_view::npos ? std::string_view() : text.substr(comma + 1);
    }
}

int ParseInt(std::string_view text, size_t& used) {
    used = 0;
    bool negative = false;
    const size_t start = SkipToNumber(text, negative);
    const char* first = text.data() + start;
    const char* last = text.data() + text.size();
    if (first == last || *first < '0' || *first > '9')
        return 0;
    long long value = 0;
    auto [end, error] = std::from_chars(first, last, value, 10);
    if (error == std::errc::result_out_of_range) {
        value = LLONG_MAX;
        while (end != last && *end >= '0' && *end <= '9')
            ++end;
    }
    used = static_cast<size_t>(end - text.data());
    if (negative)
        value = value == LLONG_MAX ? LLONG_MIN : -value;
    if (value > INT_MAX)
        return INT_MAX;
    if (value < INT_MIN)
        return INT_MIN;
    return static_cast<int>(value);
}

double ParseDouble(std::string_view text) {
    size_t used = 0;
    return ParseDouble(text, used);
}

double ParseDouble(const char* text) {
    return text != nullptr ? ParseDouble(std::string_view(text)) : 0.0;
}

int ParseInt(std::string_view text) {
    size_t used = 0;
    return ParseInt(text, used);
}

int ParseInt(const char* text) {
    return text != nullptr ? ParseInt(std::string_view(text)) : 0;
}

CNumericLocaleScope::CNumericLocaleScope() : m_previous(uselocale(CLocale())) {}

CNumericLocaleScope::~CNumericLocaleScope() {
    uselocale(m_previous);
}

int IndexSum(int base, int offset) {
    int sum = 0;
    return __builtin_add_overflow(base, offset, &sum) ? -1 : sum;
}

} // namespace quillon
