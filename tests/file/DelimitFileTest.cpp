#include <quillon/file/DelimitFile.h>
#include <quillon/platform/Numbers.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
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

// Counts the lines read, as a progress display would.
class CCountingFile : public CDelimitFile {
public:
    using CDelimitFile::CDelimitFile;
    void UpdateStatus() override { ++m_lines; }
    int m_lines = 0;
};

} // namespace

TEST(DelimitFileTest, ClassifiesTheSixLineKinds) {
    const struct {
        const char* line;
        int skip;
        int type;
        Fields fields;
    } cases[] = {{"", 0, RECORD_EMPTY, {}},
                 {"\t", 0, RECORD_FIELD, {""}},
                 {"\t", 1, RECORD_EMPTY, {}},
                 {"[SAMPLE]\textra", 0, RECORD_PARAGRAPH, {"SAMPLE", "extra"}},
                 {"[SAMPLE] trailing", 0, RECORD_PARAGRAPH, {"SAMPLE"}},
                 {"[]", 0, RECORD_PARAGRAPH, {""}},
                 {"[SAMPLE", 0, RECORD_FIELD, {"[SAMPLE"}},
                 {" [SAMPLE]", 0, RECORD_FIELD, {" [SAMPLE]"}}, // markers are not trimmed
                 {";[SAMPLE]", 0, RECORD_COMMENT, {"[SAMPLE]"}},
                 {"{", 0, RECORD_BLOCK_START, {""}},
                 {"{more", 0, RECORD_BLOCK_START, {"more"}},
                 {"}", 0, RECORD_BLOCK_END, {""}},
                 {"Sample\t5", 0, RECORD_FIELD, {"Sample", "5"}}};
    for (const auto& each : cases) {
        const Parsed parsed = Parse(each.line, each.skip);
        EXPECT_EQ(parsed.type, each.type) << each.line;
        EXPECT_EQ(parsed.fields, each.fields) << each.line;
    }
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
    // A field ends at a NUL byte: text after it is dropped, as it would be when written back.
    EXPECT_EQ(file.ParseDelimitedString(CString(std::string_view("d\0e\t\0f", 6)), fields), 5);
    EXPECT_EQ(fields[3], "d");
    EXPECT_EQ(fields[4], "");

    // A line of a million delimiters costs a bounded number of fields: the rest stays whole.
    const std::string tabs(1'000'000, '\t');
    const std::string line = "a" + tabs + "b";
    const Fields many = Parse(line.c_str()).fields;
    ASSERT_EQ(many.size(), static_cast<size_t>(CDelimitFile::kMaxFieldsPerLine));
    EXPECT_EQ(many.front(), "a");
    EXPECT_EQ(many.back(), tabs.substr(CDelimitFile::kMaxFieldsPerLine - 1) + "b");
}

// Lines of every kind and of lengths around the read buffer's size (1 MiB), with both line ends,
// so that lines, line ends and carriage returns fall across refills of the buffer.
std::vector<std::string> MixedLines() {
    std::vector<std::string> lines;
    const size_t block = size_t{1} << 20;
    const char* kinds[] = {"12.5\t300", "[SAMPLE]", "{", "}", ";note", "", "\t\tx", "a\tb\tc"};
    unsigned state = 7;
    for (int i = 0; i < 400; ++i) {
        state = state * 1103515245u + 12345u;
        std::string line = kinds[(state >> 16) % 8];
        if (i % 97 == 5)
            line += std::string(block - 3 + (state >> 20) % 7, 'x'); // about one buffer long
        if (i == 201)
            line += std::string(3 * block, 'y'); // longer than the buffer
        lines.push_back(line);
    }
    return lines;
}

