#pragma once

#include <locale.h>
#include <string_view>
#include <vector>

namespace quillon {

// Numbers from report texts, read by the C library's rules in every process locale: leading
// blanks are passed over, an optional sign is taken, then the longest leading number; whatever
// follows is ignored, and a text that does not begin with a number gives 0. The decimal point is
// always ".", whatever locale the host has set.
//
//   ParseDouble(" -12.5e1xyz") = -125.0    ParseDouble("0x1p4") = 16.0
//   ParseDouble("abc") = 0.0               ParseDouble("1,5") = 1.0 (never 1.5)
//   ParseInt("  +42 mg") = 42              ParseInt("3.9") = 3
//
// ParseInt clamps a number beyond the int range to the range's nearest end (the C function would
// be undefined there).
double ParseDouble(const char* text);
double ParseDouble(std::string_view text);
int ParseInt(const char* text);
int ParseInt(std::string_view text);

// The same, also telling how many characters the number took (0 when none): the leading blanks,
// sign and number that a scan of "%lf" or "%d" would consume.
double ParseDouble(std::string_view text, size_t& used);
int ParseInt(std::string_view text, size_t& used);

// The numbers of a comma-separated list as a report stores one, in order, into numbers (cleared
// first); an item that is not wholly a finite number (blanks around it aside) is left out.
//   "301.1, 317.2,x, 1e2" gives {301.1, 317.2, 100.0}
void ParseNumberList(std::string_view text, std::vector<double>& numbers);

// An index made of a count or offset plus a number read from a file, or -1 (an index no array
// has) when the sum leaves the int range, so that a number at the int limit cannot overflow.
//
//   IndexSum(5, 3) = 8    IndexSum(5, -7) = -2    IndexSum(5, INT_MAX) = -1
int IndexSum(int base, int offset);

// While it lives, the calling thread formats numbers in the "C" locale (a "." as the decimal
// point) whatever locale the host has set; the thread's own locale comes back when it goes. The
// report writer and text formatting hold one, so a report is written the same in every locale.
class CNumericLocaleScope {
public:
    CNumericLocaleScope();
    ~CNumericLocaleScope();
    CNumericLocaleScope(const CNumericLocaleScope&) = delete;
    CNumericLocaleScope& operator=(const CNumericLocaleScope&) = delete;

private:
    locale_t m_previous;
};

} // namespace quillon
