#include "geos/vmodel/NgmBasicFunctions.h"

#include "vmodel/private/NgmBesselKernels.h"

#include <algorithm>
#include <cmath>

namespace {

/// What the published routines (Cody, RJBESL and RKBESL) give for bad arguments.
int badArguments(int nb)
{
  return std::min(nb, 0) - 1;
}

/// Fills `out` up to the first value that is not accurate; returns how many are.
template <class Function, class Test>
int fillAccurate(double alpha, int nb, QVector<double> &out, Function function, Test isAccurate)
{
  for (int k = 0; k < nb; ++k) {
    const double order = alpha + k;
    const double value = function(order);
    if (!isAccurate(order, value))
      return k;
    out[k] = value;
  }
  return nb;
}

}  // namespace

int NgmBasicFunctions::bessel_j(double x, double alpha, int nb, QVector<double> &out)
{
  out.fill(0., std::max(nb, 0));
  if (nb <= 0 || !(alpha >= 0. && alpha < 1.) ||
      !(x >= 0. && x <= NgmBesselKernels::LARGEST_ARGUMENT_J))
    return badArguments(nb);
  if (x == 0.) {
    out[0] = alpha == 0. ? 1. : 0.;
    return nb;
  }
  return fillAccurate(
      alpha, nb, out, [x](double order) { return NgmBesselKernels::besselJ(order, x); },
      [x](double order, double value) { return NgmBesselKernels::isAccurateJ(order, x, value); });
}

int NgmBasicFunctions::bessel_k(double x, double alpha, int nb, QVector<double> &out)
{
  out.fill(0., std::max(nb, 0));
  if (nb <= 0 || !(alpha >= 0. && alpha < 1.) ||
      !(x > 0. && x <= NgmBesselKernels::LARGEST_ARGUMENT_K))
    return badArguments(nb);
  return fillAccurate(
      alpha, nb, out, [x](double order) { return NgmBesselKernels::besselK(order, x); },
      [](double, double value) { return std::isfinite(value); });
}
