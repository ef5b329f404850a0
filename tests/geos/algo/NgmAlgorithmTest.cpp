#include "geos/algo/NgmAlgorithm.h"

#include <gtest/gtest.h>

#include "support/Random.h"

#include <algorithm>
#include <cmath>

using testsupport::uniform;

TEST(NgmAlgorithm, CubicWithKnownRootsGivesThemInOrder)
{
  for (std::uint64_t seed = 0; seed < 200; ++seed) {
    double r[3];
    for (std::uint64_t i = 0; i < 3; ++i)
      r[i] = uniform(11, 3 * seed + i, -10., 10.);
    std::sort(r, r + 3);
    if (r[1] - r[0] < 0.01 || r[2] - r[1] < 0.01)
      continue;
    const double a = uniform(12, seed, 0.1, 5.);
    const QVector<double> roots = NgmAlgorithm::rootsP3(
        a, -a * (r[0] + r[1] + r[2]), a * (r[0] * r[1] + r[0] * r[2] + r[1] * r[2]),
        -a * r[0] * r[1] * r[2]);
    ASSERT_EQ(roots.size(), 3) << seed;
    // A root moves by rounding / slope, and slopes are at least 1e-4 * 0.01.
    for (int i = 0; i < 3; ++i)
      EXPECT_NEAR(roots[i], r[i], 1e-8) << seed;
  }
}

TEST(NgmAlgorithm, CubicWithOneRealRoot)
{
  // (x - 2)(x^2 + x + 5).
  QVector<double> roots = NgmAlgorithm::rootsP3(1., -1., 3., -10.);
  ASSERT_EQ(roots.size(), 1);
  EXPECT_NEAR(roots[0], 2., 1e-14);
  roots = NgmAlgorithm::rootsP3(-2., 0., 0., 54.);
  ASSERT_EQ(roots.size(), 1);
  EXPECT_NEAR(roots[0], 3., 1e-14);
}

TEST(NgmAlgorithm, RepeatedRootsAppearOnce)
{
  // (x - 1)^2 (x + 2) and (x - 4)^3; a double root carries half of the digits.
  const QVector<double> two = NgmAlgorithm::rootsP3(1., 0., -3., 2.);
  ASSERT_EQ(two.size(), 2);
  EXPECT_NEAR(two[0], -2., 1e-14);
  EXPECT_NEAR(two[1], 1., 1e-7);
  const QVector<double> one = NgmAlgorithm::rootsP3(1., -12., 48., -64.);
  ASSERT_EQ(one.size(), 1);
  EXPECT_NEAR(one[0], 4., 1e-4);
}

TEST(NgmAlgorithm, LeadingZerosGiveTheEquationOfLowerDegree)
{
  EXPECT_EQ(NgmAlgorithm::rootsP3(0., 1., -5., 6.), (QVector<double>{2., 3.}));
  EXPECT_EQ(NgmAlgorithm::rootsP3(0., 0., 2., -8.), (QVector<double>{4.}));
  EXPECT_TRUE(NgmAlgorithm::rootsP3(0., 1., 0., 1.).isEmpty());
  EXPECT_TRUE(NgmAlgorithm::rootsP3(0., 0., 0., 3.).isEmpty());
  // Without cancellation: roots 1e-8 and 1e8.
  const QVector<double> wide = NgmAlgorithm::rootsP3(0., 1., -(1e8 + 1e-8), 1.);
  EXPECT_NEAR(wide[0] * 1e8, 1., 1e-12);
}
