#pragma once

// The journal of a served report's unsaved changes: ".REPORT.quillon-journal" beside the report,
// one JSON line per change, each written to the system before the change is made, so that a crash
// or a killed server loses nothing. The first line names the report as it was read
// (ReportIdentity); the next server of the report offers the changes back. A successful save
// removes the journal. While a server writes it, the journal is locked: a second server of the
// same report can read the report but not change it.
//
//     {"journal":1,"report":"batch.txt","size":48213,"modified_ns":...,"hash":"9c1e..."}
//     {"time":"2026-11-25T14:03:12Z","op":"edit","edit":{"kind":"confirm","sample":4,...}}
//     {"time":"2026-11-25T14:03:15Z","op":"undo"}

#include "ReportIdentity.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quillon::tool::serve {

// What a journal holds: the report's identity when the changes began, the change lines that read
// whole, each an object with the texts "op" and "time" (a line cut short by a crash, or anything
// else, ends the journal there), and where they end.
struct JournalContents {
    ReportIdentity identity;
    std::vector<nlohmann::json> entries;
    std::uintmax_t wholeBytes = 0; // the header and the entries, up to the end of the last one
};

// The journal is held by another running server.
struct JournalBusy : std::runtime_error {
    using std::runtime_error::runtime_error;
};

class Journal {
public:
    // The journal beside the report at reportPath.
    explicit Journal(const std::string& reportPath);
    ~Journal();
    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    const std::string& Path() const { return m_path; }

    // The journal a previous server left, or none when there is no journal, it is locked by a
    // running server, or its first line is not a journal's. A journal over 64 MiB is not read.
    std::optional<JournalContents> Read() const;

    // Appends entry as one line, the header naming identity first when the journal is new.
    // Throws ToolError with the system's reason (the journal as it was) when it cannot be written
    // or holds lines this server did not write or resume, JournalBusy when another server holds
    // it.
    void Append(const nlohmann::json& entry, const ReportIdentity& identity);
    // Continues the journal that Read gave: cuts off what followed its last whole entry.
    void Resume(const JournalContents& contents);
    // Removes the journal (after a save, or when its changes are discarded), unless another
    // running server holds it.
    void Remove();

private:
    void Open(int flags);

    std::string m_path;
    int m_fd = -1;
    bool m_continuing = false; // the journal holds this server's lines (written or resumed)
};

// The time now as "2026-11-25T14:03:12Z".
std::string UtcNow();

} // namespace quillon::tool::serve
