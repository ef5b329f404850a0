#include "stats/private/NgwVariogram1D.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/data/NbdDataLines.h"
#include "geos/stats/NgcVariogram1D.h"
#include "stats/private/NgcColumns.h"
#include "stats/private/NgcVarioAccumulator.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr int STRIDE = NgcVarioAccumulator::STRIDE;
constexpr int N_PAIRS = NgcVarioAccumulator::N_PAIRS;
constexpr double NULL_SUM = 1e-30;
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

/// The samples behind `tail` that make a pair with it: their positions in the line, lags and
/// distances; returns how many. Positions that ascend are left once they are too far.
int findPairs(const std::vector<double> &positions, int tail, bool isAscending, double lag,
              int nLags, int *heads, int *lags, double *distances)
{
  const double here = positions[tail];
  const double reach = (nLags + 0.5) * lag;
  int n = 0;
  for (int head = tail + 1; head < int(positions.size()); ++head) {
    const double distance = positions[head] - here;
    if (isAscending && distance >= reach)
      break;
    // Spares most divisions.
    if (distance >= reach || distance < -lag)
      continue;
    const double rank = std::floor(distance / lag + 0.5);
    const bool isKept = rank >= 0. && rank < nLags;
    heads[n] = head;
    lags[n] = isKept ? int(rank) : 0;
    distances[n] = distance;
    n += int(isKept);
  }
  return n;
}

void addPair(double *record, double distance, double weight, double g, double s)
{
  record[N_PAIRS] += 1.;
  record[NgaVarioSum::WEIGHT] += weight;
  record[NgaVarioSum::DISTANCE] += distance;
  record[NgaVarioSum::VARIOGRAM] += 0.5 * weight * g;
  record[NgaVarioSum::PAIRWISE] += std::fabs(s) > NULL_SUM ? weight * (2. * g / s) : 0.;
}

}  // namespace

void NgcLineSamples::clear()
{
  positions.clear();
  weights.clear();
  for (std::vector<double> &column : values)
    column.clear();
}

NgwVariogram1D::NgwVariogram1D(NgwThreadPool *pool, NgcVariogram1D *calculator)
    : NgwAThread(pool),
      _calculator(calculator),
      _lag(calculator->getLag()),
      _nLags(calculator->getNLags()),
      _nVariables(calculator->getNVariables())
{
  _samples.values.resize(_nVariables);
  _records.assign(std::size_t(_nVariables) * (_nVariables + 1) / 2 * _nLags * STRIDE, 0.);
}

void NgwVariogram1D::_run()
{
  while (const std::unique_ptr<NbdDataLines> buffer{_calculator->getNextInputLines()}) {
    _readColumns(*buffer);
    for (NbdDataLines::Iterator lines = buffer->getLinesIterator(); lines.hasNext();) {
      const NbdDataLines::Line line = lines.next();
      _calculator->_checkForProgressStop();
      _selectSamples(line.first, line.first + line.count);
      _addLine();
    }
    NgaVarioSumList sums = _takeSums();
    NgaVarioSumList stats = _statsOf(sums);
    _calculator->saveStats(sums, stats);
  }
}

void NgwVariogram1D::_readColumns(const NbdDataLines &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  if (const NbdAVariableNumeric *position = table.getVarNumeric(Nbd::Role::LINE_S)) {
    _columns.positions = NgcColumns::read(*position);
  } else {
    _columns.positions = NgcColumns::read(table.getVarNumericRef(Nbd::Role::LINE_S_FROM));
    const std::vector<double> to = NgcColumns::read(table.getVarNumericRef(Nbd::Role::LINE_S_TO));
    for (std::size_t i = 0; i < to.size(); ++i)
      _columns.positions[i] = 0.5 * (_columns.positions[i] + to[i]);
  }
  _columns.values.clear();
  for (const NbdAVariableNumeric *variable : table.getVarsNumeric(Nbd::Role::V))
    _columns.values.push_back(NgcColumns::read(*variable));
  _readWeights(buffer);
}

