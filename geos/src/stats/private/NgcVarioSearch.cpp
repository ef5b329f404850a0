#include "stats/private/NgcVarioSearch.h"

#include "basic/calc/NbcAProgress.h"
#include "geos/stats/NgmPairsSelectorDirection.h"

#include <algorithm>
#include <cmath>

namespace {

int columnSize(const NgmPairsSelectorDirection &direction, bool isCova)
{
  const int n = direction.getNIntervals();
  return isCova ? 2 * n + 1 : n;
}

/// Calls f(columnSize, rank) for all sums of a direction, in order of rank.
template <class Function>
void forEachSum(const NgcVarioTask &task, const NgmPairsSelectorDirection &direction, Function f)
{
  for (int set = 0; set < task.nSets; ++set) {
    for (const bool isCova : {false, true}) {
      if (isCova ? !task.terms.covariance : !task.terms.variogram)
        continue;
      for (int pair = 0; pair < task.getNPairs(); ++pair)
        f(columnSize(direction, isCova));
    }
  }
}

}  // namespace

NgcVarioSearch::Workspace::Workspace(const NgcVarioSearch &search)
    : _tails(CAPACITY),
      _heads(CAPACITY),
      _hx(CAPACITY),
      _hy(CAPACITY),
      _hz(CAPACITY),
      _distances(CAPACITY),
      _proposed(CAPACITY),
      _isTaken(CAPACITY),
      _pairs(CAPACITY)
{
  for (const NgmPairsSelectorDirection *direction : search._directions)
    forEachSum(search._task, *direction, [this](int size) { _accumulators.emplace_back(size); });
}

NgcVarioSearch::NgcVarioSearch(const NgcVarioBlocks &blocks,
                               std::vector<const NgmPairsSelectorDirection *> directions,
                               const NgcVarioTask &task)
    : _blocks(blocks), _directions(std::move(directions)), _task(task)
{
  double reach = 0.;
  for (const NgmPairsSelectorDirection *direction : _directions)
    reach = std::max(reach, direction->getMaximumDistance());
  // Above the rounding of the square and of the root: the directions decide exactly.
  _squaredReach = reach * reach * (1. + 1e-12);
}

NgaVarioSumList NgcVarioSearch::makeSums() const
{
  NgaVarioSumList sums;
  for (const NgmPairsSelectorDirection *direction : _directions)
    forEachSum(_task, *direction, [&sums](int size) { sums.append(NgaVarioSum(size)); });
  for (const NgmVariogramCloud &cloud : _clouds)
    sums.appendCloud(cloud);
  return sums;
}

void NgcVarioSearch::setClouds(std::vector<NgmVariogramCloud> clouds, std::vector<double> means)
{
  _clouds = std::move(clouds);
  _means = std::move(means);
}

void NgcVarioSearch::processPair(int first, int second, Workspace &workspace,
                                 NgaVarioSumList &sums) const
{
  workspace._sums = &sums;
  _processBlocks(first, second, workspace);
  _flush(workspace);
}

void NgcVarioSearch::processRow(int row, Workspace &workspace, const NbcAProgress &progress,
                                NgaVarioSumList &sums) const
{
  const NgcVarioBlocks::Block &block = _blocks.getBlock(row);
  workspace._sums = &sums;
  for (int next = row; next < _blocks.getNBlocks(); ++next) {
    if (!_blocks.isWithinReach(block, _blocks.getBlock(next)))
      break;
    if (progress._mustStop())
      return;
    _processBlocks(row, next, workspace);
  }
  _flush(workspace);
}

void NgcVarioSearch::_flush(Workspace &workspace) const
{
  _processPairs(workspace);
  for (int i = 0; i < workspace._sums->getCount(); ++i)
    workspace._accumulators[i].flushInto(workspace._sums->at(i));
  for (int i = 0; workspace._sums->hasClouds() && i < workspace._sums->getCount(); ++i)
    workspace._sums->getCloud(i).finishSorting();
}