TEST(DelimitFileTest, ReadsLinesOfAnyLengthAcrossBufferRefills) {
    const std::vector<std::string> lines = MixedLines();
    std::string text;
    std::vector<int64_t> ends;
    for (size_t i = 0; i < lines.size(); ++i) {
        text += lines[i] + (i % 3 == 0 ? "\r\n" : "\n");
        ends.push_back(static_cast<int64_t>(text.size()));
    }
    text += "last";
    TempFile file;
    file.Write(text);

    // Whole lines, views and field views agree line by line, and positions are exact. The
    // readers of fields report progress once for every line they read.
    CDelimitFile byLine(file.c_str(), CFile::modeRead);
    CCountingFile byFields(file.c_str(), CFile::modeRead);
    CCountingFile byViews(file.c_str(), CFile::modeRead);
    CStringArray fields;
    for (size_t i = 0; i < lines.size(); ++i) {
        CString line;
        ASSERT_TRUE(byLine.ReadString(line));
        ASSERT_EQ(line.str(), lines[i]) << i;
        ASSERT_EQ(byLine.GetPosition(), ends[i]);
        ASSERT_EQ(byLine.GetLastLineLength(), ends[i] - (i > 0 ? ends[i - 1] : 0));

        int type = -1;
        int viewType = -1;
        std::string_view views[2];
        byFields.ReadDelimitedString(fields, &type);
        const int count = byViews.ReadFieldViews(views, 2, &viewType);
        ASSERT_EQ(viewType, type) << i;
        ASSERT_EQ(count, std::min(fields.GetSize(), 2)) << i;
        for (int k = 0; k < count; ++k)
            ASSERT_EQ(views[k], fields[k].view()) << i;
    }
    CString line;
    ASSERT_TRUE(byLine.ReadString(line));
    EXPECT_EQ(line, "last");
    EXPECT_FALSE(byLine.ReadString(line));
    std::string_view views[2];
    int type = -1;
    EXPECT_EQ(byViews.ReadFieldViews(views, 2, &type), 1);
    EXPECT_EQ(byViews.ReadFieldViews(views, 2, &type), -1);
    EXPECT_EQ(byFields.m_lines, static_cast<int>(lines.size()));
    EXPECT_EQ(byViews.m_lines, static_cast<int>(lines.size()) + 1);
    EXPECT_EQ(byLine.GetLineEndRead(), std::string("\r\n"));

    // A seek back drops what was read ahead.
    EXPECT_EQ(byLine.Seek(ends[199], CFile::begin), ends[199]);
    ASSERT_TRUE(byLine.ReadString(line));
    EXPECT_EQ(line.str(), lines[200]);
}

