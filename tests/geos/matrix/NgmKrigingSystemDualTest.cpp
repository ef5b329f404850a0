#include "geos/matrix/NgmKrigingSystemDual.h"

#include "KrigingTestSupport.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableMulti.h"
#include "basic/error/NbeUserError.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <memory>
#include <numeric>
#include <thread>

using namespace testsupport;

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

/// The inverse of a kriging matrix of some hundred samples loses a few digits.
constexpr double ROUNDING = 1e-11;

struct Targets
{
  Targets(std::uint64_t stream, int n)
      : x(uniformVector(stream, n, 0., 1000.)),
        y(uniformVector(stream + 1, n, 0., 1000.)),
        z(static_cast<std::size_t>(n), 0.)
  {
  }

  NgmTarget at(int k) const
  {
    return NgmTarget(NbgVector3D(x[std::size_t(k)], y[std::size_t(k)], 0.));
  }

  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
};

/// Estimates, variances and weights of the targets `first` .. `first + n - 1`, in one batch.
std::vector<double> batchResults(const NgmKrigingSystemDual &dual, const NgmVModel &model,
                                 const NgmKrigingSamples &samples, const Targets &targets,
                                 int first, int n)
{
  NgmKrigingSystemDualContext context(dual);
  context.prepareBatch(n, targets.x.data() + first, targets.y.data() + first,
                       targets.z.data() + first, model, samples, nullptr);
  std::vector<double> results(static_cast<std::size_t>(2 * n));
  context.computeBatchEstimates(results.data());
  context.computeBatchWeights();
  context.computeBatchVariances({model.getC0IJ(0, 0)}, results.data() + n);
  QVector<double> weights;
  for (int k = 0; k < n; ++k) {
    context.setCurrentTarget(k);
    context.getWeights(0, 0, weights);
    results.insert(results.end(), weights.begin(), weights.end());
  }
  return results;
}

/// The results of target k in what batchResults() returns for n targets.
std::vector<double> resultsOf(const std::vector<double> &results, int n, int k, int nSamples)
{
  std::vector<double> own = {results[std::size_t(k)], results[std::size_t(n + k)]};
  const auto weights = results.begin() + 2 * n + k * nSamples;
  own.insert(own.end(), weights, weights + nSamples);
  return own;
}

}  // namespace

TEST(NgmKrigingSystemDual, EqualsThePrimalSystem)
{
  for (int nVariables : {1, 2}) {
    const NgmVModel model = nVariables == 1 ? meuseModel() : meuseCoregionalization();
    Samples samples = randomSamples(101, 60, nVariables);
    samples.values(0)[7] = UNDEFINED;
    const NgmKrigingSamples arrays = samples;
    const Targets targets(111, 5);
    QVector<double> c00;
    for (int v = 0; v < nVariables; ++v)
      c00 << model.getC0IJ(v, v);

    for (bool simple : {false, true}) {
      NgmKrigingSystemDual dual(60, nVariables, simple, false, 0);
      dual.buildSystem(model, arrays, 1);
      NgmKrigingSystemDualContext context(dual);
      NgmKrigingSystem primal(nVariables, simple, false, 0);
      EXPECT_EQ(context.getRHSMatrix().getNRows(), dual.getNEquations() - 1);
      for (int k = 0; k < 5; ++k) {
        const NgmTarget target = targets.at(k);
        primal.resetSystem(60, target.getCenter());
        primal.buildSystem(model, arrays, target, nullptr);
        ASSERT_EQ(primal.solve(), 0);

        QVector<double> expected;
        QVector<double> out;
        primal.krigingResults(arrays.values, expected);
        context.krigingResultsPoint(target, model, arrays, out, nullptr);
        EXPECT_FALSE(context.isReady());
        for (int v = 0; v < nVariables; ++v)
          EXPECT_NEAR(out[v], expected[v], ROUNDING);

        context.computeWeights();
        primal.computeVariance(c00, expected);
        context.computeVariance(c00, out);
        for (int v = 0; v < nVariables; ++v)
          EXPECT_NEAR(out[v], expected[v], ROUNDING);
        for (int t = 0; t < nVariables; ++t)
          for (int v = 0; v < nVariables; ++v) {
            primal.getWeights(t, v, expected);
            context.getWeights(t, v, out);
            for (int s = 0; s < 60; ++s)
              EXPECT_NEAR(out[s], expected[s], ROUNDING);
            EXPECT_TRUE(v != 0 || out[7] == 0.);
          }
        context.krigingResults(arrays.values, out);
        primal.krigingResults(arrays.values, expected);
        for (int v = 0; v < nVariables; ++v)
          EXPECT_NEAR(out[v], expected[v], ROUNDING);
        if (!simple) {
          primal.computeLagrange(expected);
          context.computeLagrange(out);
          for (int v = 0; v < nVariables; ++v)
            EXPECT_NEAR(out[v], expected[v], ROUNDING);
        }
      }
    }
  }
}

