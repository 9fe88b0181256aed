#include <quillon/document/Samples.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/platform/ProcessInfo.h>

#include <cmath>
#include <cstring>
#include <ctime>
#include <functional>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CSamples, CObject)

namespace {

// Top-level sections of a report file.
enum TopLevelSection { kSampleSection = 0, kSampleAppendSection = 1 };

constexpr const char kSampleHeader[] = "[SAMPLE]";
constexpr const char kReadingErrorTitle[] = "Hollbeck Browser";
constexpr const char kReadingErrorText[] = "Error reading sample";
// Longest exception text shown, terminator included.
constexpr UINT kMaxErrorText = 260;
// Largest difference between the masses of a sample's and its control's first compounds.
constexpr double kControlMassWindow = 0.1;

// Tells the user that a sample could not be read: the exception's own text (empty when it has
// none) when it is one of the library's exceptions, a fixed text for any other exception.
void ReportReadingError(const CException* exception) {
    char text[kMaxErrorText] = "";
    if (exception != nullptr)
        exception->GetErrorMessage(text, kMaxErrorText);
    ShowMessage(exception != nullptr ? text : kReadingErrorText, kReadingErrorTitle,
                MessageIcon::Exclamation);
}

// The mass of a sample's first compound, 0 when it has none.
double FirstCompoundMass(const CSampleData& sample) {
    const CCompoundData* compound = sample.GetCompound(0);
    return compound != nullptr ? compound->GetMass() : 0.0;
}

// The name by which molfile references of a report file refer to the report's parent structure.
CString ParentName(const CDelimitFile& file) {
    return file.GetFileName() + "_Parent";
}

} // namespace

CSamples::CSamples(const CSamples& source)
    : CObject(source), m_Samples(source.m_Samples), m_pParams(source.m_pParams) {
    RelinkControls(source.ControlIndices(), [](int index) { return index; });
}

CSamples& CSamples::operator=(const CSamples& source) {
    if (this != &source) {
        m_Samples = source.m_Samples;
        m_pParams = source.m_pParams;
        RelinkControls(source.ControlIndices(), [](int index) { return index; });
    }
    return *this;
}

int CSamples::Read(const char* path) {
    CDelimitFile file;
    if (!file.Open(path, CFile::modeRead))
        return 0;
    return Read(&file);
}

int CSamples::Read(CDelimitFile* file) {
    CFileRecord record;
    record.AddParagraph("SAMPLE", kSampleSection);
    record.AddParagraph("SAMPLE_APPEND", kSampleAppendSection);
    while (record.Read(file)) {
        if (record.GetID() == kSampleSection)
            ReadSample(file);
        else if (record.GetID() == kSampleAppendSection)
            AppendSample(file);
    }
    SetControlSamples();
    return 1;
}

int CSamples::ReadSample(CDelimitFile* file) {
    if (file == nullptr)
        return GetSamplesCount() - 1;
    try {
        // The section starts where its header line did (a line end is one character).
        const int64_t afterHeader = file->GetPosition();
        const int64_t headerLength = static_cast<int64_t>(std::strlen(kSampleHeader)) + 1;
        const auto start =
            static_cast<unsigned long>(afterHeader > headerLength ? afterHeader - headerLength : 0);

        CSampleData sample;
        sample.SetFilePosStart(start);
        sample.SetFilePosEnd(start);
        sample.Read(file);
        sample.SetFilePosEnd(static_cast<unsigned long>(file->GetPosition()));
        sample.SetParams(m_pParams);
        return AddSample(std::move(sample));
    } catch (const CException& exception) {
        ReportReadingError(&exception);
    } catch (...) {
        ReportReadingError(nullptr);
    }
    return GetSamplesCount() - 1;
}

int CSamples::AppendSample(CDelimitFile* file) {
    if (file == nullptr)
        return GetSamplesCount() - 1;
    CSampleData* last = GetSample();
    if (last == nullptr)
        return ReadSample(file);
    try {
        last->Read(file);
        last->SetFilePosEnd(static_cast<unsigned long>(file->GetPosition()));
    } catch (const CException& exception) {
        ReportReadingError(&exception);
    } catch (...) {
        ReportReadingError(nullptr);
    }
    return GetSamplesCount() - 1;
}

