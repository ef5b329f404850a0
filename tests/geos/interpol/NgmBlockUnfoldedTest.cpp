#include "geos/interpol/NgmBlockUnfolded.h"

#include "basic/data/NbdVariableDouble.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/interpol/NgmBlock.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <deque>
#include <memory>

namespace {

using Corners = NgmBlockUnfolded::Corners;

NbgVector3D corner(int i)
{
  return NbgVector3D(i & 1, i >> 1 & 1, i >> 2 & 1);
}

/// Images of the corners of the unit cube.
template <class Map>
Corners cornersOf(Map map)
{
  Corners corners;
  for (int i = 0; i < 8; ++i)
    corners[std::size_t(i)] = map(corner(i));
  return corners;
}

NgmBlockUnfolded makeBlock(const Corners &corners, const NbgIntVector3D &numbers, bool is3D = true)
{
  NgmBlockUnfolded block(is3D);
  block.setCorners(corners);
  block.setDiscretizationPointsNumber(numbers);
  return block;
}

void expectNear(const NbgVector3D &actual, const NbgVector3D &expected)
{
  for (int axis = 0; axis < 3; ++axis)
    EXPECT_NEAR(actual[axis], expected[axis], 1e-13) << "axis " << axis;
}

/// A cell between curved surfaces, away from the origin.
NbgVector3D distort(const NbgVector3D &p)
{
  return NbgVector3D(100. + 10. * p.x() + 2. * p.y() * p.z(), 50. + 8. * p.y() - p.x() * p.z(),
                     3. * p.z() + p.x() * p.y() + 0.5 * p.x());
}

TEST(NgmBlockUnfolded, ARectangularOneIsABlock)
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(40., 20., 6.));
  block.setRotation(NbgRotation(30., 20., 10.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(4, 3, 5));
  const NgmBlockUnfolded unfolded =
      makeBlock(cornersOf([&](const NbgVector3D &p) {
                  return NbgVector3D(7., 8., 9.) +
                         block.getRotation().localToWorld(p.componentsProduct(block.getSize()));
                }),
                NbgIntVector3D(4, 3, 5));
  expectNear(unfolded.getSize(), block.getSize());
  expectNear(unfolded.getDiscretizationStepsSize(), block.getDiscretizationStepsSize());
  QVector<NbgVector3D> expected, points;
  block.getDiscretizationPoints(expected);
  ASSERT_EQ(unfolded.getDiscretizationPoints(points), 60);
  for (int i = 0; i < 60; ++i)
    expectNear(points[i], expected[i]);
  for (const bool randomW : {false, true}) {
    block.getRandomPoints(11, expected, randomW);
    unfolded.getRandomPoints(11, points, randomW);
    for (int i = 0; i < 60; ++i)
      expectNear(points[i], expected[i]);
  }
}

TEST(NgmBlockUnfolded, PointsDoNotDependOnTheOrderOfTheCorners)
{
  const Corners corners = cornersOf(distort);
  const auto turned = [&](const NbgVector3D &p) {  // the same cell seen from another side
    return distort(NbgVector3D(1. - p.y(), p.x(), p.z()));
  };
  QVector<NbgVector3D> points, again;
  makeBlock(corners, NbgIntVector3D(3, 4, 2)).getDiscretizationPoints(points);
  makeBlock(cornersOf(turned), NbgIntVector3D(4, 3, 2)).getDiscretizationPoints(again);
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 4; ++j)
      for (int k = 0; k < 2; ++k)
        expectNear(again[(j * 3 + (2 - i)) * 2 + k], points[(i * 4 + j) * 2 + k]);
  // One point is the centre.
  makeBlock(corners, NbgIntVector3D(1, 1, 1)).getDiscretizationPoints(points);
  expectNear(points[0], NbgVector3D::Null);
}

TEST(NgmBlockUnfolded, CellsMeetOnTheirFaces)
{
  // The mapping of the face x = 1 from one side and x = 0 from the other, approached from inside.
  const auto outer = [](const NbgVector3D &p) { return distort(p + NbgVector3D::X); };
  const int n = 200001;
  QVector<NbgVector3D> left, right;
  const NgmBlockUnfolded first = makeBlock(cornersOf(distort), NbgIntVector3D(n, 3, 1));
  const NgmBlockUnfolded second = makeBlock(cornersOf(outer), NbgIntVector3D(n, 3, 1));
  first.getDiscretizationPoints(left);
  second.getDiscretizationPoints(right);
  const NbgVector3D shift = second.getCorners()[0] - first.getCorners()[1];
  for (int j = 0; j < 3; ++j) {
    const NbgVector3D gap = right[j] - shift - left[(n - 1) * 3 + j];
    EXPECT_LT(gap.norm(), 15. / n) << "about a step";
  }
}

TEST(NgmBlockUnfolded, LiesHalfWayUpIn2D)
{
  const NgmBlockUnfolded block =
      makeBlock(cornersOf([](const NbgVector3D &p) {
                  return NbgVector3D(10. * p.x(), 20. * p.y(), 4. * p.z());
                }),
                NbgIntVector3D(2, 2, 5), false);
  QVector<NbgVector3D> points;
  ASSERT_EQ(block.getDiscretizationPoints(points), 4);
  expectNear(points[0], NbgVector3D(-2.5, -5., 0.));
}

TEST(NgmBlockUnfolded, TakesItsCornersFromVariables)
{
  const Corners corners = cornersOf(distort);
  std::deque<NbdVariableDouble> columns;
  QList<NbdAVariableNumeric *> variables;
  for (int i = 0; i < 24; ++i) {
    columns.emplace_back(QStringLiteral("C"));
    columns.back().setVector({0., corners[std::size_t(i / 3)][i % 3]});
    variables << &columns.back();
  }
  NgmBlockUnfolded block(true);
  block.setDiscretizationPointsNumber(NbgIntVector3D(2, 2, 2));
  EXPECT_FALSE(block.isValid());
  testsupport::expectAssertion(QStringLiteral("interpol\\NgmBlock"),
                               QStringLiteral("Invalid U dimension (must be > 0)"),
                               [&] { block.getSize(); });
  const std::unique_ptr<NgmBlockUnfolded> resized(block.getResizedBlock(1, variables));
  EXPECT_TRUE(resized->isValid());
  EXPECT_EQ(resized->debug(0), makeBlock(corners, NbgIntVector3D(2, 2, 2)).debug(0));
  const std::unique_ptr<NgmBlockUnfolded> same(resized->getResizedBlock(-1, variables));
  EXPECT_EQ(same->debug(0), resized->debug(0));
  variables.removeLast();
  EXPECT_THROW(block.getResizedBlock(1, variables), NbeProgrammingError);
  const NgmABlock &base = *resized;
  const std::unique_ptr<NgmABlock> copy(base.clone());
  EXPECT_NE(dynamic_cast<NgmBlockUnfolded *>(copy.get()), nullptr);
}

}  // namespace
