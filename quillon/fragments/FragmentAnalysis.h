#pragma once

#include <quillon/chemistry/IsotopeModel.h>
#include <quillon/fragments/NeutralLossEntry.h>
#include <quillon/platform/Array.h>
#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

#include <optional>
#include <utility>
#include <vector>

namespace quillon {

class CSampleData;
struct CDivBroParams;
class CSpectrumData;

// A low-energy metabolite paired with its high-energy partner.
struct ParentEntry {
    double ParentMz = 0.0;         // the low-energy metabolite's found m/z
    double ParentPeakTime = 0.0;   // its peak time
    int ParentIndex = -1;          // its index in the sample's metabolites
    int PartnerIndex = -1;         // the partner's index in the sample's metabolites
    int PartnerFunctionIndex = -1; // index of the partner's function in the sample
    int PartnerPeakNumber = 0;     // the partner's peak number
    int PartnerPeakCluster = 0;    // the partner's peak cluster number

    bool operator==(const ParentEntry&) const = default;
};

// One fragment of a filtered high-energy spectrum.
struct FragmentEntry {
    int NominalMass = 0;    // the fragment m/z rounded to a whole number
    int ParentIndex = -1;   // the parent metabolite; -1 when the partner has no parent
    int PartnerIndex = -1;  // the high-energy partner metabolite
    int FunctionIndex = -1; // the partner's function
    int SpectrumPeakID = 0; // peak identifier of the filtered spectrum
    int ClusterID = 0;      // peak cluster identifier of the filtered spectrum

    bool operator==(const FragmentEntry&) const = default;
};

// A high-energy spectrum in which a neutral loss was found.
struct NeutralLossSpectrum {
    int EntryIndex = 0;
    int PeakNumber = 0;
    int FunctionIndex = 0;

    bool operator==(const NeutralLossSpectrum&) const = default;
};

// One fragment peak that matched a neutral loss.
struct NeutralLossOccurrence {
    int EntryIndex = 0;
    int PeakNumber = 0;
    int FunctionIndex = 0;
    double ParentMz = 0.0;
    double FragmentMz = 0.0;

    bool operator==(const NeutralLossOccurrence&) const = default;
};

// Fragment analysis of one sample: pairs each low-energy metabolite with its high-energy partner
// (a metabolite named "MSe fragments" in the same peak and cluster), filters the partner's
// spectrum down to plausible fragments of the parent (strong enough, not heavier than the
// parent, a mass defect that fits a neutral loss, not an isotope peak), stores the filtered
// spectra on the functions, lists the fragments' nominal masses, and looks for the configured
// neutral losses in the filtered spectra. The sample validates the analysis after reading
// (ValidateFragmentAnalysis); DoFragmentAnalysis then builds the results on demand.
//
// Progress goes through the host's progress hooks (range 0 to 300, a third per stage) and the
// user cancels through the cancel hook, polled before each qualifying metabolite.
class CFragmentAnalysis : public CObject {
    QUILLON_DECLARE_DYNAMIC(CFragmentAnalysis)

public:
    static constexpr const char* kProgressText =
        "Creating fragment analysis, press ESC to cancel... ";

    CFragmentAnalysis() { Initialise(); }
    // Copies as the assignment does: ParentMz and ParentOffset start at 0 in the copy.
    CFragmentAnalysis(const CFragmentAnalysis& source) : CObject() { *this = source; }
    CFragmentAnalysis& operator=(const CFragmentAnalysis& source);
    // Moves take everything, as a sample changing place in its collection needs.
    CFragmentAnalysis(CFragmentAnalysis&& source) noexcept = default;
    CFragmentAnalysis& operator=(CFragmentAnalysis&& source) noexcept = default;
    ~CFragmentAnalysis() override = default;

    // Everything back to the defaults: flags clear, threshold -1, no functions, no results,
    // the default parameters of a browser parameter record (CDivBroParams).
    void Initialise();
    // Empties the results (parents, fragments, neutral-loss lists, print flags) and the stage
    // flags; with a sample, then finds its parent m/z.
    void InitialiseAnalysis(CSampleData* sample);
    // Stores the parameters. Without the mass-defect filter both windows are 0.5 whatever is given.
    void InitialiseParams(double intensityThreshold, double massTolerance, bool useMassDefectFilter,
                          double massDefectLower, double massDefectUpper,
                          double parentIntensityThreshold, bool extraOption);
    // The same from the fragment settings of a browser parameter record.
    void InitialiseParams(const CDivBroParams& params);

    // Runs the analysis on the sample: parents, fragment masses, neutral losses. Returns the
    // result of the last stage run; false for a null sample, while the analysis is not enabled,
    // on cancellation, or when an exception was caught (its message goes to the message hook).
    // No exception leaves it.
    bool DoFragmentAnalysis(CSampleData* sample);

