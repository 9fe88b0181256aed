// Formulas and isotope models: any text either parses or is refused with CFormulaError; a parsed
// formula prints as a text that parses back to the same formula; the isotope model of any formula
// the parser accepts is computed (quickly: a slow model shows as a timeout).

#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <cmath>
#include <string>
#include <vector>

using namespace quillon;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view text = fuzz::AsText(data, size);
    CFormula formula;
    std::string error;
    if (!CFormula::TryParse(text, formula, &error)) {
        fuzz::Require(!error.empty());
        return 0;
    }
    const std::string printed = formula.ToString();
    CFormula reparsed;
    fuzz::Require(printed.empty() ? formula.IsEmpty() : CFormula::TryParse(printed, reparsed));
    fuzz::Require(printed.empty() || reparsed == formula);
    formula.MonoisotopicMass();
    formula.DoubleBondEquivalent();

    if (formula.IsEmpty() || !formula.IsNonNegative())
        return 0;
    long long atoms = 0;
    for (const int count : formula.Counts())
        atoms += count;
    if (atoms > CIsotopeModel::kMaxAtoms) {
        bool refused = false;
        try {
            CIsotopeModel tooLarge(formula);
        } catch (const CFormulaError&) {
            refused = true;
        }
        fuzz::Require(refused);
        return 0;
    }
    const CIsotopeModel model(formula);
    fuzz::Require(!model.Peaks().empty());
    double strongest = 0;
    std::vector<double> masses;
    std::vector<float> intensities;
    for (const IsotopePeak& peak : model.Peaks()) {
        fuzz::Require(std::isfinite(peak.mass) && std::isfinite(peak.relativeIntensity));
        strongest = std::max(strongest, peak.relativeIntensity);
        masses.push_back(peak.mass);
        intensities.push_back(static_cast<float>(peak.relativeIntensity));
    }
    fuzz::Require(std::abs(strongest - 100.0) < 1e-6);

    // The model's own cluster is one pattern, led by its lightest peak.
    const std::vector<size_t> kept = InferIsotopePatterns(masses, intensities, model);
    fuzz::Require(!kept.empty() && kept.front() == 0);
    return 0;
}
