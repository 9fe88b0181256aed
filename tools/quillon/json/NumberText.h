#pragma once

// Numbers as the shortest text that reads back to the stored value of their own type.

#include <cstddef>
#include <string>
#include <string_view>

namespace quillon::tool {

// Appends the shortest decimal text that reads back to exactly value as its type:
// 260.7292f -> "260.7292" (never "260.72919"), 0.1 -> "0.1", 1e21 -> "1e+21", 100.0 -> "100".
// A double that holds a float's value exactly is printed as that float: the reader keeps many
// numbers as floats and hands them on as doubles (a spectrum's 73.1402 is the double
// 73.14019775390625), and the report's own text is what reads back to them as floats.
// Returns false and appends nothing for NaN and infinities.
bool AppendShortest(std::string& out, float value);
bool AppendShortest(std::string& out, double value);

// The most characters WriteShortest writes ("-2.2250738585072014e-308" is 24).
constexpr size_t kShortestRoom = 32;

// Writes the text AppendShortest appends at out, which has room for kShortestRoom characters, and
// returns its end; nullptr (and nothing written) for NaN and infinities.
char* WriteShortest(char* out, float value);
char* WriteShortest(char* out, double value);

// A float as the double whose shortest text is the float's, for documents that hold doubles only
// (nlohmann::json): 260.7292f -> 260.7292, which prints as "260.7292". A double that holds a
// float's value exactly is taken as that float, as AppendShortest does.
double AsShortestDouble(float value);
double AsShortestDouble(double value);

// True when text holds a whole number as a JSON reader would take it ("100", "-3", not "1e5"):
// such a float needs ".0" in JSON to stay a float.
bool LooksIntegral(std::string_view text);

} // namespace quillon::tool

namespace quillon::tool {

// The number a field's text holds, blanks around it allowed: "12.5" -> 12.5. False for an empty
// text, a text that is not wholly one number, and NaN or infinities.
bool ParseNumberText(std::string_view text, double& number);

} // namespace quillon::tool
