#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Standard Cauchy law. Sample: tan((2 u - 1) pi / 2).
class NgmDistributionCauchy final : public NbbCloneable<NgmDistributionCauchy, NgmADistribution>
{
public:
  explicit NgmDistributionCauchy(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  NgmDistributionUniformD _uniform;
};
