#pragma once

#include "basic/data/NbdAData.h"
#include "basic/geom/NbgGeomGrid.h"
#include "basic/interval/NbiIntervalIntSmall.h"

/// A buffer of grid nodes: a block of I, J, K indices of a regular grid, the third axis fastest.
///
/// Locations always come from the whole grid's geometry and absolute indices, so that a node has
/// the same coordinates in every buffer.
class NbdDataGrid : public NbdAData
{
public:
  NbdDataGrid();
  NbdDataGrid(const NbdDataGrid &) = default;
  NbdDataGrid &operator=(const NbdDataGrid &) = default;
  ~NbdDataGrid() override;

  int getNSamples() const override;
  NbgVector3D getLocation(int position) const override;
  void getLocations(int first, int n, double *x, double *y, double *z) const override;

  /// Rank in the whole grid + 1, from the table's SN variable when there is one.
  qint64 getSampleNumber(int position) const override;

  NbdDataGrid *makeCopy() const override;

  /// Geometry of the whole grid.
  const NbgGeomGrid &getGeometry() const { return _geometry; }

  /// Sets the whole grid's geometry; the block becomes the whole grid, or empty when that has more
  /// nodes than a buffer counts.
  void setGeometry(const NbgGeomGrid &geometry);

  /// Both at once: the table never takes the size of the whole grid.
  void setBlock(const NbgGeomGrid &geometry, const NbiIntervalIntSmall &i,
                const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k);

  /// The block that the buffer holds, in indices of the whole grid. Resizes the table's variables.
  void setParentIntervals(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                          const NbiIntervalIntSmall &k);
  const NbiIntervalIntSmall &getParentIntervalI() const { return _i; }
  const NbiIntervalIntSmall &getParentIntervalJ() const { return _j; }
  const NbiIntervalIntSmall &getParentIntervalK() const { return _k; }

  /// Indices in the whole grid of a position of the buffer.
  NbgIntVector3D getIJK(int position) const;

  /// Value of a variable at `point`, interpolated linearly between node centres; undefined outside
  /// the block and where a node with a positive weight is undefined or not selected.
  double getInterpolatedValue(const NbdAVariableNumeric &variable, const NbgVector3D &point) const;

private:
  /// The node behind another one of the block, in the order of positions.
  NbgIntVector3D _next(const NbgIntVector3D &node) const;

  /// Position of a node of the whole grid, or -1 outside the block.
  int _getPosition(const NbgIntVector3D &node) const;

  NbgGeomGrid _geometry;
  NbiIntervalIntSmall _i;
  NbiIntervalIntSmall _j;
  NbiIntervalIntSmall _k;
};
