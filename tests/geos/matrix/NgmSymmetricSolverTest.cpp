#include "matrix/private/NgmSymmetricSolver.h"

#include "MatrixTestSupport.h"

#include <limits>

#include <mkl.h>

using namespace testsupport;

namespace {

const double EPSILON = std::numeric_limits<double>::epsilon();

NgmMatrix randomIndefinite(std::uint64_t stream, int n)
{
  NgmMatrix matrix = randomSymmetric(stream, n);
  // Small diagonals ask for pivots of two rows.
  for (int i = 0; i < n; i += 2)
    matrix.setElement(i, i, 1e-3 * matrix(i, i));
  return matrix;
}

/// Exponential covariances of random points and one condition.
NgmMatrix krigingMatrix(std::uint64_t stream, int n, double sill)
{
  NgmMatrix matrix(n, n, true);
  for (int i = 0; i < n - 1; ++i) {
    matrix.setElement(i, n - 1, 1.);
    for (int j = 0; j <= i; ++j)
      matrix.setElement(
          i, j,
          sill * std::exp(-std::hypot(normal(stream, 2 * i) - normal(stream, 2 * j),
                                      normal(stream, 2 * i + 1) - normal(stream, 2 * j + 1))));
  }
  return matrix;
}

/// A system in the arrays of the solver; what it must not read is not a number.
class System
{
public:
  System(const NgmMatrix &a, const NgmMatrix &b)
      : _n(a.getNRows()),
        _rows(NgmSymmetricSolver::paddedRows(_n)),
        _a(_rows, _n, false),
        _x(_rows, b.getNColumns(), false),
        _pivots(std::size_t(_n), -1)
  {
    _a.fill(std::numeric_limits<double>::quiet_NaN());
    _x.fill(std::numeric_limits<double>::quiet_NaN());
    NgmSymmetricSolver::copyUpper(_n, a.constElements(), _n, _a.elements(), _rows);
    NgmSymmetricSolver::copyColumns(_n, b.getNColumns(), b.constElements(), _n, _x.elements(),
                                    _rows);
    info = NgmSymmetricSolver::solve(_n, _a.elements(), _pivots.data(), b.getNColumns(),
                                     _x.elements());
  }

  double factor(int i, int j) const { return _a(i, j); }
  double x(int i, int t) const { return _x(i, t); }
  const std::vector<int> &pivots() const { return _pivots; }

  int info = 0;

private:
  int _n;
  int _rows;
  NgmMatrix _a;
  NgmMatrix _x;
  std::vector<int> _pivots;
};

/// Pivots, factor and return value are those of LAPACK, and the solution is that of a matrix which
/// differs from `a` by rounding.
void expectAsLapack(const NgmMatrix &a, int nRhs)
{
  const int n = a.getNRows();
  const NgmMatrix b = randomMatrix(999, n, nRhs);
  const System system(a, b);

  NgmMatrix factor(a);
  std::vector<int> pivots(static_cast<std::size_t>(n));
  EXPECT_EQ(system.info,
            LAPACKE_dsytrf(LAPACK_COL_MAJOR, 'U', n, factor.elements(), n, pivots.data()));
  ASSERT_EQ(system.pivots(), pivots);
  // Both factors carry errors of the order of n u |U| |D| |U'|, magnified by what was divided out;
  // on these matrices it is small.
  const double tolerance = 1e4 * n * EPSILON * maxAbs(factor);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i <= j; ++i)
      ASSERT_NEAR(system.factor(i, j), factor(i, j), tolerance) << i << ' ' << j;
  if (system.info != 0)
    return;

  // Higham (2002), Theorem 11.3: |b - A x| <= p(n) u (|A| + |U| |D| |U'|) |x|
  for (int t = 0; t < nRhs; ++t) {
    double largest = 0.;
    for (int i = 0; i < n; ++i)
      largest = std::max(largest, std::abs(system.x(i, t)));
    for (int i = 0; i < n; ++i) {
      double residual = b(i, t);
      for (int j = 0; j < n; ++j)
        residual -= a(i, j) * system.x(j, t);
      ASSERT_LE(std::abs(residual), 10. * n * EPSILON * n * maxAbs(a) * largest);
    }
  }
}

}  // namespace

TEST(NgmSymmetricSolver, FactorsAndSolvesLikeLapack)
{
  for (const int n : {1, 2, 3, 4, 5, 8, 16, 17, 31, 33, 34, 63, 64, 100, 127, 128}) {
    for (std::uint64_t seed = 0; seed < 5; ++seed) {
      SCOPED_TRACE(testing::Message() << "n = " << n << ", seed " << seed);
      const std::uint64_t stream = 7000 + 10 * std::uint64_t(n) + seed;
      const int nRhs = 1 + int(seed) % 3;
      expectAsLapack(randomPositiveDefinite(stream, n), nRhs);
      expectAsLapack(randomSymmetric(stream, n), nRhs);
      expectAsLapack(randomIndefinite(stream, n), nRhs);
      // With a small sill the condition and a sample make a pivot of two rows.
      for (const double sill : {1., 1e-3, 1e4})
        if (n > 1)
          expectAsLapack(krigingMatrix(stream, n, sill), nRhs);
    }
  }
}

TEST(NgmSymmetricSolver, TellsTheFirstNullPivotLikeLapack)
{
  expectAsLapack(NgmMatrix(6, 6, true), 1);

  NgmMatrix nullEquation = randomIndefinite(7100, 9);
  for (int i = 0; i < 9; ++i)
    nullEquation.setElement(4, i, 0.);
  expectAsLapack(nullEquation, 2);

  // Twice the same sample, in numbers that stay exact.
  const NgmMatrix twice =
      matrixOf(4, 4, {1., .5, .5, 1., .5, 1., 1., 1., .5, 1., 1., 1., 1., 1., 1., 0.}, true);
  EXPECT_GT(System(twice, NgmMatrix(4, 1, false)).info, 0);
  expectAsLapack(twice, 1);
}

TEST(NgmSymmetricSolver, TellsUndefinedElements)
{
  for (const int n : {4, 17, 34}) {
    for (const int row : {0, n / 2, n - 1}) {
      for (const int column : {0, n / 2, n - 1}) {
        NgmMatrix a = krigingMatrix(7200, n, 1.);
        a.setElement(row, column, std::numeric_limits<double>::quiet_NaN());
        EXPECT_GT(System(a, NgmMatrix(n, 1, false)).info, 0) << n << ' ' << row << ' ' << column;
      }
    }
  }
}

TEST(NgmSymmetricSolver, TakesTheFirstOfEqualMagnitudes)
{
  // Every element beside the diagonal is as large, so the pivots tell which one was taken.
  for (const int n : {3, 6, 13}) {
    NgmMatrix a(n, n, true);
    for (int j = 0; j < n; ++j)
      for (int i = 0; i < j; ++i)
        a.setElement(i, j, (i + j) % 3 == 0 ? -1. : 1.);
    const System system(a, NgmMatrix(n, 1, false));
    EXPECT_EQ(system.pivots()[std::size_t(n - 1)], -1);
  }
}
