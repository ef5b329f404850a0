#include "app/plot/VariogramPicture.h"

#include "app/plot/PlotStyle.h"
#include "app/study/Variography.h"
#include "geos/vmodel/NgmAVStruct.h"
#include "geos/vmodel/NgmVModel.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr double plotWidth = 620.;
constexpr double plotHeight = 400.;

/// Colours that colour-blind eyes tell apart (Okabe and Ito, 2008).
QColor colorOf(int curve)
{
  static const char *const colors[] = {"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                       "#56b4e9", "#e69f00", "#000000"};
  return QColor(QLatin1String(colors[std::size_t(curve) % std::size(colors)]));
}

qint64 mostPairsOf(const Variography &variography)
{
  qint64 most = 1;
  for (const VariogramCurve &curve : variography.curves) {
    for (const qint64 pairs : curve.pairs)
      most = std::max(most, pairs);
  }
  return most;
}

double largestOf(const Variography &variography, QVector<double> VariogramCurve::*values)
{
  double largest = 0.;
  for (const VariogramCurve &curve : variography.curves) {
    for (const double value : curve.*values)
      largest = std::max(largest, value);
  }
  return largest;
}

/// The points of one curve; circles whose areas are in proportion to the numbers of pairs.
class PairMarks : public QCPLayerable
{
public:
  PairMarks(QCustomPlot &plot, const VariogramCurve &curve, qint64 mostPairs, const QColor &color,
            bool hasNumbers)
      : QCPLayerable(&plot, QStringLiteral("main")),
        _plot(plot),
        _curve(curve),
        _mostPairs(mostPairs),
        _color(color),
        _hasNumbers(hasNumbers)
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
    return QPointF(_plot.xAxis->coordToPixel(_curve.distances[lag]),
                   _plot.yAxis->coordToPixel(_curve.values[lag]));
  }

  double _radiusOf(int lag) const
  {
    constexpr double least = 2.;
    constexpr double largest = 7.;
    return std::max(least, largest * std::sqrt(double(_curve.pairs[lag]) / double(_mostPairs)));
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

  QCustomPlot &_plot;
  VariogramCurve _curve;
  qint64 _mostPairs;
  QColor _color;
  bool _hasNumbers;
};

QCPItemStraightLine &addSill(QCustomPlot &plot, double sill)
{
  auto *line = new QCPItemStraightLine(&plot);
  line->point1->setCoords(0., sill);
  line->point2->setCoords(1., sill);
  line->setPen(QPen(QColor(90, 90, 90), 1., Qt::DashLine));
  return *line;
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

void addModel(QCustomPlot &plot, const NgmVModel &model, const VariogramCurve &curve,
              double maxDistance, const QColor &color)
{
  constexpr int nSteps = 400;
  QVector<double> distances, values;
  // A nugget jumps at distance 0: the line starts just after it.
  for (int step = 0; step <= nSteps; ++step) {
    distances << maxDistance * std::max<double>(step, 1e-6 * nSteps) / nSteps;
    values << model.calcVarioIJ(0, 0, curve.direction * distances.last());
  }
  QCPGraph *graph = plot.addGraph();
  graph->setData(distances, values, true);
  graph->setPen(QPen(color, 2.2));
  graph->removeFromLegend();
}

/// The graph carries the name; the marks draw themselves.
void addLegendEntry(QCustomPlot &plot, const QString &name, const QPen &pen, bool hasMarks)
{
  QCPGraph *graph = plot.addGraph();
  graph->setName(name);
  graph->setPen(pen);
  if (hasMarks)
    graph->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, pen.color(), 7));
}

QString valueLabel(const Variography &variography, const QString &unit)
{
  if (unit.isEmpty() || !variography.isVariogram)
    return variography.curveName;
  return QStringLiteral("%1 [%2]").arg(variography.curveName, '(' + unit + ')' + QChar(0xB2));
}

