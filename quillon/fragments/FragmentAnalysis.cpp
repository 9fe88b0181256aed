#include <quillon/fragments/FragmentAnalysis.h>

#include <quillon/chemistry/Formula.h>
#include <quillon/fragments/AnalysisSupport.h>
#include <quillon/metabolites/DivBroParams.h>
#include <quillon/platform/Exception.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <exception>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CFragmentAnalysis, CObject)

using namespace fragments;

namespace {

constexpr const char* kMessageTitle = "Hollbeck Browser";

// Ends the progress display and shows the message of a failed run; a host hook that throws in
// turn is ignored, so that nothing leaves the analysis.
void ReportFailure(const CString& message, bool progressShown) {
    try {
        if (progressShown)
            EndProgress();
        ShowMessage(message, kMessageTitle, MessageIcon::Exclamation);
    } catch (...) {
    }
}

} // namespace

void CFragmentAnalysis::Initialise() {
    m_Enabled = false;
    m_HasResults = m_HasNeutralLosses = m_HasFragments = m_HasParents = false;
    m_LowEnergyThreshold = -1.0;
    m_LoEnergyFunctions.RemoveAll();
    m_HiEnergyFunctions.RemoveAll();
    InitialiseAnalysis(nullptr);
    m_ParentMz = 0.0;
    m_ParentOffset = 0;
    InitialiseParams(CDivBroParams());
    m_ParentFormula.Empty();
}

CFragmentAnalysis& CFragmentAnalysis::operator=(const CFragmentAnalysis& source) {
    if (this == &source)
        return *this;
    Initialise();
    m_Enabled = source.m_Enabled;
    m_HasResults = source.m_HasResults;
    m_HasNeutralLosses = source.m_HasNeutralLosses;
    m_HasFragments = source.m_HasFragments;
    m_HasParents = source.m_HasParents;
    m_UseMassDefectFilter = source.m_UseMassDefectFilter;
    m_ExtraOption = source.m_ExtraOption;
    m_LowEnergyThreshold = source.m_LowEnergyThreshold;
    m_IntensityThreshold = source.m_IntensityThreshold;
    m_ParentIntensityThreshold = source.m_ParentIntensityThreshold;
    m_MassDefectLower = source.m_MassDefectLower;
    m_MassDefectUpper = source.m_MassDefectUpper;
    m_MassTolerance = source.m_MassTolerance;
    m_LastExpectedIndex = source.m_LastExpectedIndex;
    m_IsotopeModelValid = source.m_IsotopeModelValid;
    m_IsotopeModel = source.m_IsotopeModel;
    m_ParentFormula = source.m_ParentFormula;
    m_LoEnergyFunctions = source.m_LoEnergyFunctions;
    m_HiEnergyFunctions = source.m_HiEnergyFunctions;
    m_Parents = source.m_Parents;
    m_NeutralLossEntries = source.m_NeutralLossEntries;
    m_NeutralLossSpectra = source.m_NeutralLossSpectra;
    m_NeutralLossOccurrences = source.m_NeutralLossOccurrences;
    m_Fragments = source.m_Fragments;
    m_FragmentPrintFlags = source.m_FragmentPrintFlags;
    m_PartnerOrder = source.m_PartnerOrder;
    return *this;
}

void CFragmentAnalysis::InitialiseAnalysis(CSampleData* sample) {
    m_IsotopeModelValid = false;
    m_HasNeutralLosses = m_HasFragments = m_HasParents = m_HasResults = false;
    m_LastExpectedIndex = -1;
    m_Parents.RemoveAll();
    m_PartnerOrder.clear();
    m_NeutralLossEntries.RemoveAll();
    m_NeutralLossSpectra.RemoveAll();
    m_NeutralLossOccurrences.RemoveAll();
    m_Fragments.RemoveAll();
    m_FragmentPrintFlags.RemoveAll();
    if (sample != nullptr)
        FindParentMz(sample);
}

void CFragmentAnalysis::InitialiseParams(const CDivBroParams& params) {
    InitialiseParams(params.FragmentIntensityThreshold, params.FragmentMassTolerance,
                     params.FragmentUseMassDefectFilter, params.FragmentMassDefectLower,
                     params.FragmentMassDefectUpper, params.FragmentParentIntensityThreshold,
                     params.FragmentExtraOption);
}

void CFragmentAnalysis::InitialiseParams(double intensityThreshold, double massTolerance,
                                         bool useMassDefectFilter, double massDefectLower,
                                         double massDefectUpper, double parentIntensityThreshold,
                                         bool extraOption) {
    m_IntensityThreshold = intensityThreshold;
    m_MassTolerance = massTolerance;
    m_UseMassDefectFilter = useMassDefectFilter;
    m_MassDefectLower = useMassDefectFilter ? massDefectLower : 0.5;
    m_MassDefectUpper = useMassDefectFilter ? massDefectUpper : 0.5;
    m_ParentIntensityThreshold = parentIntensityThreshold;
    m_ExtraOption = extraOption;
}

bool CFragmentAnalysis::DoFragmentAnalysis(CSampleData* sample) {
    if (sample == nullptr)
        return false;
    bool progressShown = false;
    try {
        InitialiseAnalysis(sample);
        if (!m_Enabled)
            return false;
        ReadParameters(sample);
        SetUpIsotopeModel(sample);
        BeginProgress(kProgressText, 0, 300);
        progressShown = true;
        const bool result = RunStages(sample);
        progressShown = false;
        EndProgress();
        return result;
    } catch (const CException& exception) {
        char text[260] = "";
        exception.GetErrorMessage(text, sizeof text);
        CString message;
        message.Format("Exception generated during fragment analysis:\n%s", text);
        ReportFailure(message, progressShown);
    } catch (...) {
        ReportFailure("Unknown exception generated during fragment analysis", progressShown);
    }
    return false;
}

