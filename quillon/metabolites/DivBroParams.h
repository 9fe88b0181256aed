#pragma once

namespace quillon {

// The browser's parameter record: the result filters a metabolite table applies and the settings
// of the fragment analysis. The browser owns it and hands the library a pointer (SetParams);
// the library only reads it.
struct CDivBroParams {
    // Result filters, in the order the long form of CMetaboliteData::ApplyDataFilters takes them.
    bool MassDefectFilterOn = false;
    double MassDefectUpper = 0.0;
    double MassDefectLower = -1.0;
    bool AreaFilterOn = false;
    int AreaMode = 0;
    float AreaThreshold = 0;
    float RelativeAreaThreshold = 0;
    bool AreaFilterOnExpected = false;
    bool MassErrorFilterOn = false;
    double MassErrorLimit = 0.0;
    bool IsotopeFilterOn = false;
    bool ElementalFilterOn = false;
    bool TimeFilterOn = false;
    double TimeLow = 0.0;
    double TimeHigh = 0.0;
    bool HideHighEnergy = false;

    // Fragment analysis settings, in the order the fragment analysis takes them.
    double FragmentIntensityThreshold = 1.0;
    double FragmentMassTolerance = 0.01;
    bool FragmentUseMassDefectFilter = true;
    double FragmentMassDefectLower = 0.1;
    double FragmentMassDefectUpper = 0.2;
    double FragmentParentIntensityThreshold = 10.0;
    bool FragmentExtraOption = false;
};

} // namespace quillon
