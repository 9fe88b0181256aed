#pragma once

#include <quillon/chemistry/Formula.h>

#include <string>
#include <vector>

namespace quillon::generate {

// A biotransformation as a formula change, with the typical shift of the product's retention
// time (minutes) against the parent's on a reversed-phase column.
struct Biotransformation {
    std::string name;
    CFormula added;
    CFormula removed;
    double retentionShift;
    int demethylations; // methyl groups removed from the side-chain amine
    bool hydroxylated;  // gains an OH that can leave as water
    bool glucuronide;   // carries a glucuronic acid that leaves as C6H8O6
    bool sulfate;       // carries a sulfate that leaves as SO3
};

// An entry of the neutral-loss list of the host settings.
struct NeutralLossDefinition {
    std::string name;
    std::string formulaText; // as chemists write it ("HCl", not the Hill order "ClH")
    CFormula formula;
    bool selected;
};

// One ion of a product-ion (high collision energy) spectrum.
struct FragmentIon {
    CFormula ionFormula; // elemental formula of the cation
    double percent;      // intensity of its monoisotopic peak, percent of the base peak
};

// The parent drug of the generated batch (a phenothiazine with a chlorine, a sulfur and a
// dimethylaminopropyl side chain), the biotransformations that are searched for, the unexpected
// products that the data also hold, and the chemistry of their fragmentation.
class CDrugModel {
public:
    CDrugModel();

    const std::string& ParentName() const { return m_parentName; }
    const CFormula& ParentFormula() const { return m_parentFormula; }
    double ParentRetentionTime() const { return 9.62; }

    // The searched biotransformations (the first is the parent itself, with no change), and the
    // transformations behind the unexpected products.
    const std::vector<Biotransformation>& Expected() const { return m_expected; }
    const std::vector<Biotransformation>& Unexpected() const { return m_unexpected; }
    const std::vector<NeutralLossDefinition>& NeutralLosses() const { return m_neutralLosses; }

    // The neutral product formula of a transformation of the parent.
    CFormula Apply(const Biotransformation& change) const;

    // A background ion present in every injection, listed as an excluded mass.
    const CFormula& BackgroundFormula() const { return m_background; }

    // The ions that a protonated product of the transformation gives at high collision energy:
    // the precursor itself and fragments at the precursor minus real neutral losses.
    std::vector<FragmentIon> Fragments(const Biotransformation& change) const;

    // The protonated molecule [M+H]+ and the sodium adduct [M+Na]+ as cation formulae, and the m/z
    // of a cation formula (the monoisotopic mass less one electron).
    static CFormula Protonated(const CFormula& neutral);
    static CFormula Sodiated(const CFormula& neutral);
    static double CationMz(const CFormula& ion);

private:
    std::string m_parentName;
    CFormula m_parentFormula;
    CFormula m_background;
    std::vector<Biotransformation> m_expected;
    std::vector<Biotransformation> m_unexpected;
    std::vector<NeutralLossDefinition> m_neutralLosses;
};

} // namespace quillon::generate
