#include "app/plot/PlotStyle.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

double tickStepOf(QCPAxis &axis)
{
  QVector<double> ticks;
  axis.ticker()->generate(axis.range(), QLocale::c(), QLatin1Char('g'), 6, ticks, nullptr, nullptr);
  return ticks.size() > 1 ? (ticks.last() - ticks.first()) / (ticks.size() - 1)
                          : axis.range().size();
}

/// Decimals that write multiples of a step exactly; steps between large numbers are not exact.
int decimalsOf(double step)
{
  constexpr int most = 12;
  constexpr double rounding = 1e-4;
  double scaled = step;
  for (int decimals = 0; decimals < most; ++decimals, scaled *= 10.) {
    if (scaled >= 0.5 && std::abs(scaled - std::round(scaled)) < rounding * scaled)
      return decimals;
  }
  return most;
}

/// Width of the widest label among the ticks.
double widestLabelOf(const QCPAxis &axis, int decimals)
{
  const QFontMetricsF metrics(axis.tickLabelFont());
  return std::max(metrics.horizontalAdvance(QString::number(axis.range().lower, 'f', decimals)),
                  metrics.horizontalAdvance(QString::number(axis.range().upper, 'f', decimals)));
}

bool isHorizontal(const QCPAxis &axis)
{
  return axis.axisType() == QCPAxis::atBottom || axis.axisType() == QCPAxis::atTop;
}

}  // namespace

QFont fontOf(int points, bool bold)
{
  QFont font(QStringLiteral("DejaVu Sans"), points);
  font.setBold(bold);
  return font;
}

QString axisLabel(const QString &name, const QString &unit)
{
  return unit.isEmpty() ? name : QStringLiteral("%1 [%2]").arg(name, unit);
}

void styleAxis(QCPAxis &axis, const QString &label)
{
  axis.setTickLabelFont(fontOf(9));
  axis.setLabelFont(fontOf(10));
  axis.setLabel(label);
  axis.setTicks(true);
  axis.setTickLabels(true);
  axis.setTickLengthOut(4);
  axis.setTickLengthIn(0);
  axis.setSubTicks(false);
  axis.grid()->setPen(QPen(QColor(225, 225, 225), 0.8));
  axis.grid()->setZeroLinePen(Qt::NoPen);
}

QString wrapped(const QString &text, const QFont &font, double width)
{
  constexpr int mostLines = 3;
  const QFontMetricsF metrics(font);
  QStringList lines;
  for (const QString &word : text.simplified().split(' ', Qt::SkipEmptyParts)) {
    const QString longer = lines.isEmpty() ? word : lines.last() + ' ' + word;
    if (!lines.isEmpty() && metrics.horizontalAdvance(longer) <= width)
      lines.last() = longer;
    else
      lines << metrics.elidedText(word, Qt::ElideRight, width);
  }
  if (lines.size() > mostLines) {
    const QString rest = QStringList(lines.mid(mostLines - 1)).join(' ');
    lines = lines.mid(0, mostLines - 1) << metrics.elidedText(rest, Qt::ElideRight, width);
  }
  return lines.join('\n');
}

void setTicks(QCPAxis &axis, double length, double roomPerTick)
{
  constexpr double gap = 12.;
  constexpr int mostDecimals = 6;
  constexpr double largest = 1e9;
  axis.setLabel(wrapped(axis.label(), axis.labelFont(), length));
  int decimals = 0;
  for (int count = std::max(2, int(length / roomPerTick)); count > 0; --count) {
    axis.ticker()->setTickCount(count);
    const double step = tickStepOf(axis);
    decimals = decimalsOf(step);
    if (!isHorizontal(axis) ||
        widestLabelOf(axis, decimals) + gap <= step / axis.range().size() * length)
      break;
  }
  const double size = std::max(std::abs(axis.range().lower), std::abs(axis.range().upper));
  const bool isPlain = size < largest && (decimals <= mostDecimals || size >= 1.);
  axis.setNumberFormat(isPlain ? QStringLiteral("f") : QStringLiteral("gb"));
  axis.setNumberPrecision(isPlain ? decimals : mostDecimals);
}

void closeFrame(QCustomPlot &plot)
{
  plot.axisRect()->setupFullAxesBox();
  for (QCPAxis *axis : {plot.xAxis2, plot.yAxis2}) {
    axis->setTicks(false);
    axis->setTickLabels(false);
  }
}

void addText(QCustomPlot &plot, const QString &text, const QFont &font, double width)
{
  if (text.isEmpty())
    return;
  const int row = plot.plotLayout()->rowCount() - 1;
  plot.plotLayout()->insertRow(row);
  auto *element = new QCPTextElement(&plot, wrapped(text, font, width), font);
  element->setMargins(QMargins(4, row == 0 ? 6 : 0, 4, 4));
  plot.plotLayout()->addElement(row, 0, element);
}

QSize sizeFor(QCustomPlot &plot, const QSizeF &area)
{
  const QSize trial(int(area.width()) + 200, int(area.height()) + 160);
  plot.setViewport(QRect(QPoint(0, 0), trial));
  plot.replot(QCustomPlot::rpImmediateRefresh);
  return trial + QSize(int(area.width()), int(area.height())) - plot.axisRect()->size();
}

}  // namespace orvenal
