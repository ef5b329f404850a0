#include "geos/stats/NgmVariogramExp.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgAngle.h"
#include "support/Errors.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;
using testsupport::expectAssertion;

namespace {

const QString SOURCE = QStringLiteral("stats\\NgmVariogramExp");
constexpr double UNUSED = NbbGlobal::D_FFFF;

QStringList list(std::initializer_list<const char *> texts)
{
  QStringList result;
  for (const char *text : texts)
    result << QString::fromLatin1(text);
  return result;
}

}  // namespace

TEST(NgmVariogramExp, DirectionsOfAPlaneShareAGroupAndAreNamedByAzimuth)
{
  NgmVariogramExp request(false);
  request.addOmnidirectional(5, 10., 0.5, 0, 0.);
  request.addRegular2D(4, 0., 22.5, 50., 10, 100., 0.5, 2, 20.);
  ASSERT_EQ(request.getNDirections(), 5);
  EXPECT_EQ(request.getNRegularDirections(), 4);
  EXPECT_FALSE(request.isRegularDir(0));
  EXPECT_TRUE(request.isRegularDir(1));
  EXPECT_EQ(request.getMaximumDistance(), 950.);
  EXPECT_EQ(request.getColumnSize(0, true), 11);
  EXPECT_EQ(request.getColumnSize(1, false), 16);  // 8 short lags for the first 2 of 10

  const int group = request.getDirection(2).getGroupId();
  EXPECT_EQ(request.getGroupDirectionName(group), QStringLiteral("Horizontal"));
  EXPECT_EQ(request.getDirection(0).getGroupId(), group - 1);
  EXPECT_TRUE(request.getDirection(2).isUsingSlicingWidth());
  EXPECT_FALSE(request.getDirection(2).isUsingSlicingHeight());

  const NgmVariogramExpData &data = request.getData();
  EXPECT_EQ(data.getAllDirectionNames(), list({"Omnidirectional", "N90", "N45", "N0", "N135"}));
  EXPECT_EQ(data.getDirectionGroupNames(2), list({"All Directions", "Horizontal", "N45"}));
  EXPECT_EQ(data.getDirectionGroupNames(0), list({"Omnidirectional"}));
  EXPECT_EQ(data.getNLags(1), 16);
  EXPECT_TRUE(
      data.getGroupDescription(QStringLiteral("Horizontal"))
          .startsWith(QStringLiteral("Experimental Variogram Parameters (regular directions):\n")));

  expectAssertion(
      SOURCE,
      QStringLiteral("NgmVariogramExp::addRegularInPlane: trying to define multiple planes"),
      [&] { request.addRegular2D(2, 0., 45., UNUSED, 10, 1., 0.5, 0, 0.); });
  expectAssertion(SOURCE, QStringLiteral("invalid direction rank"),
                  [&] { request.getDirection(5); });
}

TEST(NgmVariogramExp, AGroupOverlapsWhenTolerancesExceedHalfTheSpacing)
{
  for (const double tolerance : {22.5, 22.6}) {
    NgmVariogramExp request(false);
    request.addRegular2D(4, 0., tolerance, UNUSED, 10, 1., 0.5, 0, 0.);
    EXPECT_EQ(request.isGroupDirectionsOverlapping(request.getDirection(0).getGroupId()),
              tolerance > 22.5);
    EXPECT_FALSE(request.isGroupDirectionsOverlapping(77));
  }
  for (const double tolerance : {22.5, 22.6}) {
    NgmVariogramExp request(true);
    for (int i = 0; i < 4; ++i)
      request.addOneRegularInPlane(NbgRotation(), 4, i, NbgRotation(NbgAngle::fromDegrees(45. * i)),
                                   10, 1., 0.5, i == 2 ? tolerance : 22.5, 90., UNUSED, UNUSED, 0,
                                   0.);
    EXPECT_EQ(request.isGroupDirectionsOverlapping(request.getDirection(0).getGroupId()),
              tolerance > 22.5);
    EXPECT_EQ(request.getNRegularDirections(), 4);
  }
}

TEST(NgmVariogramExp, OneRegularDirectionAtATimeChecksItsPlane)
{
  NgmVariogramExp request(true);
  const auto add = [&](int nDir, int iDir) {
    request.addOneRegularInPlane(NbgRotation(), nDir, iDir, NbgRotation(), 10, 1., 0.5, 20., 90.,
                                 UNUSED, UNUSED, 0, 0.);
  };
  expectAssertion(SOURCE, QStringLiteral("NgmVariogramExp::addOneRegularInPlane: nDir==0"),
                  [&] { add(0, 0); });
  add(2, 0);
  expectAssertion(
      SOURCE,
      QStringLiteral("NgmVariogramExp::addOneRegularInPlane: trying to define multiple planes"),
      [&] { add(2, 0); });
}

