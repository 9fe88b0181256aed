#include <quillon/platform/AtomicFile.h>

#include <quillon/platform/FileException.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <unistd.h>

namespace quillon {

namespace fs = std::filesystem;

namespace {

fs::path FolderOf(const fs::path& file) {
    return file.has_parent_path() ? file.parent_path() : fs::path(".");
}

// Makes a finished rename durable: syncs the folder that holds the file's name. Best effort.
void SyncFolder(const fs::path& file) {
    const int descriptor = ::open(FolderOf(file).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor >= 0) {
        ::fsync(descriptor);
        ::close(descriptor);
    }
}

} // namespace

CAtomicFile::CAtomicFile(const std::string& target) : m_shownTarget(target) {
    std::error_code error;
    fs::path resolved(target);
    if (fs::is_symlink(fs::symlink_status(resolved, error))) {
        resolved = fs::canonical(resolved, error);
        if (error)
            Fail("open", error.value());
    }
    m_target = resolved.string();
    m_exists = ::stat(m_target.c_str(), &m_status) == 0;
    if (m_exists && S_ISDIR(m_status.st_mode))
        Fail("write", EISDIR);
    if (m_exists && !S_ISREG(m_status.st_mode))
        throw CFileException::NotARegularFile(m_shownTarget.c_str());
    if (m_exists && ::access(m_target.c_str(), W_OK) != 0)
        Fail("write", errno);
    const std::string name = resolved.filename().string();
    m_folder =
        (FolderOf(resolved) / ("." + name + "." + std::to_string(::getpid()) + ".XXXXXX")).string();
    if (::mkdtemp(m_folder.data()) == nullptr) {
        const int reason = errno;
        m_folder.clear();
        Fail("write", reason);
    }
    m_path = m_folder + "/" + name;
}

CAtomicFile::~CAtomicFile() {
    if (!m_committed && !m_path.empty())
        ::unlink(m_path.c_str());
    if (!m_folder.empty())
        ::rmdir(m_folder.c_str());
}

void CAtomicFile::Commit() {
    const int descriptor = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        Fail("write", errno);
    int error = 0;
    if (m_exists) {
        // Only a privileged user may give the file away; the permissions matter more.
        [[maybe_unused]] const int owned = ::fchown(descriptor, m_status.st_uid, m_status.st_gid);
        if (::fchmod(descriptor, m_status.st_mode & 07777) != 0)
            error = errno;
    }
    if (error == 0 && ::fsync(descriptor) != 0)
        error = errno;
    ::close(descriptor);
    if (error == 0 && ::rename(m_path.c_str(), m_target.c_str()) != 0)
        error = errno;
    if (error != 0)
        Fail("write", error);
    m_committed = true;
    SyncFolder(m_target);
}

void CAtomicFile::Fail(const char* operation, int osError) const {
    throw CFileException(CFileException::CauseFromErrno(osError), osError, m_shownTarget.c_str(),
                         operation);
}

void WriteFileAtomically(const std::string& target, std::string_view text) {
    CAtomicFile pending(target);
    const int descriptor =
        ::open(pending.GetPath().c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0)
        throw CFileException(CFileException::CauseFromErrno(errno), errno, target.c_str(), "write");
    int error = 0;
    while (!text.empty() && error == 0) {
        const ssize_t written = ::write(descriptor, text.data(), text.size());
        if (written > 0)
            text.remove_prefix(static_cast<size_t>(written));
        else if (written < 0 && errno != EINTR)
            error = errno;
        else if (written == 0)
            error = EIO;
    }
    if (::close(descriptor) != 0 && error == 0)
        error = errno;
    if (error != 0)
        throw CFileException(CFileException::CauseFromErrno(error), error, target.c_str(), "write");
    pending.Commit();
}

} // namespace quillon
