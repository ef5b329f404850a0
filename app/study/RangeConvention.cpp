#include "app/study/RangeConvention.h"

#include "geos/vmodel/NgmAVStruct.h"

namespace orvenal {

double practicalFactor(const NgmAVStruct &structure)
{
  return structure.getPracticalScaleFactor() / structure.getTheoScaleFactor();
}

NbgVector3D toPracticalRanges(const NbgVector3D &ranges, RangeConvention convention,
                              const NgmAVStruct &structure)
{
  return convention == RangeConvention::SCALE ? ranges * practicalFactor(structure) : ranges;
}

}  // namespace orvenal
