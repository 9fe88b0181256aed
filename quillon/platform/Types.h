#pragma once

// The framework's basic type names, so that code written against its conventions reads naturally.

namespace quillon {

using BOOL = int;
using UINT = unsigned int;
using BYTE = unsigned char;

} // namespace quillon

#ifndef TRUE
#define TRUE 1
#endif
#ifndef FALSE
#define FALSE 0
#endif
