#include "app/io/TableKind.h"

#include "app/io/FieldParser.h"
#include "app/io/TextRecords.h"
#include "basic/error/NbeUserError.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QObject>

namespace orvenal {

namespace {

/// Formats of GDAL that are common enough to be known by their ending, so that a damaged file is
/// given to the reader that says what is wrong with it. Endings of text tables are not among them.
const char *const gdalEndings[] = {
    "gpkg",   "shp", "shz", "dbf",  "geojson", "geojsonl", "geojsons", "json", "topojson", "fgb",
    "sqlite", "db",  "gml", "kml",  "kmz",     "gpx",      "tab",      "mif",  "mid",      "dxf",
    "gdb",    "ods", "xls", "xlsx", "tif",     "tiff",     "vrt",      "nc",   "asc",      "grd",
    "img",    "bil", "flt", "h5",   "hdf",     "hdf5",     "grb",      "grb2", "grib",     "grib2",
    "hgt",    "jp2", "png", "jpg",  "jpeg",    "bmp",      "rst",      "sdat", "pix",      "ers"};

bool isOneOf(const QString &ending, const char *const *begin, const char *const *end)
{
  for (const char *const *candidate = begin; candidate != end; ++candidate) {
    if (ending == QLatin1String(*candidate))
      return true;
  }
  return false;
}

bool mayBeGeoEas(const QString &ending)
{
  static const char *const endings[] = {"dat", "txt", "out", "prn"};
  return ending.isEmpty() || isOneOf(ending, std::begin(endings), std::end(endings));
}

bool isGeoEasEnding(const QString &ending)
{
  static const char *const endings[] = {"eas", "geoeas", "gslib"};
  return isOneOf(ending, std::begin(endings), std::end(endings));
}

/// Text whatever it holds: its readers say which line is damaged.
bool isTextEnding(const QString &ending)
{
  static const char *const endings[] = {"csv", "tsv", "txt"};
  return isGeoEasEnding(ending) || isOneOf(ending, std::begin(endings), std::end(endings));
}

/// Null bytes near the beginning; UTF-16 text has them too, but says so.
bool isBinary(const QByteArray &head)
{
  return head.contains('\0') && !head.startsWith("\xFF\xFE") && !head.startsWith("\xFE\xFF");
}

QByteArray readHead(const QString &path, const QString &shownName)
{
  constexpr qint64 headSize = 4096;
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly))
    throw NbeUserError(QObject::tr("%1: cannot be read: %2").arg(shownName, file.errorString()));
  return file.read(headSize);
}

bool isNumber(std::string_view field)
{
  static const FieldParser parser(TableFormat{}, FieldParser::FORTRAN);
  double number = 0.;
  return parser.classify(field, number) == TableReader::NUMBER;
}

/// Whether the lines are those of a GEO-EAS file, as far as the first record.
bool looksLikeGeoEas(const QString &path, const QString &shownName)
{
  constexpr int mostVariables = 1000;
  TextRecords records(path, shownName);
  if (!records.nextLine() || !records.nextRecord())
    return false;
  const int n = textFromBytes(records.getField(0)).toInt();
  if (n < 1 || n > mostVariables)
    return false;
  for (int i = 0; i < n; ++i) {
    if (!records.nextLine() || records.getField(0).empty() || isNumber(records.getField(0)))
      return false;
    const std::string_view name = records.getField(0);
    if (isNumber(name.substr(0, name.find_first_of(" \t,;"))))
      return false;  // a record of numbers, not a name
  }
  return records.nextRecord() && records.getCount() == n;
}

}  // namespace

TableFormat::Kind findTableKind(const QString &path, const QString &shownName)
{
  const QString ending = QFileInfo(path).suffix().toLower();
  if (isOneOf(ending, std::begin(gdalEndings), std::end(gdalEndings)))
    return TableFormat::GDAL;
  if (!isTextEnding(ending)) {
    const QByteArray head = readHead(path, shownName);
    refusePacked({head.constData(), std::size_t(head.size())}, shownName);
    if (isBinary(head))
      return TableFormat::GDAL;
  }
  if (isGeoEasEnding(ending))
    return TableFormat::GEO_EAS;
  if (!mayBeGeoEas(ending))
    return TableFormat::CSV;
  try {
    return looksLikeGeoEas(path, shownName) ? TableFormat::GEO_EAS : TableFormat::CSV;
  } catch (const NbeUserError &) {
    return TableFormat::CSV;  // its reader says what is wrong
  }
}

}  // namespace orvenal
