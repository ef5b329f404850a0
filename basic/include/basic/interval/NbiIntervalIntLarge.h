#pragma once

#include "basic/interval/NbiAIntervalInt.h"
#include "basic/interval/NbiIntervalIntSmallO64.h"

/// Interval of 64-bit indices.
class NbiIntervalIntLarge : public NbiAIntervalInt<qint64, qint64>
{
public:
  using Base = NbiAIntervalInt<qint64, qint64>;

  using Base::Base;
  constexpr NbiIntervalIntLarge() = default;
  constexpr NbiIntervalIntLarge(const Base &interval) : Base(interval) {}

  static constexpr NbiIntervalIntLarge fromLength(qint64 n) { return Base::fromLength(n); }
  static constexpr NbiIntervalIntLarge fromFirstAndLength(qint64 first, qint64 n)
  {
    return Base::fromFirstAndLength(first, n);
  }

  [[nodiscard]] constexpr NbiIntervalIntLarge intersect(const NbiIntervalIntLarge &other) const
  {
    return Base::intersect(other);
  }

  /// The same interval with an int length; a programming error when it is longer than that.
  NbiIntervalIntSmallO64 toSmallO64() const;
};

Q_DECLARE_TYPEINFO(NbiIntervalIntLarge, Q_MOVABLE_TYPE);
