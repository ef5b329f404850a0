#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Cardinal sine covariance sin(u) / u; 1 for u <= 1e-5.
class NgmVStructSincard : public NgmAVStruct
{
public:
  NgmVStructSincard();
  NgmVStructSincard(const NgmVStructSincard &) = default;

  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
