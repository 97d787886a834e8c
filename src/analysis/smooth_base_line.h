#pragma once
// Smooth base lines of a real spectrum, beside the straight lines between base points: a Whittaker smoother
// and a Bernstein polynomial. Both look only at points that a signal mask leaves, and both leave lines that
// the mask missed out of account step by step. They work on block means, so that their time is that of one
// pass over the row and their sums stay well conditioned at a million points.

#include <cstdint>
#include <span>
#include <vector>

namespace nmr {

struct BaseLineShape {
    double stiffness = 0.05; ///< Whittaker: length over which the curve may bend, share of the row
    double asymmetry = 1.0;  ///< 0: lines of both signs are expected (DEPT, APT); 1: only positive ones
    int degree = 6;          ///< Bernstein: 1 to 20
};

/// Deviation of the noise from a straight line in the quiet quarter of many short pieces. Not from point to
/// point: in a zero-filled spectrum neighbours follow each other.
double Noise_Deviation(std::span<const float> row);

/// 1 where a row carries signal: what stands out of the noise against its surroundings, with the feet of each line.
/// Sources of the idea: D. E. Brown, J. Magn. Reson. A 114 (1995) 268; A. S. L. Dietrich et al., J. Magn. Reson.
/// 91 (1991) 1 (power of the derivative as detector).
std::vector<std::uint8_t> Signal_Mask(std::span<const float> row);

/// Minimises sum w (y - z)^2 + lambda * sum (second difference of z)^2; weights are 0 under the mask, and beyond it
/// they fall off logistically above the noise of the residuals.
/// Sources: P. H. C. Eilers, Anal. Chem. 75 (2003) 3631; S.-J. Baek et al., Analyst 140 (2015) 250.
/// @return the base line, one level a point; zeros for fewer than 8 points or where all is signal
std::vector<float> Whittaker_Base_Line(std::span<const float> row, const BaseLineShape& shape = {});

/// Least squares of the same weights by a polynomial in the Bernstein basis over the row.
/// Source: D. E. Brown, J. Magn. Reson. A 114 (1995) 268.
std::vector<float> Bernstein_Base_Line(std::span<const float> row, const BaseLineShape& shape = {});

/// Solves (diag(weights) + lambda D'D) z = weights * y, D the second differences; banded, in linear time.
/// Weights are at least 0, two or more of them above it; lambda above 0.
std::vector<double> Whittaker_Solve(std::span<const double> y, std::span<const double> weights, double lambda);

} // namespace nmr
