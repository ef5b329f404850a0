#include "geos/data/NgdABufferGridIterator.h"

#include "geos/data/NgdBufferManagerGrid.h"

namespace {

NbiIntervalIntSmallMoving wholeAxis(int n)
{
  return n > 0 ? NbiIntervalIntSmallMoving(NbiIntervalIntSmall::fromLength(n), n)
               : NbiIntervalIntSmallMoving();
}

NbiIntervalIntSmall shifted(NbiIntervalIntSmall interval, int offset)
{
  interval.addOffset(offset);
  return interval;
}

}  // namespace

NgdABufferGridIterator::NgdABufferGridIterator(const NgdBufferManagerGrid &manager,
                                               const NbgIntVector3D &target,
                                               const NbgIntVector3D &origin)
    : _origin(origin),
      _loop(manager.getVisitedLoopRanks(), 1),
      _i(wholeAxis(target.x())),
      _j(wholeAxis(target.y())),
      _k(wholeAxis(target.z()))
{
  const int order = manager.getOrder();
  if (manager.getNBuffers() == 0)
    _i = _j = _k = NbiIntervalIntSmallMoving();
  else if (order == 2)
    _k = NbiIntervalIntSmallMoving(_k.getRange(), 1);
  else
    _i = NbiIntervalIntSmallMoving(_i.getRange(), order == 1 ? 1 : manager.getNplanesPerBuffer());
  if (order == 0 && manager.getNBuffers() > 0)
    _j = NbiIntervalIntSmallMoving(_j.getRange(), manager.getNRowsPerBuffer());
  toFront();
}

void NgdABufferGridIterator::toFront()
{
  _loop.toFront();
  if (_loop.hasNext())
    _loop.next();
  _restartCuts();
}

void NgdABufferGridIterator::_restartCuts()
{
  // j stands before its first window, so that the first advance() moves it there.
  for (NbiIntervalIntSmallMoving *axis : {&_i, &_j, &_k}) {
    axis->toFront();
    if (axis != &_j && axis->hasNext())
      axis->next();
  }
}

bool NgdABufferGridIterator::_hasNextCut() const
{
  return _j.hasNext() || (_j.getNWindows() > 0 && (_i.hasNext() || _k.hasNext()));
}

bool NgdABufferGridIterator::hasNext() const
{
  return _hasNextCut() || (_j.getNWindows() > 0 && _loop.hasNext());
}

void NgdABufferGridIterator::_advance()
{
  if (!_hasNextCut()) {
    _loop.next();
    _restartCuts();
  } else if (!_j.hasNext()) {
    // Only one of i and k has several windows.
    (_i.hasNext() ? _i : _k).next();
    _j.toFront();
  }
  _j.next();
}

void NgdABufferGridIterator::skipNext()
{
  _advance();
}

NbiIntervalIntSmall NgdABufferGridIterator::_getI() const
{
  return shifted(_i.getInterval(), _origin.x());
}

NbiIntervalIntSmall NgdABufferGridIterator::_getJ() const
{
  return shifted(_j.getInterval(), _origin.y());
}

NbiIntervalIntSmall NgdABufferGridIterator::_getK() const
{
  return shifted(_k.getInterval(), _origin.z());
}
