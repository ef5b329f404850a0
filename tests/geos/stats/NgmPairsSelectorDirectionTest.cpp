#include "geos/stats/NgmPairsSelectorDirection.h"

#include "basic/geom/NbgAngle.h"
#include "geos/stats/NgmVariogramDirection.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <vector>

using testsupport::errorOf;
using testsupport::expectAssertion;
using testsupport::uniform;

namespace {

const QString SOURCE = QStringLiteral("stats\\NgmPairsSelectorDirection");

/// The classes of a distance as text: "1", "0 1", "" when refused.
QString classesOf(const NgmPairsSelectorDirection &direction, double d)
{
  int first = -1;
  int last = -1;
  if (!direction.getDistClassRank(d, first, last))
    return QString();
  return first == last ? QString::number(first) : QStringLiteral("%1 %2").arg(first).arg(last);
}

NgmPairsSelectorDirection withLags(int nLag, double lag, double tolerance, int nRefined = 0,
                                   double shortLag = 0.)
{
  NgmPairsSelectorDirection direction;
  direction.setLag(nLag, lag, tolerance, nRefined, shortLag);
  return direction;
}

bool keeps(const NgmPairsSelectorDirection &direction, const NbgVector3D &h)
{
  int first = 0;
  int last = 0;
  bool positive = false;
  return direction.getLagRank(h, h.norm(), first, last, positive);
}

}  // namespace

TEST(NgmPairsSelectorDirection, LagsAreCentredAndAnUpperLimitBelongsToTheNextLag)
{
  const NgmPairsSelectorDirection direction = withLags(5, 1., 0.5);
  EXPECT_EQ(classesOf(direction, 0.), QStringLiteral("0"));
  EXPECT_EQ(classesOf(direction, 0.49), QStringLiteral("0"));
  EXPECT_EQ(classesOf(direction, 0.5), QStringLiteral("1"));
  EXPECT_EQ(classesOf(direction, 1.5), QStringLiteral("2"));
  EXPECT_EQ(classesOf(direction, 4.49), QStringLiteral("4"));
  EXPECT_EQ(direction.getMaximumDistance(), 4.5);
  EXPECT_EQ(classesOf(direction, 4.5), QString());
}

TEST(NgmPairsSelectorDirection, TheToleranceMakesLagsOverlapOrLeavesGaps)
{
  EXPECT_EQ(classesOf(withLags(5, 1., 0.6), 0.5), QStringLiteral("0 1"));
  EXPECT_EQ(classesOf(withLags(5, 1., 0.6), 0.3), QStringLiteral("0"));
  EXPECT_EQ(classesOf(withLags(5, 1., 0.4), 0.5), QString());
  EXPECT_EQ(classesOf(withLags(5, 1., 0.4), 0.7), QStringLiteral("1"));
  // At the end a pair that would overlap counts in the last lag only.
  EXPECT_EQ(classesOf(withLags(3, 1., 0.75), 2.5), QStringLiteral("2"));
}

