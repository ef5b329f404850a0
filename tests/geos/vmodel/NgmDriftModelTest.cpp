#include "geos/vmodel/NgmDriftModel.h"

#include "basic/data/NbdVariableDouble.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "support/Errors.h"
#include "support/SerializationFuzz.h"

#include <QDataStream>

#include <gtest/gtest.h>

namespace {

/// The terms of the model by their values at (x, y, z) = (2, 3, 5), which tell all monomials of
/// degree 2 apart.
QVector<double> monomials(const NgmDriftModel &model, int variable)
{
  const NgmTarget target(NbgVector3D(2., 3., 5.));
  QVector<double> values;
  for (int term = 0; term < model.getNDriftEquations(); ++term)
    values << model.getDriftValueAtTarget(term, variable, NbgVector3D::Null, target);
  return values;
}

TEST(NgmDriftModel, AppendsTheMonomialsOfADegree)
{
  NgmDriftModel plane;
  plane.addDrifts(0, 2, true, true, false);
  EXPECT_EQ(monomials(plane, 0), (QVector<double>{2., 4., 3., 9., 6.}));
  EXPECT_EQ(plane.getNDriftEquations(0), 5);
  EXPECT_EQ(plane.getVariable(4), 0);
  EXPECT_EQ(plane.getMaximumPolynomialDegree(), 2);

  NgmDriftModel space;
  space.addDrifts(3, 2, true, true, true);
  EXPECT_EQ(monomials(space, 3), (QVector<double>{2., 4., 3., 9., 5., 25., 6., 10., 15.}));
  NgmDriftModel linear;
  linear.addDrifts(0, 1, true, false, true);
  linear.addDrifts(0, 1, true, false, false);
  EXPECT_EQ(monomials(linear, 0), (QVector<double>{2., 5., 2.}));
  EXPECT_EQ(NgmDriftModel().getMaximumPolynomialDegree(), 0);
}

TEST(NgmDriftModel, SaysWhatAVariableNeeds)
{
  NgmDriftModel model;
  model.addDrifts(0, 1, true, false, false);
  model.addDrifts(2, 2, false, false, true);
  const auto drifts = [&](int variable) {
    int degree = 0;
    bool x = true, y = true, z = true;
    model.getDrifts(variable, degree, x, y, z);
    return QVector<int>{degree, x, y, z};
  };
  EXPECT_EQ(drifts(0), (QVector<int>{1, 1, 0, 0}));
  EXPECT_EQ(drifts(1), (QVector<int>{1, 0, 0, 0}));
  EXPECT_EQ(drifts(2), (QVector<int>{2, 0, 0, 1}));
  bool x, y, z;
  model.getUsedCoordinates(x, y, z);
  EXPECT_TRUE(x && !y && z);
  EXPECT_EQ(model.briefSummary(), QStringLiteral("Polynomial Drift: Max degree=2 for {X,Z}"));
}

TEST(NgmDriftModel, RefusesOtherDegrees)
{
  NgmDriftModel model;
  for (const int degree : {0, 3})
    testsupport::expectAssertion(QStringLiteral("vmodel\\NgmDriftModel"),
                                 QStringLiteral("invalid degree (restricted to 1 or 2"),
                                 [&] { model.addDrifts(0, degree, true, true, true); });
  EXPECT_EQ(model.getNDriftEquations(), 0);
  EXPECT_EQ(model.getMaximumPolynomialDegree(), 0);
  EXPECT_THROW(model.getVariable(0), NbeError);
}

TEST(NgmDriftModel, ValuesAtSamplesAreRelativeToTheCentre)
{
  NgmDriftModel model;
  model.addDrifts(1, 2, true, true, false);
  NbdVariableDouble x(QStringLiteral("X")), y(QStringLiteral("Y")), z(QStringLiteral("Z"));
  x.setVector({11., 13., 10.});
  y.setVector({-2., 0., 7.});
  z.setVector({0., 0., 0.});
  const NbgVector3D center(10., 2., 100.);
  const QVector<double> expected[] = {
      {1., 3., 0.}, {1., 9., 0.}, {-4., -2., 5.}, {16., 4., 25.}, {-4., -6., 0.}};
  QVector<double> values;
  for (int term = 0; term < 5; ++term) {
    model.getDriftValuesAtDataPoints(term, 1, center, x, y, z, values);
    EXPECT_EQ(values, expected[term]);
    model.getDriftValuesAtDataPoints(term, 0, center, x, y, z, values);
    EXPECT_EQ(values, QVector<double>(3, 0.));
    EXPECT_EQ(model.getDriftValueAtTarget(term, 1, center, NgmTarget(NbgVector3D(13., 0.))),
              expected[term][1]);
    EXPECT_EQ(model.getDriftValueAtTarget(term, 0, center, NgmTarget(NbgVector3D(13., 0.))), 0.);
  }
}

TEST(NgmDriftModel, SquaredCoordinatesOfABlockAreMeans)
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(10., 6., 4.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(200, 200, 200));
  const NgmTarget target(NbgVector3D(3., 1., 0.), block);
  NgmDriftModel model;
  model.addDrifts(0, 2, true, true, true);
  const NbgVector3D center;
  // x^2: the mean over a fine regular discretization, whose own error is L^2 / (12 n^2).
  double mean = 0.;
  for (int i = 0; i < 200; ++i) {
    const double x = 3. - 5. + 10. * (i + 0.5) / 200.;
    mean += x * x / 200.;
  }
  EXPECT_NEAR(model.getDriftValueAtTarget(1, 0, center, target), mean, 3e-4);
  EXPECT_DOUBLE_EQ(model.getDriftValueAtTarget(1, 0, target.getCenter(), target), 100. / 12.);
  EXPECT_DOUBLE_EQ(model.getDriftValueAtTarget(5, 0, center, target), 16. / 12.);
  EXPECT_EQ(model.getDriftValueAtTarget(0, 0, center, target), 3.);
  EXPECT_EQ(model.getDriftValueAtTarget(6, 0, center, target), 3.);

