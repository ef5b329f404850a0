#include "geos/stats/NgcVariogramOnGrid.h"

#include "basic/data/NbdMacroIndexInfo.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Vario = NgmEVarioExp::EValue;
using testsupport::errorOf;
using testsupport::expectAssertion;
using testsupport::normal;
using testsupport::uniform;
using Provider = QSharedPointer<NbpMemoryProviderGridW>;

const QString PATH = QStringLiteral("stats\\NgcVariogramOnGrid");

struct Direction
{
  NbgVector3D vector;
  double lag;
  int nLags;
};

/// Values far from 0 with holes, a different one in each variable.
std::vector<double> makeValues(qint64 n, int variable, double mean = 100.)
{
  std::vector<double> values(n);
  for (qint64 i = 0; i < n; ++i)
    values[i] = uniform(20 + variable, i) < 0.1
                    ? NbbGlobal::D_FFFF
                    : mean + 10. * variable + normal(3, i) + variable * normal(4 + variable, i);
  return values;
}

struct Grid
{
  NbgGeomGrid geometry;
  std::vector<double> variables[2];
  std::vector<bool> selection;
  Provider provider;

  explicit Grid(const NbgGeomGrid &geom, double mean = 100.) : geometry(geom)
  {
    const qint64 n = geometry.getGridSize();
    provider = Provider::create(geometry);
    for (int k = 0; k < 2; ++k) {
      variables[k] = makeValues(n, k, mean);
      provider->addVariable(QStringLiteral("V%1").arg(k), variables[k]);
    }
    for (qint64 i = 0; i < n; ++i)
      selection.push_back(uniform(30, i) > 0.1);
    provider->setSelection(selection);
  }

  NgdDataSetGrid makeDataSet(int nVariables = 2) const
  {
    NgdDataSetGrid dataSet;
    dataSet.setDataProvider(provider);
    for (int k = 0; k < nVariables; ++k)
      dataSet.assignVariable(Nbd::Role::V, provider->getIdFromName(QStringLiteral("V%1").arg(k)));
    return dataSet;
  }

  double valueAt(int variable, const NbgIntVector3D &node) const
  {
    if (!geometry.isIjkValid(node))
      return NbbGlobal::D_FFFF;
    const qint64 rank = geometry.getRankFromIJK(node);
    return selection[rank] ? variables[variable][rank] : NbbGlobal::D_FFFF;
  }
};

NbgGeomGrid plane(int nx, int ny)
{
  return testsupport::makeGridGeometry2D(nx, ny, 10., 5.);
}

NbgGeomGrid rotatedSolid(int nx, int ny, int nz)
{
  NbgGeomGrid geometry = testsupport::makeGridGeometry(nx, ny, nz, NbgVector3D(10., 5., 2.));
  geometry.setRotation(NbgRotation(30., 20., -40.));
  geometry.setOriginCentered(NbgVector3D(1000., -500., 30.));
  return geometry;
}

struct Lag
{
  double distance = 0.;
  qint64 nPairs = 0;
  double value = 0.;
};

/// All nodes of `step` with the node nearest to the end of the lag.
Lag bruteForce(const Grid &grid, const Direction &direction, int lag, int i, int j,
               const NbgIntVector3D &step = NbgIntVector3D(1, 1, 1))
{
  const NbgVector3D cell = grid.geometry.getCellSize();
  const NbgVector3D local = grid.geometry.getRotation().worldToLocal(
      direction.vector.normalized(direction.lag * (lag + 1)));
  const int nAxes = grid.geometry.is2D() ? 2 : 3;
  NbgIntVector3D h;
  Lag result;
  for (int axis = 0; axis < nAxes; ++axis) {
    h[axis] = int(std::lround(local[axis] / cell[axis]));
    if (std::abs(h[axis]) >= grid.geometry.getNodesNumber()[axis])
      return Lag();  // beyond the grid
    result.distance += h[axis] * cell[axis] * h[axis] * cell[axis];
  }
  result.distance = std::sqrt(result.distance);
  const NbgIntVector3D nodes = grid.geometry.getNodesNumber();
  for (int x = 0; x < nodes.x(); x += step.x()) {
    for (int y = 0; y < nodes.y(); y += step.y()) {
      for (int z = 0; z < nodes.z(); z += step.z()) {
        const NbgIntVector3D tail(x, y, z), head(x + h.x(), y + h.y(), z + h.z());
        const double values[] = {grid.valueAt(i, tail), grid.valueAt(i, head),
                                 grid.valueAt(j, tail), grid.valueAt(j, head)};
        if (!std::all_of(values, values + 4, [](double v) { return NbbGlobal::isDefined(v); }))
          continue;
        ++result.nPairs;
        result.value += 0.5 * (values[1] - values[0]) * (values[3] - values[2]);
      }
    }
  }
  result.value /= result.nPairs > 0 ? double(result.nPairs) : 1.;
  return result;
}

