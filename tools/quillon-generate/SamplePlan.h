#pragma once

#include "DrugModel.h"
#include "GeneratorOptions.h"

#include <quillon/chemistry/Elements.h>

#include <string>
#include <vector>

namespace quillon::generate {

// Every run lasts 20 minutes.
constexpr double kRunMinutes = 20.0;
// The mass of a proton (hydrogen less its electron), u: the [M+H]+ ions' m/z less this is M.
constexpr double kProtonMass = 1.00782503223 - CElements::kElectronMass;

// A component's share of its mass chromatogram's apex on the low- and high-energy total ion
// currents (other adducts, isotopes and in-source fragments add to the low-energy one).
constexpr double kLowTicShare = 1.35;
constexpr double kHighTicShare = 1.1;

// What a chromatographic component is in the results.
enum class ComponentKind { Parent, Expected, Excluded, Unexpected };

// One substance eluting in one sample: its chemistry, its peak on every trace and the numbers
// that tie the peaks, spectra and metabolite rows together.
struct Component {
    ComponentKind kind;
    int change;        // index into the searched (or unexpected) transformations; -1 if none
    std::string name;  // metabolite name in the results
    CFormula neutral;  // formula of the neutral molecule
    double exactMz;    // [M+H]+ monoisotopic m/z
    double observedMz; // as measured, with the instrument's mass error
    double retentionTime;
    double sigma;       // Gaussian peak deviation, minutes
    double xicHeight;   // apex of the low-energy mass chromatogram, counts
    double uvHeight;    // apex on the diode-array trace, absorbance units x 1e6; 0 when none
    double radioHeight; // apex on the radio-flow analog channel, counts per minute; 0 when none
    bool hasFragments;  // strong enough to give a high-energy partner and product-ion spectrum
    int cluster = 0;    // peak cluster shared by every trace that shows this component
    int peakId = 0;     // low-energy (and high-energy partner) peak identifier
    int ticPeakId = 0;
    int highTicPeakId = 0;
    int pdaPeakId = 0;
    int analogPeakId = 0;
    int xic = -1; // index of its mass chromatogram in SamplePlan::xics
};

// A mass chromatogram of one searched mass in the low-energy function, with its high-energy twin.
struct MassTrace {
    double mz;
    std::vector<int> components; // found components on it
    int traceNumber = 0;
    int traceInFunction = 0;
    int highTraceNumber = 0; // 0 when no component on it has fragments
};

// A searched biotransformation and the components (isomers) found for it in this sample.
struct Search {
    int change;
    std::vector<int> found;
};

// Everything one sample holds, decided before any of it is written.
struct SamplePlan {
    int number;
    bool control;
    int group;
    double subjectTime;
    std::vector<Component> components;
    std::vector<MassTrace> xics;
    std::vector<Search> searches; // in search order, the parent first
    std::vector<int> excluded;    // components listed as excluded masses
    std::vector<int> unexpected;  // components listed as unexpected metabolites
    int ticTrace = 0;
    int highTicTrace = 0;
    int pdaTrace = 0;
    int analogTrace = 0;
};

// The searched biotransformations of the batch: the drug model's list, extended with pairwise
// combinations when more are asked for than it holds.
std::vector<Biotransformation> SearchedTransformations(const CDrugModel& drug, int count);

// Decides one sample (index from 0) of the batch.
SamplePlan PlanSample(const CDrugModel& drug, const std::vector<Biotransformation>& searched,
                      const GeneratorOptions& options, int index);

} // namespace quillon::generate
