#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of int values, assignable from texts (atoi of each text).
class CIntArray : public CNumericArray<int> {
public:
    using CNumericArray<int>::operator=;
};

} // namespace quillon
