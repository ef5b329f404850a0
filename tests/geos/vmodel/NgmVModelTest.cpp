#include "geos/vmodel/NgmVModel.h"

#include "basic/error/NbeProgrammingError.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVStructFactory.h"
#include "geos/vmodel/NgmVStructStable.h"
#include "support/Errors.h"
#include "support/SerializationFuzz.h"

#include <QDataStream>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using testsupport::errorOf;
using testsupport::expectAssertion;

const QString SPHERICAL = QStringLiteral("Spherical");
const QString EXPONENTIAL = QStringLiteral("Exponential");

NgmMatrix matrix2(double a, double b, double c)
{
  NgmMatrix matrix(2, 2, true);
  matrix.setElement(0, 0, a);
  matrix.setElement(0, 1, b);
  matrix.setElement(1, 1, c);
  return matrix;
}

/// Two variables, three structures, two of them rotated alike.
NgmVModel makeModel()
{
  NgmVModel model(2);
  model.setNuggetMatrix(matrix2(0.1, 0.02, 0.2));
  model.addStructure(SPHERICAL, matrix2(1., 0.5, 2.));
  model.setRanges(0, NbgVector3D(100., 50., 20.));
  NgmVStructStable stable;
  stable.setAuxiliaryParameter(0, 1.5);
  stable.setRangeIsotropic(300.);
  model.addStructure(stable, matrix2(0.7, -0.3, 0.4));
  model.addStructure(QStringLiteral("Cubic"), 0.25);
  model.setRanges(2, NbgVector3D(70., 90., 30.));
  model.setGlobalRotation(NbgRotation(35., 10., 5.));
  return model;
}

TEST(NgmVModel, NumberOfVariablesIsLimited)
{
  EXPECT_EQ(errorOf([] { NgmVModel model(1000); }),
            QStringLiteral("NgmVModel::NgmVModel: invalid number of variables."));
  NgmVModel model = makeModel();
  EXPECT_EQ(errorOf([&] { model.setNVariables(1000); }),
            QStringLiteral("NgmVModel::setNVariables: invalid number of variables"));
  model.setNVariables(2);
  EXPECT_EQ(model.getNStructures(), 3);
  model.setNVariables(3);
  EXPECT_EQ(model.getNStructures(), 0);
  EXPECT_EQ(model.getNuggetMatrix().getNRows(), 3);
  EXPECT_FALSE(model.hasRotation());
  EXPECT_EQ(model.getC0IJ(2, 2), 0.);
}

TEST(NgmVModel, IsValidWithAStructureOrANugget)
{
  NgmVModel model(1);
  EXPECT_FALSE(model.isValid());
  model.setNugget(0, 0, 0.5);
  EXPECT_TRUE(model.isValid());
  EXPECT_TRUE(model.isPureNugget(0));
  model.addStructure(SPHERICAL, 1.);
  EXPECT_FALSE(model.hasPureNuggetVariable());
  model.removeNugget();
  EXPECT_TRUE(model.isValid());
  EXPECT_TRUE(model.isStrictStationary());
  EXPECT_EQ(NgmVModel(1).getContext().getMaxIrfDegree(), -1);
}

TEST(NgmVModel, CopiesAreDeep)
{
  const NgmVModel model = makeModel();
  NgmVModel copy(model);
  EXPECT_EQ(copy.debug(0), model.debug(0));
  copy.setRangeIsotropic(0, 7.);
  copy.setCoregionalisationMatElem(1, 0, 0, 9.);
  copy.setNugget(1, 1, 8.);
  EXPECT_EQ(model.getStructure(0).getPracticalRanges().x(), 100.);
  EXPECT_EQ(model.getCoregionalisationMatrix(1)(0, 0), 0.7);
  EXPECT_EQ(model.getNugget(1, 1), 0.2);
  NgmVModel assigned(1);
  assigned = copy;
  EXPECT_EQ(assigned.debug(0), copy.debug(0));
  EXPECT_DOUBLE_EQ(assigned.getC0IJ(1, 1), 8. + 2. + 0.4 + 0.25);
}

