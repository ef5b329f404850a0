#include "geos/matrix/NgmAKrigingSystem.h"

#include "KrigingVariant.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt32.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDual.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"

#include <functional>

using namespace testsupport;

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

/// Systems of a few dozen equations, by the size of the covariances; six drift functions for
/// fourteen samples lose some digits of the functions' values.
constexpr double ROUNDING = 1e-10;

double rounding(const Variant &variant)
{
  return ROUNDING * std::max(1., variant.c00 / 10.);
}

/// Every result of a solved system against the oracle.
void expectResults(const NgmAKrigingSystem &system, const Variant &variant)
{
  const KrigingOracle oracle = variant.oracle();
  const int nVariables = variant.nVariables();
  const NgmKrigingSamples arrays = variant.arrays();
  QVector<double> out;
  QVector<double> c00(nVariables, variant.c00);
  QVector<double> covariances;
  QVector<double> variances;

  system.krigingResults(arrays.values, out);
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(out[t], oracle.estimate(t), rounding(variant));
  for (int t = 0; t < nVariables; ++t)
    for (int v = 0; v < nVariables; ++v) {
      system.getWeights(t, v, out);
      for (int s = 0; s < arrays.n; ++s)
        EXPECT_NEAR(out[s], oracle.weight(t, s, v), rounding(variant)) << t << ' ' << v << ' ' << s;
    }
  system.computeVariance(c00, out);
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(out[t], variant.c00 - oracle.explainedVariance(t), rounding(variant));
  system.computeNonOptimVariance(c00, out);
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(
        out[t],
        variant.c00 - 2. * oracle.covarianceWithTarget(t) + oracle.covarianceOfEstimates(t, t),
        rounding(variant));
  system.computeVarianceOfEstimates(variances);
  system.computeCovarianceZZStar(covariances);
  for (int t = 0; t < nVariables; ++t) {
    EXPECT_NEAR(variances[t], oracle.covarianceOfEstimates(t, t), rounding(variant));
    EXPECT_NEAR(covariances[t], oracle.covarianceWithTarget(t), rounding(variant));
    out.resize(nVariables);
    system.computeCovarianceZ1StarZStar(t, out);
    for (int position = 0; position < nVariables - 1; ++position)
      EXPECT_NEAR(out[position],
                  oracle.covarianceOfEstimates(t, position < t ? position : position + 1),
                  rounding(variant));
  }
  system.computeCorrelationZZStar(c00, covariances, variances, out);
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(out[t], covariances[t] / std::sqrt(variant.c00 * variances[t]), 1e-14);
  if (!variant.simple) {
    system.computeLagrange(out);
    // With a drift it depends on the centre of the monomials.
    for (int t = 0; t < nVariables && variant.polynomial.getNDriftEquations() == 0; ++t)
      EXPECT_NEAR(out[t], oracle.lagrange(t), rounding(variant));
  }
}

void expectPrimal(const Variant &variant)
{
  NgmKrigingSystem system(variant.nVariables(), variant.simple, variant.singleCondition,
                          variant.nDrifts());
  variant.configure(system);
  const NgmKrigingSamples arrays = variant.arrays();
  if (variant.filteredModel) {
    system.buildSystemFiltered(variant.model, *variant.filteredModel, arrays, variant.target,
                               nullptr, variant.driftsAtTarget());
  } else {
    system.resetSystem(arrays.n, variant.target.getCenter());
    if (variant.target.isBlock())
      system.buildSystemBlock(variant.model, arrays, variant.target, nullptr,
                              variant.driftsAtTarget());
    else
      system.buildSystem(variant.model, arrays, variant.target, nullptr, variant.driftsAtTarget());
  }
  ASSERT_EQ(system.solve(), 0);
  EXPECT_FALSE(system.hasDriftError()) << qPrintable(system.getDriftError());
  expectResults(system, variant);
}

/// The unique system, one target alone and the same in a batch among others.
void expectDual(const Variant &variant)
{
  const NgmKrigingSamples arrays = variant.arrays();
  const int nVariables = variant.nVariables();
  NgmKrigingSystemDual dual(arrays.n, nVariables, variant.simple, variant.singleCondition,
                            variant.nDrifts());
  variant.configure(dual);
  dual.buildSystem(variant.model, arrays, 1);
  NgmKrigingSystemDualContext context(dual);
  const NgmVModel &estimated = variant.estimatedModel();
  const double *drifts = variant.driftsAtTarget();
  const KrigingOracle oracle = variant.oracle();

  QVector<double> estimates;
  if (variant.target.isBlock())
    context.krigingResultsBlock(variant.target, estimated, arrays, estimates, nullptr, drifts);
  else
    context.krigingResultsPoint(variant.target, estimated, arrays, estimates, nullptr, drifts);
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(estimates[t], oracle.estimate(t), rounding(variant));
  context.computeWeights();
  expectResults(context, variant);

  NgmTarget other(variant.target);
  other.setCenter(NbgVector3D(111., 222.));
  context.startBatch();
  for (int k = 0; k < 3; ++k)
    context.addToBatch(k == 1 ? variant.target : other, estimated, arrays, nullptr, drifts);
  std::vector<double> batch(std::size_t(3 * nVariables));
  std::vector<double> variances(batch.size());
  context.computeBatchEstimates(batch.data());
  context.computeBatchVariances(QVector<double>(nVariables, variant.c00), variances.data());
  for (int t = 0; t < nVariables; ++t) {
    EXPECT_NEAR(batch[std::size_t(nVariables + t)], oracle.estimate(t), rounding(variant));
    EXPECT_NEAR(variances[std::size_t(nVariables + t)], variant.c00 - oracle.explainedVariance(t),
                rounding(variant));
  }
  context.computeBatchWeights();
  context.setCurrentTarget(1);
  expectResults(context, variant);
  context.computeBatchVariances(QVector<double>(nVariables, variant.c00), variances.data());
  for (int t = 0; t < nVariables; ++t)
    EXPECT_NEAR(variances[std::size_t(nVariables + t)], variant.c00 - oracle.explainedVariance(t),
                rounding(variant));
}

