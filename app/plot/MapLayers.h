#pragma once

#include "app/plot/ColorScales.h"
#include "app/plot/SampleMarks.h"

#include <vector>

namespace orvenal {

struct MapRaster;
struct Samples;

/// Radius of the marks of few samples on a map of a grid.
constexpr double mapMarkRadius = 3.2;

/// Draws the cells of a raster in colour.
void addRaster(QCPAxisRect &area, const MapRaster &raster, const QCPColorGradient &gradient,
               const ColorRange &range);

/// Circles at x and y of the samples, in the colours of their values or white without colours;
/// crosses where the value is undefined.
std::vector<SampleMark> marksOf(const Samples &samples, const QCPColorGradient *gradient,
                                const ColorRange &range);

}  // namespace orvenal
