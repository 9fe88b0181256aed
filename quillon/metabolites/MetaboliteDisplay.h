#pragma once

#include <quillon/platform/String.h>

namespace quillon {

class CMetaboliteData;
class CSampleData;

// The texts of the browser's metabolite columns. A value the metabolite does not have (no area,
// no peak, no trace, no internal standard) gives an empty text, never a placeholder number.
// Numbers are formatted with the C library's "%.*f" rules at the given decimals (negative
// decimals count as 0).

// Default decimals of each column.
constexpr int kAreaDecimals = 0;         // absolute peak area: 1234.6 -> "1235"
constexpr int kRelativeAreaDecimals = 2; // percent of the group's area: 60 -> "60.00"
constexpr int kTimeDecimals = 2;         // retention time in minutes: 9.615 -> "9.62"
constexpr int kRatioDecimals = 3;        // area over internal-standard area: 0.25 -> "0.250"

// The peak area; "" when the metabolite has none (area below 0).
void GetAreaText(const CMetaboliteData& metabolite, CString& text, int decimals = kAreaDecimals);
// The relative (percent) peak area; "" when the metabolite has none (below 0).
void GetRelativeAreaText(const CMetaboliteData& metabolite, CString& text,
                         int decimals = kRelativeAreaDecimals);
// The retention time in minutes; "" when the metabolite has no peak (peak number below 1).
void GetTimeText(const CMetaboliteData& metabolite, CString& text, int decimals = kTimeDecimals);
// The name of the metabolite's trace (CMetaboliteData::GetTrace) as a column shows it: "TIC" for
// a total ion (or absorbance) current trace, the mass for a mass chromatogram ("TOF MS ES+ :
// 319.1030" gives "319.1030"), and the whole description of any other trace ("ANALOG 1 : Radio
// flow"). "" when the metabolite has no trace in the sample.
void GetTraceText(const CMetaboliteData& metabolite, CSampleData* sample, CString& text);
// The metabolite's peak area divided by the sample's internal-standard area: 250 over 1000 gives
// "0.250". "" when the metabolite has no area or the sample no internal standard (entry below 0
// or area not above 0).
void GetISAreaRatioText(const CMetaboliteData& metabolite, const CSampleData* sample, CString& text,
                        int decimals = kRatioDecimals);

// Reformats every item of a comma-separated list of numbers at the given decimals: with 3,
// "101.05, 202.1" becomes "101.050,202.100". Blanks around an item are dropped; an item that is
// not a number is kept as it stands (trimmed), and an empty item stays empty.
void SetStringDecimalPlaces(CString& list, int decimals);

} // namespace quillon
