#include "stats/private/NgwVarioMap.h"

#include "basic/data/Nbd.h"
#include "geos/data/NgdDataDoubleBuffer.h"
#include "geos/stats/NgcVarioMap.h"
#include "stats/private/NgcPairwiseSamples.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

struct Samples
{
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
  std::vector<std::vector<double>> values;
};

Samples ordered(const NgcPairwiseSamples &all, const std::vector<int> &order, const QString &role,
                int nVariables)
{
  Samples samples;
  for (const int i : order) {
    samples.x.push_back(all.getAxis(0)[i]);
    samples.y.push_back(all.getAxis(1)[i]);
    samples.z.push_back(all.getAxis(2)[i]);
  }
  for (int variable = 0; variable < nVariables; ++variable) {
    const std::vector<double> column = all.read(role, variable);
    samples.values.emplace_back();
    for (const int i : order)
      samples.values.back().push_back(column[i]);
  }
  return samples;
}

/// Counts and sums of all cells and pairs of variables.
class Cells
{
public:
  explicit Cells(const NgmVarioMap &map)
      : _map(map),
        _nNodes(map.getNCells() - map.getNrho()),
        _counts(map.getNvar() * (map.getNvar() + 1) / 2, std::vector<qint64>(map.getNCells(), 0)),
        _sums(_counts.size(), std::vector<double>(map.getNCells(), 0.))
  {
    const NbgVector3D &axes = map.getMaxAxes();
    const double largest = std::max({axes.x(), axes.y(), axes.z()});
    // Above the rounding of the square: the map decides exactly.
    _squaredReach = largest * largest * (1. + 1e-12);
  }

  /// The pairs of `a` with the samples from `first` to before `last`.
  void add(const Samples &s, int a, int first, int last)
  {
    constexpr int block = 256;
    int near[block];
    for (int begin = first; begin < last; begin += block) {
      const int nNear = _findNear(s, a, begin, std::min(begin + block, last), near);
      for (int k = 0; k < nNear; ++k)
        _addPair(s, a, near[k]);
    }
  }

  std::unique_ptr<NgmVarioMap> toMap() const
  {
    auto map = std::make_unique<NgmVarioMap>(_map);
    for (std::size_t pair = 0; pair < _counts.size(); ++pair)
      map->addCells(int(pair), _counts[pair], _sums[pair]);
    return map;
  }

private:
  int _findNear(const Samples &s, int a, int first, int last, int *near) const
  {
    const double x = s.x[a];
    const double y = s.y[a];
    const double z = s.z[a];
    int nNear = 0;
    for (int b = first; b < last; ++b) {
      const double dx = s.x[b] - x;
      const double dy = s.y[b] - y;
      const double dz = s.z[b] - z;
      near[nNear] = b;
      nNear += dx * dx + dy * dy + dz * dz <= _squaredReach ? 1 : 0;
    }
    return nNear;
  }

  void _addPair(const Samples &s, int a, int b)
  {
    const NbgVector3D h(s.x[b] - s.x[a], s.y[b] - s.y[a], s.z[b] - s.z[a]);
    const qint64 cell = _map.locate(_map.oriented(_map.toFrame(h)));
    if (cell == NgmVarioMap::NO_CELL)
      return;
    const qint64 position = cell < 0 ? _nNodes - 2 - cell : cell;
    for (int i = 0; i < _map.getNvar(); ++i) {
      const double difference = s.values[i][a] - s.values[i][b];
      for (int j = i; j < _map.getNvar(); ++j) {
        const double value = difference * (s.values[j][a] - s.values[j][b]);
        if (std::isnan(value))
          continue;
        const int pair = NgmVarioMap::getPairRank(i, j);
        ++_counts[pair][position];
        _sums[pair][position] += value;
      }
    }
  }

  const NgmVarioMap &_map;
  qint64 _nNodes;
  double _squaredReach;
  std::vector<std::vector<qint64>> _counts;
  std::vector<std::vector<double>> _sums;
};

}  // namespace

NgwVarioMap::NgwVarioMap(NgwThreadPool *pool, NgcVarioMap &calculator)
    : NgwAPairwise(pool, calculator), _calculator(calculator)
{
}

void NgwVarioMap::_process(const NgdDataDoubleBuffer &buffers)
{
  NgcPairwiseSamples all(buffers, _calculator);
  std::vector<unsigned char> isKept(all.count());
  for (int i = 0; i < all.count(); ++i)
    isKept[i] = all.isPlaced(i);
  if (all.getRoleCount(Nbd::Role::MASK) > 0) {
    const std::vector<double> mask = all.read(Nbd::Role::MASK);
    for (int i = 0; i < all.count(); ++i)
      isKept[i] &= !(std::fabs(mask[i] - 1.) < 1e-5);
  }
  const NgmVarioMap &empty = _calculator.getGvm();
  const Samples samples =
      ordered(all, all.makeChunks(isKept), _calculator.getRoleV(), empty.getNvar());
  all.forEachPairOfChunks([&](int i, int j) {
    _calculator._checkForProgressStop();
    const NgcPairwiseSamples::Chunk &first = all.getChunks()[i];
    const NgcPairwiseSamples::Chunk &second = all.getChunks()[j];
    Cells cells(empty);
    for (int a = first.first; a < first.last; ++a)
      cells.add(samples, a, i == j ? a + 1 : second.first, second.last);
    _calculator.saveChunks(first.rank, second.rank, cells.toMap());
  });
}
