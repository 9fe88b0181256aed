#include <quillon/document/Samples.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Exception.h>
#include <quillon/platform/HostHooks.h>
#include <quillon/platform/ProcessInfo.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CSamples, CObject)

namespace {

// Top-level sections of a report file.
enum TopLevelSection { kSampleSection = 0, kSampleAppendSection = 1 };

constexpr std::string_view kSampleSectionName = "SAMPLE";
constexpr std::string_view kSampleAppendSectionName = "SAMPLE_APPEND";
constexpr const char kReadingErrorTitle[] = "Hollbeck Browser";
constexpr const char kReadingErrorText[] = "Error reading sample";
// Longest exception text shown, terminator included.
constexpr UINT kMaxErrorText = 260;
// Largest difference between the masses of a sample's and its control's first compounds.
constexpr double kControlMassWindow = 0.1;

// Tells the user that a sample could not be read: the exception's own text (empty when it has
// none) when it is one of the library's exceptions, a fixed text for any other exception. Returns
// the text shown.
CString ReportReadingError(const CException* exception) {
    char text[kMaxErrorText] = "";
    if (exception != nullptr)
        exception->GetErrorMessage(text, kMaxErrorText);
    const CString shown = exception != nullptr ? text : kReadingErrorText;
    ShowMessage(shown, kReadingErrorTitle, MessageIcon::Exclamation);
    return shown;
}

// Where the line just read started.
int64_t LineStart(const CDelimitFile& file) {
    const int64_t end = file.GetPosition();
    const int64_t length = file.GetLastLineLength();
    return end > length ? end - length : 0;
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
    : CObject(source), m_Samples(source.m_Samples), m_pParams(source.m_pParams),
      m_SampleStarts(source.m_SampleStarts) {
    RelinkControls(source.ControlIndices(), [](int index) { return index; });
}

CSamples& CSamples::operator=(const CSamples& source) {
    if (this != &source) {
        m_Samples = source.m_Samples;
        m_pParams = source.m_pParams;
        m_SampleStarts = source.m_SampleStarts;
        RelinkControls(source.ControlIndices(), [](int index) { return index; });
    }
    return *this;
}

namespace {

// A report file read from a path that moves the host's progress bar over the file's length, in
// thousandths of it. The position is asked for once every few thousand lines, not once a line.
class CProgressReportFile : public CDelimitFile {
public:
    static constexpr int kSteps = 1000;

    void BeginReading(const char* path) {
        m_length = GetLength();
        BeginProgress(CString("Reading ") + path, 0, kSteps);
    }
    void UpdateStatus() override {
        if ((++m_lines & kLinesPerUpdate) != 0 || m_length <= 0)
            return;
        const int reached = static_cast<int>(GetPosition() * kSteps / m_length);
        if (reached > m_shown) {
            StepProgress(reached - m_shown);
            m_shown = reached;
        }
    }

private:
    static constexpr uint64_t kLinesPerUpdate = (uint64_t{1} << 12) - 1;
    int64_t m_length = 0;
    uint64_t m_lines = 0;
    int m_shown = 0;
};

} // namespace

int CSamples::Read(const char* path) {
    CProgressReportFile file;
    if (!file.Open(path, CFile::modeRead))
        return 0;
    file.BeginReading(path);
    struct EndProgressOnExit {
        ~EndProgressOnExit() { EndProgress(); }
    } end;
    return Read(&file);
}

int CSamples::Read(CDelimitFile* file) {
    // The top level of a report: "[SAMPLE]" and "[SAMPLE_APPEND]" sections are read; any other
    // section is passed over with its block, and so is a stray block or a stray "}", so that one
    // section this library does not know never ends the reading of the samples after it.
    // A read error between samples ends the reading with a message, like one inside a sample.
    m_ReadReport = CReadReport();
    // The section readers note what they pass over in the same report, while this Read lasts.
    struct NoteIntoReport {
        CDelimitFile* file;
        CReadReport* previous;
        ~NoteIntoReport() {
            if (file != nullptr)
                file->SetReadReport(previous);
        }
    } noteInto{file, file != nullptr ? file->GetReadReport() : nullptr};
    if (file != nullptr)
        file->SetReadReport(&m_ReadReport);
    // The numbers of the samples read, to note a sample read twice.
    std::unordered_set<int> numbers;
    // Samples are gathered in file order and put into number order once at the end, as AddSample
    // would have placed them one by one: equal numbers keep their file order behind the samples
    // already held. (Inserting each in turn moves every later sample: quadratic in a report whose
    // samples come in descending order.)
    std::vector<CSampleData> read;
    // The sample a continuation extends: the one AddSample would have put last so far (the
    // highest number, the latest of equals); -1 for none, else an index of the samples held
    // followed by those read.
    int last = GetSamplesCount() - 1;
    auto sampleAt = [&](int index) -> CSampleData& {
        return index < GetSamplesCount() ? m_Samples[index]
                                         : read[static_cast<size_t>(index - GetSamplesCount())];
    };
    auto readNew = [&](int64_t headerLine) {
        CSampleData sample;
        if (!ReadSampleRecord(file, sample, headerLine))
            return;
        if (!numbers.insert(sample.GetNumber()).second)
            m_ReadReport.Add(CReadReport::DuplicateSample, std::to_string(sample.GetNumber()),
                             static_cast<int64_t>(sample.GetFilePosStart()), headerLine);
        sample.SetFileEntry(GetSamplesCount() + static_cast<int>(read.size()));
        m_SampleStarts.push_back(static_cast<int64_t>(sample.GetFilePosStart()));
        const int index = GetSamplesCount() + static_cast<int>(read.size());
        if (last < 0 || sample.GetNumber() >= sampleAt(last).GetNumber())
            last = index;
        read.push_back(std::move(sample));
    };
    if (file != nullptr) {
        int64_t lineStart = 0;
        int64_t line = 0;
        try {
            CStringArray fields;
            int type = RECORD_EMPTY;
            int previousType = RECORD_EMPTY;
            int strayDepth = 0;
            int64_t strayStart = 0;
            int64_t strayLine = 0;
            CString strayName;
            while (file->ReadDelimitedString(fields, &type)) {
                lineStart = LineStart(*file);
                line = file->GetLineNumber();
                if (type == RECORD_BLOCK_START) {
                    if (strayDepth == 0) {
                        strayStart = lineStart;
                        strayLine = line;
                        if (previousType != RECORD_PARAGRAPH) {
                            strayName = "";
                            m_ReadReport.Add(CReadReport::StrayBlock, "", lineStart, line);
                        }
                    }
                    ++strayDepth;
                } else if (type == RECORD_BLOCK_END) {
                    if (strayDepth == 0)
                        m_ReadReport.Add(CReadReport::StrayBlockEnd, "}", lineStart, line);
                    strayDepth = strayDepth > 0 ? strayDepth - 1 : 0;
                } else if (type == RECORD_PARAGRAPH && strayDepth == 0) {
                    if (fields[0] == "SAMPLE" || (fields[0] == "SAMPLE_APPEND" && last < 0)) {
                        readNew(line);
                        NoteOpenSampleBlock(file, lineStart, line, fields[0]);
                    } else if (fields[0] == "SAMPLE_APPEND") {
                        AppendRecord(file, sampleAt(last), line);
                        NoteOpenSampleBlock(file, lineStart, line, fields[0]);
                    } else {
                        strayName = fields[0];
                        m_ReadReport.Add(CReadReport::UnknownSection, fields[0].view(), lineStart,
                                         line);
                    }
                } else if (type == RECORD_FIELD && strayDepth == 0) {
                    m_ReadReport.Add(CReadReport::StrayLine,
                                     fields.GetSize() > 0 ? fields[0].view() : "", lineStart, line);
                }
                previousType = type;
            }
            if (strayDepth > 0)
                m_ReadReport.Add(CReadReport::OpenBlock, strayName.view(), strayStart, strayLine);
        } catch (const CException& exception) {
            m_ReadReport.Add(CReadReport::SampleError, "", lineStart, line,
                             ReportReadingError(&exception).view());
        } catch (...) {
            m_ReadReport.Add(CReadReport::SampleError, "", lineStart, line,
                             ReportReadingError(nullptr).view());
        }
    }
    std::sort(m_SampleStarts.begin(), m_SampleStarts.end());
    AddSamplesInOrder(std::move(read));
    SetControlSamples();
    for (CSampleData& sample : m_Samples)
        DeriveMetaboliteResults(sample);
    return 1;
}

void CSamples::NoteOpenSampleBlock(CDelimitFile* file, int64_t sampleStart, int64_t sampleLine,
                                   const CString& name) {
    // A sample's reader stops at the "}" closing its block or at the end of the file; only at the
    // end of the file is the last line read again to tell the two apart.
    if (file->GetPosition() < file->GetLength())
        return;
    const int64_t end = file->GetPosition();
    const int64_t lines = file->GetLineNumber();
    file->Seek(LineStart(*file), CFile::begin);
    CString last;
    const bool closed = file->ReadString(last) && last.view().find('}') != std::string_view::npos;
    file->Seek(end, CFile::begin);
    file->SetLineNumber(lines);
    if (!closed)
        m_ReadReport.Add(CReadReport::OpenBlock, name.view(), sampleStart, sampleLine);
}

void CSamples::DeriveMetaboliteResults(CSampleData& sample) {
    // The fragment analysis's validation of the sample's energy pairs comes first: it marks the
    // high-energy metabolites that the counts and area totals tell apart.
    sample.GetFragmentAnalysis()->ValidateFragmentAnalysis(&sample);
    sample.SetHighEnergyMetaboliteCount();
    sample.DetermineAreaTotals();
    sample.CalculateMetabolitePercentAreas(false);
    sample.CalculateMetabolitePercentAreas(true);
}

int CSamples::ReadSample(CDelimitFile* file) {
    CSampleData sample;
    if (file == nullptr || !ReadSampleRecord(file, sample, file->GetLineNumber()))
        return GetSamplesCount() - 1;
    return AddSample(std::move(sample));
}

bool CSamples::ReadSampleRecord(CDelimitFile* file, CSampleData& sample, int64_t headerLine) {
    // The section starts where its header line did, whatever its line end.
    const int64_t start = LineStart(*file);
    try {
        sample.SetFilePosStart(static_cast<unsigned long>(start));
        sample.SetFilePosEnd(static_cast<unsigned long>(start));
        sample.Read(file);
        sample.SetFilePosEnd(static_cast<unsigned long>(file->GetPosition()));
        sample.SetParams(m_pParams);
        return true;
    } catch (const CException& exception) {
        m_ReadReport.Add(CReadReport::SampleError, "SAMPLE", start, headerLine,
                         ReportReadingError(&exception).view());
    } catch (...) {
        m_ReadReport.Add(CReadReport::SampleError, "SAMPLE", start, headerLine,
                         ReportReadingError(nullptr).view());
    }
    return false;
}

int CSamples::AppendSample(CDelimitFile* file) {
    if (file == nullptr)
        return GetSamplesCount() - 1;
    CSampleData* last = GetSample();
    if (last == nullptr)
        return ReadSample(file);
    AppendRecord(file, *last, file->GetLineNumber());
    return GetSamplesCount() - 1;
}

void CSamples::AppendRecord(CDelimitFile* file, CSampleData& sample, int64_t headerLine) {
    const int64_t start = LineStart(*file);
    try {
        sample.Read(file);
        sample.SetFilePosEnd(static_cast<unsigned long>(file->GetPosition()));
    } catch (const CException& exception) {
        m_ReadReport.Add(CReadReport::SampleError, "SAMPLE_APPEND", start, headerLine,
                         ReportReadingError(&exception).view());
    } catch (...) {
        m_ReadReport.Add(CReadReport::SampleError, "SAMPLE_APPEND", start, headerLine,
                         ReportReadingError(nullptr).view());
    }
}

void CSamples::AddSamplesInOrder(std::vector<CSampleData>&& added) {
    if (added.empty())
        return;
    std::stable_sort(added.begin(), added.end(), [](const CSampleData& a, const CSampleData& b) {
        return a.GetNumber() < b.GetNumber();
    });
    const std::vector<int> controls = ControlIndices();
    std::vector<int> newIndex(static_cast<size_t>(GetSamplesCount()), -1);
    CArray<CSampleData> merged;
    merged.Reserve(GetSamplesCount() + static_cast<int>(added.size()));
    int held = 0;
    for (CSampleData& sample : added) {
        // Samples already held go before new ones of the same number.
        while (held < GetSamplesCount() && m_Samples[held].GetNumber() <= sample.GetNumber()) {
            newIndex[static_cast<size_t>(held)] = merged.GetSize();
            merged.Add(std::move(m_Samples[held++]));
        }
        merged.Add(std::move(sample));
    }
    while (held < GetSamplesCount()) {
        newIndex[static_cast<size_t>(held)] = merged.GetSize();
        merged.Add(std::move(m_Samples[held++]));
    }
    m_Samples = std::move(merged);
    RelinkControls(controls,
                   [&newIndex](int index) { return newIndex[static_cast<size_t>(index)]; });
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
    m_SampleStarts.clear();
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

namespace {

bool HasTwoDimensionalMolfile(CSampleData& sample) {
    constexpr int kTwoDimensional = 2;
    const int stored = sample.GetMoleculeDimensions();
    return stored == kTwoDimensional || (stored < 0 && sample.SetMoleculeDimensions() == 2);
}

// The key samples of one compound are matched by: its formula, or its mass without decimals.
CString FirstCompoundKey(const CSampleData& sample) {
    const CCompoundData* compound = sample.GetCompound(0);
    if (!compound)
        return CString();
    CString key;
    compound->GetFormula(key);
    if (key.IsEmpty())
        key.Format("%.0f", compound->GetMass());
    return key;
}

} // namespace

CSampleData* CSamples::GetSampleWith2DMolFile(int number) {
    const int count = GetSamplesCount();
    if (count == 0)
        return nullptr;
    int found = count - 1;
    for (int index = 0; index < count; ++index) {
        if (m_Samples[index].GetNumber() == number) {
            found = index;
            break;
        }
    }
    if (HasTwoDimensionalMolfile(m_Samples[found]))
        return &m_Samples[found];

    const CString key = FirstCompoundKey(m_Samples[found]);
    const auto matches = [&](int index) {
        CSampleData& other = m_Samples[index];
        return other.GetCompound(0) && FirstCompoundKey(other) == key &&
               HasTwoDimensionalMolfile(other);
    };
    for (int index = found - 1; index >= 0; --index)
        if (matches(index))
            return &m_Samples[index];
    for (int index = found + 1; index < count; ++index)
        if (matches(index))
            return &m_Samples[index];
    return nullptr;
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
    // Numbers the "ELEMENTAL" sections after each "UNEXPECTED METABOLITES" section written, from
    // 1: the n-th holds the candidates of the n-th metabolite after the expected ones.
    int elementalCounter = 0;
    int writtenGroups = 0;
    bool duplicatesDropped = false;
    CString line;
    std::string_view section;
    bool lineEndSet = false;
    // Where the sample headers go in the new file: the starts the next write goes by.
    std::vector<int64_t> writtenStarts;
    // Every line but the empty ones and the section headers is copied as it stands; section
    // headers are told by the same rule the reader goes by.
    for (;;) {
        if (!lineEndSet) {
            if (!in->ReadString(line))
                break;
            // The copy keeps the line ends of the file it copies.
            out->SetLineEnd(in->GetLineEndRead());
            lineEndSet = true;
            if (in->ClassifyLine(line.view()) != RECORD_PARAGRAPH) {
                if (!line.IsEmpty())
                    out->WriteRecord(line);
                continue;
            }
        } else if (!in->CopyToNextSection(*out, line)) {
            break;
        }
        in->ClassifyLine(line.view(), &section);
        bool startsSample = false;
        if (section == kSampleSectionName || section == kSampleAppendSectionName) {
            startsSample = StartsSample(*in);
            if (startsSample) {
                ++sampleCounter;
                writtenGroups = 0;
            } else if (section == kSampleSectionName && !m_SampleStarts.empty()) {
                // A header the reader did not take for a sample of its own (it came inside
                // another sample's section, inside a stray block, or began a sample that could
                // not be read): copied like any other line of the section it stands in.
                out->WriteRecord(line);
                continue;
            }
        }
        if (sampleCounter > GetSamplesCount() - 1) {
            // A sample the collection does not hold: its section is not written.
            in->SkipToNextSection();
            --sampleCounter;
        } else if (CSampleData* sample = sampleOfEntry(sampleCounter);
                   sample != nullptr && sample->IsDuplicate()) {
            in->MoveToNextSection();
            duplicatesDropped = true;
        } else if (sample != nullptr && WriteMetaboliteSection(section, *sample, elementalCounter,
                                                               writtenGroups, in, out)) {
            // Written from memory in place of the old block.
        } else if (section == "MOLFILE LIST") {
            out->WriteSectionHeader("MOLFILE LIST");
            CopyMolfileList(in, out, parentToReplace, outputParent);
        } else {
            if (startsSample)
                writtenStarts.push_back(out->GetPosition());
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
    if (!m_SampleStarts.empty())
        m_SampleStarts = std::move(writtenStarts);
    return 1;
}

bool CSamples::StartsSample(CDelimitFile& in) const {
    if (m_SampleStarts.empty())
        return true; // samples not read from a file: every "[SAMPLE]" counts
    const int64_t start = in.GetPosition() - in.GetLastLineLength();
    return std::binary_search(m_SampleStarts.begin(), m_SampleStarts.end(), start);
}

bool CSamples::WriteMetaboliteSection(std::string_view section, CSampleData& sample,
                                      int& elementalCounter, int& writtenGroups, CDelimitFile* in,
                                      CDelimitFile* out) {
    enum { kExpected = 1, kUnexpected = 2, kCorrelation = 4 };
    const auto firstOfGroup = [&writtenGroups](int group) {
        const bool first = (writtenGroups & group) == 0;
        writtenGroups |= group;
        return first;
    };
    if (section == "EXPECTED METABOLITES") {
        if (firstOfGroup(kExpected)) {
            out->WriteSectionHeader("EXPECTED METABOLITES");
            sample.WriteMSMetabolites(out, true);
        }
    } else if (section == "UNEXPECTED METABOLITES") {
        if (firstOfGroup(kUnexpected)) {
            out->WriteSectionHeader("UNEXPECTED METABOLITES");
            sample.WriteMSMetabolites(out, false);
            elementalCounter = 0;
        }
    } else if (section == "ELEMENTAL") {
        out->WriteSectionHeader("ELEMENTAL");
        sample.WriteElementalComposition(out, ++elementalCounter);
    } else if (section == "MSMS CORRELATION") {
        if (firstOfGroup(kCorrelation)) {
            out->WriteSectionHeader("MSMS CORRELATION");
            sample.WriteMSMSMetabolites(out);
        }
    } else {
        return false;
    }
    in->SkipFollowingBlock();
    return true;
}

bool CSamples::CreateOverallMSSummaryData(CArray<MetaboliteCountInfo>& summary, int first,
                                          int last) {
    summary.RemoveAll();
    if (first < 0)
        first = 0;
    if (last < 0)
        last = GetSamplesCount() - 1;
    if (first > last)
        return true;
    const int columns = last - first + 1;
    CString name;
    CString label;
    for (int s = first; s <= last; ++s) {
        CSampleData* sample = GetSample(s);
        if (sample == nullptr || !sample->ExpectedMetabolitesValid())
            continue;
        for (int i = 0; i < sample->GetExpectedMetaboliteCount(); ++i) {
            const CMetaboliteData* metabolite = sample->GetMetabolite(i);
            if (metabolite == nullptr || metabolite->IsHiEnergy())
                continue;
            metabolite->GetMetName(name);
            const double shift = metabolite->GetMetabolite();
            if (std::fabs(shift) > 0.5)
                label.Format("%+.0f", shift);
            else
                label.Empty();
            MetaboliteCountInfo* entry = nullptr;
            for (MetaboliteCountInfo& candidate : summary) {
                if (candidate.label == label && candidate.name == name) {
                    entry = &candidate;
                    break;
                }
            }
            if (entry == nullptr) {
                MetaboliteCountInfo added;
                added.name = name;
                added.label = label;
                added.counts.assign(static_cast<size_t>(columns), 0);
                entry = &summary[summary.Add(std::move(added))];
            }
            if (metabolite->GetFound())
                ++entry->counts[static_cast<size_t>(s - first)];
        }
    }
    return true;
}

void CSamples::CopyMolfileList(CDelimitFile* in, CDelimitFile* out, const CString& from,
                               const CString& to) {
    CString line;
    while (in->ReadString(line)) {
        const bool endOfList = in->ClassifyLine(line.view()) == RECORD_BLOCK_END;
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
