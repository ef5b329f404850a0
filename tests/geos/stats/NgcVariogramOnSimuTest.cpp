#include "geos/stats/NgcVariogramOnSimu.h"

#include "basic/data/NbdMacroIndexInfo.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetPoints.h"
#include "geos/stats/NgcVariogramOnGrid.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

namespace {

using Vario = NgmEVarioExp::EValue;
using testsupport::errorOf;
using Provider = QSharedPointer<NbpMemoryProviderGridW>;

/// Two simulated variables with as many realizations, of which the first has a hole: rows x < 6 of
/// the grid's first variable are undefined.
struct Simulations
{
  Provider provider;
  QStringList macros;

  explicit Simulations(const NbgGeomGrid &geometry, int nRealizations = 3)
      : provider(Provider::create(geometry))
  {
    for (int v = 0; v < 2; ++v) {
      macros << provider->addMacro(QStringLiteral("SIM%1").arg(v), Nbd::TYPE_DOUBLE,
                                   NbdMacroIndexInfo());
      for (int r = 0; r < nRealizations; ++r)
        provider->addRealization(macros[v], NbdMacroIndex(r + 1), makeValues(geometry, v, r));
    }
  }

  static std::vector<double> makeValues(const NbgGeomGrid &geometry, int variable, int realization)
  {
    const qint64 n = geometry.getGridSize();
    std::vector<double> values = testsupport::normalValues(10 * variable + realization, n);
    for (qint64 i = 0; i < n; ++i) {
      if (variable == 0 && realization == 0 && geometry.getCellIJKFromRank(i).x() < 6)
        values[i] = NbbGlobal::D_FFFF;
    }
    return values;
  }

  NgdDataSetGrid makeDataSet() const
  {
    NgdDataSetGrid dataSet;
    dataSet.setDataProvider(provider);
    for (const QString &macro : macros)
      dataSet.assignMacro(Nbd::Role::V, macro);
    return dataSet;
  }
};

void run(NgcVariogramOnSimu &calculator)
{
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
  EXPECT_EQ(calculator.getCounter(), calculator.getCounterMax());
}

}  // namespace

TEST(NgcVariogramOnSimu, RunsTheGridCalculatorOnEachRealization)
{
  const NbgGeomGrid geometry = testsupport::makeGridGeometry2D(12, 20, 10., 5.);
  const Simulations data(geometry);
  NgcVariogramOnSimu calculator;
  calculator.setInputDataSet(data.makeDataSet());
  calculator.setVModel(NgmVModel(2));
  run(calculator);
  run(calculator);  // and again
  const QList<NgmVariogramExpData> &results = calculator.getResults();
  ASSERT_EQ(results.size(), 4);

  NgcVariogramOnGrid reference;
  reference.setInputDataSet(data.makeDataSet());
  reference.addDirection(NbgVector3D::X, 10., 6, QStringList());
  reference.addDirection(NbgVector3D::Y, 5., 10, QStringList());
  ASSERT_EQ(reference.execute(), NbcAProgress::COMPLETED);
  for (int dir = 0; dir < 2; ++dir) {
    for (const auto &pair : {std::make_pair(0, 0), {0, 1}, {1, 1}}) {
      const int i = pair.first, j = pair.second;
      const int nLags = results[3].getNLags(dir);
      QVector<double> mean(nLags, 0.), nPairs(nLags, 0.);
      for (int r = 0; r < 3; ++r) {
        const NgmVariogramExpData &expected = reference.getResults(r);
        const QVector<double> values = expected.getVarioColumn(dir, Vario::VARIOGRAM, i, j);
        EXPECT_EQ(results[r].getVarioColumn(dir, Vario::VARIOGRAM, i, j), values);
        EXPECT_EQ(results[r].getNumberOfPairs(dir, false, i, j),
                  expected.getNumberOfPairs(dir, false, i, j));
        for (int lag = 0; lag < nLags; ++lag) {
          const qint64 count = expected.getNumberOfPairs(dir, false, i, j)[lag];
          mean[lag] += values[lag] / 3.;  // 0 without pairs
          nPairs[lag] += double(count) / 3.;
        }
      }
      for (int lag = 0; lag < nLags; ++lag) {
        EXPECT_NEAR(results[3].getVarioColumn(dir, Vario::VARIOGRAM, i, j)[lag], mean[lag], 1e-14);
        EXPECT_NEAR(results[3].getNumberOfPairs(dir, false, i, j)[lag], nPairs[lag], 1.);
      }
      EXPECT_EQ(results[3].getDistances(dir, false, i, j),
                reference.getResults(1).getDistances(dir, false, i, j));
    }
  }
  // The realization with the hole has no pairs at the last lag across it.
  EXPECT_TRUE(results[0].getMasked(0, false, 0, 0)[5]);
  EXPECT_FALSE(results[3].getMasked(0, false, 0, 0)[5]);
}

