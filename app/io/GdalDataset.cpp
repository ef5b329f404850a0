#include "app/io/GdalDataset.h"

#include "app/io/GdalErrors.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <cpl_conv.h>
#include <cpl_string.h>
#include <ogr_spatialref.h>

#include <algorithm>
#include <cstring>

namespace orvenal {

namespace {

/// Drivers that go to a network or a data base, start programs, make up data, or open files that
/// name others.
bool isRefused(const char *driver)
{
  static const char *const refused[] = {
      "VRT",           "OGR_VRT",    "DERIVED",     "MEM",           "Memory",   "GTI",
      "HTTP",          "WCS",        "WMS",         "WMTS",          "WFS",      "OAPIF",
      "OGCAPI",        "CSW",        "PLMOSAIC",    "PLSCENES",      "EEDA",     "EEDAI",
      "DAAS",          "STACTA",     "STACIT",      "NGW",           "Carto",    "AmigoCloud",
      "PostGISRaster", "PostgreSQL", "MySQL",       "MSSQLSpatial",  "ODBC",     "PGeo",
      "OCI",           "HANA",       "MongoDBv3",   "Elasticsearch", "OGR_OGDI", "GPSBabel",
      "GMLAS",         "GNMFile",    "GNMDatabase", "Rasterlite",    "MRF",      "TileDB",
      "GeoRaster",     "SOSI",       "IDB",         "Couchbase"};
  return std::any_of(std::begin(refused), std::end(refused),
                     [&](const char *name) { return std::strcmp(driver, name) == 0; });
}

/// Names of the drivers that may open a file. All are registered on the first call: that takes 5
/// ms.
const CPLStringList &allowedDrivers()
{
  static const CPLStringList drivers = [] {
    CPLSetConfigOption("GML_DOWNLOAD_SCHEMA", "NO");
    CPLSetConfigOption("CPL_VSIL_CURL_ALLOWED_EXTENSIONS", "{none}");
    GDALAllRegister();
    CPLStringList names;
    for (int i = 0; i < GetGDALDriverManager()->GetDriverCount(); ++i) {
      const char *name = GetGDALDriverManager()->GetDriver(i)->GetDescription();
      if (!isRefused(name))
        names.AddString(name);
    }
    return names;
  }();
  return drivers;
}

GdalDatasetPtr openNamed(const QByteArray &name, const QString &shownName)
{
  const GdalErrors errors;
  GdalDatasetPtr dataset(GDALDataset::Open(
      name.constData(), GDAL_OF_VECTOR | GDAL_OF_RASTER | GDAL_OF_READONLY | GDAL_OF_VERBOSE_ERROR,
      allowedDrivers().List()));
  if (!dataset) {
    const QString quotedName = '`' + QFile::decodeName(name) + QStringLiteral("' ");
    throw NbeUserError(QObject::tr("%1: cannot be read: %2")
                           .arg(shownName, errors.getMessage().remove(quotedName)));
  }
  return dataset;
}

/// What a subdataset's name adds to the path of its file: "estimate" of NETCDF:"/a/b.nc":estimate.
QString partName(const QString &name, const QString &path)
{
  const int begin = name.indexOf(path);
  QString part = name.mid(begin + path.size());
  if (part.isEmpty() || part == QLatin1String("\""))
    part = name.left(begin).section(QLatin1Char(':'), 1);
  while (!part.isEmpty() && QStringLiteral("\":/").contains(part.front()))
    part.remove(0, 1);
  while (!part.isEmpty() && QStringLiteral("\":/").contains(part.back()))
    part.chop(1);
  return part;
}

}  // namespace

GdalDatasetPtr openGdalDataset(const QString &path, const QString &shownName)
{
  const QFileInfo file(path);
  const QString absolute = file.absoluteFilePath();
  if (file.isDir())
    throw NbeUserError(QObject::tr("%1: is a folder").arg(shownName));
  if (!file.isFile() || absolute.startsWith(QLatin1String("/vsi")))
    throw NbeUserError(QObject::tr("%1: there is no such file").arg(shownName));
  if (file.size() == 0)
    throw NbeUserError(QObject::tr("%1: the file is empty").arg(shownName));
  return openNamed(QFile::encodeName(absolute), shownName);
}

GdalDatasetPtr openGdalPart(const QByteArray &name, const QString &shownName)
{
  return openNamed(name, shownName);
}

QList<QPair<QString, QByteArray>> listGdalParts(GDALDataset &dataset, const QString &path)
{
  QList<QPair<QString, QByteArray>> parts;
  const QString absolute = QFileInfo(path).absoluteFilePath();
  const char *const *metadata = dataset.GetMetadata("SUBDATASETS");
  for (int i = 1;; ++i) {
    const QByteArray key = "SUBDATASET_" + QByteArray::number(i) + "_NAME";
    const QByteArray name = CSLFetchNameValue(metadata, key.constData());
    if (name.isEmpty())
      return parts;
    const QString text = QFile::decodeName(name);
    // A file could name what lies elsewhere.
    if (text.contains(absolute) && !text.contains(QLatin1String("/vsi")))
      parts.append({partName(text, absolute), name});
  }
}

QString gdalFormatName(GDALDataset &dataset)
{
  GDALDriver *driver = dataset.GetDriver();
  if (!driver)
    return QStringLiteral("GDAL");
  const char *longName = driver->GetMetadataItem(GDAL_DMD_LONGNAME);
  const QString name = QString::fromUtf8(driver->GetDescription());
  const QString description = QString::fromUtf8(longName ? longName : "");
  return description.isEmpty() || description == name
             ? name
             : QStringLiteral("%1 (%2)").arg(name, description);
}

QString wktOf(const OGRSpatialReference *reference)
{
  static const char *const options[] = {"FORMAT=WKT2_2019", nullptr};
  if (!reference || reference->IsEmpty() || reference->IsLocal())
    return QString();
  const char *name = reference->GetName();
  if (name && std::strncmp(name, "Undefined", 9) == 0)
    return QString();
  char *text = nullptr;
  const bool written = reference->exportToWkt(&text, options) == OGRERR_NONE;
  const QString wkt = written ? QString::fromUtf8(text) : QString();
  CPLFree(text);
  return wkt;
}

}  // namespace orvenal
