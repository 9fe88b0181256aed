#pragma once

#include <quillon/document/SampleData.h>
#include <quillon/file/ReadReport.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>

#include <cstdint>
#include <string_view>
#include <vector>

namespace quillon {

class CDelimitFile;
struct CDivBroParams;
class CMetabolicStabilityInfo;
struct MetabolicStabilityParameters;

// One row of the found-count summary over a range of samples: an expected metabolite's name, its
// mass shift as a label ("+16" for a shift of 15.9949; empty within 0.5 of zero) and, per sample
// of the range, how many found metabolites of that sample carry this name and label.
struct MetaboliteCountInfo {
    CString name;
    CString label;
    std::vector<int> counts;
};

// The report document: every sample of one report file, kept in ascending order of sample number.
// It reads a whole report, links samples to their control samples, and writes an updated report by
// copying the file it was read from while dropping duplicate samples.
class CSamples : public CObject {
    QUILLON_DECLARE_DYNAMIC(CSamples)

public:
    CSamples() = default;
    // Copies every sample; a link to a control sample of the source collection is turned into a
    // link to the copy of that control.
    CSamples(const CSamples& source);
    CSamples(CSamples&& source) = default;
    CSamples& operator=(const CSamples& source);
    CSamples& operator=(CSamples&& source) = default;
    ~CSamples() override = default;

    // Opens the report file read-only and reads it; 0 when it cannot be opened, otherwise 1.
    int Read(const char* path);
    // Reads every "[SAMPLE]" and "SAMPLE_APPEND" section to the end of the file, then links the
    // control samples and derives each sample's metabolite counts and area percentages. Returns 1.
    // What was passed over is noted in the read report, which each Read starts afresh.
    int Read(CDelimitFile* file);
    // What the last Read passed over or could not read (see CReadReport).
    const CReadReport& GetReadReport() const { return m_ReadReport; }
    // Reads one sample section (the header line has just been read) into a new sample placed in
    // number order; returns its index. A failure while reading is shown through the message
    // hook, the sample is discarded and the result is the last index.
    int ReadSample(CDelimitFile* file);
    // Reads a continuation section into the last sample (the highest number), or into a new
    // sample when there is none yet; returns the last index. Failures as for ReadSample.
    int AppendSample(CDelimitFile* file);

    // Appends a default sample at the end; returns the new size.
    int AddSample();
    // Inserts the sample before the first one with a greater number (so equal numbers stay in
    // the order they came), after setting its file entry to the current size; returns its index.
    int AddSample(const CSampleData& sample);
    int AddSample(CSampleData&& sample);
    void DeleteAll();

    int GetSamplesCount() const { return m_Samples.GetSize(); }
    // The sample at the index; null for an index outside the collection.
    CSampleData* GetSample(int index);
    // The last sample; null when the collection is empty.
    CSampleData* GetSample();

    // The browser's parameter record, handed to every sample read afterwards; not owned.
    void SetParams(CDivBroParams* params) { m_pParams = params; }

    // Links every sample that follows a "Control" sample (up to the next control), has at least
    // its number and the same process parameters, and whose first compound's mass lies within
    // 0.1 of the control's, to that control. A control without a positive reference mass takes
    // every such sample.
    void SetControlSamples();
    // True when any sample has lock-spray (respectively MUX) acquisition enabled.
    bool GetLockSprayEnabled() const;
    // A sample whose structure is two-dimensional for the sample with that number (the last
    // sample when no number matches): the sample itself when its molfile is 2D, else the nearest
    // sample before it, then after it, whose first compound has the same formula (or, without a
    // formula, the same mass to "%.0f") and a 2D molfile. Null when none has.
    CSampleData* GetSampleWith2DMolFile(int number);
    bool GetMUXEnabled() const;
    // The found counts of the low-energy expected metabolites of samples first..last (a negative
    // first means 0, a negative last the last sample), one row per name and shift label in the
    // order they first appear. A name never found still gets a row of zeros. Returns true.
    bool CreateOverallMSSummaryData(CArray<MetaboliteCountInfo>& summary, int first, int last);
    // The metabolic stability of every incubation series: the analyte samples (controls left
    // out) grouped by parent ("SubjectParent") and processing parameters, ordered by incubation
    // time. Fills one entry per series (see CMetabolicStabilityInfo for what is computed) and
    // returns whether any series was found.
    bool CreateMetabolicStabilityAnalysis(CArray<CMetabolicStabilityInfo>& series);
    bool CreateMetabolicStabilityAnalysis(CArray<CMetabolicStabilityInfo>& series,
                                          const MetabolicStabilityParameters& parameters);

