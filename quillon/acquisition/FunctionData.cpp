#include <quillon/acquisition/FunctionData.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/ChartSettings.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CFunctionData, CObject)

namespace {

// Identifiers of the fields and nested paragraphs of a "FUNCTION" section.
enum FunctionItem {
    kFunction = 0,
    kIonMode = 1,
    kType = 2,
    kDescription = 3,
    kConeVoltage = 4,
    kCollisionEnergy = 5,
    kScanCycleTime = 6,
    kInterScanDelay = 7,
    kSpectrum = 8,
    kChromatogram = 9,
    kChromatogramAppend = 10,
};

// Gives target the length of source and assigns each element from the source's element of the
// same index, so elements already there keep what assignment leaves alone (a spectrum's
// description, a trace's printed flag).
template <class T>
void AssignElementwise(CArray<T>& target, const CArray<T>& source) {
    target.SetSize(source.GetSize());
    for (int i = 0; i < source.GetSize(); ++i)
        target[i] = source[i];
}

} // namespace

CFunctionData::CFunctionData() {
    Initialise(nullptr);
}

CFunctionData::CFunctionData(const CFunctionData& source) : CObject() {
    Initialise(&source);
}

CFunctionData::CFunctionData(CFunctionData&& source) noexcept
    : CObject(), m_traceType(source.m_traceType), m_number(source.m_number),
      m_ionMode(std::move(source.m_ionMode)), m_type(std::move(source.m_type)),
      m_description(std::move(source.m_description)), m_coneVoltage(source.m_coneVoltage),
      m_collisionEnergy(source.m_collisionEnergy), m_scanCycleTime(source.m_scanCycleTime),
      m_interScanDelay(source.m_interScanDelay), m_spectra(std::move(source.m_spectra)),
      m_filteredSpectra(std::move(source.m_filteredSpectra)),
      m_chromatograms(std::move(source.m_chromatograms)) {}

CFunctionData& CFunctionData::operator=(const CFunctionData& source) {
    if (this != &source)
        Initialise(&source);
    return *this;
}

CFunctionData& CFunctionData::operator=(CFunctionData&& source) noexcept {
    if (this != &source) {
        m_traceType = source.m_traceType;
        m_number = source.m_number;
        m_ionMode = std::move(source.m_ionMode);
        m_type = std::move(source.m_type);
        m_description = std::move(source.m_description);
        m_coneVoltage = source.m_coneVoltage;
        m_collisionEnergy = source.m_collisionEnergy;
        m_scanCycleTime = source.m_scanCycleTime;
        m_interScanDelay = source.m_interScanDelay;
        m_spectra = std::move(source.m_spectra);
        m_filteredSpectra = std::move(source.m_filteredSpectra);
        m_chromatograms = std::move(source.m_chromatograms);
    }
    return *this;
}

CFunctionData::~CFunctionData() = default;

void CFunctionData::Initialise(const CFunctionData* source) {
    if (source == nullptr) {
        m_number = 0;
        m_coneVoltage = 0;
        m_traceType = MS_TRACE;
        m_ionMode.Empty();
        m_type.Empty();
        m_description.Empty();
        m_collisionEnergy = 0.0;
        m_scanCycleTime = 0.0;
        m_interScanDelay = 0.0;
        return;
    }
    m_traceType = source->m_traceType;
    m_number = source->m_number;
    m_ionMode = source->m_ionMode;
    m_type = source->m_type;
    m_description = source->m_description;
    m_coneVoltage = source->m_coneVoltage;
    m_collisionEnergy = source->m_collisionEnergy;
    m_scanCycleTime = source->m_scanCycleTime;
    m_interScanDelay = source->m_interScanDelay;
    AssignElementwise(m_spectra, source->m_spectra);
    AssignElementwise(m_filteredSpectra, source->m_filteredSpectra);
    AssignElementwise(m_chromatograms, source->m_chromatograms);
}

void CFunctionData::SetConeVoltage(const CString& text) {
    m_coneVoltage = ParseInt(text);
}

void CFunctionData::SetCollisionEnergy(const CString& text) {
    m_collisionEnergy = ParseDouble(text);
}

void CFunctionData::SetScanCycleTime(const CString& text) {
    m_scanCycleTime = ParseDouble(text);
}

void CFunctionData::SetInterScanDelay(const CString& text) {
    m_interScanDelay = ParseDouble(text);
}

