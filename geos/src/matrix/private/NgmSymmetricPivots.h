#pragma once

/// Tells a singular symmetric matrix whose factorization went through on rounding errors.
///
/// `factor` and `pivots` are the factor U D U' of LAPACK's dsytrf ('U') and its pivots, `growth`
/// holds |a(i, i)| of the matrix and is overwritten. Returns 0, or the number (from 1) of a pivot
/// block that is not above the rounding of the terms whose sum it is.
///
/// Cost:     O(n^2)
/// Source:   Higham (2002), Accuracy and Stability of Numerical Algorithms, ch. 11: the error of
/// the
///           factorization is bounded by n u |U| |D| |U'|
int findNullPivot(int n, const double *factor, const int *pivots, double *growth);
