#include "basic/data/NbdVariableDouble.h"
#include "geos/NgmEnumGlobal.h"
#include "geos/base/NgcACalculator.h"
#include "geos/interpol/NgmBlock.h"
#include "geos/interpol/NgmTarget.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"
#include "geos/vmodel/NgmVStructFactory.h"
#include "support/AllocationCounter.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <thread>

namespace {

using testsupport::uniform;

struct Samples
{
  explicit Samples(int n, std::uint64_t seed = 7) : x(n), y(n), z(n)
  {
    for (int i = 0; i < n; ++i) {
      x[i] = uniform(seed, 3 * i, 0., 300.);
      y[i] = uniform(seed, 3 * i + 1, 0., 200.);
      z[i] = uniform(seed, 3 * i + 2, 0., 40.);
    }
  }

  int size() const { return int(x.size()); }
  NbgVector3D at(int i) const { return {x[i], y[i], z[i]}; }

  std::vector<double> x, y, z;
};

NgmMatrix matrix2(double a, double b, double c)
{
  NgmMatrix matrix(2, 2, true);
  matrix.setElement(0, 0, a);
  matrix.setElement(0, 1, b);
  matrix.setElement(1, 1, c);
  return matrix;
}

void addStructures(NgmVModel &model, const NgmMatrix &sills)
{
  model.addStructure(QStringLiteral("Spherical"), sills);
  model.setRanges(0, NbgVector3D(150., 80., 30.));
  model.addStructure(QStringLiteral("Exponential"), sills);
  model.setRangeIsotropic(1, 200.);
  model.addStructure(QStringLiteral("Stable"), sills);
  model.setAuxiliaryParameter(2, 0, 1.4);
  model.setRanges(2, NbgVector3D(90., 120., 30.));
}

NgmVModel makeUnivariate()
{
  NgmVModel model(1);
  model.setNugget(0, 0, 0.1);
  NgmMatrix sill(1, 1, true);
  sill.setElement(0, 0, 0.7);
  addStructures(model, sill);
  return model;
}

NgmVModel makeBivariate()
{
  NgmVModel model(2);
  model.setNuggetMatrix(matrix2(0.1, 0.05, 0.2));
  addStructures(model, matrix2(1., -0.4, 0.5));
  return model;
}

/// The models of every way of reducing vectors: without, with one, with several rotations.
std::vector<NgmVModel> rotatedInAllWays(const NgmVModel &model)
{
  std::vector<NgmVModel> models(3, model);
  models[1].setGlobalRotation(NbgRotation(40., 15., -20.));
  models[2].setRotation(0, NbgRotation(10., 0., 0.));
  models[2].setRotation(2, NbgRotation(80., 5., 0.));
  return models;
}

NgmMatrix allCovas(const NgmVModel &model, const Samples &s, NgmVModelCovaCache *cache = nullptr)
{
  const int n = s.size() * model.getNVariables();
  NgmMatrix covas(n, n, true);
  model.calcAllCovas(s.size(), s.x.data(), s.y.data(), s.z.data(), covas, cache);
  return covas;
}

NgmMatrix pointSet(const NgmVModel &model, const NbgVector3D &target, const Samples &s,
                   NgmVModelCovaCache *cache = nullptr)
{
  NgmMatrix covas(s.size() * model.getNVariables(), model.getNVariables(), false);
  model.calcCovasPointSet(target, s.size(), s.x.data(), s.y.data(), s.z.data(), covas, cache);
  return covas;
}

bool sameBits(const NgmMatrix &a, const NgmMatrix &b)
{
  return a.getNRows() == b.getNRows() && a.getNColumns() == b.getNColumns() &&
         std::memcmp(a.constElements(), b.constElements(),
                     std::size_t(a.getNElements()) * sizeof(double)) == 0;
}

TEST(NgmVModelCovas, AllPairsAreThoseOfSingleEvaluation)
{
  // Sizes around the blocks of 8 columns and 128 rows.
  for (const int n : {1, 2, 7, 8, 9, 33, 127, 137})
    for (const NgmVModel &model : rotatedInAllWays(makeUnivariate())) {
      const Samples s(n);
      const NgmMatrix covas = allCovas(model, s);
      for (int i = 0; i < n; ++i)
        for (int j = 0; j < n; ++j)
          // Bits: the same operations in the same order.
          ASSERT_EQ(covas(i, j), model.calcCovaIJ(0, 0, s.at(j) - s.at(i))) << i << ", " << j;
    }
}

TEST(NgmVModelCovas, AllPairsOfSeveralVariables)
{
  const Samples s(21);
  for (const NgmVModel &model : rotatedInAllWays(makeBivariate())) {
    const NgmMatrix covas = allCovas(model, s);
    for (int i = 0; i < s.size(); ++i)
      for (int j = 0; j < s.size(); ++j)
        for (int a = 0; a < 2; ++a)
          for (int b = 0; b < 2; ++b)
            ASSERT_EQ(covas(2 * i + a, 2 * j + b), model.calcCovaIJ(a, b, s.at(j) - s.at(i)));
  }
}

TEST(NgmVModelCovas, TargetCovariancesAreThoseOfSingleEvaluation)
{
  const NbgVector3D target(140., 90., 11.);
  for (const int n : {1, 3, 16, 130})
    for (const NgmVModel &base : {makeUnivariate(), makeBivariate()})
      for (const NgmVModel &model : rotatedInAllWays(base)) {
        const Samples s(n);
        const int nVariables = model.getNVariables();
        const NgmMatrix covas = pointSet(model, target, s);
        for (int i = 0; i < n; ++i)
          for (int a = 0; a < nVariables; ++a)
            for (int b = 0; b < nVariables; ++b)
              ASSERT_EQ(covas(i * nVariables + a, b), model.calcCovaIJ(a, b, target - s.at(i)));
      }
}

NgmBlock makeBlock()
{
  NgmBlock block(true);
  block.setSize(NbgVector3D(40., 30., 10.));
  block.setDiscretizationPointsNumber(NbgIntVector3D(4, 3, 2));
  block.setRotation(NbgRotation(20., 0., 0.));
  return block;
}

TEST(NgmVModelCovas, BlockCovariancesAreMeansOverItsPoints)
{
  const NgmTarget target(NbgVector3D(140., 90., 11.), makeBlock());
  QVector<NbgVector3D> points;
  target.getDiscretizationPoints(points);
  ASSERT_EQ(points.size(), 24);
  Samples s(35);
  // A sample on a point of the block: the nugget has no part in it.
  s.x[3] = points[5].x();
  s.y[3] = points[5].y();
  s.z[3] = points[5].z();
  NbdVariableDouble x(QStringLiteral("X")), y(QStringLiteral("Y")), z(QStringLiteral("Z"));
  x.setVector(s.x);
  y.setVector(s.y);
  z.setVector(s.z);
  for (const NgmVModel &base : {makeUnivariate(), makeBivariate()})
    for (const NgmVModel &model : rotatedInAllWays(base)) {
      const int nVariables = model.getNVariables();
      const NgmVModel withoutNugget = model.buildFilteredModel(true, {});
      NgmMatrix covas(35 * nVariables + 1, nVariables, false);
      covas.fill(5.);
      model.calcCovasBlockSet(target, x, y, z, covas);
      EXPECT_EQ(covas(35 * nVariables, 0), 0.);
      for (int i = 0; i < 35; ++i)
        for (int a = 0; a < nVariables; ++a)
          for (int b = 0; b < nVariables; ++b) {
            double mean = 0.;
            for (const NbgVector3D &point : points)
              mean += withoutNugget.calcCovaIJ(a, b, point - s.at(i)) / 24.;
            ASSERT_NEAR(covas(i * nVariables + a, b), mean, 1e-14);
          }
    }
}

TEST(NgmVModelCovas, BitsOfABlockCovarianceDoNotDependOnItsPlace)
{
  const Samples all(50);
  QVector<NbgVector3D> points;
  NgmTarget(NbgVector3D(33., 44., 5.), makeBlock()).getDiscretizationPoints(points);
  for (const NgmVModel &model : {makeUnivariate(), makeBivariate()}) {
    const int nVariables = model.getNVariables();
    const auto blockSet = [&](int first, int n) {
      NgmMatrix covas(n * nVariables, nVariables, false);
      model.calcCovasBlockSet(points.size(), points.constData(), n, &all.x[first], &all.y[first],
                              &all.z[first], covas);
      return covas;
    };
    const NgmMatrix expected = blockSet(0, 50);
    for (const int first : {1, 3, 8})
      for (const int n : {1, 5, 30}) {
        const NgmMatrix part = blockSet(first, n);
        for (int row = 0; row < n * nVariables; ++row)
          ASSERT_EQ(part(row, nVariables - 1), expected(first * nVariables + row, nVariables - 1));
      }
  }
}

TEST(NgmVModelCovas, NothingIsAllocatedWithACache)
{
  const Samples s(200);
  NbdVariableDouble x(QStringLiteral("X")), y(QStringLiteral("Y")), z(QStringLiteral("Z"));
  x.setVector(s.x);
  y.setVector(s.y);
  z.setVector(s.z);
  const NgmTarget target(NbgVector3D(10., 20., 3.), makeBlock());
  for (const NgmVModel &model : {makeUnivariate(), makeBivariate()}) {
    const int n = 200 * model.getNVariables();
    NgmMatrix all(n, n, true), point(n, model.getNVariables(), false);
    const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
    const auto evaluate = [&] {
      model.calcAllCovas(x, y, z, all, cache.get());
      model.calcCovasPointSet(target, x, y, z, point, cache.get());
      model.calcCovasBlockSet(target, x, y, z, point, cache.get());
    };
    evaluate();
    const testsupport::AllocationCounter counter;
    evaluate();
    EXPECT_EQ(counter.count(), 0);
  }
}

TEST(NgmVModelCovas, VariablesAndArraysGiveTheSame)
{
  const Samples s(19);
  NbdVariableDouble x(QStringLiteral("X")), y(QStringLiteral("Y")), z(QStringLiteral("Z"));
  x.setVector(s.x);
  y.setVector(s.y);
  z.setVector(s.z);
  const NgmVModel model = makeUnivariate();
  NgmMatrix covas(19, 19, true), column(19, 1, false);
  model.calcAllCovas(x, y, z, covas);
  EXPECT_TRUE(sameBits(covas, allCovas(model, s)));
  const NbgVector3D target(1., 2., 3.);
  model.calcCovasPointSet(NgmTarget(target), x, y, z, column);
  EXPECT_TRUE(sameBits(column, pointSet(model, target, s)));
}

TEST(NgmVModelCovas, NuggetBelongsToTheSampleItself)
{
  Samples s(3);
  s.x[1] = s.x[0];
  s.y[1] = s.y[0];
  s.z[1] = s.z[0];
  for (const NgmVModel &model : {makeUnivariate(), makeBivariate()}) {
    const int v = model.getNVariables();
    const NgmMatrix covas = allCovas(model, s);
    const double nugget = model.getNugget(v - 1, v - 1);
    const double c00 = model.getC0IJ(v - 1, v - 1);
    EXPECT_EQ(covas(v - 1, v - 1), c00);
    EXPECT_NEAR(covas(v - 1, 2 * v - 1), c00 - nugget, 1e-15) << "two samples at one place";

    EXPECT_NEAR(pointSet(model, s.at(2), s)(3 * v - 1, v - 1), c00, 1e-15);
    // Nearer than the origin of calcCovaIJ(), but not the sample itself.
    const NbgVector3D near = s.at(2) + NbgVector3D(0., 0., 1e-12);
    EXPECT_NEAR(pointSet(model, near, s)(3 * v - 1, v - 1), c00 - nugget, 1e-9);
    EXPECT_EQ(model.calcCovaIJ(v - 1, v - 1, near - s.at(2)), c00);
  }
}

TEST(NgmVModelCovas, TheRestOfTheMatrixBecomesZero)
{
  const Samples s(11);
  for (const NgmVModel &model : {makeUnivariate(), makeBivariate(), NgmVModel(1)}) {
    const int n = 11 * model.getNVariables();
    NgmMatrix covas(n + 3, n + 3, true);
    covas.fill(5.);
    model.calcAllCovas(11, s.x.data(), s.y.data(), s.z.data(), covas);
    EXPECT_TRUE(covas.isSymmetrical(0.));
    for (int i = 0; i < n + 3; ++i)
      for (int j = n; j < n + 3; ++j)
        ASSERT_EQ(covas(i, j), 0.);

    NgmMatrix column(n + 3, model.getNVariables(), false);
    column.fill(5.);
    model.calcCovasPointSet(s.at(0), 11, s.x.data(), s.y.data(), s.z.data(), column);
    EXPECT_EQ(column(n, 0), 0.);
    EXPECT_EQ(column(n + 2, model.getNVariables() - 1), 0.);
  }
}

TEST(NgmVModelCovas, UpperTriangleAloneIsThatOfTheFullMatrix)
{
  const Samples s(140);
  for (const NgmVModel &model : {makeUnivariate(), makeBivariate()}) {
    const int n = s.size() * model.getNVariables();
    const NgmMatrix full = allCovas(model, s);
    NgmMatrix upper(n + 1, n + 1, true), plain(n, n, false);
    upper.fill(5.);
    plain.fill(5.);
    model.calcAllCovas(s.size(), s.x.data(), s.y.data(), s.z.data(), upper, nullptr,
                       NgmVModel::MatrixPart::Upper);
    model.calcAllCovas(s.size(), s.x.data(), s.y.data(), s.z.data(), plain);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i <= j; ++i) {
        ASSERT_EQ(upper(i, j), full(i, j));
        ASSERT_EQ(plain(i, j), full(i, j));
      }
    for (int i = 0; i <= n; ++i)
      ASSERT_EQ(upper(i, n), 0.);
    // A matrix that need not be symmetrical is not mirrored; only the nugget is.
    ASSERT_EQ(plain(n - 1, 0), 0.);
    ASSERT_EQ(plain(1, 0), model.getNVariables() == 1 ? 0. : model.getNugget(0, 1));
  }
}

