#include "geos/interpol/NgmSearchPartition.h"

#include "geos/interpol/NgmBlock.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

namespace {

const QString path = QStringLiteral("interpol\\NgmSearchPartition");

}  // namespace

TEST(NgmSearchPartition, IsTheSolidAroundItsTarget)
{
  const NbgVector3D center(100., 50., 10.);
  NgmSearchPartition partition;
  partition.setTarget(NgmTarget(center));
  partition.setCuboidSize(NbgVector3D(8., 4., 2.));
  partition.setRotation(NbgRotation(90., 0., 0.));
  EXPECT_TRUE(partition.isIncluded(center + NbgVector3D(1.9, 3.9, 0.9)));
  EXPECT_FALSE(partition.isIncluded(center + NbgVector3D(3.9, 1.9, 0.9)));

  partition.setShape(NgcESolidShape::SHAPE_ELLIPSOID);
  partition.setRotation(NbgRotation());
  testsupport::expectAssertion(path, QStringLiteral("Wrong shape"),
                               [&] { partition.setCuboidSize(NbgVector3D(1., 1., 1.)); });
  partition.setEllipsoidSize(NbgVector3D(8., 4., 2.));
  EXPECT_TRUE(partition.isIncluded(center + NbgVector3D(7.9, 0., 0.)));
  EXPECT_FALSE(partition.isIncluded(center + NbgVector3D(7.9, 3.9, 0.)));

  partition.setShape(NgcESolidShape::SHAPE_ELLIPTIC_CYLINDER);
  partition.setEllipticCylinderSize(5., 2., NbbGlobal::D_FFFF);
  NgmSearchPartition copy(partition);
  copy.setCenter(NbgVector3D());
  EXPECT_TRUE(copy.isIncluded(NbgVector3D(0., 1.9, 4.9)));
  EXPECT_FALSE(copy.isIncluded(NbgVector3D(0., 2.1, 0.)));
  EXPECT_TRUE(partition.isIncluded(center + NbgVector3D(1.4, 1.4, 4.9)));
}

TEST(NgmSearchPartition, HoldsTheTargetBlock)
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(4., 4., 4.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(1, 1, 1));
  NgmSearchPartition partition;
  testsupport::expectAssertion(path,
                               QStringLiteral("Target block cell not included in search partition"),
                               [&] { partition.setTarget(NgmTarget(NbgVector3D(), block)); });
  testsupport::expectAssertion(path, QStringLiteral("Solid not constructed"),
                               [&] { partition.isIncluded(NbgVector3D()); });
  partition.setCuboidSize(NbgVector3D(4., 4., 4.));
  EXPECT_TRUE(partition.isIncluded(NbgVector3D(2., 2., 2.)));
}
