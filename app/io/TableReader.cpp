#include "app/io/TableReader.h"

#include "app/io/CsvReader.h"
#include "app/io/Suggestion.h"
#include "basic/error/NbeUserError.h"

#include <QObject>

namespace orvenal {

std::unique_ptr<TableReader> TableReader::open(const QString &path, const QString &shownName,
                                               const TableFormat &format)
{
  return std::make_unique<CsvReader>(path, shownName, format);
}

TableReader::TableReader(const QString &shownName) : _shownName(shownName) {}

TableReader::~TableReader() = default;

int TableReader::findColumn(const QString &name, const QString &wantedBy) const
{
  const int column = _columns.indexOf(name);
  if (column < 0)
    _failAt(_getHeaderPlace(),
            QObject::tr("there is no column \"%1\" (%2)%3; columns: %4")
                .arg(name, wantedBy, didYouMean(name, _columns), quotedList(_columns)));
  if (_columns.lastIndexOf(name) != column)
    _failAt(_getHeaderPlace(),
            QObject::tr("the column name \"%1\" (%2) stands more than once").arg(name, wantedBy));
  return column;
}

QString TableReader::getReference() const
{
  return QString();
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

void TableReader::_failAt(const QString &place, const QString &message) const
{
  throw NbeUserError(_shownName + QStringLiteral(", ") + place + QStringLiteral(": ") + message);
}

}  // namespace orvenal
