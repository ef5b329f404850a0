#pragma once

#include "basic/interval/NbiAIntervalInt.h"

/// Interval of 64-bit indices that an int counts: the part of a data set that a buffer holds.
class NbiIntervalIntSmallO64 : public NbiAIntervalInt<qint64, int>
{
public:
  using Base = NbiAIntervalInt<qint64, int>;

  using Base::Base;
  constexpr NbiIntervalIntSmallO64() = default;
  constexpr NbiIntervalIntSmallO64(const Base &interval) : Base(interval) {}

  static constexpr NbiIntervalIntSmallO64 fromLength(int n) { return Base::fromLength(n); }
  static constexpr NbiIntervalIntSmallO64 fromFirstAndLength(qint64 first, int n)
  {
    return Base::fromFirstAndLength(first, n);
  }

  [[nodiscard]] constexpr NbiIntervalIntSmallO64 intersect(
      const NbiIntervalIntSmallO64 &other) const
  {
    return Base::intersect(other);
  }
};

Q_DECLARE_TYPEINFO(NbiIntervalIntSmallO64, Q_MOVABLE_TYPE);
