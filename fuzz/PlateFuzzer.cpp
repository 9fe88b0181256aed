// Plate descriptors and vial references. The first line of the input is a plate descriptor, every
// further line a reference. Any text is refused or resolved without harm, and what resolves keeps
// its meaning when it is printed and read again: a vial's reference in the plate's scheme, its
// coordinate and its processing-order number each lead back to the same vial, a move stays on the
// plate, and a plate part prints as a text that reads back to the same point.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <climits>
#include <string_view>

using namespace quillon;

namespace {

void CheckVial(const CPlateDesc& plate, int vial, std::string_view line) {
    fuzz::Require(plate.IsVialValid(vial));

    int column = 0;
    int row = 0;
    fuzz::Require(plate.VialToCoord(vial, column, row));
    fuzz::Require(plate.IsVialValid(column, row));
    int again = 0;
    fuzz::Require(plate.CoordToVial(column, row, again) && again == vial);

    CString reference;
    if (plate.FormatReference(vial, reference)) {
        again = 0;
        fuzz::Require(plate.ParseReference(reference, again) && again == vial);
    } else {
        // Only a row beyond Z has no reference, and only in the letter scheme.
        fuzz::Require(row > 26 && plate.GetReferencing() != kReferencingNumeric &&
                      plate.GetReferencing() != kReferencingSerpentine);
    }

    int absVial = 0;
    fuzz::Require(plate.VialToAbsVial(vial, absVial, 0) && plate.IsVialValid(absVial));
    again = 0;
    fuzz::Require(plate.AbsVialToVial(absVial, again) && again == vial);
    fuzz::Require(plate.VialToAbsVial(vial, absVial, 1) && plate.IsVialValid(absVial));

    // Steps taken from the line, and steps at the limits of an int.
    const int columnStep = static_cast<int>(line.size()) - 8;
    const int rowStep = line.empty() ? 0 : static_cast<signed char>(line.front());
    for (const int wrap : {0, 1}) {
        for (const auto& [across, down] :
             {std::pair{columnStep, rowStep}, std::pair{INT_MAX, INT_MIN}}) {
            int moved = vial;
            fuzz::Require(plate.MoveVial(moved, across, down, wrap) && plate.IsVialValid(moved));
        }
    }
}

void CheckReference(CPlateDesc& plate, std::string_view line) {
    const CString text(line);
    int vial = 0;
    if (plate.ParseReference(text, vial))
        CheckVial(plate, vial, line);
    int column = 0;
    int row = 0;
    plate.ParseReference(text, column, row);

    // A plate part prints as "x,y" or "x" and reads back to the same point.
    CReference platePart;
    platePart.SetReference(text);
    CString printed;
    platePart.GetReference(printed);
    CReference reread;
    reread.SetReference(printed);
    fuzz::Require(reread == platePart);

    // A whole reference is rebuilt as "<plate part>:<vial in the plate's scheme>"; the vial part
    // of the rebuilt text, when there is one, names the vial resolved.
    CVialRef vialRef;
    vialRef.SetReference(text, &plate);
    CString rebuilt;
    vialRef.GetReference(rebuilt);
    CString rebuiltPlate;
    CString rebuiltVial;
    CVialRef::SplitReference(rebuilt, rebuiltPlate, rebuiltVial);
    fuzz::Require(rebuilt.Find(':') >= 0);
    if (!rebuiltVial.IsEmpty()) {
        int named = 0;
        fuzz::Require(plate.ParseReference(rebuiltVial, named) && named == vialRef.GetVial());
    }
    const CVialRef copy(vialRef);
    CString copied;
    copy.GetReference(copied);
    fuzz::Require(copied == rebuilt && copy.GetVial() == vialRef.GetVial());
    fuzz::Require(static_cast<CReference>(copy) == static_cast<CReference>(vialRef));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string_view text = fuzz::AsText(data, size);
    const size_t firstEnd = text.find('\n');
    const std::string_view descriptor = text.substr(0, firstEnd);
    text.remove_prefix(firstEnd == std::string_view::npos ? text.size() : firstEnd + 1);

    CPlateDesc plate;
    if (plate.SetDescription(CString(descriptor))) {
        int columns = 0;
        int rows = 0;
        fuzz::Require(plate.GetSize(&columns, &rows) > 0 && columns > 0 && rows > 0);
    } else {
        fuzz::Require(plate.GetColumns() == 12 && plate.GetRows() == 8);
    }
    while (!text.empty()) {
        const size_t end = text.find('\n');
        CheckReference(plate, text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return 0;
}
