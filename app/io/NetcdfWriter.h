#pragma once

#include <QString>

namespace orvenal {

struct GridTable;

/// To be called before anything else of the program uses netCDF. The library under it, HDF5, tries
/// again at the end of a process to write what it could not write, and crashes on a disk that is
/// full; afterwards it does not.
void prepareNetcdf();

/// Writes a grid as netCDF (version 4) after the conventions CF-1.8.
///
/// Shape: one variable of doubles per column, over the dimensions (z,) y, x with coordinate
/// variables of these names; what is undefined or masked is NaN, the fill value. A grid that is
/// turned has dimensions (z,) j, i and coordinates x(j, i), y(j, i).
/// Every variable has long_name and units where they are known; the coordinate reference system is
/// the grid mapping variable `crs` (crs_wkt, spatial_ref). Names that are taken get a `_`, and
/// characters that netCDF has not in names become one.
///
/// Two runs with the same results write the same bytes. `shownName` stands for the file in
/// messages.
void writeNetcdf(const QString &path, const QString &shownName, const GridTable &grid);

}  // namespace orvenal
