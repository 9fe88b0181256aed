#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/Point.h>
#include <quillon/platform/String.h>

namespace quillon {

// The plate part of a vial reference: a (column, row) point, or a single number in x with y 0,
// and a mark for the MS/MS plate. "A12" is (1, 12), "1,2" is (1, 2), "12" is (12, 0).
class CReference : public CObject {
    QUILLON_DECLARE_DYNCREATE(CReference)

public:
    CReference() = default;
    CReference(const CReference& source) = default;
    CReference& operator=(const CReference& source) = default;
    ~CReference() override = default;

    // Splits a plate part into its first and second pieces: a run of digits or one character,
    // then, past any separators, a run of digits or one character. "A12" gives "A" and "12",
    // "1,2" gives "1" and "2", "12" gives "12" and "". Returns 1.
    static int SplitReference(const CString& text, CString& first, CString& second);
    // Splits and converts each non-empty piece: a leading letter counts from A as 1 (so "a" is
    // 33), anything else is read as a decimal number (0 when it does not fit an int). Returns 1.
    static int SplitReference(const CString& text, CPoint& point);

    int SetReference(CPoint* point, int number);
    // Sets the point from a plate part; Number becomes 0.
    int SetReference(const CString& text);

    int GetReference(CPoint& point) const;
    int GetReference(int& number) const;
    // "x,y", or "x" when y is 0, prefixed with "*" on the MS/MS plate.
    int GetReference(CString& text) const;
    operator CPoint() const { return m_Point; }
    operator int() const { return m_nNumber; }

    bool IsMSMSPlate() const { return m_bMSMSPlate; }
    void SetMSMSPlate(bool msmsPlate) { m_bMSMSPlate = msmsPlate; }

    // 1 when the points and the MS/MS marks agree; Number is not compared.
    int operator==(CReference other) const;

private:
    CPoint m_Point;
    int m_nNumber = 0;
    bool m_bMSMSPlate = false;
    [[maybe_unused]] int m_nReserved1 = 0; // reserved, copied with the reference
    [[maybe_unused]] int m_nReserved2 = 0; // reserved, copied with the reference
    [[maybe_unused]] int m_nReserved3 = 0; // reserved, copied with the reference
};

} // namespace quillon
