#include "TestFiles.h"
#include "app/job/JobReader.h"

#include <gmock/gmock.h>

using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;
using testing::Not;

namespace {

/// The job that init proposes for a table, read by the reader of jobs, and run.
orvenal::Job proposeAndRun(const apptest::Folder &folder, const QByteArray &data,
                           const QStringList &options = QStringList())
{
  folder.write("d.csv", data);
  const Outcome proposed = runProgram(QStringList{"init", "d.csv"} + options, folder.path(""));
  EXPECT_EQ(proposed.exitCode, 0) << proposed.errors;
  const QByteArray text = apptest::readFile(folder.path("job.json"));
  const Outcome outcome = runProgram({"run", "job.json"}, folder.path(""));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors << text.constData();
  return orvenal::parseJob(folder.path("job.json"), text);
}

/// Values at 6 x 6 places that vary with both coordinates, by a row's text of x, y and value.
template <class Row>
QByteArray table(const QByteArray &header, Row row)
{
  QByteArray text = header + '\n';
  for (int i = 0; i < 36; ++i)
    text += row(10 * (i % 6), 20 * (i / 6), 1 + (i * 7) % 13 + i / 6) + '\n';
  return text;
}

QByteArray joined(const QByteArrayList &fields, char separator)
{
  return fields.join(separator);
}

QByteArray text(int number)
{
  return QByteArray::number(number);
}

}  // namespace

TEST(Init, MakesAJobThatRuns)
{
  const apptest::Folder folder;
  const orvenal::Job job =
      proposeAndRun(folder, apptest::readFile(ORVENAL_EXAMPLES "/meuse/meuse.csv"));
  EXPECT_EQ(job.data.x, "x");
  EXPECT_EQ(job.data.y, "y");
  EXPECT_EQ(job.variable.column, "cadmium");
  EXPECT_TRUE(job.fit.has_value());
  EXPECT_TRUE(job.crossValidation.has_value());
  EXPECT_EQ(job.grid.getOriginCentered(), NbgVector3D(178600., 329700., 0.));
  EXPECT_EQ(job.grid.getCellSize().x(), 20.);
  EXPECT_THAT(folder.list("out").join(' ').toStdString(), HasSubstr("out/report.html"));
  const std::string proposal = apptest::readFile(folder.path("job.json")).toStdString();
  EXPECT_THAT(proposal, HasSubstr("zinc (113 to 1839)"));
  EXPECT_THAT(proposal, HasSubstr("\"transform\": \"log\""));  // skewed

  // What exists stays.
  const Outcome again = runProgram({"init", "d.csv"}, folder.path(""));
  EXPECT_EQ(again.exitCode, 1);
  EXPECT_THAT(again.errors, HasSubstr("job.json exists"));
  EXPECT_EQ(
      runProgram({"init", "d.csv", "--overwrite", "--variable", "zinc"}, folder.path("")).exitCode,
      0);
  EXPECT_THAT(apptest::readFile(folder.path("job.json")).toStdString(),
              HasSubstr("\"column\": \"zinc\""));
}

TEST(Init, TakesTablesAsTheyCome)
{
  const apptest::Folder folders[3];
  const orvenal::Job german = proposeAndRun(
      folders[0], table("Rechtswert;Hochwert;Gehalt \"Größe\" in %", [](int x, int y, int v) {
        return joined({text(x) + ",5", text(y) + ",0", text(v) + ",25"}, ';');
      }));
  EXPECT_EQ(german.data.x, "Rechtswert");
  EXPECT_EQ(german.data.format.decimal, ',');
  EXPECT_EQ(german.variable.column, QString::fromUtf8("Gehalt \"Größe\" in %"));

  const orvenal::Job marked = proposeAndRun(
      folders[1], table("east,north,it's", [](int x, int y, int v) {
        return joined({text(x), text(y), v % 5 == 0 ? QByteArray("-999") : text(v)}, ',');
      }));
  EXPECT_THAT(marked.data.format.undefined, testing::Contains(QString("-999")));

  // Two samples at each place, one below the other.
  const orvenal::Job deep =
      proposeAndRun(folders[2], table("X\tY\tZ\tgrade", [](int x, int y, int v) {
                      const QByteArray place = joined({text(x), text(y)}, '\t');
                      return place + "\t-" + text(v % 4) + '\t' + text(v) + '\n' + place + "\t-" +
                             text(v % 4 + 5) + '\t' + text(2 * v);
                    }));
  EXPECT_EQ(deep.data.z, "Z");
  EXPECT_EQ(deep.getNDimensions(), 3);
}