TEST(NgmKrigingSystemDual, AgreesWithReferenceValues)
{
  const CsvFile data("meuse/meuse.csv");
  const CsvFile reference("meuse/krige_ok_global.csv");
  Samples samples(data["x"], data["y"], {logarithms(data["zinc"])});
  const NgmVModel model = meuseModel();
  NgmKrigingSystemDual dual(samples.n(), 1, false, false, 0);
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext context(dual);
  ASSERT_EQ(context.getBatchCapacity(), 256);

  const int nTargets = int(reference["x"].size());
  const std::vector<double> z(std::size_t(nTargets), 0.);
  std::vector<double> out(256);
  for (int first = 0; first < nTargets; first += 256) {
    const int n = std::min(256, nTargets - first);
    context.prepareBatch(n, reference["x"].data() + first, reference["y"].data() + first, z.data(),
                         model, samples, nullptr);
    context.computeBatchEstimates(out.data());
    for (int k = 0; k < n; ++k)
      ASSERT_NEAR(out[std::size_t(k)], reference["estimate"][std::size_t(first + k)], REFERENCE);
    context.computeBatchWeights();
    context.computeBatchVariances({0.64}, out.data());
    for (int k = 0; k < n; ++k)
      ASSERT_NEAR(out[std::size_t(k)], reference["variance"][std::size_t(first + k)], REFERENCE);
  }
}

TEST(NgmKrigingSystemDualContext, BitsOfATargetDoNotDependOnItsBatch)
{
  const NgmVModel model = meuseModel();
  for (int nSamples : {37, 155, 300}) {
    SCOPED_TRACE(nSamples);
    Samples samples = randomSamples(121, nSamples);
    const Targets targets(131, 256);
    NgmKrigingSystemDual dual(nSamples, 1, false, false, 0);
    dual.buildSystem(model, samples, 1);
    const std::vector<double> whole = batchResults(dual, model, samples, targets, 0, 256);

    // Sizes that are and are not multiples of the group, at several places.
    for (int size : {1, 2, 3, 5, 7, 15, 16, 17, 100, 128, 255})
      for (int first : {0, 1, 256 - size}) {
        const std::vector<double> part = batchResults(dual, model, samples, targets, first, size);
        for (int k : {0, size / 2, size - 1})
          ASSERT_EQ(resultsOf(part, size, k, nSamples), resultsOf(whole, 256, first + k, nSamples))
              << "target " << k << " of " << size << " from " << first;
      }

    // The same target in every place of a batch of others.
    Targets repeated = targets;
    for (std::size_t k = 0; k < 256; k += 3) {
      repeated.x[k] = targets.x[10];
      repeated.y[k] = targets.y[10];
    }
    const std::vector<double> same = batchResults(dual, model, samples, repeated, 0, 256);
    for (int k = 0; k < 256; k += 3)
      ASSERT_EQ(resultsOf(same, 256, k, nSamples), resultsOf(whole, 256, 10, nSamples));
  }
}

