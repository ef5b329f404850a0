#pragma once

#include "app/plot/Picture.h"

#include <QString>

#include <vector>

class NbgGeomGrid;

namespace orvenal {

struct Samples;

/// What a map shows besides its values.
struct MapStyle
{
  QString title;
  QString subtitle;             ///< what the marks of the samples mean is added to it
  QString valueLabel;           ///< beside the colour scale, with the unit
  QString lengthUnit;           ///< of the axes; may be empty
  bool isDeviation = false;     ///< has colours of its own
  bool coloredSamples = false;  ///< samples are filled by their value on the same scale
};

/// Draws a two-dimensional grid in colour with the samples on top: x to the right and y up at one
/// scale, ticks and labels on the axes, the colour scale to the right. Thousands of samples would
/// hide the map: they are thinned to dots, one in each small square of the picture. The same input
/// gives the same pixels. The samples live as long as the picture.
Picture drawMap(const NbgGeomGrid &grid, const std::vector<double> &values, const Samples &samples,
                const MapStyle &style);

}  // namespace orvenal
