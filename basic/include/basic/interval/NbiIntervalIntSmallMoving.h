#pragma once

#include "basic/interval/NbiAIntervalIntMoving.h"
#include "basic/interval/NbiIntervalIntSmall.h"

/// A window that moves over 32-bit indices.
class NbiIntervalIntSmallMoving : public NbiAIntervalIntMoving<int>
{
public:
  using NbiAIntervalIntMoving::NbiAIntervalIntMoving;

  NbiIntervalIntSmall next() { return NbiAIntervalIntMoving::next(); }
  NbiIntervalIntSmall previous() { return NbiAIntervalIntMoving::previous(); }
  NbiIntervalIntSmall getInterval() const { return NbiAIntervalIntMoving::getInterval(); }
};
