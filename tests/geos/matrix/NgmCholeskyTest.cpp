#include "geos/matrix/NgmCholesky.h"

#include "MatrixTestSupport.h"
#include "basic/base/NbbGlobal.h"

#include <limits>

using namespace testsupport;

namespace {

/// Pivoted factorization of a given matrix.
QList<int> factorize(const NgmMatrix &c, NgmMatrix &L, const QList<int> &exact, double eta,
                     int maxPivots)
{
  return NgmCholesky::computeIncompleteCholesky(
      L, c.getNRows(), exact, eta, maxPivots, {}, [&c](int i) { return c(i, i); },
      [&c](int j, double *column) { c.extractColumn(j, column); }, false, {});
}

double residualTrace(const NgmMatrix &c, const NgmMatrix &L)
{
  const NgmMatrix rest = c - L * L.transpose();
  double trace = 0.;
  for (int i = 0; i < rest.getNRows(); ++i)
    trace += rest(i, i);
  return trace;
}

}  // namespace

TEST(NgmCholesky, FactorAndInversesOfAKnownMatrix)
{
  NgmCholesky cholesky(matrixOf(3, 3, {4., 12., -16., 12., 37., -43., -16., -43., 98.}, true));
  NgmMatrix out(false);
  EXPECT_FALSE(cholesky.getInvert(out));
  ASSERT_TRUE(cholesky.getCholeskyFactor(out));
  EXPECT_LT(maxDifference(out, matrixOf(3, 3, {2., 0., 0., 6., 1., 0., -8., 5., 3.})), 1e-14);
  EXPECT_FALSE(out.mustBeSymmetrical());
  EXPECT_FALSE(cholesky.getInvert(out));
  ASSERT_TRUE(cholesky.getCholeskyInvert(out));
  ASSERT_TRUE(cholesky.getInvert(out));
  EXPECT_TRUE(out.mustBeSymmetrical());
  EXPECT_LT(maxDifferenceFromIdentity(cholesky.getMatrix() * out), 1e-12);
}

TEST(NgmCholesky, RandomMatricesAreRebuiltAndInverted)
{
  for (int n : {1, 5, 40, 150}) {
    const NgmMatrix a = randomPositiveDefinite(31, n);
    NgmCholesky cholesky(a);
    NgmMatrix L(false);
    NgmMatrix inverse(false);
    ASSERT_TRUE(cholesky.getCholeskyFactor(L));
    for (int j = 1; j < n; ++j)
      ASSERT_EQ(L(0, j), 0.);
    EXPECT_LT(maxDifference(L * L.transpose(), a), 1e-15 * maxAbs(a) * n);
    ASSERT_TRUE(cholesky.getCholeskyInvert(inverse));
    EXPECT_LT(maxDifferenceFromIdentity(inverse * L), 1e-13);
    ASSERT_TRUE(cholesky.getInvert(inverse));
    EXPECT_LT(maxDifferenceFromIdentity(inverse * a), 1e-12);
  }
}

TEST(NgmCholesky, RefusesWhatIsNotPositiveDefiniteEveryTime)
{
  NgmCholesky cholesky(matrixOf(2, 2, {1., 2., 2., 1.}));
  NgmMatrix out(false);
  for (int round = 0; round < 2; ++round) {
    EXPECT_FALSE(cholesky.getCholeskyFactor(out));
    EXPECT_FALSE(cholesky.getCholeskyInvert(out));
    EXPECT_FALSE(cholesky.getInvert(out));
  }
  EXPECT_FALSE(cholesky.getIncompleteCholeskyFactor(out));
  EXPECT_TRUE(sameBits(out, NgmMatrix(false)));
}

TEST(NgmCholesky, IncompleteFactorCarriedToTheEndRebuildsTheMatrix)
{
  const NgmMatrix g = randomMatrix(32, 12, 4);
  NgmMatrix a = g * g.transpose();
  a.makeSymmetrical();
  NgmMatrix L(false);
  ASSERT_TRUE(NgmCholesky(a).getIncompleteCholeskyFactor(L));
  EXPECT_EQ(L.getNColumns(), 4);
  EXPECT_LT(maxDifference(L * L.transpose(), a), 1e-13 * maxAbs(a));
}

TEST(NgmCholesky, PivotsAreTheLargestResidualsAfterTheExactOnes)
{
  NgmMatrix c(5, 5, true);
  const double variances[] = {1., 5., 3., 4., 2.};
  for (int i = 0; i < 5; ++i)
    c.setElement(i, i, variances[i]);
  NgmMatrix L(false);
  EXPECT_EQ(factorize(c, L, {}, 0., 10), (QList<int>{1, 3, 2, 4, 0}));
  EXPECT_EQ(factorize(c, L, {0, 4}, 0., 2), (QList<int>{0, 4, 1, 3}));
  // Residuals 15, 10, 6, 3, 1, 0: the first at most 0.4 * 15 comes after two pivots.
  EXPECT_EQ(factorize(c, L, {}, 0.4, 10), (QList<int>{1, 3}));
  EXPECT_EQ(L.getNRows(), 5);
  EXPECT_EQ(L.getNColumns(), 2);
  EXPECT_EQ(factorize(c, L, {}, NbbGlobal::D_FFFF, 3).size(), 3);
  const int unlimited = std::numeric_limits<int>::max();
  EXPECT_EQ(factorize(c, L, {0, 4}, 0., unlimited), (QList<int>{0, 4, 1, 3, 2}));
}

TEST(NgmCholesky, RowsOfPivotsAreExactAndTheStoppingRuleHolds)
{
  NgmMatrix c(60, 60, true);
  for (int i = 0; i < 60; ++i)
    for (int j = 0; j <= i; ++j)
      c.setElement(i, j, std::exp(-std::pow((i - j) / 15., 2)));
  NgmMatrix L(false);
  const QList<int> pivots = factorize(c, L, {7, 7, 30}, 1e-3, 40);
  // The second 7 is explained by the first.
  EXPECT_EQ(pivots.mid(0, 2), (QList<int>{7, 30}));
  EXPECT_EQ(pivots.count(7), 1);
  EXPECT_LT(pivots.size(), 20);
  EXPECT_LE(residualTrace(c, L), 1e-3 * 60.);
  const NgmMatrix rest = c - L * L.transpose();
  for (int pivot : pivots)
    for (int j = 0; j < 60; ++j)
      EXPECT_NEAR(rest(pivot, j), 0., 1e-13);

  NgmMatrix longer(false);
  factorize(c, longer, {7, 7, 30}, 1e-3 / 2., 40);
  EXPECT_LT(residualTrace(c, longer), residualTrace(c, L));
}

TEST(NgmCholesky, ErrorTexts)
{
  const NgmMatrix c = randomPositiveDefinite(33, 2);
  NgmMatrix L(false);
  expectErrors({
      {"exact", NbeError::PROGRAMMING, QStringLiteral("Incorrect number of Exact Pivots (> nech)."),
       [&] {
         factorize(c, L, {0, 1, 0}, 0., 1);
       }},
      {"none", NbeError::PROGRAMMING, QStringLiteral("Number max of pivots should not be zero."),
       [&] { factorize(c, L, {}, 0., 0); }},
  });
}
