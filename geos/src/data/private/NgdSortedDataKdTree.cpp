#include "geos/data/NgdSortedDataKdTree.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdVariableAlpha.h"
#include "basic/error/NbeAssertion.h"
#include "data/private/NgdKdTree.h"
#include "data/private/NgdNearestSet.h"
#include "geos/data/NgdADataSet.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

/// Beyond this number the nearest samples are found by sorting all of them.
constexpr int mostInOrder = 256;

/// Collects every point within a bound.
class WithinSet
{
public:
  WithinSet(double bound, const unsigned *order, std::vector<int> &ranks)
      : _bound(bound), _order(order), _ranks(ranks)
  {
    _ranks.clear();
  }

  double bound() const { return _bound; }
  void offer(double, unsigned position) { _ranks.push_back(int(_order[position])); }

private:
  double _bound;
  const unsigned *_order;
  std::vector<int> &_ranks;
};

}  // namespace

class NgdSortedDataKdTree::Index
{
public:
  virtual ~Index() = default;
  virtual int count() const = 0;
  virtual double boxVolume() const = 0;
  virtual const unsigned *order() const = 0;
  virtual double squaredDistance(const double *point, unsigned position) const = 0;
  virtual void nearest(const double *point, NgdNearestSet &set) const = 0;
  virtual void within(const double *point, WithinSet &set) const = 0;
  virtual void nearestWeighted(const double *point, const double *weights, double squaredRadius,
                               NgdNearestSet &set) const = 0;
};

template <int nDim>
class NgdSortedDataKdTree::IndexOfDimension : public NgdSortedDataKdTree::Index
{
public:
  explicit IndexOfDimension(const std::vector<double> &coordinates) : _tree(coordinates) {}

  int count() const override { return _tree.count(); }
  double boxVolume() const override { return _tree.boxVolume(); }
  const unsigned *order() const override { return _tree.order(); }
  double squaredDistance(const double *point, unsigned position) const override
  {
    return _tree.squaredDistance(point, position);
  }
  void nearest(const double *point, NgdNearestSet &set) const override { _tree.search(point, set); }
  void within(const double *point, WithinSet &set) const override { _tree.search(point, set); }
  void nearestWeighted(const double *point, const double *weights, double squaredRadius,
                       NgdNearestSet &set) const override
  {
    _tree.searchWeighted(point, weights, squaredRadius, set);
  }

private:
  NgdKdTree<nDim> _tree;
};

NgdSortedDataKdTree::NgdSortedDataKdTree() : _scale(1., 1., 1.) {}

NgdSortedDataKdTree::~NgdSortedDataKdTree() = default;

void NgdSortedDataKdTree::setSystem(const NbgVector3D &origin, const NbgRotation &rotation,
                                    const NbgVector3D &scale)
{
  _origin = origin;
  _rotation = rotation;
  _scale = scale;
  _identity =
      origin == NbgVector3D() && rotation.isIdentity(0.) && scale == NbgVector3D(1., 1., 1.);
}

void NgdSortedDataKdTree::loadData(const NgdADataSet *dataSet)
{
  if (!dataSet)
    NBE_FAIL(QStringLiteral("Dataset is nullptr."));
  if (_index)
    NBE_FAIL(QStringLiteral("Sorted Data is already built"));
  // A copy that knows no other variables: loading fills all that are bound.
  const std::unique_ptr<NgdADataSet> asked(dataSet->clone());
  asked->clearOtherRoles(
      {Nbd::Role::X, Nbd::Role::Y, Nbd::Role::Z, Nbd::Role::SN, _numericRole, _alphaRole});
  auto points = std::make_unique<NbdDataPoints>();
  if (!_macroRanks.isEmpty())
    points->setMacroRanks(_macroRanks);
  asked->createAllVariables(*points, true, true);
  if (asked->getNSamples() > 0)
    asked->loadAllPointsInBuffer(*points);
  points->setNDimensions(asked->getNDimensions());
  points->ensureCoordinates();
  build(*points);
  _loaded = std::move(points);
  _dataSet = dataSet;
}

NbgVector3D NgdSortedDataKdTree::getCoords(int rank) const
{
  if (!_loaded || rank < 0 || rank >= _loaded->getNSamples())
    NBE_FAIL(QStringLiteral("No sample of rank %1 is loaded").arg(rank));
  return _loaded->getLocation(rank);
}

