#include "ChangeList.h"

namespace quillon::tool::serve {

void ChangeList::Apply(CSamples& samples, const CMetaboliteEdit& edit) {
    CMetaboliteEdit undo = ApplyMetaboliteEdit(samples, edit);
    m_done.push_back({edit, std::move(undo)});
    m_undone.clear();
    Count(edit, +1);
}

bool ChangeList::Undo(CSamples& samples, CMetaboliteEdit* applied) {
    if (m_done.empty())
        return false;
    Change change = std::move(m_done.back());
    m_done.pop_back();
    // The redo is the undo's own undo: a deleted candidate comes back with its values as they
    // were when it was removed.
    change.edit = ApplyMetaboliteEdit(samples, change.undo);
    if (applied != nullptr)
        *applied = change.undo;
    Count(change.edit, -1);
    m_undone.push_back(std::move(change));
    return true;
}

bool ChangeList::Redo(CSamples& samples, CMetaboliteEdit* applied) {
    if (m_undone.empty())
        return false;
    Change change = std::move(m_undone.back());
    m_undone.pop_back();
    change.undo = ApplyMetaboliteEdit(samples, change.edit);
    if (applied != nullptr)
        *applied = change.edit;
    Count(change.edit, +1);
    m_done.push_back(std::move(change));
    return true;
}

int ChangeList::ChangesOf(int sample, int metabolite) const {
    const auto found = m_touched.find({sample, metabolite});
    return found == m_touched.end() ? 0 : found->second;
}

void ChangeList::Clear() {
    m_done.clear();
    m_undone.clear();
    m_touched.clear();
}

void ChangeList::Count(const CMetaboliteEdit& edit, int step) {
    int& count = m_touched[{edit.sample, edit.metabolite}];
    count += step;
    if (count <= 0)
        m_touched.erase({edit.sample, edit.metabolite});
}

} // namespace quillon::tool::serve