void NgcVarioSearch::_processBlocks(int first, int second, Workspace &workspace) const
{
  const NgcVarioBlocks::Block &block = _blocks.getBlock(first);
  const NgcVarioBlocks::Block &other = _blocks.getBlock(second);
  const double *along = _blocks.getAlong();
  const double band = _blocks.getAlongBand();
  int low = other.first;
  int high = other.first;
  for (int i = block.first; i < block.last; ++i) {
    while (low < other.last && along[low] < along[i] - band)
      ++low;
    while (high < other.last && along[high] <= along[i] + band)
      ++high;
    _addCandidates(i, first == second ? std::max(low, i + 1) : low, high, workspace);
  }
}

void NgcVarioSearch::_addCandidates(int i, int first, int last, Workspace &workspace) const
{
  const NgcVarioSamples &samples = _blocks.getSamples();
  const double *x = samples.x.data();
  const double *y = samples.y.data();
  const double *z = samples.z.data();
  const double xi = x[i];
  const double yi = y[i];
  const double zi = z[i];
  const double reach = _squaredReach;
  // Pointers by value: through the workspace each store would force them to be read again.
  int *tails = workspace._tails.data();
  int *heads = workspace._heads.data();
  double *hx = workspace._hx.data();
  double *hy = workspace._hy.data();
  double *hz = workspace._hz.data();
  double *distances = workspace._distances.data();
  while (first < last) {
    int n = workspace._n;
    const int end = std::min(last, first + CAPACITY - n);
    for (int j = first; j < end; ++j) {
      const double dx = x[j] - xi;
      const double dy = y[j] - yi;
      const double dz = z[j] - zi;
      const double squared = dx * dx + dy * dy + dz * dz;
      tails[n] = i;
      heads[n] = j;
      hx[n] = dx;
      hy[n] = dy;
      hz[n] = dz;
      distances[n] = squared;
      n += squared <= reach;
    }
    workspace._n = n;
    first = end;
    if (n == CAPACITY)
      _processPairs(workspace);
  }
}

void NgcVarioSearch::_processPairs(Workspace &workspace) const
{
  if (_task.filtering != 0)
    _filterCodes(workspace);
  if (_task.terms.means || _task.terms.covariance || _task.clouds)
    _orient(workspace);
  for (int k = 0; k < workspace._n; ++k)
    workspace._distances[k] = std::sqrt(workspace._distances[k]);
  for (std::size_t direction = 0; direction < _directions.size(); ++direction) {
    _selectPairs(int(direction), workspace);
    _accumulate(int(direction), workspace);
  }
  workspace._n = 0;
}

void NgcVarioSearch::_filterCodes(Workspace &workspace) const
{
  const std::vector<int> &codes = _blocks.getSamples().codes;
  Workspace &w = workspace;
  int n = 0;
  for (int k = 0; k < w._n; ++k) {
    const bool isSame = codes[w._tails[k]] == codes[w._heads[k]];
    if (isSame != (_task.filtering == 1))
      continue;
    w._tails[n] = w._tails[k];
    w._heads[n] = w._heads[k];
    w._hx[n] = w._hx[k];
    w._hy[n] = w._hy[k];
    w._hz[n] = w._hz[k];
    w._distances[n] = w._distances[k];
    ++n;
  }
  w._n = n;
}

void NgcVarioSearch::_orient(Workspace &workspace) const
{
  Workspace &w = workspace;
  for (int k = 0; k < w._n; ++k) {
    if (_blocks.isForward(w._tails[k], w._heads[k]))
      continue;
    std::swap(w._tails[k], w._heads[k]);
    w._hx[k] = -w._hx[k];
    w._hy[k] = -w._hy[k];
    w._hz[k] = -w._hz[k];
  }
}

/// Marks the pairs that the direction before has kept: the first ones of _proposed.
void NgcVarioSearch::_markTaken(Workspace &workspace)
{
  std::fill_n(workspace._isTaken.begin(), workspace._n, 0);
  for (int p = 0; p < workspace._pairs.n; ++p)
    workspace._isTaken[workspace._proposed[p]] = 1;
}

int NgcVarioSearch::_leaveOutTaken(int nProposed, Workspace &workspace)
{
  int *proposed = workspace._proposed.data();
  const unsigned char *isTaken = workspace._isTaken.data();
  int *end =
      std::remove_if(proposed, proposed + nProposed, [isTaken](int k) { return isTaken[k]; });
  return int(end - proposed);
}

