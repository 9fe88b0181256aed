#pragma once

#include <quillon/acquisition/DoubleArray.h>
#include <quillon/acquisition/TraceType.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

namespace quillon {

class CChromatoData;
class CSampleData;
struct CDivBroParams;

// The report's vocabulary of metabolite states, result lists and MS/MS states, shared with the
// browser. A metabolite record stores none of these texts: its state is its flags.
namespace MetaboliteText {
inline constexpr const char* kNotSearched = "Not searched";
inline constexpr const char* kMassNotFound = "Mass not found";
inline constexpr const char* kMassFound = "Mass found";
inline constexpr const char* kMatrixRelated = "Matrix related";
inline constexpr const char* kControlMatch = "Control match";
inline constexpr const char* kPotentialMetabolite = "Potential metabolite";
inline constexpr const char* kUnwantedMetabolite = "Unwanted metabolite";
inline constexpr const char* kFalsePositive = "False positive";
inline constexpr const char* kDuplicateMetabolite = "Duplicate metabolite";
inline constexpr const char* kNoEligibleMetabolites = "No eligible metabolites";
inline constexpr const char* kMSMS = "MS/MS";
inline constexpr const char* kMassNotMatchedInMS = "Mass not matched in MS";
inline constexpr const char* kMassMatchedInMS = "Mass matched in MS";
inline constexpr const char* kMSeFragments = "MSe fragments";
inline constexpr const char* kCombinedMetabolitePeaks = "Combined Metabolite Peaks";
inline constexpr const char* kUnrecognized = "unrecognized";
inline constexpr const char* kExcludeMass = "Exclude Mass";
inline constexpr const char* kExpectedMetabolites = "Expected Metabolites";
inline constexpr const char* kUnexpectedMetabolites = "Unexpected Metabolites";
inline constexpr const char* kExcludeMasses = "Exclude Masses";
inline constexpr const char* kMSMSMetabolites = "MS/MS Metabolites";
} // namespace MetaboliteText

// One metabolite result of a sample: expected (a predicted biotransformation that was searched
// for), unexpected (a mass found without a prediction) or MS/MS correlation (found by comparing
// product-ion spectra). The kind is coded by two flags, the correlation flag taking precedence.
// A plain value: copies are deep, including the per-entry correlation lists and the elemental
// candidates.
class CMetaboliteData : public CObject {
    QUILLON_DECLARE_DYNAMIC(CMetaboliteData)

public:
    CMetaboliteData() = default;
    // An expected (expected = true) or unexpected metabolite. The area sets both the peak area
    // and the relative peak area.
    CMetaboliteData(bool expected, int compound, double parentMass, double precursor,
                    double metabolite, double mzFound, double molecularMass, bool found,
                    bool confirmed, CString chroTraceList, int peakClusterNum, int peakNum,
                    int functionNum, int traceNum, double peakTime, double area, CString metName,
                    CString formula, CString mDa, CString ppm, bool msms, bool analogPDA,
                    CString moleculeReference, bool isIsotope);
    // An MS/MS correlation metabolite. The status sets both found and confirmed; the area both
    // areas; the record has no MS/MS data of its own (MSMS false).
    CMetaboliteData(double msmsSpectrumSetMass, double parentMass, double metabolite, bool status,
                    int traceNum, int peakNum, int peakClusterNum, double peakTime, double area,
                    CString neutralLoss, CString metName, CString formula,
                    CString moleculeReference);

    // Kind.
    void SetExpected() { m_bExpected = true, m_bMSMSCorrelation = false; }
    void SetUnexpected() { m_bExpected = false, m_bMSMSCorrelation = false; }
    void SetMSMSCorrelation() { m_bExpected = false, m_bMSMSCorrelation = true; }
    bool IsExpected() const { return m_bExpected && !m_bMSMSCorrelation; }
    bool IsUnexpected() const { return !m_bExpected && !m_bMSMSCorrelation; }
    bool IsMSMSCorrelation() const { return m_bMSMSCorrelation; }

