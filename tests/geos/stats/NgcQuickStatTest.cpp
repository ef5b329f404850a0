#include "geos/stats/NgcQuickStat.h"

#include "basic/error/NbeError.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "support/TestData.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

using testing::HasSubstr;
using testsupport::normal;
using testsupport::uniform;

namespace {

constexpr int N = 5000;

std::vector<double> correlated(int n, int k)
{
  std::vector<double> values(n);
  for (int i = 0; i < n; ++i) {
    const double common = normal(1, i);
    values[i] = 8. + k + 0.8 * common + 0.3 * (k + 1) * normal(10 + k, i);
    if (uniform(20 + k, i) < 0.05)
      values[i] = NbbGlobal::D_FFFF;
  }
  return values;
}

struct Data
{
  std::vector<double> variables[3];
  std::vector<float> weights;
  std::vector<bool> mask;
  std::vector<bool> selection;

  explicit Data(int n)
  {
    for (int k = 0; k < 3; ++k)
      variables[k] = correlated(n, k);
    for (int i = 0; i < n; ++i) {
      weights.push_back(i % 9 == 4    ? NbbGlobal::F_FFFF
                        : i % 13 == 2 ? 0.f
                                      : float(uniform(40, i, 0.5, 2.)));
      mask.push_back(uniform(41, i) < 0.7);
      selection.push_back(i % 5 != 3 && (i < 1000 || i > 2400));
    }
  }
};

template <class Provider>
void addData(Provider &provider, const Data &data)
{
  for (int k = 0; k < 3; ++k)
    provider.addVariable(QStringLiteral("A%1").arg(k), data.variables[k]);
  provider.addVariable(QStringLiteral("W"), data.weights);
  provider.addVariable(QStringLiteral("MASK"), data.mask);
}

struct Options
{
  bool weights = false;
  bool mask = false;
  bool invert = false;
  bool selection = false;
  bool full = false;
};

template <class DataSet, class Provider>
DataSet makeDataSet(const QSharedPointer<Provider> &provider, const Options &options)
{
  DataSet dataSet;
  dataSet.setDataProvider(provider);
  for (int k = 0; k < 3; ++k)
    dataSet.assignVariable(Nbd::Role::V, provider->getIdFromName(QStringLiteral("A%1").arg(k)));
  if (options.weights)
    dataSet.assignVariable(Nbd::Role::WEIGHT, provider->getIdFromName(QStringLiteral("W")));
  if (options.mask)
    dataSet.assignVariable(Nbd::Role::MASK, provider->getIdFromName(QStringLiteral("MASK")));
  return dataSet;
}

void configure(NgcQuickStat &calculator, const NgdADataSet &dataSet, const Options &options)
{
  calculator.setInputDataSet(dataSet);
  calculator.setBivariateStatFlag(true);
  calculator.setFullStatFlag(options.full);
  calculator.setInvertMaskFlag(options.invert);
}

/// Statistics of x over the samples where x and y are defined, in two passes.
struct BruteForce
{
  BruteForce(const Data &data, int x, int y, const Options &options)
  {
    const int n = int(data.mask.size());
    std::vector<double> w(n);
    for (int i = 0; i < n; ++i) {
      if (options.selection && !data.selection[i])
        continue;
      ++nTotal;
      if (!NbbGlobal::isDefined(data.variables[x][i]) ||
          !NbbGlobal::isDefined(data.variables[y][i]))
        continue;
      ++nDefinedNoW;
      minimumNoW = std::min(minimumNoW, data.variables[x][i]);
      w[i] = options.weights && !NbbGlobal::isDefined(data.weights[i]) ? 0.
             : options.weights                                         ? data.weights[i]
                                                                       : 1.;
      if (options.mask && data.mask[i] == options.invert)
        w[i] = 0.;
      if (w[i] <= 0.)
        continue;
      ++nDefined;
      minimum = std::min(minimum, data.variables[x][i]);
      maximum = std::max(maximum, data.variables[x][i]);
      weight += w[i];
      mean += w[i] * data.variables[x][i];
      meanY += w[i] * data.variables[y][i];
      logs += w[i] * std::log(data.variables[x][i]);
      inverses += w[i] / data.variables[x][i];
    }
    mean /= weight;
    meanY /= weight;
    double varianceY = 0., covariance = 0.;
    for (int i = 0; i < n; ++i) {
      if (w[i] <= 0.)
        continue;
      const double d = data.variables[x][i] - mean;
      const double dY = data.variables[y][i] - meanY;
      variance += w[i] * d * d / weight;
      varianceY += w[i] * dY * dY / weight;
      covariance += w[i] * d * dY / weight;
      third += w[i] * d * d * d / weight;
      fourth += w[i] * d * d * d * d / weight;
    }
    rho = covariance / std::sqrt(variance * varianceY);
  }

