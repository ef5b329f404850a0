#pragma once

#include "geos/matrix/NgmMatrix.h"

#include <memory>
#include <vector>

/// Factorised kriging matrix [[C, F], [F', 0]] with a positive definite C: the Cholesky factors of
/// C = L L' and of Q = F' inverse(C) F = R R', the negative Schur complement of the conditions.
///
/// With U = inverse(L) F, a right-hand side (k, f) has v = inverse(L) k, r = f - U' v and
///   quadratic form = |v|^2 - |inverse(R) r|^2
/// of one triangular solve of the order of C.
///
/// Threads:  const after it was made
/// Source:   Cressie (1993), Statistics for Spatial Data, ch. 3.4
class NgmKrigingFactor
{
public:
  /// Null when C or Q is not positive definite beyond rounding. C are the first `nData` rows.
  static std::shared_ptr<const NgmKrigingFactor> factorize(const NgmMatrix &matrix, int nData);

  /// Solves for the right-hand side (data, 0), in place: `values` holds the data, and room for the
  /// conditions.
  void solve(double *values) const;

  /// out[c] = column' * inverse * column for the columns of right-hand sides. `work` holds as many
  /// elements as `columns` and is overwritten. The bits of a column do not depend on the number of
  /// columns when that is a multiple of 16.
  void quadraticForms(const double *columns, int nColumns, int leadingDimension, double *work,
                      double *out) const;

private:
  using Array = std::vector<double, NgmAlignedAllocator<double>>;

  NgmKrigingFactor(const NgmMatrix &matrix, int nData);

  bool _factorizeData();
  bool _factorizeConditions();

  int _nData;
  int _nConditions;
  Array _dataFactor;
  Array _conditions;
  Array _conditionFactor;
};
