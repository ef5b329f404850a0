#include "TestFiles.h"

#include <gmock/gmock.h>

using apptest::MeuseJob;
using apptest::Outcome;
using testing::HasSubstr;

namespace {

/// Runs the program with no file larger than so many blocks of 512 bytes, as on a disk that fills
/// up.
Outcome runLimited(int blocks, const QStringList &arguments)
{
  QProcess program;
  const QString script = QString("ulimit -f %1; exec \"$0\" \"$@\"").arg(blocks);
  program.start("/bin/sh", QStringList{"-c", script, ORVENAL_PROGRAM} + arguments);
  EXPECT_TRUE(program.waitForFinished(300000));
  EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
  return {program.exitCode(), program.readAllStandardOutput().toStdString(),
          program.readAllStandardError().toStdString()};
}

/// The samples of the Meuse, cheap to krige.
MeuseJob cheapJob()
{
  MeuseJob job;
  job.remove("output").remove("grid.mask").set("neighborhood.maximum", 2);
  job.set("grid.nodes", apptest::json("[40, 30]")).set("grid.cell", apptest::json("[75, 130]"));
  return job;
}

}  // namespace

TEST(DiskFull, NamesTheFileAndLeavesNothing)
{
  const std::pair<const char *, const char *> outputs[] = {
      {"grid", "[\"k.csv\"]"},
      {"grid", "[\"k.tif\"]"},
      {"grid", "[\"k.nc\"]"},
      {"grid", "[\"k.gpkg\"]"},
      {"grid", "[\"k.gslib\"]"},
      {"maps", "{\"estimate\": \"k.png\"}"},
      {"maps", "{\"estimate\": \"k.svg\"}"},
      {"report", "\"k.html\""},
      {"fit", "{\"model\": \"k.json\"}"},
      {"fit", "{\"model\": \"k.bin\"}"},
      {"variogram", "{\"table\": \"k.csv\"}"},
      {"crossValidation", "{\"table\": \"k.csv\"}"},
      {"crossValidation", "{\"table\": \"k.gpkg\"}"},
  };
  for (const auto &[key, value] : outputs) {
    SCOPED_TRACE(value);
    const apptest::Folder folder;
    MeuseJob job = cheapJob();
    job.set(QString("output.") + key, apptest::json(value)).set("output.directory", "new/out");
    const QString name = QString(key);
    if (name == "variogram" || name == "fit")
      job.set("variogram", apptest::json("{}"));
    if (name == "fit")
      job.remove("model").set("fit", apptest::json("{}"));
    if (name == "crossValidation")
      job.set("crossValidation", apptest::json("{}"));
    if (name != "grid" && name != "maps" && name != "report")
      job.remove("grid");
    if (name == "variogram" || name == "fit")
      job.remove("neighborhood");
    const Outcome outcome = runLimited(name == "fit" ? 0 : 1, {"run", job.writeTo(folder)});
    EXPECT_EQ(outcome.exitCode, 1) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(folder.path("new/out/k.").toStdString()));
    EXPECT_THAT(outcome.errors, HasSubstr(": cannot be written: "));
    EXPECT_EQ(folder.list(), QStringList{"job.json"});
  }
}

/// The larger formats again, cut off in the middle of the numbers.
TEST(DiskFull, LeavesNothingWhenItFillsUpLate)
{
  for (const char *name : {"k.csv", "k.tif", "k.nc", "k.gpkg", "k.gslib"}) {
    SCOPED_TRACE(name);
    const apptest::Folder folder;
    MeuseJob job = cheapJob();
    job.set("output.grid", QJsonArray{name});
    ASSERT_EQ(apptest::runProgram({"run", "-q", job.writeTo(folder)}).exitCode, 0);
    const QByteArray before = apptest::readFile(folder.path(name));
    const Outcome outcome = runLimited(int(before.size() * 2 / 3 / 512),
                                       {"run", "--overwrite", folder.path("job.json")});
    EXPECT_EQ(outcome.exitCode, 1) << outcome.errors;
    EXPECT_THAT(outcome.errors, HasSubstr(folder.path(name).toStdString() + ": cannot be written"));
    EXPECT_EQ(folder.list(), (QStringList{"job.json", name}));
    EXPECT_EQ(apptest::readFile(folder.path(name)), before);
  }
}

TEST(DiskFull, AnswersThatAreLostAreAnError)
{
  const apptest::Folder folder;
  const QString data = ORVENAL_EXAMPLES "/meuse/meuse.csv";
  const auto run = [&](const char *redirection) {
    QProcess program;
    program.start("/bin/sh", {"-c", QString("exec \"$0\" stats \"$1\" --json %1").arg(redirection),
                              ORVENAL_PROGRAM, data});
    EXPECT_TRUE(program.waitForFinished(300000));
    return Outcome{program.exitCode(), "", program.readAllStandardError().toStdString()};
  };
  const Outcome full = run("> /dev/full");
  EXPECT_EQ(full.exitCode, 1);
  EXPECT_THAT(full.errors, HasSubstr("the standard output cannot be written: No space left"));
  for (const char *unwanted : {"| head -1 > /dev/null", ">&-"})
    EXPECT_EQ(run(unwanted).errors, "") << unwanted;
}
