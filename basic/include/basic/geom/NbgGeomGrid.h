#pragma once

#include "basic/geom/NbgIntVector3D.h"
#include "basic/geom/NbgRotation.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/interval/NbiIntervalsIJK.h"

class NbgBox;

/// Geometry of a regular grid: origin, cell size, node counts and rotation.
///
/// The origin is the center of node (0, 0, 0); the center of (i, j, k) is
/// origin + M (i dx, j dy, k dz). Ranks run fastest along the third axis:
/// rank = k + nz (j + ny i), in 64 bits.
///
/// A point on the border of two cells belongs to the upper cell, one on the last border of the grid
/// to the last cell; borders are recognised to the rounding of the coordinates. A 2-D grid has one
/// node along the third axis and takes no notice of a point's place along it.
class NbgGeomGrid
{
public:
  enum MatchMode {
    MATCH_STRICT_DISC,            ///< Same nodes.
    MATCH_FLOATING_DISC,          ///< Same cells, origins a whole number of cells apart.
    MATCH_FLOATING_DISC_ONLY_2D,  ///< The same, along the first two axes only.
    MATCH_SUBGRID                 ///< Floating, and every node of the other is a node of this one.
  };

  /// No nodes, unit cells, not rotated, three dimensions.
  NbgGeomGrid() = default;

  void setNodesNumber(const NbgIntVector3D &nodes) { _nodes = nodes; }
  void setNodesNumber(int nx, int ny, int nz) { _nodes = NbgIntVector3D(nx, ny, nz); }
  /// Makes the grid 2-D.
  void setNodesNumber2D(int nx, int ny);
  const NbgIntVector3D &getNodesNumber() const { return _nodes; }

  void setCellSize(const NbgVector3D &size) { _cellSize = size; }
  void setCellSize(double dx, double dy, double dz) { _cellSize = NbgVector3D(dx, dy, dz); }
  const NbgVector3D &getCellSize() const { return _cellSize; }

  /// The center of node (0, 0, 0).
  void setOriginCentered(const NbgVector3D &origin) { _origin = origin; }
  /// The lower corner of cell (0, 0, 0); to be called after the cell size, the dimension and the
  /// rotation are set. The origin of a 2-D grid keeps the corner's third coordinate.
  void setOriginCorner(const NbgVector3D &corner);
  const NbgVector3D &getOriginCentered() const { return _origin; }
  NbgVector3D getOriginCorner() const { return getCellCorner(0, 0, 0); }

  void setRotation(const NbgRotation &rotation) { _rotation = rotation; }
  const NbgRotation &getRotation() const { return _rotation; }

  /// A 2-D grid has one node along the third axis.
  void setIs2D(bool is2D);
  bool is2D() const { return _is2D; }
  int getNDim() const { return _is2D ? 2 : 3; }

  /// Whether the grid may have more nodes than an int counts (it may by default); when not, such a
  /// grid is not defined.
  void setStatusMayBeLarge(bool mayBeLarge) { _mayBeLarge = mayBeLarge; }
  bool getStatusMayBeLarge() const { return _mayBeLarge; }

  /// Node counts and cell sizes are positive, the origin is defined, and the nodes can be counted.
  bool isDefined() const;

  /// The number of nodes; 0 when a node count is not positive or 64 bits do not hold the product.
  qint64 getGridSize() const;

  NbgVector3D getCellCenter(int i, int j, int k) const
  {
    return _rotation.localToWorld({i * _cellSize.x(), j * _cellSize.y(), k * _cellSize.z()}) +
           _origin;
  }
  NbgVector3D getCellCenter(const NbgIntVector3D &ijk) const
  {
    return getCellCenter(ijk.x(), ijk.y(), ijk.z());
  }
  NbgVector3D getCellCenter(qint64 rank) const { return getCellCenter(getCellIJKFromRank(rank)); }

  /// The corner with the smallest local coordinates (in the plane of the grid when it is 2-D). It
  /// is computed from half indices: neighboring cells share their corners to the bit.
  NbgVector3D getCellCorner(int i, int j, int k) const;

  /// dx dy dz; dx dy for a 2-D grid.
  double getCellVolume() const;

  /// Local coordinates of a point along the grid's axes, relative to the origin.
  NbgVector3D getUVW(const NbgVector3D &point) const
  {
    return _rotation.worldToLocal(point - _origin);
  }

  /// The cell that holds a point. False, with the indices unchanged, when the point is undefined or
  /// outside.
  bool getCellIJK(const NbgVector3D &point, NbgIntVector3D &ijk) const;
  bool getCellIJK(const NbgVector3D &point, int &i, int &j, int &k) const;
  /// The column that holds a point, whatever its place along the third axis.
  bool getCellIJ(const NbgVector3D &point, int &i, int &j) const;
  bool isInside(const NbgVector3D &point) const;

