#pragma once

#include "geos/simu/NgmADistribution.h"

/// Transformation between positive values and the normal law of their power, value^scale.
///
/// It is not sampled. Density, distribution and quantile functions are those of the power, the
/// normal law of the given mean and standard deviation.
class NgmDistributionPower final : public NbbCloneable<NgmDistributionPower, NgmADistribution>
{
public:
  explicit NgmDistributionPower(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionPower(double mean, double stdev, double scale, quint64 seed,
                       tSize size = DEFAULT_SIZE, bool trace = false);

  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;

  /// Only positive values have a power.
  double getLowerBound() const override;
  double getUpperBound() const override;

  /// v'^scale, v' being the value in display units; D_BIG_GAUSSIAN_NEGATIVE for a value that is not
  /// positive.
  double getTransfo(double value, const NbdVariableDetails &details) const override;

  /// g'^(1 / scale), g' being the value taken back from display units; D_BIG_GAUSSIAN_NEGATIVE for
  /// a value that is not positive.
  double getInvTransfo(double value, const NbdVariableDetails &details) const override;

  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _mean = 0.;
  double _stdev = 1.;
  double _scale = 1.;
};
