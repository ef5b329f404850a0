// Cross-validation beside the kriging of as many targets, loading and search included. The sum of
// squared errors is checked against a plain leave-one-out that scans all samples.

#include "BenchPoints.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/provider/NbpMemoryProviderPointsW.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/interpol/NgcCrossValidation.h"
#include "geos/interpol/NgcKriging.h"

#include <benchmark/benchmark.h>
#include <mkl.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace {

constexpr double nugget = 0.1;
constexpr double sill = 0.9;
constexpr double range = 200.;

double spherical(double distance)
{
  const double u = std::min(1., distance / range);
  return sill - sill * 0.5 * u * (3. - u * u);
}

/// The k samples nearest to a sample, without it.
std::vector<int> findOthers(const bench::Points &points, int target, int k)
{
  std::vector<int> ranks(points.x.size());
  std::iota(ranks.begin(), ranks.end(), 0);
  const auto squared = [&points, target](int rank) {
    const double dx = points.x[rank] - points.x[target];
    const double dy = points.y[rank] - points.y[target];
    return dx * dx + dy * dy;
  };
  std::partial_sort(ranks.begin(), ranks.begin() + k + 1, ranks.end(),
                    [&](int a, int b) { return squared(a) < squared(b); });
  return std::vector<int>(ranks.begin() + 1, ranks.begin() + k + 1);
}

/// Sum of squared errors of leave-one-out ordinary kriging from the k nearest.
double calcBareSum(const bench::Points &points, int k)
{
  const int n = k + 1, one = 1;
  std::vector<double> lhs(std::size_t(n * n)), solution(n);
  std::vector<int> pivots(n);
  double sum = 0.;
  for (int target = 0; target < int(points.x.size()); ++target) {
    const std::vector<int> ranks = findOthers(points, target, k);
    for (int j = 0; j < k; ++j) {
      for (int i = 0; i <= j; ++i)
        lhs[i + j * n] = spherical(std::hypot(points.x[ranks[i]] - points.x[ranks[j]],
                                              points.y[ranks[i]] - points.y[ranks[j]]));
      lhs[j + j * n] += nugget;
      lhs[j + k * n] = 1.;
      solution[j] = spherical(
          std::hypot(points.x[ranks[j]] - points.x[target], points.y[ranks[j]] - points.y[target]));
    }
    lhs[k + k * n] = 0.;
    solution[k] = 1.;
    int info = 0, work = 64 * n;
    std::vector<double> scratch(work);
    dsysv("U", &n, &one, lhs.data(), &n, pivots.data(), solution.data(), &n, scratch.data(), &work,
          &info);
    double error = -points.z[target];
    for (int j = 0; j < k; ++j)
      error += solution[j] * points.z[ranks[j]];
    sum += error * error;
  }
  return sum;
}

/// The samples and, on the same file, outputs under roles.
struct File
{
  explicit File(const bench::Points &points, const QStringList &roles)
      : provider(QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_2D,
                                                                  qint64(points.x.size())))
  {
    provider->addXVariable(points.x);
    provider->addYVariable(points.y);
    input.setDataProvider(provider);
    input.assignVariable(Nbd::Role::V, provider->addVariable(QStringLiteral("z"), points.z));
    output.setDataProvider(provider);
    for (const QString &role : roles)
      output.assignVariable(role, provider->addEmptyVariableSimple(role, Nbd::TYPE_DOUBLE));
  }

  double sumOf(const QString &name) const
  {
    NbdVariableDouble values;
    const qint64 n = provider->getSampleCount();
    values.resizeAndFill(int(n));
    provider->readVariable(provider->getIdFromName(name), NbiIntervalIntLarge::fromLength(n),
                           values, 0);
    return std::accumulate(values.getArrayConst(), values.getArrayConst() + n, 0.);
  }

  QSharedPointer<NbpMemoryProviderPointsW> provider;
  NgdDataSetPoints input;
  NgdDataSetPoints output;
};

void run(benchmark::State &state, NgcAKriging &kriging, const File &file, int k, int nThreads)
{
  NgmVModel model(1);
  model.setNugget(0, 0, nugget);
  model.setRangeIsotropic(model.addStructure(QStringLiteral("Spherical"), sill), range);
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(2000., 2000., 2000.));
  neighborhood.setSectors(1, k, false);
  kriging.setInputDataSet(file.input);
  kriging.setOutputDataSet(file.output);
  kriging.setVarioModel(model);
  kriging.setUsingMovingNeighborhood(neighborhood);
  kriging.setNThread(nThreads);
  if (kriging.execute() != NbcAProgress::COMPLETED)
    state.SkipWithError(qPrintable(kriging.getErrorMessage()));
}

void reportTargets(benchmark::State &state)
{
  state.counters["target"] =
      benchmark::Counter(double(state.range(0)), benchmark::Counter::kIsIterationInvariantRate |
                                                     benchmark::Counter::kInvert);
}

/// samples, neighbors, threads
void kriging(benchmark::State &state)
{
  const bench::Points points(int(state.range(0)));
  const File file(points, {Nbd::Role::V, Nbd::Role::STDEV});
  for (auto _ : state) {
    NgcKriging calculator(QStringLiteral("KRIGING"));
    run(state, calculator, file, int(state.range(1)), int(state.range(2)));
  }
  reportTargets(state);
}

/// samples, neighbors, threads
void crossValidation(benchmark::State &state)
{
  const bench::Points points(int(state.range(0)));
  const File file(points,
                  {Nbd::Role::V, Nbd::Role::STDEV, Nbd::Role::XVAL_ERR, Nbd::Role::XVAL_SQ_ERR,
                   Nbd::Role::XVAL_ST_ERR, Nbd::Role::XVAL_SQ_ST_ERR});
  const double expected = calcBareSum(points, int(state.range(1)));
  for (auto _ : state) {
    NgcCrossValidation calculator(QStringLiteral("XVAL"));
    run(state, calculator, file, int(state.range(1)), int(state.range(2)));
  }
  if (std::abs(file.sumOf(Nbd::Role::XVAL_SQ_ERR) - expected) > 1e-7 * expected)
    state.SkipWithError("wrong sum of squared errors");
  reportTargets(state);
}

BENCHMARK(kriging)
    ->Args({5000, 16, 1})
    ->Args({5000, 16, 2})
    ->UseRealTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK(crossValidation)
    ->Args({5000, 16, 1})
    ->Args({5000, 16, 2})
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
