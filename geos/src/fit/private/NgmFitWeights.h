#pragma once

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"

#include <cmath>
#include <cstddef>
#include <vector>

/// Weights of the lags of an experimental curve in a fit.
struct NgmFitWeights
{
  double exponent = 0.5;
  int minimumPairs = 0;
  bool deprecated = true;

  void setExponent(double value)
  {
    if (!(value >= 0.1 && value <= 2.))
      throw NbeProgrammingError(QStringLiteral("Invalid exponent of the number of pairs provided"));
    exponent = value;
  }
  void setMinimumPairs(int value)
  {
    if (value < 0)
      throw NbeProgrammingError(QStringLiteral("Invalid minimum number of pairs provided"));
    minimumPairs = value;
  }

  /// 0 without a positive distance or with too few pairs.
  double raw(double distance, double nPairs) const
  {
    if (!NbbGlobal::isDefined(distance) || distance <= 0. || nPairs < minimumPairs)
      return 0.;
    return deprecated ? std::sqrt(nPairs / distance) : std::pow(nPairs, exponent) / distance;
  }

  /// Raw weights over their sum; 1 everywhere when there is none.
  std::vector<double> normed(std::size_t n, const double *distances, const double *nPairs) const
  {
    std::vector<double> weights(n);
    double sum = 0.;
    for (std::size_t k = 0; k < n; ++k) {
      weights[k] = raw(distances[k], nPairs[k]);
      sum += weights[k];
    }
    for (double &weight : weights)
      weight = sum > 0. ? weight / sum : 1.;
    return weights;
  }
};
