#pragma once

#include <vector>

namespace quillon {

// A first-order decay fitted to amounts over time: least squares of ln(amount) on time.
//
// With amounts 100, 50, 25 at 0, 30 and 60 min, ln(amount) falls by ln 2 every 30 min: the slope
// is -ln 2 / 30, so k = 0.023105 /min, the half-life ln 2 / k = 30 min, R-squared 1 and the
// standard error of k 0.
struct FirstOrderFit {
    int points = 0;         // points used: those with a positive amount
    int distinctTimes = 0;  // distinct times among them
    double k = 0.0;         // elimination rate constant, 1/min (minus the slope)
    double intercept = 0.0; // ln(amount) at time 0
    double rSquared = 0.0;
    double standardErrorK = 0.0;        // 0 with only two points
    double meanTime = 0.0;              // min, over the points used
    double timeSumOfSquares = 0.0;      // sum of (time - meanTime)^2, min^2
    double residualStandardError = 0.0; // of ln(amount); 0 with only two points
    bool fitted = false;                // false with fewer than two distinct times

    // Fits times (min) and amounts; points whose amount is not positive (or not a number) are
    // left out.
    static FirstOrderFit Of(const std::vector<double>& times, const std::vector<double>& amounts);
};

// The two-sided quantile of Student's t distribution: the t with P(|T| <= t) = confidence for
// degrees of freedom df >= 1. TQuantile(0.95, 1) = 12.706, TQuantile(0.95, 10) = 2.228.
double TQuantile(double confidence, int df);

} // namespace quillon
