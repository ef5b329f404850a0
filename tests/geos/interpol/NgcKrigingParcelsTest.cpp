// Kriging of a grid in parcels, some of which have no sample in reach.

#include "KrigingRun.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "geos/interpol/NgmNeighborhoodMoving.h"
#include "support/Errors.h"
#include "support/TestData.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

using namespace krigingtest;

namespace {

/// 60 samples in the western third of a grid of 30 x 10 cells.
/// With the weights that the samples accumulate at the end.
std::vector<double> krige(bool moving, bool parcels, QStringList &warnings, int nThreads = 2)
{
  const auto points =
      samples(testsupport::uniformValues(1, 60, 0., 100.),
              testsupport::uniformValues(2, 60, 0., 100.), testsupport::normalValues(3, 60));
  const auto grid = testsupport::makeGrid2D(30, 10);
  NgcKriging kriging(QStringLiteral("KRIGING"));
  kriging.setInputDataSet(input(points));
  kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
  kriging.setVarioModel(sphericalModel(0.1, 0.9, NbgVector3D(80., 80., 80.)));
  NgmNeighborhoodMoving neighborhood;
  neighborhood.setEllipseSize({50., 50., 50.});
  neighborhood.setSectors(1, 8, false);
  kriging.setUsingMovingNeighborhood(neighborhood);
  if (!moving)
    kriging.setUsingUniqueNeighborhood();
  if (parcels)
    kriging.setParcelling({10, 4, 1}, {50., 50., 0.});
  kriging.setNThread(nThreads);
  const QString weight = points->addEmptyVariableSimple(QStringLiteral("weight"), Nbd::TYPE_DOUBLE);
  NgdDataSetPoints weights;
  weights.setDataProvider(points);
  weights.assignVariable(Nbd::Role::WEIGHT, weight);
  kriging.setWeightsDataset(weights);
  const testsupport::PrintedMessages messages;
  EXPECT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
  EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 0);
  warnings = messages.texts;

  std::vector<double> values = gridValues(*grid, QStringLiteral("estimate"));
  const std::vector<double> variances = gridValues(*grid, QStringLiteral("variance"));
  values.insert(values.end(), variances.begin(), variances.end());
  NbdVariableDouble accumulated;
  accumulated.resizeAndFill(60);
  points->readVariable(weight, NbiIntervalIntLarge::fromLength(60), accumulated, 0);
  values.insert(values.end(), accumulated.getArrayConst(), accumulated.getArrayConst() + 60);
  return values;
}

}  // namespace

TEST(NgcKriging, GivesSameBitsInParcelsThatReachAllNeighbors)
{
  QStringList warnings;
  const std::vector<double> whole = krige(true, false, warnings);
  for (const int nThreads : {1, 2, 8}) {
    EXPECT_EQ(krige(true, true, warnings, nThreads), whole) << nThreads << " threads";
    EXPECT_TRUE(warnings.isEmpty());
  }
  EXPECT_TRUE(NbbGlobal::isDefined(whole.front()));
  EXPECT_FALSE(NbbGlobal::isDefined(whole[299]));
  EXPECT_NEAR(std::accumulate(whole.end() - 60, whole.end(), 0.), 1., 1e-12);
}

TEST(NgcKriging, GoesOnWithoutSamplesInAParcelOfAUniqueNeighborhood)
{
  QStringList warnings;
  const std::vector<double> estimates = krige(false, true, warnings);
  for (std::size_t rank = 0; rank < 300; ++rank)
    ASSERT_EQ(NbbGlobal::isDefined(estimates[rank]), rank < 200)
        << rank;  // 50 m into the second third

  // One warning for each parcel of the eastern third, with its corners.
  ASSERT_EQ(warnings.size(), 3);
  EXPECT_TRUE(warnings[1].contains(QStringLiteral("Lower Left Corner: 200, 40<br>")))
      << qPrintable(warnings[1]);
  EXPECT_TRUE(warnings[1].contains(QStringLiteral("Upper Right Corner: 300, 80<br>")));
}

TEST(NgcKriging, FailuresInAParcelOfAUniqueNeighborhoodLeaveTheOthers)
{
  // 30 samples in the west; in the middle duplicates, or two for a drift of three functions; in the
  // east samples without a value.
  for (const bool duplicates : {true, false}) {
    std::vector<double> x = testsupport::uniformValues(4, 30, 0., 100.);
    std::vector<double> y = testsupport::uniformValues(5, 30, 0., 100.);
    std::vector<double> z = testsupport::normalValues(6, 30);
    x.insert(x.end(), {150., duplicates ? 150. : 155., 250., 260.});
    y.insert(y.end(), {50., duplicates ? 50. : 70., 50., 70.});
    z.insert(z.end(), {1., 2., NbbGlobal::D_FFFF, NbbGlobal::D_FFFF});
    const auto grid = testsupport::makeGrid2D(30, 10);
    NgcKriging kriging(QStringLiteral("KRIGING"));
    kriging.setInputDataSet(input(samples(x, y, z)));
    kriging.setOutputDataSet(output<NgdDataSetGrid>(grid));
    kriging.setVarioModel(sphericalModel(0., 1., NbgVector3D(80., 80., 80.)));
    kriging.setUsingUniqueNeighborhood();
    kriging.setParcelling({10, 10, 1}, {0., 0., 0.});
    if (!duplicates) {
      NgmDriftModel drift;
      drift.addDrifts(0, 1, true, true, false);
      kriging.setKrigingMode(NgcEKrigingMode::UNIVERSAL_KRIGING);
      kriging.setDriftModel(drift);
    }
    kriging.setNThread(2);
    const testsupport::PrintedMessages messages;
    ASSERT_EQ(kriging.execute(), NbcAProgress::COMPLETED) << qPrintable(kriging.getErrorMessage());
    EXPECT_EQ(messages.texts.size(), 1);  // no data in the east
    EXPECT_EQ(kriging.getNumberOfInterpolErrors(), 100);
    EXPECT_TRUE(kriging.hasInterpolError(duplicates ? Ngc::INTERPOL_ERROR_SYSTEM
                                                    : Ngc::INTERPOL_ERROR_NEIGHBORHOOD));
    const QString text = kriging.getInterpolErrorsMessage();
    EXPECT_TRUE(text.contains(duplicates
                                  ? QStringLiteral("Error #1: Kriging system resolution error.\n"
                                                   "Target location: X = 105, Y = 5, Z = 0\n")
                                  : QStringLiteral("Error #1: Not enough defined samples (2) ")))
        << qPrintable(text);
    EXPECT_TRUE(text.endsWith(QStringLiteral("Only 10 first errors are reported...")));
    const std::vector<double> estimates = gridValues(*grid, QStringLiteral("estimate"));
    for (std::size_t rank = 0; rank < estimates.size(); ++rank)
      ASSERT_EQ(NbbGlobal::isDefined(estimates[rank]), rank < 100) << rank;

    kriging.setOnErrorBehavior(Ngc::ON_ERROR_STOP);
    EXPECT_EQ(kriging.execute(), NbcAProgress::FAILED);
    EXPECT_TRUE(kriging.getErrorMessage().contains(QStringLiteral(
        "The interpolation process has been stopped due to the following error:\n")));
  }
}
