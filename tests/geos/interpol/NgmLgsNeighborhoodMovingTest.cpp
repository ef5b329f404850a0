#include "geos/interpol/NgmLgsNeighborhoodMoving.h"

#include "basic/data/NbdAVariableNumeric.h"

#include <gtest/gtest.h>

namespace {

void add(NbdDataTable &table, const QString &role, const QVector<double> &values)
{
  table.createVariableNumeric(role)->setValues(values);
  table.adjustNSamples();
}

}  // namespace

TEST(NgmLgsNeighborhoodMoving, PatchesRadiiAndRotation)
{
  using Lgs = NgmLgsNeighborhoodMoving;
  NgmNeighborhoodMoving parameters;
  parameters.setEllipseSize(NbgVector3D(10., 20., 30.));
  parameters.setEllipseRotation(NbgRotation(5., 0., 0.));

  NbdDataTable one;
  add(one, Lgs::getRoleRadiusFactor(), {2., NbbGlobal::D_FFFF});
  Lgs isotropic(parameters);
  EXPECT_FALSE(isotropic.needPatching());
  isotropic.registerVariables(one);
  EXPECT_TRUE(isotropic.needPatching());
  for (int again = 0; again < 2; ++again) {
    EXPECT_TRUE(isotropic.patchNeighborhood(0));
    EXPECT_EQ(isotropic.getEllipseSize(), NbgVector3D(20., 40., 60.));
  }
  EXPECT_EQ(isotropic.getEllipseRotation(), parameters.getEllipseRotation());
  EXPECT_TRUE(isotropic.patchNeighborhood(1));
  EXPECT_EQ(isotropic.getEllipseSize(), NbgVector3D());
  EXPECT_FALSE(isotropic.patchNeighborhood(2));
  isotropic.unpatchNeighborhood();
  EXPECT_EQ(isotropic.getEllipseSize(), parameters.getEllipseSize());
  // The data of the targets are left as they are.
  EXPECT_TRUE(one.getVarNumericRef(Lgs::getRoleRadiusFactor()).isUndefined(1));

  NbdDataTable three;
  add(three, Lgs::getRoleRadiusFactorU(), {1., 1.});
  add(three, Lgs::getRoleRadiusFactorV(), {2., 1.});
  add(three, Lgs::getRoleRadiusFactorW(), {3., 1.});
  add(three, Lgs::getRoleRot1(), {40., 40.});
  add(three, Lgs::getRoleRot2(), {50., NbbGlobal::D_FFFF});
  add(three, Lgs::getRoleRot3(), {60., 60.});
  Lgs full(parameters);
  full.setAnglesConvention(true, 1);
  full.registerVariables(three);
  EXPECT_TRUE(full.patchNeighborhood(0));
  EXPECT_EQ(full.getEllipseSize(), NbgVector3D(10., 40., 90.));
  EXPECT_EQ(full.getEllipseRotation(), NbgRotation(40., 50., 60., 1));
  EXPECT_TRUE(full.patchNeighborhood(1));
  EXPECT_EQ(full.getEllipseRotation(), parameters.getEllipseRotation());

  full.setAnglesConvention(false, 1);
  full.setForce2D(true);
  EXPECT_TRUE(full.patchNeighborhood(0));
  EXPECT_EQ(full.getEllipseRotation(), NbgRotation(40., 0., 0.));
  EXPECT_TRUE(full.debug(0).endsWith(QStringLiteral("Has Radius : Yes\n")));
}