TEST(NgmPairsSelectorDirection, LagsAreClosedBelowAndOpenAbove)
{
  // Lags and tolerances that doubles hold exactly.
  const NgmPairsSelectorDirection narrow = withLags(4, 4., 0.25);
  EXPECT_EQ(classesOf(narrow, std::nextafter(1., 0.)), QStringLiteral("0"));
  EXPECT_EQ(classesOf(narrow, 1.), QString());
  EXPECT_EQ(classesOf(narrow, std::nextafter(3., 0.)), QString());
  EXPECT_EQ(classesOf(narrow, 3.), QStringLiteral("1"));
  const NgmPairsSelectorDirection wide = withLags(4, 4., 0.75);
  EXPECT_EQ(classesOf(wide, 0.99), QStringLiteral("0"));
  EXPECT_EQ(classesOf(wide, 1.), QStringLiteral("0 1"));
  EXPECT_EQ(classesOf(wide, 3.), QStringLiteral("1"));
  EXPECT_EQ(classesOf(wide, 5.), QStringLiteral("1 2"));

  // Refined: with a gap between the short and the long lags, and with an overlap.
  const NgmPairsSelectorDirection gap = withLags(4, 4., 0.25, 2, 2.);
  EXPECT_EQ(gap.getNLagsShort(), 3);  // 1.25 * 4 / 2 = 2.5
  EXPECT_EQ(gap.getDistMaxShort(), 4.5);
  EXPECT_EQ(classesOf(gap, 3.5), QStringLiteral("2"));
  EXPECT_EQ(classesOf(gap, 4.5), QString());
  EXPECT_EQ(classesOf(gap, std::nextafter(7., 0.)), QString());
  EXPECT_EQ(classesOf(gap, 7.), QStringLiteral("3"));
  const NgmPairsSelectorDirection overlap = withLags(4, 4., 0.75, 1, 1.);
  EXPECT_EQ(overlap.getNLagsShort(), 4);  // 0.75 * 4 / 1 = 3
  EXPECT_EQ(classesOf(overlap, 0.25), QStringLiteral("0 1"));
  EXPECT_EQ(classesOf(overlap, 0.99), QStringLiteral("1"));
  // From 1 on long lags: what is left of the hidden one is in the last short class.
  EXPECT_EQ(classesOf(overlap, 1.), QStringLiteral("3 4"));
}

TEST(NgmPairsSelectorDirection, ShortLagsReplaceTheFirstLongOnesOverTheSameDistances)
{
  const NgmPairsSelectorDirection direction = withLags(6, 10., 0.5, 2, 2.);
  EXPECT_EQ(direction.getNLagsShort(), 8);
  EXPECT_EQ(direction.getNIntervals(), 12);
  EXPECT_EQ(direction.getDistMaxShort(), 15.);
  EXPECT_EQ(classesOf(direction, 0.9), QStringLiteral("0"));
  EXPECT_EQ(classesOf(direction, 1.), QStringLiteral("1"));
  EXPECT_EQ(classesOf(direction, 14.9), QStringLiteral("7"));
  EXPECT_EQ(classesOf(direction, 15.), QStringLiteral("8"));
  EXPECT_EQ(classesOf(direction, 54.9), QStringLiteral("11"));
  EXPECT_EQ(classesOf(direction, 55.), QString());
  EXPECT_EQ(direction.getIntervalCenter(7), 14.);
  EXPECT_EQ(direction.getIntervalCenter(8), 20.);
  EXPECT_EQ(direction.getIntervalCenter(11), 50.);
  expectAssertion(
      SOURCE, QStringLiteral("NgmPairsSelectorDirection::getIntervalCenter: invalid interval rank"),
      [&] { direction.getIntervalCenter(12); });
}

TEST(NgmPairsSelectorDirection, SetLagChecksItsArgumentsInOrder)
{
  EXPECT_EQ(withLags(1000, 1., 0.5).getNIntervals(), 1000);
  expectAssertion(SOURCE, QStringLiteral("Invalid number of lags"),
                  [] { withLags(1001, 0., 0.5); });
  expectAssertion(SOURCE, QStringLiteral("Invalid lag"), [] { withLags(10, 0., 0.5, -1); });
  expectAssertion(SOURCE, QStringLiteral("Invalid nRefined"), [] { withLags(10, 1., 0.5, -1); });
  expectAssertion(SOURCE,
                  QStringLiteral("Invalid number of short distance lags, check your short lag."),
                  [] { withLags(1, 10., -5., 1, 1.); });

  EXPECT_EQ(withLags(2, 10., 0.5, 7, 5.).getNLagsShort(), 4);  // two refined lags: 15 / 5 + 1
  EXPECT_EQ(withLags(5, 10., 0.5, 2, 10.).getNLagsShort(), 0);
  EXPECT_EQ(withLags(5, 10., 0.5, 2, 0.).getNIntervals(), 5);
}

