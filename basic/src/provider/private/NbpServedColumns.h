#pragma once

#include "basic/geom/NbgGeomGrid.h"
#include "provider/private/NbpAMemoryColumn.h"

#include <array>

class NbdVariableDouble;

/// The columns of a buffer that receive X, Y and Z; null ones are left out.
using NbpCoordinateColumns = std::array<NbdVariableDouble *, 3>;

/// Center of a node by rank, 0 beyond the dimension of the grid.
NbgVector3D locationOfNode(const NbgGeomGrid &geometry, qint64 rank);

/// Locations of runs of nodes.
void readNodeCoordinates(const NbgGeomGrid &geometry, const NbpRuns &runs,
                         const NbpCoordinateColumns &columns);

/// Values that are computed when they are read.
class NbpServedColumn : public NbpAMemoryColumn
{
public:
  bool isWritable() const override { return false; }
  qint64 getSize() const override { return 0; }
  void write(const NbpRuns &, const NbdAVariable &) override {}
  void replace(qint64, qint64, qint64) override {}
  void reserve(qint64) override {}
  std::vector<unsigned char> getFlags() const override { return {}; }
};

/// Rank + 1.
class NbpSampleNumberColumn : public NbpServedColumn
{
public:
  Nbd::EVariableType getType() const override { return Nbd::TYPE_INT64; }
  void read(const NbpRuns &runs, NbdAVariable &values) const override;
};

/// One coordinate of the nodes of a grid.
class NbpGridCoordinateColumn : public NbpServedColumn
{
public:
  NbpGridCoordinateColumn(const NbgGeomGrid &geometry, int axis) : _geometry(geometry), _axis(axis)
  {
  }

  Nbd::EVariableType getType() const override { return Nbd::TYPE_DOUBLE; }
  void read(const NbpRuns &runs, NbdAVariable &values) const override;

private:
  NbgGeomGrid _geometry;
  int _axis;
};