TEST(NgmVModelCovas, BitsOfAPairDoNotDependOnItsPlace)
{
  const Samples all(97);
  const NbgVector3D target(33., 44., 5.);
  for (const NgmVModel &model : rotatedInAllWays(makeUnivariate())) {
    const NgmMatrix pairs = allCovas(model, all);
    const NgmMatrix column = pointSet(model, target, all);
    const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
    for (int first = 0; first < 12; ++first)
      for (const int n : {1, 2, 3, 5, 16, 31, 64, 85}) {
        Samples part(n);
        for (int i = 0; i < n; ++i) {
          part.x[i] = all.x[first + i];
          part.y[i] = all.y[first + i];
          part.z[i] = all.z[first + i];
        }
        const NgmMatrix pairsOfPart = allCovas(model, part, cache.get());
        const NgmMatrix columnOfPart = pointSet(model, target, part, cache.get());
        for (int j = 0; j < n; ++j) {
          ASSERT_EQ(columnOfPart(j, 0), column(first + j, 0)) << first << ", " << n;
          for (int i = 0; i < n; ++i)
            ASSERT_EQ(pairsOfPart(i, j), pairs(first + i, first + j)) << first << ", " << n;
        }
      }
  }
}

TEST(NgmVModelCovas, RotatedAnisotropyIsIsotropyOfTransformedCoordinates)
{
  NgmVModel model(1), isotropic(1);
  model.addStructure(QStringLiteral("Exponential"), 1.);
  model.setRanges(0, NbgVector3D(120., 60., 20.));
  model.setGlobalRotation(NbgRotation(25., 10., 70.));
  isotropic.addStructure(QStringLiteral("Exponential"), 1.);
  isotropic.setRangeIsotropic(0, 1.);
  const Samples s(40);
  Samples transformed(40);
  for (int i = 0; i < 40; ++i) {
    const NbgVector3D local = NbgRotation(25., 10., 70.).worldToLocal(s.at(i));
    transformed.x[i] = local.x() / 120.;
    transformed.y[i] = local.y() / 60.;
    transformed.z[i] = local.z() / 20.;
  }
  NgmMatrix expected = allCovas(isotropic, transformed);
  expected.setPrecision(1e-13);  // coordinates of some hundred units, rounded before subtraction
  NgmMatrix actual = allCovas(model, s);
  actual.setPrecision(1e-13);
  EXPECT_EQ(actual, expected);
}

