#include "stats/private/NgcVarioSamples.h"

#include <algorithm>
#include <array>
#include <numeric>

namespace {

template <class T>
std::vector<T> inOrder(const std::vector<T> &values, const std::vector<int> &order)
{
  std::vector<T> result;
  if (values.empty())
    return result;
  result.reserve(order.size());
  for (const int i : order)
    result.push_back(values[i]);
  return result;
}

double extentOf(const std::vector<double> &values)
{
  const auto range = std::minmax_element(values.begin(), values.end());
  return values.empty() ? 0. : *range.second - *range.first;
}

/// The axes, those along which the search is shortest against the extent first.
std::array<int, 3> axesByReach(const std::vector<double> (&local)[3],
                               const NgcVarioBlocks::Bands &bands)
{
  std::array<int, 3> axes{0, 1, 2};
  std::array<double, 3> reach;
  for (int axis = 0; axis < 3; ++axis)
    reach[axis] = extentOf(local[axis]) / std::max(bands.band[axis], 1e-300);
  std::stable_sort(axes.begin(), axes.end(),
                   [&reach](int a, int b) { return reach[a] > reach[b]; });
  return axes;
}

}  // namespace

NgcVarioSamples NgcVarioSamples::ordered(const std::vector<int> &order) const
{
  NgcVarioSamples result;
  result.x = inOrder(x, order);
  result.y = inOrder(y, order);
  result.z = inOrder(z, order);
  for (const std::vector<double> &variable : values)
    result.values.push_back(inOrder(variable, order));
  result.weights = inOrder(weights, order);
  result.codes = inOrder(codes, order);
  result.numbers = inOrder(numbers, order);
  return result;
}

NgcVarioBlocks::NgcVarioBlocks(const NgcVarioSamples &samples, const NbgRotation &frame,
                               const Bands &bands, int sortingAxis, int maximumCount)
{
  const int n = samples.count();
  std::vector<double> local[3];
  for (int i = 0; i < n; ++i) {
    const NbgVector3D u = frame.worldToLocal(NbgVector3D(
        samples.x[i] - samples.x[0], samples.y[i] - samples.y[0], samples.z[i] - samples.z[0]));
    local[0].push_back(u.x());
    local[1].push_back(u.y());
    local[2].push_back(u.z());
  }
  const std::array<int, 3> axes = axesByReach(local, bands);
  const std::vector<double> &across = local[axes[0]];
  const std::vector<double> &along = local[axes[1]];
  // Above what turning the positions into the frame rounds.
  const double margin = 1e-12 * (extentOf(local[0]) + extentOf(local[1]) + extentOf(local[2]));
  _acrossBand = bands.band[axes[0]] * (1. + 1e-12) + margin;
  _alongBand = bands.band[axes[1]] * (1. + 1e-12) + margin;

  std::vector<int> order(n);
  std::iota(order.begin(), order.end(), 0);
  std::stable_sort(order.begin(), order.end(),
                   [&across](int a, int b) { return across[a] < across[b]; });
  for (int first = 0; first < n; first += maximumCount) {
    const int last = std::min(n, first + maximumCount);
    _blocks.push_back({first, last, across[order[first]], across[order[last - 1]]});
    std::stable_sort(order.begin() + first, order.begin() + last,
                     [&along](int a, int b) { return along[a] < along[b]; });
  }

  _samples = samples.ordered(order);
  _along = inOrder(along, order);
  _sorting.reserve(n);
  for (const int i : order)
    _sorting.push_back(float(local[sortingAxis][i]));
  _ranks = std::move(order);
}

NgcVarioBlocks::NgcVarioBlocks(NgcVarioSamples samples, std::vector<Block> blocks,
                               std::vector<double> along, double band)
    : _samples(std::move(samples)),
      _blocks(std::move(blocks)),
      _along(along),
      _sorting(std::move(along)),
      _ranks(_samples.count()),
      _alongBand(band * (1. + 1e-12))
{
  std::vector<int> order(_samples.count());
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [this](int a, int b) { return _samples.numbers[a] < _samples.numbers[b]; });
  for (std::size_t rank = 0; rank < order.size(); ++rank)
    _ranks[order[rank]] = int(rank);
}
