#include "app/io/OutputFiles.h"

#include "TestFiles.h"
#include "basic/error/NbeUserError.h"

using namespace orvenal;

TEST(OutputFiles, PutsAllFilesInPlaceOrNone)
{
  const apptest::Folder folder;
  const QString first = folder.path("a/b/first.csv");
  const QString second = folder.write("second.csv", "old");
  {
    OutputFiles files(OutputFiles::REPLACE);
    files.reserve({first, second});
    files.write(first, "new");
    files.write(second, "new");
    EXPECT_EQ(apptest::readFile(second), "old");
    EXPECT_FALSE(QFile::exists(first));
  }
  EXPECT_EQ(folder.list(), QStringList{"second.csv"});  // the folders that it made are gone too

  OutputFiles files(OutputFiles::REPLACE);
  files.reserve({first, second});
  files.write(first, "1");
  files.write(second, "2");
  files.commit();
  files.discard();
  EXPECT_EQ(folder.list(), (QStringList{"a", "a/b", "a/b/first.csv", "second.csv"}));
  EXPECT_EQ(apptest::readFile(first), "1");
  EXPECT_EQ(apptest::readFile(second), "2");
}

TEST(OutputFiles, RefusesPlacesThatCannotBeWritten)
{
  const apptest::Folder folder;
  folder.write("file", "x");
  QDir(folder.path("")).mkdir("taken.csv");
  OutputFiles files;
  for (const QString &path :
       {folder.path("file/inside.csv"), folder.path("taken.csv"), QString("/proc/nowhere/x.csv"),
        QString("/proc/x.csv"), folder.path(QString(252, 'n') + ".csv")}) {
    try {
      files.reserve({path});
      ADD_FAILURE() << "reserved: " << qPrintable(path);
    } catch (const NbeUserError &error) {
      EXPECT_TRUE(error.getMessage().startsWith(path + ": cannot be written: "))
          << qPrintable(error.getMessage());
    }
  }
  try {
    files.reserve({folder.path("file/inside.csv")});
  } catch (const NbeUserError &error) {
    EXPECT_TRUE(error.getMessage().endsWith("file is no folder")) << qPrintable(error.getMessage());
  }
  files.discard();
  EXPECT_EQ(folder.list(), (QStringList{"file", "taken.csv"}));
  OutputFiles longest;
  longest.reserve({folder.path(QString(251, 'n') + ".csv")});  // the longest name there may be
}

TEST(OutputFiles, NamesAllFilesThatExistBeforeItMakesAny)
{
  const apptest::Folder folder;
  QStringList paths = {folder.path("new/0.csv")};
  for (int i = 1; i <= 12; ++i)
    paths << folder.write(QString("%1.csv").arg(i), "old");
  try {
    OutputFiles().reserve(paths);
    ADD_FAILURE() << "reserved";
  } catch (const NbeUserError &error) {
    QStringList lines = {"12 files exist; --overwrite replaces them:"};
    for (int i = 1; i <= 10; ++i)
      lines << "  " + paths[i];
    EXPECT_EQ(error.getMessage(), (lines << "  and 2 more").join('\n'));
  }
  EXPECT_EQ(folder.list().size(), 12);
}

TEST(OutputFiles, ReplacesNoFileThatCameMeanwhile)
{
  const apptest::Folder folder;
  const QString first = folder.path("1.csv");
  const QString second = folder.path("2.csv");
  {
    OutputFiles files;
    files.reserve({first, second});
    files.write(first, "mine");
    files.write(second, "mine");
    folder.write("2.csv", "theirs");
    EXPECT_THROW(files.commit(), NbeUserError);
  }
  EXPECT_EQ(folder.list(), QStringList{"2.csv"});
  EXPECT_EQ(apptest::readFile(second), "theirs");
}

/// Two studies with other models, so that their files tell them apart.
TEST(OutputFiles, RunsInOneFolderDoNotMixTheirFiles)
{
  for (const bool isReplacing : {false, true}) {
    const apptest::Folder folder;
    QProcess runs[2];
    QList<QByteArray> expected[2];
    for (int i = 0; i < 2; ++i) {
      apptest::MeuseJob job;
      job.remove("output").remove("grid.mask").set("neighborhood.maximum", 2 + i);
      job.set("grid.nodes", apptest::json("[40, 30]"));
      job.set("output.grid", apptest::json("[\"a.csv\", \"b.gslib\", \"c.csv\", \"d.csv\"]"));
      const QString file = QString("job%1.json").arg(i);
      job.set("output.directory", "alone").set("output.overwrite", true).writeTo(folder, file);
      ASSERT_EQ(apptest::runProgram({"run", "-q", folder.path(file)}).exitCode, 0);
      for (const char *name : {"alone/a.csv", "alone/b.gslib", "alone/c.csv", "alone/d.csv"})
        expected[i] << apptest::readFile(folder.path(name));
      job.set("output.directory", "out").set("output.overwrite", isReplacing);
      runs[i].start(ORVENAL_PROGRAM, {"run", "-q", job.writeTo(folder, file)});
    }
    int nDone = 0;
    for (QProcess &run : runs) {
      ASSERT_TRUE(run.waitForFinished(300000));
      EXPECT_TRUE(run.exitCode() == 0 || run.exitCode() == 1);
      nDone += run.exitCode() == 0 ? 1 : 0;
    }
    EXPECT_EQ(nDone, isReplacing ? 2 : 1);
    EXPECT_EQ(folder.list("out"),
              (QStringList{"out/a.csv", "out/b.gslib", "out/c.csv", "out/d.csv"}));
    QList<QByteArray> found;
    for (const char *name : {"out/a.csv", "out/b.gslib", "out/c.csv", "out/d.csv"})
      found << apptest::readFile(folder.path(name));
    EXPECT_NE(expected[0], expected[1]);
    EXPECT_TRUE(found == expected[0] || found == expected[1]);
  }
}
