#pragma once

#include "app/plot/Picture.h"
#include "app/study/GridSection.h"

#include <vector>

namespace orvenal {

struct MapStyle;
struct Samples;

/// Draws sections of a grid of three dimensions, each in a plot area of its own and all in one
/// colour scale, with the samples near them on top. Each says where it lies; vertical ones are
/// exaggerated when they would be too flat to be read, and say so.
Picture drawSections(const NbgGeomGrid &grid, const std::vector<double> &values,
                     const QList<GridSection> &sections, const Samples &samples,
                     const MapStyle &style);

}  // namespace orvenal
