#include "geos/data/NgdBufferLinesIterator.h"

#include "geos/data/NgdBufferManagerLines.h"
#include "geos/data/NgdDataSetLines.h"

NgdBufferLinesIterator::NgdBufferLinesIterator(const NgdDataSetLines &dataSet,
                                               const NgdBufferManagerLines &manager,
                                               const QList<int> &lineRanks)
    : _dataSet(dataSet.clone()),
      _needCoordinates(manager.getNeedCoordinates()),
      _needSampleNumber(manager.getNeedSampleNumber()),
      _lineRanks(lineRanks),
      _loop(manager.getVisitedLoopRanks(), 1)
{
  if (manager.getNBuffers() > 0)
    _lines = NbiIntervalIntSmallMoving(NbiIntervalIntSmall::fromLength(lineRanks.size()),
                                       manager.getNLinesPerBuffer());
  toFront();
}

NgdBufferLinesIterator::~NgdBufferLinesIterator() = default;

void NgdBufferLinesIterator::toFront()
{
  _lines.toFront();
  _loop.toFront();
  if (_loop.hasNext())
    _loop.next();
}

bool NgdBufferLinesIterator::hasNext() const
{
  return _lines.hasNext() || (_lines.getNWindows() > 0 && _loop.hasNext());
}

void NgdBufferLinesIterator::skipNext()
{
  if (!_lines.hasNext()) {
    _loop.next();
    _lines.toFront();
  }
  _lines.next();
}

NbdDataLines *NgdBufferLinesIterator::next()
{
  skipNext();
  const NbiIntervalIntSmall window = _lines.getInterval();
  auto buffer = std::make_unique<NbdDataLines>();
  buffer->setMacroRanks({_loop.getInterval().getLower()});
  _dataSet->createAllVariables(*buffer, _needCoordinates, _needSampleNumber);
  _dataSet->loadInBuffer(_lineRanks.mid(window.getLower(), window.getLength()), *buffer);
  return buffer.release();
}
