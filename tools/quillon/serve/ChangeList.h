#pragma once

// The unsaved changes of a served report, in the order they were made, with undo and redo. Every
// change goes through the library's ApplyMetaboliteEdit, which hands back the edit that undoes it,
// so undo and redo are edits like any other. A save starts a new list: only unsaved changes are
// undone.
//
//     list.Apply(samples, confirm);  // Count() == 1
//     list.Undo(samples);            // Count() == 0, CanRedo()
//     list.Redo(samples);            // Count() == 1 again

#include <quillon/quillon.h>

#include <map>
#include <utility>
#include <vector>

namespace quillon::tool::serve {

class ChangeList {
public:
    // Applies edit to samples and keeps it; redoing what was undone is no longer possible. Throws
    // std::invalid_argument (nothing changed) when the edit does not apply.
    void Apply(CSamples& samples, const CMetaboliteEdit& edit);
    // Undoes the latest change and returns the edit applied to undo it; false when there is none.
    bool Undo(CSamples& samples, CMetaboliteEdit* applied = nullptr);
    // Makes the latest undone change again; false when there is none.
    bool Redo(CSamples& samples, CMetaboliteEdit* applied = nullptr);

    // The changes in effect, which a save would write.
    int Count() const { return static_cast<int>(m_done.size()); }
    bool CanUndo() const { return !m_done.empty(); }
    bool CanRedo() const { return !m_undone.empty(); }
    // How many changes in effect touch the metabolite at index of the sample numbered sample.
    int ChangesOf(int sample, int metabolite) const;
    // Forgets every change (after a save: the report on disk holds them).
    void Clear();

private:
    struct Change {
        CMetaboliteEdit edit;
        CMetaboliteEdit undo;
    };
    void Count(const CMetaboliteEdit& edit, int step);

    std::vector<Change> m_done;
    std::vector<Change> m_undone;
    std::map<std::pair<int, int>, int> m_touched; // (sample, metabolite) -> changes in effect
};

} // namespace quillon::tool::serve
