#include "geos/stats/NgmVariogramExpData.h"

#include "basic/base/NbbGlobal.h"
#include "basic/data/NbdAVariableNumeric.h"
#include "basic/geom/NbgAngle.h"
#include "geos/stats/NgmPairsVariogramCloud.h"
#include "support/Errors.h"
#include "support/SerializationFuzz.h"

#include <QDataStream>

#include <gtest/gtest.h>

using testsupport::errorOf;
using testsupport::expectAssertion;

namespace {

const QString SOURCE = QStringLiteral("stats\\NgmVariogramExpData");
using Vario = NgmEVarioExp::EValue;
using Cova = NgmECovaExp::EValue;

/// Two directions of two and three lags, n variables. The value of lag k of the pair (i, j) is
/// 100 (i + 1) (j + 1) + k, its distance 10 k + 1; the second lag of each table has no pairs.
NgmVariogramExpData makeData(int n, bool cross)
{
  NgmVariogramExpData data;
  data.setNVariables(n);
  data.addDirection(NbgRotation(), 2, QStringLiteral("N90"));
  data.addDirectionVector(NbgVector3D(0., 0., -2.), 3, QStringLiteral("down"));
  data.addDirectionGroupName(0, QStringLiteral("All"), NbgRotation());
  data.addDirectionGroupName(1, QStringLiteral("Other"), NbgRotation(10., 0., 0.));
  data.addDirectionGroupName(1, QStringLiteral("All"), NbgRotation());
  data.setGroupDescription(QStringLiteral("All"), QStringLiteral("both"));
  data.createTables({NgmEVarioExp::VARIOGRAM, NgmEVarioExp::MADOGRAM}, {NgmECovaExp::COVARIANCE},
                    cross);
  for (int dir = 0; dir < 2; ++dir) {
    for (const bool isCova : {false, true}) {
      for (int i = 0; i < n; ++i) {
        for (int j = i; j < (cross ? n : i + 1); ++j) {
          const int size = isCova ? 2 * data.getNLags(dir) + 1 : data.getNLags(dir);
          std::vector<double> distances, values;
          std::vector<long long> pairs;
          for (int k = 0; k < size; ++k) {
            distances.push_back(10. * k + 1.);
            values.push_back(100. * (i + 1) * (j + 1) + k);
            pairs.push_back(k == 1 ? 0 : k + 5);
          }
          data.setDistances(dir, isCova, i, j, size, distances.data());
          data.setNumberOfPairs(dir, isCova, i, j, size, pairs.data());
          if (isCova)
            data.setCovaValues(dir, Cova::COVARIANCE, i, j, size, values.data());
          else
            data.setVarioValues(dir, Vario::VARIOGRAM, i, j, size, values.data());
        }
      }
    }
  }
  data.setMinimumLag(5.);
  return data;
}

NgmMatrix diagonal(std::initializer_list<double> values)
{
  NgmMatrix matrix(int(values.size()), int(values.size()), true);
  int i = 0;
  for (const double value : values) {
    matrix.setElement(i, i, value);
    ++i;
  }
  return matrix;
}

}  // namespace

TEST(NgmVariogramExpData, TablesAreFoundByDirectionAndPairWhateverTheOrderOfThePair)
{
  const NgmVariogramExpData data = makeData(3, true);
  for (int dir = 0; dir < 2; ++dir) {
    for (int i = 0; i < 3; ++i) {
      for (int j = 0; j < 3; ++j) {
        EXPECT_EQ(data.getVarioColumn(dir, Vario::VARIOGRAM, i, j)[1],
                  100. * (i + 1) * (j + 1) + 1.);
        EXPECT_EQ(data.getCovaColumn(dir, Cova::COVARIANCE, i, j).size(),
                  2 * data.getNLags(dir) + 1);
      }
    }
  }
  EXPECT_EQ(data.getVarioColumn(0, Vario::MADOGRAM, 0, 1), QVector<double>({0., 0.}));
  expectAssertion(SOURCE,
                  QStringLiteral("NgmVariogramExpData::_getTable: invalid direction rank or tables "
                                 "not created"),
                  [&] { data.getVariogramData(2, 0, 0); });
  expectAssertion(
      SOURCE, QStringLiteral("NgmVariogramExpData::getMaximumDistance: invalid direction rank."),
      [&] { data.getMaximumDistance(2); });

  const NgmVariogramExpData simple = makeData(3, false);
  EXPECT_EQ(simple.getVarioColumn(1, Vario::VARIOGRAM, 2, 2)[0], 900.);
  expectAssertion(SOURCE, QStringLiteral("Cross variograms are not computed."),
                  [&] { simple.getVariogramData(0, 0, 1); });
}

