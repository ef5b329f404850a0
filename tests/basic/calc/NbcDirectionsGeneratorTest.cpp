#include "basic/calc/NbcDirectionsGenerator.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgAngle.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

double dot(const NbgVector3D &a, const NbgVector3D &b)
{
  return a.x() * b.x() + a.y() * b.y() + a.z() * b.z();
}

}  // namespace

TEST(NbcDirectionsGenerator, DirectionsOfAPlaneAreEquallySpacedFromItsUAxis)
{
  const NbgRotation plane(30., 20., -50.);
  NbcDirectionsGenerator generator;
  generator.setReferenceOrientation(plane);
  generator.createRegularInPlane(5);
  ASSERT_EQ(generator.getNDirections(), 5);
  for (int i = 0; i < 5; ++i) {
    const double angle = i * M_PI / 5.;
    const NbgVector3D expected =
        plane.localToWorld(NbgVector3D(std::cos(angle), std::sin(angle), 0.));
    EXPECT_NEAR(dot(generator.getOrientation(i).getAxisX(), expected), 1., 1e-15) << i;
    EXPECT_NEAR(dot(generator.getOrientation(i).getAxisZ(), plane.getAxisZ()), 1., 1e-15) << i;
  }
  EXPECT_THROW(generator.getOrientation(5), NbeProgrammingError);
  EXPECT_THROW(generator.createRegularInPlane(0), NbeProgrammingError);
}

TEST(NbcDirectionsGenerator, TheNormalIsTheWAxis)
{
  const NbgRotation plane(30., 20., -50.);
  NbcDirectionsGenerator generator;
  generator.setReferenceOrientation(plane);
  generator.createNormalToPlane();
  ASSERT_EQ(generator.getNDirections(), 1);
  EXPECT_NEAR(dot(generator.getOrientation(0).getAxisX(), plane.getAxisZ()), 1., 1e-15);
}

// Directions spread evenly have, as a second-order moment, a third of the identity.
TEST(NbcDirectionsGenerator, DirectionsOfSpaceAreSpreadEvenlyOverTheHalfSpace)
{
  constexpr int n = 400;
  NbcDirectionsGenerator generator;
  generator.createRegularIn3D(n);
  ASSERT_EQ(generator.getNDirections(), n);
  double moment[3][3] = {};
  for (int i = 0; i < n; ++i) {
    const NbgVector3D u = generator.getOrientation(i).getAxisX();
    EXPECT_NEAR(u.norm(), 1., 1e-12);
    EXPECT_GT(u.z(), 0.);
    const double c[3] = {u.x(), u.y(), u.z()};
    for (int a = 0; a < 3; ++a) {
      for (int b = 0; b < 3; ++b)
        moment[a][b] += c[a] * c[b] / n;
    }
  }
  for (int a = 0; a < 3; ++a) {
    for (int b = 0; b < 3; ++b)
      EXPECT_NEAR(moment[a][b], a == b ? 1. / 3. : 0., 0.01);
  }
}
