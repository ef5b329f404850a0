#pragma once

#include "TestFiles.h"

#include <QRegularExpression>

#include <gdal_priv.h>
#include <ogrsf_frmts.h>

#include <limits>
#include <memory>
#include <vector>

/// Files written by GDAL itself, for the readers to be tested on.
namespace apptest {

/// The fields of a comma-separated file without quotes, and their names.
struct Fields
{
  QStringList names;
  std::vector<QStringList> rows;
};

inline Fields readFields(const QString &path)
{
  QStringList lines = QString::fromUtf8(readFile(path)).split('\n', Qt::SkipEmptyParts);
  Fields fields;
  fields.names = lines.takeFirst().split(',');
  for (const QString &line : lines)
    fields.rows.push_back(line.split(','));
  return fields;
}

inline Fields meuseFields()
{
  return readFields(ORVENAL_EXAMPLES "/meuse/meuse.csv");
}

struct Closer
{
  void operator()(GDALDataset *dataset) const { GDALClose(dataset); }
};
using DatasetPtr = std::unique_ptr<GDALDataset, Closer>;

inline DatasetPtr createDataset(const char *driver, const QString &path, int width = 0,
                                int height = 0, int nBands = 0, GDALDataType type = GDT_Unknown,
                                char **options = nullptr)
{
  GDALAllRegister();
  DatasetPtr dataset(GetGDALDriverManager()->GetDriverByName(driver)->Create(
      path.toUtf8().constData(), width, height, nBands, type, options));
  EXPECT_TRUE(dataset) << CPLGetLastErrorMsg();
  return dataset;
}

inline OGRSpatialReference referenceOf(int epsg)
{
  OGRSpatialReference reference;
  EXPECT_EQ(reference.importFromEPSG(epsg), OGRERR_NONE);
  reference.SetAxisMappingStrategy(OAMS_TRADITIONAL_GIS_ORDER);
  return reference;
}

/// Adds a layer of points: the first two fields are their coordinates, the others numbers or null
/// (empty); `keepsXY` makes fields of the first two as well.
inline void addPoints(GDALDataset &dataset, const QString &name, const Fields &fields, int epsg,
                      bool keepsXY = false)
{
  OGRSpatialReference reference = referenceOf(epsg);
  const char *inOrder[] = {"SPATIAL_INDEX=NO", nullptr};  // FlatGeobuf sorts points otherwise
  const bool sorts = QByteArray(dataset.GetDriverName()) == "FlatGeobuf";
  OGRLayer *layer = dataset.CreateLayer(name.toUtf8().constData(), &reference, wkbPoint,
                                        sorts ? const_cast<char **>(inOrder) : nullptr);
  ASSERT_TRUE(layer) << CPLGetLastErrorMsg();
  const int first = keepsXY ? 0 : 2;
  for (int i = first; i < fields.names.size(); ++i) {
    OGRFieldDefn field(fields.names[i].toUtf8().constData(), OFTReal);
    ASSERT_EQ(layer->CreateField(&field), OGRERR_NONE);
  }
  const bool isTransaction =
      dataset.TestCapability(ODsCTransactions) && dataset.StartTransaction() == OGRERR_NONE;
  for (const QStringList &row : fields.rows) {
    OGRFeature feature(layer->GetLayerDefn());
    OGRPoint point(row[0].toDouble(), row[1].toDouble());
    feature.SetGeometry(&point);
    for (int i = first; i < row.size(); ++i) {
      if (row[i].isEmpty())
        feature.SetFieldNull(i - first);
      else
        feature.SetField(i - first, row[i].toDouble());
    }
    ASSERT_EQ(layer->CreateFeature(&feature), OGRERR_NONE);
  }
  if (isTransaction) {
    ASSERT_EQ(dataset.CommitTransaction(), OGRERR_NONE);
  }
}

inline QString writePoints(const char *driver, const QString &path, const Fields &fields,
                           int epsg = 28992)
{
  const DatasetPtr dataset = createDataset(driver, path);
  addPoints(*dataset, QFileInfo(path).completeBaseName(), fields, epsg);
  return path;
}

/// The Meuse grid as a raster of its three bands, NaN outside.
inline QString writeMeuseRaster(const QString &path)
{
  constexpr int width = 78;
  constexpr int height = 104;
  const Fields fields = readFields(ORVENAL_EXAMPLES "/meuse/meuse_grid.csv");
  const DatasetPtr dataset = createDataset("GTiff", path, width, height, 3, GDT_Float64);
  double transform[] = {178440., 40., 0., 333760., 0., -40.};
  dataset->SetGeoTransform(transform);
  const OGRSpatialReference reference = referenceOf(28992);
  dataset->SetSpatialRef(&reference);
  for (int band = 1; band <= 3; ++band) {
    std::vector<double> values(width * height, std::numeric_limits<double>::quiet_NaN());
    for (const QStringList &row : fields.rows) {
      const int i = int((row[0].toDouble() - 178440.) / 40.);
      const int j = int((333760. - row[1].toDouble()) / 40.);
      values[std::size_t(j * width + i)] = row[1 + band].toDouble();
    }
    GDALRasterBand *target = dataset->GetRasterBand(band);
    target->SetDescription(fields.names[1 + band].toUtf8().constData());
    target->SetNoDataValue(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(target->RasterIO(GF_Write, 0, 0, width, height, values.data(), width, height,
                               GDT_Float64, 0, 0),
              CE_None);
  }
  return path;
}

/// The fields as a GEO-EAS file; undefined values are -999.
inline QByteArray geoEasText(const Fields &fields)
{
  QByteArray text = "Topsoil of the Meuse flood plain\n" + QByteArray::number(fields.names.size());
  for (const QString &name : fields.names)
    text += '\n' + name.toUtf8();
  for (const QStringList &row : fields.rows)
    text += '\n' +
            QStringList(row).replaceInStrings(QRegularExpression("^$"), "-999").join(' ').toUtf8();
  return text + '\n';
}

}  // namespace apptest
