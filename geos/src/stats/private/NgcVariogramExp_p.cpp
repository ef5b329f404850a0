#include "stats/private/NgcVariogramExp_p.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAData.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"
#include "geos/base/NgaOrderedSum.h"
#include "geos/base/NgwAThread.h"
#include "geos/base/NgwThreadPool.h"
#include "stats/private/NgcColumns.h"
#include "stats/private/NgcVarioClouds.h"
#include "stats/private/NgcVariogramCurves.h"

#include <QMutex>
#include <QObject>
#include <QRandomGenerator>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <numeric>

namespace {

constexpr int PSEUDO_SILL_SAMPLES = 1000;
constexpr qint64 PROGRESS_PER_DIRECTION = 1000000;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// The rows of a search and their sums, shared by the workers.
struct Rows
{
  const NgcVarioSearch *search;
  const NbcAProgress *progress;
  qint64 progressBefore;
  qint64 progressShare;
  std::atomic<int> next{0};
  QMutex mutex;  // guards what follows
  int nDone = 0;
  NgaOrderedSum sums;
};

class Worker : public NgwAThread
{
public:
  Worker(NgwThreadPool *pool, Rows &rows) : NgwAThread(pool), _rows(rows) {}

protected:
  void _run() override
  {
    NgcVarioSearch::Workspace workspace(*_rows.search);
    const int nRows = _rows.search->getNRows();
    for (int row = _rows.next++; row < nRows; row = _rows.next++) {
      auto partial = std::make_unique<NgaVarioSumList>(_rows.search->makeSums());
      _rows.search->processRow(row, workspace, *_rows.progress, *partial);
      _rows.progress->_checkForProgressStop();
      QMutexLocker lock(&_rows.mutex);
      _rows.sums.add(row, std::move(partial));
      ++_rows.nDone;
      _rows.progress->_setCounter(_rows.progressBefore + _rows.progressShare * _rows.nDone / nRows);
    }
  }

private:
  Rows &_rows;
};

std::vector<double> readColumn(const NbdAVariableNumeric &variable, const std::vector<int> &kept)
{
  const std::vector<double> all = NgcColumns::read(variable);
  std::vector<double> values;
  values.reserve(kept.size());
  for (const int position : kept)
    values.push_back(all[position]);
  return values;
}

/// The samples that have a position and a value.
std::vector<int> usableSamples(const NgcVarioSamples &samples)
{
  std::vector<int> usable;
  for (int i = 0; i < samples.count(); ++i) {
    const bool isPlaced = NbbGlobal::isDefined(samples.x[i]) &&
                          NbbGlobal::isDefined(samples.y[i]) && NbbGlobal::isDefined(samples.z[i]);
    const bool hasValue =
        std::any_of(samples.values.begin(), samples.values.end(),
                    [i](const std::vector<double> &values) { return !std::isnan(values[i]); });
    if (isPlaced && hasValue)
      usable.push_back(i);
  }
  return usable;
}

/// Where the pairs of a direction can lie in the frame of its group.
NgcVarioBlocks::Bands bandsOf(const NgmPairsSelectorDirection &direction, const NbgRotation &frame)
{
  const double distance = direction.getMaximumDistance();
  NgcVarioBlocks::Bands bands{{distance, distance, distance}};
  if (direction.isOmnidirectional())
    return bands;
  if (direction.isUsingSlicingHeight() && !direction.isUsingSlicingRadius()) {
    // A slice that leans against the frame reaches further along the frame's axis.
    const double lean = direction.getRotation().getAxisZ().crossProduct(frame.getAxisZ()).norm();
    bands.band[2] = std::min(distance, std::fabs(direction.getSlicingHeight()) + lean * distance);
  }
  return bands;
}

}  // namespace

void NgcVariogramExpPrivate::check() const
{
  if (!request || request->getNDirections() == 0)
    throw NbeUserError(QObject::tr("No variogram direction definition"));
  if (request->getVarioCurveTypes().isEmpty() && request->getCovaCurveTypes().isEmpty())
    throw NbeUserError(QObject::tr("No curve (variogram or covariance) requested"));
  if (!statistics)
    throw NbeUserError(QObject::tr("No statistics"));
  for (const NgmMultivariateStatistics *given : {statistics.get(), statisticsGaussian.get()}) {
    if (given && given->getNVariables() != request->getNVariables())
      throw NbeUserError(QObject::tr(
          "Inconsistent number of variables between statistics and variogram parameters"));
  }
}

