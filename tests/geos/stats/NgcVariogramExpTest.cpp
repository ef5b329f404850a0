#include "geos/stats/NgcVariogramExp.h"

#include "support/VariogramOracle.h"

#include <functional>

using namespace variogramtest;

namespace {

NgmVariogramExpData compute(const Data &data, const NgmVariogramExp &request,
                            const Options &options = Options())
{
  const int n = request.getNVariables();
  NgcVariogramExp calculator;
  calculator.setDataSet(makeDataSet(data, n));
  calculator.setVarioExp(request);
  calculator.setStatistics(makeStatistics(n));
  calculator.setComputeCross(options.cross);
  calculator.setPairsFiltering(NgcVariogramExp::PairsFiltering(options.filtering));
  calculator.setNThread(options.nThreads);
  calculator.setBufferMaxNbSamples(options.blockSize);
  calculator.execute();
  EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  return calculator.getResults();
}

void expectDefinitions(const Data &data, const NgmVariogramExp &directions, int nVariables,
                       const Options &options)
{
  const NgmVariogramExp request = allCurves(directions, nVariables);
  expectBruteForce(compute(data, request, options), data, request, options, data.count());
}

}  // namespace

TEST(NgcVariogramExp, OmnidirectionalMeuseTableIsMetExactly)
{
  NgmVariogramExp request = omni();
  request.addVarioCalculation(Vario::MADOGRAM);
  request.addVarioCalculation(Vario::RODOGRAM);
  const NgmVariogramExpData results = compute(meuse({"zinc"}, true), request);
  const CsvFile file("meuse/vario_centred_omni.csv");
  expectCounts(file, results.getNumberOfPairs(0, false, 0, 0));
  expectColumn(file, "mean_dist", results.getDistances(0, false, 0, 0));
  expectColumn(file, "gamma", results.getVarioColumn(0, Vario::VARIOGRAM, 0, 0));
  expectColumn(file, "madogram", results.getVarioColumn(0, Vario::MADOGRAM, 0, 0));
  expectColumn(file, "rodogram", results.getVarioColumn(0, Vario::RODOGRAM, 0, 0));
}

