#pragma once

#include <quillon/acquisition/MassesData.h>
#include <quillon/acquisition/PeakData.h>
#include <quillon/acquisition/PeakList.h>
#include <quillon/acquisition/PointArray.h>
#include <quillon/acquisition/ResultsData.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

class CDelimitFile;
class CFileRecord;

// One spectrum of an acquisition function, read from a "SPECTRUM" paragraph: its mass-intensity
// points ("MS"), the extent of the chromatogram peak it was taken from, the identifiers that tie it
// to peaks and peak clusters, the masses sought in it ("MASSES") and their results ("RESULTS").
//
// Copies carry every member except the description and the printed mark: the target keeps the
// description it had, so a copy stored in a function carries an empty description. A move is the
// same spectrum changing place (as when its list grows) and carries everything.
class CSpectrumData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CSpectrumData)

public:
    CSpectrumData();
    CSpectrumData(const CSpectrumData& source);
    CSpectrumData(CSpectrumData&& source) noexcept;
    CSpectrumData& operator=(const CSpectrumData& source);
    CSpectrumData& operator=(CSpectrumData&& source) noexcept;
    ~CSpectrumData() override;

    // Reads the spectrum's paragraph; the two-argument form uses a record the caller prepared.
    // Both return TRUE.
    int Read(CDelimitFile* file);
    int Read(CDelimitFile* file, CFileRecord& record);
    // Spectra are not written back: TRUE exactly when file is not null.
    int Write(CDelimitFile* file) const { return file != nullptr ? TRUE : FALSE; }

    int GetProcess() const { return m_process; }
    void SetProcess(int process) { m_process = process; }
    int GetTraceNumber() const { return m_traceNumber; }
    void SetTraceNumber(int traceNumber) { m_traceNumber = traceNumber; }
    void SetTraceNumber(const CString& text);
    float GetBPI() const { return m_bpi; }
    void SetBPI(double bpi) { m_bpi = static_cast<float>(bpi); }
    void SetBPI(const CString& text);
    float GetBPM() const { return m_bpm; }
    void SetBPM(float bpm) { m_bpm = bpm; }
    void SetBPM(const CString& text);
    float GetTIC() const { return m_tic; }
    void SetTIC(float tic) { m_tic = tic; }
    void GetTrace(CString& trace) const { trace = m_trace; }
    void SetTrace(const CString& trace) { m_trace = trace; }
    void GetState(CString& state) const { state = m_state; }
    void SetState(const CString& state) { m_state = state; }
    void GetDesc(CString& desc) const { desc = m_desc; }
    void SetDesc(const CString& desc) { m_desc = desc; }
    void GetProcDesc(CString& procDesc) const { procDesc = m_procDesc; }
    void SetProcDesc(const CString& procDesc) { m_procDesc = procDesc; }
    int GetContinuum() const { return m_continuum; }
    void SetContinuum(int continuum) { m_continuum = continuum; }
    // 1 exactly when the text is "TRUE" (case matters), else 0.
    void SetContinuum(const CString& text);
    int GetPeakID() const { return m_peakID; }
    void SetPeakID(int peakID) { m_peakID = peakID; }
    void SetPeakID(const CString& text);
    int GetPeakClusterID() const { return m_peakClusterID; }
    void SetPeakClusterID(int peakClusterID) { m_peakClusterID = peakClusterID; }
    void SetPeakClusterID(const CString& text);
    int GetPeakRef() const { return m_peakRef; }
    void SetPeakRef(int peakRef) { m_peakRef = peakRef; }
    void SetPeakRef(const CString& text);
    int GetControlPeakID() const { return m_controlPeakID; }
    void SetControlPeakID(int controlPeakID) { m_controlPeakID = controlPeakID; }
    void SetControlPeakID(const CString& text);
    float GetTime() const { return m_time; }
    void SetTime(float time) { m_time = time; }
    void SetTime(const CString& text);
    int GetHasPrinted() const { return m_hasPrinted; }
    void SetHasPrinted(int hasPrinted) { m_hasPrinted = hasPrinted; }

    // The extent of the chromatogram peak the spectrum was taken from; owned by the spectrum.
    CPeakList* GetChromatPeakData() { return &m_peakExtent; }
    const CPeakList* GetChromatPeakData() const { return &m_peakExtent; }
    // The peak cluster identifier as text.
    void GetPeakAnnotationLabel(CString& label) const;

    // Chart parameters. With custom parameters in force, the intensities of "MS" lines are
    // percentages of the base peak intensity.
    void GetCustomChartParams(CString& params) const { params = m_customChartParams; }
    void SetCustomChartParams(const CString& params) { m_customChartParams = params; }
    int UseCustomChartParams() const { return m_usesCustomChartParams; }
    bool UseDefaultChartParams() const { return m_usesCustomChartParams == 0; }
    void SetUsesCustomChartParams(int uses) { m_usesCustomChartParams = uses; }
    void GetCustomUnits(CString& units) const;
    int GetCustomYDecimalDigits() const;
    float GetCustomOffset() const;
    float GetCustomScaling() const;
    int GetCustomUseScientificNotation() const;

    // Points. AddMassIntensity appends count points; FALSE for a null pointer, TRUE otherwise
    // (a count below 1 adds nothing).
    BOOL AddMassIntensity(const float* masses, const float* intensities, int count);
    // Append a default or a copied point; return its index.
    int AddPeak();
    int AddPeak(const CPeakData& peak);
    // Copies point index into peak; FALSE outside the list.
    BOOL GetPeak(int index, CPeakData& peak) const;
    int GetNumPeaks() const { return m_points.GetSize(); }
    // The points themselves, mass and intensity side by side, for callers that view them in place
    // (valid while the spectrum is neither changed nor destroyed).
    const TPointArray<double>& GetPoints() const { return m_points; }
    // Resizes the point list; new points are (0, 0).
    void SetNumPeaks(int count) { m_points.SetSize(count); }

    // Masses sought and their results.
    CArray<CMassesData>* MassesGet() { return &m_masses; }
    const CArray<CMassesData>* MassesGet() const { return &m_masses; }
    // Append a default or copied element; return its index.
    int AddMasses();
    int AddMasses(const CMassesData& masses);
    int AddResults();
    int AddResults(const CResultsData& results);
    int GetNumResults() const { return m_results.GetSize(); }
    // Copies result index into results; FALSE outside the list.
    BOOL GetResults(int index, CResultsData& results) const;

    // Copies up to count points from start on into the outputs (either may be null); with a limit
    // above 0 the first point heavier than the limit ends the copy. Returns the number copied.
    int GetMassIntensity(float* masses, float* intensities, int start, int count,
                         double limit) const;
    // Whole-number mass range of the points: floor of the lightest, ceiling of the heaviest (a low
    // of 0 counts as unset). A mass that is not a number is passed over; masses beyond the int
    // range count as its ends. Returns TRUE.
    BOOL GetDataRange(int& low, int& high) const;
    // Highest and lowest intensity, both starting at 0; with to above from only the masses from
    // from to to are looked at. Returns TRUE.
    BOOL GetMaxIntensity(float& highest, float& lowest, int from, int to) const;
    // Whether the result at index (every result when index is negative) was found. passed becomes
    // 1 when a found result also passed its confirmation test; the texts of failed tests are
    // collected into message (comma separated, each once) when it is given. An index outside the
    // results answers FALSE.
    int IsPositive(int index, int& passed, CString* message) const;
    int IsPositive(int index) const;