TEST(NgmVModel, SillMatricesNeedNonNegativeEigenvalues)
{
  NgmVModel model(2);
  EXPECT_EQ(errorOf([&] { model.addStructure(SPHERICAL, matrix2(1., 1.1, 1.)); }),
            QStringLiteral("NgmVModel::_addStructure: sills matrix must be positive definite"));
  EXPECT_EQ(errorOf([&] { model.addStructure(SPHERICAL, matrix2(1., 1. + 1e-14, 1.)); }),
            QStringLiteral("NgmVModel::_addStructure: sills matrix must be positive definite"));
  NgmMatrix lopsided(2, 2, false);
  lopsided.setIdentity();
  lopsided.setElement(0, 1, 0.1);
  EXPECT_TRUE(errorOf([&] {
                model.addStructure(SPHERICAL, lopsided);
              }).contains(QStringLiteral("Matrix is not currently symmetrical")));
  EXPECT_EQ(model.getNStructures(), 0);
  EXPECT_EQ(model.addStructure(SPHERICAL, matrix2(1., 0., 0.)), 0);
  EXPECT_EQ(model.addStructure(SPHERICAL, matrix2(0., 0., 0.)), 1);
  // Perfect correlation: an eigenvalue that is zero but for rounding.
  for (int i = 1; i < 200; ++i) {
    const double a = 0.137 * i, b = 0.3 + 1. / i;
    EXPECT_NO_THROW(model.addStructure(SPHERICAL, matrix2(a * a, a * b, b * b))) << i;
  }
}

TEST(NgmVModel, WorksOutC00AfterEveryChange)
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.3);
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 0.3);
  model.addStructure(SPHERICAL, 1.);
  model.addStructure(EXPONENTIAL, 2.);
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 3.3);
  model.setCoregionalisationMatElem(0, 0, 0, 5.);
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 7.3);
  NgmMatrix sills(1, 1, true);
  sills.setElement(0, 0, 4.);
  model.setCoregionalisationMatrix(1, sills);
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 9.3);
  model.removeStructure(0);
  EXPECT_DOUBLE_EQ(model.getC00Matrix()(0, 0), 4.3);
  model.removeNugget();
  EXPECT_DOUBLE_EQ(model.getC0IJ(0, 0), 4.);
}

