#pragma once

#include "geos/matrix/NgmMatrix.h"

#include <cstddef>
#include <vector>

/// What becomes of the kriging variances of a buffer of targets. Columns stand for variables, null
/// for one that has none; `positions` are the targets. Undefined values stay undefined.
namespace NgcKrigingVariance {

using Columns = std::vector<double *>;

struct Targets
{
  std::size_t n;
  const int *positions;
};

/// Which outputs the variances are converted to.
struct Flags
{
  bool standardDeviation;
  bool variance;
  bool indicator;
};

/// Turns the variances into the outputs. `variances` holds them and becomes the indicators, the
/// variances, or else the standard deviations; `standardDeviations` is written beside the variances
/// when both are asked for.
///
/// Variances stay as they are, negative ones included. A standard deviation is the square root of a
/// positive variance, else 0; an indicator is a positive variance over 2 c0(v, v), else 0. The
/// indicator with another of the flags is a programming error.
void transform(const Targets &targets, const Flags &flags, const NgmMatrix &c0,
               const Columns &variances, const Columns &standardDeviations);

/// Precision of the mean of large blocks of volume `blockVolume`, see
/// NgcKriging::setSuperKriging().
struct SuperKriging
{
  double blockVolume;
  double mean;
  double productionVolume;
};
void computeSuperKriging(const Targets &targets, const SuperKriging &parameters,
                         const Columns &variances, const Columns &ssdv,
                         const Columns &specificVolumes, const Columns &coefficientsOfVariation);

}  // namespace NgcKrigingVariance
