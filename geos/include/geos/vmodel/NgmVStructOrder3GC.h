#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Generalized covariance (u - k) u^2 + k' of the third order, where k and k' follow from the field
/// size of the context and the dimension of space. For drifts of degree 2.
///
/// Source: [Matheron, 1973]
class NgmVStructOrder3GC : public NgmAVStruct
{
public:
  NgmVStructOrder3GC();
  NgmVStructOrder3GC(const NgmVStructOrder3GC &) = default;

  int getIRFDegree() const override { return 2; }
  bool isSimulatableTB() const override { return true; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
