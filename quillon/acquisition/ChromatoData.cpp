#include <quillon/acquisition/ChromatoData.h>

#include <quillon/platform/ChartSettings.h>
#include <quillon/platform/Numbers.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <type_traits>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CChromatoData, CObject)

// A function's array of traces moves them when it grows; their points are never copied.
static_assert(std::is_nothrow_move_constructible_v<CChromatoData>);
static_assert(std::is_nothrow_move_constructible_v<CChromatogramPeak>);

namespace {

// Field and section identifiers of a "CHROMATOGRAM" section.
enum ChromatogramField {
    kDescription = 0,
    kMaxIntensity = 1,
    kTraceNumber = 2,
    kTraceNumberInFunction = 3,
    kProcDesc = 4,
    kCustomChartParameters = 5,
    kTraceSection = 6,
    kPeakSection = 7,
};

// Point intensities of traces with custom chart parameters are stored in the report as
// percentages of the trace's maximum intensity.
constexpr float kPercent = 0.01f;

// Where a valley search starts when the trace has no custom chart parameters.
constexpr float kDefaultValleyCeiling = 100.0f;

} // namespace

CChromatoData& CChromatoData::operator=(const CChromatoData& source) {
    if (this != &source)
        Initialise(&source);
    return *this;
}

CChromatoData& CChromatoData::operator=(CChromatoData&& source) noexcept {
    if (this != &source)
        MoveFrom(source);
    return *this;
}

void CChromatoData::Initialise(const CChromatoData* source) {
    if (source == nullptr) {
        m_CombinedTraceNeedsData = false;
        m_TraceType = MS_TRACE;
        m_Points.SetSize(0);
        m_ChromatogramPeaks.SetSize(0);
        m_Description.Empty();
        m_ProcDesc.Empty();
        m_MaxIntensity = 0.0f;
        m_TraceNumber = -1;
        m_TraceNumberInFunction = -1;
        m_FunctionNumber = -1;
        m_CustomChartParams = GetChartSettings().GetDefaultCustomChartParams("");
        m_UsesCustomChartParams = 0;
        return;
    }
    m_CombinedTraceNeedsData = source->m_CombinedTraceNeedsData;
    m_TraceType = source->m_TraceType;
    m_Points = source->m_Points;
    m_ChromatogramPeaks = source->m_ChromatogramPeaks;
    m_Description = source->m_Description;
    m_ProcDesc = source->m_ProcDesc;
    m_MaxIntensity = source->m_MaxIntensity;
    m_TraceNumber = source->m_TraceNumber;
    m_TraceNumberInFunction = source->m_TraceNumberInFunction;
    m_FunctionNumber = source->m_FunctionNumber;
    m_CustomChartParams = source->m_CustomChartParams;
    m_UsesCustomChartParams = source->m_UsesCustomChartParams;
}

void CChromatoData::MoveFrom(CChromatoData& source) noexcept {
    m_CombinedTraceNeedsData = source.m_CombinedTraceNeedsData;
    m_TraceType = source.m_TraceType;
    m_Points = std::move(source.m_Points);
    m_ChromatogramPeaks = std::move(source.m_ChromatogramPeaks);
    m_Description = std::move(source.m_Description);
    m_ProcDesc = std::move(source.m_ProcDesc);
    m_MaxIntensity = source.m_MaxIntensity;
    m_TraceNumber = source.m_TraceNumber;
    m_TraceNumberInFunction = source.m_TraceNumberInFunction;
    m_FunctionNumber = source.m_FunctionNumber;
    m_CustomChartParams = std::move(source.m_CustomChartParams);
    m_UsesCustomChartParams = source.m_UsesCustomChartParams;
    m_HasPrinted = source.m_HasPrinted;
}

void CChromatoData::SetMaxintensity(const CString& text) {
    m_MaxIntensity = static_cast<float>(ParseDouble(text));
}

void CChromatoData::SetCombinedTraceNumber(int traceNumber) {
    m_FunctionNumber = kCombinedTraceFunctionNumber;
    m_TraceNumber = traceNumber;
}

bool CChromatoData::IsTIC() const {
    return m_Description.Find("TIC") >= 0 || m_Description.Find("TAC") >= 0;
}

bool CChromatoData::IsMassChromatogram() const {
    if (m_TraceType == ANALOG_TRACE)
        return false;
    // Mid clamps a start of 0 (no ":") to the whole description.
    const CString mass = m_Description.Mid(m_Description.ReverseFind(':') + 1);
    return ParseInt(mass) > 0;
}

void CChromatoData::GetCustomUnits(CString& units) const {
    units = GetChartSettings().GetCustomChartUnits(m_CustomChartParams);
}

int CChromatoData::GetCustomYDecimalDigits() const {
    return GetChartSettings().GetCustomChartVerticalAxisDecimalDigits(m_CustomChartParams);
}

