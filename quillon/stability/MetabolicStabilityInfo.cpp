#include <quillon/stability/MetabolicStabilityInfo.h>

#include <quillon/stability/FirstOrderFit.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quillon {

QUILLON_IMPLEMENT_DYNAMIC(CMetabolicStabilityInfo, CObject)

namespace {

size_t TimeIndex(const std::vector<double>& times, double time) {
    return static_cast<size_t>(std::lower_bound(times.begin(), times.end(), time) - times.begin());
}

} // namespace

void CMetabolicStabilityInfo::Evaluate(const std::vector<std::vector<double>>& formationAmounts) {
    flags = 0;
    times.clear();
    for (const Point& point : points)
        times.push_back(point.time);
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
    EvaluatePercentages();
    EvaluateFit();
    EvaluateFormation(formationAmounts);
}

// Initial amount: the mean over the earliest time's samples that have an amount; each point's
// percentage of it, and their mean at each time.
void CMetabolicStabilityInfo::EvaluatePercentages() {
    const bool anyAmount =
        std::any_of(points.begin(), points.end(), [](const Point& p) { return p.hasAmount; });
    if (!anyAmount)
        flags |= kNoParent;
    initialAmount = 0.0;
    int initialCount = 0;
    for (const Point& point : points) {
        if (!times.empty() && point.time == times.front() && point.hasAmount) {
            initialAmount += point.amount;
            ++initialCount;
        }
    }
    initialAmount = initialCount > 0 ? initialAmount / initialCount : 0.0;
    if (!(initialAmount > 0.0))
        flags |= kNoInitialAmount;

    meanPercentRemaining.assign(times.size(), 0.0);
    std::vector<int> perTime(times.size(), 0);
    for (Point& point : points) {
        point.percentRemaining =
            point.hasAmount && initialAmount > 0.0 ? point.amount / initialAmount * 100.0 : 0.0;
        if (point.hasAmount && initialAmount > 0.0) {
            const size_t t = TimeIndex(times, point.time);
            meanPercentRemaining[t] += point.percentRemaining;
            ++perTime[t];
        }
    }
    for (size_t t = 0; t < times.size(); ++t) {
        if (perTime[t] > 0)
            meanPercentRemaining[t] /= perTime[t];
    }
}

// The fit over the samples with a positive amount, the half-life with its interval and the
// clearances.
void CMetabolicStabilityInfo::EvaluateFit() {
    std::vector<double> x;
    std::vector<double> y;
    for (Point& point : points) {
        point.usedInFit = point.hasAmount && point.amount > 0.0;
        if (point.usedInFit) {
            x.push_back(point.time);
            y.push_back(point.amount);
        }
    }
    const FirstOrderFit fit = FirstOrderFit::Of(x, y);
    pointsUsed = fit.points;
    intercept = m_meanTime = m_timeSumOfSquares = m_residualStandardError = 0.0;
    k = standardErrorK = rSquared = halfLife = halfLifeLow = halfLifeHigh = 0.0;
    intrinsicClearance = scaledClearance = 0.0;
    if (!fit.fitted || fit.distinctTimes < 3) {
        flags |= kTooFewTimePoints;
    } else {
        k = fit.k;
        standardErrorK = fit.standardErrorK;
        intercept = fit.intercept;
        m_meanTime = fit.meanTime;
        m_timeSumOfSquares = fit.timeSumOfSquares;
        m_residualStandardError = fit.residualStandardError;
        rSquared = fit.rSquared;
        if (rSquared < parameters.minimumRSquared)
            flags |= kPoorFit;
        if (!(k > 0.0)) {
            flags |= kNoDecline;
        } else {
            halfLife = std::log(2.0) / k;
            const double t = TQuantile(0.95, fit.points - 2);
            const double kHigh = k + t * standardErrorK;
            const double kLow = k - t * standardErrorK;
            halfLifeLow = std::log(2.0) / kHigh;
            if (kLow > 0.0)
                halfLifeHigh = std::log(2.0) / kLow;
            else
                flags |= kOpenInterval;
            if (parameters.proteinMgPerMl > 0.0) {
                intrinsicClearance = k * 1000.0 / parameters.proteinMgPerMl;
                scaledClearance = intrinsicClearance * parameters.proteinMgPerGramLiver *
                                  parameters.liverGramsPerKg / 1000.0;
            }
        }
    }
}

// Formation: the mean amount of each metabolite at each time, and where it peaks.
void CMetabolicStabilityInfo::EvaluateFormation(
    const std::vector<std::vector<double>>& formationAmounts) {
    for (size_t f = 0; f < formation.size() && f < formationAmounts.size(); ++f) {
        Formation& entry = formation[f];
        entry.amountAtTime.assign(times.size(), 0.0);
        std::vector<int> count(times.size(), 0);
        for (size_t p = 0; p < points.size() && p < formationAmounts[f].size(); ++p) {
            const double amount = formationAmounts[f][p];
            if (!(amount >= 0.0) || !std::isfinite(amount))
                continue;
            const size_t t = TimeIndex(times, points[p].time);
            entry.amountAtTime[t] += amount;
            ++count[t];
        }
        double maximum = 0.0;
        entry.timeOfMaximum = 0.0;
        for (size_t t = 0; t < times.size(); ++t) {
            if (count[t] > 0)
                entry.amountAtTime[t] /= count[t];
            if (entry.amountAtTime[t] > maximum) {
                maximum = entry.amountAtTime[t];
                entry.timeOfMaximum = times[t];
            }
        }
        entry.maximumPercentOfParent = initialAmount > 0.0 ? maximum / initialAmount * 100.0 : 0.0;
    }
}

std::string CMetabolicStabilityInfo::FlagsText() const {
    static const std::pair<int, const char*> names[] = {{kNoParent, "no parent"},
                                                        {kNoInitialAmount, "no initial amount"},
                                                        {kTooFewTimePoints, "too few time points"},
                                                        {kNoDecline, "no decline"},
                                                        {kPoorFit, "poor fit"},
                                                        {kOpenInterval, "open interval"}};
    std::string text;
    for (const auto& [flag, name] : names)
        if (flags & flag)
            text += (text.empty() ? "" : "; ") + std::string(name);
    return text;
}

bool CMetabolicStabilityInfo::FittedPercentBand(double time, double& line, double& low,
                                                double& high) const {
    if (Has(kTooFewTimePoints) || !(initialAmount > 0.0) || pointsUsed < 3)
        return false;
    line = intercept - k * time - std::log(initialAmount) + std::log(100.0);
    const double n = static_cast<double>(pointsUsed);
    const double spread = (time - m_meanTime) * (time - m_meanTime) / m_timeSumOfSquares;
    const double half =
        TQuantile(0.95, pointsUsed - 2) * m_residualStandardError * std::sqrt(1.0 / n + spread);
    low = line - half;
    high = line + half;
    return true;
}

} // namespace quillon
