#include "geos/matrix/NgmKrigingSystemDual.h"

#include "KrigingTestSupport.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/matrix/NgmKrigingSystem.h"
#include "geos/matrix/NgmKrigingSystemDualContext.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <numeric>

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
  });
  EXPECT_FALSE(dual.isReady());
  EXPECT_TRUE(built.debug(0).startsWith(QStringLiteral("Kriging system (unique)\n")));
  EXPECT_TRUE(
      context.debug(0).startsWith(QStringLiteral("Kriging system target context (unique)\n")));
}
