#include "ReportReview.h"

#include "EditJson.h"
#include "Query.h"
#include "TemporaryFolder.h"

#include "../Tool.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillon::tool::serve {

namespace {

// A link named like the report, in a private folder, to the report as it was read (held open as
// fd), so that the writer copies the content read even after the file was replaced on disk.
class OriginalLink {
public:
    OriginalLink(int fd, const std::string& name) : m_folder("quillon-original") {
        m_path = m_folder.Path() + "/" + name;
        const std::string target = "/proc/self/fd/" + std::to_string(fd);
        if (::symlink(target.c_str(), m_path.c_str()) != 0)
            throw ApiError(500, "cannot reach the report as it was read: " +
                                    std::string(std::strerror(errno)));
    }
    const std::string& Path() const { return m_path; }

private:
    TemporaryFolder m_folder;
    std::string m_path;
};

// Why name cannot be the name of a new report beside the served one ("" when it can).
std::string SaveAsNameProblem(const std::string& name) {
    if (name.empty() || name == "." || name == "..")
        return "give the new file a name";
    if (name.find('/') != std::string::npos || name.find('\\') != std::string::npos)
        return "the new file goes beside the report: give a name without a folder";
    if (name.front() == '.')
        return "a name starting with '.' would hide the file";
    if (name.size() > 255)
        return "the name is longer than 255 characters";
    for (unsigned char ch : name)
        if (ch < 0x20 || ch == 0x7f)
            return "the name holds a control character";
    return {};
}

// How many changes a journal's entries leave in effect.
int ChangesInEffect(const std::vector<nlohmann::json>& entries) {
    int done = 0;
    int undone = 0;
    for (const nlohmann::json& entry : entries) {
        const std::string op = entry.value("op", "");
        if (op == "edit") {
            ++done;
            undone = 0;
        } else if (op == "undo" && done > 0) {
            --done;
            ++undone;
        } else if (op == "redo" && undone > 0) {
            --undone;
            ++done;
        }
    }
    return done;
}

nlohmann::json Entry(const char* op) {
    return {{"time", UtcNow()}, {"op", op}};
}

} // namespace

ReportReview::ReportReview(const std::string& path) : m_path(path) {
    if (path == "-")
        return;
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0)
        throw ToolError("cannot open " + path + ": " + std::strerror(errno));
    m_identity = IdentityOf(m_fd);
    m_journal = std::make_unique<class Journal>(path);
    m_offer = m_journal->Read();
    // A journal with a header alone, or its first change cut short, has nothing to offer. When
    // it cannot be removed, the first change says so.
    if (m_offer && m_offer->entries.empty()) {
        m_offer.reset();
        try {
            m_journal->Remove();
        } catch (const ToolError&) {
        }
    }
}

ReportReview::~ReportReview() {
    if (m_fd >= 0)
        ::close(m_fd);
}

std::string ReportReview::Name() const {
    const std::lock_guard<std::mutex> lock(m_nameMutex);
    return std::filesystem::path(m_path).filename().string();
}

void ReportReview::RequireEditable() const {
    if (!m_journal)
        throw ApiError(409, "a report read from standard input cannot be saved: serve a file to "
                            "review it");
    if (m_offer)
        throw ApiError(409, "first apply or discard the unsaved changes of the previous session");
}

void ReportReview::Record(const nlohmann::json& entry) {
    try {
        m_journal->Append(entry, m_identity);
    } catch (const JournalBusy& error) {
        throw ApiError(409, error.what());
    } catch (const ToolError& error) {
        throw ApiError(500, std::string(error.what()) + " (nothing was changed)");
    }
}

void ReportReview::Edit(CSamples& samples, const CMetaboliteEdit& edit) {
    RequireEditable();
    const std::string problem = CheckMetaboliteEdit(samples, edit);
    if (!problem.empty())
        throw ApiError(400, problem);
    nlohmann::json entry = Entry("edit");
    entry["edit"] = EditJson(edit);
    Record(entry);
    m_changes.Apply(samples, edit);
    m_unsaved = m_changes.Count();
}

CMetaboliteEdit ReportReview::Undo(CSamples& samples) {
    return Step(samples, false);
}

CMetaboliteEdit ReportReview::Redo(CSamples& samples) {
    return Step(samples, true);
}

CMetaboliteEdit ReportReview::Step(CSamples& samples, bool redo) {
    RequireEditable();
    if (!(redo ? m_changes.CanRedo() : m_changes.CanUndo()))
        throw ApiError(409, redo ? "there is no undone change to redo"
                                 : "there is no unsaved change to undo");
    Record(Entry(redo ? "redo" : "undo"));
    CMetaboliteEdit applied;
    if (redo)
        m_changes.Redo(samples, &applied);
    else
        m_changes.Undo(samples, &applied);
    m_unsaved = m_changes.Count();
    return applied;
}

bool ReportReview::UnchangedOnDisk() const {
    struct stat status {};
    if (::stat(m_path.c_str(), &status) != 0 ||
        static_cast<std::uintmax_t>(status.st_size) != m_identity.size)
        return false;
    try {
        return IdentityOf(m_path) == m_identity;
    } catch (const ToolError&) {
        return false;
    }
}