int CChromatoData::GetCustomHeaderDecimalDigits() const {
    return GetChartSettings().GetCustomChartHeaderDecimalDigits(m_CustomChartParams);
}

float CChromatoData::GetCustomOffset() const {
    return GetChartSettings().GetCustomChartOffset(m_CustomChartParams);
}

float CChromatoData::GetCustomScaling() const {
    return GetChartSettings().GetCustomChartScaling(m_CustomChartParams);
}

int CChromatoData::GetCustomUseScientificNotation() const {
    return GetChartSettings().GetCustomChartUseScientificNotation(m_CustomChartParams);
}

float CChromatoData::GetScaledMaxIntensity() const {
    return m_MaxIntensity / GetCustomScaling() + GetCustomOffset();
}

int CChromatoData::AddTimeIntensity(const float* times, const float* intensities, int count) {
    if (times == nullptr || intensities == nullptr)
        return FALSE;
    if (count < 1)
        return TRUE;
    for (int i = 0; i < count; ++i)
        m_Points.Add(TPointPair<float>(times[i], intensities[i]));
    return TRUE;
}

bool CChromatoData::SetTimeIntensity(const float* times, const float* intensities, int count) {
    if (times == nullptr || intensities == nullptr)
        return false;
    m_Points.SetSize(count);
    for (int i = 0; i < count; ++i)
        m_Points[i] = TPointPair<float>(times[i], intensities[i]);
    return true;
}

BOOL CChromatoData::GetPeak(int index, CPeakData& point) const {
    if (index < 0 || index >= m_Points.GetSize())
        return FALSE;
    point = m_Points[index].ToPeakData();
    return TRUE;
}

int CChromatoData::AddChromatogramPeak() {
    return m_ChromatogramPeaks.Add(CChromatogramPeak());
}

int CChromatoData::AddChromatogramPeak(const CChromatogramPeak& peak) {
    return m_ChromatogramPeaks.Add(peak);
}

int CChromatoData::AddChromatogramPeak(CChromatogramPeak&& peak) {
    return m_ChromatogramPeaks.Add(std::move(peak));
}

int CChromatoData::AddChromatogramPeak(const CChromatogramPeak& peak, bool addDuplicate) {
    if (!addDuplicate) {
        for (int i = 0; i < m_ChromatogramPeaks.GetSize(); ++i) {
            if (m_ChromatogramPeaks[i].GetPeakID() == peak.GetPeakID())
                return i;
        }
    }
    return m_ChromatogramPeaks.Add(peak);
}

CChromatogramPeak* CChromatoData::GetChromatPeakData(int index) {
    if (index < 0 || index >= m_ChromatogramPeaks.GetSize())
        return nullptr;
    return &m_ChromatogramPeaks[index];
}

const CChromatogramPeak* CChromatoData::GetChromatPeakData(int index) const {
    if (index < 0 || index >= m_ChromatogramPeaks.GetSize())
        return nullptr;
    return &m_ChromatogramPeaks[index];
}

int CChromatoData::GetDataRange(float& low, float& high) const {
    low = 0.0f;
    high = 0.0f;
    for (const TPointPair<float>& point : m_Points) {
        const float time = static_cast<float>(point.GetMass());
        if (low == 0.0f || time < low)
            low = time;
        if (time > high)
            high = time;
    }
    return TRUE;
}

int CChromatoData::GetIntensityRange(float from, float to, float& low, float& high) const {
    low = 0.0f;
    high = 0.0f;
    int inside = 0;
    for (const TPointPair<float>& point : m_Points) {
        const float time = static_cast<float>(point.GetMass());
        if (time < from || time > to)
            continue;
        const float intensity = static_cast<float>(point.GetIntensity());
        if (intensity >= high)
            high = intensity;
        if (low == 0.0f || intensity < low)
            low = intensity;
        ++inside;
    }
    return inside;
}

int CChromatoData::GetMaxIntensity(float& highest, float& lowest, float& timeOfHighest,
                                   float& timeOfLowest, float from, float to) const {
    highest = 0.0f;
    lowest = m_UsesCustomChartParams ? GetScaledMaxIntensity() : kDefaultValleyCeiling;
    timeOfHighest = timeOfLowest = (from + to) * 0.5f;

    const bool windowed = to > from;
    for (const TPointPair<float>& point : m_Points) {
        const float time = static_cast<float>(point.GetMass());
        if (windowed && time < from)
            continue;
        if (windowed && time > to)
            break;
        const float intensity = static_cast<float>(point.GetIntensity());
        if (intensity > highest) {
            highest = intensity;
            timeOfHighest = time;
        }
        if (intensity < lowest) {
            lowest = intensity;
            timeOfLowest = time;
        }
    }
    // Callers only use the time of the valley, never its depth.
    lowest = 0.0f;
    return TRUE;
}

CPeakData CChromatoData::GetNearestPeak(int* index, float time) const {
    if (index == nullptr)
        return CPeakData();
    CPeakData before;
    CPeakData at;
    GetPeak(*index - 1, before);
    GetPeak(*index, at);
    if (std::fabs(time - before.GetMass()) < std::fabs(time - at.GetMass())) {
        --*index;
        return before;
    }
    return at;
}

