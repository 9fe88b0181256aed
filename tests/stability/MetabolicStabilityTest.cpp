#include <quillon/document/Samples.h>
#include <quillon/stability/FirstOrderFit.h>
#include <quillon/stability/MetabolicStabilityInfo.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace quillon;

namespace {

// An analyte sample at a time, with a found "Parent" of the given area (none when area < 0) and a
// found hydroxylation of the given area.
CSampleData Incubation(int number, const char* time, double parentArea, double metaboliteArea,
                       const char* parent = "Drug") {
    CSampleData sample;
    sample.SetNumber(number);
    sample.SetType("Analyte");
    sample.SetSubjectTime(time);
    sample.SetSubjectParent(parent);
    sample.SetProcessParameters("method.prm");
    sample.ExpectedMetabolitesValid(true);
    auto add = [&](const char* name, double shift, double area) {
        CMetaboliteData m;
        m.SetExpected();
        m.SetMetName(name);
        m.SetMetabolite(shift);
        m.SetFound(true);
        m.SetPeakArea(area);
        sample.AddMSMetabolite(m);
    };
    if (parentArea >= 0)
        add("Parent", 0.0, parentArea);
    add("Hydroxylation", 15.9949, metaboliteArea);
    return sample;
}

bool NoNaN(const CMetabolicStabilityInfo& info) {
    for (double value :
         {info.k, info.standardErrorK, info.rSquared, info.halfLife, info.halfLifeLow,
          info.halfLifeHigh, info.intrinsicClearance, info.scaledClearance, info.initialAmount}) {
        if (!std::isfinite(value))
            return false;
    }
    for (const auto& point : info.points) {
        if (!std::isfinite(point.percentRemaining))
            return false;
    }
    return info.halfLife >= 0.0;
}

} // namespace

TEST(MetabolicStability, ExactSeriesAndStudentQuantiles) {
    const FirstOrderFit fit = FirstOrderFit::Of({0, 30, 60}, {100, 50, 25});
    ASSERT_TRUE(fit.fitted);
    EXPECT_NEAR(fit.k, std::log(2.0) / 30.0, 1e-12);
    EXPECT_NEAR(fit.rSquared, 1.0, 1e-12);
    EXPECT_NEAR(fit.standardErrorK, 0.0, 1e-9);
    EXPECT_NEAR(fit.intercept, std::log(100.0), 1e-12);

    // Published two-sided 95% quantiles of Student's t.
    EXPECT_NEAR(TQuantile(0.95, 1), 12.706, 1e-3);
    EXPECT_NEAR(TQuantile(0.95, 4), 2.776, 1e-3);
    EXPECT_NEAR(TQuantile(0.95, 30), 2.042, 1e-3);
    EXPECT_NEAR(TQuantile(0.99, 5), 4.032, 1e-3);
}

// Replicates share a time, controls and other parents form no part of the series, the internal
// standard normalises amounts, and the clearances follow from k.
TEST(MetabolicStability, SeriesReplicatesStandardAndClearance) {
    CSamples samples;
    CSampleData control = Incubation(1, "0", 1000, 0);
    control.SetType("Control");
    samples.AddSample(control);
    samples.AddSample(Incubation(2, "60", 250, 30));
    samples.AddSample(Incubation(3, "0", 900, 0));
    samples.AddSample(Incubation(4, "0", 1100, 0));
    samples.AddSample(Incubation(5, "30", 500, 20));
    CSampleData withStandard = Incubation(6, "30", 1000, 80);
    withStandard.SetInternalStandard(0, 2.0); // area ratio 500
    samples.AddSample(withStandard);
    samples.AddSample(Incubation(7, "30", 400, 0, "Other drug"));

    CArray<CMetabolicStabilityInfo> series;
    ASSERT_TRUE(samples.CreateMetabolicStabilityAnalysis(series));
    ASSERT_EQ(series.GetSize(), 2);
    const CMetabolicStabilityInfo& drug = series[0];
    ASSERT_EQ(drug.points.size(), 5u);
    EXPECT_EQ(drug.times, (std::vector<double>{0, 30, 60}));
    EXPECT_DOUBLE_EQ(drug.initialAmount, 1000.0);
    EXPECT_DOUBLE_EQ(drug.points[3].amount, 500.0); // normalised by the standard
    EXPECT_EQ(drug.meanPercentRemaining, (std::vector<double>{100, 50, 25}));
    EXPECT_EQ(drug.flags, 0);
    EXPECT_NEAR(drug.halfLife, 30.0, 0.3);
    EXPECT_NEAR(drug.intrinsicClearance, drug.k * 1000.0 / 0.5, 1e-9);
    EXPECT_NEAR(drug.scaledClearance, drug.intrinsicClearance * 45.0 * 20.0 / 1000.0, 1e-9);
    EXPECT_LT(drug.halfLifeLow, drug.halfLife);
    EXPECT_GT(drug.halfLifeHigh, drug.halfLife);
    ASSERT_EQ(drug.formation.size(), 1u);
    EXPECT_EQ(drug.formation[0].label, "+16");
    EXPECT_EQ(drug.formation[0].amountAtTime, (std::vector<double>{0, 30, 30}));
    EXPECT_DOUBLE_EQ(drug.formation[0].timeOfMaximum, 30.0);
    EXPECT_DOUBLE_EQ(drug.formation[0].maximumPercentOfParent, 3.0);
    EXPECT_TRUE(series[1].Has(CMetabolicStabilityInfo::kTooFewTimePoints)); // one sample
}

