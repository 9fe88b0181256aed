#include <quillon/platform/FileException.h>
#include <quillon/platform/StdioFileS.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

using namespace quillon;
using quillon::testing::TempFile;

// Text mode reads a carriage return before a line feed as part of the line end, also when a
// piece read splits the two; binary mode keeps it.
TEST(StdioFileTest, LineEndsInTextAndBinaryMode) {
    TempFile file;
    file.Write("first\r\nsecond\n\r\nlast\r");
    CStdioFile in(file.c_str(), CFile::modeRead);
    CString line;
    for (const char* expected : {"first", "second", "", "last\r"}) { // a lone "\r" is data
        ASSERT_TRUE(in.ReadString(line));
        EXPECT_EQ(line, expected);
    }
    EXPECT_FALSE(in.ReadString(line));
    EXPECT_TRUE(line.IsEmpty());

    file.Write("abc\r\nxy\r\n");
    CStdioFile pieces(file.c_str(), CFile::modeRead | CFile::typeText);
    char piece[5];
    ASSERT_NE(pieces.ReadString(piece, 5), nullptr); // "abc\r" fills the buffer
    EXPECT_STREQ(piece, "abc\n");
    ASSERT_NE(pieces.ReadString(piece, 5), nullptr);
    EXPECT_STREQ(piece, "xy\n");
    EXPECT_EQ(pieces.ReadString(piece, 5), nullptr);

    CStdioFile binary(file.c_str(), CFile::modeRead | CFile::typeBinary);
    ASSERT_TRUE(binary.ReadString(line));
    EXPECT_EQ(line, "abc\r");
}

TEST(StdioFileTest, PositionsLengthAndTruncation) {
    TempFile file;
    {
        CStdioFileS out(file.c_str(), CFile::modeCreate | CFile::modeWrite);
        out.WriteString("0123456789\n");
        EXPECT_EQ(out.GetPosition(), 11);
        EXPECT_EQ(out.GetLength(), 11);
        out.SetLength(4);
        out.Close();
    }
    EXPECT_EQ(file.Read(), "0123");

    {
        // Opening for writing without modeCreate keeps the content.
        CStdioFile out(file.c_str(), CFile::modeWrite);
        out.WriteString("ab");
    }
    EXPECT_EQ(file.Read(), "ab23");
    {
        CStdioFile out(file.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite);
        out.SeekToEnd();
        out.WriteString("!");
    }
    EXPECT_EQ(file.Read(), "ab23!");

    CStdioFile in(file.c_str(), CFile::modeRead);
    EXPECT_EQ(in.Seek(2, CFile::begin), 2);
    CString line;
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, "23!");
    EXPECT_EQ(in.GetFileName(), "file.txt");
}

TEST(StdioFileTest, FailuresThrowFileExceptions) {
    TempFile file;
    const std::string missing = (file.Folder() / "absent" / "x.txt").string();
    try {
        CStdioFile in(missing.c_str(), CFile::modeRead);
        FAIL() << "opening a missing file must throw";
    } catch (const CException& error) {
        ASSERT_TRUE(error.IsKindOf(QUILLON_RUNTIME_CLASS(CFileException)));
        const auto& fileError = static_cast<const CFileException&>(error);
        EXPECT_EQ(fileError.m_cause, CFileException::fileNotFound);
        char message[261];
        ASSERT_TRUE(error.GetErrorMessage(message, sizeof message));
        EXPECT_NE(std::string(message).find("x.txt"), std::string::npos);
        char shortMessage[8];
        error.GetErrorMessage(shortMessage, sizeof shortMessage);
        EXPECT_EQ(std::string(shortMessage).size(), 7u);
    }

    // A folder is not a file, and Open reports instead of throwing.
    CStdioFile folder;
    CFileException error;
    EXPECT_FALSE(folder.Open(file.Folder().c_str(), CFile::modeRead, &error));
    EXPECT_EQ(error.m_cause, CFileException::accessDenied);

    // Writing to a stream opened for reading fails when the data reaches the file.
    file.Write("x");
    CStdioFile readOnly(file.c_str(), CFile::modeRead);
    EXPECT_THROW(
        {
            readOnly.WriteString("more");
            readOnly.Flush();
        },
        CFileException);
}
