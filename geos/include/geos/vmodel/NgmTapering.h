#pragma once

#include "basic/geom/NbgVector3D.h"

/// Taper of covariances: a covariance function of compact support that is 1 at the origin and 0
/// beyond its ranges. The product with a covariance is a covariance again, and sparse.
///
/// Formula:  t(x), x = |h . m / ranges| / m with m the smallest range; 0 for x > 1
/// Source:   [Furrer, Genton and Nychka, 2006]; [Wendland, 1995]; [Wu, 1995]
class NgmTapering
{
public:
  enum TaperingType {
    SPHERICAL = 0,   ///< (1 - x)^2 (1 + x / 2)
    WENDLAND_1 = 1,  ///< (1 - x)^4 (1 + 4 x)
    WENDLAND_2 = 2,  ///< (1 - x)^6 (1 + 6 x + 35 x^2 / 3)
    WU_1 = 3,        ///< (1 - x)^4 (1 + 4 x + 3 x^2 + 3 x^3 / 4)
    WU_2 = 4         ///< (1 - x)^6 (1 + 6 x + 41 x^2 / 3 + 12 x^3 + 5 x^4 + 5 x^5 / 6)
  };

  /// Chooses the function; a value outside the enumeration changes nothing.
  void setType(TaperingType type);

  /// Number of axes whose ranges count; to be set before the ranges.
  void setNDim(int nDimensions) { _nDimensions = nDimensions; }

  /// Distances along the axes at which the taper becomes 0. Those beyond the dimension are ignored.
  void setRanges(const NbgVector3D &ranges);

  /// Taper of a separation vector; fails without a function.
  double calcTapering(const NbgVector3D &h) const;

private:
  using Function = double (*)(double);

  Function _function = nullptr;
  double _minimumRange = NbbGlobal::D_FFFF;
  NbgVector3D _anisotropy = NbgVector3D::Unit;
  int _nDimensions = -1;
};