TEST(NgmVariogramExp, WithoutAngularToleranceTheNameIsThatOfThePlane)
{
  const auto nameOf = [](bool is3d, const NbgRotation &plane) {
    NgmVariogramExp request(is3d);
    request.addRegularInPlane(plane, 1, 90., 90., UNUSED, UNUSED, 10, 1., 0.5, 0, 0.);
    return request.getDirection(0).getDirectionName();
  };
  EXPECT_EQ(nameOf(false, NbgRotation()), QStringLiteral("Omnidirectional"));
  EXPECT_EQ(nameOf(true, NbgRotation()), QStringLiteral("Horizontal"));
  EXPECT_EQ(nameOf(true, NbgRotation(0., 30., 0.)), QStringLiteral("Ref. Plane"));
}

TEST(NgmVariogramExp, NormalFreeAndIrregularDirectionsHaveTheirGroups)
{
  const NbgRotation tilted(0., 30., 0.);
  NgmVariogramExp request(true);
  NgmPairsSelectorDirection normal;
  normal.setAngularToleranceDegree(10.);
  request.addDirectionNormal(normal, NbgRotation());
  request.addDirectionNormal(normal, tilted);
  request.addIrregularDirections(tilted, {NbgRotation(), NbgRotation(20., 0., 0.)}, list({"first"}),
                                 15., 4., 10, 1., 0.5, 0, 0.);
  request.addOneFreeDirection(tilted, 0, NbgRotation(), QStringLiteral("free 1"), 10, 1., 0.5, 10.,
                              UNUSED, 0, 0.);
  request.addOneFreeDirection(tilted, 1, NbgRotation(), QStringLiteral("free 2"), 10, 1., 0.5, 10.,
                              UNUSED, 0, 0.);
  QStringList groups;
  for (int i = 0; i < request.getNDirections(); ++i)
    groups << request.getGroupDirectionName(request.getDirection(i).getGroupId());
  EXPECT_EQ(groups, list({"Vertical", "Normal", "Other Direction(s)", "Other Direction(s)",
                          "Free Direction(s)", "Free Direction(s)"}));
  EXPECT_FALSE(request.isGroupDirectionsOverlapping(request.getDirection(2).getGroupId()));
  EXPECT_TRUE(request.isGroupDirectionsOverlapping(request.getDirection(5).getGroupId()));
  EXPECT_TRUE(request.getDirection(3).isIrregular());
  EXPECT_EQ(request.getDirection(3).getSlicingRadius(), 4.);
  EXPECT_FALSE(request.getDirection(4).isUsingSlicingRadius());
  EXPECT_EQ(request.getData().getReferencePlaneOrientation(5, QStringLiteral("Free Direction(s)")),
            tilted);
  EXPECT_EQ(request.getNRegularDirections(), 0);
}

TEST(NgmVariogramExp, InvalidLagsLeaveTheRequestAsItWas)
{
  NgmVariogramExp request(false);
  EXPECT_THROW(request.addRegular2D(4, 0., 20., UNUSED, 10, 0., 0.5, 0, 0.), NbeProgrammingError);
  EXPECT_THROW(request.addOmnidirectional(0, 1., 0.5, 0, 0.), NbeProgrammingError);
  EXPECT_EQ(request.getNDirections(), 0);
  EXPECT_EQ(request.getData().getNDirections(), 0);
  request.addRegular2D(4, 0., 20., UNUSED, 10, 1., 0.5, 0, 0.);
  EXPECT_EQ(request.getNRegularDirections(), 4);
}

TEST(NgmVariogramExp, CurvesAreListedByValueAndTellTheSumsTheyNeed)
{
  NgmVariogramExp request(false);
  request.addVarioCalculation(NgmEVarioExp::EValue::SQRT_VARIOGRAM_OVER_MADOGRAM);
  request.addVarioCalculation(NgmEVarioExp::EValue::RODOGRAM);
  request.addVarioCalculation(NgmEVarioExp::EValue::RODOGRAM);
  ASSERT_EQ(request.getVarioCurveTypes().size(), 2);
  EXPECT_EQ(request.getVarioCurveTypes().first(), NgmEVarioExp::RODOGRAM);
  EXPECT_TRUE(request.hasVariogram());
  EXPECT_TRUE(request.hasMadogram());
  EXPECT_TRUE(request.hasRodogram());
  EXPECT_FALSE(request.hasPairwiseVariogram());
  EXPECT_FALSE(request.hasCovariance());
  request.addCovaCalculation(NgmECovaExp::EValue::CORRELOGRAM);
  EXPECT_TRUE(request.hasCovariance());

  const NgmVariogramExp copy(request);
  request.addOmnidirectional(5, 1., 0.5, 0, 0.);
  EXPECT_EQ(copy.getNDirections(), 0);
}

TEST(NgmEDirectionGroupName, GroupsOfOneDirectionAreNotMultidirectional)
{
  QString single;
  for (auto groups = NgmEDirectionGroupName::createIterator(); groups.hasNext();) {
    const NgmEDirectionGroupName &group = groups.next();
    if (!group.isMultidirectional())
      single += group.getKeyString() + QLatin1Char(' ');
  }
  EXPECT_EQ(single, QStringLiteral("OMNIDIRECTIONAL VERTICAL NORMAL U V W "));
}
