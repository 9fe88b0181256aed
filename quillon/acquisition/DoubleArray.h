#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of double values, assignable from texts (atof of each text).
class CDoubleArray : public CNumericArray<double> {
public:
    // Converts every text; returns this array, so that assignments chain.
    CDoubleArray& operator=(const CStringArray& texts) {
        CNumericArray<double>::operator=(texts);
        return *this;
    }
};

} // namespace quillon
