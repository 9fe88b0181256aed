#pragma once

#include <quillon/platform/String.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillon {

// What reading a report passed over or could not read. The collection fills it while it reads,
// at the top level of the file only (between samples, and once at the end of each sample), so
// the lines inside a sample cost nothing more; the reading itself is the same with or without it.
// Offsets are those of the start of the line concerned, from the start of the file (a tool that
// wants line numbers counts the line ends before them).
struct CReadReport {
    enum Kind {
        UnknownSection, // a top-level section other than a sample, skipped with its block
        StrayBlock,     // a "{" at the top level that follows no section header, skipped
        StrayBlockEnd,  // a "}" at the top level that closes nothing
        StrayLine,      // a data line at the top level, outside every section
        SampleError,    // reading a sample failed: the sample was discarded (detail: the message)
        OpenBlock,      // the file ended inside a block (name: the section whose block it is)
    };
    struct Entry {
        Kind kind = UnknownSection;
        CString name; // the section's name, or the line's first field
        int64_t offset = 0;
        CString detail; // the error message of a sample that failed
    };
    // At most this many entries are kept; the others are only counted in omitted.
    static constexpr size_t kMaxEntries = 1000;
    std::vector<Entry> entries;
    size_t omitted = 0;

    void Add(Kind kind, CString name, int64_t offset, CString detail = CString());
    bool IsClean() const { return entries.empty() && omitted == 0; }
};

} // namespace quillon