    // Masses, time and areas.
    double GetPrecursor() const { return m_dPrecursor; }
    void SetPrecursor(double mass) { m_dPrecursor = mass; }
    double GetMetabolite() const { return m_dMetabolite; }
    void SetMetabolite(double mass) { m_dMetabolite = mass; }
    double GetMzFound() const { return m_dMzFound; }
    void SetMzFound(double mz) { m_dMzFound = mz; }
    double GetMolecularMass() const { return m_dMolecularMass; }
    void SetMolecularMass(double mass) { m_dMolecularMass = mass; }
    double GetMSMSSpectrumSetMass() const { return m_dMSMSSpectrumSetMass; }
    void SetMSMSSpectrumSetMass(double mass) { m_dMSMSSpectrumSetMass = mass; }
    double GetParentMass() const { return m_dParentMass; }
    void SetParentMass(double mass) { m_dParentMass = mass; }
    double GetPeakTime() const { return m_dPeakTime; }
    void SetPeakTime(double time) { m_dPeakTime = time; }
    double GetPeakArea() const { return m_dPeakArea; } // -1: none
    void SetPeakArea(double area) { m_dPeakArea = area; }
    double GetRelativePeakArea() const { return m_dRelativePeakArea; } // -1: none
    void SetRelativePeakArea(double area) { m_dRelativePeakArea = area; }

    // Numbers that tie the metabolite to the sample's compounds, functions, traces and peaks.
    int GetCompound() const { return m_nCompound; }
    void SetCompound(int compound) { m_nCompound = compound; }
    int GetPeakNum() const { return m_nPeakNum; } // below 1: no peak
    void SetPeakNum(int peak) { m_nPeakNum = peak; }
    int GetPeakClusterNum() const { return m_nPeakClusterNum; }
    void SetPeakClusterNum(int cluster) { m_nPeakClusterNum = cluster; }
    int GetFunctionNum() const { return m_nFunctionNum; }
    void SetFunctionNum(int function) { m_nFunctionNum = function; }
    int GetTraceNum() const { return m_nTraceNum; } // below 1: the peak's own chromatogram
    void SetTraceNum(int trace) { m_nTraceNum = trace; }
    int GetViewEntry() const { return m_nViewEntry; }
    void SetViewEntry(int entry) { m_nViewEntry = entry; }

    // Flags.
    bool GetFound() const { return m_bFound; }
    void SetFound(bool found) { m_bFound = found; }
    bool GetConfirmed() const { return m_bConfirmed; }
    void SetConfirmed(bool confirmed) { m_bConfirmed = confirmed; }
    bool GetMSMS() const { return m_bMSMS; }
    void SetMSMS(bool msms) { m_bMSMS = msms; }
    bool IsHiEnergy() const { return m_bHiEnergy; }
    void SetHiEnergy(bool hiEnergy) { m_bHiEnergy = hiEnergy; }
    bool IsAnalogPDA() const { return m_bAnalogPDA; }
    void SetAnalogPDA(bool analog) { m_bAnalogPDA = analog; }
    bool IsMSMSParent() const { return m_bMSMSParent; }
    void SetMSMSParent(bool parent) { m_bMSMSParent = parent; }
    bool IsSelectedCPT() const { return m_bSelectedCPT; }
    void SetSelectedCPT(bool selected) { m_bSelectedCPT = selected; }
    bool IsElementalEnabled() const { return m_bElementalEnabled; }
    bool GetElementalEnabled() const { return m_bElementalEnabled; }
    void SetElementalEnabled(bool enabled) { m_bElementalEnabled = enabled; }
    bool IsIsotope() const { return m_bIsIsotope; }
    void IsIsotope(bool isotope) { m_bIsIsotope = isotope; }

    // Texts.
    void GetChroTraceList(CString& list) const { list = m_strChroTraceList; }
    void SetChroTraceList(const CString& list) { m_strChroTraceList = list; }
    void GetMetName(CString& name) const { name = m_strMetName; }
    const char* GetMetName() const { return m_strMetName; }
    void SetMetName(const CString& name) { m_strMetName = name; }
    void GetFormula(CString& formula) const { formula = m_strFormula; }
    const char* GetFormula() const { return m_strFormula; }
    void SetFormula(const CString& formula) { m_strFormula = formula; }
    void GetUserLabel(CString& label) const { label = m_strUserLabel; }
    const char* GetUserLabel() const { return m_strUserLabel; }
    void SetUserLabel(const CString& label) { m_strUserLabel = label; }
    void GetNeutralLoss(CString& loss) const { loss = m_strNeutralLoss; }
    void SetNeutralLoss(const CString& loss) { m_strNeutralLoss = loss; }
    CString GetMoleculeReference() const { return m_strMoleculeReference; }
    void SetMoleculeReference(CString reference) { m_strMoleculeReference = std::move(reference); }

