#pragma once

#include <quillon/file/DelimitFile.h>
#include <quillon/platform/Object.h>

#include <string>
#include <string_view>
#include <unordered_map>

namespace quillon {

// Turns the classified lines of a report file into reader events: a field line with its
// identifier, a nested section (paragraph) with its identifier, and the end of the reader's own
// block. One record reads one section; lines inside blocks nested below the record's own block
// are skipped whole.
//
// The reader pattern every section class follows:
//   int Read(CDelimitFile* file)  -> registers names on a fresh record, calls Read(file, record)
//   int Read(CDelimitFile* file, CFileRecord& record)
//       while (record.Read(file)) type 0 -> NewField(*record.GetInput(), record.GetID())
//                                 type 1 -> NewParagraph(file, record.GetID())
class CFileRecord : public CObject {
    QUILLON_DECLARE_DYNAMIC(CFileRecord)

public:
    CFileRecord() = default;
    CFileRecord(const CFileRecord&) = delete;
    CFileRecord& operator=(const CFileRecord&) = delete;

    // Registers a field or paragraph name; registering a name again replaces its identifier.
    void AddField(const char* name, int id);
    void AddParagraph(const char* name, int id);

    // Reads on to the next field or paragraph of this record's block. Returns 1 when one is
    // ready, 0 at end of file, when the record's block has closed, or without a file.
    int Read(CDelimitFile* file);

    // The line kind of the event: RECORD_FIELD or RECORD_PARAGRAPH.
    int GetType() const { return m_type; }
    // The identifier of the event; -1 for a field whose name is not registered.
    int GetID() const { return m_id; }
    // The fields of the event's line: element 0 is the field or section name.
    const CStringArray* GetInput() const { return &m_input; }

    // The reader loop: hands every field line to onField(input, id) and every paragraph to
    // onParagraph(file, id) until this record's block has closed or the file ends.
    template <class OnField, class OnParagraph>
    void ReadEach(CDelimitFile* file, OnField&& onField, OnParagraph&& onParagraph) {
        while (Read(file)) {
            if (m_type == RECORD_FIELD)
                onField(m_input, m_id);
            else
                onParagraph(file, m_id);
        }
    }

    // The reader loop of a list of number pairs (the points of a trace or a spectrum): hands the
    // first two fields of every field line that has two or more to onPair(first, second) as
    // numbers, read as ParseDouble reads them, until this record's block has closed or the file
    // ends. Other lines, nested sections and their blocks are passed over, as the loop above
    // would with a field handler that needs two fields. No strings are built for the lines.
    // A line of the block that is not two numbers is noted in the file's read report (and still
    // read as ParseDouble reads it when it has two fields).
    //   "12.5\t300" -> onPair(12.5, 300.0)      "12.5" -> nothing, noted
    //   "9.0x\t300" -> onPair(9.0, 300.0), noted
    template <class OnPair>
    void ReadNumberPairs(CDelimitFile* file, OnPair&& onPair) {
        double first = 0.0;
        double second = 0.0;
        while (ReadNumberPair(file, first, second))
            onPair(first, second);
    }

    // The value of a field line: its element 1, or an empty text when the line has none.
    static const CString& FieldValue(const CStringArray& input);

protected:
    // Look a name up: 1 with its identifier when registered, or with -1 when nothing at all is
    // registered in that map; 0 with -1 otherwise.
    int ParseField(const CString& name, int& id) const;
    int ParseParagraph(const CString& name, int& id) const;

private:
    struct NameHash {
        using is_transparent = void;
        size_t operator()(std::string_view name) const noexcept {
            return std::hash<std::string_view>{}(name);
        }
    };
    using NameMap = std::unordered_map<std::string, int, NameHash, std::equal_to<>>;

    static int Lookup(const NameMap& names, const CString& name, int& id);
    // Reads on to the next field line of this record's block with two fields or more and parses
    // them; false at the end of the block or of the file.
    bool ReadNumberPair(CDelimitFile* file, double& first, double& second);
    // Notes the line in the file's read report unless both fields are whole numbers (up to
    // trailing blanks); used is how much of each field the number took.
    static void NoteUnlessNumber(CDelimitFile& file, std::string_view first, size_t firstUsed,
                                 std::string_view second, size_t secondUsed);
    // Counts a block line of the given type: "{" goes one level deeper, "}" one back (never below
    // the record's own level). True when it is the "}" that closes the record's own block.
    bool CountBlockLine(int type);

    NameMap m_fieldNames;
    NameMap m_paragraphNames;
    CStringArray m_input;
    int m_type = -1;
    int m_id = -1;
    int m_depth = 0;
};

} // namespace quillon
