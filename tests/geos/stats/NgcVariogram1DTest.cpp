#include "geos/stats/NgcVariogram1D.h"

#include "basic/base/NbbEFormat.h"
#include "basic/base/NbbStringFormat.h"
#include "basic/base/NbbUserStringFormats.h"
#include "basic/unit/NbuEUnitClass.h"
#include "geos/data/NgdDataSetLines.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using Vario = NgmEVarioExp::EValue;
using testsupport::errorOf;
using testsupport::makeLines;
using testsupport::normal;
using testsupport::uniform;

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

/// Lines with two correlated variables that have holes, weights, a mask and positions that do not
/// always ascend.
struct Data
{
  std::vector<int> counts;
  std::vector<double> positions;
  std::vector<double> variables[2];
  std::vector<double> weights;
  std::vector<bool> mask;

  Data(int nLines, int longest)
  {
    for (int line = 0; line < nLines; ++line) {
      counts.push_back(testsupport::uniformInt(1, line, longest + 1));
      double position = 0.;
      for (int s = 0; s < counts[line]; ++s) {
        const int i = int(positions.size());
        position += line % 3 == 0 ? uniform(2, i, -1., 2.) : uniform(2, i, 0., 2.);
        positions.push_back(i % 29 == 7 ? UNDEFINED : position);
        variables[0].push_back(i % 7 == 3 ? UNDEFINED : 5. + normal(3, i));
        variables[1].push_back(i % 5 == 3 ? UNDEFINED : 4. + normal(3, i) + 0.5 * normal(4, i));
        weights.push_back(i % 11 == 2 ? UNDEFINED : i % 13 == 4 ? -1. : uniform(5, i, 0.5, 2.));
        mask.push_back(i % 6 == 1);
      }
    }
  }
};

struct Options
{
  bool weights = false;
  bool mask = false;
};

NgdDataSetLines makeDataSet(const Data &data, const Options &options)
{
  const auto provider = makeLines(data.counts);
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::LINE_S,
                         provider->addVariable(QStringLiteral("S"), data.positions));
  for (int k = 0; k < 2; ++k)
    dataSet.assignVariable(Nbd::Role::V,
                           provider->addVariable(QStringLiteral("V%1").arg(k), data.variables[k]));
  if (options.weights)
    dataSet.assignVariable(Nbd::Role::WEIGHT,
                           provider->addVariable(QStringLiteral("W"), data.weights));
  if (options.mask)
    dataSet.assignVariable(Nbd::Role::MASK, provider->addVariable(QStringLiteral("M"), data.mask));
  return dataSet;
}

struct Curve
{
  explicit Curve(int nLags)
      : nPairs(nLags, 0),
        weight(nLags, 0.),
        distance(nLags, 0.),
        gamma(nLags, 0.),
        pairwise(nLags, 0.)
  {
  }

  std::vector<qint64> nPairs;
  std::vector<double> weight, distance, gamma, pairwise;
};

/// All pairs of each line, one after another.
Curve bruteForce(const Data &data, const Options &options, int i, int j, double lag, int nLags)
{
  const std::vector<double> &a = data.variables[i];
  const std::vector<double> &b = data.variables[j];
  const auto isValid = [&](int s) {
    return NbbGlobal::isDefined(a[s]) && NbbGlobal::isDefined(b[s]) &&
           NbbGlobal::isDefined(data.positions[s]) && !(options.mask && data.mask[s]) &&
           !(options.weights && !(NbbGlobal::isDefined(data.weights[s]) && data.weights[s] > 0.));
  };
  Curve curve(nLags);
  int first = 0;
  for (const int count : data.counts) {
    for (int t = first; t < first + count; ++t) {
      for (int h = t + 1; h < first + count; ++h) {
        if (!isValid(t) || !isValid(h))
          continue;
        const double d = data.positions[h] - data.positions[t];
        const double rank = std::floor(d / lag + 0.5);
        if (!(rank >= 0. && rank < nLags))
          continue;
        const int k = int(rank);
        const double w = options.weights ? data.weights[t] * data.weights[h] : 1.;
        ++curve.nPairs[k];
        curve.weight[k] += w;
        curve.distance[k] += d;
        curve.gamma[k] += 0.5 * w * (a[h] - a[t]) * (b[h] - b[t]);
        curve.pairwise[k] +=
            w * 2. * (a[h] - a[t]) * (b[h] - b[t]) / ((a[h] + a[t]) * (b[h] + b[t]));
      }
    }
    first += count;
  }
  return curve;
}

