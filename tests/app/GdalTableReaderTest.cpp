#include "app/io/GdalTableReader.h"

#include "GdalFiles.h"
#include "app/io/SpatialReference.h"
#include "app/io/TableReader.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <QCryptographicHash>

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

using namespace orvenal;
using apptest::Fields;
using apptest::json;
using apptest::MeuseJob;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double undefined = NbbGlobal::D_FFFF;

TableFormat gdalFormat(const QString &layer = QString())
{
  TableFormat format;
  format.kind = TableFormat::GDAL;
  format.layer = layer;
  return format;
}

/// The columns of a table by their names.
std::map<QString, std::vector<double>> readColumns(const QString &path,
                                                   const TableFormat &format = TableFormat())
{
  const auto reader = TableReader::open(path, "t", format);
  std::map<QString, std::vector<double>> columns;
  while (reader->next()) {
    for (int i = 0; i < reader->getColumns().size(); ++i)
      columns[reader->getColumns()[i]].push_back(reader->getNumber(i));
  }
  return columns;
}

std::string errorOf(const QString &path, const TableFormat &format = TableFormat())
{
  return testsupport::errorOf([&] { readColumns(path, format); }).toStdString();
}

/// A GeoJSON file of features with these geometries and a field "v".
QByteArray features(const QStringList &geometries)
{
  QStringList list;
  for (const QString &geometry : geometries)
    list << QStringLiteral("{\"type\":\"Feature\",\"properties\":{\"v\":1},\"geometry\":%1}")
                .arg(geometry);
  return "{\"type\":\"FeatureCollection\",\"features\":[" + list.join(',').toUtf8() + "]}";
}

/// Kriges and returns the table of the grid.
QByteArray krige(const QString &data, const QString &mask, const apptest::Folder &folder)
{
  MeuseJob job;
  job.set("data.file", data).set("grid.mask.file", mask);
  job.remove("data.crs").remove("data.x").remove("data.y").remove("output");
  job.set("data.undefined", json("[\"\", \"-999\"]"));
  job.set("output", json("{\"directory\": \"out\", \"grid\": [\"k.csv\"]}"));
  QFile::remove(folder.path("out/k.csv"));
  const apptest::Outcome outcome = apptest::runProgram({"run", job.writeTo(folder)});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  return apptest::readFile(folder.path("out/k.csv"));
}

}  // namespace

TEST(GdalTableReader, ReadsTheSameBitsFromEveryFormat)
{
  const apptest::Folder folder;
  TableFormat format;
  format.undefined = QStringList{"", "-999"};
  const auto expected = readColumns(ORVENAL_EXAMPLES "/meuse/meuse.csv", format);
  ASSERT_EQ(expected.size(), 12u);
  const Fields fields = apptest::meuseFields();
  const QString files[] = {apptest::writePoints("GPKG", folder.path("meuse.gpkg"), fields),
                           apptest::writePoints("ESRI Shapefile", folder.path("meuse.shp"), fields),
                           apptest::writePoints("FlatGeobuf", folder.path("meuse.fgb"), fields),
                           apptest::writePoints("SQLite", folder.path("meuse.sqlite"), fields),
                           apptest::writePoints("GeoJSON", folder.path("meuse.geojson"), fields),
                           folder.write("meuse.eas", apptest::geoEasText(fields))};
  for (const QString &file : files) {
    auto columns = readColumns(file, format);
    if (file.endsWith("geojson") || file.endsWith("fgb"))
      columns.erase("id");
    EXPECT_EQ(columns, expected) << qPrintable(file);
  }
}

TEST(GdalTableReader, GivesTheSameEstimatesFromEveryFormat)
{
  const apptest::Folder folder;
  const Fields samples = apptest::meuseFields();
  const Fields grid = apptest::readFields(ORVENAL_EXAMPLES "/meuse/meuse_grid.csv");
  const QByteArray expected =
      krige(ORVENAL_EXAMPLES "/meuse/meuse.csv", ORVENAL_EXAMPLES "/meuse/meuse_grid.csv", folder);
  EXPECT_EQ(expected.count('\n'), 3104);
  EXPECT_EQ(krige(apptest::writePoints("GPKG", folder.path("samples.gpkg"), samples),
                  apptest::writePoints("GPKG", folder.path("nodes.gpkg"), grid), folder),
            expected);
  EXPECT_EQ(krige(apptest::writePoints("ESRI Shapefile", folder.path("samples.shp"), samples),
                  apptest::writeMeuseRaster(folder.path("mask.tif")), folder),
            expected);
  EXPECT_EQ(krige(folder.write("samples.dat", apptest::geoEasText(samples)),
                  folder.write("nodes.gslib", apptest::geoEasText(grid)), folder),
            expected);
}

