#pragma once

// Shared by the fuzz targets: inputs as in-memory files, and a host that stays silent.

#include <quillon/platform/HostHooks.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace quillon::fuzz {

// An anonymous in-memory file holding the given bytes, open for reading and writing at its start.
// It behaves as a regular file (positions, lengths, truncation) without touching the disk.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view bytes = {}) {
        const int descriptor = ::memfd_create("quillon-fuzz", MFD_CLOEXEC);
        if (descriptor < 0)
            std::abort();
        size_t written = 0;
        while (written < bytes.size()) {
            const ssize_t count =
                ::write(descriptor, bytes.data() + written, bytes.size() - written);
            if (count <= 0)
                std::abort();
            written += static_cast<size_t>(count);
        }
        ::lseek(descriptor, 0, SEEK_SET);
        m_stream = ::fdopen(descriptor, "r+");
        if (m_stream == nullptr)
            std::abort();
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { std::fclose(m_stream); }

    FILE* Stream() const { return m_stream; }

private:
    FILE* m_stream = nullptr;
};

// All bytes of the file, whatever the stream's position.
inline std::string Contents(const MemoryFile& file) {
    std::fflush(file.Stream());
    std::string bytes;
    char buffer[4096];
    for (off_t at = 0;;) {
        const ssize_t count = ::pread(::fileno(file.Stream()), buffer, sizeof buffer, at);
        if (count <= 0)
            return bytes;
        bytes.append(buffer, static_cast<size_t>(count));
        at += count;
    }
}

// Messages the library would show the user are dropped: a fuzzer provokes thousands of them.
inline void SilenceHost() {
    static const bool installed = [] {
        HostHooks hooks;
        hooks.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
        SetHostHooks(hooks);
        return true;
    }();
    (void)installed;
}

// Stops the run with a crash that the fuzzer records, when a property of the library fails.
inline void Require(bool condition) {
    if (!condition)
        std::abort();
}

inline std::string_view AsText(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace quillon::fuzz
