#include "app/plot/VariogramPicture.h"

#include "app/plot/PlotStyle.h"
#include "app/plot/VariogramPanel.h"
#include "app/study/Variography.h"

#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

constexpr double plotWidth = 620.;
constexpr double plotHeight = 400.;

double largestDistanceOf(const Variography &variography)
{
  double largest = 0.;
  for (const VariogramSet &set : variography.sets) {
    for (const VariogramCurve &curve : set.curves) {
      for (const double distance : curve.distances)
        largest = std::max(largest, distance);
    }
  }
  return largest;
}

/// The graph carries the name; the marks draw themselves.
QCPGraph &addLegendEntry(QCustomPlot &plot, const QString &name, const QPen &pen)
{
  constexpr double widest = 190.;  // so that the plot area keeps its room
  QCPGraph *graph = plot.addGraph();
  graph->setName(wrapped(name, fontOf(9), widest));
  graph->setPen(pen);
  return *graph;
}

void addDirectionEntry(QCustomPlot &plot, const QString &name, const DirectionStyle &style)
{
  constexpr double size = 7.;
  QCPGraph &graph = addLegendEntry(plot, name, QPen(style.color, 0.8));
  if (style.isFilled)
    graph.setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, style.color, size));
  else
    graph.setScatterStyle(
        QCPScatterStyle(QCPScatterStyle::ssCircle, QPen(style.color, 1.2), Qt::white, size));
}

void addSillEntry(QCustomPlot &plot, const Variography &variography)
{
  const bool hasSill = std::any_of(variography.sets.begin(), variography.sets.end(),
                                   [](const VariogramSet &set) { return set.hasSill; });
  QString name = QObject::tr("sill of the samples");
  if (variography.isVariogram)
    name = variography.nVariables == 1 ? QObject::tr("variance of the samples")
                                       : QObject::tr("(co)variance of the samples");
  if (hasSill)
    addLegendEntry(plot, name, sillPen());
}

void addLegendEntries(QCustomPlot &plot, const Variography &variography,
                      const VariogramStyle &style)
{
  if (style.model && isIsotropic(*style.model, style.nDimensions)) {
    addLegendEntry(plot, QObject::tr("model"), modelPen(QColor(60, 60, 60)));
    if (variography.nVariables > 1)
      addLegendEntry(plot, QObject::tr("limits of cross variograms"), limitPen());
  }
  const QVector<VariogramCurve> &curves = variography.sets.first().curves;
  for (int i = 0; i < curves.size(); ++i)
    addDirectionEntry(plot, curves[i].name, directionStyle(i));
  addSillEntry(plot, variography);
}

/// Units multiplied: "(mg/kg)²", "(mg/kg)·(%)".
QString productOf(const QString &a, const QString &b)
{
  if (a.isEmpty() || b.isEmpty())
    return QString();
  return a == b ? '(' + a + ')' + QChar(0xB2) : '(' + a + ')' + QChar(0xB7) + '(' + b + ')';
}

QString unitOf(const VariogramSet &set, const Variography &variography, const VariogramStyle &style)
{
  return variography.isVariogram
             ? productOf(style.variables[set.first].unit, style.variables[set.second].unit)
             : QString();
}

