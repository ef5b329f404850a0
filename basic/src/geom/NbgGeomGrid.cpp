#include "basic/geom/NbgGeomGrid.h"

#include "basic/error/NbeAssertion.h"
#include "basic/geom/NbgBox.h"

#include <algorithm>
#include <cmath>

namespace {

/// The index of the cell at `t`, counted in cells from the grid's border; -1 outside. A `t` within
/// `tolerance` of a border is on it.
int cellAt(double t, double tolerance, int n)
{
  if (!(t >= -tolerance && t <= n + tolerance))
    return -1;
  return std::min(int(std::floor(t + tolerance)), n - 1);
}

/// The largest part of a cell within which a place may be taken for a border or a center; beyond it
/// the grid is finer than its coordinates.
constexpr double LARGEST_TOLERANCE = 1e-3;

/// The cells between two places on an axis, clipped to 0 .. n - 1.
NbiIntervalIntSmall cellsBetween(double lower, double upper, double tolerance, int n)
{
  if (!(upper >= -tolerance && lower <= n + tolerance))
    return NbiIntervalIntSmall();
  return {cellAt(std::max(lower, 0.), tolerance, n),
          cellAt(std::min(upper, double(n)), tolerance, n)};
}

void checkPositive(const NbgIntVector3D &counts)
{
  if (counts.x() < 1 || counts.y() < 1 || counts.z() < 1)
    NBE_FAIL(QStringLiteral("Counts must be positive"));
}

int multiply(int a, int b)
{
  const qint64 product = qint64(a) * b;
  if (product > std::numeric_limits<int>::max())
    NBE_FAIL(QStringLiteral("Too many nodes along an axis"));
  return int(product);
}

/// Component by component, the coordinate that is farther from 0.
NbgVector3D farthest(const NbgVector3D &a, const NbgVector3D &b)
{
  return {std::fmax(std::fabs(a.x()), std::fabs(b.x())),
          std::fmax(std::fabs(a.y()), std::fabs(b.y())),
          std::fmax(std::fabs(a.z()), std::fabs(b.z()))};
}

int ceilDiv(int a, int b)
{
  return a / b + (a % b != 0);
}

/// The whole number that `value` is, to `tolerance`; false when it is not one that an int holds.
bool toWhole(double value, double tolerance, qint64 &whole)
{
  if (!(std::fabs(value) < 1e9) || std::fabs(value - std::round(value)) > tolerance)
    return false;
  whole = qint64(std::round(value));
  return true;
}

}  // namespace

void NbgGeomGrid::setNodesNumber2D(int nx, int ny)
{
  _nodes = NbgIntVector3D(nx, ny, 1);
  _is2D = true;
}

void NbgGeomGrid::setIs2D(bool is2D)
{
  _is2D = is2D;
  if (is2D)
    _nodes.setZ(1);
}

void NbgGeomGrid::setOriginCorner(const NbgVector3D &corner)
{
  _origin = _getLocal(0.5, 0.5, 0.5) + corner;
}

bool NbgGeomGrid::isDefined() const
{
  const qint64 size = getGridSize();
  if (size == 0 || (!_mayBeLarge && size > std::numeric_limits<int>::max()))
    return false;
  if (_is2D && _nodes.z() != 1)
    return false;
  for (int axis = 0; axis < getNDim(); ++axis) {
    if (!(_cellSize[axis] > 0.) || !NbbGlobal::isDefined(_cellSize[axis]))
      return false;
  }
  return _origin.isDefined();
}

qint64 NbgGeomGrid::getGridSize() const
{
  if (_nodes.x() < 1 || _nodes.y() < 1 || _nodes.z() < 1)
    return 0;
  const qint64 plane = qint64(_nodes.x()) * _nodes.y();
  return plane <= std::numeric_limits<qint64>::max() / _nodes.z() ? plane * _nodes.z() : 0;
}

