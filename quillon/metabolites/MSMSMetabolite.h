#pragma once

#include <quillon/platform/String.h>

namespace quillon {

// One row of the browser's list of MS/MS correlation metabolites
// (CSampleData::GetMSMSMetaboliteList): what the list shows of the metabolite, with the counts of
// its correlation results against the sample's parent entry.
struct CMSMSMetabolite {
    int Index = -1;          // the metabolite's index in the sample's metabolite array
    int Entry = -1;          // its MS/MS entry number (index minus the MS metabolite count)
    bool Parent = false;     // it is the parent of the correlation
    double SetMass = 0.0;    // set mass of its MS/MS spectrum
    double ParentMass = 0.0; // mass of the parent ion
    double Time = 0.0;       // retention time, minutes
    bool Status = false;     // found
    CString NeutralLoss;     // its neutral-loss text
    CString Name;            // metabolite name
    CString Formula;         // elemental formula
    int CommonProducts = 0;  // product ions shared with the parent entry
    int NeutralLosses = 0;   // neutral losses matched and shared with the parent entry
};

} // namespace quillon