void expectNear(double actual, double expected)
{
  // Sums of some thousand terms in the same order.
  EXPECT_NEAR(actual, expected, 1e-12 * std::max(1., std::fabs(expected)));
}

void expectCurve(const NgmVariogramExpData &results, int i, int j, const Curve &expected)
{
  const int nLags = int(expected.nPairs.size());
  const QVector<qint64> nPairs = results.getNumberOfPairs(0, false, i, j);
  const QVector<double> distances = results.getDistances(0, false, i, j);
  const QVector<double> gamma = results.getVarioColumn(0, Vario::VARIOGRAM, i, j);
  const QVector<double> pairwise =
      results.getVarioColumn(0, Vario::PAIRWISE_RELATIVE_VARIOGRAM, i, j);
  ASSERT_EQ(nPairs.size(), nLags);
  for (int k = 0; k < nLags; ++k) {
    SCOPED_TRACE(testing::Message() << "variables " << i << ", " << j << " lag " << k);
    EXPECT_EQ(nPairs[k], expected.nPairs[k]);
    EXPECT_GT(nPairs[k], 0);
    expectNear(distances[k], expected.distance[k] / expected.weight[k]);
    expectNear(gamma[k], expected.gamma[k] / expected.weight[k]);
    expectNear(pairwise[k], expected.pairwise[k] / expected.weight[k]);
  }
}

/// One line with the variable "V" at the given positions.
NgdDataSetLines oneLine(const std::vector<double> &positions, const std::vector<double> &values)
{
  const auto provider = makeLines({int(positions.size())});
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(Nbd::Role::LINE_S, provider->addVariable(QStringLiteral("S"), positions));
  dataSet.assignVariable(Nbd::Role::V, provider->addVariable(QStringLiteral("V"), values));
  return dataSet;
}

void run(NgcVariogram1D &calculator)
{
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
}

}  // namespace

TEST(NgcVariogram1D, AgreesWithALoopOverThePairsOfEachLine)
{
  const Data data(40, 50);
  for (int bits = 0; bits < 4; ++bits) {
    SCOPED_TRACE(testing::Message() << "options " << bits);
    const Options options{(bits & 1) != 0, (bits & 2) != 0};
    NgcVariogram1D calculator;
    calculator.setInputDataSet(makeDataSet(data, options));
    calculator.setLag(1.5);
    calculator.setNLags(8);
    run(calculator);
    const NgmVariogramExpData &results = calculator.getResults();
    EXPECT_EQ(results.getNVariables(), 2);
    for (int i = 0; i < 2; ++i) {
      for (int j = i; j < 2; ++j)
        expectCurve(results, i, j, bruteForce(data, options, i, j, 1.5, 8));
    }
  }
}

TEST(NgcVariogram1D, LagsAreClosedBelowAndOpenAbove)
{
  NgcVariogram1D calculator;
  calculator.setLag(10.);
  calculator.setNLags(3);
  const auto pairsOf = [&](double distance) {
    calculator.setInputDataSet(oneLine({100., 100. + distance}, {1., 2.}));
    run(calculator);
    return calculator.getResults().getNumberOfPairs(0, false, 0, 0);
  };
  EXPECT_EQ(pairsOf(0.), QVector<qint64>({1, 0, 0}));
  EXPECT_EQ(pairsOf(4.9), QVector<qint64>({1, 0, 0}));
  EXPECT_EQ(pairsOf(5.), QVector<qint64>({0, 1, 0}));
  EXPECT_EQ(pairsOf(14.9), QVector<qint64>({0, 1, 0}));
  EXPECT_EQ(pairsOf(15.), QVector<qint64>({0, 0, 1}));
  EXPECT_EQ(pairsOf(24.9), QVector<qint64>({0, 0, 1}));
  EXPECT_EQ(pairsOf(25.), QVector<qint64>({0, 0, 0}));
  EXPECT_EQ(pairsOf(-5.), QVector<qint64>({1, 0, 0}));
  EXPECT_EQ(pairsOf(-5.1), QVector<qint64>({0, 0, 0}));
}

