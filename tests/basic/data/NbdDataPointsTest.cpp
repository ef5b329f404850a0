#include "basic/data/NbdDataPoints.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "basic/data/NbdVariableSelection.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgBox.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

/// n points (i, 10 i, 100 i) with a value 7 i of the role V.
NbdDataPoints makeBuffer(int n)
{
  NbdDataPoints points;
  points.ensureCoordinates();
  points.getDataTable().createVariableNumeric(Nbd::Role::V);
  for (int i = 0; i < n; ++i) {
    EXPECT_EQ(points.appendSample(NbgVector3D(i, 10. * i, 100. * i)), i);
    points.getVariableNumeric(Nbd::Role::V, 0)->setValue(i, 7. * i);
  }
  return points;
}

NbdVariableSelection select(const std::vector<int> &flags)
{
  NbdVariableSelection selection;
  selection.resizeAndFill(int(flags.size()));
  for (std::size_t i = 0; i < flags.size(); ++i)
    selection.setBoolValue(int(i), flags[i] != 0);
  return selection;
}

}  // namespace

TEST(NbdDataPoints, LocatesSamplesWithinItsDimension)
{
  NbdDataPoints points = makeBuffer(4);
  EXPECT_EQ(points.getLocation(3), NbgVector3D(3., 30., 300.));
  points.setNDimensions(2);
  EXPECT_EQ(points.getLocation(3), NbgVector3D(3., 30., 0.));
  double x[2], y[2], z[2];
  points.getLocations(2, 2, x, y, z);
  EXPECT_EQ(x[1], 3.);
  EXPECT_EQ(y[0], 20.);
  EXPECT_EQ(z[1], 0.);
  // The nearest to (0, 0) is at 0, the others at i * sqrt(101): mean = 1.5 * sqrt(101).
  EXPECT_DOUBLE_EQ(points.getMeanDistanceFromTarget(NbgVector3D()), 1.5 * std::sqrt(101.));
  points.clearSamples();
  EXPECT_EQ(points.getMeanDistanceFromTarget(NbgVector3D()), NbbGlobal::D_FFFF);
}

TEST(NbdDataPoints, ColumnsWithoutValuesAreZeroCoordinates)
{
  NbdDataPoints points;
  points.setResizedTo(2);
  EXPECT_EQ(points.getNSamples(), 2);
  EXPECT_EQ(points.getCoordinates(0), nullptr);
  EXPECT_EQ(points.getLocation(1), NbgVector3D());
  points.ensureCoordinates();
  ASSERT_NE(points.getCoordinates(2), nullptr);
  EXPECT_EQ(points.getCoordinates(2)->getValue(1), 0.);
  EXPECT_THROW(NbdDataPoints().setCoordValue(0, 0, 1.), NbeProgrammingError);
}

TEST(NbdDataPoints, WalksTheSelectedSamples)
{
  NbdDataPoints points = makeBuffer(5);
  EXPECT_EQ(points.getNSelected(), 5);
  EXPECT_EQ(points.getSelection(), nullptr);
  points.setSelection(select({0, 1, 0, 1, 1}));
  EXPECT_EQ(points.getSelectedPositions(), (std::vector<int>{1, 3, 4}));
  EXPECT_FALSE(points.isSelected(0));
  NbdDataSimpleIterator iterator = points.createSimpleIterator();
  std::vector<int> walked;
  for (int position = iterator.next(); position >= 0; position = iterator.next())
    walked.push_back(position);
  EXPECT_EQ(walked, points.getSelectedPositions());
  NbgBox box;
  points.updateBoundingBox(box);
  EXPECT_EQ(box, NbgBox(NbgVector3D(1., 10., 100.), NbgVector3D(4., 40., 400.)));

  EXPECT_THROW(points.setSelection(select({1, 1})), NbeProgrammingError);
  points.appendSamples(2);  // new samples take part
  EXPECT_EQ(points.getSelectedPositions(), (std::vector<int>{1, 3, 4, 5, 6}));
  points.setResizedTo(2);
  EXPECT_EQ(points.getSelectedPositions(), (std::vector<int>{1}));
  points.clearSelection();
  EXPECT_EQ(points.getNSelected(), 2);
}

