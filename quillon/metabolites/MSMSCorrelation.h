#pragma once

#include <quillon/platform/Object.h>

namespace quillon {

// The sample-level settings of an MS/MS correlation: which MS/MS entry is the parent (-1 for
// none) and the mass window product masses were matched in.
class CMSMSCorrelation : public CObject {
    QUILLON_DECLARE_DYNAMIC(CMSMSCorrelation)

public:
    int ParentEntry() const { return m_nParentEntry; }
    void ParentEntry(int entry) { m_nParentEntry = entry; }
    double MassWindow() const { return m_dMassWindow; }
    void MassWindow(double window) { m_dMassWindow = window; }

private:
    int m_nParentEntry = -1;
    double m_dMassWindow = 0.0;
};

} // namespace quillon