int CFunctionData::AddSpectrum() {
    m_spectra.Add(CSpectrumData());
    return m_spectra.GetSize();
}

int CFunctionData::AddSpectrum(const CSpectrumData& spectrum, bool filtered) {
    return filtered ? m_filteredSpectra.Add(spectrum) : m_spectra.Add(spectrum);
}

int CFunctionData::GetNumSpectra(bool filtered) const {
    return filtered ? m_filteredSpectra.GetSize() : m_spectra.GetSize();
}

CSpectrumData* CFunctionData::GetSpectrum(int index, bool filtered) {
    CArray<CSpectrumData>& list = filtered ? m_filteredSpectra : m_spectra;
    if (index < 0 || index >= list.GetSize())
        return nullptr;
    return &list[index];
}

CSpectrumData* CFunctionData::GetSpectrum() {
    return m_spectra.IsEmpty() ? nullptr : &m_spectra[m_spectra.GetUpperBound()];
}

int CFunctionData::GetSpectrumWithPeakID(int peakID, bool filtered) {
    // Bounded by the acquired list whichever list is searched.
    for (int i = 0; i < m_spectra.GetSize(); ++i) {
        const CSpectrumData* spectrum = GetSpectrum(i, filtered);
        if (spectrum != nullptr && spectrum->GetPeakID() == peakID)
            return i;
    }
    return -1;
}

int CFunctionData::AddChromatogram() {
    m_chromatograms.Add(CChromatoData());
    return m_chromatograms.GetSize();
}

int CFunctionData::AddChromatogram(const CChromatoData& chromatogram) {
    return m_chromatograms.Add(chromatogram);
}

CChromatoData* CFunctionData::GetChromatogram(int index) {
    if (index < 0 || index >= m_chromatograms.GetSize())
        return nullptr;
    return &m_chromatograms[index];
}

CChromatoData* CFunctionData::GetChromatogram() {
    return m_chromatograms.IsEmpty() ? nullptr : &m_chromatograms[m_chromatograms.GetUpperBound()];
}

CChromatoData* CFunctionData::GetTrace(int traceNumber) {
    for (CChromatoData& chromatogram : m_chromatograms) {
        if (chromatogram.GetTraceNumber() == traceNumber)
            return &chromatogram;
    }
    return nullptr;
}

CString CFunctionData::GetFunctionText(int withNumber) const {
    CString prefix;
    if (withNumber != 0)
        prefix.Format("%i:", m_number);
    CString text;
    text.Format("%s%s%s", prefix.c_str(), m_type.c_str(), m_ionMode.c_str());
    return text;
}

int CFunctionData::GetFunctionRange(int& start, int& end) const {
    start = 0;
    end = 0;
    // A missing character gives position -1, and the text from position 0 is converted.
    start = ParseInt(m_description.Mid(m_description.Find('(') + 1));
    end = ParseInt(m_description.Mid(m_description.Find(':') + 1));
    return TRUE;
}

int CFunctionData::IsPositive(int index, int& passed, CString* message) const {
    passed = 0;
    int positive = FALSE;
    for (const CSpectrumData& spectrum : m_spectra) {
        int spectrumPassed = 0;
        if (spectrum.IsPositive(index, spectrumPassed, message)) {
            passed |= spectrumPassed;
            positive = TRUE;
        }
    }
    return positive;
}

int CFunctionData::IsPositive(int index) const {
    int passed = 0;
    return IsPositive(index, passed, nullptr);
}

int CFunctionData::Read(CDelimitFile* file) {
    CFileRecord record;
    record.AddField("Function", kFunction);
    record.AddField("IonMode", kIonMode);
    record.AddField("Type", kType);
    record.AddField("Description", kDescription);
    record.AddField("ConeVoltage", kConeVoltage);
    record.AddField("CollisionEnergy", kCollisionEnergy);
    record.AddField("ScanCycleTime", kScanCycleTime);
    record.AddField("InterScanDelay", kInterScanDelay);
    record.AddParagraph("SPECTRUM", kSpectrum);
    record.AddParagraph("CHROMATOGRAM", kChromatogram);
    record.AddParagraph("CHROMATOGRAM_APPEND", kChromatogramAppend);
    return Read(file, record);
}

int CFunctionData::Read(CDelimitFile* file, CFileRecord& record) {
    record.ReadEach(
        file, [this](const CStringArray& input, int id) { NewField(input, id); },
        [this](CDelimitFile* section, int id) { NewParagraph(section, id); });
    return TRUE;
}