int CSamples::AddSample() {
    const std::vector<int> controls = ControlIndices();
    m_Samples.Add(CSampleData());
    RelinkControls(controls, [](int index) { return index; });
    return GetSamplesCount();
}

int CSamples::AddSample(const CSampleData& sample) {
    return AddSample(CSampleData(sample));
}

int CSamples::AddSample(CSampleData&& sample) {
    sample.SetFileEntry(GetSamplesCount());
    int position = GetSamplesCount();
    for (int i = 0; i < GetSamplesCount(); ++i) {
        if (m_Samples[i].GetNumber() > sample.GetNumber()) {
            position = i;
            break;
        }
    }
    const std::vector<int> controls = ControlIndices();
    m_Samples.InsertAt(position, std::move(sample));
    RelinkControls(controls,
                   [position](int index) { return index < position ? index : index + 1; });
    return position;
}

void CSamples::DeleteAll() {
    m_Samples.RemoveAll();
}

CSampleData* CSamples::GetSample(int index) {
    if (index < 0 || index >= GetSamplesCount())
        return nullptr;
    return &m_Samples[index];
}

CSampleData* CSamples::GetSample() {
    return GetSample(GetSamplesCount() - 1);
}

void CSamples::SetControlSamples() {
    const int count = GetSamplesCount();
    int index = 0;
    while (index < count) {
        CSampleData& control = m_Samples[index];
        if (!control.IsControl()) {
            ++index;
            continue;
        }
        control.SetControlSample(nullptr);
        const double referenceMass = FirstCompoundMass(control);
        int linked = 0;
        for (int i = index + 1; i < count; ++i) {
            CSampleData& sample = m_Samples[i];
            if (sample.IsControl())
                break;
            if (sample.GetNumber() < control.GetNumber())
                continue;
            if (std::strcmp(sample.GetProcessParameters(), control.GetProcessParameters()) != 0)
                continue;
            if (referenceMass <= 0.0 ||
                std::fabs(FirstCompoundMass(sample) - referenceMass) <= kControlMassWindow) {
                sample.SetControlSample(&control);
                ++linked;
            }
        }
        // Every linked sample lies before the next control, so this never passes one.
        index += 1 + linked;
    }
}

bool CSamples::GetLockSprayEnabled() const {
    for (const CSampleData& sample : m_Samples) {
        if (sample.GetLockSprayEnabled())
            return true;
    }
    return false;
}

bool CSamples::GetMUXEnabled() const {
    for (const CSampleData& sample : m_Samples) {
        if (sample.GetMUXEnabled())
            return true;
    }
    return false;
}

