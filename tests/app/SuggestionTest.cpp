#include "app/base/Suggestion.h"

#include <gtest/gtest.h>

using orvenal::nearestWord;

TEST(Suggestion, FindsTheNearestWord)
{
  const QStringList keys = {"range", "ranges", "sill", "azimuth"};
  EXPECT_EQ(nearestWord("rnage", keys), "range");  // swapped letters count once
  EXPECT_EQ(nearestWord("Azimut", keys), "azimuth");
  EXPECT_EQ(nearestWord("sil", keys), "sill");
  EXPECT_EQ(nearestWord("nugget", keys), "");
  EXPECT_EQ(nearestWord(QString(100000, 'a'), keys), "");
  EXPECT_EQ(nearestWord("", keys), "");
}
