#pragma once

// Shared by the fuzz targets: inputs as in-memory files, a folder of the process for the files a
// target needs, and a host that stays silent.

#include <quillon/platform/HostHooks.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>

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

// A folder of this process, in memory where the system offers it; created on first use and
// removed with all it holds when the process ends.
inline const std::filesystem::path& ProcessFolder() {
    struct Folder {
        Folder() {
            const std::filesystem::path shared("/dev/shm");
            path = std::filesystem::is_directory(shared) ? shared
                                                         : std::filesystem::temp_directory_path();
            path /= "quillon-fuzz-" + std::to_string(::getpid());
            std::filesystem::create_directories(path);
        }
        ~Folder() {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
        std::filesystem::path path;
    };
    static const Folder folder;
    return folder.path;
}

// Installs the host hooks (on the first call only), with the messages the library would show the
// user dropped: a fuzzer provokes thousands of them.
inline void SilenceHost(HostHooks hooks = {}) {
    static const bool installed = [&hooks] {
        hooks.showMessage = [](const CString&, const CString&, MessageIcon) { return kMessageOk; };
        SetHostHooks(std::move(hooks));
        return true;
    }();
    (void)installed;
}

// Stops the run with a crash that the fuzzer records, when a property of the library fails; the
// line of the failed requirement goes to standard error first.
inline void Require(bool condition, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE()) {
    if (!condition) {
        std::fprintf(stderr, "%s:%d: requirement failed\n", file, line);
        std::abort();
    }
}

inline std::string_view AsText(const uint8_t* data, size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace quillon::fuzz