TEST(NgmPairsSelectorDirection, PlaneToleranceLimitsTheAngleAndRefusesVerticalPairs)
{
  NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
  direction.setOrientation(NbgRotation(NbgAngle::fromDegrees(30.)));
  direction.setPlaneAngularToleranceDegree(20.);
  const auto at = [](double degrees, double elevation) {
    const double a = degrees * M_PI / 180.;
    const double e = elevation * M_PI / 180.;
    return NbgVector3D(3. * std::cos(a) * std::cos(e), 3. * std::sin(a) * std::cos(e),
                       3. * std::sin(e));
  };
  EXPECT_TRUE(keeps(direction, at(49.9, 80.)));
  EXPECT_TRUE(keeps(direction, at(229.9, 0.)));  // against the direction
  EXPECT_FALSE(keeps(direction, at(50.1, 0.)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(0., 0., 2.)));
  EXPECT_TRUE(keeps(direction, NbgVector3D()));  // distance 0, whatever the angle

  direction.setHeightAngularToleranceDegree(10.);
  EXPECT_TRUE(keeps(direction, at(30., 9.9)));
  EXPECT_FALSE(keeps(direction, at(30., 10.1)));
  direction.setPlaneAngularToleranceDegree(90.);
  EXPECT_FALSE(keeps(direction, NbgVector3D(0., 0., 2.)));
  EXPECT_TRUE(keeps(direction, at(-60., 5.)));
}

TEST(NgmPairsSelectorDirection, ACosineAtTheToleranceIsInside)
{
  // At 0 degrees both the tolerance's cosine and that of a pair along the axis are 1 exactly.
  NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
  direction.setPlaneAngularToleranceDegree(0.);
  EXPECT_TRUE(keeps(direction, NbgVector3D(3., 0., 0.)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(3., 1e-6, 0.)));
}

TEST(NgmPairsSelectorDirection, ConeToleranceLimitsTheAngleAroundTheAxis)
{
  NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
  direction.setOrientation(NbgRotation(0., -90., 0.));  // the axis is up
  direction.setAngularToleranceDegree(30.);
  EXPECT_TRUE(direction.isIrregular());
  EXPECT_TRUE(keeps(direction, NbgVector3D(0., 0.57, -1.)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(0., 0.58, -1.)));
  direction.setAngularToleranceDegree(90.);
  EXPECT_FALSE(direction.isOmnidirectional());
  EXPECT_TRUE(keeps(direction, NbgVector3D(1., 0., 0.)));
}

TEST(NgmPairsSelectorDirection, SlicesIncludeTheirLimitsAndTheRadiusReplacesTheOthers)
{
  NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
  direction.setSlicingWidth(true, 1.);
  EXPECT_FALSE(direction.isOmnidirectional());
  direction.setSlicingHeight(true, 0.5);
  EXPECT_TRUE(keeps(direction, NbgVector3D(3., -1., 0.5)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(3., 1.01, 0.)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(3., 0., -0.51)));
  direction.setSlicingRadius(true, 5.);
  EXPECT_TRUE(keeps(direction, NbgVector3D(3., 3., -4.)));
  EXPECT_FALSE(keeps(direction, NbgVector3D(3., 3.01, 4.)));

  NgmPairsSelectorDirection unused = withLags(10, 1., 0.5);
  unused.setSlicingWidth(false, 1.);
  EXPECT_TRUE(unused.isOmnidirectional());
  unused.setSlicingRadius(false, 1.);
  EXPECT_FALSE(unused.isOmnidirectional());
}

TEST(NgmPairsSelectorDirection, TheSenseFollowsTheAxis)
{
  NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
  direction.setPlaneAngularToleranceDegree(90.);
  direction.setSlicingWidth(true, 100.);
  int first = 0;
  int last = 0;
  bool positive = true;
  EXPECT_TRUE(direction.getLagRank(NbgVector3D(-2., 1., 0.), std::sqrt(5.), first, last, positive));
  EXPECT_FALSE(positive);
  EXPECT_EQ(first, 2);
  EXPECT_TRUE(direction.getLagRank(NbgVector3D(0., 1., 0.), 1., first, last, positive));
  EXPECT_TRUE(positive);
}

