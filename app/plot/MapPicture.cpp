#include "app/plot/MapPicture.h"

#include "app/console/Progress.h"
#include "app/plot/ColorScales.h"
#include "app/plot/MapRaster.h"
#include "app/plot/PlotStyle.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomGrid.h"
#include "basic/geom/NbgVector3D.h"

#include <QObject>

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>

namespace orvenal {

namespace {

constexpr double longSide = 620.;      // of the plot area, in units of the layout
constexpr double shortestSide = 240.;  // narrower areas hold no labels
constexpr int mostCells = 1500;

/// Least and largest defined value; a constant gets some room.
QCPRange rangeOf(const std::vector<double> &values)
{
  double least = std::numeric_limits<double>::infinity();
  double largest = -least;
  for (const double value : values) {
    if (!NbbGlobal::isDefined(value))
      continue;
    least = std::min(least, value);
    largest = std::max(largest, value);
  }
  if (least > largest)
    return QCPRange(0., 1.);
  const double room = least < largest ? 0. : std::max(0.5 * std::abs(least), 1e-6);
  return QCPRange(least - room, largest + room);
}

/// The grid and the samples, with a little space around them.
NbgBox extentOf(const NbgGeomGrid &grid, const Samples &samples)
{
  NbgBox box;
  grid.updateBoundingBox(box);
  for (std::size_t i = 0; i < samples.x.size(); ++i)
    box.extendWith(NbgVector3D(samples.x[i], samples.y[i], 0.));
  box.enlarge(0.02 * std::max(box.getSize().x(), box.getSize().y()));
  return box;
}

/// Plot area of one scale for an extent, in units of the layout.
QSizeF areaFor(double width, double height)
{
  const double scale = longSide / std::max(width, height);
  return QSizeF(std::max(shortestSide, std::round(width * scale)),
                std::max(shortestSide, std::round(height * scale)));
}

/// More samples than this would hide the map.
constexpr qint64 mostCircles = 5000;

QString legendOf(const Samples &samples, bool isColored)
{
  const QString count = Progress::grouped(samples.getCount());
  if (samples.getCount() == 0)
    return QString();
  if (samples.getCount() > mostCircles)
    return QObject::tr("Dots: some of %1 samples.").arg(count);
  QString legend = isColored ? QObject::tr("Circles: %1 samples, filled by their value.").arg(count)
                             : QObject::tr("Circles: %1 samples.").arg(count);
  if (samples.nUndefined > 0)
    legend += QObject::tr(" Crosses: no value.");
  return legend;
}

/// Circles at the samples, crosses where the value is undefined; dots when they are many.
class SampleMarks : public QCPLayerable
{
public:
  SampleMarks(QCustomPlot &plot, const Samples &samples,
              const std::optional<QCPColorGradient> &gradient, const QCPRange &range)
      : QCPLayerable(&plot, QStringLiteral("marks")),
        _plot(plot),
        _samples(samples),
        _gradient(gradient),
        _range(range)
  {
  }

protected:
  void applyDefaultAntialiasingHint(QCPPainter *painter) const override
  {
    painter->setAntialiasing(true);
  }

  QRect clipRect() const override { return _plot.axisRect()->rect(); }

  void draw(QCPPainter *painter) override
  {
    if (_samples.getCount() > mostCircles) {
      _drawDots(*painter);
      return;
    }
    for (std::size_t i = 0; i < _samples.x.size(); ++i) {
      if (NbbGlobal::isDefined(_samples.value[i]))
        _drawCircle(*painter, _centerOf(i), _samples.value[i]);
      else
        _drawCross(*painter, _centerOf(i));
    }
  }

private:
  QPointF _centerOf(std::size_t sample) const
  {
    return QPointF(_plot.xAxis->coordToPixel(_samples.x[sample]),
                   _plot.yAxis->coordToPixel(_samples.y[sample]));
  }

  double _radius() const
  {
    const double n = double(std::max<qint64>(1, _samples.getCount()));
    return std::clamp(60. / std::sqrt(n), 1., 3.2);
  }

  void _drawCircle(QCPPainter &painter, const QPointF &center, double value)
  {
    // A white ring around the dark line sets the mark off from dark and light cells.
    const double radius = _radius();
    painter.setPen(QPen(Qt::white, 2.));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(center, radius + 0.6, radius + 0.6);
    painter.setPen(QPen(Qt::black, 0.8));
    painter.setBrush(_gradient ? QBrush(_color(value)) : QBrush(Qt::white));
    painter.drawEllipse(center, radius, radius);
  }

