#pragma once

#include <quillon/acquisition/NumericArray.h>

namespace quillon {

// A list of float values, assignable from texts (atof of each text, narrowed).
class CFloatArray : public CNumericArray<float> {
public:
    using CNumericArray<float>::operator=;
};

} // namespace quillon
