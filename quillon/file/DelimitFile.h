#pragma once

#include <quillon/file/ReadReport.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/StdioFileS.h>

#include <cstddef>
#include <string_view>

namespace quillon {

// The kind of a report file line, as the reader classifies it.
enum RECORD_TYPE {
    RECORD_FIELD = 0,       // a data line
    RECORD_PARAGRAPH = 1,   // a section header "[NAME]"
    RECORD_COMMENT = 2,     // ";text"
    RECORD_EMPTY = 3,       // a line that gave no field
    RECORD_BLOCK_START = 4, // "{"
    RECORD_BLOCK_END = 5,   // "}"
};

// The report file: a line-oriented text file of section headers, blocks, comments and data lines
// whose fields are separated by a delimiter (a tab unless set otherwise). It splits and classifies
// lines on reading and forms marker lines and delimited records on writing; it knows nothing of
// what the sections mean.
class CDelimitFile : public CStdioFileS {
    QUILLON_DECLARE_DYNAMIC(CDelimitFile)

public:
    CDelimitFile() { Initialise(); }
    explicit CDelimitFile(FILE* stream) : CStdioFileS(stream) { Initialise(); }
    // Opens the file; throws CFileException when it cannot be opened.
    CDelimitFile(const char* fileName, UINT openFlags) : CStdioFileS(fileName, openFlags) {
        Initialise();
    }

    // Replaces the set of delimiter characters; returns 1.
    int SetDelimiters(const char* delimiters);
    // When non-zero, a delimiter at the start of the remaining line yields no field, so runs of
    // delimiters count as one and leading delimiters are ignored.
    void SetSkipMultipleDelimiters(int skip) { m_skipMultipleDelimiters = skip; }

    // Reading. Lines are read whole, of any length (ReadString of the base).
    using CStdioFileS::ReadString;

    // The most fields one line is split into: the rest of a longer line stays whole in its last
    // field. No section of a report has near as many columns; the limit keeps a line of a million
    // delimiters from costing a million strings.
    static constexpr int kMaxFieldsPerLine = 4096;

    // Splits text at the delimiters and appends the fields; returns the array's size afterwards.
    int ParseDelimitedString(CString text, CStringArray& fields);
    // As above, then classifies the line into *type (when type is not null) and strips the marker
    // from the first field of a marker line.
    int ParseDelimitedString(CString text, CStringArray& fields, int* type);
    // Empties fields, reads, splits and classifies one line, then calls UpdateStatus. Returns 1
    // when a line was read (an empty one included), 0 at end of file (fields empty, type
    // untouched).
    int ReadDelimitedString(CStringArray& fields, int* type);
    // Reads one line and classifies it as ReadDelimitedString does, without building strings:
    // stores up to maxFields of its leading fields as views into the read buffer (valid until the
    // next read; a marker line's first field without its marker) and returns how many it stored,
    // or -1 at end of file. Calls UpdateStatus. For readers of long runs of number lines.
    //   "12.5\t300\t7" with maxFields 2 -> 2, {"12.5", "300"}, RECORD_FIELD
    int ReadFieldViews(std::string_view* fields, int maxFields, int* type);
    // ReadFieldViews with maxFields 2, for blocks of number pairs: a line that is plainly a pair
    // (a digit first, each number ending at a single delimiter or the line's end) is parsed in
    // the same pass, numbers[0] and numbers[1] as ParseDouble gives them and parsed true; any
    // other line is split as ReadFieldViews splits it, parsed false. The fields are set either way.
    //   "12.5\t300" -> 2, {"12.5", "300"}, {12.5, 300.0}, parsed, RECORD_FIELD
    //   "12.5\t300x" -> 2, {"12.5", "300x"}, not parsed, RECORD_FIELD
    int ReadNumberPairViews(std::string_view* fields, double* numbers, bool& parsed, int* type);
    // Called after every line ReadDelimitedString reads; a derived file can report progress here.
    virtual void UpdateStatus() {}

    // Problems found while reading. Readers note here what they pass over or take as a default;
    // without a read report set (the default) nothing is noted. The report is not owned.
    void SetReadReport(CReadReport* report) { m_pReadReport = report; }
    CReadReport* GetReadReport() const { return m_pReadReport; }
    // Notes a problem of the line just read, with its offset and line number.
    void NoteProblem(CReadReport::Kind kind, std::string_view name, std::string_view detail = {});
    // Notes a field of the line just read that should hold a number and holds none: a text that
    // is neither blank nor begins with a number, which reading takes as 0. Returns whether the
    // text holds a number (or is blank).
    //   NoteIfNotNumber("SubjectTime", "sixty") -> false, a BadNumber entry
    //   NoteIfNotNumber("SubjectTime", "60 min") -> true (read as 60)
    bool NoteIfNotNumber(std::string_view field, std::string_view text);

