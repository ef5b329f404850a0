#include "geos/stats/NgmMultivariateStatistics.h"

#include "basic/error/NbeProgrammingError.h"
#include "basic/error/NbeUserError.h"
#include "support/Random.h"
#include "support/SerializationFuzz.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

using testing::HasSubstr;

namespace {

void fillRecord(NbcStatMono &record, std::uint64_t stream)
{
  record.setNTotal(qint64(5000000000) + qint64(stream));
  record.setNDefined(40 + stream, 30 + stream);
  record.setWeight(testsupport::uniform(stream, 0));
  record.setMinimum(testsupport::uniform(stream, 1), testsupport::uniform(stream, 2));
  record.setMaximum(testsupport::uniform(stream, 3), testsupport::uniform(stream, 4));
  record.setMean(testsupport::uniform(stream, 5));
  record.setVariance(testsupport::uniform(stream, 6));
  record.setSkewness(testsupport::uniform(stream, 7));
  record.setKurtosis(testsupport::uniform(stream, 8));
  record.setGeometricMean(testsupport::uniform(stream, 9));
  record.setHarmonicMean(testsupport::uniform(stream, 10));
}

NgmMultivariateStatistics makeStatistics(const QStringList &names)
{
  NgmMultivariateStatistics statistics(names);
  const int n = names.size();
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j)
      fillRecord(statistics.getBivariateStats(i, j), 10 * i + j + 1);
    for (int j = i + 1; j < n; ++j)
      statistics.setRho(i, j, testsupport::uniform(99, 10 * i + j, -1., 1.));
  }
  return statistics;
}

const QStringList NAMES = {QStringLiteral("Zn"), QStringLiteral("Cu, total"),
                           QString::fromUtf8("Pb µ")};

void expectSameRecord(const NbcStatMono &a, const NbcStatMono &b)
{
  EXPECT_EQ(a.getNTotal(), b.getNTotal());
  EXPECT_EQ(a.getNDefined(), b.getNDefined());
  EXPECT_EQ(a.getNDefinedNoW(), b.getNDefinedNoW());
  EXPECT_EQ(a.getWeight(), b.getWeight());
  EXPECT_EQ(a.getMinimum(), b.getMinimum());
  EXPECT_EQ(a.getMinimumNoW(), b.getMinimumNoW());
  EXPECT_EQ(a.getMaximum(), b.getMaximum());
  EXPECT_EQ(a.getMaximumNoW(), b.getMaximumNoW());
  EXPECT_EQ(a.getMean(), b.getMean());
  EXPECT_EQ(a.getVariance(), b.getVariance());
  EXPECT_EQ(a.getStandardDeviation(), b.getStandardDeviation());
  EXPECT_EQ(a.getSkewness(), b.getSkewness());
  EXPECT_EQ(a.getKurtosis(), b.getKurtosis());
  EXPECT_EQ(a.getGeometricMean(), b.getGeometricMean());
  EXPECT_EQ(a.getHarmonicMean(), b.getHarmonicMean());
}

std::string messageOf(const std::function<void()> &call)
{
  try {
    call();
  } catch (const NbeError &error) {
    return error.getMessage().toStdString();
  }
  return "nothing thrown";
}

}  // namespace

TEST(NgmMultivariateStatistics, ComesBackFromAStreamUnchanged)
{
  const NgmMultivariateStatistics written = makeStatistics(NAMES);
  NgmMultivariateStatistics read;
  test::fromBytes(test::toBytes(written), read);
  ASSERT_EQ(read.getNVariables(), 3);
  EXPECT_EQ(read.getVariableNames(), NAMES);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      expectSameRecord(read.getConstBivariateStats(i, j), written.getConstBivariateStats(i, j));
      EXPECT_EQ(read.getRho(i, j), written.getRho(i, j));
    }
  }
  // magic, version; magic, names; 9 records of 15 words; count, 9 words; magic
  const int nameBytes = 4 + 3 * 4 + 2 * (2 + 9 + 4);
  EXPECT_EQ(test::toBytes(written).size(), 8 + 4 + nameBytes + 9 * 15 * 8 + 4 + 9 * 8 + 4);
}

TEST(NgmMultivariateStatistics, DamagedStreamsAreRefused)
{
  NgmMultivariateStatistics target = makeStatistics({QStringLiteral("other")});
  test::fuzzSerialization(makeStatistics({QStringLiteral("a"), QStringLiteral("b")}), target);
  test::fuzzSerialization(NgmMultivariateStatistics());
}

