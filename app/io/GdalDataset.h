#pragma once

#include "app/io/TableReader.h"

#include <QByteArray>
#include <QList>
#include <QPair>
#include <QString>

#include <gdal_priv.h>

#include <memory>

namespace orvenal {

struct GdalCloser
{
  void operator()(GDALDataset *dataset) const { GDALClose(dataset); }
};
using GdalDatasetPtr = std::unique_ptr<GDALDataset, GdalCloser>;

/// Opens a local file for reading with the drivers that GdalTable.h describes.
GdalDatasetPtr openGdalDataset(const QString &path, const QString &shownName);

/// A part of a file, by the name under which GDAL opens it.
GdalDatasetPtr openGdalPart(const QByteArray &name, const QString &shownName);

/// The variables of a raster file: names as users know them, and those under which GDAL opens them.
QList<QPair<QString, QByteArray>> listGdalParts(GDALDataset &dataset, const QString &path);

/// "GPKG (GeoPackage)"
QString gdalFormatName(GDALDataset &dataset);

/// WKT of a reference; empty for none and for those that say nothing about the place on Earth.
QString wktOf(const OGRSpatialReference *reference);

}  // namespace orvenal
