#include "MatrixTestSupport.h"
#include "basic/base/NbbGlobal.h"
#include "geos/matrix/NgmNumericLibrary.h"

#include <QStringList>
#include <array>

#include <array>
#include <limits>

using namespace testsupport;

namespace {

constexpr double UNDEFINED = NbbGlobal::D_FFFF;

/// Of well-conditioned systems of a few hundred unknowns.
constexpr double ROUNDING = 1e-12;

/// The orders below, at and above the one where the parallel path begins.
const int ORDERS[] = {1, 2, 17, 33, 99, 100, 150};

/// Gives access to the start and the end of the parallel path.
class ParallelPath : public NgmMatrix
{
public:
  static void start() { _initPlasma(2); }
  static void stop() { _finalizePlasma(); }
};

}  // namespace

TEST(NgmMatrixAlgebra, InversesGiveTheIdentityOnEveryPath)
{
  for (int n : ORDERS) {
    for (int nThreads : {1, 2}) {
      SCOPED_TRACE(testing::Message() << "n = " << n << ", " << nThreads << " threads");
      NgmMatrix inverse(false);

      const NgmMatrix definite = randomPositiveDefinite(11, n);
      ASSERT_EQ(definite.invertPositiveDefinite(inverse, nThreads), 0);
      EXPECT_TRUE(inverse.isSymmetrical(0.));
      EXPECT_LT(maxDifferenceFromIdentity(definite * inverse), ROUNDING);

      NgmMatrix indefinite = definite;
      for (int i = 0; i < n; i += 2)
        indefinite.setElement(i, i, -indefinite(i, i));
      ASSERT_EQ(indefinite.invert(inverse, nThreads), 0);
      EXPECT_LT(maxDifferenceFromIdentity(indefinite * inverse), ROUNDING);
      EXPECT_TRUE(nThreads > 1 || inverse.isSymmetrical(0.));

      NgmMatrix general = randomMatrix(12, n, n);
      for (int i = 0; i < n; ++i)
        general.addToElement(i, i, 3. * std::sqrt(double(n)));
      ASSERT_EQ(general.invert(inverse, nThreads), 0);
      EXPECT_LT(maxDifferenceFromIdentity(general * inverse), ROUNDING);
    }
  }
}

TEST(NgmMatrixAlgebra, SolvesSymmetricAndGeneralSystems)
{
  for (int n : ORDERS) {
    for (bool symmetrical : {true, false}) {
      for (int nThreads : {1, 2}) {
        SCOPED_TRACE(testing::Message() << "n = " << n << ", " << nThreads << " threads");
        NgmMatrix a = randomPositiveDefinite(13, n);
        a.setMustBeSymmetrical(symmetrical);
        const NgmMatrix solution = randomMatrix(14, n, 3);
        NgmMatrix x = a * solution;
        NgmMatrix factored(a);
        std::vector<int> pivots(std::size_t(n), -1);
        ASSERT_EQ(factored.resolveEquat(x, nThreads == 1 ? nullptr : pivots.data(), nThreads), 0);
        EXPECT_LT(maxDifference(x, solution), ROUNDING);
      }
    }
  }
}

TEST(NgmMatrixAlgebra, OnlyTheUpperTriangleIsReadBySymmetricalRoutines)
{
  NgmMatrix a = randomPositiveDefinite(15, 5);
  NgmMatrix expected(false);
  a.invert(expected, 1);
  for (int j = 0; j < 5; ++j)
    for (int i = j + 1; i < 5; ++i)
      a.elements()[i + 5 * j] = std::numeric_limits<double>::quiet_NaN();
  NgmMatrix inverse(false);
  EXPECT_EQ(a.invert(inverse, 1), 0);
  EXPECT_TRUE(sameBits(inverse, expected));
  EXPECT_EQ(a.invertPositiveDefinite(inverse, 1), 0);
  EXPECT_LT(maxDifference(inverse, expected), ROUNDING);
}

