#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Normal law.
///
/// Sample:   mean + stdev sqrt(-2 ln u) cos(2 pi v), u and v from two streams of their own
/// Source:   [Box and Muller, 1958], cosine branch only
class NgmDistributionGaussian final : public NbbCloneable<NgmDistributionGaussian, NgmADistribution>
{
public:
  explicit NgmDistributionGaussian(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionGaussian(double mean, double stdev, quint64 seed, tSize size = DEFAULT_SIZE,
                          bool trace = false);

  double nextR() override;

  /// Passes n samples by, without the cost of their logarithms and cosines.
  void skip(qint64 n);

  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _mean = 0.;
  double _stdev = 1.;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
};
