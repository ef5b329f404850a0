#include "geos/matrix/NgmKrigingSystem.h"

#include "KrigingTestSupport.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "geos/interpol/NgmTarget.h"

#include <numeric>

using namespace testsupport;

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

/// Of systems with a few dozen equations and covariances of about 1.
constexpr double ROUNDING = 1e-12;

/// Builds and solves the system of a target.
void krige(NgmKrigingSystem &system, const NgmVModel &model, const NgmKrigingSamples &samples,
           double x, double y)
{
  const NbgVector3D target(x, y);
  system.resetSystem(samples.n, target);
  system.buildSystem(model, samples, NgmTarget(target), nullptr);
  ASSERT_EQ(system.solve(), 0);
}

QVector<double> weightsOf(const NgmKrigingSystem &system, int t = 0, int v = 0)
{
  QVector<double> weights;
  system.getWeights(t, v, weights);
  return weights;
}

}  // namespace

TEST(NgmKrigingSystem, OneSampleGivesTheClosedForm)
{
  const NgmVModel model = meuseModel();
  Samples samples({0.}, {0.}, {{7.}});
  NgmKrigingSystem system;
  krige(system, model, samples, 300., 400.);
  const double c0 = model.getC0IJ(0, 0);
  const double ch = model.calcCovaIJ(0, 0, NbgVector3D(300., 400.));

  QVector<double> out;
  EXPECT_NEAR(weightsOf(system)[0], 1., 1e-15);
  system.computeLagrange(out);
  EXPECT_NEAR(out[0], ch - c0, 1e-15);
  system.computeVariance({c0}, out);
  EXPECT_NEAR(out[0], 2. * (c0 - ch), 1e-15);
  system.krigingResults(NgmKrigingSamples(samples).values, out);
  EXPECT_NEAR(out[0], 7., 1e-14);
}

TEST(NgmKrigingSystem, SimpleKrigingWithOneSample)
{
  const NgmVModel model = meuseModel();
  Samples samples({0.}, {0.}, {{2.}});
  NgmKrigingSystem system(1, true, false, 0);
  krige(system, model, samples, 300., 400.);
  const double c0 = model.getC0IJ(0, 0);
  const double rho = model.calcCovaIJ(0, 0, NbgVector3D(300., 400.)) / c0;

  QVector<double> out;
  EXPECT_NEAR(weightsOf(system)[0], rho, 1e-15);
  system.computeWeightForMean(out);
  EXPECT_NEAR(out[0], 1. - rho, 1e-15);
  system.computeVariance({c0}, out);
  EXPECT_NEAR(out[0], c0 * (1. - rho * rho), 1e-15);
}

TEST(NgmKrigingSystem, AgreesWithReferenceValues)
{
  const CsvFile data("meuse/meuse.csv");
  const CsvFile ordinary("meuse/krige_ok_global.csv");
  const CsvFile simple("meuse/krige_sk_global.csv");
  Samples samples(data["x"], data["y"], {logarithms(data["zinc"])});
  Samples residuals(data["x"], data["y"], {logarithms(data["zinc"])});
  for (double &value : residuals.values(0))
    value -= 5.9;
  const NgmVModel model = meuseModel();
  NgmKrigingSystem ok;
  NgmKrigingSystem sk(1, true, false, 0);
  QVector<double> out;
  for (std::size_t i = 0; i < ordinary["x"].size(); i += 97) {
    krige(ok, model, samples, ordinary["x"][i], ordinary["y"][i]);
    ok.krigingResults(NgmKrigingSamples(samples).values, out);
    EXPECT_NEAR(out[0], ordinary["estimate"][i], REFERENCE);
    ok.computeVariance({0.64}, out);
    EXPECT_NEAR(out[0], ordinary["variance"][i], REFERENCE);

    krige(sk, model, residuals, simple["x"][i], simple["y"][i]);
    sk.krigingResults(NgmKrigingSamples(residuals).values, out);
    EXPECT_NEAR(out[0] + 5.9, simple["estimate"][i], REFERENCE);
    sk.computeVariance({0.64}, out);
    EXPECT_NEAR(out[0], simple["variance"][i], REFERENCE);
  }
}

