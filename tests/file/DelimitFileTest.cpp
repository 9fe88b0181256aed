#include <quillon/file/DelimitFile.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

struct Parsed {
    int type = -1;
    std::vector<std::string> fields;
};

Parsed Parse(const char* line, int skip = 0, const char* delimiters = "\t") {
    CDelimitFile file;
    file.SetDelimiters(delimiters);
    file.SetSkipMultipleDelimiters(skip);
    CStringArray fields;
    Parsed parsed;
    file.ParseDelimitedString(line, fields, &parsed.type);
    for (const CString& field : fields)
        parsed.fields.emplace_back(field.str());
    return parsed;
}

using Fields = std::vector<std::string>;

} // namespace

TEST(DelimitFileTest, ClassifiesTheSixLineKinds) {
    EXPECT_EQ(Parse("").type, RECORD_EMPTY);
    EXPECT_EQ(Parse("\t").type, RECORD_FIELD);
    EXPECT_EQ(Parse("\t").fields, Fields{""});
    EXPECT_EQ(Parse("\t", 1).type, RECORD_EMPTY);

    Parsed header = Parse("[SAMPLE]\textra");
    EXPECT_EQ(header.type, RECORD_PARAGRAPH);
    EXPECT_EQ(header.fields, (Fields{"SAMPLE", "extra"}));
    EXPECT_EQ(Parse("[SAMPLE] trailing").fields, Fields{"SAMPLE"});
    EXPECT_EQ(Parse("[]").type, RECORD_PARAGRAPH);
    EXPECT_EQ(Parse("[]").fields, Fields{""});
    Parsed unclosed = Parse("[SAMPLE");
    EXPECT_EQ(unclosed.type, RECORD_FIELD);
    EXPECT_EQ(unclosed.fields, Fields{"[SAMPLE"});
    EXPECT_EQ(Parse(" [SAMPLE]").type, RECORD_FIELD); // markers are not trimmed

    Parsed comment = Parse(";[SAMPLE]");
    EXPECT_EQ(comment.type, RECORD_COMMENT);
    EXPECT_EQ(comment.fields, Fields{"[SAMPLE]"});

    EXPECT_EQ(Parse("{").type, RECORD_BLOCK_START);
    EXPECT_EQ(Parse("{").fields, Fields{""});
    EXPECT_EQ(Parse("{more").fields, Fields{"more"});
    EXPECT_EQ(Parse("}").type, RECORD_BLOCK_END);
    EXPECT_EQ(Parse("Sample\t5").type, RECORD_FIELD);
}

TEST(DelimitFileTest, SplittingRules) {
    EXPECT_EQ(Parse("a\t").fields, Fields{"a"});
    EXPECT_EQ(Parse("a\t\t").fields, (Fields{"a", ""}));
    EXPECT_EQ(Parse("\ta").fields, (Fields{"", "a"}));
    EXPECT_EQ(Parse("a\t\tb").fields, (Fields{"a", "", "b"}));
    EXPECT_EQ(Parse("\t\ta\t\tb", 1).fields, (Fields{"a", "b"}));
    EXPECT_EQ(Parse("a,b;c", 0, ",;").fields, (Fields{"a", "b", "c"}));
    EXPECT_EQ(Parse("a b", 0, "").fields, Fields{"a b"});

    // The two-argument form appends and returns the total.
    CDelimitFile file;
    CStringArray fields;
    EXPECT_EQ(file.ParseDelimitedString("a\tb", fields), 2);
    EXPECT_EQ(file.ParseDelimitedString("c", fields), 3);
    EXPECT_EQ(fields[2], "c");

    // A line of a million delimiters costs a bounded number of fields: the rest stays whole.
    const std::string tabs(1'000'000, '\t');
    const std::string line = "a" + tabs + "b";
    const Fields many = Parse(line.c_str()).fields;
    ASSERT_EQ(many.size(), static_cast<size_t>(CDelimitFile::kMaxFieldsPerLine));
    EXPECT_EQ(many.front(), "a");
    EXPECT_EQ(many.back(), tabs.substr(CDelimitFile::kMaxFieldsPerLine - 1) + "b");
}

TEST(DelimitFileTest, ReadsLinesOfAnyLengthAcrossPieces) {
    TempFile file;
    const std::string exact(2048, 'x');
    const std::string longLine(5000, 'y');
    file.Write(exact + "\n" + longLine + "\tz\r\n\nlast");
    CDelimitFile in(file.c_str(), CFile::modeRead);
    CString line;
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line.str(), exact);

    CStringArray fields;
    int type = -1;
    ASSERT_EQ(in.ReadDelimitedString(fields, &type), 1);
    ASSERT_EQ(fields.GetSize(), 2);
    EXPECT_EQ(fields[0].GetLength(), 5000);
    EXPECT_EQ(fields[1], "z");
    EXPECT_EQ(type, RECORD_FIELD);

    ASSERT_EQ(in.ReadDelimitedString(fields, &type), 1); // an empty line is still a line
    EXPECT_EQ(type, RECORD_EMPTY);
    EXPECT_TRUE(fields.IsEmpty());
    ASSERT_EQ(in.ReadDelimitedString(fields, &type), 1);
    EXPECT_EQ(fields[0], "last");
    type = 99;
    EXPECT_EQ(in.ReadDelimitedString(fields, &type), 0);
    EXPECT_TRUE(fields.IsEmpty());
    EXPECT_EQ(type, 99);
}

