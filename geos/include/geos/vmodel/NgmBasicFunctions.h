#pragma once

#include <QVector>

/// Bessel functions of a row of orders.
///
/// Both give the number of accurate values: `nb` when all are, fewer when only the first ones are
/// (the others, out of the range of doubles, are 0), negative on arguments out of range (all are
/// 0). `out` takes the size nb.
class NgmBasicFunctions
{
public:
  NgmBasicFunctions() = delete;

  /// First kind: out[k] = J_{alpha + k}(x), k = 0 .. nb - 1, for 0 <= x <= 1e21 and 0 <= alpha < 1.
  static int bessel_j(double x, double alpha, int nb, QVector<double> &out);

  /// Modified of the second kind: out[k] = K_{alpha + k}(x), k = 0 .. nb - 1, for 0 < x <= 705.342
  /// and 0 <= alpha < 1.
  static int bessel_k(double x, double alpha, int nb, QVector<double> &out);
};
