#include "app/base/NumberText.h"
#include "app/console/Progress.h"

#include <gtest/gtest.h>

using orvenal::Progress;

TEST(Progress, ShowsRateAndTimeLeft)
{
  EXPECT_EQ(Progress::barLine("Kriging", 0., 0., 1000, "nodes"),
            "Kriging [..............................]   0%");
  EXPECT_EQ(Progress::barLine("Kriging", 0.25, 2., 40000, "nodes"),
            "Kriging [#######.......................]  25%  5,000 nodes/s  6 s left");
  EXPECT_EQ(Progress::barLine("Kriging", 1., 3725., 7450, "nodes"),
            "Kriging [##############################] 100%  2 nodes/s");
}

TEST(Progress, WritesDurationsAndCounts)
{
  EXPECT_EQ(orvenal::durationText(0.), "0 s");
  EXPECT_EQ(orvenal::durationText(0.0456), "0.046 s");
  EXPECT_EQ(orvenal::durationText(12.3), "12 s");
  EXPECT_EQ(orvenal::durationText(65.2), "1:05");
  EXPECT_EQ(orvenal::durationText(3725.), "1:02:05");
  EXPECT_EQ(orvenal::groupedText(0), "0");
  EXPECT_EQ(orvenal::groupedText(-1234567), "-1,234,567");
  EXPECT_EQ(orvenal::groupedText(999), "999");
}
