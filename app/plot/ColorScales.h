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
  bool isCut = false;          ///< extreme values lie outside and have the colour of the end
  bool isLogarithmic = false;  ///< equal ratios of values are equal steps of colour
  bool isEmpty = false;        ///< there is no value
};

/// From the least to the largest defined value. When a few extreme ones would take more than half
/// of the colours, the range ends at the quantiles of 1 % and 99 %; positive values of which half
/// would share a tenth of the colours get a logarithmic range. A constant, but for rounding, gets
/// some room.
ColorRange colorRangeOf(const std::vector<double> &values);

/// What a reader has to be told of the range: that it is cut or logarithmic; may be empty.
QString remarkOf(const ColorRange &range);

QColor colorOf(const QCPColorGradient &gradient, const ColorRange &range, double value);

/// A colour scale with its label to the right of the last row of a plot.
QCPColorScale &addColorScale(QCustomPlot &plot, const QString &label);

/// The colours of the scale, and ticks for a scale of that length.
void setColors(QCPColorScale &scale, const QCPColorGradient &gradient, const ColorRange &range,
               double length, double roomPerTick);

/// Makes both axes have exactly one scale in a picture of that size: the range of the axis with
/// room to spare is widened.
void equalizeScales(QCustomPlot &plot, const QSize &size);

}  // namespace orvenal