TEST(GdalTableReader, ReadsRastersCellByCell)
{
  const apptest::Folder folder;
  const auto raster = readColumns(apptest::writeMeuseRaster(folder.path("g.tif")));
  const auto table = readColumns(ORVENAL_EXAMPLES "/meuse/meuse_grid.csv");
  const auto byPlace = [](const std::map<QString, std::vector<double>> &columns) {
    std::vector<std::vector<double>> rows;
    for (std::size_t i = 0; i < columns.at("x").size(); ++i) {
      rows.emplace_back();
      for (const char *name : {"x", "y", "dist", "soil", "ffreq"})
        rows.back().push_back(columns.at(name)[i]);
    }
    std::sort(rows.begin(), rows.end());
    return rows;
  };
  EXPECT_EQ(byPlace(raster), byPlace(table));
}

TEST(GdalTableReader, FollowsTurnedRastersScalesAndNodata)
{
  const apptest::Folder folder;
  const QString path = folder.path("t.tif");
  {
    const auto dataset = apptest::createDataset("GTiff", path, 2, 2, 2, GDT_Int16);
    double transform[] = {100., 3., 4., 200., 4., -3.};  // cells of 5, turned
    dataset->SetGeoTransform(transform);
    dataset->GetRasterBand(1)->SetScale(0.5);
    dataset->GetRasterBand(1)->SetOffset(10.);
    std::int16_t values[] = {1, -9, 3, -9};
    for (int band = 1; band <= 2; ++band) {
      dataset->GetRasterBand(band)->SetNoDataValue(-9);
      ASSERT_EQ(dataset->GetRasterBand(band)->RasterIO(GF_Write, 0, 0, 2, 2, values, 2, 2,
                                                       GDT_Int16, 0, 0),
                CE_None);
      values[3] = 7;
    }
  }
  auto columns = readColumns(path);
  // Centres: 100 + 3 (i + .5) + 4 (j + .5), 200 + 4 (i + .5) - 3 (j + .5); the cell without any
  // value is left out.
  EXPECT_THAT(columns["x"], ElementsAre(103.5, 107.5, 110.5));
  EXPECT_THAT(columns["y"], ElementsAre(200.5, 197.5, 201.5));
  EXPECT_THAT(columns["band1"], ElementsAre(10.5, 11.5, undefined));
  EXPECT_THAT(columns["band2"], ElementsAre(1., 3., 7.));
}

TEST(GdalTableReader, TakesTheGeometryForTheCoordinates)
{
  const apptest::Folder folder;
  const Fields fields = {{"x", "y", "v"}, {{"1", "2", "3"}}};
  const QString path = folder.path("t.gpkg");
  {
    const auto dataset = apptest::createDataset("GPKG", path);
    apptest::addPoints(*dataset, "one", fields, 28992, true);
    apptest::addPoints(*dataset, "two", fields, 4326);
  }
  const auto reader = TableReader::open(path, "t.gpkg", gdalFormat("one"));
  EXPECT_EQ(reader->getColumns(), (QStringList{"x", "y", "x (field)", "y (field)", "v"}));
  const std::string error = errorOf(path);
  EXPECT_THAT(error, HasSubstr("t: has 2 layers; \"layer\" says which one: \"one\", \"two\""));
  EXPECT_THAT(errorOf(path, gdalFormat("twoo")), HasSubstr("did you mean \"two\"?; layers: "));
  EXPECT_THAT(readColumns(path, gdalFormat("two"))["v"], ElementsAre(3.));
}

