#pragma once

#include "basic/interval/NbiAIntervalIntDisjoint.h"
#include "basic/interval/NbiIntervalIntSmall.h"

/// Disjoint union of intervals of 32-bit indices.
class NbiIntervalIntSmallDisjoint : public NbiAIntervalIntDisjoint<NbiIntervalIntSmall>
{
public:
  using NbiAIntervalIntDisjoint::NbiAIntervalIntDisjoint;
};
