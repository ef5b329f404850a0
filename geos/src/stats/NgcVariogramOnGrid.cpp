#include "geos/stats/NgcVariogramOnGrid.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdDataGridSampled.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeMemoryError.h"
#include "basic/error/NbeUserError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpIProviderR.h"
#include "geos/base/NgwAThread.h"
#include "geos/data/NgdDataSetGrid.h"
#include "stats/private/NgcColumns.h"
#include "stats/private/NgcGridPairs.h"
#include "stats/private/NgcSampledGridIterator.h"

#include <QMutexLocker>
#include <QObject>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <set>

namespace {

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// Part of a cell by which a point may miss a border and still stand on it.
constexpr double BORDER_TOLERANCE = 1e-9;

void throwNotEnoughMemory()
{
  throw NbeMemoryError(QObject::tr("There is not enough memory to handle the grid data."));
}

/// The next larger step of an axis with `n` nodes that divides all increments, whose greatest
/// common divisor is `divisor` (0 when all are 0); 0 when there is none.
int nextStep(int step, int divisor, int n)
{
  const int largest = divisor > 0 ? divisor : n;
  for (++step; step <= largest; ++step) {
    if (divisor == 0 || divisor % step == 0)
      return step;
  }
  return 0;
}

/// Values of a variable at the selected nodes; the others are not a number.
std::vector<double> readColumn(const NbdAData &buffer, const NbdAVariableNumeric &variable)
{
  std::vector<double> values = NgcColumns::read(variable);
  const NbdVariableSelection *selection = buffer.getSelection();
  const unsigned char *selected = selection ? selection->getArrayConst() : nullptr;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (selected && !selected[i])
      values[i] = NOT_A_NUMBER;
  }
  return values;
}

}  // namespace

/// Makes the map of one buffer after another.
class NgcVariogramOnGrid::Worker : public NgwAThread
{
public:
  Worker(NgwThreadPool *pool, NgcVariogramOnGrid *calculator)
      : NgwAThread(pool), _calculator(calculator)
  {
    for (const NbgIntVector3D &h : _calculator->_increments) {
      const NbgIntVector3D &step = _calculator->_step;
      _increments.emplace_back(h.x() / step.x(), h.y() / step.y(), h.z() / step.z());
    }
    _nPairs.resize(_increments.size());
    _sums.resize(_increments.size());
  }

protected:
  void _run() override
  {
    while (const std::unique_ptr<NbdDataGridSampled> buffer{_calculator->getNextBuffer()}) {
      NgaVariogramOnGrid map(_calculator->_mapGeometry, _calculator->_nVariables,
                             _calculator->_computeCross, buffer->getMacroRanks().first());
      _addBuffer(*buffer, map);
      _calculator->saveVmap(map);
    }
  }

private:
  void _addBuffer(const NbdDataGridSampled &buffer, const NgaVariogramOnGrid &map)
  {
    if (!_pairs)
      _pairs = std::make_unique<NgcGridPairs>(buffer.getNodesNumber(), _increments);
    std::vector<std::vector<double>> values;
    for (const NbdAVariableNumeric *variable :
         buffer.getDataTableConst().getVarsNumeric(Nbd::Role::V))
      values.push_back(readColumn(buffer, *variable));
    for (int i = 0; i < map.getNVariables(); ++i) {
      for (int j = i; j < (map.hasCross() ? map.getNVariables() : i + 1); ++j) {
        _pairs->setVariables(values[i].data(), values[j].data());
        _sumPairs();
        _addToMap(map, i, j);
      }
    }
  }

  void _sumPairs()
  {
    _calculator->_checkForProgressStop();
    if (_calculator->_useFFT) {
      _pairs->sumByFourier(_nPairs.data(), _sums.data());
      return;
    }
    for (std::size_t h = 0; h < _increments.size(); ++h) {
      _calculator->_checkForProgressStop();
      _pairs->sumDirect(int(h), _nPairs[h], _sums[h]);
    }
  }

  void _addToMap(const NgaVariogramOnGrid &map, int i, int j) const
  {
    double *nPairs = map.getNPairs(i, j).getArray();
    double *sums = map.getVarioSum(i, j).getArray();
    const NbgIntVector3D &center = _calculator->_extension;
    for (std::size_t h = 0; h < _increments.size(); ++h) {
      NbgIntVector3D cell = _calculator->_increments[int(h)];
      cell += center;
      const qint64 rank = map.getGeometry().getRankFromIJK(cell);
      nPairs[rank] += _nPairs[h];
      sums[rank] += _sums[h];
    }
  }

