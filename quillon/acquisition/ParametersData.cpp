#include <quillon/acquisition/ParametersData.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CParametersData, CObject)

namespace {

enum ParameterField {
    kPeakFindMode = 0,
    kPeakFindWindow = 1,
    kSpectrumThresholdMode = 2,
    kSpectrumThreshold = 3,
    kPositiveAdducts = 4,
    kNegativeAdducts = 5,
    kPeakFindThreshold = 6,
    kSigPeaks = 7,
};

// Every value of the line after its name, each converted by the C library's atof rules.
void AssignNumbers(CFloatArray& target, const CStringArray& input) {
    const int count = input.GetSize() - 1;
    target.SetSize(count);
    for (int i = 0; i < count; ++i)
        target[i] = static_cast<float>(ParseDouble(input[i + 1]));
}

} // namespace

int CParametersData::Read(CDelimitFile* file) {
    CFileRecord record;
    record.AddField("PeakFindMode", kPeakFindMode);
    record.AddField("PeakFindWindow", kPeakFindWindow);
    record.AddField("SpectrumThresholdMode", kSpectrumThresholdMode);
    record.AddField("SpectrumThreshold", kSpectrumThreshold);
    record.AddField("PositiveAdducts", kPositiveAdducts);
    record.AddField("NegativeAdducts", kNegativeAdducts);
    record.AddField("PeakFindThreshold", kPeakFindThreshold);
    record.AddField("SigPeaks", kSigPeaks);
    return Read(file, record);
}

int CParametersData::Read(CDelimitFile* file, CFileRecord& record) {
    while (record.Read(file)) {
        if (record.GetType() == RECORD_FIELD)
            NewField(*record.GetInput(), record.GetID());
    }
    return TRUE;
}

int CParametersData::NewField(const CStringArray& input, int id) {
    if (input.GetSize() < 2)
        return FALSE;
    const CString& value = input[1];
    switch (id) {
    case kPeakFindMode:
        m_strPeakFindMode = value;
        break;
    case kPeakFindWindow:
        m_fPeakFindWindow = static_cast<float>(ParseDouble(value));
        break;
    case kSpectrumThresholdMode:
        m_strSpectrumThresholdMode = value;
        break;
    case kSpectrumThreshold:
        m_fSpectrumThreshold = static_cast<float>(ParseDouble(value));
        break;
    case kPositiveAdducts:
        AssignNumbers(m_PositiveAdducts, input);
        break;
    case kNegativeAdducts:
        AssignNumbers(m_NegativeAdducts, input);
        break;
    case kPeakFindThreshold:
        m_fPeakFindThreshold = static_cast<float>(ParseDouble(value));
        break;
    case kSigPeaks:
        m_nSigPeaks = ParseInt(value);
        break;
    default:
        return FALSE;
    }
    return TRUE;
}

} // namespace quillon
