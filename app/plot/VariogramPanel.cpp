#include "app/plot/VariogramPanel.h"

#include "app/study/Variography.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

qint64 mostPairsOf(const VariogramSet &set)
{
  qint64 most = 1;
  for (const VariogramCurve &curve : set.curves) {
    for (const qint64 pairs : curve.pairs)
      most = std::max(most, pairs);
  }
  return most;
}

/// Points of the model along a curve's direction. A nugget jumps at distance 0: they begin just
/// after it.
QVector<QPointF> modelPoints(const VariogramPanel &panel, const VariogramCurve &curve)
{
  constexpr int nSteps = 400;
  const double maxDistance = panel.xAxis().range().upper;
  QVector<QPointF> points;
  for (int step = 0; step <= nSteps; ++step) {
    const double distance = maxDistance * std::max<double>(step, 1e-6 * nSteps) / nSteps;
    points << QPointF(distance, panel.style.model->calcVarioIJ(panel.set.first, panel.set.second,
                                                               curve.direction * distance));
  }
  return points;
}

/// The curves that have a line of the model: the first one for an isotropic model, else those of a
/// direction.
QVector<int> curvesWithModel(const VariogramPanel &panel)
{
  QVector<int> curves;
  if (!panel.style.model)
    return curves;
  if (isIsotropic(*panel.style.model, panel.style.nDimensions))
    return {0};
  for (int i = 0; i < panel.set.curves.size(); ++i) {
    if (!panel.set.curves[i].isOmnidirectional)
      curves << i;
  }
  return curves;
}

/// Whether a point would be cut by an axis at 0.
bool isNearZero(const VariogramSet &set, double least)
{
  return std::any_of(set.curves.begin(), set.curves.end(), [least](const VariogramCurve &curve) {
    return std::any_of(curve.values.begin(), curve.values.end(),
                       [least](double value) { return value < least; });
  });
}

/// From 0 to the curves, the model and the sill, with some room; cross variograms may be below 0.
QCPRange valueRange(const VariogramPanel &panel)
{
  const VariogramSet &set = panel.set;
  QCPRange range(0., 0.);
  for (const VariogramCurve &curve : set.curves) {
    for (const double value : curve.values)
      range.expand(value);
  }
  for (const int curve : curvesWithModel(panel)) {
    for (const QPointF &point : modelPoints(panel, set.curves[curve]))
      range.expand(point.y());
  }
  if (set.hasSill)
    range.expand(set.sill);
  const double room = 0.08 * range.size();
  if (!(room > 0.))
    return QCPRange(0., 1.);
  if (range.lower == 0. && isNearZero(set, 0.25 * room))
    return QCPRange(-0.5 * room, range.upper + room);
  return QCPRange(range.lower < 0. ? range.lower - room : 0.,
                  range.upper > 0. ? range.upper + room : 0.);
}

/// Whether no rectangle that is taken and no line meets a place.
bool isFree(const QRectF &place, const QVector<QRectF> &taken, const QVector<QPolygonF> &lines)
{
  const auto meets = [&](const QRectF &other) { return place.intersects(other); };
  if (std::any_of(taken.begin(), taken.end(), meets))
    return false;
  const QPolygonF outline(QVector<QPointF>{place.topLeft(), place.topRight(), place.bottomRight(),
                                           place.bottomLeft(), place.topLeft()});
  for (const QPolygonF &line : lines) {
    for (int i = 1; i < line.size(); ++i) {
      if (place.contains(line[i]))
        return false;
      const QLineF piece(line[i - 1], line[i]);
      for (int edge = 1; edge < outline.size(); ++edge) {
        if (piece.intersects(QLineF(outline[edge - 1], outline[edge]), nullptr) ==
            QLineF::BoundedIntersection)
          return false;
      }
    }
  }
  return true;
}

/// Where the points of a curve are on the picture, and how large; their areas are in proportion to
/// the numbers of pairs.
class CurvePoints
{
public:
  CurvePoints(const VariogramPanel &panel, int curve, qint64 mostPairs)
      : style(directionStyle(curve)),
        _xAxis(&panel.xAxis()),
        _yAxis(&panel.yAxis()),
        _curve(panel.set.curves[curve]),
        _mostPairs(mostPairs),
        _largestMark(panel.largestMark)
  {
  }

  QPolygonF centers() const
  {
    QPolygonF points;
    for (int lag = 0; lag < _curve.distances.size(); ++lag)
      points << QPointF(_xAxis->coordToPixel(_curve.distances[lag]),
                        _yAxis->coordToPixel(_curve.values[lag]));
    return points;
  }

  double radius(int lag) const
  {
    const double share = double(_curve.pairs[lag]) / double(_mostPairs);
    return _largestMark * std::max(0.3, std::sqrt(share));
  }

  QString number(int lag) const { return shortCount(_curve.pairs[lag]); }

