#include <quillon/document/SampleData.h>

#include <quillon/document/PeakIndex.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/plate/PlateDesc.h>
#include <quillon/platform/Numbers.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <type_traits>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CSampleData, CObject)

// Samples are built once and moved into their collection; a copying move would double the cost
// of reading a report.
static_assert(std::is_nothrow_move_constructible_v<CSampleData>);
static_assert(std::is_nothrow_move_assignable_v<CSampleData>);

namespace {

// Identifiers of the header fields of a sample's block.
enum HeaderField {
    kSample = 0,
    kFileName = 1,
    kWell = 2,
    kPlate = 3,
    kSampleType = 4,
    kSampleID = 5,
    kSampleDescription = 6,
    kProcessParameters = 7,
    kInletFileName = 8,
    kMSMethodFileName = 9,
    kMSTuneFileName = 10,
    kInjectionVolume = 11,
    kSubjectTime = 12,
    kSubjectText = 13,
    kSubjectParent = 14,
    kConcentration = 15,
    kDate = 16,
    kTime = 17,
    kLockSprayEnabled = 18,
    kMUXEnabled = 19,
    kMasses = 20,
    kProcessingTime = 21,
    kInfo = 22,
    kWarning = 23,
    kEleParameters = 24,
    kJobCode = 25,
    kTaskCode = 26,
    kUserName = 27,
    kLabName = 28,
    kInstrument = 29,
    kConditions = 30,
    kSubmitter = 31,
};

// Identifiers of the sections nested in a sample's block. They lie above the header fields, so the
// identifier alone tells a section from a field.
enum SectionId {
    kDiagnosticSection = 34,
    kCompoundSection = 35,
    kFunctionSection = 36,
    kFunctionAppendSection = 37,
    kExpectedMetabolitesSection = 38,
    kUnexpectedMetabolitesSection = 39,
    kMSMSCorrelationSection = 40,
    kParametersSection = 41,
    kAnalogSection = 42,
    kElementalSection = 43,
    kMolfileListSection = 44,
    kMassDefectFilterSection = 45,
};

bool IsSectionId(int id) {
    return id >= kDiagnosticSection && id <= kMassDefectFilterSection;
}

struct NamedId {
    const char* name;
    int id;
};

constexpr NamedId kHeaderFields[] = {
    {"Sample", kSample},
    {"FileName", kFileName},
    {"Well", kWell},
    {"Plate", kPlate},
    {"SampleType", kSampleType},
    {"SampleID", kSampleID},
    {"SampleDescription", kSampleDescription},
    {"ProcessParameters", kProcessParameters},
    {"InletFileName", kInletFileName},
    {"MSMethodFileName", kMSMethodFileName},
    {"MSTuneFileName", kMSTuneFileName},
    {"InjectionVolume", kInjectionVolume},
    {"SubjectTime", kSubjectTime},
    {"SubjectText", kSubjectText},
    {"SubjectParent", kSubjectParent},
    {"Concentration", kConcentration},
    {"Date", kDate},
    {"Time", kTime},
    {"LockSprayEnabled", kLockSprayEnabled},
    {"MUXEnabled", kMUXEnabled},
    {"Masses", kMasses},
    {"ProcessingTime", kProcessingTime},
    {"Info", kInfo},
    {"Warning", kWarning},
    {"EleParameters", kEleParameters},
    {"JobCode", kJobCode},
    {"TaskCode", kTaskCode},
    {"UserName", kUserName},
    {"LabName", kLabName},
    {"Instrument", kInstrument},
    {"Conditions", kConditions},
    {"Submitter", kSubmitter},
};

// The sections the sample reads. A section that is not listed is skipped with its block, so a
// section is listed here only once its reader exists (NewParagraph dispatches on the identifier).
constexpr NamedId kSections[] = {
    {"METABOLITE COMPOUNDS", kDiagnosticSection},
    {"NEUTRAL LOSS COMPOUNDS", kDiagnosticSection},
    {"COMPOUND", kCompoundSection},
    {"FUNCTION", kFunctionSection},
    {"FUNCTION_APPEND", kFunctionAppendSection},
    {"ANALOG", kAnalogSection},
    {"PARAMETERS", kParametersSection},
    {"MASS DEFECT FILTER", kMassDefectFilterSection},
    {"EXPECTED METABOLITES", kExpectedMetabolitesSection},
    {"UNEXPECTED METABOLITES", kUnexpectedMetabolitesSection},
    {"MSMS CORRELATION", kMSMSCorrelationSection},
    {"ELEMENTAL", kElementalSection},
    {"MOLFILE LIST", kMolfileListSection},
};

// Notes in the file's read report a header line that names no header field, or a numeric header
// field without a number (read as 0: a "SubjectTime" of "sixty" would be time 0).
void NoteHeaderFieldProblem(CDelimitFile& file, const CStringArray& input, int id) {
    switch (id) {
    case -1:
        file.NoteProblem(CReadReport::StrayRecord, "SAMPLE", input[0].view());
        break;
    case kSample:
    case kInjectionVolume:
    case kSubjectTime:
    case kConcentration:
        file.NoteIfNotNumber(input[0].view(), CFileRecord::FieldValue(input).view());
        break;
    default:
        break;
    }
}

// Adds one more line to a text that collects repeated fields.
void AppendLine(CString& text, const CString& line) {
    if (text.IsEmpty()) {
        text = line;
        return;
    }
    text += '\n';
    text += line;
}

} // namespace