TEST(NgcVariogramOnSimu, BitsDoNotDependOnThreads)
{
  const Simulations data(testsupport::makeGridGeometry(9, 8, 7, NbgVector3D(10., 5., 2.)), 5);
  std::vector<QVector<double>> expected;
  for (const int nThreads : {1, 2, 8}) {
    NgcVariogramOnSimu calculator;
    calculator.setInputDataSet(data.makeDataSet());
    calculator.setVModel(NgmVModel(2));
    calculator.setNThread(nThreads);
    run(calculator);
    std::vector<QVector<double>> values;
    for (const NgmVariogramExpData &result : calculator.getResults()) {
      for (int dir = 0; dir < 3; ++dir)
        values.push_back(result.getVarioColumn(dir, Vario::VARIOGRAM, 0, 1));
    }
    if (expected.empty())
      expected = values;
    EXPECT_EQ(values.size(), 18U);
    EXPECT_EQ(values, expected) << nThreads << " threads";
  }
}

TEST(NgcVariogramOnSimu, FollowsTheModelOrTheRotation)
{
  const Simulations data(testsupport::makeGridGeometry(10, 9, 8, NbgVector3D(10., 5., 2.)), 1);
  NgmVModel model(2);
  model.addStructure(QStringLiteral("Spherical"), 1.);
  model.setRotation(0, NbgRotation(30., 0., 0.));
  NgcVariogramOnSimu calculator;
  calculator.setInputDataSet(data.makeDataSet());
  calculator.setVModel(model);
  run(calculator);
  {
    const NgmVariogramExpData &result = calculator.getResults().last();
    EXPECT_EQ(result.getAllDirectionGroupNames(),
              QStringList() << QStringLiteral("Horizontal") << QStringLiteral("Normal"));
    EXPECT_EQ(result.getDirectionName(0), QStringLiteral("N60"));
    ASSERT_EQ(result.getNDirections(), 3);
    EXPECT_EQ(result.getNLags(2), 4);  // half of 8 cells of 2
  }
  const NbgRotation tilted(30., 10., 0.);
  calculator.setRotation(tilted);
  calculator.setBoundingBox(NbgBox(NbgVector3D(), NbgVector3D(40., 40., 8.)));
  run(calculator);
  const NgmVariogramExpData &result = calculator.getResults().last();
  EXPECT_EQ(result.getAllDirectionGroupNames(),
            QStringList() << QStringLiteral("Ref. Plane") << QStringLiteral("Normal"));
  EXPECT_NEAR(result.getDirectionVector(2).z(), tilted.getAxisZ().z(), 1e-14);
  // Cells of 2 and a box of 8 across the third axis.
  EXPECT_EQ(result.getNLags(2), 2);
}

TEST(NgcVariogramOnSimu, TellsWhatIsMissing)
{
  NgcVariogramOnSimu calculator;
  EXPECT_EQ(errorOf([&] { calculator.getResults(); }),
            QStringLiteral("NgcVariogramOnSimu::getResults: no available variograms"));
  const auto errorOfRun = [&] {
    EXPECT_EQ(calculator.execute(), NbcAProgress::FAILED);
    return calculator.getErrorMessage();
  };
  NgdDataSetPoints points;
  points.setDataProvider(testsupport::makePoints(5));
  calculator.setInputDataSet(points);
  EXPECT_EQ(errorOfRun(),
            QStringLiteral("NgcVariogramOnSimu::_checkDatasets: Input Dataset must be a grid"));

  const NbgGeomGrid geometry = testsupport::makeGridGeometry2D(4, 3, 1., 1.);
  calculator.setInputDataSet(Simulations(geometry).makeDataSet());
  EXPECT_EQ(errorOfRun(), QStringLiteral("NgcVariogramOnSimu: no model defined."));

  calculator.setVModel(NgmVModel(2));
  calculator.setInputDataSet(Simulations(geometry, 0).makeDataSet());
  EXPECT_EQ(errorOfRun(), QStringLiteral("There is no realization in the input grid."));

  const Simulations uneven(geometry);
  uneven.provider->addRealization(uneven.macros[1], NbdMacroIndex(9), std::vector<double>(12, 0.));
  calculator.setInputDataSet(uneven.makeDataSet());
  EXPECT_EQ(errorOfRun(), QStringLiteral("The variables do not have the same realizations."));
}
