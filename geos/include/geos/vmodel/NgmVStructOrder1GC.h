#pragma once

#include "geos/vmodel/NgmAVStruct.h"

/// Linear generalized covariance k D / scale - u, where D is the field size of the context and k
/// depends on the dimension of space (1, pi / 2, 2). For constant means at least.
///
/// Source: [Matheron, 1973]
class NgmVStructOrder1GC : public NgmAVStruct
{
public:
  NgmVStructOrder1GC();
  NgmVStructOrder1GC(const NgmVStructOrder1GC &) = default;

  int getIRFDegree() const override { return 0; }
  bool isSimulatableTB() const override { return true; }
  bool isScaleFactorSignificant() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;
  void calcCovas(const Separations &separations, double sill, bool add, double *covas,
                 qint64 stride) const override;
};
