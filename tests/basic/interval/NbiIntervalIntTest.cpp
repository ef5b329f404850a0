#include "basic/error/NbeProgrammingError.h"
#include "basic/interval/NbiIntervalIntLarge.h"
#include "basic/interval/NbiIntervalIntLargeDisjoint.h"
#include "basic/interval/NbiIntervalIntLargeMoving.h"
#include "basic/interval/NbiIntervalIntSmall.h"
#include "basic/interval/NbiIntervalIntSmallDisjoint.h"
#include "basic/interval/NbiIntervalIntSmallIterator.h"
#include "basic/interval/NbiIntervalIntSmallMoving.h"
#include "basic/interval/NbiIntervalsIJK.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

TEST(NbiIntervalInt, IsClosedAndEmptyWhenReversed)
{
  const NbiIntervalIntSmall five = NbiIntervalIntSmall::fromLength(5);
  EXPECT_EQ(five, NbiIntervalIntSmall(0, 4));
  EXPECT_EQ(five.getLength(), 5);
  EXPECT_TRUE(five.isIncluded(4));
  EXPECT_FALSE(five.isIncluded(5));
  EXPECT_EQ(NbiIntervalIntSmall::fromFirstAndLength(3, 2), NbiIntervalIntSmall(3, 4));

  EXPECT_TRUE(NbiIntervalIntSmall().isEmpty());
  EXPECT_TRUE(NbiIntervalIntSmall::fromLength(0).isEmpty());
  EXPECT_EQ(NbiIntervalIntSmall(3, -7).getLength(), 0);
  EXPECT_TRUE(NbiIntervalIntSmall(0, 4).intersect({5, 9}).isEmpty());
  EXPECT_EQ(NbiIntervalIntSmall(0, 4).intersect({3, 9}), NbiIntervalIntSmall(3, 4));

  NbiIntervalIntLarge moved(10, 19);
  moved.addOffset(-4);
  EXPECT_EQ(moved, NbiIntervalIntLarge(6, 15));
  moved.setLength(3);
  EXPECT_EQ(moved, NbiIntervalIntLarge(6, 8));
}

TEST(NbiIntervalInt, LengthsThatDoNotFitAreNotValid)
{
  const int most = std::numeric_limits<int>::max();
  EXPECT_TRUE(NbiIntervalIntSmall(1, most).isValid());
  EXPECT_FALSE(NbiIntervalIntSmall(0, most).isValid());
  EXPECT_FALSE(NbiIntervalIntSmall(-most, most).isValid());
  EXPECT_FALSE(NbiIntervalIntSmall(2, 1).isValid());

  const qint64 far = qint64(1) << 40;
  EXPECT_EQ(NbiIntervalIntLarge(far, far + 9).toSmallO64(),
            NbiIntervalIntSmallO64::fromFirstAndLength(far, 10));
  EXPECT_EQ(NbiIntervalIntLarge(far, far + most - 1).toSmallO64().getLength(), most);
  EXPECT_THROW(NbiIntervalIntLarge(far, far + most).toSmallO64(), NbeProgrammingError);
  EXPECT_TRUE(NbiIntervalIntLarge().toSmallO64().isEmpty());
}

TEST(NbiIntervalIntDisjoint, BehavesAsASetOfIndices)
{
  std::mt19937 generator(12);
  for (int round = 0; round < 200; ++round) {
    NbiIntervalIntLargeDisjoint disjoint;
    std::set<qint64> indices;
    for (int step = 0; step < 12; ++step) {
      const qint64 lower = int(generator() % 60) - 20;
      const NbiIntervalIntLarge interval(lower, lower + int(generator() % 8) - 1);
      disjoint.merge(interval);
      for (qint64 i = interval.getLower(); i <= interval.getUpper(); ++i)
        indices.insert(i);
    }

    ASSERT_EQ(disjoint.getTotalLength(), qint64(indices.size()));
    for (int i = 0; i + 1 < disjoint.count(); ++i)
      ASSERT_LT(disjoint.at(i).getUpper() + 1, disjoint.at(i + 1).getLower());
    qint64 rank = 0;
    for (qint64 index = -25; index < 55; ++index) {
      const bool isIn = indices.count(index) > 0;
      ASSERT_EQ(disjoint.toRelativeRank(index), isIn ? rank : -1) << index;
      if (isIn) {
        ASSERT_EQ(disjoint.toAbsoluteIndex(rank), index);
        ++rank;
      }
    }
  }
}

