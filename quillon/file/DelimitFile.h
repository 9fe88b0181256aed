#pragma once

#include <quillon/platform/Array.h>
#include <quillon/platform/StdioFileS.h>

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

    // Splits text at the delimiters and appends the fields; returns the array's size afterwards.
    int ParseDelimitedString(CString text, CStringArray& fields);
    // As above, then classifies the line into *type (when type is not null) and strips the marker
    // from the first field of a marker line.
    int ParseDelimitedString(CString text, CStringArray& fields, int* type);
    // Empties fields, reads, splits and classifies one line, then calls UpdateStatus. Returns 1
    // when a line was read (an empty one included), 0 at end of file (fields empty, type
    // untouched).
    int ReadDelimitedString(CStringArray& fields, int* type);
    // Called after every line ReadDelimitedString reads; a derived file can report progress here.
    virtual void UpdateStatus() {}

    // Skipping; each stops at end of file.
    // Reads up to and including the next line that begins with "[".
    void SkipToNextSection();
    // Reads up to and including the next line that is exactly "}"; nested blocks are not counted.
    void SkipToEndOfBlock();
    // Reads one line; when it is exactly "{", reads on to its matching "}".
    void MoveToNextSection();

    // Writing: each writes one line followed by the line end ("\n" unless set otherwise; a copy
    // of a file sets the line end that file was read with, GetLineEndRead).
    void SetLineEnd(const char* lineEnd) { m_lineEnd = lineEnd; }
    const CString& GetLineEnd() const { return m_lineEnd; }
    void WriteSectionHeader(const CString& name);
    void WriteComment(const CString& text);
    void WriteRecord(const CString& text);
    void WriteBlockStart();
    void WriteBlockEnd();
    // Formatted records: every printf conversion of the format becomes one delimited field.
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
    void WriteLine(const CString& text);
    void WriteFormatted(const char* prefix, const char* format, va_list args);

    CString m_delimiters;
    int m_skipMultipleDelimiters = 0;
    CString m_sectionStart;
    CString m_sectionEnd;
    CString m_comment;
    CString m_blockStart;
    CString m_blockEnd;
    CString m_lineEnd;

    CString m_line; // the line buffer, reused from line to line
};

} // namespace quillon