TEST(GdalTableReader, ReadsTypesNullsAndGeometriesOfOnePoint)
{
  const apptest::Folder folder;
  const QByteArray text =
      "{\"type\":\"FeatureCollection\",\"features\":["
      "{\"type\":\"Feature\",\"properties\":{\"n\":3,\"t\":\" 4.5\",\"d\":\"2020-01-02\",\"u\":7},"
      "\"geometry\":{\"type\":\"MultiPoint\",\"coordinates\":[[1,2,3]]}},"
      "{\"type\":\"Feature\",\"properties\":{\"n\":-999,\"t\":\"NA\",\"d\":null,\"u\":null},"
      "\"geometry\":{\"type\":\"MultiPoint\",\"coordinates\":[[4,5,6]]}}]}";
  TableFormat format;
  format.undefined = QStringList{"NA", "-999.0"};
  const auto reader = TableReader::open(folder.write("t.geojson", text), "t.geojson", format);
  EXPECT_EQ(reader->getColumns(), (QStringList{"x", "y", "z", "n", "t", "d", "u"}));
  ASSERT_TRUE(reader->next());
  std::vector<double> first;
  for (const char *name : {"x", "y", "z", "n", "t", "u"})
    first.push_back(reader->getNumber(reader->findColumn(name, "test")));
  EXPECT_THAT(first, ElementsAre(1., 2., 3., 3., 4.5, 7.));
  EXPECT_THAT(testsupport::errorOf([&] { reader->getNumber(5); }).toStdString(),
              HasSubstr("t.geojson, feature 0: column 6 (\"d\"): \"2020/01/02\" is not a number"));
  ASSERT_TRUE(reader->next());
  for (int column = 3; column < 7; ++column)
    EXPECT_EQ(reader->getNumber(column), undefined) << column;
  EXPECT_FALSE(reader->next());
}

TEST(GdalTableReader, SaysWhyAGeometryGivesNoCoordinates)
{
  const apptest::Folder folder;
  const QString point = "{\"type\":\"Point\",\"coordinates\":[1,2]}";
  const QString square = "{\"type\":\"Polygon\",\"coordinates\":[[[0,0],[1,0],[1,1],[0,1],[0,0]]]}";
  const auto write = [&](const QStringList &geometries) {
    return folder.write("t.geojson", features(geometries));
  };
  EXPECT_THAT(errorOf(write({point, "null"})), HasSubstr("feature 1: the geometry is empty"));
  EXPECT_THAT(errorOf(write({point, square})),
              HasSubstr("feature 1: the geometry is a Polygon, not a point"));
  EXPECT_THAT(errorOf(write({"{\"type\":\"MultiPoint\",\"coordinates\":[[1,2],[3,4]]}"})),
              HasSubstr("feature 0: the geometry is a Multi Point, not a point"));
  const auto polygons = TableReader::open(write({square}), "t.geojson", TableFormat());
  EXPECT_EQ(polygons->getColumns(), QStringList{"v"});
  EXPECT_EQ(testsupport::errorOf([&] { polygons->findColumn("x", "data.x"); }).toStdString(),
            "t.geojson, layer \"t\": there is no column \"x\" (data.x); did you mean \"v\"?; "
            "columns: \"v\"; the geometry of the layer is \"Polygon\", not points");
}

TEST(GdalTableReader, PassesTheReferenceOnToTheResults)
{
  const apptest::Folder folder;
  const Fields samples = apptest::meuseFields();
  MeuseJob job;
  job.set("data.file", apptest::writePoints("ESRI Shapefile", folder.path("s.shp"), samples));
  job.remove("data.crs").remove("output");
  job.set("output", json("{\"grid\": [\"k.tif\"]}"));
  apptest::Outcome outcome = apptest::runProgram({"run", job.writeTo(folder)});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.errors, testing::Not(HasSubstr("warning")));
  GDALAllRegister();
  const apptest::DatasetPtr raster(
      GDALDataset::Open(folder.path("k.tif").toUtf8().constData(), GDAL_OF_RASTER));
  ASSERT_TRUE(raster);
  const OGRSpatialReference expected = apptest::referenceOf(28992);
  ASSERT_TRUE(raster->GetSpatialRef());
  EXPECT_TRUE(raster->GetSpatialRef()->IsSame(&expected));

  QFile::remove(folder.path("k.tif"));
  const Fields grid = apptest::readFields(ORVENAL_EXAMPLES "/meuse/meuse_grid.csv");
  job.set("data.crs", "EPSG:31370");
  job.set("grid.mask.file", apptest::writePoints("GPKG", folder.path("m.gpkg"), grid));
  outcome = apptest::runProgram({"run", job.writeTo(folder)});
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  const std::string found = "EPSG:28992 (Amersfoort / RD New)";
  EXPECT_THAT(outcome.errors, HasSubstr("s.shp are in " + found + ", but the job says EPSG:31370"));
  EXPECT_THAT(outcome.errors, HasSubstr("m.gpkg are in " + found + ", those of the data in EPSG"));
}

