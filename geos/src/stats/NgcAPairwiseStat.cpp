#include "geos/stats/NgcAPairwiseStat.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeException.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "geos/base/NgaIAdditive.h"
#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdADataSet.h"
#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/data/NgdIBufferIterator.h"

#include <QMutexLocker>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

// More chunks cost more partial sums, fewer ones make buffers more uneven.
constexpr qint64 N_CHUNKS = 32;
constexpr qint64 SMALLEST_CHUNK = 16;

int axisOfLargestExtent(const NgdADataSet &dataSet)
{
  NbgBox box;
  dataSet.updateBoundingBox(box);
  const NbgVector3D size = box.getSize();
  if (size.z() > size.x() && size.z() > size.y())
    return 2;
  return size.y() > size.x() ? 1 : 0;
}

/// Position of the pair of chunks (i, j) on the curve that takes all pairs of 2^k neighboring
/// chunks together: partial sums of a pair of buffers are added up at once (Morton 1966).
qint64 rankOnCurve(qint64 i, qint64 j)
{
  qint64 rank = 0;
  for (int bit = 0; bit < 31; ++bit)
    rank |= (((i >> bit) & 1) << (2 * bit + 1)) | (((j >> bit) & 1) << (2 * bit));
  return rank;
}

}  // namespace

NgcAPairwiseStat::NgcAPairwiseStat(const QString &roleV, bool registerRule)
    : NgcAStat(roleV, registerRule, Nbd::TYPE_DOUBLE)
{
  _setNeedCoordinates(true);
  _setNeedSampleNumber(true);
}

NgcAPairwiseStat::~NgcAPairwiseStat()
{
  _finish();
}

void NgcAPairwiseStat::_initBufferManager()
{
  const NgdADataSet &input = *_bufferDataset();
  _sortedDimension = axisOfLargestExtent(input);
  const qint64 n = input.getNSamples();
  const int nThreads = getNThread();
  const qint64 nPreferred = std::min<qint64>(4 * qint64(std::sqrt(double(nThreads))), n / 10 + 1);
  NgdABufferManager &manager = *_getBufferManager();
  manager.tuneBufferSize(getAvailableMemBytes(), nThreads, int(nPreferred));

  _chunkSize = 0;
  if (input.isGrid() || input.isLine())
    return;
  _chunkSize = std::max(SMALLEST_CHUNK, (n + N_CHUNKS - 1) / N_CHUNKS);
  const qint64 perBuffer = manager.getNSamplesPerBuffer();
  if (perBuffer >= n)
    return;
  if (perBuffer < _chunkSize)
    _chunkSize = perBuffer;
  else
    manager.setNSamplesPerBuffer(int((perBuffer + _chunkSize - 1) / _chunkSize * _chunkSize));
}

void NgcAPairwiseStat::_initCalculatorCounter()
{
  const qint64 nBuffers = _getBufferManager()->getNBuffers();
  if (nBuffers < 1)
    throw NbeUserError(
        QObject::tr("WARNING: nothing to do, there is no selected data in the dataset."));
  _nPairs = nBuffers * (nBuffers + 1) / 2;
  if (_nPairs <= 0)
    throw NbeUserError(
        QObject::tr("WARNING: nothing to do, there is no selected data in the input dataset."));
  _initCounter(_nPairs + 1);
}

void NgcAPairwiseStat::_createBufferIterator()
{
  NgcAStat::_createBufferIterator();
  _first.reset();
  _firstRank = -1;
  _secondIterator.reset();
  _secondRank = -1;
}

std::unique_ptr<NbdAData> NgcAPairwiseStat::_load(NgdIBufferIterator &iterator, int &rank) const
{
  while (iterator.hasNext()) {
    std::unique_ptr<NbdAData> buffer(iterator.next());
    ++rank;
    if (buffer->getNSelected() == 0)
      continue;
    if (auto *points = dynamic_cast<NbdDataPoints *>(buffer.get()))
      points->ensureCoordinates();
    _sortBuffer(*buffer);
    return buffer;
  }
  return nullptr;
}

bool NgcAPairwiseStat::_moveFirst()
{
  _first = _load(*_getBufferIterator(), _firstRank);
  _secondIterator.reset();
  return _first != nullptr;
}

std::unique_ptr<NbdAData> NgcAPairwiseStat::_nextSecond()
{
  if (!_first)
    return nullptr;
  if (!_secondIterator) {
    _secondIterator.reset(_getBufferManager()->createBufferIterator());
    for (_secondRank = -1; _secondRank < _firstRank; ++_secondRank)
      _secondIterator->skipNext();
  }
  return _load(*_secondIterator, _secondRank);
}

NgdDataDoubleBuffer *NgcAPairwiseStat::getDoubleBuffer()
{
  QMutexLocker lock(&_getMutex());
  _checkForProgressStop();
  if (!_getPool().isOk())
    return nullptr;
  const int secondBefore = _secondIterator ? _secondRank : _firstRank;
  std::unique_ptr<NbdAData> second = _nextSecond();
  if (second) {
    _incrementCounter(_secondRank - secondBefore - 1 + (_isProgressCountedInSave() ? 0 : 1));
    std::unique_ptr<NbdAData> first(_first->makeCopy());
    return new NgdDataDoubleBuffer(first.release(), second.release(), false, _firstRank,
                                   _secondRank);
  }
  if (_first)
    _incrementCounter(_secondRank - secondBefore);
  const int firstBefore = _firstRank;
  const bool hasNext = _moveFirst();
  // A buffer that is left out takes all its pairs along.
  const qint64 nBuffers = _getBufferManager()->getNBuffers();
  for (int rank = firstBefore + 1; rank < _firstRank + (hasNext ? 0 : 1); ++rank)
    _incrementCounter(nBuffers - rank);
  if (!hasNext)
    return nullptr;
  _incrementCounter(_isProgressCountedInSave() ? 0 : 1);
  NbdAData *same = _first->makeCopy();
  return new NgdDataDoubleBuffer(same, same, true, _firstRank, _firstRank);
}

void NgcAPairwiseStat::saveChunks(qint64 chunk1, qint64 chunk2,
                                  std::unique_ptr<NgaIAdditive> partial)
{
  _saveStat(rankOnCurve(chunk1, chunk2), std::move(partial));
}

void NgcAPairwiseStat::finishDoubleBuffer()
{
  if (_isProgressCountedInSave())
    _incrementCounter(1);
}

void NgcAPairwiseStat::_sortBuffer(NbdAData &data) const
{
  NbdDataTable &table = data.getDataTable();
  const NbdVariableDouble *coordinates[3] = {table.getX(), table.getY(), table.getZ()};
  if (!coordinates[0] || !coordinates[1] || !coordinates[2])
    throw NbeProgrammingError(QStringLiteral("NgcAPairwiseStat::_sortBuffer: Missing coordinates"));
  if (_sortedDimension >= data.getNDimensions())
    throw NbeProgrammingError(
        QStringLiteral("NgcAPairwiseStat::_sortBuffer: Invalid sorting coordinate"));
  table.sort(*coordinates[_sortedDimension], true);
}
