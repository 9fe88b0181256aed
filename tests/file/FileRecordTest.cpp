#include <quillon/file/FileRecord.h>

#include "support/TempFile.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::TempFile;

namespace {

// One event of a record: type, identifier and first field.
struct Event {
    int type;
    int id;
    std::string name;
    bool operator==(const Event&) const = default;
};

std::vector<Event> ReadAll(CFileRecord& record, CDelimitFile& file) {
    std::vector<Event> events;
    while (record.Read(&file))
        events.push_back({record.GetType(), record.GetID(), (*record.GetInput())[0].str()});
    return events;
}

// A two-level reader in the library's reader pattern: a section with fields and sections.
struct Section {
    std::vector<std::string> fields;
    std::vector<Section> children;

    int Read(CDelimitFile* file) {
        CFileRecord record;
        record.AddField("Value", 1);
        record.AddParagraph("CHILD", 10);
        return Read(file, record);
    }
    int Read(CDelimitFile* file, CFileRecord& record) {
        while (record.Read(file)) {
            if (record.GetType() == RECORD_FIELD && record.GetID() == 1 &&
                record.GetInput()->GetSize() > 1)
                fields.push_back((*record.GetInput())[1].str());
            else if (record.GetType() == RECORD_PARAGRAPH)
                children.emplace_back().Read(file);
        }
        return 1;
    }
};

} // namespace

TEST(FileRecordTest, RegisteredNamesAndUnknownFields) {
    TempFile file;
    file.Write("Before\t1\n{\nKnown\t2\nOther\t3\n[PART]\n{\n}\n}\n");
    CDelimitFile in(file.c_str(), CFile::modeRead);
    CFileRecord record;
    record.AddField("Known", 1);
    record.AddField("Before", 4);
    record.AddField("Before", 5); // the second registration wins
    const std::vector<Event> events = ReadAll(record, in);
    // With no paragraph names registered, every paragraph is returned with id -1.
    const std::vector<Event> expected = {{RECORD_FIELD, 5, "Before"},
                                         {RECORD_FIELD, 1, "Known"},
                                         {RECORD_FIELD, -1, "Other"},
                                         {RECORD_PARAGRAPH, -1, "PART"}};
    EXPECT_EQ(events, expected);
}

TEST(FileRecordTest, DepthRulesSkipUnknownSectionsWhole) {
    TempFile file;
    file.Write("}\n" // a close at depth 0 is passed over
               "{\n" // our block
               ";comment\n\n"
               "[UNKNOWN]\n{\nValue\t9\n[CHILD]\n{\nValue\t8\n}\n}\n"
               "Value\t1\n"
               "[CHILD]\n{\nValue\t2\n[CHILD]\n{\nValue\t3\n}\n}\n"
               "Value\t4\n"
               "}\n"
               "Value\t5\n");
    CDelimitFile in(file.c_str(), CFile::modeRead);
    Section top;
    CFileRecord record;
    record.AddField("Value", 1);
    record.AddParagraph("CHILD", 10);
    top.Read(&in, record);
    EXPECT_EQ(top.fields, (std::vector<std::string>{"1", "4"}));
    ASSERT_EQ(top.children.size(), 1u);
    EXPECT_EQ(top.children[0].fields, std::vector<std::string>{"2"});
    ASSERT_EQ(top.children[0].children.size(), 1u);
    EXPECT_EQ(top.children[0].children[0].fields, std::vector<std::string>{"3"});

    // After the block closed, the same record reads on at depth 0.
    ASSERT_EQ(record.Read(&in), 1);
    EXPECT_EQ((*record.GetInput())[1], "5");
    EXPECT_EQ(record.Read(&in), 0);
}

TEST(FileRecordTest, TruncatedFilesEndEveryLevel) {
    TempFile file;
    file.Write("{\nValue\t1\n[CHILD]\n{\nValue\t2\n[CHILD]\n{\nValue");
    CDelimitFile in(file.c_str(), CFile::modeRead);
    Section top;
    top.Read(&in);
    EXPECT_EQ(top.fields, std::vector<std::string>{"1"});
    ASSERT_EQ(top.children.size(), 1u);
    ASSERT_EQ(top.children[0].children.size(), 1u);
    EXPECT_TRUE(top.children[0].children[0].fields.empty()); // "Value" has no value column

    CFileRecord record;
    EXPECT_EQ(record.Read(nullptr), 0);
    EXPECT_EQ(record.Read(&in), 0);
}
