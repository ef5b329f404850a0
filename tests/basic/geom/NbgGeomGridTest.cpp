#include "basic/geom/NbgGeomGrid.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/geom/NbgBox.h"

#include <gtest/gtest.h>

#include <random>

namespace {

NbgGeomGrid makeGrid(const NbgVector3D &corner, const NbgVector3D &cell, const NbgIntVector3D &n,
                     const NbgRotation &rotation = NbgRotation())
{
  NbgGeomGrid grid;
  grid.setNodesNumber(n);
  grid.setCellSize(cell);
  grid.setRotation(rotation);
  grid.setOriginCorner(corner);
  return grid;
}

/// Grids with round and with awkward cells, turned and not, near and far from the origin.
std::vector<NbgGeomGrid> someGrids()
{
  const NbgIntVector3D n(13, 7, 5);
  return {
      makeGrid({0., 0., 0.}, {1., 1., 1.}, n),
      makeGrid({0., 0., 0.}, {0.1, 0.3, 0.7}, n),
      makeGrid({-3.3, 1. / 3., 1e-3}, {1. / 3., 0.1, 1e-3}, n),
      makeGrid({651234.1, 6812345.7, -123.4}, {0.1, 12.7, 0.3}, n),
      makeGrid({1., 2., 3.}, {0.1, 0.2, 0.3}, n, NbgRotation(30., 0., 0.)),
      makeGrid({651234.1, 6812345.7, -123.4}, {5., 2.5, 1. / 3.}, n, NbgRotation(17., 33., -71.))};
}

template <class F>
void forEachCell(const NbgIntVector3D &n, F function)
{
  for (int i = 0; i < n.x(); ++i)
    for (int j = 0; j < n.y(); ++j)
      for (int k = 0; k < n.z(); ++k)
        function(i, j, k);
}

}  // namespace

TEST(NbgGeomGrid, RanksRunFastestAlongTheThirdAxis)
{
  const NbgGeomGrid grid = makeGrid({}, NbgVector3D::Unit, {4, 3, 2});
  qint64 expected = 0;
  forEachCell(grid.getNodesNumber(), [&](int i, int j, int k) {
    EXPECT_EQ(grid.getRankFromIJK(i, j, k), expected);
    EXPECT_EQ(grid.getCellIJKFromRank(expected), NbgIntVector3D(i, j, k));
    ++expected;
  });
  EXPECT_EQ(grid.getGridSize(), expected);
}

TEST(NbgGeomGrid, CountsBeyond32Bits)
{
  NbgGeomGrid grid = makeGrid({}, NbgVector3D::Unit, {100000, 100000, 100000});
  EXPECT_EQ(grid.getGridSize(), 1000000000000000);
  EXPECT_EQ(grid.getRankFromIJK(99999, 99999, 99999), 999999999999999);
  EXPECT_EQ(grid.getCellIJKFromRank(999999999999999), NbgIntVector3D(99999, 99999, 99999));
  EXPECT_TRUE(grid.isDefined());
  grid.setStatusMayBeLarge(false);
  EXPECT_FALSE(grid.isDefined());

  const int huge = std::numeric_limits<int>::max();
  grid = makeGrid({}, NbgVector3D::Unit, {huge, huge, huge});
  EXPECT_EQ(grid.getGridSize(), 0);
  EXPECT_FALSE(grid.isDefined());
  EXPECT_THROW(grid.buildRefinedGeom({2, 1, 1}), NbeProgrammingError);
}

TEST(NbgGeomGrid, BordersBelongToTheUpperCell)
{
  for (const NbgGeomGrid &grid : someGrids()) {
    SCOPED_TRACE(grid.toString().toStdString());
    const NbgIntVector3D n = grid.getNodesNumber();
    forEachCell(n, [&](int i, int j, int k) {
      NbgIntVector3D ijk(-1, -1, -1);
      ASSERT_TRUE(grid.getCellIJK(grid.getCellCorner(i, j, k), ijk));
      ASSERT_EQ(ijk, NbgIntVector3D(i, j, k)) << "corner";
      ASSERT_TRUE(grid.getCellIJK(grid.getCellCenter(i, j, k), ijk));
      ASSERT_EQ(ijk, NbgIntVector3D(i, j, k)) << "center";
    });

    // The last border belongs to the last cell; beyond it there is nothing.
    NbgIntVector3D ijk;
    ASSERT_TRUE(grid.getCellIJK(grid.getCellCorner(n.x(), n.y(), n.z()), ijk));
    EXPECT_EQ(ijk, n - NbgIntVector3D::Unit);
    const NbgVector3D step = grid.getRotation().localToWorld(1e-4 * grid.getCellSize());
    EXPECT_FALSE(grid.isInside(grid.getCellCorner(n.x(), n.y(), n.z()) + step));
    EXPECT_FALSE(grid.isInside(grid.getCellCorner(0, 0, 0) - step));
    EXPECT_TRUE(grid.isInside(grid.getCellCorner(0, 0, 0) + step));
  }
}