void CChromatoData::SortChromatogramPeaks() {
    const int count = m_ChromatogramPeaks.GetSize();
    if (count < 2)
        return;
    std::stable_sort(m_ChromatogramPeaks.begin(), m_ChromatogramPeaks.end(),
                     [](const CChromatogramPeak& a, const CChromatogramPeak& b) {
                         return std::fabs(a.GetTime()) < std::fabs(b.GetTime());
                     });

    for (int i = 0; i + 1 < count; ++i) {
        CChromatogramPeak& first = m_ChromatogramPeaks[i];
        CChromatogramPeak& second = m_ChromatogramPeaks[i + 1];
        CPeakList& firstExtent = *first.GetChromatPeakData();
        CPeakList& secondExtent = *second.GetChromatPeakData();
        if (!(secondExtent.GetStartTime() < firstExtent.GetEndTime()))
            continue;
        float highest, lowest, timeOfHighest, timeOfValley;
        GetMaxIntensity(highest, lowest, timeOfHighest, timeOfValley, std::fabs(first.GetTime()),
                        std::fabs(second.GetTime()));
        firstExtent.SetEndTime(timeOfValley);
        secondExtent.SetStartTime(timeOfValley);
        first.SetWidth(static_cast<float>(firstExtent.GetEndTime() - firstExtent.GetStartTime()));
        second.SetWidth(
            static_cast<float>(secondExtent.GetEndTime() - secondExtent.GetStartTime()));
    }
}

int CChromatoData::GetPeakData(CArray<float>& times, CArray<float>& intensities,
                               const CPeakList& extent) const {
    times.RemoveAll();
    intensities.RemoveAll();
    for (const TPointPair<float>& point : m_Points) {
        const double time = point.GetMass();
        if (time < extent.GetStartTime() || time > extent.GetEndTime())
            continue;
        times.Add(static_cast<float>(time));
        intensities.Add(static_cast<float>(point.GetIntensity()));
    }
    return times.GetSize();
}

int CChromatoData::Read(CDelimitFile* file) {
    CFileRecord record;
    return Read(file, record);
}

int CChromatoData::Read(CDelimitFile* file, CFileRecord& record) {
    record.AddField("Description", kDescription);
    record.AddField("ProcDesc", kProcDesc);
    record.AddField("MaxIntensity", kMaxIntensity);
    record.AddField("TraceNumber", kTraceNumber);
    record.AddField("TraceNumberInFunction", kTraceNumberInFunction);
    record.AddField("CustomChartParameters", kCustomChartParameters);
    record.AddParagraph("TRACE", kTraceSection);
    record.AddParagraph("PEAK", kPeakSection);
    record.ReadEach(
        file, [this](const CStringArray& input, int id) { NewField(input, id); },
        [this](CDelimitFile* section, int id) { NewParagraph(section, id); });
    return TRUE;
}

int CChromatoData::NewField(const CStringArray& input, int id) {
    const CString& value = CFileRecord::FieldValue(input);
    switch (id) {
    case kDescription:
        m_Description = value;
        break;
    case kProcDesc:
        m_ProcDesc = value;
        break;
    case kMaxIntensity:
        SetMaxintensity(value);
        break;
    case kTraceNumber:
        m_TraceNumber = ParseInt(value);
        break;
    case kTraceNumberInFunction:
        m_TraceNumberInFunction = ParseInt(value);
        break;
    case kCustomChartParameters:
        m_CustomChartParams = value;
        m_UsesCustomChartParams = 1;
        break;
    default:
        break;
    }
    return TRUE;
}

int CChromatoData::NewParagraph(CDelimitFile* file, int id) {
    switch (id) {
    case kTraceSection:
        return MSRead(file);
    case kPeakSection: {
        CChromatogramPeak peak;
        peak.Read(file);
        return AddChromatogramPeak(std::move(peak));
    }
    default:
        return TRUE;
    }
}

int CChromatoData::MSRead(CDelimitFile* file) {
    // Points are read straight into the list; with custom chart parameters in use, a point's
    // intensity is a percentage of the maximum intensity.
    const int before = m_Points.GetSize();
    CFileRecord record;
    record.ReadNumberPairs(file, [this](double time, double intensity) {
        float scaled = static_cast<float>(intensity);
        if (m_UsesCustomChartParams)
            scaled = scaled * m_MaxIntensity * kPercent;
        m_Points.Add(TPointPair<float>(static_cast<float>(time), scaled));
    });
    // The room left from growing is given back when this section brought most of the points, so
    // that a trace in many small sections is not trimmed (and perhaps moved) after every one.
    if (m_Points.GetSize() - before >= m_Points.GetSize() / 2)
        m_Points.FreeExtra();
    return TRUE;
}

} // namespace quillon
