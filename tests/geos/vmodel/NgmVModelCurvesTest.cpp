#include "TwoVariableModel.h"
#include "basic/data/NbdDataTable.h"
#include "basic/data/NbdVariableDetails.h"
#include "basic/data/NbdVariableDouble.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testsupport::errorOf;
using vmodeltest::makeModel;
using vmodeltest::matrix2;

TEST(NgmVModelCurves, VariogramAndCovarianceByDistance)
{
  const NgmVModel model = makeModel();
  const NbgVector3D direction(0.6, 0.8, 0.);
  const NbdVariableDetails details(QStringLiteral("Model"));
  const NbdDataTable vario = model.getVarioCurve(250., details, direction, 0, 1);
  ASSERT_EQ(vario.getNSamples(), 500);
  const NbdAVariableNumeric &distances = vario.getVarNumericRef(QStringLiteral("Distance"));
  const NbdAVariableNumeric &gammas = vario.getVarNumericRef(QStringLiteral("VARIOGRAM"));
  EXPECT_EQ(distances.getValue(0), 0.5);
  EXPECT_EQ(distances.getValue(499), 250.);
  EXPECT_EQ(gammas.getValue(41), model.calcVarioIJ(0, 1, 21. * direction));

  const NbdDataTable covariance = model.getCovarianceCurve(250., details, direction, 0, 1);
  ASSERT_EQ(covariance.getNSamples(), 1001);
  const NbdAVariableNumeric &both = covariance.getVarNumericRef(QStringLiteral("Distance"));
  const NbdAVariableNumeric &covas = covariance.getVarNumericRef(QStringLiteral("COVARIANCE"));
  EXPECT_EQ(both.getValue(500), 0.);
  EXPECT_EQ(covas.getValue(500), model.getC0IJ(0, 1));
  for (const int k : {1, 42, 500}) {
    EXPECT_EQ(both.getValue(500 + k), 0.5 * k);
    EXPECT_EQ(both.getValue(500 - k), 0.5 * k);
    EXPECT_EQ(covas.getValue(500 + k), model.calcCovaIJ(0, 1, 0.5 * k * direction));
    EXPECT_EQ(covas.getValue(500 - k), covas.getValue(500 + k));
  }
}

TEST(NgmVModelCurves, GripsStandAtTheRanges)
{
  NgmVModel model = makeModel();
  model.setContextIrfDegree(0);
  model.addStructure(QStringLiteral("Linear"), 1.);
  const NbgVector3D direction = 7. * NbgRotation(35., 10., 5.).localToWorld(NbgVector3D::Y);
  const auto column = [](const NbdDataTable &table, const char *role) {
    const NbdAVariableNumeric &variable = table.getVarNumericRef(QString::fromLatin1(role));
    QVector<double> values;
    for (int row = 0; row < table.getNSamples(); ++row)
      values << variable.getValue(row);
    return values;
  };
  const NbdDataTable sills = model.getDirectionGrips(direction, 0, 0);
  ASSERT_EQ(sills.getNSamples(), 2) << "a structure without range has no grip";
  EXPECT_EQ(column(sills, "Structure"), (QVector<double>{0., 1.}));
  EXPECT_NEAR(column(sills, "Distance")[0], 50., 1e-12);
  EXPECT_NEAR(column(sills, "Distance")[1], 300., 1e-12);
  EXPECT_NEAR(column(sills, "VARIOGRAM")[0], 1.1, 1e-15);
  EXPECT_NEAR(column(sills, "VARIOGRAM")[1], 1.8, 1e-15);
  const NbdDataTable curve = model.getDirectionCurveGrips(direction, 0, 0);
  EXPECT_NEAR(column(curve, "VARIOGRAM")[0], model.calcVarioIJ(0, 0, direction * (50. / 7.)),
              1e-12);
  const NbdDataTable curves = model.getDirectionCurvesGrips(direction, 0, 0);
  EXPECT_NEAR(column(curves, "VARIOGRAM")[0], 1., 1e-12);
  EXPECT_NEAR(column(curves, "VARIOGRAM")[1], 0.7 * 0.95, 1e-6);
}

