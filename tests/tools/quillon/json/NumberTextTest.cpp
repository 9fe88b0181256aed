// Numbers as text: the shortest text that reads back to the stored value, and numbers read from
// a field's text.
#include <json/NumberText.h>

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace quillon::tool {
namespace {

std::string Shortest(float value) {
    char text[kShortestRoom];
    const char* end = WriteShortest(text, value);
    return end != nullptr ? std::string(text, static_cast<size_t>(end - text)) : "(none)";
}

// std::to_chars without a format gives the shortest text that reads back exactly, nearest the
// value among equally short ones: the writer must give the same, quick path or not.
std::string Reference(float value) {
    char text[64];
    const char* end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, static_cast<size_t>(end - text));
}

std::vector<float> Samples() {
    std::vector<float> values = {
        260.7292f, 0.1f,     33.0f,  100.0f,     0.0f,       -0.0f,      1e4f,           12340.0f,
        100000.0f, 1e21f,    0.01f,  0.5f,       4194304.0f, 4194303.5f, 8388607.0f,     1.9999999f,
        9.999999f, -12.345f, 1e-40f, 0.0099999f, 3.4e38f,    0.045f,     1.17549435e-38f};
    std::mt19937 random(20260312);
    // Any bit pattern of a finite float.
    std::uniform_int_distribution<std::uint32_t> bits;
    // Values as a report holds them: a few decimals, read into a float.
    std::uniform_int_distribution<int> digits(0, 99'999'999);
    std::uniform_int_distribution<int> decimals(0, 10);
    for (int i = 0; i < 200'000; ++i) {
        const auto any = std::bit_cast<float>(bits(random));
        if (std::isfinite(any))
            values.push_back(any);
        const float decimal = static_cast<float>(digits(random) / std::pow(10.0, decimals(random)));
        values.push_back(decimal);
        values.push_back(std::nextafter(decimal, 0.0f));
        values.push_back(-decimal);
    }
    return values;
}

TEST(NumberTextTest, FloatsPrintAsTheShortestTextThatReadsBack) {
    EXPECT_EQ(Shortest(100000.0f), "1e+05");
    int mismatches = 0;
    for (const float value : Samples()) {
        const std::string text = Shortest(value);
        if (text != Reference(value) && ++mismatches <= 10)
            ADD_FAILURE() << std::bit_cast<std::uint32_t>(value) << ": " << text << " instead of "
                          << Reference(value);
    }
    EXPECT_EQ(mismatches, 0);
}

TEST(NumberTextTest, DoublesPrintAsFloatsOnlyWhenTheyHoldAFloat) {
    const auto text = [](double value) {
        std::string out = "x";
        return AppendShortest(out, value) ? out : out + "(false)";
    };
    EXPECT_EQ(text(static_cast<double>(73.1402f)), "x73.1402"); // 73.14019775390625
    EXPECT_EQ(text(0.1), "x0.1");
    EXPECT_EQ(text(0.30000000000000004), "x0.30000000000000004");
    EXPECT_EQ(text(1e21), "x1e+21");
    EXPECT_EQ(text(-2.2250738585072014e-308), "x-2.2250738585072014e-308");
    for (const double bad : {std::nan(""), HUGE_VAL, -HUGE_VAL})
        EXPECT_EQ(text(bad), "x(false)");
    char room[kShortestRoom];
    EXPECT_EQ(WriteShortest(room, std::numeric_limits<float>::infinity()), nullptr);
    EXPECT_EQ(AsShortestDouble(260.7292f), 260.7292);
    EXPECT_EQ(AsShortestDouble(static_cast<double>(260.7292f)), 260.7292);
    EXPECT_EQ(AsShortestDouble(0.1), 0.1);
}

TEST(NumberTextTest, IntegralTextAndFieldNumbers) {
    for (const auto& [text, integral] :
         {std::pair{"100", true}, {"-3", true}, {"1e+05", false}, {"1.5", false}})
        EXPECT_EQ(LooksIntegral(text), integral) << text;

    double number = -1.0;
    EXPECT_TRUE(ParseNumberText(" 12.5\t", number));
    EXPECT_EQ(number, 12.5);
    EXPECT_TRUE(ParseNumberText("+3", number));
    EXPECT_EQ(number, 3.0);
    for (const char* bad : {"", "  ", "1x", "sixty", "nan", "inf", "1e999", "--1"})
        EXPECT_FALSE(ParseNumberText(bad, number)) << bad;
    EXPECT_EQ(number, 3.0); // left alone on failure
}

} // namespace
} // namespace quillon::tool
