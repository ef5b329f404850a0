#pragma once

#include "app/plot/PlotLibrary.h"

#include <QFont>
#include <QString>

namespace orvenal {

/// What all pictures have in common: fonts, axes, texts. Lengths are in units of the layout.

QFont fontOf(int points, bool bold = false);

/// "x [m]"; the name alone without a unit.
QString axisLabel(const QString &name, const QString &unit);

/// Breaks a text between words into at most three lines of a width; what does not fit is cut, with
/// dots in its place.
QString wrapped(const QString &text, const QFont &font, double width);

void styleAxis(QCPAxis &axis, const QString &label);

/// Ticks that leave room between their labels, with the decimals that tell them apart, and the
/// label of the axis broken to its length; to be called when the range and the label are set.
void setTicks(QCPAxis &axis, double length, double roomPerTick);

/// Plain lines above and to the right of the plot area.
void closeFrame(QCustomPlot &plot);

/// A line of text above the plot area, below those that were added before, broken to a width.
void addText(QCustomPlot &plot, const QString &text, const QFont &font, double width);

/// The size of the picture whose plot area has the given size.
QSize sizeFor(QCustomPlot &plot, const QSizeF &area);

}  // namespace orvenal
