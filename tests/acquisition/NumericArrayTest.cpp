#include <quillon/acquisition/DoubleArray.h>
#include <quillon/acquisition/FloatArray.h>
#include <quillon/acquisition/IntArray.h>

#include <gtest/gtest.h>

using namespace quillon;

namespace {

CStringArray Texts(std::initializer_list<const char*> items) {
    CStringArray texts;
    for (const char* item : items)
        texts.Add(item);
    return texts;
}

} // namespace

TEST(NumericArrayTest, NumericArraysConvertTextsByCRules) {
    const CStringArray texts = Texts({"1.5", "", "abc", " 2e3x"});
    CDoubleArray doubles;
    doubles = texts;
    ASSERT_EQ(doubles.GetSize(), 4);
    EXPECT_DOUBLE_EQ(doubles[0], 1.5);
    EXPECT_DOUBLE_EQ(doubles[1], 0.0);
    EXPECT_DOUBLE_EQ(doubles[2], 0.0);
    EXPECT_DOUBLE_EQ(doubles[3], 2000.0);

    CIntArray ints;
    ints = texts;
    ASSERT_EQ(ints.GetSize(), 4);
    EXPECT_EQ(ints[0], 1);
    EXPECT_EQ(ints[3], 2);
    ints = Texts({"12.7"});
    EXPECT_EQ(ints[0], 12);

    CFloatArray floats;
    floats = Texts({"0.1"});
    EXPECT_EQ(floats[0], 0.1f);

    // An empty list empties the array and releases its buffer.
    doubles = CStringArray();
    EXPECT_TRUE(doubles.IsEmpty());
    EXPECT_EQ(doubles.GetData(), nullptr);
}
