#pragma once

#include "basic/interval/NbiAIntervalIntMoving.h"

/// Walks over the indices of an interval one by one, with the cursor rules of the moving window.
template <class T>
class NbiAIntervalIntIterator
{
public:
  NbiAIntervalIntIterator() = default;
  explicit NbiAIntervalIntIterator(const NbiAIntervalInt<T, T> &range) : _moving(range, 1) {}

  void toFront() { _moving.toFront(); }
  void toBack() { _moving.toBack(); }
  bool hasNext() const { return _moving.hasNext(); }
  bool hasPrevious() const { return _moving.hasPrevious(); }

  /// Moves to the next (previous) index and returns it; a programming error when there is none.
  T next() { return _moving.next().getLower(); }
  T previous() { return _moving.previous().getLower(); }

  /// Whether the cursor stands on an index, and which; a programming error when it does not.
  bool hasCurrent() const { return !_moving.getInterval().isEmpty(); }
  T getCurrent() const
  {
    if (!hasCurrent())
      NBE_FAIL(QStringLiteral("No current index"));
    return _moving.getInterval().getLower();
  }

private:
  NbiAIntervalIntMoving<T> _moving;
};
