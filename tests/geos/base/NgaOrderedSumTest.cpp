#include "geos/base/NgaOrderedSum.h"

#include "basic/calc/NbcProportions.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/base/NgaProportionSum.h"
#include "geos/base/NgaStatSum.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

std::unique_ptr<NgaIAdditive> partialOf(qint64 rank)
{
  auto partial = std::make_unique<NgaStatSum>();
  partial->addValue(testsupport::normal(77, rank));
  return partial;
}

/// The first moment of the partials of the given ranks, handed in in this order.
double sumOf(const std::vector<int> &ranks)
{
  NgaOrderedSum sums;
  for (int rank : ranks)
    sums.add(rank, partialOf(rank));
  NgaStatSum total;
  sums.flushInto(total);
  EXPECT_EQ(sums.getNPending(), 0);
  EXPECT_EQ(total.getNTotal(), qint64(ranks.size()));
  return total.getMoment(1);
}

}  // namespace

TEST(NgaOrderedSum, TheOrderOfArrivalDoesNotShow)
{
  std::mt19937 generator(4);
  for (int n : {1, 2, 3, 64, 101, 777}) {
    std::vector<int> ranks(n);
    std::iota(ranks.begin(), ranks.end(), 0);
    const double expected = sumOf(ranks);
    for (int trial = 0; trial < 20; ++trial) {
      std::shuffle(ranks.begin(), ranks.end(), generator);
      ASSERT_EQ(sumOf(ranks), expected) << n << " partials";
    }
  }
}

TEST(NgaOrderedSum, MissingRanksAreNoObstacle)
{
  std::vector<int> ranks = {0, 1, 3, 4, 5, 6, 9, 12, 13};
  const double expected = sumOf(ranks);
  double plain = 0.;
  for (int rank : ranks)
    plain += testsupport::normal(77, rank);
  EXPECT_NEAR(expected, plain, 1e-14);
  std::reverse(ranks.begin(), ranks.end());
  EXPECT_EQ(sumOf(ranks), expected);

  NgaOrderedSum sums;
  EXPECT_THROW(sums.add(-1, partialOf(0)), NbeProgrammingError);
}

TEST(NgaOrderedSum, FewPartialsWaitForALateOne)
{
  NgaOrderedSum sums;
  for (int rank = 1; rank < 4096; ++rank) {
    sums.add(rank, partialOf(rank));
    ASSERT_LE(sums.getNPending(), 24);
  }
  sums.add(0, partialOf(0));
  EXPECT_EQ(sums.getNPending(), 1);
}

TEST(NgaProportionSum, UndefinedValuesAreACategoryApart)
{
  const int undefined = NbbGlobal::I32_FFFF;
  NgaProportionSum first, second;
  const int codes[] = {3, 3, 1, undefined, 3, undefined};
  first.addCategories(6, codes);
  second.addCategory(1);
  second.addCategory(7, 0.5);
  first.doSum(second);
  EXPECT_EQ(first.getTotalCount(), 8);
  EXPECT_EQ(first.getTotalWeight(), 7.5);
  EXPECT_EQ(first.getCount(undefined), 2);

  NbcProportions record;
  first.fill(record);
  EXPECT_EQ(record.getValues(), (QList<int>{1, 3, 7}));
  EXPECT_EQ(record.getNbUnits(3), 3);
  EXPECT_DOUBLE_EQ(record.getProportion(3), 3. / 5.5);
  EXPECT_DOUBLE_EQ(record.getProportion(7), 0.5 / 5.5);
  EXPECT_EQ(record.getProportion(undefined), 0.);
}
