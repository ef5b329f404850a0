#pragma once

#include "basic/base/NbbASerializable.h"
#include "basic/base/NbbIDebuggable.h"
#include "geos/matrix/NgmAlignedAllocator.h"

#include <QList>
#include <QString>
#include <QVector>

#include <memory>
#include <vector>

class NbgRotationMatrix;

/// Dense matrix of doubles, column by column: the one dense matrix type of the library.
///
/// Element (i, j) of row i and column j, both from 0, lies at index i + j * rows, so the store is a
/// BLAS/LAPACK matrix with leading dimension = row count; it is 64-byte aligned.
///
/// Copying is O(1): copies share the store until one of them is written (atomic count, detach on
/// write). Distinct copies may be used from different threads; one object may not be written from
/// two.
///
/// A matrix that must be symmetrical mirrors every single-element, row and column write. Bulk
/// writes (elements(), fill(), setSubMatrix(), setAllElementsColumnWise(), results of LAPACK) are
/// not mirrored.
///
/// The copy constructor copies everything; assignment keeps the target's own precision; copy()
/// takes over the elements only.
class NgmMatrix : public NbbASerializable, public NbbIDebuggable
{
public:
  /// A 1 x 1 zero matrix. The precision is 1e-10 after every constructor.
  explicit NgmMatrix(bool mustBeSymmetrical = false);

  /// A zero matrix. Negative sizes count as 0.
  NgmMatrix(int rows, int columns, bool mustBeSymmetrical);

  /// An n x 1 column vector copied from an array.
  NgmMatrix(int n, const double *values);

  /// The nine elements of a rotation matrix in the order of its data array.
  explicit NgmMatrix(const NbgRotationMatrix &rotation);

  NgmMatrix(const NgmMatrix &other);
  ~NgmMatrix() override;

  /// Takes shape, elements (shared) and symmetry flag, but keeps this matrix's precision.
  NgmMatrix &operator=(const NgmMatrix &other);

  /// Takes the elements (shared) only: shape, flag and precision stay. The caller guarantees that
  /// the shapes agree.
  void copy(const NgmMatrix &other);

  /// Takes shape, elements and flag like assignment, but into this matrix's own store: nothing is
  /// shared and nothing is allocated when the store is large enough.
  void copyDeep(const NgmMatrix &other);

  // Shape and elements.

  int getNRows() const { return _rowCount; }
  int getNColumns() const { return _columnCount; }
  qint64 getNElements() const { return qint64(_rowCount) * _columnCount; }
  bool isSquared() const { return _rowCount == _columnCount; }

  /// Bytes of the elements.
  qint64 getUsedMemory() const { return getNElements() * qint64(sizeof(double)); }

  /// Element (i, j), without a bounds check. Loops that matter go through constElements().
  const double &getElement(int i, int j) const { return (*_elements)[_index(i, j)]; }
  const double &operator()(int i, int j) const { return (*_elements)[_index(i, j)]; }

  void setElement(int i, int j, double value);

  /// Adds to an element. It becomes undefined (NbbGlobal::D_FFFF) when it or `value` is.
  void addToElement(int i, int j, double value);

  /// Element (min(i, j), max(i, j)).
  double getUpperTriangularElement(int i, int j) const;
  void setUpperTriangularElement(int i, int j, double value);

  /// The store, column by column; detaches it.
  double *elements();
  const double *constElements() const { return _elements->data(); }

  /// Copy all elements out or in, column by column. `n` is the size of the array; fewer than
  /// rows * columns is an error.
  void getAllElementsColumnWise(qint64 n, double *out) const;
  void setAllElementsColumnWise(qint64 n, const double *in);

  void fill(double value);

  /// Zero, then 1 at (i, i) for every row i (that has such a column).
  void setIdentity();

  /// Copies of row i (or column j), into an array or into the target's store.
  void extractRow(int i, double *out) const;
  void extractRow(int i, NgmMatrix &out) const;
  void extractColumn(int j, double *out) const;
  void extractColumn(int j, NgmMatrix &out) const;

  /// Write row i (column j); a symmetrical matrix gets column i (row j) too.
  void setRow(int i, const double *values);
  void setRow(int i, const NgmMatrix &values);
  void setColumn(int j, const double *values);
  void setColumn(int j, const NgmMatrix &values);

  /// out(r, c) = this(row0 + r, column0 + c); `out` keeps its own shape.
  void getSubMatrix(NgmMatrix &out, int row0, int column0) const;

  /// this(row0 + r, column0 + c) = source(r, c); not mirrored.
  void setSubMatrix(const NgmMatrix &source, int row0, int column0);

  /// out(r, c) = this(indices[r], indices[c]); `out` keeps its own shape.
  void extractSubMatrix(NgmMatrix &out, const QList<int> &indices) const;

  /// New shape. With `keep` the common top-left block stays and the rest is zero (an unchanged
  /// shape changes nothing); without it all elements become zero. The memory is reused when it
  /// suffices and is not shared.
  void resize(int rows, int columns, bool keep);
  void resize(int n, bool keep);

