#include "app/plot/MapPicture.h"

#include "app/base/NumberText.h"
#include "app/plot/ColorScales.h"
#include "app/plot/MapLayers.h"
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

namespace orvenal {

namespace {

constexpr double shortestSide = 160.;  // narrower plot areas hold no labels
constexpr int mostCells = 1500;

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
  const double scale = longSideOf(width, height) / std::max(width, height);
  return QSizeF(std::max(shortestSide, std::round(width * scale)),
                std::max(shortestSide, std::round(height * scale)));
}

/// How many samples have the colour of an end of the scale because they lie beyond it.
qint64 countBeyond(const Samples &samples, const QCPRange &range)
{
  const double unseen = 0.02 * range.size();
  return std::count_if(samples.value.begin(), samples.value.end(), [&](double value) {
    return NbbGlobal::isDefined(value) &&
           (value < range.lower - unseen || value > range.upper + unseen);
  });
}

QString legendOf(const Samples &samples, bool isColored, const ColorRange &range)
{
  if (samples.getCount() == 0)
    return QString();
  if (std::size_t(samples.getCount()) > SampleMarks::most)
    return QObject::tr("Dots: some of %1.").arg(samplesText(samples.getCount()));
  const QString count = samplesText(samples.getCount() - samples.nUndefined);
  QString legend = isColored ? QObject::tr("Circles: %1, filled by their value.").arg(count)
                             : QObject::tr("Circles: %1.").arg(count);
  const qint64 nBeyond = isColored && !range.isCut ? countBeyond(samples, range.range) : 0;
  if (nBeyond > 0)
    legend += QObject::tr(" Those beyond the scale (%1) have the colour of its end.")
                  .arg(groupedText(nBeyond));
  if (samples.nUndefined > 0)
    legend += QObject::tr(" Crosses: %1 without a value.").arg(groupedText(samples.nUndefined));
  return legend;
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
  const ColorRange estimated = colorRangeOf(values);
  const ColorRange range =
      estimated.isEmpty && style.coloredSamples ? colorRangeOf(samples.value) : estimated;

  auto plot = std::make_unique<QCustomPlot>();
  addText(*plot, style.title, fontOf(13, true), area.width() + 80.);
  QStringList remarks = {style.subtitle.isEmpty() ? QString() : style.subtitle + '.',
                         estimated.isEmpty ? QObject::tr("No node has a value.") : QString(),
                         legendOf(samples, style.coloredSamples, range), remarkOf(range)};
  remarks.removeAll(QString());
  addText(*plot, remarks.join(' '), fontOf(9), area.width() + 80.);
  styleAxis(*plot->xAxis, axisLabel(QObject::tr("x"), style.lengthUnit));
  styleAxis(*plot->yAxis, axisLabel(QObject::tr("y"), style.lengthUnit));
  closeFrame(*plot);
  plot->xAxis->setRange(low.x(), high.x());
  plot->yAxis->setRange(low.y(), high.y());
  setTicks(*plot->xAxis, area.width(), 95.);
  setTicks(*plot->yAxis, area.height(), area.height() < 200. ? 35. : 80.);

  addRaster(*plot->axisRect(), rasterize(grid, values, mostCells), gradient, range);
  if (!range.isEmpty)
    setColors(addColorScale(*plot, style.valueLabel), gradient, range, area.height(), 45.);
  new SampleMarks(*plot->axisRect(),  // the plot owns them
                  marksOf(samples, style.coloredSamples ? &gradient : nullptr, range),
                  mapMarkRadius, SampleMarks::OUTLINED);

  const QSize size = sizeFor(*plot, area);
  equalizeScales(*plot, size);
  return Picture(std::move(plot), size);
}

}  // namespace orvenal
