#include "geos/matrix/NgmMatrix.h"

#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcSortNumericalArray.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeProgrammingError.h"
#include "geos/matrix/NgmNumericLibrary.h"
#include "matrix/private/NgmSymmetricEigen.h"
#include "matrix/private/NgmSymmetricSolver.h"

#include <QLoggingCategory>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>

#include <mkl.h>

Q_LOGGING_CATEGORY(matrixLog, "orvenal.geos.matrix", QtInfoMsg)

namespace {

constexpr double SMALLEST_DIAGONAL = 1e-30;
constexpr double SMALLEST_RELATIVE_EIGENVALUE = 1e-15;
constexpr int MAX_REPAIR_ROUNDS = 1000;

/// The source that messages name.
const QString SOURCE = QStringLiteral("matrix\\NgmMatrix");

/// Work memory of the calling thread; it grows and is reused.
double *workspace(std::size_t n)
{
  thread_local std::vector<double, NgmAlignedAllocator<double>> memory;
  if (memory.size() < n)
    memory.resize(n);
  return memory.data();
}

/// The same for pivots.
int *pivotSpace(std::size_t n)
{
  thread_local std::vector<int> memory;
  if (memory.size() < n)
    memory.resize(n);
  return memory.data();
}

int workSize(double optimal, int n)
{
  return std::max({1, n, int(optimal)});
}

int invertSymmetrical(int n, double *a, int *pivots)
{
  double optimal = 0.;
  LAPACKE_dsytrf_work(LAPACK_COL_MAJOR, 'U', n, a, n, pivots, &optimal, -1);
  const int size = workSize(optimal, n);
  double *work = workspace(std::size_t(size));
  const int info = LAPACKE_dsytrf_work(LAPACK_COL_MAJOR, 'U', n, a, n, pivots, work, size);
  if (info != 0)
    return info;
  // The blocked twin of dsytri.
  LAPACKE_dsytri2_work(LAPACK_COL_MAJOR, 'U', n, a, n, pivots, &optimal, -1);
  const int inverseSize = workSize(optimal, n);
  return LAPACKE_dsytri2_work(LAPACK_COL_MAJOR, 'U', n, a, n, pivots,
                              workspace(std::size_t(inverseSize)), inverseSize);
}

int invertGeneral(int n, double *a, int *pivots)
{
  const int info = LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, n, n, a, n, pivots);
  if (info != 0)
    return info;
  double optimal = 0.;
  LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, a, n, pivots, &optimal, -1);
  const int size = workSize(optimal, n);
  return LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, a, n, pivots, workspace(std::size_t(size)), size);
}

/// The same as the numeric library's routine, faster.
int solveSmallSymmetrical(int n, int nRhs, double *a, int *pivots, double *rhs)
{
  const int rows = NgmSymmetricSolver::paddedRows(n);
  double *padded = workspace(std::size_t(rows) * std::size_t(n + nRhs));
  double *x = padded + std::size_t(rows) * std::size_t(n);
  NgmSymmetricSolver::copyUpper(n, a, n, padded, rows);
  NgmSymmetricSolver::copyColumns(n, nRhs, rhs, n, x, rows);
  const int info = NgmSymmetricSolver::solve(n, padded, pivots, nRhs, x);
  NgmSymmetricSolver::copyUpper(n, padded, rows, a, n);
  if (info == 0)
    NgmSymmetricSolver::copyColumns(n, nRhs, x, rows, rhs, n);
  return info;
}

int solveSymmetrical(int n, int nRhs, double *a, int *pivots, double *rhs)
{
  if (n <= NgmSymmetricSolver::MOST_ROWS)
    return solveSmallSymmetrical(n, nRhs, a, pivots, rhs);
  const int size = 64 * n;  // columns of the largest block, instead of a query per call
  return LAPACKE_dsysv_work(LAPACK_COL_MAJOR, 'U', n, nRhs, a, n, pivots, rhs, n,
                            workspace(std::size_t(size)), size);
}

/// The single parallel call that may run in the process.
std::atomic_flag parallelCallRuns = ATOMIC_FLAG_INIT;

