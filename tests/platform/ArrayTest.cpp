#include <quillon/platform/Array.h>

#include <gtest/gtest.h>

using namespace quillon;

TEST(ArrayTest, AddInsertAndRemove) {
    CArray<int> numbers;
    EXPECT_EQ(numbers.Add(1), 0);
    EXPECT_EQ(numbers.Add(4), 1);
    numbers.InsertAt(1, 2);
    numbers.InsertAt(2, 3);
    numbers.InsertAt(0, 0, 2);
    ASSERT_EQ(numbers.GetSize(), 6);
    EXPECT_EQ(numbers[0], 0);
    EXPECT_EQ(numbers[2], 1);
    EXPECT_EQ(numbers[5], 4);
    numbers.RemoveAt(0);
    numbers.RemoveAt(3, 10); // cut at the end
    ASSERT_EQ(numbers.GetSize(), 3);
    EXPECT_EQ(numbers[0], 0);
    EXPECT_EQ(numbers[2], 2);
    numbers.RemoveAt(7); // beyond the end: nothing
    EXPECT_EQ(numbers.GetSize(), 3);

    // Inserting beyond the end extends with default elements.
    numbers.InsertAt(5, 9);
    ASSERT_EQ(numbers.GetSize(), 6);
    EXPECT_EQ(numbers[3], 0);
    EXPECT_EQ(numbers[5], 9);

    CArray<int> more;
    more.Add(7);
    more.Add(8);
    EXPECT_EQ(numbers.Append(more), 6);
    numbers.InsertAt(0, &more);
    EXPECT_EQ(numbers.GetSize(), 10);
    EXPECT_EQ(numbers[0], 7);
    EXPECT_EQ(numbers[9], 8);

    numbers.SetSize(0);
    EXPECT_EQ(numbers.GetData(), nullptr);
}
