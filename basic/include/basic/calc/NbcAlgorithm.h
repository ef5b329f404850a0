#pragma once

#include <QVector>

class NbuUnitTransfo;

/// Small numerical operations.
namespace NbcAlgorithm {

/// `value` rounded to n + 1 significant digits in display units, half away from zero. Undefined
/// values and 0 are returned as they are, and a value that is not 0 never becomes 0.
double roundValue(double value, const NbuUnitTransfo &displayTransfo, int n);

/// The smallest number of n + 1 significant digits in display units that is not below `value`.
/// Undefined values and 0 are returned as they are.
double ceilValue(double value, const NbuUnitTransfo &displayTransfo, int n);

/// Number of ways to choose k of n; 0 when k is outside 0 .. n. Exact up to 2^53.
double combination(int n, int k);

/// Quantiles of the defined values of an array for probabilities in [0, 1] (clamped), linear
/// between the order statistics x[h], h = (N - 1) p (Hyndman and Fan 1996, type 7).
/// NbbGlobal::D_FFFF when no value is defined or for an undefined probability.
QVector<double> calculateQuantiles(const double *values, int n,
                                   const QVector<double> &probabilities);

}  // namespace NbcAlgorithm
