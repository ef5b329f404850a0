#include "geos/base/NgaStatSum.h"

#include "basic/calc/NbcStatMono.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/base/NgaProportionSum.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

using testsupport::normal;
using testsupport::uniform;
using testsupport::uniformInt;

namespace {

constexpr double INFINITE = std::numeric_limits<double>::infinity();
const double SPECIAL_VALUES[] = {NbbGlobal::D_FFFF,
                                 NbbGlobal::D_BIG_POSITIVE,
                                 1e30,
                                 INFINITE,
                                 -INFINITE,
                                 std::nan(""),
                                 0.,
                                 -0.,
                                 0x1p-1074,
                                 0x1.8p-1030,
                                 std::numeric_limits<double>::min(),
                                 -3.,
                                 9.9e29,
                                 1.};

/// Mostly log-uniform values of both signs, here and there a special one.
std::vector<double> makeValues(int n, std::uint64_t stream, bool moderate)
{
  std::vector<double> values(n);
  for (int i = 0; i < n; ++i) {
    const double sign = uniform(stream + 1, i) < 0.3 ? -1. : 1.;
    values[i] = sign * std::exp(uniform(stream, i, -5., 5.));
    if (uniform(stream + 2, i) < 0.1)
      values[i] = moderate ? NbbGlobal::D_FFFF
                           : SPECIAL_VALUES[uniformInt(stream + 3, i, std::size(SPECIAL_VALUES))];
  }
  return values;
}

std::vector<double> makeWeights(int n, std::uint64_t stream)
{
  const double special[] = {0., -1., NbbGlobal::D_FFFF, std::nan("")};
  std::vector<double> weights(n);
  for (int i = 0; i < n; ++i)
    weights[i] = uniform(stream + 1, i) < 0.1 ? special[uniformInt(stream + 2, i, 4)]
                                              : uniform(stream, i, 0.1, 3.);
  return weights;
}

/// Sums of the same terms in another order: they differ by a rounding per term at most.
void expectSameSum(double actual, double expected, double sumOfMagnitudes, const char *what)
{
  if (!std::isfinite(expected)) {
    EXPECT_EQ(actual, expected) << what;
    return;
  }
  EXPECT_NEAR(actual, expected, 1e-13 * sumOfMagnitudes) << what;
}

void expectSame(const NgaStatSum &actual, const NgaStatSum &expected, const NgaStatSum &magnitudes)
{
  EXPECT_EQ(actual.getNTotal(), expected.getNTotal());
  EXPECT_EQ(actual.getNDefined(), expected.getNDefined());
  EXPECT_EQ(actual.getNDefinedNoW(), expected.getNDefinedNoW());
  EXPECT_EQ(actual.getMinimum(), expected.getMinimum());
  EXPECT_EQ(actual.getMaximum(), expected.getMaximum());
  EXPECT_EQ(actual.getMinimumNoW(), expected.getMinimumNoW());
  EXPECT_EQ(actual.getMaximumNoW(), expected.getMaximumNoW());
  for (int k = 0; k <= expected.getDegree(); ++k)
    expectSameSum(actual.getMoment(k), expected.getMoment(k), magnitudes.getMoment(k), "moment");
  // Logarithms are of order 1 to 700.
  expectSameSum(actual.getSumLog(), expected.getSumLog(), 1. + 10. * magnitudes.getMoment(0),
                "log");
  expectSameSum(actual.getSumInverse(), expected.getSumInverse(), expected.getSumInverse(), "1/v");
  expectSameSum(actual.getSumXY(), expected.getSumXY(), magnitudes.getMoment(2), "xy");
}

std::vector<double> magnitudesOf(std::vector<double> values)
{
  for (double &value : values)
    value = NbbGlobal::isDefined(value) ? std::fabs(value) : value;
  return values;
}

bool sameBits(const NgaStatSum &a, const NgaStatSum &b)
{
  bool same = a.getSumLog() == b.getSumLog() && a.getSumInverse() == b.getSumInverse() &&
              a.getSumXY() == b.getSumXY() && a.getNTotal() == b.getNTotal();
  for (int k = 0; k <= a.getDegree(); ++k)
    same = same && a.getMoment(k) == b.getMoment(k);
  return same;
}

}  // namespace

TEST(NgaStatSum, BlocksGiveTheSumsOfSingleValues)
{
  for (int degree : {1, 2, 4}) {
    for (int n : {0, 1, 3, 4, 7, 1023, 1024, 1025, 5003}) {
      for (bool moderate : {false, true}) {
        SCOPED_TRACE(testing::Message() << "degree " << degree << ", n " << n);
        const std::vector<double> values = makeValues(n, 100 + n, moderate);
        const std::vector<double> magnitudes = magnitudesOf(values);
        const std::vector<double> weights = makeWeights(n, 200 + n);
        NgaStatSum block(degree), single(degree), magnitude(degree);
        NgaStatSum blockW(degree), singleW(degree), magnitudeW(degree);
        block.addValues(n, values.data());
        blockW.addValues(n, values.data(), weights.data());
        for (int i = 0; i < n; ++i) {
          single.addValue(values[i]);
          singleW.addValue(values[i], weights[i]);
          magnitude.addValue(magnitudes[i]);
          magnitudeW.addValue(magnitudes[i], weights[i]);
        }
        expectSame(block, single, magnitude);
        expectSame(blockW, singleW, magnitudeW);
      }
    }
  }
}

