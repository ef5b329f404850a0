#include "geos/interpol/NgcKrigingExt.h"

#include "KrigingRun.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/interpol/NgcCrossValidation.h"
#include "geos/interpol/NgcCrossValidationExt.h"
#include "geos/interpol/NgmKrigingTestResult.h"
#include "geos/vmodel/NgmExtDriftModel.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <functional>

#include <gtest/gtest.h>

using namespace krigingtest;

namespace {

using Points = QSharedPointer<NbpMemoryProviderPointsW>;
using Grid = QSharedPointer<NbpMemoryProviderGridW>;

constexpr int nSamples = 40;

/// A plane, which linear interpolation gives at every place.
double plane(double x, double y)
{
  return 3. + 0.02 * x - 0.01 * y;
}

/// Samples inside the area of makeTargets(), with the plane's values under "drift".
Points makeSamples()
{
  const auto x = testsupport::uniformValues(5, nSamples, 20., 180.);
  const auto y = testsupport::uniformValues(6, nSamples, 20., 180.);
  std::vector<double> drift;
  for (std::size_t i = 0; i < x.size(); ++i)
    drift.push_back(plane(x[i], y[i]));
  const Points points = samples(x, y, testsupport::normalValues(7, nSamples));
  points->addVariable(QStringLiteral("drift"), drift);
  return points;
}

Grid makePlane(int side)
{
  const Grid grid =
      testsupport::makeGrid(testsupport::makeGridGeometry2D(side, side, 200. / side, 200. / side));
  const NbgGeomGrid &geometry = grid->getGridGeometry();
  std::vector<double> drift;
  for (qint64 rank = 0; rank < geometry.getGridSize(); ++rank)
    drift.push_back(plane(geometry.getCellCenter(rank).x(), geometry.getCellCenter(rank).y()));
  grid->addVariable(QStringLiteral("drift"), drift);
  return grid;
}

template <class DataSet, class Provider>
DataSet withDrift(DataSet dataSet, const QSharedPointer<Provider> &provider)
{
  dataSet.assignVariable(Nbd::Role::EXTDRIFT, provider->getIdFromName(QStringLiteral("drift")));
  return dataSet;
}

NgdDataSetGrid external(const Grid &grid)
{
  NgdDataSetGrid dataSet;
  dataSet.setDataProvider(grid);
  return withDrift(dataSet, grid);
}

template <class Calculator>
void configure(Calculator &calculator)
{
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize(NbgVector3D(1e4, 1e4, 1e4));
  neighborhood.setSectors(1, 12, false);
  calculator.setUsingMovingNeighborhood(neighborhood);
  calculator.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(100., 100., 100.)));
}

template <class Calculator>
void configureDrift(Calculator &calculator)
{
  configure(calculator);
  calculator.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
  NgmExtDriftModel drift;
  drift.addDrift(0, 0);
  calculator.setExtDriftModel(drift);
}

void run(NbcAProgress &calculator)
{
  ASSERT_EQ(calculator.execute(), NbcAProgress::COMPLETED)
      << qPrintable(calculator.getErrorMessage());
}

std::vector<double> pointValues(const Points &points, const char *name)
{
  NbdVariableDouble column;
  column.resizeAndFill(int(points->getSampleCount()));
  points->readVariable(points->getIdFromName(QString::fromLatin1(name)),
                       NbiIntervalIntLarge::fromLength(points->getSampleCount()), column, 0);
  return std::vector<double>(column.getArrayConst(), column.getArrayConst() + column.getNValues());
}

void expectNear(const std::vector<double> &values, const std::vector<double> &expected)
{
  ASSERT_EQ(values.size(), expected.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_TRUE(NbbGlobal::isDefined(values[i])) << i;
    ASSERT_NEAR(values[i], expected[i], 1e-10) << i;  // drifts of size 5 differ by roundings
  }
}

/// Estimates of kriging with the drift given at samples and targets.
std::vector<double> krigeWithGivenDrift(const Points &points, const Grid &targets)
{
  NgcKriging kriging(QStringLiteral("KRIGING"));
  configureDrift(kriging);
  kriging.setInputDataSet(withDrift(input(points), points));
  kriging.setOutputDataSet(withDrift(output<NgdDataSetGrid>(targets), targets));
  run(kriging);
  return gridValues(*targets, QStringLiteral("estimate"));
}

}  // namespace

