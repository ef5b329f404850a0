#include "geos/simu/NgmDensityFunctions.h"

#include "basic/base/NbbGlobal.h"
#include "simu/private/NgmStableLaw.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace NgmDensityFunctions;

namespace {

double exactGaussian(double x)
{
  return 0.5 * std::erfc(-x * M_SQRT1_2);
}

/// A law with its three functions and points inside its support, away from kinks.
struct Law
{
  const char *name;
  std::function<double(double)> df, cdf, invCdf;
  QVector<double> points;
};

QVector<Law> laws()
{
  return {
      {"uniform",
       [](double x) { return dfUniformR(x, 2., 5.); },
       [](double x) { return cdfUniformR(x, 2., 5.); },
       [](double p) { return invCdfUniformR(p, 2., 5.); },
       {2.1, 3., 4.9}},
      {"lognormal",
       [](double x) { return dfLognormal(x, 0.3, 0.7, 0.5); },
       [](double x) { return cdfLognormal(x, 0.3, 0.7, 0.5); },
       {},
       {0.1, 1., 4.}},
      {"power",
       [](double x) { return dfPower(x, 3., 1.5, 0.5); },
       [](double x) { return cdfPower(x, 3., 1.5, 0.5); },
       {},
       {0.5, 6., 20.}},
      {"beta",
       [](double x) { return dfBeta(2.5, 0.7, x); },
       [](double x) { return cdfBeta(2.5, 0.7, x, 200); },
       {},
       {0.1, 0.5, 0.9}},
      {"gamma",
       [](double x) { return dfGamma(3.7, x); },
       [](double x) { return cdfGamma(3.7, x); },
       [](double p) { return invCdfGamma(3.7, p); },
       {0.3, 3., 9.}},
      {"student",
       [](double x) { return dfStudent(5., x); },
       [](double x) { return cdfStudent(5., x); },
       {},
       {-3., -0.2, 0.1, 1.5}},
      {"exponential",
       [](double x) { return dfExponential(x, 2.); },
       [](double x) { return cdfExponential(x, 2.); },
       [](double p) { return invCdfExponential(p, 2.); },
       {0.01, 1., 8.}},
      {"Cauchy", dfCauchy, cdfCauchy, invCdfCauchy, {-40., -1.1, 0., 3.}},
      {"triangular",
       [](double x) { return dfTriangular(x, -1., 0.5, 4.); },
       [](double x) { return cdfTriangular(x, -1., 0.5, 4.); },
       [](double p) { return invCdfTriangular(p, -1., 0.5, 4.); },
       {-0.9, 0., 1., 3.9}},
      {"truncated normal",
       [](double x) { return dfTruncatedGaussian(x, -1., 2.5); },
       [](double x) { return cdfTruncatedGaussian(x, -1., 2.5); },
       {},
       {-0.9, 0.3, 2.4}},
      {"stable 0.6",
       [](double x) { return NgmStableLaw::density(0.6, x); },
       [](double x) { return NgmStableLaw::distribution(0.6, x); },
       {},
       {-2., 0.1, 1., 30.}},
      {"stable 1.7",
       [](double x) { return NgmStableLaw::density(1.7, x); },
       [](double x) { return NgmStableLaw::distribution(1.7, x); },
       {},
       {-2., 0.1, 1., 30.}},
  };
}

}  // namespace

TEST(NgmDensityFunctions, DensitiesAreTheDerivativesOfDistributionFunctions)
{
  for (const Law &law : laws()) {
    for (const double x : law.points) {
      const double h = 1e-4;
      const double slope = (law.cdf(x + h) - law.cdf(x - h)) / (2. * h);
      // Truncation of the difference (h^2 times third derivatives of order 10), rounding / h, and
      // the slope of the error of cdfGaussian().
      EXPECT_NEAR(law.df(x), slope, 1e-6 + 1e-6 * slope) << law.name << " " << x;
      EXPECT_GT(law.cdf(x), 0.);
      EXPECT_LT(law.cdf(x), 1.);
    }
  }
}

TEST(NgmDensityFunctions, QuantilesInvertDistributionFunctions)
{
  for (const Law &law : laws()) {
    // 1e-5 is what the bisection of the gamma quantile promises.
    const double tolerance = law.name == std::string("gamma") ? 1e-5 : 1e-12;
    for (int i = 0; law.invCdf && i < 200; ++i) {
      const double p = (i + 0.5) / 200.;
      EXPECT_NEAR(law.cdf(law.invCdf(p)), p, tolerance) << law.name;
    }
  }
}

