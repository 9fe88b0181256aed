// The analyses a browser runs over a report it has read: the result filters and area percentages
// (with filters switched on), the fragment analysis with its neutral losses, and the combined
// traces of every kind, followed by the queries made over what they built. The fragment analysis
// must give exactly what a direct transcription of the walks its fast stages replace gives.

#include "FragmentReference.h"
#include "FuzzSupport.h"

#include <quillon/quillon.h>

#include <fstream>

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

// The neutral losses the analysis looks for, in a settings file of the process's own folder,
// which the working-directory hook names.
HostHooks WithNeutralLosses() {
    std::ofstream(fuzz::ProcessFolder() / "Tarnwick.ini")
        << "[Hollbeck Neutral Losses]\n"
           "Loss 1=18.0106,1,5,3,Water,H2O\n"
           "Loss 2=17.0265,1,7,3,Ammonia,NH3\n"
           "Loss 3=45.0578,1,13,5,Dimethylamine,C2H7N\n"
           "Loss 4=79.9568,1,15,3,Sulfur trioxide,SO3\n";
    HostHooks hooks;
    hooks.workingDirectory = [] { return CString(fuzz::ProcessFolder().string()); };
    return hooks;
}

template <typename T>
std::vector<T> Vector(const CArray<T>& array) {
    return {array.begin(), array.end()};
}

// The fast stages' results against the transcription's, run on a copy of the sample as read.
void RequireReferenceResults(CSampleData& unanalysed, const CFragmentAnalysis& analysis) {
    const fuzz::Reference reference = fuzz::Transcribe(unanalysed, analysis);
    fuzz::Require(Vector(analysis.GetParents()) == reference.parents);
    fuzz::Require(Vector(analysis.GetFragmentEntries()) == reference.fragments);
    fuzz::Require(Vector(analysis.GetNeutralLossSpectra()) == reference.spectra);
    fuzz::Require(Vector(analysis.GetNeutralLossOccurrences()) == reference.occurrences);
    CStringArray lines;
    analysis.GetFragments(lines);
    std::vector<std::string> fastLines;
    for (const CString& line : lines)
        fastLines.emplace_back(line.c_str());
    fuzz::Require(fastLines == fuzz::FragmentLines(reference.fragments));
}

void Analyse(CSampleData& sample, const CDivBroParams& params) {
    CFragmentAnalysis& analysis = *sample.GetFragmentAnalysis();
    analysis.InitialiseParams(params.FragmentIntensityThreshold, params.FragmentMassTolerance,
                              params.FragmentUseMassDefectFilter, params.FragmentMassDefectLower,
                              params.FragmentMassDefectUpper,
                              params.FragmentParentIntensityThreshold, params.FragmentExtraOption);
    CSampleData unanalysed = sample;
    if (analysis.DoFragmentAnalysis(&sample))
        RequireReferenceResults(unanalysed, analysis);
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
    fuzz::SilenceHost(WithNeutralLosses());
    fuzz::MemoryFile inputFile(fuzz::AsText(data, size));
    CDelimitFile input(inputFile.Stream());
    // Inputs of odd length run with the filters on, the others with the browser's defaults (with
    // every filter off, the fragment analysis keeps the most to compare with its transcription).
    CDivBroParams params = size % 2 == 1 ? FilteringParams() : CDivBroParams();
    CSamples samples;
    samples.SetParams(&params);
    samples.Read(&input);
    for (int i = 0; i < samples.GetSamplesCount(); ++i)
        Analyse(*samples.GetSample(i), params);
    return 0;
}