// Series a fit means nothing for are flagged, with no NaN and no negative half-life anywhere.
TEST(MetabolicStability, MeaninglessSeriesAreFlagged) {
    auto analyse = [](std::vector<CSampleData> list) {
        CSamples samples;
        for (const CSampleData& sample : list)
            samples.AddSample(sample);
        CArray<CMetabolicStabilityInfo> series;
        EXPECT_TRUE(samples.CreateMetabolicStabilityAnalysis(series));
        EXPECT_EQ(series.GetSize(), 1);
        EXPECT_TRUE(NoNaN(series[0]));
        return series[0];
    };
    using Info = CMetabolicStabilityInfo;
    // No parent anywhere.
    Info none = analyse(
        {Incubation(1, "0", -1, 5), Incubation(2, "30", -1, 5), Incubation(3, "60", -1, 5)});
    EXPECT_TRUE(none.Has(Info::kNoParent));
    EXPECT_TRUE(none.Has(Info::kNoInitialAmount));
    EXPECT_FALSE(none.HasHalfLife());
    // All at one time (missing times read as 0).
    Info oneTime = analyse({Incubation(1, "", 100, 0), Incubation(2, "x", 80, 0)});
    EXPECT_TRUE(oneTime.Has(Info::kTooFewTimePoints));
    // Zero and negative areas leave only two usable times.
    Info sparse = analyse(
        {Incubation(1, "0", 100, 0), Incubation(2, "30", 0, 0), Incubation(3, "60", 25, 0)});
    EXPECT_TRUE(sparse.Has(Info::kTooFewTimePoints));
    EXPECT_EQ(sparse.pointsUsed, 2);
    // A parent that grows: no decline, no half-life, and no clearance.
    Info growing = analyse(
        {Incubation(1, "0", 100, 0), Incubation(2, "30", 150, 0), Incubation(3, "60", 210, 0)});
    EXPECT_TRUE(growing.Has(Info::kNoDecline));
    EXPECT_FALSE(growing.HasHalfLife());
    EXPECT_EQ(growing.intrinsicClearance, 0.0);
    // Scattered amounts: a poor fit, and an interval open at its upper end.
    Info scattered = analyse({Incubation(1, "0", 100, 0), Incubation(2, "30", 20, 0),
                              Incubation(3, "60", 90, 0), Incubation(4, "90", 30, 0)});
    EXPECT_TRUE(scattered.Has(Info::kPoorFit));
    EXPECT_TRUE(scattered.Has(Info::kOpenInterval));
    EXPECT_EQ(scattered.halfLifeHigh, 0.0);
    EXPECT_EQ(scattered.FlagsText(), "poor fit; open interval");

    // The fitted line in % remaining and its band: on exact data the line passes through the
    // points with no width; on scattered data the band is narrowest at the mean time (45 min),
    // where its half-width is t(95%, 2) x s / sqrt(4), s from the residuals worked by hand.
    double line = 0, low = 0, high = 0;
    Info exact = analyse(
        {Incubation(1, "0", 400, 0), Incubation(2, "30", 200, 0), Incubation(3, "60", 100, 0)});
    ASSERT_TRUE(exact.FittedPercentBand(60, line, low, high));
    EXPECT_NEAR(line, std::log(25.0), 1e-9);
    EXPECT_NEAR(high - low, 0.0, 1e-9);
    ASSERT_TRUE(scattered.FittedPercentBand(45, line, low, high));
    const std::vector<double> lnY = {std::log(100.0), std::log(20.0), std::log(90.0),
                                     std::log(30.0)};
    const double slope = (-45 * lnY[0] - 15 * lnY[1] + 15 * lnY[2] + 45 * lnY[3]) / 4500;
    const double mean = (lnY[0] + lnY[1] + lnY[2] + lnY[3]) / 4;
    double residual = 0;
    for (int i = 0; i < 4; ++i)
        residual += std::pow(lnY[i] - mean - slope * (30 * i - 45), 2);
    EXPECT_NEAR(line, mean, 1e-9); // the initial amount is 100: % and amount agree
    EXPECT_NEAR((high - low) / 2, TQuantile(0.95, 2) * std::sqrt(residual / 2) / 2, 1e-9);
    double edgeLow = 0, edgeHigh = 0;
    ASSERT_TRUE(scattered.FittedPercentBand(0, line, edgeLow, edgeHigh));
    EXPECT_GT(edgeHigh - edgeLow, high - low);
    EXPECT_FALSE(oneTime.FittedPercentBand(0, line, low, high));
}
