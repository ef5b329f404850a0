#pragma once

#include <cmath>
#include <limits>

/// Single values of the Bessel functions, for orders and arguments that need no check.
namespace NgmBesselKernels {

/// Beyond it cosines say nothing any more.
constexpr double LARGEST_ARGUMENT_J = 1e21;

/// Of J; beyond it a value takes a millisecond and more.
constexpr double LARGEST_ORDER = 1e5;

/// Beyond it K underflows.
constexpr double LARGEST_ARGUMENT_K = 705.342;

/// J_order(x) for order >= 0 and 0 < x <= LARGEST_ARGUMENT_J, within 1e-14 of the amplitude; 0
/// beyond LARGEST_ORDER.
double besselJ(double order, double x);

/// K_order(x) for order >= 0 and 0 < x <= LARGEST_ARGUMENT_K, within 1e-14; infinite on overflow.
double besselK(double order, double x);

/// False where J, small because x is small beside the order, has underflowed, and beyond
/// LARGEST_ORDER.
inline bool isAccurateJ(double order, double x, double value)
{
  if (order > LARGEST_ORDER)
    return false;
  return x >= order || std::abs(value) >= std::numeric_limits<double>::min();
}

}  // namespace NgmBesselKernels
