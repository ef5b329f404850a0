#pragma once

#include "geos/simu/NgmDistributionGamma.h"

/// Poisson law of mean lambda.
///
/// Sample:   lambda from 16 on is reduced by gamma samples of shape m = floor(0.875 lambda);
///           when one exceeds lambda, the events before it are counted one by one. That count takes
///           m draws, not m - 1, which makes the mean slightly larger than lambda. Below 16 uniform
///           factors are counted.
/// Source:   [Ahrens and Dieter, 1974], [Knuth, 1969]
class NgmDistributionPoisson final : public NbbCloneable<NgmDistributionPoisson, NgmADistribution>
{
public:
  explicit NgmDistributionPoisson(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionPoisson(double lambda, quint64 seed, tSize size = DEFAULT_SIZE,
                         bool trace = false);

  /// I64_FFFF for an undefined mean.
  qint64 nextI() override;
  double getLowerBound() const override { return 0.; }
  bool givesInteger() const override { return true; }
  bool hasCdf() const override { return false; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _lambda = 1.;
  NgmDistributionGamma _gamma;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
};
