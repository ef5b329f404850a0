#include "basic/calc/NbcStatBasic.h"
#include "basic/data/NbdVariableDouble.h"
#include "basic/data/NbdVariableFloat.h"
#include "basic/error/NbeProgrammingError.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

NbdVariableDouble makeVariable(const QVector<double> &values)
{
  NbdVariableDouble variable("v");
  variable.setValues(values);
  return variable;
}

}  // namespace

TEST(VariableStatistics, LeaveUndefinedValuesOut)
{
  const NbdVariableDouble v =
      makeVariable({UNDEFINED, 4., 2., std::nan(""), 9., 2., 9., 1e30, 4., 6.});
  EXPECT_EQ(v.getMinValue(), 2.);
  EXPECT_EQ(v.getMaxValue(), 9.);
  EXPECT_EQ(v.getMinValueRank(), 2);
  EXPECT_EQ(v.getMaxValueRank(), 4);
  EXPECT_EQ(v.computeSum(), 36.);
  // 36 / 7, and the population variance 4 + 9 + ... by hand: sum of squares 238 / 7 - (36 / 7)^2.
  EXPECT_DOUBLE_EQ(v.getMeanValue(), 36. / 7.);
  EXPECT_NEAR(v.getVarianceValue(), 34. - 36. * 36. / 49., 1e-14);
  EXPECT_EQ(v.getUniqueValues(), (QVector<double>{2., 4., 6., 9.}));

  const NbcStatBasic statistics = v.getStatistics();
  EXPECT_EQ(statistics.getNTotal(), 10);
  EXPECT_EQ(statistics.getNDefined(), 7);
  EXPECT_EQ(statistics.getWeight(), 7.);
  EXPECT_EQ(statistics.getMinimum(), 2.);
  EXPECT_EQ(statistics.getMaximumNoW(), 9.);
  EXPECT_EQ(statistics.getVariance(), v.getVarianceValue());
  EXPECT_EQ(statistics.getStandardDeviation(), v.getStandardDeviationValue());
}

TEST(VariableStatistics, AreUndefinedWithoutValues)
{
  for (const NbdVariableDouble &v : {makeVariable({}), makeVariable({UNDEFINED, UNDEFINED})}) {
    double minimum = 0., maximum = 0.;
    EXPECT_FALSE(v.getMinMaxValues(minimum, maximum));
    EXPECT_EQ(minimum, UNDEFINED);
    EXPECT_EQ(maximum, UNDEFINED);
    EXPECT_EQ(v.getMinValueRank(), -1);
    EXPECT_EQ(v.computeSum(), 0.);
    EXPECT_EQ(v.getMeanValue(), UNDEFINED);
    EXPECT_EQ(v.getStandardDeviationValue(), UNDEFINED);
    EXPECT_EQ(v.getStatistics().getVariance(), UNDEFINED);
    EXPECT_EQ(v.getStatistics().getNDefined(), 0);
  }
}

TEST(VariableStatistics, LoseNoDigitsFarFromZero)
{
  // 1e9 + {4, 7, 13, 16}, repeated over several blocks: mean 1e9 + 10, variance 22.5 exactly.
  NbdVariableDouble v("v");
  for (int i = 0; i < 5000; ++i) {
    for (double value : {4., 7., 13., 16.})
      v.appendValue(1e9 + value);
  }
  EXPECT_EQ(v.getMeanValue(), 1e9 + 10.);
  EXPECT_EQ(v.getVarianceValue(), 22.5);

  const NbdVariableDouble cancelling = makeVariable({1., 1e25, 1., -1e25});
  EXPECT_EQ(cancelling.computeSum(), 2.);
}

TEST(VariableStatistics, WeightsActLikeRepetition)
{
  const int n = 3000;
  NbdVariableDouble values("v"), weights("w"), repeated("r");
  for (int i = 0; i < n; ++i) {
    const double value = testsupport::normal(11, i);
    const int weight = testsupport::uniformInt(12, i, 4);
    values.appendValue(value);
    weights.appendValue(double(weight));
    for (int k = 0; k < weight; ++k)
      repeated.appendValue(value);
  }
  values.setValue(5, UNDEFINED);
  weights.setValue(5, 100.);
  values.setValue(6, -50.);
  weights.setValue(6, -1.);
  values.setValue(7, 60.);
  weights.setValue(7, UNDEFINED);
  // Samples 5 to 7 no longer count: their repetitions are taken out again.
  NbdVariableDouble expected("e");
  for (int i = 0; i < n; ++i) {
    if (i >= 5 && i <= 7)
      continue;
    for (int k = 0; k < int(weights.getValue(i)); ++k)
      expected.appendValue(values.getValue(i));
  }

  const NbcStatBasic statistics = values.getStatisticsWeighted(weights);
  EXPECT_EQ(statistics.getNTotal(), n);
  EXPECT_EQ(statistics.getNDefinedNoW(), n - 1);
  EXPECT_LT(statistics.getNDefined(), n - 2);
  EXPECT_EQ(statistics.getMinimumNoW(), -50.);
  EXPECT_EQ(statistics.getMaximumNoW(), 60.);
  EXPECT_EQ(statistics.getMinimum(), expected.getMinValue());
  EXPECT_EQ(statistics.getMaximum(), expected.getMaxValue());
  EXPECT_EQ(statistics.getWeight(), expected.getNValues());
  // Weighted terms round differently from repeated ones: a few units in the last place.
  EXPECT_NEAR(statistics.getMean(), expected.getMeanValue(), 1e-15);
  EXPECT_NEAR(statistics.getVariance(), expected.getVarianceValue(), 1e-14);

  weights.resizeAndFill(n - 1);
  EXPECT_THROW(values.getStatisticsWeighted(weights), NbeProgrammingError);
}

TEST(VariableStatistics, FindNeighboursOfAValue)
{
  const NbdVariableDouble v = makeVariable({1., 2., 4., 4., 8.});
  const auto neighbours = [&v](double value) {
    int lower = 0, upper = 0;
    v.getLowerUpperIndices(value, lower, upper);
    return std::make_pair(lower, upper);
  };
  EXPECT_EQ(neighbours(0.), std::make_pair(-1, 0));
  EXPECT_EQ(neighbours(1.), std::make_pair(0, 0));
  EXPECT_EQ(neighbours(3.), std::make_pair(1, 2));
  EXPECT_EQ(neighbours(4.), std::make_pair(2, 2));
  EXPECT_EQ(neighbours(5.), std::make_pair(3, 4));
  EXPECT_EQ(neighbours(9.), std::make_pair(4, -1));
}

TEST(VariableStatistics, SingleValuesGoThroughTheType)
{
  NbdVariableFloat v("f");
  v.resizeAndFill(2500);
  v.setAllValues(0.1);
  EXPECT_EQ(v.getValue(2499), double(0.1f));
  v.setAllValues(NbbGlobal::D_BIG_POSITIVE);
  EXPECT_EQ(v.getNDefined(), 0);
}
