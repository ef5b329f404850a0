#pragma once

#include "basic/data/NbdAData.h"
#include "basic/geom/NbgGeomGrid.h"
#include "basic/interval/NbiIntervalIntSmall.h"

/// A block of grid nodes with a border of nodes around it, the third axis fastest. Nodes of the
/// border may lie outside the grid: they have a location and values, but no sample number.
class NbdDataGridExtended : public NbdAData
{
public:
  NbdDataGridExtended();
  NbdDataGridExtended(const NbdDataGridExtended &) = default;
  NbdDataGridExtended &operator=(const NbdDataGridExtended &) = default;
  ~NbdDataGridExtended() override;

  int getNSamples() const override;
  NbgVector3D getLocation(int position) const override;
  void getLocations(int first, int n, double *x, double *y, double *z) const override;
  qint64 getSampleNumber(int position) const override;
  NbdDataGridExtended *makeCopy() const override;

  /// The whole grid, the block in indices of the whole grid, and the number of nodes on each side
  /// of it along the axes. Resizes the table's variables.
  void setBlock(const NbgGeomGrid &geometry, const NbiIntervalIntSmall &i,
                const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k,
                const NbgIntVector3D &border);

  const NbgGeomGrid &getGeometry() const { return _geometry; }
  const NbiIntervalIntSmall &getParentIntervalI() const { return _block[0]; }
  const NbiIntervalIntSmall &getParentIntervalJ() const { return _block[1]; }
  const NbiIntervalIntSmall &getParentIntervalK() const { return _block[2]; }
  const NbgIntVector3D &getBorder() const { return _border; }

  /// Number of nodes along the axes, border included.
  const NbgIntVector3D &getNodesNumber() const { return _nodes; }

  /// Indices in the whole grid of a position; outside 0 .. n - 1 for a node outside the grid.
  NbgIntVector3D getIJK(int position) const;

  /// Whether the node belongs to the block, to the grid.
  bool isInBlock(int position) const;
  bool isInGrid(int position) const;

  /// Geometry of the buffer's nodes, border included.
  NbgGeomGrid getExtendedGeometry() const;

protected:
  /// Keeps the nodes whose indices in the whole grid are multiples of `step`.
  void _setStep(const NbgIntVector3D &step);
  const NbgIntVector3D &_getStep() const { return _step; }

private:
  void _updateNodes();

  NbgGeomGrid _geometry;
  NbiIntervalIntSmall _block[3];
  NbgIntVector3D _border = NbgIntVector3D::Null;
  NbgIntVector3D _step = NbgIntVector3D::Unit;
  NbgIntVector3D _first = NbgIntVector3D::Null;
  NbgIntVector3D _nodes = NbgIntVector3D::Null;
};
