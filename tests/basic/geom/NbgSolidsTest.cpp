#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgEDimension.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/geom/NbgGeomEllipsoid.h"
#include "basic/geom/NbgGeomEllipticCylinder.h"
#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

#include <random>

TEST(NbgBox, IsInvalidUntilExtended)
{
  NbgBox box;
  EXPECT_FALSE(box.isValid());
  EXPECT_FALSE(box.isInside(NbgVector3D::Null));
  EXPECT_EQ(box.getDiagonalLength(), 0.);
  box.extendWith(NbgVector3D::Undefined);
  box.extendWith(NbgBox());
  EXPECT_FALSE(box.isValid());

  box.extendWith(NbgVector3D(1., 2., 3.));
  EXPECT_TRUE(box.isValid());
  EXPECT_EQ(box.getSize(), NbgVector3D::Null);
  box.extendWith(NbgVector3D(-1., 5., 3.));
  EXPECT_EQ(box.getCenter(), NbgVector3D(0., 3.5, 3.));
  const NbgBox before = box;
  box.extendWith(NbgBox());
  EXPECT_EQ(box, before);
}

TEST(NbgBox, BordersCountAndCornersAreNumberedByBits)
{
  const NbgBox box({0., 0., 0.}, {3., 4., 12.});
  EXPECT_EQ(box.getDiagonalLength(), 13.);
  for (int rank = 0; rank < 8; ++rank)
    EXPECT_TRUE(box.isInside(box.getCorner(rank)));
  EXPECT_EQ(box.getCorner(5), NbgVector3D(3., 0., 12.));
  EXPECT_THROW(box.getCorner(8), NbeProgrammingError);
  EXPECT_TRUE(box.intersects(NbgBox({3., 4., 12.}, {5., 5., 15.})));
  EXPECT_FALSE(box.intersects(NbgBox({3.1, 0., 0.}, {5., 5., 15.})));
  EXPECT_FALSE(box.intersects(NbgBox()));

  NbgBox larger = box;
  larger.enlarge(1.);
  EXPECT_EQ(larger, NbgBox({-1., -1., -1.}, {4., 5., 13.}));
  larger.enlarge(-3.);
  EXPECT_FALSE(larger.isValid());
}

TEST(NbgBox, StreamsComeBackAndDamagedOnesAreRefused)
{
  test::fuzzSerialization(NbgBox({1., 2., 3.}, {4., 5., 6.}));
  NbgBox invalid, target({1., 2., 3.}, {4., 5., 6.});
  test::fromBytes(test::toBytes(invalid), target);
  EXPECT_EQ(target, invalid);
}

TEST(NbgAGeomSolid, BordersAreInside)
{
  const NbgVector3D center(10., 20., 30.), radii(1., 2., 4.);
  NbgGeomCuboid cuboid;
  NbgGeomEllipsoid ellipsoid;
  NbgGeomEllipticCylinder cylinder;
  for (NbgAGeomSolid *solid :
       std::initializer_list<NbgAGeomSolid *>{&cuboid, &ellipsoid, &cylinder}) {
    solid->setCenter(center);
    solid->setRadius(radii);
    EXPECT_EQ(solid->getSize(), NbgVector3D(2., 4., 8.));
    for (int axis = 0; axis < 3; ++axis) {
      NbgVector3D end;
      end[axis] = radii[axis];
      EXPECT_TRUE(solid->isIncluded(center + end));
      EXPECT_TRUE(solid->isIncluded(center - end));
      EXPECT_FALSE(solid->isIncluded(center + 1.0001 * end));
    }
    EXPECT_FALSE(solid->isIncluded(NbgVector3D::Undefined));
  }
  EXPECT_TRUE(cuboid.isIncluded(center + radii));
  EXPECT_FALSE(ellipsoid.isIncluded(center + radii));
  EXPECT_TRUE(cylinder.isIncluded(center + NbgVector3D(0.5, 1.5, 4.)));
  EXPECT_FALSE(cylinder.isIncluded(center + NbgVector3D(0.75, 1.5, 4.)));
}

