#include "app/io/GeoEasReader.h"

#include "GdalFiles.h"
#include "app/io/TableKind.h"
#include "basic/base/NbbGlobal.h"
#include "basic/error/NbeUserError.h"
#include "support/Errors.h"
#include "support/Random.h"

#include <gmock/gmock.h>

using namespace orvenal;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr double undefined = NbbGlobal::D_FFFF;

std::vector<std::vector<double>> readNumbers(const QString &path,
                                             const QStringList &markers = {"-999"})
{
  TableFormat format;
  format.undefined = markers;
  GeoEasReader reader(path, "t.dat", format);
  std::vector<std::vector<double>> rows;
  while (reader.next()) {
    rows.emplace_back();
    for (int column = 0; column < reader.getColumns().size(); ++column)
      rows.back().push_back(reader.getNumber(column));
  }
  return rows;
}

std::string errorOf(const QByteArray &content)
{
  const apptest::Folder folder;
  const QString path = folder.write("t.dat", content);
  return testsupport::errorOf([&] { readNumbers(path); }).toStdString();
}

}  // namespace

TEST(GeoEasReader, ReadsOneTableInAllItsSpellings)
{
  struct Case
  {
    const char *name;
    QByteArray content;
  };
  const Case cases[] = {
      {"plain", "title\n2\na\nZinc (mg/kg)\n1 2\n1000 -999\n"},
      {"no final line end", "title\n2\na\nZinc (mg/kg)\n1 2\n1000 -999"},
      {"empty title, Windows line ends", "\r\n2\r\na\r\nZinc (mg/kg)\r\n1 2\r\n1000 -999.0\r\n"},
      {"exponents of Fortran, tabs", "t\n2\na\n  Zinc   (mg/kg) \n1\t+2.0D0\n1.0D+03\t-9.99d2\n"},
      {"remark on the second line, empty lines",
       "t\n 2  variables, 140 \na\nZinc (mg/kg)\n\n 1 2 \n\n1e3 -999\n\n"},
  };
  const apptest::Folder folder;
  for (const Case &c : cases) {
    SCOPED_TRACE(c.name);
    const QString path = folder.write("t.dat", c.content);
    EXPECT_EQ(GeoEasReader(path, "t.dat", TableFormat()).getColumns(),
              (QStringList{"a", "Zinc (mg/kg)"}));
    EXPECT_THAT(readNumbers(path), ElementsAre(ElementsAre(1., 2.), ElementsAre(1000., undefined)));
    EXPECT_EQ(findTableKind(path, "t.dat"), TableFormat::GEO_EAS);
  }
}

TEST(GeoEasReader, TakesValuesForUndefinedOnlyWhenTheyAreListed)
{
  const apptest::Folder folder;
  const QString path = folder.write("t.dat", "t\n1\na\n-99\n-1.0e21\n-999\n");
  EXPECT_THAT(readNumbers(path, {""}),
              ElementsAre(ElementsAre(-99.), ElementsAre(-1e21), ElementsAre(-999.)));
  EXPECT_THAT(readNumbers(path, {"-99", "-1e21"}),
              ElementsAre(ElementsAre(undefined), ElementsAre(undefined), ElementsAre(-999.)));
}

TEST(GeoEasReader, GivesTheNodesOfAGridTheirCoordinates)
{
  const apptest::Folder folder;
  const QByteArray values = "1\n2\n3\n4\n5\n6\n7\n8\n";
  const auto rowsOf = [&](const QByteArray &grid, const QByteArray &records) {
    return readNumbers(folder.write("t.dat", "t\n1 " + grid + "\nv\n" + records));
  };
  EXPECT_THAT(rowsOf("2 2 1 10 20 0 5 2 1", values.left(8)),
              ElementsAre(ElementsAre(10., 20., 1.), ElementsAre(15., 20., 2.),
                          ElementsAre(10., 22., 3.), ElementsAre(15., 22., 4.)));
  const auto solid = rowsOf("2 2 2 10 20 30 5 2 0.5 1", values);
  EXPECT_THAT(solid[1], ElementsAre(15., 20., 30., 2.));
  EXPECT_THAT(solid[6], ElementsAre(10., 22., 30.5, 7.));
  const auto twice = rowsOf("2 2 1 10 20 0 5 2 1 2", values);
  EXPECT_THAT(twice[5], ElementsAre(15., 20., 6.));

  const QString path = folder.write("t.dat", "t\n1 2 1 1 0 0 0 1 1 1\nx\n7\n8\n");
  EXPECT_EQ(GeoEasReader(path, "t", TableFormat()).getColumns(),
            (QStringList{"x", "y", "x (field)"}));
  const GeoEasReader bare(folder.write("t.dat", "t\n1 2 1 1\nv\n7\n8\n"), "t.dat", TableFormat());
  EXPECT_THAT(testsupport::errorOf([&] { bare.findColumn("x", "data.x"); }).toStdString(),
              HasSubstr("does not say where its nodes lie"));
}

