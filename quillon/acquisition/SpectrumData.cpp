#include <quillon/acquisition/SpectrumData.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/ChartSettings.h>
#include <quillon/platform/NumberConversion.h>
#include <quillon/platform/Numbers.h>

#include <cmath>
#include <cstdlib>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CSpectrumData, CObject)

namespace {

// Identifiers of the fields and nested paragraphs of a "SPECTRUM" paragraph.
enum SpectrumItem {
    kProcess = 0,
    kBPI = 1,
    kTrace = 2,
    kState = 3,
    kPeak = 4,
    kIntensity = 5,
    kTraceNumber = 6,
    kDesc = 7,
    kTIC = 8,
    kBPM = 9,
    kContinuum = 10,
    kPeakID = 11,
    kPeakClusterID = 12,
    kControlPeakID = 13,
    kPeakRef = 14,
    kTime = 15,
    kProcDesc = 16,
    kMasses = 17,
    kResults = 18,
    kMS = 19,
};

} // namespace

CSpectrumData::CSpectrumData() {
    Initialise(nullptr);
}

CSpectrumData::CSpectrumData(const CSpectrumData& source) : CObject() {
    Initialise(&source);
}

CSpectrumData::CSpectrumData(CSpectrumData&& source) noexcept : CObject() {
    MoveFrom(source);
}

CSpectrumData& CSpectrumData::operator=(const CSpectrumData& source) {
    if (this != &source)
        Initialise(&source);
    return *this;
}

CSpectrumData& CSpectrumData::operator=(CSpectrumData&& source) noexcept {
    if (this != &source)
        MoveFrom(source);
    return *this;
}

CSpectrumData::~CSpectrumData() = default;

void CSpectrumData::Initialise(const CSpectrumData* source) {
    if (source == nullptr) {
        m_process = 0;
        m_traceNumber = -1;
        m_bpi = 0.0f;
        m_bpm = 0.0f;
        m_tic = 0.0f;
        m_trace.Empty();
        m_state.Empty();
        m_procDesc.Empty();
        m_continuum = 0;
        m_peakID = 0;
        m_peakClusterID = 0;
        m_peakRef = 0;
        m_controlPeakID = 0;
        m_time = 0.0f;
        m_customChartParams.Empty();
        m_usesCustomChartParams = 0;
        m_peakExtent = CPeakList(0.0, 0.0, 0.0, 0.0);
        m_points.RemoveAll();
        m_masses.RemoveAll();
        m_results.RemoveAll();
        return;
    }
    m_process = source->m_process;
    m_traceNumber = source->m_traceNumber;
    m_bpi = source->m_bpi;
    m_bpm = source->m_bpm;
    m_tic = source->m_tic;
    m_trace = source->m_trace;
    m_state = source->m_state;
    m_procDesc = source->m_procDesc;
    m_continuum = source->m_continuum;
    m_peakID = source->m_peakID;
    m_peakClusterID = source->m_peakClusterID;
    m_peakRef = source->m_peakRef;
    m_controlPeakID = source->m_controlPeakID;
    m_time = source->m_time;
    m_customChartParams = source->m_customChartParams;
    m_usesCustomChartParams = source->m_usesCustomChartParams;
    m_peakExtent = source->m_peakExtent;
    m_points = source->m_points;
    m_masses = source->m_masses;
    m_results = source->m_results;
}

void CSpectrumData::MoveFrom(CSpectrumData& source) {
    m_process = source.m_process;
    m_traceNumber = source.m_traceNumber;
    m_bpi = source.m_bpi;
    m_bpm = source.m_bpm;
    m_tic = source.m_tic;
    m_trace = std::move(source.m_trace);
    m_state = std::move(source.m_state);
    m_procDesc = std::move(source.m_procDesc);
    m_continuum = source.m_continuum;
    m_peakID = source.m_peakID;
    m_peakClusterID = source.m_peakClusterID;
    m_peakRef = source.m_peakRef;
    m_controlPeakID = source.m_controlPeakID;
    m_time = source.m_time;
    m_customChartParams = std::move(source.m_customChartParams);
    m_usesCustomChartParams = source.m_usesCustomChartParams;
    m_peakExtent = source.m_peakExtent;
    m_points = std::move(source.m_points);
    m_masses = std::move(source.m_masses);
    m_results = std::move(source.m_results);
    m_desc = std::move(source.m_desc);
    m_hasPrinted = source.m_hasPrinted;
}