    // The kind of a raw line, by the one rule the reader classifies lines with: the line's first
    // field decides. "[SAMPLE] " and "[SAMPLE]\tx" are section headers named "SAMPLE" (the name
    // is stored in *name when given), "{ " opens a block, ";x" is a comment, "" is empty. The
    // reader, the writer and the skipping operations below all go by it.
    int ClassifyLine(std::string_view line, std::string_view* name = nullptr) const;

    // Skipping; each stops at end of file.
    // Reads up to and including the next section header.
    void SkipToNextSection();
    // Reads up to and including the next line that closes a block; nested blocks are not counted.
    void SkipToEndOfBlock();
    // Reads one line; when it opens a block, reads on to the line that closes that block.
    void MoveToNextSection();
    // Passes over the block that follows, when the next line other than empty and comment lines
    // opens one; otherwise reads nothing, so a section without a block does not take the line
    // after it along.
    void SkipFollowingBlock();

    // Copying. Copies the lines that follow to out, each with out's line end, up to the next
    // section header, which it reads into header (without its line end) but does not copy; empty
    // lines are dropped. Returns false at end of file. Runs of lines that already end with out's
    // line end are written as one byte range each (WriteBytes); any other line as a record.
    bool CopyToNextSection(CDelimitFile& out, CString& header);

    // Writing: each writes one line followed by the line end ("\n" unless set otherwise; a copy
    // of a file sets the line end that file was read with, GetLineEndRead).
    void SetLineEnd(const char* lineEnd) { m_lineEnd = lineEnd; }
    const CString& GetLineEnd() const { return m_lineEnd; }
    void WriteSectionHeader(const CString& name);
    void WriteComment(const CString& text);
    void WriteRecord(const CString& text);
    void WriteBlockStart();
    void WriteBlockEnd();
    // Formatted records: every printf conversion of the format becomes one delimited field. A
    // text ("%s") written into a field never splits the line: its tabs, CRs, LFs and delimiter
    // characters are written as blanks.
    void WriteRecord(const char* format, ...) __attribute__((format(printf, 2, 3)));
    void WriteComment(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Cuts a format into pieces that each begin with one conversion (literal text before the
    // first conversion stays in the first piece); returns the number of pieces.
    int SplitFieldTypes(CStringArray& pieces, const CString& format);
    // Joins the pieces with the delimiter text into out; returns the number of pieces.
    int RebuildFieldTypes(const CStringArray& pieces, CString& out);

    // Array writers. FormDelimitedString joins into its own copy of text, which the caller never
    // sees, so WriteDelimitedString writes nothing at all; WriteDelimitedStringExt marks the first
    // field as a section name (type 1) or a comment (type 2) before passing the fields on.
    static void FormDelimitedString(CString text, const CStringArray& fields, char delimiter);
    virtual void WriteDelimitedString(const CStringArray& fields);
    virtual void WriteDelimitedStringExt(const CStringArray& fields, int type);

private:
    void Initialise();
    // Splits a line into fields, reusing the strings already in the array; returns the count.
    int SplitInto(std::string_view line, CStringArray& fields, int firstIndex) const;
    // Classifies a split line and strips the marker from its first field.
    int Classify(CStringArray& fields) const;
    // The kind of a line from its first field; for a marker line, the part of the field that
    // remains once the marker is stripped (for a header: its name) as an offset and a length.
    int ClassifyFirstField(std::string_view first, size_t& keepFrom, size_t& keepLength) const;
    // True when a line that begins with this byte may be a marker line; any other line is data.
    bool MayStartMarker(char first) const {
        return m_markerStart[static_cast<unsigned char>(first)];
    }
    // Splits and classifies a line as ReadFieldViews does, then calls UpdateStatus.
    int SplitFieldViews(std::string_view line, std::string_view* fields, int maxFields, int* type);
    // The plain pair of numbers of ReadNumberPairViews; false, with nothing set, for any other
    // line.
    bool ParsePlainPair(std::string_view line, std::string_view* fields, double* numbers) const;
    // True when the line is a section header (the header rule of ClassifyLine).
    bool IsSectionHeader(std::string_view line) const;
    void WriteLine(const CString& text);
    void UpdateMarkerStarts();
    void WriteFormatted(const char* prefix, const char* format, va_list args);

    CString m_delimiters;
    int m_skipMultipleDelimiters = 0;
    CString m_sectionStart;
    CString m_sectionEnd;
    CString m_comment;
    CString m_blockStart;
    CString m_blockEnd;
    CString m_lineEnd;

    bool m_markerStart[256] = {}; // the first bytes of the markers, and of the delimiters
    CReadReport* m_pReadReport = nullptr;
};

} // namespace quillon