    // Mass errors, kept as texts. The numeric setters store one decimal: SetmDa(1.26) keeps
    // "1.3". The numeric getters convert the text (0 for an empty text).
    void SetmDa(double mDa);
    void SetmDa(const CString& mDa) { m_strmDa = mDa; }
    void GetmDa(CString& mDa) const { mDa = m_strmDa; }
    double GetmDa() const;
    void SetPPM(double ppm);
    void SetPPM(const CString& ppm) { m_strPPM = ppm; }
    void GetPPM(CString& ppm) const { ppm = m_strPPM; }
    double GetPPM() const;
    // The mass errors of the molecular mass against the precursor, which a formula first sets:
    // mDa = (molecular - precursor) x 1000, ppm = mDa / molecular x 1000, each kept with one
    // decimal (301.1234 against 301.1240 gives "-0.6" and "-2.0"). Nothing is computed without a
    // formula when the molecular mass is whole, without a molecular mass, or when the formula
    // does not parse.
    void CalculatemDaAndPPM();
    // Sets the precursor to the monoisotopic mass of the formula text, blanks allowed; one
    // trailing charge sign makes it the singly charged ion's ("C17H20ClN2S+" is an electron
    // lighter than "C17H20ClN2S"). An empty formula, or one that does not parse, leaves it
    // unchanged.
    void CalculateIsotopicMassFromFormula();

    // The peak annotation: the cluster number as text.
    void GetPeakAnnotationLabel(CString& label) const;

    // Display state: never displayed, hidden or on display. A record never displayed counts as
    // on display.
    void SetOnDisplay(bool onDisplay) { m_nDisplayState = onDisplay ? 2 : 1; }
    bool GetOnDisplay() const { return m_nDisplayState != 1; }
    bool NotYetDisplayed() const { return m_nDisplayState == 0; }

    // True when the trace is 0, the trace list is empty or "0", or the list names the trace:
    // TraceNumInList(12) is true for "5,12" and false for "112,5".
    bool TraceNumInList(int trace) const;
    // The metabolite's trace in the sample: the peak's own chromatogram when the trace number is
    // below 1, else the sample's trace of that number. Null without a sample.
    CChromatoData* GetTrace(CSampleData* sample) const;
    // Whether the trace suits a metabolite of that detector kind: a diode-array mass chromatogram
    // for PDA_TRACE, an analog trace for ANALOG_TRACE, an MS mass chromatogram otherwise.
    bool CheckValidTrace(const CChromatoData* trace, TRACE_TYPE type) const;

    // Elemental candidates. The adding forms return the new count; DeleteElementalResult
    // returns the count after removal (unchanged for an index outside the list), and
    // InsertElementalResult the count after putting result at index (0 to the count; unchanged
    // for any other index).
    int AddElementalResults();
    int AddElementalResults(const CElementalResultsData& result);
    int GetNumElementalResults() const { return m_ElementalResults.GetSize(); }
    bool GetElementalResults(int index, CElementalResultsData& result) const;
    int DeleteElementalResult(int index);
    int InsertElementalResult(int index, const CElementalResultsData& result);
    // One row of an "ELEMENTAL" section; 0 for a row too short to hold a candidate.
    int ElementalNewField(const CStringArray& row);

    // Lists kept per MS/MS entry of the sample (index = entry). A setter grows its list to hold
    // the entry; a getter beyond its list gives an empty text.
    void SetCorrelationMasses(int entry, const CString& masses);
    void GetCorrelationMasses(int entry, CString& masses) const;
    void SetNeutralLossesFromAllParentSpectrumMasses(int entry, const CString& losses);
    void SetCommonNeutralLosses(int entry, const CString& losses);
    void GetNeutralLossesFromAllParentSpectrumMassesAt(int entry, CString& losses) const;
    void GetCommonNeutralLossesAt(int entry, CString& losses) const;
    // The same lists read at the sample's parent entry.
    void GetCommonProductsParent(CSampleData* sample, CString& masses) const;
    void GetNeutralLossesFromAllParentSpectrumMasses(CSampleData* sample, CString& losses) const;
    void GetCommonNeutralLosses(CSampleData* sample, CString& losses) const;
    void GetCommonProductsMetabolite(CSampleData* sample, CString& masses, int entry) const;
    // Every product of the entries other than the parent's, each once: an item is left out when
    // the union already holds its text.
    void GetCommonProductsNonParent(CSampleData* sample, CString& masses) const;
    void SetNeutralLossesFromAllParentSpectrumMasses(CSampleData* sample, const CString& losses);
    // Remove item index (from 0) of a comma-separated list with its comma: from the parent's
    // neutral losses, from the parent's products, or the index-th product of the non-parent union
    // from every non-parent entry that holds it at four decimals ("86.09640" as well as
    // "86.0964"). False when there is no such item.
    bool DeleteNeutralLoss(CSampleData* sample, int index);
    bool DeleteProductIonParent(CSampleData* sample, int index);
    bool DeleteProductIonNonParent(CSampleData* sample, int index);
    // Parses each entry's correlation masses into numbers, keeping those above 0 ("101.05,0,abc"
    // gives 101.05). Appends to what the arrays hold: meant to run once after reading.
    void ExpandCorrelationMasses();
    const CArray<CDoubleArray>& GetExpandedCorrelationMasses() const {
        return m_ExpandedCorrelationMasses;
    }
    int GetCorrelationEntryCount() const { return m_CorrelationMasses.GetSize(); }

