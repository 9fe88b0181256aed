#pragma once

#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

class CDelimitFile;
class CFileRecord;

// Copies the molfiles embedded in a sample's "[MOLFILE LIST]" section out into files of their
// own in the host's molfile directory (GetMolfileDirectory): each "Reference" line names the
// molfiles that follow, each "[MOLFILE]" block becomes "<directory><reference>_<sample>.mol", and
// its path is appended as a line to "<directory>Molfiles.list". The list file must already exist:
// without it nothing is written and the molfile blocks are skipped.
class CMolfile : public CObject {
    QUILLON_DECLARE_DYNAMIC(CMolfile)

public:
    explicit CMolfile(int sampleNumber) : m_nSampleNumber(sampleNumber) {}
    // Copies take the reference only: a copy made by construction has sample number 0, an
    // assigned one keeps its own.
    CMolfile(const CMolfile& source) : CObject(), m_strReference(source.m_strReference) {}
    CMolfile& operator=(const CMolfile& source) {
        m_strReference = source.m_strReference;
        return *this;
    }
    ~CMolfile() override = default;

    void SetReference(const CString& reference) { m_strReference = reference; }
    CString GetReference() const { return m_strReference; }

    // Reads the list from the line after its header to the close of its block; returns 1.
    int Read(CDelimitFile* file);
    int Read(CDelimitFile* file, CFileRecord& record);

    // The path of a molfile: "<directory><reference>_<sample>.mol". A path separator ('/' or
    // '\') or ".." in the reference becomes "_" (each character), so a reference never names a
    // file outside the directory: "../x" of sample 2 is "<directory>___x_2.mol".
    static CString MolfilePath(const CString& reference, int sampleNumber);
    // The reference and sample number a molfile path was made of, the inverse of MolfilePath:
    // "<directory>R_x_7.mol" gives "R_x" and 7. False for a path not of that form.
    static bool SplitMolfilePath(const CString& path, CString& reference, int& sampleNumber);

    // The list file, "<directory>Molfiles.list": one molfile path a line, in the order written.
    static CString ListPath();
    // Creates the list file, or empties an existing one, so that the molfiles of the reports read
    // next are extracted and listed. False when it cannot be written.
    static bool StartList();
    // The paths in the list file, in order; false (and no paths) when it cannot be read.
    static bool ReadList(CStringArray& paths);

    // A molfile's header: its first line is the molecule's name, and columns 20 and 21 of its
    // second line hold the dimension code ("  QUILLON 03122609143D" gives 3); without a code the
    // dimensions are 2. Each line is read up to 79 characters into one buffer, so a short second
    // line leaves the first line's characters in those columns. False when the file cannot be
    // opened or read (name empty, dimensions 2).
    static bool ReadHeader(const CString& path, CString& name, int& dimensions);

private:
    int NewField(const CStringArray& input, int id);
    int NewParagraph(CDelimitFile* file, int id);
    // Copies the molfile block that follows out into its file (see the class comment). The block
    // ends at the first line that is exactly "}" or at end of file.
    void CreateTempMolfile(CDelimitFile* file);

    int m_nSampleNumber = 0;
    CString m_strReference;
};

} // namespace quillon