TEST(NgmKrigingSystemDualContext, BatchesEqualSingleTargetsToRounding)
{
  const NgmVModel model = meuseCoregionalization();
  Samples samples = randomSamples(141, 40, 2);
  samples.values(1)[3] = UNDEFINED;
  const NgmKrigingSamples arrays = samples;
  const Targets targets(151, 9);
  const QVector<double> c00 = {model.getC0IJ(0, 0), model.getC0IJ(1, 1)};
  NgmKrigingSystemDual dual(40, 2, false, false, 0);
  dual.buildSystem(model, arrays, 1);
  NgmKrigingSystemDualContext batch(dual);
  NgmKrigingSystemDualContext single(dual);
  EXPECT_EQ(batch.getBatchCapacity(), 128);

  batch.prepareBatch(9, targets.x.data(), targets.y.data(), targets.z.data(), model, arrays,
                     nullptr);
  EXPECT_EQ(batch.getBatchSize(), 9);
  std::vector<double> estimates(18);
  std::vector<double> variances(18);
  batch.computeBatchEstimates(estimates.data());
  batch.setCurrentTarget(0);
  EXPECT_FALSE(batch.isReady());
  batch.computeBatchWeights();
  batch.computeBatchVariances(c00, variances.data());
  for (int k = 0; k < 9; ++k) {
    QVector<double> out;
    QVector<double> expected;
    single.krigingResultsPoint(targets.at(k), model, arrays, expected, nullptr);
    single.computeWeights();
    batch.setCurrentTarget(k);
    ASSERT_TRUE(batch.isReady());
    for (int t = 0; t < 2; ++t)
      EXPECT_NEAR(estimates[std::size_t(2 * k + t)], expected[t], ROUNDING);
    single.computeVariance(c00, expected);
    batch.computeVariance(c00, out);
    for (int t = 0; t < 2; ++t) {
      EXPECT_NEAR(out[t], expected[t], ROUNDING);
      EXPECT_EQ(out[t], variances[std::size_t(2 * k + t)]);
      EXPECT_NEAR(batch.getSumOfWeights(t, t), 1., ROUNDING);
    }
    EXPECT_LT(maxDifference(batch.getRHSMatrix(), single.getRHSMatrix()), 1e-15);
  }
}

TEST(NgmKrigingSystemDual, BitsDoNotDependOnTheProcessThreads)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(161, 250);
  const Targets targets(171, 64);
  std::vector<std::vector<double>> results;
  for (int nThreads : {1, 2, 8}) {
    NgmNumericLibrary::setThreads(nThreads);
    NgmKrigingSystemDual dual(250, 1, false, false, 0);
    dual.buildSystem(model, samples, 1);
    results.push_back(batchResults(dual, model, samples, targets, 0, 64));
  }
  NgmNumericLibrary::setThreads(1);
  EXPECT_EQ(results[0], results[1]);
  EXPECT_EQ(results[0], results[2]);
}

TEST(NgmKrigingSystemDual, TheParallelInverseGivesTheSameToRounding)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(181, 150);
  NgmKrigingSystemDual sequential(150, 1, false, false, 0);
  NgmKrigingSystemDual parallel(150, 1, false, false, 0);
  sequential.buildSystem(model, samples, 1);
  parallel.buildSystem(model, samples, 2);
  EXPECT_LT(maxDifference(sequential.getDualCoefficients(), parallel.getDualCoefficients()),
            ROUNDING * maxAbs(sequential.getDualCoefficients()));
}

TEST(NgmKrigingSystemDual, MayBeBuiltAgainWithOtherSamplesAndFromVariables)
{
  const NgmVModel model = meuseModel();
  Samples first = randomSamples(191, 30);
  Samples second = randomSamples(201, 20);
  NgmKrigingSystemDual dual;
  dual.buildSystem(model, first, 1);
  dual.buildSystem(model, second, 1);

  NbdVariableDouble columns[4];
  columns[0].setVector(second.x());
  columns[1].setVector(second.y());
  columns[2].setVector(std::vector<double>(20, 0.));
  columns[3].setVector(second.values(0));
  NgmKrigingSystemDual other;
  other.buildSystem(model, columns[0], columns[1], columns[2], {&columns[3]}, 1, {});
  EXPECT_TRUE(sameBits(other.getDualCoefficients(), dual.getDualCoefficients()));

  const Targets targets(211, 1);
  NgmKrigingSystemDualContext context(other);
  QVector<double> out;
  QVector<double> expected;
  context.krigingResultsPoint(targets.at(0), model, second, expected, nullptr);
  context.krigingResultsPoint(targets.at(0), model, columns[0], columns[1], columns[2], out, {},
                              nullptr);
  EXPECT_EQ(out, expected);
}

