#include "ReportIdentity.h"

#include "../Tool.h"

#include <cerrno>
#include <cstring>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tool::serve {

namespace {

[[noreturn]] void Fail(const std::string& what) {
    throw ToolError(what + ": " + std::strerror(errno));
}

// FNV-1a over 8-byte words (the tail byte by byte): fast enough to keep up with the disk.
class Hasher {
public:
    void Add(const unsigned char* bytes, size_t count) {
        size_t i = 0;
        for (; i + 8 <= count; i += 8) {
            std::uint64_t word;
            std::memcpy(&word, bytes + i, 8);
            Mix(word);
        }
        for (; i < count; ++i)
            Mix(bytes[i]);
    }
    std::uint64_t Value() const { return m_state; }

private:
    void Mix(std::uint64_t value) {
        m_state ^= value;
        m_state *= 0x100000001b3ull;
    }
    std::uint64_t m_state = 0xcbf29ce484222325ull;
};

ReportIdentity FromStatus(const struct stat& status) {
    ReportIdentity identity;
    identity.size = static_cast<std::uintmax_t>(status.st_size);
    identity.modifiedNs =
        static_cast<std::int64_t>(status.st_mtim.tv_sec) * 1'000'000'000 + status.st_mtim.tv_nsec;
    return identity;
}

} // namespace

std::uint64_t HashOfFile(int fd) {
    std::vector<unsigned char> block(1 << 20);
    Hasher hasher;
    for (off_t offset = 0;;) {
        const ssize_t got = ::pread(fd, block.data(), block.size(), offset);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            Fail("cannot read the report to check it");
        if (got == 0)
            return hasher.Value();
        hasher.Add(block.data(), static_cast<size_t>(got));
        offset += got;
    }
}

ReportIdentity IdentityOf(int fd) {
    struct stat status {};
    if (::fstat(fd, &status) != 0)
        Fail("cannot examine the report");
    ReportIdentity identity = FromStatus(status);
    identity.hash = HashOfFile(fd);
    return identity;
}

ReportIdentity IdentityOf(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        Fail("cannot open " + path);
    try {
        const ReportIdentity identity = IdentityOf(fd);
        ::close(fd);
        return identity;
    } catch (...) {
        ::close(fd);
        throw;
    }
}

} // namespace quillon::tool::serve
