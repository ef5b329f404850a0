#include "GdalFiles.h"
#include "app/study/ColumnGuess.h"
#include "app/study/TableSummary.h"

#include <gmock/gmock.h>

using namespace orvenal;
using testing::AllOf;
using testing::HasSubstr;

namespace {

TableSummary summaryOf(const QByteArray &content, const QString &name = "t.csv")
{
  const apptest::Folder folder;
  return summarizeTable(folder.write(name, content), name, TableFormat());
}

std::string infoOf(const QStringList &arguments)
{
  const apptest::Outcome outcome = apptest::runProgram(QStringList("info") + arguments);
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  return outcome.output;
}

QJsonObject jsonOf(const QStringList &arguments)
{
  const std::string text = infoOf(QStringList("--json") + arguments);
  return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

}  // namespace

TEST(ColumnGuess, FindsCoordinatesByTheirNames)
{
  struct Case
  {
    QStringList columns;
    int x;
    int y;
    bool isGeographic;
  };
  const Case cases[] = {
      {{"id", "x", "y", "zinc"}, 1, 2, false},
      {{"Y_UTM (m)", "X_UTM (m)", "Au"}, 1, 0, false},
      {{"HOLE", "East", "North", "RL"}, 1, 2, false},
      {{"lon", "lat", "easting [m]", "northing [m]"}, 2, 3, false},
      {{"Latitude", "Longitude", "pH"}, 1, 0, true},
      {{"Rechtswert", "Hochwert"}, 0, 1, false},
      {{"x", "northing", "zinc"}, -1, -1, false},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.columns.join(",").toStdString());
    const CoordinateColumns found = guessCoordinates(c.columns);
    EXPECT_EQ(found.x, c.x);
    EXPECT_EQ(found.y, c.y);
    EXPECT_EQ(found.isGeographic, c.isGeographic);
  }
  EXPECT_EQ(guessVariable(summaryOf("hole_id,x,y,code,zinc\n1,2,3,7,5\n2,4,5,7,6\n")), 4);
  EXPECT_EQ(guessVariable(summaryOf("x,y\n2,3\n4,5\n")), -1);
}

TEST(TableSummary, CountsWhatColumnsHold)
{
  const TableSummary summary =
      summaryOf("x,y,a,b,c,d\n0,0,1,NA,<0.1,n/a\n1,0,-999,,2,3\n5,3,2.5,,n/a,4\n");
  EXPECT_EQ(summary.nRecords, 3);
  const auto column = [&](const QString &name) {
    return summary.columns[summary.findColumn(name)];
  };
  EXPECT_EQ(column("a").getType(), ColumnSummary::NUMBERS);
  EXPECT_EQ(column("a").marks, QStringList{"-999"});
  EXPECT_EQ(column("a").maximum, 2.5);
  EXPECT_DOUBLE_EQ(column("a").mean, (1. - 999. + 2.5) / 3.);
  EXPECT_EQ(column("b").getType(), ColumnSummary::NOTHING);
  EXPECT_EQ(column("b").nUndefined, 3);
  EXPECT_EQ(column("c").getType(), ColumnSummary::MIXED);
  EXPECT_EQ(column("c").example, "<0.1");
  EXPECT_EQ(column("c").nTexts, 2);
  EXPECT_EQ(column("c").marks, QStringList{"n/a"});
  EXPECT_EQ(column("c").limits, QStringList{"<0.1"});
  EXPECT_EQ(column("d").marks, QStringList{"n/a"});
  EXPECT_EQ(summary.upper[0], 5.);
}

TEST(TableSummary, ReadsDecimalCommas)
{
  const TableSummary summary = summaryOf("x;y;zinc\n1,5;2,5;100\n2,5;3;\n");
  EXPECT_EQ(summary.format.decimal, ',');
  EXPECT_EQ(summary.format.separator, ';');
  EXPECT_EQ(summary.columns[0].minimum, 1.5);
  EXPECT_TRUE(summary.coordinates.isComplete());
}

TEST(TableSummary, FindsGridsAndDuplicates)
{
  QByteArray grid = "x,y,v\n";
  for (int i = 0; i < 60; ++i) {
    if (i % 7 != 0)
      grid += QByteArray::number(0.1 * (i % 10), 'g', 17) + ',' + QByteArray::number(5 - i / 10) +
              ",1\n";
  }
  const TableSummary found = summaryOf(grid + "0.1,5,2\n");
  ASSERT_TRUE(found.grid);
  EXPECT_EQ(found.grid->getNodesNumber().x(), 10);
  EXPECT_EQ(found.grid->getNodesNumber().y(), 6);
  EXPECT_NEAR(found.grid->getCellSize().x(), 0.1, 1e-15);
  EXPECT_EQ(found.nDuplicates, 1);
  EXPECT_FALSE(summaryOf(grid + "0.13,5,2\n").grid);
  EXPECT_FALSE(summaryOf("x,y\n0,0\n1,1\n200,300\n57,31\n").grid);  // mostly holes

  QByteArray holes = "east,north,rl,grade\n";
  for (int i = 0; i < 30; ++i)
    holes += QByteArray::number(i / 10) + ',' + QByteArray::number(i * i / 100 * 3) + ',' +
             QByteArray::number(-(i % 10)) + ",1\n";
  EXPECT_EQ(summaryOf(holes).coordinates.z, 2);
  EXPECT_EQ(summarizeTable(ORVENAL_EXAMPLES "/meuse/meuse.csv", "m", TableFormat()).coordinates.z,
            -1);  // has "elev", a value of places on a surface
}