TEST(NgmKrigingSystemDual, ErrorTexts)
{
  const NgmVModel model = meuseModel();
  const NgmVModel two = meuseCoregionalization();
  Samples tooMany = randomSamples(221, 2501, 2);
  Samples undefined({0., 1.}, {0., 1.}, {{UNDEFINED, UNDEFINED}});
  Samples twice({0., 0.}, {0., 0.}, {{1., 2.}});
  Samples three = randomSamples(231, 3);
  NgmKrigingSystemDual dual;
  NgmKrigingSystemDual dualOfTwo(1, 2, false, false, 0);
  NgmKrigingSystemDual built;
  built.buildSystem(model, three, 1);
  NgmKrigingSystemDualContext context(built);
  const std::vector<double> zeros(257, 0.);
  QVector<double> out;
  const QString undefinedMethod = assertion("NgmKrigingSystemDual", "Method not defined.");

  EXPECT_EQ(NgmKrigingSystemDual::getMaximumNumberOfSamples(1), 10000);
  EXPECT_EQ(NgmKrigingSystemDual::getMaximumNumberOfSamples(2), 2500);
  EXPECT_EQ(NgmKrigingSystemDual::getMaximumNumberOfSamples(3), 1111);
  expectErrors({
      {"too many", NbeError::USER, QStringLiteral("Too many data for using a unique neighborhood."),
       [&] { dualOfTwo.buildSystem(two, tooMany, 1); }},
      {"no data", NbeError::USER,
       QStringLiteral("WARNING: There is no valid data. Unable to build the kriging system."),
       [&] { dual.buildSystem(model, undefined, 1); }},
      {"singular", NbeError::USER, QStringLiteral("Inversion errors have been encountered"),
       [&] { dual.buildSystem(continuousModel(), twice, 1); }},
      {"not inverted", NbeError::PROGRAMMING,
       assertion("NgmKrigingSystemDualContext", "Kriging matrix not yet inverted !"),
       [&] { NgmKrigingSystemDualContext{dual}; }},
      {"right-hand side", NbeError::PROGRAMMING, undefinedMethod, [&] { built.getRHSMatrix(); }},
      {"weights", NbeError::PROGRAMMING, undefinedMethod, [&] { built.getWeightsMatrix(); }},
      {"sum", NbeError::PROGRAMMING, undefinedMethod, [&] { built.computeSumOfWeights(out); }},
      {"positive", NbeError::PROGRAMMING, undefinedMethod,
       [&] { built.computeSumOfPositiveWeights(out); }},
      {"mean", NbeError::PROGRAMMING, undefinedMethod, [&] { built.computeWeightForMean(out); }},
      {"lagrange", NbeError::PROGRAMMING, undefinedMethod, [&] { built.computeLagrange(out); }},
      {"not ready", NbeError::PROGRAMMING,
       QStringLiteral("NgmAKrigingSystem::_checkWeightsReady: System not solved and not ready!"),
       [&] { context.computeSumOfWeights(out); }},
      {"batch too large", NbeError::PROGRAMMING,
       assertion("NgmKrigingSystemDualContext", "nTargets <= getBatchCapacity()"),
       [&] {
         context.prepareBatch(257, zeros.data(), zeros.data(), zeros.data(), model, three, nullptr);
       }},
      {"batch full", NbeError::PROGRAMMING,
       assertion("NgmKrigingSystemDualContext", "getBatchSize() < getBatchCapacity()"),
       [&] {
         context.prepareBatch(256, zeros.data(), zeros.data(), zeros.data(), model, three, nullptr);
         context.addToBatch(NgmTarget(), model, three, nullptr);
       }},
      {"nothing collocated", NbeError::PROGRAMMING,
       assertion("NgmKrigingSystemDualContext", "No collocated variables"),
       [&] { context.krigingResultsPointCollocated(NgmTarget(), model, three, {}, out, nullptr); }},
      {"check of nothing", NbeError::PROGRAMMING,
       QStringLiteral("NgmAKrigingSystem::_checkWeightsReady: System not solved and not ready!"),
       [&] { context.checkResults(false); }},
  });
  EXPECT_FALSE(dual.isReady());
  EXPECT_TRUE(built.debug(0).startsWith(QStringLiteral("Kriging system (unique)\n")));
  EXPECT_TRUE(
      context.debug(0).startsWith(QStringLiteral("Kriging system target context (unique)\n")));
}

// Collocated variables.

