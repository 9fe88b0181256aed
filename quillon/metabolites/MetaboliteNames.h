#pragma once

#include <quillon/metabolites/MetaboliteData.h>

namespace quillon {

// The metabolite names that carry a fixed meaning, and the one test of each, with its case rule.
namespace MetaboliteName {
inline constexpr const char* kParent = "Parent";
inline constexpr const char* kMSeFragments = MetaboliteText::kMSeFragments;
inline constexpr const char* kExcludeMass = MetaboliteText::kExcludeMass;
} // namespace MetaboliteName

// The parent drug: named "Parent" in any case ("parent", "PARENT"), since the name comes from the
// method a scientist typed. Stability follows it, the writer names its structure after it, and
// the combined trace can leave it out.
bool IsParent(const CMetaboliteData& metabolite);
// A mass excluded from the search, never a parent: exactly "Exclude Mass", as the processing
// stage writes it.
bool IsExcludedMass(const CMetaboliteData& metabolite);
// The high-energy partner of a metabolite: exactly "MSe fragments", as the processing stage
// writes it.
bool IsMSeFragments(const CMetaboliteData& metabolite);

} // namespace quillon
