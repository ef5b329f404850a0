#include "app/io/GdalTableReader.h"

#include "app/console/Interruption.h"
#include "app/io/GdalErrors.h"
#include "app/io/TextRecords.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <string_view>

namespace orvenal {

namespace {

/// A layer of unknown geometry may well hold points.
bool mayBePoints(OGRwkbGeometryType type)
{
  const OGRwkbGeometryType flat = wkbFlatten(type);
  return flat == wkbPoint || flat == wkbMultiPoint || flat == wkbUnknown;
}

double coordinate(const OGRPoint &point, int axis)
{
  return axis == 0 ? point.getX() : (axis == 1 ? point.getY() : point.getZ());
}

}  // namespace

GdalTableReader::GdalTableReader(GdalDatasetPtr dataset, const QString &shownName,
                                 const TableFormat &format)
    : TableReader(shownName),
      _format(format),
      _parser(format),
      _dataset(std::move(dataset)),
      _layer(_dataset->GetLayerByName(format.layer.toUtf8().constData()))
{
  _format.kind = TableFormat::GDAL;
  if (!_layer)
    throw NbeUserError(
        QObject::tr("%1: the layer \"%2\" cannot be read").arg(shownName, format.layer));
  _layer->ResetReading();
  _findColumns();
}

GdalTableReader::~GdalTableReader() = default;

QString GdalTableReader::getFormatName() const
{
  return gdalFormatName(*_dataset);
}

void GdalTableReader::_findColumns()
{
  const OGRwkbGeometryType type = _layer->GetGeomType();
  if (mayBePoints(type))
    _nAxes = wkbHasZ(type) ? 3 : 2;
  const QStringList axes =
      QStringList{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}.mid(0, _nAxes);
  QStringList columns = axes;
  const OGRFeatureDefn *definition = _layer->GetLayerDefn();
  for (int i = 0; i < definition->GetFieldCount(); ++i)
    columns << fieldName(QString::fromUtf8(definition->GetFieldDefn(i)->GetNameRef()), axes);
  _setColumns(columns);
}

bool GdalTableReader::next()
{
  constexpr qint64 checkEvery = 1024;
  if (_nRead++ % checkEvery == 0)
    Interruption::check();
  const GdalErrors errors;
  _feature.reset(_layer->GetNextFeature());
  if (errors.hasFailed())
    throw NbeUserError(QObject::tr("%1: cannot be read beyond %2 features: %3")
                           .arg(_getShownName(), QString::number(_nRead - 1), errors.getMessage()));
  return _feature != nullptr;
}

/// Null when the feature has no point, or several.
const OGRPoint *GdalTableReader::_getPoint() const
{
  const OGRGeometry *geometry = _feature->GetGeometryRef();
  if (geometry && !geometry->IsEmpty() && wkbFlatten(geometry->getGeometryType()) == wkbMultiPoint)
    geometry = geometry->toMultiPoint()->getNumGeometries() == 1
                   ? geometry->toMultiPoint()->getGeometryRef(0)
                   : nullptr;
  if (!geometry || geometry->IsEmpty() || wkbFlatten(geometry->getGeometryType()) != wkbPoint)
    return nullptr;
  return geometry->toPoint();
}

void GdalTableReader::_failPoint() const
{
  const OGRGeometry *geometry = _feature->GetGeometryRef();
  if (!geometry || geometry->IsEmpty())
    fail(QObject::tr("the geometry is empty"));
  fail(QObject::tr("the geometry is a %1, not a point")
           .arg(QString::fromUtf8(OGRGeometryTypeToName(geometry->getGeometryType()))));
}

bool GdalTableReader::_holdsNumber(int field) const
{
  const OGRFieldType type = _layer->GetLayerDefn()->GetFieldDefn(field)->GetType();
  return type == OFTInteger || type == OFTInteger64 || type == OFTReal;
}

TableReader::Field GdalTableReader::classify(int column, double &number) const
{
  if (column < _nAxes) {
    const OGRPoint *point = _getPoint();
    return point ? _parser.classify(coordinate(*point, column), number) : UNDEFINED;
  }
  const int field = column - _nAxes;
  if (!_feature->IsFieldSetAndNotNull(field))
    return UNDEFINED;
  return _holdsNumber(field) ? _parser.classify(_feature->GetFieldAsDouble(field), number)
                             : _parser.classify(trimmed(_feature->GetFieldAsString(field)), number);
}

double GdalTableReader::getNumber(int column) const
{
  if (column < _nAxes) {
    const OGRPoint *point = _getPoint();
    if (!point)
      _failPoint();
    return _parser.read(coordinate(*point, column), *this, column);
  }
  const int field = column - _nAxes;
  if (!_feature->IsFieldSetAndNotNull(field))
    return NbbGlobal::D_FFFF;
  return _holdsNumber(field)
             ? _parser.read(_feature->GetFieldAsDouble(field), *this, column)
             : _parser.read(trimmed(_feature->GetFieldAsString(field)), *this, column);
}

QString GdalTableReader::getText(int column) const
{
  if (column < _nAxes) {
    const OGRPoint *point = _getPoint();
    return point ? QString::number(coordinate(*point, column)) : QString();
  }
  const int field = column - _nAxes;
  return _feature->IsFieldSetAndNotNull(field) ? textFromBytes(_feature->GetFieldAsString(field))
                                               : QString();
}

QString GdalTableReader::getReference() const
{
  return wktOf(_layer->GetSpatialRef());
}

QString GdalTableReader::_getPlace() const
{
  return QObject::tr("feature %1").arg(_feature ? qint64(_feature->GetFID()) : _nRead);
}

QString GdalTableReader::_getHeaderPlace() const
{
  return QObject::tr("layer \"%1\"").arg(_format.layer);
}

QString GdalTableReader::_getMissingHint() const
{
  const OGRwkbGeometryType type = _layer->GetGeomType();
  if (wkbFlatten(type) == wkbNone)
    return QObject::tr("; the layer has no geometry");
  const QFileInfo file(QFile::decodeName(_dataset->GetDescription()));
  const QString table = file.completeBaseName() + QStringLiteral(".dbf");
  if (file.suffix().toLower() == QLatin1String("shp") && getColumns().size() == _nAxes &&
      !file.dir().exists(table))
    return QObject::tr(
               "; the other columns of a Shapefile are in a file beside it, and there is "
               "no \"%1\"")
        .arg(table);
  return mayBePoints(type) ? QString()
                           : QObject::tr("; the geometry of the layer is \"%1\", not points")
                                 .arg(QString::fromUtf8(OGRGeometryTypeToName(type)));
}

}  // namespace orvenal
