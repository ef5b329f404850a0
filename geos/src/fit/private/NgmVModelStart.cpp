#include "fit/private/NgmVModelStart.h"

#include "fit/private/NgmFitWeights.h"
#include "geos/stats/NgmVariogramExpData.h"
#include "geos/vmodel/NgmVStructFactory.h"

#include <algorithm>
#include <cmath>

namespace {

using ToBeOptimized = NgmVModelToBeOptimized;

constexpr double SAME_DIRECTION = 0.9998;  // cosine
constexpr double HORIZONTAL = 0.05;        // vertical component
constexpr double VERTICAL = 0.95;
constexpr double RADIAN = 57.29577951308232;
constexpr int MAXIMUM_DIRECTIONS = 8;
constexpr int GRID_POINTS = 250;
constexpr int GRID_POINTS_3D = 64;
constexpr int SWEEPS = 25;
constexpr double SETTLED = 1e-3;  // change of a sill, in units of the mean of the curve

// A structure that a start leaves without sill would not be found again, so one with all alive is
// taken unless it is so much worse.
constexpr double ALIVE = 0.03;
constexpr double WORSE = 3.;

bool isAutomatic(const ToBeOptimized &model, int k, ToBeOptimized::ParamType type, int index)
{
  return model.isAutomatic(k, type, index, 0);
}

bool isHorizontal(const NbgVector3D &direction)
{
  return std::fabs(direction.z()) < HORIZONTAL;
}

/// Sills >= 0 of the columns `columns` of the normal equations G s = b, by coordinate descent.
/// Returns s'Gs - 2 b's.
double solveSills(const std::vector<double> &gram, const std::vector<double> &rhs,
                  const std::vector<int> &columns, std::vector<double> &sills)
{
  const std::size_t size = rhs.size();
  const std::size_t n = columns.size();
  sills.assign(n, 0.);
  for (int sweep = 0; sweep < SWEEPS; ++sweep) {
    double change = 0.;
    for (std::size_t a = 0; a < n; ++a) {
      const double *row = gram.data() + std::size_t(columns[a]) * size;
      double residual = rhs[std::size_t(columns[a])];
      for (std::size_t b = 0; b < n; ++b)
        residual -= row[columns[b]] * sills[b];
      const double diagonal = row[columns[a]];
      const double sill = diagonal > 0. ? std::max(0., sills[a] + residual / diagonal) : sills[a];
      change = std::max(change, std::fabs(sill - sills[a]));
      sills[a] = sill;
    }
    if (change < SETTLED)
      break;
  }
  double value = 0.;
  for (std::size_t a = 0; a < n; ++a) {
    const double *row = gram.data() + std::size_t(columns[a]) * size;
    double product = -2. * rhs[std::size_t(columns[a])];
    for (std::size_t b = 0; b < n; ++b)
      product += row[columns[b]] * sills[b];
    value += product * sills[a];
  }
  return value;
}

}  // namespace

/// Normal equations of one variable for all curves that may take part.
struct NgmVModelStart::_Products
{
  std::vector<double> gram;
  std::vector<double> rhs;
  double squares = 0.;

  _Products(const _Curve &curve, const std::vector<std::vector<double>> &columns)
      : gram(columns.size() * columns.size()), rhs(columns.size())
  {
    const std::size_t n = columns.size();
    for (std::size_t h = 0; h < curve.values.size(); ++h)
      squares += curve.weights[h] * curve.values[h] * curve.values[h];
    for (std::size_t a = 0; a < n; ++a) {
      for (std::size_t h = 0; h < curve.values.size(); ++h)
        rhs[a] += curve.weights[h] * curve.values[h] * columns[a][h];
      for (std::size_t b = 0; b <= a; ++b) {
        double sum = 0.;
        for (std::size_t h = 0; h < curve.values.size(); ++h)
          sum += curve.weights[h] * columns[a][h] * columns[b][h];
        gram[a * n + b] = gram[b * n + a] = sum;
      }
    }
  }
};

