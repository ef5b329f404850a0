#include "geos/stats/NgcVariogram.h"

#include "basic/data/NbdVariableDouble.h"
#include "geos/stats/NgcVariogramExp.h"
#include "support/Errors.h"
#include "support/VariogramOracle.h"

#include <functional>
#include <numeric>

using namespace variogramtest;

namespace {

void prepare(NgcVariogram &calculator, const Data &data, const NgmVariogramExp &request,
             const Options &options = Options())
{
  const int n = request.getNVariables();
  calculator.setInputDataSet(makeDataSet(data, n));
  calculator.setVarioExp(request);
  calculator.setStatistics(makeStatistics(n));
  calculator.setPairsFiltering(NgcVariogram::PairsFiltering(options.filtering));
  calculator.setNThread(options.nThreads);
}

NgmVariogramExpData compute(const Data &data, const NgmVariogramExp &request,
                            const Options &options = Options())
{
  NgcVariogram calculator(Nbd::Role::V);
  prepare(calculator, data, request, options);
  calculator.execute();
  EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
  return calculator.getResults();
}

void expectDefinitions(const Data &data, const NgmVariogramExp &directions, int nVariables,
                       Options options = Options())
{
  options.exclusive = true;
  const NgmVariogramExp request = allCurves(directions, nVariables);
  expectBruteForce(compute(data, request, options), data, request, options, -1);
}

/// A plane whose directions do not overlap by their tolerances.
NgmVariogramExp ownSectors(bool is3d)
{
  NgmVariogramExp request(is3d);
  request.addRegularInPlane(NbgRotation(), 4, 22.5, 60., 40., UNUSED, 7, 6., 0.5, 0, 0.);
  return request;
}

}  // namespace