TEST(NbgGeomGrid, BordersWrittenAsDecimalsAreBorders)
{
  // 0.05 + 0.1 i and 0.1 i are not multiples of 0.1 in binary.
  NbgGeomGrid grid = makeGrid({}, {0.1, 1., 1.}, {1000, 1, 1});
  grid.setOriginCentered({0.05, 0.5, 0.5});
  for (int i = 0; i < 1000; ++i) {
    int cell = -1, j = -1, k = -1;
    ASSERT_TRUE(grid.getCellIJK({i / 10., 0.5, 0.5}, cell, j, k));
    ASSERT_EQ(cell, i);
  }
}

TEST(NbgGeomGrid, PointsOutsideLeaveTheIndices)
{
  const NbgGeomGrid grid = makeGrid({}, NbgVector3D::Unit, {4, 3, 2});
  int i = 7, j = 8, k = 9;
  EXPECT_FALSE(grid.getCellIJK({-1., 1., 1.}, i, j, k));
  EXPECT_FALSE(grid.getCellIJK({1e29, 1., 1.}, i, j, k));
  EXPECT_FALSE(grid.getCellIJK(NbgVector3D::Undefined, i, j, k));
  EXPECT_FALSE(grid.getCellIJK({1., std::nan(""), 1.}, i, j, k));
  EXPECT_EQ(NbgIntVector3D(i, j, k), NbgIntVector3D(7, 8, 9));
  EXPECT_TRUE(grid.getCellIJ({1.5, 2.5, 1e6}, i, j));
  EXPECT_EQ(NbgIntVector3D(i, j, k), NbgIntVector3D(1, 2, 9));
  EXPECT_FALSE(NbgGeomGrid().isInside({}));
}

TEST(NbgGeomGrid, TwoDimensionsIgnoreTheThird)
{
  NbgGeomGrid grid;
  grid.setNodesNumber2D(4, 3);
  grid.setCellSize(2., 5., 0.);
  grid.setOriginCorner({10., 20., 30.});
  EXPECT_TRUE(grid.isDefined());
  EXPECT_EQ(grid.getOriginCentered(), NbgVector3D(11., 22.5, 30.));
  EXPECT_EQ(grid.getCellVolume(), 10.);
  NbgIntVector3D ijk;
  ASSERT_TRUE(grid.getCellIJK({13., 34., -1e5}, ijk));
  EXPECT_EQ(ijk, NbgIntVector3D(1, 2, 0));

  NbgBox box;
  grid.updateBoundingBox(box);
  EXPECT_EQ(box, NbgBox({10., 20., 30.}, {18., 35., 30.}));
  const NbiIntervalIntSmall zero(0, 0);
  EXPECT_EQ(grid.getIJKIntervals(box), NbiIntervalsIJK({0, 3}, {0, 2}, zero));

  qint64 ranks[8];
  double weights[8];
  EXPECT_EQ(grid.getTrilinearWeights({12., 25., 1e5}, ranks, weights), 4);
}

TEST(NbgGeomGrid, BulkCoordinatesHaveTheBitsOfTheCenters)
{
  for (const NbgGeomGrid &grid : someGrids()) {
    const NbiIntervalsIJK block({2, 9}, {1, 6}, {1, 3});
    std::vector<double> x(block.getLength()), y(x), z(x);
    grid.getCoordinates(block, x.data(), y.data(), z.data());
    size_t rank = 0;
    for (int i = 2; i <= 9; ++i) {
      for (int j = 1; j <= 6; ++j) {
        for (int k = 1; k <= 3; ++k, ++rank)
          ASSERT_EQ(NbgVector3D(x[rank], y[rank], z[rank]), grid.getCellCenter(i, j, k));
      }
    }
  }
}

TEST(NbgGeomGrid, LinearWeightsReproduceLinearFields)
{
  const auto field = [](const NbgVector3D &p) { return 3. + 2. * p.x() - p.y() + 0.5 * p.z(); };
  std::mt19937 generator(31);
  for (const NbgGeomGrid &grid : someGrids()) {
    const NbgIntVector3D n = grid.getNodesNumber();
    // Coordinates of millions leave 1e-9 of relative precision to differences.
    const double tolerance = 1e-15 * (1. + grid.getOriginCentered().norm()) * 20.;
    for (int draw = 0; draw < 200; ++draw) {
      std::uniform_real_distribution<double> uniform(0., 1.);
      const NbgVector3D local(uniform(generator) * (n.x() - 1) * grid.getCellSize().x(),
                              uniform(generator) * (n.y() - 1) * grid.getCellSize().y(),
                              uniform(generator) * (n.z() - 1) * grid.getCellSize().z());
      const NbgVector3D point = grid.getRotation().localToWorld(local) + grid.getOriginCentered();
      qint64 ranks[8];
      double weights[8];
      const int count = grid.getTrilinearWeights(point, ranks, weights);
      ASSERT_GT(count, 0);
      double sum = 0., value = 0.;
      for (int i = 0; i < count; ++i) {
        ASSERT_GT(weights[i], 0.);
        sum += weights[i];
        value += weights[i] * field(grid.getCellCenter(ranks[i]));
      }
      EXPECT_NEAR(sum, 1., 1e-14);
      EXPECT_NEAR(value, field(point), tolerance);
    }
  }
}

