#include "TestFiles.h"
#include "app/base/UsageError.h"
#include "app/commands/Command.h"
#include "app/commands/Program.h"
#include "app/io/CsvReader.h"
#include "app/job/JsonPath.h"

#include <QProcess>

#include <gmock/gmock.h>

#include <cmath>

using namespace orvenal;
using apptest::json;
using apptest::MeuseJob;
using apptest::Outcome;
using apptest::runProgram;
using testing::HasSubstr;

namespace {

const char *const meuse = ORVENAL_EXAMPLES "/meuse/meuse.csv";
const char *const meuseGrid = ORVENAL_EXAMPLES "/meuse/meuse_grid.csv";

const QStringList zinc = {meuse,        "--x",  "x",           "--y", "y",
                          "--variable", "zinc", "--transform", "log"};
const QStringList model = {"--structure", "Spherical 0.59 897", "--nugget", "0.05"};
const QStringList nearest = {"--radius", "5000", "--maximum", "16"};

void copyMeuse(const apptest::Folder &folder)
{
  for (const char *name : {"meuse.csv", "meuse_grid.csv", "job.json"})
    folder.write(name, apptest::readFile(QString(ORVENAL_EXAMPLES "/meuse/") + name));
}

}  // namespace

TEST(JsonPath, ReadsAndSetsMembers)
{
  const QJsonValue root = json("{\"a\": {\"b\": [{\"c\": 1}, 2]}}");
  EXPECT_EQ(JsonPath::parse("a.b[0].c").get(root), QJsonValue(1));
  EXPECT_TRUE(JsonPath::parse("a.b[2]").get(root).isUndefined());
  EXPECT_TRUE(JsonPath::parse("a.x.y").get(root).isUndefined());

  EXPECT_EQ(JsonPath::parse("a.b[2].d").set(root, 3),
            json("{\"a\": {\"b\": [{\"c\": 1}, 2, {\"d\": 3}]}}"));
  EXPECT_EQ(JsonPath::parse("x.y").set(root, "z"),
            json("{\"a\": {\"b\": [{\"c\": 1}, 2]}, \"x\": {\"y\": \"z\"}}"));
  EXPECT_EQ(JsonPath::parse("a.b[0]").set(root, QJsonValue::Undefined),
            json("{\"a\": {\"b\": [2]}}"));
  EXPECT_EQ(JsonPath::parse("x.y").set(root, QJsonValue::Undefined), root);

  EXPECT_THROW(JsonPath::parse("a.b[9]").set(root, 1), UsageError);
  EXPECT_THROW(JsonPath::parse("a.b.c").set(root, 1), UsageError);
  for (const char *text : {"", ".a", "a..b", "[0]", "a[", "a[x]", "a b", "a."})
    EXPECT_FALSE(JsonPath::parse(text).isValid()) << text;
}

TEST(Options, GiveWhatTheirJobGives)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.remove("output.maps").remove("output.report").set("output.grid", json("[\"k.csv\"]"));
  ASSERT_EQ(runProgram({"run", job.writeTo(folder)}).exitCode, 0);
  const QByteArray expected = apptest::readFile(folder.path("out/k.csv"));

  const QStringList grid = {"--grid-origin", "178460,329620", "--cell",  "40,40", "--nodes",
                            "78,104",        "--mask",        meuseGrid, "--out", "k.csv"};
  const Outcome outcome =
      runProgram(QStringList{"krige"} + zinc + model + nearest + grid, folder.path(""));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_EQ(apptest::readFile(folder.path("k.csv")), expected);
}

TEST(Options, KnowUsualNamesOfCoordinates)
{
  const apptest::Folder folder;
  QByteArray table = "EAST,NORTH,RL,AU\n";
  for (int i = 0; i < 30; ++i)
    table += QByteArray::number(i % 6) + ',' + QByteArray::number(i / 6) + ",5," +
             QByteArray::number(i * i % 7) + '\n';
  folder.write("d.csv", table);
  const QStringList lags = {"--variable", "AU", "--lag", "1", "--lags", "3"};
  const auto run = [&](const QStringList &axes) {
    return runProgram(QStringList{"variogram", "d.csv"} + axes + lags, folder.path(""));
  };
  const Outcome guessed = run({});
  const Outcome named = run({"--x", "EAST", "--y", "NORTH"});
  EXPECT_EQ(guessed.exitCode, 0) << guessed.errors;
  const std::string note =
      "coordinates: --x \"EAST\" --y \"NORTH\"; --z \"RL\" adds the third one\n";
  EXPECT_EQ(guessed.output, note + named.output);
  EXPECT_THAT(runProgram({"stats", "d.csv"}, folder.path("")).output,
              testing::Not(HasSubstr("EAST")));
  // One of them given says that the user knows what he wants.
  EXPECT_THAT(run({"--x", "EAST"}).errors, HasSubstr("--y is missing"));
}