QString remarkOf(const Variography &variography, const VariogramStyle &style, bool hasNumbers)
{
  const QVector<VariogramCurve> &curves = variography.sets.first().curves;
  QStringList parts;
  if (curves.size() == 1 && hasNumbers)
    parts << QObject::tr("Experimental variogram, %1; numbers are pairs.").arg(curves.first().name);
  else if (hasNumbers)
    parts << QObject::tr("Experimental variograms; numbers are pairs.");
  else
    parts << QObject::tr("Experimental variograms; areas of points are in proportion to pairs.");
  if (style.model && !isIsotropic(*style.model, style.nDimensions))
    parts << QObject::tr("Thick lines: the model.");
  return parts.join(' ');
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

Picture drawSingle(const Variography &variography, const VariogramStyle &style)
{
  const VariogramSet &set = variography.sets.first();
  constexpr int mostWithNumbers = 4;
  const bool hasNumbers = set.curves.size() <= mostWithNumbers;
  auto plot = std::make_unique<QCustomPlot>();
  addText(*plot, style.title, fontOf(13, true), plotWidth + 40.);
  addText(*plot, remarkOf(variography, style, hasNumbers), fontOf(9), plotWidth + 40.);
  styleAxis(*plot->xAxis, axisLabel(QObject::tr("Distance"), style.lengthUnit));
  styleAxis(*plot->yAxis, axisLabel(variography.curveName, unitOf(set, variography, style)));
  closeFrame(*plot);
  drawPanel({*plot->axisRect(), set, style, 7., hasNumbers}, largestDistanceOf(variography));
  setTicks(*plot->xAxis, plotWidth, 80.);
  setTicks(*plot->yAxis, plotHeight, 60.);
  addLegendEntries(*plot, variography, style);
  setUpLegend(*plot);
  const QSize size = sizeFor(*plot, QSizeF(plotWidth, plotHeight));
  return Picture(std::move(plot), size);
}

// Several variables.

/// Of the plot areas; the picture stays within about the same width.
QSize panelSize(int nVariables)
{
  const int width = std::max(230, 860 / nVariables);
  return QSize(width, width * 2 / 3);
}

QString panelTitle(const VariogramSet &set, const VariogramStyle &style)
{
  const QString first = style.variables[set.first].name;
  const QString name =
      set.isCross()
          ? QStringLiteral("%1 %2 %3").arg(style.variables[set.second].name, QChar(0xD7), first)
          : first;
  return name;
}

/// Puts a plot area under its title, in its row and column of the matrix.
void placeArea(QCPAxisRect &area, const VariogramSet &set, const QString &title, const QSize &size,
               QCPLayoutGrid &matrix)
{
  const QFont font = fontOf(9);
  const QString shown = QFontMetricsF(font).elidedText(title, Qt::ElideMiddle, size.width() + 30);
  auto *text = new QCPTextElement(area.parentPlot(), shown, font);
  text->setMargins(QMargins(0, 6, 0, 0));
  matrix.addElement(2 * set.second, set.first, text);
  area.setSizeConstraintRect(QCPLayoutElement::scrInnerRect);
  area.setMinimumSize(size);
  area.setMaximumSize(size);
  area.setMinimumMargins(QMargins(0, 3, 14, 0));
  matrix.addElement(2 * set.second + 1, set.first, &area);
}

void styleArea(QCPAxisRect &area, const QString &xLabel, const QString &yLabel)
{
  area.setupFullAxesBox();
  // As QCustomPlot does with its first axes: lines of the grid do not hide those of the frame.
  for (QCPAxis *axis : area.axes()) {
    axis->setLayer(QStringLiteral("axes"));
    axis->grid()->setLayer(QStringLiteral("grid"));
  }
  for (const QCPAxis::AxisType type : {QCPAxis::atTop, QCPAxis::atRight}) {
    area.axis(type)->setTicks(false);
    area.axis(type)->setTickLabels(false);
  }
  for (const QCPAxis::AxisType type : {QCPAxis::atBottom, QCPAxis::atLeft}) {
    QCPAxis &axis = *area.axis(type);
    styleAxis(axis, type == QCPAxis::atBottom ? xLabel : yLabel);
    axis.setTickLabelFont(fontOf(8));
    axis.setLabelFont(fontOf(9));
  }
}

/// The legend stands where the upper triangle would be.
void setUpMatrixLegend(QCustomPlot &plot, QCPAxisRect &firstArea)
{
  constexpr int mostRows = 8;
  plot.legend->setWrap(mostRows);
  plot.legend->setFillOrder(QCPLayoutGrid::foRowsFirst);
  plot.legend->setVisible(true);
  plot.legend->setFont(fontOf(9));
  plot.legend->setBorderPen(Qt::NoPen);
  firstArea.insetLayout()->addElement(plot.legend, QRectF(1.2, 0., 0., 0.));
}

Picture drawMatrix(const Variography &variography, const VariogramStyle &style)
{
  const QSize size = panelSize(variography.nVariables);
  auto plot = std::make_unique<QCustomPlot>();
  auto *matrix = new QCPLayoutGrid;
  const double width = variography.nVariables * (size.width() + 60.);
  QCPAxisRect *const firstArea = plot->axisRect();
  plot->plotLayout()->take(firstArea);
  plot->plotLayout()->addElement(0, 0, matrix);
  addText(*plot, style.title, fontOf(13, true), width);
  addText(*plot, remarkOf(variography, style, false), fontOf(9), width);
  const double distance = largestDistanceOf(variography);
  QVector<QCPMarginGroup *> columns;
  for (int i = 0; i < variography.nVariables; ++i)
    columns << new QCPMarginGroup(plot.get());
  for (const VariogramSet &set : variography.sets) {
    const bool isLast = set.second == variography.nVariables - 1;
    QCPAxisRect &area = set.second == 0 ? *firstArea : *new QCPAxisRect(plot.get());
    placeArea(area, set, panelTitle(set, style), size, *matrix);
    styleArea(area, isLast ? axisLabel(QObject::tr("Distance"), style.lengthUnit) : QString(),
              unitOf(set, variography, style));
    area.setMarginGroup(QCP::msLeft, columns[set.first]);
    drawPanel({area, set, style, 4.5, false}, distance);
    setTicks(*area.axis(QCPAxis::atBottom), size.width(), 75.);
    setTicks(*area.axis(QCPAxis::atLeft), size.height(), 45.);
  }
  addLegendEntries(*plot, variography, style);
  setUpMatrixLegend(*plot, *firstArea);
  plot->setViewport(QRect(QPoint(0, 0), QSize(int(width), int(width))));
  plot->replot(QCustomPlot::rpImmediateRefresh);
  const QSize whole = plot->plotLayout()->minimumOuterSizeHint();
  return Picture(std::move(plot), whole);
}

}  // namespace

Picture drawVariograms(const Variography &variography, const VariogramStyle &style)
{
  return variography.nVariables == 1 ? drawSingle(variography, style)
                                     : drawMatrix(variography, style);
}

}  // namespace orvenal
