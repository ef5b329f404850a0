#pragma once

#include "app/io/TableReader.h"

namespace orvenal {

/// Opens a file that GDAL reads as a table of points: one of its layers (GdalTableReader) or a
/// raster (GdalRasterReader). A file with several layers, or a raster file with several variables,
/// needs `format.layer`.
///
/// Files only, and only drivers that read files: none that go to a network or a data base, start
/// programs, or let a file point to others elsewhere (VRT). Anything that cannot be opened so is an
/// NbeUserError that names the file and GDAL's reason.
std::unique_ptr<TableReader> openGdalTable(const QString &path, const QString &shownName,
                                           const TableFormat &format);

/// The layers of a file, or the variables of a raster file; none for a plain raster.
QList<TableLayer> listGdalLayers(const QString &path, const QString &shownName);

/// The local files of which a data set consists, absolute.
QStringList listGdalFiles(const QString &path, const QString &shownName);

}  // namespace orvenal
