#pragma once

#include "basic/interval/NbiAIntervalIntDisjoint.h"
#include "basic/interval/NbiIntervalIntSmallO64.h"

/// Disjoint union of intervals of 64-bit indices whose intervals an int counts.
class NbiIntervalIntSmallO64Disjoint : public NbiAIntervalIntDisjoint<NbiIntervalIntSmallO64>
{
public:
  using NbiAIntervalIntDisjoint::NbiAIntervalIntDisjoint;
};