TEST(NgmKrigingSystem, HeterotopicCokrigingAgreesWithReferenceValues)
{
  const CsvFile data("meuse/meuse.csv");
  const CsvFile reference("meuse/cokrige_ok_heterotopic_200.csv");
  Samples samples(data["x"], data["y"], {logarithms(data["zinc"]), logarithms(data["lead"])});
  for (int s = 0; s < samples.n(); ++s)
    if (s % 3 != 0)
      samples.values(0)[std::size_t(s)] = UNDEFINED;
  const NgmVModel model = meuseCoregionalization();
  NgmKrigingSystem system(2, false, false, 0);
  QVector<double> out;
  for (std::size_t i = 0; i < reference["x"].size(); i += 23) {
    krige(system, model, samples, reference["x"][i], reference["y"][i]);
    system.krigingResults(NgmKrigingSamples(samples).values, out);
    EXPECT_NEAR(out[0], reference["lz_estimate"][i], REFERENCE);
    EXPECT_NEAR(out[1], reference["ll_estimate"][i], REFERENCE);
    system.computeVariance({model.getC0IJ(0, 0), model.getC0IJ(1, 1)}, out);
    EXPECT_NEAR(out[0], reference["lz_variance"][i], REFERENCE);
    EXPECT_NEAR(out[1], reference["ll_variance"][i], REFERENCE);
  }
}

TEST(NgmKrigingSystem, SumsOfWeightsFollowTheConditions)
{
  Samples samples = randomSamples(61, 20, 2);
  const NgmVModel model = meuseCoregionalization();
  NgmKrigingSystem system(2, false, false, 0);
  krige(system, model, samples, 500., 500.);
  QVector<double> sums;
  QVector<double> positive;
  system.computeSumOfWeights(sums);
  system.computeSumOfPositiveWeights(positive);
  for (int t = 0; t < 2; ++t) {
    EXPECT_NEAR(sums[t], 1., ROUNDING);
    EXPECT_EQ(positive[t], system.getSumOfPosWeights(t, t));
    for (int v = 0; v < 2; ++v) {
      EXPECT_NEAR(system.getSumOfWeights(t, v), t == v ? 1. : 0., ROUNDING);
      EXPECT_NEAR(system.getSumOfPosWeights(t, v) + system.getSumOfNegWeights(t, v),
                  system.getSumOfWeights(t, v), ROUNDING);
      EXPECT_LE(system.getSumOfNegWeights(t, v), 0.);
    }
  }

  NgmKrigingSystem rescaled(2, false, true, 0);
  krige(rescaled, model, samples, 500., 500.);
  for (int t = 0; t < 2; ++t)
    EXPECT_NEAR(rescaled.getSumOfWeights(t, 0) + rescaled.getSumOfWeights(t, 1), 1., ROUNDING);
}

TEST(NgmKrigingSystem, IsExactAtASample)
{
  Samples samples = randomSamples(64, 16);
  const NgmVModel model = meuseModel();
  NgmKrigingSystem system;
  krige(system, model, samples, samples.x()[5], samples.y()[5]);
  const QVector<double> weights = weightsOf(system);
  for (int s = 0; s < 16; ++s)
    EXPECT_NEAR(weights[s], s == 5 ? 1. : 0., ROUNDING);
  QVector<double> variance;
  system.computeVariance({0.64}, variance);
  EXPECT_NEAR(variance[0], 0., ROUNDING);
}

TEST(NgmKrigingSystem, VarianceIsNeverNegative)
{
  Samples samples = randomSamples(67, 8);
  NgmKrigingSystem system;
  krige(system, meuseModel(), samples, 400., 300.);
  QVector<double> variance;
  system.computeVariance({0.}, variance);
  EXPECT_EQ(variance[0], 0.);
}

TEST(NgmKrigingSystem, AnUndefinedDatumIsAsGoodAsNone)
{
  Samples all = randomSamples(70, 12);
  all.values(0)[3] = UNDEFINED;
  std::vector<double> x = all.x();
  std::vector<double> y = all.y();
  std::vector<double> values = all.values(0);
  for (std::vector<double> *column : {&x, &y, &values})
    column->erase(column->begin() + 3);
  Samples without(x, y, {values});

  const NgmVModel model = meuseModel();
  NgmKrigingSystem system;
  NgmKrigingSystem reduced;
  krige(system, model, all, 450., 550.);
  krige(reduced, model, without, 450., 550.);
  const QVector<double> weights = weightsOf(system);
  const QVector<double> expected = weightsOf(reduced);
  EXPECT_EQ(weights[3], 0.);
  for (int s = 0; s < 11; ++s)
    EXPECT_NEAR(weights[s < 3 ? s : s + 1], expected[s], ROUNDING);
  EXPECT_EQ(system.getNValidEquations(), 12);
  EXPECT_EQ(system.getNValidDataEquations(), 11);

  QVector<double> estimate;
  QVector<double> expectedEstimate;
  system.krigingResults(NgmKrigingSamples(all).values, estimate);
  reduced.krigingResults(NgmKrigingSamples(without).values, expectedEstimate);
  EXPECT_NEAR(estimate[0], expectedEstimate[0], ROUNDING);
}

