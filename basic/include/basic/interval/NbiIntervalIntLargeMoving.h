#pragma once

#include "basic/interval/NbiAIntervalIntMoving.h"
#include "basic/interval/NbiIntervalIntLarge.h"

/// A window that moves over 64-bit indices.
class NbiIntervalIntLargeMoving : public NbiAIntervalIntMoving<qint64>
{
public:
  using NbiAIntervalIntMoving::NbiAIntervalIntMoving;

  NbiIntervalIntLarge next() { return NbiAIntervalIntMoving::next(); }
  NbiIntervalIntLarge previous() { return NbiAIntervalIntMoving::previous(); }
  NbiIntervalIntLarge getInterval() const { return NbiAIntervalIntMoving::getInterval(); }
};