  const DirectionStyle style;

private:
  QCPAxis *_xAxis;
  QCPAxis *_yAxis;
  VariogramCurve _curve;
  qint64 _mostPairs;
  double _largestMark;
};

/// What is drawn over the plot area of a panel.
class PanelLayer : public QCPLayerable
{
public:
  explicit PanelLayer(const VariogramPanel &panel)
      : QCPLayerable(panel.area.parentPlot(), QStringLiteral("main"), &panel.area),
        _area(panel.area)
  {
  }

protected:
  void applyDefaultAntialiasingHint(QCPPainter *painter) const override
  {
    painter->setAntialiasing(true);
  }

  QRect clipRect() const override { return _area.rect(); }

private:
  QCPAxisRect &_area;
};

class CurveMarks : public PanelLayer
{
public:
  CurveMarks(const VariogramPanel &panel, const CurvePoints &points)
      : PanelLayer(panel), _points(points)
  {
  }

protected:
  void draw(QCPPainter *painter) override
  {
    const DirectionStyle &style = _points.style;
    const QPolygonF centers = _points.centers();
    painter->setPen(QPen(style.color, 0.8));
    painter->drawPolyline(centers);
    painter->setPen(style.isFilled ? QPen(Qt::white, 0.8) : QPen(style.color, 1.2));
    painter->setBrush(style.isFilled ? style.color : QColor(Qt::white));
    for (int lag = 0; lag < centers.size(); ++lag)
      painter->drawEllipse(centers[lag], _points.radius(lag), _points.radius(lag));
  }

private:
  CurvePoints _points;
};

/// The numbers of pairs of all curves, around their points where there is room.
class PairNumbers : public PanelLayer
{
public:
  PairNumbers(const VariogramPanel &panel, const QVector<CurvePoints> &curves)
      : PanelLayer(panel), _xAxis(panel.xAxis()), _yAxis(panel.yAxis()), _curves(curves)
  {
    for (const int withModel : curvesWithModel(panel))
      _lines << modelPoints(panel, panel.set.curves[withModel]);
    if (panel.set.hasSill)
      _lines << QVector<QPointF>{{_xAxis.range().lower, panel.set.sill},
                                 {_xAxis.range().upper, panel.set.sill}};
  }

protected:
  void draw(QCPPainter *painter) override
  {
    painter->setFont(fontOf(7));
    QVector<QRectF> taken;
    QVector<QPolygonF> lines = _drawnLines();
    for (const CurvePoints &curve : _curves) {
      lines << curve.centers();
      for (int lag = 0; lag < lines.last().size(); ++lag) {
        const double radius = curve.radius(lag) + 1.;
        taken << QRectF(lines.last()[lag] - QPointF(radius, radius),
                        QSizeF(2. * radius, 2. * radius));
      }
    }
    for (const CurvePoints &curve : _curves) {
      painter->setPen(_curves.size() == 1 ? QColor(90, 90, 90) : curve.style.color.darker(130));
      _drawNumbers(*painter, curve, lines, taken);
    }
  }

private:
  QVector<QPolygonF> _drawnLines() const
  {
    QVector<QPolygonF> lines;
    for (const QVector<QPointF> &line : _lines) {
      lines << QPolygonF();
      for (const QPointF &point : line)
        lines.last() << QPointF(_xAxis.coordToPixel(point.x()), _yAxis.coordToPixel(point.y()));
    }
    return lines;
  }

  void _drawNumbers(QCPPainter &painter, const CurvePoints &curve, const QVector<QPolygonF> &lines,
                    QVector<QRectF> &taken) const
  {
    const QPolygonF centers = curve.centers();
    for (int lag = 0; lag < centers.size(); ++lag) {
      const QString text = curve.number(lag);
      const QSizeF size(painter.fontMetrics().horizontalAdvance(text),
                        painter.fontMetrics().height());
      for (const QRectF &place : _placesAround(centers[lag], curve.radius(lag), size)) {
        if (!QRectF(clipRect()).contains(place) || !isFree(place, taken, lines))
          continue;
        painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, text);
        taken << place.adjusted(-3., 0., 3., 0.);
        break;
      }
    }
  }

  /// Below, right (a rising curve leaves room there), above and left.
  static QVector<QRectF> _placesAround(const QPointF &point, double radius, const QSizeF &size)
  {
    const double away = radius + 1.5;
    const double middle = -0.5 * size.width();
    return {QRectF(point + QPointF(middle, away), size),
            QRectF(point + QPointF(away, -0.3 * size.height()), size),
            QRectF(point + QPointF(middle, -away - size.height()), size),
            QRectF(point + QPointF(-away - size.width(), -0.7 * size.height()), size)};
  }

  QCPAxis &_xAxis;
  QCPAxis &_yAxis;
  QVector<CurvePoints> _curves;
  QVector<QVector<QPointF>> _lines;  ///< of the model and the sill
};

