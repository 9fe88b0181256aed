#pragma once

#include <quillon/acquisition/FloatArray.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

class CDelimitFile;
class CFileRecord;

// The peak-finding and spectrum-thresholding settings under which a sample's data were
// processed, as a sample's "PARAMETERS" section states them. Read only: nothing writes them back.
class CParametersData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CParametersData)

public:
    // Every member at its default: empty texts and lists, zero numbers.
    CParametersData() = default;
    CParametersData(const CParametersData& source) = default;
    CParametersData(CParametersData&& source) = default;
    CParametersData& operator=(const CParametersData& source) = default;
    CParametersData& operator=(CParametersData&& source) = default;
    ~CParametersData() override = default;

    CString PeakFindMode() const { return m_strPeakFindMode; }
    void PeakFindModeSet(const CString& mode) { m_strPeakFindMode = mode; }
    float PeakFindWindow() const { return m_fPeakFindWindow; }
    void PeakFindWindowSet(float window) { m_fPeakFindWindow = window; }
    CString SpectrumThresholdMode() const { return m_strSpectrumThresholdMode; }
    void SpectrumThresholdModeSet(const CString& mode) { m_strSpectrumThresholdMode = mode; }
    float SpectrumThreshold() const { return m_fSpectrumThreshold; }
    void SpectrumThresholdSet(float threshold) { m_fSpectrumThreshold = threshold; }
    // The adduct lists come out and go in as independent copies.
    CFloatArray PositiveAdducts() const { return m_PositiveAdducts; }
    void PositiveAdductsSet(const CFloatArray& adducts) { m_PositiveAdducts = adducts; }
    CFloatArray NegativeAdducts() const { return m_NegativeAdducts; }
    void NegativeAdductsSet(const CFloatArray& adducts) { m_NegativeAdducts = adducts; }
    float PeakFindThreshold() const { return m_fPeakFindThreshold; }
    void PeakFindThresholdSet(float threshold) { m_fPeakFindThreshold = threshold; }
    int SigPeaks() const { return m_nSigPeaks; }
    void SigPeaksSet(int count) { m_nSigPeaks = count; }

    // Reads the fields of a "PARAMETERS" section from the file's current position to the close
    // of the section's block. Fields that do not appear keep their values. Returns TRUE.
    int Read(CDelimitFile* file);
    // The same with a record on which the caller has registered the field names.
    int Read(CDelimitFile* file, CFileRecord& record);

private:
    // Applies one field line (name first, then its values); FALSE when the line has no value or
    // the identifier is not one of the section's fields.
    int NewField(const CStringArray& input, int id);

    CString m_strPeakFindMode;
    float m_fPeakFindWindow = 0.0f;
    CString m_strSpectrumThresholdMode;
    float m_fSpectrumThreshold = 0.0f;
    CFloatArray m_PositiveAdducts;
    CFloatArray m_NegativeAdducts;
    float m_fPeakFindThreshold = 0.0f;
    int m_nSigPeaks = 0;
};

} // namespace quillon
