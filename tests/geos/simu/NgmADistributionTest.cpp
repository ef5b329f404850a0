#include "geos/simu/NgmADistribution.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/simu/NgmDensityFunctions.h"
#include "geos/simu/NgmDistributionBeta.h"
#include "geos/simu/NgmDistributionBinomial.h"
#include "geos/simu/NgmDistributionCauchy.h"
#include "geos/simu/NgmDistributionExponential.h"
#include "geos/simu/NgmDistributionGamma.h"
#include "geos/simu/NgmDistributionGaussian.h"
#include "geos/simu/NgmDistributionLognormal.h"
#include "geos/simu/NgmDistributionPoisson.h"
#include "geos/simu/NgmDistributionPower.h"
#include "geos/simu/NgmDistributionStable.h"
#include "geos/simu/NgmDistributionTriangular.h"
#include "geos/simu/NgmDistributionTruncatedGaussian.h"
#include "geos/simu/NgmDistributionUniformI.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

using testsupport::errorOf;

namespace {

constexpr quint64 SEED = 165426;
constexpr int SAMPLE_SIZE = 100000;

double exactGaussian(double x)
{
  return 0.5 * std::erfc(-x * M_SQRT1_2);
}

std::vector<double> sample(NgmADistribution &law)
{
  std::vector<double> values(SAMPLE_SIZE);
  for (double &value : values)
    value = law.givesInteger() ? double(law.nextI()) : law.nextR();
  return values;
}

/// Chi-2 over 50 classes of the same probability. The seeds are fixed; 85.35 is the 99.9% quantile
/// at 49 degrees of freedom.
template <class Cdf>
void expectLaw(NgmADistribution &law, const Cdf &cdf)
{
  constexpr int N_CLASSES = 50;
  std::vector<int> counts(N_CLASSES, 0);
  for (const double value : sample(law))
    ++counts[std::size_t(std::min(N_CLASSES - 1, int(cdf(value) * N_CLASSES)))];
  const double expected = double(SAMPLE_SIZE) / N_CLASSES;
  double chi2 = 0.;
  for (const int count : counts)
    chi2 += (count - expected) * (count - expected) / expected;
  EXPECT_LT(chi2, 85.35) << qPrintable(law.getName());
  EXPECT_GT(chi2, 15.) << qPrintable(law.getName());  // too even to be random
}

/// The same for integers first .. first + probabilities.size() - 1, the last standing for all
/// above. Three times the degrees of freedom and 15 is beyond the 99.9% quantile for all counts
/// used.
void expectFrequencies(NgmADistribution &law, qint64 first,
                       const std::vector<double> &probabilities)
{
  std::vector<int> counts(probabilities.size(), 0);
  for (const double value : sample(law)) {
    ASSERT_GE(value, double(first));
    ++counts[std::min(counts.size() - 1, std::size_t(qint64(value) - first))];
  }
  double chi2 = 0.;
  for (std::size_t i = 0; i < counts.size(); ++i) {
    const double expected = SAMPLE_SIZE * probabilities[i];
    chi2 += (counts[i] - expected) * (counts[i] - expected) / expected;
  }
  EXPECT_LT(chi2, 2. * double(counts.size()) + 15.) << qPrintable(law.getName());
}

double meanOf(NgmADistribution &law)
{
  double sum = 0.;
  for (const double value : sample(law))
    sum += value;
  return sum / SAMPLE_SIZE;
}

/// binom(n, k).
double choose(int n, int k)
{
  return std::round(std::exp(std::lgamma(n + 1.) - std::lgamma(k + 1.) - std::lgamma(n - k + 1.)));
}

}  // namespace