  bool isIjkValid(int i, int j, int k) const
  {
    return i >= 0 && i < _nodes.x() && j >= 0 && j < _nodes.y() && k >= 0 && k < _nodes.z();
  }
  bool isIjkValid(const NbgIntVector3D &ijk) const { return isIjkValid(ijk.x(), ijk.y(), ijk.z()); }

  /// k + nz (j + ny i); the indices are not checked.
  qint64 getRankFromIJK(int i, int j, int k) const
  {
    return k + qint64(_nodes.z()) * (j + qint64(_nodes.y()) * i);
  }
  qint64 getRankFromIJK(const NbgIntVector3D &ijk) const
  {
    return getRankFromIJK(ijk.x(), ijk.y(), ijk.z());
  }
  /// The inverse; the rank is not checked.
  NbgIntVector3D getCellIJKFromRank(qint64 rank) const
  {
    const qint64 column = rank / _nodes.z();
    return {int(column / _nodes.y()), int(column % _nodes.y()), int(rank % _nodes.z())};
  }

  /// Centers of a block of cells in rank order, one array per coordinate; each gets the bits of
  /// getCellCenter().
  void getCoordinates(const NbiIntervalsIJK &block, double *x, double *y, double *z) const;

  /// The whole grid, and the block of cells that covers the part of the box inside the grid (empty
  /// when there is none; for a rotated grid, the box is taken with its extents along the grid's
  /// axes).
  NbiIntervalsIJK getIJKIntervals() const;
  NbiIntervalsIJK getIJKIntervals(const NbgBox &box) const;

  /// The ranks of the cells of a block.
  NbiIntervalIntLargeDisjoint getSamplesIntervals(const NbiIntervalsIJK &block) const;

  /// Linear interpolation between node centers: the ranks of the nodes around the point that have a
  /// positive weight, and their weights (sum 1). Between the outermost centers and the grid's
  /// border the value of the nearest centers holds. Returns the number of nodes, at most 8 (4 for a
  /// 2-D grid); 0 when the point is outside or undefined.
  int getTrilinearWeights(const NbgVector3D &point, qint64 *ranks, double *weights) const;

  /// Centers of the n.x() n.y() n.z() equal parts of a cell, the first axis slowest; relative to
  /// the cell's center in the second form. Counts below 1 are a programming error.
  QVector<NbgVector3D> getCellDiscretizationPoints(int i, int j, int k,
                                                   const NbgIntVector3D &n) const;
  QVector<NbgVector3D> getCellDiscretizationPointsRelative(const NbgIntVector3D &n) const;

  /// The grid with each cell cut into ratio.x() ratio.y() ratio.z() equal ones.
  NbgGeomGrid buildRefinedGeom(const NbgIntVector3D &ratio) const;

  /// The whole numbers of cells of the finer grid `refined` per cell of this one, along each axis;
  /// (0, 0, 0) when it is not this grid refined.
  NbgIntVector3D getRefinedDiscretization(const NbgGeomGrid &refined) const;

  /// The ranks, in the grid buildRefinedGeom(ratio), of the parts of cell (i, j, k), ascending.
  QVector<qint64> getRefinedCellRanks(int i, int j, int k, const NbgIntVector3D &ratio) const;

  /// The grid of the nodes 0, step, 2 step ... along each axis: larger cells, same first center.
  NbgGeomGrid buildSampledGeom(const NbgIntVector3D &step) const;

  /// The grid of a block of cells, whose node (0, 0, 0) is the block's first.
  NbgGeomGrid extractGeometry(const NbiIntervalsIJK &block) const;

  /// `tolerance` is a part of a cell.
  bool isMatching(const NbgGeomGrid &other, MatchMode mode, double tolerance = 1e-6) const;

  /// Extends the box with the outer corners of the grid's cells.
  void updateBoundingBox(NbgBox &box) const;

  QString toString() const;
  QString debug(int level) const;

private:
  NbgVector3D _getLocal(double i, double j, double k) const;
  NbgVector3D _getCellCoordinates(const NbgVector3D &point) const;
  double _getTolerance(const NbgVector3D &point, int axis) const;
  bool _getCell(const NbgVector3D &point, int nAxes, int *ijk, NbgVector3D &cells) const;
  bool _getCell(const NbgVector3D &point, int nAxes, int *ijk) const;
  bool _hasSameCells(const NbgGeomGrid &other, int nAxes, double tolerance) const;

  NbgVector3D _origin;
  NbgVector3D _cellSize = NbgVector3D::Unit;
  NbgIntVector3D _nodes;
  NbgRotation _rotation;
  bool _is2D = false;
  bool _mayBeLarge = true;
};

/// Same nodes, to the tolerance of isMatching().
bool operator==(const NbgGeomGrid &a, const NbgGeomGrid &b);
inline bool operator!=(const NbgGeomGrid &a, const NbgGeomGrid &b)
{
  return !(a == b);
}
