#include "geos/data/NgdBufferManagerGrid.h"

#include "basic/base/NbbSysInfo.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeUserError.h"
#include "geos/data/NgdBufferGridIterator.h"
#include "geos/data/NgdDataSetGrid.h"

#include <QObject>

#include <algorithm>
#include <limits>

namespace {

const qint64 maxInt = std::numeric_limits<int>::max();

/// Number of parts of length `length` that cover n, n >= 1.
qint64 countParts(qint64 n, qint64 length)
{
  return (n - 1) / length + 1;
}

}  // namespace

NgdBufferManagerGrid::NgdBufferManagerGrid(const NgdDataSetGrid &dataSet)
    : NgdABufferManager(dataSet),
      _dataSet(dataSet.clone()),
      _target(dataSet.getGeometry().getNodesNumber())
{
}

NgdBufferManagerGrid::~NgdBufferManagerGrid() = default;

NgdIBufferIterator *NgdBufferManagerGrid::createBufferIterator() const
{
  return new NgdBufferGridIterator(*_dataSet, *this, _target, _targetOrigin);
}

void NgdBufferManagerGrid::setTargetSubGrid(const NbgIntVector3D &nodeCounts,
                                            const NbgIntVector3D &origin)
{
  _target = nodeCounts;
  _targetOrigin = origin;
}

void NgdBufferManagerGrid::_checkOrder() const
{
  if (_order != 0)
    NBE_FAIL(QStringLiteral("wrong order"));
}

void NgdBufferManagerGrid::_tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred)
{
  _checkOrder();
  const qint64 sampleSize = getSampleSize();
  const qint64 planeSize = sampleSize * _target.y() * _target.z();

  if (nPreferred == 1) {
    if (_target.product() > maxInt)
      NBE_FAIL(QStringLiteral("n_samples too large"));
    if (sampleSize * _target.product() > maxMemory)
      throw NbeMemoryError(
          QObject::tr("There is not enough memory to handle a buffer containing a %1 samples "
                      "(size of a sample = %2 bytes)")
              .arg(_target.product())
              .arg(sampleSize));
    _setWholeGrid();
  } else if (planeSize > maxMemory / nThreads || _target.x() < nThreads) {
    _setColumns(maxMemory / nThreads, nThreads);
  } else {
    _setSlabs(_target.x() < nPreferred ? 1 : countParts(_target.x(), nPreferred));
  }
}

void NgdBufferManagerGrid::_setColumns(qint64 memoryPerThread, int nThreads)
{
  const qint64 columnSize = qint64(getSampleSize()) * _target.z();
  const qint64 nRows = std::max<qint64>(
      std::min(countParts(_target.y(), nThreads), memoryPerThread / columnSize), 1);
  if (columnSize * nRows > memoryPerThread) {
    QString text =
        QObject::tr("There is not enough memory to handle a buffer containing a %1 samples")
            .arg(_target.z()) +
        QStringLiteral(" (") +
        QObject::tr("size needed for one sample = %1)")
            .arg(NbbSysInfo::getStringSize(getSampleSize()));
    if (nThreads > 1)
      text += '\n' + QObject::tr(
                         "You may try to reduce number of threads to reduce needed memory "
                         "(one thread would need at least %1)")
                         .arg(NbbSysInfo::getStringSize(columnSize));
    throw NbeMemoryError(text);
  }
  _setBlock(_target.z() * nRows, 1, nRows, _target.x() * countParts(_target.y(), nRows));
}

void NgdBufferManagerGrid::_setSlabs(qint64 nPlanes)
{
  _setBlock(qint64(_target.y()) * _target.z() * nPlanes, nPlanes, _target.y(),
            countParts(_target.x(), nPlanes));
}

void NgdBufferManagerGrid::_setWholeGrid()
{
  _setBlock(_target.product(), _target.x(), _target.y(), 1);
}