TEST(NgmADistribution, SamplesFollowTheirLaw)
{
  NgmDistributionUniformD uniform(-2., 3., SEED);
  expectLaw(uniform, [](double x) { return (x + 2.) / 5.; });
  for (int size = 3; size <= 7; ++size) {
    NgmDistributionGaussian gaussian(1., 2., SEED, NgmADistribution::tSize(size));
    expectLaw(gaussian, [](double x) { return exactGaussian((x - 1.) / 2.); });
  }
  NgmDistributionExponential exponential(4., SEED);
  expectLaw(exponential, [](double x) { return 1. - std::exp(-x / 4.); });
  NgmDistributionCauchy cauchy(SEED);
  expectLaw(cauchy, [](double x) { return 0.5 + std::atan(x) / M_PI; });
  NgmDistributionTriangular triangular(0., 1., 4., SEED);
  expectLaw(triangular,
            [](double x) { return x < 1. ? x * x / 4. : 1. - (4. - x) * (4. - x) / 12.; });

  // Gamma of shape 1/2 is the square of a normal value of variance 1/2.
  NgmDistributionGamma half(0.5, 3., SEED);
  expectLaw(half, [](double x) { return std::erf(std::sqrt(x / 3.)); });
  NgmDistributionGamma nearOne(1. + 5e-6, 1., SEED);
  expectLaw(nearOne, [](double x) { return 1. - std::exp(-x); });
  NgmDistributionGamma three(3., 0.5, SEED);
  expectLaw(three, [](double x) {
    const double y = 2. * x;
    return 1. - std::exp(-y) * (1. + y + y * y / 2.);
  });
  NgmDistributionGamma nonInteger(1.7, 1., SEED);
  expectLaw(nonInteger, [&](double x) { return nonInteger.getCdf(x); });

  NgmDistributionBeta rising(1., 0.5, SEED);
  expectLaw(rising, [](double x) { return 1. - std::sqrt(1. - x); });
  NgmDistributionBeta skew(2., 3., SEED);
  expectLaw(skew, [](double x) { return x * x * (6. + x * (-8. + 3. * x)); });
}

TEST(NgmADistribution, TruncatedGaussianFollowsItsLawOnEveryPiece)
{
  const std::vector<std::pair<double, double>> intervals = {
      {-10., 0.}, {-3., 2.5}, {-20., 20.}, {1., 1.2}, {2.5, 6.}, {-4., -2.5}, {-1., 3.}, {7., 20.}};
  for (const auto &interval : intervals) {
    const double a = interval.first, b = interval.second;
    NgmDistributionTruncatedGaussian law(a, b, SEED);
    // From the nearer tail, so that no digits cancel.
    const auto probability = [](double low, double high) {
      return low > 0. ? exactGaussian(-low) - exactGaussian(-high)
                      : exactGaussian(high) - exactGaussian(low);
    };
    expectLaw(law, [&](double x) {
      EXPECT_TRUE(x >= a && x <= b) << x;
      return probability(a, x) / probability(a, b);
    });
    for (const double p : {0.01, 0.3, 0.5, 0.99})
      EXPECT_NEAR(probability(a, law.getInvCdf(p)) / probability(a, b), p, 1e-11) << a << " " << b;
  }

  NgmDistributionTruncatedGaussian open(NbbGlobal::D_FFFF, NbbGlobal::D_FFFF, SEED);
  EXPECT_EQ(open.getLowerBound(), -20.);
  EXPECT_EQ(open.getUpperBound(), 20.);

  // An empty interval gives what the first of the uniform streams gives.
  NgmDistributionTruncatedGaussian empty(1., 1., SEED);
  NgmRandomNumberGenerator seeds(SEED, NgmADistribution::DEFAULT_SIZE);
  NgmDistributionUniformD first(seeds.nextNumber());
  EXPECT_EQ(empty.nextR(), first.nextR());
  empty.setBounds(3., 4.);
  EXPECT_GE(empty.nextR(), 3.);
}

TEST(NgmADistribution, StableFollowsItsLaw)
{
  for (const double alpha : {0.5, 1., 1.5, 2.}) {
    NgmDistributionStable law(alpha, SEED);
    // The distribution function is costly: limits of classes instead of a call per value.
    std::vector<double> limits;
    for (double x = -8.; x <= 8.; x += 0.5)
      limits.push_back(x);
    std::vector<int> counts(limits.size() + 1, 0);
    for (const double value : sample(law))
      ++counts[std::size_t(std::upper_bound(limits.begin(), limits.end(), value) - limits.begin())];
    double chi2 = 0.;
    double previous = 0.;
    int nClasses = 0;
    int pendingCount = 0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
      const double cdf = i < limits.size() ? law.getCdf(limits[i]) : 1.;
      const double expected = SAMPLE_SIZE * (cdf - previous);
      pendingCount += counts[i];
      if (expected < 50. && i + 1 < counts.size())
        continue;
      chi2 += (pendingCount - expected) * (pendingCount - expected) / std::max(expected, 1.);
      pendingCount = 0;
      previous = cdf;
      ++nClasses;
    }
    EXPECT_LT(chi2, nClasses + 35.) << alpha;
    EXPECT_GT(nClasses, 15);
  }
  EXPECT_EQ(NgmDistributionStable(2.5, SEED).getCdf(0.), NbbGlobal::D_FFFF);
}