/// Thread count of the calling thread before the parallel call.
thread_local int threadsBeforeParallelCall = 0;

void logMatrix(const char *header, const NgmMatrix &matrix)
{
  qCInfo(matrixLog, "%s%s", header, qUtf8Printable(matrix.toString(-1, 20, QString())));
}

/// The value that a diagonal term takes within its bounds.
double boundDiagonal(double value, double lower, double upper)
{
  if (lower == NbbGlobal::D_FFFF)
    return upper == NbbGlobal::D_FFFF ? value : std::min(value, upper);
  if (upper == NbbGlobal::D_FFFF)
    return std::max(lower, value);
  return std::max(lower, std::min(value, upper));
}

}  // namespace

// The name of these two is that of the library whose part the numeric library's own threads play.

void NgmMatrix::_initPlasma(int nThreads)
{
  if (parallelCallRuns.test_and_set(std::memory_order_acquire))
    throw NbeProgrammingError(QStringLiteral("NgmMatrix::_initPlasma(): Can't initialize PLASMA"));
  threadsBeforeParallelCall = mkl_set_num_threads_local(std::max(nThreads, 0));
}

void NgmMatrix::_finalizePlasma()
{
  if (!parallelCallRuns.test_and_set(std::memory_order_acquire)) {
    parallelCallRuns.clear(std::memory_order_release);
    throw NbeProgrammingError(
        QStringLiteral("NgmMatrix::_finalizePlasma(): Can't finalize PLASMA"));
  }
  mkl_set_num_threads_local(threadsBeforeParallelCall);
  parallelCallRuns.clear(std::memory_order_release);
}

template <class Call>
int NgmMatrix::_runAlgebra(int nThreads, const Call &call) const
{
  if (_runsParallel(nThreads)) {
    _initPlasma(nThreads);
    const int info = call(true);
    _finalizePlasma();
    return info;
  }
  // One thread: the bits of the result depend on the number.
  const NgmNumericLibrary::ThreadCount oneThread(1);
  return call(false);
}

int NgmMatrix::invertPositiveDefinite(NgmMatrix &out, int nThreads) const
{
  _requireSquared();
  out = NgmMatrix(*this);
  const int n = _rowCount;
  if (n == 0)
    return 0;
  double *a = out.elements();
  const int info = _runAlgebra(nThreads, [n, a](bool) {
    const int failed = LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'U', n, a, n);
    return failed != 0 ? failed : LAPACKE_dpotri_work(LAPACK_COL_MAJOR, 'U', n, a, n);
  });
  if (info == 0)
    out._mirrorUpperToLower();
  return info;
}

int NgmMatrix::invert(NgmMatrix &out, int nThreads) const
{
  _requireSquared();
  const bool symmetrical = _mustBeSymmetrical && !_runsParallel(nThreads);
  out = NgmMatrix(*this);
  const int n = _rowCount;
  if (n == 0)
    return 0;
  double *a = out.elements();
  int *pivots = pivotSpace(std::size_t(n));
  const int info = _runAlgebra(nThreads, [=](bool) {
    return symmetrical ? invertSymmetrical(n, a, pivots) : invertGeneral(n, a, pivots);
  });
  if (info == 0 && symmetrical)
    out._mirrorUpperToLower();
  return info;
}

int NgmMatrix::resolveEquat(NgmMatrix &rhs, int *pivots, int nThreads)
{
  _requireSquared();
  if (rhs._rowCount != _rowCount)
    NBE_FAIL_AT(SOURCE, QStringLiteral("rhs.getNRows() == getNRows()"));
  const int n = _rowCount;
  const int nRhs = rhs._columnCount;
  if (n == 0)
    return 0;
  if (!pivots)
    pivots = pivotSpace(std::size_t(n));
  double *a = elements();
  double *x = rhs.elements();
  return _runAlgebra(nThreads, [=](bool parallel) {
    if (_mustBeSymmetrical && !parallel)
      return solveSymmetrical(n, nRhs, a, pivots, x);
    return LAPACKE_dgesv_work(LAPACK_COL_MAJOR, n, nRhs, a, n, pivots, x, n);
  });
}