void NgdBufferManagerGrid::_setBufferSize(qint64 bytes)
{
  _checkOrder();
  const qint64 total = _target.product();
  const qint64 nSamples = std::max<qint64>(std::min(total, bytes / getSampleSize()), 1);
  if (nSamples > maxInt)
    NBE_FAIL(QStringLiteral("bufferSize too large."));
  if (nSamples >= total)
    _setWholeGrid();
  else if (nSamples < _target.z())
    throw NbeUserError(QObject::tr("There is not enough memory to handle the grid."));
  else
    _searchBlock(nSamples);
}

void NgdBufferManagerGrid::_setNSamplesPerBuffer(int nSamples)
{
  _checkOrder();
  if (nSamples >= _target.product())
    _setWholeGrid();
  else if (nSamples < _target.z())
    NBE_FAIL(QStringLiteral("Too many Z levels."));
  else
    _searchBlock(nSamples);
}

void NgdBufferManagerGrid::_searchBlock(qint64 nSamples)
{
  qint64 planes = 1, rows = 1, nextPlanes = 1, nextRows = 1;
  do {
    planes = nextPlanes;
    rows = nextRows;
    if (nextRows == _target.y())
      ++nextPlanes;
    else
      ++nextRows;
  } while (nextPlanes < _target.x() && _target.z() * nextRows * nextPlanes < nSamples);

  // Samples are counted without the factor nz here: what callers of this mode have always read.
  _setBlock(planes * rows, planes, rows,
            countParts(_target.y(), rows) * countParts(_target.x(), planes));
}

int NgdBufferManagerGrid::setOptimalBlockSize(qint64 maxMemory, const NbgIntVector3D &border,
                                              int nThreads)
{
  const qint64 minPlanes = std::max(border.x(), 1);
  const qint64 ny = _target.y() + 2 * border.y();
  const qint64 nz = _target.z() + 2 * border.z();
  const auto bytesOf = [&](qint64 nPlanes, int threads) {
    return threads * qint64(getSampleSize()) * (nPlanes + 2 * border.x()) * ny * nz;
  };

  qint64 planes = std::max(countParts(_target.x(), nThreads), minPlanes);
  while (bytesOf(planes, nThreads) > maxMemory && planes > minPlanes)
    --planes;
  while (bytesOf(planes, nThreads) > maxMemory && nThreads >= 2)
    --nThreads;
  if (bytesOf(planes, nThreads) > maxMemory)
    throw NbeMemoryError(
        QObject::tr("There is not enough memory to handle a buffer containing a grid with "
                    "%1x%2x%3 nodes")
            .arg(planes + 2 * border.x())
            .arg(ny)
            .arg(nz));
  _setSlabs(planes);
  return nThreads;
}

void NgdBufferManagerGrid::setSlicesPerBuffer(int nSlices)
{
  if (nSlices < 1)
    NBE_FAIL(QStringLiteral("number of slices must be positive."));
  _setBlock(qint64(_target.z()) * _target.y() * nSlices, nSlices, qint64(_target.y()) * nSlices,
            countParts(_target.x(), nSlices));
}

void NgdBufferManagerGrid::splitInPlane(int order)
{
  if (order != 1 && order != 2)
    NBE_FAIL(QStringLiteral("wrong order"));
  _order = order;
  const int nPlanes = order == 1 ? _target.x() : _target.z();
  _setBlock(qint64(_target.y()) * (order == 1 ? _target.z() : _target.x()), 1, nPlanes, nPlanes);
}

void NgdBufferManagerGrid::_setBlock(qint64 nSamples, qint64 blockX, qint64 blockY, qint64 nCuts)
{
  if (nSamples > maxInt)
    NBE_FAIL(QStringLiteral("n_samples too large"));
  _nSamplesPerBuffer = int(nSamples);
  _blockX = int(blockX);
  _blockY = int(blockY);
  _setNBuffers(nCuts);
}
