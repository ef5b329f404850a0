#include "TestFiles.h"
#include "app/io/TableReader.h"
#include "app/study/Compass.h"
#include "basic/base/NbbGlobal.h"
#include "basic/geom/NbgGeomGrid.h"

#include <gmock/gmock.h>

#include <map>

using namespace orvenal;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;

namespace {

/// A table as its readers give it: the columns of each record, by place.
using Table = std::map<std::vector<double>, std::vector<double>>;

Table readTable(const QString &path, const QStringList &axes, const QStringList &columns)
{
  const auto reader = TableReader::open(path, path, TableFormat());
  const auto numbers = [&](const QStringList &names) {
    std::vector<double> values;
    for (const QString &name : names)
      values.push_back(reader->getNumber(reader->findColumn(name, "test")));
    return values;
  };
  Table table;
  while (reader->next())
    table[numbers(axes)] = numbers(columns);
  return table;
}

/// Runs it in the folder.
Outcome convert(const apptest::Folder &folder, const QStringList &arguments)
{
  return runProgram(QStringList{"convert"} + arguments, folder.path(""));
}

void expectDone(const Outcome &outcome)
{
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
}

const char *const samples =
    "\"Site, \"\"A\"\"\",X,Y,Zn [ppm],code,note\n"
    "one,1.5,2.25,0.1,007,\"a;b\"\n"
    "two,-3,1e-7,,010,\n"
    "l'\xC3\xA9t\xC3\xA9,4,4,-999,3,NA\n";

/// A grid of 5 x 4 x 3 nodes without two of them; not in order.
QByteArray gridText()
{
  QByteArray text = "x,y,z,a,b\n";
  for (int node = 59; node >= 0; --node) {
    const int i = node % 5, j = node / 5 % 4, k = node / 20;
    if (node == 7 || node == 33)
      continue;
    text += QByteArray::number(1000.5 + 10 * i) + ',' + QByteArray::number(2000 + 20 * j) + ',' +
            QByteArray::number(-5 + 2.5 * k) + ',' + QByteArray::number(node / 7., 'g', 17) + ',' +
            (node == 12 ? QByteArray() : QByteArray::number(-node / 3e7, 'g', 17)) + '\n';
  }
  return text;
}

}  // namespace

TEST(Convert, KeepsNumbersAndTextsOfPoints)
{
  const apptest::Folder folder;
  folder.write("s.csv", samples);
  expectDone(convert(folder, {"--crs", "EPSG:28992", "s.csv", "s.gpkg"}));
  expectDone(convert(folder, {"s.gpkg", "back.csv"}));
  EXPECT_EQ(QString::fromUtf8(apptest::readFile(folder.path("back.csv"))).split('\n').mid(1),
            (QStringList{"1.5,2.25,one,0.1,007,\"a;b\"", "-3,1e-07,two,,010,",
                         QString::fromUtf8("4,4,l'\xC3\xA9t\xC3\xA9,-999,3,NA"), ""}));
  expectDone(convert(folder, {"s.csv", "copy.csv"}));
  EXPECT_EQ(apptest::readFile(folder.path("copy.csv")),
            QByteArray(samples).replace("1e-7", "1e-07"));

  const Outcome outcome = convert(folder, {"s.csv", "s.dat"});
  expectDone(outcome);
  EXPECT_THAT(outcome.errors, HasSubstr("columns of texts are left out: \"Site, \"A\"\", \"code\", "
                                        "\"note\""));
  EXPECT_EQ(apptest::readFile(folder.path("s.dat")),
            "s (undefined: -9999)\n3\nX\nY\nZn [ppm]\n1.5 2.25 0.1\n-3 1e-07 -9999\n4 4 -999\n");
  EXPECT_EQ(readTable(folder.path("s.dat"), {"X", "Y"}, {"Zn [ppm]"}),
            readTable(folder.path("s.csv"), {"X", "Y"}, {"Zn [ppm]"}));
  const Outcome asked = convert(folder, {"--columns", "code", "s.csv", "t.dat"});
  EXPECT_EQ(asked.exitCode, 1);
  EXPECT_THAT(asked.errors, HasSubstr("t.dat: the format holds numbers only, but these columns are "
                                      "texts: \"code\""));
  EXPECT_FALSE(QFile::exists(folder.path("t.dat")));
}