int CFunctionData::NewField(const CStringArray& input, int id) {
    const CString& value = CFileRecord::FieldValue(input);
    switch (id) {
    case kFunction:
        m_number = ParseInt(value);
        break;
    case kIonMode:
        m_ionMode = value;
        break;
    case kType:
        m_type = value;
        SetTraceType();
        break;
    case kDescription:
        m_description = value;
        SetTraceType();
        break;
    case kConeVoltage:
        m_coneVoltage = ParseInt(value);
        break;
    case kCollisionEnergy:
        m_collisionEnergy = ParseDouble(value);
        break;
    case kScanCycleTime:
        m_scanCycleTime = ParseDouble(value);
        break;
    case kInterScanDelay:
        m_interScanDelay = ParseDouble(value);
        break;
    default:
        break;
    }
    return TRUE;
}

TRACE_TYPE CFunctionData::SetTraceType() {
    if (m_description.Find("ANALOG") >= 0)
        m_traceType = ANALOG_TRACE;
    else if (m_type.Find("PDA") >= 0 || m_type.Find("DAD") >= 0 || m_type.Find("Diode") >= 0)
        m_traceType = PDA_TRACE;
    else
        m_traceType = MS_TRACE;
    return m_traceType;
}

CString CFunctionData::ChartParamsText(bool diodeArray) const {
    const CChartSettings& settings = GetChartSettings();
    return diodeArray ? settings.GetCustomChartDADParams()
                      : settings.GetDefaultCustomChartParams(m_description);
}

void CFunctionData::InitialiseCustomChartParams(CSpectrumData* spectrum) const {
    if (spectrum == nullptr)
        return;
    const bool diodeArray = m_traceType == PDA_TRACE;
    spectrum->SetUsesCustomChartParams(diodeArray ? 1 : 0);
    spectrum->SetCustomChartParams(ChartParamsText(diodeArray));
}

void CFunctionData::InitialiseCustomChartParams(CChromatoData* chromatogram) const {
    if (chromatogram == nullptr)
        return;
    const bool diodeArray = m_traceType == PDA_TRACE;
    chromatogram->SetUsesCustomChartParams(diodeArray ? 1 : 0);
    chromatogram->SetCustomChartParams(ChartParamsText(diodeArray));
}

int CFunctionData::NewParagraph(CDelimitFile* file, int id) {
    switch (id) {
    case kSpectrum:
        return ReadSpectrum(file);
    case kChromatogram:
        return ReadChromatogram(file);
    case kChromatogramAppend:
        return ReadChromatogramAppend(file);
    default:
        return TRUE;
    }
}

int CFunctionData::ReadSpectrum(CDelimitFile* file) {
    CSpectrumData spectrum;
    InitialiseCustomChartParams(&spectrum);
    spectrum.Read(file);
    // Stored as a copy would be, without its description; moved so the points are not copied.
    spectrum.SetDesc(CString());
    return m_spectra.Add(std::move(spectrum));
}

int CFunctionData::ReadChromatogram(CDelimitFile* file) {
    // Read in place at the end of the list, so the points are never copied.
    const int index = m_chromatograms.Add(CChromatoData());
    CChromatoData& chromatogram = m_chromatograms[index];
    InitialiseCustomChartParams(&chromatogram);
    chromatogram.Read(file);
    chromatogram.SetFunctionNumber(m_number);
    chromatogram.SetTraceType(m_traceType);
    return index;
}

int CFunctionData::ReadChromatogramAppend(CDelimitFile* file) {
    // The first line of the block names the trace to continue (its last element). The look-up
    // record has then taken the block's "{", so the chromatogram reads on with that same record
    // to the block's end.
    // An empty block has closed already: reading on would take the lines that follow it.
    CFileRecord lookup;
    int traceNumber = 0;
    const bool blockOpen = lookup.Read(file) == 1;
    if (blockOpen) {
        const CStringArray& input = *lookup.GetInput();
        if (!input.IsEmpty())
            traceNumber = ParseInt(input[input.GetUpperBound()]);
    }
    CChromatoData* chromatogram = GetTrace(traceNumber);
    if (chromatogram == nullptr)
        chromatogram = &m_chromatograms[m_chromatograms.Add(CChromatoData())];
    if (blockOpen)
        chromatogram->Read(file, lookup);
    chromatogram->SetFunctionNumber(m_number);
    chromatogram->SetTraceType(m_traceType);
    return TRUE;
}

} // namespace quillon
