#pragma once

#include <quillon/platform/String.h>

namespace quillon {

// One neutral loss of the fragment analysis: a loss configured in the host settings, or a mass
// difference found between peaks of a parent's own high-energy spectrum.
struct NeutralLossEntry {
    double Mass = 0.0;   // exact mass of the loss
    int NominalMass = 0; // the mass as a whole number, the key by which the browser asks for it
    int Tag = 0;         // 0 for configured losses; the caller's tag for parent-spectrum losses
    CString Label;       // "name  (formula)" of a configured loss; "Parent spectrum" otherwise
    double Value = 0.0;  // carried with the entry; the analysis sets it to 0
    bool Flag = false;   // carried with the entry; the analysis leaves it alone
};

} // namespace quillon