TEST(Convert, TakesAGridThroughEveryFormat)
{
  const apptest::Folder folder;
  const QStringList axes = {"x", "y", "z"};
  const QStringList columns = {"a", "b"};
  folder.write("g.csv", gridText());
  const Table expected = readTable(folder.path("g.csv"), axes, columns);
  ASSERT_EQ(expected.size(), 58u);
  QString from = "g.csv";
  for (const QString &to : QStringList{"1.nc", "2.gpkg", "3.dat", "4.nc", "5.gslib", "6.csv"}) {
    SCOPED_TRACE(to.toStdString());
    expectDone(convert(folder, {from, to}));
    Table found = readTable(folder.path(to), axes, columns);
    if (to.endsWith("gslib")) {  // holds the two nodes that are missing too
      EXPECT_EQ(found.size(), 60u);
      for (auto node = found.begin(); node != found.end();)
        node = NbbGlobal::isDefined(node->second[0]) ? std::next(node) : found.erase(node);
    }
    if (from.endsWith("gslib")) {
      EXPECT_EQ(found.size(), 60u);
      continue;
    }
    EXPECT_EQ(found, expected);
    from = to;
  }
}

TEST(Convert, FindsTheGridOfPointsThatAreTurned)
{
  const apptest::Folder folder;
  for (const double azimuth : {30., 17.3}) {
    SCOPED_TRACE(azimuth);
    NbgGeomGrid grid;
    grid.setNodesNumber2D(13, 9);
    grid.setOriginCentered({178460., 329620., 0.});
    grid.setCellSize({40., 25., 1.});
    grid.setRotation(Compass::gridFrame(azimuth));
    QByteArray text = "x,y,v\n";
    for (int i = 0; i < 117; ++i) {
      const NbgVector3D center = grid.getCellCenter(i);
      if (i % 7 != 3)
        text += QByteArray::number(center.x(), 'g', 17) + ',' +
                QByteArray::number(center.y(), 'g', 17) + ',' + QByteArray::number(i) + '\n';
    }
    folder.write("g.csv", text);
    const Outcome info = runProgram({"info", "g.csv"}, folder.path(""));
    EXPECT_THAT(info.output, HasSubstr("13 x 9 nodes (100 of 117 taken), cells of 40 x 25"));
    EXPECT_THAT(info.output, HasSubstr(QString("azimuth %1\u00B0").arg(azimuth).toStdString()));

    // Places come from origin, cells and angle again: they are the same but for the last bits.
    const Table expected = readTable(folder.path("g.csv"), {"x", "y"}, {"v"});
    QString from = "g.csv";
    for (const QString &to : QStringList{"g.nc", "1.csv", "g.tif", "2.gpkg", "3.nc", "4.csv"}) {
      SCOPED_TRACE(to.toStdString());
      const Outcome outcome = convert(folder, {"--overwrite", from, to});
      ASSERT_EQ(outcome.exitCode, 0);
      EXPECT_EQ(outcome.errors, "");  // GDAL remarks that such a grid has no axes
      const Table found = readTable(folder.path(to), {"x", "y"}, {"v"});
      ASSERT_EQ(found.size(), expected.size());
      for (auto a = found.begin(), b = expected.begin(); a != found.end(); ++a, ++b) {
        EXPECT_NEAR(a->first[0], b->first[0], 1e-8);
        EXPECT_NEAR(a->first[1], b->first[1], 1e-8);
        EXPECT_EQ(a->second, b->second);
      }
      from = to;
    }
  }
}

TEST(Convert, TakesAPlaneThroughARaster)
{
  const apptest::Folder folder;
  const QString meuse = ORVENAL_EXAMPLES "/meuse/meuse_grid.csv";
  expectDone(convert(folder, {"--crs", "EPSG:28992", meuse, "g.tif"}));
  expectDone(convert(folder, {"g.tif", "g.nc"}));
  expectDone(convert(folder, {"--columns", "dist,soil", "g.nc", "g.csv"}));
  EXPECT_TRUE(apptest::readFile(folder.path("g.csv")).startsWith("x,y,dist,soil\n"));
  EXPECT_EQ(readTable(folder.path("g.csv"), {"x", "y"}, {"dist", "soil"}),
            readTable(meuse, {"x", "y"}, {"dist", "soil"}));
  expectDone(convert(folder, {"g.nc", "g.gpkg"}));
  const auto reader = TableReader::open(folder.path("g.gpkg"), "g.gpkg", TableFormat());
  EXPECT_THAT(reader->getReference().toStdString(), HasSubstr("Amersfoort / RD New"));
}

