#include "fit/private/NgmBoundedQuadratic.h"

#include <gtest/gtest.h>

#include "support/Random.h"

#include <algorithm>
#include <cmath>

using testsupport::normal;
using testsupport::uniform;

namespace {

struct Problem
{
  int n;
  std::vector<double> hessian, gradient, lower, upper;

  /// H = A'A of `rows` random rows.
  Problem(std::uint64_t seed, int size, int rows)
      : n(size), hessian(std::size_t(size * size)), gradient(std::size_t(size))
  {
    std::vector<double> a(std::size_t(rows * n));
    for (std::size_t k = 0; k < a.size(); ++k)
      a[k] = normal(seed, k);
    for (int i = 0; i < n; ++i) {
      gradient[std::size_t(i)] = 0.;
      for (int k = 0; k < rows; ++k)
        gradient[std::size_t(i)] += a[std::size_t(k * n + i)] * normal(seed + 1, std::uint64_t(k));
      for (int j = 0; j < n; ++j) {
        double sum = 0.;
        for (int k = 0; k < rows; ++k)
          sum += a[std::size_t(k * n + i)] * a[std::size_t(k * n + j)];
        hessian[std::size_t(i + j * n)] = sum;
      }
      lower.push_back(-uniform(seed + 2, std::uint64_t(i), 0., 0.6));
      upper.push_back(uniform(seed + 3, std::uint64_t(i), 0., 0.6));
    }
  }

  double slope(const std::vector<double> &d, int i) const
  {
    double sum = gradient[std::size_t(i)];
    for (int j = 0; j < n; ++j)
      sum += hessian[std::size_t(i + j * n)] * d[std::size_t(j)];
    return sum;
  }
};

}  // namespace

// The conditions of Karush, Kuhn and Tucker are necessary and sufficient for a convex problem.
TEST(NgmBoundedQuadratic, MeetsTheOptimalityConditions)
{
  for (std::uint64_t seed = 0; seed < 100; ++seed) {
    const int n = 1 + int(seed % 40);
    const Problem problem(1000 * seed, n, seed % 3 == 0 ? std::max(1, n / 2) : n + 5);
    std::vector<double> move(std::size_t(n), 0.);
    NgmBoundedQuadratic quadratic;
    ASSERT_TRUE(quadratic.minimize(n, problem.hessian.data(), problem.gradient.data(),
                                   problem.lower.data(), problem.upper.data(), move.data()))
        << seed;
    // The ridge leaves a slope of about 1e-10 times the diagonal.
    const double tolerance = 1e-7 * n;
    for (int i = 0; i < n; ++i) {
      const std::size_t k = std::size_t(i);
      ASSERT_GE(move[k], problem.lower[k]);
      ASSERT_LE(move[k], problem.upper[k]);
      const double slope = problem.slope(move, i);
      EXPECT_TRUE(move[k] == problem.lower[k] || slope <= tolerance) << seed << " " << i;
      EXPECT_TRUE(move[k] == problem.upper[k] || slope >= -tolerance) << seed << " " << i;
    }
  }
}

TEST(NgmBoundedQuadratic, LeavesAloneWhatDoesNotMatter)
{
  const double hessian[] = {2., 0., 0., 0.};
  const double gradient[] = {-1., 0.};
  const double lower[] = {-1., -1.};
  const double upper[] = {1., 1.};
  double move[2];
  NgmBoundedQuadratic quadratic;
  ASSERT_TRUE(quadratic.minimize(2, hessian, gradient, lower, upper, move));
  EXPECT_NEAR(move[0], 0.5, 1e-9);
  EXPECT_EQ(move[1], 0.);
}
