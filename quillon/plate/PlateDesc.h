#pragma once

#include <quillon/plate/PlateLayout.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

// One sample plate: a plate record (see PlateLayout.h) and the arithmetic between a vial number
// (the plate's numeric order: serpentine when Referencing is 5, plain otherwise, along rows or
// down columns by Priority), a (column, row) coordinate from the top-left vial and an absolute
// vial number (the order the plate is processed in). Every operation returns 0 on failure and
// leaves its outputs as they were; none throws.
class CPlateDesc : public CObject {
    QUILLON_DECLARE_DYNCREATE(CPlateDesc)

public:
    // A plate with the library's defaults: 12 columns, 8 rows, alphanumeric, along rows.
    CPlateDesc();
    CPlateDesc(const CPlateDesc& source);
    CPlateDesc& operator=(const CPlateDesc& source);
    ~CPlateDesc() override;

    int GetOrigin() const { return Word(kPlateOrigin); }
    void SetOrigin(int origin) { SetWord(kPlateOrigin, origin); }
    int GetPriority() const { return Word(kPlatePriority); }
    void SetPriority(int priority) { SetWord(kPlatePriority, priority); }
    int GetReferencing() const { return Word(kPlateReferencing); }
    void SetReferencing(int referencing) { SetWord(kPlateReferencing, referencing); }
    int GetRows() const { return Word(kPlateRows); }
    void SetRows(int rows) { SetWord(kPlateRows, rows); }
    int GetColumns() const { return Word(kPlateColumns); }
    void SetColumns(int columns) { SetWord(kPlateColumns, columns); }

    // Fills the plate from a descriptor "columns,rows[,priority[,referencing[,origin]]]"; 0 for
    // an empty or malformed text, which leaves the plate as it was.
    int SetDescription(const CString& descriptor);
    // Writes columns and rows where the pointers are given; returns columns x rows.
    int GetSize(int* columns, int* rows) const;

    // 1 when 1 <= vial <= columns x rows.
    int IsVialValid(int vial) const;
    // 1 when the plate has a vial and the coordinate lies on it.
    int IsVialValid(int column, int row) const;
    // 1 when the text is empty or all decimal digits.
    static int IsNumeric(const CString& text);

    // Vial number <-> coordinate in the plate's numeric order. On a 12 x 8 plate along rows,
    // vial 15 is (3, 2); with Referencing 5 it is (10, 2), as row 2 runs backwards.
    int VialToCoord(int vial, int& column, int& row) const;
    int CoordToVial(int column, int row, int& vial) const;

    // A reference in the plate's own scheme ("B3" alphanumerically) to a coordinate. A numeric
    // reference is taken as a vial number instead: column receives that number and row 0 (a
    // single-number position), provided the vial lies on the plate.
    int ParseReference(const CString& reference, int& column, int& row) const;
    // A reference in the plate's own scheme, or a numeric one (a vial number), to a vial number.
    int ParseReference(const CString& reference, int& vial) const;
    // The vial's reference in the plate's own scheme: vial 15 of a default plate is "B3".
    int FormatReference(int vial, CString& reference) const;

    // Vial number -> absolute number in processing order. With plainOrder non-zero the order is
    // always along rows. A 12 x 8 plate along rows: (3, 2) is 15; serpentine, 22.
    int VialToAbsVial(int vial, int& absVial, int plainOrder) const;
    // The inverse of VialToAbsVial with plainOrder 0.
    int AbsVialToVial(int absVial, int& vial) const;
    // Moves the vial by the steps; a coordinate beyond an edge stops at that edge, or with wrap
    // non-zero continues from the opposite edge. 0 only when the vial is not on the plate.
    int MoveVial(int& vial, int columnStep, int rowStep, int wrap) const;

protected:
    void SetSize(int columns, int rows);

private:
    int Word(int index) const { return m_pPlate ? m_pPlate->words[index] : 0; }
    void SetWord(int index, int value) {
        if (m_pPlate)
            m_pPlate->words[index] = value;
    }
    // A copy of the record whose referencing is the numeric scheme the vial numbers follow.
    PlateRecord NumericRecord() const;

    PlateRecord* m_pPlate = nullptr;
};

} // namespace quillon
