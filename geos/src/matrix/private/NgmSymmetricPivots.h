#pragma once

/// Tells a singular symmetric matrix whose factorization went through on rounding errors.
///
/// `factor`, in columns of `factorRows` rows, and `pivots` are the factor U D U' of LAPACK's dsytrf
/// ('U') and its pivots, `original` holds the diagonal of the matrix, `differences` room for as
/// many numbers; both are overwritten. Returns 0, or the number (from 1) of a pivot block that is
/// not above the rounding of the terms whose sum it is.
///
/// Cost:     O(n) for each pivot that is not positive
/// Source:   Higham (2002), Accuracy and Stability of Numerical Algorithms, ch. 11: the error is
///           bounded by n u |U| |D| |U'|
int findNullPivot(int n, const double *factor, int factorRows, const int *pivots, double *original,
                  double *differences);
