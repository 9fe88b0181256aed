#include "SamplePlan.h"

#include "Random.h"

#include <algorithm>
#include <cmath>

namespace quillon::generate {

namespace {

constexpr double kFoundHeight = 4000.0;      // smallest apex the processing reports as found
constexpr double kFragmentHeight = 25000.0;  // smallest apex with a usable product-ion spectrum
constexpr double kParentHeight = 2.4e6;      // parent apex before any turnover
constexpr double kTypicalSigma = 0.040;      // minutes: the mean peak width the heights refer to
constexpr double kTicListedHeight = 30000.0; // smallest peak listed on a total ion current
constexpr double kSubjectTimes[] = {0.0, 15.0, 30.0, 60.0, 120.0};

// Per biotransformation, fixed for the whole batch: how much is formed, how well it ionises, and
// how many isomers it gives with their shares and time offsets.
struct Yield {
    double fraction = 0.0;
    double response = 1.0;
    std::vector<double> isomerShares;
    std::vector<double> isomerOffsets;
};

Yield BatchYield(CRandom& random, bool allowIsomers, double probabilityFormed, double scale) {
    Yield yield;
    yield.fraction = random.Chance(probabilityFormed) ? scale * random.Uniform(0.02, 1.0) : 0.0;
    yield.response = random.Uniform(0.4, 1.5);
    const int isomers = allowIsomers ? (random.Chance(0.35) ? (random.Chance(0.3) ? 3 : 2) : 1) : 1;
    double total = 0.0;
    for (int i = 0; i < isomers; ++i) {
        yield.isomerShares.push_back(random.Uniform(0.2, 1.0));
        total += yield.isomerShares.back();
        yield.isomerOffsets.push_back(i == 0 ? 0.0 : random.Uniform(0.25, 0.9) * (i % 2 ? 1 : -1));
    }
    for (double& share : yield.isomerShares) {
        share /= total;
    }
    return yield;
}

Biotransformation Combine(const Biotransformation& a, const Biotransformation& b) {
    return {a.name + " + " + b.name,
            a.added + b.added,
            a.removed + b.removed,
            a.retentionShift + b.retentionShift,
            std::min(2, a.demethylations + b.demethylations),
            a.hydroxylated || b.hydroxylated,
            a.glucuronide || b.glucuronide,
            a.sulfate || b.sulfate};
}

// Every drug-related substance keeps the chromophore and the radiolabel, so its diode-array and
// radio-flow peaks follow its amount, not its ionisation; peaks lost in the noise are not listed.
void SetDetectorResponses(Component& c, double amount) {
    c.uvHeight = amount * 0.021;
    c.radioHeight = amount * 0.0035;
    if (c.uvHeight < 1500.0) {
        c.uvHeight = 0.0;
    }
    if (c.radioHeight < 150.0) {
        c.radioHeight = 0.0;
    }
}

Component MakeComponent(ComponentKind kind, int change, std::string name, const CFormula& neutral,
                        double retentionTime, double height, CRandom& random) {
    Component c{};
    c.kind = kind;
    c.change = change;
    c.name = std::move(name);
    c.neutral = neutral;
    c.exactMz = CDrugModel::CationMz(CDrugModel::Protonated(neutral));
    c.observedMz = c.exactMz * (1.0 + random.Normal() * 1.2e-6);
    c.retentionTime = std::clamp(retentionTime, 1.0, kRunMinutes - 1.0);
    c.sigma = random.Uniform(0.030, 0.050);
    // The peak's area, not its apex, follows the amount: a wider peak is lower.
    c.xicHeight = height * kTypicalSigma / c.sigma;
    c.hasFragments = height >= kFragmentHeight;
    return c;
}

} // namespace

std::vector<Biotransformation> SearchedTransformations(const CDrugModel& drug, int count) {
    const std::vector<Biotransformation>& base = drug.Expected();
    std::vector<Biotransformation> searched;
    for (size_t i = 0; i < base.size() && static_cast<int>(searched.size()) <= count; ++i) {
        searched.push_back(base[i]);
    }
    for (size_t i = 1; i < base.size() && static_cast<int>(searched.size()) <= count; ++i) {
        for (size_t j = i + 1; j < base.size() && static_cast<int>(searched.size()) <= count; ++j) {
            Biotransformation combined = Combine(base[i], base[j]);
            const CFormula product = drug.Apply(combined);
            // A combination that gives a product already searched for (hydroxylation and
            // glucuronidation, say) is not searched twice.
            const bool known = std::any_of(searched.begin(), searched.end(),
                                           [&](const auto& s) { return drug.Apply(s) == product; });
            if (product.IsNonNegative() && !known) {
                searched.push_back(std::move(combined));
            }
        }
    }
    return searched;
}

SamplePlan PlanSample(const CDrugModel& drug, const std::vector<Biotransformation>& searched,
                      const GeneratorOptions& options, int index) {
    SamplePlan plan;
    plan.number = index + 1;
    plan.group = index / 6;
    plan.control = index % 6 == 0;
    plan.subjectTime = plan.control ? 0.0 : kSubjectTimes[index % 6 - 1];

    // Batch-wide chemistry: the same seed gives every sample the same yields.
    CRandom batch = CRandom::Derived(options.seed, kBatchYields);
    std::vector<Yield> yields;
    for (size_t k = 0; k < searched.size(); ++k) {
        // The parent's main routes (demethylations, hydroxylation and its products) always form.
        const double probability = k <= 5 ? 1.0 : 0.7;
        yields.push_back(
            BatchYield(batch, k > 0 && searched[k].hydroxylated, probability, k == 0 ? 1.0 : 0.12));
    }
    std::vector<Yield> unexpectedYields;
    for (int u = 0; u < options.unexpected; ++u) {
        unexpectedYields.push_back(BatchYield(batch, false, 1.0, 0.03));
    }

    CRandom random = CRandom::Derived(options.seed, kSampleVariation, static_cast<uint64_t>(index));
    // The control is incubated without cofactor for the longest time: no turnover at all.
    const double turnover =
        plan.control ? 0.0
                     : 1.0 - std::exp(-std::log(2.0) * plan.subjectTime / options.halfLifeMinutes);
    // Variation drawn as usual, then scaled when asked (the usual draws stay, so a seed gives
    // the same batch).
    auto varied = [&](double draw) {
        return options.variation == 1.0 ? draw : 1.0 + (draw - 1.0) * options.variation;
    };
    const double sampleScale = varied(random.Uniform(0.93, 1.07));

    for (size_t k = 0; k < searched.size(); ++k) {
        Search search{static_cast<int>(k), {}};
        const Yield& yield = yields[k];
        const double amount = k == 0 ? 1.0 - turnover : yield.fraction * turnover;
        const CFormula neutral = drug.Apply(searched[k]);
        for (size_t i = 0; i < yield.isomerShares.size(); ++i) {
            const double height = kParentHeight * sampleScale * amount * yield.response *
                                  yield.isomerShares[i] * varied(random.Uniform(0.95, 1.05));
            if (height < kFoundHeight || !neutral.IsNonNegative()) {
                continue;
            }
            const double time = drug.ParentRetentionTime() + searched[k].retentionShift +
                                yield.isomerOffsets[i] + random.Normal() * 0.01;
            Component c = MakeComponent(k == 0 ? ComponentKind::Parent : ComponentKind::Expected,
                                        static_cast<int>(k), k == 0 ? "Parent" : searched[k].name,
                                        neutral, time, height, random);
            SetDetectorResponses(c, height / yield.response);
            search.found.push_back(static_cast<int>(plan.components.size()));
            plan.components.push_back(std::move(c));
        }
        plan.searches.push_back(std::move(search));
    }

    // A siloxane background ion in every injection, excluded from the search.
    plan.excluded.push_back(static_cast<int>(plan.components.size()));
    plan.components.push_back(MakeComponent(ComponentKind::Excluded, -1, "Exclude Mass",
                                            drug.BackgroundFormula(), 13.84,
                                            random.Uniform(6.0e4, 9.0e4), random));
    plan.components.back().hasFragments = false;

    for (int u = 0; u < options.unexpected; ++u) {
        const Biotransformation& change = drug.Unexpected()[static_cast<size_t>(u)];
        const double height = kParentHeight * sampleScale * unexpectedYields[u].fraction *
                              unexpectedYields[u].response * turnover;
        if (height < kFoundHeight) {
            continue;
        }
        const CFormula neutral = drug.Apply(change);
        Component c =
            MakeComponent(ComponentKind::Unexpected, u, "", neutral,
                          drug.ParentRetentionTime() + change.retentionShift, height, random);
        char name[64];
        std::snprintf(name, sizeof name, "m/z %.4f", c.observedMz);
        c.name = name;
        SetDetectorResponses(c, height / unexpectedYields[u].response);
        plan.unexpected.push_back(static_cast<int>(plan.components.size()));
        plan.components.push_back(std::move(c));
    }

    // Mass chromatograms: one per searched mass with something found, then the excluded and the
    // unexpected masses; trace 1 is the low-energy total ion current.
    auto addTrace = [&](const std::vector<int>& members) {
        MassTrace trace{plan.components[static_cast<size_t>(members.front())].exactMz, members};
        for (int member : members) {
            plan.components[static_cast<size_t>(member)].xic = static_cast<int>(plan.xics.size());
        }
        plan.xics.push_back(std::move(trace));
    };
    for (const Search& search : plan.searches) {
        if (!search.found.empty()) {
            addTrace(search.found);
        }
    }
    for (int member : plan.excluded) {
        addTrace({member});
    }
    for (int member : plan.unexpected) {
        addTrace({member});
    }

    int nextTrace = 1;
    plan.ticTrace = nextTrace++;
    for (size_t i = 0; i < plan.xics.size(); ++i) {
        plan.xics[i].traceNumber = nextTrace++;
        plan.xics[i].traceInFunction = static_cast<int>(i) + 2;
    }
    plan.highTicTrace = nextTrace++;
    for (MassTrace& trace : plan.xics) {
        const bool anyFragments =
            std::any_of(trace.components.begin(), trace.components.end(), [&](int c) {
                return plan.components[static_cast<size_t>(c)].hasFragments;
            });
        if (anyFragments) {
            trace.highTraceNumber = nextTrace++;
        }
    }
    plan.pdaTrace = nextTrace++;
    plan.analogTrace = nextTrace++;

    // Clusters follow elution order; peak identifiers are handed out trace by trace.
    std::vector<int> byTime(plan.components.size());
    for (size_t i = 0; i < byTime.size(); ++i) {
        byTime[i] = static_cast<int>(i);
    }
    std::stable_sort(byTime.begin(), byTime.end(), [&](int a, int b) {
        return plan.components[static_cast<size_t>(a)].retentionTime <
               plan.components[static_cast<size_t>(b)].retentionTime;
    });
    for (size_t rank = 0; rank < byTime.size(); ++rank) {
        plan.components[static_cast<size_t>(byTime[rank])].cluster = static_cast<int>(rank) + 1;
    }
    int nextPeak = 1;
    for (Component& c : plan.components) {
        c.peakId = nextPeak++;
    }
    // The total ion currents list only what stands well out of their high background.
    for (int i : byTime) {
        Component& c = plan.components[static_cast<size_t>(i)];
        if (c.xicHeight * kLowTicShare >= kTicListedHeight) {
            c.ticPeakId = nextPeak++;
        }
    }
    for (int i : byTime) {
        Component& c = plan.components[static_cast<size_t>(i)];
        if (c.hasFragments && c.xicHeight * kHighTicShare >= kTicListedHeight) {
            c.highTicPeakId = nextPeak++;
        }
    }
    for (int i : byTime) {
        Component& c = plan.components[static_cast<size_t>(i)];
        if (c.uvHeight > 0.0) {
            c.pdaPeakId = nextPeak++;
        }
    }
    for (int i : byTime) {
        Component& c = plan.components[static_cast<size_t>(i)];
        if (c.radioHeight > 0.0) {
            c.analogPeakId = nextPeak++;
        }
    }
    return plan;
}

} // namespace quillon::generate