TEST(Info, DescribesTables)
{
  const apptest::Folder folder;
  const std::string csv = infoOf({ORVENAL_EXAMPLES "/meuse/meuse_grid.csv"});
  EXPECT_THAT(csv, AllOf(HasSubstr("records      3,103"), HasSubstr("\"x\" from 178460 to 181540"),
                         HasSubstr("78 x 104 nodes (3,103 of 8,112 taken), cells of 40 x 40")));
  const QString shape =
      apptest::writePoints("ESRI Shapefile", folder.path("s.shp"), apptest::meuseFields());
  EXPECT_THAT(infoOf({shape}), AllOf(HasSubstr("ESRI Shapefile"),
                                     HasSubstr("EPSG:28992 (Amersfoort / RD New), unit m"),
                                     HasSubstr("  om       real       153          2  ")));
  const QByteArray wide =
      "x,y,a name that is far too long for a column of a table (mg/kg)\n"
      "5512345.678,-1234567.891,-1.23456789e-15\n"
      "5612345.678,-1334567.891,text that goes on and on and on and on\n";
  const std::string narrow = infoOf({folder.write("wide.csv", wide)});
  const QStringList lines = QString::fromStdString(narrow).split('\n').mid(1);
  for (const QString &line : lines)
    EXPECT_LE(line.size(), 80) << qPrintable(line);
  EXPECT_GT(lines.size(), 8);
}

TEST(Info, ListsLayers)
{
  const apptest::Folder folder;
  const QString path = folder.path("t.gpkg");
  {
    const auto dataset = apptest::createDataset("GPKG", path);
    apptest::addPoints(*dataset, "samples", apptest::meuseFields(), 28992);
    apptest::addPoints(*dataset, "wells", {{"x", "y", "v"}, {{"1", "2", "3"}}}, 4326);
  }
  EXPECT_THAT(infoOf({path}),
              AllOf(HasSubstr("2 layers"), HasSubstr("  samples  Point         155")));
  EXPECT_EQ(jsonOf({path})["layers"].toArray().size(), 2);
  const QJsonObject wells = jsonOf({"--layer", "wells", path});
  EXPECT_EQ(wells["records"].toInt(), 1);
  EXPECT_TRUE(wells["reference"].toObject()["geographic"].toBool());
}

TEST(Info, DescribesModelsAndJobs)
{
  const apptest::Folder folder;
  const QString model = folder.write(
      "model.json",
      "{\"nugget\": 0.05, \"structures\": [{\"type\": \"Spherical\", \"sill\": 0.59, \"ranges\": "
      "[900, 500, 20], \"azimuth\": 30, \"dip\": 5}, {\"type\": \"Stable\", \"sill\": 1, "
      "\"range\": 70, \"parameter\": 1.5}]}");
  EXPECT_THAT(infoOf({model}), AllOf(HasSubstr("a variogram model"), HasSubstr("nugget     0.05"),
                                     HasSubstr("Spherical  0.59"), HasSubstr("[900, 500, 20]")));
  EXPECT_EQ(jsonOf({model})["dimensions"].toInt(), 3);
  const QString pair =
      folder.write("pair.json",
                   "{\"structures\": [{\"type\": \"Spherical\", \"sill\": [[1, 0.5], [0.5, 2]], "
                   "\"range\": 9}]}");
  EXPECT_EQ(jsonOf({pair})["variables"].toInt(), 2);

  const QString job = apptest::MeuseJob().writeTo(folder);
  EXPECT_THAT(infoOf({job}), AllOf(HasSubstr("a job"), HasSubstr("variable"), HasSubstr("grid")));
  EXPECT_EQ(jsonOf({job})["kind"].toString(), "job");
  EXPECT_EQ(jsonOf({job})["steps"], apptest::json("[\"statistics\", \"kriging\", \"report\"]"));
}

TEST(Info, SaysWhatItCannotDescribe)
{
  const apptest::Folder folder;
  const auto fails = [&](const QStringList &arguments, int exitCode, const char *part) {
    const apptest::Outcome outcome = apptest::runProgram(QStringList("info") + arguments);
    EXPECT_EQ(outcome.exitCode, exitCode) << part;
    EXPECT_THAT(outcome.errors, HasSubstr(part));
  };
  fails({}, 2, "the file is missing");
  fails({folder.path("none.csv")}, 2, "there is no file");
  fails({folder.path(".")}, 2, "is a folder");
  fails({folder.write("t.csv", "")}, 1, "the file is empty");
  fails({"--layer", "a", folder.write("t.csv", "x,y\n1,2\n")}, 1, "has no layers");
  fails({folder.write("t.gpkg", QByteArray(100, '\1'))}, 1, "cannot be read");
  fails({folder.write("m.json", "{\"structures\": [{\"type\": \"Sphericl\"}]}")}, 2,
        "did you mean \"Spherical\"");
  EXPECT_THAT(infoOf({folder.write("h.csv", "x,y\n")}), HasSubstr("records      0"));
}
