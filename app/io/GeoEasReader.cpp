#include "app/io/GeoEasReader.h"

#include "basic/error/NbeUserError.h"

#include <QObject>
#include <QRegularExpression>

#include <vector>

namespace orvenal {

namespace {

constexpr qint64 mostVariables = 100000;
constexpr qint64 mostNodes = Q_INT64_C(1) << 31;  // per axis, and of realizations

/// A whole number from 1 to `most`; -1 when the text is none.
qint64 wholeNumber(std::string_view text, qint64 most)
{
  bool isNumber = false;
  const qint64 value = textFromBytes(text).toLongLong(&isNumber);
  return isNumber && value >= 1 && value <= most ? value : -1;
}

}  // namespace

GeoEasReader::GeoEasReader(const QString &path, const QString &shownName, const TableFormat &format)
    : TableReader(shownName),
      _format(format),
      _records(path, shownName),
      _parser(format, FieldParser::FORTRAN)
{
  _format.kind = TableFormat::GEO_EAS;
  _format.separator = ' ';
  _readHeader();
}

/// Files that this program writes name their mark of undefined values in the title.
void GeoEasReader::_takeMark()
{
  static const QRegularExpression pattern(QStringLiteral("\\(undefined: (\\S+)\\)$"));
  const QString mark = pattern.match(_title.trimmed()).captured(1);
  if (mark.isEmpty())
    return;
  _format.undefined << mark;
  _parser = FieldParser(_format, FieldParser::FORTRAN);
}

QString GeoEasReader::getFormatName() const
{
  return _grid ? QObject::tr("GEO-EAS, grid") : QObject::tr("GEO-EAS");
}

void GeoEasReader::_readHeader()
{
  if (_records.nextLine())
    _title = textFromBytes(_records.getField(0));
  _takeMark();
  if (!_records.nextLine())
    fail(QObject::tr("the file ends before the number of variables, which is on the second line"));
  const QString line = shownText(_records.getField(0));
  const std::string_view field = _records.getField(0);
  const std::string_view first = field.substr(0, field.find_first_of(" \t,"));
  bool isNumber = false;
  const qint64 n = textFromBytes(first).toLongLong(&isNumber);
  if (!isNumber || n < 1)
    fail(QObject::tr("the second line of a GEO-EAS file begins with the number of variables, a "
                     "whole number above 0; found \"%1\"")
             .arg(line));
  if (n > mostVariables)
    fail(QObject::tr("%1 variables are too many (at most %2)").arg(n).arg(mostVariables));
  _readGrid();
  _readNames(int(n));
  _records.setSeparator(' ');
}

/// What stands behind the number of variables.
void GeoEasReader::_readGrid()
{
  const QStringList words =
      textFromBytes(_records.getField(0)).simplified().split(QLatin1Char(' ')).mid(1);
  std::vector<double> numbers;
  for (const QString &word : words) {
    double number = 0.;
    if (_parser.classify(word.toStdString(), number) != NUMBER)
      break;
    numbers.push_back(number);
  }
  if (numbers.size() < 3)
    return;
  Grid grid;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    grid.nodes[axis] = wholeNumber(words[int(axis)].toStdString(), mostNodes);
    if (grid.nodes[axis] < 0)
      return;
  }
  grid.isPlaced = numbers.size() >= 9;
  for (std::size_t axis = 0; axis < 3 && grid.isPlaced; ++axis) {
    grid.first[axis] = numbers[3 + axis];
    grid.cell[axis] = numbers[6 + axis];
    if (!(grid.cell[axis] > 0.))
      fail(QObject::tr("the size of a cell of the grid is not above 0"));
  }
  if (numbers.size() > 9)
    grid.nRealizations = wholeNumber(words[9].toStdString(), mostNodes);
  if (grid.nRealizations < 0)
    fail(QObject::tr("the number of realizations, \"%1\", is no whole number above 0")
             .arg(words[9]));
  _grid = grid;
  _nAxes = !grid.isPlaced ? 0 : (grid.nodes[2] > 1 ? 3 : 2);
}

void GeoEasReader::_readNames(int nVariables)
{
  const QStringList axes =
      QStringList{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")}.mid(0, _nAxes);
  QStringList names = axes;
  for (int i = 0; i < nVariables; ++i) {
    if (!_records.nextLine())
      fail(QObject::tr("the file ends after %1 names of variables; there should be %2")
               .arg(i)
               .arg(nVariables));
    const QString name = textFromBytes(_records.getField(0)).simplified();
    if (name.isEmpty())
      fail(QObject::tr("the name of variable %1 is empty").arg(i + 1));
    names << fieldName(name, axes);
  }
  _setColumns(names);
}

qint64 GeoEasReader::_getNNodes() const
{
  qint64 n = _grid->nRealizations;
  for (const qint64 nodes : _grid->nodes)
    n = n > (Q_INT64_C(1) << 60) / nodes ? Q_INT64_C(1) << 60 : n * nodes;
  return n;
}

bool GeoEasReader::next()
{
  if (!_records.nextRecord()) {
    if (_grid && _rank + 1 != _getNNodes())
      fail(QObject::tr("the file ends after %1 records, but the grid on line 2 has %2 nodes")
               .arg(_rank + 1)
               .arg(_getNNodes()));
    return false;
  }
  ++_rank;
  if (_grid && _rank >= _getNNodes())
    fail(QObject::tr("a record behind the %1 nodes of the grid on line 2").arg(_getNNodes()));
  if (_records.getCount() != _getNVariables())
    fail(QObject::tr("%1 fields, but the header has %2 variables (fields are separated by blanks "
                     "or tabs)")
             .arg(_records.getCount())
             .arg(_getNVariables()));
  return true;
}

double GeoEasReader::_getCoordinate(int axis) const
{
  qint64 rank = _rank;
  for (int i = 0; i < axis; ++i)
    rank /= _grid->nodes[std::size_t(i)];
  const std::size_t k = std::size_t(axis);
  return _grid->first[k] + double(rank % _grid->nodes[k]) * _grid->cell[k];
}

TableReader::Field GeoEasReader::classify(int column, double &number) const
{
  if (column >= _nAxes)
    return _parser.classify(_records.getField(column - _nAxes), number);
  number = _getCoordinate(column);
  return NUMBER;
}

double GeoEasReader::getNumber(int column) const
{
  return column < _nAxes ? _getCoordinate(column)
                         : _parser.read(_records.getField(column - _nAxes), *this, column);
}

QString GeoEasReader::getText(int column) const
{
  return column < _nAxes ? QString::number(_getCoordinate(column))
                         : textFromBytes(_records.getField(column - _nAxes));
}

QString GeoEasReader::_getPlace() const
{
  return QObject::tr("line %1").arg(_records.getLine());
}

QString GeoEasReader::_getHeaderPlace() const
{
  return QObject::tr("header");
}

QString GeoEasReader::_getMissingHint() const
{
  return _grid && !_grid->isPlaced
             ? QObject::tr("; the file is a grid whose line 2 does not say where its nodes lie")
             : QString();
}

}  // namespace orvenal
