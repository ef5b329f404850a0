#include "basic/data/NbdDataGridExtended.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeAssertion.h"

#include <limits>

namespace {

/// The smallest multiple of `step` that is not below `index`.
int firstMultiple(int index, int step)
{
  const int remainder = index % step;
  return index - remainder + (remainder > 0 ? step : 0);
}

}  // namespace

NbdDataGridExtended::NbdDataGridExtended() = default;

NbdDataGridExtended::~NbdDataGridExtended() = default;

NbdDataGridExtended *NbdDataGridExtended::makeCopy() const
{
  return new NbdDataGridExtended(*this);
}

int NbdDataGridExtended::getNSamples() const
{
  return int(_nodes.product());
}

void NbdDataGridExtended::setBlock(const NbgGeomGrid &geometry, const NbiIntervalIntSmall &i,
                                   const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k,
                                   const NbgIntVector3D &border)
{
  if (border.x() < 0 || border.y() < 0 || border.z() < 0)
    NBE_FAIL(QStringLiteral("border must not be negative"));
  _geometry = geometry;
  _block[0] = i;
  _block[1] = j;
  _block[2] = k;
  _border = border;
  setNDimensions(geometry.getNDim());
  _updateNodes();
}

void NbdDataGridExtended::_setStep(const NbgIntVector3D &step)
{
  if (step.x() < 1 || step.y() < 1 || step.z() < 1)
    NBE_FAIL(QStringLiteral("step must be positive"));
  _step = step;
  _updateNodes();
}

void NbdDataGridExtended::_updateNodes()
{
  for (int axis = 0; axis < 3; ++axis) {
    const int last = _block[axis].getUpper() + _border[axis];
    _first[axis] = firstMultiple(_block[axis].getLower() - _border[axis], _step[axis]);
    const bool isEmpty = _block[axis].isEmpty() || _first[axis] > last;
    _nodes[axis] = isEmpty ? 0 : (last - _first[axis]) / _step[axis] + 1;
  }
  if (_nodes.product() > std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("too many nodes for a buffer"));
  setResizedTo(getNSamples());
}

NbgIntVector3D NbdDataGridExtended::getIJK(int position) const
{
  const int column = position / _nodes.z();
  return {_first.x() + _step.x() * (column / _nodes.y()),
          _first.y() + _step.y() * (column % _nodes.y()),
          _first.z() + _step.z() * (position % _nodes.z())};
}

bool NbdDataGridExtended::isInBlock(int position) const
{
  const NbgIntVector3D node = getIJK(position);
  return _block[0].isIncluded(node.x()) && _block[1].isIncluded(node.y()) &&
         _block[2].isIncluded(node.z());
}

bool NbdDataGridExtended::isInGrid(int position) const
{
  return _geometry.isIjkValid(getIJK(position));
}

NbgVector3D NbdDataGridExtended::getLocation(int position) const
{
  NbgVector3D location = _geometry.getCellCenter(getIJK(position));
  for (int axis = getNDimensions(); axis < 3; ++axis)
    location[axis] = 0.;
  return location;
}

void NbdDataGridExtended::getLocations(int first, int n, double *x, double *y, double *z) const
{
  for (int k = 0; k < n; ++k) {
    const NbgVector3D location = getLocation(first + k);
    x[k] = location.x();
    y[k] = location.y();
    z[k] = location.z();
  }
}

qint64 NbdDataGridExtended::getSampleNumber(int position) const
{
  return isInGrid(position) ? _geometry.getRankFromIJK(getIJK(position)) + 1 : NbbGlobal::I64_FFFF;
}

NbgGeomGrid NbdDataGridExtended::getExtendedGeometry() const
{
  const NbgVector3D &cell = _geometry.getCellSize();
  NbgGeomGrid nodes = _geometry;
  nodes.setOriginCentered(_geometry.getCellCenter(_first));
  nodes.setCellSize(cell.x() * _step.x(), cell.y() * _step.y(), cell.z() * _step.z());
  nodes.setNodesNumber(_nodes);
  return nodes;
}
