#include "ResultFilter.h"

#include <cmath>

namespace quillon {

namespace {

bool IsLimit(double value) {
    return std::isfinite(value) && value >= 0.0;
}

} // namespace

std::string ResultFilterProblem(const CResultFilter& filter, FilterSettingName name) {
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
                         filter.time->first <= filter.time->second))
        return name("time") + " takes a low time not above a high one, both 0 or more";
    return "";
}

CDivBroParams ResultFilterParams(const CResultFilter& filter) {
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

} // namespace quillon