int CSampleData::Read(CDelimitFile* file) {
    CFileRecord record;
    for (const NamedId& field : kHeaderFields)
        record.AddField(field.name, field.id);
    for (const NamedId& section : kSections)
        record.AddParagraph(section.name, section.id);

    // The metabolite sections look their peaks up in one index of the sample, built when the
    // first of them is read; a function section read after it makes it stale.
    CPeakIndex peaks;
    struct UseIndex {
        CPeakIndex*& slot;
        ~UseIndex() { slot = nullptr; }
    } use{m_pReadingPeakIndex = &peaks};
    while (record.Read(file)) {
        const int id = record.GetID();
        if (id == kFunctionSection || id == kFunctionAppendSection)
            peaks.Clear();
        if (IsSectionId(id)) {
            NewParagraph(file, id);
        } else {
            NoteHeaderFieldProblem(*file, *record.GetInput(), id);
            NewField(*record.GetInput(), id);
        }
    }
    return 1;
}

int CSampleData::NewParagraph(CDelimitFile* file, int id) {
    switch (id) {
    case kDiagnosticSection:
        return ReadDiagnosticSection(file);
    case kCompoundSection:
        return ReadCompound(file);
    case kFunctionSection:
        return ReadFunction(file);
    case kFunctionAppendSection:
        return ReadFunctionAppend(file);
    case kAnalogSection:
        return ReadAnalog(file);
    case kParametersSection:
        return ReadParameters(file);
    case kMassDefectFilterSection:
        return ReadMDF(file);
    case kExpectedMetabolitesSection:
        m_bExpectedMetabolitesValid = true;
        return ReadMetabolite(file, true);
    case kUnexpectedMetabolitesSection:
        m_bUnexpectedMetabolitesValid = true;
        return ReadMetabolite(file, false);
    case kMSMSCorrelationSection:
        m_bMSMSMetabolitesValid = true;
        return ReadMSMSCorrelation(file);
    case kElementalSection:
        return ReadElemental(file);
    case kMolfileListSection:
        return ReadMolfileList(file);
    default:
        return 0;
    }
}

