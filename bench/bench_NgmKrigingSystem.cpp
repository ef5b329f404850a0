// Systems of ordinary kriging and cokriging by target: solved for each target (moving
// neighborhood), and shared by all targets (unique neighborhood), one target or a batch at a time.
// The sum of the weights has to be 1. The bare routines do the same arithmetic on plain arrays.

#include "BenchPoints.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "geos/vmodel/NgmVModel.h"

#include <benchmark/benchmark.h>
#include <mkl.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr int BATCH = 256;

NgmVModel sphericalModel()
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.1);
  model.addStructure(QStringLiteral("Spherical"), 0.9);
  model.setRangeIsotropic(0, 200.);
  return model;
}

/// The first n of the benchmark points.
class Neighborhood
{
public:
  explicit Neighborhood(int n) : _points(n), _z(n, 0.), _value(_points.z.data())
  {
    samples.n = n;
    samples.x = _points.x.data();
    samples.y = _points.y.data();
    samples.z = _z.data();
    samples.values = &_value;
  }
  Neighborhood(const Neighborhood &) = delete;
  Neighborhood &operator=(const Neighborhood &) = delete;

  NgmKrigingSamples samples;

private:
  bench::Points _points;
  std::vector<double> _z;
  const double *_value;
};

double coordinate(int target)
{
  return 1000. * (target % BATCH) / BATCH;
}

void checkSum(benchmark::State &state, const NgmAKrigingSystem &system)
{
  if (!(std::abs(system.getSumOfWeights(0, 0) - 1.) < 1e-9))
    state.SkipWithError("the weights do not sum to 1");
}

