#pragma once

#include <QString>

#include <array>

class NbgGeomGrid;

namespace orvenal {

struct GridTable;

/// The affine transformation of a raster whose first row is the last row of a two-dimensional grid:
/// x = t[0] + t[1] column + t[2] row and y = t[3] + t[4] column + t[5] row, for the corners of its
/// pixels. For a grid that is not turned the raster is north-up.
std::array<double, 6> rasterTransform(const NbgGeomGrid &grid);

/// Writes a two-dimensional grid as a GeoTIFF of doubles, a band per column, described by its name,
/// with its unit and its label (metadata item `long_name`); NaN is no data. `shownName` stands for
/// the file in messages.
void writeGeoTiff(const QString &path, const QString &shownName, const GridTable &grid);

}  // namespace orvenal