NgmVModel modelOf(int nVariables)
{
  return nVariables == 1 ? meuseModel() : meuseCoregionalization();
}

void expectVariant(const char *name, int nVariables, const std::function<void(Variant &)> &set)
{
  SCOPED_TRACE(name);
  Variant variant(modelOf(nVariables));
  set(variant);
  expectPrimal(variant);
  expectDual(variant);
}

}  // namespace

TEST(NgmAKrigingSystem, EveryVariantAgreesWithPlainElimination)
{
  const auto undefinedData = [](Variant &variant) {
    variant.samples.values(0)[3] = UNDEFINED;
    variant.samples.values(0)[9] = UNDEFINED;
  };
  for (const int nVariables : {1, 2}) {
    SCOPED_TRACE(nVariables);
    const int last = nVariables - 1;
    expectVariant("ordinary", nVariables, undefinedData);
    expectVariant("simple", nVariables, [&](Variant &variant) {
      undefinedData(variant);
      variant.simple = true;
    });
    expectVariant("linear drift", nVariables, [&](Variant &variant) {
      undefinedData(variant);
      for (int v = 0; v < nVariables; ++v)
        variant.polynomial.addDrifts(v, 1, true, true, false);
    });
    expectVariant("quadratic drift of the last variable", nVariables, [&](Variant &variant) {
      variant.polynomial.addDrifts(last, 2, true, true, false);
    });
    expectVariant("quadratic drift, block", nVariables, [&](Variant &variant) {
      variant.polynomial.addDrifts(0, 2, true, true, false);
      variant.target.setBlock(blockOf(120.));
    });
    expectVariant("external drifts", nVariables, [&](Variant &variant) {
      undefinedData(variant);
      variant.external.addDrift(0, 0);
      variant.external.addDrift(0, 1);
      variant.drift(1)[5] = UNDEFINED;
    });
    expectVariant("external and linear drift of the last variable", nVariables,
                  [&](Variant &variant) {
                    variant.polynomial.addDrifts(last, 1, true, true, false);
                    variant.external.addDrift(last, 1);
                  });
    expectVariant("filtered drift", nVariables, [&](Variant &variant) {
      variant.polynomial.addDrifts(0, 1, true, true, false);
      variant.filterDrifts = true;
    });
    expectVariant("block", nVariables, [&](Variant &variant) {
      undefinedData(variant);
      variant.target.setBlock(blockOf(200.));
    });
    expectVariant("measurement errors", nVariables, [&](Variant &variant) {
      std::vector<std::vector<double>> errors(static_cast<std::size_t>(nVariables));
      errors.back() = uniformVector(601, variant.samples.n(), 0., 0.5);
      errors.back()[2] = UNDEFINED;
      variant.setErrors(errors);
    });
    expectVariant("direct block", nVariables, [&](Variant &variant) {
      variant.r = nVariables == 1 ? std::vector<double>{0.8} : std::vector<double>{0.8, 0.6};
      variant.correlations = NgmMatrix(nVariables, nVariables, true);
      if (nVariables == 2)
        variant.correlations.setElement(0, 1, 0.3);
    });
    const NgmVModel withoutNugget = modelOf(nVariables).buildFilteredModel(true, {});
    expectVariant("filtered nugget at a sample", nVariables, [&](Variant &variant) {
      variant.target.setCenter(NbgVector3D(variant.samples.x()[4], variant.samples.y()[4]));
      variant.filteredModel = &withoutNugget;
    });
    expectVariant("filtered nugget of a block", nVariables, [&](Variant &variant) {
      variant.target.setBlock(blockOf(50.));
      variant.filteredModel = &withoutNugget;
    });
  }
  expectVariant("rescaled", 2, [&](Variant &variant) {
    undefinedData(variant);
    variant.singleCondition = true;
  });
  expectVariant("a variable without data", 2,
                [](Variant &variant) { variant.samples.values(0).assign(14, UNDEFINED); });
}

TEST(NgmAKrigingSystem, PolynomialsAtTheTargetAreCorrectedForBlocks)
{
  Variant variant(meuseModel());
  variant.polynomial.addDrifts(0, 1, true, true, false);
  variant.r = {0.8};
  variant.correlations = NgmMatrix(1, 1, true);
  NgmKrigingSystem system(1, false, false, 2);
  variant.configure(system);
  system.resetSystem(14, NbgVector3D(400., 600.));
  system.buildSystem(variant.model, variant.arrays(), variant.target, nullptr);
  EXPECT_EQ(system.getRHSMatrix()(14, 0), 1.);
  EXPECT_NEAR(system.getRHSMatrix()(15, 0), 0.8 * 30., 1e-13);
  EXPECT_NEAR(system.getRHSMatrix()(16, 0), 0.8 * 10., 1e-13);
  EXPECT_EQ(system.getLHSMatrix()(15, 3), variant.samples.x()[3] - 400.);
}

