// The sample's metabolite array: its three groups, the metabolite sections of a report and their
// writers.
#include <quillon/document/PeakIndex.h>
#include <quillon/document/SampleData.h>
#include <quillon/metabolites/MetaboliteNames.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/platform/Numbers.h>

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <type_traits>

namespace quillon {

namespace {

// Masses of a spectrum and a metabolite's found m/z count as the same within this.
constexpr double kSameMass = 0.0001;

// The texts a report writes in place of an empty formula; neither is read back as a formula.
bool IsFormulaMarker(const CString& text) {
    return text == "0" || text == "1";
}

// An MS/MS neutral loss is kept only as a number text: "no" (written for none), "0" and any text
// that begins with a letter are dropped.
CString NeutralLossOf(const CString& text) {
    if (text.IsEmpty() || text == "0" || std::isalpha(static_cast<unsigned char>(text[0])))
        return CString();
    return text;
}

// A correlation text shorter than two characters (the "0" written for an empty list) is empty.
CString CorrelationTextOf(const CString& text) {
    return text.GetLength() > 1 ? text : CString();
}

// One peak identifier "peak/function/trace/mz/cluster/molecularMass"; later parts may be missing.
struct PeakIdentifier {
    int peak = 0;
    int function = 0;
    int trace = 0;
    double mz = 0.0;
    int cluster = -1;
    double molecularMass = 0.0;
};

// Scans one identifier; false when not even the peak number can be read.
bool ScanPeakIdentifier(const CString& text, PeakIdentifier& id) {
    std::string_view rest = text.view();
    size_t used = 0;
    id.peak = ParseInt(rest, used);
    if (used == 0)
        return false;
    // Each later part is read while the ones before it were, each after its "/"; a part that
    // does not read keeps its default, and so do the parts after it.
    auto read = [&](auto& part) {
        if (used == 0 || used >= rest.size() || rest[used] != '/')
            return false;
        rest.remove_prefix(used + 1);
        using Part = std::remove_reference_t<decltype(part)>;
        const Part value = std::is_same_v<Part, int> ? static_cast<Part>(ParseInt(rest, used))
                                                     : static_cast<Part>(ParseDouble(rest, used));
        if (used > 0)
            part = value;
        return used > 0;
    };
    (void)(read(id.function) && read(id.trace) && read(id.mz) && read(id.cluster) &&
           read(id.molecularMass));
    return true;
}

// Calls onItem for each comma-separated item of a text ("" gives one empty item).
template <class OnItem>
void ForEachItem(const CString& text, OnItem&& onItem) {
    int start = 0;
    for (;;) {
        const int comma = text.Find(',', start);
        if (comma < 0) {
            onItem(text.Mid(start));
            return;
        }
        onItem(text.Mid(start, comma - start));
        start = comma + 1;
    }
}

const CString& Column(const CStringArray& row, int index) {
    static const CString empty;
    return index < row.GetSize() ? row[index] : empty;
}

} // namespace

int CSampleData::GetExpectedMetaboliteCount() const {
    if (!m_bExpectedMetabolitesValid || m_nExpectedMetaboliteLastEntry < 0)
        return 0;
    return m_nExpectedMetaboliteLastEntry + 1;
}

int CSampleData::GetUnexpectedMetaboliteCount() const {
    if (!m_bUnexpectedMetabolitesValid || m_nUnexpectedMetaboliteLastEntry < 0)
        return 0;
    if (!m_bExpectedMetabolitesValid || m_nExpectedMetaboliteLastEntry < 0)
        return m_nUnexpectedMetaboliteLastEntry + 1;
    return m_nUnexpectedMetaboliteLastEntry - m_nExpectedMetaboliteLastEntry;
}

int CSampleData::GetMSMSCorrelationMetaboliteCount() const {
    if (!m_bMSMSMetabolitesValid || m_nMSMSMetaboliteLastEntry < 0)
        return 0;
    return m_nMSMSMetaboliteLastEntry + 1 - GetExpectedMetaboliteCount() -
           GetUnexpectedMetaboliteCount();
}

CMetaboliteData* CSampleData::GetMetabolite(int index) {
    if (index < 0 || index >= m_Metabolites.GetSize())
        return nullptr;
    return &m_Metabolites[index];
}

const CMetaboliteData* CSampleData::GetMetabolite(int index) const {
    if (index < 0 || index >= m_Metabolites.GetSize())
        return nullptr;
    return &m_Metabolites[index];
}

CMetaboliteData* CSampleData::GetMetabolite() {
    return GetMetabolite(m_Metabolites.GetUpperBound());
}

CMetaboliteData* CSampleData::GetMetaboliteWithPeakID(int peakID) {
    for (CMetaboliteData& metabolite : m_Metabolites) {
        if (metabolite.GetPeakNum() == peakID)
            return &metabolite;
    }
    return nullptr;
}

int CSampleData::AddMSMetabolite(const CMetaboliteData& metabolite) {
    const int index = m_Metabolites.Add(metabolite);
    if (metabolite.IsExpected())
        m_nExpectedMetaboliteLastEntry = index;
    else if (metabolite.IsUnexpected())
        m_nUnexpectedMetaboliteLastEntry = index;
    m_nMSMetaboliteCount = index + 1;
    return index;
}

int CSampleData::AddMSMSMetabolite(int entry, const CMetaboliteData& metabolite) {
    if (entry < 0 || entry > m_nMSMSRowsStored + kMaxMSMSEntryGap)
        return m_Metabolites.GetSize();
    ++m_nMSMSRowsStored;
    const int index = m_nMSMetaboliteCount + entry;
    if (index >= m_Metabolites.GetSize())
        m_Metabolites.SetSize(index + 1);
    m_Metabolites[index] = metabolite;
    m_Metabolites[index].SetMSMSParent(
        index == IndexSum(m_nMSMetaboliteCount, m_MSMSCorrelation.ParentEntry()));
    m_nMSMSMetaboliteLastEntry = std::max(m_nMSMSMetaboliteLastEntry, index);
    return m_Metabolites.GetSize();
}

void CSampleData::SetMSMSParentMetabolite(int entry) {
    const int first = m_nMSMetaboliteCount;
    const int end = std::min(first + GetMSMSCorrelationMetaboliteCount(), m_Metabolites.GetSize());
    for (int i = std::max(first, 0); i < end; ++i) {
        if (m_Metabolites[i].IsMSMSCorrelation())
            m_Metabolites[i].SetMSMSParent(false);
    }
    if (CMetaboliteData* parent = GetMetabolite(IndexSum(first, entry)))
        parent->SetMSMSParent(true);
    m_MSMSCorrelation.ParentEntry(entry);
}

void CSampleData::AddExpectedMetabolite(int index) {
    SetMetaboliteAsExpected(index);
    IncrementExpectedMetaboliteCount();
}

void CSampleData::SetMetaboliteAsExpected(int index) {
    const int lowEnergyExpected = GetExpectedMetaboliteCount() - m_nHighEnergyExpectedCount;
    if (index < 0 || index >= m_Metabolites.GetSize() || index <= lowEnergyExpected)
        return;
    const double mz = m_Metabolites[index].GetMzFound();
    int position = 0;
    while (position < lowEnergyExpected && !(m_Metabolites[position].GetMzFound() > mz))
        ++position;
    // Records position..index-1 move up one place and the metabolite takes the freed place.
    CMetaboliteData* first = m_Metabolites.GetData();
    std::rotate(first + position, first + index, first + index + 1);
}

void CSampleData::SetHighEnergyMetaboliteCount() {
    m_nHighEnergyExpectedCount = 0;
    m_nHighEnergyUnexpectedCount = 0;
    for (const CMetaboliteData& metabolite : m_Metabolites) {
        if (!metabolite.IsHiEnergy() || metabolite.IsMSMSCorrelation())
            continue;
        if (metabolite.IsExpected())
            ++m_nHighEnergyExpectedCount;
        else
            ++m_nHighEnergyUnexpectedCount;
    }
}

int CSampleData::ReadMetabolite(CDelimitFile* file, bool expected) {
    // Within a sample's Read the index of the sample's reading is used; a section read on its own
    // indexes the sample once for all its rows.
    CPeakIndex own;
    const CPeakIndex& peaks = ReadingPeakIndex(own);
    CFileRecord record;
    while (record.Read(file)) {
        if (record.GetType() != RECORD_FIELD)
            continue;
        const CStringArray& row = *record.GetInput();
        // A row begins with its compound's number; a line that does not is still read as a row
        // of compound 0, as it always was, but noted.
        size_t used = 0;
        ParseInt(row[0].view(), used);
        if (used == 0)
            file->NoteProblem(CReadReport::StrayRecord,
                              expected ? "EXPECTED METABOLITES" : "UNEXPECTED METABOLITES",
                              row[0].view());
        MSMetaboliteNewField(row, expected, peaks);
    }
    return 1;
}

const CPeakIndex& CSampleData::ReadingPeakIndex(CPeakIndex& own) {
    CPeakIndex& index = m_pReadingPeakIndex != nullptr ? *m_pReadingPeakIndex : own;
    if (!index.IsBuilt())
        index.Build(*this);
    return index;
}

int CSampleData::MSMetaboliteNewField(const CStringArray& row, bool expected) {
    CPeakIndex own;
    return MSMetaboliteNewField(row, expected, ReadingPeakIndex(own));
}

// The looked-up values of an MS row: the peak gives the retention time and the area (no peak: time
// 0, area -1); the compound gives the parent mass; a diode-array or analog function with a
// cluster marks the metabolite as analog/PDA; a mass of the peak's spectrum within 0.0001 of the
// found m/z tells whether the peak is an isotope peak.
int CSampleData::MSMetaboliteNewField(const CStringArray& row, bool expected,
                                      const CPeakIndex& index) {
    const int count = row.GetSize();
    const int compound = count > 0 ? ParseInt(row[0]) : 0;
    const double precursor = count > 1 ? ParseDouble(row[1]) : 0.0;
    const double metaboliteMass = count > 2 ? ParseDouble(row[2]) : 0.0;
    const bool found = count > 3 && ParseInt(row[3]) != 0;
    const CString formula = IsFormulaMarker(Column(row, 4)) ? CString() : Column(row, 4);
    const CString& traceList = Column(row, 5);
    const CString peaks = count > 6 ? row[6] : CString("0");
    const CString& name = Column(row, 7);
    const CString& mDa = Column(row, 8);
    const CString& ppm = Column(row, 9);
    const bool msms = count > 10 && ParseInt(row[10]) != 0;
    const bool confirmed = count > 11 && ParseInt(row[11]) != 0;
    const CString& moleculeReference = Column(row, 12);
    // The user's label is read back too (a 13-field row has none), so that saving again keeps it.
    const CString& label = Column(row, 13);

    m_nNextCompoundNumber =
        std::max(m_nNextCompoundNumber, compound < INT_MAX ? compound + 1 : INT_MAX);
    const CCompoundData* parent = GetCompound(compound);
    const double parentMass = parent != nullptr ? parent->GetMass() : 0.0;
    m_dMaxParentMass = std::max(m_dMaxParentMass, parentMass);

    ForEachItem(peaks, [&](const CString& text) {
        PeakIdentifier id;
        if (!ScanPeakIdentifier(text, id) || id.peak < 0)
            return;
        if (id.cluster < 1)
            id.cluster = index.PeakCluster(id.peak);
        double time = 0.0;
        double area = -1.0;
        if (const CChromatogramPeak* peak = index.Peak(id.peak, id.function, id.trace)) {
            time = peak->GetTime();
            area = peak->GetAreaAbs();
        }
        bool analogPDA = false;
        if (const CFunctionData* function = index.Function(id.function))
            analogPDA = function->GetTraceType() != MS_TRACE && id.cluster > 0;
        bool isotope = false;
        if (const CSpectrumData* spectrum = index.Spectrum(id.peak)) {
            for (const CMassesData& mass : *spectrum->MassesGet()) {
                if (std::fabs(mass.GetObserved() - id.mz) <= kSameMass) {
                    isotope = mass.IsIsotope();
                    break;
                }
            }
        }
        const int index = AddMSMetabolite(CMetaboliteData(
            expected, compound, parentMass, precursor, metaboliteMass, id.mz, id.molecularMass,
            found, confirmed, traceList, id.cluster, id.peak, id.function, id.trace, time, area,
            name, formula, mDa, ppm, msms, analogPDA, moleculeReference, isotope));
        m_Metabolites[index].SetUserLabel(label);
    });
    return 1;
}

int CSampleData::ReadMSMSCorrelation(CDelimitFile* file) {
    enum { kMassWindow, kParentEntry, kMetabolites, kCorrelationTable };
    CFileRecord record;
    record.AddField("MassWindow", kMassWindow);
    record.AddField("ParentEntry", kParentEntry);
    record.AddParagraph("METABOLITES", kMetabolites);
    record.AddParagraph("CORRELATION TABLE", kCorrelationTable);
    record.ReadEach(
        file,
        [this](const CStringArray& input, int id) {
            const CString& value = CFileRecord::FieldValue(input);
            if (id == kMassWindow)
                m_MSMSCorrelation.MassWindow(ParseDouble(value));
            else if (id == kParentEntry)
                m_MSMSCorrelation.ParentEntry(ParseInt(value));
        },
        // The correlation table is read under its own header. (It always follows the metabolite
        // table; reading it there rather than as "the block after the metabolites" keeps a
        // section without a table from reading on past its own end.)
        [this](CDelimitFile* in, int id) {
            CFileRecord rows;
            while (rows.Read(in)) {
                if (rows.GetType() != RECORD_FIELD)
                    continue;
                if (id == kMetabolites)
                    MSMSMetaboliteNewField(*rows.GetInput());
                else if (id == kCorrelationTable)
                    MSMSAddCorrelationToMetabolite(*rows.GetInput());
            }
        });
    return 1;
}

int CSampleData::MSMSMetaboliteNewField(const CStringArray& row) {
    const int count = row.GetSize();
    const int entry = count > 0 ? ParseInt(row[0]) : 0;
    const double setMass = count > 1 ? ParseDouble(row[1]) : 0.0;
    const double parentMass = count > 2 ? ParseDouble(row[2]) : 0.0;
    const int trace = count > 3 ? ParseInt(row[3]) : 0;
    const double metaboliteMass = count > 4 ? ParseDouble(row[4]) : 0.0;
    const bool status = count > 5 && ParseInt(row[5]) != 0;
    const int peak = count > 6 ? ParseInt(row[6]) : 0;
    const int cluster = count > 7 ? ParseInt(row[7]) : 0;
    const double time = count > 8 ? ParseDouble(row[8]) : 0.0;
    const CString neutralLoss = NeutralLossOf(Column(row, 9));
    AddMSMSMetabolite(entry, CMetaboliteData(setMass, parentMass, metaboliteMass, status, trace,
                                             peak, cluster, time, -1.0, neutralLoss,
                                             Column(row, 11), Column(row, 12), Column(row, 13)));
    return 1;
}

int CSampleData::MSMSAddCorrelationToMetabolite(const CStringArray& row) {
    if (row.GetSize() < 3)
        return 0;
    const int otherEntry = ParseInt(row[1]);
    CMetaboliteData* metabolite = GetMetabolite(IndexSum(m_nMSMetaboliteCount, ParseInt(row[0])));
    if (metabolite == nullptr || otherEntry < 0 ||
        otherEntry > metabolite->GetCorrelationEntryCount() + kMaxMSMSEntryGap)
        return 1;
    metabolite->SetCorrelationMasses(otherEntry, CorrelationTextOf(row[2]));
    metabolite->SetNeutralLossesFromAllParentSpectrumMasses(otherEntry,
                                                            CorrelationTextOf(Column(row, 3)));
    metabolite->SetCommonNeutralLosses(otherEntry, CorrelationTextOf(Column(row, 4)));
    return 1;
}

// The "Molfile" column of a parent with a structure: "<report>_Parent", the name under which the
// writer lists the parent's molfile in the same report. (The reference read back from a report
// already carries that report's name, so it is not written after the new name again: a saved
// report keeps finding its parent's structure, and saving is a fixed point apart from the name.)
static CString MoleculeFileReference(const CDelimitFile& file, const CMetaboliteData& metabolite) {
    CString reference;
    if (IsParent(metabolite) && !metabolite.GetMoleculeReference().IsEmpty())
        reference.Format("%s_%s", file.GetFileName().c_str(), MetaboliteName::kParent);
    return reference;
}

int CSampleData::WriteMSMetabolites(CDelimitFile* file, bool expected) {
    file->WriteBlockStart();
    file->WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Compound", "Precursor", "Metabolite",
                       "Found", "Formula", "ChroTrace", "Peak", "MetName", "mDa", "PPM", "MSMS",
                       "Confirmed", "Molfile", "Label");
    CString peak;
    CString mDa;
    CString ppm;
    CString traceList;
    for (const CMetaboliteData& metabolite : m_Metabolites) {
        if (metabolite.IsMSMSCorrelation() || metabolite.IsExpected() != expected)
            continue;
        if (metabolite.GetPeakNum() < 1)
            peak.Format("%d", metabolite.GetPeakNum());
        else
            peak.Format("%d/%d/%d/%.4f/%d/%.4f", metabolite.GetPeakNum(),
                        metabolite.GetFunctionNum(), metabolite.GetTraceNum(),
                        metabolite.GetMzFound(), metabolite.GetPeakClusterNum(),
                        metabolite.GetMolecularMass());
        metabolite.GetmDa(mDa);
        metabolite.GetPPM(ppm);
        metabolite.GetChroTraceList(traceList);
        const char* formula = metabolite.GetFormula();
        file->WriteRecord(
            "%d%.4f%.4f%d%s%s%s%s%s%s%d%d%s%s", metabolite.GetCompound(), metabolite.GetPrecursor(),
            metabolite.GetMetabolite(), metabolite.GetFound() ? 1 : 0,
            *formula != '\0' ? formula : "0", traceList.c_str(), peak.c_str(),
            metabolite.GetMetName(), mDa.c_str(), ppm.c_str(), metabolite.GetMSMS() ? 1 : 0,
            metabolite.GetConfirmed() ? 1 : 0, MoleculeFileReference(*file, metabolite).c_str(),
            metabolite.GetUserLabel());
    }
    file->WriteBlockEnd();
    return 1;
}

