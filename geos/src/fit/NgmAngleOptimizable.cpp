#include "geos/fit/NgmAngleOptimizable.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgVector3D.h"
#include "geos/fit/NgmIAngleGrid.h"
#include "geos/matrix/NgmMatrix.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace {

constexpr double DEGREE = 0.017453292519943295;
constexpr double PI = 3.14159265358979323846;
constexpr double AT_TARGET = 1e-10;

NbgVector3D directionOf(const NgmAngleOptimizableObject &angles)
{
  const double azimuth = angles.azimuth * DEGREE;
  const double dip = angles.dip * DEGREE;
  return NbgVector3D(std::sin(azimuth) * std::cos(dip), std::cos(azimuth) * std::cos(dip),
                     -std::sin(dip));
}

NgmOptParamId idOf(int angle)
{
  return {0, NgmVModelToBeOptimized::ROT, angle, 0};
}

}  // namespace

NgmAngleOptimizable::~NgmAngleOptimizable() = default;

void NgmAngleOptimizable::checkConsistency() const
{
  if (!_grid)
    throw NbeProgrammingError(QStringLiteral("NgmAngleOptimizable::checkConsistency: no grid"));
}

void NgmAngleOptimizable::_initPreProcess()
{
  _neighbors.clear();
  for (int rank = 0; rank < _grid->getNNeighbors(_target); ++rank) {
    _Neighbor neighbor{{}, 0.};
    if (_grid->getNeighbor(_target, rank, neighbor.angles.azimuth, neighbor.angles.dip,
                           neighbor.distance))
      _neighbors.push_back(neighbor);
  }
  if (_neighbors.empty())
    throw NbeUserError(QObject::tr("No defined angle around target %1").arg(_target));
}

void NgmAngleOptimizable::_initExperience()
{
  _setExperience(QVector<double>(int(_neighbors.size()), 0.), _determineWeights());
}

QVector<double> NgmAngleOptimizable::_determineWeights() const
{
  const bool hasCoincident =
      std::any_of(_neighbors.begin(), _neighbors.end(),
                  [](const _Neighbor &neighbor) { return neighbor.distance < AT_TARGET; });
  QVector<double> weights;
  double sum = 0.;
  for (const _Neighbor &neighbor : _neighbors) {
    const bool isCoincident = neighbor.distance < AT_TARGET;
    const double shared = isCoincident ? 1. : 0.;
    weights << (hasCoincident ? shared : 1. / neighbor.distance);
    sum += weights.last();
  }
  for (double &weight : weights)
    weight /= sum;
  return weights;
}

/// The fit starts from the principal axis of the neighbors, which no sense of theirs changes.
void NgmAngleOptimizable::_initParams()
{
  NgmMatrix tensor(3, 3, true);
  for (std::size_t k = 0; k < _neighbors.size(); ++k) {
    const NbgVector3D u = directionOf(_neighbors[k].angles);
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j <= i; ++j)
        tensor.setElement(i, j, tensor(i, j) + getWeights()[int(k)] * u[i] * u[j]);
    }
  }
  NgmMatrix values;
  NgmMatrix vectors;
  tensor.eigenValues(values, vectors, true, true, 1);
  const double azimuth = std::atan2(vectors(0, 2), vectors(1, 2));
  const double dip = -std::atan2(vectors(2, 2), std::hypot(vectors(0, 2), vectors(1, 2)));
  const NbiIntervalData free = NbiIntervalData::Infinite();
  _addToParams(NgmOptParam(idOf(0), azimuth, free, QObject::tr("Azimuth")));
  _addToParams(NgmOptParam(idOf(1), dip, free, QObject::tr("Dip")));
}

NgmAngleOptimizableObject NgmAngleOptimizable::_applyParams(const NgmOptParamList &params) const
{
  NgmAngleOptimizableObject angles{params[idOf(0)].getValue() / DEGREE,
                                   params[idOf(1)].getValue() / DEGREE};
  _setRotationWithinBounds(angles);
  return angles;
}

void NgmAngleOptimizable::_updateOptimizable(const NgmOptParamList &params)
{
  _angles = _applyParams(params);
  NgmAOptimizable_impl<NgmAngleOptimizableObject>::_updateOptimizable(params);
}

QVector<double> NgmAngleOptimizable::evaluateFunction(const NgmOptParamList &params, bool)
{
  const NgmAngleOptimizableObject angles = _applyParams(params);
  QVector<double> distances;
  distances.reserve(int(_neighbors.size()));
  for (const _Neighbor &neighbor : _neighbors)
    distances << _bestGreatCircleDistance(angles, neighbor.angles);
  return distances;
}

/// In radians, accurate for small and large ones.
double NgmAngleOptimizable::_greatCircleDistance(const NgmAngleOptimizableObject &a,
                                                 const NgmAngleOptimizableObject &b)
{
  const NbgVector3D u = directionOf(a);
  const NbgVector3D v = directionOf(b);
  return std::atan2(u.crossProduct(v).norm(), u.dotProduct(v));
}

double NgmAngleOptimizable::_bestGreatCircleDistance(const NgmAngleOptimizableObject &a,
                                                     const NgmAngleOptimizableObject &b)
{
  const double distance = _greatCircleDistance(a, b);
  return std::min(distance, PI - distance);
}

void NgmAngleOptimizable::_setRotationWithinBounds(NgmAngleOptimizableObject &angles)
{
  double dip = std::remainder(angles.dip, 360.);
  if (std::fabs(dip) > 90.) {
    dip = std::copysign(180., dip) - dip;
    angles.azimuth += 180.;
  }
  angles.dip = dip;
  angles.azimuth = std::fmod(angles.azimuth, 360.);
  if (angles.azimuth < 0.)
    angles.azimuth += 360.;
  if (angles.azimuth >= 360.)
    angles.azimuth = 0.;
}