TEST(NgmDensityFunctions, GaussianIsWithinItsStatedErrorAndInverts)
{
  for (double x = -9.99; x < 10.; x += 0.01) {
    ASSERT_NEAR(cdfGaussian(x), exactGaussian(x), 7.5e-8) << x;
    ASSERT_NEAR(dfGaussian(x), std::exp(-0.5 * x * x) / std::sqrt(2. * M_PI), 1e-16) << x;
  }
  EXPECT_EQ(cdfGaussian(10.), 1.);
  EXPECT_EQ(cdfGaussian(-10.), 0.);
  EXPECT_EQ(cdfGaussian(5., 3., 2.), cdfGaussian(1.));
  EXPECT_EQ(dfGaussian(5., 3., 2.), dfGaussian(1.) / 2.);

  EXPECT_NEAR(invCdfGaussian(0.975), 1.959963984540054, 2e-6);
  EXPECT_NEAR(invCdfGaussian(0.5), 0., 1e-7);
  for (int i = 1; i < 1000; ++i) {
    const double p = i / 1000.;
    // 1e-7 in x, times a density below 0.4.
    ASSERT_NEAR(cdfGaussian(invCdfGaussian(p)), p, 1e-7) << p;
    ASSERT_EQ(p == 0.5 ? 0. : invCdfGaussian(p) + invCdfGaussian(1. - p), 0.) << p;
  }
  // The hazard rate, 6, times 1e-7. Further out the bisection ends at its border.
  EXPECT_NEAR(cdfGaussian(invCdfGaussian(1e-9)) / 1e-9, 1., 1e-6);
  EXPECT_NEAR(invCdfGaussian(1e-12), -7.034483825301132, 6e-4);
  EXPECT_EQ(invCdfGaussian(0.), NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  EXPECT_EQ(invCdfGaussian(1e-20), NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  EXPECT_EQ(invCdfGaussian(1.), NbbGlobal::D_BIG_GAUSSIAN_POSITIVE);
}

TEST(NgmDensityFunctions, LogGammaAgreesWithTheLibrary)
{
  const auto expectEqual = [](double x) {
    const double expected = std::lgamma(x);
    // Rounding of the rational approximation (values up to 1) and of the sum of logarithms.
    EXPECT_NEAR(dfLogGamma(x), expected, 4e-15 + 1e-13 * std::abs(expected)) << x;
  };
  for (int i = 0; i < 2000; ++i)
    expectEqual(std::pow(10., testsupport::uniform(91, i, -8., 4.)));
  for (const double x : {0.5, 1.5, 2.5, 33.5, 1., 2., 33., 34., 34.5, 9.9e6, 1.1e7})
    expectEqual(x);
  EXPECT_EQ(dfLogGamma(1.), 0.);
  EXPECT_EQ(dfLogGamma(NbbGlobal::D_FFFF), NbbGlobal::D_FFFF);
}

TEST(NgmDensityFunctions, GammaHasItsClosedFormsAndTails)
{
  for (double x = 0.01; x < 40.; x *= 1.3) {
    EXPECT_NEAR(cdfGamma(0.5, x), std::erf(std::sqrt(x)), 1e-14) << x;
    EXPECT_NEAR(cdfGamma(1., x), -std::expm1(-x), 1e-14) << x;
    EXPECT_NEAR(cdfGamma(3., x), 1. - std::exp(-x) * (1. + x + x * x / 2.), 1e-14) << x;
  }
  // Wilson-Hilferty has an error of about 1e-4 / sqrt(alpha) here.
  EXPECT_NEAR(cdfGamma(1e6, 1e6 + 1000.),
              exactGaussian((std::cbrt(1.001) - 1. + 1. / 9e6) * std::sqrt(9e6)), 1e-6);
  EXPECT_EQ(cdfGamma(2., 0.), 0.);
  EXPECT_EQ(cdfGamma(2., NbbGlobal::D_BIG_POSITIVE), 1.);

  EXPECT_EQ(invCdfGamma(0., 0.5), 0.);
  EXPECT_EQ(invCdfGamma(2., 0.), 0.);
  // Chi-2 quantile, 95% at 10 degrees of freedom.
  EXPECT_NEAR(2. * invCdfGamma(5., 0.95), 18.307038053275146, 4e-5);
  EXPECT_GT(invCdfGamma(2., 1.), 30.);
  EXPECT_LT(invCdfGamma(0.01, 0.5), 1e-5);
  EXPECT_NE(testsupport::errorOf([] { cdfGamma(-1., 1.); }), "nothing thrown");
}

TEST(NgmDensityFunctions, BetaAndStudentHaveTheirClosedForms)
{
  for (double x = 0.05; x < 1.; x += 0.05) {
    EXPECT_NEAR(cdfBeta(1., 3.5, x, 100), 1. - std::pow(1. - x, 3.5), 1e-14);
    EXPECT_NEAR(cdfBeta(0.5, 0.5, x, 100), M_2_PI * std::asin(std::sqrt(x)), 1e-14);
    EXPECT_NEAR(cdfBeta(2.2, 7.1, x, 100), 1. - cdfBeta(7.1, 2.2, 1. - x, 100), 1e-14);
    // Upper tail of a binomial law of 4 trials from 3 on.
    EXPECT_NEAR(cdfBeta(3., 2., x, 100), 4. * x * x * x * (1. - x) + x * x * x * x, 1e-14);
  }
  EXPECT_EQ(cdfBeta(2., 3., 0., 100), 0.);
  EXPECT_EQ(cdfBeta(2., 3., 1., 100), 1.);
  for (double t = -30.; t <= 30.; t += 1.5) {
    EXPECT_NEAR(cdfStudent(1., t), 0.5 + std::atan(t) / M_PI, 1e-14) << t;
    EXPECT_NEAR(cdfStudent(2., t), 0.5 + 0.5 * t / std::sqrt(2. + t * t), 1e-14) << t;
  }

  using testsupport::errorOf;
  EXPECT_EQ(errorOf([] { cdfBeta(-1.5, 2., 0.5, 100); }),
            "ERROR : Wrong beta value or parameters: s[-1.5] and r[2] must be positive");
  EXPECT_EQ(errorOf([] { cdfBeta(200., 300., 0.4, 2); }),
            "ERROR : Wrong beta parameters: itMax[2] is too small");
  EXPECT_TRUE(errorOf([] { dfBeta(1., 0., 0.5); }).startsWith("ERROR : Wrong beta parameters: s["));
}

TEST(NgmDensityFunctions, TruncatedGaussianKeepsItsDigitsInTheTails)
{
  // Ratio of tail integrals by Simpson's rule on [20, 20.5] and [20, 20.1].
  const auto integral = [](double a, double b) {
    const int n = 2000;
    double sum = 0.;
    for (int i = 0; i <= n; ++i) {
      const double x = a + (b - a) * i / n;
      sum += (i == 0 || i == n ? 1. : i % 2 ? 4. : 2.) * std::exp(-0.5 * (x * x - a * a));
    }
    return sum * (b - a) / (3. * n);
  };
  const double expected = integral(20., 20.1) / integral(20., 20.5);
  EXPECT_NEAR(cdfTruncatedGaussian(20.1, 20., 20.5), expected, 1e-10);
  EXPECT_NEAR(cdfTruncatedGaussian(-20.1, -20.5, -20.), 1. - expected, 1e-10);
  EXPECT_NEAR(dfTruncatedGaussian(20., 20., 20.5), 1. / integral(20., 20.5), 1e-8);
  EXPECT_NEAR(cdfTruncatedGaussian(0.7, NbbGlobal::D_FFFF, NbbGlobal::D_FFFF), exactGaussian(0.7),
              1e-15);
  EXPECT_EQ(dfTruncatedGaussian(2., -1., 1.), 0.);
}

TEST(NgmStableLaw, AgreesWithSpecialCasesAndTheInversionFormula)
{
  for (const double x : {-3., -0.4, 0., 0.01, 1., 6.}) {
    EXPECT_NEAR(NgmStableLaw::distribution(2., x), exactGaussian(x * M_SQRT1_2), 1e-10) << x;
    EXPECT_NEAR(NgmStableLaw::distribution(1. + 1e-4, x), cdfCauchy(x), 5e-5) << x;
    EXPECT_NEAR(NgmStableLaw::distribution(1. - 1e-4, x), cdfCauchy(x), 5e-5) << x;
  }
  EXPECT_NEAR(NgmStableLaw::density(0.5, 0.), 2. / M_PI, 1e-15);
  EXPECT_NEAR(NgmStableLaw::density(1.3, 1e-7), std::tgamma(1. + 1. / 1.3) / M_PI, 1e-7);

  // F(x) = 1/2 + 1/pi int sin(t x) / t exp(-t^alpha) dt, by the midpoint rule in t = s^2: the
  // integrand is then smooth at 0. What lies beyond exp(-40) does not count.
  for (const double alpha : {0.8, 1.5}) {
    for (const double x : {0.2, 1., 5.}) {
      const int n = 400000;
      const double end = std::pow(40., 0.5 / alpha);
      double sum = 0.;
      for (int i = 0; i < n; ++i) {
        const double s = end * (i + 0.5) / n;
        sum += 2. * std::sin(s * s * x) / s * std::exp(-std::pow(s, 2. * alpha));
      }
      EXPECT_NEAR(NgmStableLaw::distribution(alpha, x), 0.5 + sum * end / n / M_PI, 1e-8)
          << alpha << " " << x;
      EXPECT_NEAR(NgmStableLaw::distribution(alpha, -x) + NgmStableLaw::distribution(alpha, x), 1.,
                  1e-9);
    }
  }
}
