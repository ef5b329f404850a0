#include "KrigingTestSupport.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/data/NbdVariableMulti.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "support/AllocationCounter.h"

using namespace testsupport;

namespace {

/// Two variables with drifts of both kinds, measurement errors and a missing datum.
class Setting
{
public:
  explicit Setting(int n)
      : model(meuseCoregionalization()),
        filtered(model.buildFilteredModel(true, {})),
        cache(NgmVModel::getCovaCache()),
        _samples(randomSamples(301, n, 2)),
        _drift(uniformVector(307, n, 0., 1.)),
        _errors(uniformVector(308, n, 0., 0.1))
  {
    _samples.values(0)[2] = NbbGlobal::D_FFFF;
    _drifts = _drift.data();
    _errorPointers[0] = _errors.data();
    _errorPointers[1] = nullptr;
    arrays = _samples;
    arrays.externalDrifts = &_drifts;
    arrays.errorStDevs = _errorPointers;
    block.setBlock(_cell());
  }
  Setting(const Setting &) = delete;

  static void configure(NgmAKrigingSystem &system)
  {
    NgmDriftModel polynomial;
    polynomial.addDrifts(0, 1, true, true, false);
    NgmExtDriftModel external;
    external.addDrift(1, 0);
    system.setDriftModel(polynomial);
    system.setExtDriftModel(external);
  }
  static constexpr int N_DRIFTS = 3;

  NgmVModel model;
  NgmVModel filtered;
  NgmVModelCovaCachePtr cache;
  NgmKrigingSamples arrays;
  NgmTarget point;
  NgmTarget block;
  double drift = 0.4;
  QVector<double> c00 = {10., 10.};
  QVector<double> out = {0., 0.};
  QVector<double> other = {0., 0.};

  void computeResults(const NgmAKrigingSystem &system)
  {
    system.krigingResults(arrays.values, out);
    system.computeVariance(c00, out);
    system.computeNonOptimVariance(c00, out);
    system.computeVarianceOfEstimates(out);
    system.computeCovarianceZZStar(other);
    system.computeCorrelationZZStar(c00, other, out, other);
    system.computeSlopeRegressionZZStar(other, out, other);
    system.computeKrigingEfficiency(c00, out, other);
    system.computeCovarianceZ1StarZStar(0, other);
    system.computeSumOfWeights(out);
    system.computeSumOfPositiveWeights(out);
    system.computeLagrange(out);
    system.getWeights(0, 1, weights);
  }

private:
  static NgmBlock _cell()
  {
    NgmBlock cell(false);
    cell.setSize(NbgVector3D(50., 50., 0.));
    cell.setDiscretizationPointsNumber(NbgIntVector3D(4, 4, 1));
    return cell;
  }

  Samples _samples;
  std::vector<double> _drift;
  std::vector<double> _errors;
  const double *_drifts;
  const double *_errorPointers[2];
  QVector<double> weights;
};

/// Nothing is counted under the sanitizers; the calls run all the same.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool COUNTS = false;
#else
constexpr bool COUNTS = true;
#endif

}  // namespace

TEST(NgmKrigingSystem, AllocatesNothingOnceItHasBeenAsLarge)
{
  const AllocationCounter whole;
  Setting setting(32);
  NgmKrigingSystem system(2, false, false, Setting::N_DRIFTS);
  Setting::configure(system);
  const auto krige = [&](int n, double x) {
    setting.arrays.n = n;
    setting.point.setCenter(NbgVector3D(x, 500.));
    setting.block.setCenter(NbgVector3D(x, 500.));
    const auto solve = [&] {
      ASSERT_EQ(system.solve(), 0);
      setting.computeResults(system);
    };
    system.resetSystem(n, setting.point.getCenter());
    system.buildSystem(setting.model, setting.arrays, setting.point, setting.cache.get(),
                       &setting.drift);
    solve();
    system.buildSystemBlock(setting.model, setting.arrays, setting.block, setting.cache.get(),
                            &setting.drift);
    solve();
    system.buildSystemFiltered(setting.model, setting.filtered, setting.arrays, setting.block,
                               setting.cache.get(), &setting.drift);
    solve();
  };
  krige(32, 1.);
  const AllocationCounter counter;
  for (int k = 0; k < 60; ++k)
    krige(6 + k % 27, 10. * k);
  EXPECT_EQ(counter.count(), 0);
  EXPECT_EQ(whole.count() > 0, COUNTS);
}

