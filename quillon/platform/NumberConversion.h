#pragma once

#include <climits>
#include <cmath>

namespace quillon {

// Turns a number read from a file into an int without undefined behaviour: NaN gives 0, and a
// value beyond the int range (infinities included) gives the nearest end of the range.
// ClampToInt(3e9) is INT_MAX; ClampToInt(-7.9) is -7 (truncated toward zero, as a cast would).
inline int ClampToInt(double value) {
    if (std::isnan(value))
        return 0;
    if (value >= static_cast<double>(INT_MAX))
        return INT_MAX;
    if (value <= static_cast<double>(INT_MIN))
        return INT_MIN;
    return static_cast<int>(value);
}

} // namespace quillon