TEST(NgmMultivariateStatistics, StreamsOfOthersAreTold)
{
  const QByteArray bytes = test::toBytes(makeStatistics({QStringLiteral("a")}));
  const auto readPatched = [&bytes](int position, quint32 word) {
    QByteArray patched = bytes;
    for (int i = 0; i < 4; ++i)
      patched[position + i] = char(word >> (24 - 8 * i));
    return messageOf([&patched] {
      NgmMultivariateStatistics target;
      test::fromBytes(patched, target);
    });
  };
  EXPECT_EQ(readPatched(4, 170223),
            "Attempting to read a Multivariate Statistics with an older application.");
  EXPECT_THAT(readPatched(8, 1), HasSubstr("): bad magic number."));
  EXPECT_THAT(readPatched(bytes.size() - 4, 1), HasSubstr("): bad magic number."));
  EXPECT_THAT(readPatched(bytes.size() - 16, 2), HasSubstr("bad array size"));
  EXPECT_THAT(readPatched(bytes.size() - 16, 2),
              HasSubstr("in file 'stats\\NgmMultivariateStatistics' failed:"));
}

TEST(NgmMultivariateStatistics, UnknownNamesAreMisuse)
{
  NgmMultivariateStatistics statistics = makeStatistics(NAMES);
  const QString known = QStringLiteral("Zn");
  const QString unknown = QStringLiteral("Zinc");
  const std::pair<std::function<void()>, const char *> cases[] = {
      {[&] { statistics.getUnivariateStats(unknown); }, "Invalid name 'Zinc'."},
      {[&] { statistics.getConstUnivariateStats(unknown); }, "Invalid name 'Zinc'."},
      {[&] { statistics.getBivariateStats(known, unknown); }, "Invalid names ('Zn', 'Zinc')."},
      {[&] { statistics.getConstBivariateStats(unknown, known); }, "Invalid names ('Zinc', 'Zn')."},
      {[&] { statistics.getCorrelationCoefficient(unknown, unknown); },
       "Invalid names ('Zinc', 'Zinc')."},
      {[&] { statistics.updateNames({known}); }, "invalid names"},
  };
  for (const auto &[call, text] : cases) {
    EXPECT_THROW(call(), NbeProgrammingError) << text;
    EXPECT_THAT(messageOf(call), HasSubstr(text));
  }

  EXPECT_EQ(statistics.extractMultiVariableStats({known, unknown}).getNVariables(), 0);
  EXPECT_EQ(statistics.extractMultiVariableStats(QStringList()).getNVariables(), 0);
  EXPECT_EQ(statistics.extractMultiVariableStats(QList<int>{0, 3}).getNVariables(), 0);
}

TEST(NgmMultivariateStatistics, ExtractsInTheOrderAskedFor)
{
  const NgmMultivariateStatistics all = makeStatistics(NAMES);
  const NgmMultivariateStatistics part = all.extractMultiVariableStats({NAMES[2], NAMES[0]});
  ASSERT_EQ(part.getNVariables(), 2);
  EXPECT_EQ(part.getVariableName(0), NAMES[2]);
  expectSameRecord(part.getConstUnivariateStats(NAMES[0]), all.getConstUnivariateStats(0));
  expectSameRecord(part.getConstBivariateStats(0, 1), all.getConstBivariateStats(2, 0));
  EXPECT_EQ(part.getCorrelationCoefficient(NAMES[0], NAMES[2]), all.getRho(0, 2));
  EXPECT_EQ(part.getRho(0, 0), 1.);
}

TEST(NgmMultivariateStatistics, CovariancesFollowFromDeviationsAndCorrelations)
{
  NgmMultivariateStatistics statistics(
      {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("c")});
  statistics.getUnivariateStats(0).setVariance(4.);
  statistics.getUnivariateStats(1).setVariance(9.);
  statistics.getBivariateStats(0, 1).setVariance(1.);
  statistics.getBivariateStats(1, 0).setVariance(16.);
  statistics.setRho(1, 0, 0.5);
  const NgmMatrix plain = statistics.getVarianceCovarianceMatrix();
  EXPECT_EQ(plain(0, 0), 4.);
  EXPECT_EQ(plain(0, 1), 3.);
  EXPECT_EQ(plain(1, 0), 3.);
  EXPECT_EQ(plain(2, 2), 0.);  // variable c has no record
  const NgmMatrix heterotopic = statistics.getVarianceCovarianceMatrixHeterotopic();
  EXPECT_EQ(heterotopic(0, 1), 2.);
  EXPECT_EQ(heterotopic(1, 1), 9.);
  EXPECT_EQ(statistics.getAllVariances()(1, 0), 9.);
  EXPECT_EQ(statistics.getAllMeans()(2, 0), NbbGlobal::D_FFFF);

  NgmMultivariateStatistics copy(statistics);
  copy.getUnivariateStats(0).setVariance(1.);
  copy.setRho(0, 1, 0.);
  EXPECT_EQ(statistics.getUnivariateStats(0).getVariance(), 4.);
  EXPECT_EQ(statistics.getRho(0, 1), 0.5);
}
