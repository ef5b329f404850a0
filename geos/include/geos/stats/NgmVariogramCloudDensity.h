#pragma once

#include "basic/geom/NbgGeomGrid.h"

#include <QList>
#include <QString>

#include <vector>

class NbcBoxPlot;
class NbdDataGrid;

/// Image of a variogram cloud: how many pairs fall into each cell of distances (first axis) and
/// values (second axis). Pairs outside are not counted.
///
/// Limits: a point on the border of two cells belongs to the upper one, on the last border to the
///         last cell
class NgmVariogramCloudDensity
{
public:
  /// No cells.
  NgmVariogramCloudDensity();

  /// nx ny cells over the given ranges, without pairs.
  void initializeCloudDensity(int nx, int ny, double xmin, double xmax, double ymin, double ymax);

  bool isEmpty() const { return _counts.empty(); }
  int getNx() const { return _nx; }
  int getNy() const { return _ny; }
  qint64 getCount(int i, int j) const { return _counts[std::size_t(i) * _ny + j]; }
  /// All pairs in the image.
  qint64 getNPairs() const;

  void addPair(double distance, double value);

  /// Adds the counts of an image of the same cells.
  void sum(const NgmVariogramCloudDensity &other);

  QString getTitle() const;
  const NbgGeomGrid &getGeometry() const { return _geometry; }
  /// The counts as grid nodes: one integer variable of the role DENSITY.
  NbdDataGrid toGrid() const;

  /// Box plots of the values in `nGroups` groups of neighboring distance columns, of equal width
  /// but for rounding; a value counts as the centre of its cell. Groups without pairs have no plot.
  void toBoxPlots(int nGroups, QList<NbcBoxPlot> &plots) const;

private:
  NbcBoxPlot _toBoxPlot(int firstColumn, int lastColumn) const;

  NbgGeomGrid _geometry;
  int _nx = 0;
  int _ny = 0;
  double _xmin = 0.;
  double _ymin = 0.;
  double _dx = 1.;
  double _dy = 1.;
  std::vector<qint64> _counts;
};
