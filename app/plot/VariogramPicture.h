#pragma once

#include "app/plot/Picture.h"

#include <QString>

class NgmVModel;

namespace orvenal {

struct Variography;

/// What a picture of variograms shows besides the curves.
struct VariogramStyle
{
  QString title;
  QString valueUnit;   ///< of the variable; the axis has its square
  QString lengthUnit;  ///< may be empty
  int nDimensions = 2;
  const NgmVModel *model = nullptr;  ///< drawn along each direction when there is one
};

/// Draws experimental variograms by distance: points joined by thin lines, their areas in
/// proportion to the numbers of pairs, one colour and mark per direction; the model as thick lines
/// and the sill as a dashed one. A single curve has its numbers of pairs written beside the points.
Picture drawVariograms(const Variography &variography, const VariogramStyle &style);

}  // namespace orvenal