TEST(Options, GoBeforeTheJob)
{
  const apptest::Folder folder;
  MeuseJob job;
  job.remove("output.maps").set("output.grid", json("[\"k.csv\"]"));
  const QString path = job.writeTo(folder);
  const auto krige = [&](const QStringList &options) {
    QFile::remove(folder.path("out/k.csv"));
    const Outcome outcome = runProgram(QStringList{"krige", path} + options, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return apptest::readFile(folder.path("out/k.csv"));
  };
  const QByteArray sixteen = krige({});
  const QByteArray eight = krige({"--maximum", "8"});
  EXPECT_NE(eight, sixteen);
  EXPECT_EQ(krige({"--set", "neighborhood.maximum=8"}), eight);
  job.set("neighborhood.maximum", 8).writeTo(folder);
  EXPECT_EQ(krige({}), eight);
  EXPECT_EQ(krige({"--set", "neighborhood.maximum=16"}), sixteen);

  // Of one choice the option takes the place of the other.
  const QByteArray unique = krige({"--unique"});
  job.set("neighborhood", json("{\"type\": \"unique\"}")).writeTo(folder);
  EXPECT_EQ(krige({}), unique);
  EXPECT_EQ(krige({"--radius", "5000", "--maximum", "16"}), sixteen);

  // A step writes its own files; the report only when it is asked for.
  EXPECT_EQ(folder.list("out"), QStringList{"out/k.csv"});
  krige({"--report", "r.html"});
  EXPECT_GT(apptest::readFile(folder.path("r.html")).size(), 10000);
}

TEST(Options, LayAGridOverTheSamples)
{
  const apptest::Folder folder;
  const QStringList start = QStringList{"krige"} + zinc + model + nearest;
  const Outcome laid =
      runProgram(start + QStringList{"--cell", "200", "--out", "a.csv"}, folder.path(""));
  ASSERT_EQ(laid.exitCode, 0) << laid.errors;
  // Samples: x from 178605 to 181390, y from 329714 to 333611.
  const char *const grid = "--cell 200,200 --grid-origin 178600,329600 --nodes 15,22";
  EXPECT_THAT(laid.output, HasSubstr(grid));
  const Outcome again =
      runProgram(start + QString(grid).split(' ') + QStringList{"--out", "b.csv"}, folder.path(""));
  ASSERT_EQ(again.exitCode, 0) << again.errors;
  EXPECT_EQ(apptest::readFile(folder.path("a.csv")), apptest::readFile(folder.path("b.csv")));
}

TEST(Options, FitAModelOnTheWay)
{
  const apptest::Folder folder;
  const Outcome outcome =
      runProgram(QStringList{"xvalid"} + zinc +
                     QStringList{"--fit", "Spherical", "--lag", "100", "--lags", "15", "--unique"},
                 folder.path(""));
  EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
  EXPECT_THAT(outcome.output, HasSubstr("fitted   nugget 0.0"));
  EXPECT_THAT(outcome.output, testing::ContainsRegex("squared standardized error +0\\.9"));
  EXPECT_EQ(folder.list(), QStringList());
}

TEST(Options, AreNamedByTheirErrors)
{
  struct Case
  {
    QStringList arguments;
    const char *part;
  };
  const apptest::Folder folder;
  folder.write("d.csv", "a,n,v\n1,2,3\n");
  const QStringList krige = QStringList{"krige"} + zinc;
  const QString job = ORVENAL_EXAMPLES "/meuse/job.json";
  const Case cases[] = {
      {{"variogram", folder.path("d.csv"), "--y", "n"}, "--x is missing; columns of "},
      {{"variogram", meuse, "--x", "x", "--y", "y"}, "--variable is missing; columns of "},
      {krige + model + nearest, "--cell is missing"},
      {krige + nearest + QStringList{"--cell", "40"}, "the model is missing; --fit"},
      {krige + model + QStringList{"--cell", "40"}, "the neighborhood is missing; --unique"},
      {krige + model + QStringList{"--cell", "40", "--radius", "far"},
       "--radius: expected a number, found \"far\""},
      {krige + model + QStringList{"--cell", "40", "--radius", "-3", "--maximum", "4"},
       "--radius: must be greater than 0"},
      {krige + QStringList{"--structure", "Spherical 1"}, "--structure: expected type, sill"},
      {krige + nearest + QStringList{"--structure", "Sferical 1 20", "--cell", "40"},
       "--structure: \"Sferical\" is not known; did you mean \"Spherical\"?"},
      {krige + model + nearest + QStringList{"--cell", "40", "--unique"},
       "--radius: has no meaning in a unique neighborhood"},
      {krige + model + nearest + QStringList{"--cell", "1e-7"}, "too many nodes"},
      {{"krige", job, "--maximum", "0"}, "--maximum: 0 is not between 1 and 10000 ("},
      {{"run", job, "--set", "maximum"}, "--set: expected PATH=VALUE"},
      {{"run", job, "--set", "mdoel.nugget=1"}, "--set mdoel.nugget: unknown key"},
      {{"run", job, "--set", "model.structures[3].sill=1"}, "--set model.structures[3]: the list"},
      {{"krige", job, "--maxim", "3"}, "there is no option --maxim; did you mean \"--maximum\"?"},
      {{"krige", job, "--maximum"}, "Missing value after '--maximum'"},
      {{"stats", "nowhere.csv"}, "orvenal: there is no file \"nowhere.csv\""},
      {{"krige", "nowhere.csv"}, "orvenal: there is no file \"nowhere.csv\""},
      {{"krige", job, "--mask", "nowhere.csv"}, "there is no file \"nowhere.csv\""},
      {{"run", meuse}, "meuse.csv looks like a table, not a job; for a job to start with: orvenal"},
      {{"run", folder.write("g.json", "{\"type\": \"FeatureCollection\", \"features\": []}")},
       "looks like a table, not a job"},
      {{"run", folder.write("m.json", "{\"structures\": []}")}, "is a variogram model, not a job"},
      {{"init", job}, "is a job already; to run its study: orvenal run"},
      {krige + model + nearest + QStringList{"--cell", "40", "--out", meuse}, "orvenal: --out: \""},
      {krige + model + nearest + QStringList{"--cell", "40", "--out", "a.csv", "--out", "./a.csv"},
       "orvenal: --out: \"a.csv\" would be written twice"},
      {{"run", folder.write("job.txt", "// a job, with a comment; and more\n{\"title\": 1,}")},
       "job.txt, line 2, column 13: not valid JSON"},
      {{job}, "is a file; to run the study: orvenal run"},
      {{meuse}, "is a file; for a job to start with: orvenal init"},
  };
  for (const Case &c : cases) {
    SCOPED_TRACE(c.part);
    const Outcome outcome = runProgram(c.arguments);
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_THAT(outcome.errors, HasSubstr(c.part));
  }
  const Outcome little =
      runProgram(QStringList{"krige"} + zinc + model + nearest +
                     QStringList{"--cell", "100", "--memory", "1 KB", "--out", "k.csv"},
                 folder.path(""));
  EXPECT_EQ(little.exitCode, 1);
  EXPECT_THAT(little.errors, HasSubstr("not enough available memory"));
  EXPECT_THAT(little.errors, HasSubstr("--memory, or \"memory\" in the job, gives it more"));
  // A column that is missing is a matter of the data.
  const Outcome outcome =
      runProgram({"variogram", meuse, "--x", "X", "--y", "y", "--variable", "v"});
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_THAT(outcome.errors, HasSubstr("there is no column \"X\" (--x); did you mean \"x\"?"));
}

TEST(Options, LeaveOutWhatTheySay)
{
  const apptest::Folder folder;
  QByteArray data = "x,y,v,hole\n";
  for (int i = 0; i < 24; ++i)
    data += QByteArray::number(7 * i % 24) + ',' + QByteArray::number(5 * i % 24) + ',' +
            QByteArray::number(i % 5) + ',' + QByteArray::number(i / 4) + '\n';
  folder.write("d.csv", data);
  const QByteArray start = R"({"data": {"file": "d.csv"}, "variable": {"column": "v"},
      "neighborhood": {"type": "unique"}, "model": {"nugget": 0.1,
      "structures": [{"type": "Spherical", "sill": 1, "range": 20}]}, "crossValidation": )";
  folder.write("sample.json", start + "{}}");
  folder.write("line.json", start + R"({"leaveOut": "line", "line": "hole"}})");
  folder.write("ball.json", start + R"({"leaveOut": "ball", "radius": 9}})");
  const auto outcomeOf = [&](const QString &job, const QStringList &options) {
    const Outcome outcome =
        runProgram(QStringList{"xvalid", "--json", job} + options, folder.path(""));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    return QJsonDocument::fromJson(outcome.output.c_str()).object().value("crossValidation");
  };
  const QJsonValue sample = outcomeOf("sample.json", {});
  const QJsonValue line = outcomeOf("line.json", {});
  const QJsonValue ball = outcomeOf("ball.json", {});
  EXPECT_NE(sample, line);
  EXPECT_NE(line, ball);
  EXPECT_EQ(outcomeOf("line.json", {"--leave-out", "sample"}), sample);
  EXPECT_EQ(outcomeOf("ball.json", {"--set", "crossValidation.leaveOut=sample"}), sample);
  EXPECT_EQ(outcomeOf("sample.json", {"--line", "hole"}), line);
  EXPECT_EQ(outcomeOf("ball.json", {"--line", "hole"}), line);
  EXPECT_EQ(outcomeOf("line.json", {"--ball-radius", "9"}), ball);
  const Outcome both = runProgram({"xvalid", "sample.json", "--leave-out", "sample", "--line", "x"},
                                  folder.path(""));
  EXPECT_EQ(both.exitCode, 2);
  EXPECT_THAT(both.errors, HasSubstr("--line: has a meaning when lines are left out"));
}

