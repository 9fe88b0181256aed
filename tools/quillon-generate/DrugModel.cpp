#include "DrugModel.h"

namespace quillon::generate {

namespace {

CFormula F(const char* text) {
    return text[0] == '\0' ? CFormula() : CFormula::Parse(text);
}

Biotransformation Change(const char* name, const char* added, const char* removed, double shift,
                         int demethylations = 0, bool hydroxylated = false,
                         bool glucuronide = false, bool sulfate = false) {
    return {name, F(added), F(removed), shift, demethylations, hydroxylated, glucuronide, sulfate};
}

// The amine that the side chain loses, by the number of methyl groups already removed.
CFormula SideChainAmine(int demethylations) {
    switch (demethylations) {
    case 0:
        return F("C2H7N"); // dimethylamine
    case 1:
        return F("CH5N"); // methylamine
    default:
        return F("NH3");
    }
}

// The two iminium ions of the side chain, by the number of methyl groups removed.
std::pair<CFormula, CFormula> SideChainIons(int demethylations) {
    switch (demethylations) {
    case 0:
        return {F("C5H12N"), F("C3H8N")};
    case 1:
        return {F("C4H10N"), F("C2H6N")};
    default:
        return {F("C3H8N"), F("CH4N")};
    }
}

} // namespace

CDrugModel::CDrugModel()
    : m_parentName("Chlorpromazine"), m_parentFormula(F("C17H19ClN2S")),
      m_background(F("C10H30O5Si5")) {
    m_expected = {
        Change("Parent", "", "", 0.0),
        Change("Demethylation", "", "CH2", -0.35, 1),
        Change("Didemethylation", "", "C2H4", -0.75, 2),
        Change("Hydroxylation", "O", "", -1.25, 0, true),
        Change("Dihydroxylation", "O2", "", -2.30, 0, true),
        Change("Dehydrogenation", "", "H2", 0.30),
        Change("Glucuronidation", "C6H8O6", "", -3.10, 0, false, true),
        Change("Hydroxylation + Glucuronidation", "C6H8O7", "", -3.90, 0, true, true),
        Change("Sulfation", "SO3", "", -2.60, 0, false, false, true),
        Change("Hydroxylation + Sulfation", "SO4", "", -3.30, 0, true, false, true),
        Change("Demethylation + Hydroxylation", "O", "CH2", -1.55, 1, true),
        Change("Oxidative Dechlorination", "OH", "Cl", -2.05, 0, true), // Cl replaced by OH
        Change("Methylation", "CH2", "", 0.55),
        Change("Acetylation", "C2H2O", "", 0.85),
        Change("Hydration", "H2O", "", -1.05, 0, true),
        Change("Reduction", "H2", "", 0.20),
        Change("Glutathione Conjugation", "C10H15N3O6S", "", -4.10),
        Change("Demethylation + Glucuronidation", "C5H6O6", "", -3.45, 1, false, true),
    };
    m_unexpected = {
        Change("Trihydroxylation", "O3", "", -2.85, 0, true),
        Change("N-Acetylcysteine Conjugation", "C5H7NO3S", "", -2.40),
        Change("Hydroxylation + Dehydrogenation", "O", "H2", -0.95, 0, true),
        Change("Demethylation + Dihydroxylation", "O2", "CH2", -2.65, 1, true),
        Change("Cysteine Conjugation", "C3H5NO2S", "", -3.20),
        Change("Didemethylation + Hydroxylation", "O", "C2H4", -1.90, 2, true),
    };
    m_neutralLosses = {
        {"Water", "H2O", F("H2O"), true},
        {"Ammonia", "NH3", F("NH3"), true},
        {"Methylamine", "CH5N", F("CH5N"), true},
        {"Carbon monoxide", "CO", F("CO"), true},
        {"Hydrogen chloride", "HCl", F("HCl"), true},
        {"Carbon dioxide", "CO2", F("CO2"), true},
        {"Dimethylamine", "C2H7N", F("C2H7N"), true},
        {"Formic acid", "CH2O2", F("CH2O2"), false},
        {"Sulfur trioxide", "SO3", F("SO3"), true},
        {"Glucuronic acid, dehydrated", "C6H8O6", F("C6H8O6"), true},
    };
}

CFormula CDrugModel::Apply(const Biotransformation& change) const {
    return m_parentFormula + change.added - change.removed;
}

std::vector<FragmentIon> CDrugModel::Fragments(const Biotransformation& change) const {
    const CFormula precursor = Protonated(Apply(change));
    std::vector<FragmentIon> ions;
    ions.push_back({precursor, 22.0});

    // Conjugates first lose their conjugate, leaving the protonated aglycone.
    CFormula core = precursor;
    if (change.glucuronide) {
        core -= F("C6H8O6");
        ions.push_back({core, 85.0});
    }
    if (change.sulfate) {
        core -= F("SO3");
        ions.push_back({core, 70.0});
    }
    if (change.hydroxylated && !change.glucuronide && !change.sulfate) {
        ions.push_back({core - F("H2O"), 14.0});
    }
    if (change.name == "Glutathione Conjugation") {
        ions.push_back({core - F("C5H7NO3"), 45.0}); // pyroglutamic acid
    }

    // The phenothiazine core loses the side-chain amine; the amine side chain gives iminium ions.
    const CFormula amineLoss = core - SideChainAmine(change.demethylations);
    ions.push_back({amineLoss, 100.0});
    if (amineLoss.Count("Cl") > 0) {
        ions.push_back({amineLoss - F("HCl"), 9.0});
    }
    const auto [longIon, shortIon] = SideChainIons(change.demethylations);
    ions.push_back({longIon, 62.0});
    ions.push_back({shortIon, 24.0});

    std::vector<FragmentIon> valid;
    for (FragmentIon& ion : ions) {
        if (ion.ionFormula.IsNonNegative() && !ion.ionFormula.IsEmpty()) {
            valid.push_back(std::move(ion));
        }
    }
    return valid;
}

CFormula CDrugModel::Protonated(const CFormula& neutral) {
    return neutral + F("H");
}

CFormula CDrugModel::Sodiated(const CFormula& neutral) {
    return neutral + F("Na");
}

double CDrugModel::CationMz(const CFormula& ion) {
    return ion.MonoisotopicMass() - CElements::kElectronMass;
}

} // namespace quillon::generate
