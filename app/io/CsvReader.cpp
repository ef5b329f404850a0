#include "app/io/CsvReader.h"

#include "basic/error/NbeUserError.h"

#include <QObject>

namespace orvenal {

namespace {

QString separatorName(char separator)
{
  switch (separator) {
    case '\t':
      return QObject::tr("tabs");
    case ' ':
      return QObject::tr("blanks");
    default:
      return QObject::tr("\"%1\"").arg(QLatin1Char(separator));
  }
}

}  // namespace

CsvReader::CsvReader(const QString &path, const QString &shownName, const TableFormat &format)
    : TableReader(shownName), _format(format), _records(path, shownName), _parser(format)
{
  _format.kind = TableFormat::CSV;
  if (_format.separator == 0)
    _format.separator = _records.detectSeparator();
  _records.setSeparator(_format.separator);
  _readHeader();
}

QString CsvReader::getFormatName() const
{
  return QObject::tr("CSV, separated by %1").arg(separatorName(_format.separator));
}

void CsvReader::_readHeader()
{
  if (_format.separator == _format.decimal)
    throw NbeUserError(
        QObject::tr("%1: the fields are separated by %2, which cannot be the decimal mark too")
            .arg(_getShownName(), separatorName(_format.separator)));
  if (!_records.nextRecord() || (_isSeparatorLine() && !_records.nextRecord()))
    throw NbeUserError(QObject::tr("%1: the file has no header line").arg(_getShownName()));
  QStringList columns;
  int nNumbers = 0;
  double number = 0.;
  for (int i = 0; i < _records.getCount(); ++i) {
    columns << textFromBytes(_records.getField(i));
    nNumbers += _parser.classify(_records.getField(i), number) == NUMBER ? 1 : 0;
  }
  if (nNumbers > 1 && nNumbers == columns.size())
    _records.fail(
        QObject::tr("the names of the columns are missing: the first line holds numbers"));
  _headerLine = _records.getLine();
  _setColumns(columns);
}

/// "sep=;", by which a spreadsheet is told what separates fields.
bool CsvReader::_isSeparatorLine() const
{
  const bool isAlone =
      _records.getCount() == 1 || (_records.getCount() == 2 && _records.getField(1).empty());
  return isAlone &&
         textFromBytes(_records.getField(0)).startsWith(QLatin1String("sep="), Qt::CaseInsensitive);
}

bool CsvReader::next()
{
  if (!_records.nextRecord())
    return false;
  if (_records.getCount() != getColumns().size())
    fail(QObject::tr("%1 fields, but the header has %2 columns (separated by %3)")
             .arg(QString::number(_records.getCount()), QString::number(getColumns().size()),
                  separatorName(_format.separator)));
  return true;
}

TableReader::Field CsvReader::classify(int column, double &number) const
{
  return _parser.classify(getField(column), number);
}

double CsvReader::getNumber(int column) const
{
  return _parser.read(getField(column), *this, column);
}

QString CsvReader::getText(int column) const
{
  return textFromBytes(getField(column));
}

QString CsvReader::_getPlace() const
{
  return QObject::tr("line %1").arg(getLine());
}

QString CsvReader::_getHeaderPlace() const
{
  return QObject::tr("line %1").arg(_headerLine);
}

}  // namespace orvenal