TEST(NgcVariogramExp, DirectionalMeuseTableIsMetExactly)
{
  NgmVariogramExp request(false);
  request.addRegular2D(4, 0., 22.5, UNUSED, 16, 100., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  request.addVarioCalculation(Vario::MADOGRAM);
  const NgmVariogramExpData results = compute(meuse({"zinc"}, true), request);
  const CsvFile file("meuse/vario_centred_dir.csv");
  for (int dir = 0; dir < 4; ++dir) {
    const int first = 16 * (results.getDirectionName(dir).mid(1).toInt() / 45);
    ASSERT_EQ(QStringLiteral("N%1").arg(file["azimuth"][first]), results.getDirectionName(dir));
    expectCounts(file, results.getNumberOfPairs(dir, false, 0, 0), first);
    expectColumn(file, "mean_dist", results.getDistances(dir, false, 0, 0), first);
    expectColumn(file, "gamma", results.getVarioColumn(dir, Vario::VARIOGRAM, 0, 0), first);
    expectColumn(file, "madogram", results.getVarioColumn(dir, Vario::MADOGRAM, 0, 0), first);
  }
}

TEST(NgcVariogramExp, CrossMissingAndIndicatorMeuseTablesAreMetExactly)
{
  const NgmVariogramExpData cross = compute(meuse({"zinc", "lead", "copper"}, true), omni(3));
  const CsvFile file("meuse/cross_vario_centred.csv");
  const char *columns[3][3] = {{"g_lz_lz", "g_lz_ll", "g_lz_lc"},
                               {nullptr, "g_ll_ll", "g_ll_lc"},
                               {nullptr, nullptr, "g_lc_lc"}};
  for (int i = 0; i < 3; ++i) {
    for (int j = i; j < 3; ++j) {
      expectCounts(file, cross.getNumberOfPairs(0, false, i, j));
      expectColumn(file, columns[i][j], cross.getVarioColumn(0, Vario::VARIOGRAM, i, j));
    }
  }

  const NgmVariogramExpData missing = compute(meuse({"om"}, false), omni());
  const CsvFile missingFile("meuse/vario_centred_om_missing.csv");
  expectCounts(missingFile, missing.getNumberOfPairs(0, false, 0, 0));
  expectColumn(missingFile, "gamma", missing.getVarioColumn(0, Vario::VARIOGRAM, 0, 0));

  Data indicator = meuse({"zinc"}, false);
  for (double &value : indicator.variables[0])
    value = value <= 326. ? 1. : 0.;
  const NgmVariogramExpData results = compute(indicator, omni());
  const CsvFile indicatorFile("meuse/vario_centred_indicator_zinc326.csv");
  expectCounts(indicatorFile, results.getNumberOfPairs(0, false, 0, 0));
  expectColumn(indicatorFile, "gamma", results.getVarioColumn(0, Vario::VARIOGRAM, 0, 0));
}

TEST(NgcVariogramExp, TinyTableIsMetAtLagLimitsZeroDistanceAndEmptyLags)
{
  const CsvFile file("tiny/vario_centred.csv");
  Data data = tiny({"z", "w"});
  // A sample without z is left out altogether.
  for (int i = 0; i < data.count(); ++i) {
    if (!isDefined(data.variables[0][i]))
      data.variables[1][i] = UNUSED;
  }
  NgmVariogramExp request(false);
  request.setNVariables(2);
  request.addOmnidirectional(4, 100., 0.5, 0, 0.);
  request.addRegular2D(4, 0., 22.5, UNUSED, 4, 100., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  request.addVarioCalculation(Vario::RODOGRAM);
  const NgmVariogramExpData results = compute(data, request);
  int nMet = 0;
  for (int dir = 0; dir < 5; ++dir) {
    const double azimuth = dir == 0 ? -1. : results.getDirectionName(dir).mid(1).toDouble();
    for (std::size_t first = 0; first < file["k"].size(); first += 4) {
      if (file["azimuth"][first] != azimuth)
        continue;
      ++nMet;
      expectCounts(file, results.getNumberOfPairs(dir, false, 0, 0), int(first));
      const auto column = [&](Vario curve, int i, int j) {
        return results.getVarioColumn(dir, curve, i, j);
      };
      expectColumn(file, "mean_dist", results.getDistances(dir, false, 0, 0), int(first));
      expectColumn(file, "gamma_z", column(Vario::VARIOGRAM, 0, 0), int(first));
      expectColumn(file, "rodogram_z", column(Vario::RODOGRAM, 0, 0), int(first));
      expectColumn(file, "gamma_w", column(Vario::VARIOGRAM, 1, 1), int(first));
      expectColumn(file, "cross_zw", column(Vario::VARIOGRAM, 0, 1), int(first));
    }
  }
  EXPECT_EQ(nMet, int(file["k"].size()) / 4);
}

TEST(NgcVariogramExp, AllStatisticsOfSeveralVariablesAreTheirDefinitions)
{
  expectDefinitions(randomData(220, 2, false), planeAndOmni(false), 2, Options());
  expectDefinitions(randomData(260, 2, true), planeAndOmni(true), 2, Options());
}

TEST(NgcVariogramExp, WeightsMultiplyAndInvalidOnesLeaveTheSampleOut)
{
  Data data = randomData(200, 1, false);
  for (int i = 0; i < data.count(); ++i)
    data.weights.push_back(i % 31 == 3 ? UNUSED : i % 23 == 7 ? 0. : uniform(40, i, 0.8, 2.));
  expectDefinitions(data, planeAndOmni(false), 1, Options());
}

TEST(NgcVariogramExp, PairsAreFilteredByCode)
{
  Data data = randomData(200, 1, false);
  for (int i = 0; i < data.count(); ++i)
    data.codes.push_back(testsupport::uniformInt(50, i, 3));
  for (const auto filtering : {NgcVariogramExp::SAME_CODE, NgcVariogramExp::DIFFERENT_CODES}) {
    Options options;
    options.filtering = int(filtering);
    expectDefinitions(data, planeAndOmni(false), 1, options);
  }
}

TEST(NgcVariogramExp, ConesSlicesAndTheNormalMissNoPair)
{
  NgmVariogramExp directions(true);
  directions.addIrregularDirections(NbgRotation(), {NbgRotation(30., 20., 0.)}, QStringList(), 60.,
                                    7., 10, 4., 0.3, 0, 0.);
  NgmPairsSelectorDirection normal;
  normal.setOrientation(NbgRotation(0., -90., 0.));
  normal.setAngularToleranceDegree(35.);
  normal.setLag(5, 6., 0.5, 0, 0.);
  directions.addDirectionNormal(normal, NbgRotation());
  Options options;
  options.cross = false;
  expectDefinitions(randomData(250, 2, true), directions, 2, options);
}

TEST(NgcVariogramExp, SlicesThatLeanAgainstTheFirstMissNoPair)
{
  NgmVariogramExp directions(true);
  const NbgRotation orientations[] = {NbgRotation(), NbgRotation(0., 40., 0.),
                                      NbgRotation(30., 70., 20.)};
  for (int i = 0; i < 3; ++i)
    directions.addOneRegularInPlane(NbgRotation(), 3, i, orientations[i], 10, 4., 0.5, 40., 90.,
                                    UNUSED, 2., 0, 0.);
  Options options;
  options.blockSize = 10;
  expectDefinitions(randomData(250, 1, true), directions, 1, options);
}

TEST(NgcVariogramExp, ShortLagsBeyondTheLastClassAreLeftOut)
{
  // One long lag, refined: a pair at 4.9 would be in the third of two classes.
  NgmVariogramExp directions(false);
  directions.addOmnidirectional(1, 10., 0.5, 1, 3.);
  ASSERT_EQ(directions.getColumnSize(0, false), 2);
  expectDefinitions(randomData(200, 1, false), directions, 1, Options());
}

TEST(NgcVariogramExp, ResultsDoNotDependOnThreadsToTheLastBit)
{
  const Data data = randomData(300, 2, true);
  const NgmVariogramExp request = allCurves(planeAndOmni(true), 2);
  Options options;
  options.blockSize = 20;
  options.nThreads = 1;
  const std::vector<double> expected = allNumbers(compute(data, request, options));
  for (const int nThreads : {2, 8}) {
    options.nThreads = nThreads;
    EXPECT_EQ(allNumbers(compute(data, request, options)), expected) << nThreads;
  }
  options.blockSize = 7;
  const std::vector<double> finer = allNumbers(compute(data, request, options));
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(finer[k], expected[k], 1e-9 * (1. + std::fabs(expected[k])));
}

TEST(NgcVariogramExp, TranslationAndSampleOrderChangeNothing)
{
  const Data data = randomData(300, 2, true);
  Data moved = data;
  for (int i = 0; i < data.count(); ++i) {
    // Multiples of a power of two keep the differences exact.
    moved.x[i] = std::floor(data.x[i] * 1024.) / 1024. + 4096.;
    // Samples in the same place have no direction but their order.
    moved.x[i] += i % 17 == 5 ? 0.5 : 0.;
    moved.y[i] = std::floor(data.y[i] * 1024.) / 1024. - 512.;
    moved.z[i] = std::floor(data.z[i] * 1024.) / 1024.;
  }
  Data reversed = moved;
  for (Column *column :
       {&reversed.x, &reversed.y, &reversed.z, &reversed.variables[0], &reversed.variables[1]})
    std::reverse(column->begin(), column->end());
  for (double &x : reversed.x)
    x -= 8192.;
  NgmVariogramExp request(true);
  request.setNVariables(2);
  request.addRegularInPlane(NbgRotation(), 4, 22.5, 90., UNUSED, UNUSED, 8, 5., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  request.addCovaCalculation(Cova::EVEN_PART_COVARIANCE);
  const std::vector<double> expected = allNumbers(compute(moved, request));
  const std::vector<double> actual = allNumbers(compute(reversed, request));
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t k = 0; k < expected.size(); ++k)
    EXPECT_NEAR(actual[k], expected[k], 1e-10 * (1. + std::fabs(expected[k])));
}

TEST(NgcVariogramExp, ALinearDriftGivesItsParabolaAndAnOddCovarianceIsOdd)
{
  Data data;
  data.variables.resize(2);
  for (int i = 0; i < 60; ++i) {
    data.x.push_back(10. * i);
    data.y.push_back(0.);
    data.z.push_back(0.);
    data.variables[0].push_back(0.25 * i);
    data.variables[1].push_back(normal(70, i));
  }
  NgmVariogramExp request(false);
  request.setNVariables(2);
  request.addRegular2D(1, 0., 5., UNUSED, 6, 10., 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  request.addCovaCalculation(Cova::ODD_PART_COVARIANCE);
  const NgmVariogramExpData results = compute(data, request);
  const QVector<double> gamma = results.getVarioColumn(0, Vario::VARIOGRAM, 0, 0);
  for (int k = 1; k < 6; ++k) {
    EXPECT_NEAR(gamma[k], 0.5 * 0.0625 * k * k, 1e-13);
    EXPECT_EQ(results.getNumberOfPairs(0, false, 0, 0)[k], 60 - k);
  }
  const QVector<double> odd = results.getCovaColumn(0, Cova::ODD_PART_COVARIANCE, 0, 1);
  for (int k = 1; k <= 6; ++k)
    EXPECT_EQ(odd[6 + k], -odd[6 - k]);
  EXPECT_NE(odd[9], 0.);
}

TEST(NgcVariogramExp, SwappingHeadsAndTailsMirrorsCovariancesOnly)
{
  const Data data = randomData(300, 2, true);
  Data swapped = data;
  for (Column *axis : {&swapped.x, &swapped.y, &swapped.z}) {
    for (double &coordinate : *axis)
      coordinate = -coordinate;
  }
  // Samples in the same place have no direction but their order.
  for (Column *column :
       {&swapped.x, &swapped.y, &swapped.z, &swapped.variables[0], &swapped.variables[1]})
    std::reverse(column->begin(), column->end());
  NgmVariogramExp directions(true);
  directions.addRegularInPlane(NbgRotation(), 3, 30., 60., UNUSED, UNUSED, 6, 6., 0.6, 2, 2.);
  const NgmVariogramExp request = allCurves(directions, 2);
  const NgmVariogramExpData expected = compute(data, request);
  const NgmVariogramExpData actual = compute(swapped, request);
  const auto expectNear = [](double value, double other) {
    EXPECT_NEAR(value, other, 1e-10 * (1. + std::fabs(other)));  // sums in another order
  };
  for (int dir = 0; dir < 3; ++dir) {
    for (const NgmEVarioExp &curve : request.getVarioCurveTypes()) {
      const QVector<double> a = actual.getVarioColumn(dir, curve.toEnum(), 0, 1);
      const QVector<double> b = expected.getVarioColumn(dir, curve.toEnum(), 0, 1);
      for (int k = 0; k < a.size(); ++k)
        expectNear(a[k], b[k]);
    }
    for (const NgmECovaExp &curve : request.getCovaCurveTypes()) {
      const QVector<double> a = actual.getCovaColumn(dir, curve.toEnum(), 0, 1);
      const QVector<double> b = expected.getCovaColumn(dir, curve.toEnum(), 0, 1);
      for (int k = 0; k < a.size(); ++k)
        expectNear(a[k], b[b.size() - 1 - k]);
    }
    EXPECT_NE(expected.getCovaColumn(dir, Cova::COVARIANCE, 0, 1)[3],
              expected.getCovaColumn(dir, Cova::COVARIANCE, 0, 1)[2 * expected.getNLags(dir) - 3]);
  }
}

TEST(NgcVariogramExp, AThousandLagsAreCounted)
{
  NgmVariogramExp request = omni(1, 1000, 0.05);
  const Data data = randomData(300, 1, false, false);
  const NgmVariogramExpData results = compute(data, request);
  qint64 nPairs = 0;
  for (const qint64 n : results.getNumberOfPairs(0, false, 0, 0))
    nPairs += n;
  qint64 expected = 0;
  for (int i = 0; i < data.count(); ++i) {
    for (int j = 0; j < i; ++j)
      expected += std::hypot(data.x[i] - data.x[j], data.y[i] - data.y[j]) < 49.975;
  }
  EXPECT_EQ(nPairs, expected);
}

TEST(NgcVariogramExp, PseudoSillsAreTheCurvesOverAllPairs)
{
  const Data data = randomData(150, 2, false, false);
  NgmVariogramExp request = omni(2, 5, 5.);
  request.addVarioCalculation(Vario::MADOGRAM);
  request.addCovaCalculation(Cova::NON_CENTERED_COVARIANCE);
  const NgmVariogramExpData results = compute(data, request);
  double madogram = 0., product = 0.;
  const double nPairs = data.count() * (data.count() - 1) / 2.;
  for (int i = 0; i < data.count(); ++i) {
    for (int j = i + 1; j < data.count(); ++j) {
      madogram += std::sqrt(std::fabs((data.variables[0][j] - data.variables[0][i]) *
                                      (data.variables[1][j] - data.variables[1][i])));
      product += data.variables[1][j] * data.variables[1][i];
    }
  }
  EXPECT_NEAR(results.getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 1), madogram / nPairs / 2., 1e-11);
  EXPECT_NEAR(results.getCovaPseudoSill(NgmECovaExp::NON_CENTERED_COVARIANCE, 2), product / nPairs,
              1e-10);
  EXPECT_FALSE(results.hasPseudoSill(NgmEVarioExp::VARIOGRAM));
  EXPECT_EQ(results.getPseudoSillMatrix(NgmEVarioExp::MADOGRAM)(1, 0),
            results.getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 1));

  // A thousand samples stand for more: the mean of half a million differences of a Gaussian
  // variable of variance 1.25, sigma / sqrt(pi), within 5 %.
  const Data large = randomData(1300, 1, false, false);
  request = omni(1, 2, 1.);
  request.addVarioCalculation(Vario::MADOGRAM);
  const NgmVariogramExpData ofLarge = compute(large, request);
  EXPECT_NEAR(ofLarge.getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 0), std::sqrt(1.25 / M_PI), 0.03);
  EXPECT_EQ(ofLarge.getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 0),
            compute(large, request).getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 0));
}

