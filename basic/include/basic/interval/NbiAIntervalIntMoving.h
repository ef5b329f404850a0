#pragma once

#include "basic/error/NbeAssertion.h"
#include "basic/interval/NbiAIntervalInt.h"

/// A window of constant length that moves over an interval and covers each of its indices once; the
/// last window is shorter when the length does not divide. An empty interval has no window.
///
/// The cursor stands before the first window after construction and toFront(), behind the last one
/// after toBack(): `while (moving.hasNext()) use(moving.next());`
template <class T>
class NbiAIntervalIntMoving
{
public:
  using Interval = NbiAIntervalInt<T, T>;

  /// No window.
  NbiAIntervalIntMoving() = default;

  /// Windows of `length` indices over `range`; a length below 1 is a programming error.
  NbiAIntervalIntMoving(const Interval &range, T length) : _range(range), _length(length)
  {
    if (length < 1)
      NBE_FAIL(QStringLiteral("Window length must be positive"));
  }

  const Interval &getRange() const { return _range; }
  T getWindowLength() const { return _length; }
  T getNWindows() const { return _range.isEmpty() ? 0 : T((_range.getLength() - 1) / _length + 1); }

  void toFront() { _window = -1; }
  void toBack() { _window = getNWindows(); }
  bool hasNext() const { return _window + 1 < getNWindows(); }
  bool hasPrevious() const { return _window > 0; }

  /// Moves to the next (previous) window and returns it; a programming error when there is none.
  Interval next()
  {
    if (!hasNext())
      NBE_FAIL(QStringLiteral("No next window"));
    ++_window;
    return getInterval();
  }
  Interval previous()
  {
    if (!hasPrevious())
      NBE_FAIL(QStringLiteral("No previous window"));
    --_window;
    return getInterval();
  }

  /// The current window; empty before the first and behind the last.
  Interval getInterval() const
  {
    if (_window < 0 || _window >= getNWindows())
      return Interval();
    const T lower = T(_range.getLower() + _window * _length);
    const bool isLast = _range.getUpper() - lower < _length;
    return Interval(lower, isLast ? _range.getUpper() : T(lower + _length - 1));
  }

private:
  Interval _range;
  T _length = 1;
  T _window = -1;
};
