#include "geos/interpol/NgmKrigingTestResult.h"

#include "basic/data/NbdVariableDouble.h"
#include "geos/NgcEnumGlobal.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmCrossValidationTestResult.h"
#include "support/Errors.h"

#include <QStringList>

#include <gmock/gmock.h>

namespace {

/// The lines of a text up to the value behind the colon.
QStringList labelsOf(const QString &text)
{
  QStringList labels;
  for (const QString &line : text.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
    const int colon = line.indexOf(QLatin1Char(':'));
    if (colon >= 0)
      labels << line.left(colon + 1);
  }
  return labels;
}

NbdDataPoints threePoints()
{
  NbdDataPoints points;
  points.ensureCoordinates();
  NbdVariableDouble *values =
      static_cast<NbdVariableDouble *>(points.getDataTable().createVariableNumeric(
          Nbd::Role::V, NbdVariableDetails(QStringLiteral("zinc"))));
  for (int i = 0; i < 3; ++i) {
    points.appendSample(NbgVector3D(i, 2. * i, 0.));
    values->getArray()[i] = 10. * i;
  }
  return points;
}

NgmKrigingTestResult oneVariable()
{
  NgmKrigingTestResult result;
  result.setTarget(7, NbgVector3D(1., 2., 0.), NbgIntVector3D(0, 3, 0));
  result.setNeighborhood(NgcENeighborhoodErrorCode::NEIGH_SUCCESS, 1, QStringLiteral("Nested1"));
  result.setNeighbors(threePoints());
  result.setInputDetails({NbdVariableDetails(QStringLiteral("zinc"))});
  result.setKrigingResultsNumber(1);
  NgmKrigingTestResultMono &mono = result.getKrigingResultsRef(0);
  mono.estimation = 12.5;
  mono.standardDeviation = 3.;
  mono.sumOfWeights = 1.;
  mono.sumOfNegativeWeights = -0.25;
  mono.numberOfSamples = 3;
  mono.numberOfEquations = 4;
  mono.numberOfRightHandSides = 1;
  mono.leftHandSide = NgmMatrix(12, 12, true);
  mono.leftHandSide.setElement(11, 11, 77.);
  mono.rightHandSide = NgmMatrix(12, 1, false);
  return result;
}

}  // namespace

TEST(NgmKrigingTestResult, WritesOneLinePerValue)
{
  const QString text = oneVariable().toString(0);
  EXPECT_TRUE(text.startsWith(
      QStringLiteral("Kriging Test Results\n====================\nResults for zinc:")));
  for (const char *line :
       {"  Estimated value: 12.5\n", "  Variance: 9\n", "  Standard deviation: 3\n",
        "  Mean distance to target: N/A\n", "\n  Sum of weights: 1\n",
        "  Sum of positive weights: 1.25\n", "  Sum of negative weights: -0.25\n",
        "  Number of sample: 3\n", "  Number of equations: 4\n", "  Number of Right Hand Side: 1\n",
        "\n  Left Hand Side:\n  ---------------\n", "\n  Right Hand Side:\n  ----------------\n"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(line))) << line;

  const QStringList expected = {QStringLiteral("Results for zinc:"),
                                QStringLiteral("  Estimated value:"),
                                QStringLiteral("  Variance:"),
                                QStringLiteral("  Standard deviation:"),
                                QStringLiteral("  Mean distance to target:"),
                                QStringLiteral("  Sum of weights:"),
                                QStringLiteral("  Sum of positive weights:"),
                                QStringLiteral("  Sum of negative weights:"),
                                QStringLiteral("  Weight attached to the mean:"),
                                QStringLiteral("  Lagrange parameter #1:"),
                                QStringLiteral("  Variance of Z*:"),
                                QStringLiteral("  Covariance between Z and Z*:"),
                                QStringLiteral("  Correlation between Z and Z*:"),
                                QStringLiteral("  Slope of the regression Z | Z*:"),
                                QStringLiteral("  Kriging Efficiency:"),
                                QStringLiteral("  Signal to noise ratio:"),
                                QStringLiteral("  Number of sample:"),
                                QStringLiteral("  Number of equations:"),
                                QStringLiteral("  Number of Right Hand Side:"),
                                QStringLiteral("  Left Hand Side:"),
                                QStringLiteral("  Right Hand Side:")};
  EXPECT_EQ(labelsOf(text), expected);

  // Ten rows are enough at level 1.
  EXPECT_TRUE(text.contains(QStringLiteral("77")));
  EXPECT_FALSE(oneVariable().toString(1).contains(QStringLiteral("77")));
}