TEST(Convert, ReadsTextTablesAsTold)
{
  const apptest::Folder folder;
  folder.write("s.txt", "east;north;v\n1,5;2;-1\n2;2,5;none\n");
  expectDone(convert(folder, {"--x", "east", "--y", "north", "--separator", ";", "--decimal", ",",
                              "--undefined", "none,-1", "s.txt", "s.csv"}));
  EXPECT_EQ(apptest::readFile(folder.path("s.csv")), "east,north,v\n1.5,2,\n2,2.5,\n");
}

TEST(Convert, TakesModelsBothWays)
{
  const apptest::Folder folder;
  folder.write("m.json", R"({"dimensions": 3, "nugget": 0.1, "structures": [{"type": "Spherical",
      "sill": 0.3, "ranges": [300.1, 200.7, 17.3], "azimuth": 123.4, "dip": 17.6, "pitch": 3}]})");
  expectDone(convert(folder, {"m.json", "m.bin"}));
  expectDone(convert(folder, {"m.bin", "n.json"}));
  expectDone(convert(folder, {"n.json", "n.bin"}));
  EXPECT_EQ(apptest::readFile(folder.path("n.bin")), apptest::readFile(folder.path("m.bin")));
  EXPECT_EQ(QJsonDocument::fromJson(apptest::readFile(folder.path("n.json"))),
            QJsonDocument::fromJson(apptest::readFile(folder.path("m.json"))));
}

TEST(Convert, SaysWhatIsWrong)
{
  const apptest::Folder folder;
  folder.write("s.csv", samples);
  folder.write("g.csv", gridText());
  folder.write("there.csv", "old");
  const struct
  {
    QStringList arguments;
    int exitCode;
    const char *message;
  } cases[] = {
      {{"s.csv"}, 2, "expected two files"},
      {{"no.csv", "a.dat"}, 2, "there is no file \"no.csv\""},
      {{"s.csv", "a.xyz"}, 2, "\"a.xyz\" should end with .csv or .dat or .gpkg or"},
      {{"s.csv", "./s.csv"}, 2, "would be overwritten by itself"},
      {{"s.csv", "there.csv"}, 1, "there.csv exists; --overwrite replaces it"},
      {{"--x", "X", "s.csv", "a.csv"}, 2, "--x and --y have to be given together"},
      {{"--x", "X", "--y", "Z", "s.csv", "a.csv"}, 1, "there is no column \"Z\""},
      {{"--columns", "Zinc", "s.csv", "a.csv"}, 1, "there is no column \"Zinc\" (--columns)"},
      {{"--crs", "EPSG:1", "s.csv", "a.gpkg"},
       2,
       "--crs: \"EPSG:1\" is not a coordinate reference"},
      {{"s.csv", "a.nc"}, 1, "the points do not lie on the nodes of a grid"},
      {{"g.csv", "a.tif"}, 1, "a.tif: a GeoTIFF needs a grid of two dimensions"},
      {{"s.csv", "a.bin"}, 2, "s.csv, line 1, column "},
      {{"s.csv", "new/folder/a.nc"}, 1, "the points do not lie"},
  };
  const QStringList before = folder.list();
  for (const auto &c : cases) {
    SCOPED_TRACE(c.arguments.join(' ').toStdString());
    const Outcome outcome = convert(folder, c.arguments);
    EXPECT_EQ(outcome.exitCode, c.exitCode);
    EXPECT_THAT(outcome.errors, HasSubstr(c.message));
    EXPECT_EQ(folder.list(), before);
  }
  expectDone(convert(folder, {"--overwrite", "s.csv", "there.csv"}));
  EXPECT_THAT(apptest::readFile(folder.path("there.csv")).toStdString(),
              HasSubstr("l'\xC3\xA9t\xC3\xA9"));
}
