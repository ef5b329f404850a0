#pragma once

#include "geos/fit/NgmAOptimizable_impl.h"
#include "geos/fit/NgmAngleOptimizableObject.h"

#include <vector>

class NgmIAngleGrid;

/// Fits the orientation of a line at a target to those around it on a grid.
///
/// Experience: distance 0 to each neighbor
/// Function:   great-circle distance (radians) to each neighbor, or to its opposite when that is
///             nearer: a line has no sense
/// Weights:    inverse distance of the neighbors from the target, their sum being 1; where some
///             stand at the target they share it all
/// Parameters: azimuth and dip in radians, in turns as they come; results in degrees
class NgmAngleOptimizable : public NgmAOptimizable_impl<NgmAngleOptimizableObject>
{
public:
  NgmAngleOptimizable() = default;
  ~NgmAngleOptimizable() override;

  /// The grid is not owned and outlives the optimizable.
  void setGrid(const NgmIAngleGrid *grid) { _grid = grid; }
  void setTarget(int target) { _target = target; }

  /// In degrees.
  double getInterpolatedAzimuth() const { return _angles.azimuth; }
  double getInterpolatedDip() const { return _angles.dip; }

  void checkConsistency() const override;
  QVector<double> evaluateFunction(const NgmOptParamList &params, bool verbose) override;

protected:
  void _initPreProcess() override;
  void _initExperience() override;
  void _initParams() override;
  void _updateOptimizable(const NgmOptParamList &params) override;
  NgmAngleOptimizableObject _applyParams(const NgmOptParamList &params) const override;

private:
  struct _Neighbor
  {
    NgmAngleOptimizableObject angles;
    double distance;
  };

  QVector<double> _determineWeights() const;
  static double _greatCircleDistance(const NgmAngleOptimizableObject &a,
                                     const NgmAngleOptimizableObject &b);
  static double _bestGreatCircleDistance(const NgmAngleOptimizableObject &a,
                                         const NgmAngleOptimizableObject &b);
  static void _setRotationWithinBounds(NgmAngleOptimizableObject &angles);

  const NgmIAngleGrid *_grid = nullptr;
  int _target = 0;
  std::vector<_Neighbor> _neighbors;
  NgmAngleOptimizableObject _angles;
};
