#pragma once

#include "basic/geom/NbgVector3D.h"

/// A direction in space by its borehole angles in degrees: azimuth clockwise from north, dip
/// positive downward. The default points east.
class NbgDirection
{
public:
  NbgDirection() = default;
  NbgDirection(double azimuth, double dip) : _azimuth(azimuth), _dip(dip) {}

  /// The direction of a vector of any length; the null vector gives azimuth 0 and dip 0.
  void setFromVector(const NbgVector3D &vector) { vector.getAzimuthDip(_azimuth, _dip); }

  double getAzimuth() const { return _azimuth; }
  double getDip() const { return _dip; }

  /// The unit vector, exact for multiples of 90 degrees.
  NbgVector3D toVector() const;

private:
  double _azimuth = 90.;
  double _dip = 0.;
};
