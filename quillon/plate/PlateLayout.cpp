#include <quillon/plate/PlateLayout.h>

#include <climits>
#include <string_view>

namespace quillon {

namespace {

constexpr int kLettersInAlphabet = 26;

bool IsAsciiDigit(char ch) {
    return ch >= '0' && ch <= '9';
}

std::string_view TrimBlanks(std::string_view text) {
    while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
        text.remove_prefix(1);
    while (!text.empty() && (text.back() == ' ' || text.back() == '\t'))
        text.remove_suffix(1);
    return text;
}

// An optionally signed decimal integer.
int ParseSignedInt(std::string_view text, int& value) {
    const bool negative = !text.empty() && text.front() == '-';
    if (negative)
        text.remove_prefix(1);
    int magnitude = 0;
    if (!ParseDecimalInt(text, magnitude))
        return 0;
    value = negative ? -magnitude : magnitude;
    return 1;
}

struct Geometry {
    int columns;
    int rows;
    bool byColumns;  // numbering runs down the columns first
    int referencing; // 0, 4 or 5
};

Geometry GeometryOf(const PlateRecord& plate) {
    const int referencing = plate.words[kPlateReferencing];
    return {plate.words[kPlateColumns], plate.words[kPlateRows], plate.words[kPlatePriority] != 0,
            referencing == kReferencingNumeric || referencing == kReferencingSerpentine
                ? referencing
                : kReferencingAlphanumeric};
}

bool IsOnPlate(const Geometry& plate, int column, int row) {
    return column >= 1 && column <= plate.columns && row >= 1 && row <= plate.rows;
}

} // namespace

int ParseDecimalInt(std::string_view text, int& value) {
    if (text.empty())
        return 0;
    long long result = 0;
    for (char ch : text) {
        if (!IsAsciiDigit(ch))
            return 0;
        result = result * 10 + (ch - '0');
        if (result > INT_MAX)
            return 0;
    }
    value = static_cast<int>(result);
    return 1;
}

void SetPlateToDefaults(PlateRecord* plate) {
    if (!plate)
        return;
    *plate = PlateRecord{};
    plate->words[kPlateRows] = 8;
    plate->words[kPlateColumns] = 12;
}

int GetPlateFromPlateDescriptor(PlateRecord* plate, const char* descriptor) {
    if (!plate || !descriptor)
        return 0;
    constexpr int kMostValues = 5;
    int values[kMostValues] = {0, 0, 0, 0, 0};
    int count = 0;
    std::string_view rest(descriptor);
    while (true) {
        const size_t comma = rest.find(',');
        if (count == kMostValues ||
            !ParseSignedInt(TrimBlanks(rest.substr(0, comma)), values[count]))
            return 0;
        ++count;
        if (comma == std::string_view::npos)
            break;
        rest.remove_prefix(comma + 1);
    }
    const int columns = values[0];
    const int rows = values[1];
    if (count < 2 || columns <= 0 || rows <= 0 || columns > INT_MAX / rows)
        return 0;
    plate->words[kPlateColumns] = columns;
    plate->words[kPlateRows] = rows;
    plate->words[kPlatePriority] = values[2];
    plate->words[kPlateReferencing] = values[3];
    plate->words[kPlateOrigin] = values[4];
    return 1;
}

int GetTopLeftOffsetsFromPlateReference(const PlateRecord* plate, int* column, int* row,
                                        const char* reference) {
    if (!plate || !reference)
        return 0;
    const Geometry geometry = GeometryOf(*plate);
    const std::string_view text(reference);
    int x = 0;
    int y = 0;
    if (geometry.referencing == kReferencingAlphanumeric) {
        if (text.empty())
            return 0;
        const char letter = static_cast<char>(text.front() & ~0x20); // upper case
        if (letter < 'A' || letter > 'Z' || !ParseDecimalInt(text.substr(1), x))
            return 0;
        y = letter - 'A' + 1;
    } else {
        int position = 0;
        if (!ParseDecimalInt(text, position) || position < 1 ||
            position > geometry.columns * geometry.rows)
            return 0;
        const bool serpentine = geometry.referencing == kReferencingSerpentine;
        if (geometry.byColumns) {
            x = (position - 1) / geometry.rows + 1;
            y = position - (x - 1) * geometry.rows;
            if (serpentine && x % 2 == 0)
                y = geometry.rows - y + 1;
        } else {
            y = (position - 1) / geometry.columns + 1;
            x = position - (y - 1) * geometry.columns;
            if (serpentine && y % 2 == 0)
                x = geometry.columns - x + 1;
        }
    }
    if (!IsOnPlate(geometry, x, y))
        return 0;
    if (column)
        *column = x;
    if (row)
        *row = y;
    return 1;
}

int GetPlateReferenceFromTopLeftOffsets(const PlateRecord* plate, int column, int row,
                                        CString& reference) {
    if (!plate)
        return 0;
    const Geometry geometry = GeometryOf(*plate);
    if (!IsOnPlate(geometry, column, row))
        return 0;
    if (geometry.referencing == kReferencingAlphanumeric) {
        if (row > kLettersInAlphabet)
            return 0;
        reference.Format("%c%i", 'A' + row - 1, column);
        return 1;
    }
    const bool serpentine = geometry.referencing == kReferencingSerpentine;
    int position = 0;
    if (geometry.byColumns) {
        const int down = serpentine && column % 2 == 0 ? geometry.rows - row + 1 : row;
        position = (column - 1) * geometry.rows + down;
    } else {
        const int along = serpentine && row % 2 == 0 ? geometry.columns - column + 1 : column;
        position = (row - 1) * geometry.columns + along;
    }
    reference.Format("%i", position);
    return 1;
}

} // namespace quillon