void NgcVariogramExpPrivate::run(NbdAData &buffer)
{
  NgcVarioSamples samples = _readSamples(buffer);
  _decimate(samples);
  _nSamples = samples.count();
  for (int set = 0; set < _makeTask().nSets; ++set)
    _results(set) = NgcVariogramCurves::newResults(*request, cross);
  for (int set = 0; request->getNeedCloud() && set < _makeTask().nSets; ++set)
    _results(set).createCloudTables(_makeTask().terms.variogram, _makeTask().terms.covariance);
  if (_needsPseudoSills())
    _processPseudoSills(samples);

  _calculator._setProgressMessageDetail(QObject::tr("Computing variogram..."));
  _calculator._initCounter(PROGRESS_PER_DIRECTION * request->getNDirections());
  samples = samples.ordered(usableSamples(samples));
  qint64 progress = 0;
  for (const Group &group : _getDirectionGroups(samples)) {
    _processDirectionGroup(samples, group, progress);
    progress += PROGRESS_PER_DIRECTION * qint64(group.directions.size());
  }
  _hasRun = true;
}

// Samples.

NgcVarioSamples NgcVariogramExpPrivate::_readSamples(NbdAData &buffer) const
{
  const NbdDataTable &table = buffer.getDataTableConst();
  const NbdAVariableNumeric *code = table.getVarNumeric(Nbd::Role::CODE);
  if (filtering != NgcVariogramExp::ALL_PAIRS && !code)
    throw NbeUserError(QObject::tr("NgwVariogram::run: Missing code variable (1)"));

  const std::vector<int> &kept = buffer.getSelectedPositions();
  NgcVarioSamples samples;
  for (const int position : kept) {
    const NbgVector3D location = buffer.getLocation(position);
    samples.x.push_back(location.x());
    samples.y.push_back(location.y());
    samples.z.push_back(location.z());
    if (request->getNeedCloud())
      samples.numbers.push_back(buffer.getSampleNumber(position));
  }
  QList<NbdAVariableNumeric *> variables = table.getVarsNumeric(Nbd::Role::V);
  if (statisticsGaussian)
    variables += table.getVarsNumeric(Nbd::Role::GAUSSIAN);
  for (const NbdAVariableNumeric *variable : qAsConst(variables))
    samples.values.push_back(readColumn(*variable, kept));
  if (const NbdAVariableNumeric *weight = table.getVarNumeric(Nbd::Role::WEIGHT)) {
    samples.weights = readColumn(*weight, kept);
    for (std::size_t i = 0; i < kept.size(); ++i) {
      if (samples.weights[i] > 0.)
        continue;
      for (std::vector<double> &values : samples.values)
        values[i] = NOT_A_NUMBER;
    }
  }
  for (std::size_t i = 0; filtering != NgcVariogramExp::ALL_PAIRS && i < kept.size(); ++i) {
    const double value = code->getValue(kept[i]);
    samples.codes.push_back(NbbGlobal::isDefined(value) ? int(value) : NbbGlobal::I32_FFFF);
  }
  return samples;
}

void NgcVariogramExpPrivate::_decimate(NgcVarioSamples &samples) const
{
  const int n = samples.count();
  if (!useDecimation || n <= nDecimated)
    return;
  QRandomGenerator generator(static_cast<quint32>(seed));
  std::vector<unsigned char> isKept(n, 0);
  for (int nKept = 0; nKept < nDecimated;) {
    const int i = int((quint64(generator.generate()) * quint64(n)) >> 32);
    nKept += !isKept[i];
    isKept[i] = 1;
  }
  std::vector<int> kept;
  for (int i = 0; i < n; ++i) {
    if (isKept[i])
      kept.push_back(i);
  }
  samples = samples.ordered(kept);
}

NgcVarioTask NgcVariogramExpPrivate::_makeTask() const
{
  return {NgcVarioTerms(*request), request->getNVariables(), statisticsGaussian ? 2 : 1, cross,
          int(filtering),          request->getNeedCloud()};
}

// Pseudo-sills.