int CSampleData::WriteMSMSMetabolites(CDelimitFile* file) {
    const int firstEntry = GetExpectedMetaboliteCount() + GetUnexpectedMetaboliteCount();
    const int entries = GetMSMSCorrelationMetaboliteCount();
    file->WriteBlockStart();
    file->WriteRecord("%s%.4f", "MassWindow", m_MSMSCorrelation.MassWindow());
    file->WriteRecord("%s%d", "ParentEntry", m_MSMSCorrelation.ParentEntry());

    file->WriteSectionHeader("METABOLITES");
    file->WriteBlockStart();
    file->WriteComment("%s%s%s%s%s%s%s%s%s%s%s%s%s%s", "Entry", "SetMass", "ParentMass", "TraceNum",
                       "Metabolite", "Status", "PeakID", "Cluster", "Time", "NeutralLoss", "Spare",
                       "Name", "Formula", "Molfile");
    CString neutralLoss;
    for (int i = 0; i < m_Metabolites.GetSize(); ++i) {
        const CMetaboliteData& metabolite = m_Metabolites[i];
        if (!metabolite.IsMSMSCorrelation())
            continue;
        metabolite.GetNeutralLoss(neutralLoss);
        file->WriteRecord(
            "%d%.4f%.4f%d%.4f%d%d%d%.2f%s%s%s%s%s", i - firstEntry,
            metabolite.GetMSMSSpectrumSetMass(), metabolite.GetParentMass(),
            metabolite.GetTraceNum(), metabolite.GetMetabolite(), metabolite.GetFound() ? 1 : 0,
            metabolite.GetPeakNum(), metabolite.GetPeakClusterNum(), metabolite.GetPeakTime(),
            neutralLoss.IsEmpty() ? "no" : neutralLoss.c_str(), "", metabolite.GetMetName(),
            metabolite.GetFormula(), MoleculeFileReference(*file, metabolite).c_str());
    }
    file->WriteBlockEnd();

    file->WriteSectionHeader("CORRELATION TABLE");
    file->WriteBlockStart();
    file->WriteComment("%s%s%s%s%s", "Entry1", "Entry2", "Entry1MassesMatched",
                       "Entry1NeutralLossesMatched", "Entry1CommonNeutralLosses");
    CString masses;
    CString losses;
    CString common;
    auto orZero = [](const CString& text) { return text.IsEmpty() ? "0" : text.c_str(); };
    for (int i = 0; i < m_Metabolites.GetSize(); ++i) {
        const CMetaboliteData& metabolite = m_Metabolites[i];
        if (!metabolite.IsMSMSCorrelation())
            continue;
        for (int entry = 0; entry < entries; ++entry) {
            metabolite.GetCorrelationMasses(entry, masses);
            metabolite.GetNeutralLossesFromAllParentSpectrumMassesAt(entry, losses);
            metabolite.GetCommonNeutralLossesAt(entry, common);
            file->WriteRecord("%d%d%s%s%s", i - firstEntry, entry, orZero(masses), orZero(losses),
                              orZero(common));
        }
    }
    file->WriteBlockEnd();
    file->WriteBlockEnd();
    return 1;
}

} // namespace quillon
