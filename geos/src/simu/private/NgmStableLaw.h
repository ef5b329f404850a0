#pragma once

/// Symmetric stable law of index alpha in ]0, 2]: an integral over an angle, to about 1e-9.
/// Source: [Nolan, 1997, theorem 1]
namespace NgmStableLaw {

/// Indices this near to 1 are taken as 1 (Cauchy).
constexpr double CAUCHY_TOLERANCE = 1e-6;

double density(double alpha, double x);
double distribution(double alpha, double x);

}  // namespace NgmStableLaw
