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

/// Ticks at 1, 2 and 5 of each power of ten, or at fewer of them, for an axis of logarithms; its
/// label as setTicks() does.
void setLogarithmicTicks(QCPAxis &axis, double length, double roomPerTick);

/// Ticks at whole numbers only, from 0.
void setCountTicks(QCPAxis &axis);

/// Length of the longer side of a map, in units of the layout; long and narrow ones get more.
double longSideOf(double width, double height);

/// "1 sample", "1,234 samples".
QString samplesText(qint64 count);

/// Plain lines above and to the right of the plot area.
void closeFrame(QCustomPlot &plot);

/// A line of text above the plot area, below those that were added before, broken to a width.
void addText(QCustomPlot &plot, const QString &text, const QFont &font, double width);

/// The size of the picture whose plot area has the given size.
QSize sizeFor(QCustomPlot &plot, const QSizeF &area);

}  // namespace orvenal
