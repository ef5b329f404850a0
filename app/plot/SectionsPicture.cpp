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

constexpr double width = 980.;          // of the picture, about, in units of the layout
constexpr double longSide = 380.;       // of a horizontal section
constexpr double longSideAlone = 620.;  // of the only one
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
  return (sections.size() == 1 ? longSideAlone : longSide) / longest;
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

/// What the marks are; nothing when there are none.
QString legendOf(const NbgGeomGrid &grid, const QList<GridSection> &sections,
                 const QList<Samples> &near)
{
  qint64 nShown = 0;
  qint64 nUndefined = 0;
  for (const Samples &samples : near) {
    nShown += samples.getCount();
    nUndefined += samples.nUndefined;
  }
  if (nShown == 0)
    return QObject::tr("No sample is near a section.");
  const bool areHalfCells =
      std::all_of(sections.begin(), sections.end(), [&](const GridSection &section) {
        return section.distance == 0.5 * grid.getCellSize()[section.axis];
      });
  const QString circles = areHalfCells
                              ? QObject::tr("Circles: samples within half a cell of the section.")
                              : QObject::tr("Circles: samples near the section.");
  return nUndefined > 0 ? circles + QObject::tr(" Crosses: no value.") : circles;
}

}  // namespace

Picture drawSections(const NbgGeomGrid &grid, const std::vector<double> &values,
                     const QList<GridSection> &sections, const Samples &samples,
                     const MapStyle &style)
{
  const ColorRange estimated = colorRangeOf(values);
  const ColorRange range =
      estimated.isEmpty && style.coloredSamples ? colorRangeOf(samples.value) : estimated;
  const QCPColorGradient gradient =
      gradientOf(style.isDeviation ? ColorScale::CIVIDIS : ColorScale::VIRIDIS);
  QList<Samples> near;
  for (const GridSection &section : sections)
    near << samplesNear(grid, samples, section);
  QStringList remarks = {style.subtitle + '.',
                         estimated.isEmpty ? QObject::tr("No node has a value.") : QString(),
                         legendOf(grid, sections, near), remarkOf(range)};
  remarks.removeAll(QString());
  remarks.removeAll(QStringLiteral("."));
  PanelSheet sheet(style.title, remarks.join(' '), width);
  const double scale = scaleFor(grid, sections);
  for (int i = 0; i < sections.size(); ++i) {
    const GridSection &section = sections[i];
    const NbgGeomGrid plane = planeOf(grid, section);
    QCPAxisRect &area = sheet.add(panelOf(grid, section, extentOf(plane), scale, style.lengthUnit));
    addRaster(area, rasterize(plane, sectionValues(grid, values, section), mostCells), gradient,
              range);
    new SampleMarks(area,  // the plot owns them
                    marksOf(near[i], style.coloredSamples ? &gradient : nullptr, range),
                    mapMarkRadius, SampleMarks::OUTLINED);
  }
  if (!range.isEmpty)
    sheet.addColorScale(PanelSheet::BELOW, style.valueLabel, gradient, range);
  return sheet.finish();
}

}  // namespace orvenal
