#pragma once

#include <quillon/acquisition/PeakList.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

// An integrated peak of a chromatogram, read from a "PEAK" section inside a chromatogram: its
// identifiers, apex time, areas, height, width, confirmation test and extent. The peak owns its
// extent, so a copy carries an extent of its own.
class CChromatogramPeak : public CObject {
    QUILLON_DECLARE_DYNAMIC(CChromatogramPeak)

public:
    CChromatogramPeak() = default;

    int GetPeakID() const { return m_PeakID; }
    void SetPeakID(int id) { m_PeakID = id; }
    void SetPeakID(const CString& text);
    int GetPeakClusterID() const { return m_PeakClusterID; }
    void SetPeakClusterID(int id) { m_PeakClusterID = id; }
    void SetPeakClusterID(const CString& text);
    int GetPeakRef() const { return m_PeakRef; }
    void SetPeakRef(int ref) { m_PeakRef = ref; }
    void SetPeakRef(const CString& text);

    float GetTime() const { return m_Time; }
    void SetTime(double time) { m_Time = static_cast<float>(time); }
    void SetTime(const CString& text);
    float GetAreaAbs() const { return m_AreaAbs; }
    void SetAreaAbs(double area) { m_AreaAbs = static_cast<float>(area); }
    void SetAreaAbs(const CString& text);
    double GetRelativeArea() const { return m_RelativeArea; }
    void SetRelativeArea(double area) { m_RelativeArea = area; }
    void SetRelativeArea(const CString& text);
    float GetAreaPercentTotal() const { return m_AreaPercentTotal; }
    void SetAreaPercentTotal(float percent) { m_AreaPercentTotal = percent; }
    void SetAreaPercentTotal(const CString& text);
    float GetHeight() const { return m_Height; }
    void SetHeight(float height) { m_Height = height; }
    void SetHeight(const CString& text);
    float GetWidth() const { return m_Width; }
    void SetWidth(float width) { m_Width = width; }
    void SetWidth(const CString& text);

    // The extent of the peak (start and end time and intensity); never null.
    CPeakList* GetChromatPeakData() { return &m_PeakExtent; }
    const CPeakList* GetChromatPeakData() const { return &m_PeakExtent; }

    // The confirmation test: a result (-1 when never tested, 0 when failed) and its text; a null
    // text stores "".
    void SetConfirmationTest(int result, const char* text);
    // Copies the test's text into *text when given; returns the result.
    int GetConfirmationTest(CString* text) const;
    // TRUE exactly when the test result is 0; an untested peak has not failed.
    BOOL HasTestFailed(CString* text) const { return !GetConfirmationTest(text); }

    // The label the chart puts at the peak: the cluster identifier.
    void GetPeakAnnotationLabel(CString& label) const;

    // Reads the fields of a "PEAK" section; returns TRUE. The second form reads on with a record
    // the caller has already taken into the section, registering the peak's field names on it.
    int Read(CDelimitFile* file);
    int Read(CDelimitFile* file, CFileRecord& record);
    // Peaks are not written back to a report: returns TRUE exactly when a file is given.
    BOOL Write(CDelimitFile* file) const { return file != nullptr; }

private:
    int NewField(const CStringArray& input, int id);

    int m_PeakID = 0;
    int m_PeakClusterID = 0;
    int m_PeakRef = 0;
    float m_Time = 0.0f;
    float m_AreaAbs = 0.0f;
    float m_AreaPercentTotal = 0.0f;
    double m_RelativeArea = 0.0;
    float m_Height = 0.0f;
    float m_Width = 0.0f;
    int m_ConfirmationTest = -1;
    CString m_ConfirmationText;
    CPeakList m_PeakExtent;
};

} // namespace quillon