TEST(NgmADistribution, IntegersFollowTheirLaw)
{
  NgmDistributionUniformI uniform(-3, 6, SEED);
  expectFrequencies(uniform, -3, std::vector<double>(10, 0.1));
  // The product leaves 64 bits with the largest constants and 2^17 integers: only the lowest
  // values remain.
  NgmDistributionUniformI wrapped(0, 131071, SEED, NgmRandomNumberGenerator::SIZE_7);
  for (int i = 0; i < 1000; ++i)
    ASSERT_LT(wrapped.nextI(), 65536);

  for (const double lambda : {0.5, 6., 15.9}) {
    NgmDistributionPoisson poisson(lambda, SEED);
    std::vector<double> probabilities;
    double rest = 1.;
    for (int k = 0; SAMPLE_SIZE * rest > 50.; ++k) {
      probabilities.push_back(std::exp(k * std::log(lambda) - lambda - std::lgamma(k + 1.)));
      rest -= probabilities.back();
    }
    probabilities.back() += rest;
    if (lambda < 10.)
      expectFrequencies(poisson, 0, probabilities);
    EXPECT_NEAR(meanOf(poisson), lambda, 4. * std::sqrt(lambda / SAMPLE_SIZE));
  }
}

TEST(NgmADistribution, PoissonCountsAllEventsOfTheLastGammaSample)
{
  // With m = 14 and lambda = 16: given g > 16 the count has mean 14 * 16 / g, else 14 + 16 - g.
  // P and Q are the gamma distribution functions; g^n f_14(g) turns into f_(14 + n).
  using NgmDensityFunctions::cdfGamma;
  const double expected = 14. * 16. / 13. * (1. - cdfGamma(13., 16.)) + 30. * cdfGamma(14., 16.) -
                          14. * cdfGamma(15., 16.);
  NgmDistributionPoisson poisson(16., SEED);
  EXPECT_NEAR(meanOf(poisson), expected, 4. * 4. / std::sqrt(double(SAMPLE_SIZE)));
  EXPECT_GT(expected, 16.2);
  EXPECT_EQ(NgmDistributionPoisson(NbbGlobal::D_FFFF, SEED).nextI(), NbbGlobal::I64_FFFF);
}

TEST(NgmADistribution, BinomialKeepsTheRulesOfItsTwoBranches)
{
  // Table branch: terms binom(n, k) p'^n v'^k, the first giving 1, the rest giving n.
  for (const double p : {0.3, 0.7}) {
    const int n = 10;
    std::vector<double> probabilities;
    double rest = 1.;
    for (int k = 0; k < n - 1; ++k) {
      const double term = choose(n, k) * std::pow(0.7, n) * std::pow(0.21, k);
      probabilities.push_back(std::min(term, rest));
      rest -= probabilities.back();
    }
    probabilities.push_back(rest);
    NgmDistributionBinomial law(n, p, SEED);
    std::vector<double> values = sample(law);
    for (const int k : {1, 2, 3}) {
      const double value = p > 0.5 ? n - k : k;
      const double frequency =
          double(std::count(values.begin(), values.end(), value)) / SAMPLE_SIZE;
      EXPECT_NEAR(frequency, probabilities[std::size_t(k - 1)], 0.005) << p << " " << k;
    }
    const double frequency =
        double(std::count(values.begin(), values.end(), p > 0.5 ? 0. : n)) / SAMPLE_SIZE;
    EXPECT_NEAR(frequency, rest, 0.005);
  }

  // Normal branch: floor(z sqrt(n v') + n p'), reversed for p < 0.5 and not for p = 0.5.
  for (const double p : {0.3, 0.5, 0.7}) {
    const double larger = std::max(p, 1. - p);
    const double mean = 30. * larger, stdev = std::sqrt(30. * p * (1. - p));
    std::vector<double> probabilities;
    for (int value = 0; value <= 30; ++value) {
      const int k = p < 0.5 ? 30 - value : value;
      const double low = k == 0 ? 0. : exactGaussian((k - mean) / stdev);
      const double high = k == 30 ? 1. : exactGaussian((k + 1 - mean) / stdev);
      probabilities.push_back(std::max(high - low, 1e-5));
    }
    NgmDistributionBinomial law(30, p, SEED);
    expectFrequencies(law, 0, probabilities);
  }
  EXPECT_EQ(NgmDistributionBinomial(12, 0.00009, SEED).nextI(), 0);
  EXPECT_EQ(NgmDistributionBinomial(12, 0.99991, SEED).nextI(), 12);
  EXPECT_EQ(NgmDistributionBinomial(0, 0.5, SEED).nextI(), 0);
}

