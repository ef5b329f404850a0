#pragma once

#include "basic/interval/NbiAIntervalIntIterator.h"
#include "basic/interval/NbiIntervalIntSmall.h"

/// Walks over 32-bit indices.
class NbiIntervalIntSmallIterator : public NbiAIntervalIntIterator<int>
{
public:
  using NbiAIntervalIntIterator::NbiAIntervalIntIterator;
};
