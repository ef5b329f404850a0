#pragma once

#include "basic/geom/NbgRotation.h"
#include "basic/geom/NbgVector3D.h"
#include "fit/private/NgmUnitVariogram.h"
#include "geos/fit/NgmVModelToBeOptimized.h"

#include <QList>

#include <memory>
#include <vector>

/// Where a fit starts from: what experimental curves say about the automatic parameters of a model.
///
/// Ranges, anisotropy and rotation are the best of a grid, with the sills that fit best to each of
/// its points (nonnegative least squares, one variable at a time).
class NgmVModelStart
{
public:
  NgmVModelStart(const NgmVariogramExpData &data, const NgmVModelToBeOptimized &model);

  void apply(NgmVModelToBeOptimized &model) const;

private:
  /// The simple variogram of a variable along all directions, in units of its mean.
  struct _Curve
  {
    NgmLagVectors lags;
    std::vector<double> values;
    std::vector<double> weights;
    double unit = 1.;
  };

  /// Axes, and ranges along them in units of that along the first.
  struct _Frame
  {
    NbgRotation rotation;
    NbgVector3D ratios = NbgVector3D(1., 1., 1.);
  };

  /// A point of the grid: a range per structure (rank in _ranges) in a frame.
  struct _Best
  {
    double score = 1e300;
    _Frame frame;
    std::vector<int> choice;
    std::vector<std::vector<double>> sills;  // per variable: nugget, structures
  };

  struct _Products;

  void _readCurves(const NgmVariogramExpData &data, int nVariables);
  void _readDirections(const NgmVariogramExpData &data);
  void _restrict(NgmVModelToBeOptimized &model) const;
  NbgRotation _directionFrame() const;
  QList<_Frame> _frames(const NgmVModelToBeOptimized &model) const;
  void _chooseRanges(int nStructures, bool is3D);
  std::unique_ptr<NgmAVStruct> _structureAt(const NgmVModelToBeOptimized &model, int k,
                                            const _Frame &frame, double range) const;
  static bool _areAlive(const std::vector<std::vector<double>> &sills, std::size_t first);
  void _search(const NgmVModelToBeOptimized &model, const _Frame &frame, _Best &best) const;
  bool _isRedundant(const NgmVModelToBeOptimized &model, const std::vector<int> &choice) const;
  void _applyGeometry(NgmVModelToBeOptimized &model, const _Best &best) const;
  void _applySills(NgmVModelToBeOptimized &model, const _Best &best) const;

  std::vector<_Curve> _curves;
  QList<NbgVector3D> _directions;  // distinct
  int _nHorizontal = 0;
  bool _hasOblique = false;
  bool _keepsAxes = false;  // the user forbids to turn
  std::vector<double> _ranges;
  double _smallest = 0.;
  double _largest = 0.;
};
