#pragma once

#include <quillon/chemistry/IsotopeModel.h>

#include <span>
#include <vector>

namespace quillon {

// Spacing tolerance (u) between a peak and the model's isotope offset.
constexpr double kIsotopeSpacingTolerance = 0.02;
// Default factor by which a measured isotope ratio may differ from the model's, either way.
constexpr double kIsotopeRatioTolerance = 2.8;

// Finds the monoisotopic peaks among a group of neighbouring centroid peaks (ascending mass),
// using the isotope model of the compound they come from. The model's lightest peak is the
// pattern's leading peak; every other model peak j gives an offset d_j and an intensity ratio
// r_j to the leading peak.
//
// Peaks are visited in ascending mass. A peak not yet explained leads a pattern and is kept; it
// then explains each heavier peak q for which some j has |m_q - m_lead - d_j| <= 0.02 and
// r_j / ratioTolerance <= I_q / I_lead <= r_j * ratioTolerance. Explained peaks are dropped and
// never lead a pattern themselves. Returns the indices of the kept peaks, ascending.
//
// Worked example, model of C6H5Cl (M 112.0080 at 100, M+1 113.0113 at 6.5, M+2 114.0050 at 32.4):
// peaks 112.008/100, 113.011/7, 114.005/30 and 114.5/20 keep indices 0 and 3: 113.011 lies
// 1.0033 above the lead with ratio 0.07 (model 0.065), 114.005 lies 1.9970 above with ratio 0.30
// (model 0.324); 114.5 matches no offset. Had 114.005 stood at 95, its ratio 0.95 would exceed
// 0.324 x 2.8 = 0.91 and it would lead a pattern of its own.
std::vector<size_t> InferIsotopePatterns(std::span<const double> masses,
                                         std::span<const float> intensities,
                                         const CIsotopeModel& model,
                                         double ratioTolerance = kIsotopeRatioTolerance);

} // namespace quillon