bool CFragmentAnalysis::RunStages(CSampleData* sample) {
    // Only the filtered spectra of this run stay on the functions.
    for (int f = 0; f < sample->GetFunctionCount(); ++f)
        sample->GetFunction(f)->ClearFilteredSpectra();
    bool result = CreateParentsList(sample);
    if (result)
        result = CreateFragmentMassList(sample);
    if (result)
        result = DetermineNeutralLosses(sample);
    m_HasResults = m_HasNeutralLosses || m_HasFragments || m_HasParents;
    return result;
}

void CFragmentAnalysis::ReadParameters(CSampleData* sample) {
    const CDivBroParams* params = sample->GetParams();
    InitialiseParams(params != nullptr ? *params : CDivBroParams());
}

void CFragmentAnalysis::SetUpIsotopeModel(CSampleData* sample) {
    m_IsotopeModel.reset();
    m_IsotopeModelValid = false;
    const CCompoundData* compound = sample->GetCompound(0);
    if (compound == nullptr)
        return;
    CString formula;
    compound->GetFormula(formula);
    if (formula.IsEmpty() || std::isdigit(static_cast<unsigned char>(formula[0])))
        return;
    m_ParentFormula = formula;
    try {
        m_IsotopeModel.emplace(CFormula::Parse(formula.c_str()));
        m_IsotopeModelValid = !m_IsotopeModel->Peaks().empty();
    } catch (const std::exception&) {
        // A formula the element table cannot read gives no isotope model; the analysis goes on
        // without the isotope step.
        m_IsotopeModel.reset();
    }
}

bool CFragmentAnalysis::LoEnergyFunctionNum(int functionNumber) const {
    return std::any_of(m_LoEnergyFunctions.begin(), m_LoEnergyFunctions.end(),
                       [&](const auto& pair) { return pair.second == functionNumber; });
}

bool CFragmentAnalysis::HiEnergyFunctionNum(int functionNumber) const {
    return std::any_of(m_HiEnergyFunctions.begin(), m_HiEnergyFunctions.end(),
                       [&](const auto& pair) { return pair.second == functionNumber; });
}

int CFragmentAnalysis::GetFunctionIndex(int functionNumber) const {
    for (const auto* list : {&m_HiEnergyFunctions, &m_LoEnergyFunctions}) {
        for (const auto& [index, number] : *list) {
            if (number == functionNumber)
                return index;
        }
    }
    return -1;
}

bool CFragmentAnalysis::IsValidNeutralLoss(double loss) const {
    const double f = std::fmod(std::fabs(loss), 1.0);
    const double v = loss > 0.0 ? 1.0 - f : f;
    if (!m_UseMassDefectFilter)
        return true;
    // r takes the cap also when the quotient is not a number (a loss of 0 at a parent m/z of 0).
    const double quotient = std::fabs(loss) / std::fabs(m_ParentMz - m_ParentOffset);
    const double r = quotient < 1.0 ? quotient : 1.0;
    const double s = 0.75 + 0.25 * r;
    return v <= s * m_MassDefectLower || v >= 1.0 - s * m_MassDefectUpper;
}

void CFragmentAnalysis::GetParentMasses(CStringArray& texts, CUIntArray& metaboliteIndices,
                                        int& lastExpectedIndex) const {
    lastExpectedIndex = m_LastExpectedIndex;
    texts.RemoveAll();
    metaboliteIndices.RemoveAll();
    if (!m_HasParents)
        return;
    int last = -1;
    for (const ParentEntry& entry : m_Parents) {
        if (entry.ParentIndex > last) {
            CString text;
            text.Format("%.4f", entry.ParentMz);
            texts.Add(text);
            metaboliteIndices.Add(static_cast<UINT>(entry.ParentIndex));
            last = entry.ParentIndex;
        }
    }
}

void CFragmentAnalysis::GetFragments(CStringArray& texts) const {
    texts.RemoveAll();
    if (!m_HasFragments || m_Fragments.IsEmpty())
        return;
    auto addLine = [&](int mass, int count) {
        CString line;
        line.Format("%d  (%d %s)", mass, count, count == 1 ? "spectrum" : "spectra");
        texts.Add(line);
    };
    int mass = m_Fragments[0].NominalMass;
    int count = 0;
    int lastCluster = 0;
    for (const FragmentEntry& entry : m_Fragments) {
        if (entry.NominalMass != mass) {
            addLine(mass, count);
            mass = entry.NominalMass;
            count = 1;
            lastCluster = 0;
        } else if (entry.ClusterID != lastCluster) {
            ++count;
            lastCluster = entry.ClusterID;
        }
    }
    addLine(mass, count);
}

void CFragmentAnalysis::GetFragmentMasses(CUIntArray& masses) const {
    masses.RemoveAll();
    if (!m_HasFragments || m_Fragments.IsEmpty())
        return;
    for (int i = 0; i < m_Fragments.GetSize(); ++i) {
        if (i == 0 || m_Fragments[i].NominalMass != m_Fragments[i - 1].NominalMass)
            masses.Add(static_cast<UINT>(m_Fragments[i].NominalMass));
    }
}

} // namespace quillon
