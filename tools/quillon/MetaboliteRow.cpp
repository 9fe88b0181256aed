#include "MetaboliteRow.h"

#include "json/ModelRecords.h"
#include "json/NumberText.h"

#include <quillon/metabolites/MetaboliteDisplay.h>

namespace quillon::tool {

void MetaboliteRow(RecordSink& rows, CSampleData& sample, int index) {
    const CMetaboliteData& metabolite = *sample.GetMetabolite(index);
    MetaboliteRecord(rows, sample, index);
    CString text;
    GetTraceText(metabolite, &sample, text);
    rows.Field("trace_name", text);
    rows.FieldIf("area_percent", metabolite.GetRelativePeakArea() >= 0,
                 metabolite.GetRelativePeakArea());
    const CChromatogramPeak* peak = sample.GetCorispondingPeakInfo(
        metabolite.GetPeakNum(), metabolite.GetFunctionNum(), metabolite.GetTraceNum());
    rows.FieldIf("found_percent", peak != nullptr && metabolite.GetFound(),
                 peak ? peak->GetAreaPercentTotal() : 0.0f);
    GetISAreaRatioText(metabolite, &sample, text);
    double ratio = 0.0;
    rows.FieldIf("is_ratio", ParseNumberText(text.view(), ratio), ratio);
}

} // namespace quillon::tool
