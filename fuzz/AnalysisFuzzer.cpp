// The analyses a browser runs over a report it has read: the result filters and area percentages
// (with filters switched on), the fragment analysis with its neutral losses, and the combined
// traces of every kind, followed by the queries made over what they built.

#include "FuzzSupport.h"

#include <quillon/quillon.h>

using namespace quillon;

namespace {

// Filters switched on with limits that let some metabolites through and keep others out.
CDivBroParams FilteringParams() {
    CDivBroParams params;
    params.MassDefectFilterOn = true;
    params.MassDefectUpper = 0.2;
    params.MassDefectLower = -0.1;
    params.AreaFilterOn = true;
    params.AreaThreshold = 10;
    params.RelativeAreaThreshold = 1;
    params.MassErrorFilterOn = true;
    params.MassErrorLimit = 5;
    params.IsotopeFilterOn = true;
    params.ElementalFilterOn = true;
    params.TimeFilterOn = true;
    params.TimeLow = 1;
    params.TimeHigh = 20;
    params.HideHighEnergy = true;
    return params;
}

void QueryTrace(const CChromatoData* trace) {
    if (trace == nullptr)
        return;
    float low = 0;
    float high = 0;
    trace->GetDataRange(low, high);
    float highest = 0;
    float lowest = 0;
    float timeOfHighest = 0;
    float timeOfLowest = 0;
    trace->GetMaxIntensity(highest, lowest, timeOfHighest, timeOfLowest, low, high);
    int index = trace->GetNumPeaks() / 2;
    trace->GetNearestPeak(&index, timeOfHighest);
}

void Analyse(CSampleData& sample, const CDivBroParams& params) {
    CFragmentAnalysis& analysis = *sample.GetFragmentAnalysis();
    analysis.InitialiseParams(params.FragmentIntensityThreshold, params.FragmentMassTolerance,
                              params.FragmentUseMassDefectFilter, params.FragmentMassDefectLower,
                              params.FragmentMassDefectUpper,
                              params.FragmentParentIntensityThreshold, params.FragmentExtraOption);
    analysis.DoFragmentAnalysis(&sample);
    CArray<double> masses;
    analysis.GetParentSpectrumMasses(&sample, masses);
    CArray<NeutralLossEntry> losses;
    analysis.GetParentSpectrumCNLs(&sample, 0, losses);

    for (int type = CSampleData::COMBINED_EXPECTED_FOUND;
         type <= CSampleData::COMBINED_COMMON_NEUTRAL_LOSS; ++type) {
        for (const int number : {-100, -101, -102}) {
            sample.SetCombinedTraceType(type, number);
            sample.CombinedTraceNeedsData(true, true, true);
            sample.SetupCombinedTrace(number, true, 0.2, -0.1, true, type % 2, 10, 1, true, true, 5,
                                      true, true, true, 1, 20, true, type == 1, type == 2);
            QueryTrace(sample.GetCombinedTrace(number));
            QueryTrace(sample.GetTrace(number));
        }
    }
    sample.CalculateMetabolitePercentAreas(true);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::SilenceHost();
    fuzz::MemoryFile inputFile(fuzz::AsText(data, size));
    CDelimitFile input(inputFile.Stream());
    CDivBroParams params = FilteringParams();
    CSamples samples;
    samples.SetParams(&params);
    samples.Read(&input);
    for (int i = 0; i < samples.GetSamplesCount(); ++i)
        Analyse(*samples.GetSample(i), params);
    return 0;
}
