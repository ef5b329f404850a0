#pragma once

#include "geos/simu/NgmDistributionGamma.h"

/// Beta law on [0, 1]: density x^(s - 1) (1 - x)^(r - 1) / B(s, r).
///
/// Sample:   g1 / (g1 + g2) of two gamma samples of shapes s and r; D_FFFF when one is undefined
///
/// The streams of the two gamma laws may be the same but for a shift. With s = r they can then come
/// into step: for some seeds up to one sample in a hundred is 0.5 beyond what the law allows.
class NgmDistributionBeta final : public NbbCloneable<NgmDistributionBeta, NgmADistribution>
{
public:
  explicit NgmDistributionBeta(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionBeta(double s, double r, quint64 seed, tSize size = DEFAULT_SIZE,
                      bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getLowerBound() const override { return 0.; }
  double getUpperBound() const override { return 1.; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

private:
  double _s = 0.5;
  double _r = 0.5;
  NgmDistributionGamma _gamma1;
  NgmDistributionGamma _gamma2;
};