TEST(DelimitFileTest, CopyToNextSectionCopiesLinesAsTheyStand) {
    // Mixed line ends, empty lines and NUL bytes, across buffer refills: the copy must be what
    // writing each line as a record would give.
    const std::vector<std::string> lines = MixedLines();
    std::string text;
    for (size_t i = 0; i < lines.size(); ++i)
        text += lines[i] + (i % 5 == 0 ? "\r\n" : "\n") +
                (i % 11 == 0 ? std::string(1, '\0') + "z\n" : "");
    TempFile file;
    file.Write(text);
    TempFile copied("copied.txt");
    TempFile expected("expected.txt");
    {
        CDelimitFile in(file.c_str(), CFile::modeRead);
        CDelimitFile out(copied.c_str(), CFile::modeWrite | CFile::modeCreate);
        CString header;
        while (in.CopyToNextSection(out, header))
            out.WriteRecord("<" + header + ">");
        CDelimitFile reference(file.c_str(), CFile::modeRead);
        CDelimitFile written(expected.c_str(), CFile::modeWrite | CFile::modeCreate);
        CString line;
        while (reference.ReadString(line)) {
            if (reference.ClassifyLine(line.view()) == RECORD_PARAGRAPH)
                written.WriteRecord("<" + line + ">");
            else if (!line.IsEmpty())
                written.WriteRecord(line);
        }
    }
    EXPECT_TRUE(copied.Read() == expected.Read());
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
    const auto split = [&](const char* format) {
        const int count = file.SplitFieldTypes(pieces, format);
        Fields fields;
        for (const CString& piece : pieces)
            fields.emplace_back(piece.str());
        EXPECT_EQ(count, static_cast<int>(fields.size())) << format;
        return fields;
    };
    EXPECT_EQ(split("%s%.4f"), (Fields{"%s", "%.4f"}));
    EXPECT_EQ(split("Name%d %s"), (Fields{"Name", "%d ", "%s"})); // a blank stays in its field
    EXPECT_EQ(split("%d%%%d"), (Fields{"%d%%", "%d"}));
    EXPECT_EQ(split("x"), Fields{"x"});
    EXPECT_EQ(split(""), Fields{});

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

TEST(DelimitFileTest, NumberPairViewsAgreeWithFieldViews) {
    // Plain pairs are parsed in passing; every other line is split as ReadFieldViews splits it.
    // A long integer is plain too; the kinds alternate so that each follows the other.
    const char* const plainPairs[] = {"12.5\t300", "0\t0",     "1.5\t2\t3", "1e5\t2",
                                      "0x10\t5",   "1e400\t1", "1.\t2.",    "00012.50\t0003"};
    const char* const otherLines[] = {"7\t8x", "12\t",    "1.5\t\t2", "-1.5\t2", " 3\t4",  "5\t 6",
                                      "9\t-1", "1.5x\t2", "7,5\t8",   "\t5\t6",  "nan\t1", "[MS]",
                                      "{",     "}",       ";1\t2",    "",        "1\t.5",  "3\t4 "};
    std::vector<std::pair<std::string, bool>> lines{{"12345678901234567890\t5", true}};
    for (size_t i = 0; i < std::size(otherLines); ++i) {
        if (i < std::size(plainPairs))
            lines.emplace_back(plainPairs[i], true);
        lines.emplace_back(otherLines[i], false);
    }
    std::string text;
    for (const auto& [line, plain] : lines)
        text += line + "\n";
    TempFile file;
    file.Write(text);
    for (const auto& [delimiters, skip] :
         {std::pair<const char*, int>{"\t", 0}, {"\t", 1}, {"\t,", 0}, {".", 0}}) {
        CCountingFile byFields(file.c_str(), CFile::modeRead);
        CCountingFile byPairs(file.c_str(), CFile::modeRead);
        for (CDelimitFile* each : {&byFields, &byPairs}) {
            each->SetDelimiters(delimiters);
            each->SetSkipMultipleDelimiters(skip);
        }
        for (const auto& [line, plain] : lines) {
            std::string_view fields[2];
            std::string_view pairFields[2];
            double numbers[2] = {-1.0, -1.0};
            bool parsed = false;
            int type = -1;
            int pairType = -1;
            const int count = byFields.ReadFieldViews(fields, 2, &type);
            ASSERT_EQ(byPairs.ReadNumberPairViews(pairFields, numbers, parsed, &pairType), count)
                << line;
            EXPECT_EQ(pairType, type) << line;
            for (int k = 0; k < count; ++k)
                EXPECT_EQ(pairFields[k], fields[k]) << line;
            // Only a single delimiter that no number holds lets a pair be parsed in passing.
            EXPECT_EQ(parsed, plain && std::string_view(delimiters) == "\t") << line;
            for (int k = 0; parsed && k < 2; ++k) {
                size_t used = 0;
                EXPECT_EQ(numbers[k], ParseDouble(fields[k], used)) << line;
                EXPECT_EQ(used, fields[k].size()) << line;
            }
        }
        std::string_view fields[2];
        double numbers[2];
        bool parsed = true;
        EXPECT_EQ(byPairs.ReadNumberPairViews(fields, numbers, parsed, nullptr), -1);
        // Each line read counts once for progress, whichever way it was split.
        EXPECT_EQ(byPairs.m_lines, static_cast<int>(lines.size()));
        EXPECT_EQ(byFields.m_lines, byPairs.m_lines);
    }
}
