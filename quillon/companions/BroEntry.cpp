#include <quillon/companions/BroEntry.h>

#include <quillon/document/Samples.h>
#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/File.h>
#include <quillon/platform/Numbers.h>

#include <iterator>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CBroEntry, CObject)

namespace {

enum HeaderField {
    kSample,
    kFileName,
    kWell,
    kSampleType,
    kSampleID,
    kSampleDescription,
    kProcessParameters,
    kInletFileName,
    kMSMethodFileName,
    kMSTuneFileName,
    kInjectionVolume,
    kSubjectTime,
    kSubjectText,
    kSubjectParent,
    kConcentration,
    kDate,
    kTime,
    kLockSprayEnabled,
    kMUXEnabled,
    kMasses,
    kProcessingTime,
    kInfo,
    kWarning,
    kEleParameters,
};

constexpr const char* kHeaderNames[] = {"Sample",
                                        "FileName",
                                        "Well",
                                        "SampleType",
                                        "SampleID",
                                        "SampleDescription",
                                        "ProcessParameters",
                                        "InletFileName",
                                        "MSMethodFileName",
                                        "MSTuneFileName",
                                        "InjectionVolume",
                                        "SubjectTime",
                                        "SubjectText",
                                        "SubjectParent",
                                        "Concentration",
                                        "Date",
                                        "Time",
                                        "LockSprayEnabled",
                                        "MUXEnabled",
                                        "Masses",
                                        "ProcessingTime",
                                        "Info",
                                        "Warning",
                                        "EleParameters"};

enum FunctionField {
    kIonMode,
    kType,
    kDescription,
    kProcess,
    kConeVoltage,
    kCollisionEnergy,
    kScanCycleTime,
    kInterScanDelay,
};

constexpr const char* kFunctionNames[] = {"IonMode",       "Type",          "Description",
                                          "Process",       "ConeVoltage",   "CollisionEnergy",
                                          "ScanCycleTime", "InterScanDelay"};

enum Paragraph {
    kNoParagraph = -1,
    kSampleParagraph = 0,
    kFunctionParagraph,
    kMassesParagraph,
    kMSParagraph
};

// The value of a field line: its second field, or "" for a line of one field.
const CString& Value(const CStringArray& fields) {
    return CFileRecord::FieldValue(fields);
}

} // namespace

CBroEntry::CBroEntry() {
    for (int id = 0; id < static_cast<int>(std::size(kHeaderNames)); ++id)
        m_HeaderNames.emplace(kHeaderNames[id], id);
    for (int id = 0; id < static_cast<int>(std::size(kFunctionNames)); ++id)
        m_FunctionNames.emplace(kFunctionNames[id], id);
    // The function paragraph has no name: its fields are never reached from a file.
    m_ParagraphNames = {
        {"SAMPLE", kSampleParagraph}, {"MASSES", kMassesParagraph}, {"MS", kMSParagraph}};
}

int CBroEntry::Read(const char* path) {
    CDelimitFile file;
    if (!path || !file.Open(path, CFile::modeRead))
        return 0;
    return Read(file);
}

int CBroEntry::Read(CDelimitFile& file) {
    int paragraph = kNoParagraph; // field lines before the first section are dropped
    CStringArray fields;
    int type = 0;
    while (file.ReadDelimitedString(fields, &type)) {
        if (type == RECORD_FIELD && !fields.IsEmpty()) {
            ParagraphEntry(paragraph, fields);
        } else if (type == RECORD_PARAGRAPH && !fields.IsEmpty()) {
            if (ParseParagraph(fields[0], paragraph))
                NewParagraph(paragraph);
        }
    }
    return 1;
}

int CBroEntry::Lookup(const NameTable& table, const CString& name, int& id) {
    const auto found = table.find(name.str());
    id = found == table.end() ? -1 : found->second;
    return found == table.end() ? 0 : 1;
}

int CBroEntry::ParseHeaderField(const CString& name, int& id) const {
    return Lookup(m_HeaderNames, name, id);
}

int CBroEntry::ParseFunctionField(const CString& name, int& id) const {
    return Lookup(m_FunctionNames, name, id);
}

int CBroEntry::ParseParagraph(const CString& name, int& id) const {
    return Lookup(m_ParagraphNames, name, id);
}

int CBroEntry::ParagraphEntry(int paragraph, const CStringArray& fields) {
    int id = -1;
    switch (paragraph) {
    case kSampleParagraph:
        ParseHeaderField(fields[0], id);
        return NewHeaderField(id, fields);
    case kFunctionParagraph:
        ParseFunctionField(fields[0], id);
        return NewFunctionField(id, fields);
    case kMassesParagraph:
        return NewMassesField(fields);
    case kMSParagraph:
        return NewMSField(fields);
    default:
        return 0;
    }
}