QString remarkOf(const Variography &variography, const VariogramStyle &style)
{
  QStringList parts;
  parts << (variography.curves.size() == 1
                ? QObject::tr("Experimental variogram, %1; numbers are pairs.")
                      .arg(variography.curves.first().name)
                : QObject::tr(
                      "Experimental variograms; areas of points are in proportion to pairs."));
  if (style.model && !isIsotropic(*style.model, style.nDimensions))
    parts << QObject::tr("Thick lines: the model.");
  return parts.join(' ');
}

void setUpAxes(QCustomPlot &plot, const Variography &variography, const VariogramStyle &style)
{
  styleAxis(*plot.xAxis, axisLabel(QObject::tr("Distance"), style.lengthUnit));
  styleAxis(*plot.yAxis, valueLabel(variography, style.valueUnit));
  closeFrame(plot);
  const double distance = largestOf(variography, &VariogramCurve::distances);
  double value = largestOf(variography, &VariogramCurve::values);
  if (variography.hasSill)
    value = std::max(value, variography.sill);
  plot.xAxis->setRange(0., distance > 0. ? 1.04 * distance : 1.);
  plot.yAxis->setRange(0., value > 0. ? 1.08 * value : 1.);
  setTicks(*plot.xAxis, plotWidth, 80.);
  setTicks(*plot.yAxis, plotHeight, 60.);
}

/// To the right of the plot area, where it hides nothing.
void setUpLegend(QCustomPlot &plot)
{
  plot.legend->setVisible(true);
  plot.legend->setFont(fontOf(9));
  plot.legend->setBorderPen(Qt::NoPen);
  auto *column = new QCPLayoutGrid;
  plot.plotLayout()->addElement(plot.plotLayout()->rowCount() - 1, 1, column);
  column->addElement(0, 0, plot.legend);
  column->addElement(1, 0, new QCPLayoutElement(&plot));
  column->setRowStretchFactor(0, 0.001);
  plot.plotLayout()->setColumnStretchFactor(1, 0.001);
}

/// One line for an isotropic model, else one per direction in its colour; a curve of all directions
/// together has none then.
void addModels(QCustomPlot &plot, const Variography &variography, const VariogramStyle &style)
{
  const double distance = plot.xAxis->range().upper;
  if (isIsotropic(*style.model, style.nDimensions)) {
    const QColor color(60, 60, 60);
    addModel(plot, *style.model, variography.curves.first(), distance, color);
    addLegendEntry(plot, QObject::tr("model"), QPen(color, 2.2), false);
    return;
  }
  for (int i = 0; i < variography.curves.size(); ++i) {
    if (!variography.curves[i].isOmnidirectional)
      addModel(plot, *style.model, variography.curves[i], distance, colorOf(i));
  }
}

}  // namespace

Picture drawVariograms(const Variography &variography, const VariogramStyle &style)
{
  auto plot = std::make_unique<QCustomPlot>();
  addText(*plot, style.title, fontOf(13, true), plotWidth + 40.);
  addText(*plot, remarkOf(variography, style), fontOf(9), plotWidth + 40.);
  setUpAxes(*plot, variography, style);
  if (style.model)
    addModels(*plot, variography, style);
  const qint64 mostPairs = mostPairsOf(variography);
  const bool isSingle = variography.curves.size() == 1;
  for (int i = 0; i < variography.curves.size(); ++i) {
    const VariogramCurve &curve = variography.curves[i];
    addLegendEntry(*plot, curve.name, QPen(colorOf(i), 0.8), true);
    auto *marks = new PairMarks(*plot, curve, mostPairs, colorOf(i), isSingle);
    Q_UNUSED(marks)  // the plot owns it
  }
  if (variography.hasSill) {
    addSill(*plot, variography.sill);
    addLegendEntry(*plot,
                   variography.isVariogram ? QObject::tr("variance of the samples")
                                           : QObject::tr("sill of the samples"),
                   QPen(QColor(90, 90, 90), 1., Qt::DashLine), false);
  }
  setUpLegend(*plot);
  const QSize size = sizeFor(*plot, QSizeF(plotWidth, plotHeight));
  return Picture(std::move(plot), size);
}

}  // namespace orvenal
