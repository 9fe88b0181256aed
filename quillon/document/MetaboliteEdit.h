#pragma once

#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/platform/String.h>

#include <string>
#include <string_view>

namespace quillon {

class CSamples;

// One edit a reviewer makes to a metabolite of a loaded report: the one implementation of the
// browser's edits, shared by every front end (command line, web page, scripts), so that they can
// never disagree. Applying an edit gives back the edit that undoes it.
struct CMetaboliteEdit {
    enum Kind {
        Confirm,         // mark the metabolite confirmed
        Unconfirm,       // clear the confirmation
        SetLabel,        // set the reviewer's label to label
        DeleteElemental, // remove elemental candidate number candidate
        InsertElemental, // put restored back as candidate number candidate (undoes a delete)
    };
    Kind kind = Confirm;
    int sample = 0;      // the sample's number (as the report gives it, not its index)
    int metabolite = -1; // the metabolite's index in the sample
    CString label;
    int candidate = -1;
    CElementalResultsData restored;
};

// Why text cannot be a field of a report ("" when it can): a tab, carriage return or line feed
// would break the report's line structure, and a NUL would cut the text short when written. Every
// text a user sets is checked with this first.
//     FieldTextProblem("checked") == ""; FieldTextProblem("a\tb") names the tab.
std::string FieldTextProblem(std::string_view text);

// Why edit cannot be applied to samples ("" when it can): no sample of that number, no metabolite
// or candidate of that index, or a label FieldTextProblem refuses.
std::string CheckMetaboliteEdit(CSamples& samples, const CMetaboliteEdit& edit);

// Applies edit and returns the edit that undoes it (for a delete, an insert of the removed
// candidate at its place). Throws std::invalid_argument with CheckMetaboliteEdit's reason, the
// samples untouched, when the edit cannot be applied.
CMetaboliteEdit ApplyMetaboliteEdit(CSamples& samples, const CMetaboliteEdit& edit);

} // namespace quillon