namespace {

/// The shared system of random samples, and the same samples with one more at the target.
class CollocatedCase
{
public:
  CollocatedCase(int nSamples, const std::vector<int> &collocatedVariables, int nVariables = 2)
      : model(nVariables == 1 ? meuseModel() : meuseCoregionalization()),
        samples(randomSamples(701, nSamples, nVariables)),
        target(NbgVector3D(430., 610.)),
        _nVariables(nVariables)
  {
    samples.values(0)[2] = UNDEFINED;
    for (const int v : collocatedVariables)
      collocated[v] = 1.2 + v;
  }

  std::unique_ptr<Samples> extended()
  {
    std::vector<double> x = samples.x(), y = samples.y();
    x.push_back(target.getCenter().x());
    y.push_back(target.getCenter().y());
    std::vector<std::vector<double>> values;
    for (int v = 0; v < _nVariables; ++v) {
      values.push_back(samples.values(v));
      values.back().push_back(collocated.value(v, UNDEFINED));
    }
    return std::make_unique<Samples>(x, y, values);
  }

  /// All results of the bordered system against those of the larger one.
  void expectAsPrimal(const char *name, bool simple, bool single, const NgmDriftModel &drift,
                      const std::function<void(NgmAKrigingSystem &)> &configure = {})
  {
    SCOPED_TRACE(name);
    const int nDrifts = drift.getNDriftEquations();
    const auto larger = extended();
    const NgmKrigingSamples all = *larger;
    const int n = samples.n();
    NgmKrigingSystem primal(_nVariables, simple, single, nDrifts);
    NgmKrigingSystemDual dual(n, _nVariables, simple, single, nDrifts);
    for (NgmAKrigingSystem *system :
         {static_cast<NgmAKrigingSystem *>(&primal), static_cast<NgmAKrigingSystem *>(&dual)}) {
      system->setDriftModel(drift);
      if (configure)
        configure(*system);
    }
    primal.resetSystem(n + 1, target.getCenter());
    primal.buildSystem(model, all, target, nullptr);
    ASSERT_EQ(primal.solve(), 0);
    dual.buildSystem(model, samples, 1);
    NgmKrigingSystemDualContext context(dual);
    QVector<double> expected, out;
    ASSERT_TRUE(
        context.krigingResultsPointCollocated(target, model, samples, collocated, out, nullptr));
    primal.krigingResults(all.values, expected);
    for (int t = 0; t < _nVariables; ++t)
      EXPECT_NEAR(out[t], expected[t], ROUNDING);

    context.computeWeights();
    const QVector<double> c00 = {10., 10.};
    const NgmKrigingSamples arrays = samples;
    context.krigingResults(arrays.values, out);
    for (int t = 0; t < _nVariables; ++t)
      EXPECT_NEAR(out[t], expected[t], ROUNDING);
    const std::function<void(const NgmAKrigingSystem &, QVector<double> &)> results[] = {
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeVariance(c00, r); },
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeNonOptimVariance(c00, r); },
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeVarianceOfEstimates(r); },
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeCovarianceZZStar(r); },
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeSumOfWeights(r); },
        [&](const NgmAKrigingSystem &s, QVector<double> &r) { s.computeSumOfPositiveWeights(r); }};
    for (const auto &result : results) {
      result(primal, expected);
      result(context, out);
      for (int t = 0; t < _nVariables; ++t)
        EXPECT_NEAR(out[t], expected[t], ROUNDING);
    }
    for (int t = 0; t < _nVariables; ++t)
      for (int v = 0; v < _nVariables; ++v) {
        primal.getWeights(t, v, expected);
        context.getWeights(t, v, out);
        for (int s = 0; s < n; ++s)
          EXPECT_NEAR(out[s], expected[s], ROUNDING);
      }

    // The inverse in use is that of a matrix with as many rows.
    const NgmMatrix &inverse = context.getLHSMatrix();
    EXPECT_EQ(inverse.getNRows(), context.getRHSMatrix().getNRows());
    EXPECT_LT(maxDifference(inverse * context.getRHSMatrix(), context.getWeightsMatrix()),
              ROUNDING);
  }

  NgmVModel model;
  Samples samples;
  NgmTarget target;
  QMap<int, double> collocated;

private:
  int _nVariables;
};

}  // namespace

