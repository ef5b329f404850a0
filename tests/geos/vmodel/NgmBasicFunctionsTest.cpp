#include "geos/vmodel/NgmBasicFunctions.h"

#include "support/CsvFile.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testsupport::uniform;

/// Log-uniform in [1e-3, 1e5].
double argument(int i)
{
  return std::pow(10., uniform(31, i, -3., 5.));
}

TEST(NgmBasicFunctions, J0AgreesWithIndependentTable)
{
  const testsupport::CsvFile table("meuse/covariances.csv");
  QVector<double> values;
  for (std::size_t i = 0; i < table["h"].size(); ++i) {
    ASSERT_EQ(NgmBasicFunctions::bessel_j(table["h"][i], 0., 1, values), 1);
    EXPECT_NEAR(values[0], table["besselJ0"][i], 1e-14);
  }
}

TEST(NgmBasicFunctions, HalfIntegerOrdersAreElementary)
{
  QVector<double> values;
  for (int i = 0; i < 500; ++i) {
    const double x = argument(i);
    const double amplitude = std::sqrt(2. / (M_PI * x));
    ASSERT_EQ(NgmBasicFunctions::bessel_j(x, 0.5, 2, values), 2);
    EXPECT_NEAR(values[0], amplitude * std::sin(x), 1e-14 * amplitude) << x;
    // The closed form of order 3/2 cancels near 0.
    if (x > 0.1) {
      EXPECT_NEAR(values[1], amplitude * (std::sin(x) / x - std::cos(x)), 1e-13 * amplitude) << x;
    }
    if (x > 700.)
      continue;
    ASSERT_EQ(NgmBasicFunctions::bessel_k(x, 0.5, 2, values), 2);
    const double k = std::sqrt(M_PI / (2. * x)) * std::exp(-x);
    EXPECT_NEAR(values[0], k, 4e-15 * k);
    EXPECT_NEAR(values[1], k * (1. + 1. / x), 1e-14 * k * (1. + 1. / x));
  }
}

TEST(NgmBasicFunctions, OrdersFollowTheRecurrence)
{
  QVector<double> values;
  for (int i = 0; i < 500; ++i) {
    const double x = argument(i);
    const double alpha = uniform(32, i);
    int n = NgmBasicFunctions::bessel_j(x, alpha, 12, values);
    const auto expectRecurrence = [&](double sign) {
      for (int k = 1; k + 1 < n; ++k) {
        const double middle = 2. * (alpha + k) / x * values[k];
        const double size = std::abs(middle) + std::abs(values[k - 1]) + std::abs(values[k + 1]);
        EXPECT_NEAR(middle, values[k + 1] + sign * values[k - 1], 1e-13 * size + 1e-15 * (sign > 0))
            << "order " << alpha + k << " at " << x;
      }
    };
    EXPECT_EQ(n, 12);
    expectRecurrence(1.);
    if (x > 700.)
      continue;
    n = NgmBasicFunctions::bessel_k(x, alpha, 12, values);
    EXPECT_EQ(n, 12);
    expectRecurrence(-1.);
  }
}

TEST(NgmBasicFunctions, SaysHowManyValuesAreAccurate)
{
  QVector<double> values;
  // J_n(1e-3) is about (5e-4)^n / n!, which leaves the normal numbers after n = 65.
  const int nJ = NgmBasicFunctions::bessel_j(1e-3, 0., 200, values);
  EXPECT_EQ(nJ, 66);
  EXPECT_EQ(values.size(), 200);
  EXPECT_NE(values[nJ - 1], 0.);
  EXPECT_EQ(values[nJ], 0.);
  // K_n(1e-100) is about 2^(n - 1) (n - 1)! 1e100^n.
  EXPECT_EQ(NgmBasicFunctions::bessel_k(1e-100, 0., 9, values), 4);
  EXPECT_EQ(NgmBasicFunctions::bessel_j(0., 0., 3, values), 3);
  EXPECT_EQ(values, (QVector<double>{1., 0., 0.}));
  EXPECT_EQ(NgmBasicFunctions::bessel_j(0., 0.3, 1, values), 1);
  EXPECT_EQ(values, (QVector<double>{0.}));
}

TEST(NgmBasicFunctions, RefusesArgumentsOutOfRange)
{
  QVector<double> values;
  const double nan = std::nan("");
  for (const double x : {-1., 2e21, nan})
    EXPECT_LT(NgmBasicFunctions::bessel_j(x, 0., 2, values), 0);
  for (const double x : {-1., 0., 705.35, nan})
    EXPECT_LT(NgmBasicFunctions::bessel_k(x, 0., 2, values), 0);
  for (const double alpha : {-0.1, 1., nan}) {
    EXPECT_LT(NgmBasicFunctions::bessel_j(1., alpha, 2, values), 0);
    EXPECT_LT(NgmBasicFunctions::bessel_k(1., alpha, 2, values), 0);
    EXPECT_EQ(values, (QVector<double>{0., 0.}));
  }
  EXPECT_LT(NgmBasicFunctions::bessel_j(1., 0., 0, values), 0);
  EXPECT_LT(NgmBasicFunctions::bessel_k(1., 0., -3, values), 0);
  EXPECT_TRUE(values.isEmpty());
}

}  // namespace
