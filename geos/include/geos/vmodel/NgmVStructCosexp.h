#pragma once

#include "geos/vmodel/NgmAVStructAlpha.h"

/// Exponential cosine exp(-u) cos(2 pi |h| / alpha), 0 for u > 100; alpha > 0 is a period in units
/// of length along the axis of coefficient 1.
///
/// A covariance on lines; in d dimensions where tan(pi / 2 d) >= 2 pi scale / alpha.
/// Source:  Yaglom (1987), Correlation Theory of Stationary and Related Random Functions
class NgmVStructCosexp : public NgmAVStructAlpha
{
public:
  NgmVStructCosexp();
  NgmVStructCosexp(const NgmVStructCosexp &) = default;

  void setAuxiliaryParameter(int index, double value) override;
  bool isSimulatableTB() const override { return false; }

  double calcCova(const NbgVector3D &reducedH) const override;
  void calcCovaFromDist(int n, const double *dist, double *out) const override;

protected:
  double _calcPracticalFactor() const override;
};