TEST(GdalTableReader, ComparesReferencesByWhatTheyMean)
{
  QString reason;
  const auto parse = [&](const QString &text) { return SpatialReference::parse(text, reason); };
  const QString esri =
      "PROJCS[\"ETRS_1989_UTM_Zone_32N\",GEOGCS[\"GCS_ETRS_1989\",DATUM[\"D_ETRS_1989\","
      "SPHEROID[\"GRS_1980\",6378137.0,298.257222101]],PRIMEM[\"Greenwich\",0.0],"
      "UNIT[\"Degree\",0.0174532925199433]],PROJECTION[\"Transverse_Mercator\"],"
      "PARAMETER[\"False_Easting\",500000.0],PARAMETER[\"False_Northing\",0.0],"
      "PARAMETER[\"Central_Meridian\",9.0],PARAMETER[\"Scale_Factor\",0.9996],"
      "PARAMETER[\"Latitude_Of_Origin\",0.0],UNIT[\"Meter\",1.0]]";
  EXPECT_TRUE(parse(esri).isSame(parse("EPSG:25832")));
  EXPECT_FALSE(parse(esri).isSame(parse("EPSG:25833")));
  EXPECT_TRUE(parse("EPSG:4326").isSame(parse("OGC:CRS84")));
  EXPECT_FALSE(parse("EPSG:4326").isSame(parse("EPSG:4258")));
  EXPECT_EQ(parse("EPSG:28992").toText(), "EPSG:28992");
  EXPECT_EQ(SpatialReference::describe(parse(esri).toText()), "ETRS89 / UTM zone 32N");
}

TEST(GdalTableReader, RefusesWhatIsDamaged)
{
  const apptest::Folder folder;
  const Fields fields = apptest::meuseFields();
  apptest::writePoints("GPKG", folder.path("t.gpkg"), fields);
  const QByteArray package = apptest::readFile(folder.path("t.gpkg"));
  for (const int percent : {5, 50, 90})
    EXPECT_THAT(errorOf(folder.write("cut.gpkg", package.left(package.size() / 100 * percent))),
                testing::StartsWith("t: cannot be read"))
        << percent;
  EXPECT_THAT(errorOf(folder.write("noise.gpkg", QByteArray(5000, '\x7F'))),
              HasSubstr("cannot be read"));
  EXPECT_THAT(errorOf(folder.write("empty.gpkg", "")), HasSubstr("t: the file is empty"));
  EXPECT_THAT(errorOf(folder.path("absent.gpkg")), HasSubstr("t: there is no such file"));
  ASSERT_TRUE(QDir().mkdir(folder.path("folder.gpkg")));
  EXPECT_THAT(errorOf(folder.path("folder.gpkg")), HasSubstr("t: is a folder"));

  const QString shape = apptest::writePoints("ESRI Shapefile", folder.path("t.shp"), fields);
  const QByteArray whole = apptest::readFile(shape);
  EXPECT_THAT(errorOf(folder.write("t.shp", whole.left(whole.size() / 2))),
              HasSubstr("cannot be read"));
  EXPECT_THAT(errorOf(folder.write("t.shp", whole.left(70))), HasSubstr("cannot be read"));
  folder.write("t.shp", whole);
  const QByteArray table = apptest::readFile(folder.path("t.dbf"));
  EXPECT_THAT(errorOf(folder.path((folder.write("t.dbf", table.left(table.size() / 2)), "t.shp"))),
              HasSubstr("cannot be read"));
  ASSERT_TRUE(QFile::remove(folder.path("t.dbf")));
  const auto bare = TableReader::open(shape, "t.shp", TableFormat());
  EXPECT_THAT(testsupport::errorOf([&] { bare->findColumn("zinc", "test"); }).toStdString(),
              HasSubstr("t.dbf"));
  ASSERT_TRUE(QFile::remove(folder.path("t.shx")));
  EXPECT_THAT(errorOf(shape), HasSubstr(".shx"));

  const QByteArray raster = apptest::readFile(apptest::writeMeuseRaster(folder.path("t.tif")));
  EXPECT_THAT(errorOf(folder.write("cut.tif", raster.left(raster.size() / 2))),
              HasSubstr("cannot be read beyond row"));
  EXPECT_THAT(errorOf(folder.write("noise.tif", "II*" + QByteArray(5000, '\x7F'))),
              HasSubstr("cannot be read"));
}

