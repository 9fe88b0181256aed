#pragma once

#include <quillon/platform/Object.h>
#include <quillon/platform/String.h>

#include <string>
#include <vector>

namespace quillon {

// The settings of a metabolic stability analysis: the incubation's protein concentration and the
// factors that scale an in-vitro clearance to the whole body.
struct MetabolicStabilityParameters {
    double proteinMgPerMl = 0.5;         // microsomal protein in the incubation, mg/mL
    double proteinMgPerGramLiver = 45.0; // microsomal protein per gram of liver, mg/g
    double liverGramsPerKg = 20.0;       // liver per kilogram of body weight, g/kg
    double minimumRSquared = 0.8;        // a fit below this is flagged as poor
};

// One incubation series: the analyte samples of one parent and one set of processing parameters,
// ordered by incubation time (minutes, the samples' "SubjectTime"); samples at one time are
// replicates.
//
// The parent amount of a sample is the peak area of its found, low-energy metabolite named
// "Parent", divided by the sample's internal-standard area when it has one. Percent remaining is
// amount / (mean amount at the earliest time) x 100. The fit is a least-squares line through
// ln(amount) against time over the samples with a positive amount:
//   k = -slope (1/min); half-life = ln 2 / k (min);
//   CLint = k x 1000 / protein (uL/min/mg protein);
//   scaled CLint = CLint x protein per g liver x g liver per kg / 1000 (mL/min/kg).
// The half-life's 95% interval comes from k +- t(95%, n - 2) x SE(k).
// Worked example: amounts 100, 50, 25 at 0, 30, 60 min give k = ln 2 / 30 = 0.0231 /min, a
// half-life of 30 min, CLint = 0.0231 x 1000 / 0.5 = 46.2 uL/min/mg and a scaled clearance of
// 46.2 x 45 x 20 / 1000 = 41.6 mL/min/kg (with the default parameters).
// Where a number would mean nothing a flag says so and the number is 0: never a NaN, never a
// negative half-life.
class CMetabolicStabilityInfo : public CObject {
    QUILLON_DECLARE_DYNAMIC(CMetabolicStabilityInfo)

public:
    // Why results are missing or doubtful; several may be set.
    enum Flag {
        kNoParent = 1,         // no sample has a found, low-energy "Parent" with a positive area
        kNoInitialAmount = 2,  // nothing at the earliest time to refer percentages to
        kTooFewTimePoints = 4, // fewer than three distinct times with a positive amount: no fit
        kNoDecline = 8,        // the fit shows no decline (k <= 0): no half-life or clearance
        kPoorFit = 16,         // R-squared below the parameters' minimum
        kOpenInterval = 32,    // the interval's upper half-life end is unbounded
    };

    // One sample of the series.
    struct Point {
        int sampleIndex = -1; // in the collection
        int sampleNumber = 0;
        double time = 0.0;             // min
        bool hasAmount = false;        // a found parent with a positive area
        double amount = 0.0;           // parent area, or area ratio to the internal standard
        double percentRemaining = 0.0; // valid when the series has an initial amount
        bool usedInFit = false;
    };

    // A metabolite formed over the series, by name and mass-shift label (as the overall summary
    // names them): its mean amount (normalised as the parent's) at each distinct time.
    struct Formation {
        CString name;
        CString label;
        std::vector<double> amountAtTime;    // one per entry of Times()
        double timeOfMaximum = 0.0;          // min
        double maximumPercentOfParent = 0.0; // of the initial parent amount; 0 without one
    };

    // Identity of the series.
    CString parent;
    CString processParameters;
    MetabolicStabilityParameters parameters;

    std::vector<Point> points;                // in time order, replicates in collection order
    std::vector<double> times;                // the distinct times, ascending
    std::vector<double> meanPercentRemaining; // per distinct time; 0 without an initial amount
    double initialAmount = 0.0;               // mean amount at the earliest time

    // The fit and what follows from it.
    int pointsUsed = 0;
    double k = 0.0;              // 1/min
    double standardErrorK = 0.0; // 1/min
    double intercept = 0.0;      // the fitted ln(amount) at time 0
    double rSquared = 0.0;
    double halfLife = 0.0;           // min
    double halfLifeLow = 0.0;        // min, 95% interval
    double halfLifeHigh = 0.0;       // min; 0 with kOpenInterval
    double intrinsicClearance = 0.0; // uL/min/mg protein
    double scaledClearance = 0.0;    // mL/min/kg
    int flags = 0;

    std::vector<Formation> formation;

    // The fitted line and its 95% confidence band at a time, as ln(% remaining): the band is
    // t(95%, n - 2) x s x sqrt(1/n + (time - mean time)^2 / Sxx) either side of the line. False
    // without a fit or an initial amount. For 100, 50, 25 at 0, 30, 60 min: at 30 min the line is
    // ln 50 and the band has no width (the points lie on the line).
    bool FittedPercentBand(double time, double& line, double& low, double& high) const;

    bool Has(Flag flag) const { return (flags & flag) != 0; }
    // The flags set, in words, "; " between them: "too few time points; poor fit" ("" for none).
    std::string FlagsText() const;
    // The half-life and clearances are numbers that mean something.
    bool HasHalfLife() const { return halfLife > 0.0; }

    // Computes percentages, the fit and the formation table from points, times and the
    // formation amounts gathered per sample (one vector per formation entry, one value per
    // point, negative for none).
    void Evaluate(const std::vector<std::vector<double>>& formationAmounts);

private:
    // The steps of Evaluate, in its order (each uses what the one before computed).
    void EvaluatePercentages();
    void EvaluateFit();
    void EvaluateFormation(const std::vector<std::vector<double>>& formationAmounts);

    double m_meanTime = 0.0;              // of the points used in the fit
    double m_timeSumOfSquares = 0.0;      // Sxx of those times
    double m_residualStandardError = 0.0; // s of ln(amount) about the line
};

} // namespace quillon