TEST(NgmMatrixAlgebra, FailuresAreReturnedAsCodes)
{
  NgmMatrix out(false);
  EXPECT_EQ(matrixOf(3, 3, {1., 0., 0., 0., 1., 1., 0., 1., 1.}).invertPositiveDefinite(out, 1), 3);
  EXPECT_EQ(matrixOf(2, 2, {-1., 0., 0., 1.}).invertPositiveDefinite(out, 1), 1);
  EXPECT_GT(matrixOf(2, 2, {1., 2., 2., 4.}).invert(out, 1), 0);
  EXPECT_GT(NgmMatrix(3, 3, true).invert(out, 1), 0);

  NgmMatrix singular(2, 2, true);
  NgmMatrix rhs = matrixOf(2, 1, {1., 1.});
  EXPECT_GT(singular.resolveEquat(rhs, nullptr, 1), 0);

  NgmMatrix empty(0, 0, true);
  NgmMatrix emptyRhs(0, 1, false);
  EXPECT_EQ(empty.invert(out, 1), 0);
  EXPECT_EQ(empty.resolveEquat(emptyRhs, nullptr, 1), 0);
}

TEST(NgmMatrixAlgebra, ParallelCallsDoNotOverlap)
{
  const NgmMatrix a = randomPositiveDefinite(16, 120);
  NgmMatrix inverse(false);
  ParallelPath::start();
  expectErrors({{"overlap", NbeError::PROGRAMMING,
                 QStringLiteral("NgmMatrix::_initPlasma(): Can't initialize PLASMA"),
                 [&] { a.invert(inverse, 2); }}});
  EXPECT_EQ(a.invert(inverse, 1), 0);
  ParallelPath::stop();
  EXPECT_EQ(a.invert(inverse, 2), 0);
  expectErrors({{"end without start", NbeError::PROGRAMMING,
                 QStringLiteral("NgmMatrix::_finalizePlasma(): Can't finalize PLASMA"),
                 [] { ParallelPath::stop(); }}});
}

TEST(NgmMatrixAlgebra, EigenvaluesOfKnownMatrices)
{
  // Second differences: 2 - 2 cos(k pi / (n + 1)).
  const int n = 12;
  NgmMatrix a(n, n, true);
  for (int i = 0; i < n; ++i) {
    a.setElement(i, i, 2.);
    if (i > 0)
      a.setElement(i, i - 1, -1.);
  }
  for (bool useInternal : {true, false}) {
    NgmMatrix values(false);
    NgmMatrix vectors(false);
    const double largest = a.eigenValues(values, vectors, useInternal, false, 1);
    EXPECT_EQ(largest, values(n - 1, 0));
    for (int k = 0; k < n; ++k)
      EXPECT_NEAR(values(k, 0), 2. - 2. * std::cos((k + 1) * M_PI / (n + 1)), 1e-14);
  }
}

TEST(NgmMatrixAlgebra, EigenvectorsRebuildTheMatrix)
{
  for (int n : {0, 1, 2, 3, 10, 60, 130}) {
    for (int stream : {17, 18}) {
      NgmMatrix a = randomSymmetric(std::uint64_t(stream), n);
      // Repeated eigenvalues: n - 1 times 0.
      if (stream == 18)
        a.fill(1.);
      const double scale = 1. + maxAbs(a) * n;
      for (bool useInternal : {true, false}) {
        SCOPED_TRACE(testing::Message() << "n = " << n << ", internal " << useInternal);
        NgmMatrix values(false);
        NgmMatrix vectors(false);
        a.eigenValues(values, vectors, useInternal, true, 1);
        NgmMatrix diagonal(n, n, false);
        for (int k = 0; k < n; ++k) {
          diagonal.setElement(k, k, values(k, 0));
          EXPECT_TRUE(k == 0 || values(k - 1, 0) <= values(k, 0));
        }
        EXPECT_FALSE(vectors.mustBeSymmetrical());
        const NgmMatrix transposed = vectors.transpose();
        EXPECT_LT(maxDifference(vectors * diagonal * transposed, a), 1e-14 * scale);
        EXPECT_LT(maxDifferenceFromIdentity(transposed * vectors), 1e-13);
      }
    }
  }
}

TEST(NgmMatrixAlgebra, GeneralizedInverseFulfilsPenroseConditions)
{
  const NgmMatrix g = randomMatrix(19, 8, 3);
  NgmMatrix a = g * g.transpose();
  a.makeSymmetrical();
  for (bool useInternal : {true, false}) {
    NgmMatrix inverse(true);
    a.generalizedInverse(inverse, useInternal, false, 1);
    EXPECT_TRUE(inverse.isSymmetrical(0.));
    // Rounding relative to the largest element.
    EXPECT_LT(maxDifference(a * inverse * a, a), ROUNDING * maxAbs(a));
    EXPECT_LT(maxDifference(inverse * a * inverse, inverse), ROUNDING * maxAbs(inverse));
  }
}