TEST(NgmVModel, RefusesBadArguments)
{
  NgmVModel model = makeModel();
  const QString before = model.debug(0);
  const NgmMatrix wrong(3, 3, true);
  const struct
  {
    std::function<void()> call;
    const char *message;
  } cases[] = {
      {[&] { model.addStructure(SPHERICAL, 0.); },
       "NgmVModel::addStructure: sill must be a positive value"},
      {[&] { model.addStructure(QStringLiteral("None"), 1.); },
       "Invalid structure type when adding a new structure to the model"},
      {[&] { model.addStructure(SPHERICAL, wrong); },
       "NgmVModel::addStructure: sills matrix has wrong size."},
      {[&] { model.removeStructure(3); },
       "NgmVModel::removeStructure: Bad rank (3) detected when removing a structure"},
      {[&] { model.getStructureLabel(-1); }, "NgmVModel::getStructureLabel: argument invalid :"},
      {[&] { model.setNugget(0, 2, 1.); }, "Invalid variable rank when setting nugget"},
      {[&] { model.setNuggetMatrix(wrong); }, "NgmVModel::setNuggetMatrix: matrix has wrong size"},
      {[&] { model.setCoregionalisationMatrix(3, matrix2(1., 0., 1.)); },
       "NgmVModel::setCoregionalisationMatrix: Bad rank detected when setting the sill for a "
       "structure"},
      {[&] { model.setCoregionalisationMatrix(0, wrong); },
       "NgmVModel::setCoregionalisationMatrix: matrix has wrong size"},
      {[&] { model.setCoregionalisationMatElem(-1, 0, 0, 1.); },
       "NgmVModel::setCoregionalisationMatElem: Bad rank detected when setting the sill for a "
       "structure"},
      {[&] { model.setCoregionalisationMatElem(0, 0, 5, 1.); },
       "Invalid variable rank when setting sill"},
      {[&] { model.getSill(4, 0, 1.); }, "NgmVModel::getSill: argument invalid :4"},
      {[&] { model.getC0IJ(0, 2); }, "NgmVModel::getC0IJ: Invalid arguments"},
      {[&] { model.setRotation(3, NbgRotation()); },
       "Bad rank detected when setting the rotation for a structure"},
      {[&] { model.setAnisotropy(3, NbgVector3D::Unit); },
       "Bad rank detected when setting the anisotropies for a structure"},
      {[&] { model.setAnisotropy(0, NbgVector3D(1., -1., 1.)); },
       "NgmVModel::setAnisotropy: Invalid anisotropy vector"},
      {[&] { model.setAnisotropy(0, NbgVector3D::Null); },
       "NgmVModel::setAnisotropy: Invalid anisotropy vector"},
      {[&] { model.setRange(3, 0, 1.); },
       "Bad rank detected when setting the ranges for a structure"},
      {[&] { model.setRange(0, 3, 1.); },
       "Bad direction index detected when setting the ranges for a direction"},
      {[&] { model.setRangeIsotropic(3, 1.); },
       "Bad rank detected when setting the isotropic range for a structure"},
      {[&] { model.updateScaleFactor(3, 1.); },
       "Bad rank detected when setting the range for a structure"},
      {[&] { model.updateScaleFactor(0, 0.); }, "NgmAVStruct::_setScaleFactor: null range"},
      {[&] { model.setAuxiliaryParameter(3, 0, 1.); },
       "Bad rank detected when setting the auxiliary parameter for a structure"},
      {[&] { model.setContextIrfDegree(-2); }, "NgmAVStruct::setContext: invalid Irf Degree"},
  };
  for (const auto &test : cases)
    EXPECT_EQ(errorOf(test.call), QString::fromLatin1(test.message));
  expectAssertion(QStringLiteral("geos/vmodel/NgmVModel"), QStringLiteral("argument invalid : 3"),
                  [&] { model.getStructure(3); });
  expectAssertion(QStringLiteral("geos/vmodel/NgmVModel"), QStringLiteral("argument invalid : -1"),
                  [&] { model.setRanges(-1, NbgVector3D::Unit); });
  EXPECT_THROW(model.addStructure(QStringLiteral("spherical"), 1.), NbeProgrammingError);
  EXPECT_EQ(model.debug(0), before);
}

TEST(NgmVModel, StructuresTakeTheContextOfTheModel)
{
  NgmVModel model = makeModel();
  model.setContextNDim(2);
  model.setContextFieldSize(55.);
  for (int k = 0; k < model.getNStructures(); ++k) {
    EXPECT_EQ(model.getStructure(k).getContext().getNDimensions(), 2);
    EXPECT_EQ(model.getStructure(k).getContext().getFieldSize(), 55.);
  }
  model.addStructure(SPHERICAL, 1.);
  EXPECT_EQ(model.getStructure(3).getContext().getNDimensions(), 2);
}

TEST(NgmVModel, RefusedContextStaysWithTheStructuresBefore)
{
  NgmVModel model(1);
  model.setContextIrfDegree(0);
  model.addStructure(SPHERICAL, 1.);
  model.addStructure(QStringLiteral("Linear"), 1.);
  model.addStructure(SPHERICAL, 1.);
  EXPECT_EQ(errorOf([&] { model.setContext(NgmModelContext(-1, 2, 5.)); }),
            QStringLiteral("NgmAVStruct::setContext: invalid Irf Degree"));
  EXPECT_EQ(model.getStructure(0).getContext().getNDimensions(), 2);
  EXPECT_EQ(model.getStructure(2).getContext().getNDimensions(), 3);
  EXPECT_EQ(model.getContext().getNDimensions(), 3);
}

