#pragma once

#include <quillon/fragments/FragmentAnalysis.h>

#include <vector>

namespace quillon {

// The fragment list of the analysis. Entries arrive one by one and are placed as a walk from
// the list's start would place them at arrival; the list is ordered by nominal mass, then by
// cluster id, entries of equal mass and cluster in arrival order. A new entry e (mass N,
// cluster C, parent p):
// - with a parent (p >= 0): the first entry of mass N with parent p met before the place of e
//   makes e a duplicate (dropped); the first entry of mass N, cluster C and no parent met before
//   that is overwritten by e; otherwise e goes before the first entry of mass N with a greater
//   cluster (a duplicate when that entry has parent p) or of a greater mass;
// - without a parent: dropped when an entry of mass N and cluster C exists; otherwise placed
//   the same way.
// Example: entries (100, cluster 2, parent 5), (100, 3, -1); adding (100, 3, 7) overwrites the
// second; adding (100, 1, 5) is dropped, since the entry of parent 5 lies right after its place.
//
// Entries of different masses never meet, so the list is built mass by mass when it is asked
// for: O(n log n) for n arrivals, without the walk's O(n) per entry.
class CFragmentList {
public:
    void Add(const FragmentEntry& entry) { m_arrivals.push_back(entry); }
    // The list in order.
    void CopyTo(CArray<FragmentEntry>& list) const;

private:
    // Places the arrivals of one nominal mass (in arrival order) and appends the result.
    static void PlaceGroup(const std::vector<const FragmentEntry*>& group,
                           CArray<FragmentEntry>& list);

    std::vector<FragmentEntry> m_arrivals;
};

} // namespace quillon
