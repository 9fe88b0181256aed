#pragma once

#include <quillon/platform/String.h>

#include <ctime>

namespace quillon {

// The longest module path the platform hands out, terminator included.
constexpr int kMaxModulePath = 260;

// The full path of the running program's executable, cut to kMaxModulePath - 1 characters; empty
// when the platform cannot tell.
CString GetModuleFilePath();

// The given moment as local time in the long date-and-time form of the user's locale (weekday and
// month written out), as the framework's "%#c" time format gives it.
CString FormatLongLocalTime(std::time_t moment);

} // namespace quillon