TEST(NgmVModelCurves, EnvelopeBoundsTheCrossVariogram)
{
  const NgmVModel model = makeModel();
  const NbgRotation rotation(20., 0., 0.);
  const NbgVector3D axis = rotation.localToWorld(NbgVector3D::X);
  std::vector<double> distances(60), gammas(60), covas(60), simple(60);
  for (int d = 0; d < 60; ++d)
    distances[d] = 5. * d;
  model.calcEnvelopeIJ(0, 1, rotation, 60, distances.data(), false, gammas.data());
  model.calcEnvelopeIJ(0, 1, rotation, 60, distances.data(), true, covas.data());
  model.calcEnvelopeIJ(1, 1, rotation, 60, distances.data(), false, simple.data());
  EXPECT_EQ(gammas[0], 0.);
  EXPECT_NEAR(covas[0], std::sqrt(0.02) + std::sqrt(2.) + std::sqrt(0.28), 1e-15);
  for (int d = 0; d < 60; ++d) {
    EXPECT_LE(std::abs(model.calcVarioIJ(0, 1, distances[d] * axis)), gammas[d] + 1e-15);
    EXPECT_LE(std::abs(model.calcCovaIJ(0, 1, distances[d] * axis)), covas[d] + 1e-15);
    EXPECT_NEAR(covas[0] - covas[d], gammas[d], 1e-15);
    EXPECT_NEAR(simple[d], model.calcVarioIJ(1, 1, distances[d] * axis), 1e-14);
  }
}

TEST(NgmVModelGradients, AreDerivativesOfTheCovariance)
{
  NgmVModel model(2);
  model.addStructure(QStringLiteral("Cubic"), matrix2(1., 0.5, 2.));
  model.setRanges(0, NbgVector3D(100., 50., 20.));
  model.addStructure(QStringLiteral("Gaussian"), matrix2(0.7, -0.3, 0.4));
  model.setRangeIsotropic(1, 80.);
  model.setRotation(0, NbgRotation(35., 10., 5.));
  NgmMatrix gp(false), gg(false), before(false), after(false);
  const double e = 1e-3;
  for (const NbgVector3D &h : {NbgVector3D(9., -4., 2.), NbgVector3D(15., 20., -3.)}) {
    model.calcCovaGP(h, gp);
    model.calcCovaGG(h, gg);
    ASSERT_EQ(gp.getNRows(), 6);
    ASSERT_EQ(gp.getNColumns(), 2);
    for (int m = 0; m < 3; ++m) {
      NbgVector3D step;
      step[m] = e;
      model.calcCovaGP(h - step, before);
      model.calcCovaGP(h + step, after);
      for (int a = 0; a < 2; ++a)
        for (int b = 0; b < 2; ++b) {
          // Central differences: e^2 of truncation.
          const double slope =
              (model.calcCovaIJ(a, b, h + step) - model.calcCovaIJ(a, b, h - step)) / (2. * e);
          EXPECT_NEAR(gp(3 * a + m, b), -slope, 5e-9);
          for (int n = 0; n < 3; ++n)
            EXPECT_NEAR(gg(3 * a + n, 3 * b + m),
                        (after(3 * a + n, b) - before(3 * a + n, b)) / (2. * e), 1e-9);
        }
    }
  }
  model.calcCovaGP(NbgVector3D::Null, gp);
  EXPECT_TRUE(gp.isNull(0.));
  model.calcCovaGG(NbgVector3D::Null, gg);
  EXPECT_TRUE(gg.isSymmetrical(1e-15));
  EXPECT_TRUE(gg.isPositiveDefinite(true, false)) << "the covariance of the gradients at a point";
}

TEST(NgmVModelGradients, NeedDifferentiableStructures)
{
  NgmVModel model(1);
  model.addStructure(QStringLiteral("Spherical"), 1.);
  NgmMatrix out(false);
  EXPECT_EQ(errorOf([&] { model.calcCovaGG(NbgVector3D::X, out); }),
            QStringLiteral("NgmAVStruct::calcFirstDerivative: should never be called"));
}

}  // namespace