  int nTotal = 0, nDefined = 0, nDefinedNoW = 0;
  double weight = 0., mean = 0., meanY = 0., variance = 0., rho = 0.;
  double third = 0., fourth = 0., logs = 0., inverses = 0.;
  double minimum = 1e300, maximum = -1e300, minimumNoW = 1e300;
};

void expectRecord(const NbcStatMono &record, const BruteForce &expected, bool full)
{
  EXPECT_EQ(record.getNTotal(), expected.nTotal);
  EXPECT_EQ(record.getNDefined(), expected.nDefined);
  EXPECT_EQ(record.getNDefinedNoW(), expected.nDefinedNoW);
  EXPECT_EQ(record.getMinimum(), expected.minimum);
  EXPECT_EQ(record.getMinimumNoW(), expected.minimumNoW);
  EXPECT_EQ(record.getMaximum(), expected.maximum);
  // Values near 10 with a variance near 1: raw moments of order 2 lose two digits, of order 4 four.
  EXPECT_NEAR(record.getWeight(), expected.weight, 1e-9);
  EXPECT_NEAR(record.getMean(), expected.mean, 1e-12);
  EXPECT_NEAR(record.getVariance(), expected.variance, 1e-11);
  EXPECT_NEAR(record.getGeometricMean(), std::exp(expected.logs / expected.weight), 1e-11);
  EXPECT_NEAR(record.getHarmonicMean(), expected.weight / expected.inverses, 1e-11);
  if (full) {
    EXPECT_NEAR(record.getSkewness(), expected.third / std::pow(expected.variance, 1.5), 1e-9);
    EXPECT_NEAR(record.getKurtosis(), expected.fourth / std::pow(expected.variance, 2), 1e-8);
  } else {
    EXPECT_EQ(record.getSkewness(), NbbGlobal::D_FFFF);
  }
}

void expectResult(const NgcQuickStat &calculator, const Data &data, const Options &options)
{
  const NgmMultivariateStatistics &result = calculator.getMultivariateStatistics();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(result.getVariableName(i), QStringLiteral("A%1").arg(i));
    for (int j = 0; j < 3; ++j) {
      SCOPED_TRACE(testing::Message() << "record " << i << ", " << j);
      const BruteForce expected(data, i, j, options);
      expectRecord(result.getConstBivariateStats(i, j), expected, options.full);
      EXPECT_NEAR(result.getRho(i, j), i == j ? 1. : expected.rho, 1e-11);
    }
  }
}

std::string errorOf(const NbcAProgress &progress)
{
  return progress.getErrorMessage().toStdString();
}

std::string messageOf(const std::function<void()> &call)
{
  try {
    call();
  } catch (const NbeError &error) {
    return error.getMessage().toStdString();
  }
  return "nothing thrown";
}

}  // namespace

TEST(NgcQuickStat, AgreesWithTwoPassesOverPlainArrays)
{
  const Data data(N);
  auto provider = testsupport::makePoints(N);
  addData(*provider, data);
  for (int bits = 0; bits < 32; ++bits) {
    Options options;
    options.weights = bits & 1;
    options.mask = bits & 2;
    options.invert = bits & 4;
    options.selection = bits & 8;
    options.full = bits & 16;
    SCOPED_TRACE(testing::Message() << "options " << bits);
    ASSERT_TRUE(
        provider->setSelection(options.selection ? data.selection : std::vector<bool>(N, true)));
    NgcQuickStat calculator(Nbd::Role::V);
    configure(calculator, makeDataSet<NgdDataSetPoints>(provider, options), options);
    ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
    EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
    expectResult(calculator, data, options);
  }
}

TEST(NgcQuickStat, ASelectionOnAGridCountsLikeOneOnPoints)
{
  const Data data(10 * 20 * 25);
  auto provider = testsupport::makeGrid(10, 20, 25);
  addData(*provider, data);
  ASSERT_TRUE(provider->setSelection(data.selection));
  Options options;
  options.weights = options.mask = options.selection = options.full = true;
  NgcQuickStat calculator(Nbd::Role::V);
  configure(calculator, makeDataSet<NgdDataSetGrid>(provider, options), options);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  expectResult(calculator, data, options);
}

TEST(NgcQuickStat, BitsDoNotDependOnThreads)
{
  const int n = 150000;
  const Data data(n);
  auto provider = testsupport::makePoints(n);
  addData(*provider, data);
  ASSERT_TRUE(provider->setSelection(data.selection));
  Options options;
  options.weights = options.mask = true;
  QList<double> reference;
  for (int nThreads : {1, 2, 8}) {
    for (int run = 0; run < 3; ++run) {
      NgcQuickStat calculator(Nbd::Role::V);
      configure(calculator, makeDataSet<NgdDataSetPoints>(provider, options), options);
      calculator.setNThread(nThreads);
      ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
      EXPECT_GT(calculator.getCounterMax(), 60);  // many buffers
      const NgmMultivariateStatistics &result = calculator.getMultivariateStatistics();
      QList<double> values;
      for (int i = 0; i < 3; ++i)
        values << result.getConstUnivariateStats(i).getMean()
               << result.getConstUnivariateStats(i).getVariance()
               << result.getConstUnivariateStats(i).getGeometricMean() << result.getRho(i, 0);
      if (reference.isEmpty())
        reference = values;
      ASSERT_EQ(values, reference) << nThreads << " threads";
    }
  }
}