    // Item counts of the comma-separated lists: an empty text counts 0, else one more than its
    // commas ("a,,b" counts 3).
    int GetNumCommonProductsParent(CSampleData* sample) const;
    int GetNumCommonProductsMetabolite(CSampleData* sample, int entry) const;
    // The neutral losses from the parent spectrum's masses (counted 1 when that list is empty but
    // the record's own neutral loss is not) plus the common neutral losses.
    int GetNumNeutralLosses(CSampleData* sample) const;
    static int CountItems(const CString& list);

    // The browser's result filters: true when the metabolite passes. Every metabolite passes a
    // null record. The record's time window is on only when its low time is below its high
    // time; keepHighEnergy turns the hiding of high-energy peaks off. The long form runs the tests
    // in order, the first that decides returning: high-energy, isotope, mass error (expected
    // only, the limit itself passes), area (strictly above the threshold; high-energy peaks are
    // exempt, and expected ones pass at once unless the area filter covers them); then expected
    // and MS/MS metabolites pass, and unexpected ones meet the elemental, time (limits included)
    // and mass-defect tests (301.95 has the defect 0.95 and passes a lower limit of 0.05).
    bool ApplyDataFilters(const CDivBroParams* params, bool keepHighEnergy) const;
    bool ApplyDataFilters(bool massDefectOn, double massDefectUpper, double massDefectLower,
                          bool areaOn, int areaMode, float areaThreshold,
                          float relativeAreaThreshold, bool areaOnExpected, bool massErrorOn,
                          double massErrorLimit, bool isotopeOn, bool elementalOn, bool timeOn,
                          double timeLow, double timeHigh, bool hideHighEnergy) const;
    // The absolute area of the metabolite's peak on a trace of that kind.
    float GetAreaAbs(TRACE_TYPE type, CSampleData* sample) const;

private:
    int m_nDisplayState = 0; // 0 never displayed, 1 hidden, 2 on display
    int m_nViewEntry = -1;
    bool m_bSelectedCPT = false;
    bool m_bMSMSCorrelation = false;
    bool m_bMSMSParent = false;
    bool m_bExpected = false;
    int m_nCompound = 0;
    double m_dPrecursor = 0.0;
    double m_dMetabolite = 0.0;
    double m_dMzFound = 0.0;
    double m_dMolecularMass = 0.0;
    double m_dMSMSSpectrumSetMass = 0.0;
    double m_dParentMass = 0.0;
    double m_dPeakTime = 0.0;
    double m_dPeakArea = -1.0;
    double m_dRelativePeakArea = -1.0;
    bool m_bIsIsotope = false;
    bool m_bFound = false;
    bool m_bConfirmed = false;
    bool m_bMSMS = true;
    bool m_bHiEnergy = false;
    bool m_bAnalogPDA = false;
    CString m_strChroTraceList;
    int m_nPeakNum = 0;
    int m_nPeakClusterNum = -1;
    int m_nFunctionNum = 0;
    int m_nTraceNum = 0;
    CString m_strMetName;
    CString m_strFormula;
    CString m_strmDa;
    CString m_strPPM;
    CString m_strNeutralLoss;
    CString m_strMoleculeReference;
    CString m_strUserLabel;
    CStringArray m_NeutralLossesFromAllParentSpectrumMasses;
    CStringArray m_CommonNeutralLosses;
    CStringArray m_CorrelationMasses;
    CArray<CDoubleArray> m_ExpandedCorrelationMasses;
    bool m_bElementalEnabled = false;
    CArray<CElementalResultsData> m_ElementalResults;
};

} // namespace quillon
