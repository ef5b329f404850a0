#pragma once

#include "app/plot/Picture.h"

#include <QString>

#include <optional>
#include <vector>

class NbgGeomGrid;

namespace orvenal {

struct Samples;

/// What a map of samples shows besides them.
struct SampleMapStyle
{
  QString title;
  QString valueLabel;                 ///< beside the colour scale, with the unit
  QString lengthUnit;                 ///< of the axes; may be empty
  const NbgGeomGrid *grid = nullptr;  ///< its outline is drawn when there is one
};

/// Standardized errors beyond this are marked: with a model that fits, one Gaussian error of eighty
/// is.
constexpr double largestUsualError = 2.5;

/// Draws the samples at their places in the colours of their values, undefined ones as open
/// circles, all axes at one scale. Samples of three dimensions are seen from above, from the south
/// and from the east; heights are exaggerated where the side views would be too flat, and the views
/// say so. More than 5000 samples become dots, one in each small square of the picture.
Picture drawSampleMap(const Samples &samples, const SampleMapStyle &style);

/// The same with the standardized errors of a cross-validation (undefined ones are left out), from
/// purple to orange by way of white: the scale ends at plus and minus largestUsualError. Those
/// beyond are triangles, upward where the estimate is above the value.
Picture drawErrorMap(const Samples &samples, const std::vector<double> &standardizedErrors,
                     const SampleMapStyle &style);

}  // namespace orvenal
