#pragma once

#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/acquisition/PeakData.h>
#include <quillon/acquisition/PeakList.h>
#include <quillon/acquisition/PointArray.h>
#include <quillon/acquisition/TraceType.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

// One chromatogram trace: its time-intensity points (a point's mass is its retention time), the
// integrated peaks found on it, and its descriptive and chart settings. A function creates one per
// "CHROMATOGRAM" section and stamps it with the function's number and trace kind; the combined
// traces of a sample are chromatograms too, marked by the function number -100.
class CChromatoData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CChromatoData)

public:
    // The function number that marks a combined trace.
    static constexpr int kCombinedTraceFunctionNumber = -100;

    CChromatoData() { Initialise(nullptr); }
    // Copies carry everything except the printed flag, which stays the copy's own. A move is the
    // same trace changing place (as when its list grows) and carries the flag too.
    CChromatoData(const CChromatoData& source) { Initialise(&source); }
    CChromatoData(CChromatoData&& source) noexcept { MoveFrom(source); }
    CChromatoData& operator=(const CChromatoData& source);
    CChromatoData& operator=(CChromatoData&& source) noexcept;

    // Resets the trace to its defaults (no points, no peaks) when given no source, or makes it a
    // copy of the source.
    void Initialise(const CChromatoData* source);

    // Descriptive settings.
    const CString& GetDescription() const { return m_Description; }
    void SetDescription(const CString& description) { m_Description = description; }
    const CString& GetProcDesc() const { return m_ProcDesc; }
    void SetProcDesc(const CString& procDesc) { m_ProcDesc = procDesc; }
    // The maximum intensity as the report states it.
    void GetMaxIntensity(float& maxIntensity) const { maxIntensity = m_MaxIntensity; }
    void SetMaxintensity(float maxIntensity) { m_MaxIntensity = maxIntensity; }
    void SetMaxintensity(const CString& text);
    int GetTraceNumber() const { return m_TraceNumber; }
    int GetTraceNumberInFunction() const { return m_TraceNumberInFunction; }
    int GetFunctionNumber() const { return m_FunctionNumber; }
    void SetFunctionNumber(int number) { m_FunctionNumber = number; }
    // Marks the trace as a combined trace with the given trace number.
    void SetCombinedTraceNumber(int traceNumber);

    TRACE_TYPE GetTraceType() const { return m_TraceType; }
    void SetTraceType(TRACE_TYPE type) { m_TraceType = type; }
    bool IsMS() const { return m_TraceType == MS_TRACE; }
    bool IsPDA() const { return m_TraceType == PDA_TRACE; }
    bool IsAnalog() const { return m_TraceType == ANALOG_TRACE; }
    // A total ion (or absorbance) current trace: the description holds "TIC" or "TAC".
    bool IsTIC() const;
    // A mass trace: not analog, and the description after its last ":" is a number above 0.
    bool IsMassChromatogram() const;

    int GetHasPrinted() const { return m_HasPrinted; }
    void SetHasPrinted(int printed) { m_HasPrinted = printed; }
    // A combined trace whose points still have to be built.
    bool CombinedTraceNeedsData() const { return m_CombinedTraceNeedsData; }
    void CombinedTraceNeedsData(bool needsData) { m_CombinedTraceNeedsData = needsData; }

    // Chart settings. With custom parameters in use, the intensities of point lines read from a
    // report are percentages of the maximum intensity.
    const CString& GetCustomChartParams() const { return m_CustomChartParams; }
    void SetCustomChartParams(const CString& params) { m_CustomChartParams = params; }
    int UseCustomChartParams() const { return m_UsesCustomChartParams; }
    bool UseDefaultChartParams() const { return !m_UsesCustomChartParams; }
    void SetUsesCustomChartParams(int uses) { m_UsesCustomChartParams = uses; }
    // Chart properties read from the parameter text by the host's chart settings.
    void GetCustomUnits(CString& units) const;
    int GetCustomYDecimalDigits() const;
    int GetCustomHeaderDecimalDigits() const;
    float GetCustomOffset() const;
    float GetCustomScaling() const;
    int GetCustomUseScientificNotation() const;
    // The maximum intensity in chart units: divided by the scaling, plus the offset.
    float GetScaledMaxIntensity() const;

    // Points. AddTimeIntensity appends count points (FALSE when a pointer is null; nothing is added
    // for a count below 1); SetTimeIntensity replaces all points by count points.
    int AddTimeIntensity(const float* times, const float* intensities, int count);
    bool SetTimeIntensity(const float* times, const float* intensities, int count);
    // Copies point index into point; FALSE for an index outside the list.
    BOOL GetPeak(int index, CPeakData& point) const;
    int GetNumPeaks() const { return m_Points.GetSize(); }
    // The points themselves, time and intensity side by side, for callers that view them in place
    // (valid while the trace is neither changed nor destroyed).
    const TPointArray<float>& GetPoints() const { return m_Points; }

    // Chromatogram peaks. Each add returns the index of the peak.
    int AddChromatogramPeak();
    int AddChromatogramPeak(const CChromatogramPeak& peak);
    int AddChromatogramPeak(CChromatogramPeak&& peak);
    // With addDuplicate set, always appends a copy; without it, a peak whose identifier is already
    // listed is not added again and the listed one's index is returned.
    int AddChromatogramPeak(const CChromatogramPeak& peak, bool addDuplicate);
    void ClearChromatogramPeaks() { m_ChromatogramPeaks.RemoveAll(); }
    // The peak at the index; null outside the list.
    CChromatogramPeak* GetChromatPeakData(int index);
    const CChromatogramPeak* GetChromatPeakData(int index) const;
    int GetNumberOfListPeaks() const { return m_ChromatogramPeaks.GetSize(); }

    // Ranges. GetDataRange gives the lowest and highest time (a low of 0 counts as unset);
    // GetIntensityRange gives the lowest and highest intensity of the points with from <= time <=
    // to and returns their number. Both return values start at 0.
    int GetDataRange(float& low, float& high) const;
    int GetIntensityRange(float from, float to, float& low, float& high) const;

    // The highest point in the window from..to (every point when to is not above from): its
    // intensity and time, and the time of the lowest point, which is searched from the starting
    // value 100 (or the scaled maximum intensity with custom chart parameters), so a valley is
    // only found below it. The lowest intensity itself is always returned as 0. Returns TRUE.
    int GetMaxIntensity(float& highest, float& lowest, float& timeOfHighest, float& timeOfLowest,
                        float from, float to) const;
    // Of the points at *index - 1 and *index, the one nearer to time (a missing point counts as
    // time 0, intensity 0); moves *index back when the earlier one is strictly nearer.
    CPeakData GetNearestPeak(int* index, float time) const;
    // Orders the chromatogram peaks by the absolute value of their time (stable), then cuts each
    // pair of overlapping neighbours at the valley between their apexes and updates their widths.
    void SortChromatogramPeaks();
    // Fills the times and intensities of the points inside the extent's time span (ends included)
    // and returns their number.
    int GetPeakData(CArray<float>& times, CArray<float>& intensities,
                    const CPeakList& extent) const;

    // Reads a "CHROMATOGRAM" section, adding to the points and peaks already held; returns TRUE.
    int Read(CDelimitFile* file);
    // Reads on with a record that a caller has already taken into the section (for instance to
    // learn from its first line which trace it continues), up to the end of the section's block.
    // The chromatogram's field and section names are registered on the record first.
    int Read(CDelimitFile* file, CFileRecord& record);
    // Chromatograms are not written back to a report: returns TRUE exactly when a file is given.
    BOOL Write(CDelimitFile* file) const { return file != nullptr; }

private:
    void MoveFrom(CChromatoData& source) noexcept;
    int NewField(const CStringArray& input, int id);
    int NewParagraph(CDelimitFile* file, int id);
    // Reads the point lines of a "TRACE" section.
    int MSRead(CDelimitFile* file);

    bool m_CombinedTraceNeedsData = false;
    TRACE_TYPE m_TraceType = MS_TRACE;
    TPointArray<float> m_Points;
    CArray<CChromatogramPeak> m_ChromatogramPeaks;
    CString m_Description;
    CString m_ProcDesc;
    float m_MaxIntensity = 0.0f;
    int m_TraceNumber = -1;
    int m_TraceNumberInFunction = -1;
    int m_FunctionNumber = -1;
    int m_HasPrinted = 0; // callers' own flag: neither reset nor copied, only moved
    CString m_CustomChartParams;
    int m_UsesCustomChartParams = 0;
};

} // namespace quillon
