#include "app/plot/MapRaster.h"

#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgBox.h"
#include "basic/geom/NbgGeomGrid.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace orvenal {

namespace {

double shownValue(double value)
{
  return NbbGlobal::isDefined(value) ? value : std::numeric_limits<double>::quiet_NaN();
}

bool isDrawnAsItIs(const NbgGeomGrid &grid, int mostCells)
{
  const NbgIntVector3D n = grid.getNodesNumber();
  return grid.getRotation().isIdentity() && std::min(n.x(), n.y()) > 1 &&
         std::max(n.x(), n.y()) <= mostCells;
}

void copyCells(const NbgGeomGrid &grid, const std::vector<double> &values, MapRaster &raster)
{
  raster.nColumns = grid.getNodesNumber().x();
  raster.nRows = grid.getNodesNumber().y();
  raster.xFirst = grid.getOriginCentered().x();
  raster.yFirst = grid.getOriginCentered().y();
  raster.xStep = grid.getCellSize().x();
  raster.yStep = grid.getCellSize().y();
  for (int row = 0; row < raster.nRows; ++row) {
    for (int column = 0; column < raster.nColumns; ++column)
      raster.values.push_back(shownValue(values[std::size_t(grid.getRankFromIJK(column, row, 0))]));
  }
}

void sampleCells(const NbgGeomGrid &grid, const std::vector<double> &values, int mostCells,
                 MapRaster &raster)
{
  NbgBox box;
  grid.updateBoundingBox(box);
  const NbgVector3D size = box.getSize();
  const double finest = std::min(grid.getCellSize().x(), grid.getCellSize().y()) / 4.;
  const double step = std::max(finest, std::max(size.x(), size.y()) / mostCells);
  raster.nColumns = std::max(2, int(std::ceil(size.x() / step)));
  raster.nRows = std::max(2, int(std::ceil(size.y() / step)));
  raster.xStep = size.x() / raster.nColumns;
  raster.yStep = size.y() / raster.nRows;
  raster.xFirst = box.getLowerLeftCorner().x() + 0.5 * raster.xStep;
  raster.yFirst = box.getLowerLeftCorner().y() + 0.5 * raster.yStep;
  for (int row = 0; row < raster.nRows; ++row) {
    for (int column = 0; column < raster.nColumns; ++column) {
      const NbgVector3D point(raster.xFirst + column * raster.xStep,
                              raster.yFirst + row * raster.yStep, 0.);
      int i = 0;
      int j = 0;
      raster.values.push_back(grid.getCellIJ(point, i, j)
                                  ? shownValue(values[std::size_t(grid.getRankFromIJK(i, j, 0))])
                                  : std::numeric_limits<double>::quiet_NaN());
    }
  }
}

}  // namespace

MapRaster rasterize(const NbgGeomGrid &grid, const std::vector<double> &values, int mostCells)
{
  MapRaster raster;
  if (isDrawnAsItIs(grid, mostCells))
    copyCells(grid, values, raster);
  else
    sampleCells(grid, values, mostCells, raster);
  return raster;
}

}  // namespace orvenal