TEST(GeoEasReader, NamesFileLineAndColumnOfWhatIsWrong)
{
  struct Case
  {
    QByteArray content;
    const char *part;
  };
  const Case cases[] = {
      {"", "t.dat: the file is empty"},
      {"title\n", "t.dat, line 2: the file ends before the number of variables"},
      {"title\nx y\n", "line 2: the second line of a GEO-EAS file begins with the number"},
      {"title\n0\n", "a whole number above 0; found \"0\""},
      {"title\n2000000000\na\n", "line 2: 2000000000 variables are too many"},
      {"title\n99999\na\n", "line 4: the file ends after 1 names of variables"},
      {"title\n2\na\n\n1 2\n", "line 4: the name of variable 2 is empty"},
      {"title\n2\na\nb\n1 2\n1\n", "line 6: 1 fields, but the header has 2 variables"},
      {"title\n2\na\nb\n1 x\n", "line 5: column 2 (\"b\"): \"x\" is not a number"},
      {"title\n1\na\n1D400\n", "1D400 is not finite"},
      {"title\n1\na\n1 \"2\n", "line 4: a quote"},
      {"title\n1 2 2 1\na\n1\n2\n3\n", "ends after 3 records, but the grid on line 2 has 4 nodes"},
      {"title\n1 2 1 1\na\n1\n2\n3\n", "line 6: a record behind the 2 nodes of the grid"},
      {"title\n1 2 1 1 0 0 0 1 0 1\na\n1\n2\n", "line 2: the size of a cell"},
      {"title\n1 2000000000 2000000000 2000000000 0 0 0 1 1 1\na\n1\n", "ends after 1 records"},
      {QByteArray("title\n1\na\n\0\n", 12), "line 4: a null byte"},
  };
  for (const Case &c : cases)
    EXPECT_THAT(errorOf(c.content), HasSubstr(c.part)) << c.content.constData();
}

TEST(GeoEasReader, IsChosenByContent)
{
  struct Case
  {
    const char *name;
    QByteArray content;
    TableFormat::Kind kind;
  };
  const Case cases[] = {
      {"t.txt", "x y zinc\n1 2 3\n2 3 4\n", TableFormat::CSV},
      {"t.txt", "station\n2\n3\n4\n", TableFormat::CSV},
      {"t.dat", "x;y\n1;2\n", TableFormat::CSV},
      {"t.csv", "title\n1\na\n1\n", TableFormat::CSV},
      {"t.txt", "title\n1\na\n1\n", TableFormat::GEO_EAS},
      {"t.gslib", "x y\n1 2\n", TableFormat::GEO_EAS},  // its reader says what is wrong
      {"t.dat", QByteArray("GRIB\0\0", 6), TableFormat::GDAL},
      {"t.gpkg", "no package", TableFormat::GDAL},
      {"t.xyz", "1 2 3\n", TableFormat::CSV},
  };
  const apptest::Folder folder;
  for (const Case &c : cases)
    EXPECT_EQ(findTableKind(folder.write(c.name, c.content), c.name), c.kind)
        << c.name << ": " << c.content.constData();
}

TEST(GeoEasReader, SurvivesDamagedFiles)
{
  const QByteArray whole = "title\n3 2 2 1 0 0 0 1 1 1\na\nb\nc\n1 2 3\n4 5 -999\n7 8 9\n1 1 1\n";
  const apptest::Folder folder;
  EXPECT_EQ(readNumbers(folder.write("t.dat", whole)).size(), 4u);
  int nRead = 0;
  for (int round = 0; round < 300; ++round) {
    QByteArray damaged = whole;
    damaged[testsupport::uniformInt(17, 2 * round, whole.size())] =
        char(testsupport::uniformInt(17, 2 * round + 1, 256));
    const QString path = folder.write("t.dat", damaged);
    try {
      EXPECT_LE(readNumbers(path).size(), 5u);
      ++nRead;
    } catch (const NbeUserError &error) {
      EXPECT_TRUE(error.getMessage().startsWith("t.dat"));
    }
  }
  EXPECT_GT(nRead, 30);
  EXPECT_LT(nRead, 270);
}
