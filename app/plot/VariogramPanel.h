#pragma once

#include "app/plot/PlotStyle.h"
#include "app/plot/VariogramPicture.h"

namespace orvenal {

struct VariogramSet;

/// One plot area of a picture of variograms: the curves of one variable or of two.
struct VariogramPanel
{
  QCPAxisRect &area;
  const VariogramSet &set;
  const VariogramStyle &style;
  double largestMark;  ///< radius of the point with most pairs
  bool hasNumbers;     ///< of pairs, beside the points

  QCPAxis &xAxis() const { return *area.axis(QCPAxis::atBottom); }
  QCPAxis &yAxis() const { return *area.axis(QCPAxis::atLeft); }
};

/// Colour of a direction.
QColor directionColor(int direction);

QPen modelPen(const QColor &color);
QPen sillPen();
QPen limitPen();

/// Whether the ranges of all structures are the same in the directions that there are.
bool isIsotropic(const NgmVModel &model, int nDimensions);

/// Fits the ranges of the axes to the curves and the sill, and draws all of them, the model behind
/// the points.
void drawPanel(const VariogramPanel &panel, double maxDistance);

}  // namespace orvenal
