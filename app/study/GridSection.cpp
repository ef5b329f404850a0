#include "app/study/GridSection.h"

#include "app/study/Samples.h"
#include "basic/base/NbbGlobal.h"

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

NbgIntVector3D alongAxis(int axis, int index)
{
  return {axis == 0 ? index : 0, axis == 1 ? index : 0, axis == 2 ? index : 0};
}

GridSection layerOf(const NbgGeomGrid &grid, int axis, int index)
{
  GridSection section;
  section.axis = axis;
  section.index = index;
  section.coordinate = grid.getOriginCentered()[axis] + index * grid.getCellSize()[axis];
  section.distance = 0.5 * grid.getCellSize()[axis];
  return section;
}

}  // namespace

std::pair<double, double> gridReach(const NbgGeomGrid &grid, int axis)
{
  const double cell = grid.getCellSize()[axis];
  const double first = grid.getOriginCentered()[axis] - 0.5 * cell;
  return {first, first + grid.getNodesNumber()[axis] * cell};
}

int findLayer(const NbgGeomGrid &grid, int axis, double coordinate)
{
  const auto [first, last] = gridReach(grid, axis);
  if (!(coordinate >= first && coordinate <= last))
    return -1;
  const double layer = std::floor((coordinate - first) / grid.getCellSize()[axis]);
  return int(std::clamp(layer, 0., grid.getNodesNumber()[axis] - 1.));
}

QList<GridSection> chooseSections(const NbgGeomGrid &grid, const QList<SectionRequest> &wanted)
{
  QList<GridSection> sections;
  for (const SectionRequest &request : wanted) {
    GridSection section =
        layerOf(grid, request.axis, findLayer(grid, request.axis, request.coordinate));
    section.distance = request.distance.value_or(section.distance);
    sections << section;
  }
  if (!sections.isEmpty())
    return sections;
  const NbgIntVector3D n = grid.getNodesNumber();
  // A section along an axis with a single node shows nothing but a row of cells.
  const auto isRow = [&](int axis) { return std::min(n[(axis + 1) % 3], n[(axis + 2) % 3]) == 1; };
  const int nHorizontal = std::min(4, n.z());
  for (int i = 0; i < nHorizontal && !isRow(2); ++i)
    sections << layerOf(grid, 2, int((2 * i + 1) * qint64(n.z()) / (2 * nHorizontal)));
  for (const int axis : {1, 0}) {
    if (!isRow(axis))
      sections << layerOf(grid, axis, n[axis] / 2);
  }
  return sections.isEmpty() ? sections << layerOf(grid, 2, n.z() / 2) : sections;
}

NbgGeomGrid planeOf(const NbgGeomGrid &grid, const GridSection &section)
{
  const NbgIntVector3D n = grid.getNodesNumber();
  const NbgVector3D cell = grid.getCellSize();
  NbgGeomGrid plane;
  if (section.axis == 2) {
    const NbgVector3D center = grid.getCellCenter(0, 0, section.index);
    plane.setNodesNumber2D(n.x(), n.y());
    plane.setCellSize(cell.x(), cell.y(), 1.);
    plane.setOriginCentered({center.x(), center.y(), 0.});
    plane.setRotation(grid.getRotation());
    return plane;
  }
  const int along = 1 - section.axis;
  plane.setNodesNumber2D(n[along], n.z());
  plane.setCellSize(cell[along], cell.z(), 1.);
  plane.setOriginCentered({grid.getOriginCentered()[along], grid.getOriginCentered().z(), 0.});
  return plane;
}

std::vector<double> sectionValues(const NbgGeomGrid &grid, const std::vector<double> &values,
                                  const GridSection &section)
{
  const int xAxis = section.axis == 0 ? 1 : 0;
  const int yAxis = section.axis == 2 ? 1 : 2;
  const NbgIntVector3D n = grid.getNodesNumber();
  const NbgIntVector3D first = alongAxis(section.axis, section.index);
  std::vector<double> layer;
  layer.reserve(std::size_t(n[xAxis]) * std::size_t(n[yAxis]));
  for (int i = 0; i < n[xAxis]; ++i) {
    for (int j = 0; j < n[yAxis]; ++j)
      layer.push_back(values[std::size_t(
          grid.getRankFromIJK(first + alongAxis(xAxis, i) + alongAxis(yAxis, j)))]);
  }
  return layer;
}

Samples samplesNear(const NbgGeomGrid &grid, const Samples &samples, const GridSection &section)
{
  const int xAxis = section.axis == 0 ? 1 : 0;
  const int yAxis = section.axis == 2 ? 1 : 2;
  // Coordinates of some size are known to their rounding.
  constexpr double rounding = 1e-9;
  Samples near;
  for (std::size_t i = 0; i < samples.x.size(); ++i) {
    const NbgVector3D place(samples.x[i], samples.y[i], samples.z[i]);
    const NbgVector3D turnedBack = grid.getUVW(place) + grid.getOriginCentered();
    const auto isWithin = [&](int axis) { return findLayer(grid, axis, turnedBack[axis]) >= 0; };
    if (std::abs(turnedBack[section.axis] - section.coordinate) >
            section.distance * (1. + rounding) ||
        !isWithin(xAxis) || !isWithin(yAxis))
      continue;
    near.x.push_back(section.axis == 2 ? place.x() : turnedBack[xAxis]);
    near.y.push_back(section.axis == 2 ? place.y() : turnedBack[yAxis]);
    near.value.push_back(samples.value[i]);
    near.nUndefined += NbbGlobal::isDefined(samples.value[i]) ? 0 : 1;
  }
  return near;
}

}  // namespace orvenal