TEST(NgmKrigingSystem, ConvertsVariablesIntoMemoryThatItKeeps)
{
  Samples samples = randomSamples(331, 16);
  NbdVariableDouble x, y, z;
  x.setVector(samples.x());
  y.setVector(samples.y());
  z.setVector(std::vector<double>(16, 0.));
  NbdVariableFloat values, errors;
  for (const double value : samples.values(0)) {
    values.appendValue(value);
    errors.appendValue(0.1 * value);
  }
  const NgmVModel model = meuseModel();
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  const QList<NbdAVariableNumeric *> data = {&values};
  const QVector<double> none;
  NgmKrigingSystem system;
  system.setStDevMeasurementError({{0, &errors}});
  NgmTarget target;
  double sum = 0.;
  const auto krige = [&](double at) {
    target.setCenter(NbgVector3D(at, at));
    system.resetSystem(16, target.getCenter());
    system.buildSystem(model, x, y, z, {}, target, data, none, cache.get());
    ASSERT_EQ(system.solve(), 0);
    sum += system.krigingResult(values);
  };
  krige(1.);
  const AllocationCounter counter;
  for (int k = 0; k < 10; ++k)
    krige(100. * k);
  EXPECT_EQ(counter.count(), 0);
  EXPECT_GT(sum, 11.);
}

TEST(NgmKrigingSystemDualContext, AllocatesNothingOnceItHasBeenAsLarge)
{
  Setting setting(80);
  NgmKrigingSystemDual dual(80, 2, false, false, Setting::N_DRIFTS);
  Setting::configure(dual);
  dual.buildSystem(setting.model, setting.arrays, 1);
  NgmKrigingSystemDualContext context(dual);
  const std::vector<double> x = uniformVector(321, 128, 0., 1000.);
  const std::vector<double> z(128, 0.);
  const std::vector<double> drifts = uniformVector(322, 128, 0., 1.);
  const double *driftPointer = drifts.data();
  std::vector<double> results(256);
  const QMap<int, double> collocated = {{1, 1.5}};
  NbdVariableMulti data[2];
  for (NbdVariableMulti &variable : data) {
    variable.resizeAndFill(80);
    variable.setNRealizations(1);
  }
  const QList<NbdVariableMulti *> realizations = {&data[0], &data[1]};
  NgmCollocatedSystem bordered;
  QVector<double> &out = setting.out;
  const auto krige = [&](int n) {
    NgmVModelCovaCache *cache = setting.cache.get();
    context.prepareBatch(n, x.data(), x.data(), z.data(), setting.model, setting.arrays, cache,
                         &driftPointer);
    context.computeBatchEstimates(results.data());
    context.computeBatchVariances(setting.c00, results.data());
    context.computeBatchWeights();
    context.computeBatchVariances(setting.c00, results.data());
    context.setCurrentTarget(n - 1);
    setting.computeResults(context);
    setting.block.setCenter(NbgVector3D(n, 500.));
    context.startBatch();
    context.addToBatch(setting.block, setting.model, setting.arrays, cache, &setting.drift);
    context.computeBatchVariances(setting.c00, results.data());

    setting.point.setCenter(NbgVector3D(n, 500.));
    context.krigingResultsBlock(setting.block, setting.model, setting.arrays, out, cache,
                                &setting.drift);
    context.krigingResultsPoint(setting.point, setting.model, setting.arrays, out, cache,
                                &setting.drift);
    context.computeWeights();
    setting.computeResults(context);
    context.krigingResultsForRealization(realizations, 0, out);
    ASSERT_TRUE(context.krigingResultsPointCollocated(setting.point, setting.model, setting.arrays,
                                                      collocated, out, cache, &setting.drift));
    context.computeWeights();
    setting.computeResults(context);
    ASSERT_TRUE(context.prepareIntermediateSystem(setting.model, collocated, bordered));
    context.krigingResultsIntermediateSystem(realizations, 0, collocated, bordered, out);
  };
  krige(128);
  const AllocationCounter counter;
  for (const int n : {128, 17, 1, 100, 127})
    krige(n);
  EXPECT_EQ(counter.count(), 0);
}
