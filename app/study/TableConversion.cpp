#include "app/study/TableConversion.h"

#include "app/base/Suggestion.h"
#include "app/console/Console.h"
#include "app/io/GridTable.h"
#include "app/io/GridWriter.h"
#include "basic/error/NbeUserError.h"

#include <QFileInfo>
#include <QObject>

#include <algorithm>

namespace orvenal {

namespace {

/// Formats of grids alone; those of points hold the nodes of a grid too.
bool isGridFormat(const QString &ending)
{
  return !TableWriter::endings().contains(ending);
}

bool isGeoEas(const QString &ending)
{
  return ending == QLatin1String("dat") || ending == QLatin1String("gslib");
}

/// A number that is written like a code: "007".
bool hasZerosInFront(const QString &field)
{
  return field.size() > 1 && field[0] == '0' && field[1].isDigit();
}

}  // namespace

QStringList TableConversion::endings()
{
  QStringList endings = TableWriter::endings();
  for (const QString &ending : gridEndings()) {
    if (!endings.contains(ending))
      endings << ending;
  }
  return endings;
}

TableConversion::TableConversion(const ConversionRequest &request, Console &console)
    : _request(request),
      _console(console),
      _ending(QFileInfo(request.output).suffix().toLower()),
      _summary(summarizeTable(request.input, request.input, request.format, request.axes))
{
  if (_request.crs.isEmpty())
    _request.crs = _summary.reference;
  _chooseColumns();
  if (isGridFormat(_ending) || isGeoEas(_ending))
    _dropTexts();
}

void TableConversion::write(const QString &path)
{
  if (isGridFormat(_ending))
    _writeGrid(path);
  else
    _writePoints(path);
}

void TableConversion::_chooseColumns()
{
  const auto reader = _openInput();
  std::vector<int> wanted;
  for (const QString &name : _request.columns)
    wanted.push_back(reader->findColumn(name, QStringLiteral("--columns")));
  std::vector<bool> isText;
  for (const ColumnSummary &column : _summary.columns)
    isText.push_back(column.nTexts > 0);
  _findNumbersThatAreTexts(isText);
  for (int i = 0; i < _summary.columns.size(); ++i) {
    const bool isWanted =
        wanted.empty() || _isAxis(i) || std::find(wanted.begin(), wanted.end(), i) != wanted.end();
    if (isWanted)
      _columns.push_back({i, isText[std::size_t(i)] && !_isAxis(i)});
  }
}

/// Tables of texts do not say which of their columns are numbers.
void TableConversion::_findNumbersThatAreTexts(std::vector<bool> &isText) const
{
  if (_summary.format.kind == TableFormat::GEO_EAS)
    return;
  const auto reader = _openInput();
  while (reader->next()) {
    for (int i = 0; i < _summary.columns.size(); ++i) {
      if (!isText[std::size_t(i)] && !_isAxis(i) && hasZerosInFront(reader->getText(i)))
        isText[std::size_t(i)] = true;
    }
  }
}

/// Those that nobody asked for.
void TableConversion::_dropTexts()
{
  QStringList texts;
  for (const Column &column : _columns) {
    if (column.isText)
      texts << _summary.columns[column.index].name;
  }
  if (texts.isEmpty())
    return;
  if (!_request.columns.isEmpty())
    throw NbeUserError(
        QObject::tr("%1: the format holds numbers only, but these columns are texts: "
                    "%2")
            .arg(_request.output, quotedList(texts)));
  _console.warn(QObject::tr("%1: the format holds numbers only; columns of texts are left out: %2")
                    .arg(_request.output, quotedList(texts)));
  _columns.erase(std::remove_if(_columns.begin(), _columns.end(),
                                [](const Column &column) { return column.isText; }),
                 _columns.end());
}

bool TableConversion::_isAxis(int column) const
{
  const CoordinateColumns &axes = _summary.coordinates;
  return column == axes.x || column == axes.y || column == axes.z;
}

void TableConversion::_requireAxes() const
{
  if (_summary.nRecords == 0)
    TableReader::failEmpty(_request.input);
  QStringList names;
  for (const ColumnSummary &column : _summary.columns)
    names << column.name;
  if (!_summary.coordinates.isComplete())
    throw NbeUserError(
        QObject::tr("%1: no columns of coordinates are found; name them with --x and "
                    "--y (numbers); columns: %2")
            .arg(_request.input, quotedList(names)));
}

std::unique_ptr<TableReader> TableConversion::_openInput() const
{
  return TableReader::open(_request.input, _request.input, _summary.format);
}

void TableConversion::_writePoints(const QString &path)
{
  TableLayout layout;
  layout.title = QFileInfo(_request.input).completeBaseName();
  layout.crs = _request.crs;
  layout.x = layout.y = -1;
  double minimum = 0.;
  for (const Column &column : _columns) {
    const ColumnSummary &summary = _summary.columns[column.index];
    const int place = layout.columns.size();
    layout.columns << TableLayout::Column{summary.name, column.isText};
    layout.x = column.index == _summary.coordinates.x ? place : layout.x;
    layout.y = column.index == _summary.coordinates.y ? place : layout.y;
    layout.z = column.index == _summary.coordinates.z ? place : layout.z;
    minimum = std::min(minimum, summary.minimum);
  }
  layout.undefinedMark = TableLayout::markBelow(minimum);
  if (_ending == QLatin1String("gpkg"))
    _requireAxes();
  const auto writer = TableWriter::create(path, _request.output, layout);
  const auto reader = _openInput();
  TableRecord record(layout.columns.size());
  while (reader->next()) {
    for (std::size_t i = 0; i < _columns.size(); ++i) {
      if (_columns[i].isText)
        record.texts[i] = reader->getText(_columns[i].index);
      else
        record.numbers[i] = reader->getNumber(_columns[i].index);
    }
    writer->add(record);
  }
  writer->finish();
}

void TableConversion::_writeGrid(const QString &path)
{
  _requireAxes();
  if (!_summary.grid)
    throw NbeUserError(
        QObject::tr("%1: the points do not lie on the nodes of a grid, along the axes or "
                    "turned, which a .%2 file needs")
            .arg(_request.input, _ending));
  GridTable grid;
  grid.geometry = *_summary.grid;
  if (!grid.geometry.is2D() && isPlaneFormat(_ending))
    throw NbeUserError(
        QObject::tr("%1: a GeoTIFF needs a grid of two dimensions").arg(_request.output));
  const std::size_t nNodes = std::size_t(grid.geometry.getGridSize());
  std::vector<unsigned char> selected(nNodes, 0);
  std::vector<std::vector<double>> values;
  std::vector<int> indices;
  for (const Column &column : _columns) {
    if (_isAxis(column.index))
      continue;
    indices.push_back(column.index);
    values.emplace_back(nNodes, NbbGlobal::D_FFFF);
  }
  const CoordinateColumns &axes = _summary.coordinates;
  const auto reader = _openInput();
  NbgIntVector3D ijk;
  while (reader->next()) {
    const NbgVector3D place(reader->getNumber(axes.x), reader->getNumber(axes.y),
                            axes.z < 0 ? 0. : reader->getNumber(axes.z));
    if (!grid.geometry.getCellIJK(place, ijk))
      reader->fail(axes.x, QObject::tr("the point has no place in the grid"));
    const std::size_t rank = std::size_t(grid.geometry.getRankFromIJK(ijk));
    if (selected[rank])
      reader->fail(axes.x, QObject::tr("a second point at a node of the grid"));
    selected[rank] = 1;
    for (std::size_t i = 0; i < indices.size(); ++i)
      values[i][rank] = reader->getNumber(indices[i]);
  }
  grid.selected = &selected;
  grid.title = QFileInfo(_request.input).completeBaseName();
  grid.crs = _request.crs;
  for (std::size_t i = 0; i < indices.size(); ++i) {
    const QString name = _summary.columns[indices[i]].name;
    grid.columns << GridTable::Column{name, name, QString(), &values[i]};
  }
  if (grid.columns.isEmpty())
    throw NbeUserError(
        QObject::tr("%1: no column of numbers besides the coordinates").arg(_request.input));
  writeGrid(path, _request.output, grid);
}

}  // namespace orvenal
