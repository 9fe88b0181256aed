#pragma once

#include <quillon/platform/String.h>

#include <cstdint>
#include <string_view>

namespace quillon {

// The plate library: a plate record and the four operations that fill it and convert between a
// vial's reference text and its (column, row) offsets, both counted from 1 at the top-left vial.
//
// Referencing schemes (word 2 of the record):
//   0 (and any value other than 4 and 5), alphanumeric: a row letter (A is row 1, either case)
//     followed by the column number: "B3" is column 3, row 2.
//   4, numeric: the vial's position counted from 1 at the top-left vial, along the rows (left to
//     right, rows top to bottom) when Priority is 0, down the columns (top to bottom, columns left
//     to right) when Priority is non-zero. On a 12 x 8 plate with Priority 0, "15" is column 3,
//     row 2; with Priority 1, "15" is column 2, row 7.
//   5, numeric serpentine: as 4, but every second row (Priority 0) or column (Priority non-zero)
//     runs backwards. On a 12 x 8 plate with Priority 0, "22" is column 3, row 2.
// A reference outside the plate, or a text that does not fit the scheme (blanks, signs, a number
// too big for an int, bytes beyond ASCII), fails with 0 and leaves the outputs unchanged.

constexpr int kPlateRecordWords = 34;

// The plate record: words 0 to 4 are Origin, Priority, Referencing, Rows and Columns; the other
// words are reserved, kept zero by this library and copied with the record.
struct PlateRecord {
    int32_t words[kPlateRecordWords] = {};
};

enum PlateWord { kPlateOrigin = 0, kPlatePriority, kPlateReferencing, kPlateRows, kPlateColumns };

constexpr int kReferencingAlphanumeric = 0;
constexpr int kReferencingNumeric = 4;
constexpr int kReferencingSerpentine = 5;

// Origin 0, Priority 0, Referencing 0, 8 rows, 12 columns; the reserved words zero.
void SetPlateToDefaults(PlateRecord* plate);

// Reads a descriptor "columns,rows[,priority[,referencing[,origin]]]" of decimal integers, blanks
// allowed around each: "12, 8, 1, 5" is a 12 x 8 plate numbered down serpentine columns. Returns
// non-zero when columns and rows are positive (and their product fits an int); otherwise 0 with the
// record unchanged.
int GetPlateFromPlateDescriptor(PlateRecord* plate, const char* descriptor);

// Turns a reference in the record's scheme into 1-based offsets from the top-left vial.
int GetTopLeftOffsetsFromPlateReference(const PlateRecord* plate, int* column, int* row,
                                        const char* reference);

// Writes the reference of the vial at (column, row) in the record's scheme; 0 outside the plate
// (or, alphanumerically, beyond row 26, which no letter names), leaving the text unchanged.
int GetPlateReferenceFromTopLeftOffsets(const PlateRecord* plate, int column, int row,
                                        CString& reference);

// Reads a whole text of decimal digits (no sign, no blanks) into value; 0 when the text is empty,
// holds anything else or does not fit an int.
int ParseDecimalInt(std::string_view text, int& value);

} // namespace quillon