TEST(NbgGeomGrid, LinearWeightsOnACenterAreThatNodeAlone)
{
  for (const NbgGeomGrid &grid : someGrids()) {
    for (qint64 rank = 0; rank < grid.getGridSize(); ++rank) {
      qint64 ranks[8];
      double weights[8];
      ASSERT_EQ(grid.getTrilinearWeights(grid.getCellCenter(rank), ranks, weights), 1);
      ASSERT_EQ(ranks[0], rank);
      ASSERT_EQ(weights[0], 1.);
    }
    // In the rim outside the outermost centers the nearest node holds.
    qint64 ranks[8];
    double weights[8];
    ASSERT_EQ(grid.getTrilinearWeights(grid.getCellCorner(0, 0, 0), ranks, weights), 1);
    EXPECT_EQ(ranks[0], 0);
    const NbgIntVector3D n = grid.getNodesNumber();
    ASSERT_EQ(grid.getTrilinearWeights(grid.getCellCorner(n.x(), n.y(), n.z()), ranks, weights), 1);
    EXPECT_EQ(ranks[0], grid.getGridSize() - 1);
    EXPECT_EQ(grid.getTrilinearWeights(grid.getCellCenter(-1, 0, 0), ranks, weights), 0);
  }
}

TEST(NbgGeomGrid, DiscretizationPointsAreTheCellsOfTheRefinedGrid)
{
  const NbgIntVector3D ratio(3, 2, 4);
  for (const NbgGeomGrid &grid : someGrids()) {
    const NbgGeomGrid refined = grid.buildRefinedGeom(ratio);
    EXPECT_EQ(grid.getRefinedDiscretization(refined), ratio);
    EXPECT_EQ(refined.getRefinedDiscretization(grid), NbgIntVector3D::Null);
    EXPECT_NEAR(refined.getCellVolume() * ratio.product(), grid.getCellVolume(),
                1e-14 * grid.getCellVolume());

    const QVector<NbgVector3D> points = grid.getCellDiscretizationPoints(5, 4, 3, ratio);
    const QVector<qint64> ranks = grid.getRefinedCellRanks(5, 4, 3, ratio);
    ASSERT_EQ(points.size(), int(ratio.product()));
    ASSERT_EQ(ranks.size(), points.size());
    NbgVector3D mean;
    for (int i = 0; i < points.size(); ++i) {
      EXPECT_TRUE(i == 0 || ranks[i - 1] < ranks[i]);
      const double distance = (refined.getCellCenter(ranks[i]) - points[i]).norm();
      EXPECT_LT(distance, 1e-15 * (1. + points[i].norm()) * 4.);
      mean += points[i] / points.size();
    }
    EXPECT_LT((mean - grid.getCellCenter(5, 4, 3)).norm(), 1e-15 * (1. + mean.norm()) * 30.);
  }
  EXPECT_THROW(NbgGeomGrid().buildRefinedGeom({0, 1, 1}), NbeProgrammingError);
}

TEST(NbgGeomGrid, PartsOfAGridKeepItsNodes)
{
  for (const NbgGeomGrid &grid : someGrids()) {
    const NbgGeomGrid part = grid.extractGeometry({{3, 7}, {2, 2}, {1, 4}});
    EXPECT_EQ(part.getNodesNumber(), NbgIntVector3D(5, 1, 4));
    EXPECT_EQ(part.getOriginCentered(), grid.getCellCenter(3, 2, 1));
    EXPECT_TRUE(grid.isMatching(part, NbgGeomGrid::MATCH_SUBGRID));
    EXPECT_FALSE(part.isMatching(grid, NbgGeomGrid::MATCH_SUBGRID));
    EXPECT_TRUE(part.isMatching(grid, NbgGeomGrid::MATCH_FLOATING_DISC));
    EXPECT_FALSE(part.isMatching(grid, NbgGeomGrid::MATCH_STRICT_DISC));

    const NbgGeomGrid sampled = grid.buildSampledGeom({4, 3, 2});
    EXPECT_EQ(sampled.getNodesNumber(), NbgIntVector3D(4, 3, 3));
    const double distance = (sampled.getCellCenter(3, 2, 1) - grid.getCellCenter(12, 6, 2)).norm();
    EXPECT_LT(distance, 1e-15 * (1. + grid.getOriginCentered().norm()) * 4.);
    EXPECT_FALSE(grid.isMatching(sampled, NbgGeomGrid::MATCH_FLOATING_DISC));
  }
}