TEST(NgmKrigingSystemDualContext, CollocatedDataAreOneMoreSample)
{
  const NgmDriftModel none;
  NgmDriftModel linear;
  linear.addDrifts(1, 1, true, true, false);
  for (const std::vector<int> &variables :
       {std::vector<int>{1}, std::vector<int>{0}, std::vector<int>{0, 1}}) {
    CollocatedCase collocated(12, variables);
    collocated.expectAsPrimal("ordinary", false, false, none);
    collocated.expectAsPrimal("simple", true, false, none);
    collocated.expectAsPrimal("rescaled", false, true, none);
    collocated.expectAsPrimal("drift", false, false, linear);
    collocated.expectAsPrimal("direct block", false, false, none, [](NgmAKrigingSystem &system) {
      system.setBlockCorrectionCoefficient(0, 0.9);
      system.setBlockCorrectionCoefficient(1, 0.7);
      system.setPointGaussianCorrelation(matrixOf(2, 2, {1., 0.4, 0.4, 1.}, true));
    });
  }
  CollocatedCase unknown(12, {1});
  unknown.samples.values(1).assign(12, UNDEFINED);
  unknown.expectAsPrimal("the only datum of its variable", false, false, none);
}

TEST(NgmKrigingSystemDualContext, CollocatedValuesThatAddNothing)
{
  CollocatedCase c(10, {1});
  NgmKrigingSystemDual dual(10, 2, false, false, 0);
  dual.buildSystem(c.model, c.samples, 1);
  NgmKrigingSystemDualContext context(dual);
  QVector<double> expected, out;
  context.krigingResultsPoint(c.target, c.model, c.samples, expected, nullptr);
  EXPECT_TRUE(context.krigingResultsPointCollocated(c.target, c.model, c.samples, {{1, UNDEFINED}},
                                                    out, nullptr));
  EXPECT_EQ(out, expected);

  // A sample at the target knows the variable already.
  const NgmTarget atSample(NbgVector3D(c.samples.x()[4], c.samples.y()[4]));
  EXPECT_TRUE(context.krigingResultsPointCollocated(atSample, c.model, c.samples, c.collocated, out,
                                                    nullptr));
  EXPECT_NEAR(out[1], c.samples.values(1)[4], ROUNDING);

  // Then again without.
  context.krigingResultsPointCollocated(c.target, c.model, c.samples, c.collocated, out, nullptr);
  EXPECT_NE(out, expected);
  context.krigingResultsPoint(c.target, c.model, c.samples, out, nullptr);
  EXPECT_EQ(out, expected);
  context.computeWeights();
  EXPECT_EQ(context.getWeightsMatrix().getNRows(), dual.getNValidEquations());
}

TEST(NgmKrigingSystemDualContext, RealizationsShareTheWeights)
{
  CollocatedCase c(12, {1});
  const NgmKrigingSamples arrays = c.samples;
  // Values that single precision holds.
  NbdVariableMulti data[2];
  std::vector<std::vector<double>> realization[2];
  for (int v = 0; v < 2; ++v) {
    data[v].resizeAndFill(12);
    data[v].setNRealizations(2);
    for (int rank = 0; rank < 2; ++rank) {
      realization[v].push_back(uniformVector(711 + std::uint64_t(2 * v + rank), 12, 0., 1.));
      for (int s = 0; s < 12; ++s) {
        double &value = realization[v].back()[std::size_t(s)];
        value = NbbGlobal::isDefined(arrays.values[v][s]) ? double(float(value)) : UNDEFINED;
        data[v].setRealizationValue(rank, s, value);
      }
    }
  }
  NgmKrigingSystemDual dual(12, 2, false, false, 0);
  dual.buildSystem(c.model, arrays, 1);
  NgmKrigingSystemDualContext context(dual);
  NgmCollocatedSystem bordered;
  QVector<double> expected, out;
  context.preparRHSPoint(c.target, c.model, arrays, nullptr);
  ASSERT_TRUE(context.prepareIntermediateSystem(c.model, c.collocated, bordered));
  EXPECT_EQ(bordered.variables, QVector<int>{1});
  EXPECT_EQ(bordered.border.getNRows(), dual.getNValidEquations());
  EXPECT_EQ(bordered.corner(0, 0), c.model.getC0IJ(1, 1));

  context.preparRHSPoint(c.target, c.model, arrays, nullptr);
  context.computeWeights();
  for (int rank = 0; rank < 2; ++rank) {
    Samples changed(c.samples.x(), c.samples.y(),
                    {realization[0][std::size_t(rank)], realization[1][std::size_t(rank)]});
    NgmKrigingSystemDual own(12, 2, false, false, 0);
    own.buildSystem(c.model, changed, 1);
    NgmKrigingSystemDualContext ownContext(own);
    ownContext.krigingResultsPoint(c.target, c.model, changed, expected, nullptr);
    context.krigingResultsForRealization({&data[0], &data[1]}, rank, out);
    for (int t = 0; t < 2; ++t)
      EXPECT_NEAR(out[t], expected[t], ROUNDING);

    const QMap<int, double> value = {{1, 0.5 + rank}};
    ASSERT_TRUE(ownContext.krigingResultsPointCollocated(c.target, c.model, changed, value,
                                                         expected, nullptr));
    context.krigingResultsIntermediateSystem({&data[0], &data[1]}, rank, value, bordered, out);
    for (int t = 0; t < 2; ++t)
      EXPECT_NEAR(out[t], expected[t], ROUNDING);
  }
  context.krigingResultsIntermediateSystem({&data[0], &data[1]}, 0, {}, bordered, out);
  EXPECT_EQ(out, (QVector<double>{UNDEFINED, UNDEFINED}));
}

