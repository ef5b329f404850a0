#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Gaussian covariance exp(-u^2).
class NgmVStructGaussian : public NgmAVStruct
{
public:
  NgmVStructGaussian();
  NgmVStructGaussian(const NgmVStructGaussian &) = default;

  bool isDifferentiable() const override { return true; }
  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
  double calcFirstDerivative(const NbgVector3D &reducedH) const override;
  double calcSecondDerivative(const NbgVector3D &reducedH) const override;
};
