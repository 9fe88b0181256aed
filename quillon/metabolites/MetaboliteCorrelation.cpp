// The MS/MS correlation lists of a metabolite: reading them at the sample's parent entry, editing
// their comma-separated items and expanding the correlation masses into numbers.

#include <quillon/metabolites/MetaboliteData.h>

#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MetaboliteDisplay.h>
#include <quillon/platform/Numbers.h>

#include <cstdio>

namespace quillon {

namespace {

// Decimals at which two product-ion texts are taken to name the same ion (the precision of the
// report's mass columns).
constexpr int kProductIonDecimals = 4;

// The parent entry of the sample's MS/MS correlation; -1 without a sample.
int ParentEntryOf(CSampleData* sample) {
    return sample != nullptr ? sample->GetMSMSCorrelation()->ParentEntry() : -1;
}

// The text at entry, or "" for an entry outside the list.
CString TextAt(const CStringArray& list, int entry) {
    if (entry < 0 || entry >= list.GetSize())
        return CString();
    return list[entry];
}

// The items of a comma-separated text, in order; an empty text has none.
CStringArray SplitItems(const CString& text) {
    CStringArray items;
    if (text.IsEmpty())
        return items;
    int start = 0;
    for (int comma = text.Find(','); comma >= 0; comma = text.Find(',', start)) {
        items.Add(text.Mid(start, comma - start));
        start = comma + 1;
    }
    items.Add(text.Mid(start));
    return items;
}

// Removes item i (from 0) of a comma-separated text: from the start of the item up to and
// including the comma after it, or, for the last item, from the comma before it to the end.
// "100.1,200.2,300.3" without item 1 is "100.1,300.3", without item 2 "100.1,200.2". False, and
// the text unchanged, when the text has no item i.
bool RemoveItem(CString& text, int i) {
    if (text.IsEmpty() || i < 0)
        return false;
    int start = 0;
    for (int k = 0; k < i; ++k) {
        const int comma = text.Find(',', start);
        if (comma < 0)
            return false;
        start = comma + 1;
    }
    const int end = text.Find(',', start);
    if (end >= 0) {
        text.Delete(start, end - start + 1);
    } else {
        const int from = start > 0 ? start - 1 : 0;
        text.Delete(from, text.GetLength() - from);
    }
    return true;
}

// Removes item i of the text at entry of a list; false when there is no such text or item.
bool RemoveItemAt(CStringArray& list, int entry, int i) {
    if (entry < 0 || entry >= list.GetSize())
        return false;
    return RemoveItem(list[entry], i);
}

} // namespace

void CMetaboliteData::GetCommonProductsParent(CSampleData* sample, CString& text) const {
    text = TextAt(m_CorrelationMasses, ParentEntryOf(sample));
}

void CMetaboliteData::GetNeutralLossesFromAllParentSpectrumMasses(CSampleData* sample,
                                                                  CString& text) const {
    text = TextAt(m_NeutralLossesFromAllParentSpectrumMasses, ParentEntryOf(sample));
}

void CMetaboliteData::GetCommonNeutralLosses(CSampleData* sample, CString& text) const {
    text = TextAt(m_CommonNeutralLosses, ParentEntryOf(sample));
}

void CMetaboliteData::GetCommonProductsMetabolite(CSampleData* sample, CString& text,
                                                  int entry) const {
    text = entry == ParentEntryOf(sample) ? CString() : TextAt(m_CorrelationMasses, entry);
}

void CMetaboliteData::GetCommonProductsNonParent(CSampleData* sample, CString& text) const {
    text.Empty();
    const int parent = ParentEntryOf(sample);
    for (int entry = 0; entry < m_CorrelationMasses.GetSize(); ++entry) {
        if (entry == parent)
            continue;
        for (const CString& item : SplitItems(m_CorrelationMasses[entry])) {
            if (text.Find(item) >= 0)
                continue;
            if (!text.IsEmpty())
                text += ',';
            text += item;
        }
    }
}

void CMetaboliteData::SetNeutralLossesFromAllParentSpectrumMasses(CSampleData* sample,
                                                                  const CString& text) {
    const int entry = sample != nullptr ? ParentEntryOf(sample) : 0;
    if (entry >= 0)
        SetNeutralLossesFromAllParentSpectrumMasses(entry, text);
}

bool CMetaboliteData::DeleteNeutralLoss(CSampleData* sample, int i) {
    return RemoveItemAt(m_NeutralLossesFromAllParentSpectrumMasses, ParentEntryOf(sample), i);
}

bool CMetaboliteData::DeleteProductIonParent(CSampleData* sample, int i) {
    return RemoveItemAt(m_CorrelationMasses, ParentEntryOf(sample), i);
}

bool CMetaboliteData::DeleteProductIonNonParent(CSampleData* sample, int i) {
    CString all;
    GetCommonProductsNonParent(sample, all);
    const CStringArray ions = SplitItems(all);
    if (i < 0 || i >= ions.GetSize())
        return false;
    // The union holds each ion as one entry wrote it; other entries may write the same mass with
    // other decimals, so items are compared at the report's mass precision.
    CString ion = ions[i];
    SetStringDecimalPlaces(ion, kProductIonDecimals);

    const int parent = ParentEntryOf(sample);
    bool removed = false;
    for (int entry = 0; entry < m_CorrelationMasses.GetSize(); ++entry) {
        if (entry == parent)
            continue;
        CString& products = m_CorrelationMasses[entry];
        const CStringArray items = SplitItems(products);
        for (int k = items.GetSize() - 1; k >= 0; --k) {
            CString item = items[k];
            SetStringDecimalPlaces(item, kProductIonDecimals);
            if (item == ion && RemoveItem(products, k))
                removed = true;
        }
    }
    return removed;
}

void CMetaboliteData::ExpandCorrelationMasses() {
    m_ExpandedCorrelationMasses.SetSize(m_CorrelationMasses.GetSize());
    for (int entry = 0; entry < m_CorrelationMasses.GetSize(); ++entry) {
        CDoubleArray& masses = m_ExpandedCorrelationMasses[entry];
        for (const CString& item : SplitItems(m_CorrelationMasses[entry])) {
            size_t used = 0;
            const double mass = ParseDouble(item.view(), used);
            if (used > 0 && mass > 0.0)
                masses.Add(mass);
        }
    }
}

} // namespace quillon
