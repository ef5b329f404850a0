#pragma once

#include "basic/base/NbbGlobal.h"

/// Parameters of one calculation direction as a user gives them. Lengths are in units of the data,
/// angles in degrees, the tolerance is a fraction of the lag. A slicing value that is
/// NbbGlobal::D_FFFF is not used.
class NgmVariogramDirection
{
public:
  /// Those of a field of size 50.
  NgmVariogramDirection() : NgmVariogramDirection(50.) {}

  /// Defaults for a field of this size: about ten lags over a fifth of the field, with a round lag.
  explicit NgmVariogramDirection(double fieldSize);

  double getLag() const { return _lag; }
  void setLag(double lag) { _lag = lag; }
  double getDistanceMax() const { return _distanceMax; }
  void setDistanceMax(double distance) { _distanceMax = distance; }
  double getTolerance() const { return _tolerance; }
  void setTolerance(double tolerance) { _tolerance = tolerance; }
  double getToleranceAngular() const { return _toleranceAngular; }
  void setToleranceAngular(double degrees) { _toleranceAngular = degrees; }
  double getToleranceHeightAngular() const { return _toleranceHeightAngular; }
  void setToleranceHeightAngular(double degrees) { _toleranceHeightAngular = degrees; }
  int getNRefinedLags() const { return _nRefinedLags; }
  void setNRefinedLags(int count) { _nRefinedLags = count; }
  double getRefinedLag() const { return _refinedLag; }
  void setRefinedLag(double lag) { _refinedLag = lag; }
  double getSlicingWidth() const { return _slicingWidth; }
  void setSlicingWidth(double width) { _slicingWidth = width; }
  double getSlicingHeight() const { return _slicingHeight; }
  void setSlicingHeight(double height) { _slicingHeight = height; }
  double getSlicingRadius() const { return _slicingRadius; }
  void setSlicingRadius(double radius) { _slicingRadius = radius; }

private:
  double _lag = 0.;
  double _distanceMax = 0.;
  double _tolerance = 0.5;
  double _toleranceAngular = 90.;
  double _toleranceHeightAngular = 90.;
  int _nRefinedLags = 0;
  double _refinedLag = 0.;
  double _slicingWidth = NbbGlobal::D_FFFF;
  double _slicingHeight = NbbGlobal::D_FFFF;
  double _slicingRadius = NbbGlobal::D_FFFF;
};
