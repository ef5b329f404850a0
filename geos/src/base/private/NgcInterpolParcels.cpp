#include "base/private/NgcInterpolParcels.h"

#include <algorithm>

namespace {

constexpr int nAxes = 3;

}  // namespace

NgcInterpolParcels::NgcInterpolParcels(const NbgIntVector3D &nodes, const NbgIntVector3D &sizes)
{
  for (int axis = 0; axis < nAxes; ++axis)
    _windows[axis] = NbiIntervalIntSmallMoving(NbiIntervalIntSmall::fromLength(nodes[axis]),
                                               std::max(1, std::min(sizes[axis], nodes[axis])));
}

double NgcInterpolParcels::count(const NbgIntVector3D &nodes, const NbgIntVector3D &sizes)
{
  double n = 1.;
  for (int axis = 0; axis < nAxes; ++axis) {
    if (sizes[axis] > 0 && sizes[axis] < nodes[axis])
      n *= (nodes[axis] - 1) / sizes[axis] + 1;
  }
  return n;
}

bool NgcInterpolParcels::next()
{
  if (!_started) {
    _started = true;
    for (NbiIntervalIntSmallMoving &windows : _windows)
      windows.next();
    return true;
  }
  for (NbiIntervalIntSmallMoving &windows : _windows) {
    if (windows.hasNext()) {
      windows.next();
      return true;
    }
    windows.toFront();
    windows.next();
  }
  return false;
}

void NgcInterpolParcels::select(const NbgIntVector3D &node)
{
  _started = true;
  for (int axis = 0; axis < nAxes; ++axis) {
    _windows[axis].toFront();
    while (_windows[axis].next().getUpper() < node[axis]) {
    }
  }
}

NbgIntVector3D NgcInterpolParcels::getFirst() const
{
  return {_windows[0].getInterval().getLower(), _windows[1].getInterval().getLower(),
          _windows[2].getInterval().getLower()};
}

NbgIntVector3D NgcInterpolParcels::getCounts() const
{
  return {_windows[0].getInterval().getLength(), _windows[1].getInterval().getLength(),
          _windows[2].getInterval().getLength()};
}