TEST(NgmVariogramExpData, CopiesAreIndependent)
{
  const NgmVariogramExpData data = makeData(2, true);
  NgmVariogramExpData copy = data;
  const double values[] = {-1., -2.};
  const long long nPairs[] = {7, 8};
  copy.setDistances(0, false, 0, 1, 2, values);
  copy.setNumberOfPairs(0, false, 0, 1, 2, nPairs);
  copy.setVarioValues(0, Vario::VARIOGRAM, 0, 1, 2, values);
  EXPECT_EQ(copy.getVarioColumn(0, Vario::VARIOGRAM, 0, 1), QVector<double>({-1., -2.}));
  EXPECT_EQ(data.getVarioColumn(0, Vario::VARIOGRAM, 0, 1), QVector<double>({200., 201.}));
  EXPECT_EQ(data.getDistances(0, false, 0, 1), QVector<double>({1., 11.}));
  EXPECT_EQ(data.getNumberOfPairs(0, false, 0, 1), QVector<qint64>({5, 0}));
}

TEST(NgmVariogramExpData, LagsWithoutPairsAreMaskedButNotTheOriginOfCovariances)
{
  NgmVariogramExpData data = makeData(1, true);
  EXPECT_EQ(data.getMasked(1, false, 0, 0), QVector<bool>({false, true, false}));
  EXPECT_EQ(data.extractDistances(1, NgmEVarioExp::VARIOGRAM, 0, 0), QVector<double>({1., 21.}));
  EXPECT_EQ(data.extractVarioValues(1, NgmEVarioExp::VARIOGRAM, 0, 0),
            QVector<double>({100., 102.}));
  const long long none[5] = {};
  data.setNumberOfPairs(0, true, 0, 0, 5, none);
  EXPECT_EQ(data.getMasked(0, true, 0, 0), QVector<bool>({true, true, false, true, true}));
  EXPECT_EQ(data.getMaximumDistance(0), 1.);
  EXPECT_EQ(data.getMaximumDistanceExperimental(), 61.);
}

TEST(NgmVariogramExpData, DirectionsKnowTheirGroups)
{
  const NgmVariogramExpData data = makeData(1, true);
  EXPECT_EQ(data.getNDimensions(), 3);
  EXPECT_EQ(data.getNDirections2D(), 1);
  EXPECT_EQ(data.getAllDirectionGroupNames(),
            QStringList({QStringLiteral("All"), QStringLiteral("Other")}));
  EXPECT_EQ(data.getDirectionGroupRanks(1), QList<int>({1, 0}));
  EXPECT_EQ(data.getAllDirectionRanksByGroup()[QStringLiteral("All")], QList<int>({0, 1}));
  EXPECT_EQ(data.getAllDirectionByGroup()[QStringLiteral("Other")],
            QStringList(QStringLiteral("down")));
  EXPECT_EQ(data.getReferencePlaneOrientation(1, QStringLiteral("Other")),
            NbgRotation(10., 0., 0.));
}

TEST(NgmVariogramExpData, PseudoSillsMakeMatrices)
{
  NgmVariogramExpData data = makeData(2, true);
  data.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 0, 4.);
  data.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 1, 3.);
  data.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 2, 9.);
  const NgmMatrix sills = data.getPseudoSillMatrix(NgmEVarioExp::MADOGRAM);
  EXPECT_EQ(sills(1, 0), 3.);
  EXPECT_EQ(sills(1, 1), 9.);
  EXPECT_EQ(data.getPseudoSillRatioMatrix(NgmEVarioExp::MADOGRAM)(0, 1), 0.5);
  expectAssertion(SOURCE, QStringLiteral("Invalid variogram/covariance curve"),
                  [&] { data.getPseudoSillMatrix(NgmECovaExp::COVARIANCE); });
  EXPECT_TRUE(NgmVariogramExpData::requiresPseudoSill(NgmEVarioExp::MADOGRAM));
  EXPECT_FALSE(NgmVariogramExpData::requiresPseudoSill(NgmECovaExp::CORRELOGRAM));
}