NbgVector3D NbgGeomGrid::getCellCorner(int i, int j, int k) const
{
  return _getLocal(i - 0.5, j - 0.5, k - 0.5) + _origin;
}

double NbgGeomGrid::getCellVolume() const
{
  const double area = _cellSize.x() * _cellSize.y();
  return _is2D ? area : area * _cellSize.z();
}

bool NbgGeomGrid::getCellIJK(const NbgVector3D &point, NbgIntVector3D &ijk) const
{
  int cell[3] = {0, 0, 0};
  if (!_getCell(point, getNDim(), cell))
    return false;
  ijk = NbgIntVector3D(cell[0], cell[1], cell[2]);
  return true;
}

bool NbgGeomGrid::getCellIJK(const NbgVector3D &point, int &i, int &j, int &k) const
{
  NbgIntVector3D ijk;
  if (!getCellIJK(point, ijk))
    return false;
  i = ijk.x();
  j = ijk.y();
  k = ijk.z();
  return true;
}

bool NbgGeomGrid::getCellIJ(const NbgVector3D &point, int &i, int &j) const
{
  int cell[3];
  if (!_getCell(point, 2, cell))
    return false;
  i = cell[0];
  j = cell[1];
  return true;
}

bool NbgGeomGrid::isInside(const NbgVector3D &point) const
{
  int cell[3];
  return _getCell(point, getNDim(), cell);
}

void NbgGeomGrid::getCoordinates(const NbiIntervalsIJK &block, double *x, double *y,
                                 double *z) const
{
  if (block.isEmpty())
    return;
  const double *m = _rotation.getMatrix().getData();
  const int first = block.getK().getLower();
  const int n = block.getK().getLength();
  qint64 start = 0;
  for (int i = block.getI().getLower(); i <= block.getI().getUpper(); ++i) {
    const double u = i * _cellSize.x();
    for (int j = block.getJ().getLower(); j <= block.getJ().getUpper(); ++j, start += n) {
      // The sums of NbgRotationMatrix::rotate() in the same order, for the same bits.
      const double v = j * _cellSize.y();
      const double sx = m[0] * u + m[3] * v;
      const double sy = m[1] * u + m[4] * v;
      const double sz = m[2] * u + m[5] * v;
      for (int k = 0; k < n; ++k) {
        const double w = (first + k) * _cellSize.z();
        x[start + k] = sx + m[6] * w + _origin.x();
        y[start + k] = sy + m[7] * w + _origin.y();
        z[start + k] = sz + m[8] * w + _origin.z();
      }
    }
  }
}

NbiIntervalsIJK NbgGeomGrid::getIJKIntervals() const
{
  return {NbiIntervalIntSmall::fromLength(_nodes.x()), NbiIntervalIntSmall::fromLength(_nodes.y()),
          NbiIntervalIntSmall::fromLength(_nodes.z())};
}

NbiIntervalsIJK NbgGeomGrid::getIJKIntervals(const NbgBox &box) const
{
  if (!box.isValid() || getGridSize() == 0)
    return NbiIntervalsIJK();
  NbgVector3D lower = _getCellCoordinates(box.getCorner(0));
  NbgVector3D upper = lower;
  for (int rank = 1; rank < 8; ++rank) {
    const NbgVector3D corner = _getCellCoordinates(box.getCorner(rank));
    lower = lower.minimum(corner);
    upper = upper.maximum(corner);
  }
  const NbgVector3D corner = farthest(box.getLowerLeftCorner(), box.getUpperRightCorner());

  NbiIntervalIntSmall cells[3] = {{}, {}, NbiIntervalIntSmall::fromLength(_nodes.z())};
  for (int axis = 0; axis < getNDim(); ++axis)
    cells[axis] = cellsBetween(lower[axis], upper[axis], _getTolerance(corner, axis), _nodes[axis]);
  const NbiIntervalsIJK block(cells[0], cells[1], cells[2]);
  return block.isEmpty() ? NbiIntervalsIJK() : block;
}

