#include <quillon/metabolites/Compounds.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using namespace quillon;

namespace {

std::vector<double> Masses(const CCompounds& list) {
    std::vector<double> masses;
    for (int i = 0; i < list.GetSize(); ++i)
        masses.push_back(list.GetAt(i).GetMass());
    return masses;
}

CString NameOf(const CCompoundData& compound) {
    CString name;
    compound.GetName(name);
    return name;
}

} // namespace

// Non-negative masses first, ascending, then negatives by magnitude; equal masses keep their order
// and a mass that is not a number goes last.
TEST(CompoundsTest, SortOrdersByMassAndKeepsTiesInPlace) {
    CCompounds list;
    for (double mass : {18.0106, -2.0, 0.0, 15.9949, -15.9949})
        list.Add(CCompoundData(mass, "", ""));
    list.Sort();
    EXPECT_EQ(Masses(list), (std::vector<double>{0.0, 15.9949, 18.0106, -2.0, -15.9949}));

    CCompounds ties;
    ties.Add(CCompoundData(std::numeric_limits<double>::quiet_NaN(), "", "nan"));
    ties.Add(CCompoundData(44.0, "", "first"));
    ties.Add(CCompoundData(44.0, "", "second"));
    ties.Sort();
    ASSERT_EQ(ties.GetSize(), 3);
    EXPECT_EQ(NameOf(ties.GetAt(0)), "first");
    EXPECT_EQ(NameOf(ties.GetAt(1)), "second");
    EXPECT_TRUE(std::isnan(ties.GetAt(2).GetMass()));
}

TEST(CompoundsTest, CopiesShareOneListThatOutlivesTheSource) {
    auto* original = new CCompounds;
    original->Add(CCompoundData(1.0, "", "a"));
    CCompounds copy(*original);
    CCompounds assigned;
    assigned.Add(CCompoundData(99.0, "", "dropped"));
    assigned = *original;

    // A change through any sharer is seen by all of them.
    copy.Add(CCompoundData(2.0, "", "b"));
    EXPECT_EQ(original->GetSize(), 2);
    EXPECT_EQ(assigned.GetSize(), 2);
    original->SetAt(0, CCompoundData(3.0, "", "c"));
    EXPECT_EQ(NameOf(copy.GetAt(0)), "c");

    delete original;
    assigned.RemoveAt(0);
    assigned.RemoveAt(3); // outside the list: nothing
    EXPECT_EQ(Masses(copy), (std::vector<double>{2.0}));
    EXPECT_EQ(NameOf(copy.GetAt(-1)), "");
}
