#pragma once

#include <quillon/platform/Array.h>
#include <quillon/platform/String.h>

#include <cstdarg>

namespace quillon {

// Formats the pieces of a record format (each beginning with one printf conversion, as
// CDelimitFile::SplitFieldTypes cuts them) with their arguments, joined by the delimiter text. A
// text argument ("%s") never splits the record: each tab, CR, LF or delimiter character in it is
// written as a blank.
//
//   pieces {"%d", "%s"}, arguments 4, "a\tb\nc" -> "4\ta b c"
CString FormatFields(const CStringArray& pieces, const CString& delimiters, va_list args);

} // namespace quillon