TEST(Options, PrintStatisticsOfVariables)
{
  // Quartiles and means as published with the data; the correlation from its definition.
  const Outcome outcome = runProgram({"stats", meuse, "--variable", "zinc", "--variable", "lead"});
  ASSERT_EQ(outcome.exitCode, 0) << outcome.errors;
  const QStringList lines = QString::fromStdString(outcome.output).split('\n');
  const auto value = [&](const QString &name, int column) {
    for (const QString &line : lines) {
      if (line.startsWith(name))
        return line.mid(name.size()).simplified().split(' ').value(column).toDouble();
    }
    return std::nan("");
  };
  EXPECT_EQ(value("defined", 0), 155.);
  EXPECT_EQ(value("minimum", 0), 113.);
  EXPECT_EQ(value("lower quartile", 0), 198.);
  EXPECT_EQ(value("median", 0), 326.);
  EXPECT_NEAR(value("mean", 0), 469.716, 0.001);
  EXPECT_EQ(value("upper quartile", 0), 674.5);
  EXPECT_EQ(value("maximum", 0), 1839.);
  EXPECT_EQ(value("median", 1), 123.);

  CsvReader table(meuse, meuse, TableFormat());
  const int columns[] = {table.findColumn("zinc", ""), table.findColumn("lead", "")};
  double n = 0., sum[2] = {}, squares[2] = {}, product = 0.;
  while (table.next()) {
    n += 1.;
    product += table.getNumber(columns[0]) * table.getNumber(columns[1]);
    for (int i : {0, 1}) {
      sum[i] += table.getNumber(columns[i]);
      squares[i] += std::pow(table.getNumber(columns[i]), 2);
    }
  }
  const double rho = (product / n - sum[0] / n * sum[1] / n) /
                     std::sqrt((squares[0] / n - std::pow(sum[0] / n, 2)) *
                               (squares[1] / n - std::pow(sum[1] / n, 2)));
  EXPECT_NEAR(value("zinc", 1), rho, 1e-5);

  const Outcome all = runProgram({"stats", meuse});
  EXPECT_EQ(all.exitCode, 0) << all.errors;
  for (const char *column : {"cadmium", "copper", "lead", "zinc", "elev", "dist"})
    EXPECT_THAT(all.output, HasSubstr(column));
}

TEST(Options, RunTheExamplesOfEveryHelp)
{
  const Program program;
  for (const std::unique_ptr<Command> &command : program.getCommands()) {
    EXPECT_THAT(command->getHelp().toStdString(), HasSubstr("usage: orvenal "));
    for (const QString &line : command->getHelp().split('\n'))
      EXPECT_LE(line.size(), 80) << qPrintable(line);
    for (const QStringList &example : command->getExamples()) {
      SCOPED_TRACE(qPrintable(example[0]));
      const apptest::Folder folder;
      copyMeuse(folder);
      QString line = example[0];
      ASSERT_TRUE(line.startsWith("orvenal "));
      line.replace(0, 7, QString("'%1'").arg(ORVENAL_PROGRAM));
      QProcess shell;
      shell.setWorkingDirectory(folder.path(""));
      shell.start("/bin/sh", {"-c", line});
      ASSERT_TRUE(shell.waitForFinished(300000));
      EXPECT_EQ(shell.exitCode(), 0) << shell.readAllStandardError().constData();
    }
  }
}
