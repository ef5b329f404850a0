#pragma once

#include <QtGlobal>

class NgaStatSum;

/// Sums of a block of values, in four interleaved lanes. The bits depend on the values and their
/// order, not on where the block lies in memory.
class NgaStatBlockSum
{
public:
  /// Values that are summed before lanes are brought together.
  static constexpr int BLOCK = 1024;

  /// Adds at most BLOCK values to `sum`; weights may be null.
  static void add(NgaStatSum &sum, int n, const double *values, const double *weights);

  /// Adds at most BLOCK pairs: x to `xy`, y to `yx`, and the products to both; weights may be null.
  static void addPairs(NgaStatSum &xy, NgaStatSum &yx, int n, const double *x, const double *y,
                       const double *weights);

private:
  struct Sums;
  struct Moments;
  template <bool FULL>
  static Sums _sum(int n, const double *values);
  template <bool FULL>
  static Sums _sumWeighted(int n, const double *values, const double *weights);
  template <bool FULL>
  static void _addMoments(int n, const double *values, Sums &block);
  template <bool FULL>
  static void _addMomentsWeighted(int n, const double *values, const double *weights, Sums &block);
  static Sums _sumUpTo(int degree, int n, const double *values, const double *weights);
  static void _merge(NgaStatSum &sum, int n, const Sums &block);
};