TEST(NgmKrigingSystem, AVariableWithoutDataLosesItsCondition)
{
  Samples samples = randomSamples(73, 9, 2);
  samples.values(0).assign(9, UNDEFINED);
  NgmKrigingSystem system(2, false, false, 0);
  krige(system, meuseCoregionalization(), samples, 450., 550.);
  EXPECT_FALSE(system.isValidVar(0));
  EXPECT_TRUE(system.isValidVar(1));
  for (int t = 0; t < 2; ++t)
    for (double weight : weightsOf(system, t, 0))
      EXPECT_EQ(weight, 0.);
  QVector<double> lagrange;
  system.computeLagrange(lagrange);
  EXPECT_EQ(lagrange[0], 0.);
  EXPECT_NEAR(system.getSumOfWeights(1, 1), 1., ROUNDING);
}

TEST(NgmKrigingSystem, TheOrderOfTheSamplesDoesNotMatter)
{
  Samples samples = randomSamples(76, 15);
  std::vector<double> x(samples.x().rbegin(), samples.x().rend());
  std::vector<double> y(samples.y().rbegin(), samples.y().rend());
  std::vector<double> values(samples.values(0).rbegin(), samples.values(0).rend());
  Samples reversed(x, y, {values});
  NgmKrigingSystem system;
  krige(system, meuseModel(), samples, 200., 800.);
  const QVector<double> forward = weightsOf(system);
  krige(system, meuseModel(), reversed, 200., 800.);
  const QVector<double> backward = weightsOf(system);
  for (int s = 0; s < 15; ++s)
    EXPECT_NEAR(forward[s], backward[14 - s], ROUNDING);
}

TEST(NgmKrigingSystem, ReusesItsMemoryAndGivesTheSameBitsAgain)
{
  Samples large = randomSamples(79, 32);
  Samples small = randomSamples(82, 16);
  const NgmVModel model = meuseModel();
  NgmKrigingSystem system;
  krige(system, model, large, 500., 500.);
  const QVector<double> before = weightsOf(system);
  const double *stores[] = {system.getLHSMatrix().constElements(),
                            system.getRHSMatrix().constElements(),
                            system.getWeightsMatrix().constElements()};
  krige(system, model, small, 100., 100.);
  krige(system, model, large, 500., 500.);
  EXPECT_EQ(weightsOf(system), before);
  EXPECT_EQ(system.getLHSMatrix().constElements(), stores[0]);
  EXPECT_EQ(system.getRHSMatrix().constElements(), stores[1]);
  EXPECT_EQ(system.getWeightsMatrix().constElements(), stores[2]);
}

TEST(NgmKrigingSystem, BothTrianglesAreThereWheneverAskedFor)
{
  const NgmVModel model = meuseModel();
  Samples samples = randomSamples(61, 6);
  Samples others = randomSamples(62, 6);
  others.values(0)[2] = UNDEFINED;
  NgmKrigingSystem system;
  system.resetSystem(6, NbgVector3D());
  EXPECT_TRUE(system.getLHSMatrix().isNull(0.));
  // Built, read, built again on the same memory.
  for (Samples *some : {&samples, &others, &samples}) {
    system.resetSystem(6, NbgVector3D());
    system.buildSystemLHS(model, *some, nullptr);
    const NgmMatrix lhs(system.getLHSMatrix());
    EXPECT_TRUE(lhs.isSymmetrical(0.));
    EXPECT_EQ(lhs(6, 0), 1.);
    const NbgVector3D h(some->x()[4] - some->x()[1], some->y()[4] - some->y()[1]);
    EXPECT_NEAR(lhs(4, 1), model.calcCovaIJ(0, 0, h), 1e-15);
    system.buildSystemLHS(model, samples, nullptr);
    EXPECT_TRUE(system.getLHSMatrix().isSymmetrical(0.));
  }
}