TEST(NgmAKrigingSystem, AnIntrinsicCovarianceNeedsNoPositiveDefiniteMatrix)
{
  NgmVModel linear(1);
  linear.setContext({0, 2, 1500.});
  linear.addStructure(QStringLiteral("Linear"), 2.);
  Variant variant(linear);
  variant.c00 = 1e4;
  expectPrimal(variant);
  expectDual(variant);
}

// Reference files.

namespace {

std::vector<double> squareRoots(const std::vector<double> &values)
{
  std::vector<double> roots;
  for (const double value : values)
    roots.push_back(std::sqrt(value));
  return roots;
}

/// The unique system of the logarithm of zinc, in batches; external drifts by target.
class MeuseRun
{
public:
  explicit MeuseRun(int nDrifts)
      : dual(int(_data["x"].size()), 1, false, false, nDrifts),
        samples(_data["x"], _data["y"], {logarithms(_data["zinc"])})
  {
  }

  const CsvFile &data() const { return _data; }

  /// `constant` is added to the variance: what the file counts otherwise.
  void expectAsIn(const char *file, const NgmABlock *block, double c00,
                  const std::vector<double> &externalAtTargets = {})
  {
    const CsvFile reference(file);
    NgmKrigingSamples arrays = samples;
    const double *external = _external.data();
    if (!_external.empty())
      arrays.externalDrifts = &external;
    dual.buildSystem(meuseModel(), arrays, 1);
    NgmKrigingSystemDualContext context(dual);
    NgmTarget target;
    if (block)
      target.setBlock(*block);
    std::vector<double> estimates(256), variances(256);
    const int nTargets = int(reference["x"].size());
    for (int first = 0; first < nTargets; first += 256) {
      const int n = std::min(256, nTargets - first);
      context.startBatch();
      for (int k = first; k < first + n; ++k) {
        const std::size_t i = std::size_t(k);
        target.setCenter(NbgVector3D(reference["x"][i], reference["y"][i]));
        context.addToBatch(target, meuseModel(), arrays, nullptr,
                           externalAtTargets.empty() ? nullptr : &externalAtTargets[i]);
      }
      context.computeBatchEstimates(estimates.data());
      context.computeBatchVariances(QVector<double>{c00}, variances.data());
      for (int k = 0; k < n; ++k) {
        const std::size_t i = std::size_t(first + k);
        ASSERT_NEAR(estimates[std::size_t(k)], reference["estimate"][i], 1e-11) << file << i;
        ASSERT_NEAR(variances[std::size_t(k)], reference["variance"][i], 1e-11) << file << i;
      }
    }
  }

  void setExternal(const std::vector<double> &values) { _external = values; }

private:
  CsvFile _data{"meuse/meuse.csv"};
  std::vector<double> _external;

public:
  NgmKrigingSystemDual dual;
  Samples samples;
};

}  // namespace

TEST(NgmKrigingSystemDual, DriftsAndBlocksAgreeWithReferenceValues)
{
  MeuseRun universal(2);
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, true, false);
  universal.dual.setDriftModel(drift);
  universal.expectAsIn("meuse/krige_uk_xy_global.csv", nullptr, 0.64);

  MeuseRun external(1);
  NgmExtDriftModel distance;
  distance.addDrift(0, 0);
  external.dual.setExtDriftModel(distance);
  external.setExternal(squareRoots(external.data()["dist"]));
  external.expectAsIn("meuse/krige_ked_sqrtdist_global.csv", nullptr, 0.64,
                      squareRoots(CsvFile("meuse/meuse_grid.csv")["dist"]));

  // The variance of the block as the file takes it: all pairs of its points, without nugget.
  const NgmBlock block = blockOf(40.);
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  const NgmVModel spherical = meuseModel().buildFilteredModel(true, {});
  double c00 = 0.;
  for (const NbgVector3D &a : points)
    for (const NbgVector3D &b : points)
      c00 += spherical.calcCovaIJ(0, 0, a - b) / (points.size() * points.size());
  MeuseRun blocks(0);
  blocks.expectAsIn("meuse/krige_block40_ok_global.csv", &block, c00);
}

TEST(NgmKrigingSystem, CovariancesOfCokrigingErrorsAgreeWithReferenceValues)
{
  const CsvFile data("meuse/meuse.csv");
  const CsvFile reference("meuse/cokrige_ok_global_200.csv");
  Samples samples(data["x"], data["y"], {logarithms(data["zinc"]), logarithms(data["lead"])});
  const NgmVModel model = meuseCoregionalization();
  NgmKrigingSystemDual dual(samples.n(), 2, false, false, 0);
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext context(dual);
  QVector<double> out;
  QVector<double> covariance(1);
  for (std::size_t i = 0; i < reference["x"].size(); i += 7) {
    const NgmTarget target(NbgVector3D(reference["x"][i], reference["y"][i]));
    context.krigingResultsPoint(target, model, samples, out, nullptr);
    EXPECT_NEAR(out[0], reference["lz_estimate"][i], 1e-11);
    EXPECT_NEAR(out[1], reference["ll_estimate"][i], 1e-11);
    context.computeWeights();
    context.computeVariance({model.getC0IJ(0, 0), model.getC0IJ(1, 1)}, out);
    EXPECT_NEAR(out[0], reference["lz_variance"][i], 1e-11);
    EXPECT_NEAR(out[1], reference["ll_variance"][i], 1e-11);
    // Of the errors: C12 - cov(Z1, Z2*) - cov(Z1*, Z2) + cov(Z1*, Z2*).
    context.computeCovarianceZ1StarZStar(0, covariance);
    double error = model.getC0IJ(0, 1) + covariance[0];
    for (int row = 0; row < 2 * samples.n(); ++row)
      for (const int t : {0, 1})
        error -= context.getWeightsMatrix()(row, t) * context.getRHSMatrix()(row, 1 - t);
    EXPECT_NEAR(error, reference["cov_lz_ll"][i], 1e-11);
  }
}

