#pragma once

// What a report file was when the server read it, so that a save never overwrites a file that
// another program (or a second server) changed since: its size, its modification time and a hash
// of its bytes.

#include <cstdint>
#include <string>

namespace quillon::tool::serve {

struct ReportIdentity {
    std::uintmax_t size = 0;
    std::int64_t modifiedNs = 0; // modification time, nanoseconds since the epoch
    std::uint64_t hash = 0;      // HashOfFile

    bool operator==(const ReportIdentity&) const = default;
};

// A 64-bit hash of the bytes read from the open file descriptor fd, from its start, a block at a
// time (no more memory than one block). Throws ToolError with the system's reason when reading
// fails.
std::uint64_t HashOfFile(int fd);

// The identity of the file at path. Throws ToolError when it cannot be read.
ReportIdentity IdentityOf(const std::string& path);

// The identity of the file open as fd.
ReportIdentity IdentityOf(int fd);

} // namespace quillon::tool::serve
