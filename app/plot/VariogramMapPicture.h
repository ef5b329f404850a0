#pragma once

#include "app/plot/Picture.h"
#include "app/plot/VariogramPicture.h"

namespace orvenal {

struct VariogramCloud;
struct VariogramMap;

/// Draws the map in colour: vectors to the east rightward and to the north upward, at one scale.
Picture drawVariogramMap(const VariogramMap &map, const VariogramStyle &style);

/// Draws how many pairs of samples have which distance and value, on a logarithmic colour scale.
Picture drawVariogramCloud(const VariogramCloud &cloud, const VariogramStyle &style);

}  // namespace orvenal
