#pragma once

#include "private/NgmLanes.h"

/// Solves small symmetric systems, definite or not, as they stand around a target.
///
/// The matrix becomes U D U' by diagonal pivoting: D has blocks of one and two rows, and pivots,
/// factor and return value are those of LAPACK's dsytf2 and dsytrs ('U') to rounding. Right-hand
/// sides are eliminated along with the columns of the matrix, so that their chain of dependent
/// operations hides behind the update of the matrix.
///
/// Arrays are column-major with paddedRows(n) rows, so that columns are worked off in whole vector
/// registers: what stands below the diagonal and in the padding is never
/// read as a number, but overwritten.
///
/// Source:   Bunch and Kaufman (1977), Some stable methods for calculating inertia and solving
///           symmetric linear systems, Mathematics of Computation 31
namespace NgmSymmetricSolver {

/// Beyond this order the blocked routines of the numeric library are faster (measured).
constexpr int MOST_ROWS = 128;

/// Rows of the arrays of a system of n equations.
constexpr int paddedRows(int n)
{
  return NgmLanes::padded(n);
}

/// Factorises `a`, of which the upper triangle is read, and solves for the columns of `x`, both in
/// place. Returns 0, or the number (from 1) of the first pivot that is null or undefined: the
/// factor is complete then, and the contents of `x` are of no use.
int solve(int n, double *a, int *pivots, int nRhs, double *x);

/// Copies the upper triangle of an n x n matrix between arrays of `fromRows` and `toRows` rows.
void copyUpper(int n, const double *from, int fromRows, double *to, int toRows);

/// Copies whole columns of n elements in the same way.
void copyColumns(int n, int nColumns, const double *from, int fromRows, double *to, int toRows);

}  // namespace NgmSymmetricSolver
