#include "TwoVariableModel.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"
#include "support/Errors.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using testsupport::errorOf;
using testsupport::expectAssertion;
using vmodeltest::makeModel;
using vmodeltest::matrix2;

const QString PATH = QStringLiteral("vmodel\\NgmVModel");

NgmVModel makeUnivariate(double sill)
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.25 * sill);
  model.addStructure(QStringLiteral("Spherical"), sill);
  model.setRangeIsotropic(0, 100.);
  return model;
}

TEST(NgmVModelTransform, NormalizedModelIsThatOfScaledVariablesAndLengths)
{
  const NgmVModel model = makeModel();
  NgmVModel normalized(model);
  const NgmMatrix variances = model.getC00Matrix();
  normalized.normalizeSillsAndRanges(50., variances);
  EXPECT_NEAR(normalized.getC0IJ(0, 0), 1., 1e-15);
  EXPECT_NEAR(normalized.getC0IJ(1, 1), 1., 1e-15);
  EXPECT_DOUBLE_EQ(normalized.getContext().getFieldSize(), 20.);
  EXPECT_DOUBLE_EQ(normalized.getStructure(0).getContext().getFieldSize(), 20.);
  const NbgVector3D h(30., -7., 4.);
  const double scale = std::sqrt(variances(0, 0) * variances(1, 1));
  EXPECT_NEAR(normalized.calcCovaIJ(0, 1, h / 50.), model.calcCovaIJ(0, 1, h) / scale, 1e-15);

  normalized.denormalizeSillsAndRanges(50., variances);
  EXPECT_DOUBLE_EQ(normalized.getContext().getFieldSize(), 1000.);
  EXPECT_EQ(normalized.getC00Matrix(), model.getC00Matrix());
  for (int k = 0; k < 2; ++k)
    EXPECT_DOUBLE_EQ(normalized.getStructure(k).getTheoScaleFactor(),
                     model.getStructure(k).getTheoScaleFactor());
}

TEST(NgmVModelTransform, NormalizedConstantsOfGeneralizedCovariancesStay)
{
  NgmVModel model(1);
  model.setContext(NgmModelContext(0, 2, 800.));
  model.addStructure(QStringLiteral("Power"), 2.);
  model.setAuxiliaryParameter(0, 0, 1.5);
  model.setRangeIsotropic(0, 40.);
  NgmVModel normalized(model);
  NgmMatrix variance(1, 1, true);
  variance.setElement(0, 0, 1.);
  normalized.normalizeSillsAndRanges(16., variance);
  // Field size and scale shrink together.
  EXPECT_NEAR(normalized.getC0IJ(0, 0), model.getC0IJ(0, 0), 1e-12);
  EXPECT_NEAR(normalized.calcCovaIJ(0, 0, NbgVector3D(2., 0., 0.)),
              model.calcCovaIJ(0, 0, NbgVector3D(32., 0., 0.)), 1e-12);
}

TEST(NgmVModelTransform, NormalizationNeedsALength)
{
  NgmVModel model = makeModel();
  const QString before = model.debug(0);
  const QString message = QStringLiteral("NgmVModel::normalizeModel: Wrong maximum distance");
  EXPECT_EQ(errorOf([&] { model.normalizeSillsAndRanges(0., model.getC00Matrix()); }), message);
  EXPECT_EQ(errorOf([&] { model.denormalizeSillsAndRanges(1e-31, model.getC00Matrix()); }),
            message);
  EXPECT_THROW(model.normalizeSillsAndRanges(1., NgmMatrix(1, 1, true)), NbeProgrammingError);
  EXPECT_EQ(model.debug(0), before);
  // A variable without variance is not divided by zero.
  model.normalizeSillsAndRanges(1., matrix2(1., 0., 0.));
  EXPECT_DOUBLE_EQ(model.getNugget(1, 1), 0.2 * (1e15 - 0.125));
}

TEST(NgmVModelTransform, FitsSillsToVariances)
{
  NgmVModel model = makeModel();
  const NgmMatrix before = model.getC00Matrix();
  model.fitSillsToVariances({9., 0.5});
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 9.);
  EXPECT_DOUBLE_EQ(model.getC0IJ(1, 1), 0.5);
  EXPECT_NEAR(model.getC0IJ(0, 1) / std::sqrt(4.5),
              before(0, 1) / std::sqrt(before(0, 0) * before(1, 1)), 1e-15);
  EXPECT_EQ(model.getStructure(0).getPracticalRanges().x(), 100.);
  expectAssertion(PATH, QStringLiteral("Invalid number of sills"),
                  [&] { model.fitSillsToVariances({1.}); });
  NgmVModel empty(1);
  expectAssertion(PATH, QStringLiteral("Invalid total sills"),
                  [&] { empty.fitSillsToVariances({1.}); });
}

