#include "basic/data/NbdDataGrid.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/error/NbeAssertion.h"

#include <limits>

NbdDataGrid::NbdDataGrid() = default;
NbdDataGrid::~NbdDataGrid() = default;

int NbdDataGrid::getNSamples() const
{
  return _i.getLength() * _j.getLength() * _k.getLength();
}

NbgVector3D NbdDataGrid::getLocation(int position) const
{
  NbgVector3D location = _geometry.getCellCenter(getIJK(position));
  for (int axis = getNDimensions(); axis < 3; ++axis)
    location[axis] = 0.;
  return location;
}

void NbdDataGrid::getLocations(int first, int n, double *x, double *y, double *z) const
{
  if (n <= 0)
    return;
  NbgIntVector3D node = getIJK(first);
  for (int position = 0; position < n; ++position) {
    const NbgVector3D center = _geometry.getCellCenter(node);
    x[position] = getNDimensions() > 0 ? center.x() : 0.;
    y[position] = getNDimensions() > 1 ? center.y() : 0.;
    z[position] = getNDimensions() > 2 ? center.z() : 0.;
    node = _next(node);
  }
}

qint64 NbdDataGrid::getSampleNumber(int position) const
{
  if (getVariableSN())
    return NbdAData::getSampleNumber(position);
  return _geometry.getRankFromIJK(getIJK(position)) + 1;
}

NbdDataGrid *NbdDataGrid::makeCopy() const
{
  return new NbdDataGrid(*this);
}

void NbdDataGrid::setGeometry(const NbgGeomGrid &geometry)
{
  _geometry = geometry;
  setNDimensions(geometry.getNDim());
  const NbiIntervalsIJK whole = geometry.getIJKIntervals();
  if (geometry.getGridSize() <= std::numeric_limits<int>::max())
    setParentIntervals(whole.getI(), whole.getJ(), whole.getK());
  else
    setParentIntervals({}, {}, {});
}

void NbdDataGrid::setBlock(const NbgGeomGrid &geometry, const NbiIntervalIntSmall &i,
                           const NbiIntervalIntSmall &j, const NbiIntervalIntSmall &k)
{
  _geometry = geometry;
  setNDimensions(geometry.getNDim());
  setParentIntervals(i, j, k);
}

void NbdDataGrid::setParentIntervals(const NbiIntervalIntSmall &i, const NbiIntervalIntSmall &j,
                                     const NbiIntervalIntSmall &k)
{
  const NbiIntervalsIJK block(i, j, k);
  if (!block.isEmpty()) {
    if (block.intersect(_geometry.getIJKIntervals()) != block)
      NBE_FAIL(QStringLiteral("block is inside the grid"));
    if (block.getLength() > std::numeric_limits<int>::max())
      NBE_FAIL(QStringLiteral("block.getLength() <= INT_MAX"));
  }
  _i = i;
  _j = j;
  _k = k;
  setResizedTo(getNSamples());
}

NbgIntVector3D NbdDataGrid::getIJK(int position) const
{
  const int column = position / _k.getLength();
  return {_i.getLower() + column / _j.getLength(), _j.getLower() + column % _j.getLength(),
          _k.getLower() + position % _k.getLength()};
}

double NbdDataGrid::getInterpolatedValue(const NbdAVariableNumeric &variable,
                                         const NbgVector3D &point) const
{
  qint64 ranks[8];
  double weights[8];
  const int nNodes = _geometry.getTrilinearWeights(point, ranks, weights);
  double sum = 0.;
  for (int node = 0; node < nNodes; ++node) {
    const int position = _getPosition(_geometry.getCellIJKFromRank(ranks[node]));
    if (position < 0 || !isSelected(position))
      return NbbGlobal::D_FFFF;
    const double value = variable.getValue(position);
    if (!NbbGlobal::isDefined(value))
      return NbbGlobal::D_FFFF;
    sum += weights[node] * value;
  }
  return nNodes > 0 ? sum : NbbGlobal::D_FFFF;
}

NbgIntVector3D NbdDataGrid::_next(const NbgIntVector3D &node) const
{
  if (node.z() < _k.getUpper())
    return {node.x(), node.y(), node.z() + 1};
  if (node.y() < _j.getUpper())
    return {node.x(), node.y() + 1, _k.getLower()};
  return {node.x() + 1, _j.getLower(), _k.getLower()};
}

int NbdDataGrid::_getPosition(const NbgIntVector3D &node) const
{
  if (!_i.isIncluded(node.x()) || !_j.isIncluded(node.y()) || !_k.isIncluded(node.z()))
    return -1;
  return (node.z() - _k.getLower()) +
         _k.getLength() *
             ((node.y() - _j.getLower()) + _j.getLength() * (node.x() - _i.getLower()));
}
