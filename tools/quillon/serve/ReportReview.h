#pragma once

// The review of one served report: its unsaved changes with undo and redo (ChangeList), their
// journal (Journal), the journal a previous server left offered back, and saving, in place or as
// a new file beside the report, never over a report that changed on disk since it was read.
//
// Every operation but Name and Unsaved runs with the report's model locked (ServedReport's
// WithSamples) and throws ApiError with the status and message the page shows.

#include "ChangeList.h"
#include "Journal.h"
#include "ReportIdentity.h"

#include <nlohmann/json.hpp>

#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace quillon::tool::serve {

class ReportReview {
public:
    // Takes the identity of the report at path (before it is read, so that a change made while
    // reading counts as a change) and keeps it open, so that "save as" still has the report as it
    // was read after another program replaced it. Throws ToolError when it cannot be read.
    explicit ReportReview(const std::string& path);
    ~ReportReview();
    ReportReview(const ReportReview&) = delete;
    ReportReview& operator=(const ReportReview&) = delete;

    // The name of the file the changes go to (another after "save as"). Safe without the lock.
    std::string Name() const;
    // How many changes are unsaved. Safe without the lock, and in a signal handler.
    int Unsaved() const { return m_unsaved.load(); }
    // Whether a change in effect touches the metabolite at index of the sample numbered sample.
    bool Touched(int sample, int metabolite) const {
        return m_changes.ChangesOf(sample, metabolite) > 0;
    }

    // Journals the edit, then applies it: 400 when it does not apply, 409 while a journal waits for
    // an answer, 500 when the journal cannot be written (the model unchanged).
    void Edit(CSamples& samples, const CMetaboliteEdit& edit);
    // Undoes (redoes) the latest change; returns the edit that was applied; 409 when there is none.
    CMetaboliteEdit Undo(CSamples& samples);
    CMetaboliteEdit Redo(CSamples& samples);

    // Saves over the report: 409 ("changed_on_disk") when it changed on disk since it was read,
    // 500 with the system's reason when writing fails (the report byte for byte as it was, the
    // changes and the journal kept). A save clears the changes and removes the journal.
    void Save(CSamples& samples);
    // Saves as name, a new file in the report's folder ("batch-reviewed.txt": no folder), which
    // the review then continues in. 400 for a bad name, 409 when the file exists and replace is
    // false ("exists"), or when the report was overwritten in place so that its content as read is
    // gone.
    void SaveAs(CSamples& samples, const std::string& name, bool replace);

    // Replays the journal a previous server left, so that the model is as that server had it; 409
    // (the model untouched) when there is none or one of its changes does not apply.
    void ApplyJournal(CSamples& samples);
    // Removes the journal a previous server left.
    void DiscardJournal();
    // Removes the journal of this server's unsaved changes (serve --discard-on-exit).
    void DiscardOnExit();

    // {"file", "editable", "unsaved", "can_undo", "can_redo", "saved_at" (UTC, null before the
    // first save), "journal": null or {"changes", "time" (UTC), "report_changed"}}.
    nlohmann::json State() const;

private:
    void Record(const nlohmann::json& entry);
    // Undoes (redo false) or redoes the latest change, journalled first.
    CMetaboliteEdit Step(CSamples& samples, bool redo);
    void RequireEditable() const;
    void Replay(CSamples& samples, const nlohmann::json& entry);
    // Writes the model to target from the report as it was read, and continues the review in it.
    void SaveTo(CSamples& samples, const std::string& readFrom, const std::string& target);
    bool UnchangedOnDisk() const;
    void Reopen(const std::string& path);

    std::string m_path;
    int m_fd = -1; // the report as it was read
    ReportIdentity m_identity;
    ChangeList m_changes;
    std::unique_ptr<Journal> m_journal;
    std::optional<JournalContents> m_offer;
    std::optional<std::string> m_savedAt;
    std::atomic<int> m_unsaved{0};
    mutable std::mutex m_nameMutex;
};

} // namespace quillon::tool::serve
