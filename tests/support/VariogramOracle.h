#pragma once

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
#include <map>

/// Experimental variograms by their definitions, and the data to try them on.
namespace variogramtest {

using testsupport::CsvFile;
using testsupport::normal;
using testsupport::uniform;

using Vario = NgmEVarioExp::EValue;
using Cova = NgmECovaExp::EValue;
using Column = std::vector<double>;

constexpr double UNUSED = NbbGlobal::D_FFFF;
constexpr int N_DEFINED = 77;

/// Samples and what is bound of them.
struct Data
{
  Column x, y, z;
  std::vector<Column> variables;
  Column weights;
  Column codes;
  Column mask;

  int count() const { return int(x.size()); }
};

inline NgdDataSetPoints makeDataSet(const Data &data, int nVariables)
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
  if (!data.mask.empty())
    dataSet.assignVariable(Nbd::Role::MASK, provider->addVariable(QStringLiteral("M"), data.mask));
  return dataSet;
}

/// Means, deviations and correlations that are those of no sample: formulas must take them as
/// given.
inline NgmMultivariateStatistics makeStatistics(int n)
{
  QStringList names;
  for (int i = 0; i < n; ++i)
    names << QStringLiteral("A%1").arg(i);
  NgmMultivariateStatistics statistics(names);
  for (int i = 0; i < n; ++i) {
    statistics.getUnivariateStats(i).setMean(3.1 + i);
    statistics.getUnivariateStats(i).setVariance(1.44 + i);
    statistics.getUnivariateStats(i).setNDefined(N_DEFINED + i);
    for (int j = 0; j < i; ++j)
      statistics.setRho(i, j, 0.3);
  }
  return statistics;
}

inline NgmVariogramExp allCurves(const NgmVariogramExp &directions, int nVariables)
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
  int filtering = 0;       // 1 same codes, 2 different ones
  bool exclusive = false;  // directions of a group that do not overlap share no pair
  int nThreads = 2;
  int blockSize = 50;
};

/// Random samples, some in the same place, some values missing.
inline Data randomData(int n, int nVariables, bool is3d, bool missing = true)
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

inline bool isDefined(double value)
{
  return NbbGlobal::isDefined(value);
}

/// The sums of one direction and pair of variables over all pairs of samples.
struct BruteForce
{
  std::vector<Lag> vario;
  std::vector<Lag> cova;

  /// Whether a direction keeps a pair that may have been taken by the one before.
  static bool accepts(const NgmVariogramExp &request, int dir, const NbgVector3D &h,
                      const Options &options, int &first, int &last, bool &positive)
  {
    const int group = request.getDirection(dir).getGroupId();
    if (options.exclusive && dir > 0 && request.getDirection(dir - 1).getGroupId() == group &&
        !request.isGroupDirectionsOverlapping(group) &&
        accepts(request, dir - 1, h, options, first, last, positive))
      return false;
    return request.getDirection(dir).getLagRank(h, h.norm(), first, last, positive);
  }

  BruteForce(const Data &data, const NgmVariogramExp &request, int dir, int a, int b,
             const Options &options)
      : vario(request.getDirection(dir).getNIntervals()),
        cova(2 * request.getDirection(dir).getNIntervals() + 1)
  {
    const Column &va = data.variables[a];
    const Column &vb = data.variables[b];
    const int origin = request.getDirection(dir).getNIntervals();
    for (int i = 0; i < data.count(); ++i) {
      for (int j = 0; j < data.count(); ++j) {
        // Once each: from the west; samples in the same place by rank.
        if (i == j || data.x[i] > data.x[j] || (data.x[i] == data.x[j] && i > j))
          continue;
        if (options.filtering != 0 && (data.codes[i] == data.codes[j]) != (options.filtering == 1))
          continue;
        double weight = data.weights.empty() ? 1. : data.weights[i] * data.weights[j];
        if (!data.mask.empty() && (data.mask[i] == 1. || data.mask[j] == 1.))
          continue;
        weight *= data.mask.empty() ? 1. : (1. - data.mask[i]) * (1. - data.mask[j]);
        if (!data.weights.empty() && !(isDefined(data.weights[i]) && isDefined(data.weights[j]) &&
                                       data.weights[i] > 0. && data.weights[j] > 0.))
          continue;
        const NbgVector3D h(data.x[j] - data.x[i], data.y[j] - data.y[i], data.z[j] - data.z[i]);
        int first = 0, last = 0;
        bool positive = true;
        if (!accepts(request, dir, h, options, first, last, positive))
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

inline void expectClose(double value, double expected, const char *what)
{
  // Sums in another order: a few roundings of some hundred terms.
  EXPECT_NEAR(value, expected, 1e-10 * (1. + std::fabs(expected))) << what;
}

/// Checks every curve of a direction and pair of variables by its definition.
inline void expectCurves(const NgmVariogramExpData &data, int dir, int a, int b,
                         const BruteForce &sums, const BruteForce &simpleA,
                         const BruteForce &simpleB, int nSamples)
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

/// Checks all curves of all directions; `nSamples` is that of the origin of covariances, below 0
/// that of the statistics.
inline void expectBruteForce(const NgmVariogramExpData &results, const Data &data,
                             const NgmVariogramExp &request, const Options &options, int nSamples)
{
  const int nVariables = request.getNVariables();
  for (int dir = 0; dir < request.getNDirections(); ++dir) {
    std::vector<BruteForce> simple;
    for (int i = 0; i < nVariables; ++i)
      simple.emplace_back(data, request, dir, i, i, options);
    for (int i = 0; i < nVariables; ++i) {
      for (int j = i; j < (options.cross ? nVariables : i + 1); ++j) {
        const BruteForce sums(data, request, dir, i, j, options);
        expectCurves(results, dir, i, j, sums, simple[i], simple[j],
                     nSamples < 0 ? N_DEFINED + i : nSamples);
      }
    }
  }
}

inline NgmVariogramExp planeAndOmni(bool is3d)
{
  NgmVariogramExp request(is3d);
  request.addOmnidirectional(8, 5., 0.5, 0, 0.);
  request.addRegularInPlane(NbgRotation(NbgAngle::fromDegrees(20.)), 3, 30., 40., 30.,
                            is3d ? 8. : UNUSED, 7, 6., 0.6, 2, 2.);
  return request;
}

inline Data meuse(std::initializer_list<const char *> columns, bool logarithms)
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

inline Data tiny(std::initializer_list<const char *> columns)
{
  const CsvFile file("tiny/points.csv");
  Data data;
  data.x = file["x"];
  data.y = file["y"];
  data.z.assign(data.x.size(), 0.);
  for (const char *column : columns)
    data.variables.push_back(file[column]);
  return data;
}

inline NgmVariogramExp omni(int nVariables = 1, int nLags = 16, double lag = 100.)
{
  NgmVariogramExp request(false);
  request.setNVariables(nVariables);
  request.addOmnidirectional(nLags, lag, 0.5, 0, 0.);
  request.addVarioCalculation(Vario::VARIOGRAM);
  return request;
}

/// Compares a curve with rows first, first + 1, ... of a reference table: exact counts, values to
/// 1e-10 relative.
inline void expectColumn(const CsvFile &file, const char *column, const QVector<double> &values,
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

inline void expectCounts(const CsvFile &file, const QVector<qint64> &counts, int first = 0)
{
  for (int k = 0; k < counts.size(); ++k)
    EXPECT_EQ(double(counts[k]), file["np"][first + k]) << k;
}

inline std::vector<double> allNumbers(const NgmVariogramExpData &data)
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

}  // namespace variogramtest
