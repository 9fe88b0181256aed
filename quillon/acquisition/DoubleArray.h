#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of double values, assignable from texts (atof of each text).
class CDoubleArray : public CNumericArray<double> {
public:
    using CNumericArray<double>::operator=;
};

} // namespace quillon
