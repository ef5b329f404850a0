#include "TestFiles.h"
#include "app/io/GdalErrors.h"
#include "app/io/GridTable.h"
#include "app/io/GridWriter.h"
#include "app/study/Compass.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"

#include <gdal_priv.h>
#include <gmock/gmock.h>
#include <ogrsf_frmts.h>

#include <cmath>
#include <random>

using namespace orvenal;
using testing::HasSubstr;

namespace {

/// A grid of 4 x 3 (x 2) nodes with two columns: node (0, 0, 0) is undefined in the first one, and
/// node (1, 0, 0) masked.
class SmallGrid
{
public:
  explicit SmallGrid(int nDimensions, double azimuth = 0.)
  {
    if (nDimensions < 3)
      table.geometry.setNodesNumber2D(4, 3);
    else
      table.geometry.setNodesNumber(4, 3, 2);
    table.geometry.setOriginCentered({178460.25, 329620.5, nDimensions < 3 ? 0. : -12.});
    table.geometry.setCellSize({40., 25., nDimensions < 3 ? 1. : 2.5});
    table.geometry.setRotation(Compass::gridFrame(azimuth));
    const std::size_t nNodes = std::size_t(table.geometry.getGridSize());
    std::mt19937 generator(7);
    std::uniform_real_distribution<double> values(-5., 5.);
    for (std::size_t i = 0; i < nNodes; ++i) {
      first.push_back(values(generator));
      second.push_back(1e-7 * values(generator));
    }
    selected.assign(nNodes, 1);
    first[rank(0, 0, 0)] = NbbGlobal::D_FFFF;
    selected[rank(1, 0, 0)] = 0;
    table.selected = &selected;
    table.title = "A grid";
    table.crs = "EPSG:28992";
    table.lengthUnit = "m";
    table.columns = {{"estimate", "Estimate of Zn [ppm]", "ppm", &first},
                     {"slope", "Slope", "", &second}};
  }
  SmallGrid(const SmallGrid &) = delete;
  SmallGrid &operator=(const SmallGrid &) = delete;

  std::size_t rank(int i, int j, int k) const
  {
    return std::size_t(table.geometry.getRankFromIJK(i, j, k));
  }

  GridTable table;
  std::vector<double> first;
  std::vector<double> second;
  std::vector<unsigned char> selected;
};

QString write(const apptest::Folder &folder, const QString &name, const GridTable &table)
{
  writeGrid(folder.path(name), name, table);
  return folder.path(name);
}

std::unique_ptr<GDALDataset> open(const QString &name, unsigned int kind)
{
  GDALAllRegister();
  const GdalErrors errors;  // a grid that is turned has no axes of coordinates, GDAL remarks
  std::unique_ptr<GDALDataset> dataset(GDALDataset::Open(qPrintable(name), kind));
  EXPECT_TRUE(dataset) << qPrintable(name);
  EXPECT_FALSE(errors.hasFailed()) << qPrintable(errors.getMessage());
  return dataset;
}

/// All bands of a raster, band by band, its rows from the top.
std::vector<double> readBands(GDALDataset &raster)
{
  const int nx = raster.GetRasterXSize();
  const int ny = raster.GetRasterYSize();
  std::vector<double> values(std::size_t(nx) * std::size_t(ny) *
                             std::size_t(raster.GetRasterCount()));
  for (int band = 0; band < raster.GetRasterCount(); ++band)
    EXPECT_EQ(raster.GetRasterBand(band + 1)->RasterIO(
                  GF_Read, 0, 0, nx, ny, values.data() + band * nx * ny, nx, ny, GDT_Float64, 0, 0),
              CE_None);
  return values;
}

/// What a raster of the column should hold, north up.
std::vector<double> expectedBands(const SmallGrid &grid, const std::vector<double> &column)
{
  std::vector<double> values;
  const NbgIntVector3D n = grid.table.geometry.getNodesNumber();
  for (int k = 0; k < n.z(); ++k) {
    for (int j = n.y() - 1; j >= 0; --j) {
      for (int i = 0; i < n.x(); ++i) {
        const std::size_t rank = grid.rank(i, j, k);
        const bool isThere = grid.selected[rank] && NbbGlobal::isDefined(column[rank]);
        values.push_back(isThere ? column[rank] : std::nan(""));
      }
    }
  }
  return values;
}

MATCHER_P(HasBits, expected, "")
{
  return arg.size() == expected.size() &&
         std::equal(arg.begin(), arg.end(), expected.begin(),
                    [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); });
}

}  // namespace

