#pragma once

#include <cstddef>

namespace NgcKrigingVariance {

/// Turns the kriging variances of a buffer into its outputs, at the given positions.
///
/// Variances stand in `variance` or, when that is null, in `standardDeviation`; either may be null.
/// Those of `variance` stay as they are, negative ones included; a standard deviation is the square
/// root of a positive variance, else 0. Undefined values stay undefined.
void convert(std::size_t n, const int *positions, const double *variance,
             double *standardDeviation);

}  // namespace NgcKrigingVariance
