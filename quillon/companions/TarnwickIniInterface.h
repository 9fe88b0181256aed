#pragma once

#include <quillon/metabolites/Compounds.h>
#include <quillon/platform/String.h>

namespace quillon {

// The user's neutral-loss list, a host-wide setting kept in the host suite's settings file
// "Tarnwick.ini", section "Hollbeck Neutral Losses", as keys "Loss 1", "Loss 2", ... without gaps.
// Each value is "mass,selected,name length,formula length,name,formula"; the two texts are found
// by their lengths counted from the end, so a name or formula may contain commas.
class CTarnwickIniInterface {
public:
    CTarnwickIniInterface() = default;
    virtual ~CTarnwickIniInterface() = default;

    // Appends the stored losses, in key order, to losses (which is not emptied first); with
    // selectedOnly, only the selected ones. True when the first key exists, even if every entry
    // was passed over; false, with losses untouched, when the file is missing or not writable.
    bool GetNeutralLosses(CCompounds& losses, bool selectedOnly) const;

    // Stores losses as the whole list, replacing the previous one and leaving the rest of the
    // file as it was; creates the file when it is missing. Failures are not reported.
    void SetNeutralLosses(const CCompounds& losses) const;

private:
    // "Tarnwick.ini" in the host's working directory (the working-directory hook).
    static CString IniPath();
};

} // namespace quillon
