#include "app/plot/HistogramPicture.h"

#include "app/base/NumberText.h"
#include "app/plot/PanelSheet.h"
#include "app/study/Histogram.h"
#include "basic/base/NbbGlobal.h"
#include "basic/calc/NbcAlgorithm.h"
#include "basic/calc/NbcStatMono.h"
#include "geos/simu/NgmDensityFunctions.h"

#include <QFontMetricsF>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr double side = 400.;  // of each plot area, in units of the layout
const QColor barColor(86, 180, 233);
const QColor beyondColor(230, 159, 0);
const QColor lineColor(60, 60, 60);

struct Distribution
{
  std::vector<double> sorted;
  QVector<double> quartiles;
  Histogram histogram;
};

QCPAxis &xAxisOf(QCPAxisRect &area)
{
  return *area.axis(QCPAxis::atBottom);
}

QCPAxis &yAxisOf(QCPAxisRect &area)
{
  return *area.axis(QCPAxis::atLeft);
}

/// A plot area whose axes show exactly the given ranges.
Panel squarePanel(const QString &xLabel, const QString &yLabel, const QCPRange &x,
                  const QCPRange &y)
{
  Panel panel;
  panel.xLabel = xLabel;
  panel.yLabel = yLabel;
  panel.x = x;
  panel.y = y;
  panel.xScale = side / x.size();
  panel.yScale = side / y.size();
  return panel;
}

void addBars(QCPAxisRect &area, const QVector<double> &places, const QVector<double> &counts,
             double width, const QColor &color)
{
  auto *bars = new QCPBars(&xAxisOf(area), &yAxisOf(area));
  bars->setWidth(width);
  bars->setData(places, counts, true);
  // Thin bars would vanish behind their white borders.
  const bool isThin = width / xAxisOf(area).range().size() * side < 4.;
  bars->setPen(isThin ? QPen(Qt::NoPen) : QPen(Qt::white, 0.8));
  bars->setAntialiased(!isThin);
  bars->setBrush(color);
}

void addVertical(QCPAxisRect &area, double place, Qt::PenStyle style)
{
  if (!xAxisOf(area).range().contains(place))
    return;
  QCPGraph *line = area.parentPlot()->addGraph(&xAxisOf(area), &yAxisOf(area));
  const QCPRange range = yAxisOf(area).range();
  line->setData({place, place}, {range.lower, range.upper});
  line->setPen(QPen(lineColor, 1.4, style));
}

void drawClasses(PanelSheet &sheet, const Distribution &distribution, double mean,
                 const QString &valueLabel)
{
  const Histogram &histogram = distribution.histogram;
  const int n = int(histogram.counts.size());
  QVector<double> places, counts;
  for (int i = 0; i < n; ++i) {
    places << histogram.getLower(i) + 0.5 * histogram.width;
    counts << double(histogram.counts[std::size_t(i)]);
  }
  // Bars for the values beyond the classes, set off by half a bar.
  const double length = n * histogram.width;
  const double wide = std::max(histogram.width, 0.03 * length);
  QVector<double> endPlaces, endCounts;
  QCPRange range(histogram.first, histogram.getUpper());
  if (histogram.nBelow > 0) {
    endPlaces << histogram.first - wide;
    endCounts << double(histogram.nBelow);
    range.lower -= 1.5 * wide;
  }
  if (histogram.nAbove > 0) {
    endPlaces << histogram.getUpper() + wide;
    endCounts << double(histogram.nAbove);
    range.upper += 1.5 * wide;
  }
  const double room = n == 1 ? histogram.width : 0.03 * length;
  const double most =
      std::max(*std::max_element(counts.begin(), counts.end()),
               endCounts.isEmpty() ? 0. : *std::max_element(endCounts.begin(), endCounts.end()));
  QCPAxisRect &area = sheet.add(squarePanel(valueLabel, QObject::tr("Samples"),
                                            QCPRange(range.lower - room, range.upper + room),
                                            QCPRange(0., 1.06 * most)));
  addBars(area, places, counts, histogram.width, barColor);
  addBars(area, endPlaces, endCounts, wide, beyondColor);
  setCountTicks(yAxisOf(area));
  addVertical(area, mean, Qt::SolidLine);
  addVertical(area, distribution.quartiles[1], Qt::DashLine);
}

/// Probabilities in percent at the Gaussian quantiles of the axis, as many as there is room for.
void setProbabilityTicks(QCPAxis &axis)
{
  constexpr double gap = 5.;
  const QFontMetricsF metrics(axis.tickLabelFont());
  const double scale = side / axis.range().size();
  auto ticker = QSharedPointer<QCPAxisTickerText>::create();
  QVector<QPair<double, double>> taken;  // places and half widths of labels
  for (const double percent :
       {50., 10., 90., 1., 99., 0.1, 99.9, 0.001, 99.999, 25., 75., 5., 95., 0.01, 99.99}) {
    const QString label = QString::number(percent, 'g', 8);
    const double quantile = NgmDensityFunctions::invCdfGaussian(percent / 100.);
    const double place = quantile * scale;
    const double half = 0.5 * (metrics.horizontalAdvance(label) + gap);
    const bool isFree = std::none_of(taken.begin(), taken.end(), [&](const auto &other) {
      return std::abs(place - other.first) < half + other.second;
    });
    if (!isFree || !axis.range().contains(quantile))
      continue;
    taken.append({place, half});
    ticker->addTick(quantile, label);
  }
  ticker->setSubTickCount(0);
  axis.setTicker(ticker);
}