// Eigenvalues.

bool NgmMatrix::_eigenValuesEx(NgmMatrix &values, NgmMatrix &vectors, bool withVectors,
                               int nThreads) const
{
  const NgmMatrix source(*this);
  const int n = source._rowCount;
  const char job = withVectors ? 'V' : 'N';
  values.resize(n, 1, false);
  // The eigenvectors of a symmetrical matrix are none: the elements only.
  vectors.resize(n, n, false);
  vectors.copy(source);
  if (n == 0)
    return false;
  double *a = vectors.elements();
  double *w = values.elements();
  const int info = _runAlgebra(nThreads, [=](bool) {
    double optimal = 0.;
    LAPACKE_dsyev_work(LAPACK_COL_MAJOR, job, 'U', n, a, n, w, &optimal, -1);
    const int size = workSize(optimal, 3 * n);
    return LAPACKE_dsyev_work(LAPACK_COL_MAJOR, job, 'U', n, a, n, w, workspace(std::size_t(size)),
                              size);
  });
  return info != 0;
}

bool NgmMatrix::_eigenValuesLoc(NgmMatrix &values, NgmMatrix &vectors, bool withVectors) const
{
  const int n = _rowCount;
  NgmMatrix reduced(*this);
  reduced._mirrorUpperToLower();
  values.resize(n, 1, false);
  if (withVectors)
    vectors.resize(n, n, false);
  std::vector<double> work(std::size_t(n), 0.);
  if (!NgmSymmetricEigen::decompose(n, reduced.elements(), values.elements(), work.data(),
                                    withVectors ? vectors.elements() : nullptr))
    return true;
  _sortEigenValues(values, withVectors ? &vectors : nullptr);
  return false;
}

void NgmMatrix::_sortEigenValues(NgmMatrix &values, NgmMatrix *vectors)
{
  const int n = values._rowCount;
  const NgmMatrix unsorted(values);
  const NbcSortNumericalArray sorted(unsorted.constElements(), n,
                                     NbcSortNumericalArray::INCREASING_STABLE);
  for (int k = 0; k < n; ++k)
    values.setElement(k, 0, unsorted(int(sorted.getRank(k)), 0));
  if (!vectors)
    return;
  const NgmMatrix unsortedVectors(*vectors);
  for (int k = 0; k < n; ++k)
    unsortedVectors.extractColumn(int(sorted.getRank(k)),
                                  vectors->elements() + vectors->_index(0, k));
}

double NgmMatrix::eigenValues(NgmMatrix &values, NgmMatrix &vectors, bool useInternal,
                              bool withVectors, int nThreads) const
{
  if (withVectors && vectors._mustBeSymmetrical)
    throw NbeProgrammingError(
        QStringLiteral("The eigen vectors must not be forced to be symmetrical"));
  _requireSquared();
  const bool failed = useInternal ? _eigenValuesLoc(values, vectors, withVectors)
                                  : _eigenValuesEx(values, vectors, withVectors, nThreads);
  if (failed)
    throw NbeProgrammingError(
        QStringLiteral("Cannot compute eigen values for the given matrix:\n%1").arg(debug(2)));
  return _rowCount > 0 ? values(_rowCount - 1, 0) : 0.;
}

void NgmMatrix::generalizedInverse(NgmMatrix &out, bool useInternal, bool verbose,
                                   int nThreads) const
{
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  const double largest = eigenValues(values, vectors, useInternal, true, nThreads);
  const NgmMatrix source(*this);
  const int n = _rowCount;

  NgmMatrix scaled(vectors);
  double *column = scaled.elements();
  for (int k = 0; k < n; ++k, column += n) {
    const double value = values(k, 0);
    const bool kept = std::abs(value) > SMALLEST_RELATIVE_EIGENVALUE * largest;
    for (int i = 0; i < n; ++i)
      column[i] = kept ? column[i] / value : 0.;
  }
  out.resize(n, n, false);
  blasDgemm('N', 'T', n, n, n, 1., scaled.constElements(), std::max(1, n), vectors.constElements(),
            std::max(1, n), 0., out.elements(), std::max(1, n));
  if (out._mustBeSymmetrical)
    out._mirrorUpperToLower();

  if (verbose) {
    logMatrix("@@NgmMatrix::generalizedInverse: this\n", source);
    logMatrix("@@NgmMatrix::generalizedInverse: eigen_val\n", values);
    logMatrix("@@NgmMatrix::generalizedInverse: eigen_vect\n", vectors);
    logMatrix("@@NgmMatrix::generalizedInverse: inverse\n", out);
  }
}