TEST(NgmVModelTransform, FilteredModelLacksStructures)
{
  const NgmVModel model = makeModel();
  const NgmVModel filtered = model.buildFilteredModel(true, {0});
  EXPECT_FALSE(filtered.hasNugget());
  ASSERT_EQ(filtered.getNStructures(), 1);
  EXPECT_EQ(filtered.getStructureLabel(0), QStringLiteral("Gaussian"));
  EXPECT_EQ(filtered.getC00Matrix(), matrix2(0.7, -0.3, 0.4));
  EXPECT_TRUE(model.buildFilteredModel(false, {1, 0}).hasNugget());
  expectAssertion(PATH, QStringLiteral("too many filtered structures"), [&] {
    model.buildFilteredModel(false, {0, 1, 0});
  });
  expectAssertion(PATH, QStringLiteral("invalid structure rank"),
                  [&] { model.buildFilteredModel(false, {2}); });
}

TEST(NgmVModelTransform, OneVariableOfSeveral)
{
  const NgmVModel model = makeModel();
  const NgmVModel second = NgmVModel::createMonoFromMulti(model, 1);
  const NbgVector3D h(30., -7., 4.);
  EXPECT_EQ(second.getNVariables(), 1);
  EXPECT_EQ(second.getC0IJ(0, 0), model.getC0IJ(1, 1));
  EXPECT_EQ(second.calcCovaIJ(0, 0, h), model.calcCovaIJ(1, 1, h));
  EXPECT_EQ(second.getContext().getFieldSize(), 1000.);
  EXPECT_EQ(errorOf([&] { NgmVModel::createMonoFromMulti(model, 2); }),
            QStringLiteral("NgmVModel::createMonoFromMulti: Invalid variable index !"));

  const NgmVModel swapped = NgmVModel::extractFromVariables(model, {1, 0});
  EXPECT_EQ(swapped.calcCovaIJ(0, 1, h), model.calcCovaIJ(1, 0, h));
  EXPECT_EQ(swapped.calcCovaIJ(0, 0, h), model.calcCovaIJ(1, 1, h));
  EXPECT_THROW(NgmVModel::extractFromVariables(model, {-1}), NbeProgrammingError);
}

TEST(NgmVModelTransform, IntrinsicCorrelationFromOneVariable)
{
  const NgmVModel model = makeUnivariate(4.);
  const NgmVModel multi = NgmVModel::createMultiFromMono(model, 1, matrix2(1., 0.6, 1.), {8., 4.});
  const NbgVector3D h(20., 0., 0.);
  EXPECT_NEAR(multi.calcCovaIJ(1, 1, h), model.calcCovaIJ(0, 0, h), 1e-14);
  EXPECT_NEAR(multi.calcCovaIJ(0, 0, h), 2. * model.calcCovaIJ(0, 0, h), 1e-14);
  EXPECT_NEAR(multi.calcCovaIJ(0, 1, h), 0.6 * std::sqrt(2.) * model.calcCovaIJ(0, 0, h), 1e-14);
  EXPECT_NEAR(multi.getNugget(0, 0), 2., 1e-15);

  const auto error = [&](const NgmVModel &source, const NgmMatrix &correlations,
                         const QVector<double> &variances) {
    return errorOf([&] { NgmVModel::createMultiFromMono(source, 0, correlations, variances); });
  };
  NgmMatrix asymmetric(2, 2, false);
  asymmetric.setElement(0, 1, 0.5);
  const QString prefix = QStringLiteral("NgmVModel::createMultiFromMono: ");
  EXPECT_EQ(error(makeModel(), matrix2(1., 0., 1.), {1., 1.}),
            prefix + QStringLiteral("input model is not univariate !"));
  EXPECT_EQ(error(model, NgmMatrix(2, 3, false), {1., 1.}),
            prefix + QStringLiteral("correlation matrix is not a squared matrix"));
  EXPECT_EQ(error(model, asymmetric, {1., 1.}),
            prefix + QStringLiteral("correlation matrix is not symmetrical"));
  EXPECT_EQ(error(model, matrix2(1., 0., 1.), {1.}),
            prefix + QStringLiteral("variances array and correlation matrix not consistent"));
  EXPECT_EQ(error(model, matrix2(1., 0., 1.), {1., 0.}),
            prefix + QStringLiteral("all variances must be strictly positive"));
  EXPECT_THROW(NgmVModel::createMultiFromMono(model, 2, matrix2(1., 0., 1.), {1., 1.}),
               NbeProgrammingError);
}

