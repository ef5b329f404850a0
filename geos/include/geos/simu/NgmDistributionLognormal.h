#pragma once

#include "geos/simu/NgmADistribution.h"

/// Transformation between values and the normal law of their logarithm, ln(value + shift).
///
/// It is not sampled. Density, distribution and quantile functions are those of the logarithm, the
/// normal law of the given mean and standard deviation.
class NgmDistributionLognormal final
    : public NbbCloneable<NgmDistributionLognormal, NgmADistribution>
{
public:
  explicit NgmDistributionLognormal(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionLognormal(double mean, double stdev, double shift, quint64 seed,
                           tSize size = DEFAULT_SIZE, bool trace = false);

  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;

  /// ln(v' + shift), v' being the value in display units; D_FFFF when value + shift is not
  /// positive.
  double getTransfo(double value, const NbdVariableDetails &details) const override;

  /// exp(g') - shift, g' being the value taken back from display units.
  double getInvTransfo(double value, const NbdVariableDetails &details) const override;

  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _mean = 0.;
  double _stdev = 1.;
  double _shift = 0.;
};