TEST(DelimitFileTest, SkipOperationsStopAtTheirMarkOrAtEndOfFile) {
    TempFile file;
    file.Write("a\n[NEXT]\nb\n{\n{\n}\nc\n}\nafter\n{\nx\n{\n}\n}\ntail\n{\nopen\n");
    CDelimitFile in(file.c_str(), CFile::modeRead);
    CString line;
    in.SkipToNextSection(); // consumes "a" and "[NEXT]"
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, "b");
    in.SkipToEndOfBlock(); // stops at the first "}", nesting not counted
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, "c");
    in.MoveToNextSection(); // a plain line: consumes just "}"
    in.MoveToNextSection(); // consumes "after" only
    in.MoveToNextSection(); // consumes the nested block whole
    ASSERT_TRUE(in.ReadString(line));
    EXPECT_EQ(line, "tail");
    in.MoveToNextSection(); // the file ends inside the block: must return
    EXPECT_FALSE(in.ReadString(line));
    in.SkipToNextSection();
    in.SkipToEndOfBlock();
}

TEST(DelimitFileTest, FormattedWriterPutsEveryConversionInItsOwnField) {
    CDelimitFile file;
    CStringArray pieces;
    EXPECT_EQ(file.SplitFieldTypes(pieces, "%s%.4f"), 2);
    EXPECT_EQ(pieces[0], "%s");
    EXPECT_EQ(pieces[1], "%.4f");
    EXPECT_EQ(file.SplitFieldTypes(pieces, "Name%d %s"), 3);
    EXPECT_EQ(pieces[0], "Name");
    EXPECT_EQ(pieces[1], "%d "); // a blank after a conversion stays in its field
    EXPECT_EQ(pieces[2], "%s");
    EXPECT_EQ(file.SplitFieldTypes(pieces, "%d%%%d"), 2);
    EXPECT_EQ(pieces[0], "%d%%");
    EXPECT_EQ(pieces[1], "%d");
    EXPECT_EQ(file.SplitFieldTypes(pieces, "x"), 1);
    EXPECT_EQ(pieces[0], "x");
    EXPECT_EQ(file.SplitFieldTypes(pieces, ""), 0);
    EXPECT_TRUE(pieces.IsEmpty());

    file.SplitFieldTypes(pieces, "%s%d%s");
    CString joined;
    file.SetDelimiters(",;");
    EXPECT_EQ(file.RebuildFieldTypes(pieces, joined), 3);
    EXPECT_EQ(joined, "%s,;%d,;%s");

    TempFile out;
    {
        CDelimitFile writer(out.c_str(), CFile::modeCreate | CFile::modeWrite);
        writer.WriteSectionHeader("SAMPLE");
        writer.WriteBlockStart();
        writer.WriteRecord("%s%d", "A", 5);
        writer.WriteComment("%s%.2f", "Mass", 1.0);
        writer.WriteRecord(CString("100%"));
        writer.WriteComment(CString("note"));
        writer.WriteBlockEnd();
        writer.SetDelimiters(",;");
        writer.WriteRecord("%s%d", "A", 5);
    }
    EXPECT_EQ(out.Read(), "[SAMPLE]\n{\nA\t5\n;Mass\t1.00\n100%\n;note\n}\nA,;5\n");
}

TEST(DelimitFileTest, ArrayWritersWriteNothing) {
    TempFile out;
    CStringArray fields;
    fields.Add("a");
    fields.Add("b");
    {
        CDelimitFile writer(out.c_str(), CFile::modeCreate | CFile::modeWrite);
        writer.WriteDelimitedString(fields);
        writer.WriteDelimitedStringExt(fields, 1);
        writer.WriteDelimitedStringExt(fields, 2);
        writer.WriteDelimitedStringExt(CStringArray(), 1);
    }
    EXPECT_EQ(out.Read(), "");
    CString text("kept");
    CDelimitFile::FormDelimitedString(text, fields, ',');
    EXPECT_EQ(text, "kept");
}

namespace {

// Counts the lines read, as a progress display would.
class CCountingFile : public CDelimitFile {
public:
    using CDelimitFile::CDelimitFile;
    void UpdateStatus() override { ++m_lines; }
    int m_lines = 0;
};

} // namespace

TEST(DelimitFileTest, UpdateStatusRunsOncePerLineRead) {
    TempFile file;
    file.Write("a\n\n;c\n");
    CCountingFile in(file.c_str(), CFile::modeRead);
    CStringArray fields;
    int type = 0;
    while (in.ReadDelimitedString(fields, &type)) {
    }
    EXPECT_EQ(in.m_lines, 3);
}
