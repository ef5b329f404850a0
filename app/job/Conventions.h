#pragma once

#include "app/study/Compass.h"
#include "app/study/RangeConvention.h"

namespace orvenal {

/// What the ranges and angles of a job, or of a model's file, mean.
struct Conventions
{
  RangeConvention ranges = RangeConvention::PRACTICAL;
  AngleConvention angles = AngleConvention::AZIMUTH;
};

}  // namespace orvenal
