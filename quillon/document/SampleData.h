#pragma once

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/DoubleArray.h>
#include <quillon/acquisition/FunctionData.h>
#include <quillon/acquisition/ParametersData.h>
#include <quillon/acquisition/TraceType.h>
#include <quillon/fragments/FragmentAnalysis.h>
#include <quillon/metabolites/CompoundData.h>
#include <quillon/metabolites/MSMSCorrelation.h>
#include <quillon/metabolites/MSMSMetabolite.h>
#include <quillon/metabolites/MetaboliteData.h>
#include <quillon/plate/VialRef.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>
#include <quillon/platform/Types.h>

#include <string_view>
#include <utility>

namespace quillon {

class CPeakIndex;

class CDelimitFile;
struct CDivBroParams;

// One sample of a report: its header (identity, acquisition files, subject, processing notes),
// its processing state and the sections read from its "[SAMPLE]" block. Copies are deep, except
// the control sample and browser parameter pointers, which are copied as pointers.
class CSampleData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CSampleData)

public:
    // A default sample: every member holds the default stated at its declaration.
    CSampleData() = default;
    CSampleData(const CSampleData& source) = default;
    CSampleData(CSampleData&& source) = default;
    CSampleData& operator=(const CSampleData& source) = default;
    CSampleData& operator=(CSampleData&& source) = default;
    ~CSampleData() override = default;

    // Removes all functions, analog channels and compounds.
    void Empty();

    // Reads a "[SAMPLE]" (or "SAMPLE_APPEND") section from the line after its header to the close
    // of its block: header fields overwrite, processing texts grow, sections add to what the
    // sample holds. Returns 1.
    int Read(CDelimitFile* file);
    // Writes nothing: a report is only produced by the collection's copy pass. Returns 1 when a
    // file is given, 0 otherwise.
    int Write(CDelimitFile* file) const;

    // Header fields.
    int GetNumber() const { return m_nNumber; }
    void SetNumber(int number) { m_nNumber = number; }
    void SetNumber(const CString& number);
    void GetFileName(CString& name) const { name = m_strFileName; }
    void SetFileName(const CString& name) { m_strFileName = name; }
    int GetWell(CString& well) const;
    int GetWell() const; // the well as an integer (C rules, any locale)
    void SetWell(const CString& well) { m_strWell = well; }
    int GetPlateDescription(CString& plate) const;
    void SetPlateDescription(const CString& plate) { m_strPlateDescription = plate; }
    // The vial reference, parsed on the plate the "Plate" header describes when that text is a
    // plate descriptor ("columns,rows[,priority[,referencing[,origin]]]"), and on the default
    // plate (12 x 8, alphanumeric) otherwise. "A1:B3" on the default plate is vial 15.
    void SetVialReference(const CString& reference);
    void GetVialReference(CVialRef& reference) const { reference = m_VialRef; }
    void GetVialReference(CString& reference) const { m_VialRef.GetReference(reference); }
    void GetType(CString& type) const { type = m_strType; }
    void SetType(const CString& type) { m_strType = type; }
    bool IsControl() const { return m_strType == "Control"; }
    bool IsAnalyte() const { return m_strType == "Analyte"; }
    void GetID(CString& id) const { id = m_strID; }
    void SetID(const CString& id) { m_strID = id; }
    void GetDescription(CString& description) const { description = m_strDescription; }
    void SetDescription(const CString& description) { m_strDescription = description; }
    void GetProcessParameters(CString& parameters) const { parameters = m_strProcessParameters; }
    const char* GetProcessParameters() const { return m_strProcessParameters; }
    void SetProcessParameters(const CString& parameters) { m_strProcessParameters = parameters; }
    void GetInletFileName(CString& name) const { name = m_strInletFileName; }
    void SetInletFileName(const CString& name) { m_strInletFileName = name; }
    void GetMSMethodFileName(CString& name) const { name = m_strMSMethodFileName; }
    void SetMSMethodFileName(const CString& name) { m_strMSMethodFileName = name; }
    void GetMSTuneFileName(CString& name) const { name = m_strMSTuneFileName; }
    void SetMSTuneFileName(const CString& name) { m_strMSTuneFileName = name; }
    void GetInjectionVolume(CString& volume) const { volume = m_strInjectionVolume; }
    void SetInjectionVolume(const CString& volume) { m_strInjectionVolume = volume; }
    void GetSubjectTime(CString& time) const { time = m_strSubjectTime; }
    float GetSubjectTime() const; // the subject time as a number (C rules, any locale)
    void SetSubjectTime(const CString& time) { m_strSubjectTime = time; }
    void GetSubjectText(CString& text) const { text = m_strSubjectText; }
    const char* GetSubjectText() const { return m_strSubjectText; }
    void SetSubjectText(const CString& text) { m_strSubjectText = text; }
    void GetSubjectParent(CString& parent) const { parent = m_strSubjectParent; }
    const char* GetSubjectParent() const { return m_strSubjectParent; }
    void SetSubjectParent(const CString& parent) { m_strSubjectParent = parent; }
    double GetConcentration() const { return m_dConcentration; }
    void SetConcentration(double concentration) { m_dConcentration = concentration; }
    void SetConcentration(const CString& concentration);
    void GetDate(CString& date) const { date = m_strDate; }
    void SetDate(const CString& date) { m_strDate = date; }
    void GetTime(CString& time) const { time = m_strTime; }
    void SetTime(const CString& time) { m_strTime = time; }
    bool GetLockSprayEnabled() const { return m_bLockSprayEnabled; }
    void SetLockSprayEnabled(bool enabled) { m_bLockSprayEnabled = enabled; }
    void SetLockSprayEnabled(const CString& enabled); // a non-zero integer is true
    void SetLockSprayEnabled(const char* enabled) { SetLockSprayEnabled(CString(enabled)); }
    bool GetMUXEnabled() const { return m_bMUXEnabled; }
    void SetMUXEnabled(bool enabled) { m_bMUXEnabled = enabled; }
    void SetMUXEnabled(const CString& enabled); // a non-zero integer is true
    void SetMUXEnabled(const char* enabled) { SetMUXEnabled(CString(enabled)); }
    // The processing notes: each repeated line of the file is one more line of the text.
    void GetProcessingTime(CString& text) const { text = m_strProcessingTime; }
    void GetProcessingInfo(CString& text) const { text = m_strProcessingInfo; }
    void GetProcessingWarning(CString& text) const { text = m_strProcessingWarning; }
    // Each adds one more line to its note (after a newline when the note already holds text).
    void AddProcessingTime(const CString& line);
    void AddProcessingInfo(const CString& line);
    void AddProcessingWarning(const CString& line);
    void GetJobCode(CString& code) const { code = m_strJobCode; }
    void SetJobCode(const CString& code) { m_strJobCode = code; }
    void GetTaskCode(CString& code) const { code = m_strTaskCode; }
    void SetTaskCode(const CString& code) { m_strTaskCode = code; }
    void GetUserNameA(CString& name) const { name = m_strUserName; }
    void SetUserName(const CString& name) { m_strUserName = name; }
    void GetLabName(CString& name) const { name = m_strLabName; }
    void SetLabName(const CString& name) { m_strLabName = name; }
    void GetInstrument(CString& instrument) const { instrument = m_strInstrument; }
    const char* GetInstrument() const { return m_strInstrument; }
    void SetInstrument(const CString& instrument) { m_strInstrument = instrument; }
    void GetCondtions(CString& conditions) const { conditions = m_strConditions; }
    void SetCondtions(const CString& conditions) { m_strConditions = conditions; }
    void GetSubmitter(CString& submitter) const { submitter = m_strSubmitter; }
    void SetSubmitter(const CString& submitter) { m_strSubmitter = submitter; }
    // A header field's text by its name in the report ("TaskCode", "SampleID", "SubjectTime"),
    // as the sample keeps it: the number for "Sample", "0" or "1" for the switches, the
    // concentration with %g, notes line by line. False for a name the sample keeps no text for
    // ("Masses", "EleParameters", or no header field at all).
    bool GetHeaderField(std::string_view name, CString& value) const;

    // Place in the report file: the sample's index in file order and where its section lies.
    int GetFileEntry() const { return m_nFileEntry; }
    void SetFileEntry(int entry) { m_nFileEntry = entry; }
    unsigned long GetFilePosStart() const { return m_ulFilePosStart; }
    void SetFilePosStart(unsigned long position) { m_ulFilePosStart = position; }
    unsigned long GetFilePosEnd() const { return m_ulFilePosEnd; }
    void SetFilePosEnd(unsigned long position) { m_ulFilePosEnd = position; }

    // Links that the sample does not own.
    CDivBroParams* GetParams() const { return m_pParams; }
    void SetParams(CDivBroParams* params) { m_pParams = params; }
    CSampleData* GetControlSample() const { return m_pControlSample; }
    void SetControlSample(CSampleData* control) { m_pControlSample = control; }

    // Processing state.
    bool IsDuplicate() const { return m_bDuplicate; }
    void IsDuplicate(bool duplicate) { m_bDuplicate = duplicate; }
    bool ExpectedMetabolitesValid() const { return m_bExpectedMetabolitesValid; }
    void ExpectedMetabolitesValid(bool valid) { m_bExpectedMetabolitesValid = valid; }
    bool UnexpectedMetabolitesValid() const { return m_bUnexpectedMetabolitesValid; }
    void UnexpectedMetabolitesValid(bool valid) { m_bUnexpectedMetabolitesValid = valid; }
    bool MSMSMetabolitesValid() const { return m_bMSMSMetabolitesValid; }
    void MSMSMetabolitesValid(bool valid) { m_bMSMSMetabolitesValid = valid; }
    bool MSMSModeDisplay() const { return m_byMSMSModeDisplay == 1; }
    void SetMSMSModeDisplay(BYTE display) { m_byMSMSModeDisplay = display; }
    bool GetElementalEnabled() const { return m_bElementalEnabled; }
    void SetElementalEnabled(bool enabled) { m_bElementalEnabled = enabled; }
    bool GetMoleculeEnabled() const { return m_bMoleculeEnabled; }
    void SetMoleculeEnabled(bool enabled) { m_bMoleculeEnabled = enabled; }
    int GetMoleculeDimensions() const { return m_nMoleculeDimensions; } // -1: not determined
    // Reads a "[MOLFILE LIST]" section, extracting its molfiles (CMolfile), and enables the
    // molecule. Returns 1.
    int ReadMolfileList(CDelimitFile* file);
    // The molecule reference of the first metabolite, in index order, that has one; else empty.
    CString GetMoleculeReference() const;
    // Whether the sample's structure is 2D or 3D, from the dimension code ("2D", "3D") at columns
    // 20 and 21 of its molfile's header line; determined once and stored. 0 without metabolites or
    // without a molfile list; 2 when the molfile is missing or carries no recognisable code.
    int SetMoleculeDimensions();
    void IncrementExpectedMetaboliteCount() { ++m_nExpectedMetaboliteLastEntry; }
    int GetHighEnergyExpectedCount() const { return m_nHighEnergyExpectedCount; }
    int GetHighEnergyUnexpectedCount() const { return m_nHighEnergyUnexpectedCount; }
    int GetInternalStandardEntry() const { return m_nInternalStandardEntry; }
    double GetInternalStandardArea() const { return m_dInternalStandardArea; }
    int GetMSMSCorrelationFirstEntry() const { return m_nMSMSCorrelationFirstEntry; }
    int GetNumParentMasses() const { return m_nNumParentMasses; }
    // The fragment whose precursors the trace numbered -101 gathers, and the neutral loss (an
    // entry index of the fragment analysis) whose carriers the trace numbered -102 gathers. A new
    // value makes that trace need rebuilding.
    int CurrentFragment() const { return m_nCurrentFragment; }
    void CurrentFragment(int fragment);
    int CurrentNeutralLoss() const { return m_nCurrentNeutralLoss; }
    void CurrentNeutralLoss(int loss);

    // The fragment analysis of this sample (validated after reading, run on demand).
    CFragmentAnalysis* GetFragmentAnalysis() { return &m_FragmentAnalysis; }
    const CFragmentAnalysis* GetFragmentAnalysis() const { return &m_FragmentAnalysis; }

    // Metabolites (SampleDataMetabolites.cpp), kept in one array in three consecutive groups:
    // expected, unexpected, then MS/MS correlation metabolites. The counts derive from the last
    // index of each group and the group's validity flag.
    int GetMetaboliteCount() const { return m_Metabolites.GetSize(); }
    int GetExpectedMetaboliteCount() const;
    int GetUnexpectedMetaboliteCount() const;
    int GetMSMetaboliteCount() const {
        return GetExpectedMetaboliteCount() + GetUnexpectedMetaboliteCount();
    }
    int GetMSMSCorrelationMetaboliteCount() const;
    // Index of the first unexpected metabolite (the expected count).
    int GetUnexpectedMetaboliteFirstEntry() const { return GetExpectedMetaboliteCount(); }
    // The metabolite at the index, or the last one; null outside the array.
    CMetaboliteData* GetMetabolite(int index);
    const CMetaboliteData* GetMetabolite(int index) const;
    CMetaboliteData* GetMetabolite();
    // The first metabolite whose peak number is peakID; null when none.
    CMetaboliteData* GetMetaboliteWithPeakID(int peakID);
    // Appends a copy and returns its index; an expected or unexpected record becomes the last of
    // its group. MS/MS rows are placed after the MS metabolites appended so far.
    int AddMSMetabolite(const CMetaboliteData& metabolite);
    // Stores a copy at MS/MS entry `entry` (after the MS metabolites), growing the array with
    // default records as needed; an entry more than kMaxMSMSEntryGap beyond the number of MS/MS
    // rows stored so far is refused. Returns the array size.
    int AddMSMSMetabolite(int entry, const CMetaboliteData& metabolite);
    // Marks the MS/MS metabolite of that entry as the correlation's parent and stores the entry.
    void SetMSMSParentMetabolite(int entry);
    // Moves metabolite i into the low-energy expected block, kept sorted by found m/z, and grows
    // the expected group by one.
    void AddExpectedMetabolite(int index);
    // Recounts the high-energy expected and unexpected metabolites.
    void SetHighEnergyMetaboliteCount();
    // The sample's MS/MS correlation settings (parent entry, mass window).
    CMSMSCorrelation* GetMSMSCorrelation() { return &m_MSMSCorrelation; }
    const CMSMSCorrelation* GetMSMSCorrelation() const { return &m_MSMSCorrelation; }
    // The largest parent mass the metabolite rows have referred to through their compounds.
    double GetMaxParentMass() const { return m_dMaxParentMass; }
    void SetInternalStandard(int entry, double area) {
        m_nInternalStandardEntry = entry;
        m_dInternalStandardArea = area;
    }
    // How far an MS/MS entry may lie beyond the MS/MS rows stored so far, and a correlation entry
    // beyond a metabolite's correlation entries: a row naming an entry further out is skipped.
    // Gaps are filled with default records (or empty texts), so each row read adds at most this
    // many of them: what a file makes the reader allocate grows with its lines, not its numbers.
    // (Rows 3, 0, 1, 2 in that order are all stored; a first row of entry 100000 is not.)
    static constexpr int kMaxMSMSEntryGap = 64;

    // Metabolite sections. ReadMetabolite reads an "EXPECTED METABOLITES" or "UNEXPECTED
    // METABOLITES" block; ReadMSMSCorrelation an "MSMS CORRELATION" block. Rows never fail:
    // missing columns take defaults. Each returns 1.
    int ReadMetabolite(CDelimitFile* file, bool expected);
    int ReadMSMSCorrelation(CDelimitFile* file);
    // One MS-layout row: one metabolite per peak identifier of its "Peak" column. (Read row by row
    // outside a section, each row indexes the sample's peaks afresh: ReadMetabolite does it once.)
    int MSMetaboliteNewField(const CStringArray& row, bool expected);
    // One MS/MS-layout row of the "METABOLITES" table.
    int MSMSMetaboliteNewField(const CStringArray& row);
    // One row of the "CORRELATION TABLE"; 0 for a row of fewer than three fields.
    int MSMSAddCorrelationToMetabolite(const CStringArray& row);
    // Write the body of an expected/unexpected section and of the "MSMS CORRELATION" section
    // from memory. Each returns 1.
    int WriteMSMetabolites(CDelimitFile* file, bool expected);
    int WriteMSMSMetabolites(CDelimitFile* file);

    // Compounds, in file order.
    int GetCompoundCount() const { return m_Compounds.GetSize(); }
    // The compound at the index; null for an index outside the list.
    CCompoundData* GetCompound(int index);
    const CCompoundData* GetCompound(int index) const;
    // The last compound; null when there is none.
    CCompoundData* GetCompound();
    // Appends a default compound; returns the new count.
    int AddCompound();
    // Appends a copy; returns its index.
    int AddCompound(const CCompoundData& compound);

    // Acquisition functions and analog channels (SampleDataAcquisition.cpp). The adding forms
    // return the index of the new element; out-of-range indices give null.
    int GetFunctionCount() const { return m_Functions.GetSize(); }
    int AddFunction(const CFunctionData& function) { return m_Functions.Add(function); }
    int AppendFunction(CFunctionData&& function) { return m_Functions.Add(std::move(function)); }
    CFunctionData* GetFunction(int index);
    CFunctionData* GetFunction(); // the last function
    int GetAnalogCount() const { return m_AnalogChannels.GetSize(); }
    int AddChannel(const CChromatoData& channel) { return m_AnalogChannels.Add(channel); }
    int AddChannel(CChromatoData&& channel) { return m_AnalogChannels.Add(std::move(channel)); }
    CChromatoData* GetAnalogChannel(int index);
    CChromatoData* GetAnalogChannel(); // the last channel
    // The combined trace numbered -101 or -102, or -100 for any other number.
    CChromatoData* GetCombinedTrace(int traceNumber);

    // Combined traces (SampleDataCombinedTraces.cpp): computed chromatograms that gather the
    // chromatographic peaks of a set of metabolites on one time axis. The trace numbered -100
    // gathers the set chosen by the combined trace type, -101 the precursors of the current
    // fragment, -102 the carriers of the current neutral loss. Each is built lazily: a change of
    // its selection sets its needs-data flag, and the next SetupCombinedTrace rebuilds it once.
    enum COMBINED_TRACE_TYPE {
        COMBINED_EXPECTED_FOUND = 0,
        COMBINED_ALL_FOUND = 1,
        COMBINED_ALL_FOUND_AND_UNEXPECTED = 2,
        COMBINED_PRECURSORS_OF_FRAGMENT = 3,
        COMBINED_COMMON_NEUTRAL_LOSS = 4,
        COMBINED_UNEXPECTED_FOUND = 5, // the found unexpected metabolites alone
    };
    // -101 for precursors, else -102 for a neutral loss, else -100.
    static int GetCombinedTraceNum(bool precursors, bool neutralLoss);
    static bool IsCombinedTraceNum(int trace); // -100, -101 or -102
    // Sets the needs-data flag of -100 to needs, and of -101 and -102 too when asked.
    void CombinedTraceNeedsData(bool needs, bool precursorsToo, bool neutralLossToo);
    bool CombinedTraceNeedsData() const; // the flag of -100
    // False for another trace number or an unchanged type; otherwise flags the trace and
    // stores the type.
    bool SetCombinedTraceType(int type, int traceNumber);
    int GetCombinedTraceType() const { return m_nCombinedTraceType; }
    // Resets a trace to an empty combined trace: described "Combined Metabolite Peaks", numbered
    // -100 (trace and function), needing data.
    static void InitialiseCombinedTrace(CChromatoData* trace);
    // Builds the combined trace numbered traceNumber when it needs data; true when built.
    // The sixteen filter settings are those of CMetaboliteData::ApplyDataFilters, which types 0
    // to 2 and 5 apply. Selection: type 0 takes the found expected metabolites, type 1 the found
    // expected and MS/MS correlation ones, type 2 every found one (unexpected too); type 3 the
    // parents of the current fragment, type 4 the low-energy metabolites whose peak carries the
    // current neutral loss, type 5 the found unexpected ones alone. High-energy partners and
    // excluded masses never join. With leaveOutParent, metabolites named "Parent" are left out, so
    // that the metabolites are not dwarfed by the parent; with confirmedOnly, only metabolites the
    // user confirmed join. Grid: n times spread evenly over the widest span of the metabolites'
    // traces, n the most points of any such trace. Each selected metabolite's trace is cut to its
    // peak's extent and every cut point adds its intensity to the nearest grid time when that lies
    // within half a grid spacing; overlapping peaks add up. Each selected peak is listed on the
    // trace.
    bool SetupCombinedTrace(int traceNumber, bool massDefectOn, double upperMassDefect,
                            double lowerMassDefect, bool areaOn, int areaMode, float areaThreshold,
                            float relativeAreaThreshold, bool areaOnExpected, bool massErrorOn,
                            double massErrorLimit, bool isotopeOn, bool elementalOn, bool timeOn,
                            double timeLow, double timeHigh, bool hideHighEnergy,
                            bool leaveOutParent, bool confirmedOnly);
    // The same with the result filters of a browser parameter record (its fragment settings are
    // not used here):
    //     CDivBroParams filters;            // every filter off
    //     sample.SetCombinedTraceType(CSampleData::COMBINED_ALL_FOUND_AND_UNEXPECTED, -100);
    //     sample.SetupCombinedTrace(-100, filters, /*leaveOutParent=*/true, false);
    bool SetupCombinedTrace(int traceNumber, const CDivBroParams& filters, bool leaveOutParent,
                            bool confirmedOnly);
    // Trace number of the diode-array TIC (or TAC) of the last diode-array function that has
    // one; 0 when none.
    int GetPDATIC();
    // Trace number of the first chromatogram of the first analog function that has one; 0 if none.
    int GetAnalog1();

    // Navigation by the numbers a report carries (SampleDataNavigation.cpp). Walks run over the
    // functions by index, their chromatograms by index and the chromatograms' peaks in order;
    // the first match wins. "Not found" is null, -1 or 0 as stated for each.
    int GetFunctionEntryWithNumber(int number); // -1 when none
    CFunctionData* GetFunctionWithNumber(int number);
    CFunctionData* GetFunctionContainingTrace(int trace); // null for negative numbers
    // Combined traces for -100..-102, null for other negative numbers, then functions' traces
    // before analog channels.
    CChromatoData* GetTrace(int trace);
    // The trace number of the first chromatogram of the function with that number whose
    // description is exactly description; 0 when none. Combined trace numbers pass unchanged.
    int GetTraceNum(int functionNumber, CString description);
    // Index of a chromatogram within the function at functionIndex; -1 when none.
    int GetChromatogramIndex(int functionIndex, int trace);
    int GetChromatogramIndex(int functionIndex, CString description);
    // Both traces exist and share a trace number in function of at least 1.
    bool SameTrace(int trace1, int trace2);
    // The first acquired spectrum with that peak identifier.
    CSpectrumData* GetCorrespondingSpectrum(int peakID);

    // Peaks and clusters. The "n-th peak" lookups count matching peaks from 0; the "n-th
    // chromatogram" lookups count chromatograms from 1; counters count each chromatogram once.
    CChromatogramPeak* GetCorispondingPeakInfo(int peakID, int n);
    // Within the given trace of the function with that number when both numbers are at least 1
    // and the function number does not exceed the function count; otherwise, or when that
    // function lacks the trace, the first peak with the identifier. Null for an identifier below 1.
    CChromatogramPeak* GetCorispondingPeakInfo(int peakID, int functionNumber, int trace);
    CChromatoData* GetCorispondingChroMatogram(int peakID, int n);
    int GetCorispondingChromatNumber(int peakID, int n); // 0 when none
    int GetNumberOfChroGraphs(int peakID);
    int GetNumberOfChroGraphsInCluster(int cluster);            // 1 for a cluster below 1
    int GetNumberOfSameTracesInCluster(int cluster, int trace); // 1, or -1 for a missing trace
    int GetTraceInCluster(int cluster, int n);                  // -1 when none
    int GetSameTraceInCluster(int cluster, int n, int trace);   // -1 when none
    int GetSamePeakInCluster(int cluster, int n, int trace);    // -1 when none
    // The cluster of the first peak with that identifier, -1 when none; trace has no effect.
    int RetrievePeakClusterNum(int peakID, int trace);

    // The widest time range over all chromatograms, seeded by the first chromatogram of the first
    // function. Returns 1.
    int GetMaxChromatogramRange(float& start, float& end);
    // Asks every function CFunctionData::IsPositive with the result index; flags collects the
    // functions' passed flags. 1 when any function answered non-zero.
    int IsPositive(int trace, int& flags, CString* text);
    int IsPositive(int trace);

    // Processing parameters of the "PARAMETERS" section.
    CParametersData* GetParameters() { return &m_Parameters; }
    const CParametersData* GetParameters() const { return &m_Parameters; }

    // Mass defect filter: reference masses and parameter values, in file order.
    const CDoubleArray* GetMDFMasses() const { return &m_MDFMasses; }
    const CDoubleArray* GetMDFParams() const { return &m_MDFParams; }

    // Section readers: each reads one nested section of the sample's block, from the line after
    // its header to the close of its block.
    int ReadCompound(CDelimitFile* file);          // rows of mass, formula, name; returns 1
    int ReadParameters(CDelimitFile* file);        // returns 1
    int ReadMDF(CDelimitFile* file);               // returns 0
    int ReadDiagnosticSection(CDelimitFile* file); // read and discarded; returns 1
    int ReadFunction(CDelimitFile* file);          // returns the new function's index
    int ReadFunctionAppend(CDelimitFile* file);    // returns the index of the function read into
    int ReadAnalog(CDelimitFile* file);            // returns the new channel's index

    // One "COMPOUND" row (mass, formula, name; each optional), appended to the compounds.
    int CompoundNewField(const CStringArray& row);
    // One "MASS DEFECT FILTER" row: a lone value is a reference mass, a label and a value are a
    // parameter. Returns 1.
    int MDFNewField(const CStringArray& row);

    // Elemental candidates (SampleDataElemental.cpp). ReadElemental hands the rows of one
    // "ELEMENTAL" section to the first metabolite that is not expected and has no candidates yet,
    // then marks that metabolite and the sample as having candidates; with no such metabolite the
    // section is passed over. Returns 1.
    int ReadElemental(CDelimitFile* file);
    // Writes the block of the n-th metabolite after the expected ones (n from 1): a header line and
    // one row per candidate of positive mass, or nothing between the braces when that metabolite
    // is missing, expected or without candidates. Returns 1.
    int WriteElementalComposition(CDelimitFile* file, int n);

    // Area totals and percentages (SampleDataAreas.cpp), over the low-energy metabolites before
    // the first MS/MS correlation metabolite that have a trace and a peak. Totals are kept per
    // group (expected, unexpected) and detector kind (MS for any kind but diode array and analog).
    // DetermineAreaTotals sums the peaks' absolute areas. CalculateMetabolitePercentAreas then
    // gives each peak its share of its group and kind (RelativeArea) and each found metabolite's
    // peak its share of the found ones (AreaPercentTotal; found peaks of 300 and 100 beside an
    // unfound one of 100 get 60, 20, 20 and 75, 25, 0). With applyFilters, metabolites the browser
    // parameters reject keep their share but get no found share.
    void DetermineAreaTotals();
    void CalculateMetabolitePercentAreas(bool applyFilters);
    double GetAreaTotal(bool expected, TRACE_TYPE kind) const;

    // The browser's list of MS/MS correlation metabolites in entry order (SampleDataMSMSList.cpp);
    // returns the number of rows.
    int GetMSMSMetaboliteList(CArray<CMSMSMetabolite>& list);

