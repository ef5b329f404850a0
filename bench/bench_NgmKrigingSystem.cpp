// Systems of ordinary kriging by target: solved for each target (moving neighborhood), and with the
// inverse shared by all targets (unique neighborhood), one target or a batch at a time. The sum of
// the weights has to be 1.

#include "BenchPoints.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "geos/vmodel/NgmVModel.h"

#include <benchmark/benchmark.h>

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

}  // namespace

BENCHMARK_MAIN();
