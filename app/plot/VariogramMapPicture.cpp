#include "app/plot/VariogramMapPicture.h"

#include "app/plot/ColorScales.h"
#include "app/study/VariogramMap.h"
#include "basic/base/NbbGlobal.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvenal {

namespace {

constexpr double side = 460.;  // of the plot area, in units of the layout

QString squared(const QString &name, const QString &unit)
{
  return axisLabel(name, unit.isEmpty() ? unit : '(' + unit + ')' + QChar(0xB2));
}

std::unique_ptr<QCustomPlot> makePlot(const VariogramStyle &style, const QString &remark,
                                      const QString &xLabel, const QString &yLabel)
{
  auto plot = std::make_unique<QCustomPlot>();
  addText(*plot, style.title, fontOf(13, true), side + 80.);
  addText(*plot, remark, fontOf(9), side + 80.);
  styleAxis(*plot->xAxis, xLabel);
  styleAxis(*plot->yAxis, yLabel);
  closeFrame(*plot);
  return plot;
}

void setRanges(QCustomPlot &plot, const QCPRange &x, const QCPRange &y)
{
  plot.xAxis->setRange(x);
  plot.yAxis->setRange(y);
  setTicks(*plot.xAxis, side, 80.);
  setTicks(*plot.yAxis, side, 60.);
}

QCPColorMap &addCells(QCustomPlot &plot, int nColumns, int nRows, const QString &label)
{
  auto *cells = new QCPColorMap(plot.xAxis, plot.yAxis);
  cells->data()->setSize(nColumns, nRows);
  cells->setInterpolate(false);
  cells->setTightBoundary(false);
  cells->setColorScale(&addColorScale(plot, label));
  cells->setGradient(gradientOf(ColorScale::VIRIDIS));
  return *cells;
}

}  // namespace

Picture drawVariogramMap(const VariogramMap &map, const VariogramStyle &style)
{
  auto plot = makePlot(style, QObject::tr("Variogram by the vector between two samples."),
                       axisLabel(QObject::tr("East"), style.lengthUnit),
                       axisLabel(QObject::tr("North"), style.lengthUnit));
  const QCPRange range(-map.radius, map.radius);
  setRanges(*plot, range, range);
  QCPColorMap &cells = addCells(*plot, map.nPixels, map.nPixels,
                                squared(QObject::tr("Variogram"), style.variables.first().unit));
  cells.data()->setRange(range, range);
  double largest = 0.;
  for (int row = 0; row < map.nPixels; ++row) {
    for (int column = 0; column < map.nPixels; ++column) {
      const double value = map.values[std::size_t(row) * std::size_t(map.nPixels) + column];
      const bool isDefined = NbbGlobal::isDefined(value);
      cells.data()->setCell(column, row,
                            isDefined ? value : std::numeric_limits<double>::quiet_NaN());
      largest = isDefined ? std::max(largest, value) : largest;
    }
  }
  cells.setDataRange(QCPRange(0., largest > 0. ? largest : 1.));
  setTicks(*cells.colorScale()->axis(), side, 45.);
  const QSize size = sizeFor(*plot, QSizeF(side, side));
  equalizeScales(*plot, size);
  return Picture(std::move(plot), size);
}

Picture drawVariogramCloud(const VariogramCloud &cloud, const VariogramStyle &style)
{
  auto plot =
      makePlot(style,
               QObject::tr("Variogram cloud: every pair of samples by its distance and half its "
                           "squared difference."),
               axisLabel(QObject::tr("Distance"), style.lengthUnit),
               squared(QObject::tr("Half the squared difference"), style.variables.first().unit));
  setRanges(*plot, QCPRange(0., cloud.maxDistance), QCPRange(0., cloud.maxValue));
  QCPColorMap &cells =
      addCells(*plot, cloud.nDistances, cloud.nValues, QObject::tr("Pairs of samples"));
  const double dx = cloud.maxDistance / cloud.nDistances;
  const double dy = cloud.maxValue / cloud.nValues;
  cells.data()->setRange(QCPRange(0.5 * dx, cloud.maxDistance - 0.5 * dx),
                         QCPRange(0.5 * dy, cloud.maxValue - 0.5 * dy));
  double most = 1.;
  for (int i = 0; i < cloud.nDistances; ++i) {
    for (int j = 0; j < cloud.nValues; ++j) {
      const double count = double(cloud.counts[std::size_t(i) * std::size_t(cloud.nValues) + j]);
      cells.data()->setCell(i, j, count > 0. ? count : std::numeric_limits<double>::quiet_NaN());
      most = std::max(most, count);
    }
  }
  cells.setDataScaleType(QCPAxis::stLogarithmic);
  cells.setDataRange(QCPRange(1., std::max(most, 10.)));
  setLogarithmicTicks(*cells.colorScale()->axis(), side, 45.);
  const QSize size = sizeFor(*plot, QSizeF(side, side));
  plot->setViewport(QRect(QPoint(0, 0), size));
  return Picture(std::move(plot), size);
}

}  // namespace orvenal
