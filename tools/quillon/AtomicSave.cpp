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
    const std::filesystem::path targetPath(target);
    const std::filesystem::path directory =
        targetPath.has_parent_path() ? targetPath.parent_path() : std::filesystem::path(".");
    std::string pattern = (directory / ("." + targetPath.filename().string() + ".quillon-" +
                                        std::to_string(::getpid()) + "-XXXXXX"))
                              .string();
    std::vector<char> name(pattern.begin(), pattern.end());
    name.push_back('\0');
    const int descriptor = ::mkstemp(name.data());
    if (descriptor < 0)
        throw WriteError(target, std::strerror(errno));
    ::close(descriptor);
    const std::string temporary(name.data());

    try {
        write(temporary);
        if (!SyncToDisk(temporary, O_RDONLY))
            throw WriteError(target, std::strerror(errno));
        // A new file gets the usual permissions, not the private ones of a temporary file.
        std::error_code ignored;
        const auto permissions = std::filesystem::exists(targetPath, ignored)
                                     ? std::filesystem::status(targetPath, ignored).permissions()
                                     : std::filesystem::perms(0644);
        std::filesystem::permissions(temporary, permissions, ignored);
        if (std::rename(temporary.c_str(), target.c_str()) != 0)
            throw WriteError(target, std::strerror(errno));
    } catch (...) {
        std::remove(temporary.c_str());
        throw;
    }
    SyncToDisk(directory.string(), O_RDONLY | O_DIRECTORY);
}

} // namespace quillon::tool