// Properties.

TEST(NgmAKrigingSystem, TheUnitOfLengthDoesNotMatter)
{
  NgmDriftModel drift;
  drift.addDrifts(0, 2, true, true, false);
  std::vector<double> estimates;
  for (const double unit : {1e-6, 1., 1e6}) {
    Samples plain = randomSamples(521, 25);
    std::vector<double> x = plain.x(), y = plain.y();
    for (std::size_t s = 0; s < 25; ++s) {
      x[s] *= unit;
      y[s] *= unit;
    }
    Samples samples(x, y, {plain.values(0)});
    const NgmKrigingSamples arrays = samples;
    NgmVModel model = meuseModel();
    model.setRangeIsotropic(0, 897. * unit);
    const NgmTarget target(NbgVector3D(430. * unit, 610. * unit));
    NgmKrigingSystem primal(1, false, false, 5);
    primal.setDriftModel(drift);
    primal.resetSystem(25, target.getCenter());
    primal.buildSystem(model, arrays, target, nullptr);
    ASSERT_EQ(primal.solve(), 0);
    QVector<double> out;
    primal.krigingResults(arrays.values, out);
    estimates.push_back(out[0]);
    primal.computeVariance({10.}, out);
    estimates.push_back(out[0]);

    NgmKrigingSystemDual dual(25, 1, false, false, 5);
    dual.setDriftModel(drift);
    dual.buildSystem(model, arrays, 1);
    NgmKrigingSystemDualContext context(dual);
    context.krigingResultsPoint(target, model, arrays, out, nullptr);
    estimates.push_back(out[0]);
    context.computeWeights();
    context.computeVariance({10.}, out);
    estimates.push_back(out[0]);
  }
  for (std::size_t i = 0; i < estimates.size(); ++i)
    EXPECT_NEAR(estimates[i], estimates[4 + i % 2], 1e-13) << i;
}

TEST(NgmAKrigingSystem, DriftsAreReproduced)
{
  const auto trend = [](double x, double y) {
    return 3. + 2e-3 * x - 1e-3 * y + 1e-6 * x * x - 2e-6 * x * y + 5. * firstDrift(x, y);
  };
  Variant variant(meuseModel());
  for (int s = 0; s < 14; ++s)
    variant.samples.values(0)[std::size_t(s)] =
        trend(variant.samples.x()[std::size_t(s)], variant.samples.y()[std::size_t(s)]);
  variant.polynomial.addDrifts(0, 2, true, true, false);
  variant.external.addDrift(0, 0);
  NgmKrigingSystem system(1, false, false, 6);
  variant.configure(system);
  system.resetSystem(14, targetPoint);
  system.buildSystem(variant.model, variant.arrays(), variant.target, nullptr,
                     variant.driftsAtTarget());
  ASSERT_EQ(system.solve(), 0);
  QVector<double> out;
  system.krigingResults(variant.arrays().values, out);
  EXPECT_NEAR(out[0], trend(targetPoint.x(), targetPoint.y()), 1e-9);

  // With the drift filtered nothing is left of it.
  system.setFilterDrifts(true);
  system.buildSystemRHS(variant.model, variant.arrays(), variant.target, nullptr,
                        variant.driftsAtTarget());
  ASSERT_EQ(system.solve(), 0);
  system.krigingResults(variant.arrays().values, out);
  EXPECT_NEAR(out[0], 0., 1e-9);
}

TEST(NgmAKrigingSystem, FilteredPartsAddUpToTheWhole)
{
  NgmVModel model = meuseModel();
  model.addStructure(QStringLiteral("Exponential"), 0.4);
  model.setRangeIsotropic(1, 300.);
  Variant variant(model);
  variant.polynomial.addDrifts(0, 1, true, true, false);
  // At a sample, where the nugget has a part.
  const NgmTarget target(NbgVector3D(variant.samples.x()[6], variant.samples.y()[6]));
  NgmKrigingSystem system(1, false, false, 2);
  variant.configure(system);
  QVector<double> out;
  const auto estimate = [&](const NgmVModel &estimated, bool filterDrifts) {
    system.setFilterDrifts(filterDrifts);
    system.buildSystemFiltered(model, estimated, variant.arrays(), target, nullptr);
    EXPECT_EQ(system.solve(), 0);
    system.krigingResults(variant.arrays().values, out);
    return out[0];
  };
  const double whole = estimate(model, false);
  const double drift = estimate(model.buildFilteredModel(true, {0, 1}), false);
  const double nugget = estimate(model.buildFilteredModel(false, {0, 1}), true);
  const double first = estimate(model.buildFilteredModel(true, {1}), true);
  const double second = estimate(model.buildFilteredModel(true, {0}), true);
  EXPECT_NEAR(drift + nugget + first + second, whole, ROUNDING);
  EXPECT_NEAR(whole, variant.samples.values(0)[6], ROUNDING);
  EXPECT_GT(std::abs(nugget), 1e-4);
}

