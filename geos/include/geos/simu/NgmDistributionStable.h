#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Symmetric stable law of index alpha in ]0, 2]: characteristic function exp(-|t|^alpha). Cauchy
/// for alpha = 1, normal with variance 2 for alpha = 2.
///
/// Density and distribution function are integrals over an angle, to about 1e-9; D_FFFF for an
/// alpha outside ]0, 2].
///
/// Source:   [Chambers, Mallows and Stuck, 1976] for samples, [Nolan, 1997] for the integrals
class NgmDistributionStable final : public NbbCloneable<NgmDistributionStable, NgmADistribution>
{
public:
  explicit NgmDistributionStable(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionStable(double alpha, quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _alpha = 0.5;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
};
