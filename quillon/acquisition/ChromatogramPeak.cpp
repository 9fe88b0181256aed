#include <quillon/acquisition/ChromatogramPeak.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CChromatogramPeak, CObject)

namespace {

// Field identifiers of a "PEAK" section.
enum PeakField {
    kPeakID = 0,
    kPeakClusterID = 1,
    kTime = 2,
    kPeakExtentTimes = 3,
    kPeakExtentIntensities = 4,
    kAreaAbs = 5,
    kHeight = 6,
    kWidth = 7,
    kPeakRef = 8,
};

} // namespace

void CChromatogramPeak::SetPeakID(const CString& text) {
    m_PeakID = ParseInt(text);
}

void CChromatogramPeak::SetPeakClusterID(const CString& text) {
    m_PeakClusterID = ParseInt(text);
}

void CChromatogramPeak::SetPeakRef(const CString& text) {
    m_PeakRef = ParseInt(text);
}

void CChromatogramPeak::SetTime(const CString& text) {
    SetTime(ParseDouble(text));
}

void CChromatogramPeak::SetAreaAbs(const CString& text) {
    SetAreaAbs(ParseDouble(text));
}

void CChromatogramPeak::SetRelativeArea(const CString& text) {
    m_RelativeArea = ParseDouble(text);
}

void CChromatogramPeak::SetAreaPercentTotal(const CString& text) {
    m_AreaPercentTotal = static_cast<float>(ParseDouble(text));
}

void CChromatogramPeak::SetHeight(const CString& text) {
    m_Height = static_cast<float>(ParseDouble(text));
}

void CChromatogramPeak::SetWidth(const CString& text) {
    m_Width = static_cast<float>(ParseDouble(text));
}

void CChromatogramPeak::SetConfirmationTest(int result, const char* text) {
    m_ConfirmationTest = result;
    m_ConfirmationText = text ? text : "";
}

int CChromatogramPeak::GetConfirmationTest(CString* text) const {
    if (text)
        *text = m_ConfirmationText;
    return m_ConfirmationTest;
}

void CChromatogramPeak::GetPeakAnnotationLabel(CString& label) const {
    label.Format("%d", m_PeakClusterID);
}

int CChromatogramPeak::Read(CDelimitFile* file) {
    CFileRecord record;
    return Read(file, record);
}

int CChromatogramPeak::Read(CDelimitFile* file, CFileRecord& record) {
    record.AddField("Peak ID", kPeakID);
    record.AddField("Peak Cluster ID", kPeakClusterID);
    record.AddField("Time", kTime);
    record.AddField("Peak", kPeakExtentTimes);
    record.AddField("Intensity", kPeakExtentIntensities);
    record.AddField("Height", kHeight);
    record.AddField("AreaAbs", kAreaAbs);
    record.AddField("Width", kWidth);
    record.AddField("Peak Ref", kPeakRef);
    while (record.Read(file)) {
        if (record.GetType() == RECORD_FIELD)
            NewField(*record.GetInput(), record.GetID());
    }
    return TRUE;
}

int CChromatogramPeak::NewField(const CStringArray& input, int id) {
    const CString& value = CFileRecord::FieldValue(input);
    // The extent lines carry two values each and are ignored when one is missing.
    const bool hasTwoValues = input.GetSize() >= 3;
    switch (id) {
    case kPeakID:
        SetPeakID(value);
        break;
    case kPeakClusterID:
        SetPeakClusterID(value);
        break;
    case kTime:
        SetTime(value);
        break;
    case kPeakExtentTimes:
        if (hasTwoValues) {
            m_PeakExtent.SetStartTime(ParseDouble(input[1]));
            m_PeakExtent.SetEndTime(ParseDouble(input[2]));
        }
        break;
    case kPeakExtentIntensities:
        if (hasTwoValues) {
            m_PeakExtent.SetStartIntensity(static_cast<float>(ParseDouble(input[1])));
            m_PeakExtent.SetEndIntensity(static_cast<float>(ParseDouble(input[2])));
        }
        break;
    case kAreaAbs:
        SetAreaAbs(value);
        break;
    case kHeight:
        SetHeight(value);
        break;
    case kWidth:
        SetWidth(value);
        break;
    case kPeakRef:
        SetPeakRef(value);
        break;
    default:
        break;
    }
    return TRUE;
}

} // namespace quillon
