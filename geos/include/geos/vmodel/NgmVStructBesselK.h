#pragma once

#include "basic/interval/NbiIntervalData.h"
#include "geos/vmodel/NgmAVStructMatern.h"

/// Matern covariance of any smoothness 0.3 < nu < 3 (1 by default).
class NgmVStructBesselK : public NgmAVStructMatern
{
public:
  NgmVStructBesselK();
  NgmVStructBesselK(const NgmVStructBesselK &) = default;

  /// Keeps the practical ranges, unlike the exponents of other structures, so it changes the scale.
  void setAuxiliaryParameter(int index, double value) override;
  int getNAuxiliaryParameters() const override { return 1; }
  NbiIntervalData getAuxiliaryBounds(int index) const override;

private:
  NbiIntervalData _bounds;
};
