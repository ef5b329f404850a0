#pragma once

#include "geos/vmodel/NgmAVStructAlpha.h"

/// Stable covariance exp(-u^alpha), 0 < alpha <= 2.
class NgmVStructStable : public NgmAVStructAlpha
{
public:
  NgmVStructStable();
  NgmVStructStable(const NgmVStructStable &) = default;

  void setAuxiliaryParameter(int index, double value) override;
  bool isSimulatableTB() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;

protected:
  double _calcPracticalFactor() const override;
};