TEST(NgcVariogram1D, SamplesFarAheadDoNotHideThoseThatComeBack)
{
  NgcVariogram1D calculator;
  calculator.setInputDataSet(oneLine({0., 50., 1., 60., 2.}, {1., 0., 3., 0., 6.}));
  calculator.setNLags(3);
  run(calculator);
  EXPECT_EQ(calculator.getResults().getNumberOfPairs(0, false, 0, 0), QVector<qint64>({0, 2, 1}));
  EXPECT_EQ(calculator.getResults().getVarioColumn(0, Vario::VARIOGRAM, 0, 0),
            QVector<double>({0., 0.5 * (4. + 9.) / 2., 0.5 * 25.}));
}

TEST(NgcVariogram1D, ALinearDriftGivesAParabola)
{
  std::vector<double> positions, values;
  for (int i = 0; i < 50; ++i) {
    positions.push_back(7. + 2. * i);
    values.push_back(1e5 - 3. * positions.back());
  }
  NgcVariogram1D calculator;
  calculator.setInputDataSet(oneLine(positions, values));
  calculator.setLag(2.);
  calculator.setNLags(40);
  run(calculator);
  const QVector<double> gamma = calculator.getResults().getVarioColumn(0, Vario::VARIOGRAM, 0, 0);
  for (int lag = 1; lag < 40; ++lag)
    EXPECT_EQ(gamma[lag], 0.5 * 9. * 4. * lag * lag);  // whole numbers: exact
}

TEST(NgcVariogram1D, CoresStandAtTheirMiddles)
{
  // Cores [0, 1], [1, 4], [4, 5]: middles 0.5, 2.5, 4.5.
  const auto provider = QSharedPointer<NbpMemoryProviderLineCoreW>::create(NbgEDimension::DIM_3D,
                                                                           std::vector<int>{3});
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignVariable(
      Nbd::Role::V, provider->addVariable(QStringLiteral("V"), std::vector<double>{1., 2., 4.}));
  NgcVariogram1D calculator;
  calculator.setNLags(5);
  calculator.setInputDataSet(dataSet);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_TRUE(calculator.getErrorMessage().contains(Nbd::Role::LINE_S_FROM));

  dataSet.assignVariable(Nbd::Role::LINE_S_FROM, provider->addSFromVariable({0., 1., 4.}));
  dataSet.assignVariable(Nbd::Role::LINE_S_TO, provider->addSToVariable({1., 4., 5.}));
  calculator.setInputDataSet(dataSet);
  run(calculator);
  EXPECT_EQ(calculator.getResults().getNumberOfPairs(0, false, 0, 0),
            QVector<qint64>({0, 0, 2, 0, 1}));
  EXPECT_EQ(calculator.getResults().getDistances(0, false, 0, 0),
            QVector<double>({0., 0., 2., 0., 4.}));
}

// The mask is read as true or false: here a fraction does not lower a weight.
TEST(NgcVariogram1D, AnyMaskButZeroLeavesASampleOut)
{
  const auto provider = makeLines({4});
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  const auto add = [&](const QString &role, std::vector<double> values) {
    dataSet.assignVariable(role, provider->addVariable(role, std::move(values)));
  };
  add(Nbd::Role::LINE_S, {0., 1., 2., 3.});
  add(Nbd::Role::V, {1., 2., 4., 8.});
  add(Nbd::Role::MASK, {0., 0.5, 0., 1.});
  NgcVariogram1D calculator;
  calculator.setInputDataSet(dataSet);
  calculator.setNLags(4);
  run(calculator);
  EXPECT_EQ(calculator.getResults().getNumberOfPairs(0, false, 0, 0),
            QVector<qint64>({0, 0, 1, 0}));
  EXPECT_EQ(calculator.getResults().getVarioColumn(0, Vario::VARIOGRAM, 0, 0)[2], 4.5);
}

