#include "interpol/private/NgcKrigingVariance.h"

#include "basic/base/NbbGlobal.h"

#include <cmath>

void NgcKrigingVariance::convert(std::size_t n, const int *positions, const double *variance,
                                 double *standardDeviation)
{
  if (!standardDeviation)
    return;
  const double *from = variance ? variance : standardDeviation;
  for (std::size_t k = 0; k < n; ++k) {
    const int position = positions[k];
    const double value = from[position];
    const double root = value > 0. ? std::sqrt(value) : 0.;
    standardDeviation[position] = NbbGlobal::isDefined(value) ? root : NbbGlobal::D_FFFF;
  }
}
