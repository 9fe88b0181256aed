#pragma once

#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

#include <string>
#include <unordered_map>

namespace quillon {

class CDelimitFile;
class CSamples;
class CSampleData;
class CSpectrumData;

// Reads a browser entry file into a sample collection: each "[SAMPLE]" section appends a sample
// and its header fields ("Sample", "Well", "SampleType", ...) fill it; "[MASSES]" rows (mono,
// expected, observed, percentage) and "[MS]" rows (mass, intensity) go to the last spectrum of the
// last function of the last sample. Lines under an unknown section, and field lines before the
// first section, are dropped; blocks are optional. Without a target collection (SetSamples) the
// file is read through without effect.
class CBroEntry : public CObject {
    QUILLON_DECLARE_DYNAMIC(CBroEntry)

public:
    CBroEntry();
    ~CBroEntry() override = default;

    // The collection entries are stored into; not owned. Null: nothing is stored.
    void SetSamples(CSamples* samples) { m_pSamples = samples; }

    // Reads the file at the path; 0 when it cannot be opened, else 1.
    int Read(const char* path);
    // Reads every line of the file; returns 1.
    int Read(CDelimitFile& file);

    // Name lookups (exact): 1 with the identifier, or 0 with -1 for an unknown name.
    int ParseHeaderField(const CString& name, int& id) const;
    int ParseFunctionField(const CString& name, int& id) const;
    int ParseParagraph(const CString& name, int& id) const;

    // Hands a field line to the reader of the paragraph it stands in (0 sample header, 1 function,
    // 2 masses, 3 MS); 0 for any other paragraph.
    int ParagraphEntry(int paragraph, const CStringArray& fields);
    // Starts a paragraph: "SAMPLE" appends a default sample, the function paragraph a default
    // function to the last sample. Returns 1; 0 without a target collection.
    int NewParagraph(int id);
    // Store one line; each returns 0 without a target collection or for an unknown identifier.
    int NewHeaderField(int id, const CStringArray& fields);
    int NewFunctionField(int id, const CStringArray& fields);
    // A row of at least four fields; shorter rows are ignored.
    int NewMassesField(const CStringArray& fields);
    // A row of at least two fields; shorter rows return 0.
    int NewMSField(const CStringArray& fields);

private:
    using NameTable = std::unordered_map<std::string, int>;
    static int Lookup(const NameTable& table, const CString& name, int& id);
    CSampleData* LastSample() const;
    // The last spectrum of the last function of the last sample; null when there is none.
    CSpectrumData* LastSpectrum() const;

    CSamples* m_pSamples = nullptr;
    NameTable m_HeaderNames;
    NameTable m_FunctionNames;
    NameTable m_ParagraphNames;
};

} // namespace quillon
