// Thinning a plot's points: every pixel column keeps its lowest and highest point, in order.
#include <serve/Decimate.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace quillon::tool::serve {
namespace {

TEST(DecimateTest, KeepsEachColumnsExtremesInOrderAndNothingElse) {
    std::mt19937 random(7);
    std::uniform_real_distribution<double> noise(0.0, 1000.0);
    XyPoints points;
    for (int i = 0; i < 100'000; ++i) {
        points.x.push_back(i * 0.001);
        points.y.push_back(noise(random) + (i % 9000 == 0 ? 1e6 : 0.0)); // sharp peaks
    }
    const size_t width = 700;
    const XyPoints kept = Decimate(points, width);
    ASSERT_LE(kept.x.size(), 2 * width);
    EXPECT_TRUE(std::is_sorted(kept.x.begin(), kept.x.end()));

    // Recompute each column's extremes and look for them among the kept points.
    const double span = points.x.back() - points.x.front();
    std::vector<double> low(width, 1e300), high(width, -1e300);
    for (size_t i = 0; i < points.x.size(); ++i) {
        const size_t c =
            std::min(width - 1, size_t((points.x[i] - points.x.front()) / span * width));
        low[c] = std::min(low[c], points.y[i]);
        high[c] = std::max(high[c], points.y[i]);
    }
    std::vector<bool> lowSeen(width), highSeen(width);
    for (size_t i = 0; i < kept.x.size(); ++i) {
        const size_t c = std::min(width - 1, size_t((kept.x[i] - points.x.front()) / span * width));
        lowSeen[c] = lowSeen[c] || kept.y[i] == low[c];
        highSeen[c] = highSeen[c] || kept.y[i] == high[c];
        const auto original = std::lower_bound(points.x.begin(), points.x.end(), kept.x[i]);
        ASSERT_EQ(points.y[size_t(original - points.x.begin())], kept.y[i]); // a real point
    }
    EXPECT_EQ(std::count(lowSeen.begin(), lowSeen.end(), false), 0);
    EXPECT_EQ(std::count(highSeen.begin(), highSeen.end(), false), 0);
}

TEST(DecimateTest, ShortFlatAndEmptySeries) {
    const XyPoints few{{1, 2, 3}, {5, 1, 9}};
    EXPECT_EQ(Decimate(few, 2).y, (std::vector<double>{5, 1, 9}));
    EXPECT_EQ(Decimate(few, 1).y, (std::vector<double>{1, 9}));
    XyPoints flat{std::vector<double>(50, 4.0), std::vector<double>(50, 2.0)};
    EXPECT_EQ(Decimate(flat, 10).x.size(), 1u); // one column, one value
    EXPECT_TRUE(Decimate(XyPoints{}, 10).x.empty());
}

} // namespace
} // namespace quillon::tool::serve
