#pragma once

#include "basic/interval/NbiAIntervalInt.h"

/// Interval of 32-bit indices.
class NbiIntervalIntSmall : public NbiAIntervalInt<int, int>
{
public:
  using Base = NbiAIntervalInt<int, int>;

  using Base::Base;
  constexpr NbiIntervalIntSmall() = default;
  constexpr NbiIntervalIntSmall(const Base &interval) : Base(interval) {}

  static constexpr NbiIntervalIntSmall fromLength(int n) { return Base::fromLength(n); }
  static constexpr NbiIntervalIntSmall fromFirstAndLength(int first, int n)
  {
    return Base::fromFirstAndLength(first, n);
  }

  [[nodiscard]] constexpr NbiIntervalIntSmall intersect(const NbiIntervalIntSmall &other) const
  {
    return Base::intersect(other);
  }
};

Q_DECLARE_TYPEINFO(NbiIntervalIntSmall, Q_MOVABLE_TYPE);
