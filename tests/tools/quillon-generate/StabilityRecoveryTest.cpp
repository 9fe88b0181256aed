#include "ReportGenerator.h"
#include "support/TempFile.h"

#include <quillon/document/Samples.h>
#include <quillon/stability/MetabolicStabilityInfo.h>

#include <gtest/gtest.h>

#include <string>

namespace quillon::generate {
namespace {

// The half-life of the first series of a report.
double HalfLifeOf(const std::string& path) {
    CSamples samples;
    EXPECT_EQ(samples.Read(path.c_str()), 1);
    CArray<CMetabolicStabilityInfo> series;
    EXPECT_TRUE(samples.CreateMetabolicStabilityAnalysis(series));
    EXPECT_EQ(series.GetSize(), 1);
    return series.GetSize() > 0 ? series[0].halfLife : 0.0;
}

// The analysis recovers the half-life the generator decayed the parent with, within 5% on
// low-noise duplicate series. (The example batch's, within 15%, is the tool test's.)
TEST(StabilityRecovery, HalfLivesOfGeneratedBatches) {
    for (double halfLife : {20.0, 55.0, 90.0}) {
        GeneratorOptions options;
        const quillon::testing::TempFile report("stability.txt");
        options.reportPath = report.Path();
        options.samples = 12;
        options.pointsPerTrace = 200;
        options.variation = 0.1;
        options.halfLifeMinutes = halfLife;
        GenerateBatch(options);
        EXPECT_NEAR(HalfLifeOf(options.reportPath), halfLife, 0.05 * halfLife);
    }
}

} // namespace
} // namespace quillon::generate