/// Parameters for which the type is a covariance (or a generalized one) in that dimension, with
/// the ranges of makeAdmissible().
std::vector<double> admissibleParameters(const NgmEVStruct &type, int dimension)
{
  switch (type.toEnum()) {
    case NgmEVStruct::EValue::STABLE:
      return {0.3, 1., 2.};
    case NgmEVStruct::EValue::POWER:
      return {0.5, 1., 1.5};
    case NgmEVStruct::EValue::GAMMA:
    case NgmEVStruct::EValue::GENERALIZED_CAUCHY:
      return {0.4, 1., 3.};
    case NgmEVStruct::EValue::MATERN:
      return {0.31, 1., 2.9};
    case NgmEVStruct::EValue::BESSEL_J:  // from dimension / 2 - 1 on
      return {0.5, 1., 3.};
    case NgmEVStruct::EValue::EXPONENTIAL_COSINE:
      // Period / (2 pi scale) not below 0 on a line, 1 in a plane, sqrt(3) in space
      // (Yaglom, 1987).
      return {dimension == 1 ? 35. : dimension == 2 ? 210. : 182.};
    default:
      return {0.};
  }
}

/// A structure of sill 1 and drift degree 2 at most.
NgmVModel makeAdmissible(const NgmEVStruct &type, int dimension, double parameter)
{
  NgmVModel model(1);
  model.setContext(NgmModelContext(2, dimension, 400.));
  model.addStructure(type.getLabel(), 1.);
  if (model.getStructure(0).getNAuxiliaryParameters() > 0)
    model.setAuxiliaryParameter(0, 0, parameter);
  model.setRanges(0, NbgVector3D(150., 100., 50.));
  return model;
}