QList<NbdAVariable *> NgdSortedDataKdTree::getVariables(const QString &role) const
{
  return _loaded ? _loaded->getDataTableConst().getVars(role) : QList<NbdAVariable *>();
}

QList<NbdAVariableNumeric *> NgdSortedDataKdTree::getNumericVariables(const QString &role) const
{
  return _loaded ? _loaded->getDataTableConst().getVarsNumeric(role)
                 : QList<NbdAVariableNumeric *>();
}

QList<NbdVariableAlpha *> NgdSortedDataKdTree::getAlphaVariables(const QString &role) const
{
  return _loaded ? _loaded->getDataTableConst().getVarsAlpha(role) : QList<NbdVariableAlpha *>();
}

QList<NbdAVariable *> NgdSortedDataKdTree::getAllVars() const
{
  return _loaded ? _loaded->getDataTableConst().getAllVars() : QList<NbdAVariable *>();
}

void NgdSortedDataKdTree::build(const NbdDataPoints &points)
{
  if (_index)
    NBE_FAIL(QStringLiteral("Sorted Data is already built"));
  if (points.getNDimensions() != _nDimensions)
    NBE_FAIL(QStringLiteral("Points Data and Sorted Data have not the same dimension."));

  const int n = points.getNSamples();
  std::vector<double> x(n), y(n), z(n), coordinates(std::size_t(n) * _nDimensions);
  points.getLocations(0, n, x.data(), y.data(), z.data());
  double largest = 0.;
  double *to = coordinates.data();
  for (int rank = 0; rank < n; ++rank) {
    const NbgVector3D location(x[rank], y[rank], z[rank]);
    const NbgVector3D point = _toFrame(location);
    for (int axis = 0; axis < _nDimensions; ++axis) {
      *to++ = point[axis];
      largest = std::max({largest, std::abs(location[axis]), std::abs(point[axis])});
    }
  }
  _coordinateError = 16. * std::numeric_limits<double>::epsilon() * largest;

  switch (_nDimensions) {
    case 1:
      _index = std::make_unique<IndexOfDimension<1>>(coordinates);
      break;
    case 2:
      _index = std::make_unique<IndexOfDimension<2>>(coordinates);
      break;
    default:
      _index = std::make_unique<IndexOfDimension<3>>(coordinates);
      break;
  }
}

void NgdSortedDataKdTree::clear()
{
  _index.reset();
  _loaded.reset();
  _dataSet = nullptr;
}

int NgdSortedDataKdTree::getNData() const
{
  return _index ? _index->count() : 0;
}

double NgdSortedDataKdTree::estimateWithin(double squaredRadius) const
{
  if (!_index)
    return 0.;
  static constexpr double unitBalls[] = {2., M_PI, 4. / 3. * M_PI};
  const double ball = unitBalls[_nDimensions - 1] * std::pow(squaredRadius, 0.5 * _nDimensions);
  const double volume = _index->boxVolume();
  return getNData() * (ball < volume ? ball / volume : 1.);
}

void NgdSortedDataKdTree::proposeNearest(const NbgVector3D &point, int count, double squaredRadius,
                                         const unsigned char *usable, Proposals &proposals) const
{
  proposals.count = 0;
  if (getNData() == 0 || count < 1)
    return;
  const NbgVector3D local = _toFrame(point);
  const double target[3] = {local.x(), local.y(), local.z()};
  const NgdWidening widening(_coordinateError);
  NgdNearestSet set(count, widening(squaredRadius), usable, _index->order(), widening,
                    proposals.keys);
  _index->nearest(target, set);
  _take(set, proposals);
}

void NgdSortedDataKdTree::proposeNearestUnscaled(const NbgVector3D &point, int count,
                                                 double squaredRadius, const unsigned char *usable,
                                                 Proposals &proposals) const
{
  proposals.count = 0;
  if (getNData() == 0 || count < 1)
    return;
  const NbgVector3D local = _toFrame(point);
  const double target[3] = {local.x(), local.y(), local.z()};
  const NbgVector3D toUnscaled = _scale.inverse();
  const NbgVector3D squared = toUnscaled.componentsProduct(toUnscaled);
  const double weights[3] = {squared.x(), squared.y(), squared.z()};
  // Rounding in the frame moves an unscaled coordinate by so much more.
  double stretch = 0.;
  for (int axis = 0; axis < _nDimensions; ++axis)
    stretch = std::max(stretch, toUnscaled[axis]);
  const NgdWidening widening(_coordinateError * stretch);
  NgdNearestSet set(count, std::numeric_limits<double>::max(), usable, _index->order(), widening,
                    proposals.keys);
  _index->nearestWeighted(target, weights, NgdWidening(_coordinateError)(squaredRadius), set);
  _take(set, proposals);
}

