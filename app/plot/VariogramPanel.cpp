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

/// The points of one curve; circles whose areas are in proportion to the numbers of pairs.
class PairMarks : public QCPLayerable
{
public:
  PairMarks(const VariogramPanel &panel, int curve, qint64 mostPairs)
      : QCPLayerable(panel.area.parentPlot(), QStringLiteral("main"), &panel.area),
        _area(panel.area),
        _xAxis(panel.xAxis()),
        _yAxis(panel.yAxis()),
        _curve(panel.set.curves[curve]),
        _mostPairs(mostPairs),
        _style(directionStyle(curve)),
        _largestMark(panel.largestMark),
        _hasNumbers(panel.hasNumbers)
  {
    for (const int withModel : _hasNumbers ? curvesWithModel(panel) : QVector<int>())
      _model << modelPoints(panel, panel.set.curves[withModel]);
  }

protected:
  void applyDefaultAntialiasingHint(QCPPainter *painter) const override
  {
    painter->setAntialiasing(true);
  }

  QRect clipRect() const override { return _area.rect(); }

  void draw(QCPPainter *painter) override
  {
    QPolygonF line;
    for (int lag = 0; lag < _curve.distances.size(); ++lag)
      line << _centerOf(lag);
    painter->setPen(QPen(_style.color, 0.8));
    painter->drawPolyline(line);
    painter->setPen(_style.isFilled ? QPen(Qt::white, 0.8) : QPen(_style.color, 1.2));
    painter->setBrush(_style.isFilled ? _style.color : QColor(Qt::white));
    for (int lag = 0; lag < line.size(); ++lag)
      painter->drawEllipse(line[lag], _radiusOf(lag), _radiusOf(lag));
    if (_hasNumbers)
      _drawNumbers(*painter, line);
  }

private:
  QPointF _centerOf(int lag) const
  {
    return QPointF(_xAxis.coordToPixel(_curve.distances[lag]),
                   _yAxis.coordToPixel(_curve.values[lag]));
  }

  double _radiusOf(int lag) const
  {
    const double share = double(_curve.pairs[lag]) / double(_mostPairs);
    return _largestMark * std::max(0.3, std::sqrt(share));
  }

  /// Around the points, where there is room.
  void _drawNumbers(QCPPainter &painter, const QPolygonF &points)
  {
    painter.setFont(fontOf(7));
    painter.setPen(QColor(90, 90, 90));
    QVector<QRectF> taken;
    for (int lag = 0; lag < points.size(); ++lag) {
      const double radius = _radiusOf(lag) + 1.;
      taken << QRectF(points[lag] - QPointF(radius, radius), QSizeF(2. * radius, 2. * radius));
    }
    QVector<QPolygonF> lines = {points};
    for (const QVector<QPointF> &model : _model) {
      lines << QPolygonF();
      for (const QPointF &point : model)
        lines.last() << QPointF(_xAxis.coordToPixel(point.x()), _yAxis.coordToPixel(point.y()));
    }
    for (int lag = 0; lag < points.size(); ++lag) {
      const QString text = shortCount(_curve.pairs[lag]);
      const QSizeF size(painter.fontMetrics().horizontalAdvance(text),
                        painter.fontMetrics().height());
      for (const QRectF &place : _placesAround(points[lag], _radiusOf(lag), size)) {
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

  QCPAxisRect &_area;
  QCPAxis &_xAxis;
  QCPAxis &_yAxis;
  VariogramCurve _curve;
  qint64 _mostPairs;
  DirectionStyle _style;
  QVector<QVector<QPointF>> _model;  ///< its lines
  double _largestMark;
  bool _hasNumbers;
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
  for (int i = 0; i < panel.set.curves.size(); ++i) {
    auto *marks = new PairMarks(panel, i, mostPairs);
    Q_UNUSED(marks)  // the plot owns it
  }
}

}  // namespace orvenal