TEST(NgcKrigingExt, BringsDriftsToSamplesAndTargets)
{
  const Points points = makeSamples();
  const Grid targets = makePlane(10);
  const Grid coarse = makePlane(25);
  const std::vector<double> expected = krigeWithGivenDrift(points, targets);
  const QStringList pointVariables = points->getVariableIds();
  const QStringList gridVariables = targets->getVariableIds();

  for (const bool targetsHaveIt : {false, true}) {
    NgcKrigingExt kriging(QStringLiteral("KRIGING"));
    configureDrift(kriging);
    kriging.addExternalInDataset({Nbd::Role::EXTDRIFT}, external(coarse));
    kriging.setInputDataSet(input(points));
    NgdDataSetGrid out = output<NgdDataSetGrid>(targets);
    kriging.setOutputDataSet(targetsHaveIt ? withDrift(out, targets) : out);
    for (int again = 0; again < 2; ++again) {
      run(kriging);
      expectNear(gridValues(*targets, QStringLiteral("estimate")), expected);
      EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0);
      // Nothing is left behind.
      EXPECT_EQ(points->getVariableIds(), pointVariables);
      EXPECT_EQ(targets->getVariableIds(), gridVariables);
    }
  }
}

TEST(NgcKrigingExt, LeavesTargetsOutsideTheGridUndefined)
{
  const Points points = makeSamples();
  const Grid targets = makePlane(10);
  // The external grid covers x < 150 only.
  const Grid part = testsupport::makeGrid2D(15, 20);
  const NbgGeomGrid &geometry = part->getGridGeometry();
  std::vector<double> drift;
  for (qint64 rank = 0; rank < geometry.getGridSize(); ++rank)
    drift.push_back(plane(geometry.getCellCenter(rank).x(), geometry.getCellCenter(rank).y()));
  part->addVariable(QStringLiteral("drift"), drift);

  NgcKrigingExt kriging(QStringLiteral("KRIGING"));
  configureDrift(kriging);
  kriging.addExternalInDataset({Nbd::Role::EXTDRIFT}, external(part));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
  run(kriging);
  const std::vector<double> estimates = gridValues(*targets, QStringLiteral("estimate"));
  int nUndefined = 0;
  for (std::size_t rank = 0; rank < estimates.size(); ++rank) {
    const bool isOutside = targets->getGridGeometry().getCellCenter(qint64(rank)).x() > 150.;
    EXPECT_EQ(NbbGlobal::isDefined(estimates[rank]), !isOutside) << rank;
    nUndefined += isOutside;
  }
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), nUndefined);
  EXPECT_TRUE(kriging.getInterpolErrorsMessage().contains("Target location: X = "));
}

TEST(NgcKrigingExt, TestsOneTargetLikeARun)
{
  const Points points = makeSamples();
  const Grid targets = makePlane(10);
  NgcKrigingExt kriging(QStringLiteral("KRIGING"));
  configureDrift(kriging);
  kriging.addExternalInDataset({Nbd::Role::EXTDRIFT}, external(makePlane(25)));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
  run(kriging);
  const QStringList pointVariables = points->getVariableIds();
  NgmKrigingTestResult result;
  kriging.test(38, result);
  ASSERT_TRUE(result.hasResults());
  EXPECT_EQ(result.getKrigingResults(0).estimation,
            gridValues(*targets, QStringLiteral("estimate"))[37]);
  EXPECT_EQ(points->getVariableIds(), pointVariables);
}

TEST(NgcKrigingExt, CentresSamplesForDirectBlockKriging)
{
  const Points points = makeSamples();
  const Grid targets = makePlane(10);
  NgcKrigingExt kriging(QStringLiteral("KRIGING"));
  configure(kriging);
  kriging.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
  kriging.setBlockCorrectionCoefficient(0, 0.8);
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
  run(kriging);
  const std::vector<double> estimates = gridValues(*targets, QStringLiteral("estimate"));
  const std::vector<double> deviations = gridValues(*targets, QStringLiteral("stdev"));

  std::vector<double> x = pointValues(points, "X"), y = pointValues(points, "Y");
  for (std::vector<double> *coordinates : {&x, &y})
    for (double &coordinate : *coordinates)
      coordinate = 20. * std::floor(coordinate / 20.) + 10.;
  NgcKriging byHand(QStringLiteral("KRIGING"));
  configure(byHand);
  byHand.setKrigingMode(NgcEKrigingMode::SIMPLE_KRIGING);
  byHand.setBlockCorrectionCoefficient(0, 0.8);
  byHand.setInputDataSet(input(samples(x, y, pointValues(points, "z"))));
  byHand.setOutputDataSet(output<NgdDataSetGrid>(targets));
  run(byHand);
  EXPECT_EQ(gridValues(*targets, QStringLiteral("estimate")), estimates);
  EXPECT_EQ(gridValues(*targets, QStringLiteral("stdev")), deviations);
}

