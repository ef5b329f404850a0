#include "geos/stats/NgmVarioMap.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableInt64.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

using testsupport::errorOf;
using testsupport::expectAssertion;
using testsupport::uniform;

namespace {

const QString SOURCE = QStringLiteral("stats\\NgmVarioMap");
constexpr double DEGREES = 180. / M_PI;

qint64 countOf(const NbdVariableInt64 &counts)
{
  return std::accumulate(counts.getArrayConst(), counts.getArrayConst() + counts.getNValues(),
                         qint64(0));
}

int roundedClass(double degrees, int n)
{
  return int(std::floor(degrees * n / 180. + 0.5)) % n;
}

/// The cell of a vector of azimuth in [0, 180), by its angles and the equation of the ellipsoid; -1
/// outside.
qint64 cellOf(const NgmVarioMap &map, const NbgVector3D &h)
{
  const double azimuth = std::atan2(h.y(), h.x()) * DEGREES;
  double dip = std::atan2(h.z(), std::hypot(h.x(), h.y())) * DEGREES;
  dip = dip < 0. ? dip + 180. : dip;
  const int j = roundedClass(azimuth, map.getNtheta());
  const int k = map.getNphi() == 1 ? 0 : roundedClass(dip, map.getNphi());
  const double theta = j * M_PI / map.getNtheta();
  const double phi = k * M_PI / map.getNphi();
  const NbgVector3D u(std::cos(phi) * std::cos(theta) / map.getMaxAxes().x(),
                      std::cos(phi) * std::sin(theta) / map.getMaxAxes().y(),
                      std::sin(phi) / map.getMaxAxes().z());
  const double reach = 1. / u.norm();
  if (h.norm() >= reach)
    return -1;
  return map.getIndex(int(std::floor(h.norm() / reach * (map.getNrho() - 0.5) + 0.5)), j, k);
}

NbgVector3D randomVector(int i, double reach)
{
  return {uniform(1, i, -reach, reach), uniform(2, i, 1e-3, reach), uniform(3, i, -reach, reach)};
}

}  // namespace

TEST(NgmVarioMap, PairsFallIntoTheCellOfTheirAnglesWithinTheEllipsoid)
{
  const NbgRotation frame(25., 10., 0.);
  for (const int nphi : {1, 4}) {
    NgmVarioMap map(5, 6, nphi, NbgVector3D(30., 20., 10.), frame, 2);
    std::vector<qint64> expected(map.getGrid().getNSamples(), 0);
    for (int i = 0; i < 4000; ++i) {
      const NbgVector3D local = randomVector(i, 30.);
      map.addPair(1, 0, frame.localToWorld(local), 2.);
      const qint64 cell = cellOf(map, local);
      if (cell >= 0)
        ++expected[cell];
    }
    const NbdVariableInt64 &counts = map.getNPairs(0, 1);
    for (int node = 0; node < counts.getNValues(); ++node) {
      EXPECT_EQ(counts.getValueAsType(node), expected[node]) << node;
      EXPECT_EQ(map.getVarioSum(1, 0).getValueAsType(node), 2. * double(expected[node]));
    }
    EXPECT_EQ(countOf(map.getNPairs(0, 0)), 0);
  }
}

TEST(NgmVarioMap, VerticalPairsAreCountedApartAndNullOnesNever)
{
  NgmVarioMap map(4, 6, 3, NbgVector3D(10., 10., 7.), NbgRotation(), 1);
  map.addPair(0, 0, NbgVector3D(0., 0., 3.), 5.);
  map.addPair(0, 0, NbgVector3D(0., 0., -3.), 1.);
  map.addPair(0, 0, NbgVector3D(0., 0., 7.), 1.);
  map.addPair(0, 0, NbgVector3D(0., 0., 0.), 1.);
  EXPECT_EQ(countOf(map.getNPairs(0, 0)), 0);
  // Steps of 2: the second class ends at 3.
  EXPECT_EQ(map.getNPairsVertical(0, 0).getVector(), std::vector<qint64>({0, 2, 0, 0}));
  EXPECT_EQ(map.getVarioSumVertical(0, 0).getValueAsType(1), 6.);
}

TEST(NgmVarioMap, ClassesAreCentredAndTheFirstHoldsBothEndsOfTheHalfTurn)
{
  NgmVarioMap map(2, 18, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1);
  const auto classOf = [&](double degrees) {
    const qint64 cell =
        map.locate(NbgVector3D(3. * std::cos(degrees / DEGREES), 3. * std::sin(degrees / DEGREES)));
    return map.getGrid().getGeometry().getCellIJKFromRank(cell).y();
  };
  EXPECT_EQ(classOf(179.), 0);
  EXPECT_EQ(classOf(175.1), 0);
  EXPECT_EQ(classOf(174.9), 17);
  EXPECT_EQ(classOf(4.9), 0);
  EXPECT_EQ(classOf(5.1), 1);
  EXPECT_EQ(classOf(90.), 9);
  EXPECT_EQ(classOf(-90.), 9);
}