    // Copies the report file the collection was read from (in, at its start) to out, line by
    // line, with the line ends of in's first line: empty lines are dropped, duplicate samples are
    // left out with their blocks, the molfile list is copied with its parent names rewritten for
    // the new file, and comment lines naming the program and the time are appended. When duplicates
    // were dropped, a file rewritten in place is cut to what was written. Afterwards the duplicate
    // samples are removed from memory too. Returns 0 when either file is missing, otherwise 1.
    int Write(CDelimitFile* in, CDelimitFile* out);

private:
    // The passes that need a whole sample in memory, run on every sample after reading: the
    // high-energy metabolite counts, the area totals, and the area percentages first without and
    // then with the browser's filters (so the filtered found percentages are the ones kept).
    static void DeriveMetaboliteResults(CSampleData& sample);
    // The index in this collection of each sample's control sample, -1 for a sample without one
    // or whose control lies outside the collection; empty when no sample has such a link.
    std::vector<int> ControlIndices() const;
    // Restores the control links noted by ControlIndices after samples have moved: newIndexOf
    // maps an old index to its new one, or to -1 for a removed sample.
    template <class NewIndexOf>
    void RelinkControls(const std::vector<int>& controls, NewIndexOf newIndexOf);
    // Removes the samples marked as duplicates, keeping the control links of the others.
    void RemoveDuplicates();
    // Reads one "[SAMPLE]" section into sample, with its place in the file and the browser
    // parameters; false (after showing why) when reading failed.
    bool ReadSampleRecord(CDelimitFile* file, CSampleData& sample, int64_t headerLine);
    // Reads a "SAMPLE_APPEND" section into sample; a failure is shown.
    void AppendRecord(CDelimitFile* file, CSampleData& sample, int64_t headerLine);
    // Puts the samples among those held in number order, as AddSample would one by one, in
    // linear-logarithmic time; control links of the samples held are kept.
    void AddSamplesInOrder(std::vector<CSampleData>&& added);
    // Writes an expected, unexpected, elemental or MS/MS correlation section from memory in place
    // of the input's block; false for any other section. The elemental counter numbers the
    // "ELEMENTAL" sections after each "UNEXPECTED METABOLITES" section written, from 1. Each of the
    // three metabolite groups is written whole at its sample's first section of that kind: a later
    // section of the same kind in the same sample (written, a bit per group, in writtenGroups) is
    // dropped with its block, since the reader put its metabolites into the group already written;
    // a dropped unexpected section leaves the elemental counter running, as the reader goes on
    // giving each "ELEMENTAL" section to the next metabolite without candidates.
    static bool WriteMetaboliteSection(std::string_view section, CSampleData& sample,
                                       int& elementalCounter, int& writtenGroups, CDelimitFile* in,
                                       CDelimitFile* out);
    // Copies the molfile list's lines up to and including the line that closes its block,
    // replacing the first occurrence of from by to in each line when from is not empty.
    static void CopyMolfileList(CDelimitFile* in, CDelimitFile* out, const CString& from,
                                const CString& to);

    // True when the header line just read from in is one the reader started a sample with (by
    // its position); always true for a collection not read from a file.
    bool StartsSample(CDelimitFile& in) const;
    // Notes a sample whose block the file ended inside (only checked at the end of the file).
    void NoteOpenSampleBlock(CDelimitFile* file, int64_t sampleStart, int64_t sampleLine,
                             const CString& name);

    CArray<CSampleData> m_Samples;
    CDivBroParams* m_pParams = nullptr;
    // Where the header of each sample read from a file starts, ascending: the writer counts only
    // these headers as samples, so that it cuts the file where the reader did; after a write,
    // where they start in the file written.
    std::vector<int64_t> m_SampleStarts;
    CReadReport m_ReadReport;
};

} // namespace quillon
