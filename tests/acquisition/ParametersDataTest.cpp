#include <quillon/acquisition/ParametersData.h>

#include "support/Collect.h"
#include "support/ReadBlock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace quillon;
using quillon::testing::ReadBlock;
using quillon::testing::VectorOf;

TEST(ParametersDataTest, ReadsEveryFieldWithItsConversion) {
    CParametersData parameters;
    ReadBlock(parameters, "{\nPeakFindMode\tApex Track\tignored\nPeakFindWindow\tabc\n"
                          "SpectrumThresholdMode\tRelative\nSpectrumThreshold\t2.5\n"
                          "PositiveAdducts\t1.0073\t22.9892\t38.9632\nNegativeAdducts\t-1.0073\n"
                          "PeakFindThreshold\t1e3\nSigPeaks\t7.9\nUnknown\t5\n}\n");
    EXPECT_EQ(parameters.PeakFindMode(), "Apex Track");
    EXPECT_EQ(parameters.PeakFindWindow(), 0.0f);
    EXPECT_EQ(parameters.SpectrumThresholdMode(), "Relative");
    EXPECT_FLOAT_EQ(parameters.SpectrumThreshold(), 2.5f);
    EXPECT_EQ(VectorOf(parameters.PositiveAdducts()),
              (std::vector<float>{1.0073f, 22.9892f, 38.9632f}));
    EXPECT_EQ(VectorOf(parameters.NegativeAdducts()), (std::vector<float>{-1.0073f}));
    EXPECT_FLOAT_EQ(parameters.PeakFindThreshold(), 1000.0f);
    EXPECT_EQ(parameters.SigPeaks(), 7);

    // Later lists replace earlier ones; empty lines change nothing.
    ReadBlock(parameters, "{\nPositiveAdducts\t4\nNegativeAdducts\nSigPeaks\n}\n");
    EXPECT_EQ(VectorOf(parameters.PositiveAdducts()), (std::vector<float>{4.0f}));
    EXPECT_EQ(VectorOf(parameters.NegativeAdducts()), (std::vector<float>{-1.0073f}));
    EXPECT_EQ(parameters.SigPeaks(), 7);
}
