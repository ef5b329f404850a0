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

/// From 0 to the curves and the sill, with some room; cross variograms may be below 0.
QCPRange valueRange(const VariogramSet &set)
{
  QCPRange range(0., 0.);
  for (const VariogramCurve &curve : set.curves) {
    for (const double value : curve.values)
      range.expand(value);
  }
  if (set.hasSill)
    range.expand(set.sill);
  const double room = 0.08 * range.size();
  if (!(room > 0.))
    return QCPRange(0., 1.);
  return QCPRange(range.lower < 0. ? range.lower - room : 0.,
                  range.upper > 0. ? range.upper + room : 0.);
}

/// The points of one curve; circles whose areas are in proportion to the numbers of pairs.
class PairMarks : public QCPLayerable
{
public:
  PairMarks(const VariogramPanel &panel, const VariogramCurve &curve, qint64 mostPairs,
            const QColor &color)
      : QCPLayerable(panel.area.parentPlot(), QStringLiteral("main"), &panel.area),
        _area(panel.area),
        _xAxis(panel.xAxis()),
        _yAxis(panel.yAxis()),
        _curve(curve),
        _mostPairs(mostPairs),
        _color(color),
        _largestMark(panel.largestMark),
        _hasNumbers(panel.hasNumbers)
  {
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
    painter->setPen(QPen(_color, 0.8));
    painter->drawPolyline(line);
    painter->setPen(QPen(Qt::white, 0.8));
    painter->setBrush(_color);
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

  /// Below the points, where there is room between neighbors.
  void _drawNumbers(QCPPainter &painter, const QPolygonF &points)
  {
    painter.setFont(fontOf(7));
    painter.setPen(QColor(90, 90, 90));
    double right = -1e9;
    for (int lag = 0; lag < points.size(); ++lag) {
      const QString text = QString::number(_curve.pairs[lag]);
      const double width = painter.fontMetrics().horizontalAdvance(text);
      const QRectF place(points[lag].x() - width / 2., points[lag].y() + _radiusOf(lag) + 1., width,
                         painter.fontMetrics().height());
      if (place.left() < right + 4. || place.bottom() > clipRect().bottom())
        continue;
      painter.drawText(place, Qt::AlignCenter | Qt::TextDontClip, text);
      right = place.right();
    }
  }

  QCPAxisRect &_area;
  QCPAxis &_xAxis;
  QCPAxis &_yAxis;
  VariogramCurve _curve;
  qint64 _mostPairs;
  QColor _color;
  double _largestMark;
  bool _hasNumbers;
};

/// A line from values at steps of the distance.
template <class Function>
void addLine(const VariogramPanel &panel, const QPen &pen, Function valueAt)
{
  constexpr int nSteps = 400;
  const double maxDistance = panel.xAxis().range().upper;
  QVector<double> distances, values;
  // A nugget jumps at distance 0: the line starts just after it.
  for (int step = 0; step <= nSteps; ++step) {
    distances << maxDistance * std::max<double>(step, 1e-6 * nSteps) / nSteps;
    values << valueAt(distances.last());
  }
  QCPGraph *graph = panel.area.parentPlot()->addGraph(&panel.xAxis(), &panel.yAxis());
  graph->setData(distances, values, true);
  graph->setPen(pen);
  graph->removeFromLegend();
}

void addModel(const VariogramPanel &panel, const VariogramCurve &curve, const QPen &pen)
{
  const NgmVModel &model = *panel.style.model;
  addLine(panel, pen, [&](double distance) {
    return model.calcVarioIJ(panel.set.first, panel.set.second, curve.direction * distance);
  });
}

/// Between +/- sqrt(g_ii g_jj) of the model.
void addLimits(const VariogramPanel &panel, const VariogramCurve &curve)
{
  const NgmVModel &model = *panel.style.model;
  for (const double sign : {-1., 1.}) {
    addLine(panel, limitPen(), [&](double distance) {
      const NbgVector3D h = curve.direction * distance;
      const double product = model.calcVarioIJ(panel.set.first, panel.set.first, h) *
                             model.calcVarioIJ(panel.set.second, panel.set.second, h);
      return sign * std::sqrt(std::max(0., product));
    });
  }
}

/// One line for an isotropic model, else one per direction in its colour; a curve of all directions
/// together has none then.
void addModels(const VariogramPanel &panel)
{
  const VariogramSet &set = panel.set;
  if (isIsotropic(*panel.style.model, panel.style.nDimensions)) {
    if (set.isCross())
      addLimits(panel, set.curves.first());
    addModel(panel, set.curves.first(), modelPen(QColor(60, 60, 60)));
    return;
  }
  for (int i = 0; i < set.curves.size(); ++i) {
    if (!set.curves[i].isOmnidirectional)
      addModel(panel, set.curves[i], modelPen(directionColor(i)));
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

QColor directionColor(int direction)
{
  // Colours that colour-blind eyes tell apart (Okabe and Ito, 2008).
  static const char *const colors[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                       "#56b4e9", "#e69f00", "#000000"};
  return QColor(QLatin1String(colors[std::size_t(direction) % std::size(colors)]));
}

QPen modelPen(const QColor &color)
{
  return QPen(color, 2.2);
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
  panel.yAxis().setRange(valueRange(panel.set));
  if (panel.set.hasSill)
    addSill(panel);
  if (panel.style.model)
    addModels(panel);
  const qint64 mostPairs = mostPairsOf(panel.set);
  for (int i = 0; i < panel.set.curves.size(); ++i) {
    auto *marks = new PairMarks(panel, panel.set.curves[i], mostPairs, directionColor(i));
    Q_UNUSED(marks)  // the plot owns it
  }
}

}  // namespace orvenal