TEST(NgmAKrigingSystem, IntrinsicIsotopicCokrigingIsKriging)
{
  const NgmVModel mono = meuseModel();
  const NgmVModel multi = NgmVModel::createMultiFromMono(
      mono, 0, matrixOf(2, 2, {1., 0.7, 0.7, 1.}, true), {0.64, 2.5});
  Samples samples = randomSamples(531, 12, 2);
  const NgmKrigingSamples arrays = samples;
  const NgmTarget target(targetPoint);
  NgmKrigingSystem cokriging(2, false, false, 0);
  cokriging.resetSystem(12, targetPoint);
  cokriging.buildSystem(multi, arrays, target, nullptr);
  ASSERT_EQ(cokriging.solve(), 0);
  NgmKrigingSystem kriging;
  kriging.resetSystem(12, targetPoint);
  kriging.buildSystem(mono, arrays, target, nullptr);
  ASSERT_EQ(kriging.solve(), 0);
  QVector<double> expected;
  QVector<double> own;
  QVector<double> other;
  kriging.getWeights(0, 0, expected);
  for (int t = 0; t < 2; ++t) {
    cokriging.getWeights(t, t, own);
    cokriging.getWeights(t, 1 - t, other);
    for (int s = 0; s < 12; ++s) {
      EXPECT_NEAR(own[s], expected[s], ROUNDING);
      EXPECT_NEAR(other[s], 0., ROUNDING);
    }
  }
}

TEST(NgmAKrigingSystem, IdentitiesOfSimpleKriging)
{
  Variant variant(meuseCoregionalization());
  NgmKrigingSystem system(2, true, false, 0);
  system.resetSystem(14, targetPoint);
  system.buildSystem(variant.model, variant.arrays(), variant.target, nullptr);
  ASSERT_EQ(system.solve(), 0);
  const QVector<double> c00 = {variant.model.getC0IJ(0, 0), variant.model.getC0IJ(1, 1)};
  QVector<double> variance, cov, varZStar, slope, correlation, efficiency, nonOptimal;
  system.computeVariance(c00, variance);
  system.computeCovarianceZZStar(cov);
  system.computeVarianceOfEstimates(varZStar);
  system.computeSlopeRegressionZZStar(cov, varZStar, slope);
  system.computeCorrelationZZStar(c00, cov, varZStar, correlation);
  system.computeKrigingEfficiency(c00, variance, efficiency);
  system.computeNonOptimVariance(c00, nonOptimal);
  for (int t = 0; t < 2; ++t) {
    EXPECT_NEAR(slope[t], 1., ROUNDING);
    EXPECT_NEAR(varZStar[t], c00[t] - variance[t], ROUNDING);
    EXPECT_NEAR(efficiency[t], correlation[t] * correlation[t], ROUNDING);
    EXPECT_NEAR(nonOptimal[t], variance[t], ROUNDING);
  }

  // Undefined where there is nothing to divide by.
  system.computeSlopeRegressionZZStar(cov, {1e-10, 1.}, slope);
  system.computeCorrelationZZStar(c00, cov, {0., 1.}, correlation);
  system.computeKrigingEfficiency({1e-10, 1.}, variance, efficiency);
  for (const QVector<double> *values : {&slope, &correlation, &efficiency}) {
    EXPECT_EQ(values->at(0), UNDEFINED);
    EXPECT_NE(values->at(1), UNDEFINED);
  }
}

TEST(NgmAKrigingSystem, ABlockIsTheMeanOfItsPointsAndTendsToAPoint)
{
  Variant variant(meuseModel());
  const NgmKrigingSamples arrays = variant.arrays();
  NgmKrigingSystem system;
  QVector<double> out;
  const auto estimate = [&](const NgmTarget &target) {
    system.resetSystem(arrays.n, target.getCenter());
    if (target.isBlock())
      system.buildSystemBlock(variant.model, arrays, target, nullptr);
    else
      system.buildSystem(variant.model, arrays, target, nullptr);
    EXPECT_EQ(system.solve(), 0);
    system.krigingResults(arrays.values, out);
    return out[0];
  };
  const NgmTarget block(targetPoint, blockOf(300.));
  QVector<NbgVector3D> points;
  block.getDiscretizationPoints(points);
  double mean = 0.;
  for (const NbgVector3D &point : points)
    mean += estimate(NgmTarget(point)) / points.size();
  EXPECT_NEAR(estimate(block), mean, ROUNDING);
  // The spherical model is linear near the origin, not at this distance from the samples.
  EXPECT_NEAR(estimate(NgmTarget(targetPoint, blockOf(1e-4))), estimate(NgmTarget(targetPoint)),
              1e-11);
}