TEST(GridWriter, WritesTablesOfTheNodesThatAreNotMasked)
{
  const apptest::Folder folder;
  const SmallGrid grid(3);
  const QList<QByteArray> lines = apptest::readFile(write(folder, "g.csv", grid.table)).split('\n');
  ASSERT_EQ(lines.size(), 1 + 23 + 1);
  EXPECT_EQ(lines[0], "x,y,z,estimate,slope");
  EXPECT_EQ(lines[1].left(lines[1].lastIndexOf(',')), "178460.25,329620.5,-12,");
  EXPECT_EQ(lines[2].split(',').mid(0, 3), (QList<QByteArray>{"178540.25", "329620.5", "-12"}));
  EXPECT_EQ(lines[2].split(',')[3].toDouble(), grid.first[grid.rank(2, 0, 0)]);
  EXPECT_EQ(lines[23].split(',')[4].toDouble(), grid.second[grid.rank(3, 2, 1)]);

  const auto dataset = open(write(folder, "g.gpkg", grid.table), GDAL_OF_VECTOR);
  OGRLayer *layer = dataset->GetLayer(0);
  EXPECT_STREQ(layer->GetName(), "g");
  EXPECT_EQ(layer->GetFeatureCount(), 23);
  EXPECT_STREQ(layer->GetSpatialRef()->GetAuthorityCode(nullptr), "28992");
  for (int line = 1; line <= 23; ++line) {
    const OGRFeatureUniquePtr feature(layer->GetNextFeature());
    ASSERT_TRUE(feature);
    const QList<QByteArray> fields = lines[line].split(',');
    const OGRPoint *point = feature->GetGeometryRef()->toPoint();
    EXPECT_EQ(point->getX(), fields[0].toDouble());
    EXPECT_EQ(point->getY(), fields[1].toDouble());
    EXPECT_EQ(point->getZ(), fields[2].toDouble());
    EXPECT_EQ(feature->IsFieldNull(0), fields[3].isEmpty());
    EXPECT_EQ(feature->GetFieldAsDouble(0), fields[3].toDouble());
    EXPECT_EQ(feature->GetFieldAsDouble("slope"), fields[4].toDouble());
  }
}

TEST(GridWriter, WritesNetcdfOfTwoAndThreeDimensions)
{
  const apptest::Folder folder;
  for (const int nDimensions : {2, 3}) {
    const SmallGrid grid(nDimensions);
    const QString file = write(folder, "g.nc", grid.table);
    const auto first = open("NETCDF:\"" + file + "\":estimate", GDAL_OF_RASTER);
    EXPECT_THAT(readBands(*first), HasBits(expectedBands(grid, grid.first)));
    const auto second = open("NETCDF:\"" + file + "\":slope", GDAL_OF_RASTER);
    EXPECT_THAT(readBands(*second), HasBits(expectedBands(grid, grid.second)));

    EXPECT_TRUE(std::isnan(first->GetRasterBand(1)->GetNoDataValue()));
    EXPECT_STREQ(first->GetRasterBand(1)->GetUnitType(), "ppm");
    double transform[6];
    ASSERT_EQ(first->GetGeoTransform(transform), CE_None);
    EXPECT_THAT(transform, testing::ElementsAre(178440.25, 40., 0., 329620.5 + 62.5, 0., -25.));
    ASSERT_TRUE(first->GetSpatialRef());
    EXPECT_STREQ(first->GetSpatialRef()->GetAuthorityCode(nullptr), "28992");
    EXPECT_STREQ(first->GetMetadataItem("NC_GLOBAL#Conventions"), "CF-1.8");
    if (nDimensions == 3) {
      EXPECT_STREQ(first->GetMetadataItem("NETCDF_DIM_z_VALUES"), "{-12,-9.5}");
    }
    const QByteArray bytes = apptest::readFile(file);
    EXPECT_EQ(apptest::readFile(write(folder, "again.nc", grid.table)), bytes);
  }
}