TEST(NgmKrigingTestResult, ShowsEllipseAndBlockWhereThereAre)
{
  const QStringList ellipse = {QStringLiteral("  Neighborhood Ellipse Size:"),
                               QStringLiteral("  Neighborhood Ellipse Rotation:")};
  const QStringList block = {QStringLiteral("  Block Size:"), QStringLiteral("  Block Rotation:")};

  NgmKrigingTestResultMono mono;
  EXPECT_EQ(labelsOf(mono.toString(0, true, true)).mid(20), ellipse);
  EXPECT_EQ(labelsOf(mono.debug(0)).mid(20), QStringList());
  auto support = std::make_shared<NgmBlock>(true);
  support->setSize(NbgVector3D(4., 5., 6.));
  mono.block = support;
  mono.ellipseSize = NbgVector3D(100., 50., 10.);
  EXPECT_EQ(labelsOf(mono.toString(0, false, true)).mid(20), block);
  EXPECT_EQ(labelsOf(mono.toString(0, true, false)).mid(20), ellipse);
  EXPECT_EQ(labelsOf(mono.debug(0)).mid(20), ellipse + block);
}

TEST(NgmKrigingTestResult, TellsTargetAndNeighbors)
{
  NgmKrigingTestResult result = oneVariable();
  const QString text = result.NgmAInterpolTestResult::toString(0);
  EXPECT_TRUE(text.startsWith(
      QStringLiteral("  Target sample number: 7\n  Neighborhood index: 1\n"
                     "  Neighborhood status: %1\n\n  Target values:\n  --------------\n")
          .arg(NgcENeighborhoodErrorCode::NEIGH_SUCCESS.getLabel())))
      << qPrintable(text);
  EXPECT_TRUE(text.contains(QStringLiteral("\n  Neighbors:\n  ----------\n")));
  EXPECT_TRUE(text.contains(QStringLiteral("zinc")));
  EXPECT_EQ(result.debug(0), text + QLatin1Char('\n') + result.toString(0));

  result.reset();
  EXPECT_FALSE(result.hasResults());
  EXPECT_EQ(result.getKrigingResultsNumber(), 0);
  const QString empty = result.NgmAInterpolTestResult::toString(0);
  EXPECT_TRUE(empty.startsWith(QStringLiteral("  Target sample number: N/A\n")));
  EXPECT_TRUE(empty.endsWith(QStringLiteral("No neighbors defined!\n")));
}

TEST(NgmKrigingTestResult, PutsWeightsBesideNeighbors)
{
  NgmKrigingTestResult result = oneVariable();
  EXPECT_TRUE(result.hasResults());
  const QString name = NgmKrigingTestResult::getWeightName(Nbd::Role::V, QStringLiteral("zinc"));
  NbdVariableDouble weights{NbdVariableDetails(name)};
  weights.resizeAndFill(3);
  weights.getArray()[2] = 0.375;
  result.setWeights({&weights});
  const NbdDataTable &table = result.getNeighbors().getDataTableConst();
  ASSERT_TRUE(table.getVarDouble(Nbd::Role::WEIGHT));
  EXPECT_EQ(table.getVarDouble(Nbd::Role::WEIGHT)->getArrayConst()[2], 0.375);
  EXPECT_TRUE(result.NgmAInterpolTestResult::toString(0).contains(name));

  NbdVariableDouble few;
  few.resizeAndFill(2);
  testsupport::expectAssertion(
      QStringLiteral("interpol\\NgmKrigingTestResult"),
      QStringLiteral("Neighbors and Weights have different number of samples"),
      [&] { result.setWeights({&few}); });
  testsupport::expectAssertion(QStringLiteral("interpol\\NgmKrigingTestResult"),
                               QStringLiteral("0 <= variable < getKrigingResultsNumber()"),
                               [&] { result.getKrigingResults(1); });
}

TEST(XValRes, StartsUndefinedAndWritesNineLines)
{
  XValRes result;
  const QString undefined = result.debug(0);
  EXPECT_EQ(undefined.count(QStringLiteral(": N/A\n")), 9);
  result.estimation = 2.;
  result.squaredError = 0.25;
  result.rootSquaredStandardizedError = 1.5;
  const QString text = result.debug(0);
  EXPECT_TRUE(text.startsWith(
      QStringLiteral("XVal estimation             : 2\nXVal real value             : N/A\n")));
  EXPECT_TRUE(text.contains(QStringLiteral("XVal squared error          : 0.25\n")));
  EXPECT_TRUE(text.endsWith(QStringLiteral("XVal root squared std error : 1.5\n")));

  NgmCrossValidationTestResult test;
  test.setXVal(result);
  EXPECT_TRUE(test.toString(0).endsWith(text));
  test.reset();
  EXPECT_TRUE(test.toString(0).endsWith(undefined));
  result.reset();
  EXPECT_EQ(result.debug(0), undefined);
}
