#pragma once

#include <quillon/metabolites/CompoundData.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>

#include <memory>

namespace quillon {

// A sortable list of compounds handed between the host settings and the analyses.
//
// Copies share one list: a copy made by construction or assignment sees every change made
// through the original and the other way round. The list lives as long as any of its sharers, so
// a copy stays valid after its source has been destroyed.
class CCompounds : public CObject {
    QUILLON_DECLARE_DYNAMIC(CCompounds)

public:
    CCompounds();
    CCompounds(const CCompounds& source) = default;
    CCompounds& operator=(const CCompounds& source) = default;
    ~CCompounds() override = default;

    // Appends a copy of the compound; returns its index.
    int Add(const CCompoundData& compound);
    int GetSize() const;
    // A copy of the compound at the index; a default compound for an index outside the list.
    CCompoundData GetAt(int index) const;
    // Assigns into an existing slot; an index outside the list changes nothing.
    void SetAt(int index, const CCompoundData& compound);
    // Removes one compound; the later ones move down. An index outside the list changes nothing.
    void RemoveAt(int index);
    void RemoveAll();
    // Sorts in place: non-negative masses by increasing magnitude, then negative masses by
    // increasing magnitude. Entries of equal mass keep their order.
    void Sort();

private:
    std::shared_ptr<CArray<CCompoundData>> m_pList;
};

} // namespace quillon