TEST(NgmVarioMap, ClassesAreThoseOfTheAngleForAnyNumber)
{
  for (const int n : {1, 2, 3, 17, 18, 400, 1001}) {
    const NgmVarioMap map(1, n, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1);
    for (int i = 0; i < 3004; ++i) {
      // The axes themselves first, as pairs of a grid lie on them.
      const double turn = i < 4 ? 0.25 * i : uniform(7, i);
      const double axes[][2] = {{1., 0.}, {0., 1.}, {-1., 0.}, {0., -1.}};
      const double x = i < 4 ? axes[i][0] : std::cos(2. * M_PI * turn);
      const double y = i < 4 ? axes[i][1] : std::sin(2. * M_PI * turn);
      const double place = 2. * n * turn + 0.5;
      if (std::abs(place - std::round(place)) < 1e-9)
        continue;  // on the bound of two classes
      const qint64 cell = map.locate(NbgVector3D(x, y));
      EXPECT_EQ(map.getGrid().getGeometry().getCellIJKFromRank(cell).y(), int(place) % n)
          << n << " classes, (" << x << ", " << y << ")";
    }
  }
}

TEST(NgmVarioMap, NormalizedCellsAreHalfTheMeanAndUndefinedWithoutPairs)
{
  NgmVarioMap map(2, 4, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1);
  map.addPair(0, 0, NbgVector3D(8., 0., 0.), 3.);
  map.addPair(0, 0, NbgVector3D(-8., 0., 0.), 5.);
  map.addPair(0, 0, NbgVector3D(0., 1., 0.), 4.);
  NgmVarioMap other(2, 4, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1);
  other.addPair(0, 0, NbgVector3D(0., 1., 0.), 4.);
  map.sum(other);
  EXPECT_EQ(map.getVarioCurve(0, 0, 0., 0.).getVector(), std::vector<double>({0., 2.}));
  map.normalize();
  const qint64 node = map.getIndex(1, 0, 0);
  EXPECT_EQ(map.getVarioSum(0, 0).getValueAsType(int(node)), 2.);
  EXPECT_EQ(map.getWeight(0, 0).getValueAsType(int(node)), 0.5);
  EXPECT_TRUE(map.getVarioSum(0, 0).isUndefined(int(map.getIndex(0, 0, 0))));

  EXPECT_EQ(map.getVarioCurve(0, 0, 180., 0.).getVector(), std::vector<double>({0., 2.}));
  EXPECT_EQ(map.getVarioCurve(0, 0, -90., 0.).getVector(), std::vector<double>({2., 0.}));
  const NbdDataTable table = map.getVariogramData(0, 0, 1., 0.);
  EXPECT_EQ(table.toString().section(QLatin1Char('\n'), 0, 0),
            QStringLiteral("Dist\tNumber of pairs\tVariogram Map"));
  EXPECT_EQ(table.getVarInt64(Nbd::Role::NPAIRS)->getValueAsType(1), 2);
  // The first class is 10 / 3 wide, its centre in the middle.
  EXPECT_DOUBLE_EQ(table.getVarDouble(Nbd::Role::DISTANCE)->getValue(0), 10. / 6.);
  EXPECT_DOUBLE_EQ(table.getVarDouble(Nbd::Role::DISTANCE)->getValue(1), 10. / 1.5);

  NgmVarioMap coarser(2, 3, 1, NbgVector3D(10., 10., 10.), NbgRotation(), 1);
  expectAssertion(SOURCE, QStringLiteral("NgmVarioMap::sum : incompatible NgmVarioMap"),
                  [&] { coarser.sum(other); });
  other.addPair(0, 0, NbgVector3D(1., 0., 0.), NbbGlobal::D_FFFF);
  expectAssertion(SOURCE, QStringLiteral("NgmVarioMap::normalize: invalid variogram value"),
                  [&] { other.normalize(); });
  EXPECT_EQ(map.debug(0), QStringLiteral("NgmVarioMap:\nNrho =2,Ntheta =4,Nphi =1\n"));
}

