#include "app/plot/PlotStyle.h"

#include "app/base/NumberText.h"

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

/// "0.02", "500", "2·10⁶"
QString logarithmicLabel(int factor, int power)
{
  constexpr int mostZeros = 4;
  if (power < -mostZeros || power > mostZeros) {
    static const QString digits = QString::fromUtf8("⁰¹²³⁴⁵⁶⁷⁸⁹");
    QString raised = power < 0 ? QString(QChar(0x207B)) : QString();
    for (const QChar digit : QString::number(std::abs(power)))
      raised += digits[digit.digitValue()];
    return (factor == 1 ? QString() : QString::number(factor) + QChar(0xB7)) + "10" + raised;
  }
  return QString::number(factor * std::pow(10., power), 'f', std::max(0, -power));
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
  constexpr double largest = 1e8;
  constexpr double mostTicksFromZero = 1e4;  // more take so many digits that zeros do not matter
  constexpr double largestPlain = 1e13;
  axis.setLabel(wrapped(axis.label(), axis.labelFont(), length));
  int decimals = 0;
  double step = 1.;
  for (int count = std::max(2, int(length / roomPerTick)); count > 0; --count) {
    axis.ticker()->setTickCount(count);
    step = tickStepOf(axis);
    decimals = decimalsOf(step);
    if (!isHorizontal(axis) ||
        widestLabelOf(axis, decimals) + gap <= step / axis.range().size() * length)
      break;
  }
  const double size = std::max(std::abs(axis.range().lower), std::abs(axis.range().upper));
  const bool isShort = size < largest || (size < largestPlain && size / step > mostTicksFromZero);
  const bool isPlain = isShort && (decimals <= mostDecimals || size >= 1.);
  axis.setNumberFormat(isPlain ? QStringLiteral("f") : QStringLiteral("gb"));
  axis.setNumberPrecision(isPlain ? decimals : mostDecimals);
}

void setLogarithmicTicks(QCPAxis &axis, double length, double roomPerTick)
{
  axis.setLabel(wrapped(axis.label(), axis.labelFont(), length));
  const QCPRange range = axis.range();
  const int last = int(std::ceil(std::log10(range.upper)));
  const double perDecade = length / std::max(1e-9, std::log10(range.upper / range.lower));
  // A factor of 2 is 0.3 of a decade.
  const QVector<int> factors =
      0.3 * perDecade >= 0.5 * roomPerTick ? QVector<int>{1, 2, 5} : QVector<int>{1};
  const int stride = std::max(1, int(std::ceil(roomPerTick / perDecade)));
  const int first = stride * int(std::floor(std::log10(range.lower) / stride));
  auto ticker = QSharedPointer<QCPAxisTickerText>::create();
  for (int power = first; power <= last; power += stride) {
    for (const int factor : factors) {
      const double place = factor * std::pow(10., power);
      if (range.contains(place))
        ticker->addTick(place, logarithmicLabel(factor, power));
    }
  }
  ticker->setSubTickCount(0);
  axis.setTicker(ticker);
}

void setCountTicks(QCPAxis &axis)
{
  constexpr double most = 8.;
  double step = 1.;
  for (double power = 1.; axis.range().upper > most * step; power *= 10.) {
    for (const double factor : {1., 2., 5.}) {
      step = factor * power;
      if (axis.range().upper <= most * step)
        break;
    }
  }
  auto ticker = QSharedPointer<QCPAxisTickerFixed>::create();
  ticker->setTickStep(step);
  axis.setTicker(ticker);
  axis.setNumberFormat(QStringLiteral("f"));
  axis.setNumberPrecision(0);
}

double longSideOf(double width, double height)
{
  constexpr double usual = 620.;
  constexpr double longest = 900.;
  const double ratio = std::max(width, height) / std::min(width, height);
  return ratio > 0. ? std::clamp(0.3 * ratio * usual, usual, longest) : usual;
}

QString samplesText(qint64 count)
{
  return count == 1 ? QObject::tr("1 sample") : QObject::tr("%1 samples").arg(groupedText(count));
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
  const QSize wanted(int(area.width()), int(area.height()));
  QSize size = wanted + QSize(200, 160);
  // What is beside the area may take another part of a larger picture.
  for (int trial = 0; trial < 2; ++trial) {
    plot.setViewport(QRect(QPoint(0, 0), size));
    plot.replot(QCustomPlot::rpImmediateRefresh);
    size += wanted - plot.axisRect()->size();
  }
  return size;
}

}  // namespace orvenal