TEST(NgmADistribution, StreamsAreSeededByTheOwnersNumbersInOrder)
{
  NgmRandomNumberGenerator seeds(SEED, NgmRandomNumberGenerator::SIZE_6);
  NgmRandomNumberGenerator first(seeds.nextNumber(), NgmRandomNumberGenerator::SIZE_6);
  NgmRandomNumberGenerator second(seeds.nextNumber(), NgmRandomNumberGenerator::SIZE_6);
  NgmDistributionGaussian gaussian(10., 3., SEED, NgmRandomNumberGenerator::SIZE_6);
  NgmDistributionGaussian skipping = gaussian;
  double last = 0.;
  for (int i = 0; i < 5; ++i) {
    const double u = double(first.nextNumber()) / 2147483647.;
    const double v = double(second.nextNumber()) / 2147483647.;
    last = gaussian.nextR();
    EXPECT_EQ(last, 10. + 3. * std::sqrt(-2. * std::log(u)) * std::cos(2. * M_PI * v));
  }
  skipping.skip(4);
  EXPECT_EQ(skipping.nextR(), last);

  NgmRandomNumberGenerator owner(SEED, NgmADistribution::DEFAULT_SIZE);
  NgmDistributionGamma g1(2., 1., owner.nextNumber());
  NgmDistributionGamma g2(0.3, 1., owner.nextNumber());
  NgmDistributionBeta beta(2., 0.3, SEED);
  const double x = g1.nextR(), y = g2.nextR();
  EXPECT_EQ(beta.nextR(), x / (x + y));

  EXPECT_EQ(NgmDistributionGamma(0., 1., SEED).nextR(), NbbGlobal::D_FFFF);
  EXPECT_EQ(NgmDistributionBeta(1., -1., SEED).nextR(), NbbGlobal::D_FFFF);
}

TEST(NgmADistribution, ClonesContinueTheSequence)
{
  const auto expectSame = [](NgmADistribution &law) {
    law.nextR();
    law.nextI();
    const std::unique_ptr<NgmADistribution> copy(law.clone());
    EXPECT_NE(copy->getSerialNumber(), law.getSerialNumber());
    EXPECT_EQ(copy->getName(), law.getName());
    for (int i = 0; i < 100; ++i) {
      ASSERT_EQ(copy->nextR(), law.nextR()) << qPrintable(law.getName());
      ASSERT_EQ(copy->nextI(), law.nextI()) << qPrintable(law.getName());
    }
  };
  NgmDistributionBeta beta(SEED);
  NgmDistributionTruncatedGaussian truncated(SEED);
  NgmDistributionBinomial binomial(SEED);
  NgmDistributionPoisson poisson(30., SEED);
  expectSame(beta);
  expectSame(truncated);
  expectSame(binomial);
  expectSame(poisson);
}

