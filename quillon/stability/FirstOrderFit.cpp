#include <quillon/stability/FirstOrderFit.h>

#include <cmath>
#include <set>

namespace quillon {

FirstOrderFit FirstOrderFit::Of(const std::vector<double>& times,
                                const std::vector<double>& amounts) {
    FirstOrderFit fit;
    std::vector<double> x;
    std::vector<double> y;
    std::set<double> distinct;
    for (size_t i = 0; i < times.size() && i < amounts.size(); ++i) {
        if (!(amounts[i] > 0.0) || !std::isfinite(amounts[i]) || !std::isfinite(times[i]))
            continue;
        x.push_back(times[i]);
        y.push_back(std::log(amounts[i]));
        distinct.insert(times[i]);
    }
    fit.points = static_cast<int>(x.size());
    fit.distinctTimes = static_cast<int>(distinct.size());
    if (fit.distinctTimes < 2)
        return fit;

    const double n = static_cast<double>(x.size());
    double meanX = 0.0;
    double meanY = 0.0;
    for (size_t i = 0; i < x.size(); ++i) {
        meanX += x[i];
        meanY += y[i];
    }
    meanX /= n;
    meanY /= n;
    double sxx = 0.0;
    double sxy = 0.0;
    double syy = 0.0;
    for (size_t i = 0; i < x.size(); ++i) {
        sxx += (x[i] - meanX) * (x[i] - meanX);
        sxy += (x[i] - meanX) * (y[i] - meanY);
        syy += (y[i] - meanY) * (y[i] - meanY);
    }
    const double slope = sxy / sxx;
    fit.k = -slope;
    fit.intercept = meanY - slope * meanX;
    const double residual = std::max(0.0, syy - slope * sxy);
    fit.rSquared = syy > 0.0 ? 1.0 - residual / syy : 1.0;
    fit.residualStandardError = x.size() > 2 ? std::sqrt(residual / (n - 2.0)) : 0.0;
    fit.standardErrorK = fit.residualStandardError / std::sqrt(sxx);
    fit.meanTime = meanX;
    fit.timeSumOfSquares = sxx;
    fit.fitted = true;
    return fit;
}

namespace {

// The regularised incomplete beta function I_x(a, b) by its continued fraction.
double IncompleteBeta(double a, double b, double x) {
    if (x <= 0.0)
        return 0.0;
    if (x >= 1.0)
        return 1.0;
    const double front = std::exp(std::lgamma(a + b) - std::lgamma(a) - std::lgamma(b) +
                                  a * std::log(x) + b * std::log1p(-x));
    if (x > (a + 1.0) / (a + b + 2.0))
        return 1.0 - IncompleteBeta(b, a, 1.0 - x);
    // Lentz's evaluation of the continued fraction.
    const double tiny = 1e-300;
    double c = 1.0;
    double d = 1.0 - (a + b) * x / (a + 1.0);
    d = 1.0 / (std::fabs(d) < tiny ? tiny : d);
    double f = d;
    for (int m = 1; m <= 300; ++m) {
        const double m2 = 2.0 * m;
        double numerator = m * (b - m) * x / ((a + m2 - 1.0) * (a + m2));
        d = 1.0 + numerator * d;
        d = 1.0 / (std::fabs(d) < tiny ? tiny : d);
        c = 1.0 + numerator / c;
        c = std::fabs(c) < tiny ? tiny : c;
        f *= d * c;
        numerator = -(a + m) * (a + b + m) * x / ((a + m2) * (a + m2 + 1.0));
        d = 1.0 + numerator * d;
        d = 1.0 / (std::fabs(d) < tiny ? tiny : d);
        c = 1.0 + numerator / c;
        c = std::fabs(c) < tiny ? tiny : c;
        const double step = d * c;
        f *= step;
        if (std::fabs(step - 1.0) < 1e-15)
            break;
    }
    return front * f / a;
}

// P(|T| <= t) for Student's t with df degrees of freedom.
double TwoSidedProbability(double t, int df) {
    const double v = static_cast<double>(df);
    return 1.0 - IncompleteBeta(v / 2.0, 0.5, v / (v + t * t));
}

} // namespace

double TQuantile(double confidence, int df) {
    if (df < 1 || !(confidence > 0.0) || !(confidence < 1.0))
        return 0.0;
    // Bisection on a bracket that holds every quantile up to 99.99% at one degree of freedom.
    double low = 0.0;
    double high = 1.0;
    while (TwoSidedProbability(high, df) < confidence && high < 1e7)
        high *= 2.0;
    for (int i = 0; i < 200 && high - low > 1e-12 * high; ++i) {
        const double middle = 0.5 * (low + high);
        if (TwoSidedProbability(middle, df) < confidence)
            low = middle;
        else
            high = middle;
    }
    return 0.5 * (low + high);
}

} // namespace quillon