bool NgcVariogramExpPrivate::_needsPseudoSills() const
{
  const QList<NgmEVarioExp> varios = request->getVarioCurveTypes();
  const QList<NgmECovaExp> covas = request->getCovaCurveTypes();
  const auto needs = [](const NbbAEnum &c) { return NgmVariogramExpData::requiresPseudoSill(c); };
  return std::any_of(varios.begin(), varios.end(), needs) ||
         std::any_of(covas.begin(), covas.end(), needs);
}

// The samples of the smallest of as many uniform numbers.
std::vector<int> NgcVariogramExpPrivate::_pseudoSillSubset(int nSamples) const
{
  std::vector<int> order(nSamples);
  std::iota(order.begin(), order.end(), 0);
  if (nSamples <= PSEUDO_SILL_SAMPLES)
    return order;
  QRandomGenerator generator(static_cast<quint32>(seed));
  std::vector<double> uniform(nSamples);
  for (double &u : uniform) {
    const quint64 low = generator.generate();
    const quint64 high = generator.generate();
    u = double((low >> 11) | (high << 21)) * 0x1p-53;
  }
  std::stable_sort(order.begin(), order.end(),
                   [&uniform](int a, int b) { return uniform[a] < uniform[b]; });
  order.resize(PSEUDO_SILL_SAMPLES);
  return order;
}

void NgcVariogramExpPrivate::_processPseudoSillsOfPair(const NgcVarioSamples &subset, int set,
                                                       int i, int j, NgaVarioSum &vario,
                                                       NgaVarioSum &cova) const
{
  const NgcVarioTerms terms(*request);
  const int n = subset.count();
  const double *a = subset.values[set * request->getNVariables() + i].data();
  const double *b = subset.values[set * request->getNVariables() + j].data();
  const double *weights = subset.weights.empty() ? nullptr : subset.weights.data();
  NgcVarioAccumulator varioSums(vario.getNLags());
  NgcVarioAccumulator covaSums(cova.getNLags());
  NgcVarioPairs pairs(n);  // all in lag 0, along the direction
  std::fill(pairs.positive.begin(), pairs.positive.end(), 1);
  for (int tail = 0; tail < n; ++tail) {
    pairs.n = 0;
    for (int head = tail + 1; head < n; ++head, ++pairs.n) {
      pairs.tail[pairs.n] = tail;
      pairs.head[pairs.n] = head;
    }
    varioSums.addVariogram(terms, pairs, a, b, weights);
    if (terms.covariance)
      covaSums.addCovariance(pairs, a, b, weights);
  }
  varioSums.flushInto(vario);
  covaSums.flushInto(cova);
  vario.normalize();
  cova.normalize();
}

void NgcVariogramExpPrivate::_processPseudoSills(const NgcVarioSamples &samples)
{
  const NgcVarioTask task = _makeTask();
  const NgcVarioSamples subset = samples.ordered(_pseudoSillSubset(samples.count()));
  const int n = task.nVariables;
  for (int set = 0; set < task.nSets; ++set) {
    std::vector<NgaVarioSum> simple(n, NgaVarioSum(1));
    NgaVarioSum cova(3);
    for (int i = 0; i < n; ++i)
      _processPseudoSillsOfPair(subset, set, i, i, simple[i], cova);
    int pair = 0;
    for (int i = 0; i < n; ++i) {
      for (int j = i; j < (cross ? n : i + 1); ++j, ++pair) {
        _calculator._checkForProgressStop();
        NgaVarioSum vario(1);
        cova = NgaVarioSum(3);
        _processPseudoSillsOfPair(subset, set, i, j, vario, cova);
        const NgcVariogramCurves::Globals globals =
            NgcVariogramCurves::globalsOf(_statistics(set), i, j, _nSamples);
        for (const NgmEVarioExp &curve : request->getVarioCurveTypes()) {
          if (NgmVariogramExpData::requiresPseudoSill(curve))
            _results(set).setVarioPseudoSill(
                curve, pair,
                NgcVariogramCurves::varioValues(curve.toEnum(), vario, simple[i], simple[j],
                                                globals)[0]);
        }
        for (const NgmECovaExp &curve : request->getCovaCurveTypes()) {
          if (NgmVariogramExpData::requiresPseudoSill(curve))
            _results(set).setCovaPseudoSill(
                curve, pair, NgcVariogramCurves::covaValues(curve.toEnum(), cova, globals)[2]);
        }
      }
    }
  }
}