TEST(NgmVModel, SillOfAStructureWithoutRangeIsItsVariogram)
{
  NgmVModel model(1);
  model.setContext(NgmModelContext(0, 2, 100.));
  model.addStructure(SPHERICAL, 3.);
  model.addStructure(QStringLiteral("Linear"), 2.);
  model.setRangeIsotropic(1, 10.);
  EXPECT_EQ(model.getSill(0, 0, 25.), 3.);
  EXPECT_EQ(model.getSill(1, 0, NbbGlobal::D_FFFF), 2.);
  EXPECT_DOUBLE_EQ(model.getSill(1, 0, 25.), 5.);
  EXPECT_EQ(errorOf([&] { model.getSill(1, 0, 0.); }),
            QStringLiteral("NgmVModel::getSill: invalid context"));
}

TEST(NgmVModel, RangesAndAnisotropyOfOneStructure)
{
  NgmVModel model(1);
  model.addStructure(SPHERICAL, 1.);
  model.setRanges(0, NbgVector3D(100., 50., 10.));
  model.setRange(0, 1, 5.);
  const NbgVector3D ranges = model.getStructure(0).getPracticalRanges();
  EXPECT_DOUBLE_EQ(ranges.x(), 100.);
  EXPECT_DOUBLE_EQ(ranges.y(), 5.);
  EXPECT_DOUBLE_EQ(ranges.z(), 10.);
  model.updateScaleFactor(0, 50.);  // tenfold, the anisotropy stays
  EXPECT_DOUBLE_EQ(model.getStructure(0).getPracticalRanges().x(), 1000.);
  model.setAnisotropy(0, NbgVector3D(1., 0.5, 0.));
  EXPECT_EQ(model.getStructure(0).getPracticalRanges(), NbgVector3D(50., 100., 0.));
  // No variation along an axis of coefficient 0.
  EXPECT_EQ(model.calcCovaIJ(0, 0, NbgVector3D(0., 0., 1e6)), 1.);
  EXPECT_FALSE(model.isIsotropic2D());
  model.updateToIsotropic(0);
  EXPECT_TRUE(model.isIsotropic());
}

TEST(NgmVModel, RotationFlagsFollowTheStructures)
{
  NgmVModel model = makeModel();
  EXPECT_TRUE(model.hasRotation());
  EXPECT_TRUE(model.hasGlobalRotation());
  EXPECT_TRUE(model.getGlobalRotation() == NbgRotation(35., 10., 5.));
  EXPECT_EQ(model.getGlobalRange().x(), 300.);

  model.setRotation(1, NbgRotation(35. + 1e-9, 10., 5.));
  EXPECT_TRUE(model.hasGlobalRotation()) << "closer than the tolerance";
  model.setRotation(0, NbgRotation(60., 0., 0.));
  EXPECT_FALSE(model.hasGlobalRotation());
  expectAssertion(QStringLiteral("vmodel\\NgmVModel"),
                  QStringLiteral("Can't be used with mixed rotations"),
                  [&] { model.getGlobalRange(); });
  // Structure 0 has the largest sill of variable 0.
  EXPECT_TRUE(model.getMajorRotation() == NbgRotation(60., 0., 0.));
  model.setGlobalRotation(NbgRotation());
  EXPECT_FALSE(model.hasRotation());
  EXPECT_TRUE(NgmVModel(1).getMajorRotation().isIdentity());
}

TEST(NgmVModel, CovarianceIsTheSumOfTheStructures)
{
  const NgmVModel model = makeModel();
  const NbgVector3D h(12., -7., 3.);
  const NbgVector3D local = NbgRotation(35., 10., 5.).worldToLocal(h);
  const auto ratio = [&](double rx, double ry, double rz) {
    return NbgVector3D(local.x() / rx, local.y() / ry, local.z() / rz).norm();
  };
  const double u = ratio(100., 50., 20.);
  const double v = ratio(70., 90., 30.);
  const double spherical = 1. - 1.5 * u + 0.5 * u * u * u;
  const double stable = std::exp(-3. * std::pow(h.norm() / 300., 1.5));
  const double cubic =
      1. - 7. * v * v + 8.75 * std::pow(v, 3) - 3.5 * std::pow(v, 5) + 0.75 * std::pow(v, 7);
  const double expected = 0.5 * spherical - 0.3 * stable;
  EXPECT_NEAR(model.calcCovaIJ(0, 1, h), expected, 1e-14);
  EXPECT_NEAR(model.calcCovaIJ(1, 1, h), 2. * spherical + 0.4 * stable + 0.25 * cubic, 1e-14);
  EXPECT_DOUBLE_EQ(model.calcVarioIJ(0, 1, h), 0.22 - model.calcCovaIJ(0, 1, h));
  EXPECT_NEAR(model.calcElementaryStructure(h, 2), cubic, 1e-14);
  EXPECT_EQ(model.calcCovaIJ(1, 0, -h), model.calcCovaIJ(0, 1, h));
}