void CSpectrumData::SetTraceNumber(const CString& text) {
    m_traceNumber = ParseInt(text);
}

void CSpectrumData::SetBPI(const CString& text) {
    m_bpi = static_cast<float>(ParseDouble(text));
}

void CSpectrumData::SetBPM(const CString& text) {
    m_bpm = static_cast<float>(ParseDouble(text));
}

void CSpectrumData::SetContinuum(const CString& text) {
    m_continuum = text == "TRUE" ? 1 : 0;
}

void CSpectrumData::SetPeakID(const CString& text) {
    m_peakID = ParseInt(text);
}

void CSpectrumData::SetPeakClusterID(const CString& text) {
    m_peakClusterID = ParseInt(text);
}

void CSpectrumData::SetPeakRef(const CString& text) {
    m_peakRef = ParseInt(text);
}

void CSpectrumData::SetControlPeakID(const CString& text) {
    m_controlPeakID = ParseInt(text);
}

void CSpectrumData::SetTime(const CString& text) {
    m_time = static_cast<float>(ParseDouble(text));
}

void CSpectrumData::GetPeakAnnotationLabel(CString& label) const {
    label.Format("%d", m_peakClusterID);
}

void CSpectrumData::GetCustomUnits(CString& units) const {
    units = GetChartSettings().GetCustomChartUnits(m_customChartParams);
}

int CSpectrumData::GetCustomYDecimalDigits() const {
    return GetChartSettings().GetCustomChartVerticalAxisDecimalDigits(m_customChartParams);
}

float CSpectrumData::GetCustomOffset() const {
    return GetChartSettings().GetCustomChartOffset(m_customChartParams);
}

float CSpectrumData::GetCustomScaling() const {
    return GetChartSettings().GetCustomChartScaling(m_customChartParams);
}

int CSpectrumData::GetCustomUseScientificNotation() const {
    return GetChartSettings().GetCustomChartUseScientificNotation(m_customChartParams);
}

BOOL CSpectrumData::AddMassIntensity(const float* masses, const float* intensities, int count) {
    if (masses == nullptr || intensities == nullptr)
        return FALSE;
    if (count < 1)
        return TRUE;
    for (int i = 0; i < count; ++i)
        m_points.Add(TPointPair<double>(masses[i], intensities[i]));
    return TRUE;
}

int CSpectrumData::AddPeak() {
    return m_points.Add(TPointPair<double>());
}

int CSpectrumData::AddPeak(const CPeakData& peak) {
    return m_points.Add(TPointPair<double>(peak));
}

BOOL CSpectrumData::GetPeak(int index, CPeakData& peak) const {
    if (index < 0 || index >= m_points.GetSize())
        return FALSE;
    peak = m_points[index].ToPeakData();
    return TRUE;
}

int CSpectrumData::AddMasses() {
    return m_masses.Add(CMassesData());
}

int CSpectrumData::AddMasses(const CMassesData& masses) {
    return m_masses.Add(masses);
}

int CSpectrumData::AddResults() {
    return m_results.Add(CResultsData());
}

int CSpectrumData::AddResults(const CResultsData& results) {
    return m_results.Add(results);
}

BOOL CSpectrumData::GetResults(int index, CResultsData& results) const {
    if (index < 0 || index >= m_results.GetSize())
        return FALSE;
    results = m_results[index];
    return TRUE;
}

int CSpectrumData::GetMassIntensity(float* masses, float* intensities, int start, int count,
                                    double limit) const {
    if (count < 1 || start < 0)
        return 0;
    int copied = 0;
    for (int i = start; i < m_points.GetSize() && copied < count; ++i) {
        const TPointPair<double>& point = m_points[i];
        if (limit > 0.0 && point.GetMass() > limit)
            break;
        if (masses != nullptr)
            masses[copied] = static_cast<float>(point.GetMass());
        if (intensities != nullptr)
            intensities[copied] = static_cast<float>(point.GetIntensity());
        ++copied;
    }
    return copied;
}

