#include "geos/data/NgdBufferManagerPoints.h"

#include "geos/data/NgdBufferPointsIterator.h"
#include "geos/data/NgdDataSetPoints.h"

#include <algorithm>
#include <limits>

NgdBufferManagerPoints::NgdBufferManagerPoints(const NgdDataSetPoints &dataSet)
    : NgdABufferManager(dataSet), _dataSet(dataSet.clone())
{
}

NgdBufferManagerPoints::~NgdBufferManagerPoints() = default;

NgdIBufferIterator *NgdBufferManagerPoints::createBufferIterator() const
{
  return new NgdBufferPointsIterator(*_dataSet, *this);
}

void NgdBufferManagerPoints::_tuneBufferSize(qint64 maxMemory, int nThreads, int nPreferred)
{
  const qint64 minimum = 1000;
  const qint64 n = _dataSet->getNSamples();
  const qint64 preferredPart = (n - 1) / nPreferred + 1;
  const qint64 threadPart = (n - 1) / nThreads + 1;

  if (getSampleSize() * preferredPart <= maxMemory) {
    const qint64 wanted = std::min(std::max(preferredPart, minimum), threadPart);
    _setSamples(std::min(std::max(wanted, minimum), n));
  } else {
    _setSamples(maxMemory / (qint64(getSampleSize()) * nThreads) + 1);
  }
}

void NgdBufferManagerPoints::_setBufferSize(qint64 bytes)
{
  _setSamples(bytes / getSampleSize());
}

void NgdBufferManagerPoints::_setNSamplesPerBuffer(int nSamples)
{
  _setSamples(nSamples);
}

void NgdBufferManagerPoints::_setSamples(qint64 nSamplesPerBuffer)
{
  const qint64 maximum = std::numeric_limits<int>::max();
  _nSamplesPerBuffer = int(std::clamp<qint64>(nSamplesPerBuffer, 1, maximum));
  _setNBuffers((_dataSet->getNSamples() - 1) / _nSamplesPerBuffer + 1);
}