TEST(NgmKrigingSystem, MistiesOfGroups)
{
  Variant variant(meuseCoregionalization());
  variant.samples.values(1)[2] = UNDEFINED;
  const NgmMatrix correction = matrixOf(2, 2, {0.5, 0.1, 0.1, 0.4}, true);
  NbdVariableDouble x, y, z, values[2];
  x.setVector(variant.samples.x());
  y.setVector(variant.samples.y());
  z.setVector(std::vector<double>(14, 0.));
  NbdVariableInt32 groups;
  std::vector<int> numbers;
  for (int s = 0; s < 14; ++s)
    numbers.push_back(s % 3);
  groups.setVector(numbers);
  NgmKrigingSystem system(2, false, false, 0);
  const auto krige = [&](const NgmMatrix &standard, const QMap<int, NgmMatrix> &corrections) {
    for (int v = 0; v < 2; ++v)
      values[v].setVector(variant.samples.values(v));
    system.buildSystemMisties(variant.model, standard, corrections, x, y, z, groups,
                              {&values[0], &values[1]}, variant.target, {}, {}, nullptr);
    EXPECT_EQ(system.solve(), 0);
    QVector<double> out;
    system.krigingResults({&values[0], &values[1]}, out);
    return out;
  };

  KrigingOracle oracle = variant.oracle();
  oracle.groups = numbers;
  oracle.mistie = correction;
  oracle.solve();
  const QVector<double> estimates = krige(correction, {});
  for (int t = 0; t < 2; ++t)
    EXPECT_NEAR(estimates[t], oracle.estimate(t), ROUNDING);
  // The same by the map; groups that it has not take the default.
  const QVector<double> mapped =
      krige(NgmMatrix(2, 2, true), {{0, correction}, {1, correction}, {2, correction}});
  EXPECT_EQ(mapped, estimates);

  // A shift of a group that may be any does not matter.
  const NgmMatrix any = matrixOf(2, 2, {1e7, 0., 0., 1e7}, true);
  const QVector<double> before = krige(NgmMatrix(2, 2, true), {{1, any}});
  for (int s = 1; s < 14; s += 3)
    variant.samples.values(0)[std::size_t(s)] += 5.;
  const QVector<double> after = krige(NgmMatrix(2, 2, true), {{1, any}});
  for (int t = 0; t < 2; ++t)
    EXPECT_NEAR(after[t], before[t], 1e-5);

  // Without samples there is nothing to solve for.
  NbdVariableDouble none;
  NbdVariableInt32 noGroups;
  system.buildSystemMisties(variant.model, correction, {}, none, none, none, noGroups,
                            {&none, &none}, variant.target, {}, {}, nullptr);
  EXPECT_EQ(system.getNEquations(), 2);
  EXPECT_NE(system.solve(), 0);
}

TEST(NgmKrigingSystem, VariablesGiveWhatArraysGive)
{
  Variant variant(meuseModel());
  variant.external.addDrift(0, 0);
  const std::vector<double> deviations = uniformVector(611, 14, 0., 0.4);
  variant.setErrors({deviations});
  NbdVariableDouble x, y, z, drift, error, value;
  x.setVector(variant.samples.x());
  y.setVector(variant.samples.y());
  z.setVector(std::vector<double>(14, 0.));
  drift.setVector(variant.drift(0));
  error.setVector(deviations);
  value.setVector(variant.samples.values(0));
  const QVector<double> atTarget = {*variant.driftsAtTarget()};
  variant.target.setBlock(blockOf(60.));
  const NgmVModel filtered = variant.model.buildFilteredModel(true, {});

  NgmKrigingSystem expected(1, false, false, 1);
  NgmKrigingSystem system(1, false, false, 1);
  variant.configure(expected);
  variant.configure(system);
  system.setStDevMeasurementError({{0, &error}});
  const NgmKrigingSamples arrays = variant.arrays();
  const double *drifts = variant.driftsAtTarget();
  const auto expectSame = [&](const char *name) {
    ASSERT_EQ(expected.solve(), 0);
    ASSERT_EQ(system.solve(), 0);
    EXPECT_TRUE(sameBits(system.getWeightsMatrix(), expected.getWeightsMatrix())) << name;
  };
  expected.resetSystem(14, targetPoint);
  system.resetSystem(14, targetPoint);
  expected.buildSystem(variant.model, arrays, variant.target, nullptr, drifts);
  system.buildSystem(variant.model, x, y, z, {&drift}, variant.target, {&value}, atTarget, nullptr);
  expectSame("point");
  expected.buildSystemBlock(variant.model, arrays, variant.target, nullptr, drifts);
  system.buildSystemBlock(variant.model, x, y, z, {&drift}, variant.target, {&value}, atTarget,
                          nullptr);
  expectSame("block");
  expected.buildSystemFiltered(variant.model, filtered, arrays, variant.target, nullptr, drifts);
  system.buildSystemFiltered(variant.model, filtered, x, y, z, {&drift}, variant.target, {&value},
                             atTarget, nullptr);
  expectSame("filtered");

  NgmKrigingSystemDual expectedDual(14, 1, false, false, 1);
  NgmKrigingSystemDual dual(14, 1, false, false, 1);
  variant.configure(expectedDual);
  variant.configure(dual);
  dual.setStDevMeasurementError({{0, &error}});
  expectedDual.buildSystem(variant.model, arrays, 1);
  dual.buildSystem(variant.model, x, y, z, {&value}, 1, {&drift});
  EXPECT_TRUE(sameBits(dual.getDualCoefficients(), expectedDual.getDualCoefficients()));
  NgmKrigingSystemDualContext expectedContext(expectedDual);
  NgmKrigingSystemDualContext context(dual);
  QVector<double> expectedOut, out;
  expectedContext.krigingResultsBlock(variant.target, variant.model, arrays, expectedOut, nullptr,
                                      drifts);
  context.krigingResultsBlock(variant.target, variant.model, x, y, z, out, atTarget, nullptr);
  EXPECT_EQ(out, expectedOut);
  expectedContext.krigingResultsPoint(variant.target, variant.model, arrays, expectedOut, nullptr,
                                      drifts);
  context.krigingResultsPoint(variant.target, variant.model, x, y, z, out, atTarget, nullptr);
  EXPECT_EQ(out, expectedOut);
}

