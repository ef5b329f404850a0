#pragma once

#include <QtGlobal>

#include <vector>

namespace orvenal {

/// Classes of equal width and the number of values in each: a value on the border of two belongs to
/// the upper one, the last class holds its upper border too.
struct Histogram
{
  double first = 0.;  ///< lower border of the first class
  double width = 1.;
  std::vector<qint64> counts;
  qint64 nBelow = 0;  ///< values beyond the classes, when tails are too long to be shown
  qint64 nAbove = 0;

  double getLower(int index) const { return first + index * width; }
  double getUpper() const { return getLower(int(counts.size())); }
  qint64 getTotal() const;
};

/// The histogram of the defined values; without any there is no class.
///
/// Width:   2 IQR n^(-1/3) (Freedman and Diaconis, 1981), at least a sixteenth of the quartiles'
///          distance; without one the range over 1 + log2 n (Sturges, 1926). It is rounded up to
///          1, 2, 2.5 or 5 times a power of ten, and borders are multiples of it. Where values are
///          multiples of a step about as wide, each of them has a class around it.
/// Tails:   there are at most 100 classes, around the median; farther values are counted.
/// Constant values have one class around them.
Histogram makeHistogram(const std::vector<double> &values);

/// The defined values in ascending order.
std::vector<double> sortedValues(const std::vector<double> &values);

/// Probability at which the value of a rank (from 1) of n is drawn: (rank - 3/8) / (n + 1/4), by
/// which Gaussian values come out unbiased to a good approximation (Blom, 1958).
double plottingPosition(qint64 rank, qint64 n);

}  // namespace orvenal