TEST(NgmVarioMap, CentresAndDirectionsLeadBackToTheirCells)
{
  const NgmVarioMap map(4, 6, 5, NbgVector3D(30., 20., 10.), NbgRotation(40., 20., -10.), 1);
  for (int node = 0; node < map.getGrid().getNSamples(); ++node) {
    const NbgIntVector3D cell = map.getGrid().getGeometry().getCellIJKFromRank(node);
    const NbgVector3D centre = map.getCenter(cell);
    EXPECT_EQ(map.getIndexFromRTP(centre), cell);
    EXPECT_EQ(map.getIndexFromRTP(centre + NbgVector3D(0., 180., 180.)), cell);

    // The same direction through the world.
    const NbgVector3D world = NgmVarioMap::getDirectionVectorFromRTP(map.getRot(), centre);
    EXPECT_NEAR(world.norm(), centre.x(), 1e-12);
    EXPECT_EQ(map.locate(map.oriented(map.toFrame(world))), node);
    int iTheta = -1;
    int iPhi = -1;
    map.getIThetaIPhi(map.getRot(), centre.y(), centre.z(), iTheta, iPhi);
    EXPECT_EQ(NbgIntVector3D(cell.x(), iTheta, iPhi), cell);
  }
  // East in the world is at azimuth -40 in a frame that is turned by 40 degrees.
  const NgmVarioMap turned(4, 6, 1, NbgVector3D(1., 1., 1.), NbgRotation(40., 0., 0.), 1);
  const NbgVector3D rtp = turned.getRTPAfterRot(NbgRotation(), NbgVector3D(2., 0., 0.));
  EXPECT_NEAR(rtp.x(), 2., 1e-12);
  EXPECT_NEAR(rtp.y(), 140., 1e-12);
}

TEST(NgmVarioMap, CoarserMapsKeepPairsAndSums)
{
  NgmVarioMap map(6, 12, 6, NbgVector3D(30., 20., 10.), NbgRotation(20., 0., 0.), 2);
  for (int node = 0; node < map.getGrid().getNSamples(); ++node) {
    const NbgVector3D centre = map.getCenter(map.getGrid().getGeometry().getCellIJKFromRank(node));
    const NbgVector3D local =
        map.toFrame(NgmVarioMap::getDirectionVectorFromRTP(map.getRot(), centre));
    map.addPair(0, 1, map.getRot().localToWorld(map.oriented(local)), 1.);
  }
  for (int i = 0; i < 3000; ++i) {
    map.addPair(0, 1, randomVector(i, 30.), uniform(5, i, 0., 4.));
    map.addPair(1, 1, randomVector(i, 30.), 1.);
  }
  map.addPair(1, 1, NbgVector3D(0., 0., 4.), 1.);
  const auto sumOf = [](const NgmVarioMap &m, int i, int j) {
    const std::vector<double> sums = m.getVarioSum(i, j).getVector();
    return std::accumulate(sums.begin(), sums.end(), 0.);
  };
  // The same geometry: the same map.
  const NgmVarioMap same = map.buildCoarseVMap(30., 20., 10., 6, 12, 6, 0, 1, 20., 0., 0.);
  EXPECT_EQ(same.getNPairs(0, 1).getVector(), map.getNPairs(0, 1).getVector());
  EXPECT_EQ(same.getNPairsVertical(1, 1).getVector(), map.getNPairsVertical(1, 1).getVector());

  // A larger ellipsoid holds all pairs, in any frame.
  const NgmVarioMap coarse = map.buildCoarseVMap(40., 40., 40., 3, 4, 3, 1, 1, 70., 30., 0.);
  EXPECT_EQ(coarse.getNvar(), 1);
  EXPECT_EQ(countOf(coarse.getNPairs(0, 0)) + countOf(coarse.getNPairsVertical(0, 0)),
            countOf(map.getNPairs(1, 1)) + countOf(map.getNPairsVertical(1, 1)));

  // The sums survive normalization; finer cells are filled from those around them.
  const double before = sumOf(map, 0, 1);
  map.normalize();
  const NgmVarioMap normalized = map.buildCoarseVMap(40., 40., 40., 3, 4, 3, 0, 1, 0., 0., 0.);
  double after = 0.;
  for (int node = 0; node < normalized.getGrid().getNSamples(); ++node) {
    const qint64 n = normalized.getNPairs(0, 1).getValueAsType(node);
    after += n > 0 ? 2. * double(n) * normalized.getVarioSum(0, 1).getValueAsType(node) : 0.;
  }
  EXPECT_NEAR(after, before, 1e-9 * before);
  const NgmVarioMap holes = map.buildCoarseVMap(20., 15., 8., 8, 36, 12, 0, 1, 20., 0., 0.);
  const NgmVarioMap filled = map.buildCoarseVMap_V3(20., 15., 8., 8, 36, 12, 0, 1, 20., 0., 0.);
  const auto nUndefined = [](const NgmVarioMap &m) {
    return m.getVarioSum(0, 1).getNValues() - m.getVarioSum(0, 1).getNDefined();
  };
  EXPECT_GT(nUndefined(holes), 2000);
  EXPECT_LT(nUndefined(filled), nUndefined(holes) / 5);
  EXPECT_NE(errorOf([&] { map.buildCoarseVMap(1., 1., 1., 2, 2, 2, 1, 2, 0., 0., 0.); }),
            QStringLiteral("nothing thrown"));
}
