#include <quillon/platform/String.h>

#include <gtest/gtest.h>

using quillon::CString;

TEST(StringTest, FindsAndSubstringsAreClampedToTheText) {
    const CString text("abcabc");
    EXPECT_EQ(text.Find('c'), 2);
    EXPECT_EQ(text.Find('c', 3), 5);
    EXPECT_EQ(text.Find('c', 6), -1);
    EXPECT_EQ(text.Find('c', -4), 2);
    EXPECT_EQ(text.Find("bc", 2), 4);
    EXPECT_EQ(text.Find("", 6), 6);
    EXPECT_EQ(text.Find("bc", 7), -1);
    EXPECT_EQ(text.ReverseFind('a'), 3);
    EXPECT_EQ(CString().Find('a'), -1);

    const CString hello("hello");
    EXPECT_EQ(hello.Mid(1, 2), "el");
    EXPECT_EQ(hello.Mid(-3, 2), "he");
    EXPECT_EQ(hello.Mid(3, 100), "lo");
    EXPECT_EQ(hello.Mid(5), "");
    EXPECT_EQ(hello.Mid(9, 2), "");
    EXPECT_EQ(hello.Mid(2, -1), "");
    EXPECT_EQ(hello.Left(-1), "");
    EXPECT_EQ(hello.Left(50), "hello");
    EXPECT_EQ(hello.Right(50), "hello");
    EXPECT_EQ(hello.Right(-2), "");
}

TEST(StringTest, FormatFollowsPrintfRules) {
    CString text;
    text.Format("%s|%5.2f|%-3d|%+.0f|%%", "ab", 3.14159, 7, -0.4);
    EXPECT_EQ(text, "ab| 3.14|7  |-0|%");
    const std::string longText(5000, 'q');
    text.Format("<%s>", longText.c_str());
    EXPECT_EQ(text.GetLength(), 5002);
}

TEST(StringTest, EditingOperations) {
    CString text("a.b.c");
    EXPECT_EQ(text.Replace('.', '-'), 2);
    EXPECT_EQ(text, "a-b-c");
    EXPECT_EQ(text.Replace("-", "::"), 2);
    EXPECT_EQ(text, "a::b::c");
    EXPECT_EQ(text.Replace("::", ""), 2);
    EXPECT_EQ(text, "abc");
    EXPECT_EQ(text.Remove('b'), 1);
    EXPECT_EQ(text, "ac");
    EXPECT_EQ(text.Insert(1, 'b'), 3);
    EXPECT_EQ(text.Insert(99, "de"), 5);
    EXPECT_EQ(text, "abcde");
    EXPECT_EQ(text.Delete(1, 2), 3);
    EXPECT_EQ(text, "ade");
    EXPECT_EQ(text.Delete(2, 10), 2);
    EXPECT_EQ(text, "ad");

    CString padded("  \t x y \n ");
    padded.TrimLeft();
    EXPECT_EQ(padded, "x y \n ");
    padded.TrimRight();
    EXPECT_EQ(padded, "x y");
    CString zeros("00120");
    zeros.TrimLeft('0');
    zeros.TrimRight("0");
    EXPECT_EQ(zeros, "12");
    CString allBlank("   ");
    allBlank.TrimRight();
    EXPECT_TRUE(allBlank.IsEmpty());
}

TEST(StringTest, ComparisonsAndBytes) {
    const CString a("Apple");
    EXPECT_LT(a.Compare("apple"), 0);
    EXPECT_EQ(a.CompareNoCase("aPPLE"), 0);
    EXPECT_GT(a.CompareNoCase("APP"), 0);
    EXPECT_EQ('<' + a + "!" + '.', "<Apple!.");
    EXPECT_TRUE(CString(static_cast<const char*>(nullptr)).IsEmpty());
    CString bytes("a\xff\x01", 3);
    EXPECT_EQ(bytes.GetLength(), 3);
    EXPECT_EQ(static_cast<unsigned char>(bytes[1]), 0xff);
}
