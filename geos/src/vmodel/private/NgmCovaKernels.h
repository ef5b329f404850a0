#pragma once

/// Arithmetic of the bulk covariance evaluators on plain arrays.
namespace NgmCovaKernels {

/// How a separation vector becomes the reduced vector of a structure: first the rotation (nine
/// elements column by column, columns being the local axes), then the product with the anisotropy
/// coefficients. A null pointer leaves the step out.
struct Reduction
{
  const double *rotation = nullptr;
  const double *anisotropy = nullptr;

  bool operator==(const Reduction &other) const
  {
    return rotation == other.rotation && anisotropy == other.anisotropy;
  }
};

/// Sample coordinates in three columns.
struct Points
{
  const double *x;
  const double *y;
  const double *z;

  Points from(int first) const { return {x + first, y + first, z + first}; }
};

/// The reduced vector of h, written to reduced[0..2]: the operations, in the same order, of
/// squaredDistances().
void reduce(const double h[3], const Reduction &reduction, double reduced[3]);

/// out[i] = squared norm of the reduced vector from sample i to the target.
void squaredDistances(const double target[3], int n, const Points &samples,
                      const Reduction &reduction, double *out);

}  // namespace NgmCovaKernels
