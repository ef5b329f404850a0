#pragma once

#include "geos/vmodel/NgmAVStructAlpha.h"

/// Gamma covariance 1 / (1 + u)^alpha, alpha > 0.
class NgmVStructGamma : public NgmAVStructAlpha
{
public:
  NgmVStructGamma();
  NgmVStructGamma(const NgmVStructGamma &) = default;

  void setAuxiliaryParameter(int index, double value) override;
  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;

protected:
  double _calcPracticalFactor() const override;
};
