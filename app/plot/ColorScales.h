#pragma once

#include "app/plot/PlotStyle.h"

namespace orvenal {

/// Colour scales that keep their order for colour-blind eyes and in grey.
enum class ColorScale { VIRIDIS, CIVIDIS };

/// The scale as a gradient; NaN is transparent.
QCPColorGradient gradientOf(ColorScale scale);

/// A colour scale with its label to the right of the last row of a plot.
QCPColorScale &addColorScale(QCustomPlot &plot, const QString &label);

/// Makes both axes have exactly one scale in a picture of that size: the range of the axis with
/// room to spare is widened.
void equalizeScales(QCustomPlot &plot, const QSize &size);

}  // namespace orvenal
