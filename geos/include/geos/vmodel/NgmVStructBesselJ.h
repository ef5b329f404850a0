#pragma once

#include "geos/vmodel/NgmAVStructAlpha.h"

/// Hole effect Gamma(alpha + 1) J_alpha(u) / (u / 2)^alpha, J being the Bessel function of the
/// first kind and -0.5 < alpha. Up to alpha = 0 it vanishes everywhere but at u = 0. A covariance
/// in spaces of at most 2 alpha + 2 dimensions.
///
/// Source:  Schoenberg (1938), Metric spaces and completely monotone functions
class NgmVStructBesselJ : public NgmAVStructAlpha
{
public:
  NgmVStructBesselJ();
  NgmVStructBesselJ(const NgmVStructBesselJ &) = default;

  void setAuxiliaryParameter(int index, double value) override;
  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;

protected:
  double _calcPracticalFactor() const override;

private:
  double _logGamma;  ///< ln Gamma(alpha + 1)
};
