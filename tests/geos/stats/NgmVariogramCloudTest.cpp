#include "geos/stats/NgmVariogramCloud.h"

#include "basic/calc/NbcBoxPlot.h"
#include "basic/data/NbdDataGrid.h"
#include "basic/data/NbdVariableInt64.h"
#include "geos/stats/NgmVariogramCloudParameters.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using testsupport::expectAssertion;
using testsupport::uniform;

namespace {

NgmPairsVariogramCloud pairOf(double value, int number = 1)
{
  return {value, 0.5, number, number + 1};
}

std::vector<double> valuesOf(const std::vector<NgmPairsVariogramCloud> &pairs)
{
  std::vector<double> values;
  for (const NgmPairsVariogramCloud &pair : pairs)
    values.push_back(pair.getValue());
  return values;
}

}  // namespace

TEST(NgmVariogramCloud, ListsAreCompactedWhenTheyHoldMoreThanTheirLimit)
{
  NgmVariogramCloud cloud(1, 2, 3);
  for (int i = 0; i < 20; ++i)
    cloud.addPair(0, pairOf(uniform(3, i), i));
  EXPECT_EQ(cloud.getNOutliers(), 40);
  cloud.addPair(0, pairOf(7.));
  EXPECT_EQ(cloud.getNOutliers(), 2 + 3);
  EXPECT_EQ(cloud.getOutliers(0).getUpperOutliers()[0].getValue(), 7.);
  const double threshold = cloud.getOutliers(0).getUpperOutliers()[1].getValue();
  EXPECT_EQ(cloud.getOutliers(0).getUpperThreshold().getValue(), threshold);
  // Not above the threshold: not offered again.
  cloud.addPair(0, pairOf(threshold));
  EXPECT_EQ(cloud.getNOutliers(), 5);
}

TEST(NgmVariogramCloud, TheExtremesOfManyPartsAreThoseOfAll)
{
  std::vector<double> values;
  NgmVariogramCloud total(2, 4, 3);
  for (int part = 0; part < 10; ++part) {
    NgmVariogramCloud cloud(2, 4, 3);
    for (int i = 0; i < 57; ++i) {
      values.push_back(uniform(part, i, -1., 1.));
      cloud.addPair(1, pairOf(values.back(), int(values.size())));
    }
    cloud.finishSorting();
    total.doSum(cloud);
  }
  total.finishSorting();
  const double sum = std::accumulate(values.begin(), values.end(), 0.);
  std::sort(values.begin(), values.end());
  const NgmPairsOutliers &outliers = total.getOutliers(1);
  EXPECT_EQ(valuesOf(outliers.getUpperOutliers()),
            std::vector<double>(values.rbegin(), values.rbegin() + 4));
  EXPECT_EQ(valuesOf(outliers.getLowerOutliers()),
            std::vector<double>(values.begin(), values.begin() + 3));
  EXPECT_EQ(total.getOutliers(0).getUpperOutliers().size(), 0u);

  EXPECT_EQ(outliers.getNDefined(), 570);
  EXPECT_EQ(outliers.getMinimum(), values.front());
  EXPECT_EQ(outliers.getMaximum(), values.back());
  const double mean = sum / 570.;
  double squares = 0.;
  for (const double value : values)
    squares += (value - mean) * (value - mean);
  EXPECT_NEAR(outliers.getMean(), mean, 1e-14);
  EXPECT_NEAR(outliers.getVariance(), squares / 570., 1e-14);

  expectAssertion(QStringLiteral("stats\\NgmVariogramCloud"),
                  QStringLiteral("the number of lag does not fit"),
                  [&] { total.doSum(NgmVariogramCloud(3)); });
}

TEST(NgmVariogramCloud, WithoutUpperOutliersThereAreNoLowerOnes)
{
  NgmVariogramCloud cloud(1);
  cloud.setNMaxOutliers(0, 5, 20);
  cloud.resizeAndInit(1, 4, 4, 0., 1., 0., 1., true);
  cloud.addPair(0, pairOf(0.3));
  EXPECT_EQ(cloud.getNOutliers(), 0);
  EXPECT_EQ(cloud.getDensity().getNPairs(), 1);
}

