#include "geos/stats/NgcVariogramExp.h"

#include "basic/data/NbdAVariableNumeric.h"
#include "basic/geom/NbgAngle.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgmMultivariateStatistics.h"
#include "geos/stats/NgmVariogramExp.h"
#include "support/CsvFile.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>

using testsupport::CsvFile;
using testsupport::normal;
using testsupport::uniform;

namespace {

using Vario = NgmEVarioExp::EValue;
using Cova = NgmECovaExp::EValue;
using Column = std::vector<double>;

constexpr double UNUSED = NbbGlobal::D_FFFF;

/// Samples and what is bound of them.
struct Data
{
  Column x, y, z;
  std::vector<Column> variables;
  Column weights;
  Column codes;

  int count() const { return int(x.size()); }
};

NgdDataSetPoints makeDataSet(const Data &data, int nVariables)
{
  auto provider =
      QSharedPointer<NbpMemoryProviderPointsW>::create(NbgEDimension::DIM_3D, qint64(data.count()));
  provider->addXVariable(data.x);
  provider->addYVariable(data.y);
  provider->addZVariable(data.z);
  NgdDataSetPoints dataSet;
  dataSet.setDataProvider(provider);
  for (std::size_t k = 0; k < data.variables.size(); ++k) {
    const QString id = provider->addVariable(QStringLiteral("A%1").arg(k), data.variables[k]);
    dataSet.assignVariable(int(k) < nVariables ? Nbd::Role::V : Nbd::Role::GAUSSIAN, id);
  }
  if (!data.weights.empty())
    dataSet.assignVariable(Nbd::Role::WEIGHT,
                           provider->addVariable(QStringLiteral("W"), data.weights));
  if (!data.codes.empty())
    dataSet.assignVariable(Nbd::Role::CODE, provider->addVariable(QStringLiteral("C"), data.codes));
  return dataSet;
}

/// Means, deviations and correlations that are those of no sample: formulas must take them as
/// given.
NgmMultivariateStatistics makeStatistics(int n)
{
  QStringList names;
  for (int i = 0; i < n; ++i)
    names << QStringLiteral("A%1").arg(i);
  NgmMultivariateStatistics statistics(names);
  for (int i = 0; i < n; ++i) {
    statistics.getUnivariateStats(i).setMean(3.1 + i);
    statistics.getUnivariateStats(i).setVariance(1.44 + i);
    for (int j = 0; j < i; ++j)
      statistics.setRho(i, j, 0.3);
  }
  return statistics;
}

NgmVariogramExp allCurves(const NgmVariogramExp &directions, int nVariables)
{
  NgmVariogramExp request(directions);
  request.setNVariables(nVariables);
  for (auto curves = NgmEVarioExp::createIterator(); curves.hasNext();)
    request.addVarioCalculation(curves.next().toEnum());
  for (auto curves = NgmECovaExp::createIterator(); curves.hasNext();)
    request.addCovaCalculation(curves.next().toEnum());
  return request;
}

struct Options
{
  bool cross = true;
  NgcVariogramExp::PairsFiltering filtering = NgcVariogramExp::ALL_PAIRS;
  int nThreads = 2;
  int blockSize = 50;
};

NgmVariogramExpData compute(const Data &data, const NgmVariogramExp &request,
                            const Options &options = Options())
{
  const int n = request.getNVariables();
  NgcVariogramExp calculator;
  calculator.setDataSet(makeDataSet(data, n));
  calculator.setVarioExp(request);
  calculator.setStatistics(makeStatistics(n));
  calculator.setComputeCross(options.cross);
  calculator.setPairsFiltering(options.filtering);
  calculator.setNThread(options.nThreads);
  calculator.setBufferMaxNbSamples(options.blockSize);
  calculator.execute();
  EXPECT_TRUE(calculator.isCompleted()) << qPrintable(calculator.getErrorMessage());
  return calculator.getResults();
}

/// Random samples, some in the same place, some values missing.
Data randomData(int n, int nVariables, bool is3d, bool missing = true)
{
  Data data;
  data.variables.resize(nVariables);
  for (int i = 0; i < n; ++i) {
    const int place = i % 17 == 5 ? i - 1 : i;
    data.x.push_back(uniform(1, place, 0., 100.));
    data.y.push_back(uniform(2, place, -300., -240.));
    data.z.push_back(is3d ? uniform(3, place, 0., 30.) : 0.);
    for (int v = 0; v < nVariables; ++v) {
      const double value = 3. + v + normal(10, i) + 0.5 * normal(11 + v, i);
      data.variables[v].push_back(missing && uniform(20 + v, i) < 0.1 ? UNUSED : value);
    }
  }
  return data;
}

/// Sums of one lag by the definitions.
struct Lag
{
  long long n = 0;
  double w = 0, d = 0, gamma = 0, madogram = 0, rodogram = 0, pairwise = 0;
  double head1 = 0, tail1 = 0, head2 = 0, tail2 = 0, headSquare = 0, tailSquare = 0, product = 0;

