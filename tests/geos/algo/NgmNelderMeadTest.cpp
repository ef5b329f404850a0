#include "geos/algo/NgmNelderMead.h"

#include <gtest/gtest.h>

#include "basic/error/NbeProgrammingError.h"

#include <cmath>
#include <limits>

TEST(NgmNelderMead, FindsTheMinimumOfACurvedValley)
{
  const auto rosenbrock = [](const std::vector<double> &x) {
    return 100. * std::pow(x[1] - x[0] * x[0], 2) + std::pow(1. - x[0], 2);
  };
  std::vector<double> point{-1.2, 1.};
  NgmNelderMead simplex;
  simplex.setNbMaxEvaluations(4000);
  const double value = simplex.minimize(rosenbrock, 0.5, point);
  EXPECT_TRUE(simplex.hasConverged());
  EXPECT_LT(value, 1e-10);
  EXPECT_NEAR(point[0], 1., 1e-4);
  EXPECT_NEAR(point[1], 1., 1e-4);
}

TEST(NgmNelderMead, TreatsWhatIsNotANumberAsAWall)
{
  const auto halfLine = [](const std::vector<double> &x) {
    return x[0] < 1. ? std::numeric_limits<double>::quiet_NaN() : x[0] * x[0];
  };
  std::vector<double> point{3.};
  NgmNelderMead simplex;
  simplex.minimize(halfLine, 1., point);
  EXPECT_NEAR(point[0], 1., 1e-4);
  EXPECT_GE(point[0], 1.);
}

TEST(NgmNelderMead, StopsAtTheNumberOfEvaluations)
{
  const auto plane = [](const std::vector<double> &x) { return -x[0] - x[1]; };
  std::vector<double> point{0., 0.};
  NgmNelderMead simplex;
  simplex.setNbMaxEvaluations(50);
  simplex.minimize(plane, 1., point);
  EXPECT_FALSE(simplex.hasConverged());
  EXPECT_LE(simplex.getNEvaluations(), 53);
  std::vector<double> none;
  EXPECT_THROW(simplex.minimize(plane, 1., none), NbeProgrammingError);
}