TEST(NbdDataPoints, SeesSamplesAddedThroughItsTable)
{
  NbdDataPoints points = makeBuffer(2);
  points.setSelection(select({1, 0}));
  EXPECT_EQ(points.getNSelected(), 1);
  points.getDataTable().appendSamples(3);
  EXPECT_EQ(points.getSelectedPositions(), (std::vector<int>{0, 2, 3, 4}));
}

TEST(NbdDataPoints, CopiesAreIndependent)
{
  NbdDataPoints points = makeBuffer(3);
  points.setSelection(select({1, 0, 1}));
  points.setMacroRanks({4});
  const std::unique_ptr<NbdDataPoints> copy(points.makeCopy());
  points.getVariableNumeric(Nbd::Role::V, 0)->setValue(0, -1.);
  points.clearSamples();
  EXPECT_EQ(copy->getNSamples(), 3);
  EXPECT_EQ(copy->getVariableNumeric(Nbd::Role::V, 0)->getValue(0), 0.);
  EXPECT_EQ(copy->getNSelected(), 2);
  EXPECT_EQ(copy->getMacroRanks(), QList<int>{4});
  points = *copy;
  EXPECT_EQ(points.getNSelected(), 2);
  EXPECT_EQ(points.getLocation(2), NbgVector3D(2., 20., 200.));
}

TEST(NbdDataPoints, AppendsTheSamplesOfAnother)
{
  NbdDataPoints points = makeBuffer(2);
  NbdDataPoints other = makeBuffer(3);
  other.getDataTable().createVariableNumeric(Nbd::Role::WEIGHT);
  other.setSelection(select({0, 1, 1}));
  points.appendSamples(other);
  EXPECT_EQ(points.getNSamples(), 5);
  EXPECT_EQ(points.getLocation(4), NbgVector3D(2., 20., 200.));
  EXPECT_EQ(points.getVariableNumeric(Nbd::Role::V, 0)->getValue(3), 7.);
  EXPECT_EQ(points.getVariable(Nbd::Role::WEIGHT, 0), nullptr);
  EXPECT_EQ(points.getSelectedPositions(), (std::vector<int>{0, 1, 3, 4}));
  points.deleteVariables({Nbd::Role::V, Nbd::Role::WEIGHT});
  EXPECT_EQ(points.getVariable(Nbd::Role::V, 0), nullptr);
  EXPECT_EQ(points.getNSamples(), 5);
}

TEST(NbdDataPoints, KnowsSampleNumbersWhenItHoldsThem)
{
  NbdDataPoints points = makeBuffer(2);
  EXPECT_EQ(points.getSampleNumber(1), NbbGlobal::I64_FFFF);
  points.getDataTable().createVariableNumeric(Nbd::Role::SN, {}, Nbd::TYPE_INT64);
  points.getVariableSN()->setValueAsType(1, 5000000000LL);
  EXPECT_EQ(points.getSampleNumber(1), 5000000000LL);
  EXPECT_EQ(points.getSampleNumber(0), NbbGlobal::I64_FFFF);
}

TEST(NbdDataPoints, ThreadsMayShareABufferThatDoesNotChange)
{
  NbdDataPoints points = makeBuffer(0);
  points.appendSamples(100000);
  for (int round = 0; round < 20; ++round) {
    points.clearSelection();  // forgets the positions
    int counts[2] = {};
    std::thread other([&] { counts[0] = int(points.getSelectedPositions().size()); });
    counts[1] = int(points.getSelectedPositions().size());
    other.join();
    EXPECT_EQ(counts[0], 100000);
    EXPECT_EQ(counts[1], 100000);
  }
}
