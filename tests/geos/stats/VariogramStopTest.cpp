#include "basic/data/NbdMacroIndexInfo.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/data/NgdDataSetGrid.h"
#include "geos/data/NgdDataSetLines.h"
#include "geos/stats/NgcVarioMap.h"
#include "geos/stats/NgcVariogram.h"
#include "geos/stats/NgcVariogram1D.h"
#include "geos/stats/NgcVariogramExp.h"
#include "geos/stats/NgcVariogramOnGrid.h"
#include "geos/stats/NgcVariogramOnSimu.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"
#include "support/VariogramOracle.h"

#include <memory>

using namespace variogramtest;

namespace {

constexpr int N_SAMPLES = 4500;

/// Stops a run at `step`, and another one when it has begun to count.
void expectStops(NbcAProgress &calculator, const QString &step, bool isCounting = true)
{
  calculator.setNThread(2);
  auto connection =
      QObject::connect(&calculator, &NbcAProgress::detailChanged, [&](const QString &detail) {
        if (detail == step)
          calculator.stop();
      });
  EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
  EXPECT_LT(calculator.getPercent(), 100);
  QObject::disconnect(connection);

  if (isCounting) {
    connection = QObject::connect(&calculator, &NbcAProgress::progressChanged, [&](int percent) {
      if (percent > 0)
        calculator.stop();
    });
    EXPECT_EQ(calculator.execute(), NbcAProgress::INTERRUPTED);
    QObject::disconnect(connection);
  }
}

void expectCompletes(NbcAProgress &calculator)
{
  EXPECT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
}

template <class Calculator>
void expectNoResults(const Calculator &calculator)
{
  EXPECT_NE(testsupport::errorOf([&] { calculator.getResults(); }),
            QStringLiteral("nothing thrown"));
}

NgmVariogramExp covariancesToo()
{
  NgmVariogramExp request = omni(1, 5, 1.);
  request.addCovaCalculation(Cova::COVARIANCE);
  return request;
}

NgdDataSetGrid makeGrid(int nRealizations)
{
  const NbgGeomGrid geometry = testsupport::makeGridGeometry2D(30, 20, 10., 5.);
  const auto provider = QSharedPointer<NbpMemoryProviderGridW>::create(geometry);
  const QString macro =
      provider->addMacro(QStringLiteral("SIM"), Nbd::TYPE_DOUBLE, NbdMacroIndexInfo());
  for (int r = 0; r < nRealizations; ++r)
    provider->addRealization(macro, NbdMacroIndex(r + 1), testsupport::normalValues(r, 600));
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(provider);
  dataSet.assignMacro(Nbd::Role::V, macro);
  return dataSet;
}

}  // namespace

TEST(VariogramStop, TheSequentialEngineStops)
{
  const Data data = randomData(N_SAMPLES, 1, false);
  const auto prepare = [&](NgcVariogramExp &calculator) {
    calculator.setDataSet(makeDataSet(data, 1));
    calculator.setVarioExp(covariancesToo());
    calculator.setStatistics(makeStatistics(1));
  };
  NgcVariogramExp calculator, reference;
  prepare(calculator);
  prepare(reference);
  expectStops(calculator, QStringLiteral("Computing variogram..."));
  expectNoResults(calculator);
  expectCompletes(calculator);
  expectCompletes(reference);
  EXPECT_EQ(allNumbers(calculator.getResults()), allNumbers(reference.getResults()));
}

TEST(VariogramStop, PairsOfBuffersStop)
{
  const Data data = randomData(N_SAMPLES, 1, false);
  const auto prepare = [&](NgcVariogram &calculator) {
    calculator.setInputDataSet(makeDataSet(data, 1));
    calculator.setVarioExp(covariancesToo());
    calculator.setStatistics(makeStatistics(1));
  };
  NgcVariogram calculator(Nbd::Role::V), reference(Nbd::Role::V);
  prepare(calculator);
  prepare(reference);
  expectStops(calculator, QStringLiteral("Calculating Variogram..."));
  expectNoResults(calculator);
  expectCompletes(calculator);
  expectCompletes(reference);
  EXPECT_EQ(allNumbers(calculator.getResults()), allNumbers(reference.getResults()));
}

TEST(VariogramStop, MapsStop)
{
  const Data data = randomData(N_SAMPLES, 1, false);
  const auto make = [&] {
    auto calculator = std::make_unique<NgcVarioMap>(3, 4, 1, NbgVector3D(2., 2., 2.), NbgRotation(),
                                                    1, Nbd::Role::V);
    calculator->setInputDataSet(makeDataSet(data, 1));
    return calculator;
  };
  const auto calculator = make(), reference = make();
  expectStops(*calculator, QStringLiteral("Computing Variogram Map..."));
  expectCompletes(*calculator);
  expectCompletes(*reference);
  EXPECT_EQ(calculator->getGvm().getVarioSum(0, 0).getVector(),
            reference->getGvm().getVarioSum(0, 0).getVector());
}

TEST(VariogramStop, LinesStop)
{
  const std::vector<int> counts(12000, 3);
  const auto provider = testsupport::makeLines(counts);
  NgdDataSetLines dataSet;
  dataSet.setDataProvider(provider);
  std::vector<double> positions;
  for (int i = 0; i < 36000; ++i)
    positions.push_back(i % 3);
  dataSet.assignVariable(Nbd::Role::LINE_S, provider->addVariable(QStringLiteral("S"), positions));
  dataSet.assignVariable(Nbd::Role::V, provider->addVariable(QStringLiteral("V"), positions));
  NgcVariogram1D calculator;
  calculator.setInputDataSet(dataSet);
  calculator.setNLags(3);
  expectStops(calculator, QStringLiteral("Calculating Variogram along Drillholes..."));
  expectNoResults(calculator);
  expectCompletes(calculator);
  EXPECT_EQ(calculator.getResults().getNumberOfPairs(0, false, 0, 0),
            QVector<qint64>({0, 24000, 12000}));
}

TEST(VariogramStop, GridsStopOnBothRoutes)
{
  for (const bool useFft : {false, true}) {
    NgcVariogramOnGrid calculator;
    calculator.setUseFFT(useFft);
    calculator.setInputDataSet(makeGrid(1));
    calculator.addDirection(NbgVector3D::X, 10., 20, QStringList());
    expectStops(calculator, QStringLiteral("Calculating Variogram..."), false);
    EXPECT_NE(testsupport::errorOf([&] { calculator.getResults(0); }),
              QStringLiteral("nothing thrown"));
    expectCompletes(calculator);
    EXPECT_EQ(calculator.getResults(0).getNumberOfPairs(0, false, 0, 0)[0], 29 * 20);
  }
}

TEST(VariogramStop, SimulationsStopBetweenAndWithinRealizations)
{
  NgcVariogramOnSimu calculator;
  calculator.setInputDataSet(makeGrid(6));
  calculator.setVModel(NgmVModel(1));
  expectStops(calculator, QStringLiteral("Calculating Variograms..."));
  expectNoResults(calculator);
  expectCompletes(calculator);
  EXPECT_EQ(calculator.getResults().size(), 7);
}
