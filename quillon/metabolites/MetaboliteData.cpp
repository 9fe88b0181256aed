#include <quillon/metabolites/MetaboliteData.h>

#include <quillon/acquisition/ChromatoData.h>
#include <quillon/document/SampleData.h>
#include <quillon/platform/Numbers.h>

#include <cstdlib>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMetaboliteData, CObject)

CMetaboliteData::CMetaboliteData(bool expected, int compound, double parentMass, double precursor,
                                 double metabolite, double mzFound, double molecularMass,
                                 bool found, bool confirmed, CString chroTraceList,
                                 int peakClusterNum, int peakNum, int functionNum, int traceNum,
                                 double peakTime, double area, CString metName, CString formula,
                                 CString mDa, CString ppm, bool msms, bool analogPDA,
                                 CString moleculeReference, bool isIsotope)
    : m_bExpected(expected), m_nCompound(compound), m_dPrecursor(precursor),
      m_dMetabolite(metabolite), m_dMzFound(mzFound), m_dMolecularMass(molecularMass),
      m_dParentMass(parentMass), m_dPeakTime(peakTime), m_dPeakArea(area),
      m_dRelativePeakArea(area), m_bIsIsotope(isIsotope), m_bFound(found), m_bConfirmed(confirmed),
      m_bMSMS(msms), m_bAnalogPDA(analogPDA), m_strChroTraceList(std::move(chroTraceList)),
      m_nPeakNum(peakNum), m_nPeakClusterNum(peakClusterNum), m_nFunctionNum(functionNum),
      m_nTraceNum(traceNum), m_strMetName(std::move(metName)), m_strFormula(std::move(formula)),
      m_strmDa(std::move(mDa)), m_strPPM(std::move(ppm)),
      m_strMoleculeReference(std::move(moleculeReference)) {}

CMetaboliteData::CMetaboliteData(double msmsSpectrumSetMass, double parentMass, double metabolite,
                                 bool status, int traceNum, int peakNum, int peakClusterNum,
                                 double peakTime, double area, CString neutralLoss, CString metName,
                                 CString formula, CString moleculeReference)
    : m_bMSMSCorrelation(true), m_dMetabolite(metabolite),
      m_dMSMSSpectrumSetMass(msmsSpectrumSetMass), m_dParentMass(parentMass), m_dPeakTime(peakTime),
      m_dPeakArea(area), m_dRelativePeakArea(area), m_bFound(status), m_bConfirmed(status),
      m_bMSMS(false), m_nPeakNum(peakNum), m_nPeakClusterNum(peakClusterNum), m_nTraceNum(traceNum),
      m_strMetName(std::move(metName)), m_strFormula(std::move(formula)),
      m_strNeutralLoss(std::move(neutralLoss)),
      m_strMoleculeReference(std::move(moleculeReference)) {}

void CMetaboliteData::SetmDa(double mDa) {
    m_strmDa.Format("%.1f", mDa);
}

double CMetaboliteData::GetmDa() const {
    return ParseDouble(m_strmDa);
}

void CMetaboliteData::SetPPM(double ppm) {
    m_strPPM.Format("%.1f", ppm);
}

double CMetaboliteData::GetPPM() const {
    return ParseDouble(m_strPPM);
}

void CMetaboliteData::GetPeakAnnotationLabel(CString& label) const {
    label.Format("%d", m_nPeakClusterNum);
}

bool CMetaboliteData::TraceNumInList(int trace) const {
    if (trace == 0 || m_strChroTraceList.IsEmpty() || m_strChroTraceList == "0")
        return true;
    CString needle;
    needle.Format(",%d,", trace);
    return ("," + m_strChroTraceList + ",").Find(needle) >= 0;
}

CChromatoData* CMetaboliteData::GetTrace(CSampleData* sample) const {
    if (sample == nullptr)
        return nullptr;
    if (m_nTraceNum < 1)
        return sample->GetCorispondingChroMatogram(m_nPeakNum, 0);
    return sample->GetTrace(m_nTraceNum);
}

bool CMetaboliteData::CheckValidTrace(const CChromatoData* trace, TRACE_TYPE type) const {
    if (trace == nullptr)
        return false;
    switch (type) {
    case PDA_TRACE:
        return trace->GetTraceType() == PDA_TRACE && trace->IsMassChromatogram();
    case ANALOG_TRACE:
        return trace->GetTraceType() == ANALOG_TRACE;
    default:
        return trace->GetTraceType() == MS_TRACE && trace->IsMassChromatogram();
    }
}

int CMetaboliteData::AddElementalResults() {
    m_ElementalResults.Add(CElementalResultsData());
    return m_ElementalResults.GetSize();
}

int CMetaboliteData::AddElementalResults(const CElementalResultsData& result) {
    m_ElementalResults.Add(result);
    return m_ElementalResults.GetSize();
}

bool CMetaboliteData::GetElementalResults(int index, CElementalResultsData& result) const {
    if (index < 0 || index >= m_ElementalResults.GetSize())
        return false;
    result = m_ElementalResults[index];
    return true;
}

int CMetaboliteData::DeleteElementalResult(int index) {
    if (index >= 0 && index < m_ElementalResults.GetSize())
        m_ElementalResults.RemoveAt(index);
    return m_ElementalResults.GetSize();
}

int CMetaboliteData::InsertElementalResult(int index, const CElementalResultsData& result) {
    if (index >= 0 && index <= m_ElementalResults.GetSize())
        m_ElementalResults.InsertAt(index, result);
    return m_ElementalResults.GetSize();
}

namespace {

void StoreAtEntry(CStringArray& list, int entry, const CString& text) {
    if (entry < 0)
        return;
    if (entry >= list.GetSize())
        list.SetSize(entry + 1);
    list[entry] = text;
}

void TextAtEntry(const CStringArray& list, int entry, CString& text) {
    if (entry >= 0 && entry < list.GetSize())
        text = list[entry];
    else
        text.Empty();
}

} // namespace

void CMetaboliteData::SetCorrelationMasses(int entry, const CString& masses) {
    StoreAtEntry(m_CorrelationMasses, entry, masses);
}

void CMetaboliteData::GetCorrelationMasses(int entry, CString& masses) const {
    TextAtEntry(m_CorrelationMasses, entry, masses);
}

void CMetaboliteData::GetNeutralLossesFromAllParentSpectrumMassesAt(int entry,
                                                                    CString& losses) const {
    TextAtEntry(m_NeutralLossesFromAllParentSpectrumMasses, entry, losses);
}

void CMetaboliteData::GetCommonNeutralLossesAt(int entry, CString& losses) const {
    TextAtEntry(m_CommonNeutralLosses, entry, losses);
}

void CMetaboliteData::SetNeutralLossesFromAllParentSpectrumMasses(int entry,
                                                                  const CString& losses) {
    StoreAtEntry(m_NeutralLossesFromAllParentSpectrumMasses, entry, losses);
}

void CMetaboliteData::SetCommonNeutralLosses(int entry, const CString& losses) {
    StoreAtEntry(m_CommonNeutralLosses, entry, losses);
}

int CMetaboliteData::CountItems(const CString& list) {
    if (list.IsEmpty())
        return 0;
    int count = 1;
    for (char ch : list.view())
        count += ch == ',';
    return count;
}

} // namespace quillon
