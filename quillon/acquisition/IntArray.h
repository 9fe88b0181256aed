#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of int values, assignable from texts (atoi of each text).
class CIntArray : public CNumericArray<int> {
public:
    // Converts every text; returns this array, so that assignments chain.
    CIntArray& operator=(const CStringArray& texts) {
        CNumericArray<int>::operator=(texts);
        return *this;
    }
};

} // namespace quillon
