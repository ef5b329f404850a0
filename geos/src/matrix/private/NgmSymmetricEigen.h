#pragma once

/// Eigen decomposition of a symmetric matrix on plain arrays: Householder reduction to tridiagonal
/// form, then implicit QL sweeps.
///
/// Source: Martin, Reinsch, Wilkinson (1968), Numer. Math. 11, 181-195; Dubrulle, Martin, Wilkinson
/// (1968), Numer. Math. 12, 377-383
namespace NgmSymmetricEigen {

/// Decomposes the n x n matrix `a` (column by column; the lower triangle is read, the content is
/// lost). `diagonal` (n) receives the eigenvalues in no particular order, `work` holds n values.
/// `vectors` (n x n, or null) receives eigenvector k in column k. False when the sweeps did not
/// converge.
bool decompose(int n, double *a, double *diagonal, double *work, double *vectors);

}  // namespace NgmSymmetricEigen
