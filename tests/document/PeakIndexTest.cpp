// The peak index answers every lookup as the sample's own walks do.
#include <quillon/document/PeakIndex.h>
#include <quillon/document/Samples.h>

#include <gtest/gtest.h>

using namespace quillon;

TEST(PeakIndex, FindsWhatTheSamplesWalksFindForEveryNumber) {
    CSamples samples;
    ASSERT_EQ(samples.Read(QUILLON_SOURCE_DIR "/examples/Chlorpromazine_HLM_batch.txt"), 1);
    for (int s = 0; s < samples.GetSamplesCount(); ++s) {
        CSampleData& sample = *samples.GetSample(s);
        // The sample's greatest numbers, so that the grid below runs one past each.
        int peaks = 0;
        int traces = 0;
        for (int f = 0; f < sample.GetFunctionCount(); ++f) {
            CFunctionData& function = *sample.GetFunction(f);
            for (int c = 0; c < function.GetNumChromatogram(); ++c) {
                CChromatoData& chromatogram = *function.GetChromatogram(c);
                traces = std::max(traces, chromatogram.GetTraceNumber());
                for (int p = 0; p < chromatogram.GetNumberOfListPeaks(); ++p)
                    peaks = std::max(peaks, chromatogram.GetChromatPeakData(p)->GetPeakID());
            }
        }
        ASSERT_GT(peaks, 0);
        const CPeakIndex index(sample);
        for (int peak = -1; peak <= peaks + 1; ++peak) {
            SCOPED_TRACE("sample " + std::to_string(sample.GetNumber()) + " peak " +
                         std::to_string(peak));
            EXPECT_EQ(index.Spectrum(peak), sample.GetCorrespondingSpectrum(peak));
            EXPECT_EQ(index.PeakCluster(peak), sample.RetrievePeakClusterNum(peak, 0));
            EXPECT_EQ(index.FirstPeak(peak).first, sample.GetCorispondingChroMatogram(peak, 0));
            for (int function = 0; function <= sample.GetFunctionCount() + 1; ++function) {
                EXPECT_EQ(index.Function(function), sample.GetFunctionWithNumber(function));
                for (int trace = 0; trace <= traces + 1; ++trace)
                    EXPECT_EQ(index.Peak(peak, function, trace),
                              sample.GetCorispondingPeakInfo(peak, function, trace))
                        << "function " << function << " trace " << trace;
            }
        }
    }
}