TEST(NgmKrigingSystemDualContext, ChecksOfItsResults)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(731, 20);
  const NgmTarget target(NbgVector3D(500., 500.));
  for (const bool simple : {true, false}) {
    NgmKrigingSystemDual dual(20, 1, simple, false, 0);
    dual.buildSystem(model, samples, 1);
    NgmKrigingSystemDualContext context(dual);
    context.preparRHSPoint(target, model, samples, nullptr);
    context.computeWeights();
    EXPECT_TRUE(context.checkResults(false));
    // A condition makes the matrix indefinite.
    EXPECT_EQ(context.checkResults(true), simple);
  }

  // A drift that is extrapolated far away.
  NgmDriftModel drift;
  drift.addDrifts(0, 1, true, true, false);
  NgmKrigingSystemDual dual(20, 1, false, false, 2);
  dual.setDriftModel(drift);
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext context(dual);
  context.preparRHSPoint(NgmTarget(NbgVector3D(1e5, 0.)), model, samples, nullptr);
  context.computeWeights();
  EXPECT_FALSE(context.checkResults(false));
}

// Batches of any kind.

TEST(NgmKrigingSystemDualContext, BitsOfVariancesAloneDoNotDependOnTheBatch)
{
  const NgmVModel model = meuseCoregionalization();
  for (const int nSamples : {19, 78, 150}) {
    SCOPED_TRACE(nSamples);
    Samples samples = randomSamples(741, nSamples, 2);
    NgmDriftModel drift;
    drift.addDrifts(0, 1, true, true, false);
    NgmKrigingSystemDual dual(nSamples, 2, false, false, 2);
    dual.setDriftModel(drift);
    dual.buildSystem(model, samples, 1);
    NgmKrigingSystemDualContext context(dual);
    const Targets targets(751, 128);
    const auto variances = [&](int first, int n) {
      std::vector<double> out(std::size_t(2 * n));
      context.prepareBatch(n, targets.x.data() + first, targets.y.data() + first,
                           targets.z.data() + first, model, samples, nullptr);
      context.computeBatchVariances({10., 10.}, out.data());
      return out;
    };
    const std::vector<double> whole = variances(0, 128);
    for (const int size : {1, 2, 3, 7, 8, 9, 50, 127})
      for (const int first : {0, 1, 128 - size}) {
        const std::vector<double> part = variances(first, size);
        ASSERT_TRUE(std::equal(part.begin(), part.end(), whole.begin() + 2 * first))
            << size << " from " << first;
      }
  }
}

