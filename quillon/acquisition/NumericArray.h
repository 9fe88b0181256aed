#pragma once

#include <quillon/platform/Array.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>
#include <type_traits>

namespace quillon {

// An array of numbers that can be assigned from a list of texts, converting each text by the C
// library's rules (atoi for integers, atof otherwise): leading blanks are passed over, the longest
// leading number is taken, and a text that is not a number gives 0. Every text yields one element.
template <class T>
class CNumericArray : public CArray<T> {
public:
    CNumericArray& operator=(const CStringArray& texts) {
        this->SetSize(texts.GetSize());
        for (int i = 0; i < texts.GetSize(); ++i)
            this->SetAt(i, Convert(texts[i]));
        return *this;
    }

private:
    static T Convert(const char* text) {
        if constexpr (std::is_integral_v<T>)
            return static_cast<T>(ParseInt(text));
        else
            return static_cast<T>(ParseDouble(text));
    }
};

} // namespace quillon