/// In one dimension no two lie closer than 60 / n: nearer than 1e-4 of the field size the spline
/// leaves its logarithm out, which is no covariance.
Samples makeSamples(int n, std::uint64_t seed, int dimension)
{
  Samples samples(n, seed);
  for (int i = 0; i < n && dimension == 1; ++i)
    samples.x[i] = 300. * (i + uniform(seed, i, 0., 0.8)) / n;
  if (dimension < 2)
    samples.y.assign(samples.y.size(), 0.);
  if (dimension < 3)
    samples.z.assign(samples.z.size(), 0.);
  return samples;
}

TEST(NgmVModelCovas, MatricesOfStationaryStructuresArePositiveDefinite)
{
  for (const NgmEVStruct &type : NgmVStructFactory::getStructureForDegree(-1, false))
    for (int dimension = 1; dimension <= 3; ++dimension) {
      const Samples samples = makeSamples(60, 99, dimension);
      for (const double parameter : admissibleParameters(type, dimension)) {
        NgmMatrix covas = allCovas(makeAdmissible(type, dimension, parameter), samples);
        // The smooth ones have eigenvalues of the order of rounding errors.
        for (int i = 0; i < 60; ++i)
          covas.addToElement(i, i, 1e-12);
        EXPECT_TRUE(covas.isPositiveDefinite(true, false))
            << type.getKey() << " of " << parameter << " in " << dimension << " dimensions";
      }
    }
  EXPECT_TRUE(allCovas(makeBivariate(), Samples(50)).isPositiveDefinite(true, false));
}

