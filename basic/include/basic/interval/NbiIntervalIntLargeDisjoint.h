#pragma once

#include "basic/interval/NbiAIntervalIntDisjoint.h"
#include "basic/interval/NbiIntervalIntLarge.h"

/// Disjoint union of intervals of 64-bit indices.
class NbiIntervalIntLargeDisjoint : public NbiAIntervalIntDisjoint<NbiIntervalIntLarge>
{
public:
  using NbiAIntervalIntDisjoint::NbiAIntervalIntDisjoint;
};
