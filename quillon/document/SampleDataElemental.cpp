// The "ELEMENTAL" sections of a sample: one list of candidate formulae per metabolite that is not
// an expected one.

#include <quillon/document/SampleData.h>

#include <quillon/file/DelimitFile.h>
#include <quillon/file/FileRecord.h>
#include <quillon/metabolites/ElementalResultsData.h>
#include <quillon/metabolites/MetaboliteData.h>

namespace quillon {

int CSampleData::ReadElemental(CDelimitFile* file) {
    // Each section fills the next metabolite in array order that may carry candidates and has
    // none yet.
    CMetaboliteData* target = nullptr;
    for (CMetaboliteData& metabolite : m_Metabolites) {
        if (!metabolite.IsExpected() && !metabolite.IsElementalEnabled()) {
            target = &metabolite;
            break;
        }
    }
    if (target == nullptr)
        return 1;
    CFileRecord record;
    while (record.Read(file)) {
        if (record.GetType() == RECORD_FIELD)
            target->ElementalNewField(*record.GetInput());
    }
    target->SetElementalEnabled(true);
    SetElementalEnabled(true);
    return 1;
}

int CSampleData::WriteElementalComposition(CDelimitFile* file, int n) {
    file->WriteBlockStart();
    const CMetaboliteData* metabolite = GetMetabolite(GetExpectedMetaboliteCount() + n - 1);
    if (metabolite != nullptr && !metabolite->IsExpected() &&
        metabolite->GetNumElementalResults() > 0) {
        // The header names eight columns; the last column, the normalised fit, has no name in it.
        file->WriteComment("%s%s%s%s%s%s%s%s", "m/z Found", "Calc. m/z", "mDa", "PPM", "DBE",
                           "m/zFormula", "MassFormula", "i-FIT");
        CElementalResultsData candidate;
        for (int i = 0; i < metabolite->GetNumElementalResults(); ++i) {
            metabolite->GetElementalResults(i, candidate);
            if (candidate.GetMass() <= 0.0)
                continue;
            file->WriteRecord("%f%f%f%f%f%s%s%f%f", candidate.GetMass(), candidate.GetCalcMass(),
                              candidate.GetmDa(), candidate.GetPPM(), candidate.GetDBE(),
                              candidate.GetFormula().c_str(),
                              candidate.GetMonoMassFormula().c_str(), candidate.GetiFIT(),
                              candidate.GetiFITnorm());
        }
    }
    file->WriteBlockEnd();
    return 1;
}

} // namespace quillon
