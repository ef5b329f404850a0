#include "geos/interpol/NgmNeighborhoodMoving.h"

#include "basic/geom/NbgGeomEllipsoid.h"

#include <gtest/gtest.h>

TEST(NgmNeighborhoodMoving, CountsItsNeighbors)
{
  NgmNeighborhoodMoving neighborhood;
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 16);
  neighborhood.setSectors(4, 5, true);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 40);
  neighborhood.setRuleMaximumNumber(true, 30);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 30);
  neighborhood.setRuleMinimumNumber(true, 50);
  EXPECT_EQ(neighborhood.getMaximumNeighborsCount(), 50);
  neighborhood.setRuleMinimumNumber(true, -3);
  EXPECT_EQ(neighborhood.getMinimumNumber(), 0);
  EXPECT_FALSE(neighborhood.isRuleMinimumNumber());
}

TEST(NgmNeighborhoodMoving, ChecksItsParameters)
{
  struct Case
  {
    int dimension;
    const char *error;
    std::function<void(NgmNeighborhoodMoving &)> change;
  };
  const auto size = [](double x, double y, double z) {
    return [=](NgmNeighborhoodMoving &n) { n.setEllipseSize(NbgVector3D(x, y, z)); };
  };
  const Case cases[] = {
      {3, nullptr, [](NgmNeighborhoodMoving &) {}},
      {1, "- Ellipsoid size along X cannot be null\n", size(0., 1., 1.)},
      {2, "- Ellipsoid size along Y cannot be null\n", size(1., 1e-11, 1.)},
      {1, nullptr, size(1., 0., 0.)},
      {3, "- Ellipsoid size along Z cannot be null\n", size(1., 1., 0.)},
      {2, nullptr, size(1., 1., 0.)},
      {2, "- Splitting sectors only available in 3D\n",
       [](NgmNeighborhoodMoving &n) { n.setSectors(1, 16, true); }},
      {2, "- Sector number cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) {
         n.setSectors(0, 16, false);
         n.setRuleMinimumNumber(false, 0);
       }},
      {2, "- Maximum number of samples per sector cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) {
         n.setSectors(1, 0, false);
         n.setRuleMinimumNumber(false, 0);
       }},
      {2, "- Maximum number of samples cannot be negative or null\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleMaximumNumber(true, 0); }},
      {2,
       "- Total number of samples in sectors (maximum number * sectors number) must be greater or "
       "equal than minimum number of samples\n",
       [](NgmNeighborhoodMoving &n) { n.setRuleMinimumNumber(true, 17); }},
  };
  for (const Case &wrong : cases) {
    NgmNeighborhoodMoving neighborhood;
    wrong.change(neighborhood);
    QStringList errors = {QStringLiteral("left over")};
    QStringList warnings;
    EXPECT_EQ(neighborhood.checkParameters(wrong.dimension, errors, warnings), !wrong.error);
    EXPECT_EQ(errors.join(QString()).toStdString(), wrong.error ? wrong.error : "");
  }
}

TEST(NgmNeighborhoodMoving, ComparesWhatIsInForce)
{
  NgmNeighborhoodMoving a;
  NgmNeighborhoodMoving b;
  b.setRuleMaximumNumber(false, 12);
  EXPECT_EQ(a, b);
  a.setRuleMaximumNumber(true, 100);
  b.setRuleMaximumNumber(true, 12);
  EXPECT_NE(a, b);
  b = a;
  EXPECT_EQ(a, b);
  b.setEllipseRotation(NbgRotation(10., 0., 0.));
  EXPECT_NE(a, b);

  a.setEllipseSize(NbgVector3D(10., 4., 2.));
  EXPECT_TRUE(a.getEllipsoid().isIncluded(NbgVector3D(9.9, 0., 0.)));
  EXPECT_FALSE(a.getEllipsoid().isIncluded(NbgVector3D(0., 4.1, 0.)));
}
