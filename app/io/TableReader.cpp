#include "app/io/TableReader.h"

#include "app/base/Suggestion.h"
#include "app/io/CsvReader.h"
#include "app/io/GdalTable.h"
#include "app/io/GeoEasReader.h"
#include "app/io/NetcdfReader.h"
#include "app/io/TableKind.h"
#include "basic/error/NbeUserError.h"

#include <QFileInfo>
#include <QObject>

namespace orvenal {

std::unique_ptr<TableReader> TableReader::open(const QString &path, const QString &shownName,
                                               const TableFormat &format)
{
  const TableFormat::Kind kind =
      format.kind == TableFormat::AUTO ? findTableKind(path, shownName) : format.kind;
  if (kind == TableFormat::GDAL) {
    std::unique_ptr<TableReader> grid = NetcdfReader::tryOpen(path, shownName, format);
    return grid ? std::move(grid) : openGdalTable(path, shownName, format);
  }
  if (!format.layer.isEmpty())
    throw NbeUserError(QObject::tr("%1: a text table has no layers, and none named \"%2\"")
                           .arg(shownName, format.layer));
  if (kind == TableFormat::GEO_EAS)
    return std::make_unique<GeoEasReader>(path, shownName, format);
  return std::make_unique<CsvReader>(path, shownName, format);
}

QList<TableLayer> TableReader::listLayers(const QString &path, const QString &shownName,
                                          const TableFormat &format)
{
  const TableFormat::Kind kind =
      format.kind == TableFormat::AUTO ? findTableKind(path, shownName) : format.kind;
  const bool hasLayers =
      kind == TableFormat::GDAL && !NetcdfReader::tryOpen(path, shownName, format);
  return hasLayers ? listGdalLayers(path, shownName) : QList<TableLayer>();
}

QStringList TableReader::listFiles(const QString &path, const QString &shownName,
                                   const TableFormat &format)
{
  const TableFormat::Kind kind =
      format.kind == TableFormat::AUTO ? findTableKind(path, shownName) : format.kind;
  QStringList files = {QFileInfo(path).absoluteFilePath()};
  if (kind != TableFormat::GDAL || NetcdfReader::tryOpen(path, shownName, format))
    return files;
  for (const QString &file : listGdalFiles(path, shownName)) {
    if (!files.contains(file))
      files << file;
  }
  return files;
}

TableReader::TableReader(const QString &shownName) : _shownName(shownName) {}

TableReader::~TableReader() = default;

int TableReader::findColumn(const QString &name, const QString &wantedBy) const
{
  const int column = _columns.indexOf(name);
  if (column < 0)
    _failAt(_getHeaderPlace(), QObject::tr("there is no column \"%1\" (%2)%3; columns: %4%5")
                                   .arg(name, wantedBy, didYouMean(name, _columns),
                                        quotedList(_columns), _getMissingHint()));
  if (_columns.lastIndexOf(name) != column)
    _failAt(_getHeaderPlace(),
            QObject::tr("the column name \"%1\" (%2) stands more than once").arg(name, wantedBy));
  return column;
}

QString TableReader::getReference() const
{
  return QString();
}

QString TableReader::_getMissingHint() const
{
  return QString();
}

QString TableReader::fieldName(const QString &name, const QStringList &taken)
{
  return taken.contains(name) ? QObject::tr("%1 (field)").arg(name) : name;
}

void TableReader::fail(int column, const QString &message) const
{
  fail(QObject::tr("column %1 (\"%2\"): ").arg(QString::number(column + 1), _columns[column]) +
       message);
}

void TableReader::fail(const QString &message) const
{
  _failAt(_getPlace(), message);
}

void TableReader::failEmpty(const QString &shownName)
{
  throw NbeUserError(QObject::tr("%1: no rows below the header").arg(shownName));
}

void TableReader::_failAt(const QString &place, const QString &message) const
{
  throw NbeUserError(_shownName + QStringLiteral(", ") + place + QStringLiteral(": ") + message);
}

}  // namespace orvenal
