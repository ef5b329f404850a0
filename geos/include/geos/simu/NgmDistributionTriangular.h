#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Triangular law on [min, max] whose density peaks at the mode. Sampled by rejection.
class NgmDistributionTriangular final
    : public NbbCloneable<NgmDistributionTriangular, NgmADistribution>
{
public:
  explicit NgmDistributionTriangular(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionTriangular(double min, double mode, double max, quint64 seed,
                            tSize size = DEFAULT_SIZE, bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  double getLowerBound() const override { return _min; }
  double getUpperBound() const override { return _max; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _min = 0.;
  double _mode = 0.5;
  double _max = 1.;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
};