// What misses.

TEST(NgmAKrigingSystem, TooFewDataForTheDriftLeaveItOutAndSaySo)
{
  const NgmVModel model = meuseCoregionalization();
  Samples samples = randomSamples(541, 4, 2);
  samples.values(1)[0] = samples.values(1)[2] = UNDEFINED;
  const NgmKrigingSamples arrays = samples;
  NgmDriftModel drifts;
  for (const int variable : {0, 1})
    drifts.addDrifts(variable, 1, true, true, false);
  const QString text = QStringLiteral(
      "Not enough defined samples (2) toward drift equations (3) for variable #1. Please increase "
      "your neighborhood size.\n");
  NgmDriftModel firstOnly;
  firstOnly.addDrifts(0, 1, true, true, false);

  NgmKrigingSystem system(2, false, false, 4);
  NgmKrigingSystem expected(2, false, false, 2);
  system.setDriftModel(drifts);
  expected.setDriftModel(firstOnly);
  for (NgmKrigingSystem *each : {&system, &expected}) {
    each->resetSystem(4, targetPoint);
    each->buildSystem(model, arrays, NgmTarget(targetPoint), nullptr);
    ASSERT_EQ(each->solve(), 0);
  }
  EXPECT_EQ(system.getDriftError(), text);
  EXPECT_FALSE(expected.hasDriftError());
  QVector<double> out, expectedOut;
  system.krigingResults(arrays.values, out);
  expected.krigingResults(arrays.values, expectedOut);
  for (int t = 0; t < 2; ++t)
    EXPECT_NEAR(out[t], expectedOut[t], ROUNDING);
  NgmKrigingSystemDual dual(4, 2, false, false, 4);
  dual.setDriftModel(drifts);
  dual.buildSystem(model, arrays, 1);
  EXPECT_EQ(dual.getDriftError(), text);
  EXPECT_EQ(dual.getNValidEquations(), expected.getNValidEquations());

  // The text goes with the samples.
  Samples enough = randomSamples(551, 6, 2);
  system.resetSystem(6, targetPoint);
  system.buildSystem(model, enough, NgmTarget(targetPoint), nullptr);
  EXPECT_FALSE(system.hasDriftError());
}

TEST(NgmKrigingSystem, WithoutAnyDatumThereIsNoSolution)
{
  Variant variant(meuseModel());
  variant.external.addDrift(0, 0);
  variant.drift(0).assign(14, UNDEFINED);
  NgmKrigingSystem system(1, false, false, 1);
  variant.configure(system);
  system.resetSystem(14, targetPoint);
  system.buildSystem(variant.model, variant.arrays(), variant.target, nullptr,
                     variant.driftsAtTarget());
  EXPECT_NE(system.solve(), 0);
  EXPECT_FALSE(system.isReady());
  EXPECT_TRUE(system.hasDriftError());
  EXPECT_EQ(system.getNValidEquations(), 0);
}

TEST(NgmKrigingSystem, SingularSystemsAreNotSolvedOnRoundingErrors)
{
  const NgmTarget target(targetPoint);
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, true, false);
  for (int trial = 0; trial < 60; ++trial) {
    SCOPED_TRACE(trial);
    const int n = 6 + trial % 26;
    Samples samples = randomSamples(std::uint64_t(6000 + 5 * trial), n);
    const auto solve = [&](const std::vector<double> &x, const std::vector<double> &y,
                           const NgmVModel &model, int nDrifts) {
      Samples moved(x, y, {samples.values(0)});
      NgmKrigingSystem system(1, trial % 2 == 0 && nDrifts == 0, false, nDrifts);
      if (nDrifts > 0)
        system.setDriftModel(drift);
      system.resetSystem(n, targetPoint);
      system.buildSystem(model, moved, target, nullptr);
      return system.solve();
    };
    EXPECT_EQ(solve(samples.x(), samples.y(), continuousModel(), 0), 0);
    EXPECT_EQ(solve(samples.x(), samples.y(), continuousModel(), 2), 0);

    // Two samples at one place, without nugget and with it.
    std::vector<double> x = samples.x(), y = samples.y();
    x[std::size_t(n / 2)] = x[1];
    y[std::size_t(n / 2)] = y[1];
    EXPECT_NE(solve(x, y, continuousModel(), 0), 0);
    EXPECT_NE(solve(x, y, continuousModel(), 2), 0);
    EXPECT_EQ(solve(x, y, meuseModel(), 0), 0);
    EXPECT_EQ(solve(x, y, meuseModel(), 2), 0);

    // A plane is not fixed by samples on a line.
    EXPECT_NE(solve(samples.x(), std::vector<double>(std::size_t(n), 333.), meuseModel(), 2), 0);
    EXPECT_EQ(solve(samples.x(), std::vector<double>(std::size_t(n), 333.), meuseModel(), 0), 0);
  }
}