TEST(NbgAGeomSolid, ShapesTurnWithTheirRotation)
{
  // Against the same test on points brought into the frame by hand.
  const NbgVector3D center(1., 2., 3.), size(6., 3., 2.);
  const NbgRotation rotation(35., 50., -20.);
  const NbgGeomCuboid cuboid(center, size, rotation);
  const NbgGeomEllipsoid ellipsoid(center, size, rotation);
  std::mt19937 generator(8);
  std::uniform_real_distribution<double> local(-4., 4.);
  int nInside = 0;
  for (int draw = 0; draw < 3000; ++draw) {
    const NbgVector3D p(local(generator), local(generator), local(generator));
    const NbgVector3D point = center + p.x() * rotation.getAxisX() + p.y() * rotation.getAxisY() +
                              p.z() * rotation.getAxisZ();
    const double q = p.x() * p.x() / 9. + p.y() * p.y() / 2.25 + p.z() * p.z();
    EXPECT_EQ(cuboid.isIncluded(point),
              std::fabs(p.x()) <= 3. && std::fabs(p.y()) <= 1.5 && std::fabs(p.z()) <= 1.);
    EXPECT_EQ(ellipsoid.isIncluded(point), q <= 1.);
    nInside += q <= 1.;
    if (cuboid.isIncluded(point)) {
      EXPECT_TRUE(cuboid.getBoundingBox().isInside(point));
    }
  }
  EXPECT_GT(nInside, 20);
}

TEST(NbgAGeomSolid, ACuboidIsInWhenItsCornersAre)
{
  const NbgGeomEllipsoid ball({0., 0., 0.}, {10., 10., 10.});
  EXPECT_TRUE(ball.isIncluded(NbgGeomCuboid({0., 0., 0.}, {6., 8., 0.})));
  EXPECT_FALSE(ball.isIncluded(NbgGeomCuboid({0., 0., 0.}, {6., 8., 0.1})));
  EXPECT_FALSE(ball.isIncluded(NbgGeomCuboid({0.1, 0., 0.}, {6., 8., 0.})));
  // Seven corners inside are not enough.
  const NbgGeomCuboid outer({0., 0., 0.}, {2., 2., 2.});
  const NbgGeomCuboid turned({0.1, 0., 0.}, {1.9, 1.9, 1.9}, NbgRotation(5., 0., 0.));
  EXPECT_FALSE(outer.isIncluded(turned));
}

TEST(NbgAGeomSolid, ExtendsOnBothSidesAndKnowsItsApexes)
{
  NbgGeomCuboid cuboid;
  cuboid.setCenter({1., 1., 0.});
  cuboid.extend({2., 3., 0.});
  EXPECT_EQ(cuboid.getSize(), NbgVector3D(4., 6., 0.));
  EXPECT_TRUE(cuboid.isValid());
  EXPECT_TRUE(cuboid.isIncluded(NbgVector3D(3., 4., 0.)));
  EXPECT_FALSE(cuboid.isIncluded(NbgVector3D(3., 4., 1e-9)));
  EXPECT_EQ(cuboid.getApex(0), NbgVector3D(-1., -2., 0.));
  EXPECT_EQ(cuboid.getApex(3), NbgVector3D(3., 4., 0.));
  EXPECT_THROW(cuboid.getApex(-1), NbeProgrammingError);
  EXPECT_EQ(cuboid.getBoundingBox(), NbgBox({-1., -2., 0.}, {3., 4., 0.}));
  cuboid.extend({-3., 0., 0.});
  EXPECT_FALSE(cuboid.isValid());
}

TEST(NbgEDimension, IsFoundByItsNumberOfAxes)
{
  EXPECT_EQ(NbgEDimension::fromNDim(2), NbgEDimension::DIM_2D);
  EXPECT_TRUE(NbgEDimension::DIM_3D.is3D());
  EXPECT_THROW(NbgEDimension::fromNDim(4), NbeProgrammingError);
}
