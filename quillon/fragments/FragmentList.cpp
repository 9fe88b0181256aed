#include <quillon/fragments/FragmentList.h>

#include <algorithm>
#include <climits>
#include <cstdint>

namespace quillon {

namespace {

constexpr int kNone = INT_MAX;

// Dense ids for the distinct values of a group, in ascending value.
std::vector<int> DistinctSorted(std::vector<int> values) {
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    return values;
}

int IdOf(const std::vector<int>& distinct, int value) {
    return static_cast<int>(std::lower_bound(distinct.begin(), distinct.end(), value) -
                            distinct.begin());
}

} // namespace

void CFragmentList::PlaceGroup(const std::vector<const FragmentEntry*>& group,
                               CArray<FragmentEntry>& list) {
    // Clusters and parents of the group as dense ids; buckets are the clusters, ascending.
    std::vector<int> values;
    for (const FragmentEntry* e : group)
        values.push_back(e->ClusterID);
    const std::vector<int> clusters = DistinctSorted(values);
    values.clear();
    for (const FragmentEntry* e : group) {
        if (e->ParentIndex >= 0)
            values.push_back(e->ParentIndex);
    }
    const std::vector<int> parents = DistinctSorted(std::move(values));

    // Slots in creation order; an overwrite reuses its slot, so a bucket's slots ascend.
    std::vector<FragmentEntry> slots;
    std::vector<int> slotBucket;
    std::vector<int> nextWithoutParent; // per slot: the next parentless slot of its bucket
    std::vector<int> firstSlot(clusters.size(), kNone);
    std::vector<int> withoutParentHead(clusters.size(), kNone);
    std::vector<int> withoutParentTail(clusters.size(), kNone);
    std::vector<uint64_t> occupied((clusters.size() + 63) / 64, 0);
    struct Place {
        int bucket = kNone;
        int slot = kNone;
    };
    std::vector<Place> firstOfParent(parents.size()); // the parent's first entry in list order

    auto notePlace = [&](Place& place, int bucket, int slot) {
        if (bucket < place.bucket || (bucket == place.bucket && slot < place.slot))
            place = Place{bucket, slot};
    };
    auto nextOccupied = [&](int bucket) {
        for (size_t b = static_cast<size_t>(bucket) + 1; b < clusters.size();) {
            const uint64_t word = occupied[b / 64] >> (b % 64);
            if (word != 0)
                return static_cast<int>(b) + __builtin_ctzll(word);
            b = (b / 64 + 1) * 64;
        }
        return kNone;
    };
    auto newSlot = [&](const FragmentEntry& e, int bucket) {
        const int slot = static_cast<int>(slots.size());
        slots.push_back(e);
        slotBucket.push_back(bucket);
        nextWithoutParent.push_back(kNone);
        if (firstSlot[static_cast<size_t>(bucket)] == kNone) {
            firstSlot[static_cast<size_t>(bucket)] = slot;
            occupied[static_cast<size_t>(bucket) / 64] |= uint64_t{1} << (bucket % 64);
        }
        if (e.ParentIndex < 0) {
            int& tail = withoutParentTail[static_cast<size_t>(bucket)];
            (tail == kNone ? withoutParentHead[static_cast<size_t>(bucket)]
                           : nextWithoutParent[static_cast<size_t>(tail)]) = slot;
            tail = slot;
        }
        return slot;
    };

    for (const FragmentEntry* arrival : group) {
        const FragmentEntry& e = *arrival;
        const int bucket = IdOf(clusters, e.ClusterID);
        const size_t b = static_cast<size_t>(bucket);
        if (e.ParentIndex < 0) {
            if (firstSlot[b] == kNone)
                newSlot(e, bucket);
            continue;
        }
        Place& place = firstOfParent[static_cast<size_t>(IdOf(parents, e.ParentIndex))];
        if (place.bucket < bucket)
            continue; // an entry of the same parent comes first
        const int firstOfThisParent = place.bucket == bucket ? place.slot : kNone;
        const int firstWithout = withoutParentHead[b];
        if (firstOfThisParent < firstWithout)
            continue;
        if (firstWithout != kNone) {
            slots[static_cast<size_t>(firstWithout)] = e;
            withoutParentHead[b] = nextWithoutParent[static_cast<size_t>(firstWithout)];
            if (withoutParentHead[b] == kNone)
                withoutParentTail[b] = kNone;
            notePlace(place, bucket, firstWithout);
            continue;
        }
        // The entry goes after its bucket; the walk examines the next bucket's first entry,
        // which can only be this parent's when the parent's first entry lies beyond.
        if (place.bucket != kNone && nextOccupied(bucket) == place.bucket &&
            firstSlot[static_cast<size_t>(place.bucket)] == place.slot)
            continue;
        notePlace(place, bucket, newSlot(e, bucket));
    }

    std::vector<int> order(slots.size());
    for (size_t s = 0; s < order.size(); ++s)
        order[s] = static_cast<int>(s);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
        return slotBucket[static_cast<size_t>(a)] < slotBucket[static_cast<size_t>(b)];
    });
    for (int s : order)
        list.Add(slots[static_cast<size_t>(s)]);
}

void CFragmentList::CopyTo(CArray<FragmentEntry>& list) const {
    list.RemoveAll();
    list.Reserve(static_cast<int>(m_arrivals.size()));
    std::vector<const FragmentEntry*> byMass(m_arrivals.size());
    for (size_t i = 0; i < m_arrivals.size(); ++i)
        byMass[i] = &m_arrivals[i];
    std::stable_sort(byMass.begin(), byMass.end(),
                     [](const FragmentEntry* a, const FragmentEntry* b) {
                         return a->NominalMass < b->NominalMass;
                     });
    std::vector<const FragmentEntry*> group;
    for (size_t i = 0; i < byMass.size();) {
        group.clear();
        const int mass = byMass[i]->NominalMass;
        for (; i < byMass.size() && byMass[i]->NominalMass == mass; ++i)
            group.push_back(byMass[i]);
        PlaceGroup(group, list);
    }
}

} // namespace quillon
