#include "app/io/GeoPackageTableWriter.h"

#include "app/console/Interruption.h"
#include "app/io/GdalErrors.h"
#include "app/io/SpatialReference.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <cpl_conv.h>
#include <cpl_string.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>

namespace orvenal {

namespace {

struct Closer
{
  void operator()(GDALDataset *dataset) const { GDALClose(dataset); }
};

/// The database is made from nothing and thrown away when it fails: no journal, no waiting for the
/// disk.
struct DatabaseOptions
{
  CPLConfigOptionSetter journal{"OGR_SQLITE_JOURNAL", "MEMORY", false};
  CPLConfigOptionSetter synchronous{"OGR_SQLITE_SYNCHRONOUS", "OFF", false};
};

GDALDriver *driver()
{
  GDALDriver *found = GetGDALDriverManager()->GetDriverByName("GPKG");
  if (!found) {
    GDALAllRegister();
    found = GetGDALDriverManager()->GetDriverByName("GPKG");
  }
  return found;
}

/// A name that no column has; upper and lower case are one.
QByteArray freeName(const char *name, const TableLayout &layout)
{
  QString free = QLatin1String(name);
  const auto isTaken = [&] {
    for (const TableLayout::Column &column : layout.columns) {
      if (column.name.compare(free, Qt::CaseInsensitive) == 0)
        return true;
    }
    return false;
  };
  while (isTaken())
    free += '_';
  return free.toUtf8();
}

}  // namespace

struct GeoPackageTableWriter::File
{
  GdalErrors errors;
  DatabaseOptions options;
  QString shownName;
  TableLayout layout;
  std::unique_ptr<GDALDataset, Closer> dataset;
  OGRLayer *table = nullptr;
  std::vector<int> fields;  ///< by column; -1 for coordinates
  std::unique_ptr<OGRFeature> feature;
  qint64 nRecords = 0;

  [[noreturn]] void fail() const
  {
    throw NbeUserError(
        QObject::tr("%1: cannot be written: %2").arg(shownName, errors.getMessage()));
  }
  void create(const QString &path);
  void createLayer();
  void createFields();
  void setPlace(const TableRecord &record);
  void setField(int field, bool isText, double number, const QString &text);
};

void GeoPackageTableWriter::File::create(const QString &path)
{
  QFile::remove(path);  // the driver makes a new file only
  dataset.reset(
      driver()->Create(QFile::encodeName(path).constData(), 0, 0, 0, GDT_Unknown, nullptr));
  if (!dataset)
    fail();
  createLayer();
  createFields();
  feature.reset(OGRFeature::CreateFeature(table->GetLayerDefn()));
  if (dataset->StartTransaction() != OGRERR_NONE)
    fail();
}

void GeoPackageTableWriter::File::createLayer()
{
  QString reason;
  const SpatialReference reference =
      layout.crs.isEmpty() ? SpatialReference() : SpatialReference::parse(layout.crs, reason);
  CPLStringList names;
  names.SetNameValue("FID", freeName("fid", layout).constData());
  names.SetNameValue("GEOMETRY_NAME", freeName("geom", layout).constData());
  table = dataset->CreateLayer(QFileInfo(shownName).completeBaseName().toUtf8().constData(),
                               const_cast<OGRSpatialReference *>(reference.get()),
                               layout.z < 0 ? wkbPoint : wkbPoint25D, names.List());
  if (!table)
    fail();
}

void GeoPackageTableWriter::File::createFields()
{
  for (int i = 0; i < layout.columns.size(); ++i) {
    const TableLayout::Column &column = layout.columns[i];
    const bool isPlace = i == layout.x || i == layout.y || i == layout.z;
    fields.push_back(isPlace ? -1 : table->GetLayerDefn()->GetFieldCount());
    if (isPlace)
      continue;
    const QByteArray name = column.name.toUtf8();
    if (table->GetLayerDefn()->GetFieldIndex(name.constData()) >= 0)
      throw NbeUserError(QObject::tr("%1: a GeoPackage does not tell columns apart that differ in "
                                     "case only, such as \"%2\"")
                             .arg(shownName, column.name));
    OGRFieldDefn field(name.constData(), column.isText ? OFTString : OFTReal);
    if (table->CreateField(&field) != OGRERR_NONE)
      fail();
  }
}

/// Without all of its coordinates a point has no place.
void GeoPackageTableWriter::File::setPlace(const TableRecord &record)
{
  const auto coordinate = [&](int column) { return record.numbers[std::size_t(column)]; };
  const bool is3D = layout.z >= 0;
  const double x = coordinate(layout.x);
  const double y = coordinate(layout.y);
  const double z = is3D ? coordinate(layout.z) : 0.;
  if (!NbbGlobal::isDefined(x) || !NbbGlobal::isDefined(y) || !NbbGlobal::isDefined(z))
    feature->SetGeometryDirectly(nullptr);
  else
    feature->SetGeometryDirectly(is3D ? new OGRPoint(x, y, z) : new OGRPoint(x, y));
}

void GeoPackageTableWriter::File::setField(int field, bool isText, double number,
                                           const QString &text)
{
  if (isText && !text.isEmpty())
    feature->SetField(field, text.toUtf8().constData());
  else if (!isText && NbbGlobal::isDefined(number))
    feature->SetField(field, number);
  else
    feature->SetFieldNull(field);
}

GeoPackageTableWriter::GeoPackageTableWriter(const QString &path, const QString &shownName,
                                             const TableLayout &layout)
    : _file(std::make_unique<File>())
{
  _file->shownName = shownName;
  _file->layout = layout;
  _file->create(path);
}

GeoPackageTableWriter::~GeoPackageTableWriter() = default;

void GeoPackageTableWriter::add(const TableRecord &record)
{
  constexpr qint64 recordsBetweenChecks = 1024;
  if (_file->nRecords++ % recordsBetweenChecks == 0)
    Interruption::check();
  _file->setPlace(record);
  for (std::size_t i = 0; i < _file->fields.size(); ++i) {
    if (_file->fields[i] >= 0)
      _file->setField(_file->fields[i], _file->layout.columns[int(i)].isText, record.numbers[i],
                      record.texts[i]);
  }
  _file->feature->SetFID(OGRNullFID);
  if (_file->table->CreateFeature(_file->feature.get()) != OGRERR_NONE)
    _file->fail();
}

void GeoPackageTableWriter::finish()
{
  if (_file->dataset->CommitTransaction() != OGRERR_NONE)
    _file->fail();
  _file->feature.reset();
  _file->dataset.reset();
  if (_file->errors.hasFailed())
    _file->fail();
}

}  // namespace orvenal
