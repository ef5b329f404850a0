#include "geos/data/NgdSortedData.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"
#include "data/private/NgdSearchVolume.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr std::size_t leafSize = 16;

}  // namespace

/// The box asked for, and bounds of it along the axes of the cells.
struct NgdSortedData::_Query
{
  NbgVector3D center;
  NbgVector3D halfExtents;
  NbgRotation rotation;
  NbgVector3D lower;
  NbgVector3D upper;
  int nDimensions;

  bool holds(const NbgVector3D &location) const
  {
    const NbgVector3D local = rotation.worldToLocal(location - center);
    for (int axis = 0; axis < nDimensions; ++axis) {
      if (!(std::abs(local[axis]) <= halfExtents[axis]))
        return false;
    }
    return true;
  }
};

NgdSortedData::NgdSortedData() : _dimension(NbgEDimension::DIM_1D)
{
  clear();
}

void NgdSortedData::setDimension(const NbgEDimension &dimension)
{
  _dimension = dimension;
  _hasDimension = true;
}

void NgdSortedData::setBoundingBox(const NbgBox &box, const NbgRotation &rotation)
{
  if (!_hasDimension)
    NBE_FAIL(QStringLiteral("Set the dimension of the data before the bounding box."));
  if (_nData > 0)
    NBE_FAIL(QStringLiteral("Can't modify bounding box when data are already present."));
  if (!_dimension.is3D() && !rotation.isAroundZOnly())
    NBE_FAIL(QStringLiteral("Can't use 3D rotation with 2D data."));
  _boxCenter = box.isValid() ? box.getCenter() : NbgVector3D();
  _boxSize = box.getSize();
  _boxRotation = rotation;
  clear();
}

void NgdSortedData::setMaximumDepth(int depth)
{
  if (_nData > 0)
    NBE_FAIL(QStringLiteral("Can't modify octree depth when data are already present."));
  _maximumDepth = depth;
}

void NgdSortedData::insertData(const NbdDataPoints &points)
{
  for (int i = 0; i < points.getNSamples(); ++i)
    insertSample(_nData, points.getLocation(i));
}

void NgdSortedData::insertSample(int rank, const NbgVector3D &location)
{
  const NbgVector3D local = _boxRotation.worldToLocal(location - _boxCenter);
  int cell = 0;
  while (_cells[cell].firstChild >= 0)
    cell = _cells[cell].firstChild + _childOf(_cells[cell].center, local);
  _cells[cell].samples.push_back({location, rank});
  ++_nData;
  if (_cells[cell].samples.size() > leafSize && _cells[cell].depth < _maximumDepth)
    _split(cell);
}

void NgdSortedData::selectDataFromBox(const NbgVector3D &center, const NbgVector3D &halfExtents,
                                      const NbgRotation &rotation, QVector<int> &ranks) const
{
  ranks.clear();
  const NbgVector3D middle = _boxRotation.worldToLocal(center - _boxCenter);
  NbgVector3D reach;
  for (int axis = 0; axis < 3; ++axis) {
    NbgVector3D half;
    half[axis] = halfExtents[axis];
    const NbgVector3D local = _boxRotation.worldToLocal(rotation.localToWorld(half));
    reach += NbgVector3D(std::abs(local.x()), std::abs(local.y()), std::abs(local.z()));
  }
  // Rounding hides no sample: cells a little farther than the box are searched too.
  const double margin = 1e-9 * (reach.maximum() + middle.chebychevDist() +
                                _boxCenter.chebychevDist() + _boxSize.chebychevDist());
  reach += NbgVector3D(margin, margin, margin);
  // Axes that leave the space of the data have no bounded trace in it.
  if (!ngdStaysInSpace(rotation, _dimension.getNDim()))
    reach = NbgVector3D(1e150, 1e150, 1e150);
  _search(0, {center, halfExtents, rotation, middle - reach, middle + reach, _dimension.getNDim()},
          ranks);
  std::sort(ranks.begin(), ranks.end());
}

void NgdSortedData::clear()
{
  _nData = 0;
  _cells.clear();
  _cells.push_back({NbgVector3D(), 0.5 * _boxSize, 0, -1, {}});
}

QString NgdSortedData::debug(int) const
{
  return QStringLiteral("Box Center = %1\nBox Rotation = %2\nBox Size = %3\n")
             .arg(_boxCenter.toString(), _boxRotation.toString(), _boxSize.toString()) +
         QStringLiteral("Is 3D = %1\nNb Data = %2\n")
             .arg(_dimension.is3D() ? QStringLiteral("true") : QStringLiteral("false"),
                  QString::number(_nData));
}

int NgdSortedData::_childOf(const NbgVector3D &center, const NbgVector3D &local) const
{
  int child = 0;
  for (int axis = 0; axis < _dimension.getNDim(); ++axis)
    child |= int(local[axis] >= center[axis]) << axis;
  return child;
}

void NgdSortedData::_split(int cell)
{
  const std::vector<_Sample> samples = std::move(_cells[cell].samples);
  _cells[cell].samples.clear();
  const NbgVector3D center = _cells[cell].center;
  const NbgVector3D quarter = 0.5 * _cells[cell].halfSize;
  const int depth = _cells[cell].depth + 1;
  const int firstChild = int(_cells.size());
  _cells[cell].firstChild = firstChild;
  for (int child = 0; child < 1 << _dimension.getNDim(); ++child) {
    const NbgVector3D side(child & 1 ? 1. : -1., child & 2 ? 1. : -1., child & 4 ? 1. : -1.);
    _cells.push_back({center + quarter.componentsProduct(side), quarter, depth, -1, {}});
  }
  for (const _Sample &sample : samples) {
    const NbgVector3D local = _boxRotation.worldToLocal(sample.location - _boxCenter);
    _cells[firstChild + _childOf(center, local)].samples.push_back(sample);
  }
}

void NgdSortedData::_search(int index, const _Query &query, QVector<int> &ranks) const
{
  const _Cell &cell = _cells[index];
  for (const _Sample &sample : cell.samples) {
    if (query.holds(sample.location))
      ranks.push_back(sample.rank);
  }
  if (cell.firstChild < 0)
    return;
  for (int child = 0; child < 1 << query.nDimensions; ++child) {
    bool reaches = true;
    for (int axis = 0; axis < query.nDimensions; ++axis)
      reaches &= child >> axis & 1 ? query.upper[axis] >= cell.center[axis]
                                   : query.lower[axis] < cell.center[axis];
    if (reaches)
      _search(cell.firstChild + child, query, ranks);
  }
}
