#pragma once

/// An orientation in degrees: azimuth in [0, 360), dip in [-90, 90].
struct NgmAngleOptimizableObject
{
  double azimuth = 0.;
  double dip = 0.;
};