  /// One more column of zeros.
  void addColumn();

  /// Raises "Matrix is not currently symmetrical" when asked for of a matrix that is not, within
  /// its precision.
  void setMustBeSymmetrical(bool mustBeSymmetrical);
  bool mustBeSymmetrical() const { return _mustBeSymmetrical; }

  /// Copies the upper triangle onto the lower one and sets the flag; nothing when not square.
  void makeSymmetrical();

  /// Tolerance of the comparisons and null tests.
  void setPrecision(double precision) { _precision = precision; }
  double getPrecision() const { return _precision; }

  /// Exchange elements; not mirrored.
  void swapColumns(int a, int b);
  void swapRows(int a, int b);

  /// Take a column (row) out and insert it at position `to`; those between shift by one. A
  /// symmetrical matrix gets the row (column) moved too.
  void moveColumn(int from, int to);
  void moveRow(int from, int to);

  // Arithmetic. Shapes of sums are not checked.

  void add(const NgmMatrix &other);
  void sub(const NgmMatrix &other);
  NgmMatrix &operator+=(const NgmMatrix &other);
  NgmMatrix &operator-=(const NgmMatrix &other);
  void scalarMultiply(double factor);

  /// c = a * b; `c` takes the shape of the product and may be one of the factors.
  static void makeProduct(const NgmMatrix &a, const NgmMatrix &b, NgmMatrix &c);

  /// out(j, i) = this(i, j). For a matrix that must be symmetrical nothing is done and `out` stays
  /// as it is; the transposed of a vector shares its store.
  void transpose(NgmMatrix &out) const;

  /// What transpose(out) makes of a 1 x 1 zero matrix: so of a symmetrical matrix it is that zero.
  NgmMatrix transpose() const;

  // Tests. Without argument the tolerance is the precision; NaN is within no tolerance.

  bool isNull(double eps) const;
  bool isNull() const { return isNull(_precision); }
  bool isIdentity(double eps) const;
  bool isIdentity() const { return isIdentity(_precision); }
  bool isSymmetrical(double eps) const;
  bool isSymmetrical() const { return isSymmetrical(_precision); }

  /// True when in every column j but the last the rows 0 .. rows - 1 - j are null: the part on and
  /// above the anti-diagonal is what is examined, not the strict lower triangle.
  bool isUpperTriangular() const;

  /// Same shape and all elements equal within the smaller of the two precisions.
  bool areEqual(const NgmMatrix &other) const;
  bool operator==(const NgmMatrix &other) const { return areEqual(other); }
  bool operator!=(const NgmMatrix &other) const { return !areEqual(other); }

  // Text.

  /// Rows and columns as a text table. A non-negative `maxCount` limits the rows and columns shown;
  /// `precision` is the number of significant digits (negative: 6).
  QString toString(int maxCount, int precision, const QString &separator) const;

  /// All elements in storage order, separated by ", ".
  QString toString1(int precision) const;

  /// Reads rows * columns numbers separated by "," in storage order; a negative `columns` means
  /// square. False, and nothing changed, when their number differs.
  bool fromString(const QString &text, bool symmetric, int rows, int columns);

  /// Shape and elements; level 1 shows at most 10 rows and columns, a negative level no shape.
  QString debug(int level) const override;

  // Linear algebra of square matrices. Symmetrical routines read the upper triangle.
  // `nThreads` other than 1 and at least 100 rows take the parallel path, of which only one may run
  // at a time in the process. Returned codes are LAPACK's info: 0 = success.

  /// out = inverse by Cholesky factorization. A positive code k: the leading minor of order k is
  /// not positive, and `out` holds the partial factorization.
  int invertPositiveDefinite(NgmMatrix &out, int nThreads) const;

  /// out = inverse, by Bunch-Kaufman (flagged symmetrical) or LU factorization.
  int invert(NgmMatrix &out, int nThreads) const;

  /// Solves this * X = rhs: `rhs` becomes X and this matrix its factorization. `pivots` holds one
  /// integer per row, or is null. Allocates nothing once this thread has solved a system as large.
  int resolveEquat(NgmMatrix &rhs, int *pivots, int nThreads);

  /// Eigenvalues (rows x 1, ascending) and, when asked for, eigenvectors (column k for value k) of
  /// a symmetric matrix. Returns the largest eigenvalue. `useInternal` takes the library's own
  /// solver.
  double eigenValues(NgmMatrix &values, NgmMatrix &vectors, bool useInternal, bool withVectors,
                     int nThreads) const;

  /// Pseudo-inverse of a symmetric matrix from the eigenvalues above 1e-15 times the largest.
  void generalizedInverse(NgmMatrix &out, bool useInternal, bool verbose, int nThreads) const;

  /// All eigenvalues > 0 (`strict`) or >= 0.
  bool isPositiveDefinite(bool strict, bool useInternal) const;