TEST(GdalTableReader, SurvivesDamagedBytes)
{
  const apptest::Folder folder;
  Fields fields = apptest::meuseFields();
  fields.rows.resize(20);
  apptest::writePoints("ESRI Shapefile", folder.path("t.shp"), fields);
  apptest::writePoints("FlatGeobuf", folder.path("t.fgb"), fields);
  int nRead = 0;
  int nRefused = 0;
  for (const char *name : {"t.shp", "t.dbf", "t.fgb"}) {
    const QByteArray whole = apptest::readFile(folder.path(name));
    for (int round = 0; round < 60; ++round) {
      QByteArray damaged = whole;
      for (int i = 0; i < 4; ++i)
        damaged[testsupport::uniformInt(27, 8 * round + i, whole.size())] =
            char(testsupport::uniformInt(27, 8 * round + i + 4, 256));
      folder.write(name, damaged);
      const std::string error = errorOf(folder.path(QString(name).replace("dbf", "shp")));
      ++(error == "nothing thrown" ? nRead : nRefused);
    }
    folder.write(name, whole);
  }
  EXPECT_GT(nRead, 10);
  EXPECT_GT(nRefused, 10);
}

TEST(GdalTableReader, KeepsToLocalFilesOfABoundedSize)
{
  const apptest::Folder folder;
  const QString points =
      apptest::writePoints("GPKG", folder.path("t.gpkg"), apptest::meuseFields());
  const QByteArray link = "<OGRVRTDataSource><OGRVRTLayer name=\"t\"><SrcDataSource>" +
                          points.toUtf8() + "</SrcDataSource></OGRVRTLayer></OGRVRTDataSource>";
  EXPECT_THAT(errorOf(folder.write("t.vrt", link)), HasSubstr("cannot be read"));
  EXPECT_THAT(errorOf(folder.write("t.xml",
                                   "<OGRWFSDataSource><URL>http://localhost:9/wfs</URL>"
                                   "</OGRWFSDataSource>"),
                      gdalFormat()),
              HasSubstr("cannot be read"));
  EXPECT_THAT(errorOf("/vsicurl/http://localhost:9/t.gpkg", gdalFormat()),
              HasSubstr("no such file"));

  const char *options[] = {"SPARSE_OK=TRUE", "TILED=NO", nullptr};
  {
    const auto dataset = apptest::createDataset("GTiff", folder.path("wide.tif"), 2000000000, 1, 1,
                                                GDT_Byte, const_cast<char **>(options));
    double transform[] = {0., 1., 0., 0., 0., -1.};
    dataset->SetGeoTransform(transform);
  }
  EXPECT_THAT(errorOf(folder.path("wide.tif")),
              HasSubstr("stored in blocks of 2000000000 x 1 cells, which are too large"));
}

TEST(GdalTableReader, ItsFilesAreAllNamedByTheReport)
{
  const apptest::Folder folder;
  ASSERT_TRUE(QDir().mkpath(folder.path("in")));
  apptest::writePoints("ESRI Shapefile", folder.path("in/s.shp"), apptest::meuseFields());
  EXPECT_EQ(
      TableReader::listFiles(folder.path("in/s.shp"), "s.shp", TableFormat()).first().toStdString(),
      folder.path("in/s.shp").toStdString());
  const apptest::Outcome outcome = apptest::runProgram(
      {"variogram", "in/s.shp", "--variable", "zinc", "--report", "r.html"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const std::string report = apptest::readFile(folder.path("r.html")).toStdString();
  for (const char *file : {"in/s.shp", "in/s.shx", "in/s.dbf", "in/s.prj"}) {
    const QByteArray sum =
        QCryptographicHash::hash(apptest::readFile(folder.path(file)), QCryptographicHash::Sha256);
    EXPECT_THAT(report, HasSubstr(file));
    EXPECT_THAT(report, HasSubstr(sum.toHex().toStdString()));
  }
}
