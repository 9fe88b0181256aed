#pragma once

#include <quillon/chemistry/Formula.h>

#include <vector>

namespace quillon {

// One nominal peak of an isotope cluster: its abundance-weighted mean mass (u) and its intensity
// in percent of the cluster's most abundant peak.
struct IsotopePeak {
    double mass;
    double relativeIntensity;
};

// The isotope cluster of a formula: the nominal peaks (M, M+1, M+2, ...; also peaks below M for
// elements such as selenium whose lightest isotope is not the most abundant) obtained by
// convolving the natural isotope distributions of its atoms.
class CIsotopeModel {
public:
    // Peaks weaker than this percentage of the most abundant peak are left out by default.
    static constexpr double kDefaultPruneBelow = 0.01;
    // The most atoms a modelled formula may hold. Far beyond any molecule a report describes, it
    // bounds the work: 100,000 selenium atoms, a cluster of thousands of nominal masses, take
    // about a tenth of a second; the parser's largest formulas would take minutes.
    static constexpr long long kMaxAtoms = 100000;

    // Computes the cluster of a neutral formula. Throws CFormulaError for an empty formula, one
    // with a negative count or one of more than kMaxAtoms atoms.
    explicit CIsotopeModel(const CFormula& formula, double pruneBelowPercent = kDefaultPruneBelow);

    // The kept peaks in ascending mass; the most abundant has relative intensity 100.
    const std::vector<IsotopePeak>& Peaks() const { return m_peaks; }
    const IsotopePeak& MostAbundant() const;

    // Moves every peak by the same mass, e.g. minus the electron mass for a singly charged cation.
    void ShiftMasses(double delta);

private:
    std::vector<IsotopePeak> m_peaks;
};

} // namespace quillon