void addLine(const VariogramPanel &panel, const QPen &pen, const QVector<QPointF> &points)
{
  QVector<double> distances, values;
  for (const QPointF &point : points) {
    distances << point.x();
    values << point.y();
  }
  QCPGraph *graph = panel.area.parentPlot()->addGraph(&panel.xAxis(), &panel.yAxis());
  graph->setData(distances, values, true);
  graph->setPen(pen);
  graph->removeFromLegend();
}

/// Between +/- sqrt(g_ii g_jj) of the model.
void addLimits(const VariogramPanel &panel, const VariogramCurve &curve)
{
  const NgmVModel &model = *panel.style.model;
  QVector<QPointF> points = modelPoints(panel, curve);
  for (QPointF &point : points) {
    const NbgVector3D h = curve.direction * point.x();
    const double product = model.calcVarioIJ(panel.set.first, panel.set.first, h) *
                           model.calcVarioIJ(panel.set.second, panel.set.second, h);
    point.setY(std::sqrt(std::max(0., product)));
  }
  addLine(panel, limitPen(), points);
  for (QPointF &point : points)
    point.setY(-point.y());
  addLine(panel, limitPen(), points);
}

/// One line for an isotropic model, else one per direction in its colour; a curve of all directions
/// together has none then.
void addModels(const VariogramPanel &panel)
{
  const VariogramSet &set = panel.set;
  const bool isOneLine = isIsotropic(*panel.style.model, panel.style.nDimensions);
  if (isOneLine && set.isCross())
    addLimits(panel, set.curves.first());
  for (const int curve : curvesWithModel(panel)) {
    const QPen pen = isOneLine ? modelPen(QColor(60, 60, 60)) : modelPen(directionStyle(curve));
    addLine(panel, pen, modelPoints(panel, set.curves[curve]));
  }
}

void addSill(const VariogramPanel &panel)
{
  QCPGraph *graph = panel.area.parentPlot()->addGraph(&panel.xAxis(), &panel.yAxis());
  const QCPRange range = panel.xAxis().range();
  graph->setData({range.lower, range.upper}, {panel.set.sill, panel.set.sill}, true);
  graph->setPen(sillPen());
  graph->removeFromLegend();
}

}  // namespace

DirectionStyle directionStyle(int direction)
{
  // Colours that colour-blind eyes tell apart (Okabe and Ito, 2008).
  static const char *const colors[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                       "#56b4e9", "#e69f00", "#000000"};
  constexpr int nColors = int(std::size(colors));
  DirectionStyle style;
  style.color = QColor(QLatin1String(colors[direction % nColors]));
  style.isFilled = direction / nColors % 2 == 0;
  style.line = style.isFilled ? Qt::SolidLine : Qt::DashLine;
  return style;
}

QString shortCount(qint64 count)
{
  constexpr qint64 mostPlain = 99999;
  if (count <= mostPlain)
    return QString::number(count);
  double shown = double(count);
  const char *unit = "";
  for (const char *larger : {"k", "M", "G", "T"}) {
    if (shown < 999.5)
      break;
    shown /= 1000.;
    unit = larger;
  }
  return QString::number(shown, 'g', 3) + QLatin1String(unit);
}

QPen modelPen(const QColor &color)
{
  return QPen(color, 2.2);
}

QPen modelPen(const DirectionStyle &style)
{
  return QPen(style.color, 2.2, style.line);
}

QPen sillPen()
{
  return QPen(QColor(90, 90, 90), 1., Qt::DashLine);
}

QPen limitPen()
{
  return QPen(QColor(60, 60, 60), 1., Qt::DotLine);
}

bool isIsotropic(const NgmVModel &model, int nDimensions)
{
  for (int i = 0; i < model.getNStructures(); ++i) {
    const NgmAVStruct &structure = model.getStructure(i);
    if (!(nDimensions < 3 ? structure.isIsotropic2D() : structure.isIsotropic()))
      return false;
  }
  return true;
}

void drawPanel(const VariogramPanel &panel, double maxDistance)
{
  panel.xAxis().setRange(0., maxDistance > 0. ? 1.04 * maxDistance : 1.);
  panel.yAxis().setRange(valueRange(panel));
  if (panel.set.hasSill)
    addSill(panel);
  if (panel.style.model)
    addModels(panel);
  const qint64 mostPairs = mostPairsOf(panel.set);
  QVector<CurvePoints> curves;
  for (int i = 0; i < panel.set.curves.size(); ++i)
    curves << CurvePoints(panel, i, mostPairs);
  // The plot owns what is drawn.
  for (const CurvePoints &points : curves)
    new CurveMarks(panel, points);
  if (panel.hasNumbers)
    new PairNumbers(panel, curves);
}

}  // namespace orvenal