TEST(NgmKrigingSystemDualContext, BlocksOfSeveralSizesInOneBatch)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(761, 30);
  NgmKrigingSystemDual dual(30, 1, false, false, 0);
  dual.buildSystem(model, samples, 1);
  NgmKrigingSystemDualContext batch(dual);
  NgmKrigingSystemDualContext single(dual);
  NgmBlock block(false);
  block.setDiscretizationPointsNumber(NbgIntVector3D(3, 3, 1));
  std::vector<double> c00;
  std::vector<NgmTarget> targets;
  batch.startBatch();
  for (int k = 0; k < 5; ++k) {
    block.setSize(NbgVector3D(20. + 30. * k, 40., 0.));
    targets.emplace_back(NbgVector3D(150. * k, 500.), block);
    c00.push_back(0.6 - 0.01 * k);
    batch.addToBatch(targets.back(), model, samples, nullptr);
  }
  double estimates[5], variances[5];
  batch.computeBatchEstimates(estimates);
  batch.computeBatchVariances(c00.data(), variances);
  QVector<double> out;
  for (int k = 0; k < 5; ++k) {
    single.krigingResultsBlock(targets[std::size_t(k)], model, samples, out, nullptr);
    EXPECT_NEAR(estimates[k], out[0], ROUNDING);
    single.computeWeights();
    single.computeVariance({c00[std::size_t(k)]}, out);
    EXPECT_NEAR(variances[k], out[0], ROUNDING);
  }
}

TEST(NgmKrigingSystemDualContext, ExternalDriftsOfABatch)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(771, 30);
  const std::vector<double> drift[] = {uniformVector(772, 30, 0., 1.),
                                       uniformVector(773, 30, 5., 6.)};
  const double *const pointers[] = {drift[0].data(), drift[1].data()};
  NgmKrigingSamples arrays = samples;
  arrays.externalDrifts = pointers;
  NgmExtDriftModel external;
  external.addDrift(0, 1);
  NgmKrigingSystemDual dual(30, 1, false, false, 1);
  dual.setExtDriftModel(external);
  dual.buildSystem(model, arrays, 1);
  NgmKrigingSystemDualContext context(dual);
  const Targets targets(774, 4);
  const std::vector<double> atTargets[] = {uniformVector(775, 4, 0., 1.),
                                           uniformVector(776, 4, 5., 6.)};
  const double *const targetPointers[] = {atTargets[0].data(), atTargets[1].data()};
  double estimates[4];
  context.prepareBatch(4, targets.x.data(), targets.y.data(), targets.z.data(), model, arrays,
                       nullptr, targetPointers);
  context.computeBatchEstimates(estimates);
  QVector<double> out;
  for (int k = 0; k < 4; ++k) {
    const double own[] = {atTargets[0][std::size_t(k)], atTargets[1][std::size_t(k)]};
    context.krigingResultsPoint(targets.at(k), model, arrays, out, nullptr, own);
    EXPECT_EQ(out[0], estimates[k]);
  }
}

TEST(NgmKrigingSystemDual, ContextsMayAskForTheInverseAtOnce)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(781, 120);
  const Targets targets(782, 20);
  NgmKrigingSystemDual dual(120, 1, false, false, 0);
  dual.buildSystem(model, samples, 1);
  const NgmKrigingSystemDual copy(dual);
  std::vector<double> results[2];
  std::thread threads[2];
  for (int i = 0; i < 2; ++i)
    threads[i] =
        std::thread([&, i] { results[i] = batchResults(dual, model, samples, targets, 0, 20); });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(results[0], results[1]);
  EXPECT_EQ(batchResults(copy, model, samples, targets, 0, 20), results[0]);
  EXPECT_TRUE(sameBits(copy.getLHSInverse(), dual.getLHSInverse()));
}

TEST(NgmKrigingSystemDual, DuplicatesAreSingular)
{
  for (const int nSamples : {3, 10, 40}) {
    SCOPED_TRACE(nSamples);
    Samples samples = randomSamples(791, nSamples);
    std::vector<double> x = samples.x(), y = samples.y();
    x[1] = x[2];
    y[1] = y[2];
    Samples twice(x, y, {samples.values(0)});
    for (const bool simple : {false, true}) {
      NgmKrigingSystemDual dual(nSamples, 1, simple, false, 0);
      EXPECT_THROW(dual.buildSystem(continuousModel(), twice, 1), NbeUserError);
      EXPECT_FALSE(dual.isReady());
      // Errors of measurement tell them apart.
      const std::vector<double> deviations(std::size_t(nSamples), 0.1);
      const double *errors = deviations.data();
      NgmKrigingSamples arrays = twice;
      arrays.errorStDevs = &errors;
      EXPECT_NO_THROW(dual.buildSystem(continuousModel(), arrays, 1));
    }
  }
}
