#pragma once

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/acquisition/SpectrumData.h>
#include <quillon/acquisition/TraceType.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

class CDelimitFile;
class CFileRecord;

// One acquisition function of a sample, read from a "FUNCTION" section: its acquisition settings,
// its spectra, a second list of filtered spectra that only callers fill, and its chromatogram
// traces. It classifies itself as a mass-spectrometry, diode-array or analog function and stamps
// that kind and its number on every chromatogram it reads.
class CFunctionData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CFunctionData)

public:
    CFunctionData();
    CFunctionData(const CFunctionData& source);
    CFunctionData(CFunctionData&& source) noexcept;
    CFunctionData& operator=(const CFunctionData& source);
    CFunctionData& operator=(CFunctionData&& source) noexcept;
    ~CFunctionData() override;

    // Reads a "FUNCTION" section, adding to what the function already holds; the two-argument
    // form uses a record the caller prepared. Both return TRUE.
    int Read(CDelimitFile* file);
    int Read(CDelimitFile* file, CFileRecord& record);
    // Functions are not written back: TRUE exactly when file is not null.
    int Write(CDelimitFile* file) const { return file != nullptr ? TRUE : FALSE; }

    int GetNumber() const { return m_number; }
    void SetNumber(int number) { m_number = number; }
    void GetIonMode(CString& ionMode) const { ionMode = m_ionMode; }
    void SetIonMode(const CString& ionMode) { m_ionMode = ionMode; }
    // SetType and SetDescription do not reclassify the function; only reading does.
    void GetType(CString& type) const { type = m_type; }
    void SetType(const CString& type) { m_type = type; }
    void GetDescription(CString& description) const { description = m_description; }
    void SetDescription(const CString& description) { m_description = description; }
    int GetConeVoltage() const { return m_coneVoltage; }
    void SetConeVoltage(const CString& text);
    double GetCollisionEnergy() const { return m_collisionEnergy; }
    void SetCollisionEnergy(const CString& text);
    void GetScanCycleTime(double& time) const { time = m_scanCycleTime; }
    void SetScanCycleTime(const CString& text);
    void GetInterScanDelay(double& delay) const { delay = m_interScanDelay; }
    void SetInterScanDelay(const CString& text);
    // The scan cycle time less the inter-scan delay.
    void GetScanDuration(double& duration) const { duration = m_scanCycleTime - m_interScanDelay; }

    TRACE_TYPE GetTraceType() const { return m_traceType; }
    bool IsMS() const { return m_traceType == MS_TRACE; }
    bool IsPDA() const { return m_traceType == PDA_TRACE; }
    bool IsAnalog() const { return m_traceType == ANALOG_TRACE; }

    // Spectra. The default-adding form returns the number of spectra afterwards, the copying form
    // the index of the copy (in the filtered list when filtered is set).
    int AddSpectrum();
    int AddSpectrum(const CSpectrumData& spectrum, bool filtered);
    int GetNumSpectra(bool filtered) const;
    // The spectrum at index of the chosen list; null outside it.
    CSpectrumData* GetSpectrum(int index, bool filtered);
    // The last acquired spectrum; null when there is none.
    CSpectrumData* GetSpectrum();
    // Index of the first spectrum of the chosen list with that peak identifier, -1 when none. The
    // search never goes beyond the number of acquired spectra, even in the filtered list.
    int GetSpectrumWithPeakID(int peakID, bool filtered);
    void ClearFilteredSpectra() { m_filteredSpectra.RemoveAll(); }

    // Chromatograms. The default-adding form returns the count afterwards, the copying form the
    // index of the copy.
    int AddChromatogram();
    int AddChromatogram(const CChromatoData& chromatogram);
    int GetNumChromatogram() const { return m_chromatograms.GetSize(); }
    // The chromatogram at index; null outside the list.
    CChromatoData* GetChromatogram(int index);
    // The last chromatogram; null when there is none.
    CChromatoData* GetChromatogram();
    // The first chromatogram with that trace number; null when none.
    CChromatoData* GetTrace(int traceNumber);

    // "n:" (when withNumber is non-zero), the type and the ion mode, run together.
    CString GetFunctionText(int withNumber) const;
    // The scan range of a description such as "Scan (100:900)": the numbers after the first "("
    // and after the first ":". Returns TRUE.
    int GetFunctionRange(int& start, int& end) const;
    // Asks every acquired spectrum CSpectrumData::IsPositive; passed collects the spectra's passed
    // flags. TRUE when any spectrum answered TRUE.
    int IsPositive(int index, int& passed, CString* message) const;
    int IsPositive(int index) const;

private:
    void Initialise(const CFunctionData* source);

    int NewField(const CStringArray& input, int id);
    int NewParagraph(CDelimitFile* file, int id);
    int ReadSpectrum(CDelimitFile* file);
    int ReadChromatogram(CDelimitFile* file);
    int ReadChromatogramAppend(CDelimitFile* file);
    // Classifies the function from its description and type as read so far.
    TRACE_TYPE SetTraceType();
    // Gives a new trace the chart parameters of this function's kind.
    void InitialiseCustomChartParams(CSpectrumData* spectrum) const;
    void InitialiseCustomChartParams(CChromatoData* chromatogram) const;
    CString ChartParamsText(bool diodeArray) const;

    TRACE_TYPE m_traceType = MS_TRACE;
    int m_number = 0;
    CString m_ionMode;
    CString m_type;
    CString m_description;
    int m_coneVoltage = 0;
    double m_collisionEnergy = 0.0;
    double m_scanCycleTime = 0.0;
    double m_interScanDelay = 0.0;
    CArray<CSpectrumData> m_spectra;
    CArray<CSpectrumData> m_filteredSpectra;
    CArray<CChromatoData> m_chromatograms;
};

} // namespace quillon