NbiIntervalIntLargeDisjoint NbgGeomGrid::getSamplesIntervals(const NbiIntervalsIJK &block) const
{
  const NbiIntervalsIJK inside = block.intersect(getIJKIntervals());
  NbiIntervalIntLargeDisjoint ranks;
  if (inside.isEmpty())
    return ranks;
  for (int i = inside.getI().getLower(); i <= inside.getI().getUpper(); ++i) {
    for (int j = inside.getJ().getLower(); j <= inside.getJ().getUpper(); ++j)
      ranks.merge(NbiIntervalIntLarge(getRankFromIJK(i, j, inside.getK().getLower()),
                                      getRankFromIJK(i, j, inside.getK().getUpper())));
  }
  return ranks;
}

int NbgGeomGrid::getTrilinearWeights(const NbgVector3D &point, qint64 *ranks, double *weights) const
{
  int cell[3];
  NbgVector3D cells;
  if (!_getCell(point, getNDim(), cell, cells))
    return 0;

  int base[3] = {0, 0, 0};
  double upper[3] = {0., 0., 0.};  // Weight of the upper neighbor along each axis.
  for (int axis = 0; axis < getNDim(); ++axis) {
    double t = std::clamp(cells[axis] - 0.5, 0., _nodes[axis] - 1.);
    // On a center only this node counts, whatever the last bits of the coordinates are.
    const double center = std::floor(t + 0.5);
    const double distance = std::fabs(t - center);
    if (distance < LARGEST_TOLERANCE && distance <= _getTolerance(point, axis))
      t = center;
    base[axis] = int(t);
    upper[axis] = t - base[axis];
  }

  int n = 0;
  for (int corner = 0; corner < 8; ++corner) {
    const int di = corner >> 2, dj = (corner >> 1) & 1, dk = corner & 1;
    const double weight = (di ? upper[0] : 1. - upper[0]) * (dj ? upper[1] : 1. - upper[1]) *
                          (dk ? upper[2] : 1. - upper[2]);
    if (weight == 0.)
      continue;
    ranks[n] = getRankFromIJK(base[0] + di, base[1] + dj, base[2] + dk);
    weights[n] = weight;
    ++n;
  }
  return n;
}

QVector<NbgVector3D> NbgGeomGrid::getCellDiscretizationPoints(int i, int j, int k,
                                                              const NbgIntVector3D &n) const
{
  QVector<NbgVector3D> points = getCellDiscretizationPointsRelative(n);
  const NbgVector3D center = getCellCenter(i, j, k);
  for (NbgVector3D &point : points)
    point += center;
  return points;
}

QVector<NbgVector3D> NbgGeomGrid::getCellDiscretizationPointsRelative(const NbgIntVector3D &n) const
{
  checkPositive(n);
  const int nz = _is2D ? 1 : n.z();
  QVector<NbgVector3D> points;
  points.reserve(n.x() * n.y() * nz);
  for (int i = 0; i < n.x(); ++i) {
    for (int j = 0; j < n.y(); ++j) {
      for (int k = 0; k < nz; ++k)
        points += _getLocal((i + 0.5) / n.x() - 0.5, (j + 0.5) / n.y() - 0.5, (k + 0.5) / nz - 0.5);
    }
  }
  return points;
}

NbgGeomGrid NbgGeomGrid::buildRefinedGeom(const NbgIntVector3D &ratio) const
{
  checkPositive(ratio);
  const int rz = _is2D ? 1 : ratio.z();
  NbgGeomGrid result(*this);
  result._cellSize =
      NbgVector3D(_cellSize.x() / ratio.x(), _cellSize.y() / ratio.y(), _cellSize.z() / rz);
  result._nodes = NbgIntVector3D(multiply(_nodes.x(), ratio.x()), multiply(_nodes.y(), ratio.y()),
                                 multiply(_nodes.z(), rz));
  result._origin =
      _getLocal(0.5 / ratio.x() - 0.5, 0.5 / ratio.y() - 0.5, 0.5 / rz - 0.5) + _origin;
  return result;
}