TEST(NgmVModel, OnlyCalcCovaIJHasATolerantOrigin)
{
  const NgmVModel model = makeModel();
  const NbgVector3D tiny(1e-11, 0., 0.);
  EXPECT_EQ(model.calcCovaIJ(1, 1, tiny), model.getC0IJ(1, 1));
  NgmMatrix covas(2, 2, true);
  model.calcCova(tiny, covas);
  EXPECT_NEAR(covas(1, 1), model.getC0IJ(1, 1) - 0.2, 1e-9);
  model.calcCova(NbgVector3D::Null, covas);
  EXPECT_EQ(covas(1, 1), model.getC0IJ(1, 1));
  EXPECT_EQ(covas(0, 1), model.getC0IJ(0, 1));
}

TEST(NgmVModel, CalcCovaTakesTheLastReducedVectorForIsotropicStructures)
{
  NgmVModel model(1);
  model.addStructure(SPHERICAL, 1.);  // isotropic, evaluated at h
  model.setRangeIsotropic(0, 100.);
  model.addStructure(SPHERICAL, 1.);
  model.setRanges(1, NbgVector3D(100., 50., 50.));
  model.addStructure(SPHERICAL, 1.);  // isotropic, evaluated at the vector reduced for structure 1
  model.setRangeIsotropic(2, 100.);
  const NbgVector3D h(40., 0., 0.);
  const auto spherical = [](double u) { return 1. - 1.5 * u + 0.5 * u * u * u; };
  NgmMatrix covas(1, 1, true);
  model.calcCova(h, covas);
  EXPECT_NEAR(covas(0, 0), spherical(0.4) + spherical(0.4) + spherical(0.2), 1e-15);
  EXPECT_NEAR(model.calcCovaIJ(0, 0, h), 3. * spherical(0.4), 1e-15);
}

TEST(NgmVModel, CalcCovaMirrorsOnlyIntoSymmetricalMatrices)
{
  const NgmVModel model = makeModel();
  NgmMatrix symmetrical(2, 2, true), plain(2, 2, false);
  model.calcCova(NbgVector3D(10., 0., 0.), symmetrical);
  model.calcCova(NbgVector3D(10., 0., 0.), plain);
  EXPECT_EQ(symmetrical(0, 1), symmetrical(1, 0));
  EXPECT_EQ(plain(1, 0), symmetrical(1, 0));
  EXPECT_EQ(plain(0, 1), 0.);
}

TEST(NgmVModel, MakeAuthorizedRepairsAndChecks)
{
  NgmVModel model(2);
  model.setNuggetMatrix(matrix2(0.5, 0., 0.5));
  model.addStructure(SPHERICAL, 1.);
  model.setCoregionalisationMatElem(0, 0, 1, 1.2);
  ASSERT_FALSE(model.getCoregionalisationMatrix(0).isPositiveDefinite(false, false));
  EXPECT_TRUE(model.makeAuthorized());
  EXPECT_TRUE(model.getCoregionalisationMatrix(0).isPositiveDefinite(false, false));
  EXPECT_NEAR(model.getC0IJ(0, 0), 0.5 + model.getCoregionalisationMatrix(0)(0, 0), 1e-15);

  NgmVModel null(2);
  null.addStructure(SPHERICAL, matrix2(1., 0., 0.));
  expectAssertion(
      QStringLiteral("vmodel\\NgmVModel"),
      QStringLiteral(
          "The variance-covariance matrix at zero distance is not strictly definite-positive"),
      [&] { null.makeAuthorized(); });
}