TEST(NgmAKrigingSystem, ErrorTexts)
{
  Variant variant(meuseModel());
  variant.external.addDrift(0, 0);
  NgmKrigingSystem system(1, false, false, 1);
  variant.configure(system);
  const NgmKrigingSamples arrays = variant.arrays();
  NgmKrigingSamples withoutDrifts = arrays;
  withoutDrifts.externalDrifts = nullptr;
  const auto build = [&](const NgmKrigingSamples &samples, const double *drifts) {
    system.resetSystem(14, targetPoint);
    system.buildSystem(variant.model, samples, variant.target, nullptr, drifts);
  };
  const double undefined = UNDEFINED;
  NgmKrigingSystem rescaled(2, false, true, 0);
  NgmKrigingSystem tooSmall(1, false, false, 0);
  tooSmall.setExtDriftModel(variant.external);
  NgmKrigingSystem solved(1, false, false, 1);
  variant.configure(solved);
  solved.resetSystem(14, targetPoint);
  solved.buildSystem(variant.model, arrays, variant.target, nullptr, variant.driftsAtTarget());
  ASSERT_EQ(solved.solve(), 0);
  Variant two(meuseCoregionalization());
  NgmKrigingSystem cokriging(2, false, false, 0);
  cokriging.resetSystem(14, targetPoint);
  cokriging.buildSystem(two.model, two.arrays(), two.target, nullptr);
  ASSERT_EQ(cokriging.solve(), 0);
  QVector<double> out;
  const QString notReady =
      QStringLiteral("NgmAKrigingSystem::_checkWeightsReady: System not solved and not ready!");
  expectErrors({
      {"r = 0", NbeError::PROGRAMMING, assertion("NgmAKrigingSystem", "Invalid r coefficient"),
       [&] { system.setBlockCorrectionCoefficient(0, 0.); }},
      {"r > 1", NbeError::PROGRAMMING, assertion("NgmAKrigingSystem", "Invalid r coefficient"),
       [&] { system.setBlockCorrectionCoefficient(0, 1.0001); }},
      {"rescaled, filtered", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "Rescaled cokriging is incompatible with drift filtering"),
       [&] { rescaled.setFilterDrifts(true); }},
      {"drift at target undefined", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "Undefined External Drift Value"),
       [&] { build(arrays, &undefined); }},
      {"drift at target missing", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "Undefined External Drift Value"),
       [&] { build(arrays, nullptr); }},
      {"drift at data missing", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "No drift variable found."),
       [&] { build(withoutDrifts, variant.driftsAtTarget()); }},
      {"more terms than equations", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "drift terms <= drift equations"),
       [&] {
         tooSmall.resetSystem(14, targetPoint);
         tooSmall.buildSystem(variant.model, arrays, variant.target, nullptr);
       }},
      {"other samples", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "samples.n == getNSamples()"),
       [&] {
         system.resetSystem(13, targetPoint);
         system.buildSystem(variant.model, arrays, variant.target, nullptr);
       }},
      {"fewer drift variables than terms", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "No drift variable found."),
       [&] {
         NbdVariableDouble x, y, z, value;
         x.setVector(variant.samples.x());
         y.setVector(variant.samples.y());
         z.setVector(std::vector<double>(14, 0.));
         value.setVector(variant.samples.values(0));
         system.resetSystem(14, targetPoint);
         system.buildSystem(variant.model, x, y, z, {}, variant.target, {&value}, {}, nullptr);
       }},
      {"correlations of another size", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "correlations.getNRows() == getNVariables()"),
       [&] { system.setPointGaussianCorrelation(NgmMatrix(2, 2, true)); }},
      {"mean with external drift", NbeError::PROGRAMMING,
       QStringLiteral("NgmKrigingSystem::computeWeightForMean: weight of the mean cannot be "
                      "computed using external drifts."),
       [&] { solved.computeWeightForMean(out); }},
      {"no room for covariances", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "out.size() >= getNVariables() - 1"),
       [&] {
         QVector<double> empty;
         cokriging.computeCovarianceZ1StarZStar(0, empty);
       }},
      {"not optimal", NbeError::PROGRAMMING, notReady,
       [&] { system.computeNonOptimVariance({1.}, out); }},
      {"variance of estimates", NbeError::PROGRAMMING, notReady,
       [&] { system.computeVarianceOfEstimates(out); }},
      {"covariance ZZ*", NbeError::PROGRAMMING, notReady,
       [&] { system.computeCovarianceZZStar(out); }},
      {"covariance Z1*Z*", NbeError::PROGRAMMING, notReady,
       [&] { system.computeCovarianceZ1StarZStar(0, out); }},
      {"correlation", NbeError::PROGRAMMING, notReady,
       [&] { system.computeCorrelationZZStar({1.}, {1.}, {1.}, out); }},
      {"slope", NbeError::PROGRAMMING, notReady,
       [&] { system.computeSlopeRegressionZZStar({1.}, {1.}, out); }},
      {"efficiency", NbeError::PROGRAMMING, notReady,
       [&] { system.computeKrigingEfficiency({1.}, {1.}, out); }},
  });
  const QString text = solved.debug(0);
  EXPECT_TRUE(text.contains(QStringLiteral("Internal Drift Model:\n")));
  EXPECT_TRUE(text.contains(
      QStringLiteral("External Drift Model:\nTotal Number of Ext. Drifts Equations = 1\n")));
}