bool NgmMatrix::isPositiveDefinite(bool strict, bool useInternal) const
{
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  eigenValues(values, vectors, useInternal, false, 1);
  const double *w = values.constElements();
  return std::all_of(w, w + values.getNElements(),
                     [strict](double value) { return strict ? value > 0. : value >= 0.; });
}

bool NgmMatrix::makePositiveDefinite(bool useInternal, bool verbose, double eps)
{
  NgmMatrix values(false);
  NgmMatrix vectors(false);
  const double threshold = eigenValues(values, vectors, useInternal, true, 1) * eps;
  if (verbose) {
    logMatrix("@@NgmMatrix::makePositiveDefinite: this\n", *this);
    logMatrix("@@NgmMatrix::makePositiveDefinite: eig_vals\n", values);
    logMatrix("@@NgmMatrix::makePositiveDefinite: eig_vect\n", vectors);
  }

  bool wasPositiveDefinite = true;
  NgmMatrix floored(_rowCount, _rowCount, true);
  for (int k = 0; k < _rowCount; ++k) {
    const bool low = values(k, 0) <= threshold;
    floored.setElement(k, k, low ? threshold : values(k, 0));
    wasPositiveDefinite = wasPositiveDefinite && !low;
  }
  if (wasPositiveDefinite)
    return true;

  NgmMatrix inverse(false);
  if (vectors.invert(inverse, 1) != 0)
    throw NbeProgrammingError(
        QStringLiteral("NgmMatrix::makePositiveDefinite: unable to invert eigen vectors matrix"));
  NgmMatrix work(false);
  makeProduct(vectors, floored, work);
  makeProduct(work, inverse, *this);
  double *a = elements();
  for (int j = 0; j < _columnCount; ++j)
    for (int i = 0; i < j; ++i)
      a[_index(i, j)] = a[_index(j, i)];
  if (verbose) {
    logMatrix("@@NgmMatrix::makePositiveDefinite: val_prop_mat\n", floored);
    logMatrix("@@NgmMatrix::makePositiveDefinite: vec_prop_inv\n", inverse);
    logMatrix("@@NgmMatrix::makePositiveDefinite: work_mat\n", work);
  }
  return false;
}

bool NgmMatrix::makePositiveDefiniteKeepDiag(bool useInternal, bool verbose, double eps)
{
  _requireSquared();
  std::vector<double> diagonal;
  double largest = 0.;
  for (int i = 0; i < _rowCount; ++i) {
    diagonal.push_back(getElement(i, i));
    largest = std::max(largest, diagonal.back());
  }
  const double tolerance = largest * 1e-07;
  for (int i = 0; i < _rowCount; ++i) {
    for (int j = 0; j < _rowCount && diagonal[i] <= tolerance; ++j) {
      if (j == i)
        continue;
      setElement(i, j, 0.);
      setElement(j, i, 0.);
    }
  }
  if (largest <= 0.)
    return true;

  for (int round = 0; round < MAX_REPAIR_ROUNDS; ++round) {
    if (makePositiveDefinite(useInternal, verbose, eps))
      return true;
    double difference = 0.;
    for (int i = 0; i < _rowCount; ++i)
      difference = std::max(difference, std::abs(diagonal[i] - getElement(i, i)));
    if (difference < tolerance)
      return true;
    for (int i = 0; i < _rowCount; ++i)
      setElement(i, i, diagonal[i]);
  }
  return false;
}

