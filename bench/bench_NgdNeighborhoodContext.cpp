// Neighborhood search: time per target, the share of targets that the index served with the nearest
// samples, and the building of the index beside bare nanoflann.

#include "BenchPoints.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "data/private/NgdKdTree.h"
#include "data/private/NgdNearestSet.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/data/NgdNeighborhoodContext.h"
#include "geos/data/NgdNeighborhoodMoving.h"

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <nanoflann.hpp>

#include <cmath>
#include <map>
#include <memory>

namespace {

template <int nDim>
struct Cloud
{
  explicit Cloud(const NbdDataPoints &data)
  {
    for (int i = 0; i < data.getNSamples(); ++i)
      for (int axis = 0; axis < nDim; ++axis)
        coordinates.push_back(data.getCoord(i, axis));
  }

  std::size_t kdtree_get_point_count() const { return coordinates.size() / nDim; }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const
  {
    return coordinates[i * nDim + axis];
  }
  template <class Box>
  bool kdtree_get_bbox(Box &) const
  {
    return false;
  }

  std::vector<double> coordinates;
};

std::vector<double> elevations(int n)
{
  std::vector<double> z(n);
  for (int i = 0; i < n; ++i)
    z[i] = 1000. * bench::uniform(20240602, i);
  return z;
}

/// Samples and what is needed to search them.
class Samples
{
public:
  Samples(int n, int nDimensions) : moving(Nbd::Role::V)
  {
    // Values play no part: their waves would take longer than everything else.
    std::vector<double> x(n), y(n);
    for (int i = 0; i < n; ++i) {
      x[i] = 1000. * bench::uniform(20240601, 2 * i);
      y[i] = 1000. * bench::uniform(20240601, 2 * i + 1);
    }
    const auto points = QSharedPointer<NbpMemoryProviderPointsW>::create(
        nDimensions == 3 ? NbgEDimension::DIM_3D : NbgEDimension::DIM_2D, qint64(n));
    points->addXVariable(x);
    points->addYVariable(y);
    if (nDimensions == 3)
      points->addZVariable(elevations(n));
    dataSet.setDataProvider(points);
    dataSet.assignVariable(Nbd::Role::V, points->addVariable(QStringLiteral("v"), x));
    dataSet.openAllVariables();
    moving.setDataset(&dataSet);
  }

