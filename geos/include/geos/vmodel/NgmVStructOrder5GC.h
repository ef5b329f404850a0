#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Generalized covariance (u - k) u^4 + (k' u^2 - k'') D'^3 of the fifth order, D' being the field
/// size of the context in units of the scale; the constants depend on it and on the dimension of
/// space. For drifts of degree 2; the negative of the function is what is conditionally positive
/// definite.
///
/// Source: [Matheron, 1973]
class NgmVStructOrder5GC : public NgmAVStruct
{
public:
  NgmVStructOrder5GC();
  NgmVStructOrder5GC(const NgmVStructOrder5GC &) = default;

  int getIRFDegree() const override { return 2; }
  bool isSimulatableTB() const override { return true; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
