#include "geos/interpol/NgmBlock.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomCuboid.h"
#include "basic/geom/NbgGeomGrid.h"
#include "geos/simu/NgmDistributionUniformD.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

NgmBlock makeBlock(bool is3D, const NbgVector3D &size, const NbgIntVector3D &numbers)
{
  NgmBlock block(is3D);
  block.setSize(size);
  block.setDiscretizationPointsNumber(numbers);
  return block;
}

void expectNear(const NbgVector3D &actual, const NbgVector3D &expected)
{
  for (int axis = 0; axis < 3; ++axis)
    EXPECT_NEAR(actual[axis], expected[axis], 1e-13) << "axis " << axis;
}

TEST(NgmBlock, PointsAreTheCentresOfTheCells)
{
  const NgmBlock block = makeBlock(true, NbgVector3D(40., 20., 6.), NbgIntVector3D(4, 2, 3));
  QVector<NbgVector3D> points;
  ASSERT_EQ(block.getDiscretizationPoints(points), 24);
  ASSERT_EQ(points.size(), 24);
  NbgVector3D sum;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 2; ++j)
      for (int k = 0; k < 3; ++k) {
        const NbgVector3D &point = points[(i * 2 + j) * 3 + k];
        expectNear(point, NbgVector3D(-15. + 10. * i, -5. + 10. * j, -2. + 2. * k));
        sum += point;
      }
  expectNear(sum, NbgVector3D::Null);
  EXPECT_EQ(block.getDiscretizationStepsSize(), NbgVector3D(10., 10., 2.));
}

TEST(NgmBlock, PointsTurnWithTheBlock)
{
  NgmBlock block = makeBlock(true, NbgVector3D(40., 20., 6.), NbgIntVector3D(3, 2, 2));
  QVector<NbgVector3D> local, turned;
  block.getDiscretizationPoints(local);
  const NbgRotation rotation(30., 20., 10.);
  block.setRotation(rotation);
  block.getDiscretizationPoints(turned);
  ASSERT_EQ(turned.size(), local.size());
  for (int i = 0; i < local.size(); ++i)
    expectNear(turned[i], rotation.localToWorld(local[i]));
}

TEST(NgmBlock, StepsAreRoundedUpToCoverTheSize)
{
  NgmBlock block(false);
  block.setSize(NbgVector3D(10., 10., 0.));
  block.setDiscretizationStepsSize(NbgVector3D(3., 3., 0.));
  EXPECT_EQ(block.getDiscretizationPointsNumber(), NbgIntVector3D(4, 4, 1));
  EXPECT_EQ(block.getDiscretizationStepsSize(), NbgVector3D(3., 3., 0.));
  QVector<NbgVector3D> points;
  EXPECT_EQ(block.getDiscretizationPoints(points), 16);
  expectNear(points.first(), NbgVector3D(-3.5, -3.5, 0.));
  expectNear(points.last(), NbgVector3D(5.5, 5.5, 0.));
}

TEST(NgmBlock, HasOnePointAlongWIn2D)
{
  const NgmBlock block = makeBlock(false, NbgVector3D(40., 40., 7.), NbgIntVector3D(4, 4, 9));
  EXPECT_EQ(block.getDiscretizationPointsNumber(), NbgIntVector3D(4, 4, 1));
  QVector<NbgVector3D> points;
  EXPECT_EQ(block.getDiscretizationPoints(points), 16);
  for (const NbgVector3D &point : points)
    EXPECT_EQ(point.z(), 0.);
}

TEST(NgmBlock, RandomPointsLieInTheirCells)
{
  NgmBlock block = makeBlock(true, NbgVector3D(40., 20., 6.), NbgIntVector3D(4, 2, 3));
  block.setRotation(NbgRotation(30., 20., 10.));
  QVector<NbgVector3D> centres, points, again, flat;
  block.getDiscretizationPoints(centres);
  block.getRandomPoints(165426, points, true);
  block.getRandomPoints(165426, again, true);
  ASSERT_EQ(points.size(), 24);
  EXPECT_EQ(points, again);
  block.getRandomPoints(165427, again, true);
  EXPECT_NE(points, again);
  NbgVector3D largest;
  for (int i = 0; i < 24; ++i) {
    const NbgVector3D offset = block.getRotation().worldToLocal(points[i] - centres[i]);
    for (int axis = 0; axis < 3; ++axis)
      largest[axis] = std::max(largest[axis], std::abs(offset[axis]));
  }
  // Half a cell is (5, 5, 1).
  EXPECT_LT(largest.x(), 5.);
  EXPECT_GT(largest.x(), 4.);
  EXPECT_LT(largest.z(), 1.);
  EXPECT_GT(largest.z(), 0.8);
  block.getRandomPoints(165426, flat, false);
  for (int i = 0; i < 24; ++i)
    EXPECT_NEAR(block.getRotation().worldToLocal(flat[i] - centres[i]).z(), 0., 1e-14);
}