bool CSampleData::GetHeaderField(std::string_view name, CString& value) const {
    const auto* field = std::find_if(std::begin(kHeaderFields), std::end(kHeaderFields),
                                     [&](const NamedId& named) { return name == named.name; });
    if (field == std::end(kHeaderFields))
        return false;
    const CString* texts[] = {&m_strFileName,
                              &m_strWell,
                              &m_strPlateDescription,
                              &m_strType,
                              &m_strID,
                              &m_strDescription,
                              &m_strProcessParameters,
                              &m_strInletFileName,
                              &m_strMSMethodFileName,
                              &m_strMSTuneFileName,
                              &m_strInjectionVolume,
                              &m_strSubjectTime,
                              &m_strSubjectText,
                              &m_strSubjectParent};
    static_assert(kFileName == 1 && kSubjectParent == 14, "texts follow the field order");
    switch (field->id) {
    case kSample:
        value.Format("%d", m_nNumber);
        return true;
    case kConcentration:
        value.Format("%g", m_dConcentration);
        return true;
    case kLockSprayEnabled:
    case kMUXEnabled:
        value = (field->id == kMUXEnabled ? m_bMUXEnabled : m_bLockSprayEnabled) ? "1" : "0";
        return true;
    case kDate:
        value = m_strDate;
        return true;
    case kTime:
        value = m_strTime;
        return true;
    case kProcessingTime:
        value = m_strProcessingTime;
        return true;
    case kInfo:
        value = m_strProcessingInfo;
        return true;
    case kWarning:
        value = m_strProcessingWarning;
        return true;
    case kJobCode:
        value = m_strJobCode;
        return true;
    case kTaskCode:
        value = m_strTaskCode;
        return true;
    case kUserName:
        value = m_strUserName;
        return true;
    case kLabName:
        value = m_strLabName;
        return true;
    case kInstrument:
        value = m_strInstrument;
        return true;
    case kConditions:
        value = m_strConditions;
        return true;
    case kSubmitter:
        value = m_strSubmitter;
        return true;
    default:
        if (field->id >= kFileName && field->id <= kSubjectParent) {
            value = *texts[field->id - kFileName];
            return true;
        }
        return false;
    }
}

int CSampleData::NewField(const CStringArray& input, int id) {
    const CString& value = CFileRecord::FieldValue(input);
    switch (id) {
    case kSample:
        SetNumber(value);
        break;
    case kFileName:
        m_strFileName = value;
        break;
    case kWell:
        m_strWell = value.IsEmpty() || value == "0" ? CString("1") : value;
        break;
    case kPlate:
        m_strPlateDescription = value;
        break;
    case kSampleType:
        m_strType = value == "QC" ? CString("Control") : value;
        break;
    case kSampleID:
        m_strID = value;
        break;
    case kSampleDescription:
        m_strDescription = value;
        break;
    case kProcessParameters:
        m_strProcessParameters = value;
        break;
    case kInletFileName:
        m_strInletFileName = value;
        break;
    case kMSMethodFileName:
        m_strMSMethodFileName = value;
        break;
    case kMSTuneFileName:
        m_strMSTuneFileName = value;
        break;
    case kInjectionVolume:
        m_strInjectionVolume = value;
        break;
    case kSubjectTime:
        m_strSubjectTime = value;
        break;
    case kSubjectText:
        m_strSubjectText = value;
        break;
    case kSubjectParent:
        m_strSubjectParent = value;
        break;
    case kConcentration:
        SetConcentration(value);
        break;
    case kDate:
        m_strDate = value;
        break;
    case kTime:
        m_strTime = value;
        break;
    case kLockSprayEnabled:
        SetLockSprayEnabled(value);
        break;
    case kMUXEnabled:
        SetMUXEnabled(value);
        break;
    case kMasses:
    case kEleParameters:
        break;
    case kProcessingTime:
        AppendLine(m_strProcessingTime, value);
        break;
    case kInfo:
        AppendLine(m_strProcessingInfo, value);
        break;
    case kWarning:
        AppendLine(m_strProcessingWarning, value);
        break;
    case kJobCode:
        m_strJobCode = value;
        break;
    case kTaskCode:
        m_strTaskCode = value;
        break;
    case kUserName:
        m_strUserName = value;
        break;
    case kLabName:
        m_strLabName = value;
        break;
    case kInstrument:
        m_strInstrument = value;
        break;
    case kConditions:
        m_strConditions = value;
        break;
    case kSubmitter:
        m_strSubmitter = value;
        break;
    default:
        return 0;
    }
    return 1;
}