TEST(NgmMatrixAlgebra, TellsPositiveDefiniteFromSemiDefinite)
{
  for (bool useInternal : {true, false}) {
    EXPECT_TRUE(randomPositiveDefinite(20, 6).isPositiveDefinite(true, useInternal));
    const NgmMatrix semi = matrixOf(2, 2, {1., 0., 0., 0.});
    EXPECT_FALSE(semi.isPositiveDefinite(true, useInternal));
    EXPECT_TRUE(semi.isPositiveDefinite(false, useInternal));
    EXPECT_FALSE(matrixOf(2, 2, {1., 2., 2., 1.}).isPositiveDefinite(false, useInternal));
  }
}

TEST(NgmMatrixAlgebra, PositiveDefiniteRepairFloorsEigenvaluesAndKeepsGoodMatrices)
{
  for (bool useInternal : {true, false}) {
    NgmMatrix good = randomPositiveDefinite(21, 5);
    const NgmMatrix before(good);
    EXPECT_TRUE(good.makePositiveDefinite(useInternal, false, 1e-10));
    EXPECT_TRUE(sameBits(good, before));

    // Eigenvalues 3 and -1 on (1, 1) and (1, -1): the second becomes 0.3.
    NgmMatrix bad = matrixOf(2, 2, {1., 2., 2., 1.}, true);
    EXPECT_FALSE(bad.makePositiveDefinite(useInternal, false, 0.1));
    EXPECT_LT(maxDifference(bad, matrixOf(2, 2, {1.65, 1.35, 1.35, 1.65})), 1e-14);
    EXPECT_TRUE(bad.isSymmetrical(0.));
  }
}

TEST(NgmMatrixAlgebra, PositiveDefiniteRepairCanKeepTheDiagonal)
{
  NgmMatrix a = matrixOf(3, 3, {1., 0.9, -0.9, 0.9, 1., 0.9, -0.9, 0.9, 1.}, true);
  EXPECT_TRUE(a.makePositiveDefiniteKeepDiag(false, false, 1e-10));
  for (int i = 0; i < 3; ++i)
    EXPECT_NEAR(a(i, i), 1., 1e-7);
  EXPECT_TRUE(a.isSymmetrical());
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  a.eigenValues(values, vectors, false, false, 1);
  EXPECT_GT(values(0, 0), -1e-7);

  NgmMatrix zero = matrixOf(2, 2, {0., 5., 5., -1.}, true);
  EXPECT_TRUE(zero.makePositiveDefiniteKeepDiag(false, false, 1e-10));
  EXPECT_TRUE(sameBits(zero, matrixOf(2, 2, {0., 0., 0., -1.})));
}

TEST(NgmMatrixAlgebra, NormalizingTheDiagonalGivesCorrelations)
{
  NgmMatrix a = randomPositiveDefinite(22, 6);
  const NgmMatrix covariance(a);
  a.normalizeDiagonal();
  for (int i = 0; i < 6; ++i)
    for (int j = 0; j < 6; ++j)
      EXPECT_NEAR(a(i, j), covariance(i, j) / std::sqrt(covariance(i, i) * covariance(j, j)),
                  1e-15);
  NgmMatrix scaled = matrixOf(2, 2, {2., 3., 3., 4.});
  scaled.normalizeDiagonal({4., 9.});
  EXPECT_TRUE(sameBits(scaled, matrixOf(2, 2, {8., 18., 18., 36.})));
}

TEST(NgmMatrixAlgebra, BoundsClampAndUndefinedIsNoBound)
{
  NgmMatrix a = matrixOf(2, 2, {5., -3., 1., 0.});
  a.applyBounds({UNDEFINED, 2., -1., 1.}, {4., 3., UNDEFINED, 1.5}, false);
  EXPECT_TRUE(sameBits(a, matrixOf(2, 2, {4., -1., 2., 1.})));

  // The first term needs the factor 0.5; all others follow it.
  NgmMatrix definite = matrixOf(2, 2, {4., 1., 1., 2.}, true);
  definite.applyBounds({UNDEFINED, UNDEFINED, UNDEFINED, 1.5},
                       {2., UNDEFINED, UNDEFINED, UNDEFINED}, true);
  EXPECT_LT(maxDifference(definite, matrixOf(2, 2, {2., 0.5, 0.5, 1.5})), 1e-15);
}