void run(NgcVariogramOnGrid &calculator, const NgdDataSetGrid &dataSet,
         const std::vector<Direction> &directions)
{
  calculator.setInputDataSet(dataSet);
  for (const Direction &direction : directions)
    calculator.addDirection(direction.vector, direction.lag, direction.nLags, QStringList());
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
}

/// Every lag of both routes, in counts exactly and in values to 1e-9 of the variograms' size.
void expectBruteForce(const Grid &grid, const std::vector<Direction> &directions,
                      double decimation = 1.)
{
  for (const bool useFft : {false, true}) {
    SCOPED_TRACE(useFft ? "FFT" : "direct");
    NgcVariogramOnGrid calculator;
    calculator.setUseFFT(useFft);
    calculator.setDecimation(decimation);
    run(calculator, grid.makeDataSet(), directions);
    NbgIntVector3D step, extension;
    calculator.getDecimationAndBufferExtension(step, extension);
    const NgmVariogramExpData &results = calculator.getResults(0);
    for (int dir = 0; dir < int(directions.size()); ++dir) {
      for (int k = 0; k < directions[dir].nLags; ++k) {
        for (const auto &pair : {std::make_pair(0, 0), {0, 1}, {1, 1}}) {
          SCOPED_TRACE(testing::Message() << "direction " << dir << " lag " << k << " variables "
                                          << pair.first << pair.second);
          const Lag lag = bruteForce(grid, directions[dir], k, pair.first, pair.second, step);
          ASSERT_EQ(results.getNumberOfPairs(dir, false, pair.first, pair.second)[k], lag.nPairs);
          EXPECT_NEAR(results.getDistances(dir, false, pair.first, pair.second)[k], lag.distance,
                      1e-12 * lag.distance);
          EXPECT_NEAR(results.getVarioColumn(dir, Vario::VARIOGRAM, pair.first, pair.second)[k],
                      lag.value, 1e-9);
        }
      }
    }
  }
}

}  // namespace

TEST(NgcVariogramOnGrid, BothRoutesAgreeWithALoopOverTheNodesOfAPlane)
{
  const Grid grid(plane(17, 13));
  expectBruteForce(grid, {{NbgVector3D(1., 0.), 10., 16},
                          {NbgVector3D(0., -3.), 5., 12},
                          {NbgVector3D(2., 1.), std::sqrt(500.), 7},
                          {NbgVector3D(-1., 1.), 9.3, 6}});
}

TEST(NgcVariogramOnGrid, BothRoutesAgreeWithALoopOverTheNodesOfARotatedSolid)
{
  const Grid grid(rotatedSolid(9, 8, 7));
  const NbgRotation &axes = grid.geometry.getRotation();
  expectBruteForce(grid, {{axes.getAxisX(), 10., 8},
                          {axes.getAxisZ() * -1., 2., 6},
                          {NbgVector3D(1., 2., 0.5), 4.1, 5},
                          {NbgVector3D(0., 0., -1.), 3.3, 4}});
}

TEST(NgcVariogramOnGrid, RoutesAgreeOnLargerGridsFarFromZero)
{
  for (const NbgGeomGrid &geometry : {plane(150, 101), rotatedSolid(31, 24, 19)}) {
    const Grid grid(geometry, 1e6);
    const NbgRotation &axes = geometry.getRotation();
    const std::vector<Direction> directions{{axes.getAxisX(), 10., 30}, {axes.getAxisY(), 5., 20}};
    NgcVariogramOnGrid direct, fft;
    direct.setUseFFT(false);
    run(direct, grid.makeDataSet(), directions);
    run(fft, grid.makeDataSet(), directions);
    for (int dir = 0; dir < 2; ++dir) {
      for (int i = 0; i < 2; ++i) {
        for (int j = i; j < 2; ++j) {
          EXPECT_EQ(direct.getResults(0).getNumberOfPairs(dir, false, i, j),
                    fft.getResults(0).getNumberOfPairs(dir, false, i, j));
          const auto a = direct.getResults(0).getVarioColumn(dir, Vario::VARIOGRAM, i, j);
          const auto b = fft.getResults(0).getVarioColumn(dir, Vario::VARIOGRAM, i, j);
          for (int lag = 0; lag < a.size(); ++lag)
            EXPECT_NEAR(a[lag], b[lag], 1e-9 * a[lag]);
        }
      }
    }
  }
}