BOOL CSpectrumData::GetDataRange(int& low, int& high) const {
    low = 0;
    high = 0;
    for (const TPointPair<double>& point : m_points) {
        // A mass that is not a number is passed over; one beyond the int range counts as its end.
        if (std::isnan(point.GetMass()))
            continue;
        const int floorMass = ClampToInt(std::floor(point.GetMass()));
        const int ceilMass = ClampToInt(std::ceil(point.GetMass()));
        if (low == 0 || floorMass < low)
            low = floorMass;
        if (ceilMass > high)
            high = ceilMass;
    }
    return TRUE;
}

BOOL CSpectrumData::GetMaxIntensity(float& highest, float& lowest, int from, int to) const {
    highest = 0.0f;
    lowest = 0.0f;
    const bool windowed = to > from;
    for (const TPointPair<double>& point : m_points) {
        if (windowed) {
            if (point.GetMass() < from)
                continue;
            if (point.GetMass() > to)
                break;
        }
        const float intensity = static_cast<float>(point.GetIntensity());
        if (intensity > highest)
            highest = intensity;
        if (intensity < lowest)
            lowest = intensity;
    }
    return TRUE;
}

int CSpectrumData::IsPositive(int index, int& passed, CString* message) const {
    passed = 0;
    const int first = index < 0 ? 0 : index;
    const int last = index < 0 ? m_results.GetSize() - 1 : index;
    bool found = false;
    for (int i = first; i <= last; ++i) {
        if (i >= m_results.GetSize())
            return FALSE;
        const CResultsData& result = m_results[i];
        if (result.GetFound() == 0)
            continue;
        found = true;
        CString testText;
        if (!result.HasTestFailed(&testText)) {
            passed = 1;
        } else if (message != nullptr && message->Find(testText) < 0) {
            if (!message->IsEmpty())
                *message += ",";
            *message += testText;
        }
    }
    if (found)
        return TRUE;
    passed = 0;
    return FALSE;
}

int CSpectrumData::IsPositive(int index) const {
    int passed = 0;
    return IsPositive(index, passed, nullptr);
}

int CSpectrumData::Read(CDelimitFile* file) {
    CFileRecord record;
    record.AddField("Process", kProcess);
    record.AddField("BPI", kBPI);
    record.AddField("Trace", kTrace);
    record.AddField("State", kState);
    record.AddField("Peak", kPeak);
    record.AddField("Intensity", kIntensity);
    record.AddField("TraceNumber", kTraceNumber);
    record.AddField("Desc", kDesc);
    record.AddField("TIC", kTIC);
    record.AddField("BPM", kBPM);
    record.AddField("ProcDesc", kProcDesc);
    record.AddField("Continuum", kContinuum);
    record.AddField("Peak ID", kPeakID);
    record.AddField("Peak Ref", kPeakRef);
    record.AddField("Peak Cluster ID", kPeakClusterID);
    record.AddField("Control Peak ID", kControlPeakID);
    record.AddField("Time", kTime);
    record.AddParagraph("MASSES", kMasses);
    record.AddParagraph("RESULTS", kResults);
    record.AddParagraph("MS", kMS);
    return Read(file, record);
}

int CSpectrumData::Read(CDelimitFile* file, CFileRecord& record) {
    record.ReadEach(
        file, [this](const CStringArray& input, int id) { NewField(input, id); },
        [this](CDelimitFile* section, int id) { NewParagraph(section, id); });
    return TRUE;
}

