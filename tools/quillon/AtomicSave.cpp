#include "AtomicSave.h"

#include "Command.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <unistd.h>
#include <vector>

namespace quillon::tool {

namespace {

ToolError WriteError(const std::string& target, const std::string& reason) {
    return ToolError{"cannot write '" + target + "': " + reason};
}

// Flushes a written file (or a directory's entries) to disk; false with errno set on failure.
bool SyncToDisk(const std::string& path, int flags) {
    const int descriptor = ::open(path.c_str(), flags);
    if (descriptor < 0)
        return false;
    const bool synced = ::fsync(descriptor) == 0;
    const int savedErrno = errno;
    ::close(descriptor);
    errno = savedErrno;
    return synced;
}

} // namespace

void SaveAtomically(const std::string& target,
                    const std::function<void(const std::string& temporaryPath)>& write) {
    // The temporary file carries the target's own name, inside a private directory next to the
    // target: what is written may name the file it is written to (a report's molfile list does).
    const std::filesystem::path targetPath(target);
    const std::filesystem::path directory =
        targetPath.has_parent_path() ? targetPath.parent_path() : std::filesystem::path(".");
    const std::string pattern =
        (directory / (".quillon-" + std::to_string(::getpid()) + "-XXXXXX")).string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    if (::mkdtemp(name.data()) == nullptr)
        throw WriteError(target, std::strerror(errno));
    const std::filesystem::path temporaryDirectory(name.data());
    const std::string temporary = (temporaryDirectory / targetPath.filename()).string();

    try {
        write(temporary);
        if (!SyncToDisk(temporary, O_RDONLY))
            throw WriteError(target, std::strerror(errno));
        // The target keeps its permissions; a new file gets the usual ones.
        std::error_code ignored;
        const auto permissions = std::filesystem::exists(targetPath, ignored)
                                     ? std::filesystem::status(targetPath, ignored).permissions()
                                     : std::filesystem::perms(0644);
        std::filesystem::permissions(temporary, permissions, ignored);
        if (std::rename(temporary.c_str(), target.c_str()) != 0)
            throw WriteError(target, std::strerror(errno));
    } catch (...) {
        std::error_code ignored;
        std::filesystem::remove_all(temporaryDirectory, ignored);
        throw;
    }
    std::error_code ignored;
    std::filesystem::remove(temporaryDirectory, ignored);
    SyncToDisk(directory.string(), O_RDONLY | O_DIRECTORY);
}

} // namespace quillon::tool