TEST(NgcVariogramOnGrid, KnowsNeitherWeightsNorMask)
{
  const Grid grid(plane(20, 15));
  const std::vector<Direction> directions{{NbgVector3D(1., 0.), 10., 10}};
  NgdDataSetGrid dataSet = grid.makeDataSet();
  NgcVariogramOnGrid plain, bound;
  run(plain, dataSet, directions);
  for (const QString &role : {Nbd::Role::WEIGHT, Nbd::Role::MASK})
    dataSet.assignVariable(
        role, grid.provider->addVariable(role, testsupport::uniformValues(9, 300, 0., 1.)));
  run(bound, dataSet, directions);
  EXPECT_EQ(plain.getResults(0).getNumberOfPairs(0, false, 0, 1),
            bound.getResults(0).getNumberOfPairs(0, false, 0, 1));
  EXPECT_EQ(plain.getResults(0).getVarioColumn(0, Vario::VARIOGRAM, 0, 1),
            bound.getResults(0).getVarioColumn(0, Vario::VARIOGRAM, 0, 1));
}

TEST(NgcVariogramOnGrid, KeepsRowsWithoutPairsEmpty)
{
  const Grid grid(plane(6, 4));
  NgcVariogramOnGrid calculator;
  // Lag 1 is shorter than half a cell, lag 15 longer than the grid.
  run(calculator, grid.makeDataSet(1),
      {{NbgVector3D(1., 0.), 4., 15}, {NbgVector3D(0, 0, 1), 5., 2}});
  const NgmVariogramExpData &results = calculator.getResults(0);
  EXPECT_TRUE(results.getMasked(0, false, 0, 0)[0]);
  EXPECT_FALSE(results.getMasked(0, false, 0, 0)[1]);
  EXPECT_EQ(results.getDistances(0, false, 0, 0)[1], 10.);
  EXPECT_TRUE(results.getMasked(0, false, 0, 0)[14]);
  EXPECT_EQ(results.getDistances(0, false, 0, 0)[14], 0.);
  EXPECT_EQ(results.getNumberOfPairs(1, false, 0, 0), QVector<qint64>({0, 0}));
  // Several lags end in one cell.
  EXPECT_EQ(calculator.getVariogramGridIncrements().size(), 5);
  EXPECT_EQ(calculator.getVMapGeometry().getNodesNumber().toString(),
            NbgIntVector3D(11, 1, 1).toString());
}

TEST(NgcVariogramOnGrid, DescribesItsDirections)
{
  const Grid grid(plane(6, 4));
  NgcVariogramOnGrid calculator;
  calculator.setComputeCross(false);
  calculator.setReferencePlane(NbgRotation(15., 0., 0.));
  calculator.addDirection(
      NbgVector3D(1., 1.), 20., 2,
      QMap<int, QString>{{4, QStringLiteral("four")}, {2, QStringLiteral("two")}});
  run(calculator, grid.makeDataSet(), {{NbgVector3D(1., 0.), 10., 3}});
  const NgmVariogramExpData &results = calculator.getResults(0);
  EXPECT_EQ(results.getAllDirectionNames(), QStringList()
                                                << QStringLiteral("N45") << QStringLiteral("N90"));
  EXPECT_EQ(results.getDirectionGroupRanks(0), QList<int>({2, 4}));
  EXPECT_EQ(results.getDirectionGroupNames(0),
            QStringList() << QStringLiteral("two") << QStringLiteral("four"));
  EXPECT_NEAR(results.getReferencePlaneOrientation(0, QStringLiteral("two")).getAxisX().x(),
              std::cos(15. * M_PI / 180.), 1e-15);
  EXPECT_TRUE(results.getDirectionGroupNames(1).isEmpty());
  EXPECT_EQ(results.getMinimumLag(), 10.);
  EXPECT_TRUE(errorOf([&] {
                results.getVariogramData(0, 0, 1);
              }).endsWith(QStringLiteral("Cross variograms are not computed.")));
}

TEST(NgcVariogramOnGrid, DecimationThinsNodesButKeepsTheLags)
{
  const Grid grid(plane(40, 30));
  const auto stepOf = [&](double ratio, const std::vector<Direction> &directions) {
    NgcVariogramOnGrid calculator;
    calculator.setDecimation(ratio);
    run(calculator, grid.makeDataSet(1), directions);
    NbgIntVector3D step, extension;
    calculator.getDecimationAndBufferExtension(step, extension);
    return step.toString();
  };
  const std::vector<Direction> evenLags{{NbgVector3D(1., 0.), 20., 5},
                                        {NbgVector3D(0., 1.), 30., 4}};
  EXPECT_EQ(stepOf(1., evenLags), NbgIntVector3D(1, 1, 1).toString());
  EXPECT_EQ(stepOf(0.25, evenLags), NbgIntVector3D(2, 2, 1).toString());
  EXPECT_EQ(stepOf(0.1, evenLags), NbgIntVector3D(2, 3, 1).toString());
  EXPECT_EQ(stepOf(1e-5, evenLags), NbgIntVector3D(2, 6, 1).toString());
  // Rows are free, columns are not.
  EXPECT_EQ(stepOf(0.1, {{NbgVector3D(1., 0.), 10., 5}}), NbgIntVector3D(1, 10, 1).toString());
  expectBruteForce(grid, evenLags, 0.1);
}

