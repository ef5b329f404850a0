#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Spline of the second kind ((ln u - 3/4) u^2 + 1) u^2 - 1/4, which is -1/4 at u = 0. For drifts
/// of degree 2; the negative of the function is what is conditionally positive definite.
class NgmVStructSpline2 : public NgmAVStruct
{
public:
  NgmVStructSpline2();
  NgmVStructSpline2(const NgmVStructSpline2 &) = default;

  int getIRFDegree() const override { return 2; }
  bool isDifferentiable() const override { return true; }
  bool isSimulatableTB() const override { return false; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  double calcFirstDerivative(const NbgVector3D &reducedH) const override;
  double calcSecondDerivative(const NbgVector3D &reducedH) const override;
};