TEST(NgmBlock, RandomPointsTakeTheirNumbersInOrder)
{
  NgmDistributionUniformD uniform(77);
  QVector<NbgVector3D> points;
  makeBlock(true, NbgVector3D(2., 4., 8.), NbgIntVector3D(2, 1, 1))
      .getRandomPoints(77, points, true);
  for (int i = 0; i < 2; ++i) {
    const double u = uniform.nextR(), v = uniform.nextR(), w = uniform.nextR();
    expectNear(points[i], NbgVector3D(i - 1. + u, 4. * v - 2., 8. * w - 4.));
  }
  // Two numbers per point where W does not count.
  makeBlock(false, NbgVector3D(2., 4., 8.), NbgIntVector3D(2, 1, 1))
      .getRandomPoints(77, points, true);
  NgmDistributionUniformD pairs(77);
  for (int i = 0; i < 2; ++i) {
    const double u = pairs.nextR(), v = pairs.nextR();
    expectNear(points[i], NbgVector3D(i - 1. + u, 4. * v - 2., 0.));
  }
}

TEST(NgmBlock, TakesItsSizeFromVariables)
{
  NbdVariableDouble u(QStringLiteral("U")), v(QStringLiteral("V")), w(QStringLiteral("W"));
  u.setVector({10., 20.});
  v.setVector({5., 6.});
  w.setVector({1., 2.});
  const NgmBlock block = makeBlock(true, NbgVector3D(1., 1., 1.), NbgIntVector3D(2, 2, 2));
  const auto sizeOf = [&](int index, const QList<NbdAVariableNumeric *> &variables) {
    const std::unique_ptr<NgmBlock> resized(block.getResizedBlock(index, variables));
    EXPECT_EQ(resized->getDiscretizationPointsNumber(), NbgIntVector3D(2, 2, 2));
    QString why;
    return resized->isSizeDefined(why) ? resized->getSize() : NbgVector3D::Undefined;
  };
  EXPECT_EQ(sizeOf(1, {&u, &v, &w}), NbgVector3D(20., 6., 2.));
  EXPECT_EQ(sizeOf(-1, {&u, &v, &w}), NbgVector3D(1., 1., 1.));
  EXPECT_EQ(sizeOf(0, {}), NbgVector3D(1., 1., 1.));
  EXPECT_EQ(sizeOf(0, {&u, &v}), NbgVector3D::Undefined) << "no size along W";
  EXPECT_THROW(sizeOf(0, {&u}), NbeProgrammingError);
  const NgmBlock plane = makeBlock(false, NbgVector3D(1., 1., 0.), NbgIntVector3D(2, 2, 1));
  const std::unique_ptr<NgmBlock> resized(plane.getResizedBlock(0, {&u, &v}));
  EXPECT_EQ(resized->getSize(), NbgVector3D(10., 5., 0.));
}

