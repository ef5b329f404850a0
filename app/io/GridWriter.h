#pragma once

#include <QString>
#include <QStringList>

namespace orvenal {

struct GridTable;

/// Endings of the files that writeGrid() writes, without dot.
QStringList gridEndings();

/// Whether files of this ending hold grids of two dimensions only.
bool isPlaneFormat(const QString &ending);

/// Writes a grid to a file whose format is that of the ending of `shownName`, which stands for the
/// file in messages: .csv and .gpkg tables of the nodes that are not masked (see TableWriter),
/// .tif (see writeGeoTiff()), .dat and .gslib (see writeGeoEasGrid()), .nc (see writeNetcdf()).
///
/// A file that cannot be written is an NbeUserError that names it; a stop request is thrown as
/// NbeException. Besides the grid it takes memory for a row of nodes.
void writeGrid(const QString &path, const QString &shownName, const GridTable &grid);

}  // namespace orvenal
