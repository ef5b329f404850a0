#pragma once

#include "geos/simu/NgmDistributionUniformD.h"

/// Gamma law of shape alpha, multiplied by a scale: density y^(alpha - 1) e^-y / Gamma(alpha) of
/// y = value / scale.
///
/// Sample:   by rejection, from an exponential for |alpha - 1| < 1e-5; D_FFFF when alpha is not
///           positive
/// Source:   [Ahrens and Dieter, 1974] for alpha < 1, Cauchy envelope for alpha > 1
class NgmDistributionGamma final : public NbbCloneable<NgmDistributionGamma, NgmADistribution>
{
public:
  explicit NgmDistributionGamma(quint64 seed, tSize size = DEFAULT_SIZE, bool trace = false);
  NgmDistributionGamma(double alpha, double scale, quint64 seed, tSize size = DEFAULT_SIZE,
                       bool trace = false);

  double nextR() override;
  double getDf(double value) const override;
  double getCdf(double value) const override;
  double getInvCdf(double p) const override;
  double getLowerBound() const override { return 0.; }
  bool givesInteger() const override { return false; }
  bool hasCdf() const override { return true; }
  QString getParamInfo(const NbdVariableDetails &details) const override;

  /// Sets alpha; the streams go on.
  void setParam(double alpha) { _alpha = alpha; }

private:
  double _nextBelowOne();
  double _nextAboveOne();

  double _alpha = 1.;
  double _scale = 1.;
  NgmDistributionUniformD _uniform1;
  NgmDistributionUniformD _uniform2;
};
