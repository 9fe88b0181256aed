#include <quillon/document/SampleData.h>
#include <quillon/plate/PlateDesc.h>
#include <quillon/plate/VialRef.h>

#include <gtest/gtest.h>

namespace quillon {
namespace {

TEST(ReferenceTest, PlatePartsSplitAndPrint) {
    const struct {
        const char* text;
        const char* first;
        const char* second;
        CPoint point;
    } cases[] = {{"12", "12", "", {12, 0}},
                 {"1,2", "1", "2", {1, 2}},
                 {"A12", "A", "12", {1, 12}},
                 {"B:C", "B", "C", {2, 3}},
                 {"A", "A", "", {1, 0}},
                 {"a", "a", "", {33, 0}},
                 {"", "", "", {0, 0}},
                 {",,,", ",", "", {0, 0}},
                 {"99999999999,3", "99999999999", "3", {0, 3}}};
    for (const auto& each : cases) {
        CString first = "x";
        CString second = "x";
        CPoint point(5, 5);
        CReference::SplitReference(each.text, first, second);
        CReference::SplitReference(each.text, point);
        EXPECT_EQ(first, each.first) << each.text;
        EXPECT_EQ(second, each.second) << each.text;
        EXPECT_EQ(point, each.point) << each.text;
    }

    CString text;
    CPoint single(7, 0);
    CReference other;
    other.SetReference(&single, 9);
    other.GetReference(text);
    EXPECT_EQ(text, "7");
    other.SetReference("7");
    EXPECT_EQ(static_cast<int>(other), 0);
    CReference numbered;
    numbered.SetReference(&single, 9);
    EXPECT_TRUE(other == numbered); // Number is not compared
    numbered.SetMSMSPlate(true);
    EXPECT_FALSE(other == numbered);
}

TEST(VialRefTest, ReferencesResolveOnTheirPlateAndRebuildTheirText) {
    CPlateDesc plate;
    CVialRef vial;
    CString text;
    CString platePart;
    CString vialPart;
    CVialRef::SplitReference("A1:12:3", platePart, vialPart);
    EXPECT_EQ(platePart, "A1");
    EXPECT_EQ(vialPart, "12:3");

    vial.SetReference("A1:B3", &plate);
    EXPECT_EQ(static_cast<CString>(vial), "1,1:B3");
    EXPECT_EQ(vial.GetVial(), 15);

    vial.SetReference("MSMS1:5", &plate); // a numeric vial part is the vial number
    EXPECT_EQ(static_cast<CString>(vial), "*1:A5");
    EXPECT_TRUE(static_cast<CReference>(vial).IsMSMSPlate());

    vial.SetReference("12", &plate);
    EXPECT_EQ(static_cast<CString>(vial), "0:A12");
    CReference reference;
    int number = -1;
    int vialNumber = -1;
    EXPECT_EQ(vial.GetReference(reference, vialNumber), 1);
    EXPECT_EQ(static_cast<CPoint>(reference), CPoint(0, 0));
    EXPECT_EQ(vialNumber, 12);
    EXPECT_EQ(vial.GetReference(number, vialNumber), 1);
    EXPECT_EQ(number, 0);

    // Bad input: the vial number stays, the vial text is empty, nothing throws.
    for (const char* bad :
         {"", ":", "::", "MSMS", "MSMS:", "A1:Z9", "A1:99999999999", "\xff\xfe:\x80", "A1:I1"}) {
        CVialRef fresh;
        fresh.SetReference(bad, &plate);
        EXPECT_EQ(fresh.GetVial(), 0) << bad;
        fresh.GetReference(text);
        EXPECT_EQ(text.Right(1), ":") << bad;
    }

    // A sample resolves its vial reference on its own plate.
    CSampleData sample;
    sample.SetPlateDescription("48 Vial Tray"); // no descriptor: the default plate
    sample.SetVialReference("1:B3");
    sample.GetVialReference(text);
    EXPECT_EQ(text, "1:B3");
    sample.SetPlateDescription("12,8,0,5");
    sample.SetVialReference("1:22");
    sample.GetVialReference(vial);
    EXPECT_EQ(vial.GetVial(), 22);
    EXPECT_EQ(static_cast<CString>(vial), "1:22");
}

} // namespace
} // namespace quillon
