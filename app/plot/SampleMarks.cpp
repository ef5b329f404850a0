#include "app/plot/SampleMarks.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

namespace orvenal {

namespace {

const char *const layerName = "marks";

/// The layer above the frames; it is made with the first marks.
QString layerOf(QCustomPlot &plot)
{
  const QString name = QLatin1String(layerName);
  if (!plot.layer(name))
    plot.addLayer(name, plot.layer(QStringLiteral("axes")), QCustomPlot::limAbove);
  return name;
}

bool isTriangle(const SampleMark &mark)
{
  return mark.shape == SampleMark::UP || mark.shape == SampleMark::DOWN;
}

}  // namespace

SampleMarks::SampleMarks(QCPAxisRect &area, std::vector<SampleMark> marks, double radius, Dots dots)
    : QCPLayerable(area.parentPlot(), layerOf(*area.parentPlot()), &area),
      _area(area),
      _marks(std::move(marks)),
      _radius(radius),
      _dots(dots)
{
  constexpr double smallest = 1.;
  const double n = double(std::max<std::size_t>(1, _marks.size()));
  _radius = std::clamp(19. * radius / std::sqrt(n), smallest, radius);
  // Triangles are drawn last, above the others.
  std::stable_partition(_marks.begin(), _marks.end(),
                        [](const SampleMark &mark) { return !isTriangle(mark); });
}

void SampleMarks::applyDefaultAntialiasingHint(QCPPainter *painter) const
{
  painter->setAntialiasing(true);
}

void SampleMarks::draw(QCPPainter *painter)
{
  if (_marks.size() > most) {
    std::vector<bool> taken;
    _drawDots(*painter, true, taken);
    _drawDots(*painter, false, taken);
    return;
  }
  const bool isCrowded = _isCrowded();
  for (const SampleMark &mark : _marks)
    _drawMark(*painter, mark, isCrowded);
}

/// Whether a good part of the marks shares the squares of a mark's size.
bool SampleMarks::_isCrowded() const
{
  constexpr double share = 0.75;
  std::set<std::pair<int, int>> squares;
  for (const SampleMark &mark : _marks) {
    const QPointF place = _placeOf(mark) / (2. * _radius);
    squares.insert({int(std::floor(place.x())), int(std::floor(place.y()))});
  }
  return double(squares.size()) < share * double(_marks.size());
}

QPointF SampleMarks::_placeOf(const SampleMark &mark) const
{
  return QPointF(_area.axis(QCPAxis::atBottom)->coordToPixel(mark.x),
                 _area.axis(QCPAxis::atLeft)->coordToPixel(mark.y));
}

void SampleMarks::_drawMark(QCPPainter &painter, const SampleMark &mark, bool isCrowded) const
{
  const QPointF place = _placeOf(mark);
  if (mark.shape == SampleMark::CROSS) {
    _drawCross(painter, place);
    return;
  }
  if (isTriangle(mark)) {
    _drawTriangle(painter, mark);
    return;
  }
  if (isCrowded) {
    const bool isPlain = _dots == OUTLINED && mark.fill == QColor(Qt::white);
    const double radius = isPlain ? 1. : std::max(1.6, 0.6 * _radius);
    painter.setPen(isPlain ? QPen(Qt::white, 0.5) : QPen(QColor(110, 110, 110), 0.4));
    painter.setBrush(mark.shape != SampleMark::CIRCLE ? QBrush(Qt::NoBrush)
                     : isPlain                        ? QBrush(Qt::black)
                                                      : QBrush(mark.fill));
    painter.drawEllipse(place, radius, radius);
    return;
  }
  // A white ring around the dark line sets the mark off from dark and light cells.
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 2.));
  painter.drawEllipse(place, _radius + 0.6, _radius + 0.6);
  painter.setPen(QPen(Qt::black, 0.8));
  if (mark.shape == SampleMark::CIRCLE)
    painter.setBrush(mark.fill);
  painter.drawEllipse(place, _radius, _radius);
}

void SampleMarks::_drawCross(QCPPainter &painter, const QPointF &place) const
{
  const QPointF up(_radius, -_radius);
  const QPointF down(_radius, _radius);
  for (const QPen &pen : {QPen(Qt::white, 2.6), QPen(Qt::black, 1.2)}) {
    painter.setPen(pen);
    painter.drawLine(place - up, place + up);
    painter.drawLine(place - down, place + down);
  }
}

void SampleMarks::_drawTriangle(QCPPainter &painter, const SampleMark &mark) const
{
  const double size = std::max(4., 1.5 * _radius);
  const double tip = mark.shape == SampleMark::UP ? -size : size;
  const QPointF place = _placeOf(mark);
  const QPolygonF triangle = {{place + QPointF(0., 1.2 * tip), place + QPointF(-size, -0.7 * tip),
                               place + QPointF(size, -0.7 * tip)}};
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(Qt::white, 3.));
  painter.drawPolygon(triangle);
  painter.setPen(QPen(Qt::black, 1.2));
  painter.setBrush(mark.fill);
  painter.drawPolygon(triangle);
}

void SampleMarks::_drawDots(QCPPainter &painter, bool isTriangles, std::vector<bool> &taken) const
{
  const double square = _dots == FILLED ? 4. : 10.;
  constexpr double dot = 1.2;
  const QRect area = clipRect();
  const auto nColumns = std::size_t(area.width() / square + 1.);
  taken.resize(nColumns * std::size_t(area.height() / square + 1.));
  for (const SampleMark &mark : _marks) {
    const QPointF place = _placeOf(mark);
    if (isTriangle(mark) != isTriangles || !area.contains(place.toPoint()))
      continue;
    const auto column = std::size_t(std::max(0., (place.x() - area.left()) / square));
    const auto row = std::size_t(std::max(0., (place.y() - area.top()) / square));
    const std::size_t cell = row * nColumns + column;
    if (cell >= taken.size() || taken[cell])
      continue;
    taken[cell] = true;
    const auto fillSquare = [&](double half, const QColor &color) {
      painter.fillRect(QRectF(place.x() - half, place.y() - half, 2. * half, 2. * half), color);
    };
    if (_dots == FILLED) {
      fillSquare(isTriangles ? 2.6 : 1.8, mark.fill);
    } else {
      fillSquare(dot, Qt::white);
      fillSquare(dot / 2., Qt::black);
    }
  }
}

}  // namespace orvenal