TEST(NgmMatrixAlgebra, BlockwiseInverseInvertsTheBorderedMatrix)
{
  for (const auto &[n, m] :
       std::initializer_list<std::pair<int, int>>{{8, 3}, {1, 1}, {5, 0}, {0, 4}}) {
    const NgmMatrix whole = randomPositiveDefinite(23, n + m);
    NgmMatrix a(n, n, true);
    NgmMatrix b(n, m, false);
    NgmMatrix c(m, m, true);
    whole.getSubMatrix(a, 0, 0);
    whole.getSubMatrix(b, 0, n);
    whole.getSubMatrix(c, n, n);
    NgmMatrix inverseA(false);
    ASSERT_EQ(a.invert(inverseA, 1), 0);
    const NgmMatrix inverse = NgmMatrix::blockwiseInverse(inverseA, b, c);
    EXPECT_TRUE(inverse.mustBeSymmetrical());
    EXPECT_LT(maxDifferenceFromIdentity(whole * inverse), ROUNDING);
  }
}

TEST(NgmMatrixAlgebra, ShimsPassTheirArguments)
{
  std::array<double, 4> x{1., 2., 3., 4.};
  std::array<double, 4> y{10., 20., 30., 40.};
  NgmMatrix::blasDaxpy(2, 2., x.data(), 2, y.data(), 1);
  EXPECT_EQ(y, (std::array<double, 4>{12., 26., 30., 40.}));
  NgmMatrix::blasDcopy(2, x.data() + 2, 1, y.data(), 2);
  EXPECT_EQ(y, (std::array<double, 4>{3., 26., 4., 40.}));
  EXPECT_EQ(NgmMatrix::blasDdot(4, x.data(), 1, y.data(), 1), 227.);
  EXPECT_EQ(NgmMatrix::blasDasum(2, x.data(), 3), 5.);
  EXPECT_EQ(NgmMatrix::blasDnrm2(2, x.data() + 2, 1), 5.);
  NgmMatrix::blasDscal(2, -1., x.data(), 1);
  NgmMatrix::blasDswap(2, x.data(), 1, x.data() + 2, 1);
  EXPECT_EQ(x, (std::array<double, 4>{3., 4., -1., -2.}));
  NgmMatrix::blasVectorElementWiseProduct(4, x.data(), y.data());
  EXPECT_EQ(y, (std::array<double, 4>{9., 104., -4., -80.}));

  std::array<float, 2> u{3.f, 4.f};
  std::array<float, 2> v{1.f, 1.f};
  NgmMatrix::blasSaxpy(2, 2.f, u.data(), 1, v.data(), 1);
  NgmMatrix::blasSscal(2, 2.f, u.data(), 1);
  EXPECT_EQ(NgmMatrix::blasSdot(2, u.data(), 1, v.data(), 1), 6.f * 7.f + 8.f * 9.f);
  NgmMatrix::blasScopy(2, u.data(), 1, v.data(), 1);
  EXPECT_EQ(NgmMatrix::blasSasum(2, v.data(), 1), 14.f);

  std::array<double, 3> squares{0., 2., 1e-300};
  NgmMatrix::vectorSqrt(3, squares.data(), squares.data());
  EXPECT_EQ(squares[0], 0.);
  EXPECT_DOUBLE_EQ(squares[1], std::sqrt(2.));
  EXPECT_DOUBLE_EQ(squares[2], 1e-150);
  std::array<float, 2> roots{4.f, 9.f};
  NgmMatrix::vectorSqrt(2, roots.data(), roots.data());
  EXPECT_EQ(roots, (std::array<float, 2>{2.f, 3.f}));

  // 2 x 2, rows 0 and 1 exchanged.
  const int pivots[] = {2, 2};
  std::array<double, 4> m{1., 2., 3., 4.};
  NgmMatrix::lapackDlaswp(true, 2, m.data(), 2, 1, 1, pivots, 1);
  EXPECT_EQ(m, (std::array<double, 4>{2., 1., 4., 3.}));
  NgmMatrix::lapackDlaswp(false, 2, m.data(), 2, 1, 1, pivots, 1);
  EXPECT_EQ(m, (std::array<double, 4>{4., 3., 2., 1.}));
}

