#include <quillon/plate/PlateDesc.h>

namespace quillon {

QUILLON_IMPLEMENT_DYNCREATE(CPlateDesc, CObject)

CPlateDesc::CPlateDesc() : m_pPlate(new PlateRecord) {
    SetPlateToDefaults(m_pPlate);
}

CPlateDesc::CPlateDesc(const CPlateDesc& source) : CPlateDesc() {
    *this = source;
}

CPlateDesc& CPlateDesc::operator=(const CPlateDesc& source) {
    if (m_pPlate && source.m_pPlate && this != &source)
        *m_pPlate = *source.m_pPlate;
    return *this;
}

CPlateDesc::~CPlateDesc() {
    delete m_pPlate;
}

int CPlateDesc::SetDescription(const CString& descriptor) {
    if (!m_pPlate || descriptor.IsEmpty())
        return 0;
    return GetPlateFromPlateDescriptor(m_pPlate, descriptor);
}

int CPlateDesc::GetSize(int* columns, int* rows) const {
    if (columns)
        *columns = GetColumns();
    if (rows)
        *rows = GetRows();
    return GetColumns() * GetRows();
}

void CPlateDesc::SetSize(int columns, int rows) {
    SetColumns(columns);
    SetRows(rows);
}

int CPlateDesc::IsVialValid(int vial) const {
    return vial >= 1 && vial <= GetSize(nullptr, nullptr) ? 1 : 0;
}

int CPlateDesc::IsVialValid(int column, int row) const {
    return GetSize(nullptr, nullptr) > 0 && column >= 1 && column <= GetColumns() && row >= 1 &&
                   row <= GetRows()
               ? 1
               : 0;
}

int CPlateDesc::IsNumeric(const CString& text) {
    for (char ch : text.view())
        if (ch < '0' || ch > '9')
            return 0;
    return 1;
}

PlateRecord CPlateDesc::NumericRecord() const {
    PlateRecord numeric = *m_pPlate;
    if (numeric.words[kPlateReferencing] != kReferencingSerpentine)
        numeric.words[kPlateReferencing] = kReferencingNumeric;
    return numeric;
}

int CPlateDesc::VialToCoord(int vial, int& column, int& row) const {
    if (!m_pPlate || !IsVialValid(vial))
        return 0;
    const PlateRecord numeric = NumericRecord();
    CString text;
    text.Format("%i", vial);
    return GetTopLeftOffsetsFromPlateReference(&numeric, &column, &row, text);
}

int CPlateDesc::CoordToVial(int column, int row, int& vial) const {
    if (!m_pPlate)
        return 0;
    const PlateRecord numeric = NumericRecord();
    CString text;
    if (!GetPlateReferenceFromTopLeftOffsets(&numeric, column, row, text))
        return 0;
    ParseDecimalInt(text.view(), vial); // the library wrote the digits of a vial on the plate
    return 1;
}

int CPlateDesc::ParseReference(const CString& reference, int& column, int& row) const {
    if (!m_pPlate || reference.IsEmpty())
        return 0;
    if (IsNumeric(reference)) {
        int vial = 0;
        if (!ParseDecimalInt(reference.view(), vial) || !IsVialValid(vial))
            return 0;
        column = vial;
        row = 0;
        return 1;
    }
    return GetTopLeftOffsetsFromPlateReference(m_pPlate, &column, &row, reference);
}

int CPlateDesc::ParseReference(const CString& reference, int& vial) const {
    int column = 0;
    int row = 0;
    if (!ParseReference(reference, column, row))
        return 0;
    if (row == 0) {
        vial = column;
        return 1;
    }
    return CoordToVial(column, row, vial);
}

int CPlateDesc::FormatReference(int vial, CString& reference) const {
    int column = 0;
    int row = 0;
    if (!VialToCoord(vial, column, row))
        return 0;
    return GetPlateReferenceFromTopLeftOffsets(m_pPlate, column, row, reference);
}

int CPlateDesc::VialToAbsVial(int vial, int& absVial, int plainOrder) const {
    int x = 0;
    int y = 0;
    if (!m_pPlate || !VialToCoord(vial, x, y))
        return 0;
    const int columns = GetColumns();
    const int rows = GetRows();
    const int referencing = GetReferencing();
    if (GetPriority() != 0 && plainOrder == 0 && referencing == kReferencingNumeric) {
        absVial = (x - 1) * rows + y;
    } else if (GetPriority() != 0 && plainOrder == 0 && referencing == kReferencingSerpentine) {
        absVial = x % 2 == 0 ? x * rows - y + 1 : (x - 1) * rows + y;
    } else if (GetPriority() == 0 && plainOrder == 0 && referencing == kReferencingSerpentine) {
        absVial = y % 2 == 0 ? y * columns - x + 1 : (y - 1) * columns + x;
    } else {
        absVial = (y - 1) * columns + x;
    }
    return 1;
}

int CPlateDesc::AbsVialToVial(int absVial, int& vial) const {
    if (!m_pPlate || !IsVialValid(absVial))
        return 0;
    const int columns = GetColumns();
    const int rows = GetRows();
    const int referencing = GetReferencing();
    int x = 0;
    int y = 0;
    if (GetPriority() != 0 &&
        (referencing == kReferencingNumeric || referencing == kReferencingSerpentine)) {
        x = (absVial - 1) / rows + 1;
        y = referencing == kReferencingSerpentine && x % 2 == 0 ? x * rows - absVial + 1
                                                                : absVial - (x - 1) * rows;
    } else {
        y = (absVial - 1) / columns + 1;
        x = referencing == kReferencingSerpentine && y % 2 == 0 ? y * columns - absVial + 1
                                                                : absVial - (y - 1) * columns;
    }
    return CoordToVial(x, y, vial);
}

namespace {

// Brings an index back onto 1..last: clamped to the edge, or continued from the opposite edge.
int KeepOnPlate(long long index, int last, int wrap) {
    if (index < 1)
        return wrap ? last : 1;
    if (index > last)
        return wrap ? 1 : last;
    return static_cast<int>(index);
}

} // namespace

int CPlateDesc::MoveVial(int& vial, int columnStep, int rowStep, int wrap) const {
    int x = 0;
    int y = 0;
    if (!VialToCoord(vial, x, y))
        return 0;
    // Summed wide: a step near the int limits cannot overflow.
    CoordToVial(KeepOnPlate(static_cast<long long>(x) + columnStep, GetColumns(), wrap),
                KeepOnPlate(static_cast<long long>(y) + rowStep, GetRows(), wrap), vial);
    return 1;
}

} // namespace quillon