  NgdDataSetPoints dataSet;
  NgdNeighborhoodMoving moving;
};

Samples &samples(int n, int nDimensions)
{
  static std::map<std::pair<int, int>, std::unique_ptr<Samples>> all;
  std::unique_ptr<Samples> &one = all[{n, nDimensions}];
  if (!one)
    one = std::make_unique<Samples>(n, nDimensions);
  return *one;
}

/// Targets in grid order, the third axis fastest; as many as a side of `side` nodes gives.
std::vector<NbgVector3D> targets(int side, int nDimensions)
{
  std::vector<NbgVector3D> all;
  const auto at = [side](int i) { return (i + 0.5) * 1000. / side; };
  for (int i = 0; i < side; ++i)
    for (int j = 0; j < side; ++j)
      for (int k = 0; k < (nDimensions == 3 ? side : 1); ++k)
        all.push_back(NbgVector3D(at(i), at(j), nDimensions == 3 ? at(k) : 0.));
  return all;
}

double usedBytes()
{
  malloc_trim(0);
  const auto used = mallinfo2();
  return double(used.uordblks + used.hblkhd);
}

/// What a run needs per sample above the loaded columns: the index and one context.
double bytesPerSample(Samples &data, const NgmNeighborhoodMoving &parameters)
{
  data.moving.setParameters(parameters);
  const NgdNeighborhoodMoving &moving = data.moving;
  data.moving.loadData();
  data.moving.setParameters(parameters);
  const double before = usedBytes();
  data.moving.loadData();
  NgdNeighborhoodContext context;
  context.initialize(moving, moving.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
  return (usedBytes() - before) / moving.getAllData().getNSamples();
}

void run(benchmark::State &state, const NgmNeighborhoodMoving &parameters, int n, int nDimensions,
         int side)
{
  Samples &data = samples(n, nDimensions);
  state.counters["bytes"] = bytesPerSample(data, parameters);
  NgdNeighborhoodContext context;
  context.initialize(data.moving,
                     data.moving.getAllData().getDataTableConst().getVarsNumeric(Nbd::Role::V));
  const std::vector<NbgVector3D> locations = targets(side, nDimensions);
  qint64 nSelected = 0;
  for (auto _ : state) {
    for (const NbgVector3D &location : locations) {
      int level = 0;
      context.setTargetLocation(location, &level);
      nSelected += context.getNNeighbors();
    }
  }
  const double nTargets = double(locations.size()) * double(state.iterations());
  state.counters["target"] =
      benchmark::Counter(nTargets, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["nearest"] = double(context.getNNearestSearches()) / context.getNSearches();
  state.counters["neighbors"] = double(nSelected) / nTargets;
}

void nearest(benchmark::State &state)
{
  const int nDimensions = int(state.range(1));
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize(NbgVector3D(2000., 2000., 2000.));
  parameters.setSectors(1, int(state.range(2)), false);
  run(state, parameters, int(state.range(0)), nDimensions, nDimensions == 3 ? 60 : 500);
}

/// Radius 80: an ellipsoid of some 200 samples of 10,000.
void sectors(benchmark::State &state)
{
  const double radius = state.range(1);
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize(NbgVector3D(radius, radius, radius));
  parameters.setSectors(8, 4, false);
  run(state, parameters, int(state.range(0)), 2, 300);
}

/// A flat ellipsoid, which must not cost what the sphere around it costs.
void flat(benchmark::State &state)
{
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize(NbgVector3D(1000., 1000., 5.));
  parameters.setSectors(1, 16, false);
  parameters.setRuleAnisotropicDistances(state.range(1) != 0);
  run(state, parameters, int(state.range(0)), 3, 10);
}

NbdDataPoints loaded(int n, int nDimensions)
{
  Samples &data = samples(n, nDimensions);
  data.moving.setParameters(NgmNeighborhoodMoving());
  data.moving.loadData();
  return data.moving.getAllData();
}

void buildIndex(benchmark::State &state)
{
  const int nDimensions = int(state.range(1));
  const NbdDataPoints data = loaded(int(state.range(0)), nDimensions);
  const std::size_t before = mallinfo2().uordblks + mallinfo2().hblkhd;
  for (auto _ : state) {
    NgdSortedDataKdTree tree;
    tree.setDimension(nDimensions);
    tree.build(data);
    state.PauseTiming();
    state.counters["bytes"] =
        double(mallinfo2().uordblks + mallinfo2().hblkhd - before) / state.range(0);
    state.ResumeTiming();
  }
}

template <int nDim>
using BareTree =
    nanoflann::KDTreeSingleIndexAdaptor<nanoflann::L2_Simple_Adaptor<double, Cloud<nDim>>,
                                        Cloud<nDim>, nDim, unsigned>;

/// Sum of the squared distances from targets to the last one of their nearest.
template <int nDim>
double sumOfLast(const BareTree<nDim> &tree, const std::vector<NbgVector3D> &locations, int wanted)
{
  std::vector<unsigned> ranks(wanted);
  std::vector<double> squared(wanted);
  double sum = 0.;
  for (const NbgVector3D &location : locations) {
    tree.knnSearch(location.getData(), wanted, ranks.data(), squared.data());
    sum += squared.back();
  }
  return sum;
}

template <int nDim>
double sumOfLast(const NgdKdTree<nDim> &tree, const std::vector<NbgVector3D> &locations, int wanted)
{
  const NgdWidening widening(1e-12);
  std::vector<double> memory;
  double sum = 0.;
  for (const NbgVector3D &location : locations) {
    NgdNearestSet set(wanted, 1e10, nullptr, tree.order(), widening, memory);
    tree.search(location.getData(), set);
    sum += tree.squaredDistance(location.getData(), set.position(wanted - 1));
  }
  return sum;
}

/// The tree alone, or bare nanoflann.
template <int nDim, bool isBare>
void tree(benchmark::State &state)
{
  const Cloud<nDim> cloud(loaded(int(state.range(0)), nDim));
  const std::vector<NbgVector3D> locations = targets(nDim == 3 ? 40 : 250, nDim);
  const int wanted = int(state.range(1));
  const NgdKdTree<nDim> ours(cloud.coordinates);
  BareTree<nDim> bare(nDim, cloud, {10});
  bare.buildIndex();
  double sum = 0.;
  for (auto _ : state)
    sum = isBare ? sumOfLast<nDim>(bare, locations, wanted)
                 : sumOfLast<nDim>(ours, locations, wanted);
  // Distances that differ by less than a millionth may change places.
  if (!(std::abs(sum / sumOfLast<nDim>(bare, locations, wanted) - 1.) < 1e-6))
    state.SkipWithError("wrong distances");
  state.SetItemsProcessed(state.iterations() * qint64(locations.size()));
}

template <int nDim>
void buildBare(benchmark::State &state)
{
  const NbdDataPoints data = loaded(int(state.range(0)), nDim);
  const Cloud<nDim> cloud(data);
  using Metric = nanoflann::L2_Simple_Adaptor<double, Cloud<nDim>>;
  for (auto _ : state) {
    nanoflann::KDTreeSingleIndexAdaptor<Metric, Cloud<nDim>, nDim, unsigned> tree(nDim, cloud,
                                                                                  {10});
    tree.buildIndex();
    const auto *built = &tree;
    benchmark::DoNotOptimize(built);
  }
}

}  // namespace

BENCHMARK(nearest)
    ->Args({10000, 2, 16})
    ->Args({1000000, 2, 16})
    ->Args({500000, 3, 30})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(sectors)
    ->Args({10000, 80})
    ->Args({10000, 160})
    ->Args({10000, 320})
    ->Args({10000, 2000})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(flat)->Args({500000, 0})->Args({500000, 1})->Unit(benchmark::kMillisecond);
void addQueries2D(benchmark::internal::Benchmark *benchmark)
{
  benchmark->Args({10000, 17})->Args({10000, 33})->Args({1000000, 17});
}
BENCHMARK_TEMPLATE(tree, 2, true)->Apply(addQueries2D)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(tree, 2, false)->Apply(addQueries2D)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(tree, 3, true)->Args({500000, 31})->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(tree, 3, false)->Args({500000, 31})->Unit(benchmark::kMillisecond);
BENCHMARK(buildIndex)
    ->Args({10000, 2})
    ->Args({1000000, 2})
    ->Args({500000, 3})
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(buildBare, 2)->Arg(10000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(buildBare, 3)->Arg(500000)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
