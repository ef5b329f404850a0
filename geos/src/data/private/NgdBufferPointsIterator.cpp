#include "geos/data/NgdBufferPointsIterator.h"

#include "geos/data/NgdABufferManager.h"
#include "geos/data/NgdDataSetPoints.h"

NgdBufferPointsIterator::NgdBufferPointsIterator(const NgdDataSetPoints &dataSet,
                                                 const NgdABufferManager &manager)
    : _dataSet(dataSet.clone()),
      _needCoordinates(manager.getNeedCoordinates()),
      _needSampleNumber(manager.getNeedSampleNumber()),
      _loop(manager.getVisitedLoopRanks(), 1)
{
  if (manager.getNBuffers() > 0)
    _ranks = NbiIntervalIntLargeMoving(NbiIntervalIntLarge::fromLength(dataSet.getNSamples()),
                                       manager.getNSamplesPerBuffer());
  toFront();
}

NgdBufferPointsIterator::~NgdBufferPointsIterator() = default;

void NgdBufferPointsIterator::toFront()
{
  _ranks.toFront();
  _loop.toFront();
  if (_loop.hasNext())
    _loop.next();
}

bool NgdBufferPointsIterator::hasNext() const
{
  return _ranks.hasNext() || (_ranks.getNWindows() > 0 && _loop.hasNext());
}

void NgdBufferPointsIterator::skipNext()
{
  if (!_ranks.hasNext()) {
    _loop.next();
    _ranks.toFront();
  }
  _ranks.next();
}

NbdDataPoints *NgdBufferPointsIterator::next()
{
  skipNext();
  auto buffer = std::make_unique<NbdDataPoints>();
  buffer->setMacroRanks({_loop.getInterval().getLower()});
  _dataSet->createAllVariables(*buffer, _needCoordinates, _needSampleNumber);
  _dataSet->loadInBuffer(_ranks.getInterval().toSmallO64(), *buffer);
  return buffer.release();
}