TEST(NgaStatSum, PairsGiveTheSumsOfSinglePairs)
{
  const int n = 3001;
  const std::vector<double> x = makeValues(n, 1, true);
  const std::vector<double> y = makeValues(n, 11, true);
  const std::vector<double> weights = makeWeights(n, 21);
  for (bool weighted : {false, true}) {
    NgaStatSum xy(2), yx(2), singleXY(2), singleYX(2), magnitude(2);
    NgaStatSum::addPairs(xy, yx, n, x.data(), y.data(), weighted ? weights.data() : nullptr);
    for (int i = 0; i < n; ++i) {
      const double w = weighted ? weights[i] : 1.;
      singleXY.addPair(x[i], y[i], w);
      singleYX.addPair(y[i], x[i], w);
      magnitude.addValue(NbbGlobal::isDefined(x[i]) ? std::fabs(x[i]) : 0., 3.);
      magnitude.addValue(NbbGlobal::isDefined(y[i]) ? std::fabs(y[i]) : 0., 3.);
    }
    expectSame(xy, singleXY, magnitude);
    expectSame(yx, singleYX, magnitude);
    EXPECT_EQ(xy.getSumXY(), yx.getSumXY());
    EXPECT_LT(xy.getNDefinedNoW(), n);
  }
}

TEST(NgaStatSum, BitsDoNotDependOnWhereTheValuesLie)
{
  const int n = 2100;
  const std::vector<double> values = makeValues(n, 5, true);
  const std::vector<double> weights = makeWeights(n, 6);
  NgaStatSum reference(4), referenceW(4);
  reference.addValues(n, values.data());
  referenceW.addValues(n, values.data(), weights.data());
  for (int offset = 1; offset < 9; ++offset) {
    std::vector<double> movedValues(n + offset), movedWeights(n + offset);
    std::copy(values.begin(), values.end(), movedValues.begin() + offset);
    std::copy(weights.begin(), weights.end(), movedWeights.begin() + offset);
    NgaStatSum moved(4), movedW(4);
    moved.addValues(n, movedValues.data() + offset);
    movedW.addValues(n, movedValues.data() + offset, movedWeights.data() + offset);
    EXPECT_TRUE(sameBits(moved, reference)) << offset;
    EXPECT_TRUE(sameBits(movedW, referenceW)) << offset;
  }
}

TEST(NgaStatSum, LimitsOfWhatCounts)
{
  NgaStatSum sum;
  const double values[] = {1e30, 0., -2., 5., 7.};
  const double weights[] = {1., 1., 1., 0., 2.};
  sum.addValues(5, values, weights);
  EXPECT_EQ(sum.getNTotal(), 5);
  EXPECT_EQ(sum.getNDefinedNoW(), 4);
  EXPECT_EQ(sum.getNDefined(), 3);
  EXPECT_EQ(sum.getMoment(0), 4.);
  EXPECT_EQ(sum.getMoment(1), 12.);
  EXPECT_EQ(sum.getMoment(2), 4. + 2. * 49.);
  EXPECT_DOUBLE_EQ(sum.getSumLog(), 2. * std::log(7.));
  EXPECT_DOUBLE_EQ(sum.getSumInverse(), 2. / 7.);
  EXPECT_EQ(sum.getMaximum(), 7.);

  NgaStatSum weightless;
  weightless.addValue(3., 0.);
  NbcStatMono record;
  weightless.fill(record);
  EXPECT_EQ(record.getMinimumNoW(), 3.);
  EXPECT_EQ(record.getMinimum(), NbbGlobal::D_FFFF);
  EXPECT_EQ(record.getMaximum(), NbbGlobal::D_FFFF);
  EXPECT_EQ(record.getMean(), NbbGlobal::D_FFFF);
  EXPECT_EQ(record.getNDefined(), 0);
  EXPECT_EQ(record.getNDefinedNoW(), 1);
}

