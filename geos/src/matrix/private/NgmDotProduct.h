#pragma once

/// Sum of x_i * y_i over eight interleaved partial sums, added up pairwise: vectorises, and its
/// bits do not depend on alignment.
inline double dotProduct(int n, const double *x, const double *y)
{
  constexpr int LANES = 8;
  double sums[LANES] = {};
  int i = 0;
  for (; i + LANES <= n; i += LANES)
    for (int lane = 0; lane < LANES; ++lane)
      sums[lane] += x[i + lane] * y[i + lane];
  for (int lane = 0; i + lane < n; ++lane)
    sums[lane] += x[i + lane] * y[i + lane];
  return ((sums[0] + sums[1]) + (sums[2] + sums[3])) + ((sums[4] + sums[5]) + (sums[6] + sums[7]));
}

/// Rounding may leave less than 0 of a variance. NaN stays.
inline double floorVariance(double variance)
{
  return variance < 0. ? 0. : variance;
}

/// Variance of a kriging error, floored at 0: c00 - sum over all equations of weight * right-hand
/// side.
inline double krigingVariance(double c00, int n, const double *weights, const double *rhs)
{
  return floorVariance(c00 - dotProduct(n, weights, rhs));
}