NbgIntVector3D NbgGeomGrid::getRefinedDiscretization(const NbgGeomGrid &refined) const
{
  NbgIntVector3D ratio = NbgIntVector3D::Unit;
  for (int axis = 0; axis < getNDim(); ++axis) {
    if (_nodes[axis] < 1 || refined._nodes[axis] % _nodes[axis] != 0)
      return NbgIntVector3D::Null;
    ratio[axis] = refined._nodes[axis] / _nodes[axis];
  }
  const bool isRefined = ratio.x() > 0 && ratio.y() > 0 && ratio.z() > 0 &&
                         buildRefinedGeom(ratio).isMatching(refined, MATCH_STRICT_DISC);
  return isRefined ? ratio : NbgIntVector3D::Null;
}

QVector<qint64> NbgGeomGrid::getRefinedCellRanks(int i, int j, int k,
                                                 const NbgIntVector3D &ratio) const
{
  const NbgGeomGrid refined = buildRefinedGeom(ratio);
  const int rz = _is2D ? 1 : ratio.z();
  QVector<qint64> ranks;
  ranks.reserve(ratio.x() * ratio.y() * rz);
  for (int a = 0; a < ratio.x(); ++a) {
    for (int b = 0; b < ratio.y(); ++b) {
      for (int c = 0; c < rz; ++c)
        ranks += refined.getRankFromIJK(i * ratio.x() + a, j * ratio.y() + b, k * rz + c);
    }
  }
  return ranks;
}

NbgGeomGrid NbgGeomGrid::buildSampledGeom(const NbgIntVector3D &step) const
{
  checkPositive(step);
  const int sz = _is2D ? 1 : step.z();
  NbgGeomGrid result(*this);
  result._cellSize = _cellSize.componentsProduct({double(step.x()), double(step.y()), double(sz)});
  result._nodes = NbgIntVector3D(ceilDiv(_nodes.x(), step.x()), ceilDiv(_nodes.y(), step.y()),
                                 ceilDiv(_nodes.z(), sz));
  return result;
}

NbgGeomGrid NbgGeomGrid::extractGeometry(const NbiIntervalsIJK &block) const
{
  NbgGeomGrid result(*this);
  result._nodes =
      NbgIntVector3D(block.getI().getLength(), block.getJ().getLength(), block.getK().getLength());
  result._origin =
      getCellCenter(block.getI().getLower(), block.getJ().getLower(), block.getK().getLower());
  return result;
}

bool NbgGeomGrid::isMatching(const NbgGeomGrid &other, MatchMode mode, double tolerance) const
{
  const bool only2D = mode == MATCH_FLOATING_DISC_ONLY_2D;
  if (!only2D && _is2D != other._is2D)
    return false;
  const int nAxes = only2D ? 2 : getNDim();
  if (!_hasSameCells(other, nAxes, tolerance))
    return false;

  const NbgVector3D uvw = getUVW(other._origin);
  for (int axis = 0; axis < nAxes; ++axis) {
    qint64 offset = 0;
    if (!toWhole(uvw[axis] / _cellSize[axis], tolerance, offset))
      return false;
    if (mode == MATCH_STRICT_DISC && (offset != 0 || _nodes[axis] != other._nodes[axis]))
      return false;
    if (mode == MATCH_SUBGRID && (offset < 0 || offset + other._nodes[axis] > _nodes[axis]))
      return false;
  }
  return true;
}

void NbgGeomGrid::updateBoundingBox(NbgBox &box) const
{
  if (!isDefined())
    return;
  for (int corner = 0; corner < 8; ++corner)
    box.extendWith(getCellCorner(corner & 1 ? _nodes.x() : 0, corner & 2 ? _nodes.y() : 0,
                                 corner & 4 ? _nodes.z() : 0));
}

