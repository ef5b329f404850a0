#include "basic/data/NbdVariableDouble.h"
#include "geos/NgmEnumGlobal.h"
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
    const NbgVector3D near = s.at(2) + NbgVector3D(1e-9, 0., 0.);
    EXPECT_NEAR(pointSet(model, near, s)(3 * v - 1, v - 1), c00 - nugget, 1e-9);
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

/// A structure of sill 1 in the dimension in which the type is a covariance, or a generalized one.
NgmVModel makeAdmissible(const NgmEVStruct &type)
{
  // The exponential cosine of any period is a covariance on lines only.
  const bool onLines = type == NgmEVStruct::EXPONENTIAL_COSINE;
  NgmVModel model(1);
  model.setContext(NgmModelContext(2, onLines ? 1 : 3, 400.));
  model.addStructure(type.getLabel(), 1.);
  if (onLines)
    model.setAuxiliaryParameter(0, 0, 35.);
  model.setRanges(0, NbgVector3D(150., 100., 50.));
  return model;
}

TEST(NgmVModelCovas, MatricesOfStationaryStructuresArePositiveDefinite)
{
  for (const NgmEVStruct &type : NgmVStructFactory::getStructureForDegree(-1, false)) {
    const NgmVModel model = makeAdmissible(type);
    Samples samples(60, 99);
    if (model.getContext().getNDimensions() == 1)
      samples.y = samples.z = std::vector<double>(60, 0.);
    NgmMatrix covas = allCovas(model, samples);
    // The smooth ones have eigenvalues of the order of rounding errors.
    for (int i = 0; i < 60; ++i)
      covas.addToElement(i, i, 1e-12);
    EXPECT_TRUE(covas.isPositiveDefinite(true, false)) << type.getKey();
  }
  EXPECT_TRUE(allCovas(makeBivariate(), Samples(50)).isPositiveDefinite(true, false));
}

/// The monomials of degree up to `degree` at the samples, made orthonormal by column.
NgmMatrix orthonormalMonomials(const Samples &s, int degree)
{
  std::vector<std::vector<double>> columns;
  for (int a = 0; a <= degree; ++a)
    for (int b = 0; a + b <= degree; ++b)
      for (int c = 0; a + b + c <= degree; ++c) {
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

TEST(NgmVModelCovas, GeneralizedCovariancesArePositiveWhereTheirDriftIsFilteredOut)
{
  const Samples samples(40, 5);
  for (const NgmEVStruct &type : NgmVStructFactory::getStructureForDegree(99, false)) {
    const NgmVModel model = makeAdmissible(type);
    const int degree = model.getEffectiveIrfDegree();
    if (degree < 0)
      continue;
    const NgmMatrix covas = allCovas(model, samples);
    const NgmMatrix q = orthonormalMonomials(samples, degree);
    NgmMatrix projector(40, 40, false);
    projector.setIdentity();
    projector -= q * q.transpose();
    NgmMatrix projected = projector * covas * projector;
    projected.scalarMultiply(0.5);
    projected += projected.transpose();
    // As their formulas stand, these two are so with the opposite sign.
    if (type == NgmEVStruct::SPLINE2_GC || type == NgmEVStruct::FIFTH_ORDER_GC)
      projected.scalarMultiply(-1.);

    NgmMatrix values(false), vectors(false);
    const double largest = projected.eigenValues(values, vectors, false, false, 1);
    EXPECT_GT(largest, 0.) << type.getKey();
    const double rounding = 1e-13 * NgmMatrix::blasDnrm2(1600, covas.constElements(), 1);
    EXPECT_GT(values(0, 0), -rounding) << type.getKey();
    EXPECT_GT(values(q.getNColumns(), 0), rounding) << type.getKey();
  }
}

TEST(NgmVModelCovas, ManyThreadsReadOneModel)
{
  const NgmVModel model = makeUnivariate();
  const Samples s(90);
  const NgmMatrix expected = allCovas(NgmVModel(model), s);
  std::vector<int> differences(8, -1);
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t)
    threads.emplace_back([&, t] {
      const NgmVModelCovaCachePtr cache = NgmVModel::getCovaCache();
      differences[t] = 0;
      for (int run = 0; run < 20; ++run)
        differences[t] += !sameBits(allCovas(model, s, cache.get()), expected);
    });
  for (std::thread &thread : threads)
    thread.join();
  EXPECT_EQ(differences, std::vector<int>(8, 0));
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