    // Decides from the sample's functions whether the analysis can run and which functions are
    // low- and high-energy; marks every metabolite of a high-energy function. Returns Enabled.
    // Example: functions at collision energies 0 and 0 with cone voltages 20 and 40 give
    // threshold 20, the 40 V function high-energy.
    bool ValidateFragmentAnalysis(CSampleData* sample);

    // The stages, in the order DoFragmentAnalysis runs them. Each returns false when cancelled.
    bool CreateParentsList(CSampleData* sample);
    bool CreateFragmentMassList(CSampleData* sample);
    bool DetermineNeutralLosses(CSampleData* sample);
    void SearchForNeutralLosses(CSampleData* sample);
    void FindParentMz(CSampleData* sample);

    // The mass-defect plausibility test of a loss. f := fmod(|loss|, 1); v := 1 - f for a
    // positive loss, else f; r := min(|loss| / |ParentMz - ParentOffset|, 1); s := 0.75 + 0.25 r.
    // Valid when v <= s * MassDefectLower or v >= 1 - s * MassDefectUpper. Example with the
    // defaults: 18.0106 (v 0.989) and 176.0321 are valid, 50.5 (v 0.5) is not.
    bool IsValidNeutralLoss(double loss) const;

    // Spectrum filters. The masses form keeps, in spectrum order, peaks with intensity >=
    // minIntensity, 0 < mass <= maxMass and a valid loss to the parent m/z, then drops isotope
    // peaks by the parent's isotope model. The spectrum form replaces the spectrum's peaks by
    // the kept ones and rescales its base peak: BPM the mass of the largest kept intensity,
    // BPI that intensity x old BPI x 0.01.
    void GetFilteredNonIsotopicSpectrumMasses(CArray<double>& masses, CArray<float>& intensities,
                                              const CSpectrumData* spectrum, double minIntensity,
                                              double maxMass) const;
    void GetFilteredNonIsotopicSpectrum(CSpectrumData& spectrum, double minIntensity,
                                        double maxMass) const;
    // The filtered acquired spectrum with that peak identifier of the function at functionIndex;
    // returns the count (0 when anything is missing).
    int GetSpectrumMassFragments(CSampleData* sample, int functionIndex, int peakId, double maxMass,
                                 CArray<double>& masses, CArray<float>& intensities) const;
    // The high-energy metabolite with no mass shift (|shift| <= 0.1) of greatest found m/z.
    bool GetParentHighEnergySpectrum(CSampleData* sample, int& functionIndex, int& peakNum) const;
    int GetParentSpectrumMasses(CSampleData* sample, CArray<double>& masses) const;
    // Common neutral losses between the peaks of the parent's own high-energy spectrum, one per
    // nominal mass, ascending; returns their number.
    int GetParentSpectrumCNLs(CSampleData* sample, int tag, CArray<NeutralLossEntry>& losses) const;

    // Parameters and state.
    bool IsEnabled() const { return m_Enabled; }
    bool HasResults() const { return m_HasResults; }
    bool HasNeutralLosses() const { return m_HasNeutralLosses; }
    bool HasFragments() const { return m_HasFragments; }
    bool HasParents() const { return m_HasParents; }
    bool UseMassDefectFilter() const { return m_UseMassDefectFilter; }
    bool GetExtraOption() const { return m_ExtraOption; }
    double GetLowEnergyThreshold() const { return m_LowEnergyThreshold; }
    double GetIntensityThreshold() const { return m_IntensityThreshold; }
    double GetParentIntensityThreshold() const { return m_ParentIntensityThreshold; }
    double GetMassDefectLower() const { return m_MassDefectLower; }
    double GetMassDefectUpper() const { return m_MassDefectUpper; }
    double GetMassTolerance() const { return m_MassTolerance; }
    double GetParentMass() const { return m_ParentMz; }
    int GetParentOffset() const { return m_ParentOffset; }
    int GetLastExpectedIndex() const { return m_LastExpectedIndex; }
    bool IsIsotopeModelValid() const { return m_IsotopeModelValid; }
    const CString& GetParentFormula() const { return m_ParentFormula; }

    // Functions: whether a function number is low- or high-energy, and the function index paired
    // with it (high-energy first; -1 in neither).
    bool LoEnergyFunctionNum(int functionNumber) const;
    bool HiEnergyFunctionNum(int functionNumber) const;
    int GetFunctionIndex(int functionNumber) const;