/// Points less than a pixel from the last one are left out.
void addPoints(QCPAxisRect &area, const std::vector<double> &quantiles,
               const std::vector<double> &values)
{
  constexpr double nearest = 0.8;
  const double xScale = side / xAxisOf(area).range().size();
  const double yScale = side / yAxisOf(area).range().size();
  QVector<double> x, y;
  for (std::size_t i = 0; i < values.size(); ++i) {
    const bool isNew = x.isEmpty() || (quantiles[i] - x.last()) * xScale >= nearest ||
                       (values[i] - y.last()) * yScale >= nearest || i + 1 == values.size();
    if (!isNew)
      continue;
    x << quantiles[i];
    y << values[i];
  }
  QCPGraph *points = area.parentPlot()->addGraph(&xAxisOf(area), &yAxisOf(area));
  points->setData(x, y, true);
  points->setLineStyle(QCPGraph::lsNone);
  const double size = x.size() > 300 ? 3. : 5.;
  points->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, QColor(0, 114, 178), size));
}

void drawProbabilities(PanelSheet &sheet, const Distribution &distribution,
                       const QString &valueLabel)
{
  const std::vector<double> &sorted = distribution.sorted;
  std::vector<double> quantiles;
  for (std::size_t i = 0; i < sorted.size(); ++i)
    quantiles.push_back(NgmDensityFunctions::invCdfGaussian(
        plottingPosition(qint64(i) + 1, qint64(sorted.size()))));
  const double reach = std::max(2., 1.08 * quantiles.back());
  const double spread = sorted.back() - sorted.front();
  const double room = spread > 0. ? 0.05 * spread : distribution.histogram.width;
  QCPAxisRect &area =
      sheet.add(squarePanel(QObject::tr("Probability [%]"), valueLabel, QCPRange(-reach, reach),
                            QCPRange(sorted.front() - room, sorted.back() + room)));
  setProbabilityTicks(xAxisOf(area));
  QCPGraph *line = area.parentPlot()->addGraph(&xAxisOf(area), &yAxisOf(area));
  const double upper = NgmDensityFunctions::invCdfGaussian(0.75);
  const double middle = 0.5 * (distribution.quartiles[0] + distribution.quartiles[2]);
  const double slope = (distribution.quartiles[2] - distribution.quartiles[0]) / (2. * upper);
  line->setData({-reach, reach}, {middle - slope * reach, middle + slope * reach});
  line->setPen(QPen(lineColor, 1.2, Qt::DashLine));
  addPoints(area, quantiles, sorted);
}

/// Six digits, or as many as tell the values of the distribution apart.
QString shown(double value, const Distribution &distribution)
{
  if (!NbbGlobal::isDefined(value))
    return QString(QChar(0x2013));
  const double least = distribution.sorted.front();
  const double largest = distribution.sorted.back();
  int digits = 6;
  if (largest > least)
    digits = int(3. + std::log10(std::max(std::abs(least), std::abs(largest)) / (largest - least)));
  return QString::number(value, 'g', std::clamp(digits, 6, 15));
}

/// Names above, values below.
void addStatistics(PanelSheet &sheet, const Distribution &distribution,
                   const NbcStatMono &statistics)
{
  const QStringList names = {
      QObject::tr("count"),          QObject::tr("mean"),           QObject::tr("std. dev."),
      QObject::tr("minimum"),        QObject::tr("lower quartile"), QObject::tr("median"),
      QObject::tr("upper quartile"), QObject::tr("maximum"),        QObject::tr("skewness")};
  const bool isConstant = !(statistics.getMaximum() > statistics.getMinimum());
  const QStringList values = {
      groupedText(statistics.getNDefined()),
      shown(statistics.getMean(), distribution),
      shown(statistics.getStandardDeviation(), distribution),
      shown(statistics.getMinimum(), distribution),
      shown(distribution.quartiles[0], distribution),
      shown(distribution.quartiles[1], distribution),
      shown(distribution.quartiles[2], distribution),
      shown(statistics.getMaximum(), distribution),
      shown(isConstant ? NbbGlobal::D_FFFF : statistics.getSkewness(), distribution)};
  sheet.addTable(names, values);
}

QString remarkOf(const Distribution &distribution, const NbcStatMono &statistics)
{
  const Histogram &histogram = distribution.histogram;
  QStringList remarks = {QObject::tr("Values: %1.").arg(groupedText(statistics.getNDefined()))};
  const qint64 nUndefined = statistics.getNTotal() - statistics.getNDefined();
  if (nUndefined > 0)
    remarks << QObject::tr("Undefined: %1.").arg(groupedText(nUndefined));
  remarks << QObject::tr("Left: mean (solid) and median (dashed).");
  if (histogram.nBelow > 0)
    remarks << QObject::tr("Orange: %1 below %2.")
                   .arg(groupedText(histogram.nBelow), shown(histogram.first, distribution));
  if (histogram.nAbove > 0)
    remarks << QObject::tr("Orange: %1 above %2.")
                   .arg(groupedText(histogram.nAbove), shown(histogram.getUpper(), distribution));
  remarks << QObject::tr(
      "Right: Gaussian values lie on a straight line; dashed: through the "
      "quartiles.");
  return remarks.join(' ');
}

}  // namespace

Picture drawHistogram(const std::vector<double> &values, const NbcStatMono &statistics,
                      const QString &title, const QString &valueLabel)
{
  Distribution distribution;
  distribution.sorted = sortedValues(values);
  distribution.histogram = makeHistogram(values);
  distribution.quartiles = NbcAlgorithm::calculateQuantiles(
      distribution.sorted.data(), int(distribution.sorted.size()), {0.25, 0.5, 0.75});
  PanelSheet sheet(title, remarkOf(distribution, statistics), 2. * side + 180.);
  drawClasses(sheet, distribution, statistics.getMean(), valueLabel);
  drawProbabilities(sheet, distribution, valueLabel);
  addStatistics(sheet, distribution, statistics);
  return sheet.finish();
}

}  // namespace orvenal