TEST(NgmVariogramCloud, MoreKeptThanGatheredKeepsAll)
{
  NgmVariogramCloud cloud(1);
  cloud.setNMaxOutliers(30, 0, 5);
  for (int i = 0; i < 40; ++i)
    cloud.addPair(0, pairOf(40. - i, i));
  cloud.finishSorting();
  EXPECT_EQ(cloud.getNOutliers(), 30);
  EXPECT_EQ(cloud.getOutliers(0).getUpperOutliers().back().getValue(), 11.);
}

TEST(NgmVariogramCloudDensity, CountsWhatIsInsideAndKnowsItsCells)
{
  NgmVariogramCloudDensity density;
  density.initializeCloudDensity(4, 2, 0., 8., -1., 1.);
  density.addPair(0., -1.);
  density.addPair(2., 0.);  // both on a border: the upper cell
  density.addPair(8., 1.);  // the last corner
  density.addPair(8.1, 0.);
  density.addPair(1., -1.1);
  EXPECT_EQ(density.getNPairs(), 3);
  EXPECT_EQ(density.getCount(0, 0), 1);
  EXPECT_EQ(density.getCount(1, 1), 1);
  EXPECT_EQ(density.getCount(3, 1), 1);
  NgmVariogramCloudDensity other(density);
  other.sum(density);
  EXPECT_EQ(other.getCount(3, 1), 2);

  const NbdDataGrid grid = other.toGrid();
  NbgIntVector3D cell;
  ASSERT_TRUE(grid.getGeometry().getCellIJK(NbgVector3D(7., 0.5, 0.), cell));
  const NbdVariableInt64 &counts = grid.getDataTableConst().getVarInt64Ref(Nbd::Role::DENSITY);
  EXPECT_EQ(counts.getValueAsType(int(grid.getGeometry().getRankFromIJK(cell))), 2);
  EXPECT_EQ(counts.getName(), QStringLiteral("Density image"));

  for (const int n : {0, 70000})
    expectAssertion(QStringLiteral("stats\\NgmVariogramCloudDensity"),
                    QStringLiteral("invalid size"),
                    [&] { density.initializeCloudDensity(n, n, 0., 1., 0., 1.); });
}

TEST(NgmVariogramCloudDensity, BoxPlotsAreThoseOfTheCellCentres)
{
  NgmVariogramCloudDensity density;
  density.initializeCloudDensity(6, 10, 0., 6., 0., 10.);
  for (int value = 0; value < 8; ++value) {
    density.addPair(0.5, value + 0.3);
    density.addPair(5.5, 9.);
  }
  QList<NbcBoxPlot> plots;
  density.toBoxPlots(3, plots);
  ASSERT_EQ(plots.size(), 2);  // none of the empty group in between
  EXPECT_EQ(plots[0].getCount(), 8);
  EXPECT_EQ(plots[0].getCenter(), 1.);
  EXPECT_EQ(plots[0].getWidth(), 2.);
  EXPECT_EQ(plots[0].getMinimum(), 0.5);
  EXPECT_EQ(plots[0].getLowerQuartile(), 1.5);
  EXPECT_EQ(plots[0].getMedian(), 3.5);
  EXPECT_EQ(plots[0].getUpperQuartile(), 5.5);
  EXPECT_EQ(plots[0].getMaximum(), 7.5);
  EXPECT_EQ(plots[0].getMean(), 4.);
  EXPECT_EQ(plots[1].getMedian(), 9.5);
}

TEST(NgmVariogramCloudParameters, RangesAreUnknownUntilSet)
{
  NgmVariogramCloudParameters parameters;
  EXPECT_EQ(parameters.getNMaxUpperOutliers(), 0);
  EXPECT_EQ(parameters.getNMaxLowerOutliers(), 0);
  EXPECT_EQ(parameters.getNMaxOutliersCalc(), 1000);
  EXPECT_TRUE(parameters.isDisplayImage());
  EXPECT_EQ(parameters.getMin(0), NbbGlobal::D_FFFF);
  parameters.setRange(1, -2., 3.);
  EXPECT_EQ(parameters.getMax(0), NbbGlobal::D_FFFF);
  EXPECT_EQ(parameters.getMin(1), -2.);
  EXPECT_EQ(parameters.getMax(1), 3.);
}
