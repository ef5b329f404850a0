#include "app/plot/SectionsPicture.h"

#include "app/plot/ColorScales.h"
#include "app/plot/MapLayers.h"
#include "app/plot/MapPicture.h"
#include "app/plot/MapRaster.h"
#include "app/plot/PanelSheet.h"
#include "app/study/Samples.h"
#include "basic/geom/NbgBox.h"

#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

constexpr double width = 980.;     // of the picture, about, in units of the layout
constexpr double longSide = 380.;  // of a horizontal section
constexpr int mostCells = 800;

struct Extent
{
  QCPRange x;
  QCPRange y;
};

Extent extentOf(const NbgGeomGrid &plane)
{
  NbgBox box;
  plane.updateBoundingBox(box);
  const NbgVector3D low = box.getLowerLeftCorner();
  const NbgVector3D high = box.getUpperRightCorner();
  return {QCPRange(low.x(), high.x()), QCPRange(low.y(), high.y())};
}

/// Horizontal lengths of all sections are drawn at one scale, heights too unless exaggerated.
double scaleFor(const NbgGeomGrid &grid, const QList<GridSection> &sections)
{
  double longest = 0.;
  for (const GridSection &section : sections) {
    const Extent extent = extentOf(planeOf(grid, section));
    longest = std::max({longest, extent.x.size(), extent.y.size()});
  }
  return longSide / longest;
}

Panel panelOf(const NbgGeomGrid &grid, const GridSection &section, const Extent &extent,
              double scale, const QString &unit)
{
  static const char *const names[] = {"x", "y", "z"};
  const bool isTurned = !grid.getRotation().isIdentity();
  const auto axisName = [&](int axis) {
    const QString name = QLatin1String(names[axis]);
    return isTurned && axis < 2 ? QObject::tr("%1 along the grid").arg(name) : name;
  };
  QString place =
      axisName(section.axis) + QStringLiteral(" = ") + QString::number(section.coordinate, 'g', 10);
  if (!unit.isEmpty())
    place += ' ' + unit;
  Panel panel;
  panel.x = extent.x;
  panel.y = extent.y;
  panel.xScale = scale;
  panel.yScale = scale;
  panel.title = place;
  if (section.axis == 2) {
    panel.xLabel = axisLabel(QStringLiteral("x"), unit);
    panel.yLabel = axisLabel(QStringLiteral("y"), unit);
    return panel;
  }
  const HeightScale heights = heightScaleFor(extent.y.size(), scale);
  panel.xLabel = axisLabel(axisName(1 - section.axis), unit);
  panel.yLabel = axisLabel(QStringLiteral("z"), unit);
  panel.yScale = heights.scale;
  panel.title = sectionTitle(place, heights);
  return panel;
}

}  // namespace

Picture drawSections(const NbgGeomGrid &grid, const std::vector<double> &values,
                     const QList<GridSection> &sections, const Samples &samples,
                     const MapStyle &style)
{
  const ColorRange range = colorRangeOf(values);
  const QCPColorGradient gradient =
      gradientOf(style.isDeviation ? ColorScale::CIVIDIS : ColorScale::VIRIDIS);
  const bool areHalfCells =
      std::all_of(sections.begin(), sections.end(), [&](const GridSection &section) {
        return section.distance == 0.5 * grid.getCellSize()[section.axis];
      });
  QStringList remarks = {
      style.subtitle + '.',
      areHalfCells ? QObject::tr("Circles: samples within half a cell of the section.")
                   : QObject::tr("Circles: samples near the section."),
      samples.nUndefined > 0 ? QObject::tr("Crosses: no value.") : QString(), remarkOf(range)};
  remarks.removeAll(QString());
  remarks.removeAll(QStringLiteral("."));
  PanelSheet sheet(style.title, remarks.join(' '), width);
  const double scale = scaleFor(grid, sections);
  for (const GridSection &section : sections) {
    const NbgGeomGrid plane = planeOf(grid, section);
    QCPAxisRect &area = sheet.add(panelOf(grid, section, extentOf(plane), scale, style.lengthUnit));
    addRaster(area, rasterize(plane, sectionValues(grid, values, section), mostCells), gradient,
              range.range);
    const Samples near = samplesNear(grid, samples, section);
    new SampleMarks(area,  // the plot owns them
                    marksOf(near, style.coloredSamples ? &gradient : nullptr, range.range),
                    mapMarkRadius, SampleMarks::OUTLINED);
  }
  sheet.addColorScale(PanelSheet::BELOW, style.valueLabel, gradient, range.range);
  return sheet.finish();
}

}  // namespace orvenal