// Scaling and bounds.

void NgmMatrix::normalizeDiagonal(const QVector<double> &w)
{
  if (!isSquared() || (!_mustBeSymmetrical && !isSymmetrical()))
    throw NbeProgrammingError(
        QStringLiteral("NgmMatrix::normalizeDiagonal: non symmetric matrix can not be normalized"));
  QVector<double> weights = w;
  if (weights.isEmpty()) {
    for (int i = 0; i < _rowCount; ++i) {
      if (getElement(i, i) <= SMALLEST_DIAGONAL)
        throw NbeProgrammingError(
            QStringLiteral("NgmMatrix::normalizeDiagonal: invalid diagonal term"));
      weights.append(1. / getElement(i, i));
    }
  }
  const auto isInvalid = [](double weight) { return weight <= SMALLEST_DIAGONAL; };
  if (weights.size() != _rowCount || std::any_of(weights.cbegin(), weights.cend(), isInvalid))
    throw NbeProgrammingError(QStringLiteral("NgmMatrix::normalizeDiagonal: invalid argument"));

  double *a = elements();
  for (int j = 0; j < _rowCount; ++j) {
    const double scale = std::sqrt(weights.at(j));
    a[_index(j, j)] *= weights.at(j);
    for (int i = 0; i < j; ++i) {
      const double value = a[_index(i, j)] * std::sqrt(weights.at(i)) * scale;
      a[_index(i, j)] = value;
      a[_index(j, i)] = value;
    }
  }
}

void NgmMatrix::_boundElements(const QVector<double> &lower, const QVector<double> &upper)
{
  double *a = elements();
  for (int i = 0; i < lower.size(); ++i) {
    if (upper.at(i) != NbbGlobal::D_FFFF && a[i] > upper.at(i))
      a[i] = upper.at(i);
    if (lower.at(i) != NbbGlobal::D_FFFF && a[i] < lower.at(i))
      a[i] = lower.at(i);
  }
}

void NgmMatrix::applyBounds(const QVector<double> &lower, const QVector<double> &upper,
                            bool keepPositiveDefinite)
{
  if (lower.size() != getNElements() || upper.size() != getNElements())
    throw NbeProgrammingError(QStringLiteral("NgmMatrix::applyBounds: invalid size"));
  if (!keepPositiveDefinite) {
    _boundElements(lower, upper);
    return;
  }
  if (!_mustBeSymmetrical)
    throw NbeProgrammingError(
        QStringLiteral("NgmMatrix::applyBounds: non symmetrical definite positive not allowed"));
  _requireSquared();

  double factor = 1.;
  for (int i = 0; i < _rowCount; ++i) {
    const double value = getElement(i, i);
    const int index = int(_index(i, i));
    const double bounded = boundDiagonal(value, lower.at(index), upper.at(index));
    if (std::abs(value) > SMALLEST_DIAGONAL && bounded != value)
      factor = std::min(factor, bounded / value);
  }
  normalizeDiagonal(QVector<double>(_rowCount, factor));
  _boundElements(lower, upper);
  makePositiveDefinite(false, false, 1e-15);
}