TEST(NbgGeomGrid, MatchingSeesShiftsTurnsAndCells)
{
  const NbgGeomGrid grid = makeGrid({10., 20., 30.}, {1., 2., 3.}, {100, 100, 100});
  NbgGeomGrid other = grid;
  EXPECT_EQ(other, grid);

  other.setOriginCentered(grid.getCellCenter(-3, 5, 0) + NbgVector3D(0., 0., 1.));
  EXPECT_FALSE(grid.isMatching(other, NbgGeomGrid::MATCH_FLOATING_DISC));
  EXPECT_TRUE(grid.isMatching(other, NbgGeomGrid::MATCH_FLOATING_DISC_ONLY_2D));
  other.setNodesNumber2D(40, 40);
  EXPECT_TRUE(grid.isMatching(other, NbgGeomGrid::MATCH_FLOATING_DISC_ONLY_2D));

  // Deviations that only show after a hundred cells.
  other = grid;
  other.setCellSize(1. + 1e-7, 2., 3.);
  EXPECT_FALSE(grid.isMatching(other, NbgGeomGrid::MATCH_STRICT_DISC));
  EXPECT_TRUE(grid.isMatching(other, NbgGeomGrid::MATCH_STRICT_DISC, 1e-4));
  other = grid;
  other.setRotation(NbgRotation(1e-5, 0., 0.));
  EXPECT_FALSE(grid.isMatching(other, NbgGeomGrid::MATCH_STRICT_DISC));
}

TEST(NbgGeomGrid, BlocksUnderABoxAreThoseOfItsPoints)
{
  const NbgGeomGrid grid = makeGrid({0., 0., 0.}, {0.1, 0.3, 0.7}, {13, 7, 5});
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> coordinate(-1., 5.);
  for (int draw = 0; draw < 300; ++draw) {
    const auto point = [&] {
      return NbgVector3D(coordinate(generator) * 0.4, coordinate(generator) * 0.6,
                         coordinate(generator));
    };
    const NbgBox box(point(), point());
    const NbiIntervalsIJK block = grid.getIJKIntervals(box);
    forEachCell(grid.getNodesNumber(), [&](int i, int j, int k) {
      const NbgBox cell(grid.getCellCorner(i, j, k), grid.getCellCorner(i + 1, j + 1, k + 1));
      ASSERT_EQ(block.isIncluded(i, j, k), cell.intersects(box));
    });
  }
  EXPECT_TRUE(grid.getIJKIntervals(NbgBox()).isEmpty());
  EXPECT_EQ(grid.getIJKIntervals(NbgBox({-1e29, -1e29, -1e29}, {1e29, 1e29, 1e29})),
            grid.getIJKIntervals());
}

TEST(NbgGeomGrid, SamplesOfABlockAreItsRanks)
{
  const NbgGeomGrid grid = makeGrid({}, NbgVector3D::Unit, {5, 4, 3});
  const NbiIntervalsIJK blocks[] = {{{0, 4}, {0, 3}, {0, 2}},
                                    {{1, 2}, {0, 3}, {0, 2}},
                                    {{1, 3}, {1, 2}, {1, 1}},
                                    {{-2, 9}, {3, 9}, {2, 2}},
                                    {{2, 1}, {0, 3}, {0, 2}}};
  const int counts[] = {1, 1, 6, 5, 0};
  for (int b = 0; b < 5; ++b) {
    const NbiIntervalIntLargeDisjoint ranks = grid.getSamplesIntervals(blocks[b]);
    EXPECT_EQ(ranks.count(), counts[b]);
    qint64 total = 0;
    forEachCell(grid.getNodesNumber(), [&](int i, int j, int k) {
      const bool isIn = blocks[b].isIncluded(i, j, k);
      total += isIn;
      ASSERT_EQ(ranks.isIncluded(grid.getRankFromIJK(i, j, k)), isIn);
    });
    EXPECT_EQ(ranks.getTotalLength(), total);
  }
}

TEST(NbgGeomGrid, BoundingBoxHoldsTheCells)
{
  const NbgGeomGrid grid =
      makeGrid({10., 20., 30.}, {1., 2., 3.}, {4, 3, 2}, NbgRotation(90., 0., 0.));
  NbgBox box;
  grid.updateBoundingBox(box);
  EXPECT_EQ(box, NbgBox({4., 20., 30.}, {10., 24., 36.}));
  box = NbgBox();
  NbgGeomGrid().updateBoundingBox(box);
  EXPECT_FALSE(box.isValid());
}
