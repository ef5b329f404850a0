#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Exponential law of the given mean. Sample: -mean ln u.
class NgmDistributionExponential final
    : public NbbCloneable<NgmDistributionExponential, NgmADistribution>
{
public:
  explicit NgmDistributionExponential(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionExponential(double mean, quint64 seed, tSize size = DEFAULT_SIZE,
                             bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  double getLowerBound() const override { return 0.; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _mean = 1.;
  NgmDistributionUniformD _uniform;
};
