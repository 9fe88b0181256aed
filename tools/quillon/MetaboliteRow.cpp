#include "MetaboliteRow.h"

#include "json/ModelRecords.h"
#include "json/NumberText.h"

#include <quillon/metabolites/MetaboliteDisplay.h>

#include <cmath>

namespace quillon::tool {

namespace {

bool IsLimit(double value) {
    return std::isfinite(value) && value >= 0.0;
}

} // namespace

std::string FilterProblem(const MetaboliteFilter& filter, FilterSettingName name) {
    if (filter.massDefect) {
        const auto [below, above] = *filter.massDefect;
        if (!IsLimit(below) || !IsLimit(above) || below >= 1.0 || above >= 1.0)
            return name("mass_defect") + " takes fractions of a dalton from 0 to below 1";
    }
    for (const auto& [limit, key] :
         {std::pair{filter.area, "area"}, std::pair{filter.relativeArea, "relative_area"},
          std::pair{filter.massError, "mass_error"}})
        if (limit && !IsLimit(*limit))
            return name(key) + " takes a number of 0 or more";
    if (filter.area && filter.relativeArea)
        return name("area") + " and " + name("relative_area") + " exclude each other";
    if (filter.areaUnexpectedOnly && !filter.area && !filter.relativeArea)
        return name("area_unexpected_only") + " needs " + name("area") + " or " +
               name("relative_area");
    if (filter.time && !(IsLimit(filter.time->first) && IsLimit(filter.time->second) &&
                         filter.time->first < filter.time->second))
        return name("time") + " takes a low time below a high one, both 0 or more";
    return "";
}

CDivBroParams FilterParams(const MetaboliteFilter& filter) {
    CDivBroParams params;
    if (filter.massDefect) {
        params.MassDefectFilterOn = true;
        params.MassDefectLower = filter.massDefect->first;
        params.MassDefectUpper = filter.massDefect->second;
    }
    if (filter.area || filter.relativeArea) {
        params.AreaFilterOn = true;
        params.AreaMode = filter.area ? 0 : 1;
        params.AreaThreshold = static_cast<float>(filter.area.value_or(0.0));
        params.RelativeAreaThreshold = static_cast<float>(filter.relativeArea.value_or(0.0));
        params.AreaFilterOnExpected = !filter.areaUnexpectedOnly;
    }
    if (filter.massError) {
        params.MassErrorFilterOn = true;
        params.MassErrorLimit = *filter.massError;
    }
    params.IsotopeFilterOn = filter.hideIsotopes;
    params.ElementalFilterOn = filter.withElemental;
    if (filter.time) {
        params.TimeFilterOn = true;
        params.TimeLow = filter.time->first;
        params.TimeHigh = filter.time->second;
    }
    params.HideHighEnergy = filter.hideHighEnergy;
    return params;
}

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