private:
    static CChromatoData EmptyCombinedTrace();
    // Stores one header field; 1 for a header identifier, 0 for any other.
    int NewField(const CStringArray& input, int id);
    // Moves metabolite i into the sorted block of low-energy expected metabolites (by found m/z,
    // ascending; equal masses keep it behind them). Nothing happens for i at or before the end of
    // that block.
    void SetMetaboliteAsExpected(int index);
    // Hands a nested section to its reader by the section's identifier.
    int NewParagraph(CDelimitFile* file, int id);

    // Header.
    int m_nNumber = 0;
    CString m_strFileName;
    CString m_strWell;
    CString m_strPlateDescription;
    CVialRef m_VialRef;
    CString m_strType;
    CString m_strID;
    CString m_strDescription;
    CString m_strProcessParameters;
    CString m_strInletFileName;
    CString m_strMSMethodFileName;
    CString m_strMSTuneFileName;
    CString m_strInjectionVolume;
    CString m_strSubjectTime;
    CString m_strSubjectText;
    CString m_strSubjectParent = "Unknown";
    double m_dConcentration = 0.0;
    CString m_strDate;
    CString m_strTime;
    bool m_bLockSprayEnabled = true;
    bool m_bMUXEnabled = false;
    CString m_strProcessingTime;
    CString m_strProcessingInfo;
    CString m_strProcessingWarning;
    CString m_strJobCode;
    CString m_strTaskCode;
    CString m_strUserName;
    CString m_strLabName;
    CString m_strInstrument;
    CString m_strConditions;
    CString m_strSubmitter;

    // The metabolite rows' lookups go through an index of the sample's peaks (see CPeakIndex):
    // the one of the Read in progress, built at its first metabolite row after the acquisition
    // sections and dropped when a function section follows; otherwise own, built here.
    const CPeakIndex& ReadingPeakIndex(CPeakIndex& own);
    int MSMetaboliteNewField(const CStringArray& row, bool expected, const CPeakIndex& index);

    // State.
    CPeakIndex* m_pReadingPeakIndex = nullptr; // set only while Read runs
    int m_nFileEntry = 0;
    unsigned long m_ulFilePosStart = 0;
    unsigned long m_ulFilePosEnd = 0;
    CDivBroParams* m_pParams = nullptr;
    CSampleData* m_pControlSample = nullptr;
    bool m_bDuplicate = false;
    bool m_bExpectedMetabolitesValid = false;
    bool m_bUnexpectedMetabolitesValid = false;
    bool m_bMSMSMetabolitesValid = false;
    BYTE m_byMSMSModeDisplay = 0;
    bool m_bElementalEnabled = false;
    bool m_bMoleculeEnabled = false;
    int m_nMoleculeDimensions = -1;
    int m_nExpectedMetaboliteLastEntry = -1;
    int m_nHighEnergyExpectedCount = 0;
    int m_nHighEnergyUnexpectedCount = 0;
    int m_nInternalStandardEntry = -1;
    double m_dInternalStandardArea = 0.0;
    int m_nMSMSCorrelationFirstEntry = 0;
    int m_nNumParentMasses = 0;
    int m_nCurrentFragment = -1;
    int m_nCurrentNeutralLoss = -1;

    // Owned sections.
    CArray<CCompoundData> m_Compounds;
    CParametersData m_Parameters;
    CDoubleArray m_MDFMasses;
    CDoubleArray m_MDFParams;
    CArray<CFunctionData> m_Functions;
    CArray<CChromatoData> m_AnalogChannels;
    CArray<CMetaboliteData> m_Metabolites;
    int m_nUnexpectedMetaboliteLastEntry = -1;
    int m_nMSMSMetaboliteLastEntry = -1;
    int m_nMSMetaboliteCount = 0; // expected and unexpected rows appended so far
    int m_nMSMSRowsStored = 0;
    int m_nNextCompoundNumber = 0;
    double m_dMaxParentMass = 0.0;
    CMSMSCorrelation m_MSMSCorrelation;
    // The combined traces numbered -100, -101 and -102, in that order.
    CChromatoData m_CombinedTraces[3] = {EmptyCombinedTrace(), EmptyCombinedTrace(),
                                         EmptyCombinedTrace()};
    int m_nCombinedTraceType = COMBINED_EXPECTED_FOUND;
    CFragmentAnalysis m_FragmentAnalysis;
    // Metabolite area totals by group (expected, unexpected) and detector kind (MS, diode array,
    // analog).
    double m_AreaTotals[2][3] = {};
};

} // namespace quillon
