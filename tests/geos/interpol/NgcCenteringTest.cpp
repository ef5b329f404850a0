#include "interpol/private/NgcCentering.h"

#include "basic/data/NbdDataPoints.h"
#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

/// Every column of both data sets, by role: equal values at equal sample numbers.
void expectSameVariables(NgdADataSet &expected, NgdADataSet &centered)
{
  NbdDataPoints before, after;
  expected.openAllVariables();
  centered.openAllVariables();
  expected.loadAllData(before, false, true);
  centered.loadAllData(after, false, true);
  const NbdDataTable &table = before.getDataTableConst();
  ASSERT_EQ(after.getDataTableConst().getAllRoles(), table.getAllRoles());
  for (int rank = 0; rank < table.getNVariables(); ++rank)
    EXPECT_EQ(after.getDataTableConst().toString(), table.toString());
  expected.closeAllVariables();
  centered.closeAllVariables();
}

}  // namespace

TEST(NgcCentering, MovesSamplesToTheirBlocks)
{
  const auto points = testsupport::makePoints(500, NbgEDimension::DIM_3D);
  NbgGeomGrid blocks = testsupport::makeGridGeometry(10, 12, 4, NbgVector3D(50., 40., 10.));
  blocks.setRotation(NbgRotation(30., 0., 0.));
  NgdDataSetPoints input;
  input.setDataProvider(points);
  NgcCentering centering;
  centering.setInputDataSet(input);
  centering.setBlocks(blocks);
  ASSERT_EQ(centering.execute(), NbcAProgress::COMPLETED)
      << qPrintable(centering.getErrorMessage());

  NgdDataSetPoints centered = centering.getCenteredDataSet();
  NbdDataPoints before, after;
  input.openAllVariables();
  centered.openAllVariables();
  input.loadAllData(before, true, true);
  centered.loadAllData(after, true, true);
  ASSERT_EQ(after.getNSamples(), 500);
  int nInside = 0;
  for (int i = 0; i < 500; ++i) {
    const NbgVector3D location = after.getLocation(i);
    NbgIntVector3D cell;
    if (blocks.getCellIJK(before.getLocation(i), cell)) {
      EXPECT_EQ(location, blocks.getCellCenter(cell));
      ++nInside;
      continue;
    }
    // The pattern goes on: a centre, not farther than half a block along each axis.
    const NbgVector3D moved = blocks.getRotation().worldToLocal(location - before.getLocation(i));
    const NbgVector3D uvw = blocks.getUVW(location);
    for (int axis = 0; axis < 3; ++axis) {
      const double size = blocks.getCellSize()[axis];
      EXPECT_LE(std::fabs(moved[axis]), 0.5 * size * (1. + 1e-9));
      EXPECT_NEAR(uvw[axis] / size, std::round(uvw[axis] / size), 1e-9);
    }
  }
  EXPECT_GT(nInside, 20);
  EXPECT_LT(nInside, 480);
  input.closeAllVariables();
  centered.closeAllVariables();
}

TEST(NgcCentering, KeepsVariablesNumbersAndSelection)
{
  const auto points = testsupport::makePoints(200);
  std::vector<bool> selection(200);
  std::vector<int> codes(200);
  std::vector<double> realization(200);
  for (int i = 0; i < 200; ++i) {
    selection[std::size_t(i)] = i % 3 != 0;
    codes[std::size_t(i)] = i % 7;
    realization[std::size_t(i)] = std::sqrt(double(i));
  }
  points->setSelection(selection);
  points->addVariable(QStringLiteral("code"), codes);
  const QString macro =
      points->addMacro(QStringLiteral("simu"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
  for (const int index : {1, 4})
    points->addRealization(macro, NbdMacroIndex(index), realization);

  NgdDataSetPoints input;
  input.setDataProvider(points);
  input.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("Z1")));
  input.assignVariable(Nbd::Role::V, points->getIdFromName(QStringLiteral("Z2")));
  input.assignVariable(Nbd::Role::EXTDRIFT, points->getIdFromName(QStringLiteral("Z1")));
  input.assignVariable(Nbd::Role::CODE, points->getIdFromName(QStringLiteral("code")));
  input.assignMacro(Nbd::Role::SIMU, macro);

  NgcCentering centering;
  centering.setInputDataSet(input);
  centering.setBlocks(testsupport::makeGridGeometry2D(10, 10, 100., 100.));
  for (int run = 0; run < 2; ++run) {
    ASSERT_EQ(centering.execute(), NbcAProgress::COMPLETED)
        << qPrintable(centering.getErrorMessage());
    NgdDataSetPoints centered = centering.getCenteredDataSet();
    EXPECT_EQ(centered.getNSamples(), 200);
    EXPECT_EQ(centered.getNDimensions(), 2);
    EXPECT_EQ(centered.getVariableNames(Nbd::Role::V), input.getVariableNames(Nbd::Role::V));
    expectSameVariables(input, centered);
  }
}
