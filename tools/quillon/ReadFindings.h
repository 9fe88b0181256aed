#pragma once

// What reading a report passed over, in words, for `check` and for the browser's page.

#include <quillon/quillon.h>

#include <string>
#include <vector>

namespace quillon::tool {

// One line a problem, in the order of the file, followed by "N more problems not listed" when the
// read report omitted some:
//   "line 12: \"SubjectTime\" holds \"sixty\", not a number: read as 0"
std::vector<std::string> ReadFindings(const CReadReport& report);

} // namespace quillon::tool
