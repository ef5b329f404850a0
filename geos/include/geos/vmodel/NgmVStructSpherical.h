#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Spherical covariance: 1 - u (3 - u^2) / 2 for u < 1, 0 beyond.
class NgmVStructSpherical : public NgmAVStruct
{
public:
  NgmVStructSpherical();
  NgmVStructSpherical(const NgmVStructSpherical &) = default;

  bool isSimulatableTB() const override { return true; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