    // Results, as built by the last run.
    const CArray<ParentEntry>& GetParents() const { return m_Parents; }
    const CArray<FragmentEntry>& GetFragmentEntries() const { return m_Fragments; }
    const CArray<NeutralLossEntry>& GetNeutralLossEntries() const { return m_NeutralLossEntries; }
    const CArray<NeutralLossSpectrum>& GetNeutralLossSpectra() const {
        return m_NeutralLossSpectra;
    }
    const CArray<NeutralLossOccurrence>& GetNeutralLossOccurrences() const {
        return m_NeutralLossOccurrences;
    }
    CUIntArray* GetFragmentPrintFlags() { return &m_FragmentPrintFlags; }

    // Display: one "%.4f" line per parent metabolite; one "%d  (%d spectrum|spectra)" line per
    // nominal fragment mass with the parallel masses; one line per neutral-loss entry.
    void GetParentMasses(CStringArray& texts, CUIntArray& metaboliteIndices,
                         int& lastExpectedIndex) const;
    void GetFragments(CStringArray& texts) const;
    void GetFragmentMasses(CUIntArray& masses) const;
    void GetNeutralLosses(CStringArray& lines) const;

    // Queries by entry index or nominal mass; out of range gives false, -1 or empty outputs.
    bool GetNeutralLoss(int entryIndex, CString& label) const;
    int GetNeutralLossEntry(int nominalMass) const;
    int GetNeutralLossFromEntry(int entryIndex) const;
    bool GetPeaksForNeutralLoss(int entryIndex, int& tag, CUIntArray& functionIndices,
                                CUIntArray& peakNumbers) const;
    bool GetMassesForNeutralLoss(int entryIndex, int& tag, CUIntArray& functionIndices,
                                 CUIntArray& peakNumbers, CStringArray& texts) const;
    bool GetMassesForNeutralLossInSpectrum(int entryIndex, int peakNumber,
                                           CArray<double>& parentMzs,
                                           CArray<double>& fragmentMzs) const;
    bool GetSpectrumForDaughtersOfMass(int parentMetaboliteIndex, int& functionIndex,
                                       int& peakNumber) const;
    // Entries of the fragment list with that nominal mass. The parent index is left out for an
    // entry without a parent unless includeWithoutParent, so the arrays may differ in length.
    bool GetMetabolitesContainingFragment(int nominalMass, CUIntArray& parentIndices,
                                          CUIntArray& functionIndices, CUIntArray& peakIds,
                                          bool includeWithoutParent, bool onePerCluster) const;

private:
    // The analysis proper, between the set-up and the clean-up of DoFragmentAnalysis.
    bool RunStages(CSampleData* sample);
    void ReadParameters(CSampleData* sample);
    void SetUpIsotopeModel(CSampleData* sample);
    // Index into m_Parents of the first entry of that parent (or partner) metabolite; -1 if none.
    int FindParentEntry(int parentIndex) const;
    int FindPartnerEntry(int partnerIndex) const;
    // Removes the isotope peaks from a filtered peak list (ascending masses expected).
    void RemoveIsotopePeaks(CArray<double>& masses, CArray<float>& intensities) const;
    void IndexPartners();
    // The acquired spectrum that GetParentHighEnergySpectrum points at; null when none.
    const CSpectrumData* ParentHighEnergySpectrum(CSampleData* sample) const;

    bool m_Enabled = false;
    bool m_HasResults = false;
    bool m_HasNeutralLosses = false;
    bool m_HasFragments = false;
    bool m_HasParents = false;
    // The parameters: set from CDivBroParams's defaults by Initialise, which every constructor
    // runs.
    bool m_UseMassDefectFilter = false;
    bool m_ExtraOption = false;
    double m_LowEnergyThreshold = -1.0;
    double m_IntensityThreshold = 0.0;
    double m_ParentIntensityThreshold = 0.0;
    double m_MassDefectLower = 0.0;
    double m_MassDefectUpper = 0.0;
    double m_MassTolerance = 0.0;
    double m_ParentMz = 0.0;
    int m_ParentOffset = 0;
    int m_LastExpectedIndex = -1;
    bool m_IsotopeModelValid = false;
    std::optional<CIsotopeModel> m_IsotopeModel;
    CString m_ParentFormula;
    CArray<std::pair<int, int>> m_LoEnergyFunctions; // (function index, function number)
    CArray<std::pair<int, int>> m_HiEnergyFunctions;
    CArray<ParentEntry> m_Parents;
    CArray<NeutralLossEntry> m_NeutralLossEntries;
    CArray<NeutralLossSpectrum> m_NeutralLossSpectra;
    CArray<NeutralLossOccurrence> m_NeutralLossOccurrences;
    CArray<FragmentEntry> m_Fragments;
    CUIntArray m_FragmentPrintFlags;
    // Entry indices of m_Parents ordered by partner index (then entry index), rebuilt with it.
    // m_Parents itself is ordered by parent index, as CreateParentsList appends it.
    std::vector<int> m_PartnerOrder;
};

} // namespace quillon
