#include "app/study/GridFinder.h"

#include "app/study/Compass.h"

#include <QtMath>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

using namespace orvenal;

namespace {

/// Nodes of a grid, `share` of them, in any order; `digits` behind the point, all with a negative.
std::vector<Place> nodesOf(const NbgGeomGrid &grid, double share = 1., int digits = -1)
{
  std::mt19937 generator(11);
  std::uniform_real_distribution<double> uniform(0., 1.);
  const double unit = std::pow(10., digits);
  std::vector<Place> places;
  for (qint64 rank = 0; rank < grid.getGridSize(); ++rank) {
    const NbgVector3D center = grid.getCellCenter(rank);
    const bool isCorner = rank == 0 || rank == grid.getGridSize() - 1;
    if (!isCorner && uniform(generator) > share)
      continue;
    places.push_back({center.x(), center.y(), grid.is2D() ? 0. : center.z()});
    for (double &coordinate : places.back())
      coordinate = digits < 0 ? coordinate : std::round(coordinate * unit) / unit;
  }
  std::shuffle(places.begin(), places.end(), generator);
  return places;
}

NbgGeomGrid makeGrid(double azimuth, const NbgVector3D &cell, const NbgIntVector3D &nodes)
{
  NbgGeomGrid grid;
  if (nodes.z() == 1)
    grid.setNodesNumber2D(nodes.x(), nodes.y());
  else
    grid.setNodesNumber(nodes);
  grid.setOriginCentered({178460.25, 5329620.5, nodes.z() == 1 ? 0. : -12.});
  grid.setCellSize(cell);
  grid.setRotation(Compass::gridFrame(azimuth));
  return grid;
}

/// Whether two grids have the same nodes, to a part of a cell, whatever their first axes.
void expectSameNodes(const std::optional<NbgGeomGrid> &found, const NbgGeomGrid &expected,
                     double tolerance)
{
  ASSERT_TRUE(found);
  EXPECT_EQ(found->getGridSize(), expected.getGridSize());
  EXPECT_EQ(found->is2D(), expected.is2D());
  for (qint64 rank = 0; rank < expected.getGridSize(); ++rank) {
    NbgIntVector3D ijk;
    const NbgVector3D center = expected.getCellCenter(rank);
    ASSERT_TRUE(found->getCellIJK(center, ijk)) << rank;
    ASSERT_LT((found->getCellCenter(ijk) - center).norm(), tolerance) << rank;
  }
}

std::optional<NbgGeomGrid> find(const std::vector<Place> &places)
{
  return findGrid(places, qint64(places.size()));
}

}  // namespace

TEST(GridFinder, FindsTurnedGridsInRoundNumbers)
{
  for (const double azimuth : {30., 17.3, -44.9, 0.001, -8.125}) {
    SCOPED_TRACE(azimuth);
    for (const double share : {1., 0.5, 0.15}) {
      const NbgGeomGrid grid = makeGrid(azimuth, {40., 25., 1.}, {48, 37, 1});
      const std::optional<NbgGeomGrid> found = find(nodesOf(grid, share));
      expectSameNodes(found, grid, 1e-5);
      EXPECT_NEAR(std::remainder(Compass::azimuthOfRows(found->getRotation()) - azimuth, 360.), 0.,
                  1e-9);
      EXPECT_EQ(found->getCellSize().x(), 40.);
      EXPECT_EQ(found->getCellSize().y(), 25.);
      EXPECT_EQ(found->getOriginCentered().x(), 178460.25);
      EXPECT_EQ(found->getOriginCentered().y(), 5329620.5);
    }
  }
}

TEST(GridFinder, FindsGridsOfOtherShapes)
{
  for (const double azimuth : {0., 45., 61., 90., 200.}) {
    SCOPED_TRACE(azimuth);
    for (const NbgVector3D &cell : {NbgVector3D(10., 10., 1.), NbgVector3D(3., 100., 1.)}) {
      const NbgGeomGrid grid = makeGrid(azimuth, cell, {21, 9, 1});
      expectSameNodes(find(nodesOf(grid)), grid, 1e-5);
    }
    const NbgGeomGrid space = makeGrid(azimuth, {5., 8., 2.5}, {9, 7, 4});
    expectSameNodes(find(nodesOf(space, 0.6)), space, 1e-5);
    const NbgGeomGrid pair = makeGrid(azimuth, {5., 8., 1.}, {2, 2, 1});
    expectSameNodes(find(nodesOf(pair)), pair, 1e-5);
  }
  // On every other node of a grid along the axes, and on one of 25.
  const double root = std::sqrt(2.);
  const NbgGeomGrid diamond = makeGrid(45., {root, root, 1.}, {12, 12, 1});
  expectSameNodes(find(nodesOf(diamond, 1., 6)), diamond, 1e-5);
  const NbgGeomGrid pythagorean =
      makeGrid(qRadiansToDegrees(std::atan(0.75)), {5., 5., 1.}, {9, 9, 1});
  expectSameNodes(find(nodesOf(pythagorean, 1., 6)), pythagorean, 1e-5);
}

TEST(GridFinder, TakesRoundedCoordinates)
{
  const NbgGeomGrid grid = makeGrid(17.3, {40., 25., 1.}, {80, 100, 1});
  for (const int digits : {3, 2, 1}) {
    const std::optional<NbgGeomGrid> found = find(nodesOf(grid, 0.7, digits));
    expectSameNodes(found, grid, std::pow(10., -digits));
    EXPECT_NEAR(found->getCellSize().x(), 40., 1e-3);
  }
  EXPECT_FALSE(find(nodesOf(grid, 0.7, 0)));  // half a metre is more than a hundredth of a cell
}

TEST(GridFinder, FindsNoneInOtherPlaces)
{
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> uniform(0., 1.);
  std::vector<Place> random, jittered, sheared, hexagonal, line;
  for (const Place &place : nodesOf(makeGrid(30., {40., 25., 1.}, {30, 30, 1}))) {
    random.push_back({1000. * uniform(generator), 1000. * uniform(generator), 0.});
    jittered.push_back({place[0] + 2. * uniform(generator), place[1], 0.});
    sheared.push_back({place[0] + 0.1 * place[1], place[1], 0.});
  }
  for (int i = 0; i < 400; ++i) {
    const int row = i / 20;
    hexagonal.push_back({10. * (i % 20) + 5. * (row % 2), row * 10. * std::sqrt(0.75), 0.});
    line.push_back({3. * i, 7. * i, 0.});
  }
  for (const auto *places : {&random, &jittered, &sheared, &line})
    EXPECT_FALSE(find(*places));
  const std::optional<NbgGeomGrid> half = find(hexagonal);  // every other node of one
  ASSERT_TRUE(half);
  EXPECT_EQ(half->getGridSize(), 800);
  std::vector<Place> moved = nodesOf(makeGrid(30., {40., 25., 1.}, {30, 30, 1}));
  moved[123][0] += 0.9;
  EXPECT_FALSE(find(moved));
}