int CSpectrumData::NewField(const CStringArray& input, int id) {
    const CString& value = CFileRecord::FieldValue(input);
    switch (id) {
    case kProcess:
        m_process = ParseInt(value);
        break;
    case kBPI:
        m_bpi = static_cast<float>(ParseDouble(value));
        break;
    case kTrace:
        m_trace = value;
        break;
    case kState:
        m_state = value;
        break;
    case kPeak:
        if (input.GetSize() >= 3) {
            m_peakExtent.SetStartTime(ParseDouble(input[1]));
            m_peakExtent.SetEndTime(ParseDouble(input[2]));
        }
        break;
    case kIntensity:
        if (input.GetSize() >= 3) {
            m_peakExtent.SetStartIntensity(static_cast<float>(ParseDouble(input[1])));
            m_peakExtent.SetEndIntensity(static_cast<float>(ParseDouble(input[2])));
        }
        break;
    case kTraceNumber:
        m_traceNumber = ParseInt(value);
        break;
    case kDesc:
        m_desc = value;
        break;
    case kTIC:
        m_tic = static_cast<float>(ParseDouble(value));
        break;
    case kBPM:
        m_bpm = static_cast<float>(ParseDouble(value));
        break;
    case kContinuum:
        SetContinuum(CString(value));
        break;
    case kPeakID:
        m_peakID = ParseInt(value);
        break;
    case kPeakClusterID:
        m_peakClusterID = ParseInt(value);
        break;
    case kControlPeakID:
        m_controlPeakID = ParseInt(value);
        break;
    case kPeakRef:
        m_peakRef = ParseInt(value);
        break;
    case kTime:
        m_time = static_cast<float>(ParseDouble(value));
        break;
    case kProcDesc:
        m_procDesc = value;
        break;
    default:
        break;
    }
    return TRUE;
}

int CSpectrumData::NewParagraph(CDelimitFile* file, int id) {
    switch (id) {
    case kMS:
        ReadPoints(file);
        break;
    case kMasses:
        ReadLines(file, &CSpectrumData::MassesNewField);
        break;
    case kResults:
        ReadLines(file, &CSpectrumData::ResultsNewField);
        break;
    default:
        break;
    }
    return TRUE;
}

void CSpectrumData::ReadLines(CDelimitFile* file,
                              void (CSpectrumData::*handler)(const CStringArray&)) {
    CFileRecord record;
    while (record.Read(file) == 1) {
        if (record.GetType() == RECORD_FIELD)
            (this->*handler)(*record.GetInput());
    }
}

void CSpectrumData::ReadPoints(CDelimitFile* file) {
    // Points are read as floats, as the spectrum's point interface takes them; with custom chart
    // parameters in use, an intensity is a percentage of the base peak intensity.
    const int before = m_points.GetSize();
    CFileRecord record;
    record.ReadNumberPairs(file, [this](double mass, double intensity) {
        float scaled = static_cast<float>(intensity);
        if (m_usesCustomChartParams != 0)
            scaled = scaled * m_bpi * 0.01f;
        m_points.Add(TPointPair<double>(static_cast<float>(mass), scaled));
    });
    // As for a trace: trimmed when this section brought most of the points.
    if (m_points.GetSize() - before >= m_points.GetSize() / 2)
        m_points.FreeExtra();
}

void CSpectrumData::MassesNewField(const CStringArray& input) {
    if (input.GetSize() < 4)
        return;
    const bool isotope = input.GetSize() >= 7 && ParseInt(input[6]) > 0;
    m_masses.Add(CMassesData(ParseDouble(input[0]), ParseDouble(input[1]), ParseDouble(input[2]),
                             ParseDouble(input[3]), isotope));
}

void CSpectrumData::ResultsNewField(const CStringArray& input) {
    if (input.GetSize() < 4)
        return;
    CResultsData result;
    result.SetMono(ParseDouble(input[0]));
    result.SetFound(ParseInt(input[1]));
    result.SetPercentage(ParseDouble(input[2]));
    result.SetPurity(ParseDouble(input[3]));
    if (input.GetSize() >= 5 && (input[4].Find('0') >= 0 || input[4].Find('1') >= 0))
        result.SetConfirmationTest(ParseInt(input[4]),
                                   input.GetSize() >= 6 ? input[5].c_str() : nullptr);
    m_results.Add(std::move(result));
}

} // namespace quillon