TEST(NgaStatSum, RecordsOfTheFirstIntegers)
{
  // The discrete uniform law on 1 .. n has mean (n + 1) / 2, variance (n^2 - 1) / 12, skewness 0
  // and kurtosis 3 - 6 (n^2 + 1) / (5 (n^2 - 1)).
  const int n = 1000;
  NgaStatSum sum(4);
  for (int i = 1; i <= n; ++i)
    sum.addValue(i);
  NbcStatMono record;
  sum.fill(record);
  const double n2 = double(n) * n;
  EXPECT_EQ(record.getNTotal(), n);
  EXPECT_EQ(record.getWeight(), n);
  EXPECT_EQ(record.getMinimum(), 1.);
  EXPECT_EQ(record.getMaximum(), n);
  EXPECT_DOUBLE_EQ(record.getMean(), (n + 1) / 2.);
  EXPECT_NEAR(record.getVariance(), (n2 - 1.) / 12., 1e-9);
  EXPECT_NEAR(record.getSkewness(), 0., 1e-14);
  EXPECT_NEAR(record.getKurtosis(), 3. - 6. * (n2 + 1.) / (5. * (n2 - 1.)), 1e-14);
  EXPECT_NEAR(record.getGeometricMean(), std::exp(std::lgamma(n + 1.) / n), 1e-10);
}

TEST(NgaStatSum, StatisticsDoNotDependOnWhereTheValuesLie)
{
  // Multiples of 1/1024 below 8192 can be moved by 5,000,000 without rounding. Doubles resolve a
  // mean there to 1e-9, for a spread of 0.6.
  const int n = 4500;
  const double far = 5e6;
  std::vector<double> x(n), y(n), farX(n), farY(n);
  const std::vector<double> weights = makeWeights(n, 31);
  for (int i = 0; i < n; ++i) {
    x[i] = std::floor(300. * std::exp(normal(32, i))) / 1024.;
    y[i] = std::floor(1024. * (x[i] + normal(33, i))) / 1024.;
    farX[i] = x[i] + far;
    farY[i] = y[i] - far;
  }
  for (const double *w : {static_cast<const double *>(nullptr), weights.data()}) {
    NgaStatSum near(4), moved(4), single(4), mirrored(4);
    NgaStatSum::addPairs(near, mirrored, n, x.data(), y.data(), w);
    NgaStatSum::addPairs(moved, mirrored, n, farX.data(), farY.data(), w);
    for (int i = 0; i < n; ++i)
      single.addPair(farX[i], farY[i], w ? w[i] : 1.);
    NbcStatMono expected;
    near.fill(expected);
    EXPECT_GT(expected.getKurtosis(), 10.);
    for (const NgaStatSum *sum : {&moved, &single}) {
      NbcStatMono record;
      sum->fill(record);
      EXPECT_NEAR(record.getMean(), expected.getMean() + far, 1e-8);
      EXPECT_NEAR(record.getVariance(), expected.getVariance(), 1e-9 * expected.getVariance());
      EXPECT_NEAR(record.getSkewness(), expected.getSkewness(), 1e-8);
      EXPECT_NEAR(record.getKurtosis(), expected.getKurtosis(), 1e-7);
      EXPECT_NEAR(sum->getCovariance(), near.getCovariance(), 1e-10);
    }
  }
}

TEST(NgaStatSum, MeansOfThreePowersOfTwo)
{
  const double values[] = {1., 2., 4.};
  NgaStatSum sum;
  sum.addValues(3, values);
  NbcStatMono record;
  sum.fill(record);
  EXPECT_DOUBLE_EQ(record.getGeometricMean(), 2.);
  EXPECT_DOUBLE_EQ(record.getHarmonicMean(), 12. / 7.);

  sum.addValue(0.);
  sum.fill(record);
  EXPECT_EQ(record.getGeometricMean(), NbbGlobal::D_FFFF);
  EXPECT_EQ(record.getHarmonicMean(), NbbGlobal::D_FFFF);
}

TEST(NgaStatSum, AConstantHasNoVariance)
{
  const std::vector<double> values(1237, 0.1);
  NgaStatSum sum(4);
  sum.addValues(int(values.size()), values.data());
  NbcStatMono record;
  sum.fill(record);
  EXPECT_EQ(record.getMean(), 0.1);
  EXPECT_EQ(record.getVariance(), 0.);
  EXPECT_EQ(record.getStandardDeviation(), 0.);
  EXPECT_EQ(record.getSkewness(), 0.);
  EXPECT_EQ(record.getKurtosis(), 0.);
}

TEST(NgaStatSum, MergesOnlyItsOwnKind)
{
  NgaStatSum two(2), four(4);
  EXPECT_THROW(two.doSum(four), NbeProgrammingError);
  EXPECT_THROW(two.doSum(NgaProportionSum()), NbeProgrammingError);
  EXPECT_THROW(NgaProportionSum().doSum(two), NbeProgrammingError);

  const std::vector<double> values = makeValues(2048, 9, true);
  NgaStatSum whole, first, second;
  whole.addValues(2048, values.data());
  first.addValues(1024, values.data());
  second.addValues(1024, values.data() + 1024);
  first.doSum(second);
  EXPECT_TRUE(sameBits(first, whole));
  EXPECT_EQ(first.getMinimum(), whole.getMinimum());
}
