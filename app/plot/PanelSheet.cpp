#include "app/plot/PanelSheet.h"

#include "app/plot/ColorScales.h"
#include "app/plot/Picture.h"

#include <QFontMetricsF>
#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr double narrowest = 180.;  // narrower and lower areas hold no labels
constexpr double lowest = 110.;
constexpr int roomForLabels = 90;     // beside an area
constexpr int roomForLastLabel = 22;  // half of it stands beside the area

QCPRange rangeAround(const QCPRange &seen, double length, double scale)
{
  const double half = 0.5 * length / scale;
  return QCPRange(seen.center() - half, seen.center() + half);
}

QSize sizeOf(const Panel &panel)
{
  const double width = std::max(narrowest, std::round(panel.x.size() * panel.xScale));
  const double height = std::max(lowest, std::round(panel.y.size() * panel.yScale));
  return QSize(int(width), int(height));
}

void setUpAxes(QCPAxisRect &area, const Panel &panel, const QSize &size)
{
  area.setupFullAxesBox();
  QCPAxis &x = *area.axis(QCPAxis::atBottom);
  QCPAxis &y = *area.axis(QCPAxis::atLeft);
  for (QCPAxis *axis : {area.axis(QCPAxis::atTop), area.axis(QCPAxis::atRight)}) {
    axis->setTicks(false);
    axis->setTickLabels(false);
  }
  styleAxis(x, panel.xLabel);
  styleAxis(y, panel.yLabel);
  x.setRange(rangeAround(panel.x, size.width(), panel.xScale));
  y.setRange(rangeAround(panel.y, size.height(), panel.yScale));
  setTicks(x, size.width(), 60.);
  setTicks(y, size.height(), size.height() < 200 ? 30. : 60.);
  QCPAxis &top = *area.axis(QCPAxis::atTop);
  top.setLabelFont(fontOf(9, true));
  top.setLabel(wrapped(panel.title, top.labelFont(), size.width()));
  top.setLabelPadding(3);
}

/// Takes what is left of a row or a column.
QCPLayoutElement *makeFiller(QCustomPlot &plot)
{
  auto *filler = new QCPLayoutElement(&plot);
  filler->setMinimumSize(0, 0);
  return filler;
}

}  // namespace

PanelSheet::PanelSheet(const QString &title, const QString &remark, double width)
    : _plot(std::make_unique<QCustomPlot>()), _width(width), _body(new QCPLayoutGrid)
{
  addText(*_plot, title, fontOf(13, true), width);
  addText(*_plot, remark, fontOf(9), width);
  QCPLayoutGrid &layout = *_plot->plotLayout();
  const int row = layout.rowCount() - 1;
  layout.removeAt(layout.rowColToIndex(row, 0));
  layout.addElement(row, 0, _body);
  _body->setRowSpacing(6);
}

PanelSheet::~PanelSheet() = default;

QCPLayoutGrid &PanelSheet::_addRow()
{
  auto *row = new QCPLayoutGrid;
  _body->addElement(_body->rowCount(), 0, row);
  row->setColumnSpacing(8);
  _rowGroup = new QCPMarginGroup(_plot.get());
  _rowSize = QSize(0, 0);
  _nInRow = 0;
  _rows << row;
  return *row;
}

QCPMarginGroup &PanelSheet::_groupOf(int column)
{
  while (_groups.size() <= column)
    _groups << new QCPMarginGroup(_plot.get());
  return *_groups[column];
}

QCPAxisRect &PanelSheet::add(const Panel &panel)
{
  const QSize size = sizeOf(panel);
  const bool fits = _row && _rowSize.height() == size.height() &&
                    _rowSize.width() + size.width() + roomForLabels <= _width;
  if (!fits)
    _row = &_addRow();
  auto *area = new QCPAxisRect(_plot.get());
  area->setMinimumSize(size);
  area->setMaximumSize(size);
  area->setMinimumMargins(QMargins(0, 0, roomForLastLabel, 0));
  area->setMarginGroup(QCP::msLeft, &_groupOf(_nInRow));
  area->setMarginGroup(QCP::msTop | QCP::msBottom, _rowGroup);
  _row->addElement(0, _nInRow, area);
  ++_nInRow;
  _rowSize = QSize(_rowSize.width() + size.width() + roomForLabels, size.height());
  setUpAxes(*area, panel, size);
  return *area;
}

void PanelSheet::addColorScale(Side side, const QString &label, const QCPColorGradient &gradient,
                               const ColorRange &range)
{
  auto *scale = new QCPColorScale(_plot.get());
  scale->setType(side == RIGHT ? QCPAxis::atRight : QCPAxis::atBottom);
  scale->setBarWidth(16);
  QCPAxis &axis = *scale->axis();
  axis.setLabelFont(fontOf(10));
  axis.setTickLabelFont(fontOf(9));
  scale->setLabel(label);
  if (side == RIGHT) {
    scale->setMarginGroup(QCP::msTop | QCP::msBottom, _rowGroup);
    setColors(*scale, gradient, range, _rowSize.height(), 45.);
    _row->addElement(0, _nInRow, scale);
    ++_nInRow;
  } else {
    setColors(*scale, gradient, range, 0.6 * _width, 70.);
    scale->setMarginGroup(QCP::msLeft, &_groupOf(0));
    scale->setMinimumMargins(QMargins(0, 6, roomForLastLabel, 0));
    _body->addElement(_body->rowCount(), 0, scale);
  }
}

void PanelSheet::addTable(const QStringList &names, const QStringList &values)
{
  auto *table = new QCPLayoutGrid;
  _body->addElement(_body->rowCount(), 0, table);
  table->setRowSpacing(2);
  for (int column = 0; column < names.size(); ++column) {
    auto *name = new QCPTextElement(_plot.get(), names[column], fontOf(8));
    name->setTextColor(QColor(90, 90, 90));
    table->addElement(0, column, name);
    table->addElement(1, column, new QCPTextElement(_plot.get(), values[column], fontOf(9, true)));
  }
  table->setMargins(QMargins(0, 6, 0, 6));
}

Picture PanelSheet::finish()
{
  for (QCPLayoutGrid *row : _rows)
    row->addElement(0, row->columnCount(), makeFiller(*_plot));
  // A picture of some size tells how much room the labels take.
  const QSize trial(int(_width) + 200, 1000);
  _plot->setViewport(QRect(QPoint(0, 0), trial));
  _plot->replot(QCustomPlot::rpImmediateRefresh);
  const QSize size = _plot->plotLayout()->minimumOuterSizeHint();
  _plot->setViewport(QRect(QPoint(0, 0), size));
  return Picture(std::move(_plot), size);
}

HeightScale heightScaleFor(double extent, double scale)
{
  constexpr double factors[] = {2., 3., 4., 5., 8., 10., 15., 20., 25., 50., 100.};
  const double natural = extent * scale;
  if (!(natural > 0.) || natural >= lowest)
    return {1., scale};
  for (double power = 1.; power < 1e12; power *= 100.) {
    for (const double factor : factors) {
      if (natural * factor * power >= lowest)
        return {factor * power, scale * factor * power};
    }
  }
  return {1., scale};
}

QString sectionTitle(const QString &name, const HeightScale &heights)
{
  if (heights.factor == 1.)
    return name;
  return QObject::tr("%1, heights %2 %3")
      .arg(name, QString(QChar(0xD7)), QString::number(heights.factor, 'g', 12));
}

}  // namespace orvenal