TEST(NgcVariogramExp, GaussianVariablesAreComputedBesides)
{
  const Data data = randomData(150, 2, false, false);
  const NgmVariogramExp request = omni(1, 5, 5.);
  NgcVariogramExp calculator;
  calculator.setDataSet(makeDataSet(data, 1));
  calculator.setVarioExp(request);
  calculator.setStatistics(makeStatistics(1));
  calculator.setStatisticsGaussian(makeStatistics(1));
  calculator.execute();
  ASSERT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
  const BruteForce raw(data, request, 0, 0, 0, Options());
  const BruteForce gaussian(data, request, 0, 1, 1, Options());
  for (int k = 0; k < 5; ++k) {
    expectClose(calculator.getResults().getVarioColumn(0, Vario::VARIOGRAM, 0, 0)[k],
                raw.vario[k].n ? raw.vario[k].gamma / raw.vario[k].w : 0., "raw");
    expectClose(calculator.getResultsGaussian().getVarioColumn(0, Vario::VARIOGRAM, 0, 0)[k],
                gaussian.vario[k].n ? gaussian.vario[k].gamma / gaussian.vario[k].w : 0.,
                "Gaussian");
  }
}

TEST(NgcVariogramExp, DecimationKeepsThatManySamples)
{
  const Data data = randomData(300, 1, false, false);
  const auto nPairs = [&](int n) {
    NgcVariogramExp calculator;
    calculator.setDataSet(makeDataSet(data, 1));
    calculator.setVarioExp(omni(1, 1, 1000.));
    calculator.setStatistics(makeStatistics(1));
    calculator.useDecimation(true, n);
    calculator.execute();
    return calculator.getResults().getNumberOfPairs(0, false, 0, 0)[0];
  };
  // Lag 0 reaches to 500: all pairs.
  EXPECT_EQ(nPairs(100), 100 * 99 / 2);
  EXPECT_EQ(nPairs(299), 299 * 298 / 2);
  EXPECT_EQ(nPairs(1000), 300 * 299 / 2);
}