TEST(NbiIntervalIntDisjoint, MergesNeighborsAndOtherSets)
{
  NbiIntervalIntSmallDisjoint disjoint(NbiIntervalIntSmall(0, 4));
  disjoint.merge(NbiIntervalIntSmall(10, 12));
  disjoint.merge(NbiIntervalIntSmall());
  EXPECT_EQ(disjoint.toList(), QList<NbiIntervalIntSmall>({{0, 4}, {10, 12}}));
  disjoint.merge(NbiIntervalIntSmall(5, 9));
  EXPECT_EQ(disjoint.toList(), QList<NbiIntervalIntSmall>({{0, 12}}));

  NbiIntervalIntSmallDisjoint other(NbiIntervalIntSmall(20, 21));
  other.merge(NbiIntervalIntSmall(-5, -1));
  disjoint.merge(other);
  disjoint.merge(disjoint);
  EXPECT_EQ(disjoint.toList(), QList<NbiIntervalIntSmall>({{-5, 12}, {20, 21}}));

  // Bounds at the ends of the type.
  const int least = std::numeric_limits<int>::min(), most = std::numeric_limits<int>::max();
  NbiIntervalIntSmallDisjoint ends(NbiIntervalIntSmall(most, most));
  ends.merge(NbiIntervalIntSmall(least, least));
  EXPECT_EQ(ends.count(), 2);
  EXPECT_EQ(ends.toRelativeRank(most), 1);
  ends.merge(NbiIntervalIntSmall(least, most));
  EXPECT_EQ(ends.getTotalLength(), qint64(1) << 32);

  EXPECT_THROW(disjoint.at(2), NbeProgrammingError);
  EXPECT_THROW(disjoint.toAbsoluteIndex(20), NbeProgrammingError);
}

TEST(NbiIntervalIntMoving, CoversEachIndexOnce)
{
  for (int n = 0; n <= 13; ++n) {
    for (int length = 1; length <= 15; ++length) {
      const NbiIntervalIntSmall range = NbiIntervalIntSmall::fromFirstAndLength(-3, n);
      NbiIntervalIntSmallMoving moving(range, length);
      EXPECT_TRUE(moving.getInterval().isEmpty());
      int expected = -3, nWindows = 0;
      while (moving.hasNext()) {
        const NbiIntervalIntSmall window = moving.next();
        ASSERT_EQ(window, moving.getInterval());
        ASSERT_EQ(window.getLower(), expected);
        ASSERT_TRUE(window.getLength() == length || window.getUpper() == range.getUpper());
        expected = window.getUpper() + 1;
        ++nWindows;
      }
      ASSERT_EQ(expected, -3 + n);
      ASSERT_EQ(nWindows, moving.getNWindows());
      ASSERT_EQ(nWindows, (n + length - 1) / length);
    }
  }
}

TEST(NbiIntervalIntMoving, WalksBothWays)
{
  NbiIntervalIntLargeMoving moving(NbiIntervalIntLarge::fromLength(10), 4);
  EXPECT_FALSE(moving.hasPrevious());
  EXPECT_THROW(moving.previous(), NbeProgrammingError);
  moving.toBack();
  EXPECT_FALSE(moving.hasNext());
  EXPECT_THROW(moving.next(), NbeProgrammingError);
  EXPECT_EQ(moving.previous(), NbiIntervalIntLarge(8, 9));
  EXPECT_EQ(moving.previous(), NbiIntervalIntLarge(4, 7));
  EXPECT_EQ(moving.next(), NbiIntervalIntLarge(8, 9));
  moving.toFront();
  EXPECT_EQ(moving.next(), NbiIntervalIntLarge(0, 3));
  EXPECT_FALSE(moving.hasPrevious());

  EXPECT_FALSE(NbiIntervalIntSmallMoving().hasNext());
  EXPECT_THROW(NbiIntervalIntSmallMoving(NbiIntervalIntSmall(0, 9), 0), NbeProgrammingError);
  // A window longer than the type can add to the lower bound.
  const int most = std::numeric_limits<int>::max();
  NbiIntervalIntSmallMoving last(NbiIntervalIntSmall(most - 5, most), most);
  EXPECT_EQ(last.next(), NbiIntervalIntSmall(most - 5, most));
  EXPECT_FALSE(last.hasNext());
}

TEST(NbiIntervalIntIterator, GivesEachIndexInOrder)
{
  NbiIntervalIntSmallIterator iterator(NbiIntervalIntSmall(4, 6));
  EXPECT_FALSE(iterator.hasCurrent());
  EXPECT_THROW(iterator.getCurrent(), NbeProgrammingError);
  for (int expected = 4; expected <= 6; ++expected) {
    EXPECT_EQ(iterator.next(), expected);
    EXPECT_EQ(iterator.getCurrent(), expected);
  }
  EXPECT_FALSE(iterator.hasNext());
  EXPECT_EQ(iterator.previous(), 5);
}

TEST(NbiIntervalsIJK, CountsCellsIn64Bits)
{
  const NbiIntervalIntSmall axis = NbiIntervalIntSmall::fromLength(100000);
  EXPECT_EQ(NbiIntervalsIJK(axis, axis, axis).getLength(), 1000000000000000);
  EXPECT_TRUE(NbiIntervalsIJK(axis, axis, NbiIntervalIntSmall()).isEmpty());
  EXPECT_EQ(NbiIntervalsIJK(axis, axis, NbiIntervalIntSmall()).getLength(), 0);
}