TEST(NgcVariogram, MeuseTablesAreMetExactly)
{
  NgmVariogramExp request(false);
  request.addRegular2D(4, 0., 22.5, UNUSED, 16, 100., 0.5, 0, 0.);
  request.addOmnidirectional(16, 100., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  request.addVarioCalculation(Vario::MADOGRAM);
  const NgmVariogramExpData results = compute(meuse({"zinc"}, true), request);
  const CsvFile file("meuse/vario_centred_dir.csv");
  for (int dir = 0; dir < 4; ++dir) {
    const int first = 16 * (results.getDirectionName(dir).mid(1).toInt() / 45);
    expectCounts(file, results.getNumberOfPairs(dir, false, 0, 0), first);
    expectColumn(file, "mean_dist", results.getDistances(dir, false, 0, 0), first);
    expectColumn(file, "gamma", results.getVarioColumn(dir, Vario::VARIOGRAM, 0, 0), first);
  }
  const CsvFile omniFile("meuse/vario_centred_omni.csv");
  expectCounts(omniFile, results.getNumberOfPairs(4, false, 0, 0));
  expectColumn(omniFile, "gamma", results.getVarioColumn(4, Vario::VARIOGRAM, 0, 0));
  expectColumn(omniFile, "madogram", results.getVarioColumn(4, Vario::MADOGRAM, 0, 0));

  const NgmVariogramExpData missing = compute(meuse({"om"}, false), omni());
  const CsvFile missingFile("meuse/vario_centred_om_missing.csv");
  expectCounts(missingFile, missing.getNumberOfPairs(0, false, 0, 0));
  expectColumn(missingFile, "gamma", missing.getVarioColumn(0, Vario::VARIOGRAM, 0, 0));
}

TEST(NgcVariogram, TinyTableIsMetAtLagLimitsZeroDistanceAndEmptyLags)
{
  const CsvFile file("tiny/vario_centred.csv");
  const NgmVariogramExpData results = compute(tiny({"z"}), omni(1, 4));
  for (std::size_t first = 0; first < file["k"].size(); first += 4) {
    if (file["azimuth"][first] != -1.)
      continue;
    expectCounts(file, results.getNumberOfPairs(0, false, 0, 0), int(first));
    expectColumn(file, "mean_dist", results.getDistances(0, false, 0, 0), int(first));
    expectColumn(file, "gamma_z", results.getVarioColumn(0, Vario::VARIOGRAM, 0, 0), int(first));
  }
}

TEST(NgcVariogram, AllStatisticsAreTheirDefinitionsAndGroupsShareNoPair)
{
  expectDefinitions(randomData(220, 2, false), planeAndOmni(false), 2);
  expectDefinitions(randomData(200, 2, true), ownSectors(true), 2);
}

TEST(NgcVariogram, ASkippedDirectionLeavesThePairToTheNext)
{
  // Cones around the same axis: the first takes the pair, the second is skipped, the third is
  // offered it again.
  NgmVariogramExp request(false);
  request.addIrregularDirections(NbgRotation(), {NbgRotation(), NbgRotation(), NbgRotation()},
                                 QStringList(), 20., UNUSED, 3, 10., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  ASSERT_FALSE(request.isGroupDirectionsOverlapping(request.getDirection(1).getGroupId()));
  Data data;
  data.x = {0., 10.};
  data.y = data.z = {0., 0.};
  data.variables = {{1., 3.}};
  const NgmVariogramExpData results = compute(data, request);
  EXPECT_EQ(results.getNumberOfPairs(0, false, 0, 0)[1], 1);
  EXPECT_EQ(results.getNumberOfPairs(1, false, 0, 0)[1], 0);
  EXPECT_EQ(results.getNumberOfPairs(2, false, 0, 0)[1], 1);
  EXPECT_EQ(results.getVarioColumn(2, Vario::VARIOGRAM, 0, 0)[1], 2.);
}

TEST(NgcVariogram, WeightsMasksAndCodesDecideWhichPairsCount)
{
  Data data = randomData(180, 1, false);
  for (int i = 0; i < data.count(); ++i) {
    data.mask.push_back(i % 29 == 4 ? 1. : i % 7 == 2 ? 0.5 : 0.);
    data.codes.push_back(testsupport::uniformInt(50, i, 3));
  }
  // Pairs of half masked samples weigh a quarter.
  expectDefinitions(data, planeAndOmni(false), 1);
  for (int i = 0; i < data.count(); ++i)
    data.weights.push_back(i % 31 == 3 ? UNUSED : i % 23 == 7 ? 0. : uniform(40, i, 0.8, 2.));
  expectDefinitions(data, planeAndOmni(false), 1);
  for (const int filtering : {1, 2}) {
    Options options;
    options.filtering = filtering;
    expectDefinitions(data, ownSectors(false), 1, options);
  }
}

TEST(NgcVariogram, SamplesWithoutAPlaceMakeNoPairs)
{
  // They are not in the same place because both have none.
  Data data;
  data.x = {0., UNUSED, 1., UNUSED};
  data.y = {0., 5., 0., 5.};
  data.z = {0., 0., 0., 0.};
  data.variables = {{1., 3., 5., 10.}};
  EXPECT_EQ(compute(data, omni(1, 3, 1.)).getNumberOfPairs(0, false, 0, 0),
            QVector<qint64>({0, 1, 0}));
}

TEST(NgcVariogram, ResultsDoNotDependOnThreadsToTheLastBit)
{
  // So many samples are cut into other buffers with 8 threads.
  const Data data = randomData(4500, 1, false);
  NgmVariogramExp directions(false);
  directions.addRegular2D(2, 0., 45., UNUSED, 4, 1., 0.5, 0, 0.);
  NgmVariogramExp request = allCurves(directions, 1);
  request.setComputeCloud(true);
  const auto numbersOf = [&](int nThreads, QString &pairs) {
    NgcVariogram calculator(Nbd::Role::V);
    Options options;
    options.nThreads = nThreads;
    prepare(calculator, data, request, options);
    NgmVariogramCloudParameters clouds;
    clouds.setNMaxUpperOutliers(3);
    clouds.setNMaxLowerOutliers(2);
    clouds.setImageSize(20, 20);
    calculator.setVariogramCloudParameters(clouds);
    calculator.execute();
    EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
    pairs = calculator.getResults().getCloudTable(1, false, 0, 0).toString();
    return allNumbers(calculator.getResults());
  };
  QString expectedPairs;
  const std::vector<double> expected = numbersOf(1, expectedPairs);
  EXPECT_GT(expectedPairs.count(QLatin1Char('\n')), 20);
  for (const int nThreads : {2, 8}) {
    QString pairs;
    EXPECT_EQ(numbersOf(nThreads, pairs), expected) << nThreads;
    EXPECT_EQ(pairs, expectedPairs) << nThreads;
  }
}

TEST(NgcVariogram, ASmallMemoryBudgetChangesRoundingOnly)
{
  const Data data = randomData(70, 1, false);
  const NgmVariogramExp request = allCurves(ownSectors(false), 1);
  NgcVariogram calculator(Nbd::Role::V);
  prepare(calculator, data, request);
  calculator.setAvailableMemBytes(500);
  calculator.execute();
  ASSERT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  EXPECT_GT(calculator.getCounterMax(), 28);  // at least seven buffers
  const std::vector<double> expected = allNumbers(compute(data, request));
  const std::vector<double> actual = allNumbers(calculator.getResults());
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(actual[k], expected[k], 1e-10 * (1. + std::fabs(expected[k])));
}

TEST(NgcVariogram, BuffersFollowThreadsAndTheLargestExtent)
{
  class Calculator : public NgcVariogram
  {
  public:
    using NgcVariogram::NgcVariogram;
    qint64 counterAtStart = -1;

  protected:
    void _initCalculatorCounter() override
    {
      NgcVariogram::_initCalculatorCounter();
      counterAtStart = getCounterMax();
    }
  };
  const auto run = [](int n, const NbgVector3D &size, int nThreads, qint64 nPairs) {
    Data data;
    data.variables.resize(1);
    for (int i = 0; i < n; ++i) {
      const double part = double(i) / (n - 1);
      data.x.push_back(part * size.x());
      data.y.push_back(part * size.y());
      data.z.push_back(part * size.z());
      data.variables[0].push_back(i);
    }
    Calculator calculator(Nbd::Role::V);
    Options options;
    options.nThreads = nThreads;
    prepare(calculator, data, omni(1, 2, 1.), options);
    calculator.execute();
    EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
    EXPECT_EQ(calculator.counterAtStart, nPairs + 1);
    return calculator.getSortedDimension();
  };
  EXPECT_EQ(run(5, NbgVector3D(9., 9., 1.), 1, 1), 0);
  EXPECT_EQ(run(5, NbgVector3D(9., 10., 10.), 1, 1), 1);
  EXPECT_EQ(run(5, NbgVector3D(9., 9., 10.), 1, 1), 2);
  // Four buffers of 1000, each with itself and with those behind it.
  EXPECT_EQ(run(4000, NbgVector3D(1000., 0., 0.), 1, 10), 0);
}

TEST(NgcVariogram, CloudsHoldThePairsOfTheCurves)
{
  const Data data = randomData(120, 2, false);
  NgmVariogramExp request = omni(2, 5, 5.);
  request.addCovaCalculation(Cova::COVARIANCE);
  request.setComputeCloud(true);
  NgcVariogram calculator(Nbd::Role::V);
  prepare(calculator, data, request);
  NgmVariogramCloudParameters parameters;
  parameters.setNMaxUpperOutliers(4);
  parameters.setNMaxLowerOutliers(3);
  parameters.setImageSize(5, 3);
  calculator.setVariogramCloudParameters(parameters);
  calculator.execute();
  ASSERT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  const NgmVariogramExpData &results = calculator.getResults();
  ASSERT_TRUE(results.hasVarioCloud());
  ASSERT_TRUE(results.hasCovaCloud());

  const QVector<qint64> counts = results.getNumberOfPairs(0, false, 0, 1);
  EXPECT_EQ(results.getCloudDensity(0, false, 0, 1).getNPairs(),
            std::accumulate(counts.begin(), counts.end(), qint64(0)));

  // The largest value of each lag comes first among its pairs.
  std::vector<double> largest(5, -1e300);
  for (int i = 0; i < data.count(); ++i) {
    for (int j = 0; j < i; ++j) {
      const double d = std::hypot(data.x[i] - data.x[j], data.y[i] - data.y[j]);
      const double value = 0.5 * (data.variables[0][i] - data.variables[0][j]) *
                           (data.variables[1][i] - data.variables[1][j]);
      const int lag = int(std::floor(d / 5. + 0.5));
      if (lag < 5 && std::fabs(value) < 1e10)
        largest[lag] = std::max(largest[lag], value);
    }
  }
  const NbdDataTable &table = results.getCloudTable(0, false, 0, 1);
  ASSERT_EQ(table.getNSamples(), 5 * 7);
  const QString role = NgmVariogramExpData::getCloudValueRole(false);
  for (int lag = 0; lag < 5; ++lag) {
    const int row = 7 * lag;
    EXPECT_NEAR(results.getCloudVariable(0, false, 0, 1, role).getValue(row), largest[lag], 1e-12);
    const int i = int(table.getVarNumeric(Nbd::Role::SN1)->getValue(row)) - 1;
    const int j = int(table.getVarNumeric(Nbd::Role::SN2)->getValue(row)) - 1;
    EXPECT_NEAR(0.5 * (data.variables[0][i] - data.variables[0][j]) *
                    (data.variables[1][i] - data.variables[1][j]),
                largest[lag], 1e-12);
    EXPECT_NEAR(table.getVarNumeric(Nbd::Role::DISTANCE)->getValue(row),
                std::hypot(data.x[i] - data.x[j], data.y[i] - data.y[j]), 1e-12);
  }
}

TEST(NgcVariogram, TheSequentialEngineGathersTheSameClouds)
{
  const Data data = randomData(150, 2, true);
  NgmVariogramExp directions(true);
  directions.addOmnidirectional(8, 5., 0.5, 0, 0.);
  // They overlap, so that both calculators take the same pairs.
  directions.addRegularInPlane(NbgRotation(), 3, 40., 40., 30., 8., 7, 6., 0.6, 2, 2.);
  NgmVariogramExp request = allCurves(directions, 2);
  request.setComputeCloud(true);
  NgmVariogramCloudParameters parameters;
  parameters.setNMaxUpperOutliers(3);
  parameters.setNMaxLowerOutliers(3);
  parameters.setRange(NgmVariogramCloudParameters::VALUE, -4., 4.);
  NgcVariogramExp engine;
  engine.setDataSet(makeDataSet(data, 2));
  engine.setVarioExp(request);
  engine.setStatistics(makeStatistics(2));
  engine.setVariogramCloudParameters(parameters);
  engine.setBufferMaxNbSamples(40);
  engine.execute();
  ASSERT_TRUE(engine.isCompleted()) << qPrintable(engine.getErrorMessage());
  EXPECT_TRUE(engine.computeCloud());
  NgcVariogram calculator(Nbd::Role::V);
  prepare(calculator, data, request);
  calculator.setVariogramCloudParameters(parameters);
  calculator.execute();
  ASSERT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  const NgmVariogramExpData &a = engine.getResults();
  const NgmVariogramExpData &b = calculator.getResults();
  ASSERT_TRUE(request.isGroupDirectionsOverlapping(request.getDirection(1).getGroupId()));
  for (int dir = 0; dir < a.getNDirections(); ++dir) {
    for (const bool isCova : {false, true}) {
      EXPECT_GT(a.getCloudTable(dir, isCova, 0, 1).getNSamples(), 10);
      for (const QString &role :
           {Nbd::Role::DISTANCE, NgmVariogramExpData::getCloudValueRole(isCova)})
        EXPECT_EQ(a.getCloudTable(dir, isCova, 0, 1).getVarDoubleRef(role).getVector(),
                  b.getCloudTable(dir, isCova, 0, 1).getVarDoubleRef(role).getVector());
      EXPECT_EQ(a.getCloudDensity(dir, isCova, 1, 1).getNPairs(),
                b.getCloudDensity(dir, isCova, 1, 1).getNPairs());
    }
  }
}

TEST(NgcVariogram, IncompleteRequestsAreRefusedInOrder)
{
  const Data data = randomData(20, 1, false);
  const auto errorOfRun = [&](const std::function<void(NgcVariogram &)> &change) {
    NgcVariogram calculator(Nbd::Role::V);
    calculator.setInputDataSet(makeDataSet(data, 1));
    change(calculator);
    calculator.execute();
    return calculator.getErrorMessage().section(QStringLiteral("\n\n"), -1);
  };
  EXPECT_EQ(errorOfRun([](NgcVariogram &) {}), QStringLiteral("Experimental variogram is not set"));
  EXPECT_EQ(errorOfRun([](NgcVariogram &c) { c.setVarioExp(omni(2)); }),
            QStringLiteral("Multivariate statistics not defined."));
  EXPECT_EQ(errorOfRun([](NgcVariogram &c) {
              c.setVarioExp(omni(2));
              c.setStatistics(makeStatistics(2));
            }),
            QStringLiteral("Statistics with wrong number of variables."));
  EXPECT_EQ(errorOfRun([](NgcVariogram &c) {
              c.setVarioExp(omni(2));
              c.setStatistics(makeStatistics(1));
            }),
            QStringLiteral("NgcVariogram::preProcessing: Invalid number of variables"));
  EXPECT_EQ(testsupport::errorOf([] {
              NgcVariogram(Nbd::Role::V).getVarioExp();
            }).section(QStringLiteral("\n\n"), -1),
            QStringLiteral("Can't get variogram."));
}