TEST(NgmVModel, MakeAuthorizedShrinksPerfectCorrelations)
{
  NgmVModel model(2);
  model.addStructure(SPHERICAL, 1.);
  model.setCoregionalisationMatElem(0, 0, 1, 1.);  // singular at the origin
  EXPECT_TRUE(model.makeAuthorized());
  EXPECT_NEAR(model.getCoregionalisationMatrix(0)(0, 1), 0.999999, 1e-12);
  EXPECT_EQ(model.getCoregionalisationMatrix(0)(0, 0), 1.);
}

TEST(NgmVModel, FirstStructureDecidesWhetherDirectionsAreCovered)
{
  NgmVModel model(1);
  model.addStructure(SPHERICAL, 1.);
  model.setAnisotropy(0, NbgVector3D(1., 1., 0.));
  model.addStructure(EXPONENTIAL, 1.);
  const QString uncovered =
      QStringLiteral("Model is not correctly defined as a direction is not covered");
  expectAssertion(QStringLiteral("vmodel\\NgmVModel"), uncovered, [&] { model.makeAuthorized(); });
  model.setContextNDim(2);
  EXPECT_TRUE(model.makeAuthorized());
  model.setContextNDim(3);
  model.removeStructure(0);
  model.addStructure(SPHERICAL, 1.);
  model.setAnisotropy(1, NbgVector3D(1., 1., 0.));
  EXPECT_TRUE(model.makeAuthorized()) << "an isotropic structure stands first";
}

TEST(NgmVModel, StreamGivesBackTheModel)
{
  const NgmVModel model = makeModel();
  NgmVModel copy(5);
  test::fromBytes(test::toBytes(model), copy);
  EXPECT_EQ(copy.debug(0), model.debug(0));
  NgmMatrix expected(2, 2, true), actual(2, 2, true);
  for (const NbgVector3D &h : {NbgVector3D::Null, NbgVector3D(3., 4., 5.)}) {
    model.calcCova(h, expected);
    copy.calcCova(h, actual);
    // Scales may come back changed by one unit in the last place.
    actual.setPrecision(1e-14);
    EXPECT_EQ(expected, actual);
  }
}

TEST(NgmVModel, EveryStructureComesBackFromTheStream)
{
  for (const NgmEVStruct &type : NgmVStructFactory::getStructureForDegree(99, false)) {
    NgmVModel model(1);
    model.setContext(NgmModelContext(2, 2, 1000.));
    model.addStructure(type.getLabel(), 2.);
    if (model.getStructure(0).getNAuxiliaryParameters() > 0)
      model.setAuxiliaryParameter(0, 0, 1.3);
    model.setRanges(0, NbgVector3D(300., 200., 1.));
    // Generalized covariances too, into a model for stationary ones.
    NgmVModel copy(1);
    test::fromBytes(test::toBytes(model), copy);
    EXPECT_GE(copy.getContext().getMaxIrfDegree(), model.getEffectiveIrfDegree());
    copy.setContext(model.getContext());
    EXPECT_EQ(copy.debug(0), model.debug(0)) << type.getKey();
    const NbgVector3D h(30., 40., 0.);
    EXPECT_NEAR(copy.calcCovaIJ(0, 0, h), model.calcCovaIJ(0, 0, h),
                1e-14 * std::abs(model.calcCovaIJ(0, 0, h)));
  }
}

