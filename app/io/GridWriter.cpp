#include "app/io/GridWriter.h"

#include "app/io/GeoEasGridWriter.h"
#include "app/io/GeoTiffWriter.h"
#include "app/io/GridTable.h"
#include "app/io/NetcdfWriter.h"
#include "app/io/TableWriter.h"

#include <QFileInfo>

namespace orvenal {

namespace {

TableLayout layoutOf(const GridTable &grid)
{
  TableLayout layout;
  layout.title = grid.title;
  layout.crs = grid.crs;
  layout.columns = {{QStringLiteral("x")}, {QStringLiteral("y")}};
  if (!grid.geometry.is2D()) {
    layout.columns << TableLayout::Column{QStringLiteral("z")};
    layout.z = 2;
  }
  for (const GridTable::Column &column : grid.columns)
    layout.columns << TableLayout::Column{column.name};
  return layout;
}

void addNode(TableWriter &writer, const GridTable &grid, int i, int j, int k, TableRecord &record)
{
  const qint64 rank = grid.geometry.getRankFromIJK(i, j, k);
  if (!grid.isSelected(rank))
    return;
  const NbgVector3D center = grid.geometry.getCellCenter(i, j, k);
  std::size_t field = 0;
  for (int axis = 0; axis < grid.geometry.getNDim(); ++axis)
    record.numbers[field++] = center[axis];
  for (const GridTable::Column &column : grid.columns)
    record.numbers[field++] = (*column.values)[std::size_t(rank)];
  writer.add(record);
}

/// The nodes as points, the first axis fastest.
void writeNodes(const QString &path, const QString &shownName, const GridTable &grid)
{
  const TableLayout layout = layoutOf(grid);
  const auto writer = TableWriter::create(path, shownName, layout);
  TableRecord record(layout.columns.size());
  const NbgIntVector3D n = grid.geometry.getNodesNumber();
  for (int k = 0; k < n.z(); ++k) {
    for (int j = 0; j < n.y(); ++j) {
      for (int i = 0; i < n.x(); ++i)
        addNode(*writer, grid, i, j, k, record);
    }
  }
  writer->finish();
}

}  // namespace

QStringList gridEndings()
{
  return {QStringLiteral("csv"),  QStringLiteral("tif"),  QStringLiteral("tiff"),
          QStringLiteral("nc"),   QStringLiteral("gpkg"), QStringLiteral("dat"),
          QStringLiteral("gslib")};
}

bool isPlaneFormat(const QString &ending)
{
  return ending == QLatin1String("tif") || ending == QLatin1String("tiff");
}

void writeGrid(const QString &path, const QString &shownName, const GridTable &grid)
{
  const QString ending = QFileInfo(shownName).suffix().toLower();
  if (isPlaneFormat(ending))
    writeGeoTiff(path, shownName, grid);
  else if (ending == QLatin1String("nc"))
    writeNetcdf(path, shownName, grid);
  else if (ending == QLatin1String("dat") || ending == QLatin1String("gslib"))
    writeGeoEasGrid(path, shownName, grid);
  else
    writeNodes(path, shownName, grid);
}

}  // namespace orvenal