TEST(NgcVariogram1D, DescribesItselfAndCarriesSills)
{
  const Data data(20, 30);
  NgmMultivariateStatistics statistics({QStringLiteral("V0"), QStringLiteral("V1")});
  for (int i = 0; i < 2; ++i) {
    statistics.getUnivariateStats(i).setVariance(i + 2.);
    statistics.getUnivariateStats(i).setStandardDeviation(std::sqrt(i + 2.));
  }
  NgcVariogram1D calculator;
  EXPECT_EQ(calculator.getNVariables(), 0);
  calculator.setInputDataSet(makeDataSet(data, Options()));
  calculator.setLagAndMaximumDistance(1.5, 9.25);
  EXPECT_EQ(calculator.getNLags(), 7);
  EXPECT_EQ(calculator.getNVariables(), 2);
  run(calculator);
  EXPECT_FALSE(
      NbbGlobal::isDefined(calculator.getResults().getVarioPseudoSill(NgmEVarioExp::VARIOGRAM, 0)));

  calculator.setStatistics(statistics);
  run(calculator);
  const NgmVariogramExpData &results = calculator.getResults();
  EXPECT_EQ(results.getAllDirectionNames(), QStringList{QStringLiteral("Downhole")});
  EXPECT_EQ(results.getDirectionGroupNames(0), QStringList{QStringLiteral("Downhole")});
  EXPECT_EQ(results.getGroupDescription(QStringLiteral("Downhole")),
            QStringLiteral("   Lag Value = 1.5\n   Maximum Distance = 10.5\n"));
  EXPECT_EQ(calculator.getTableOfResults(1, 0).getNSamples(), 7);
  const int pairs[] = {0, 2};
  for (int i = 0; i < 2; ++i) {
    EXPECT_NEAR(results.getVarioPseudoSill(NgmEVarioExp::VARIOGRAM, pairs[i]), i + 2., 1e-14);
    const Curve curve = bruteForce(data, Options(), i, i, 1.5, 7);
    double sum = 0., weight = 0.;
    for (int k = 0; k < 7; ++k) {
      sum += curve.pairwise[k];
      weight += curve.weight[k];
    }
    expectNear(results.getVarioPseudoSill(NgmEVarioExp::PAIRWISE_RELATIVE_VARIOGRAM, pairs[i]),
               sum / weight);
  }
}

TEST(NgcVariogram1D, DescribesLengthsInTheFormatOfTheUser)
{
  NgcVariogram1D calculator;
  calculator.setInputDataSet(oneLine({0., 1.}, {1., 2.}));
  calculator.setLag(1234567.5);
  calculator.setNLags(2);
  NbbUserStringFormats::setStringFormat(NbuEUnitClass::LENGTH,
                                        NbbStringFormat(NbbEFormat::FREE, 9));
  run(calculator);
  NbbUserStringFormats::reset();
  EXPECT_EQ(calculator.getResults().getGroupDescription(QStringLiteral("Downhole")),
            QStringLiteral("   Lag Value = 1234567.5\n   Maximum Distance = 2469135\n"));
}

TEST(NgcVariogram1D, BitsDoNotDependOnThreads)
{
  const Data data(9000, 12);
  QVector<double> reference;
  for (const int nThreads : {1, 2, 8}) {
    NgcVariogram1D calculator;
    calculator.setInputDataSet(makeDataSet(data, Options{true, true}));
    calculator.setNThread(nThreads);
    run(calculator);
    EXPECT_GE(calculator.getCounterMax(), 9);  // several buffers
    QVector<double> values;
    for (const Vario curve : {Vario::VARIOGRAM, Vario::PAIRWISE_RELATIVE_VARIOGRAM})
      values += calculator.getResults().getVarioColumn(0, curve, 0, 1);
    if (reference.isEmpty())
      reference = values;
    EXPECT_EQ(values, reference) << nThreads << " threads";
  }
}

TEST(NgcVariogram1D, RefusesWhatMakesNoSense)
{
  NgcVariogram1D calculator;
  const QString invalid =
      QStringLiteral("NgcVariogram1D::setLagAndMaximumDistance: invalid arguments");
  EXPECT_EQ(errorOf([&] { calculator.setLagAndMaximumDistance(0., 5.); }), invalid);
  EXPECT_EQ(errorOf([&] { calculator.setLagAndMaximumDistance(10., 5.); }), invalid);
  EXPECT_EQ(errorOf([&] { calculator.setLagAndMaximumDistance(1e-9, 1e9); }), invalid);
  calculator.setLagAndMaximumDistance(10., 95.);
  EXPECT_EQ(calculator.getNLags(), 10);
  EXPECT_EQ(errorOf([&] { calculator.getResults(); }),
            QStringLiteral("NgcVariogram1D::getResults: not computed."));

  calculator.setInputDataSet(oneLine({0., 1.}, {1., 2.}));
  calculator.setStatistics(NgmMultivariateStatistics({QStringLiteral("A"), QStringLiteral("B")}));
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(calculator.getErrorMessage(),
            QStringLiteral("NgcVariogram1D: statistics of another number of variables."));
  calculator.setNLags(0);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(calculator.getErrorMessage(), QStringLiteral("NgcVariogram1D: no lags."));
}
