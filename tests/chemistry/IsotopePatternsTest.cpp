#include <quillon/chemistry/IsotopePatterns.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

using quillon::CFormula;
using quillon::CIsotopeModel;
using quillon::InferIsotopePatterns;
using quillon::IsotopePeak;

namespace {

struct Spectrum {
    std::vector<double> masses;
    std::vector<float> intensities;
    void Add(double mass, double intensity) {
        masses.push_back(mass);
        intensities.push_back(static_cast<float>(intensity));
    }
};

// The measured cluster of a formula: every model peak above 0.5 % at a height of `scale`
// percent, its intensity distorted by `distortion` (1 = exact) and its mass moved by `shift`.
void AddCluster(Spectrum& spectrum, const CIsotopeModel& model, double scale, double distortion,
                double shift) {
    const double lead = model.Peaks().front().relativeIntensity;
    for (size_t j = 0; j < model.Peaks().size(); ++j) {
        const IsotopePeak& peak = model.Peaks()[j];
        const double share = peak.relativeIntensity / lead;
        if (peak.relativeIntensity >= 0.5) {
            spectrum.Add(peak.mass + shift, scale * share * (j == 0 ? 1.0 : distortion));
        }
    }
}

Spectrum Sorted(const Spectrum& in) {
    std::vector<size_t> order(in.masses.size());
    for (size_t i = 0; i < order.size(); ++i) {
        order[i] = i;
    }
    std::sort(order.begin(), order.end(),
              [&](size_t a, size_t b) { return in.masses[a] < in.masses[b]; });
    Spectrum out;
    for (size_t i : order) {
        out.Add(in.masses[i], in.intensities[i]);
    }
    return out;
}

std::vector<double> KeptMasses(const Spectrum& s, const CIsotopeModel& model) {
    std::vector<double> kept;
    for (size_t i : InferIsotopePatterns(s.masses, s.intensities, model)) {
        kept.push_back(s.masses[i]);
    }
    return kept;
}

TEST(IsotopePatternsTest, RealClustersKeepOnlyTheirMonoisotopicPeaks) {
    // Chlorine (M+2 about a third), bromine (M+2 as strong as M), sulfur (M+2 near 5 %) and
    // plain CHNO (M+1 only), each measured with 40 % intensity error and 3 mDa mass error, next
    // to an unrelated peak 1.5 u above.
    for (const char* formula : {"C6H5Cl", "C6H4Cl2", "C6H5Br", "C5H11NO2S", "C8H10N4O2"}) {
        SCOPED_TRACE(formula);
        const CIsotopeModel model(CFormula::Parse(formula));
        const double mono = model.Peaks().front().mass;
        for (double distortion : {1.0, 1.4, 1.0 / 1.4}) {
            Spectrum s;
            AddCluster(s, model, 80.0, distortion, 0.003);
            s.Add(mono + 1.5, 12.0);
            const Spectrum sorted = Sorted(s);
            EXPECT_EQ(KeptMasses(sorted, model), (std::vector<double>{mono + 0.003, mono + 1.5}));
        }
    }
}

TEST(IsotopePatternsTest, PeaksOutsideTheSpacingOrRatioLeadTheirOwnPattern) {
    const CIsotopeModel chloro(CFormula::Parse("C6H5Cl"));
    const double mono = chloro.Peaks().front().mass;
    const double mPlus2 = chloro.Peaks()[2].mass;
    const double share = chloro.Peaks()[2].relativeIntensity / 100.0;

    // The M+2 peak 0.025 u off the model's spacing is not explained.
    Spectrum off;
    off.Add(mono, 100.0);
    off.Add(mPlus2 + 0.025, 100.0 * share);
    EXPECT_EQ(KeptMasses(off, chloro).size(), 2u);

    // Ratio three times the model's (beyond 2.8) is a compound of its own; within 2.7 it is not.
    Spectrum strong;
    strong.Add(mono, 10.0);
    strong.Add(mPlus2, 10.0 * share * 3.0);
    EXPECT_EQ(KeptMasses(strong, chloro).size(), 2u);
    strong.intensities[1] = static_cast<float>(10.0 * share * 2.7);
    EXPECT_EQ(KeptMasses(strong, chloro), std::vector<double>{mono});

    // A peak explained as an isotope never leads: the M+4 peak, which would be the M+2 of the
    // M+2 peak, is not explained by the lead (one chlorine has no such M+4) and leads its own.
    Spectrum chain;
    chain.Add(mono, 100.0);
    chain.Add(mPlus2, 100.0 * share);
    chain.Add(mPlus2 + (mPlus2 - mono), 100.0 * share * share);
    EXPECT_EQ(KeptMasses(chain, chloro).size(), 2u);

    // A single peak and an empty list.
    Spectrum single;
    single.Add(mono, 5.0);
    EXPECT_EQ(KeptMasses(single, chloro), std::vector<double>{mono});
    EXPECT_TRUE(KeptMasses(Spectrum{}, chloro).empty());
}

} // namespace