TEST(NgmPairsSelectorDirection, ProposedPairsHoldAllThatAreKept)
{
  constexpr int n = 4000;
  std::vector<double> h[3];
  for (int i = 0; i < n; ++i) {
    // Many on the grid, to meet the limits exactly.
    for (int k = 0; k < 3; ++k)
      h[k].push_back(i % 2 ? uniform(5 + k, i, -3., 3.) : std::floor(uniform(5 + k, i, -3., 4.)));
  }
  for (const double tolerance : {0., 22.5, 45., 80., 90.}) {
    for (const bool cone : {false, true}) {
      NgmPairsSelectorDirection direction = withLags(10, 1., 0.5);
      direction.setOrientation(NbgRotation(45., 0., 0.));
      if (cone)
        direction.setAngularToleranceDegree(tolerance);
      else
        direction.setPlaneAngularToleranceDegree(tolerance);
      std::vector<int> positions(n);
      positions.resize(
          direction.proposePairs(n, h[0].data(), h[1].data(), h[2].data(), positions.data()));
      int nKept = 0;
      int next = 0;
      for (int i = 0; i < n; ++i) {
        const bool proposed = next < int(positions.size()) && positions[next] == i;
        next += proposed;
        if (!keeps(direction, NbgVector3D(h[0][i], h[1][i], h[2][i])))
          continue;
        ++nKept;
        EXPECT_TRUE(proposed) << tolerance << " " << cone << " " << i;
      }
      EXPECT_GT(nKept, 0);
      // What is proposed in vain: vertical pairs and cosines within rounding of the limit.
      if (tolerance > 0. && tolerance < 90.) {
        EXPECT_LE(int(positions.size()), nKept + n / 20);
      }
    }
  }
}

TEST(NgmPairsSelectorDirection, ScalingDividesLengthsAndTheLagTolerance)
{
  NgmPairsSelectorDirection direction = withLags(6, 10., 0.5, 2, 2.);
  direction.setSlicingRadius(true, 8.);
  direction.normalizeDirection(4.);
  EXPECT_EQ(direction.getLagLong(), 2.5);
  EXPECT_EQ(direction.getTolLag(), 0.125);
  EXPECT_EQ(direction.getLagShort(), 0.5);
  EXPECT_EQ(direction.getMaximumDistance(), 13.75);
  EXPECT_EQ(direction.getDistMaxShort(), 3.75);
  EXPECT_FALSE(keeps(direction, NbgVector3D(0., 2.01, 0.)));
  EXPECT_EQ(direction.getSlicingRadius(), 2.);
}

TEST(NgmVariogramDirection, DefaultsAreTenRoundLagsOverAFifthOfTheField)
{
  const NgmVariogramDirection direction(1000.);
  EXPECT_EQ(direction.getLag(), 20.);
  EXPECT_EQ(direction.getDistanceMax(), 200.);
  EXPECT_EQ(direction.getRefinedLag(), 4.);
  EXPECT_EQ(direction.getTolerance(), 0.5);
  EXPECT_EQ(direction.getSlicingWidth(), NbbGlobal::D_FFFF);

  // 740 / 50 = 14.8 rounds to 10, too short: 2 x 10.
  EXPECT_EQ(NgmVariogramDirection(740.).getLag(), 20.);
  for (const double size : {24., 1., 0.37, 1e-9})
    EXPECT_GE(NgmVariogramDirection(size).getDistanceMax(), size / 5.) << size;
  EXPECT_EQ(NgmVariogramDirection(0.).getLag(), 0.);
  EXPECT_LT(NgmVariogramDirection(-75.).getLag(), 0.);
}