int CBroEntry::NewParagraph(int id) {
    if (!m_pSamples)
        return 0;
    if (id == kSampleParagraph) {
        m_pSamples->AddSample();
    } else if (id == kFunctionParagraph) {
        if (CSampleData* sample = LastSample())
            sample->AddFunction(CFunctionData());
    }
    return 1;
}

CSampleData* CBroEntry::LastSample() const {
    return m_pSamples ? m_pSamples->GetSample() : nullptr;
}

CSpectrumData* CBroEntry::LastSpectrum() const {
    CSampleData* sample = LastSample();
    CFunctionData* function = sample ? sample->GetFunction() : nullptr;
    return function ? function->GetSpectrum() : nullptr;
}

int CBroEntry::NewHeaderField(int id, const CStringArray& fields) {
    CSampleData* sample = LastSample();
    if (!sample)
        return 0;
    const CString& value = Value(fields);
    switch (id) {
    case kSample:
        sample->SetNumber(value);
        break;
    case kFileName:
        sample->SetFileName(value);
        break;
    case kWell:
        sample->SetWell(value);
        break;
    case kSampleType:
        sample->SetType(value == "QC" ? CString("Control") : value);
        break;
    case kSampleID:
        sample->SetID(value);
        break;
    case kSampleDescription:
        sample->SetDescription(value);
        break;
    case kProcessParameters:
        sample->SetProcessParameters(value);
        break;
    case kInletFileName:
        sample->SetInletFileName(value);
        break;
    case kMSMethodFileName:
        sample->SetMSMethodFileName(value);
        break;
    case kMSTuneFileName:
        sample->SetMSTuneFileName(value);
        break;
    case kInjectionVolume:
        sample->SetInjectionVolume(value);
        break;
    case kSubjectTime:
        sample->SetSubjectTime(value);
        break;
    case kSubjectText:
        sample->SetSubjectText(value);
        break;
    case kSubjectParent:
        sample->SetSubjectParent(value);
        break;
    case kConcentration:
        sample->SetConcentration(value);
        break;
    case kDate:
        sample->SetDate(value);
        break;
    case kTime:
        sample->SetTime(value);
        break;
    case kLockSprayEnabled:
        sample->SetLockSprayEnabled(value);
        break;
    case kMUXEnabled:
        sample->SetMUXEnabled(value);
        break;
    case kMasses:
    case kEleParameters:
        break;
    case kProcessingTime:
        sample->AddProcessingTime(value);
        break;
    case kInfo:
        sample->AddProcessingInfo(value);
        break;
    case kWarning:
        sample->AddProcessingWarning(value);
        break;
    default:
        return 0;
    }
    return 1;
}

int CBroEntry::NewFunctionField(int id, const CStringArray& fields) {
    CSampleData* sample = LastSample();
    CFunctionData* function = sample ? sample->GetFunction() : nullptr;
    if (!function)
        return 0;
    const CString& value = Value(fields);
    switch (id) {
    case kIonMode:
        function->SetIonMode(value);
        break;
    case kType:
        function->SetType(value);
        break;
    case kDescription:
        function->SetDescription(value);
        break;
    case kProcess: {
        CSpectrumData* spectrum = function->GetSpectrum();
        if (!spectrum)
            return 0;
        spectrum->SetProcess(ParseInt(value));
        break;
    }
    case kConeVoltage:
        function->SetConeVoltage(value);
        break;
    case kCollisionEnergy:
        function->SetCollisionEnergy(value);
        break;
    case kScanCycleTime:
        function->SetScanCycleTime(value);
        break;
    case kInterScanDelay:
        function->SetInterScanDelay(value);
        break;
    default:
        return 0;
    }
    return 1;
}

int CBroEntry::NewMassesField(const CStringArray& fields) {
    constexpr int kMassesColumns = 4;
    CSpectrumData* spectrum = LastSpectrum();
    if (!spectrum || fields.GetSize() < kMassesColumns)
        return 0;
    spectrum->AddMasses(CMassesData(ParseDouble(fields[0]), ParseDouble(fields[1]),
                                    ParseDouble(fields[2]), ParseDouble(fields[3]), false));
    return 1;
}

int CBroEntry::NewMSField(const CStringArray& fields) {
    CSpectrumData* spectrum = LastSpectrum();
    if (!spectrum || fields.GetSize() < 2)
        return 0;
    const float mass = static_cast<float>(ParseDouble(fields[0]));
    const float intensity = static_cast<float>(ParseDouble(fields[1]));
    spectrum->AddMassIntensity(&mass, &intensity, 1);
    return 1;
}

} // namespace quillon
