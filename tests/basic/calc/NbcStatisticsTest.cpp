#include "basic/calc/NbcProportions.h"
#include "basic/calc/NbcStatMono.h"

#include <gtest/gtest.h>

TEST(NbcStatBasic, UnsetValuesAreUndefinedAndCountsZero)
{
  const NbcStatMono record;
  EXPECT_EQ(record.getNTotal(), 0);
  EXPECT_EQ(record.getNDefined(), 0);
  EXPECT_EQ(record.getNDefinedNoW(), 0);
  EXPECT_EQ(record.getWeight(), 0.);
  for (double value : {record.getMinimum(), record.getMaximumNoW(), record.getMean(),
                       record.getVariance(), record.getStandardDeviation(), record.getSkewness(),
                       record.getHarmonicMean(), record.getVariationCoefficient()})
    EXPECT_EQ(value, NbbGlobal::D_FFFF);
}

TEST(NbcStatBasic, SettersWithTwoValuesTakeTheUnweightedOneFirst)
{
  NbcStatBasic record;
  record.setNDefined(10, 8);
  record.setMinimum(-5., -1.);
  record.setMaximum(50., 10.);
  EXPECT_EQ(record.getNDefinedNoW(), 10);
  EXPECT_EQ(record.getNDefined(), 8);
  EXPECT_EQ(record.getMinimumNoW(), -5.);
  EXPECT_EQ(record.getMinimum(), -1.);
  EXPECT_EQ(record.getMaximumNoW(), 50.);
  EXPECT_EQ(record.getMaximum(), 10.);
  record.setMinimum(2.);
  EXPECT_EQ(record.getMinimumNoW(), 2.);
}

TEST(NbcStatBasic, StandardDeviationFollowsTheVariance)
{
  NbcStatBasic record;
  record.setMean(-4.);
  record.setVariance(9.);
  EXPECT_EQ(record.getStandardDeviation(), 3.);
  EXPECT_EQ(record.getVariationCoefficient(), -0.75);
  record.setVariance(-1e-18);
  EXPECT_EQ(record.getStandardDeviation(), 0.);
  EXPECT_EQ(record.getVariance(), -1e-18);
  record.setMean(0.);
  EXPECT_EQ(record.getVariationCoefficient(), NbbGlobal::D_FFFF);
  record.setVariance(NbbGlobal::D_FFFF);
  EXPECT_EQ(record.getStandardDeviation(), NbbGlobal::D_FFFF);
}

TEST(NbcStatMono, DebugNamesItsValues)
{
  NbcStatMono record{NbcStatBasic()};
  record.setKurtosis(3.25);
  const QString text = record.debug(1);
  EXPECT_TRUE(text.contains(QStringLiteral("  Kurtosis = 3.25\n")));
  EXPECT_TRUE(text.contains(QStringLiteral("  Mean = N/A\n")));
}

TEST(NbcProportions, KeepsTheUndefinedCategoryApart)
{
  NbcProportions record;
  record.setNbUnits(7, 3);
  record.setNbUnits(-2, 1);
  record.setNbUnits(NbbGlobal::I32_FFFF, 4);
  record.setWeightByCat(7, 1.5);
  record.setProportion(7, 0.75);

  EXPECT_EQ(record.getValues(), QList<int>({-2, 7}));
  EXPECT_TRUE(record.hasUndefined());
  EXPECT_EQ(record.getNbUnits(), 4);
  EXPECT_EQ(record.getNbUnits(NbbGlobal::I32_FFFF), 4);
  EXPECT_EQ(record.getWeightByCat(7), 1.5);
  EXPECT_EQ(record.getProportion(7), 0.75);
  EXPECT_EQ(record.getProportion(99), 0.);
  EXPECT_FALSE(record.getValues().contains(99)) << "asking does not add";
  EXPECT_TRUE(record.debug(0).contains(
      QStringLiteral("Category 7: count = 3, weight = 1.5, proportion = 0.75\n")));
}