int CSampleData::Write(CDelimitFile* file) const {
    return file != nullptr ? 1 : 0;
}

void CSampleData::Empty() {
    m_Compounds.RemoveAll();
    m_Functions.RemoveAll();
    m_AnalogChannels.RemoveAll();
}

void CSampleData::AddProcessingTime(const CString& line) {
    AppendLine(m_strProcessingTime, line);
}

void CSampleData::AddProcessingInfo(const CString& line) {
    AppendLine(m_strProcessingInfo, line);
}

void CSampleData::AddProcessingWarning(const CString& line) {
    AppendLine(m_strProcessingWarning, line);
}

void CSampleData::SetNumber(const CString& number) {
    m_nNumber = ParseInt(number);
}

int CSampleData::GetWell(CString& well) const {
    well = m_strWell;
    return 1;
}

int CSampleData::GetWell() const {
    return ParseInt(m_strWell);
}

void CSampleData::SetVialReference(const CString& reference) {
    CPlateDesc plate;
    plate.SetDescription(m_strPlateDescription); // a text that is no descriptor keeps the default
    m_VialRef.SetReference(reference, &plate);
}

int CSampleData::GetPlateDescription(CString& plate) const {
    plate = m_strPlateDescription;
    return 1;
}

float CSampleData::GetSubjectTime() const {
    return static_cast<float>(ParseDouble(m_strSubjectTime));
}

void CSampleData::SetConcentration(const CString& concentration) {
    m_dConcentration = ParseDouble(concentration);
}

void CSampleData::SetLockSprayEnabled(const CString& enabled) {
    m_bLockSprayEnabled = ParseInt(enabled) != 0;
}

void CSampleData::SetMUXEnabled(const CString& enabled) {
    m_bMUXEnabled = ParseInt(enabled) != 0;
}

CCompoundData* CSampleData::GetCompound(int index) {
    if (index < 0 || index >= m_Compounds.GetSize())
        return nullptr;
    return &m_Compounds[index];
}

const CCompoundData* CSampleData::GetCompound(int index) const {
    if (index < 0 || index >= m_Compounds.GetSize())
        return nullptr;
    return &m_Compounds[index];
}

CCompoundData* CSampleData::GetCompound() {
    return GetCompound(m_Compounds.GetUpperBound());
}

int CSampleData::AddCompound() {
    m_Compounds.Add(CCompoundData());
    return m_Compounds.GetSize();
}

int CSampleData::AddCompound(const CCompoundData& compound) {
    return m_Compounds.Add(compound);
}

int CSampleData::ReadCompound(CDelimitFile* file) {
    CFileRecord record;
    while (record.Read(file)) {
        if (record.GetType() == RECORD_FIELD)
            CompoundNewField(*record.GetInput());
    }
    return 1;
}

int CSampleData::CompoundNewField(const CStringArray& row) {
    const int count = row.GetSize();
    m_Compounds.Add(CCompoundData(count > 0 ? ParseDouble(row[0]) : 0.0,
                                  count > 1 ? row[1] : CString(), count > 2 ? row[2] : CString()));
    return 1;
}

int CSampleData::ReadParameters(CDelimitFile* file) {
    return m_Parameters.Read(file);
}

int CSampleData::ReadMDF(CDelimitFile* file) {
    CFileRecord record;
    while (record.Read(file)) {
        if (record.GetType() == RECORD_FIELD)
            MDFNewField(*record.GetInput());
    }
    return 0;
}

int CSampleData::MDFNewField(const CStringArray& row) {
    if (row.GetSize() == 1)
        m_MDFMasses.Add(ParseDouble(row[0]));
    else if (row.GetSize() >= 2)
        m_MDFParams.Add(ParseDouble(row[1]));
    return 1;
}

int CSampleData::ReadDiagnosticSection(CDelimitFile* file) {
    CFileRecord record;
    while (record.Read(file)) {
    }
    return 1;
}

} // namespace quillon