TEST(NgmVariogramExpData, C00IsCheckedAndComesFromTheOriginOfCovariances)
{
  NgmVariogramExpData data = makeData(2, true);
  expectAssertion(SOURCE, QStringLiteral("Invalid C00 matrix provided"),
                  [&] { data.setC00(diagonal({1.})); });
  expectAssertion(SOURCE, QStringLiteral("C00 matrix has null variances"), [&] {
    data.setC00(diagonal({1., 0.}));
  });
  expectAssertion(SOURCE, QStringLiteral("Invalid input covariances matrix."),
                  [&] { data.getC00FromCovariance(diagonal({1.})); });
  EXPECT_FALSE(data.hasC00());
  const NgmMatrix c00 = data.getC00FromCovariance(diagonal({1., 2.}));
  EXPECT_EQ(c00(0, 0), 102.);
  EXPECT_EQ(c00(1, 0), 202.);

  const double zeros[5] = {};
  data.setCovaValues(0, Cova::COVARIANCE, 0, 0, 5, zeros);
  EXPECT_EQ(data.getC00FromCovariance(diagonal({1., 2.}))(0, 0), 1.);
}

TEST(NgmVariogramExpData, NormalizedResultsAreInUnitsOfTheLargestDistanceAndOfTheSills)
{
  NgmVariogramExpData data = makeData(2, true);
  data.setC00(diagonal({8., 45.}));
  data.normalizeVariogram(diagonal({4., 9.}));
  EXPECT_DOUBLE_EQ(data.getMaximumDistanceExperimental(), 1.);
  EXPECT_DOUBLE_EQ(data.getMinimumLag(), 5. / 61.);
  EXPECT_DOUBLE_EQ(data.getDistances(1, false, 0, 1)[2], 21. / 61.);
  EXPECT_DOUBLE_EQ(data.getVarioColumn(1, Vario::VARIOGRAM, 0, 1)[2], 202. / 6.);
  EXPECT_DOUBLE_EQ(data.getCovaColumn(0, Cova::COVARIANCE, 1, 1)[0], 400. / 9.);
  EXPECT_DOUBLE_EQ(data.getC00()(0, 0), 2.);
  EXPECT_DOUBLE_EQ(data.getC00()(1, 1), 5.);

  NgmVariogramExpData empty;
  EXPECT_TRUE(errorOf([&] {
                empty.normalizeVariogram(diagonal({1.}));
              }).endsWith(QStringLiteral("no experimental curve computed")));
}

TEST(NgmVariogramExpData, ExtractingVariablesKeepsTheirTablesAndSills)
{
  NgmVariogramExpData data = makeData(3, true);
  data.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 4, 3.);  // the pair (1, 2)
  data.setC00(diagonal({1., 2., 3.}));
  data.extractFromVariables({2, 1});
  EXPECT_EQ(data.getNVariables(), 2);
  EXPECT_EQ(data.getVarioColumn(1, Vario::VARIOGRAM, 0, 1)[0], 600.);
  EXPECT_EQ(data.getCovaColumn(0, Cova::COVARIANCE, 1, 1)[0], 900.);
  EXPECT_EQ(data.getVarioPseudoSill(NgmEVarioExp::MADOGRAM, 1), 3.);
  EXPECT_EQ(data.getC00()(1, 1), 3.);
  EXPECT_NE(errorOf([&] { data.extractFromVariables({2}); }), QStringLiteral("nothing thrown"));
}