private:
    // Copies every member but the description and the printed mark from source, or sets the
    // defaults when source is null (the description is left as it is in both cases).
    void Initialise(const CSpectrumData* source);
    // Takes every member from source, the description and the printed mark included.
    void MoveFrom(CSpectrumData& source);

    int NewField(const CStringArray& input, int id);
    int NewParagraph(CDelimitFile* file, int id);
    // Reads the lines of a nested paragraph, handing each field line to handler.
    void ReadLines(CDelimitFile* file, void (CSpectrumData::*handler)(const CStringArray&));
    void ReadPoints(CDelimitFile* file);
    void MassesNewField(const CStringArray& input);
    void ResultsNewField(const CStringArray& input);

    int m_process = 0;
    int m_traceNumber = -1;
    float m_bpi = 0.0f;
    float m_bpm = 0.0f;
    float m_tic = 0.0f;
    CString m_trace;
    CString m_state;
    CString m_desc;
    CString m_procDesc;
    int m_continuum = 0;
    int m_peakID = 0;
    int m_peakClusterID = 0;
    int m_peakRef = 0;
    int m_controlPeakID = 0;
    float m_time = 0.0f;
    CString m_customChartParams;
    int m_usesCustomChartParams = 0;
    CPeakList m_peakExtent;
    TPointArray<double> m_points;
    CArray<CMassesData> m_masses;
    CArray<CResultsData> m_results;
    int m_hasPrinted = 0;
};

} // namespace quillon