void ReportReview::Reopen(const std::string& path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return; // saved, but no longer readable here: the next save will refuse
    ::close(m_fd);
    m_fd = fd;
    m_identity = IdentityOf(m_fd);
}

void ReportReview::SaveTo(CSamples& samples, const std::string& readFrom,
                          const std::string& target) {
    try {
        SaveReport(samples, readFrom, target);
    } catch (const ToolError& error) {
        throw ApiError(500, std::string(error.what()) +
                                ". The file on disk is as it was; the changes stay unsaved.");
    }
    if (target != m_path) {
        m_journal->Remove();
        m_journal = std::make_unique<class Journal>(target);
        const std::lock_guard<std::mutex> lock(m_nameMutex);
        m_path = target;
    } else {
        m_journal->Remove();
    }
    Reopen(target);
    m_changes.Clear();
    m_unsaved = 0;
    m_savedAt = UtcNow();
}

void ReportReview::Save(CSamples& samples) {
    RequireEditable();
    if (!UnchangedOnDisk()) {
        ApiError changed(409, Name() + " changed on disk since it was read (another program or "
                                       "a second server wrote it): saving over it would lose "
                                       "that. Save as a new file instead.");
        changed.details = {{"changed_on_disk", true}};
        throw changed;
    }
    SaveTo(samples, m_path, m_path);
}

void ReportReview::SaveAs(CSamples& samples, const std::string& name, bool replace) {
    RequireEditable();
    const std::string problem = SaveAsNameProblem(name);
    if (!problem.empty())
        throw ApiError(400, problem);
    const std::string target =
        (std::filesystem::path(m_path).parent_path() / name).lexically_normal().string();
    if (target == std::filesystem::path(m_path).lexically_normal().string())
        return Save(samples);
    std::error_code error;
    if (!replace && std::filesystem::exists(target, error)) {
        ApiError exists(409, name + " exists already");
        exists.details = {{"exists", true}};
        throw exists;
    }
    if (UnchangedOnDisk())
        return SaveTo(samples, m_path, target);
    // Replaced on disk: the report as read is still open, unless it was overwritten in place.
    struct stat status {};
    if (::fstat(m_fd, &status) != 0 ||
        static_cast<std::uintmax_t>(status.st_size) != m_identity.size ||
        IdentityOf(m_fd) != m_identity)
        throw ApiError(409, Name() + " was overwritten in place since it was read, so the "
                                     "report the changes belong to is gone. They stay in the "
                                     "journal.");
    const OriginalLink original(m_fd, std::filesystem::path(m_path).filename().string());
    SaveTo(samples, original.Path(), target);
}

void ReportReview::Replay(CSamples& samples, const nlohmann::json& entry) {
    const std::string op = entry.value("op", "");
    if (op == "edit" && entry.contains("edit"))
        m_changes.Apply(samples, EditOfJson(entry.at("edit")));
    else if (op == "undo")
        m_changes.Undo(samples);
    else if (op == "redo")
        m_changes.Redo(samples);
    else
        throw std::invalid_argument("\"" + op + "\" is no change");
}

void ReportReview::ApplyJournal(CSamples& samples) {
    if (!m_offer)
        throw ApiError(409, "there are no changes of a previous session to apply");
    for (size_t i = 0; i < m_offer->entries.size(); ++i) {
        try {
            Replay(samples, m_offer->entries[i]);
        } catch (const std::exception& error) {
            while (m_changes.Undo(samples)) {
            }
            m_changes.Clear();
            throw ApiError(409, "change " + std::to_string(i + 1) +
                                    " of the previous session does not fit the report (" +
                                    error.what() + "): nothing was applied");
        }
    }
    try {
        m_journal->Resume(*m_offer);
    } catch (const std::exception& error) {
        while (m_changes.Undo(samples)) {
        }
        m_changes.Clear();
        throw ApiError(409, error.what());
    }
    m_offer.reset();
    m_unsaved = m_changes.Count();
}

void ReportReview::DiscardJournal() {
    if (!m_offer)
        throw ApiError(409, "there are no changes of a previous session to discard");
    try {
        m_journal->Remove();
    } catch (const ToolError& error) {
        throw ApiError(500, error.what());
    }
    m_offer.reset();
}

void ReportReview::DiscardOnExit() {
    // A journal of a previous session that was neither applied nor discarded is not this
    // session's to discard.
    if (m_journal && !m_offer && (m_changes.CanUndo() || m_changes.CanRedo()))
        m_journal->Remove();
}

nlohmann::json ReportReview::State() const {
    nlohmann::json offer;
    if (m_offer)
        offer = {{"changes", ChangesInEffect(m_offer->entries)},
                 {"time", m_offer->entries.empty()
                              ? nlohmann::json()
                              : nlohmann::json(m_offer->entries.back().value("time", ""))},
                 {"report_changed", m_offer->identity != m_identity}};
    return {{"file", Name()},
            {"editable", m_journal != nullptr},
            {"unsaved", m_changes.Count()},
            {"can_undo", m_changes.CanUndo()},
            {"can_redo", m_changes.CanRedo()},
            {"saved_at", m_savedAt ? nlohmann::json(*m_savedAt) : nlohmann::json()},
            {"journal", offer}};
}

} // namespace quillon::tool::serve
