#include <quillon/chemistry/IsotopeModel.h>

#include <algorithm>
#include <string>

namespace quillon {

namespace {

// Probabilities below this fraction of the largest one are dropped while convolving: far below
// anything a cluster shows, and it keeps the distributions short for large atom counts.
constexpr double kNegligible = 1e-14;

// A distribution over nominal masses: entry i is nominal mass first + i, with its probability and
// the probability-weighted sum of the exact masses that fall on it.
struct NominalDistribution {
    int first = 0;
    std::vector<double> probability{1.0};
    std::vector<double> weightedMass{0.0};
};

NominalDistribution OfElement(const ElementData& element) {
    NominalDistribution distribution;
    distribution.first = element.isotopes.front().massNumber;
    const size_t width =
        static_cast<size_t>(element.isotopes.back().massNumber - distribution.first + 1);
    distribution.probability.assign(width, 0.0);
    distribution.weightedMass.assign(width, 0.0);
    for (const IsotopeData& isotope : element.isotopes) {
        const size_t i = static_cast<size_t>(isotope.massNumber - distribution.first);
        distribution.probability[i] += isotope.abundance;
        distribution.weightedMass[i] += isotope.abundance * isotope.mass;
    }
    return distribution;
}

// Cuts negligible entries from both ends.
void Trim(NominalDistribution& d) {
    const double largest = *std::max_element(d.probability.begin(), d.probability.end());
    const double limit = largest * kNegligible;
    size_t begin = 0;
    while (begin + 1 < d.probability.size() && d.probability[begin] < limit) {
        ++begin;
    }
    size_t end = d.probability.size();
    while (end > begin + 1 && d.probability[end - 1] < limit) {
        --end;
    }
    d.probability = std::vector<double>(d.probability.begin() + static_cast<long>(begin),
                                        d.probability.begin() + static_cast<long>(end));
    d.weightedMass = std::vector<double>(d.weightedMass.begin() + static_cast<long>(begin),
                                         d.weightedMass.begin() + static_cast<long>(end));
    d.first += static_cast<int>(begin);
}

NominalDistribution Convolve(const NominalDistribution& a, const NominalDistribution& b) {
    NominalDistribution sum;
    sum.first = a.first + b.first;
    const size_t width = a.probability.size() + b.probability.size() - 1;
    sum.probability.assign(width, 0.0);
    sum.weightedMass.assign(width, 0.0);
    for (size_t i = 0; i < a.probability.size(); ++i) {
        for (size_t j = 0; j < b.probability.size(); ++j) {
            sum.probability[i + j] += a.probability[i] * b.probability[j];
            sum.weightedMass[i + j] +=
                a.weightedMass[i] * b.probability[j] + a.probability[i] * b.weightedMass[j];
        }
    }
    Trim(sum);
    return sum;
}

// The distribution of count atoms of one element, by repeated squaring.
NominalDistribution Power(NominalDistribution base, int count) {
    NominalDistribution result;
    while (count > 0) {
        if (count & 1) {
            result = Convolve(result, base);
        }
        count >>= 1;
        if (count > 0) {
            base = Convolve(base, base);
        }
    }
    return result;
}

} // namespace

CIsotopeModel::CIsotopeModel(const CFormula& formula, double pruneBelowPercent) {
    if (formula.IsEmpty()) {
        throw CFormulaError("isotope model of an empty formula");
    }
    if (!formula.IsNonNegative()) {
        throw CFormulaError("isotope model of a formula with a negative count: " +
                            formula.ToString());
    }
    long long atoms = 0;
    for (int count : formula.Counts())
        atoms += count;
    if (atoms > kMaxAtoms) {
        throw CFormulaError("isotope model of a formula of more than " + std::to_string(kMaxAtoms) +
                            " atoms: " + formula.ToString());
    }
    std::span<const ElementData> elements = CElements::All();
    NominalDistribution cluster;
    for (size_t i = 0; i < elements.size(); ++i) {
        if (formula.Counts()[i] > 0) {
            cluster = Convolve(cluster, Power(OfElement(elements[i]), formula.Counts()[i]));
        }
    }
    const double largest =
        *std::max_element(cluster.probability.begin(), cluster.probability.end());
    for (size_t i = 0; i < cluster.probability.size(); ++i) {
        const double relative = cluster.probability[i] / largest * 100.0;
        if (relative >= pruneBelowPercent && cluster.probability[i] > 0.0) {
            m_peaks.push_back({cluster.weightedMass[i] / cluster.probability[i], relative});
        }
    }
}

const IsotopePeak& CIsotopeModel::MostAbundant() const {
    return *std::max_element(m_peaks.begin(), m_peaks.end(),
                             [](const IsotopePeak& a, const IsotopePeak& b) {
                                 return a.relativeIntensity < b.relativeIntensity;
                             });
}

void CIsotopeModel::ShiftMasses(double delta) {
    for (IsotopePeak& peak : m_peaks) {
        peak.mass += delta;
    }
}

} // namespace quillon