TEST(NgmVModelTransform, UncorrelatedVariablesFromAList)
{
  const NgmVModel first = makeUnivariate(4.);
  NgmVModel second(1);
  second.addStructure(QStringLiteral("Exponential"), 3.);
  second.setRangeIsotropic(0, 70.);
  const NgmVModel multi = NgmVModel::createMultiFromList({first, second});
  const NbgVector3D h(20., 10., 0.);
  EXPECT_EQ(multi.getNStructures(), 2);
  EXPECT_EQ(multi.calcCovaIJ(0, 0, h), first.calcCovaIJ(0, 0, h));
  EXPECT_EQ(multi.calcCovaIJ(1, 1, h), second.calcCovaIJ(0, 0, h));
  EXPECT_EQ(multi.calcCovaIJ(0, 1, h), 0.);
  EXPECT_EQ(multi.getC00Matrix(), matrix2(5., 0., 3.));
  expectAssertion(PATH, QStringLiteral("Input models must be univariate !"), [&] {
    NgmVModel::createMultiFromList({first, makeModel()});
  });
}

TEST(NgmVModelTransform, EigenvectorsAreAFactorOfTheSills)
{
  const NgmVModel model = makeModel();
  NgmMatrix factor(false);
  for (int k = 0; k < 2; ++k) {
    model.getNormalizedEigenVectors(k, factor);
    NgmMatrix product = factor * factor.transpose();
    product.setPrecision(1e-15);
    EXPECT_EQ(product, model.getCoregionalisationMatrix(k));
  }
  // A negative eigenvalue counts as zero.
  const NgmMatrix indefinite = NgmVModel::coregMatrixToEigen(matrix2(1., 2., 1.));
  EXPECT_EQ(indefinite(0, 0), 0.);
  EXPECT_NEAR(std::abs(indefinite(0, 1)), std::sqrt(1.5), 1e-15);
}

TEST(NgmVModelTransform, ReplacesTheTypeOfAStructure)
{
  NgmVModel model = makeModel();
  const NbgVector3D ranges = model.getStructure(0).getPracticalRanges();
  model.replaceStructureType(0, QStringLiteral("Exponential"));
  EXPECT_EQ(model.getStructureLabel(0), QStringLiteral("Exponential"));
  for (int axis = 0; axis < 3; ++axis)
    EXPECT_DOUBLE_EQ(model.getStructure(0).getPracticalRanges()[axis], ranges[axis]);
  EXPECT_TRUE(model.getStructure(0).getRotation() == NbgRotation(35., 10., 5.));
  EXPECT_EQ(model.getCoregionalisationMatrix(0), matrix2(1., 0.5, 2.));
  EXPECT_EQ(errorOf([&] { model.replaceStructureType(2, QStringLiteral("Cubic")); }),
            QStringLiteral("NgmVModel::replaceStructureType: Invalid structure index"));
  EXPECT_EQ(errorOf([&] { model.replaceStructureType(0, QStringLiteral("cubic")); }),
            QStringLiteral("NgmVModel::replaceStructureType: Invalid structure type"));
  EXPECT_EQ(errorOf([&] { model.replaceStructureType(0, QStringLiteral("Linear")); }),
            QStringLiteral("NgmAVStruct::setContext: invalid Irf Degree"));
  EXPECT_EQ(model.getStructureLabel(0), QStringLiteral("Exponential"));
}

TEST(NgmVModelTransform, RemovesStructuresWithoutSill)
{
  NgmVModel model = makeModel();
  model.setCoregionalisationMatrix(0, NgmMatrix(2, 2, true));
  model.removeNullStructures();
  ASSERT_EQ(model.getNStructures(), 1);
  EXPECT_EQ(model.getStructureLabel(0), QStringLiteral("Gaussian"));
}

TEST(NgmVModelTransform, CumulativeSillIsTheVariogram)
{
  const NgmVModel model = makeModel();
  const NbgVector3D h(12., 5., -3.);
  const NgmMatrix sills = model.getCumulativeSill(true, h);
  ASSERT_EQ(sills.getNRows(), 2);
  ASSERT_EQ(sills.getNColumns(), 1);
  for (int v = 0; v < 2; ++v)
    EXPECT_NEAR(sills(v, 0), model.calcVarioIJ(v, v, h), 1e-15);
  // The whole nugget counts at the origin too.
  EXPECT_EQ(model.getCumulativeSill(true, NbgVector3D::Null)(1, 0), 0.2);
  EXPECT_EQ(model.getCumulativeSill(false, NbgVector3D::Null)(1, 0), 0.);
}

TEST(NgmVModelTransform, PureMatern)
{
  NgmVModel model(1);
  model.addStructure(QStringLiteral("Bessel-K"), 1.);
  model.addStructure(QStringLiteral("Matern (nu=1.5)"), 1.);
  EXPECT_TRUE(model.isPureMatern(false));
  model.setNugget(0, 0, 0.1);
  EXPECT_TRUE(model.isPureMatern(true));
  EXPECT_FALSE(model.isPureMatern(false));
  model.addStructure(QStringLiteral("Exponential"), 1.);
  EXPECT_FALSE(model.isPureMatern(true));
}

}  // namespace