NgmMatrix NgmMatrix::blockwiseInverse(const NgmMatrix &inverseA, const NgmMatrix &b,
                                      const NgmMatrix &c)
{
  const int n = inverseA._rowCount;
  const int m = c._rowCount;
  if (!inverseA.isSquared() || !c.isSquared() || b._rowCount != n || b._columnCount != m)
    NBE_FAIL_AT(SOURCE, QStringLiteral("shapes of the blocks agree"));
  const int ldn = std::max(1, n);
  const int ldm = std::max(1, m);

  // X = -inverse(A) B, S = C + B'X, Y = X inverse(S)
  NgmMatrix x(n, m, false);
  NgmMatrix y(n, m, false);
  NgmMatrix s(m, m, true);
  s.copy(c);
  blasDgemm('N', 'N', n, m, n, -1., inverseA.constElements(), ldn, b.constElements(), ldn, 0.,
            x.elements(), ldn);
  blasDgemm('T', 'N', m, m, n, 1., b.constElements(), ldn, x.constElements(), ldn, 1., s.elements(),
            ldm);
  NgmMatrix inverseS(true);
  if (s.invert(inverseS, 1) != 0)
    throw NbeProgrammingError(
        QStringLiteral("NgmMatrix::blockwiseInverse: the bordered matrix is singular"));
  blasDgemm('N', 'N', n, m, m, 1., x.constElements(), ldn, inverseS.constElements(), ldm, 0.,
            y.elements(), ldn);
  NgmMatrix topLeft(inverseA);
  blasDgemm('N', 'T', n, n, m, 1., y.constElements(), ldn, x.constElements(), ldn, 1.,
            topLeft.elements(), ldn);

  NgmMatrix inverse(n + m, n + m, true);
  inverse.setSubMatrix(topLeft, 0, 0);
  inverse.setSubMatrix(y, 0, n);
  inverse.setSubMatrix(inverseS, n, n);
  inverse._mirrorUpperToLower();
  return inverse;
}

// Plain arrays.

void NgmMatrix::blasDcopy(int n, const double *x, int incx, double *y, int incy)
{
  cblas_dcopy(n, x, incx, y, incy);
}

void NgmMatrix::blasScopy(int n, const float *x, int incx, float *y, int incy)
{
  cblas_scopy(n, x, incx, y, incy);
}

void NgmMatrix::blasDaxpy(int n, double alpha, const double *x, int incx, double *y, int incy)
{
  cblas_daxpy(n, alpha, x, incx, y, incy);
}

void NgmMatrix::blasSaxpy(int n, float alpha, const float *x, int incx, float *y, int incy)
{
  cblas_saxpy(n, alpha, x, incx, y, incy);
}

void NgmMatrix::blasDscal(int n, double alpha, double *x, int incx)
{
  cblas_dscal(n, alpha, x, incx);
}

void NgmMatrix::blasSscal(int n, float alpha, float *x, int incx)
{
  cblas_sscal(n, alpha, x, incx);
}

double NgmMatrix::blasDasum(int n, const double *x, int incx)
{
  return cblas_dasum(n, x, incx);
}

float NgmMatrix::blasSasum(int n, const float *x, int incx)
{
  return cblas_sasum(n, x, incx);
}

double NgmMatrix::blasDnrm2(int n, const double *x, int incx)
{
  return cblas_dnrm2(n, x, incx);
}

void NgmMatrix::blasDgemm(char transA, char transB, int m, int n, int k, double alpha,
                          const double *a, int lda, const double *b, int ldb, double beta,
                          double *c, int ldc)
{
  dgemm(&transA, &transB, &m, &n, &k, &alpha, a, &lda, b, &ldb, &beta, c, &ldc);
}

void NgmMatrix::blasDswap(int n, double *x, int incx, double *y, int incy)
{
  cblas_dswap(n, x, incx, y, incy);
}

double NgmMatrix::blasDdot(int n, const double *x, int incx, const double *y, int incy)
{
  return cblas_ddot(n, x, incx, y, incy);
}

float NgmMatrix::blasSdot(int n, const float *x, int incx, const float *y, int incy)
{
  return cblas_sdot(n, x, incx, y, incy);
}

void NgmMatrix::blasVectorElementWiseProduct(int n, const double *x, double *y)
{
  // dsbmv would need a second vector: it clears y before it reads it.
  for (int i = 0; i < n; ++i)
    y[i] *= x[i];
}

void NgmMatrix::vectorSqrt(int n, const double *in, double *out)
{
  vdSqrt(n, in, out);
}

void NgmMatrix::vectorSqrt(int n, const float *in, float *out)
{
  vsSqrt(n, in, out);
}

void NgmMatrix::lapackDlaswp(bool columnMajor, int n, double *a, int lda, int k1, int k2,
                             const int *pivots, int incx)
{
  LAPACKE_dlaswp_work(columnMajor ? LAPACK_COL_MAJOR : LAPACK_ROW_MAJOR, n, a, lda, k1, k2, pivots,
                      incx);
}
