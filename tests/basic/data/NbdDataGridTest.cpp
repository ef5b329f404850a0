#include "basic/data/NbdDataGrid.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

NbgGeomGrid rotatedGeometry()
{
  NbgGeomGrid geometry = testsupport::makeGridGeometry(4, 5, 6, NbgVector3D(10., 20., 5.));
  NbgRotation rotation;
  rotation.setAngle1(25.);
  rotation.setAngle2(10.);
  geometry.setRotation(rotation);
  return geometry;
}

}  // namespace

TEST(NbdDataGrid, NodesKeepTheirBitsInEveryBlock)
{
  const NbgGeomGrid geometry = rotatedGeometry();
  NbdDataGrid grid;
  grid.setGeometry(geometry);
  EXPECT_EQ(grid.getNSamples(), 120);
  grid.setParentIntervals({1, 3}, {2, 3}, {1, 4});
  ASSERT_EQ(grid.getNSamples(), 24);
  double x[24], y[24], z[24];
  grid.getLocations(0, 24, x, y, z);
  int position = 0;
  for (int i = 1; i <= 3; ++i) {
    for (int j = 2; j <= 3; ++j) {
      for (int k = 1; k <= 4; ++k, ++position) {
        EXPECT_EQ(grid.getIJK(position), NbgIntVector3D(i, j, k));
        EXPECT_EQ(grid.getSampleNumber(position), geometry.getRankFromIJK(i, j, k) + 1);
        EXPECT_EQ(grid.getLocation(position), geometry.getCellCenter(i, j, k));
        EXPECT_EQ(NbgVector3D(x[position], y[position], z[position]), grid.getLocation(position));
      }
    }
  }
  grid.getLocations(13, 5, x, y, z);
  EXPECT_EQ(NbgVector3D(x[4], y[4], z[4]), grid.getLocation(17));
  EXPECT_THROW(grid.setParentIntervals({0, 4}, {0, 0}, {0, 0}), NbeProgrammingError);
}

TEST(NbdDataGrid, ResizesItsVariablesWithTheBlock)
{
  NbdDataGrid grid;
  grid.getDataTable().createVariableNumeric(Nbd::Role::V);
  grid.setGeometry(rotatedGeometry());
  EXPECT_EQ(grid.getVariable(Nbd::Role::V, 0)->getNValues(), 120);
  grid.setParentIntervals({0, 0}, {0, 4}, {0, 5});
  EXPECT_EQ(grid.getVariable(Nbd::Role::V, 0)->getNValues(), 30);
  grid.setParentIntervals({}, {}, {});
  EXPECT_EQ(grid.getNSamples(), 0);
  grid.getDataTable().createVariableNumeric(Nbd::Role::SN, {}, Nbd::TYPE_INT64);
  grid.setParentIntervals({0, 0}, {0, 0}, {0, 0});
  grid.getVariableSN()->setValueAsType(0, 77);
  EXPECT_EQ(grid.getSampleNumber(0), 77);

  NbgGeomGrid large;
  large.setNodesNumber(3000, 3000, 3000);
  grid.setGeometry(large);
  EXPECT_EQ(grid.getNSamples(), 0);
  grid.setParentIntervals({2999, 2999}, {2999, 2999}, {2998, 2999});
  EXPECT_EQ(NbdDataGrid(grid).getIJK(1), NbgIntVector3D(2999, 2999, 2999));
}

TEST(NbdDataGrid, InterpolatesLinearFieldsExactly)
{
  // Linear interpolation gives a linear field back; 1e-9 covers the rounding of values near 1000.
  const NbgGeomGrid geometry = rotatedGeometry();
  const auto field = [](const NbgVector3D &p) { return 3. * p.x() - 2. * p.y() + 5. * p.z(); };
  NbdDataGrid grid;
  grid.setGeometry(geometry);
  grid.setParentIntervals({1, 3}, {0, 4}, {0, 5});
  NbdAVariableNumeric &v = *grid.getDataTable().createVariableNumeric(Nbd::Role::V);
  for (int position = 0; position < grid.getNSamples(); ++position)
    v.setValue(position, field(grid.getLocation(position)));

  const NbgVector3D inside =
      0.3 * geometry.getCellCenter(1, 1, 1) + 0.7 * geometry.getCellCenter(2, 2, 2);
  EXPECT_NEAR(grid.getInterpolatedValue(v, inside), field(inside), 1e-9);
  EXPECT_EQ(grid.getInterpolatedValue(v, NbgVector3D(1e6, 0., 0.)), NbbGlobal::D_FFFF);
  // Between the node planes 0 and 1 along I: plane 0 is not in the block.
  const NbgVector3D across =
      0.5 * (geometry.getCellCenter(0, 1, 1) + geometry.getCellCenter(1, 1, 1));
  EXPECT_EQ(grid.getInterpolatedValue(v, across), NbbGlobal::D_FFFF);

  NbdVariableSelection selection;
  selection.resizeAndFill(grid.getNSamples());
  const int node = 1 + 6 * 1;  // (1, 1, 1) in the block's extents
  ASSERT_EQ(grid.getIJK(node), NbgIntVector3D(1, 1, 1));
  selection.setBoolValue(node, false);
  grid.setSelection(selection);
  EXPECT_EQ(grid.getInterpolatedValue(v, inside), NbbGlobal::D_FFFF);
  grid.clearSelection();
  v.setToUndefined(node);
  EXPECT_EQ(grid.getInterpolatedValue(v, inside), NbbGlobal::D_FFFF);
}

TEST(NbdDataGrid, PlanesHaveNoThirdCoordinate)
{
  NbgGeomGrid geometry = testsupport::makeGridGeometry2D(3, 4, 10., 10.);
  geometry.setOriginCentered(NbgVector3D(5., 5., 50.));
  NbdDataGrid grid;
  grid.setGeometry(geometry);
  EXPECT_EQ(grid.getNDimensions(), 2);
  EXPECT_EQ(grid.getLocation(5), NbgVector3D(15., 15., 0.));
  const std::unique_ptr<NbdDataGrid> copy(grid.makeCopy());
  EXPECT_EQ(copy->getLocation(5), grid.getLocation(5));
}