TEST(NgcVariogramOnGrid, EachRealizationOfAMacroHasItsResult)
{
  const Grid grid(plane(25, 20));
  const qint64 n = grid.geometry.getGridSize();
  const QString macro =
      grid.provider->addMacro(QStringLiteral("SIM"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
  QStringList plain;
  for (int r = 0; r < 3; ++r) {
    const std::vector<double> values = makeValues(n, 5 + r);
    grid.provider->addRealization(macro, NbdMacroIndex(r + 1), values);
    plain << grid.provider->addVariable(QStringLiteral("R%1").arg(r), values);
  }
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(grid.provider);
  dataSet.assignMacro(Nbd::Role::V, macro);
  const std::vector<Direction> directions{{NbgVector3D(1., 0.), 10., 10}};
  for (const int nThreads : {1, 2, 8}) {
    NgcVariogramOnGrid calculator;
    calculator.setNThread(nThreads);
    run(calculator, dataSet, directions);
    ASSERT_EQ(calculator.getNResults(), 3);
    for (int r = 0; r < 3; ++r) {
      NgdDataSetGrid one;
      one.setDataProvider(grid.provider);
      one.assignVariable(Nbd::Role::V, plain[r]);
      NgcVariogramOnGrid alone;
      run(alone, one, directions);
      EXPECT_EQ(calculator.getResults(r).getVarioColumn(0, Vario::VARIOGRAM, 0, 0),
                alone.getResults(0).getVarioColumn(0, Vario::VARIOGRAM, 0, 0));
    }
  }
}

TEST(NgcVariogramOnGrid, ScarceMemoryTakesThreadsAway)
{
  const Grid grid(plane(40, 30));
  NgcVariogramOnGrid calculator;
  calculator.setNThread(4);
  calculator.setAvailableMemBytes(40 * 30 * 8 * 2 * 3 - 1);  // three threads less a byte
  run(calculator, grid.makeDataSet(), {{NbgVector3D(1., 0.), 10., 10}});
  EXPECT_EQ(calculator.getNThread(), 2);

  calculator.setAvailableMemBytes(40 * 30 * 8);
  EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
  EXPECT_EQ(calculator.getErrorMessage(),
            QStringLiteral("There is not enough memory to handle the grid data."));
  EXPECT_EQ(calculator.getErrorType(), NbeError::MEMORY);
}

TEST(NgcVariogramOnGrid, RefusesWhatMakesNoSense)
{
  NgcVariogramOnGrid calculator;
  expectAssertion(PATH, QStringLiteral("No grid dataset defined!"),
                  [&] { calculator.getGridDataset(); });
  for (const double ratio : {0.9e-5, 1.1, std::nan("")})
    expectAssertion(PATH, QStringLiteral("Invalid parameter"),
                    [&] { calculator.setDecimation(ratio); });
  const QString invalid = QStringLiteral("direction.norm() > 0 && lag > 0 && nLags > 0");
  expectAssertion(PATH, invalid,
                  [&] { calculator.addDirection(NbgVector3D(), 1., 1, QStringList()); });
  expectAssertion(PATH, invalid,
                  [&] { calculator.addDirection(NbgVector3D::X, 0., 1, QStringList()); });
  expectAssertion(PATH, invalid,
                  [&] { calculator.addDirection(NbgVector3D::X, 1., 0, QStringList()); });

  const auto errorOfRun = [&] {
    EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
    return calculator.getErrorMessage();
  };
  NgdDataSetPoints points;
  points.setDataProvider(testsupport::makePoints(5));
  calculator.setInputDataSet(points);
  EXPECT_TRUE(errorOfRun().endsWith(QStringLiteral("No grid dataset defined!")));

  const Grid grid(plane(6, 4));
  calculator.setInputDataSet(grid.makeDataSet());
  EXPECT_TRUE(errorOfRun().endsWith(QStringLiteral("No direction defined.")));
  EXPECT_TRUE(errorOf([&] { calculator.getResults(0); }).contains(QStringLiteral("isCompleted()")));

  ASSERT_TRUE(grid.provider->setSelection(std::vector<bool>(24, false)));
  EXPECT_EQ(errorOfRun(),
            QStringLiteral(
                "WARNING: nothing to do, there is no selected data in the input grid dataset."));
}