TEST(NgmBlock, SaysWhatIsWrong)
{
  const NbgVector3D size(10., 10., 10.), none;
  const NbgIntVector3D numbers(2, 2, 2), noNumbers;
  const struct
  {
    bool is3D;
    NbgVector3D size;
    NbgIntVector3D numbers;
    NbgVector3D steps;
    const char *why;
  } cases[] = {
      {true, {0., 1., 1.}, numbers, none, "Invalid U dimension (must be > 0)"},
      {true, {1., -1., 1.}, numbers, none, "Invalid V dimension (must be > 0)"},
      {true, {1., 1., 0.}, numbers, none, "Invalid W dimension for 3D block (must be > 0)"},
      {true, NbgVector3D::Undefined, numbers, none, "Invalid U dimension (must be > 0)"},
      {true, size, noNumbers, none, "Invalid U discretization points number (must be >= 1)"},
      {true, size, {2, 0, 2}, none, "Invalid V discretization points number (must be >= 1)"},
      {true,
       size,
       {2, 2, -1},
       none,
       "Invalid W discretization points number for 3D block (must be >= 1)"},
      {true, size, noNumbers, {-1., 1., 1.}, "Invalid U discretization steps size (must be > 0)"},
      {true, size, noNumbers, {1., 0., 1.}, "Invalid V discretization steps size (must be > 0)"},
      {true,
       size,
       noNumbers,
       {1., 1., 0.},
       "Invalid W discretization steps size for 3D block (must be > 0)"},
      {true,
       size,
       numbers,
       {1., 1., 1.},
       "You cannot define Discretization Points Number and Discretization Step Size."},
  };
  for (const auto &test : cases) {
    NgmBlock block = makeBlock(test.is3D, test.size, test.numbers);
    block.setDiscretizationStepsSize(test.steps);
    QString why;
    EXPECT_FALSE(block.isBlockDefined(why) && block.isDiscretizationDefined(why));
    EXPECT_EQ(why, QString::fromLatin1(test.why));
    EXPECT_FALSE(block.isValid());
    QVector<NbgVector3D> points;
    testsupport::expectAssertion(QStringLiteral("interpol\\NgmBlock"), why,
                                 [&] { block.getDiscretizationPoints(points); });
  }
  QString why;
  EXPECT_TRUE(makeBlock(false, {1., 1., 0.}, {1, 1, 0}).isValid()) << "W does not count in 2D";
  EXPECT_FALSE(makeBlock(false, {1., 0., 0.}, {1, 1, 0}).isSizeDefined(why));
  EXPECT_THROW(NgmBlock(true).getSize(), NbeProgrammingError);
}

TEST(NgmBlock, A2DBlockTurnsAboutTheVerticalOnly)
{
  NgmBlock block = makeBlock(false, NbgVector3D(10., 5., 0.), NbgIntVector3D(1, 1, 1));
  block.setRotation(NbgRotation(30., 0., 0.));
  EXPECT_TRUE(block.isValid());
  block.setRotation(NbgRotation(30., 5., 0.));
  QString why;
  EXPECT_FALSE(block.isBlockDefined(why));
  EXPECT_EQ(why, QStringLiteral("rotation must be only 2D"));
}

TEST(NgmBlock, RefusesDiscretizationsBeyondMemory)
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(1e6, 1e6, 1e6));
  block.setDiscretizationStepsSize(NbgVector3D(1e-6, 1e-6, 1e-6));
  EXPECT_THROW(block.getDiscretizationPointsNumber(), NbeUserError);
}

TEST(NgmBlock, PlacedAtACentre)
{
  NgmBlock block = makeBlock(true, NbgVector3D(10., 4., 2.), NbgIntVector3D(1, 1, 1));
  block.setRotation(NbgRotation(90., 0., 0.));
  const NbgVector3D centre(100., 200., 5.);
  const NbgGeomCuboid cuboid = block.getCuboid(centre);
  EXPECT_TRUE(cuboid.isIncluded(NbgVector3D(101.9, 204.9, 5.9)));
  EXPECT_FALSE(cuboid.isIncluded(NbgVector3D(104., 200., 5.)));
  const NbgBox box = block.getBox(centre);
  expectNear(box.getLowerLeftCorner(), NbgVector3D(98., 195., 4.));
  expectNear(box.getUpperRightCorner(), NbgVector3D(102., 205., 6.));
}

TEST(NgmBlock, TakesTheCellsOfAGrid)
{
  NbgGeomGrid grid;
  grid.setNodesNumber(3, 4, 5);
  grid.setCellSize(NbgVector3D(10., 20., 5.));
  grid.setRotation(NbgRotation(15., 0., 0.));
  NgmBlock block(true);
  block.setFromGridCell(grid);
  EXPECT_EQ(block.getSize(), NbgVector3D(10., 20., 5.));
  EXPECT_TRUE(block.getRotation() == NbgRotation(15., 0., 0.));
}

TEST(NgmBlock, CloneIsACopyOfTheSameClass)
{
  const NgmBlock block = makeBlock(true, NbgVector3D(10., 4., 2.), NbgIntVector3D(3, 2, 1));
  const NgmABlock &base = block;
  const std::unique_ptr<NgmABlock> copy(base.clone());
  EXPECT_NE(dynamic_cast<NgmBlock *>(copy.get()), nullptr);
  EXPECT_EQ(copy->debug(0), block.debug(0));
  const QString text = copy->debug(0);
  for (const char *part : {"NgmABlock:\n", "3D block\n", "Block Size: (10, 4, 2)",
                           "Block Rotation: ", "Discretization Points Number: (3, 2, 1)",
                           "Discretization Steps Size: (0, 0, 0)"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
}

}  // namespace