TEST(NgmVModelCovas, CosineOfShortPeriodIsNoCovarianceInSpace)
{
  // What the test of definiteness finds where there is none.
  const Samples samples = makeSamples(300, 3, 3);
  const NgmVModel model = makeAdmissible(NgmEVStruct::EXPONENTIAL_COSINE, 3, 35.);
  EXPECT_FALSE(allCovas(model, samples).isPositiveDefinite(false, false));
}

/// The monomials of degree up to `degree` at the samples, made orthonormal by column.
NgmMatrix orthonormalMonomials(const Samples &s, int degree, int dimension)
{
  std::vector<std::vector<double>> columns;
  for (int a = 0; a <= degree; ++a)
    for (int b = 0; a + b <= (dimension > 1 ? degree : a); ++b)
      for (int c = 0; a + b + c <= (dimension > 2 ? degree : a + b); ++c) {
        std::vector<double> column(s.size());
        for (int i = 0; i < s.size(); ++i)
          column[i] = std::pow(s.x[i] / 150. - 1., a) * std::pow(s.y[i] / 100. - 1., b) *
                      std::pow(s.z[i] / 20. - 1., c);
        columns.push_back(column);
      }
  const int n = s.size();
  NgmMatrix q(n, int(columns.size()), false);
  for (std::size_t k = 0; k < columns.size(); ++k) {
    double *v = columns[k].data();
    for (int pass = 0; pass < 2; ++pass)  // twice is enough (Kahan)
      for (std::size_t m = 0; m < k; ++m)
        NgmMatrix::blasDaxpy(n, -NgmMatrix::blasDdot(n, v, 1, columns[m].data(), 1),
                             columns[m].data(), 1, v, 1);
    NgmMatrix::blasDscal(n, 1. / NgmMatrix::blasDnrm2(n, v, 1), v, 1);
    q.setColumn(int(k), v);
  }
  return q;
}

