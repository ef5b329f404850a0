#include "app/plot/SampleMapPicture.h"

#include "app/base/NumberText.h"
#include "app/plot/ColorScales.h"
#include "app/plot/PanelSheet.h"
#include "app/plot/SampleMarks.h"
#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomGrid.h"

#include <QObject>

#include <algorithm>
#include <array>
#include <cmath>

namespace orvenal {

namespace {

constexpr double radius = 4.5;  // of the marks of few samples

/// Samples in their colours on views of the space.
struct Scene
{
  const Samples &samples;
  const SampleMapStyle &style;
  QString remark;
  QCPColorGradient gradient;
  ColorRange range;
  std::vector<SampleMark> marks;    ///< without places
  std::vector<std::size_t> sample;  ///< of each mark

  Scene(const Samples &scenery, const SampleMapStyle &how) : samples(scenery), style(how) {}

  const std::vector<double> &coordinates(int axis) const
  {
    return axis == 0 ? samples.x : axis == 1 ? samples.y : samples.z;
  }
};

/// From the least to the largest coordinate of samples and grid, with a little space around.
std::array<QCPRange, 3> extentOf(const Scene &scene)
{
  NbgBox box;
  const Samples &samples = scene.samples;
  for (std::size_t i = 0; i < samples.x.size(); ++i)
    box.extendWith(NbgVector3D(samples.x[i], samples.y[i], samples.z.empty() ? 0. : samples.z[i]));
  if (scene.style.grid)
    scene.style.grid->updateBoundingBox(box);
  const NbgVector3D low = box.getLowerLeftCorner();
  const NbgVector3D high = box.getUpperRightCorner();
  const NbgVector3D size = box.getSize();
  const double horizontal = std::max(size.x(), size.y());
  // Samples at one place have some space around them.
  const double room = horizontal > 0. ? 0.03 * horizontal : std::max(0.5, 1e-6 * std::abs(low.x()));
  const double above = size.z() > 0. ? 0.04 * size.z() : room;
  return {QCPRange(low.x() - room, high.x() + room), QCPRange(low.y() - room, high.y() + room),
          QCPRange(low.z() - above, high.z() + above)};
}

/// Outline of the grid: its corners seen from above, the box around it seen from the side.
void drawOutline(QCPAxisRect &area, const NbgGeomGrid &grid, int xAxis, int yAxis)
{
  NbgBox box;
  grid.updateBoundingBox(box);
  const NbgVector3D low = box.getLowerLeftCorner();
  const NbgVector3D high = box.getUpperRightCorner();
  QVector<double> x = {low[xAxis], high[xAxis], high[xAxis], low[xAxis], low[xAxis]};
  QVector<double> y = {low[yAxis], low[yAxis], high[yAxis], high[yAxis], low[yAxis]};
  if (yAxis == 1) {
    const NbgIntVector3D n = grid.getNodesNumber();
    const int corners[][2] = {{0, 0}, {n.x(), 0}, {n.x(), n.y()}, {0, n.y()}, {0, 0}};
    for (int i = 0; i < x.size(); ++i) {
      const NbgVector3D corner = grid.getCellCorner(corners[i][0], corners[i][1], 0);
      x[i] = corner.x();
      y[i] = corner.y();
    }
  }
  auto *outline = new QCPCurve(area.axis(QCPAxis::atBottom), area.axis(QCPAxis::atLeft));
  outline->setData(x, y);
  outline->setPen(QPen(QColor(110, 110, 110), 1.2, Qt::DashLine));
}

void drawView(PanelSheet &sheet, const Scene &scene, const Panel &panel, int xAxis, int yAxis)
{
  QCPAxisRect &area = sheet.add(panel);
  if (scene.style.grid)
    drawOutline(area, *scene.style.grid, xAxis, yAxis);
  std::vector<SampleMark> marks = scene.marks;
  for (std::size_t i = 0; i < marks.size(); ++i) {
    marks[i].x = scene.coordinates(xAxis)[scene.sample[i]];
    marks[i].y = scene.coordinates(yAxis)[scene.sample[i]];
  }
  new SampleMarks(area, std::move(marks), radius, SampleMarks::FILLED);  // the plot owns them
}

Panel panelOf(const Scene &scene, const std::array<QCPRange, 3> &extent, int xAxis, int yAxis,
              double scale)
{
  static const char *const names[] = {"x", "y", "z"};
  Panel panel;
  panel.xLabel = axisLabel(QLatin1String(names[xAxis]), scene.style.lengthUnit);
  panel.yLabel = axisLabel(QLatin1String(names[yAxis]), scene.style.lengthUnit);
  panel.x = extent[std::size_t(xAxis)];
  panel.y = extent[std::size_t(yAxis)];
  panel.xScale = scale;
  panel.yScale = scale;
  return panel;
}

Picture draw(const Scene &scene)
{
  constexpr double longSide3D = 400.;  // of a plot area, in units of the layout
  constexpr double width3D = 980.;
  const std::array<QCPRange, 3> extent = extentOf(scene);
  const bool is3D = !scene.samples.z.empty();
  const double scale =
      (is3D ? longSide3D : longSideOf(extent[0].size(), extent[1].size())) /
      std::max({extent[0].size(), extent[1].size(), is3D ? 0.7 * extent[2].size() : 0.});
  const double width = is3D ? width3D : std::max(400., extent[0].size() * scale + 130.);
  PanelSheet sheet(scene.style.title, scene.remark, width);
  Panel plan = panelOf(scene, extent, 0, 1, scale);
  plan.title = is3D ? QObject::tr("Seen from above") : QString();
  drawView(sheet, scene, plan, 0, 1);
  const HeightScale heights = heightScaleFor(extent[2].size(), scale);
  const QString views[] = {QObject::tr("Seen from the south"), QObject::tr("Seen from the east")};
  for (int axis = 0; is3D && axis < 2; ++axis) {
    Panel side = panelOf(scene, extent, axis, 2, scale);
    side.yScale = heights.scale;
    side.title = sectionTitle(views[axis], heights);
    drawView(sheet, scene, side, axis, 2);
  }
  sheet.addColorScale(is3D ? PanelSheet::BELOW : PanelSheet::RIGHT, scene.style.valueLabel,
                      scene.gradient, scene.range);
  return sheet.finish();
}

QString thinningRemark(std::size_t n)
{
  return n > SampleMarks::most
             ? QObject::tr("Dots: one sample in each small square of the picture.")
             : QString();
}

QString joined(QStringList sentences)
{
  sentences.removeAll(QString());
  return sentences.join(' ');
}

}  // namespace

Picture drawSampleMap(const Samples &samples, const SampleMapStyle &style)
{
  Scene scene(samples, style);
  scene.gradient = gradientOf(ColorScale::VIRIDIS);
  scene.range = colorRangeOf(samples.value);
  // Open circles are drawn first, below the values; of dots the first one prevails.
  const bool areDots = samples.value.size() > SampleMarks::most;
  for (const bool isDefined : {areDots, !areDots}) {
    for (std::size_t i = 0; i < samples.value.size(); ++i) {
      if (NbbGlobal::isDefined(samples.value[i]) != isDefined)
        continue;
      SampleMark mark;
      mark.shape = isDefined ? SampleMark::CIRCLE : SampleMark::OPEN;
      mark.fill = isDefined ? colorOf(scene.gradient, scene.range, samples.value[i])
                            : QColor(200, 200, 200);
      scene.marks.push_back(mark);
      scene.sample.push_back(i);
    }
  }
  const QString open = samples.nUndefined == 0 ? QString()
                       : areDots               ? QObject::tr("Grey: %1 without a value.")
                                               : QObject::tr("Open circles: %1 without a value.");
  scene.remark = joined({QObject::tr("Samples: %1.").arg(groupedText(samples.getCount())),
                         open.isEmpty() ? open : open.arg(groupedText(samples.nUndefined)),
                         thinningRemark(scene.marks.size()), remarkOf(scene.range),
                         style.grid ? QObject::tr("Dashed: the grid.") : QString()});
  return draw(scene);
}

Picture drawErrorMap(const Samples &samples, const std::vector<double> &standardizedErrors,
                     const SampleMapStyle &style)
{
  Scene scene(samples, style);
  scene.gradient = gradientOf(ColorScale::DIVERGING);
  scene.range = {QCPRange(-largestUsualError, largestUsualError)};
  qint64 nMarked = 0;
  for (std::size_t i = 0; i < standardizedErrors.size(); ++i) {
    const double error = standardizedErrors[i];
    if (!NbbGlobal::isDefined(error))
      continue;
    SampleMark mark;
    mark.fill = colorOf(scene.gradient, scene.range, error);
    if (std::abs(error) > largestUsualError) {
      mark.shape = error > 0. ? SampleMark::UP : SampleMark::DOWN;
      ++nMarked;
    }
    scene.marks.push_back(mark);
    scene.sample.push_back(i);
  }
  scene.remark = joined(
      {scene.marks.empty() ? QObject::tr("No sample could be estimated from the others.")
                           : QObject::tr("Standardized errors; samples: %1.")
                                 .arg(groupedText(qint64(scene.marks.size()))),
       nMarked == 0 ? QString()
                    : QObject::tr("Triangles: %1 beyond %2, upward where the estimate is too high.")
                          .arg(groupedText(nMarked), QString::number(largestUsualError)),
       thinningRemark(scene.marks.size()),
       style.grid ? QObject::tr("Dashed: the grid.") : QString()});
  return draw(scene);
}

}  // namespace orvenal
