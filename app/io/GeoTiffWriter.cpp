#include "app/io/GeoTiffWriter.h"

#include "app/console/Interruption.h"
#include "app/io/GdalErrors.h"
#include "app/io/GridTable.h"
#include "app/io/SpatialReference.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <QFile>
#include <QObject>

#include <gdal_frmts.h>
#include <gdal_priv.h>

#include <limits>
#include <memory>
#include <vector>

namespace orvenal {

namespace {

struct Closer
{
  void operator()(GDALDataset *dataset) const { GDALClose(dataset); }
};
using DatasetPtr = std::unique_ptr<GDALDataset, Closer>;

[[noreturn]] void failToWrite(const QString &shownName, const GdalErrors &errors)
{
  throw NbeUserError(QObject::tr("%1: cannot be written: %2").arg(shownName, errors.getMessage()));
}

DatasetPtr create(const QString &path, const NbgGeomGrid &grid, int nBands)
{
  static const char *const options[] = {"COMPRESS=DEFLATE", "BIGTIFF=IF_SAFER", nullptr};
  GDALDriver *driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  if (!driver) {
    GDALRegister_GTiff();
    driver = GetGDALDriverManager()->GetDriverByName("GTiff");
  }
  return DatasetPtr(driver->Create(QFile::encodeName(path).constData(), grid.getNodesNumber().x(),
                                   grid.getNodesNumber().y(), nBands, GDT_Float64,
                                   const_cast<char **>(options)));
}

/// Pixels run along the first axis and rows down the second one.
bool writeBand(GDALRasterBand &band, const GridTable &grid, const GridTable::Column &column)
{
  const NbgIntVector3D n = grid.geometry.getNodesNumber();
  constexpr double noData = std::numeric_limits<double>::quiet_NaN();
  band.SetDescription(column.name.toUtf8().constData());
  bool written = band.SetNoDataValue(noData) == CE_None;
  if (!column.unit.isEmpty())
    written = band.SetUnitType(column.unit.toUtf8().constData()) == CE_None && written;
  if (!column.label.isEmpty())
    written =
        band.SetMetadataItem("long_name", column.label.toUtf8().constData()) == CE_None && written;
  std::vector<double> row(std::size_t(n.x()));
  for (int line = 0; line < n.y() && written; ++line) {
    Interruption::check();
    grid.copyRow(column, n.y() - 1 - line, 0, row);
    for (double &value : row)
      value = NbbGlobal::isDefined(value) ? value : noData;
    written = band.RasterIO(GF_Write, 0, line, n.x(), 1, row.data(), n.x(), 1, GDT_Float64, 0, 0) ==
              CE_None;
  }
  return written;
}

}  // namespace

std::array<double, 6> rasterTransform(const NbgGeomGrid &grid)
{
  const NbgVector3D cell = grid.getCellSize();
  const NbgVector3D u = grid.getRotation().getAxisX();
  const NbgVector3D v = grid.getRotation().getAxisY();
  const NbgVector3D corner = grid.getOriginCentered() + u * (-0.5 * cell.x()) +
                             v * ((grid.getNodesNumber().y() - 0.5) * cell.y());
  return {corner.x(), u.x() * cell.x(), -v.x() * cell.y(),
          corner.y(), u.y() * cell.x(), -v.y() * cell.y()};
}

void writeGeoTiff(const QString &path, const QString &shownName, const GridTable &grid)
{
  const GdalErrors errors;
  DatasetPtr dataset = create(path, grid.geometry, grid.columns.size());
  if (!dataset)
    failToWrite(shownName, errors);
  std::array<double, 6> transform = rasterTransform(grid.geometry);
  QString reason;
  const SpatialReference reference =
      grid.crs.isEmpty() ? SpatialReference() : SpatialReference::parse(grid.crs, reason);
  bool written = dataset->SetGeoTransform(transform.data()) == CE_None;
  if (reference.isValid())
    written = dataset->SetSpatialRef(reference.get()) == CE_None && written;
  for (int i = 0; i < grid.columns.size() && written; ++i)
    written = writeBand(*dataset->GetRasterBand(1 + i), grid, grid.columns[i]);
  dataset->FlushCache(true);
  dataset.reset();
  if (!written || errors.hasFailed())
    failToWrite(shownName, errors);
}

}  // namespace orvenal
