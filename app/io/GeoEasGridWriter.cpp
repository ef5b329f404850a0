#include "app/io/GeoEasGridWriter.h"

#include "app/io/CsvText.h"
#include "app/io/GeoEasText.h"
#include "app/io/GridTable.h"
#include "app/io/TableWriter.h"
#include "app/io/TextFile.h"

namespace orvenal {

namespace {

QByteArray geometryOf(const NbgGeomGrid &grid)
{
  QByteArray text;
  for (int axis = 0; axis < 3; ++axis)
    text += ' ' + QByteArray::number(grid.getNodesNumber()[axis]);
  for (const NbgVector3D &lengths : {grid.getOriginCentered(), grid.getCellSize()}) {
    for (int axis = 0; axis < 3; ++axis) {
      text += ' ';
      CsvText::append(text, lengths[axis]);
    }
  }
  return text;
}

QByteArray headOf(const GridTable &grid, double mark)
{
  QStringList names;
  if (grid.isTurned())
    names << QStringLiteral("x") << QStringLiteral("y") << QStringLiteral("z");
  for (const GridTable::Column &column : grid.columns)
    names << column.name;
  QByteArray head = GeoEasText::title(grid.title, mark) + QByteArray::number(names.size());
  if (!grid.isTurned())
    head += geometryOf(grid.geometry);
  head += '\n';
  for (const QString &name : names)
    head += GeoEasText::name(name);
  return head;
}

void appendNode(QByteArray &text, const GridTable &grid, const NbgIntVector3D &ijk, double mark)
{
  const qint64 rank = grid.geometry.getRankFromIJK(ijk);
  if (grid.isTurned()) {
    const NbgVector3D center = grid.geometry.getCellCenter(ijk);
    for (int axis = 0; axis < 3; ++axis) {
      CsvText::append(text, center[axis]);
      text += ' ';
    }
  }
  for (const GridTable::Column &column : grid.columns) {
    if (grid.isSelected(rank))
      GeoEasText::append(text, (*column.values)[std::size_t(rank)], mark);
    else
      CsvText::append(text, mark);
    text += ' ';
  }
  text.back() = '\n';
}

}  // namespace

void writeGeoEasGrid(const QString &path, const QString &shownName, const GridTable &grid)
{
  const double mark = TableLayout::markBelow(grid.getMinimum());
  TextFile file(path, shownName);
  file.text() = headOf(grid, mark);
  const NbgIntVector3D n = grid.geometry.getNodesNumber();
  for (int k = 0; k < n.z(); ++k) {
    for (int j = 0; j < n.y(); ++j) {
      for (int i = 0; i < n.x(); ++i)
        appendNode(file.text(), grid, NbgIntVector3D(i, j, k), mark);
      file.flushSome();
    }
  }
  file.finish();
}

}  // namespace orvenal
