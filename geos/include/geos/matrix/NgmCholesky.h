#pragma once

#include "geos/matrix/NgmMatrix.h"

#include <QFlags>

#include <functional>

namespace Cholesky {

/// What computeIncompleteCholesky() reports in the log.
enum Debug {
  DEBUG_CRITERION = 1,  ///< stopping rule, and the residual after each pivot in a table
  DEBUG_PIVOT = 2,      ///< every pivot when it is selected
  DEBUG_RESULT = 4,     ///< number of pivots, duration and the list of pivots
};

}  // namespace Cholesky

/// Cholesky factor A = L * L' of a positive definite matrix, and the inverse of the factor.
///
/// What is asked for is computed once. Reads the lower triangle of A.
class NgmCholesky
{
public:
  explicit NgmCholesky(const NgmMatrix &matrix);

  NgmMatrix getMatrix() const { return _matrix; }

  /// out = L (zero above the diagonal). False when the matrix is not positive definite.
  bool getCholeskyFactor(NgmMatrix &out);

  /// out = inverse of L. False when the matrix is not positive definite.
  bool getCholeskyInvert(NgmMatrix &out);

  /// out = inverse of the matrix, flagged symmetrical. Never computes: false before
  /// getCholeskyInvert().
  bool getInvert(NgmMatrix &out) const;

  /// out = the incomplete factor carried to the end: n rows, as many columns as the matrix has
  /// rank, out * out' = the matrix. False when it is not positive semi-definite.
  bool getIncompleteCholeskyFactor(NgmMatrix &out);

  /// Pivoted incomplete factorization C ~ L * L' of an implicit covariance matrix.
  ///
  /// Shape:    L is nech x (number of pivots), rows in sample order; the rows of the pivots are
  ///           reproduced exactly
  /// Requires: diagonal(i) gives C(i, i); column(p, buffer) fills the nech values of C(., p)
  /// Stops:    when the residual (the trace of C - L * L') is at most eta times the trace of C
  ///           (undefined eta = 0), when no variance is left, or after exactPivots + maxPivots
  /// Fails:    more exact pivots than samples; no pivot allowed
  /// Source:   Fine, Scheinberg (2001), J. Mach. Learn. Res. 2, 243-264
  ///
  /// `exactPivots` come first and in their order; one that is explained by those before it is left
  /// out. The list of doubles and the flag are carried and have no effect. Returns the pivots.
  static QList<int> computeIncompleteCholesky(NgmMatrix &L, int nech, const QList<int> &exactPivots,
                                              double eta, int maxPivots, const QList<double> &,
                                              const std::function<double(int)> &diagonal,
                                              const std::function<void(int, double *)> &column,
                                              bool, QFlags<Cholesky::Debug> debug);

private:
  bool _computeFactor();

  NgmMatrix _matrix;
  NgmMatrix _factor;
  NgmMatrix _inverse;
  bool _failed = false;
};
