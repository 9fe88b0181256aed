#pragma once

#include <string>
#include <string_view>

#include <sys/stat.h>

namespace quillon {

// A file that replaces a target in one step, so that a crash, a full disk or a second writer at any
// moment leaves either the old target or the new one whole, never a mix.
//
// The new content is written to GetPath(): a file of the target's own name (the report writer
// names the file in what it writes) in a private folder made beside the target. Commit gives it the
// target's permissions, syncs it, renames it over the target and syncs the folder. A link is
// followed: the file it points to is replaced, the link stays. Whatever is left when the object
// goes without a commit is removed, so a failure at any step leaves the target as it was and no
// litter. Every failure throws CFileException naming the target and the system's reason.
//
//     CAtomicFile pending("batch.txt");   // makes ./.batch.txt.1234.Ab12Cd/batch.txt's folder
//     WriteSomething(pending.GetPath());
//     pending.Commit();                   // batch.txt now holds what was written
class CAtomicFile {
public:
    // Refuses (throws) a target that is a folder, not a regular file, or an existing file the
    // caller may not write (renaming would replace a read-only file too: its protection wins).
    explicit CAtomicFile(const std::string& target);
    CAtomicFile(const CAtomicFile&) = delete;
    CAtomicFile& operator=(const CAtomicFile&) = delete;
    ~CAtomicFile();

    // Where to write the new content.
    const std::string& GetPath() const { return m_path; }
    // Moves the written file over the target (see the class comment). Throws on failure.
    void Commit();

private:
    [[noreturn]] void Fail(const char* operation, int osError) const;

    std::string m_shownTarget; // as the caller named it
    std::string m_target;      // the file to replace, links followed
    std::string m_folder;
    std::string m_path;
    struct stat m_status {};
    bool m_exists = false;
    bool m_committed = false;
};

// Replaces target with exactly text through a CAtomicFile. Throws CFileException.
void WriteFileAtomically(const std::string& target, std::string_view text);

} // namespace quillon