  NgmBlock flat(false);
  flat.setSize(NbgVector3D(10., 6., 4.));
  EXPECT_EQ(model.getDriftValueAtTarget(5, 0, center, NgmTarget(NbgVector3D(), flat)), 0.);
}

TEST(NgmDriftModel, BlockCorrectionIsAddedToTheRunningProduct)
{
  // Terms that only a stream brings: x^2 y, x y^2, x^2 z^2.
  NgmDriftModel model;
  model.addDrifts(0, 2, true, true, true);
  QByteArray bytes = test::toBytes(model).left(8);  // magic and version
  QDataStream stream(&bytes, QIODevice::Append);
  stream << qint32(2) << qint32(3) << qint32(0) << qint32(0) << qint32(0) << qint32(3);
  for (const int exponent : {2, 1, 0, 1, 2, 0, 2, 0, 2})
    stream << qint32(exponent);
  test::fromBytes(bytes, model);

  NgmBlock block(true);
  block.setSize(NbgVector3D(6., 12., 24.));  // L^2 / 12 is 3, 12, 48
  block.setDiscretizationPointsNumber(NbgIntVector3D(1, 1, 1));
  const NgmTarget target(NbgVector3D(2., 3., 5.), block);
  EXPECT_EQ(monomials(model, 0), (QVector<double>{12., 18., 100.}));
  EXPECT_EQ(model.getDriftValueAtTarget(0, 0, NbgVector3D::Null, target), (4. + 3.) * 3.);
  EXPECT_EQ(model.getDriftValueAtTarget(1, 0, NbgVector3D::Null, target), 2. * 9. + 12.);
  EXPECT_EQ(model.getDriftValueAtTarget(2, 0, NbgVector3D::Null, target), (4. + 3.) * 25. + 48.);
}

TEST(NgmDriftModel, ComesBackFromItsStream)
{
  NgmDriftModel model;
  model.addDrifts(0, 2, true, true, false);
  model.addDrifts(1, 1, false, false, true);
  NgmDriftModel other;
  other.addDrifts(4, 1, true, false, false);
  test::fuzzSerialization(model, other);
  test::fromBytes(test::toBytes(model), other);
  EXPECT_EQ(other.debug(0), model.debug(0));

  NgmDriftModel small;
  small.addDrifts(7, 1, false, true, false);
  EXPECT_EQ(test::toBytes(small).mid(4).toHex(),
            QByteArray("00029ad1"  // version 170705
                       "00000001"
                       "00000001"
                       "00000007"
                       "00000001"
                       "00000000"
                       "00000001"
                       "00000000"));
  const QString text = small.debug(0);
  for (const char *part : {"Total Number of Drifts Equations = 1\n", "Variable #7", "<=>",
                           "Drift #0", "Polynomial, degrees = (0,1,0)"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
}

}  // namespace
