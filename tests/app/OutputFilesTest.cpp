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
    OutputFiles files;
    files.reserve(first);
    files.reserve(second);
    files.write(first, "new");
    files.write(second, "new");
    EXPECT_EQ(apptest::readFile(second), "old");
    EXPECT_FALSE(QFile::exists(first));
  }
  EXPECT_EQ(folder.list(), QStringList{"second.csv"});  // the folders that it made are gone too

  OutputFiles files;
  files.reserve(first);
  files.reserve(second);
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
  EXPECT_THROW(files.reserve(folder.path("file/inside.csv")), NbeUserError);
  EXPECT_THROW(files.reserve(folder.path("taken.csv")), NbeUserError);
  EXPECT_THROW(files.reserve("/proc/nowhere/x.csv"), NbeUserError);
  files.discard();
  EXPECT_EQ(folder.list(), (QStringList{"file", "taken.csv"}));
}
