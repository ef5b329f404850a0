#include "provider/private/NbpServedColumns.h"

#include "provider/private/NbpConvertValues.h"
#include "provider/private/NbpVariableArrays.h"

#include <algorithm>

namespace {

/// The node behind another one in rank order.
NbgIntVector3D nextNode(const NbgIntVector3D &node, const NbgIntVector3D &nodes)
{
  if (node.z() + 1 < nodes.z())
    return {node.x(), node.y(), node.z() + 1};
  if (node.y() + 1 < nodes.y())
    return {node.x(), node.y() + 1, 0};
  return {node.x() + 1, 0, 0};
}

/// Computes values block by block and converts them: compute(rank, n, block).
template <class T, class Compute>
void readComputed(const NbpRuns &runs, NbdAVariable &values, const Compute &compute)
{
  constexpr int BLOCK = 512;
  T block[BLOCK];
  withArray(values, [&](auto *out) {
    for (const NbpRun &run : runs) {
      for (int done = 0; done < run.length; done += BLOCK) {
        const int n = std::min(BLOCK, run.length - done);
        compute(run.rank + done, n, block);
        convertValues(block, n, out + run.position + done);
      }
    }
  });
}

}  // namespace

NbgVector3D locationOfNode(const NbgGeomGrid &geometry, qint64 rank)
{
  NbgVector3D location = geometry.getCellCenter(rank);
  if (geometry.is2D())
    location.setZ(0.);
  return location;
}

void readNodeCoordinates(const NbgGeomGrid &geometry, const NbpRuns &runs,
                         const NbpCoordinateColumns &columns)
{
  double *arrays[3];
  for (int axis = 0; axis < 3; ++axis)
    arrays[axis] = columns[axis] ? columns[axis]->getArray() : nullptr;
  for (const NbpRun &run : runs) {
    NbgIntVector3D node = geometry.getCellIJKFromRank(run.rank);
    for (int position = run.position; position < run.position + run.length; ++position) {
      const NbgVector3D center = geometry.getCellCenter(node);
      for (int axis = 0; axis < 3; ++axis)
        if (arrays[axis])
          arrays[axis][position] = axis < geometry.getNDim() ? center[axis] : 0.;
      node = nextNode(node, geometry.getNodesNumber());
    }
  }
}

void NbpSampleNumberColumn::read(const NbpRuns &runs, NbdAVariable &values) const
{
  readComputed<qint64>(runs, values, [](qint64 rank, int n, qint64 *block) {
    for (int i = 0; i < n; ++i)
      block[i] = rank + 1 + i;
  });
}

void NbpGridCoordinateColumn::read(const NbpRuns &runs, NbdAVariable &values) const
{
  readComputed<double>(runs, values, [this](qint64 rank, int n, double *block) {
    NbgIntVector3D node = _geometry.getCellIJKFromRank(rank);
    for (int i = 0; i < n; ++i) {
      block[i] = _geometry.getCellCenter(node)[_axis];
      node = nextNode(node, _geometry.getNodesNumber());
    }
  });
}
