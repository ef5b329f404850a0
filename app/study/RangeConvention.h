#pragma once

#include "basic/geom/NbgVector3D.h"

class NgmAVStruct;

namespace orvenal {

/// What a job calls the range of a structure. The program itself speaks of practical ranges.
///
/// Practical: the distance at which the structure reaches its sill, or 95 % of it when it reaches
/// it only at infinity. Scale: the parameter a of the structure's formula C(h / a).
enum class RangeConvention { PRACTICAL, SCALE };

/// Practical range of a structure of this kind, and with this parameter of shape, whose scale is 1.
double practicalFactor(const NgmAVStruct &structure);

/// Ranges of a structure given in a convention, as practical ranges.
NbgVector3D toPracticalRanges(const NbgVector3D &ranges, RangeConvention convention,
                              const NgmAVStruct &structure);

}  // namespace orvenal
