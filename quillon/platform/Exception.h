#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/Types.h>

#include <exception>

namespace quillon {

// The base of the library's exceptions. Exceptions are thrown by value and caught by reference;
// GetErrorMessage gives the text that a message box shows.
class CException : public CObject, public std::exception {
    QUILLON_DECLARE_DYNAMIC(CException)

public:
    CException() = default;

    // Copies the message, cut to fit maxChars including the terminating NUL, into buffer.
    // Returns FALSE (with an empty buffer) when there is no message.
    virtual BOOL GetErrorMessage(char* buffer, UINT maxChars, UINT* helpContext = nullptr) const;

    const char* what() const noexcept override;
};

} // namespace quillon