/// A covariance matrix between combinations of samples that filter out the drift of the degree.
NgmMatrix filtered(const NgmMatrix &covas, const NgmMatrix &drift)
{
  NgmMatrix projector(covas.getNRows(), covas.getNRows(), false);
  projector.setIdentity();
  projector -= drift * drift.transpose();
  NgmMatrix projected = projector * covas * projector;
  projected.scalarMultiply(0.5);
  projected += projected.transpose();
  return projected;
}

TEST(NgmVModelCovas, GeneralizedCovariancesArePositiveWhereTheirDriftIsFilteredOut)
{
  NgcACalculator::initMKLThreading();  // threads cost more than such small products
  for (const NgmEVStruct &type : NgmVStructFactory::getStructureForDegree(99, false))
    for (int dimension = 1; dimension <= 3; ++dimension)
      for (const double parameter : admissibleParameters(type, dimension)) {
        const NgmVModel model = makeAdmissible(type, dimension, parameter);
        const int degree = model.getEffectiveIrfDegree();
        if (degree < 0)
          continue;
        const Samples samples = makeSamples(40, 5, dimension);
        const NgmMatrix covas = allCovas(model, samples);
        const NgmMatrix drift = orthonormalMonomials(samples, degree, dimension);
        NgmMatrix projected = filtered(covas, drift);
        // As their formulas stand, these two are so with the opposite sign.
        if (type == NgmEVStruct::SPLINE2_GC || type == NgmEVStruct::FIFTH_ORDER_GC)
          projected.scalarMultiply(-1.);

        NgmMatrix values(false), vectors(false);
        const double largest = projected.eigenValues(values, vectors, false, false, 1);
        const double rounding = 1e-13 * NgmMatrix::blasDnrm2(1600, covas.constElements(), 1);
        const std::string what =
            std::string(type.getKey()) + ", dimension " + std::to_string(dimension);
        EXPECT_GT(largest, 100. * rounding) << what;
        EXPECT_GT(values(0, 0), -rounding) << what;
        // On a line the smallest ones drown in rounding.
        if (dimension == 3) {
          EXPECT_GT(values(drift.getNColumns(), 0), rounding) << what;
        }
      }
}

/// What every evaluator gives, in one row of numbers. The model may have to work out C00 first.
std::vector<double> evaluateAll(const NgmVModel &model, const Samples &s)
{
  const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
  const int n = model.getNVariables();
  const NbgVector3D target(33., 44., 5.);
  QVector<NbgVector3D> points;
  NgmTarget(target, makeBlock()).getDiscretizationPoints(points);
  NgmMatrix single(n, n, true), cvv(false), blockBlock(false), block(n * s.size(), n, false);
  model.calcCova(NbgVector3D::Null, single);
  model.calcCvv(makeBlock(), 5, cvv);
  model.calcCovBlockBlock(makeBlock(), target, blockBlock);
  model.calcCovasBlockSet(points.size(), points.constData(), s.size(), s.x.data(), s.y.data(),
                          s.z.data(), block, cache.get());
  std::vector<double> values = {model.calcCovaIJ(0, n - 1, target), model.getC0IJ(0, 0)};
  for (const NgmMatrix &matrix : {single, cvv, blockBlock, block, allCovas(model, s, cache.get()),
                                  pointSet(model, target, s, cache.get())})
    values.insert(values.end(), matrix.constElements(),
                  matrix.constElements() + matrix.getNElements());
  return values;
}

