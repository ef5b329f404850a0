// The road of a kriging run, loading and search included, beside the bare arithmetic: kd-tree
// query, covariances, one LAPACK solve. Both sum their estimates, and a wrong sum is an error.

#include "BenchPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/provider/NbpMemoryProviderGridW.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcKriging.h"

#include <benchmark/benchmark.h>
#include <mkl.h>
#include <nanoflann.hpp>

#include <algorithm>
#include <cmath>

namespace {

constexpr double nugget = 0.1;
constexpr double sill = 0.9;
constexpr double range = 200.;

/// Sums of the estimates, computed with two independent programs that agree on all digits.
double expectedSum(int nSamples, int side, int nNeighbors)
{
  if (nSamples == 10000 && side == 250 && nNeighbors == 16)
    return -612.1098681;
  if (nSamples == 10000 && side == 250 && nNeighbors == 32)
    return -623.9902893;
  return nSamples == 1000 && side == 100 && nNeighbors == 0 ? -7.571828825 : NAN;
}

bool agrees(double sum, double expected)
{
  return std::isnan(expected) || std::abs(sum - expected) < 1e-7 * std::abs(expected);
}

struct Cloud
{
  const bench::Points &points;

  std::size_t kdtree_get_point_count() const { return points.x.size(); }
  double kdtree_get_pt(std::size_t i, std::size_t axis) const
  {
    return axis == 0 ? points.x[i] : points.y[i];
  }
  template <class Box>
  bool kdtree_get_bbox(Box &) const
  {
    return false;
  }
};

double spherical(double distance)
{
  const double u = std::min(1., distance / range);
  return sill - sill * 0.5 * u * (3. - u * u);
}

double bareKriging(const bench::Points &points, int side, int k)
{
  const Cloud cloud{points};
  using Metric = nanoflann::L2_Simple_Adaptor<double, Cloud>;
  nanoflann::KDTreeSingleIndexAdaptor<Metric, Cloud, 2, unsigned> tree(2, cloud, {10});
  tree.buildIndex();

  const int n = k + 1;
  const int one = 1;
  int work = 64 * n;
  int info = 0;
  std::vector<double> lhs(std::size_t(n * n)), rhs(n), solution(n), scratch(work), squared(k);
  std::vector<unsigned> ranks(k);
  std::vector<int> pivots(n);
  double sum = 0.;
  for (int target = 0; target < side * side; ++target) {
    const double point[2] = {(target % side + 0.5) * 1000. / side,
                             (target / side + 0.5) * 1000. / side};
    tree.knnSearch(point, std::size_t(k), ranks.data(), squared.data());
    for (int j = 0; j < k; ++j) {
      for (int i = 0; i <= j; ++i)
        lhs[i + j * n] = spherical(std::hypot(points.x[ranks[i]] - points.x[ranks[j]],
                                              points.y[ranks[i]] - points.y[ranks[j]]));
      lhs[j + j * n] += nugget;
      lhs[j + k * n] = 1.;
      solution[j] = rhs[j] = spherical(std::sqrt(squared[j]));
    }
    lhs[k + k * n] = 0.;
    solution[k] = rhs[k] = 1.;
    dsysv("U", &n, &one, lhs.data(), &n, pivots.data(), solution.data(), &n, scratch.data(), &work,
          &info);
    double variance = nugget + sill - solution[k];
    for (int j = 0; j < k; ++j) {
      sum += solution[j] * points.z[ranks[j]];
      variance -= solution[j] * rhs[j];
    }
    benchmark::DoNotOptimize(variance);
  }
  return sum;
}

double krige(const bench::Points &points, int side, int nNeighbors, int nThreads, QString &failure)
{
  const qint64 n = qint64(points.x.size());
  const auto samples = QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D, n);
  samples->addXVariable(points.x);
  samples->addYVariable(points.y);
  const QString z = samples->addVariable(QStringLiteral("z"), points.z);
  NgdDataSetPoints input;
  input.setDataProvider(samples);
  input.assignVariable(Nbd::Role::V, z);

  NbgGeomGrid geometry;
  geometry.setNodesNumber2D(side, side);
  geometry.setCellSize(NbgVector3D(1000. / side, 1000. / side, 1.));
  geometry.setOriginCentered(NbgVector3D(500. / side, 500. / side, 0.));
  const auto grid = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  NgdDataSetGrid output;
  output.setDataProvider(grid);
  const QString estimate =
      grid->addEmptyVariableSimple(QStringLiteral("estimate"), Nbd::TYPE_DOUBLE);
  output.assignVariable(Nbd::Role::V, estimate);
  output.assignVariable(Nbd::Role::STDEV,
                        grid->addEmptyVariableSimple(QStringLiteral("stdev"), Nbd::TYPE_DOUBLE));

  NgmVModel model(1);
  model.setNugget(0, 0, nugget);
  model.setRangeIsotropic(model.addStructure(QStringLiteral("Spherical"), sill), range);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input);
  kriging.setOutputDataSet(output);
  kriging.setVarioModel(model);
  if (nNeighbors > 0) {
    NgmNeighborhoodMoving neighborhood;
    neighborhood.setEllipseSize(NbgVector3D(2000., 2000., 2000.));
    neighborhood.setSectors(1, nNeighbors, false);
    kriging.setUsingMovingNeighborhood(neighborhood);
  } else {
    kriging.setUsingUniqueNeighborhood();
  }
  kriging.setNThread(nThreads);
  if (kriging.execute() != NbcAProgress::COMPLETED)
    failure = kriging.getErrorMessage();

  NbdVariableDouble values;
  values.resizeAndFill(side * side);
  const NbiIntervalIntSmall all = NbiIntervalIntSmall::fromLength(side);
  grid->readGrid(estimate, all, all, NbiIntervalIntSmall::fromLength(1), values);
  double sum = 0.;
  for (int i = 0; i < side * side; ++i)
    sum += values.getArrayConst()[i];
  return sum;
}

void reportTargets(benchmark::State &state, int nTargets)
{
  state.counters["target"] = benchmark::Counter(
      nTargets, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void bareMoving(benchmark::State &state)
{
  mkl_set_num_threads(1);
  const bench::Points points(int(state.range(0)));
  const int side = int(state.range(1));
  const int k = int(state.range(2));
  for (auto _ : state) {
    if (!agrees(bareKriging(points, side, k), expectedSum(int(points.x.size()), side, k)))
      state.SkipWithError("wrong sum of estimates");
  }
  reportTargets(state, side * side);
}

/// samples, targets along one side, neighbors (0: all), threads
void kriging(benchmark::State &state)
{
  const bench::Points points(int(state.range(0)));
  const int side = int(state.range(1));
  const int k = int(state.range(2));
  for (auto _ : state) {
    QString failure;
    const double sum = krige(points, side, k, int(state.range(3)), failure);
    if (!failure.isEmpty())
      state.SkipWithError(qPrintable(failure));
    else if (!agrees(sum, expectedSum(int(points.x.size()), side, k)))
      state.SkipWithError("wrong sum of estimates");
  }
  reportTargets(state, side * side);
}

BENCHMARK(bareMoving)
    ->Args({10000, 250, 16})
    ->Args({10000, 250, 32})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(kriging)
    ->Args({10000, 250, 16, 1})
    ->Args({10000, 250, 16, 2})
    ->Args({10000, 250, 32, 1})
    ->Args({10000, 250, 32, 2})
    ->Args({1000, 100, 0, 1})
    ->Args({1000, 100, 0, 2})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char **argv)
{
  NgcKriging::initMKLThreading();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