TEST(NgmADistribution, NamesParametersAndWhatIsDefined)
{
  struct Expectation
  {
    std::shared_ptr<NgmADistribution> law;
    const char *name;
    const char *parameters;
  };
  const std::vector<Expectation> expectations = {
      {std::make_shared<NgmDistributionUniformD>(SEED), "UniformR", "min=0, max=1"},
      {std::make_shared<NgmDistributionUniformI>(SEED), "UniformI", "min=0, max=100"},
      {std::make_shared<NgmDistributionGaussian>(SEED), "Gaussian", "mean=0, stdev=1"},
      {std::make_shared<NgmDistributionLognormal>(SEED), "Lognormal", "mean=0, stdev=1, shift=0"},
      {std::make_shared<NgmDistributionPower>(SEED), "Power", "mean=0, stdev=1, scale=1"},
      {std::make_shared<NgmDistributionExponential>(SEED), "Exponential", "mean = 1"},
      {std::make_shared<NgmDistributionGamma>(2., 3., SEED), "Gamma", "scale=3, alpha=2"},
      {std::make_shared<NgmDistributionBeta>(SEED), "Beta", "s=0.5, r=0.5"},
      {std::make_shared<NgmDistributionCauchy>(SEED), "Cauchy", "No distribution parameter"},
      {std::make_shared<NgmDistributionStable>(SEED), "Stable", "alpha=0.5"},
      {std::make_shared<NgmDistributionTriangular>(SEED), "Triangular", "min=0, mode=0.5, max=1"},
      {std::make_shared<NgmDistributionTruncatedGaussian>(SEED), "GaussianBetween",
       "min=-10, max=0"},
      {std::make_shared<NgmDistributionBinomial>(SEED), "Binomial", "index=40, param=0.5"},
      {std::make_shared<NgmDistributionPoisson>(SEED), "Poisson", "lambda=1"},
  };
  for (const Expectation &e : expectations) {
    EXPECT_EQ(e.law->getName(), e.name);
    EXPECT_EQ(e.law->getParamInfo(NbdVariableDetails()), e.parameters);
    EXPECT_NE(e.law->givesInteger(), e.law->hasCdf()) << e.name;
    if (e.law->givesInteger()) {
      EXPECT_EQ(errorOf([&] { e.law->getInvCdf(0.5); }),
                "The inverse Cdf cannot be computed as Cdf is undefined!");
      EXPECT_EQ(errorOf([&] {
                  e.law->isChi2TestSuccessfulForSample(NbdVariableDouble(), 10, 5, nullptr, nullptr,
                                                       nullptr);
                }),
                "The Chi-2 test cannot be done since Cdf is not defined!");
    }
  }
}

TEST(NgmADistribution, QuantilesInvertAndTheGeneralSearchMovesTheWorseEnd)
{
  const NgmDistributionGaussian gaussian(3., 2., SEED);
  const NgmDistributionGamma gamma(2.5, 4., SEED);
  const NgmDistributionTriangular triangular(SEED);
  const NgmDistributionLognormal lognormal(1., 0.5, 0., SEED);
  for (const NgmADistribution *law :
       std::initializer_list<const NgmADistribution *>{&gaussian, &gamma, &triangular, &lognormal})
    for (double p = 0.05; p < 1.; p += 0.05)
      EXPECT_NEAR(law->getCdf(law->getInvCdf(p)), p, 1e-5) << qPrintable(law->getName()) << p;

  // From [0, 1] and arcsine probabilities: 0.5 at once for p = 0.5; for p = 0.25 the upper end
  // moves to 0.5, then the lower one to 0.25 (probability 1/3), where the upper end closes in.
  const NgmDistributionBeta beta(0.5, 0.5, SEED);
  EXPECT_EQ(beta.getInvCdf(0.5), 0.5);
  EXPECT_NEAR(beta.getInvCdf(0.25), 0.25, 1e-5);
  EXPECT_NEAR(beta.getCdf(beta.getInvCdf(0.25)), 1. / 3., 1e-4);
  EXPECT_EQ(beta.getInvCdf(0.9995), 1.);
}

