#pragma once

#include <quillon/platform/String.h>

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon {

// What reading a report passed over, could not read or took as a default. The report file fills
// it while the collection and the section readers read (see CDelimitFile::SetReadReport); a clean
// line costs nothing more, and the reading itself is the same with or without it. Each entry
// carries where its line starts (the offset from the start of the file) and its line number
// (from 1).
struct CReadReport {
    enum Kind {
        UnknownSection,  // a top-level section other than a sample, skipped with its block
        StrayBlock,      // a "{" at the top level that follows no section header, skipped
        StrayBlockEnd,   // a "}" at the top level that closes nothing
        StrayLine,       // a data line at the top level, outside every section
        SampleError,     // reading a sample failed: the sample was discarded (detail: the message)
        OpenBlock,       // the file ended inside a block (name: the section whose block it is)
        BadNumber,       // a field that holds a number holds none: read as 0 (name: the field,
                         // detail: its text), as "SubjectTime" "sixty"
        StrayRecord,     // a data line in a block that is no record of it, passed over (name: the
                         // block's section, detail: the line's first field)
        DuplicateSample, // a sample number read before (name: the number): the report holds the
                         // sample twice, as a report concatenated with itself does
    };
    struct Entry {
        Kind kind = UnknownSection;
        CString name; // the section's name, the field's name, or the line's first field
        int64_t offset = 0;
        int64_t line = 0;
        CString detail; // the error message of a sample that failed, or the text not read
    };
    // At most this many entries are kept; the others are only counted in omitted.
    static constexpr size_t kMaxEntries = 1000;
    std::vector<Entry> entries;
    size_t omitted = 0;

    void Add(Kind kind, std::string_view name, int64_t offset, int64_t line,
             std::string_view detail = {});
    bool IsClean() const { return entries.empty() && omitted == 0; }
    // How many problems were found, the omitted ones included.
    size_t ProblemCount() const { return entries.size() + omitted; }
};

} // namespace quillon
