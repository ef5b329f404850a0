#pragma once

#include <QVector>

/// The order of the values of an array. The array itself is not changed, nor needed afterwards.
///
/// Increasing: by value, and the undefined values follow all defined ones, -infinity and NaN last.
/// Decreasing: the defined values from the largest down, then the undefined ones. Equal values keep
/// their order in every mode; undefined values keep theirs in decreasing order.
///
/// Cost: linear in n for large arrays (radix sort), 32 bytes per value while sorting.
class NbcSortNumericalArray
{
public:
  enum Mode {
    INCREASING_STABLE,
    INCREASING_UNSTABLE,  ///< gives the stable order too
    DECREASING_STABLE
  };

  NbcSortNumericalArray(const double *values, int n, Mode mode = INCREASING_STABLE);
  NbcSortNumericalArray(const float *values, int n, Mode mode = INCREASING_STABLE);
  NbcSortNumericalArray(const int *values, int n, Mode mode = INCREASING_STABLE);
  NbcSortNumericalArray(const qint64 *values, int n, Mode mode = INCREASING_STABLE);

  /// Number of values, undefined included.
  int getNElements() const { return _ranks.size(); }

  /// Position in the array of the k-th value of the order. NbeProgrammingError outside 0 .. n-1.
  int getRank(int k) const;

  /// The k-th value of the order, the undefined values of integers being NbbGlobal::D_FFFF. 64-bit
  /// integers beyond 2^53 are sorted exactly but rounded here. NbeProgrammingError outside 0 ..
  /// n-1.
  double getElement(int k) const;

  /// All ranks in order, for loops.
  const int *getRanks() const { return _ranks.constData(); }

  /// All values in order, for loops.
  const double *getElements() const { return _elements.constData(); }

private:
  template <class T>
  void _sort(const T *values, int n, Mode mode);

  QVector<int> _ranks;
  QVector<double> _elements;
};