  /// Raises eigenvalues to at least `eps` times the largest. True, and the matrix untouched, when
  /// all are above that already.
  bool makePositiveDefinite(bool useInternal, bool verbose, double eps);

  /// Positive definite repair that keeps the diagonal, by alternating projections (at most 1000).
  /// False when it did not converge; the matrix is left as the last round made it.
  bool makePositiveDefiniteKeepDiag(bool useInternal, bool verbose, double eps);

  /// S * this * S with S = diag(sqrt(w)). The default w = 1 / diagonal makes a covariance matrix
  /// its correlation matrix.
  void normalizeDiagonal(const QVector<double> &w = QVector<double>());

  /// Clamps the elements to bounds given column by column (NbbGlobal::D_FFFF = no bound), keeping
  /// the matrix positive definite on request.
  void applyBounds(const QVector<double> &lower, const QVector<double> &upper,
                   bool keepPositiveDefinite);

  /// Inverse of [[A, B], [B', C]] given the inverse of A, by the Schur complement of A; flagged
  /// symmetrical.
  static NgmMatrix blockwiseInverse(const NgmMatrix &inverseA, const NgmMatrix &b,
                                    const NgmMatrix &c);

  // BLAS, LAPACK and vector math on plain arrays, with the arguments of the routines.

  static void blasDcopy(int n, const double *x, int incx, double *y, int incy);
  static void blasScopy(int n, const float *x, int incx, float *y, int incy);
  static void blasDaxpy(int n, double alpha, const double *x, int incx, double *y, int incy);
  static void blasSaxpy(int n, float alpha, const float *x, int incx, float *y, int incy);
  static void blasDscal(int n, double alpha, double *x, int incx);
  static void blasSscal(int n, float alpha, float *x, int incx);
  static double blasDasum(int n, const double *x, int incx);
  static float blasSasum(int n, const float *x, int incx);
  static double blasDnrm2(int n, const double *x, int incx);
  static void blasDgemm(char transA, char transB, int m, int n, int k, double alpha,
                        const double *a, int lda, const double *b, int ldb, double beta, double *c,
                        int ldc);
  static void blasDswap(int n, double *x, int incx, double *y, int incy);
  static double blasDdot(int n, const double *x, int incx, const double *y, int incy);
  static float blasSdot(int n, const float *x, int incx, const float *y, int incy);

  /// y_i = x_i * y_i.
  static void blasVectorElementWiseProduct(int n, const double *x, double *y);

  /// out_i = sqrt(in_i); the arrays may be the same.
  static void vectorSqrt(int n, const double *in, double *out);
  static void vectorSqrt(int n, const float *in, float *out);

  static void lapackDlaswp(bool columnMajor, int n, double *a, int lda, int k1, int k2,
                           const int *pivots, int incx);

protected:
  QList<unsigned int> _serializedVersions() const override;
  unsigned int _currentSerializedVersion() const override;
  void _serialize(QDataStream &stream) const override;
  void _unserialize(QDataStream &stream, unsigned int version) override;
  bool _hasValidFirstVersion() const override;

  std::size_t _index(int i, int j) const { return std::size_t(i) + std::size_t(j) * _rowCount; }

  /// MKL and the library's own solver; true on failure.
  bool _eigenValuesEx(NgmMatrix &values, NgmMatrix &vectors, bool withVectors, int nThreads) const;
  bool _eigenValuesLoc(NgmMatrix &values, NgmMatrix &vectors, bool withVectors) const;

  /// Ascending order; `vectors` (or null) gets its columns permuted alike.
  static void _sortEigenValues(NgmMatrix &values, NgmMatrix *vectors);

  static void _initPlasma(int nThreads);
  static void _finalizePlasma();

private:
  using Store = std::vector<double, NgmAlignedAllocator<double>>;

  void _detach();
  void _newStore(std::size_t n);
  bool _mirrors(int i, int j) const;
  void _mirrorUpperToLower();
  void _moveColumnOnly(int from, int to);
  void _moveRowOnly(int from, int to);
  bool _runsParallel(int nThreads) const { return nThreads != 1 && _rowCount >= 100; }
  void _requireSquared() const;

  /// Runs call(parallel) with the threads of the path that `nThreads` asks for.
  template <class Call>
  int _runAlgebra(int nThreads, const Call &call) const;

  void _boundElements(const QVector<double> &lower, const QVector<double> &upper);

  int _rowCount;
  int _columnCount;
  std::shared_ptr<Store> _elements;
  bool _mustBeSymmetrical;
  double _precision;
};

NgmMatrix operator+(const NgmMatrix &a, const NgmMatrix &b);
NgmMatrix operator-(const NgmMatrix &a, const NgmMatrix &b);
NgmMatrix operator*(const NgmMatrix &a, const NgmMatrix &b);
NgmMatrix operator*(const NgmMatrix &a, double factor);
NgmMatrix operator/(const NgmMatrix &a, double divisor);