NgmVModelStart::NgmVModelStart(const NgmVariogramExpData &data, const NgmVModelToBeOptimized &model)
{
  _readCurves(data, std::min(model.getNVariables(), data.getNVariables()));
  _readDirections(data);
  _keepsAxes = !model.getAuthRotation();
  _chooseRanges(model.getNStructures(), model.getContext().getNDimensions() > 2);
}

void NgmVModelStart::_readCurves(const NgmVariogramExpData &data, int nVariables)
{
  const bool isCova = !data.hasVario(NgmEVarioExp::VARIOGRAM);
  if (isCova && !data.hasCova(NgmECovaExp::COVARIANCE))
    return;
  _curves.resize(std::size_t(nVariables));
  for (int v = 0; v < nVariables; ++v) {
    _Curve &curve = _curves[std::size_t(v)];
    for (int dir = 0; dir < data.getNDirections(); ++dir) {
      const QVector<double> distances = data.getDistances(dir, isCova, v, v);
      const QVector<qint64> counts = data.getNumberOfPairs(dir, isCova, v, v);
      const QVector<double> values =
          isCova ? data.getCovaColumn(dir, NgmECovaExp::EValue::COVARIANCE, v, v)
                 : data.getVarioColumn(dir, NgmEVarioExp::EValue::VARIOGRAM, v, v);
      const double origin = isCova ? values[values.size() / 2] : 0.;
      for (int lag = 0; lag < values.size(); ++lag) {
        const double weight = NgmFitWeights().raw(distances[lag], double(counts[lag]));
        if (!(weight > 0.) || !NbbGlobal::isDefined(values[lag]))
          continue;
        NbgVector3D h = data.getDirectionVector(dir);
        h *= distances[lag];
        curve.lags.append(h);
        curve.values.push_back(isCova ? origin - values[lag] : values[lag]);
        curve.weights.push_back(weight * weight);
        _largest = std::max(_largest, distances[lag]);
        _smallest = _smallest > 0. ? std::min(_smallest, distances[lag]) : distances[lag];
      }
    }
    double sum = 0.;
    for (double value : curve.values)
      sum += value;
    curve.unit = sum > 0. ? sum / double(curve.values.size()) : 1.;
    for (double &value : curve.values)
      value /= curve.unit;
  }
}

void NgmVModelStart::_readDirections(const NgmVariogramExpData &data)
{
  for (int dir = 0; dir < data.getNDirections(); ++dir) {
    const NbgVector3D direction = data.getDirectionVector(dir);
    const bool isKnown =
        std::any_of(_directions.cbegin(), _directions.cend(), [&](const NbgVector3D &other) {
          return std::fabs(other.dotProduct(direction)) > SAME_DIRECTION;
        });
    if (isKnown || data.getMaximumDistance(dir) <= 0.)
      continue;
    _directions << direction;
    _nHorizontal += isHorizontal(direction) ? 1 : 0;
    _hasOblique = _hasOblique || (!isHorizontal(direction) && std::fabs(direction.z()) < VERTICAL);
  }
}

void NgmVModelStart::_chooseRanges(int nStructures, bool is3D)
{
  const int points = is3D ? GRID_POINTS_3D : GRID_POINTS;
  const int count =
      std::max(2, std::min(9, int(std::pow(points, 1. / std::max(1, nStructures)) + 1e-9)));
  const double first = std::max(1.5 * _smallest, 0.06 * _largest);
  const double last = 1.4 * _largest;
  for (int r = 0; r < count; ++r)
    _ranges.push_back(first * std::pow(last / first, double(r) / (count - 1)));
}

void NgmVModelStart::apply(NgmVModelToBeOptimized &model) const
{
  if (model.getFitSillsOnly() || _curves.empty() || !(_largest > 0.))
    return;
  _restrict(model);
  _Best best;
  const QList<_Frame> frames = _frames(model);
  for (const _Frame &frame : frames)
    _search(model, frame, best);
  if (best.choice.empty() && model.getNStructures() > 0)
    return;
  _applyGeometry(model, best);
  _applySills(model, best);
}