  void _drawCross(QCPPainter &painter, const QPointF &center)
  {
    const QPointF up(_radius(), -_radius());
    const QPointF down(_radius(), _radius());
    for (const QPen &pen : {QPen(Qt::white, 2.6), QPen(Qt::black, 1.2)}) {
      painter.setPen(pen);
      painter.drawLine(center - up, center + up);
      painter.drawLine(center - down, center + down);
    }
  }

  /// The first sample of each square.
  void _drawDots(QCPPainter &painter)
  {
    constexpr double square = 6.;
    constexpr double dot = 1.2;
    const QRect area = clipRect();
    const int nColumns = int(area.width() / square) + 1;
    std::vector<bool> taken(std::size_t(nColumns) * std::size_t(area.height() / square + 1.));
    for (std::size_t i = 0; i < _samples.x.size(); ++i) {
      const QPointF center = _centerOf(i);
      if (!area.contains(center.toPoint()))
        continue;
      const int column = int((center.x() - area.left()) / square);
      const int row = int((center.y() - area.top()) / square);
      const std::size_t place =
          std::size_t(std::max(0, row)) * std::size_t(nColumns) + std::size_t(std::max(0, column));
      if (place >= taken.size() || taken[place])
        continue;
      taken[place] = true;
      painter.fillRect(QRectF(center.x() - dot, center.y() - dot, 2. * dot, 2. * dot), Qt::white);
      painter.fillRect(QRectF(center.x() - dot / 2., center.y() - dot / 2., dot, dot), Qt::black);
    }
  }

  QColor _color(double value) { return QColor::fromRgba(_gradient->color(value, _range)); }

  QCustomPlot &_plot;
  const Samples &_samples;
  std::optional<QCPColorGradient> _gradient;  // none for marks of one colour
  QCPRange _range;
};

void fillColorMap(QCPColorMap &map, const MapRaster &raster)
{
  map.data()->setSize(raster.nColumns, raster.nRows);
  map.data()->setRange(
      QCPRange(raster.xFirst, raster.xFirst + (raster.nColumns - 1) * raster.xStep),
      QCPRange(raster.yFirst, raster.yFirst + (raster.nRows - 1) * raster.yStep));
  for (int row = 0; row < raster.nRows; ++row) {
    for (int column = 0; column < raster.nColumns; ++column)
      map.data()->setCell(column, row, raster.at(column, row));
  }
  map.setInterpolate(false);
  map.setTightBoundary(false);
}

}  // namespace

Picture drawMap(const NbgGeomGrid &grid, const std::vector<double> &values, const Samples &samples,
                const MapStyle &style)
{
  const NbgBox extent = extentOf(grid, samples);
  const NbgVector3D low = extent.getLowerLeftCorner();
  const NbgVector3D high = extent.getUpperRightCorner();
  const QSizeF area = areaFor(high.x() - low.x(), high.y() - low.y());
  const QCPColorGradient gradient =
      gradientOf(style.isDeviation ? ColorScale::CIVIDIS : ColorScale::VIRIDIS);
  const QCPRange range = rangeOf(values);

  auto plot = std::make_unique<QCustomPlot>();
  plot->addLayer(QStringLiteral("marks"), plot->layer(QStringLiteral("axes")),
                 QCustomPlot::limAbove);
  addText(*plot, style.title, fontOf(13, true), area.width() + 80.);
  QStringList remarks = {style.subtitle, legendOf(samples, style.coloredSamples)};
  remarks.removeAll(QString());
  addText(*plot, remarks.join(QStringLiteral(". ")), fontOf(9), area.width() + 80.);
  styleAxis(*plot->xAxis, axisLabel(QObject::tr("x"), style.lengthUnit));
  styleAxis(*plot->yAxis, axisLabel(QObject::tr("y"), style.lengthUnit));
  closeFrame(*plot);
  plot->xAxis->setRange(low.x(), high.x());
  plot->yAxis->setRange(low.y(), high.y());
  setTicks(*plot->xAxis, area.width(), 95.);
  setTicks(*plot->yAxis, area.height(), 80.);

  auto *map = new QCPColorMap(plot->xAxis, plot->yAxis);
  fillColorMap(*map, rasterize(grid, values, mostCells));
  map->setColorScale(&addColorScale(*plot, style.valueLabel));
  map->setGradient(gradient);
  map->setDataRange(range);
  auto *marks = new SampleMarks(
      *plot, samples, style.coloredSamples ? std::optional(gradient) : std::nullopt, range);
  Q_UNUSED(marks)  // the plot owns it

  const QSize size = sizeFor(*plot, area);
  equalizeScales(*plot, size);
  return Picture(std::move(plot), size);
}

}  // namespace orvenal