TEST(NgmMatrixAlgebra, SequentialResultsDoNotDependOnTheProcessThreads)
{
  const NgmMatrix a = randomPositiveDefinite(24, 200);
  NgmMatrix inverses[3] = {NgmMatrix(false), NgmMatrix(false), NgmMatrix(false)};
  const int threads[] = {1, 2, 8};
  for (int i = 0; i < 3; ++i) {
    NgmNumericLibrary::setThreads(threads[i]);
    a.invert(inverses[i], 1);
  }
  NgmNumericLibrary::setThreads(1);
  EXPECT_TRUE(sameBits(inverses[0], inverses[1]));
  EXPECT_TRUE(sameBits(inverses[0], inverses[2]));
}

TEST(NgmMatrixAlgebra, VerboseOperationsLogTheirMatrices)
{
  static QStringList lines;
  lines.clear();
  const QtMessageHandler handler = qInstallMessageHandler(
      [](QtMsgType, const QMessageLogContext &, const QString &text) { lines << text; });
  NgmMatrix a = matrixOf(2, 2, {1., 2., 2., 1.}, true);
  NgmMatrix out(true);
  a.generalizedInverse(out, false, true, 1);
  a.makePositiveDefinite(false, true, 1e-10);
  qInstallMessageHandler(handler);

  QStringList headers;
  for (const QString &line : lines)
    headers << line.section('\n', 0, 0);
  EXPECT_EQ(headers, (QStringList{QStringLiteral("@@NgmMatrix::generalizedInverse: this"),
                                  QStringLiteral("@@NgmMatrix::generalizedInverse: eigen_val"),
                                  QStringLiteral("@@NgmMatrix::generalizedInverse: eigen_vect"),
                                  QStringLiteral("@@NgmMatrix::generalizedInverse: inverse"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: this"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: eig_vals"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: eig_vect"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: val_prop_mat"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: vec_prop_inv"),
                                  QStringLiteral("@@NgmMatrix::makePositiveDefinite: work_mat")}));
}

TEST(NgmMatrixAlgebra, ErrorTexts)
{
  NgmMatrix square(2, 2, false);
  NgmMatrix asymmetric = matrixOf(2, 2, {1., 2., 3., 4.});
  NgmMatrix symmetricVectors(true);
  NgmMatrix values(false);
  NgmMatrix notFinite(2, 2, true);
  notFinite.fill(std::numeric_limits<double>::quiet_NaN());
  double buffer[4] = {};
  const QVector<double> four(4, UNDEFINED);
  const auto programming = NbeError::PROGRAMMING;

  expectErrors({
      {"get all", programming, QStringLiteral("NgmMatrix::getAllElementsColumnWise: invalid size"),
       [&] { square.getAllElementsColumnWise(3, buffer); }},
      {"set all", programming, QStringLiteral("NgmMatrix::setAllElementsColumnWise: invalid size"),
       [&] { square.setAllElementsColumnWise(3, buffer); }},
      {"symmetry", programming, assertion("NgmMatrix", "Matrix is not currently symmetrical"),
       [&] { asymmetric.setMustBeSymmetrical(true); }},
      {"normalize asymmetric", programming,
       QStringLiteral("NgmMatrix::normalizeDiagonal: non symmetric matrix can not be normalized"),
       [&] { asymmetric.normalizeDiagonal(); }},
      {"normalize zero", programming,
       QStringLiteral("NgmMatrix::normalizeDiagonal: invalid diagonal term"),
       [&] { square.normalizeDiagonal(); }},
      {"normalize argument", programming,
       QStringLiteral("NgmMatrix::normalizeDiagonal: invalid argument"),
       [&] {
         square.normalizeDiagonal({1., 0.});
       }},
      {"bounds size", programming, QStringLiteral("NgmMatrix::applyBounds: invalid size"),
       [&] { square.applyBounds(four, four.mid(1), false); }},
      {"bounds symmetry", programming,
       QStringLiteral("NgmMatrix::applyBounds: non symmetrical definite positive not allowed"),
       [&] { square.applyBounds(four, four, true); }},
      {"symmetric vectors", programming,
       QStringLiteral("The eigen vectors must not be forced to be symmetrical"),
       [&] { square.eigenValues(values, symmetricVectors, false, true, 1); }},
      {"no eigenvalues", programming,
       QStringLiteral("Cannot compute eigen values for the given matrix:\n") + notFinite.debug(2),
       [&] { notFinite.isPositiveDefinite(true, true); }},
      {"not square", programming, assertion("NgmMatrix", "isSquared()"),
       [&] { NgmMatrix(2, 3, false).invert(values, 1); }},
  });
}
