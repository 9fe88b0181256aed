#include <quillon/plate/PlateDesc.h>

#include <gtest/gtest.h>

#include <string>

namespace quillon {
namespace {

CPlateDesc Plate(const char* descriptor) {
    CPlateDesc plate;
    EXPECT_EQ(plate.SetDescription(descriptor), 1) << descriptor;
    return plate;
}

TEST(PlateLayoutTest, DescriptorsAndReferencesInEachScheme) {
    CPlateDesc plate;
    int column = 0;
    int row = 0;
    EXPECT_EQ(plate.ParseReference("h12", column, row), 1);
    EXPECT_EQ(column, 12);
    EXPECT_EQ(row, 8);

    // A partly bad descriptor leaves the plate as it was.
    for (const char* bad : {"", "12", "0,8", "12,-8", "12,8,0,0,0,0", "12;8", "x,8", ",",
                            "99999999999,8", "65536,65536", "12,8,\xc3\xa9"})
        EXPECT_EQ(plate.SetDescription(bad), 0) << bad;
    EXPECT_EQ(plate.GetColumns(), 12);

    EXPECT_EQ(plate.SetDescription(" 24 , 16 , 1 , 5 , 3 "), 1);
    EXPECT_EQ(plate.GetColumns(), 24);
    EXPECT_EQ(plate.GetRows(), 16);
    EXPECT_EQ(plate.GetOrigin(), 3);

    // Numeric schemes: a 12 x 8 plate; column 3, row 2 in each order.
    const struct {
        const char* descriptor;
        int vial;
    } numbered[] = {{"12,8,0,4", 15}, {"12,8,0,5", 22}, {"12,8,1,4", 18}, {"12,8,1,5", 18}};
    for (const auto& each : numbered) {
        const CPlateDesc numeric = Plate(each.descriptor);
        CString reference;
        int vial = 0;
        EXPECT_EQ(numeric.CoordToVial(3, 2, vial), 1);
        EXPECT_EQ(vial, each.vial) << each.descriptor;
        EXPECT_EQ(numeric.FormatReference(vial, reference), 1);
        EXPECT_EQ(reference, std::to_string(each.vial).c_str());
    }
    // An unknown scheme behaves as alphanumeric.
    CString reference;
    EXPECT_EQ(Plate("12,8,0,7").FormatReference(15, reference), 1);
    EXPECT_EQ(reference, "B3");
}

TEST(PlateLayoutTest, BadReferencesFailWithoutTouchingOutputs) {
    const CPlateDesc alphanumeric;
    const CPlateDesc numeric = Plate("12,8,0,4");
    for (const char* bad : {"I1", "A13", "A0", "A", "1A", ":", " B3", "B3 ", "B-3", "B+3",
                            "B99999999999999999999", "\xc3\xa9",
                            "\x80"
                            "1",
                            "MSMS"}) {
        int column = -7;
        int row = -7;
        int vial = -7;
        EXPECT_EQ(alphanumeric.ParseReference(bad, column, row), 0) << bad;
        EXPECT_EQ(alphanumeric.ParseReference(bad, vial), 0) << bad;
        EXPECT_EQ(numeric.ParseReference(bad, vial), 0) << bad;
        EXPECT_EQ(column, -7);
        EXPECT_EQ(row, -7);
        EXPECT_EQ(vial, -7);
    }
    int vial = -7;
    for (const char* bad : {"", "0", "97", "2147483648", "99999999999999999999"}) {
        EXPECT_EQ(numeric.ParseReference(bad, vial), 0) << bad;
        EXPECT_EQ(alphanumeric.ParseReference(bad, vial), 0) << bad;
    }
    EXPECT_EQ(vial, -7);
    CString reference = "unchanged";
    EXPECT_EQ(alphanumeric.FormatReference(0, reference), 0);
    EXPECT_EQ(alphanumeric.FormatReference(97, reference), 0);
    EXPECT_EQ(Plate("12,30").FormatReference(12 * 29 + 1, reference), 0); // no letter for row 27
    EXPECT_EQ(reference, "unchanged");
}

TEST(PlateLayoutTest, AbsoluteNumbersAndMoves) {
    // Serpentine orders, the flag of the second counting as if along rows.
    int vial = 0;
    int absolute = 0;
    const CPlateDesc serpentineRows = Plate("12,8,0,5");
    ASSERT_EQ(serpentineRows.CoordToVial(3, 2, vial), 1);
    EXPECT_EQ(serpentineRows.VialToAbsVial(vial, absolute, 0), 1);
    EXPECT_EQ(absolute, 22);
    EXPECT_EQ(serpentineRows.VialToAbsVial(vial, absolute, 1), 1);
    EXPECT_EQ(absolute, 15);
    const CPlateDesc serpentineColumns = Plate("12,8,1,5");
    ASSERT_EQ(serpentineColumns.CoordToVial(2, 1, vial), 1);
    EXPECT_EQ(serpentineColumns.VialToAbsVial(vial, absolute, 0), 1);
    EXPECT_EQ(absolute, 16);
    EXPECT_EQ(serpentineColumns.AbsVialToVial(0, vial), 0);
    EXPECT_EQ(serpentineColumns.VialToAbsVial(97, absolute, 0), 0);

    // Moves on the default plate: clamped at an edge, or continued from the opposite one.
    const CPlateDesc plate;
    int column = 0;
    int row = 0;
    ASSERT_EQ(plate.CoordToVial(12, 2, vial), 1);
    int moved = vial;
    EXPECT_EQ(plate.MoveVial(moved, 1, 0, 0), 1);
    EXPECT_EQ(moved, vial);
    EXPECT_EQ(plate.MoveVial(moved, 1, 0, 1), 1);
    plate.VialToCoord(moved, column, row);
    EXPECT_EQ(column, 1);
    EXPECT_EQ(row, 2);
    EXPECT_EQ(plate.MoveVial(moved, -2147483647, 2147483647, 1), 1);
    plate.VialToCoord(moved, column, row);
    EXPECT_EQ(column, 12);
    EXPECT_EQ(row, 1);
    int offPlate = 0;
    EXPECT_EQ(plate.MoveVial(offPlate, 1, 1, 0), 0);
    EXPECT_EQ(offPlate, 0);
}

} // namespace
} // namespace quillon
