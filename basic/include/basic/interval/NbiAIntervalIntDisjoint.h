#pragma once

#include "basic/error/NbeAssertion.h"

#include <QList>
#include <QVector>

#include <algorithm>

/// A set of indices kept as disjoint intervals of type I, ascending; intervals that touch or follow
/// each other without a gap are merged.
template <class I>
class NbiAIntervalIntDisjoint
{
public:
  using Index = typename I::Index;

  NbiAIntervalIntDisjoint() = default;
  explicit NbiAIntervalIntDisjoint(const I &interval) { merge(interval); }

  /// The number of disjoint intervals.
  int count() const { return _intervals.size(); }
  bool isEmpty() const { return _intervals.isEmpty(); }

  /// Interval `rank`, ascending; a programming error outside 0 .. count() - 1.
  const I &at(int rank) const
  {
    if (rank < 0 || rank >= count())
      NBE_FAIL(QStringLiteral("Interval rank out of range"));
    return _intervals[rank];
  }

  QList<I> toList() const { return _intervals.toList(); }

  /// The number of indices.
  qint64 getTotalLength() const { return isEmpty() ? 0 : _starts.last() + _length(count() - 1); }

  /// Adds the indices of an interval, of another set. Adding at the end is cheap.
  void merge(const I &interval)
  {
    if (interval.isEmpty())
      return;
    const int first = _firstReaching(interval.getLower());
    int last = first;
    I merged = interval;
    for (; last < count() && _follows(_intervals[last].getLower(), interval.getUpper()); ++last)
      merged.setBounds(std::min(merged.getLower(), _intervals[last].getLower()),
                       std::max(merged.getUpper(), _intervals[last].getUpper()));
    if (first == last)
      _intervals.insert(first, merged);
    else
      _intervals[first] = merged;
    if (last > first + 1)
      _intervals.erase(_intervals.begin() + first + 1, _intervals.begin() + last);
    _updateStarts(first);
  }
  void merge(const NbiAIntervalIntDisjoint &other)
  {
    // A copy: the other set may be this one.
    const QVector<I> intervals = other._intervals;
    for (const I &interval : intervals)
      merge(interval);
  }
  void clear()
  {
    _intervals.clear();
    _starts.clear();
  }

  bool isIncluded(Index index) const { return toRelativeRank(index) >= 0; }

  /// The rank of an index among the indices of the set, ascending from 0; -1 when it is not in it.
  qint64 toRelativeRank(Index index) const
  {
    const int rank = _firstReaching(index);
    for (int i = rank; i < count() && i <= rank + 1; ++i) {
      if (_intervals[i].isIncluded(index))
        return _starts[i] + qint64(index - _intervals[i].getLower());
    }
    return -1;
  }

  /// The inverse; a programming error outside 0 .. getTotalLength() - 1.
  Index toAbsoluteIndex(qint64 rank) const
  {
    if (rank < 0 || rank >= getTotalLength())
      NBE_FAIL(QStringLiteral("Rank out of range"));
    const auto next = std::upper_bound(_starts.begin(), _starts.end(), rank);
    const int i = int(next - _starts.begin()) - 1;
    return Index(_intervals[i].getLower() + Index(rank - _starts[i]));
  }

  friend bool operator==(const NbiAIntervalIntDisjoint &a, const NbiAIntervalIntDisjoint &b)
  {
    return a._intervals == b._intervals;
  }
  friend bool operator!=(const NbiAIntervalIntDisjoint &a, const NbiAIntervalIntDisjoint &b)
  {
    return !(a == b);
  }

private:
  /// Whether `lower` is at most one beyond `upper`, without overflow.
  static bool _follows(Index lower, Index upper) { return lower <= upper || lower - 1 == upper; }

  /// The rank of the first interval that ends at index - 1 or later.
  int _firstReaching(Index index) const
  {
    const auto found = std::lower_bound(
        _intervals.begin(), _intervals.end(), index,
        [](const I &interval, Index lower) { return !_follows(lower, interval.getUpper()); });
    return int(found - _intervals.begin());
  }

  qint64 _length(int rank) const
  {
    return qint64(_intervals[rank].getUpper()) - qint64(_intervals[rank].getLower()) + 1;
  }

  void _updateStarts(int first)
  {
    _starts.resize(count());
    for (int i = first; i < count(); ++i)
      _starts[i] = i == 0 ? 0 : _starts[i - 1] + _length(i - 1);
  }

  QVector<I> _intervals;
  QVector<qint64> _starts;  ///< Relative rank of the first index of each interval.
};