  NgcVariogramOnGrid *_calculator;
  std::vector<NbgIntVector3D> _increments;  // in steps
  std::unique_ptr<NgcGridPairs> _pairs;
  std::vector<double> _nPairs;
  std::vector<double> _sums;
};

NgcVariogramOnGrid::NgcVariogramOnGrid() = default;

NgcVariogramOnGrid::~NgcVariogramOnGrid()
{
  _finish();
}

void NgcVariogramOnGrid::setInputDataSet(const NgdADataSet &dataSet)
{
  _setDataset(Nbd::Dataset::INPUT, dataSet);
}

void NgcVariogramOnGrid::addDirection(const NbgVector3D &direction, double lag, int nLags,
                                      const QStringList &groupNames)
{
  QMap<int, QString> groups;
  for (const QString &name : groupNames)
    groups[groups.size()] = name;
  _addDirection(direction, lag, nLags, groups, false);
}

void NgcVariogramOnGrid::addDirection(const NbgVector3D &direction, double lag, int nLags,
                                      const QMap<int, QString> &groupNamesByRank)
{
  _addDirection(direction, lag, nLags, groupNamesByRank, true);
}

void NgcVariogramOnGrid::_addDirection(const NbgVector3D &vector, double lag, int nLags,
                                       const QMap<int, QString> &groups, bool hasRanks)
{
  if (!vector.isDefined() || !(vector.norm() > 0.) || !(lag > 0.) || nLags < 1)
    NBE_FAIL(QStringLiteral("direction.norm() > 0 && lag > 0 && nLags > 0"));
  _directions.append({vector.normalized(), lag, nLags, groups, hasRanks});
}

void NgcVariogramOnGrid::setReferencePlane(const NbgRotation &plane)
{
  _referencePlane = std::make_unique<NbgRotation>(plane);
}

void NgcVariogramOnGrid::setDecimation(double ratio)
{
  if (!(ratio >= 1e-5 && ratio <= 1.))
    NBE_FAIL(QStringLiteral("Invalid parameter"));
  _decimation = ratio;
}

const NgdDataSetGrid &NgcVariogramOnGrid::getGridDataset() const
{
  const auto *grid = dynamic_cast<const NgdDataSetGrid *>(_getDataset(Nbd::Dataset::INPUT));
  if (!grid)
    NBE_FAIL(QStringLiteral("No grid dataset defined!"));
  return *grid;
}

NbgGeomGrid NgcVariogramOnGrid::getVMapGeometry() const
{
  const NbgGeomGrid &grid = getGridDataset().getGeometry();
  NbgGeomGrid map;
  map.setCellSize(grid.getCellSize());
  map.setRotation(grid.getRotation());
  const int nx = 2 * _extension.x() + 1, ny = 2 * _extension.y() + 1;
  if (grid.is2D())
    map.setNodesNumber2D(nx, ny);
  else
    map.setNodesNumber(nx, ny, 2 * _extension.z() + 1);
  const NbgVector3D &cell = grid.getCellSize();
  map.setOriginCentered(map.getRotation().localToWorld(NbgVector3D(
      -_extension.x() * cell.x(), -_extension.y() * cell.y(), -_extension.z() * cell.z())));
  return map;
}

void NgcVariogramOnGrid::getDecimationAndBufferExtension(NbgIntVector3D &decimation,
                                                         NbgIntVector3D &extension) const
{
  decimation = _step;
  extension = _extension;
}

NbdDataGridSampled *NgcVariogramOnGrid::getNextBuffer()
{
  QMutexLocker lock(&_getMutex());
  int nSkipped = 0;
  NbdAData *buffer = _takeNextBuffer(nSkipped);
  _incrementCounter(nSkipped + (buffer ? 1 : 0));
  return static_cast<NbdDataGridSampled *>(buffer);
}

// A realization is one buffer: maps are never added up in an order that threads decide.
void NgcVariogramOnGrid::saveVmap(const NgaVariogramOnGrid &map)
{
  QMutexLocker lock(&_getMutex());
  std::unique_ptr<NgaVariogramOnGrid> &kept = _maps[map.getMacroRank()];
  if (kept)
    kept->doSum(map);
  else
    kept = std::make_unique<NgaVariogramOnGrid>(map);
}

const NgmVariogramExpData &NgcVariogramOnGrid::getResults(int realization) const
{
  if (!isCompleted() || realization < 0 || realization >= _results.size())
    NBE_FAIL(QStringLiteral("isCompleted() && realization >= 0 && realization < getNResults()"));
  return _results[realization];
}

