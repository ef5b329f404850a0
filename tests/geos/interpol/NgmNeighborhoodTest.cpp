#include "geos/interpol/NgmNeighborhood.h"

#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

TEST(NgmNeighborhood, IsUniqueOrMovingWithLevels)
{
  NgmNeighborhood unique;
  EXPECT_TRUE(unique.isUnique());
  EXPECT_EQ(
      testsupport::errorOf([&] { unique.getNeighborhoodMoving(); }),
      QStringLiteral("NgmNeighborhood: cannot get moving neighborhood because it is unique."));

  NgmNeighborhoodMoving parameters;
  parameters.setSectors(4, 5, false);
  NgmNeighborhood moving(parameters);
  moving.addNestedParam({NbgVector3D(2., 2., 2.), 3, -1, -1, QStringLiteral("wide")});
  NgmNeighborhood copy(moving);
  EXPECT_EQ(copy, moving);
  EXPECT_NE(copy, unique);
  EXPECT_NE(unique, copy);

  // Name and code of a level do not count.
  moving.clearNestedParams();
  EXPECT_NE(copy, moving);
  moving.addNestedParam({NbgVector3D(2., 2., 2.), 3, -1, 3, QString()});
  EXPECT_EQ(copy, moving);

  parameters.setSectors(4, 6, false);
  copy.setMoving(parameters);
  EXPECT_NE(copy, moving);
  EXPECT_EQ(moving.getNeighborhoodMoving().getMaximumNumberPerSector(), 5);
  EXPECT_TRUE(moving.debug(0).contains(QStringLiteral("Nested params 0 : \n- factor : ")));

  moving.setUnique();
  EXPECT_FALSE(moving.hasNestedParams());
  EXPECT_EQ(moving, unique);
  copy = unique;
  EXPECT_EQ(copy.debug(0), QStringLiteral("Unique: true\n"));
}