TEST(NgcVariogramExp, IncompleteRequestsAreRefused)
{
  const Data data = randomData(20, 1, false);
  const auto errorOfRun = [&](const std::function<void(NgcVariogramExp &)> &change) {
    NgcVariogramExp calculator;
    calculator.setDataSet(makeDataSet(data, 1));
    calculator.setVarioExp(omni());
    calculator.setStatistics(makeStatistics(1));
    change(calculator);
    calculator.execute();
    return calculator.getErrorMessage();
  };
  EXPECT_EQ(errorOfRun([](NgcVariogramExp &c) { c.setVarioExp(NgmVariogramExp(false)); }),
            QStringLiteral("No variogram direction definition"));
  EXPECT_EQ(errorOfRun([](NgcVariogramExp &c) {
              NgmVariogramExp request(false);
              request.addOmnidirectional(4, 1., 0.5, 0, 0.);
              c.setVarioExp(request);
            }),
            QStringLiteral("No curve (variogram or covariance) requested"));
  EXPECT_EQ(errorOfRun([](NgcVariogramExp &c) { c.setStatistics(makeStatistics(2)); }),
            QStringLiteral("Inconsistent number of variables between statistics and variogram "
                           "parameters"));
  EXPECT_EQ(errorOfRun([](NgcVariogramExp &c) { c.setPairsFiltering(NgcVariogramExp::SAME_CODE); }),
            QStringLiteral("NgwVariogram::run: Missing code variable (1)"));
  EXPECT_TRUE(errorOfRun([](NgcVariogramExp &c) {
                Data empty = randomData(5, 1, false);
                empty.variables[0].assign(5, UNUSED);
                c.setDataSet(makeDataSet(empty, 1));
              }).endsWith(QStringLiteral("No data to perform computations")));
}
