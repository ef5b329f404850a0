#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Cubic covariance: 1 - 7 u^2 + 8.75 u^3 - 3.5 u^5 + 0.75 u^7 for u < 1, 0 beyond.
class NgmVStructCubic : public NgmAVStruct
{
public:
  NgmVStructCubic();
  NgmVStructCubic(const NgmVStructCubic &) = default;

  bool isDifferentiable() const override { return true; }
  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
  double calcFirstDerivative(const NbgVector3D &reducedH) const override;
  double calcSecondDerivative(const NbgVector3D &reducedH) const override;
};