/// An ellipse in the plane takes three directions to show, an ellipsoid six.
void NgmVModelStart::_restrict(NgmVModelToBeOptimized &model) const
{
  const int n = _directions.size();
  const bool is3D = model.getContext().getNDimensions() > 2;
  if (n < 2) {
    model.setAuthAniso(false);
    return;
  }
  const bool isTurned = is3D ? _nHorizontal >= 3 || (n >= 6 && _hasOblique) : n >= 3;
  if (!isTurned)
    model.setAuthRotation(false);
  else if (is3D && !(n >= 6 && _hasOblique))
    model.setLockRot2D(true);
  if (is3D && _nHorizontal < 2 && !_hasOblique)
    model.setLockIso2D(true);
}

/// Axes along the directions, for curves that cannot show others.
NbgRotation NgmVModelStart::_directionFrame() const
{
  for (const NbgVector3D &direction : _directions) {
    if (isHorizontal(direction))
      return NbgRotation(std::atan2(direction.y(), direction.x()) * RADIAN, 0., 0.);
  }
  return NbgRotation();
}

QList<NgmVModelStart::_Frame> NgmVModelStart::_frames(const NgmVModelToBeOptimized &model) const
{
  QList<_Frame> plane{{_directionFrame(), NbgVector3D(1., 1., 1.)}};
  if (!model.getAuthAniso())
    return plane;
  if (!model.getLockIso2D()) {
    const int count = std::min(int(_directions.size()), MAXIMUM_DIRECTIONS);
    for (int d = 0; d < count; ++d) {
      if (!isHorizontal(_directions[d]))
        continue;
      const double angle = std::atan2(_directions[d].y(), _directions[d].x()) * RADIAN;
      const bool isTurned = model.getAuthRotation();
      const NbgRotation rotation = isTurned ? NbgRotation(angle, 0., 0.) : _directionFrame();
      for (double ratio : {0.6, 0.35, 0.18})
        plane << _Frame{rotation, NbgVector3D(1., ratio, 1.)};
      if (isTurned)
        continue;
      for (double ratio : {1.6, 3., 6.})
        plane << _Frame{rotation, NbgVector3D(1., ratio, 1.)};
      break;
    }
  }
  if (model.getContext().getNDimensions() < 3 || model.getLockNo3D())
    return plane;

  QList<_Frame> frames;
  for (const _Frame &frame : qAsConst(plane)) {
    for (double ratio : {1., 0.4, 0.15, 0.05})
      frames << _Frame{frame.rotation, NbgVector3D(1., frame.ratios.y(), ratio)};
  }
  if (model.getAuthRotation() && !model.getLockRot2D()) {
    for (const NbgVector3D &direction : _directions)
      frames << _Frame{NbgRotation::fromDirection(direction), NbgVector3D(1., 0.3, 0.3)};
  }
  return frames;
}

std::unique_ptr<NgmAVStruct> NgmVModelStart::_structureAt(const NgmVModelToBeOptimized &model,
                                                          int k, const _Frame &frame,
                                                          double range) const
{
  std::unique_ptr<NgmAVStruct> structure = NgmVStructFactory::createVStruct(model.getStructure(k));
  if (!structure->isScaleFactorSignificant())
    return structure;
  const NbgVector3D known = structure->getPracticalRanges();
  NbgVector3D ranges;
  for (int axis = 0; axis < 3; ++axis) {
    const bool isFree = isAutomatic(model, k, ToBeOptimized::RANGE, axis);
    ranges[axis] =
        isFree ? model.getBounds(k, ToBeOptimized::RANGE, axis, 0).fit(range * frame.ratios[axis])
               : known[axis];
    // A third axis that is not fitted keeps the range of the model.
    if (axis == 2 && isFree && model.getLockNo3D() && model.getAuthAniso())
      ranges[axis] = known[axis];
  }
  structure->setRanges(ranges);
  if (!_keepsAxes && isAutomatic(model, k, ToBeOptimized::ROT, 0))
    structure->setRotation(frame.rotation);
  return structure;
}

bool NgmVModelStart::_isRedundant(const NgmVModelToBeOptimized &model,
                                  const std::vector<int> &choice) const
{
  for (std::size_t k = 1; k < choice.size(); ++k) {
    const bool isSameType =
        model.getStructure(int(k)).getType() == model.getStructure(int(k) - 1).getType();
    if (isSameType && isAutomatic(model, int(k), ToBeOptimized::RANGE, 0) &&
        isAutomatic(model, int(k) - 1, ToBeOptimized::RANGE, 0) && choice[k] <= choice[k - 1])
      return true;
  }
  return false;
}

