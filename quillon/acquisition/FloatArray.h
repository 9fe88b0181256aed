#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of float values, assignable from texts (atof of each text, narrowed).
class CFloatArray : public CNumericArray<float> {
public:
    // Converts every text; returns this array, so that assignments chain.
    CFloatArray& operator=(const CStringArray& texts) {
        CNumericArray<float>::operator=(texts);
        return *this;
    }
};

} // namespace quillon