  void addVario(double distance, double weight, double aTail, double aHead, double bTail,
                double bHead)
  {
    ++n;
    w += weight;
    d += distance;
    const double g = (aHead - aTail) * (bHead - bTail);
    gamma += weight * g / 2.;
    madogram += weight * std::pow(std::fabs(g), 0.5) / 2.;
    rodogram += weight * std::pow(std::fabs(g), 0.25) / 2.;
    pairwise += weight * 2. * g / ((aTail + aHead) * (bTail + bHead));
    head1 += weight * aHead;
    tail1 += weight * aTail;
    head2 += weight * bHead;
    tail2 += weight * bTail;
  }
  void addCova(double distance, double weight, double head, double tail)
  {
    ++n;
    w += weight;
    d += distance;
    head1 += weight * head;
    tail2 += weight * tail;
    headSquare += weight * head * head;
    tailSquare += weight * tail * tail;
    product += weight * head * tail;
  }
};

bool isDefined(double value)
{
  return NbbGlobal::isDefined(value);
}

/// The sums of one direction and pair of variables over all pairs of samples.
struct BruteForce
{
  std::vector<Lag> vario;
  std::vector<Lag> cova;

  BruteForce(const Data &data, const NgmPairsSelectorDirection &direction, int a, int b,
             const Options &options)
      : vario(direction.getNIntervals()), cova(2 * direction.getNIntervals() + 1)
  {
    const Column &va = data.variables[a];
    const Column &vb = data.variables[b];
    const int origin = direction.getNIntervals();
    for (int i = 0; i < data.count(); ++i) {
      for (int j = 0; j < data.count(); ++j) {
        // Once each: from the west; samples in the same place by rank.
        if (i == j || data.x[i] > data.x[j] || (data.x[i] == data.x[j] && i > j))
          continue;
        if (options.filtering != NgcVariogramExp::ALL_PAIRS &&
            (data.codes[i] == data.codes[j]) != (options.filtering == NgcVariogramExp::SAME_CODE))
          continue;
        const double weight = data.weights.empty() ? 1. : data.weights[i] * data.weights[j];
        if (!data.weights.empty() && !(isDefined(data.weights[i]) && isDefined(data.weights[j]) &&
                                       data.weights[i] > 0. && data.weights[j] > 0.))
          continue;
        const NbgVector3D h(data.x[j] - data.x[i], data.y[j] - data.y[i], data.z[j] - data.z[i]);
        int first = 0, last = 0;
        bool positive = true;
        if (!direction.getLagRank(h, h.norm(), first, last, positive))
          continue;
        const int tail = positive ? i : j;
        const int head = positive ? j : i;
        const double d = h.norm();
        for (int k = first; k <= std::min(last, origin - 1); ++k) {
          if (isDefined(va[i]) && isDefined(va[j]) && isDefined(vb[i]) && isDefined(vb[j]))
            vario[k].addVario(d, weight, va[i], va[j], vb[i], vb[j]);
          if (isDefined(va[head]) && isDefined(vb[tail]))
            cova[origin + 1 + k].addCova(d, weight, va[head], vb[tail]);
          if (isDefined(va[tail]) && isDefined(vb[head]))
            cova[origin - 1 - k].addCova(-d, weight, va[tail], vb[head]);
        }
      }
    }
  }
};

void expectClose(double value, double expected, const char *what)
{
  // Sums in another order: a few roundings of some hundred terms.
  EXPECT_NEAR(value, expected, 1e-10 * (1. + std::fabs(expected))) << what;
}

/// Checks every curve of a direction and pair of variables by its definition.
void expectCurves(const NgmVariogramExpData &data, int dir, int a, int b, const BruteForce &sums,
                  const BruteForce &simpleA, const BruteForce &simpleB, int nSamples)
{
  const double ma = 3.1 + a, mb = 3.1 + b;
  const double sa = std::sqrt(1.44 + a), sb = std::sqrt(1.44 + b);
  const double rho = a == b ? 1. : 0.3;
  std::map<int, QVector<double>> varios, covas;
  for (auto curves = NgmEVarioExp::createIterator(); curves.hasNext();) {
    const Vario curve = curves.next().toEnum();
    varios[int(curve)] = data.getVarioColumn(dir, curve, a, b);
  }
  for (auto curves = NgmECovaExp::createIterator(); curves.hasNext();) {
    const Cova curve = curves.next().toEnum();
    covas[int(curve)] = data.getCovaColumn(dir, curve, a, b);
  }
  const auto vario = [&](Vario curve) -> const QVector<double> & { return varios[int(curve)]; };
  const auto cova = [&](Cova curve) -> const QVector<double> & { return covas[int(curve)]; };
  for (std::size_t k = 0; k < sums.vario.size(); ++k) {
    const Lag &lag = sums.vario[k];
    SCOPED_TRACE(testing::Message() << "direction " << dir << " pair " << a << b << " lag " << k);
    ASSERT_EQ(data.getNumberOfPairs(dir, false, a, b)[k], lag.n);
    EXPECT_EQ(data.getMasked(dir, false, a, b)[k], lag.n == 0);
    const double w = lag.n ? lag.w : 1.;
    const double gamma = lag.gamma / w;
    const double gammaA = simpleA.vario[k].n ? simpleA.vario[k].gamma / simpleA.vario[k].w : 0.;
    const double gammaB = simpleB.vario[k].n ? simpleB.vario[k].gamma / simpleB.vario[k].w : 0.;
    const double means = (lag.head1 + lag.tail1) * (lag.head2 + lag.tail2) / w / w / 4.;
    const double madogram = lag.madogram / w;
    expectClose(data.getDistances(dir, false, a, b)[k], lag.d / w, "distance");
    expectClose(vario(Vario::VARIOGRAM)[k], gamma, "variogram");
    expectClose(vario(Vario::MADOGRAM)[k], madogram, "madogram");
    expectClose(vario(Vario::RODOGRAM)[k], lag.rodogram / w, "rodogram");
    expectClose(vario(Vario::RELATIVE_VARIOGRAM)[k], gamma / (ma * mb), "relative");
    expectClose(vario(Vario::NON_ERGODIC_RELATIVE_VARIOGRAM)[k], lag.n ? gamma / means : 0.,
                "non ergodic relative");
    expectClose(vario(Vario::PAIRWISE_RELATIVE_VARIOGRAM)[k], lag.pairwise / w, "pairwise");
    expectClose(vario(Vario::VARIOGRAM_CROSS_OVER_SIMPLE)[k], lag.n ? gamma / gammaA : 0.,
                "simple");
    expectClose(vario(Vario::VARIOGRAM_CROSS_OVER_SQRT_SIMPLE)[k],
                lag.n ? gamma / std::sqrt(gammaA * gammaB) : 0., "sqrt simple");
    expectClose(vario(Vario::VARIOGRAM_OVER_MADOGRAM)[k], lag.n ? gamma / madogram : 0.,
                "over madogram");
    expectClose(vario(Vario::SQRT_VARIOGRAM_OVER_MADOGRAM)[k],
                lag.n && gamma >= 0. ? std::sqrt(gamma) / madogram : 0., "sqrt over madogram");
  }

  const int origin = int(sums.vario.size());
  const auto centred = [&](int k) {
    const Lag &lag = sums.cova[k];
    return lag.n ? (lag.product - ma * lag.tail2 - mb * lag.head1) / lag.w + ma * mb : 0.;
  };
  for (int k = 0; k <= 2 * origin; ++k) {
    const Lag &lag = sums.cova[k];
    SCOPED_TRACE(testing::Message() << "direction " << dir << " pair " << a << b << " row " << k);
    ASSERT_EQ(data.getNumberOfPairs(dir, true, a, b)[k], lag.n);
    if (k == origin)
      continue;
    const double w = lag.n ? lag.w : 1.;
    const double K = lag.product / w, h = lag.head1 / w, t = lag.tail2 / w;
    const double mirrored = centred(2 * origin - k);
    const double headDeviation = std::sqrt(std::max(0., lag.headSquare / w - h * h));
    const double tailDeviation = std::sqrt(std::max(0., lag.tailSquare / std::trunc(w) - t * t));
    expectClose(data.getDistances(dir, true, a, b)[k], lag.d / w, "distance");
    expectClose(cova(Cova::COVARIANCE)[k], centred(k), "covariance");
    expectClose(cova(Cova::NON_CENTERED_COVARIANCE)[k], K, "non centred");
    expectClose(cova(Cova::NON_ERGODIC_COVARIANCE)[k], K - h * t, "non ergodic");
    expectClose(cova(Cova::ODD_PART_COVARIANCE)[k], (centred(k) - mirrored) / 2., "odd");
    expectClose(cova(Cova::EVEN_PART_COVARIANCE)[k], (centred(k) + mirrored) / 2., "even");
    expectClose(cova(Cova::TRANSITIVE_COVARIOGRAM)[k], lag.product, "transitive");
    expectClose(cova(Cova::CORRELOGRAM)[k], centred(k) / (sa * sb), "correlogram");
    if (lag.n > 3)
      expectClose(cova(Cova::NON_ERGODIC_CORRELOGRAM)[k],
                  (K - h * t) / (headDeviation * tailDeviation), "non ergodic correlogram");
  }
  EXPECT_DOUBLE_EQ(cova(Cova::COVARIANCE)[origin], rho * sa * sb);
  EXPECT_DOUBLE_EQ(cova(Cova::NON_ERGODIC_COVARIANCE)[origin], rho * sa * sb);
  EXPECT_DOUBLE_EQ(cova(Cova::EVEN_PART_COVARIANCE)[origin], rho * sa * sb);
  EXPECT_DOUBLE_EQ(cova(Cova::NON_CENTERED_COVARIANCE)[origin], rho * sa * sb + ma * mb);
  EXPECT_DOUBLE_EQ(cova(Cova::TRANSITIVE_COVARIOGRAM)[origin],
                   (rho * sa * sb + ma * mb) * nSamples);
  EXPECT_EQ(cova(Cova::CORRELOGRAM)[origin], rho);
  EXPECT_EQ(cova(Cova::NON_ERGODIC_CORRELOGRAM)[origin], rho);
  EXPECT_EQ(cova(Cova::ODD_PART_COVARIANCE)[origin], 0.);
}

void expectBruteForce(const Data &data, const NgmVariogramExp &directions, int nVariables,
                      const Options &options)
{
  const NgmVariogramExp request = allCurves(directions, nVariables);
  const NgmVariogramExpData results = compute(data, request, options);
  for (int dir = 0; dir < request.getNDirections(); ++dir) {
    std::vector<BruteForce> simple;
    for (int i = 0; i < nVariables; ++i)
      simple.emplace_back(data, request.getDirection(dir), i, i, options);
    for (int i = 0; i < nVariables; ++i) {
      for (int j = i; j < (options.cross ? nVariables : i + 1); ++j) {
        const BruteForce sums(data, request.getDirection(dir), i, j, options);
        expectCurves(results, dir, i, j, sums, simple[i], simple[j], data.count());
      }
    }
  }
}

NgmVariogramExp planeAndOmni(bool is3d)
{
  NgmVariogramExp request(is3d);
  request.addOmnidirectional(8, 5., 0.5, 0, 0.);
  request.addRegularInPlane(NbgRotation(NbgAngle::fromDegrees(20.)), 3, 30., 40., 30.,
                            is3d ? 8. : UNUSED, 7, 6., 0.6, 2, 2.);
  return request;
}

Data meuse(std::initializer_list<const char *> columns, bool logarithms)
{
  const CsvFile file("meuse/meuse.csv");
  Data data;
  data.x = file["x"];
  data.y = file["y"];
  data.z.assign(data.x.size(), 0.);
  for (const char *column : columns) {
    data.variables.push_back(file[column]);
    for (double &value : data.variables.back())
      value = logarithms ? std::log(value) : value;
  }
  return data;
}

NgmVariogramExp omni(int nVariables = 1, int nLags = 16, double lag = 100.)
{
  NgmVariogramExp request(false);
  request.setNVariables(nVariables);
  request.addOmnidirectional(nLags, lag, 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  return request;
}

/// Compares a curve with rows first, first + 1, ... of a reference table: exact counts, values to
/// 1e-10 relative.
void expectColumn(const CsvFile &file, const char *column, const QVector<double> &values,
                  int first = 0)
{
  const double scale = 1. + *std::max_element(values.begin(), values.end());
  for (int k = 0; k < values.size(); ++k) {
    const double expected = file[column][first + k];
    if (!isDefined(expected))
      EXPECT_EQ(values[k], 0.) << column << " " << k;
    else
      EXPECT_NEAR(values[k], expected, 1e-10 * std::min(scale, std::fabs(expected) + 1e-3))
          << column << " " << k;
  }
}

void expectCounts(const CsvFile &file, const QVector<qint64> &counts, int first = 0)
{
  for (int k = 0; k < counts.size(); ++k)
    EXPECT_EQ(double(counts[k]), file["np"][first + k]) << k;
}

std::vector<double> allNumbers(const NgmVariogramExpData &data)
{
  std::vector<double> numbers;
  for (int dir = 0; dir < data.getNDirections(); ++dir) {
    for (int i = 0; i < data.getNVariables(); ++i) {
      for (int j = i; j < data.getNVariables(); ++j) {
        for (const NbdDataTable *table :
             {&data.getVariogramData(dir, i, j), &data.getCovarianceData(dir, i, j)}) {
          for (NbdAVariable *variable : table->getAllVars()) {
            auto *column = static_cast<NbdAVariableNumeric *>(variable);
            for (int k = 0; k < table->getNSamples(); ++k)
              numbers.push_back(column->getValue(k));
          }
        }
      }
    }
  }
  return numbers;
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
  const CsvFile points("tiny/points.csv");
  const CsvFile file("tiny/vario_centred.csv");
  Data data;
  data.x = points["x"];
  data.y = points["y"];
  data.z.assign(data.x.size(), 0.);
  data.variables = {points["z"], points["w"]};
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
  expectBruteForce(randomData(220, 2, false), planeAndOmni(false), 2, Options());
  expectBruteForce(randomData(260, 2, true), planeAndOmni(true), 2, Options());
}

TEST(NgcVariogramExp, WeightsMultiplyAndInvalidOnesLeaveTheSampleOut)
{
  Data data = randomData(200, 1, false);
  for (int i = 0; i < data.count(); ++i)
    data.weights.push_back(i % 31 == 3 ? UNUSED : i % 23 == 7 ? 0. : uniform(40, i, 0.8, 2.));
  expectBruteForce(data, planeAndOmni(false), 1, Options());
}

TEST(NgcVariogramExp, PairsAreFilteredByCode)
{
  Data data = randomData(200, 1, false);
  for (int i = 0; i < data.count(); ++i)
    data.codes.push_back(testsupport::uniformInt(50, i, 3));
  for (const auto filtering : {NgcVariogramExp::SAME_CODE, NgcVariogramExp::DIFFERENT_CODES}) {
    Options options;
    options.filtering = filtering;
    expectBruteForce(data, planeAndOmni(false), 1, options);
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
  expectBruteForce(randomData(250, 2, true), directions, 2, options);
}

TEST(NgcVariogramExp, ShortLagsBeyondTheLastClassAreLeftOut)
{
  // One long lag, refined: a pair at 4.9 would be in the third of two classes.
  NgmVariogramExp directions(false);
  directions.addOmnidirectional(1, 10., 0.5, 1, 3.);
  ASSERT_EQ(directions.getColumnSize(0, false), 2);
  expectBruteForce(randomData(200, 1, false), directions, 1, Options());
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
  const BruteForce raw(data, request.getDirection(0), 0, 0, Options());
  const BruteForce gaussian(data, request.getDirection(0), 1, 1, Options());
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
