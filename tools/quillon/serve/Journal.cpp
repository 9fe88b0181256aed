#include "Journal.h"

#include "../Tool.h"

#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tool::serve {

namespace {

constexpr std::uintmax_t kLargestJournal = 64u << 20;

[[noreturn]] void Fail(const std::string& what) {
    throw ToolError(what + ": " + std::strerror(errno));
}

std::string Hex(std::uint64_t value) {
    char text[17];
    std::snprintf(text, sizeof text, "%016llx", static_cast<unsigned long long>(value));
    return text;
}

nlohmann::json Header(const std::string& name, const ReportIdentity& identity) {
    return {{"journal", 1},
            {"report", name},
            {"size", identity.size},
            {"modified_ns", identity.modifiedNs},
            {"hash", Hex(identity.hash)}};
}

// The member name of object when it is of the kind is (nlohmann::json::is_string, ...), else null.
const nlohmann::json* Member(const nlohmann::json& object, const char* name,
                             bool (nlohmann::json::*is)() const noexcept) {
    const auto found = object.find(name);
    return found != object.end() && ((*found).*is)() ? &*found : nullptr;
}

std::optional<ReportIdentity> IdentityOfHeader(const nlohmann::json& header) {
    if (!header.is_object())
        return std::nullopt;
    const auto* journal = Member(header, "journal", &nlohmann::json::is_number_integer);
    const auto* size = Member(header, "size", &nlohmann::json::is_number_unsigned);
    const auto* modified = Member(header, "modified_ns", &nlohmann::json::is_number_integer);
    const auto* hash = Member(header, "hash", &nlohmann::json::is_string);
    if (journal == nullptr || *journal != 1 || !size || !modified || !hash)
        return std::nullopt;
    ReportIdentity identity;
    identity.size = size->get<std::uintmax_t>();
    identity.modifiedNs = modified->get<std::int64_t>();
    identity.hash = std::strtoull(hash->get<std::string>().c_str(), nullptr, 16);
    return identity;
}

// Reads the whole of fd (at most limit bytes); none when it is larger or cannot be read.
std::optional<std::string> ReadAll(int fd, std::uintmax_t limit) {
    struct stat status {};
    if (::fstat(fd, &status) != 0 || static_cast<std::uintmax_t>(status.st_size) > limit)
        return std::nullopt;
    std::string text(static_cast<size_t>(status.st_size), '\0');
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t got = ::pread(fd, text.data() + done, text.size() - done, off_t(done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return std::nullopt;
        done += static_cast<size_t>(got);
    }
    return text;
}

void WriteWhole(int fd, const std::string& text) {
    size_t done = 0;
    while (done < text.size()) {
        const ssize_t wrote = ::write(fd, text.data() + done, text.size() - done);
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0) {
            if (wrote == 0)
                errno = ENOSPC;
            throw std::system_error(errno, std::generic_category());
        }
        done += static_cast<size_t>(wrote);
    }
}

} // namespace

std::string UtcNow() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    ::gmtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

Journal::Journal(const std::string& reportPath) {
    const std::filesystem::path report(reportPath);
    m_path =
        (report.parent_path() / ("." + report.filename().string() + ".quillon-journal")).string();
}

Journal::~Journal() {
    if (m_fd >= 0)
        ::close(m_fd);
}

std::optional<JournalContents> Journal::Read() const {
    const int fd = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return std::nullopt;
    // A running server holds the journal it writes.
    const bool free = m_fd >= 0 || ::flock(fd, LOCK_SH | LOCK_NB) == 0;
    const std::optional<std::string> text = free ? ReadAll(fd, kLargestJournal) : std::nullopt;
    ::close(fd);
    if (!text)
        return std::nullopt;
    JournalContents contents;
    size_t start = 0;
    bool header = true;
    while (start < text->size()) {
        const size_t end = text->find('\n', start);
        if (end == std::string::npos)
            break;
        nlohmann::json line = nlohmann::json::parse(text->begin() + long(start),
                                                    text->begin() + long(end), nullptr, false);
        if (header) {
            const auto identity = IdentityOfHeader(line);
            if (!identity)
                return std::nullopt;
            contents.identity = *identity;
            header = false;
        } else if (line.is_object() && Member(line, "op", &nlohmann::json::is_string) &&
                   Member(line, "time", &nlohmann::json::is_string)) {
            contents.entries.push_back(std::move(line));
        } else {
            break;
        }
        start = end + 1;
        contents.wholeBytes = start;
    }
    if (header)
        return std::nullopt;
    return contents;
}

void Journal::Open(int flags) {
    if (m_fd >= 0)
        return;
    const int fd = ::open(m_path.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC | flags, 0666);
    if (fd < 0)
        Fail("cannot write the journal " + m_path);
    if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
        ::close(fd);
        throw JournalBusy("another quillon serve is changing this report (its journal " + m_path +
                          " is in use)");
    }
    m_fd = fd;
}

void Journal::Append(const nlohmann::json& entry, const ReportIdentity& identity) {
    Open(O_CREAT);
    struct stat status {};
    if (::fstat(m_fd, &status) != 0)
        Fail("cannot examine the journal " + m_path);
    // A journal this server neither wrote nor resumed is one it could not read (Read gave none):
    // it is left alone rather than written after.
    if (status.st_size > 0 && !m_continuing)
        throw ToolError("the journal " + m_path +
                        " holds changes this server cannot read: move it "
                        "elsewhere to go on");
    std::string text;
    if (status.st_size == 0) {
        const std::string name = std::filesystem::path(m_path).filename().string();
        // ".batch.txt.quillon-journal" names "batch.txt".
        text = Header(name.substr(1, name.size() - 1 - std::strlen(".quillon-journal")), identity)
                   .dump() +
               "\n";
    }
    text += entry.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace) + "\n";
    try {
        WriteWhole(m_fd, text);
    } catch (const std::system_error& error) {
        // Whatever part went out is taken back, so that the journal stays whole.
        const int reason = error.code().value();
        [[maybe_unused]] const int cut = ::ftruncate(m_fd, status.st_size);
        errno = reason;
        Fail("cannot write the journal " + m_path);
    }
    m_continuing = true;
}

void Journal::Resume(const JournalContents& contents) {
    Open(0);
    if (::ftruncate(m_fd, off_t(contents.wholeBytes)) != 0)
        Fail("cannot write the journal " + m_path);
    m_continuing = true;
}

void Journal::Remove() {
    if (m_fd < 0) {
        const int fd = ::open(m_path.c_str(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            return;
        if (::flock(fd, LOCK_EX | LOCK_NB) != 0) {
            ::close(fd); // another running server's
            return;
        }
        m_fd = fd;
    }
    if (::unlink(m_path.c_str()) != 0 && errno != ENOENT)
        Fail("cannot remove the journal " + m_path);
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_continuing = false;
}

} // namespace quillon::tool::serve
