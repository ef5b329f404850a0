#include "app/plot/ColorScales.h"

#include "app/study/Histogram.h"
#include "basic/calc/NbcAlgorithm.h"

#include <QObject>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

/// Differences of this part of the values are rounding.
constexpr double rounding = 1e-9;

/// Of sorted values.
ColorRange linearRangeOf(const std::vector<double> &sorted)
{
  const double least = sorted.front();
  const double largest = sorted.back();
  if (!(largest - least > rounding * std::max(std::abs(least), std::abs(largest)))) {
    const double room = std::max(0.5 * std::abs(least), 1e-6);
    return {QCPRange(least - room, least + room)};
  }
  const QVector<double> ends =
      NbcAlgorithm::calculateQuantiles(sorted.data(), int(sorted.size()), {0.01, 0.99});
  const double most = ends[1] - ends[0];
  if (!(most > 0.) || largest - least < 2. * most)
    return {QCPRange(least, largest)};
  // An end that is near the quantile stays.
  constexpr double near = 0.05;
  return {QCPRange(ends[0] - least < near * most ? least : ends[0],
                   largest - ends[1] < near * most ? largest : ends[1]),
          true};
}

/// Whether half of the sorted values would share a tenth of the colours of their range.
bool isSkewed(const std::vector<double> &sorted, const QCPRange &range)
{
  constexpr std::size_t fewest = 10;
  const double median = sorted[sorted.size() / 2];
  return sorted.size() >= fewest && sorted.front() > 0. && range.upper > 10. * median &&
         median - range.lower < 0.1 * range.size();
}

}  // namespace

/// Matplotlib's viridis (Smith and van der Walt, 2015) and cividis (Nunez et al., 2018); the last
/// one is ColorBrewer's PuOr (Brewer, 2003), from purple below to orange above.
QCPColorGradient gradientOf(ColorScale scale)
{
  static const QStringList viridis = {"#440154", "#482878", "#3e4989", "#31688e", "#26828e",
                                      "#1f9e89", "#35b779", "#6ece58", "#b5de2b", "#fde725"};
  static const QStringList cividis = {"#00224e", "#123570", "#3b496c", "#575d6d", "#707173",
                                      "#8a8678", "#a59c74", "#c3b369", "#e1cc55", "#fee838"};
  static const QStringList diverging = {"#2d004b", "#542788", "#8073ac", "#b2abd2",
                                        "#d8daeb", "#f7f7f7", "#fee0b6", "#fdb863",
                                        "#e08214", "#b35806", "#7f3b08"};
  const QStringList &colors = scale == ColorScale::VIRIDIS   ? viridis
                              : scale == ColorScale::CIVIDIS ? cividis
                                                             : diverging;
  QCPColorGradient gradient;
  gradient.clearColorStops();
  for (int i = 0; i < colors.size(); ++i)
    gradient.setColorStopAt(double(i) / (colors.size() - 1), QColor(colors[i]));
  gradient.setColorInterpolation(QCPColorGradient::ciRGB);
  gradient.setNanHandling(QCPColorGradient::nhTransparent);
  return gradient;
}

ColorRange colorRangeOf(const std::vector<double> &values)
{
  std::vector<double> sorted = sortedValues(values);
  if (sorted.empty())
    return {QCPRange(0., 1.), false, false, true};
  ColorRange range = linearRangeOf(sorted);
  if (!isSkewed(sorted, range.range))
    return range;
  for (double &value : sorted)
    value = std::log(value);
  range = linearRangeOf(sorted);
  range.range = QCPRange(std::exp(range.range.lower), std::exp(range.range.upper));
  range.isLogarithmic = true;
  return range;
}

QString remarkOf(const ColorRange &range)
{
  QStringList remarks;
  if (range.isLogarithmic)
    remarks << QObject::tr("The scale of colours is logarithmic.");
  if (range.isCut)
    remarks << QObject::tr(
        "The colours end at the quantiles of 1 % and 99 %; the values "
        "beyond have the colour of the end.");
  return remarks.join(' ');
}

QColor colorOf(const QCPColorGradient &gradient, const ColorRange &range, double value)
{
  QCPColorGradient colors = gradient;
  const double shown = std::clamp(value, range.range.lower, range.range.upper);
  return QColor::fromRgba(colors.color(shown, range.range, range.isLogarithmic));
}

QCPColorScale &addColorScale(QCustomPlot &plot, const QString &label)
{
  auto *scale = new QCPColorScale(&plot);
  plot.plotLayout()->addElement(plot.plotLayout()->rowCount() - 1, 1, scale);
  scale->setType(QCPAxis::atRight);
  scale->setBarWidth(16);
  scale->setLabel(label);
  scale->axis()->setLabelFont(fontOf(10));
  scale->axis()->setTickLabelFont(fontOf(9));
  scale->axis()->setNumberFormat(QStringLiteral("g"));
  scale->axis()->setNumberPrecision(6);
  scale->setMargins(QMargins(10, 0, 0, 0));
  auto *group = new QCPMarginGroup(&plot);
  plot.axisRect()->setMarginGroup(QCP::msBottom | QCP::msTop, group);
  scale->setMarginGroup(QCP::msBottom | QCP::msTop, group);
  return *scale;
}

void setColors(QCPColorScale &scale, const QCPColorGradient &gradient, const ColorRange &range,
               double length, double roomPerTick)
{
  scale.setGradient(gradient);
  scale.setDataScaleType(range.isLogarithmic ? QCPAxis::stLogarithmic : QCPAxis::stLinear);
  scale.setDataRange(range.range);
  if (range.isLogarithmic)
    setLogarithmicTicks(*scale.axis(), length, roomPerTick);
  else
    setTicks(*scale.axis(), length, roomPerTick);
}

void equalizeScales(QCustomPlot &plot, const QSize &size)
{
  plot.setViewport(QRect(QPoint(0, 0), size));
  plot.replot(QCustomPlot::rpImmediateRefresh);
  const QSize area = plot.axisRect()->size();
  const double xScale = plot.xAxis->range().size() / area.width();
  const double yScale = plot.yAxis->range().size() / area.height();
  if (xScale < yScale)
    plot.xAxis->setScaleRatio(plot.yAxis, 1.);
  else
    plot.yAxis->setScaleRatio(plot.xAxis, 1.);
}

}  // namespace orvenal