TEST(NgmVModel, StreamLayout)
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.25);
  NgmVStructStable stable;
  stable.setAuxiliaryParameter(0, 2.);
  stable.setRangeIsotropic(12.);
  NgmMatrix sill(1, 1, true);
  sill.setElement(0, 0, 3.);
  model.addStructure(stable, sill);

  const QByteArray bytes = test::toBytes(model);
  QDataStream stream(bytes);
  quint32 magic, version, nVariables, nStructures, count;
  QString key;
  double value;
  stream >> magic >> version >> nVariables >> nStructures;
  EXPECT_EQ(version, 151016u);
  EXPECT_EQ(nVariables, 1u);
  EXPECT_EQ(nStructures, 1u);
  stream >> count >> value >> key;
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(value, 0.25);
  EXPECT_EQ(key, QStringLiteral("STABLE"));
  stream >> value >> count;
  EXPECT_DOUBLE_EQ(value, 12.);
  EXPECT_EQ(count, 3u);
  for (int axis = 0; axis < 3; ++axis) {
    stream >> value;
    EXPECT_EQ(value, 1.);
  }
  NbgRotation rotation(1., 2., 3.);
  rotation.unserialize(stream);
  EXPECT_TRUE(rotation.isIdentity());
  stream >> count;
  EXPECT_EQ(count, 1u);
  stream >> count >> value;
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(value, 2.);
  stream >> count >> value;
  EXPECT_EQ(count, 1u);
  EXPECT_EQ(value, 3.);
  EXPECT_TRUE(stream.atEnd());
}

TEST(NgmVModel, DamagedStreamsAreRefused)
{
  NgmVModel target(1);
  target.addStructure(EXPONENTIAL, 2.);
  test::fuzzSerialization(makeModel(), target);

  // Structures whose parameters set things up.
  NgmVModel other(1);
  other.setContext(NgmModelContext(2, 3, 100.));
  for (const char *label : {"Bessel-J", "Bessel-K", "Power", "Spline GC", "Exponential Cosine"})
    other.addStructure(QString::fromLatin1(label), 1.);
  test::fuzzSerialization(other, target);
}

TEST(NgmVModel, RefusesParametersWhoseRangeIsBeyondNumbers)
{
  const auto bytesOf = [](double value) {
    QByteArray bytes;
    QDataStream(&bytes, QIODevice::WriteOnly) << value;
    return bytes;
  };
  NgmVModel model(1), copy(1);
  model.addStructure(QStringLiteral("Gamma"), 1.);
  model.setAuxiliaryParameter(0, 0, 1.25);
  QByteArray bytes = test::toBytes(model);
  bytes.replace(bytesOf(1.25), bytesOf(1e-5));  // 20^100000 scales to the 95 % of the sill
  EXPECT_THROW(test::fromBytes(bytes, copy), NbeUserError);
}

TEST(NgmVModel, ScalesOfAllSizesKeepTheirBytes)
{
  for (int i = 1; i < 400; ++i) {
    NgmVModel model(1), copy(1);
    model.addStructure(EXPONENTIAL, 1.);
    model.setRangeIsotropic(0, i * std::pow(1.07, i) / 3.);
    test::fromBytes(test::toBytes(model), copy);
    ASSERT_EQ(test::toBytes(copy), test::toBytes(model)) << i;
  }
}

TEST(NgmVModel, DescribesItself)
{
  const NgmVModel model = makeModel();
  const QString lines = model.summary(true, true, 4).join(QLatin1Char('\n'));
  for (const char *part : {"- Number of variables    = 2", "- Space dimension        = 3",
                           "- Number of covariances  = 3", "- Structures:", "-1 : Nugget Effect",
                           "0 : Spherical", "1 : Stable", "Ranges: ", "Coregionalisation matrix:"})
    EXPECT_TRUE(lines.contains(QString::fromLatin1(part))) << part;
  EXPECT_EQ(model.briefSummary(0, 3),
            QStringLiteral("Nugget, Spherical [Range(X)=100], Stable [Range(X)=300], "
                           "Cubic [Range(X)=70]"));
  NgmVModel univariate(1);
  univariate.addStructure(SPHERICAL, 0.5);
  EXPECT_TRUE(univariate.summary(false, true, 4).contains(QStringLiteral("    Sill: 0.5")));
  const QString text = model.debug(0);
  for (const char *part : {"Variogram Model\n", "NB_VARIABLES=2\n", "EFFECTIVE_IRF_DEGREE=-1\n",
                           "USE_AT_LEAST_ONE_ROTATION=1\n", "USE_GLOBAL_ROTATION=1\n",
                           "GLOBAL ROTATION\n", "Structure Type= Nugget\n", "COREG\n"})
    EXPECT_TRUE(text.contains(QString::fromLatin1(part))) << part;
}

}  // namespace
