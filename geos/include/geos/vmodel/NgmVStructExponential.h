#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Exponential covariance exp(-u).
class NgmVStructExponential : public NgmAVStruct
{
public:
  NgmVStructExponential();
  NgmVStructExponential(const NgmVStructExponential &) = default;

  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