// The weight of a sample that is left out is not a number.
void NgwVariogram1D::_readWeights(const NbdDataLines &buffer)
{
  const NbdDataTable &table = buffer.getDataTableConst();
  const NbdAVariableNumeric *weight = table.getVarNumeric(Nbd::Role::WEIGHT);
  const NbdAVariableNumeric *mask = table.getVarNumeric(Nbd::Role::MASK);
  _columns.weights.clear();
  if (!weight && !mask)
    return;
  _columns.weights.assign(buffer.getNSamples(), 1.);
  if (weight) {
    _columns.weights = NgcColumns::read(*weight);
    for (double &w : _columns.weights)
      w = w > 0. ? w : NOT_A_NUMBER;
  }
  for (int i = 0; mask && i < buffer.getNSamples(); ++i) {
    const double masked = mask->getValue(i);
    _columns.weights[i] *= masked == 1. ? NOT_A_NUMBER : 1. - masked;
  }
}

void NgwVariogram1D::_selectSamples(int first, int last)
{
  _samples.clear();
  for (int i = first; i < last; ++i) {
    const bool hasValue =
        std::any_of(_columns.values.begin(), _columns.values.end(),
                    [i](const std::vector<double> &values) { return !std::isnan(values[i]); });
    const bool isLeftOut = !_columns.weights.empty() && std::isnan(_columns.weights[i]);
    if (!hasValue || isLeftOut || std::isnan(_columns.positions[i]))
      continue;
    _samples.positions.push_back(_columns.positions[i]);
    if (!_columns.weights.empty())
      _samples.weights.push_back(_columns.weights[i]);
    for (int v = 0; v < _nVariables; ++v)
      _samples.values[v].push_back(_columns.values[v][i]);
  }
}

void NgwVariogram1D::_addLine()
{
  const int n = _samples.count();
  _heads.resize(n);
  _lags.resize(n);
  _distances.resize(n);
  const bool isAscending = std::is_sorted(_samples.positions.begin(), _samples.positions.end());
  for (int tail = 0; tail + 1 < n; ++tail)
    _addPairs(tail, findPairs(_samples.positions, tail, isAscending, _lag, _nLags, _heads.data(),
                              _lags.data(), _distances.data()));
}

void NgwVariogram1D::_addPairs(int tail, int nPairs)
{
  double *records = _records.data();
  const double *weights = _samples.weights.empty() ? nullptr : _samples.weights.data();
  for (int i = 0; i < _nVariables; ++i) {
    const double *a = _samples.values[i].data();
    for (int j = i; j < _nVariables; ++j, records += std::size_t(_nLags) * STRIDE) {
      const double *b = _samples.values[j].data();
      for (int pair = 0; pair < nPairs; ++pair) {
        const int head = _heads[pair];
        const double g = (a[head] - a[tail]) * (b[head] - b[tail]);
        if (std::isnan(g))
          continue;
        const double s = (a[tail] + a[head]) * (b[tail] + b[head]);
        const double weight = weights ? weights[tail] * weights[head] : 1.;
        addPair(records + std::size_t(_lags[pair]) * STRIDE, _distances[pair], weight, g, s);
      }
    }
  }
}

NgaVarioSumList NgwVariogram1D::_takeSums()
{
  NgaVarioSumList sums;
  const std::size_t length = std::size_t(_nLags) * STRIDE;
  for (std::size_t first = 0; first < _records.size(); first += length) {
    NgaVarioSum sum(_nLags);
    sum.addRecords(_records.data() + first, STRIDE);
    sums.append(std::move(sum));
  }
  std::fill(_records.begin(), _records.end(), 0.);
  return sums;
}

// Every pair of a simple variogram in one lag.
NgaVarioSumList NgwVariogram1D::_statsOf(const NgaVarioSumList &sums) const
{
  NgaVarioSumList stats;
  int pair = 0;
  for (int i = 0; i < _nVariables; pair += _nVariables - i, ++i) {
    const NgaVarioSum &sum = sums.at(pair);
    double record[STRIDE] = {};
    for (int lag = 0; lag < _nLags; ++lag) {
      record[N_PAIRS] += double(sum.getNumberOfPairs()[lag]);
      for (int array = 0; array < NgaVarioSum::N_ARRAYS; ++array)
        record[array] += sum.get(NgaVarioSum::Array(array))[lag];
    }
    NgaVarioSum all(1);
    all.addRecords(record, STRIDE);
    stats.append(std::move(all));
  }
  return stats;
}
