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

/// What sets a direction off from the others: a colour; from the eighth one on hollow points and
/// a dashed line of the model too.
struct DirectionStyle
{
  QColor color;
  bool isFilled = true;
  Qt::PenStyle line = Qt::SolidLine;
};

DirectionStyle directionStyle(int direction);

/// A number of pairs in a few digits: "99999", "123k", "4.56M".
QString shortCount(qint64 count);

QPen modelPen(const QColor &color);
QPen modelPen(const DirectionStyle &style);
QPen sillPen();
QPen limitPen();

/// Whether the ranges of all structures are the same in the directions that there are.
bool isIsotropic(const NgmVModel &model, int nDimensions);

/// Fits the ranges of the axes to the curves, the model and the sill, and draws all of them, the
/// model behind the points.
void drawPanel(const VariogramPanel &panel, double maxDistance);

}  // namespace orvenal
