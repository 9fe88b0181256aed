#include "ReportFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace quillon::generate {
namespace {

std::string Printf(const char* format, double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

TEST(ReportFileTest, FixedFormattingMatchesPrintfAndRoundsBackExactly) {
    const char* formats[] = {"%.0f", "%.1f", "%.2f", "%.3f", "%.4f"};
    for (double value : {0.0, 0.5, 1.25, 2.675, 12.34567, 319.10302, 99999.99995, 1234567.8, -0.004,
                         -2.5, 0.00049, 7.0}) {
        for (int decimals = 0; decimals <= 4; ++decimals) {
            std::string text;
            AppendFixed(text, value, decimals);
            // Same digits as printf except where printf's round-half-to-even on the binary value
            // differs; both parse back to the value RoundFixed reports.
            EXPECT_DOUBLE_EQ(std::atof(text.c_str()), RoundFixed(value, decimals)) << text;
            EXPECT_NEAR(std::atof(text.c_str()),
                        std::atof(Printf(formats[decimals], value).c_str()),
                        1.01 * std::pow(10.0, -decimals))
                << text;
        }
    }
    std::string text;
    AppendFixed(text, -0.00001, 2);
    EXPECT_EQ(text, "0.00"); // no negative zero
    text.clear();
    AppendFixed(text, 0.0123, 4);
    EXPECT_EQ(text, "0.0123");
}

} // namespace
} // namespace quillon::generate