void solvedForEachTarget(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const Neighborhood neighborhood(int(state.range(0)));
  const NgmVModel model = sphericalModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  NgmKrigingSystem system;
  NgmTarget target;
  QVector<double> estimate, variance;
  int k = 0;
  for (auto _ : state) {
    target.setCenter(NbgVector3D(coordinate(k++), 500.));
    system.resetSystem(neighborhood.samples.n, target.getCenter());
    system.buildSystem(model, neighborhood.samples, target, cache.get());
    system.solve();
    system.krigingResults(neighborhood.samples.values, estimate);
    system.computeVariance({1.}, variance);
  }
  checkSum(state, system);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(solvedForEachTarget)->Arg(16)->Arg(32);

void sharedInverse(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const bool withVariance = state.range(1) != 0;
  const Neighborhood neighborhood(int(state.range(0)));
  const NgmVModel model = sphericalModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  NgmKrigingSystemDual dual;
  dual.buildSystem(model, neighborhood.samples, 1);
  NgmKrigingSystemDualContext context(dual);
  NgmTarget target;
  QVector<double> estimate, variance;
  int k = 0;
  for (auto _ : state) {
    target.setCenter(NbgVector3D(coordinate(k++), 500.));
    context.krigingResultsPoint(target, model, neighborhood.samples, estimate, cache.get());
    if (withVariance) {
      context.computeWeights();
      context.computeVariance({1.}, variance);
    }
  }
  if (withVariance)
    checkSum(state, context);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(sharedInverse)->ArgsProduct({{155, 1000}, {0, 1}});

void sharedInverseInBatches(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const bool withVariance = state.range(1) != 0;
  const Neighborhood neighborhood(int(state.range(0)));
  const NgmVModel model = sphericalModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  NgmKrigingSystemDual dual;
  dual.buildSystem(model, neighborhood.samples, 1);
  NgmKrigingSystemDualContext context(dual);
  std::vector<double> x(BATCH), y(BATCH, 500.), z(BATCH, 0.), estimates(BATCH), variances(BATCH);
  for (int k = 0; k < BATCH; ++k)
    x[k] = coordinate(k);
  for (auto _ : state) {
    context.prepareBatch(BATCH, x.data(), y.data(), z.data(), model, neighborhood.samples,
                         cache.get());
    context.computeBatchEstimates(estimates.data());
    if (withVariance) {
      context.computeBatchWeights();
      context.computeBatchVariances({1.}, variances.data());
    }
  }
  if (withVariance) {
    context.setCurrentTarget(BATCH / 2);
    checkSum(state, context);
  }
  state.SetItemsProcessed(state.iterations() * BATCH);
}
BENCHMARK(sharedInverseInBatches)->ArgsProduct({{155, 1000}, {0, 1}});

/// Correlation of two points at this separation.
double spherical(double dx, double dy)
{
  const double u = std::min(1., std::sqrt(dx * dx + dy * dy) / 200.);
  return 1. - 0.5 * u * (3. - u * u);
}

constexpr double nuggets[] = {0.1, 0.05, 0.2};
constexpr double sills[] = {0.9, 0.6, 0.8};

/// Two variables with the same structure.
NgmVModel coregionalization()
{
  NgmMatrix nugget(2, 2, true);
  NgmMatrix sill(2, 2, true);
  for (int i = 0; i < 2; ++i)
    for (int j = 0; j <= i; ++j) {
      nugget.setElement(i, j, i != j ? nuggets[1] : nuggets[2 * i]);
      sill.setElement(i, j, i != j ? sills[1] : sills[2 * i]);
    }
  NgmVModel model(2);
  model.setNuggetMatrix(nugget);
  model.addStructure(QStringLiteral("Spherical"), sill);
  model.setRangeIsotropic(0, 200.);
  return model;
}

/// Samples of two variables.
class PairsOfValues
{
public:
  explicit PairsOfValues(int n) : _points(n), _z(n, 0.), _second(_points.z)
  {
    std::reverse(_second.begin(), _second.end());
    _values[0] = _points.z.data();
    _values[1] = _second.data();
    samples.n = n;
    samples.x = _points.x.data();
    samples.y = _points.y.data();
    samples.z = _z.data();
    samples.values = _values;
  }
  PairsOfValues(const PairsOfValues &) = delete;
  PairsOfValues &operator=(const PairsOfValues &) = delete;

  NgmKrigingSamples samples;

private:
  bench::Points _points;
  std::vector<double> _z;
  std::vector<double> _second;
  const double *_values[2];
};

void bareCokriging(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const int k = int(state.range(0));
  const PairsOfValues pairs(k);
  const double *x = pairs.samples.x;
  const double *y = pairs.samples.y;
  const int n = 2 * k + 2;
  const int nRhs = 2;
  int work = 64 * n;
  int info = 0;
  std::vector<double> lhs(std::size_t(n * n)), rhs(2 * n), solution(2 * n), scratch(work);
  std::vector<int> pivots(n);
  int target = 0;
  double sumOfWeights = 0.;
  for (auto _ : state) {
    const double px = coordinate(target++);
    for (int j = 0; j < k; ++j) {
      double *column = &lhs[std::size_t(2 * j) * n];
      for (int i = 0; i <= j; ++i) {
        const double rho = spherical(x[i] - x[j], y[i] - y[j]);
        column[2 * i] = rho * sills[0];
        column[2 * i + n] = column[2 * i + 1] = rho * sills[1];
        column[2 * i + 1 + n] = rho * sills[2];
      }
      column[2 * j] += nuggets[0];
      column[2 * j + n] += nuggets[1];
      column[2 * j + 1 + n] += nuggets[2];
      const double rho = spherical(x[j] - px, y[j] - 500.);
      rhs[2 * j] = rho * sills[0];
      rhs[2 * j + n] = rhs[2 * j + 1] = rho * sills[1];
      rhs[2 * j + 1 + n] = rho * sills[2];
    }
    for (int u = 0; u < 2; ++u) {
      double *column = &lhs[std::size_t(2 * k + u) * n];
      for (int i = 0; i < 2 * k; ++i)
        column[i] = i % 2 == u;
      column[2 * k] = column[2 * k + 1] = 0.;
      rhs[2 * k + u] = u == 0;
      rhs[2 * k + u + n] = u == 1;
    }
    solution = rhs;
    dsysv("U", &n, &nRhs, lhs.data(), &n, pivots.data(), solution.data(), &n, scratch.data(), &work,
          &info);
    double estimates[2] = {};
    double variances[2] = {nuggets[0] + sills[0], nuggets[2] + sills[2]};
    for (int t = 0; t < 2; ++t)
      for (int i = 0; i < n; ++i) {
        if (i < 2 * k)
          estimates[t] += solution[i + t * n] * pairs.samples.values[i % 2][i / 2];
        variances[t] -= solution[i + t * n] * rhs[i + t * n];
      }
    benchmark::DoNotOptimize(estimates);
    benchmark::DoNotOptimize(variances);
    sumOfWeights = 0.;
    for (int j = 0; j < k; ++j)
      sumOfWeights += solution[2 * j];
  }
  if (!(std::abs(sumOfWeights - 1.) < 1e-9))
    state.SkipWithError("the weights do not sum to 1");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(bareCokriging)->Arg(16);

void cokriging(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const PairsOfValues pairs(int(state.range(0)));
  const NgmVModel model = coregionalization();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  NgmKrigingSystem system(2, false, false, 0);
  NgmTarget target;
  const QVector<double> c00 = {model.getC0IJ(0, 0), model.getC0IJ(1, 1)};
  QVector<double> estimates, variances;
  int k = 0;
  for (auto _ : state) {
    target.setCenter(NbgVector3D(coordinate(k++), 500.));
    system.resetSystem(pairs.samples.n, target.getCenter());
    system.buildSystem(model, pairs.samples, target, cache.get());
    system.solve();
    system.krigingResults(pairs.samples.values, estimates);
    system.computeVariance(c00, variances);
  }
  checkSum(state, system);
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(cokriging)->Arg(16);

// A unique neighborhood from the samples to the estimates and variances of 100 x 100 targets.

constexpr int SIDE = 100;

double place(int index)
{
  return (index + 0.5) * 1000. / SIDE;
}

/// Sums of the estimates of an independent program.
void checkEstimates(benchmark::State &state, double sum)
{
  const double expected = state.range(0) == 1000 ? -7.571828825 : NAN;
  if (!std::isnan(expected) && !(std::abs(sum - expected) < 1e-7 * std::abs(expected)))
    state.SkipWithError("wrong estimates");
}

double bareUnique(const NgmKrigingSamples &samples)
{
  const int n = samples.n;
  std::vector<double> a(std::size_t(n) * n);
  for (int j = 0; j < n; ++j) {
    for (int i = j; i < n; ++i)
      a[i + std::size_t(j) * n] =
          0.9 * spherical(samples.x[i] - samples.x[j], samples.y[i] - samples.y[j]);
    a[std::size_t(j) * (n + 1)] += 0.1;
  }
  LAPACKE_dpotrf(LAPACK_COL_MAJOR, 'L', n, a.data(), n);
  std::vector<double> u(n, 1.), w(samples.values[0], samples.values[0] + n),
      v(std::size_t(n) * BATCH);
  for (std::vector<double> *column : {&u, &w})
    cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, n, a.data(), n,
                column->data(), 1);
  const double uu = cblas_ddot(n, u.data(), 1, u.data(), 1);
  const double mean = cblas_ddot(n, u.data(), 1, w.data(), 1) / uu;
  cblas_daxpy(n, -mean, u.data(), 1, w.data(), 1);
  double sum = 0., sumOfVariances = 0.;
  for (int first = 0; first < SIDE * SIDE; first += BATCH) {
    const int m = std::min(BATCH, SIDE * SIDE - first);
    for (int b = 0; b < m; ++b) {
      const double x = place((first + b) % SIDE);
      const double y = place((first + b) / SIDE);
      for (int i = 0; i < n; ++i)
        v[i + std::size_t(b) * n] = 0.9 * spherical(samples.x[i] - x, samples.y[i] - y);
    }
    cblas_dtrsm(CblasColMajor, CblasLeft, CblasLower, CblasNoTrans, CblasNonUnit, n, m, 1.,
                a.data(), n, v.data(), n);
    for (int b = 0; b < m; ++b) {
      const double *column = &v[std::size_t(b) * n];
      const double r = 1. - cblas_ddot(n, u.data(), 1, column, 1);
      sum += mean + cblas_ddot(n, w.data(), 1, column, 1);
      sumOfVariances += 1. - cblas_ddot(n, column, 1, column, 1) + r * r / uu;
    }
  }
  benchmark::DoNotOptimize(sumOfVariances);
  return sum;
}

void bareUniqueNeighborhood(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const Neighborhood neighborhood(int(state.range(0)));
  double sum = 0.;
  for (auto _ : state)
    sum = bareUnique(neighborhood.samples);
  checkEstimates(state, sum);
  state.SetItemsProcessed(state.iterations() * SIDE * SIDE);
}
BENCHMARK(bareUniqueNeighborhood)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

double krigeUnique(const NgmKrigingSamples &samples, bool withWeights)
{
  const NgmVModel model = sphericalModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  NgmKrigingSystemDual dual;
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext context(dual);
  std::vector<double> x(BATCH), y(BATCH), z(BATCH, 0.), estimates(BATCH), variances(BATCH);
  double sum = 0.;
  for (int first = 0; first < SIDE * SIDE; first += BATCH) {
    const int m = std::min(BATCH, SIDE * SIDE - first);
    for (int b = 0; b < m; ++b) {
      x[b] = place((first + b) % SIDE);
      y[b] = place((first + b) / SIDE);
    }
    context.prepareBatch(m, x.data(), y.data(), z.data(), model, samples, cache.get());
    context.computeBatchEstimates(estimates.data());
    if (withWeights)
      context.computeBatchWeights();
    context.computeBatchVariances({1.}, variances.data());
    for (int b = 0; b < m; ++b)
      sum += estimates[b];
  }
  return sum;
}

void uniqueNeighborhood(benchmark::State &state)
{
  NgmNumericLibrary::setThreads(1);
  const Neighborhood neighborhood(int(state.range(0)));
  double sum = 0.;
  for (auto _ : state)
    sum = krigeUnique(neighborhood.samples, state.range(1) != 0);
  checkEstimates(state, sum);
  state.SetItemsProcessed(state.iterations() * SIDE * SIDE);
}
BENCHMARK(uniqueNeighborhood)
    ->ArgsProduct({{1000, 2000}, {0, 1}})
    ->ArgNames({"samples", "weights"})
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