// Directions.

std::vector<NgcVariogramExpPrivate::Group> NgcVariogramExpPrivate::_getDirectionGroups(
    const NgcVarioSamples &samples) const
{
  std::vector<Group> groups;
  Group regular;
  for (int dir = 0; dir < request->getNDirections(); ++dir) {
    const NgmPairsSelectorDirection &direction = request->getDirection(dir);
    if (!request->isRegularDir(dir)) {
      const NbgRotation &frame = direction.getRotation();
      groups.push_back({{dir}, frame, 0, bandsOf(direction, frame)});
      continue;
    }
    if (regular.directions.empty())
      regular.frame = direction.getRotation();
    const NgcVarioBlocks::Bands bands = bandsOf(direction, regular.frame);
    if (regular.directions.empty())
      regular.bands = bands;
    regular.directions.push_back(dir);
    for (int axis = 0; axis < 3; ++axis)
      regular.bands.band[axis] = std::max(regular.bands.band[axis], bands.band[axis]);
  }
  if (regular.directions.empty())
    return groups;

  double lower[2] = {NbbGlobal::D_BIG_POSITIVE, NbbGlobal::D_BIG_POSITIVE};
  double upper[2] = {NbbGlobal::D_BIG_NEGATIVE, NbbGlobal::D_BIG_NEGATIVE};
  for (int i = 0; i < samples.count(); ++i) {
    const NbgVector3D u =
        regular.frame.worldToLocal(NbgVector3D(samples.x[i], samples.y[i], samples.z[i]));
    const double local[2] = {u.x(), u.y()};
    for (int axis = 0; axis < 2; ++axis) {
      lower[axis] = std::min(lower[axis], local[axis]);
      upper[axis] = std::max(upper[axis], local[axis]);
    }
  }
  const int longest = upper[1] - lower[1] > upper[0] - lower[0] ? 1 : 0;
  regular.sortingAxis = request->is3d() ? 2 : longest;
  groups.push_back(regular);
  return groups;
}

void NgcVariogramExpPrivate::_processDirectionGroup(const NgcVarioSamples &samples,
                                                    const Group &group, qint64 progress)
{
  if (samples.count() == 0)
    NBE_FAIL(QStringLiteral("No data to perform computations"));
  const NgcVarioBlocks blocks(samples, group.frame, group.bands, group.sortingAxis, bufferSize);
  std::vector<const NgmPairsSelectorDirection *> directions;
  for (const int dir : group.directions)
    directions.push_back(&request->getDirection(dir));
  const NgcVarioTask task = _makeTask();
  NgcVarioSearch search(blocks, directions, task);
  if (task.clouds) {
    std::vector<const NgmMultivariateStatistics *> statisticsOfSets;
    for (int set = 0; set < task.nSets; ++set)
      statisticsOfSets.push_back(&_statistics(set));
    search.setClouds(NgcVarioClouds::newClouds(task, directions, statisticsOfSets, cloudParameters),
                     NgcVarioClouds::meansOf(statisticsOfSets));
  }

  Rows rows;
  rows.search = &search;
  rows.progress = &_calculator;
  rows.progressBefore = progress;
  rows.progressShare = PROGRESS_PER_DIRECTION * qint64(group.directions.size());
  NgwThreadPool pool;
  pool.setMaxThreadCount(_calculator.getNThread());
  for (int thread = 0; thread < _calculator.getNThread(); ++thread)
    pool.start(new Worker(&pool, rows));
  pool.waitForDone(-1);
  _calculator._checkForProgressStop();
  if (!pool.isOk())
    throw NbeUserError(pool.getMessage());

  NgaVarioSumList sums = search.makeSums();
  rows.sums.flushInto(sums);
  for (int i = 0; i < sums.getCount(); ++i)
    sums.at(i).normalize();
  for (int set = 0; set < task.nSets; ++set)
    _fill(group, sums, set);
}

void NgcVariogramExpPrivate::_fill(const Group &group, const NgaVarioSumList &sums, int set)
{
  const NgcVarioTask task = _makeTask();
  for (std::size_t d = 0; d < group.directions.size(); ++d)
    NgcVariogramCurves::fillDirection(_results(set), *request, group.directions[d], task, set, sums,
                                      int(d) * task.getNSums(), _statistics(set), _nSamples);
}
