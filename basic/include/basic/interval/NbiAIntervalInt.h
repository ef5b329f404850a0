#pragma once

#include <QString>
#include <QtGlobal>

#include <limits>

/// A closed interval of integer indices, lower .. upper; empty when upper < lower. T is the type of
/// the indices, L that of the length.
///
/// The default is empty: 0 .. -1. Two intervals are equal when their bounds are.
template <class T, class L>
class NbiAIntervalInt
{
public:
  using Index = T;
  using Length = L;

  constexpr NbiAIntervalInt() = default;
  constexpr NbiAIntervalInt(T lower, T upper) : _lower(lower), _upper(upper) {}

  /// 0 .. n - 1.
  static constexpr NbiAIntervalInt fromLength(L n) { return {0, T(T(n) - 1)}; }
  static constexpr NbiAIntervalInt fromFirstAndLength(T first, L n)
  {
    return {first, T(first + T(n) - 1)};
  }

  constexpr T getLower() const { return _lower; }
  constexpr T getUpper() const { return _upper; }
  /// The number of indices, 0 when the interval is empty; meaningless when it is longer than L
  /// holds.
  constexpr L getLength() const { return isEmpty() ? 0 : L(quint64(_upper) - quint64(_lower) + 1); }

  void setBounds(T lower, T upper)
  {
    _lower = lower;
    _upper = upper;
  }
  void setLower(T lower) { _lower = lower; }
  void setUpper(T upper) { _upper = upper; }
  /// Moves the upper bound.
  void setLength(L length) { _upper = T(_lower + T(length) - 1); }
  /// Moves both bounds.
  void addOffset(T offset) { setBounds(T(_lower + offset), T(_upper + offset)); }

  constexpr bool isEmpty() const { return _upper < _lower; }
  /// Not empty, and the length fits its type.
  constexpr bool isValid() const
  {
    return !isEmpty() && quint64(_upper) - quint64(_lower) < quint64(std::numeric_limits<L>::max());
  }
  constexpr bool isIncluded(T index) const { return index >= _lower && index <= _upper; }

  /// The common part, possibly empty.
  [[nodiscard]] constexpr NbiAIntervalInt intersect(const NbiAIntervalInt &other) const
  {
    return {_lower < other._lower ? other._lower : _lower,
            _upper < other._upper ? _upper : other._upper};
  }

  /// "[lower, upper]".
  QString toString() const { return QStringLiteral("[%1, %2]").arg(_lower).arg(_upper); }

  friend constexpr bool operator==(const NbiAIntervalInt &a, const NbiAIntervalInt &b)
  {
    return a._lower == b._lower && a._upper == b._upper;
  }
  friend constexpr bool operator!=(const NbiAIntervalInt &a, const NbiAIntervalInt &b)
  {
    return !(a == b);
  }

private:
  T _lower = 0;
  T _upper = -1;
};
