// The list of a sample's MS/MS correlation metabolites as the browser shows it.

#include <quillon/document/SampleData.h>

#include <quillon/metabolites/MetaboliteData.h>

namespace quillon {

int CSampleData::GetMSMSMetaboliteList(CArray<CMSMSMetabolite>& list) {
    list.RemoveAll();
    const int first = GetMSMetaboliteCount();
    const int count = GetMSMSCorrelationMetaboliteCount();
    list.Reserve(count);
    for (int index = first; index < first + count; ++index) {
        CMetaboliteData* metabolite = GetMetabolite(index);
        if (metabolite == nullptr || !metabolite->IsMSMSCorrelation())
            continue;
        CMSMSMetabolite row;
        row.Index = index;
        row.Entry = index - first;
        row.Parent = metabolite->IsMSMSParent();
        row.SetMass = metabolite->GetMSMSSpectrumSetMass();
        row.ParentMass = metabolite->GetParentMass();
        row.Time = metabolite->GetPeakTime();
        row.Status = metabolite->GetFound();
        metabolite->GetNeutralLoss(row.NeutralLoss);
        metabolite->GetMetName(row.Name);
        metabolite->GetFormula(row.Formula);
        row.CommonProducts = metabolite->GetNumCommonProductsParent(this);
        row.NeutralLosses = metabolite->GetNumNeutralLosses(this);
        list.Add(row);
    }
    return list.GetSize();
}

} // namespace quillon