TEST(NgmKrigingSystem, VariablesAndArraysGiveTheSame)
{
  Samples samples = randomSamples(85, 10);
  samples.values(0)[4] = UNDEFINED;
  const NgmVModel model = meuseModel();
  NgmKrigingSystem expected;
  krige(expected, model, samples, 450., 550.);
  QVector<double> estimate;
  expected.krigingResults(NgmKrigingSamples(samples).values, estimate);

  NbdVariableDouble columns[4];
  columns[0].setVector(samples.x());
  columns[1].setVector(samples.y());
  columns[2].setVector(std::vector<double>(10, 0.));
  columns[3].setVector(samples.values(0));
  const NgmTarget target{NbgVector3D(450., 550.)};
  NgmKrigingSystem system;
  QVector<double> out;
  system.resetSystem(10, target.getCenter());
  system.buildSystem(model, columns[0], columns[1], columns[2], {}, target, {&columns[3]}, {},
                     nullptr);
  ASSERT_EQ(system.solve(), 0);
  EXPECT_EQ(weightsOf(system), weightsOf(expected));
  EXPECT_EQ(system.krigingResult(columns[3]), estimate[0]);
  system.krigingResults({&columns[3]}, out);
  EXPECT_EQ(out, estimate);

  system.resetSystem(10, target.getCenter());
  system.buildSystemLHS(model, columns[0], columns[1], columns[2], {}, {&columns[3]});
  system.buildSystemRHS(model, columns[0], columns[1], columns[2], target, {}, nullptr);
  ASSERT_EQ(system.solve(), 0);
  EXPECT_EQ(weightsOf(system), weightsOf(expected));

  NbdVariableFloat rounded;
  for (double value : samples.values(0))
    rounded.appendValue(value);
  // Values of 1 to 2 in single precision.
  EXPECT_NEAR(system.krigingResult(rounded), estimate[0], 1e-6);
}

TEST(NgmKrigingSystem, ResultsWantASolvedSystem)
{
  const NgmVModel model = meuseModel();
  Samples twice({0., 0.}, {0., 0.}, {{1., 2.}});
  const QString text =
      QStringLiteral("NgmAKrigingSystem::_checkWeightsReady: System not solved and not ready!");
  NgmKrigingSystem system;
  QVector<double> out;
  const auto expectNotReady = [&] {
    EXPECT_FALSE(system.isReady());
    expectErrors({
        {"weights", NbeError::PROGRAMMING, text, [&] { system.getWeights(0, 0, out); }},
        {"sum", NbeError::PROGRAMMING, text, [&] { system.computeSumOfWeights(out); }},
        {"positive", NbeError::PROGRAMMING, text, [&] { system.computeSumOfPositiveWeights(out); }},
        {"mean", NbeError::PROGRAMMING, text, [&] { system.computeWeightForMean(out); }},
        {"lagrange", NbeError::PROGRAMMING, text, [&] { system.computeLagrange(out); }},
        {"variance", NbeError::PROGRAMMING, text, [&] { system.computeVariance({1.}, out); }},
        {"estimate", NbeError::PROGRAMMING, text,
         [&] { system.krigingResults(NgmKrigingSamples(twice).values, out); }},
    });
  };
  expectNotReady();

  // Two samples at one place.
  system.resetSystem(2, NbgVector3D());
  system.buildSystem(continuousModel(), twice, NgmTarget(NbgVector3D(1., 1.)), nullptr);
  EXPECT_GT(system.solve(), 0);
  expectNotReady();

  Samples samples = randomSamples(88, 3);
  krige(system, model, samples, 10., 10.);
  EXPECT_TRUE(system.isReady());
  system.buildSystemRHS(model, samples, NgmTarget(NbgVector3D(2., 2.)), nullptr);
  EXPECT_FALSE(system.isReady());
}

TEST(NgmKrigingSystem, ErrorTexts)
{
  NgmKrigingSystem simple(1, true, false, 0);
  krige(simple, meuseModel(), randomSamples(91, 3), 10., 10.);
  NgmKrigingSystem cokriging(2, false, false, 0);
  Samples pairs = randomSamples(92, 3, 2);
  krige(cokriging, meuseCoregionalization(), pairs, 10., 10.);
  NbdVariableDouble column;
  column.setVector(pairs.values(0));
  QVector<double> out;
  expectErrors({
      {"lagrange", NbeError::PROGRAMMING,
       QStringLiteral("NgmKrigingSystem::computeLagrange: lagrange parameter not available in SK."),
       [&] { simple.computeLagrange(out); }},
      {"rescaled with drift", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "Rescaled cokriging is incompatible with drifts"),
       [] { NgmKrigingSystem(2, false, true, 1); }},
      {"one variable of two", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "getNVariables() == 1"),
       [&] { cokriging.krigingResult(column); }},
      {"one variable of two, in a list", NbeError::PROGRAMMING,
       assertion("NgmAKrigingSystem", "dataVars.size() == getNVariables()"),
       [&] { cokriging.krigingResults({&column}, out); }},
  });
  const QString text = simple.debug(0);
  EXPECT_TRUE(
      text.startsWith(QStringLiteral("Kriging system (moving)\nN Var               : 1\n")));
  EXPECT_TRUE(text.contains(QStringLiteral("N Equations         : 3\n")));
}
