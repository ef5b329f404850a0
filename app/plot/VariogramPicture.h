#pragma once

#include "app/plot/Picture.h"
#include "app/study/Job.h"

#include <QList>
#include <QString>

class NgmVModel;

namespace orvenal {

struct Variography;

/// What a picture of variograms shows besides the curves.
struct VariogramStyle
{
  QString title;
  QList<JobVariable> variables;  ///< the one to estimate first
  QString lengthUnit;            ///< may be empty
  int nDimensions = 2;
  const NgmVModel *model = nullptr;  ///< drawn along each direction when there is one
};

/// Draws experimental variograms by distance: points joined by thin lines, their areas in
/// proportion to the numbers of pairs, one colour and mark per direction; the model as thick lines
/// and the sill as a dashed one. A single curve has its numbers of pairs written beside the points.
///
/// Several variables make a matrix of panels, its lower triangle: variograms on the diagonal, cross
/// variograms below it. There a model has dotted lines too, between which a cross variogram has to
/// stay for the model to be admissible.
Picture drawVariograms(const Variography &variography, const VariogramStyle &style);

}  // namespace orvenal
