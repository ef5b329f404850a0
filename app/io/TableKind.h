#pragma once

#include "app/io/TableReader.h"

namespace orvenal {

/// The kind that a file is taken for when its format is left open; never AUTO.
///
/// Endings of formats that GDAL reads (.gpkg, .shp, .tif ...) say GDAL, and so do bytes that are no
/// text, but in .csv, .tsv and .txt. Of the others, .eas, .geoeas and .gslib are GEO-EAS; .dat,
/// .txt, .out and .prn are when the second line begins with a whole number n > 0, n names follow
/// and then n fields. All else is CSV. A file that cannot be read is an NbeUserError.
TableFormat::Kind findTableKind(const QString &path, const QString &shownName);

}  // namespace orvenal
