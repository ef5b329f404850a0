#pragma once

#include <vector>

class NbgGeomGrid;

namespace orvenal {

/// A picture's view of a two-dimensional grid: cells along the map's axes, x fastest, undefined
/// values as NaN.
struct MapRaster
{
  int nColumns = 0;
  int nRows = 0;
  double xFirst = 0.;  ///< centre of the first cell
  double yFirst = 0.;
  double xStep = 0.;
  double yStep = 0.;
  std::vector<double> values;

  double at(int column, int row) const
  {
    return values[std::size_t(row) * std::size_t(nColumns) + std::size_t(column)];
  }
};

/// The grid cell by cell; a grid that is turned, has more than `mostCells` along an axis or a
/// single cell along one is sampled at the centres of the raster's own cells.
MapRaster rasterize(const NbgGeomGrid &grid, const std::vector<double> &values, int mostCells);

}  // namespace orvenal
