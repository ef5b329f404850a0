#include "app/study/GridFinder.h"

#include "app/study/Compass.h"
#include "app/study/TurnedPlane.h"

#include <algorithm>
#include <cmath>

namespace orvenal {

namespace {

constexpr double tolerance = 0.01;  // of a cell: coordinates may be rounded
constexpr double leastTaken = 0.1;
constexpr double mostNodes = 1 << 24;  // along an axis

/// Values that follow each other in equal steps, some left out.
struct RegularAxis
{
  double first = 0.;
  double cell = 0.;
  qint64 nodes = 0;  ///< 0 when the values are not regular
};

RegularAxis findAxis(const std::vector<Place> &places, std::size_t axis)
{
  std::vector<double> values;
  values.reserve(places.size());
  for (const Place &place : places)
    values.push_back(place[axis]);
  std::sort(values.begin(), values.end());
  const double length = values.back() - values.front();
  if (length == 0.)
    return {values.front(), 1., 1};
  double step = length;
  for (std::size_t i = 1; i < values.size(); ++i) {
    const double difference = values[i] - values[i - 1];
    if (difference > 1e-9 * length)  // less is rounding
      step = std::min(step, difference);
  }
  if (!(length / step < mostNodes))
    return {};
  const double nSteps = std::round(length / step);
  const double cell = length / nSteps;
  for (const double value : values) {
    const double index = (value - values.front()) / cell;
    if (std::abs(index - std::round(index)) > tolerance)
      return {};
  }
  return {values.front(), cell, qint64(nSteps) + 1};
}

double share(const std::optional<NbgGeomGrid> &grid, qint64 nDistinct)
{
  return grid ? double(nDistinct) / double(grid->getGridSize()) : 0.;
}

NbgGeomGrid makeGrid(const RegularAxis &x, const RegularAxis &y, const RegularAxis &z)
{
  NbgGeomGrid grid;
  if (z.nodes == 1)
    grid.setNodesNumber2D(int(x.nodes), int(y.nodes));
  else
    grid.setNodesNumber(int(x.nodes), int(y.nodes), int(z.nodes));
  grid.setOriginCentered({x.first, y.first, z.first});
  grid.setCellSize({x.cell, y.cell, z.cell});
  return grid;
}

std::optional<NbgGeomGrid> findStraight(const std::vector<Place> &places, const RegularAxis &z)
{
  const RegularAxis x = findAxis(places, 0);
  const RegularAxis y = findAxis(places, 1);
  if (x.nodes < 2 || y.nodes < 2)
    return std::nullopt;
  return makeGrid(x, y, z);
}

std::optional<NbgGeomGrid> findTurned(const std::vector<Place> &places, const RegularAxis &z)
{
  const std::optional<TurnedPlane> plane = findTurnedPlane(places, tolerance);
  if (!plane || !(plane->nodes[0] < mostNodes) || !(plane->nodes[1] < mostNodes))
    return std::nullopt;
  NbgGeomGrid grid = makeGrid({plane->origin[0], plane->cell[0], qint64(plane->nodes[0])},
                              {plane->origin[1], plane->cell[1], qint64(plane->nodes[1])}, z);
  grid.setRotation(Compass::gridFrame(plane->azimuth));
  return grid;
}

}  // namespace

std::optional<NbgGeomGrid> findGrid(const std::vector<Place> &places, qint64 nDistinct)
{
  constexpr qint64 leastPlaces = 4;
  constexpr double ample = 0.6;
  if (nDistinct < leastPlaces)
    return std::nullopt;
  const RegularAxis z = findAxis(places, 2);
  if (z.nodes == 0)
    return std::nullopt;
  std::optional<NbgGeomGrid> grid = findStraight(places, z);
  if (share(grid, nDistinct) < ample) {  // a turned one may lie on every other node of it
    const std::optional<NbgGeomGrid> turned = findTurned(places, z);
    if (share(turned, nDistinct) > share(grid, nDistinct))
      grid = turned;
  }
  return share(grid, nDistinct) < leastTaken ? std::nullopt : grid;
}

}  // namespace orvenal
