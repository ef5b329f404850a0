#include "basic/interval/NbiIntervalData.h"

#include "support/SerializationFuzz.h"

#include <gtest/gtest.h>

TEST(NbiIntervalData, BoundsBelongToItWhenTheirFlagSaysSo)
{
  for (bool lower : {false, true}) {
    for (bool upper : {false, true}) {
      const NbiIntervalData interval(1., 3., lower, upper);
      EXPECT_EQ(interval.isIncluded(1.), lower);
      EXPECT_EQ(interval.isIncluded(3.), upper);
      EXPECT_TRUE(interval.isIncluded(2.));
      EXPECT_FALSE(interval.isIncluded(0.9));
      EXPECT_FALSE(interval.isIncluded(3.1));
      EXPECT_EQ(NbiIntervalData(2., 2., lower, upper).isEmpty(), !(lower && upper));
    }
  }
  EXPECT_EQ(NbiIntervalData(1., 3.).getCenter(), 2.);
  EXPECT_EQ(NbiIntervalData(1., 3.).getLength(), 2.);
  EXPECT_TRUE(NbiIntervalData(3., 1.).isEmpty());
}

TEST(NbiIntervalData, AnUndefinedBoundIsNoBound)
{
  const double none = NbiIntervalData::Infinity;
  EXPECT_TRUE(NbiIntervalData::Infinite().isInfinite());
  EXPECT_TRUE(NbiIntervalData::Infinite().isIncluded(-1e300));
  EXPECT_FALSE(NbiIntervalData::Infinite().isIncluded(NbbGlobal::D_FFFF));
  EXPECT_FALSE(NbiIntervalData::Infinite().isIncluded(std::nan("")));

  const NbiIntervalData positive(0., none, false);
  EXPECT_FALSE(positive.isInfinite());
  EXPECT_FALSE(positive.isIncluded(0.));
  EXPECT_TRUE(positive.isIncluded(1e29));
  EXPECT_EQ(positive.getCenter(), NbbGlobal::D_FFFF);
  EXPECT_EQ(positive.getLength(), NbbGlobal::D_FFFF);
  EXPECT_EQ(positive.toString(), "]0, +inf[");
  EXPECT_EQ(NbiIntervalData(0., std::nan("")), NbiIntervalData(0., none));
}

TEST(NbiIntervalData, FitsToTheNearestValueInside)
{
  const NbiIntervalData interval(1., 3., true, false);
  EXPECT_EQ(interval.fit(2.), 2.);
  EXPECT_EQ(interval.fit(-5.), 1.);
  EXPECT_TRUE(interval.isIncluded(interval.fit(7.)));
  EXPECT_DOUBLE_EQ(interval.fit(7.), 3.);
  EXPECT_EQ(interval.fit(NbbGlobal::D_FFFF), NbbGlobal::D_FFFF);
  EXPECT_EQ(NbiIntervalData(3., 1.).fit(2.), NbbGlobal::D_FFFF);
  EXPECT_EQ(NbiIntervalData::Infinite().fit(-1e20), -1e20);
}

TEST(NbiIntervalData, StreamsComeBackAndDamagedOnesAreRefused)
{
  test::fuzzSerialization(NbiIntervalData(1., 3., true, false));
  NbiIntervalData target;
  test::fromBytes(test::toBytes(NbiIntervalData(1., NbiIntervalData::Infinity, false)), target);
  EXPECT_EQ(target, NbiIntervalData(1., NbiIntervalData::Infinity, false));
}
