#include "geos/fit/NgmAngleOptimizable.h"

#include <gtest/gtest.h>

#include "basic/base/NbbAMessage.h"
#include "geos/fit/NgmIAngleGrid.h"
#include "geos/fit/NgmOptimizerFoxleg.h"

#include <cmath>
#include <vector>

namespace {

class Ring : public NgmIAngleGrid
{
public:
  struct Value
  {
    double azimuth, dip, distance;
  };
  explicit Ring(std::vector<Value> values) : _values(std::move(values)) {}
  int getNNeighbors(int) const override { return int(_values.size()); }
  bool getNeighbor(int, int rank, double &azimuth, double &dip, double &distance) const override
  {
    const Value &value = _values[std::size_t(rank)];
    azimuth = value.azimuth;
    dip = value.dip;
    distance = value.distance;
    return value.distance >= 0.;
  }

private:
  std::vector<Value> _values;
};

NgmAngleOptimizableObject interpolated(const Ring &ring)
{
  NgmAngleOptimizable optimizable;
  optimizable.setGrid(&ring);
  NgmOptimizerFoxleg optimizer;
  optimizer.setOptimizable(&optimizable, false);
  optimizer.runOptimizer(true);
  EXPECT_TRUE(optimizer.isCompleted()) << qPrintable(optimizer.getErrorMessage());
  return {optimizable.getInterpolatedAzimuth(), optimizable.getInterpolatedDip()};
}

}  // namespace

// The tolerance is that of the score at which a fit stops.
TEST(NgmAngleOptimizable, TakesTheMiddleOfTwoLines)
{
  const NgmAngleOptimizableObject middle = interpolated(Ring({{40., 0., 1.}, {80., 0., 1.}}));
  EXPECT_NEAR(std::fmod(middle.azimuth, 180.), 60., 0.1);
  EXPECT_NEAR(middle.dip, 0., 0.1);
}

TEST(NgmAngleOptimizable, DoesNotMindTheSenseOfALine)
{
  const NgmAngleOptimizableObject middle =
      interpolated(Ring({{350., 10., 1.}, {190., -10., 1.}, {0., 0., -1.}}));
  // The second is (10, 10) turned round; the third is undefined.
  EXPECT_NEAR(std::sin(middle.azimuth * 0.017453292519943295), 0., 0.004);
  EXPECT_NEAR(std::fabs(middle.dip), 10.15, 0.3);
}

TEST(NgmAngleOptimizable, TakesTheValueAtTheTarget)
{
  const NgmAngleOptimizableObject angles =
      interpolated(Ring({{20., 30., 0.}, {120., -50., 1.}, {220., 5., 2.}}));
  // As a line: the opposite of (20, 30) is (200, -30).
  const bool isTurned = angles.azimuth > 180.;
  EXPECT_NEAR(angles.azimuth, isTurned ? 200. : 20., 1e-6);
  EXPECT_NEAR(angles.dip, isTurned ? -30. : 30., 1e-6);
}

TEST(NgmAngleOptimizable, FailsWithoutNeighbors)
{
  const Ring ring({{0., 0., -1.}});
  NgmAngleOptimizable optimizable;
  optimizable.setGrid(&ring);
  NgmOptimizerFoxleg optimizer;
  optimizer.setOptimizable(&optimizable, false);
  optimizer.runOptimizer(true);
  EXPECT_EQ(optimizer.getErrorMessage(), QStringLiteral("No defined angle around target 0"));
}