/// Every structure has a share in the sill of some variable.
bool NgmVModelStart::_areAlive(const std::vector<std::vector<double>> &sills, std::size_t first)
{
  for (std::size_t k = first; k < sills.front().size(); ++k) {
    const bool isAlive =
        std::any_of(sills.begin(), sills.end(),
                    [k](const std::vector<double> &variable) { return variable[k] > ALIVE; });
    if (!isAlive)
      return false;
  }
  return true;
}

void NgmVModelStart::_search(const NgmVModelToBeOptimized &model, const _Frame &frame,
                             _Best &best) const
{
  const int nStructures = model.getNStructures();
  const int nRanges = int(_ranges.size());

  std::vector<_Products> products;
  for (const _Curve &curve : _curves) {
    std::vector<std::vector<double>> columns{std::vector<double>(curve.lags.size(), 1.)};
    for (int k = 0; k < nStructures; ++k) {
      for (double range : _ranges) {
        std::vector<double> column(curve.lags.size());
        calcUnitVariogram(*_structureAt(model, k, frame, range), curve.lags, column.data());
        columns.push_back(std::move(column));
      }
    }
    products.emplace_back(curve, columns);
  }

  std::vector<int> choice(std::size_t(nStructures), 0);
  std::vector<int> columns;
  std::vector<std::vector<double>> sills(_curves.size());
  for (bool isLast = false; !isLast;) {
    if (!_isRedundant(model, choice)) {
      columns.clear();
      if (model.getFitNugget())
        columns.push_back(0);
      for (int k = 0; k < nStructures; ++k)
        columns.push_back(1 + k * nRanges + choice[std::size_t(k)]);
      double score = 0.;
      for (std::size_t v = 0; v < products.size(); ++v)
        score +=
            products[v].squares + solveSills(products[v].gram, products[v].rhs, columns, sills[v]);
      score = std::max(score, 0.) + 1e-12;
      if (!_areAlive(sills, model.getFitNugget() ? 1 : 0))
        score *= WORSE;
      if (score < best.score)
        best = {score, frame, choice, sills};
    }
    isLast = true;
    for (int k = 0; k < nStructures && isLast; ++k) {
      int &rank = choice[std::size_t(k)];
      const NgmAVStruct &structure = model.getStructure(k);
      const bool isFree =
          structure.isScaleFactorSignificant() && isAutomatic(model, k, ToBeOptimized::RANGE, 0);
      rank = isFree ? (rank + 1) % nRanges : 0;
      isLast = rank == 0;
    }
  }
}

void NgmVModelStart::_applyGeometry(NgmVModelToBeOptimized &model, const _Best &best) const
{
  for (int k = 0; k < model.getNStructures(); ++k) {
    if (!model.getStructure(k).isScaleFactorSignificant())
      continue;
    const double range = _ranges[std::size_t(best.choice[std::size_t(k)])];
    const std::unique_ptr<NgmAVStruct> structure = _structureAt(model, k, best.frame, range);
    model.setRanges(k, structure->getPracticalRanges());
    model.setRotation(k, structure->getRotation());
  }
}

void NgmVModelStart::_applySills(NgmVModelToBeOptimized &model, const _Best &best) const
{
  const int first = model.getFitNugget() ? 1 : 0;
  for (int k = -first; k < model.getNStructures(); ++k) {
    double value = 0.;
    const int structure = k < 0 ? -1 : k;
    if (model.isLocked(value, structure, ToBeOptimized::SILL, 0, 0))
      continue;
    NgmMatrix sills(model.getNVariables(), model.getNVariables(), true);
    for (std::size_t v = 0; v < _curves.size(); ++v)
      sills.setElement(int(v), int(v), best.sills[v][std::size_t(k + first)] * _curves[v].unit);
    if (structure < 0)
      model.setNuggetMatrix(sills);
    else
      model.setCoregionalisationMatrix(structure, sills);
  }
}