QString NbgGeomGrid::toString() const
{
  return QStringLiteral("origin %1, cells %2, nodes %3, rotation %4")
      .arg(_origin.toString(), _cellSize.toString(), _nodes.toString(), _rotation.toString());
}

QString NbgGeomGrid::debug(int level) const
{
  const QString indent(2 * qMax(level, 0), ' ');
  return QStringLiteral("%1Grid (%2D)\n%1  Origin: %3\n%1  Cell size: %4\n%1  Nodes: %5\n")
             .arg(indent, QString::number(getNDim()), _origin.toString(), _cellSize.toString(),
                  _nodes.toString()) +
         _rotation.debug(level + 1);
}

/// World vector of a place counted in cells; a 2-D grid stays in its plane.
NbgVector3D NbgGeomGrid::_getLocal(double i, double j, double k) const
{
  return _rotation.localToWorld(
      {i * _cellSize.x(), j * _cellSize.y(), _is2D ? 0. : k * _cellSize.z()});
}

/// Place of a point counted in cells from the grid's lower border.
NbgVector3D NbgGeomGrid::_getCellCoordinates(const NbgVector3D &point) const
{
  const NbgVector3D uvw = getUVW(point);
  return {uvw.x() / _cellSize.x() + 0.5, uvw.y() / _cellSize.y() + 0.5,
          uvw.z() / _cellSize.z() + 0.5};
}

/// The rounding error that the coordinates of a point carry along an axis, in cells.
double NbgGeomGrid::_getTolerance(const NbgVector3D &point, int axis) const
{
  constexpr double epsilon = 8. * std::numeric_limits<double>::epsilon();
  const NbgVector3D direction = _rotation.getMatrix().getColumn(axis);
  double length = 0.;
  for (int i = 0; i < 3; ++i)
    length += std::fabs(direction[i]) * (std::fabs(point[i]) + std::fabs(_origin[i]));
  return std::min(epsilon * (length / _cellSize[axis] + 1.), LARGEST_TOLERANCE);
}

/// The cell of a point along the first axes, and its place counted in cells.
bool NbgGeomGrid::_getCell(const NbgVector3D &point, int nAxes, int *ijk, NbgVector3D &cells) const
{
  if (!point.isDefined())
    return false;
  cells = _getCellCoordinates(point);
  for (int axis = 0; axis < nAxes; ++axis) {
    const double t = cells[axis];
    const double lower = std::floor(t);
    // The tolerance is needed near upper borders only.
    if (lower >= 0. && t < _nodes[axis] && t - lower < 1. - LARGEST_TOLERANCE)
      ijk[axis] = int(lower);
    else
      ijk[axis] = cellAt(t, _getTolerance(point, axis), _nodes[axis]);
    if (ijk[axis] < 0)
      return false;
  }
  return true;
}

bool NbgGeomGrid::_getCell(const NbgVector3D &point, int nAxes, int *ijk) const
{
  NbgVector3D cells;
  return _getCell(point, nAxes, ijk, cells);
}

/// Cell sizes and axes agree so well that over the extents of the grids their nodes stay within
/// `tolerance` of a cell.
bool NbgGeomGrid::_hasSameCells(const NbgGeomGrid &other, int nAxes, double tolerance) const
{
  for (int axis = 0; axis < nAxes; ++axis) {
    const double n = std::max(1, std::max(_nodes[axis], other._nodes[axis]));
    const double size = std::fabs(_cellSize[axis] - other._cellSize[axis]);
    const NbgVector3D direction =
        _rotation.getMatrix().getColumn(axis) - other._rotation.getMatrix().getColumn(axis);
    if (!(size * n <= tolerance * _cellSize[axis]) || !(direction.norm() * n <= tolerance))
      return false;
  }
  return true;
}

bool operator==(const NbgGeomGrid &a, const NbgGeomGrid &b)
{
  return a.isMatching(b, NbgGeomGrid::MATCH_STRICT_DISC);
}