TEST(NgmVariogramExpData, CloudsBelongToDirectionsAndPairsOfVariables)
{
  NgmVariogramExpData data = makeData(2, true);
  EXPECT_FALSE(data.hasVarioCloud());
  EXPECT_NE(errorOf([&] { data.getCloudTable(0, false, 0, 0); }), QStringLiteral("nothing thrown"));
  data.createCloudTables(false, true);
  EXPECT_FALSE(data.hasVarioCloud());
  NgmVariogramCloudDensity density;
  density.initializeCloudDensity(3, 2, 0., 1., 0., 1.);
  data.setVariogramCloudVariables(1, true, 1, 1, {{4., 2., 7, 9}});
  data.setCloudDensity(1, true, 1, 1, density);
  data.compressAllTables();
  EXPECT_EQ(data.getCloudTable(1, true, 1, 1).toString(),
            QStringLiteral("DISTANCE\tCOVARIANCE\tSample number of point 1\t"
                           "Sample number of point 2\n2\t4\t7\t9\n"));
  data.extractFromVariables({1});
  EXPECT_EQ(data.getCloudVariable(1, true, 0, 0, Nbd::Role::SN2).getValue(0), 9.);
  EXPECT_EQ(data.getCloudDensity(1, true, 0, 0).getNx(), 3);
  EXPECT_TRUE(data.getCloudDensity(0, true, 0, 0).isEmpty());
}

TEST(NgmVariogramExpData, StreamsGiveBackTheSameResultsOrAreRefused)
{
  NgmVariogramExpData data = makeData(2, true);
  data.setC00(diagonal({1., 2.}));
  data.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 2, 9.);
  NgmVariogramExpData target = makeData(1, false);
  NgmVariogramExpData small = makeData(1, true);
  small.setC00(diagonal({1.}));
  small.setVarioPseudoSill(NgmEVarioExp::MADOGRAM, 0, 9.);
  test::fuzzSerialization(small, target, 20250301u, 1000);

  test::fromBytes(test::toBytes(data), target);
  EXPECT_TRUE(target.containsCross());
  EXPECT_EQ(target.getNLags(1), 3);
  EXPECT_EQ(target.debug(1), data.debug(1));
  EXPECT_EQ(target.getGroupDescription(QStringLiteral("All")), QStringLiteral("both"));

  NgmVariogramExpData simple = makeData(2, false);
  test::fromBytes(test::toBytes(simple), target);
  EXPECT_FALSE(target.containsCross());
}

TEST(NgmVariogramExpData, OldStreamsAreRefusedWithTheirVersion)
{
  const NgmVariogramExpData data = makeData(1, true);
  const auto withVersion = [&](quint32 version) {
    QByteArray bytes = test::toBytes(data);
    for (int k = 0; k < 4; ++k)
      bytes[4 + k] = char(version >> (24 - 8 * k));
    return bytes;
  };
  NgmVariogramExpData target = makeData(2, true);
  for (const quint32 version : {151016U, 151118U})
    EXPECT_TRUE(errorOf([&] {
                  test::fromBytes(withVersion(version), target);
                }).contains(QStringLiteral("older than version 160324")))
        << version;
  EXPECT_EQ(target.debug(1), makeData(2, true).debug(1));
  // All later ones have the layout of the current one.
  for (const quint32 version : {160324U, 170303U, 190326U, 210319U, 210528U}) {
    target.clear();
    test::fromBytes(withVersion(version), target);
    EXPECT_EQ(target.debug(1), data.debug(1)) << version;
  }
  EXPECT_NE(errorOf([&] { test::fromBytes(withVersion(220310U), target); }),
            QStringLiteral("nothing thrown"));
}

TEST(NgmVariogramExpData, TextsListWhatIsThere)
{
  const NgmVariogramExpData data = makeData(2, true);
  EXPECT_EQ(data.summary(), QStringLiteral("- Number of directions = 2\n"
                                           "- Number of variables  = 2\n"
                                           "- Space dimension      = 3\n"));
  EXPECT_EQ(data.getCurveNames(),
            QStringList({QStringLiteral("Variogram"), QStringLiteral("Madogram"),
                         QStringLiteral("Covariance")}));
  EXPECT_TRUE(
      data.toString(NgmEVarioExp::VARIOGRAM).contains(QStringLiteral("down\t0\t1\t21\t7\t202\n")));
  EXPECT_TRUE(data.debug(0).contains(QStringLiteral("NREALLAGS1=2\n")));
}