// The run.

void NgcVariogramOnGrid::_checkDatasets()
{
  const NgdDataSetGrid &grid = getGridDataset();
  const auto all = NbiIntervalIntLarge::fromLength(grid.getNSamples());
  if (all.isEmpty() || grid.getDataProvider()->getSelectedSampleCount(all) == 0)
    throw NbeUserError(QObject::tr(
        "WARNING: nothing to do, there is no selected data in the input grid dataset."));
}

void NgcVariogramOnGrid::_addRuntimeConstraints()
{
  if (_directions.isEmpty())
    NBE_FAIL(QStringLiteral("No direction defined."));
  const QString input = Nbd::Dataset::INPUT;
  if (!getGridDataset().hasMacroVariablesWithRole(Nbd::Role::V)) {
    _addVariableRule(input, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
    return;
  }
  _addMacroRule(input, Nbd::Role::V, Nbd::ACCESS_READ, Nbd::TYPE_DOUBLE, 1, -1);
  _getRules().setRuleMacroByPiece(input, Nbd::Role::V, true);
}

const NgdADataSet *NgcVariogramOnGrid::_bufferDataset() const
{
  return &getGridDataset();
}

void NgcVariogramOnGrid::_preProcessing()
{
  _setProgressMessageDetail(QObject::tr("Initializing..."));
  const bool isLoop = _getRules().getLoopPolicy() != Nbd::LOOP_NONE;
  _nMacroIndices = isLoop ? _getRules().getNIndicesForLoop() : 1;
  _nVariables = getGridDataset().getRoleCount(Nbd::Role::V);
  _setIncrements();
  _setDecimationAndBufferExtension();
  _mapGeometry = getVMapGeometry();
  if (_mapGeometry.getGridSize() > std::numeric_limits<int>::max())
    throwNotEnoughMemory();
  _maps.clear();
  _maps.resize(_nMacroIndices);
  _results.clear();
  _setProgressMessageDetail(QObject::tr("Calculating Variogram..."));
}

// The buffers of all threads fit in the budget, each with a whole realization.
void NgcVariogramOnGrid::_initBufferManager()
{
  const double budget = std::min(double(getAvailableMemBytes()) * double(_step.product()), 0x1p62);
  const double nSamples = double(getGridDataset().getNSamples());
  int nThreads = getNThread();
  while (nThreads > 0 && nSamples * nThreads * _nVariables * 8. > budget)
    --nThreads;
  if (nThreads == 0)
    throwNotEnoughMemory();
  setNThread(nThreads);
  _getBufferManager()->setSampleSize(nThreads * _nVariables * 8);
  _getBufferManager()->setBufferSize(qint64(budget));
}

void NgcVariogramOnGrid::_createBufferIterator()
{
  const auto &manager = static_cast<const NgdBufferManagerGrid &>(*_getBufferManager());
  _setBufferIterator(new NgcSampledGridIterator(getGridDataset(), manager, _step));
}

NgwAThread *NgcVariogramOnGrid::_createComputingThread(NgwThreadPool *pool)
{
  return new Worker(pool, this);
}

void NgcVariogramOnGrid::_postProcessing()
{
  for (const std::unique_ptr<NgaVariogramOnGrid> &map : _maps) {
    NgmVariogramExpData results = _makeResults();
    if (map)
      _extractVariograms(*map, results);
    _results << results;
  }
  _maps.clear();
}

// Increments.

bool NgcVariogramOnGrid::_getIncrement(const NbgVector3D &point, NbgIntVector3D &increment) const
{
  const NbgGeomGrid &grid = getGridDataset().getGeometry();
  const NbgVector3D local = grid.getRotation().worldToLocal(point);
  increment = NbgIntVector3D();
  bool isNull = true;
  for (int axis = 0; axis < (grid.is2D() ? 2 : 3); ++axis) {
    const double cells =
        std::floor(local[axis] / grid.getCellSize()[axis] + 0.5 + BORDER_TOLERANCE);
    if (!(std::fabs(cells) < grid.getNodesNumber()[axis]))
      return false;
    increment[axis] = int(cells);
    isNull = isNull && cells == 0.;
  }
  return !isNull;
}

void NgcVariogramOnGrid::_setIncrements()
{
  std::set<std::array<int, 3>> known;
  _increments.clear();
  for (const Direction &direction : qAsConst(_directions)) {
    for (int lag = 1; lag <= direction.nLags; ++lag) {
      NbgIntVector3D increment;
      if (_getIncrement(direction.vector * (direction.lag * lag), increment) &&
          known.insert({increment.x(), increment.y(), increment.z()}).second)
        _increments << increment;
    }
  }
}

// The smallest step grows first, as long as the nodes that are kept are enough.
void NgcVariogramOnGrid::_setDecimationAndBufferExtension()
{
  int divisor[3] = {0, 0, 0};
  _extension = NbgIntVector3D::Null;
  for (const NbgIntVector3D &h : qAsConst(_increments)) {
    for (int axis = 0; axis < 3; ++axis) {
      divisor[axis] = std::gcd(divisor[axis], h[axis]);
      _extension[axis] = std::max(_extension[axis], std::abs(h[axis]));
    }
  }
  _step = NbgIntVector3D::Unit;
  const double largest = (1. + BORDER_TOLERANCE) / _decimation;
  const NbgIntVector3D &nodes = getGridDataset().getGeometry().getNodesNumber();
  for (bool hasGrown = true; hasGrown;) {
    int order[3] = {0, 1, 2};
    std::stable_sort(order, order + 3, [this](int a, int b) { return _step[a] < _step[b]; });
    hasGrown = std::any_of(order, order + 3, [&](int axis) {
      NbgIntVector3D step = _step;
      step[axis] = nextStep(step[axis], divisor[axis], nodes[axis]);
      const bool isAllowed = step[axis] > 0 && double(step.product()) <= largest;
      if (isAllowed)
        _step = step;
      return isAllowed;
    });
  }
}

// Results.

NgmVariogramExpData NgcVariogramOnGrid::_makeResults() const
{
  const NbgRotation plane =
      _referencePlane ? *_referencePlane : getGridDataset().getGeometry().getRotation();
  NgmVariogramExpData results;
  results.setNVariables(_nVariables);
  results.setMinimumLag(_directions.first().lag);
  for (const Direction &direction : _directions) {
    const QString name = NbgRotation::fromDirection(direction.vector).getUDirectionName();
    const int dir = results.addDirectionVector(direction.vector, direction.nLags, name);
    for (auto group = direction.groups.cbegin(); group != direction.groups.cend(); ++group) {
      if (direction.hasRanks)
        results.addDirectionGroupNameWithRank(dir, group.value(), group.key(), plane);
      else
        results.addDirectionGroupName(dir, group.value(), plane);
    }
    results.setMinimumLag(std::min(results.getMinimumLag(), direction.lag));
  }
  results.createTables({NgmEVarioExp::VARIOGRAM}, {}, _computeCross);
  return results;
}

void NgcVariogramOnGrid::_extractVariograms(const NgaVariogramOnGrid &map,
                                            NgmVariogramExpData &results) const
{
  for (int dir = 0; dir < _directions.size(); ++dir) {
    const Direction &direction = _directions[dir];
    const int n = direction.nLags;
    std::vector<double> distances(n), values(n);
    std::vector<long long> nPairs(n);
    for (int i = 0; i < _nVariables; ++i) {
      for (int j = i; j < (_computeCross ? _nVariables : i + 1); ++j) {
        for (int lag = 0; lag < n; ++lag)
          _extractLag(map, i, j, direction.vector * (direction.lag * (lag + 1)), distances[lag],
                      nPairs[lag], values[lag]);
        results.setDistances(dir, false, i, j, n, distances.data());
        results.setNumberOfPairs(dir, false, i, j, n, nPairs.data());
        results.setVarioValues(dir, NgmEVarioExp::EValue::VARIOGRAM, i, j, n, values.data());
      }
    }
  }
}

void NgcVariogramOnGrid::_extractLag(const NgaVariogramOnGrid &map, int i, int j,
                                     const NbgVector3D &point, double &distance, long long &nPairs,
                                     double &value) const
{
  distance = value = 0.;
  nPairs = 0;
  NbgIntVector3D cell;
  if (!_getIncrement(point, cell))
    return;
  const NbgVector3D &size = map.getGeometry().getCellSize();
  distance = NbgVector3D(cell.x() * size.x(), cell.y() * size.y(), cell.z() * size.z()).norm();
  cell += _extension;
  const qint64 rank = map.getGeometry().getRankFromIJK(cell);
  nPairs = std::llround(map.getNPairs(i, j).getArrayConst()[rank]);
  if (nPairs > 0)
    value = map.getVarioSum(i, j).getArrayConst()[rank] / double(nPairs);
}