void NgcVarioSearch::_selectPairs(int rank, Workspace &workspace) const
{
  const NgmPairsSelectorDirection &direction = *_directions[rank];
  const Workspace &w = workspace;
  NgcVarioPairs &pairs = workspace._pairs;
  const double *hx = w._hx.data();
  const double *hy = w._hy.data();
  const double *hz = w._hz.data();
  const double *distances = w._distances.data();
  const int *tails = w._tails.data();
  const int *heads = w._heads.data();
  int *proposed = workspace._proposed.data();
  int *tail = pairs.tail.data();
  int *head = pairs.head.data();
  double *distance = pairs.distance.data();
  int *lagMin = pairs.lagMin.data();
  int *lagMax = pairs.lagMax.data();
  unsigned char *positive = pairs.positive.data();

  const int lastLag = direction.getNIntervals() - 1;
  const bool isExclusive = !_isExclusive.empty() && _isExclusive[rank];
  if (isExclusive)
    _markTaken(workspace);
  int nProposed = direction.proposePairs(w._n, hx, hy, hz, proposed);
  if (isExclusive)
    nProposed = _leaveOutTaken(nProposed, workspace);
  int n = 0;
  for (int p = 0; p < nProposed; ++p) {
    const int k = proposed[p];
    int first = 0;
    int last = 0;
    bool isPositive = true;
    const bool isKept = direction.getLagRank(NbgVector3D(hx[k], hy[k], hz[k]), distances[k], first,
                                             last, isPositive);
    tail[n] = tails[k];
    head[n] = heads[k];
    distance[n] = distances[k];
    lagMin[n] = first;
    // Short lags may reach beyond the last class.
    lagMax[n] = std::min(last, lastLag);
    positive[n] = isPositive;
    proposed[n] = k;
    n += isKept;
  }
  pairs.n = n;
}

void NgcVarioSearch::_accumulate(int direction, Workspace &workspace) const
{
  const NgcVarioSamples &samples = _blocks.getSamples();
  const double *weights = samples.weights.empty() ? nullptr : samples.weights.data();
  const NgcVarioPairs &pairs = workspace._pairs;
  const int firstSum = direction * _task.getNSums();
  for (int set = 0; set < _task.nSets; ++set) {
    const int first = set * _task.nVariables;
    for (int i = 0; i < _task.nVariables; ++i) {
      for (int j = i; j < (_task.cross ? _task.nVariables : i + 1); ++j) {
        const double *a = samples.values[first + i].data();
        const double *b = samples.values[first + j].data();
        for (const bool isCova : {false, true}) {
          if (!(isCova ? _task.terms.covariance : _task.terms.variogram))
            continue;
          const int sum = firstSum + _task.rankOf(set, isCova, i, j);
          if (isCova)
            workspace._accumulators[sum].addCovariance(pairs, a, b, weights);
          else
            workspace._accumulators[sum].addVariogram(_task.terms, pairs, a, b, weights);
          if (_task.clouds)
            _addToCloud(isCova, a, b, _means[first + i], _means[first + j], pairs,
                        workspace._sums->getCloud(sum));
        }
      }
    }
  }
}

// A pair is one point of the image, in the first of its lags.
void NgcVarioSearch::_addToCloud(bool isCova, const double *a, const double *b, double meanA,
                                 double meanB, const NgcVarioPairs &pairs,
                                 NgmVariogramCloud &cloud) const
{
  const std::vector<qint64> &numbers = _blocks.getSamples().numbers;
  const auto add = [&](int lag, double value, double distance, int tail, int head) {
    if (!std::isnan(value))
      cloud.addPair(lag, {value, distance, numbers[tail], numbers[head]});
  };
  const int origin = cloud.getNLags() / 2;
  for (int k = 0; k < pairs.n; ++k) {
    int tail = pairs.tail[k];
    int head = pairs.head[k];
    const double d = pairs.distance[k];
    const int lag = pairs.lagMin[k];
    if (lag > pairs.lagMax[k])
      continue;
    if (!isCova) {
      add(lag, 0.5 * (a[head] - a[tail]) * (b[head] - b[tail]), d, tail, head);
      continue;
    }
    if (!pairs.positive[k])
      std::swap(tail, head);
    add(origin + 1 + lag, (a[head] - meanA) * (b[tail] - meanB), d, tail, head);
    add(origin - 1 - lag, (a[tail] - meanA) * (b[head] - meanB), -d, head, tail);
  }
}
