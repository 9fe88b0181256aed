#pragma once

#include <string>

namespace quillon {

class CSamples;

// Saves samples, read from the report readFrom, to target through the report writer
// (CSamples::Write), atomically (see CAtomicFile): target may be readFrom itself. On any failure
// (target not writable, a full disk, the writer failing) throws CFileException with the system's
// reason, and target stays byte for byte as it was.
void SaveReportAtomically(CSamples& samples, const std::string& readFrom,
                          const std::string& target);

} // namespace quillon