void NgdSortedDataKdTree::proposeWithin(const NbgVector3D &point, double squaredRadius,
                                        Proposals &proposals) const
{
  _findWithin(_toFrame(point), NgdWidening(_coordinateError)(squaredRadius), proposals);
}

/// Positions become ranks.
void NgdSortedDataKdTree::_take(const NgdNearestSet &set, Proposals &proposals) const
{
  proposals.count = set.count();
  if (proposals.ranks.size() < std::size_t(proposals.count))
    proposals.ranks.resize(std::size_t(proposals.count));
  const unsigned *order = _index->order();
  for (int i = 0; i < proposals.count; ++i)
    proposals.ranks[std::size_t(i)] = int(order[set.position(i)]);
}

/// The samples up to a squared distance from a point of the frame.
void NgdSortedDataKdTree::_findWithin(const NbgVector3D &local, double bound,
                                      Proposals &proposals) const
{
  proposals.count = 0;
  if (getNData() == 0)
    return;
  const double target[3] = {local.x(), local.y(), local.z()};
  WithinSet set(bound, _index->order(), proposals.ranks);
  _index->within(target, set);
  proposals.count = int(proposals.ranks.size());
}

void NgdSortedDataKdTree::knnSearch(const NbgVector3D &point, int count, QVector<int> &ranks) const
{
  QVector<double> squaredDistances;
  knnSearch(point, count, ranks, squaredDistances);
}

void NgdSortedDataKdTree::knnSearch(const NbgVector3D &point, int count, QVector<int> &ranks,
                                    QVector<double> &squaredDistances) const
{
  ranks.clear();
  squaredDistances.clear();
  if (getNData() == 0 || count < 1)
    return;
  const NbgVector3D local = _toFrame(point);
  const double target[3] = {local.x(), local.y(), local.z()};
  std::vector<std::pair<double, int>> nearest;
  const auto add = [&](unsigned position) {
    const double squaredDistance = _index->squaredDistance(target, position);
    if (std::isfinite(squaredDistance))
      nearest.emplace_back(squaredDistance, int(_index->order()[position]));
  };
  if (count > mostInOrder) {
    for (int position = 0; position < getNData(); ++position)
      add(unsigned(position));
  } else {
    const NgdWidening widening(_coordinateError);
    std::vector<double> keys;
    NgdNearestSet set(count, std::numeric_limits<double>::max(), nullptr, _index->order(), widening,
                      keys);
    _index->nearest(target, set);
    for (int i = 0; i < set.count(); ++i)
      add(set.position(i));
  }
  std::sort(nearest.begin(), nearest.end());
  if (int(nearest.size()) > count)
    nearest.resize(std::size_t(count));
  for (const auto &[squaredDistance, rank] : nearest) {
    ranks << rank;
    squaredDistances << squaredDistance;
  }
}

void NgdSortedDataKdTree::knnSearch(const NbgVector3D &point, QVector<int> &ranks) const
{
  knnSearch(point, getNData(), ranks);
}

void NgdSortedDataKdTree::knnSearch(const NbgVector3D &point, QVector<int> &ranks,
                                    QVector<double> &distances) const
{
  knnSearch(point, getNData(), ranks, distances);
  for (double &distance : distances)
    distance = std::sqrt(distance);
}

void NgdSortedDataKdTree::radiusSearch(const NbgVector3D &point, double radius,
                                       QVector<int> &ranks) const
{
  ranks.clear();
  if (!_index || !(radius >= 0.))
    return;
  Proposals proposals;
  _findWithin(_toFrame(point), radius * radius, proposals);
  ranks = QVector<int>(proposals.ranks.begin(), proposals.ranks.end());
  std::sort(ranks.begin(), ranks.end());
}

QString NgdSortedDataKdTree::debug(int) const
{
  return QStringLiteral("Is 3D = %1\nNb Data = %2\n")
      .arg(_nDimensions == 3 ? QStringLiteral("true") : QStringLiteral("false"),
           QString::number(getNData()));
}

NbgVector3D NgdSortedDataKdTree::_toFrame(const NbgVector3D &point) const
{
  if (_identity)
    return point;
  return _rotation.worldToLocal(point - _origin).componentsProduct(_scale);
}
