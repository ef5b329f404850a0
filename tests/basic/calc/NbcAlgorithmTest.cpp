#include "basic/calc/NbcAlgorithm.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcThread.h"
#include "basic/unit/NbuUnitTransfo.h"

#include <QString>

#include <gtest/gtest.h>
#include <pthread.h>

#include <cmath>
#include <thread>

namespace {

const NbuUnitTransfo METRES = NbuUnitTransfo::identity();

}

TEST(NbcAlgorithm, RoundValueKeepsSignificantDigits)
{
  EXPECT_EQ(NbcAlgorithm::roundValue(1234.5, METRES, 0), 1000.);
  EXPECT_EQ(NbcAlgorithm::roundValue(1250., METRES, 1), 1300.);
  EXPECT_EQ(NbcAlgorithm::roundValue(-1250., METRES, 1), -1300.);
  EXPECT_EQ(NbcAlgorithm::roundValue(0.04567, METRES, 1), 0.046);
  EXPECT_EQ(NbcAlgorithm::roundValue(9.7, METRES, 0), 10.);
  EXPECT_EQ(NbcAlgorithm::roundValue(3e-305, METRES, 0), 3e-305);
  EXPECT_EQ(NbcAlgorithm::roundValue(4.6e20, METRES, 0), 5e20);
  EXPECT_EQ(NbcAlgorithm::roundValue(0., METRES, 0), 0.);
  EXPECT_EQ(NbcAlgorithm::roundValue(NbbGlobal::D_FFFF, METRES, 0), NbbGlobal::D_FFFF);
}

TEST(NbcAlgorithm, RoundValueRoundsInDisplayUnits)
{
  // 10 m are 32.8 ft, rounded 30 ft.
  const NbuUnitTransfo feet(1. / 0.3048);
  EXPECT_NEAR(NbcAlgorithm::roundValue(10., feet, 0), 30. * 0.3048, 1e-14);
}

TEST(NbcAlgorithm, CeilValueIsNeverBelow)
{
  EXPECT_EQ(NbcAlgorithm::ceilValue(1001., METRES, 0), 2000.);
  EXPECT_EQ(NbcAlgorithm::ceilValue(1000., METRES, 0), 1000.);
  EXPECT_EQ(NbcAlgorithm::ceilValue(0.3, METRES, 0), 0.3);
  EXPECT_EQ(NbcAlgorithm::ceilValue(0.0301, METRES, 1), 0.031);
  EXPECT_EQ(NbcAlgorithm::ceilValue(-1999., METRES, 0), -1000.);
}

TEST(NbcAlgorithm, CombinationFollowsPascal)
{
  for (int n = 1; n <= 50; ++n) {
    for (int k = 1; k <= n; ++k)
      EXPECT_EQ(NbcAlgorithm::combination(n, k),
                NbcAlgorithm::combination(n - 1, k) + NbcAlgorithm::combination(n - 1, k - 1));
  }
  EXPECT_EQ(NbcAlgorithm::combination(0, 0), 1.);
  EXPECT_EQ(NbcAlgorithm::combination(5, 6), 0.);
  EXPECT_EQ(NbcAlgorithm::combination(5, -1), 0.);
}

TEST(NbcAlgorithm, QuantilesInterpolateBetweenDefinedValues)
{
  const double values[] = {4., NbbGlobal::D_FFFF, 1., 3., std::nan(""), 2.};
  const QVector<double> quantiles =
      NbcAlgorithm::calculateQuantiles(values, 6, {0., 0.25, 0.5, 1., -1., 2., NbbGlobal::D_FFFF});
  EXPECT_EQ(quantiles, QVector<double>({1., 1.75, 2.5, 4., 1., 4., NbbGlobal::D_FFFF}));
  EXPECT_EQ(NbcAlgorithm::calculateQuantiles(values + 1, 1, {0.5}),
            QVector<double>({NbbGlobal::D_FFFF}));
}

TEST(NbcThread, NamesTheThreadWithinTheLimitOfTheSystem)
{
  char name[32] = "";
  std::thread thread([&name] {
    NbcThread::setThreadNameFromClassName(QStringLiteral("NgcQuickStat::Worker"));
    pthread_getname_np(pthread_self(), name, sizeof(name));
  });
  thread.join();
  EXPECT_STREQ(name, "NgcQuickStat::W");
}