TEST(NgmADistribution, TransformationsOfLognormalAndPower)
{
  NbdVariableDetails details;
  const NgmDistributionLognormal lognormal(0., 1., 2., SEED);
  EXPECT_DOUBLE_EQ(lognormal.getTransfo(3., details), std::log(5.));
  EXPECT_DOUBLE_EQ(lognormal.getInvTransfo(std::log(5.), details), 3.);
  EXPECT_EQ(lognormal.getTransfo(-2., details), NbbGlobal::D_FFFF);
  EXPECT_EQ(lognormal.getTransfo(NbbGlobal::D_FFFF, details), NbbGlobal::D_FFFF);
  EXPECT_EQ(lognormal.getInvTransfo(NbbGlobal::D_FFFF, details), NbbGlobal::D_FFFF);

  const NgmDistributionPower power(0., 1., 0.5, SEED);
  EXPECT_DOUBLE_EQ(power.getTransfo(9., details), 3.);
  EXPECT_DOUBLE_EQ(power.getInvTransfo(3., details), 9.);
  EXPECT_EQ(power.getTransfo(0., details), NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  EXPECT_EQ(power.getInvTransfo(-1., details), NbbGlobal::D_BIG_GAUSSIAN_NEGATIVE);
  EXPECT_EQ(power.getLowerBound(), 0.);

  // Percent shown for a fraction stored.
  details.setDisplayUnit(QStringLiteral("%"), NbuUnitTransfo(100.));
  EXPECT_DOUBLE_EQ(lognormal.getTransfo(0.5, details), std::log(52.));
  EXPECT_DOUBLE_EQ(power.getTransfo(0.25, details), 5.);
  EXPECT_DOUBLE_EQ(power.getInvTransfo(25., details), 0.0625);

  // Neither is sampled; laws without a transformation give the value.
  EXPECT_EQ(NgmDistributionLognormal(SEED).nextR(), 0.);
  EXPECT_EQ(NgmDistributionGaussian(SEED).getTransfo(4., details), 4.);
}

TEST(NgmADistribution, TheFirstTenNumbersAreTraced)
{
  testsupport::PrintedMessages printed;
  NgmDistributionUniformI law(0, 9, 1, NgmRandomNumberGenerator::SIZE_5, true);
  ASSERT_EQ(printed.texts.size(), 9);
  EXPECT_EQ(
      printed.texts.mid(0, 8),
      QStringList({"New distribution...", "  initial seed  = 1", "  initial size  = 5",
                   "  modulus(m)    = 2147483647", "  multiplier(a) = 16807", "  offset(b)     = 0",
                   "  quotient(q)   = 127773", "  rest(r)       = 2836"}));
  EXPECT_TRUE(printed.texts[8].startsWith("  current       = "));
  for (int i = 0; i < 15; ++i)
    law.nextI();
  ASSERT_EQ(printed.texts.size(), 19);
  EXPECT_EQ(printed.texts[9], "rn[0] = 1458777923");
  EXPECT_TRUE(printed.texts[18].startsWith("rn[9] = "));
  EXPECT_FALSE(law.isTracing());
  EXPECT_EQ(law.getNDrawn(), 15);
}

TEST(NgmADistribution, Chi2TestTellsRightFromWrong)
{
  NgmDistributionGaussian law(SEED);
  NbdVariableDouble values(QStringLiteral("g"));
  values.resizeAndFill(20001);  // one stays undefined
  for (int i = 0; i < 20000; ++i)
    values.setValue(i, law.nextR());

  double chi2 = 0., threshold = 0.;
  int df = 0;
  EXPECT_TRUE(law.isChi2TestSuccessfulForSample(values, 20, 5, &chi2, &threshold, &df));
  EXPECT_EQ(df, 19);
  EXPECT_NEAR(threshold, 30.14352720564616, 1e-4);  // 95% quantile at 19 degrees of freedom
  EXPECT_GT(chi2, 0.);
  const NgmDistributionGaussian shifted(0.1, 1., SEED);
  EXPECT_FALSE(shifted.isChi2TestSuccessfulForSample(values, 20, 5, nullptr, nullptr, nullptr));

  // 20 classes of 1000 are joined by three, the last one taking five; the statistic is recomputed.
  law.isChi2TestSuccessfulForSample(values, 20, 2500, &chi2, &threshold, &df);
  EXPECT_EQ(df, 5);
  std::vector<int> counts(6, 0);
  for (int i = 0; i < 20000; ++i)
    ++counts[std::min(std::size_t(5), std::size_t(law.getCdf(values.getValue(i)) * 20. / 3.))];
  double expected = 0.;
  for (int group = 0; group < 6; ++group) {
    const double mean = group < 5 ? 3000. : 5000.;
    expected += (counts[std::size_t(group)] - mean) * (counts[std::size_t(group)] - mean) / mean;
  }
  EXPECT_NEAR(chi2, expected, 1e-9);
  EXPECT_FALSE(law.isChi2TestSuccessfulForSample(values, 20, 15000, nullptr, nullptr, &df));
  EXPECT_EQ(df, 0);
}
