#include "interpol/private/NgcInterpolExtMig.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/geom/NbgBox.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetGrid.h"

#include <QMap>

#include <algorithm>
#include <limits>

namespace {

/// One cell more on each side, within the grid: the nodes around the points of the cells.
NbiIntervalIntSmall enlarge(const NbiIntervalIntSmall &cells, int nNodes)
{
  return {std::max(cells.getLower() - 1, 0), std::min(cells.getUpper() + 1, nNodes - 1)};
}

}  // namespace

NgcInterpolExtMig::NgcInterpolExtMig()
{
  _setNeedCoordinates(true);
}

NgcInterpolExtMig::~NgcInterpolExtMig()
{
  _finish();
}

void NgcInterpolExtMig::addExternalGrid(const QStringList &roles, const NgdDataSetGrid &grid)
{
  NgdDataSetGrid copy = grid;
  copy.clearOtherRoles(roles);
  const QString id = QStringLiteral("EXTERNAL_%1").arg(_grids.size());
  _setDataset(id, copy);
  _grids.push_back({id, roles, {}});
}

void NgcInterpolExtMig::_addRuntimeConstraints()
{
  QMap<QString, int> counts;
  for (_Grid &grid : _grids) {
    grid.transfers.clear();
    for (const QString &role : qAsConst(grid.roles)) {
      _addVariableRule(grid.id, role, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
      for (int index = 0; index < _getDataset(grid.id)->getRoleCount(role); ++index)
        grid.transfers.push_back({role, index, counts[role]++});
    }
  }
  for (auto count = counts.cbegin(); count != counts.cend(); ++count)
    _addVariableRule(Nbd::Dataset::INOUT, count.key(), Nbd::ACCESS_WRITE, Nbd::TYPE_DOUBLE,
                     count.value(), count.value());
}

/// Half of the budget for the samples, half for the parts of the grids.
void NgcInterpolExtMig::_initBufferManager(NgdABufferManager *manager) const
{
  manager->tuneBufferSize(std::max<qint64>(getAvailableMemBytes() / 2, 1), 1, 1);
}

void NgcInterpolExtMig::_processing(NbdAData &buffer)
{
  for (const _Grid &grid : _grids) {
    for (const _Transfer &transfer : grid.transfers) {
      double *values = buffer.getDataTable().getVarDoubleRef(transfer.role, transfer.to).getArray();
      std::fill_n(values, buffer.getNSamples(), NbbGlobal::D_FFFF);
    }
    _migrate(grid, buffer);
  }
}

void NgcInterpolExtMig::_migrate(const _Grid &grid, NbdAData &buffer) const
{
  const auto &dataSet = static_cast<const NgdDataSetGrid &>(*_getDataset(grid.id));
  const NbgGeomGrid &geometry = dataSet.getGeometry();
  NbgBox box;
  buffer.updateBoundingBox(box);
  const NbiIntervalsIJK cells = geometry.getIJKIntervals(box);
  if (cells.isEmpty())
    return;

  const NbgIntVector3D n = geometry.getNodesNumber();
  const NbiIntervalsIJK block(enlarge(cells.getI(), n.x()), enlarge(cells.getJ(), n.y()),
                              enlarge(cells.getK(), n.z()));
  const int nPlanes = _countPlanesPerSlab(dataSet, block);
  const int lastI = block.getI().getUpper();
  for (int firstI = block.getI().getLower(); firstI <= lastI; firstI += nPlanes) {
    _checkForProgressStop();
    _migrateSlab(grid, block, firstI, std::min(firstI + nPlanes - 1, lastI), buffer);
  }
}

int NgcInterpolExtMig::_countPlanesPerSlab(const NgdDataSetGrid &dataSet,
                                           const NbiIntervalsIJK &block) const
{
  const qint64 perPlane = qint64(block.getJ().getLength()) * block.getK().getLength();
  const qint64 nodeBytes = dataSet.getSampleSizeBytes() + qint64(sizeof(bool));
  const qint64 nNodes =
      std::min<qint64>(getAvailableMemBytes() / 2 / nodeBytes, std::numeric_limits<int>::max());
  return int(std::clamp<qint64>(nNodes / perPlane - 2, 1, block.getI().getLength()));
}

void NgcInterpolExtMig::_migrateSlab(const _Grid &grid, const NbiIntervalsIJK &block, int firstI,
                                     int lastI, NbdAData &buffer) const
{
  const auto &dataSet = static_cast<const NgdDataSetGrid &>(*_getDataset(grid.id));
  const NbgGeomGrid &geometry = dataSet.getGeometry();
  NbdDataGrid nodes;
  dataSet.createAllVariables(nodes, false, false);
  dataSet.loadInBuffer(enlarge({firstI, lastI}, geometry.getNodesNumber().x()), block.getJ(),
                       block.getK(), nodes);

  const std::vector<int> &positions = buffer.getSelectedPositions();
  for (const _Transfer &transfer : grid.transfers) {
    const NbdAVariableNumeric &from =
        nodes.getDataTableConst().getVarNumericRef(transfer.role, transfer.from);
    double *to = buffer.getDataTable().getVarDoubleRef(transfer.role, transfer.to).getArray();
    for (const int position : positions) {
      const NbgVector3D location = buffer.getLocation(position);
      NbgIntVector3D cell;
      if (geometry.getCellIJK(location, cell) && cell.x() >= firstI && cell.x() <= lastI)
        to[position] = nodes.getInterpolatedValue(from, location);
    }
  }
}