TEST(NgcQuickStat, WithoutBivariateStatisticsPairsAreEmpty)
{
  const Data data(N);
  auto provider = testsupport::makePoints(N);
  addData(*provider, data);
  NgcQuickStat calculator(Nbd::Role::V);
  calculator.setInputDataSet(makeDataSet<NgdDataSetPoints>(provider, Options()));
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  const NgmMultivariateStatistics &result = calculator.getMultivariateStatistics();
  EXPECT_EQ(result.getConstBivariateStats(0, 1).getWeight(), 0.);
  EXPECT_EQ(result.getConstBivariateStats(0, 1).getMean(), NbbGlobal::D_FFFF);
  EXPECT_EQ(result.getRho(0, 1), 0.);
  EXPECT_EQ(result.getRho(1, 1), 1.);
}

TEST(NgcQuickStat, ConstantsAndVariablesThatNeverMeetAreUncorrelated)
{
  const int n = 3000;
  auto provider = testsupport::makePoints(n);
  std::vector<double> constant(n, 0.1), even(n), odd(n), twice(n);
  for (int i = 0; i < n; ++i) {
    even[i] = i % 2 == 0 ? normal(1, i) : NbbGlobal::D_FFFF;
    odd[i] = i % 2 == 1 ? normal(2, i) : NbbGlobal::D_FFFF;
    twice[i] = -2. * even[i] + (i % 2 == 0 ? 0. : NbbGlobal::D_FFFF);
  }
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  const std::vector<double> *columns[] = {&constant, &even, &odd, &twice};
  for (int k = 0; k < 4; ++k)
    dataSet.assignVariable(Nbd::Role::V,
                           provider->addVariable(QStringLiteral("C%1").arg(k), *columns[k]));
  NgcQuickStat calculator(Nbd::Role::V);
  calculator.setInputDataSet(dataSet);
  calculator.setBivariateStatFlag(true);
  calculator.setFullStatFlag(true);
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);
  const NgmMultivariateStatistics &result = calculator.getMultivariateStatistics();
  EXPECT_EQ(result.getConstUnivariateStats(0).getStandardDeviation(), 0.);
  EXPECT_EQ(result.getConstUnivariateStats(0).getSkewness(), 0.);
  EXPECT_EQ(result.getConstUnivariateStats(0).getKurtosis(), 0.);
  EXPECT_EQ(result.getRho(0, 1), 0.);
  EXPECT_EQ(result.getConstBivariateStats(1, 2).getNDefined(), 0);
  EXPECT_EQ(result.getRho(1, 2), 0.);
  EXPECT_NEAR(result.getRho(1, 3), -1., 1e-14);
  EXPECT_GE(result.getRho(1, 3), -1.);
}

TEST(NgcQuickStat, TellsWhatIsMissing)
{
  NgcQuickStat calculator(Nbd::Role::V);
  const char *notComputed = "Can't get statistics results. Not computed.";
  EXPECT_THAT(messageOf([&] { calculator.getMultivariateStatistics(); }), HasSubstr(notComputed));
  EXPECT_EQ(calculator.getRoleVCount(), 0);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(errorOf(calculator), "No input dataset defined!");

  auto provider = testsupport::makePoints(100);
  addData(*provider, Data(100));
  NgdDataSetPoints dataSet = makeDataSet<NgdDataSetPoints>(provider, Options());
  calculator.setInputDataSet(dataSet);
  EXPECT_EQ(calculator.getRoleVCount(), 3);
  EXPECT_EQ(calculator.execute(), NbcAProgress::COMPLETED) << errorOf(calculator);

  dataSet.clearRole(Nbd::Role::V);
  calculator.setInputDataSet(dataSet);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_THAT(errorOf(calculator), HasSubstr("Expected number = [1,INF]"));
  EXPECT_THAT(messageOf([&] { calculator.getMultivariateStatistics(); }), HasSubstr(notComputed));

  dataSet = makeDataSet<NgdDataSetPoints>(provider, Options());
  for (int i = 0; i < 2; ++i)
    dataSet.assignVariable(Nbd::Role::WEIGHT, provider->getIdFromName(QStringLiteral("W")));
  calculator.setInputDataSet(dataSet);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_THAT(errorOf(calculator), HasSubstr("Expected number = [0,1]"));
}
