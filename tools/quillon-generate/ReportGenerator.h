#pragma once

#include "BatchSummary.h"
#include "GeneratorOptions.h"

namespace quillon::generate {

// Writes the report file and the settings file that the options describe, one sample at a time
// (memory does not grow with the report's size), and returns what was written. Throws
// CFileException when a file cannot be written.
BatchSummary GenerateBatch(const GeneratorOptions& options);

} // namespace quillon::generate
