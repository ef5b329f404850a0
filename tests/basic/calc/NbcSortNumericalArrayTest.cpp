#include "basic/calc/NbcSortNumericalArray.h"

#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeProgrammingError.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace {

QVector<int> ranksOf(const NbcSortNumericalArray &sorted)
{
  QVector<int> ranks;
  for (int k = 0; k < sorted.getNElements(); ++k)
    ranks.append(sorted.getRank(k));
  return ranks;
}

}  // namespace

TEST(NbcSortNumericalArray, UndefinedValuesComeLastInEveryMode)
{
  const double inf = std::numeric_limits<double>::infinity();
  const std::vector<double> values = {2.,   std::nan(""), -1., NbbGlobal::D_FFFF,
                                      -inf, 2.,           -1., 1e30};
  const int n = int(values.size());
  for (auto mode :
       {NbcSortNumericalArray::INCREASING_STABLE, NbcSortNumericalArray::INCREASING_UNSTABLE})
    EXPECT_EQ(ranksOf(NbcSortNumericalArray(values.data(), n, mode)),
              QVector<int>({2, 6, 0, 5, 7, 3, 4, 1}));
  EXPECT_EQ(
      ranksOf(NbcSortNumericalArray(values.data(), n, NbcSortNumericalArray::DECREASING_STABLE)),
      QVector<int>({0, 5, 2, 6, 1, 3, 4, 7}));
}

TEST(NbcSortNumericalArray, IntegersKeepTheirUndefinedLast)
{
  const std::vector<int> values = {5, NbbGlobal::I32_FFFF, -5};
  const NbcSortNumericalArray sorted(values.data(), 3);
  EXPECT_EQ(ranksOf(sorted), QVector<int>({2, 0, 1}));
  EXPECT_EQ(sorted.getElement(0), -5.);
  EXPECT_EQ(sorted.getElement(2), NbbGlobal::D_FFFF);

  // Neighbors that one double cannot tell apart.
  const qint64 big = qint64(1) << 60;
  const std::vector<qint64> numbers = {big + 1, NbbGlobal::I64_FFFF, big};
  EXPECT_EQ(ranksOf(NbcSortNumericalArray(numbers.data(), 3)), QVector<int>({2, 0, 1}));

  const std::vector<float> floats = {NbbGlobal::F_FFFF, 0.5f};
  EXPECT_EQ(ranksOf(NbcSortNumericalArray(floats.data(), 2)), QVector<int>({1, 0}));
}

TEST(NbcSortNumericalArray, MatchesAStableSortOnRandomTies)
{
  std::mt19937 generator(20250302u);
  for (int n : {0, 1, 2, 17, 1000, 20000}) {
    std::vector<double> values(static_cast<size_t>(n));
    for (double &value : values)
      value = (double(generator() % 1300) - 600.) * (generator() % 2 ? 1. : 1e-3);
    std::vector<int> expected(values.size());
    for (int i = 0; i < n; ++i)
      expected[size_t(i)] = i;

    std::stable_sort(expected.begin(), expected.end(),
                     [&](int a, int b) { return values[size_t(a)] < values[size_t(b)]; });
    const NbcSortNumericalArray up(values.data(), n, NbcSortNumericalArray::INCREASING_UNSTABLE);
    std::vector<int> down = expected;
    std::stable_sort(down.begin(), down.end(), [&](int a, int b) {
      return values[size_t(a)] != values[size_t(b)] ? values[size_t(a)] > values[size_t(b)] : a < b;
    });
    const NbcSortNumericalArray decreasing(values.data(), n,
                                           NbcSortNumericalArray::DECREASING_STABLE);
    for (int k = 0; k < n; ++k) {
      ASSERT_EQ(up.getRank(k), expected[size_t(k)]);
      ASSERT_EQ(up.getElement(k), values[size_t(expected[size_t(k)])]);
      ASSERT_EQ(decreasing.getRanks()[k], down[size_t(k)]);
    }
  }
}

TEST(NbcSortNumericalArray, PositionsOutsideAreProgrammingErrors)
{
  const double value = 1.;
  const NbcSortNumericalArray sorted(&value, 1);
  EXPECT_THROW(sorted.getRank(-1), NbeProgrammingError);
  EXPECT_THROW(sorted.getElement(1), NbeProgrammingError);
}
