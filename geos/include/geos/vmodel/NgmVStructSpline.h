#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Spline generalized covariance u^2 ln u, completed by a constant and a multiple of u^2 that
/// follow from the field size D of the context and the dimension of space. For drifts of degree 2.
///
/// Formula: k D'^2 - (c - ln(u / D')) u^2 with D' = D / scale; the logarithm counts as 0 for
///          D' < 1e-4 and for u < 1e-4 D'
/// Source:  [Matheron, 1973]
class NgmVStructSpline : public NgmAVStruct
{
public:
  NgmVStructSpline();
  NgmVStructSpline(const NgmVStructSpline &) = default;

  int getIRFDegree() const override { return 2; }
  bool isSimulatableTB() const override { return false; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
};
