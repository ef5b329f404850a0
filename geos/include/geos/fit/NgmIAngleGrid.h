#pragma once

/// Local orientations on a grid, as the fit of the one of a target needs them.
class NgmIAngleGrid
{
public:
  virtual ~NgmIAngleGrid() = default;

  /// Number of grid values around a target.
  virtual int getNNeighbors(int target) const = 0;

  /// One of them: azimuth and dip in degrees and its distance from the target. False when it is
  /// undefined.
  virtual bool getNeighbor(int target, int rank, double &azimuth, double &dip,
                           double &distance) const = 0;
};
