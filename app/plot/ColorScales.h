#pragma once

#include "app/plot/PlotStyle.h"

#include <vector>

namespace orvenal {

/// Colour scales that keep their order for colour-blind eyes; the first two in grey too. The last
/// one has a middle of its own, from which values go both ways.
enum class ColorScale { VIRIDIS, CIVIDIS, DIVERGING };

/// The scale as a gradient; NaN is transparent.
QCPColorGradient gradientOf(ColorScale scale);

/// Values that colours are given to.
struct ColorRange
{
  QCPRange range;
  bool isCut = false;  ///< extreme values lie outside and have the colour of the end
};

/// From the least to the largest defined value. When a few extreme ones would take more than half
/// of the colours, the range ends at the quantiles of 1 % and 99 %. A constant gets some room.
ColorRange colorRangeOf(const std::vector<double> &values);

/// What a cut range has to be told to a reader; empty when it is not cut.
QString remarkOf(const ColorRange &range);

/// A colour scale with its label to the right of the last row of a plot.
QCPColorScale &addColorScale(QCustomPlot &plot, const QString &label);

/// Makes both axes have exactly one scale in a picture of that size: the range of the axis with
/// room to spare is widened.
void equalizeScales(QCustomPlot &plot, const QSize &size);

}  // namespace orvenal
