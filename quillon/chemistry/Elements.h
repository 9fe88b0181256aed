#pragma once

#include <span>
#include <string_view>

namespace quillon {

// One stable isotope of an element: its mass number, exact mass (u) and natural abundance
// (mole fraction, the isotopes of an element summing to 1).
struct IsotopeData {
    int massNumber;
    double mass;
    double abundance;
};

// One element of the table: symbol, atomic number and its naturally occurring isotopes in
// ascending mass.
struct ElementData {
    std::string_view symbol;
    int atomicNumber;
    std::span<const IsotopeData> isotopes;

    // The isotope of highest natural abundance; its mass is the element's monoisotopic mass.
    const IsotopeData& MostAbundantIsotope() const;
    double MonoisotopicMass() const { return MostAbundantIsotope().mass; }
};

// The table of elements used by formula parsing and isotope models. Masses and abundances are
// the published reference values of the atomic weights and isotopic compositions table.
class CElements {
public:
    // Mass of the electron (u), removed from a neutral formula's mass to form a cation.
    static constexpr double kElectronMass = 0.000548579909;

    // Every element of the table, in ascending atomic number.
    static std::span<const ElementData> All();

    // The element with exactly this symbol (case-sensitive, "Cl" not "CL"); null when unknown.
    static const ElementData* Find(std::string_view symbol);

    // The position of an element within All(); -1 for an element not of this table.
    static int IndexOf(const ElementData* element);
};

} // namespace quillon