TEST(GridWriter, GivesTheNodesOfATurnedGridTheirCoordinates)
{
  const apptest::Folder folder;
  const SmallGrid grid(2, 30.);
  std::vector<double> x, y;  // north of the raster is the last row
  for (int j = 2; j >= 0; --j) {
    for (int i = 0; i < 4; ++i) {
      x.push_back(grid.table.geometry.getCellCenter(i, j, 0).x());
      y.push_back(grid.table.geometry.getCellCenter(i, j, 0).y());
    }
  }
  const QString file = write(folder, "g.nc", grid.table);
  const auto read = [&](const char *variable) {
    return readBands(*open("NETCDF:\"" + file + "\":" + variable, GDAL_OF_RASTER));
  };
  EXPECT_THAT(read("x"), HasBits(x));
  EXPECT_THAT(read("y"), HasBits(y));
  EXPECT_THAT(read("estimate"), HasBits(expectedBands(grid, grid.first)));

  const QList<QByteArray> lines =
      apptest::readFile(write(folder, "g.gslib", grid.table)).split('\n');
  EXPECT_EQ(lines.mid(0, 7), (QList<QByteArray>{"A grid (undefined: -999)", "5", "x", "y", "z",
                                                "estimate", "slope"}));
  const QList<QByteArray> last = lines[7 + 11].split(' ');
  ASSERT_EQ(last.size(), 5);
  EXPECT_EQ(last[0].toDouble(), x[3]);
  EXPECT_EQ(last[1].toDouble(), y[3]);
}

TEST(GridWriter, WritesEveryNodeOfAGeoEasGridWithAMarkOfItsOwn)
{
  const apptest::Folder folder;
  SmallGrid grid(3);
  grid.second[5] = -999.;
  const QList<QByteArray> lines = apptest::readFile(write(folder, "g.dat", grid.table)).split('\n');
  ASSERT_EQ(lines.size(), 4 + 24 + 1);
  EXPECT_EQ(lines.mid(0, 4),
            (QList<QByteArray>{"A grid (undefined: -9999)",
                               "2 4 3 2 178460.25 329620.5 -12 40 25 2.5", "estimate", "slope"}));
  EXPECT_EQ(lines[4].split(' ')[0], "-9999");
  EXPECT_EQ(lines[5], "-9999 -9999");
  int line = 4;
  for (int k = 0; k < 2; ++k) {
    for (int j = 0; j < 3; ++j) {
      for (int i = 0; i < 4; ++i, ++line) {
        if (line > 5) {
          EXPECT_EQ(lines[line].split(' ')[1].toDouble(), grid.second[grid.rank(i, j, k)]);
        }
      }
    }
  }
}

TEST(GridWriter, NamesTheFileThatCannotBeWritten)
{
  const apptest::Folder folder;
  const SmallGrid grid(2);
  for (const QString &ending : gridEndings()) {
    SCOPED_TRACE(ending.toStdString());
    const bool isText = ending == "csv" || ending == "dat" || ending == "gslib";
    for (const QString &path : {folder.path("nowhere/g." + ending), QString("/dev/full")}) {
      if (path == "/dev/full" && !isText)
        continue;
      try {
        writeGrid(path, "shown." + ending, grid.table);
        ADD_FAILURE() << "written: " << qPrintable(path);
      } catch (const NbeUserError &error) {
        EXPECT_THAT(error.getMessage().toStdString(),
                    HasSubstr("shown." + ending.toStdString() + ": cannot be written: "));
      }
    }
  }
}