TEST(Init, LeavesOutWhatSamplesDoNotAllow)
{
  const apptest::Folder folder;
  const orvenal::Job job = proposeAndRun(folder, "x,y,v\n1,2,3\n2,2,4\n");
  EXPECT_FALSE(job.variogram.has_value());
  EXPECT_FALSE(job.hasGrid);

  struct Case
  {
    const char *data;
    const char *part;
  };
  const Case cases[] = {
      {"a,b\nc,d\n", "no two columns are named like coordinates"},
      {"x,y,name\n1,2,c\n3,4,d\n", "there is no column of numbers"},
      {"", "the file is empty"},
  };
  for (const Case &c : cases) {
    folder.write("bad.csv", c.data);
    const Outcome outcome = runProgram({"init", "bad.csv", "-o", "bad.json"}, folder.path(""));
    EXPECT_NE(outcome.exitCode, 0);
    EXPECT_THAT(outcome.errors, HasSubstr(c.part));
  }
  EXPECT_EQ(runProgram({"init", "gone.csv"}).exitCode, 2);
  EXPECT_THAT(folder.list(), Not(testing::Contains(QString("bad.json"))));
}

TEST(Init, TakesNoCoordinateForTheVariable)
{
  const auto row = [](int x, int y, int value) {
    return text(x) + ';' + text(y) + ';' + (value == 1 ? QByteArray("k.A.") : text(value) + ",5");
  };
  const apptest::Folder folder;
  const orvenal::Job job = proposeAndRun(folder, table("Ost-West;oben;Wasserstand", row),
                                         {"--x", "Ost-West", "--y", "oben"});
  EXPECT_EQ(job.variable.column, "Wasserstand");
  EXPECT_TRUE(job.data.format.undefined.contains("k.A."));
}

TEST(Init, NamesColumnsThatHoldNumbersAndMarks)
{
  const auto row = [](int x, int y, int value) {
    return text(x) + ',' + text(y) + ',' + text(value) + ',' +
           (value == 1 ? QByteArray("n.b.") : text(value + 3));
  };
  const apptest::Folder folder;
  proposeAndRun(folder, table("x,y,zinc,lead", row));
  EXPECT_THAT(apptest::readFile(folder.path("job.json")).simplified().toStdString(),
              HasSubstr("lead (5 to 20; \"undefined\" then has to list \"n.b.\")"));
}

TEST(Init, LeavesOutBoreholesByTheirNames)
{
  QByteArray data = "HOLE_ID,EAST,NORTH,RL,FROM,TO,LON,CU_PCT\n";
  for (int i = 0; i < 60; ++i)
    data += "DDH-" + text(i / 10) + ',' + text(50 * (i / 10 % 3)) + ',' + text(60 * (i / 30)) +
            ',' + text(100 - 2 * (i % 10)) + ',' + text(2 * (i % 10)) + ',' +
            text(2 * (i % 10) + 2) + ",9." + text(i) + ',' + text(1 + (i * 7) % 13 + i / 10) + '\n';
  const apptest::Folder folder;
  const orvenal::Job job = proposeAndRun(folder, data);
  EXPECT_EQ(job.data.z, "RL");
  EXPECT_EQ(job.variable.column, "CU_PCT");
  ASSERT_TRUE(job.crossValidation && job.neighborhood);
  EXPECT_EQ(job.crossValidation->line, "HOLE_ID");
  EXPECT_EQ(job.neighborhood->line, "HOLE_ID");
  EXPECT_EQ(job.neighborhood->moving.getMaximumPerCode(), 4);
}

TEST(Init, KeepsTheVariogramOfManySamplesShort)
{
  const apptest::Folder folder;
  QByteArray data = "x,y,v\n";
  constexpr int side = 400;  // of a square: 160,000 samples
  for (int i = 0; i < side * side; ++i)
    data += text(i % side) + ',' + text(i / side) + ',' + text(i * 7 % 13) + '\n';
  folder.write("d.csv", data);
  const Outcome outcome = runProgram({"init", "d.csv", "-o", "-"}, folder.path(""));
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  // 1.28e10 pairs in all; 2e9 of them are as near as 89.
  EXPECT_THAT(outcome.output, HasSubstr("\"variogram\": { \"lag\": 5.6, \"lags\": 16 }"));
}

TEST(Init, KnowsValuesBelowALimitAndHeights)
{
  QByteArray data = "east;north;elevation over sea;Pb\n";
  for (int i = 0; i < 60; ++i)
    data += text(10 * (i % 10)) + ';' + text(10 * (i / 10)) + ";11" + text(i % 7) + ";" +
            (i % 20 == 3 ? QByteArray("<0,5") : text(1 + (i * 7) % 13) + ",5") + '\n';
  const apptest::Folder folder;
  const orvenal::Job job = proposeAndRun(folder, data);
  EXPECT_EQ(job.variable.column, "Pb");
  EXPECT_EQ(job.data.format.decimal, ',');
  EXPECT_TRUE(job.data.format.undefined.contains("<0,5"));
  EXPECT_THAT(apptest::readFile(folder.path("job.json")).simplified().toStdString(),
              HasSubstr("Values below a limit of detection"));
}
