#include "geos/interpol/NgmBlockUnfolded.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/error/NbeAssertion.h"
#include "geos/simu/NgmDistributionUniformD.h"

#include <algorithm>
#include <cmath>
#include <memory>

void NgmBlockUnfolded::setCorners(const Corners &corners)
{
  _setCorners(corners);
}

NbgIntVector3D NgmBlockUnfolded::getDiscretizationPointsNumber() const
{
  return _calcPointsNumber();
}

NbgVector3D NgmBlockUnfolded::getDiscretizationStepsSize() const
{
  return _calcStepsSize();
}

NbgVector3D NgmBlockUnfolded::getSize() const
{
  QString why;
  if (!_isSizeDefined(why))
    NBE_FAIL_AT(QStringLiteral("interpol\\NgmBlock"), why);
  return _size;
}

int NgmBlockUnfolded::getDiscretizationPoints(QVector<NbgVector3D> &points) const
{
  _check(true);
  const NbgIntVector3D n = _calcPointsNumber();
  points.resize(int(n.product()));
  NbgVector3D *point = points.data();
  for (int i = 0; i < n.x(); ++i)
    for (int j = 0; j < n.y(); ++j)
      for (int k = 0; k < n.z(); ++k)
        *point++ = _calcDiscretizedPoint(
            _calcTetrahedraWeights({(i + 0.5) / n.x(), (j + 0.5) / n.y(), (k + 0.5) / n.z()}));
  return points.size();
}

void NgmBlockUnfolded::getRandomPoints(qint64 seed, QVector<NbgVector3D> &points,
                                       bool randomW) const
{
  _check(true);
  const NbgIntVector3D n = _calcPointsNumber();
  NgmDistributionUniformD uniform{quint64(seed)};
  points.resize(int(n.product()));
  NbgVector3D *point = points.data();
  for (int i = 0; i < n.x(); ++i)
    for (int j = 0; j < n.y(); ++j)
      for (int k = 0; k < n.z(); ++k) {
        const double u = uniform.nextR();
        const double v = uniform.nextR();
        const double w = randomW && is3D() ? uniform.nextR() : 0.5;
        *point++ = _calcDiscretizedPoint(
            _calcTetrahedraWeights({(i + u) / n.x(), (j + v) / n.y(), (k + w) / n.z()}));
      }
}

NgmBlockUnfolded *NgmBlockUnfolded::getResizedBlock(
    int index, const QList<NbdAVariableNumeric *> &cornerVariables) const
{
  auto block = std::make_unique<NgmBlockUnfolded>(*this);
  if (index >= 0 && !cornerVariables.isEmpty()) {
    if (cornerVariables.size() != 3 * N_CORNERS)
      NBE_FAIL(QStringLiteral("24 corner coordinates are expected."));
    Corners corners;
    for (int i = 0; i < 3 * N_CORNERS; ++i)
      corners[std::size_t(i / 3)][i % 3] = cornerVariables[i]->getValue(index);
    block->_setCorners(corners);
  }
  return block.release();
}

bool NgmBlockUnfolded::isValid() const
{
  return _check(false);
}

QString NgmBlockUnfolded::debug(int level) const
{
  QString text = NgmABlock::debug(level);
  for (const NbgVector3D &corner : _corners)
    text += QStringLiteral("Corner: %1\n").arg(corner.toString());
  return text;
}

void NgmBlockUnfolded::_setCorners(const Corners &corners)
{
  NbgVector3D centre, size;
  for (const NbgVector3D &corner : corners)
    centre += corner / N_CORNERS;
  for (int axis = 0; axis < 3; ++axis)
    for (int first = 0; first < N_CORNERS; ++first) {
      const int second = first | (1 << axis);
      if (second != first)
        size[axis] += 0.25 * (corners[std::size_t(second)] - corners[std::size_t(first)]).norm();
    }
  for (int i = 0; i < N_CORNERS; ++i)
    _corners[std::size_t(i)] = corners[std::size_t(i)] - centre;
  setSize(size);
}

NgmBlockUnfolded::Weights NgmBlockUnfolded::_calcTetrahedraWeights(const NbgVector3D &uvw)
{
  // Seen from the centre, the axes by falling distance choose face and edge.
  const NbgVector3D q = 2. * uvw - NbgVector3D::Unit;
  int axes[] = {0, 1, 2};
  std::stable_sort(axes, axes + 3, [&](int a, int b) { return std::abs(q[a]) > std::abs(q[b]); });
  const double distances[] = {std::abs(q[axes[0]]), std::abs(q[axes[1]])};
  const double ofCentre = 1. - distances[0];
  const double ofFace = distances[0] - distances[1];
  const double ofEdge = distances[1];
  Weights weights;
  for (int corner = 0; corner < N_CORNERS; ++corner) {
    const auto sign = [&](int axis) { return corner >> axis & 1 ? 1. : -1.; };
    const bool isOnFace = sign(axes[0]) * q[axes[0]] > 0.;
    const bool isOnEdge = isOnFace && sign(axes[1]) * q[axes[1]] > 0.;
    double &weight = weights[std::size_t(corner)];
    weight = ofCentre / 8.;
    if (isOnFace)
      weight += ofFace / 4.;
    if (isOnEdge)
      weight += 0.5 * (ofEdge + sign(axes[2]) * q[axes[2]]);
  }
  return weights;
}

NbgVector3D NgmBlockUnfolded::_calcDiscretizedPoint(const Weights &weights) const
{
  NbgVector3D point;
  for (std::size_t i = 0; i < N_CORNERS; ++i)
    point += weights[i] * _corners[i];
  return point;
}