int CSamples::Write(CDelimitFile* in, CDelimitFile* out) {
    if (in == nullptr || out == nullptr)
        return 0;
    const int64_t startPosition = out->GetPosition();
    const CString inputParent = ParentName(*in);
    const CString outputParent = ParentName(*out);
    const CString parentToReplace = inputParent != outputParent ? inputParent : CString();

    // The sample that each "[SAMPLE]" of the input belongs to, by file order; the first sample
    // stands in for a place that no sample claims. The counter runs from -1 (the lines before the
    // first sample) to the last index, so the table holds the entries from -1 on, shifted by one.
    std::vector<int> indexOfEntry(static_cast<size_t>(GetSamplesCount()) + 1, -1);
    for (int i = GetSamplesCount() - 1; i >= 0; --i) {
        const int entry = m_Samples[i].GetFileEntry();
        if (entry >= -1 && entry < GetSamplesCount())
            indexOfEntry[static_cast<size_t>(entry + 1)] = i;
    }
    auto sampleOfEntry = [&](int entry) -> CSampleData* {
        if (entry >= -1 && entry < GetSamplesCount() &&
            indexOfEntry[static_cast<size_t>(entry + 1)] >= 0)
            return &m_Samples[indexOfEntry[static_cast<size_t>(entry + 1)]];
        return GetSample(0);
    };

    int sampleCounter = -1;
    bool duplicatesDropped = false;
    CString line;
    bool lineEndSet = false;
    while (in->ReadString(line)) {
        if (!lineEndSet) {
            // The copy keeps the line ends of the file it copies.
            out->SetLineEnd(in->GetLineEndRead());
            lineEndSet = true;
        }
        if (line.IsEmpty())
            continue;
        if (line[0] != '[') {
            out->WriteRecord(line);
            continue;
        }
        if (line == kSampleHeader)
            ++sampleCounter;
        if (sampleCounter > GetSamplesCount() - 1) {
            // A sample the collection does not hold: its section is not written.
            in->SkipToNextSection();
            --sampleCounter;
        } else if (const CSampleData* sample = sampleOfEntry(sampleCounter);
                   sample != nullptr && sample->IsDuplicate()) {
            in->MoveToNextSection();
            duplicatesDropped = true;
        } else if (line == "[MOLFILE LIST]") {
            out->WriteSectionHeader("MOLFILE LIST");
            CopyMolfileList(in, out, parentToReplace, outputParent);
        } else {
            out->WriteRecord(line);
        }
        in->UpdateStatus();
    }

    const CString program = GetModuleFilePath();
    const CString now = FormatLongLocalTime(std::time(nullptr));
    out->WriteComment("Metabolite sections updated by %s %s ", program.c_str(), now.c_str());
    if (duplicatesDropped) {
        out->WriteComment("Duplicate samples removed by %s %s ", program.c_str(), now.c_str());
        // A file rewritten in place has lost the duplicates' lines: cut off what is left of its
        // old content. (Text written before the copy began is kept.)
        const int64_t end = out->GetPosition();
        if (end != startPosition && end < out->GetLength())
            out->SetLength(end);
    }
    RemoveDuplicates();
    return 1;
}

void CSamples::CopyMolfileList(CDelimitFile* in, CDelimitFile* out, const CString& from,
                               const CString& to) {
    CString line;
    while (in->ReadString(line)) {
        const bool endOfList = line == "}";
        const int found = from.IsEmpty() ? -1 : line.Find(from);
        if (found >= 0) {
            line.Delete(found, from.GetLength());
            line.Insert(found, to);
        }
        out->WriteRecord(line);
        if (endOfList)
            break;
    }
}

void CSamples::RemoveDuplicates() {
    const std::vector<int> controls = ControlIndices();
    std::vector<int> newIndex(static_cast<size_t>(GetSamplesCount()), -1);
    int kept = 0;
    for (int i = 0; i < GetSamplesCount(); ++i) {
        if (!m_Samples[i].IsDuplicate())
            newIndex[static_cast<size_t>(i)] = kept++;
    }
    if (kept == GetSamplesCount())
        return;
    for (int i = GetSamplesCount() - 1; i >= 0; --i) {
        if (m_Samples[i].IsDuplicate())
            m_Samples.RemoveAt(i);
    }
    RelinkControls(controls,
                   [&newIndex](int index) { return newIndex[static_cast<size_t>(index)]; });
}

std::vector<int> CSamples::ControlIndices() const {
    std::vector<int> controls;
    const CSampleData* first = m_Samples.GetData();
    const CSampleData* end = first + GetSamplesCount();
    const std::less<const CSampleData*> before;
    for (int i = 0; i < GetSamplesCount(); ++i) {
        const CSampleData* control = m_Samples[i].GetControlSample();
        if (control == nullptr || before(control, first) || !before(control, end))
            continue;
        if (controls.empty())
            controls.assign(static_cast<size_t>(GetSamplesCount()), -1);
        controls[static_cast<size_t>(i)] = static_cast<int>(control - first);
    }
    return controls;
}

template <class NewIndexOf>
void CSamples::RelinkControls(const std::vector<int>& controls, NewIndexOf newIndexOf) {
    for (size_t i = 0; i < controls.size(); ++i) {
        if (controls[i] < 0)
            continue;
        const int sample = newIndexOf(static_cast<int>(i));
        if (sample < 0)
            continue;
        const int control = newIndexOf(controls[i]);
        m_Samples[sample].SetControlSample(control >= 0 ? &m_Samples[control] : nullptr);
    }
}

} // namespace quillon