TEST(NgmVModelCovas, ManyThreadsReadOneModel)
{
  const Samples s(50);
  for (const NgmVModel &base : {makeUnivariate(), makeBivariate()})
    for (const NgmVModel &model : rotatedInAllWays(base)) {
      const std::vector<double> expected = evaluateAll(NgmVModel(model), s);
      for (int run = 0; run < 3; ++run) {
        const NgmVModel fresh(model);  // without C00
        std::vector<char> isSame(8, 0);
        std::vector<std::thread> threads;
        for (std::size_t t = 0; t < isSame.size(); ++t)
          threads.emplace_back([&, t] { isSame[t] = evaluateAll(fresh, s) == expected; });
        for (std::thread &thread : threads)
          thread.join();
        EXPECT_EQ(isSame, std::vector<char>(8, 1));
      }
    }
}

TEST(NgmVModelCovas, GeneralFormOfTheLoopAgreesWithTheFusedOnes)
{
  const Samples s(300);  // more than a block of the general form
  const double rotation[9] = {0.6, 0.8, 0., -0.8, 0.6, 0., 0., 0., 1.};
  const double anisotropy[3] = {1., 0.5, 0.25};
  const double targets[3] = {100., 50., 10.};
  const NgmVModel model = makeUnivariate();
  for (int k = 0; k < model.getNStructures(); ++k)
    for (int kind = 0; kind < 4; ++kind) {
      NgmAVStruct::Separations separations;
      separations.nSamples = s.size();
      separations.x = s.x.data();
      separations.y = s.y.data();
      separations.z = s.z.data();
      separations.nTargets = 1;
      separations.targetX = targets;
      separations.targetY = targets + 1;
      separations.targetZ = targets + 2;
      separations.rotation = kind & 1 ? rotation : nullptr;
      separations.anisotropy = kind & 2 ? anisotropy : nullptr;
      const NgmAVStruct &structure = model.getStructure(k);
      for (const bool add : {false, true}) {
        std::vector<double> fused(s.size(), 1.5), general(s.size(), 1.5);
        structure.calcCovas(separations, 0.7, add, fused.data(), s.size());
        structure.NgmAVStruct::calcCovas(separations, 0.7, add, general.data(), s.size());
        EXPECT_EQ(fused, general);
      }
    }
}

TEST(NgmVModelCovas, RefusesMatricesOfAnotherShape)
{
  const QString path = QStringLiteral("vmodel\\NgmVModel");
  const NgmVModel model = makeBivariate();
  const Samples s(4);
  const auto all = [&](int rows, int columns) {
    NgmMatrix covas(rows, columns, false);
    model.calcAllCovas(4, s.x.data(), s.y.data(), s.z.data(), covas);
  };
  const auto point = [&](int rows, int columns) {
    NgmMatrix covas(rows, columns, false);
    model.calcCovasPointSet(NbgVector3D(), 4, s.x.data(), s.y.data(), s.z.data(), covas);
  };
  const auto block = [&](int rows, int columns) {
    NgmMatrix covas(rows, columns, false);
    model.calcCovasBlockSet(1, &NbgVector3D::Null, 4, s.x.data(), s.y.data(), s.z.data(), covas);
  };
  testsupport::expectAssertion(path, QStringLiteral("wrong matrix size"), [&] { all(7, 7); });
  testsupport::expectAssertion(path, QStringLiteral("wrong matrix size"), [&] { all(8, 7); });
  testsupport::expectAssertion(path, QStringLiteral("wrong number of rows"), [&] { point(7, 2); });
  testsupport::expectAssertion(path, QStringLiteral("wrong number of columns"),
                               [&] { point(8, 1); });
  testsupport::expectAssertion(path, QStringLiteral("wrong number of rows"), [&] { block(7, 2); });
  testsupport::expectAssertion(path, QStringLiteral("wrong number of columns"),
                               [&] { block(8, 1); });
  EXPECT_NO_THROW(all(8, 8));
  EXPECT_NO_THROW(point(9, 2));
}

}  // namespace