TEST(NgcKrigingExt, GivesTheWeightsOfSamplesThatItCentres)
{
  const Points points = makeSamples();
  std::vector<bool> selected(nSamples);
  for (std::size_t i = 0; i < selected.size(); ++i)
    selected[i] = i % 4 != 1;
  points->setSelectionId(points->addVariable(QStringLiteral("chosen"), selected));
  const QString id = points->addEmptyVariableSimple(QStringLiteral("weight"), Nbd::TYPE_DOUBLE);
  NgdDataSetPoints weights;
  weights.setDataProvider(points);
  weights.assignVariable(Nbd::Role::WEIGHT, id);
  const Grid targets = makePlane(10);
  NgcKrigingExt kriging(QStringLiteral("KRIGING"));
  configure(kriging);
  kriging.setBlockCorrectionCoefficient(0, 0.8);
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
  kriging.setWeightsDataset(weights);
  run(kriging);

  points->setSelectionId(QString());
  const std::vector<double> values = pointValues(points, "weight");
  double sum = 0.;
  for (std::size_t i = 0; i < values.size(); ++i) {
    ASSERT_EQ(NbbGlobal::isDefined(values[i]), selected[i]) << i;
    sum += selected[i] ? values[i] : 0.;
  }
  EXPECT_NEAR(sum, 1., 1e-12);
}

TEST(NgcKrigingExt, RefusesWrongConfigurations)
{
  const Points points = makeSamples();
  const Grid targets = makePlane(10);
  const QString path = QStringLiteral("interpol\\NgcAKrigingExt");
  struct Case
  {
    const char *message;
    std::function<void(NgcKrigingExt &)> change;
  };
  const Case cases[] = {
      {"No input dataset defined.",
       [&](NgcKrigingExt &kriging) { kriging.setOutputDataSet(output<NgdDataSetGrid>(targets)); }},
      {"No output dataset defined.",
       [&](NgcKrigingExt &kriging) { kriging.setInputDataSet(input(points)); }},
      {"Cannot use LGS with a Unique Neighborhood.",
       [&](NgcKrigingExt &kriging) {
         kriging.setInputDataSet(input(points));
         kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
         kriging.setUsingUniqueNeighborhood();
         kriging.setEnableLGS(true);
       }},
      {"Wrong number of variables for role EXTDRIFT in target dataset",
       [&](NgcKrigingExt &kriging) {
         kriging.setInputDataSet(input(points));
         kriging.setOutputDataSet(
             withDrift(withDrift(output<NgdDataSetGrid>(targets), targets), targets));
         kriging.addExternalInDataset({Nbd::Role::EXTDRIFT}, external(makePlane(25)));
       }},
      {"Wrong number of collocated variables.",
       [&](NgcKrigingExt &kriging) {
         kriging.setInputDataSet(input(points));
         kriging.setOutputDataSet(output<NgdDataSetGrid>(targets));
         kriging.setCollocated(0, QStringLiteral("drift"));
       }},
      {"Direct block kriging needs a grid as output: its samples are moved to the centers of the "
       "cells that hold them.",
       [&](NgcKrigingExt &kriging) {
         kriging.setInputDataSet(input(points));
         kriging.setOutputDataSet(output<NgdDataSetPoints>(makeSamples()));
         kriging.setBlockCorrectionCoefficient(0, 0.8);
       }},
  };
  for (const Case &wrong : cases) {
    NgcKrigingExt kriging(QStringLiteral("KRIGING"));
    configureDrift(kriging);
    wrong.change(kriging);
    EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED);
    EXPECT_TRUE(kriging.getErrorMessage().endsWith(QString::fromLatin1(wrong.message)))
        << qPrintable(kriging.getErrorMessage());
  }
}

TEST(NgcCrossValidationExt, BringsDriftsToTheSamples)
{
  const Points points = makeSamples();
  const auto outputs = [&points] {
    NgdDataSetPoints dataSet;
    dataSet.setDataProvider(points);
    QString id = points->getIdFromName(QStringLiteral("error"));
    if (id.isEmpty())
      id = points->addEmptyVariableSimple(QStringLiteral("error"), Nbd::TYPE_DOUBLE);
    dataSet.assignVariable(Nbd::Role::XVAL_ERR, id);
    return dataSet;
  };
  NgcCrossValidation given(QStringLiteral("XVAL"));
  configureDrift(given);
  given.setInputDataSet(withDrift(input(points), points));
  given.setOutputDataSet(withDrift(outputs(), points));
  run(given);
  const std::vector<double> expected = pointValues(points, "error");

  const QStringList variables = points->getVariableIds();
  NgcCrossValidationExt brought(QStringLiteral("XVAL"));
  configureDrift(brought);
  brought.addExternalInDataset({Nbd::Role::EXTDRIFT}, external(makePlane(25)));
  brought.setInputDataSet(input(points));
  brought.setOutputDataSet(outputs());
  run(brought);
  expectNear(pointValues(points, "error"), expected);
  EXPECT_NEAR(brought.getResults().error, given.getResults().error, 1e-10);
  EXPECT_EQ(points->getVariableIds(), variables);

  NgmKrigingTestResult result;
  testsupport::expectAssertion(QStringLiteral("interpol\\NgcCrossValidationExt"),
                               QStringLiteral("No test implemented"),
                               [&] { brought.test(1, result); });
}
