#include "app/plot/CrossValidationPicture.h"

#include "app/base/NumberText.h"
#include "app/plot/PlotStyle.h"
#include "app/study/CrossValidation.h"
#include "basic/base/NbbGlobal.h"

#include <QObject>

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr double side = 380.;  // of each plot area, in units of the layout
constexpr double classWidth = 0.5;
constexpr double outermost = 4.;  // errors beyond are counted together

struct Pairs
{
  QVector<double> estimates;
  QVector<double> values;
};

Pairs definedPairs(const CrossValidation &validation, const std::vector<double> &values)
{
  Pairs pairs;
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (!NbbGlobal::isDefined(validation.error[i]))
      continue;
    pairs.estimates << validation.estimate[i];
    pairs.values << values[i];
  }
  return pairs;
}

QCPRange commonRange(const Pairs &pairs)
{
  QVector<double> all = pairs.estimates + pairs.values;
  if (all.isEmpty())
    return QCPRange(0., 1.);
  const auto [least, largest] = std::minmax_element(all.begin(), all.end());
  const double size = std::max(std::abs(*least), std::abs(*largest));
  constexpr double rounding = 1e-9;
  const double room = *largest - *least > rounding * size ? 0.05 * (*largest - *least)
                      : size > 0.                         ? 0.5 * size
                                                          : 1.;
  return QCPRange(*least - room, *largest + room);
}

void setUp(QCPAxisRect &rect, const QString &xLabel, const QString &yLabel)
{
  rect.setupFullAxesBox();
  for (QCPAxis *axis : {rect.axis(QCPAxis::atTop), rect.axis(QCPAxis::atRight)}) {
    axis->setTicks(false);
    axis->setTickLabels(false);
  }
  styleAxis(*rect.axis(QCPAxis::atBottom), xLabel);
  styleAxis(*rect.axis(QCPAxis::atLeft), yLabel);
  rect.setMinimumSize(int(side), int(side));
  rect.setMaximumSize(int(side) + 120, int(side) + 80);
}

void drawScatter(QCPAxisRect &rect, const Pairs &pairs, const QString &valueLabel)
{
  QCPAxis *x = rect.axis(QCPAxis::atBottom);
  QCPAxis *y = rect.axis(QCPAxis::atLeft);
  setUp(rect, QObject::tr("Estimate of %1").arg(valueLabel), valueLabel);
  const QCPRange range = commonRange(pairs);
  for (QCPAxis *axis : {x, y}) {
    axis->setRange(range);
    setTicks(*axis, side, 70.);
  }
  auto *line = new QCPItemStraightLine(rect.parentPlot());
  line->setClipAxisRect(&rect);
  for (QCPItemPosition *point : {line->point1, line->point2}) {
    point->setAxisRect(&rect);
    point->setAxes(x, y);
  }
  line->point1->setCoords(range.lower, range.lower);
  line->point2->setCoords(range.upper, range.upper);
  line->setPen(QPen(QColor(90, 90, 90), 1., Qt::DashLine));
  QCPGraph *points = rect.parentPlot()->addGraph(x, y);
  points->setData(pairs.estimates, pairs.values);
  points->setLineStyle(QCPGraph::lsNone);
  const double size = pairs.values.size() > 2000 ? 2. : 5.;
  points->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, QColor(0, 114, 178, 150), size));
}

void addBars(QCPAxisRect &rect, const QVector<double> &places, const QVector<double> &counts,
             const QColor &color)
{
  auto *bars = new QCPBars(rect.axis(QCPAxis::atBottom), rect.axis(QCPAxis::atLeft));
  bars->setWidth(classWidth);
  bars->setData(places, counts, true);
  bars->setPen(QPen(Qt::white, 0.8));
  bars->setBrush(color);
}

void drawHistogram(QCPAxisRect &rect, const std::vector<double> &errors)
{
  constexpr int nClasses = 2 * int(outermost / classWidth);
  QVector<double> centers, counts(nClasses, 0.), beyond(2, 0.), densities, places;
  double n = 0.;
  for (const double error : errors) {
    if (!NbbGlobal::isDefined(error))
      continue;
    n += 1.;
    if (std::abs(error) >= outermost)
      beyond[error > 0. ? 1 : 0] += 1.;
    else
      counts[int(std::floor(error / classWidth)) + nClasses / 2] += 1.;
  }
  for (int i = 0; i < nClasses; ++i)
    centers << (i - nClasses / 2 + 0.5) * classWidth;
  for (double place = -outermost; place <= outermost; place += 0.05) {
    places << place;
    densities << n * classWidth * std::exp(-0.5 * place * place) / std::sqrt(2. * M_PI);
  }
  setUp(rect, QObject::tr("Standardized error"), QObject::tr("Samples"));
  QCPAxis *x = rect.axis(QCPAxis::atBottom);
  QCPAxis *y = rect.axis(QCPAxis::atLeft);
  addBars(rect, centers, counts, QColor(86, 180, 233));
  const double end = outermost + classWidth;
  addBars(rect, {-end, end}, beyond, QColor(230, 159, 0));
  QCPGraph *density = rect.parentPlot()->addGraph(x, y);
  density->setData(places, densities, true);
  density->setPen(QPen(QColor(60, 60, 60), 1.6));
  const QVector<double> all = counts + beyond + densities;
  const double most = *std::max_element(all.begin(), all.end());
  x->setRange(-end - 0.6 * classWidth, end + 0.6 * classWidth);
  y->setRange(0., most > 0. ? 1.08 * most : 1.);
  setTicks(*x, side, 70.);
  setCountTicks(*y);
}

QString remarkOf(const CrossValidation &validation)
{
  if (validation.getNEstimated() == 0)
    return QObject::tr("No sample could be estimated from the others.");
  const qint64 nBeyond = std::count_if(
      validation.standardizedError.begin(), validation.standardizedError.end(),
      [](double error) { return NbbGlobal::isDefined(error) && std::abs(error) >= outermost; });
  QString remark = QObject::tr(
                       "Cross-validation of %1. Dashed: estimates equal to values. Line: "
                       "Gaussian density.")
                       .arg(samplesText(validation.getNEstimated()));
  if (nBeyond > 0)
    remark +=
        QObject::tr(" Orange: %1 beyond %2.").arg(groupedText(nBeyond), QString::number(outermost));
  return remark;
}

}  // namespace

Picture drawCrossValidation(const CrossValidation &validation, const std::vector<double> &values,
                            const QString &title, const QString &valueLabel)
{
  auto plot = std::make_unique<QCustomPlot>();
  addText(*plot, title, fontOf(13, true), 2. * side);
  addText(*plot, remarkOf(validation), fontOf(9), 2. * side + 120.);
  auto *row = new QCPLayoutGrid;
  auto *histogram = new QCPAxisRect(plot.get());
  const int last = plot->plotLayout()->rowCount() - 1;
  QCPLayoutElement *scatter =
      plot->plotLayout()->takeAt(plot->plotLayout()->rowColToIndex(last, 0));
  plot->plotLayout()->addElement(last, 0, row);
  row->addElement(0, 0, scatter);
  row->addElement(0, 1, histogram);
  drawScatter(*plot->axisRect(0), definedPairs(validation, values), valueLabel);
  drawHistogram(*histogram, validation.standardizedError);
  return Picture(std::move(plot), QSize(int(2. * side) + 180, int(side) + 150));
}

}  // namespace orvenal
