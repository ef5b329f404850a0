#include "basic/base/NbbSysInfo.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

namespace {

void write(const QString &path, const QByteArray &content)
{
  QDir().mkpath(QFileInfo(path).path());
  QFile file(path);
  ASSERT_TRUE(file.open(QIODevice::WriteOnly));
  file.write(content);
}

}  // namespace

TEST(NbbSysInfo, SizesAreWrittenInUnitsOf1024)
{
  const qint64 mega = qint64(1) << 20;
  EXPECT_EQ(NbbSysInfo::getStringSize(0), QStringLiteral("0 bytes"));
  EXPECT_EQ(NbbSysInfo::getStringSize(512), QStringLiteral("512 bytes"));
  EXPECT_EQ(NbbSysInfo::getStringSize(1023), QStringLiteral("1023 bytes"));
  EXPECT_EQ(NbbSysInfo::getStringSize(1536), QStringLiteral("1.5 KB"));
  EXPECT_EQ(NbbSysInfo::getStringSize(mega - 1), QStringLiteral("1.0 MB"));
  EXPECT_EQ(NbbSysInfo::getStringSize(2 * mega), QStringLiteral("2.0 MB"));
  EXPECT_EQ(NbbSysInfo::getStringSize(3277 * mega), QStringLiteral("3.2 GB"));
  EXPECT_EQ(NbbSysInfo::getStringSize(5 * mega * mega), QStringLiteral("5120.0 GB"));
}

TEST(NbbSysInfo, ControlGroupLimitIsTheSmallestOfAllAncestors)
{
  QTemporaryDir root;
  const QString process = root.filePath(QStringLiteral("cgroup"));
  const QString mount = root.filePath(QStringLiteral("fs"));
  const auto limit = [&] { return NbbSysInfo::getControlGroupLimit(process, mount); };
  EXPECT_EQ(limit(), -1) << "no file";

  write(process, "0::/user/job\n");
  write(mount + QStringLiteral("/user/job/memory.max"), "max\n");
  EXPECT_EQ(limit(), -1) << "no limit";
  write(mount + QStringLiteral("/user/memory.max"), "8000\n");
  write(mount + QStringLiteral("/memory.max"), "9000\n");
  EXPECT_EQ(limit(), 8000);

  // A container sees the group of the host but only its own files, at the root of the mount.
  write(process, "0::/not/mounted/here\n");
  EXPECT_EQ(limit(), 9000);

  // Version 1 beside an empty version 2; an enormous value says "no limit".
  write(process, "7:cpu,memory:/a\n3:pids:/b\n0::/\n");
  QFile::remove(mount + QStringLiteral("/memory.max"));
  write(mount + QStringLiteral("/memory/memory.limit_in_bytes"), "9223372036854771712\n");
  EXPECT_EQ(limit(), -1);
  write(mount + QStringLiteral("/memory/a/memory.limit_in_bytes"), "7000\n");
  EXPECT_EQ(limit(), 7000);
}

TEST(NbbSysInfo, IdealMemoryIsHalfOfWhatTheProcessMayUse)
{
  const qint64 machine = qint64(sysconf(_SC_PHYS_PAGES)) * sysconf(_SC_PAGESIZE);
  EXPECT_GT(NbbSysInfo::idealMaximumMemory(), 0);
  EXPECT_LE(NbbSysInfo::idealMaximumMemory(), machine / 2);

#ifndef __SANITIZE_ADDRESS__
  rlimit before;
  getrlimit(RLIMIT_AS, &before);
  rlimit limit = before;
  limit.rlim_cur = rlim_t(1) << 30;
  ASSERT_EQ(setrlimit(RLIMIT_AS, &limit), 0);
  EXPECT_LE(NbbSysInfo::idealMaximumMemory(), qint64(1) << 29);
  setrlimit(RLIMIT_AS, &before);
#endif
  EXPECT_GE(NbbSysInfo::idealThreadCount(), 1);
}

TEST(NbbSysInfo, PathsForFopenOpenTheFile)
{
  QTemporaryDir root;
  const QString path = root.filePath(QStringLiteral("carotte é.csv"));
  write(path, "x");
  FILE *file = std::fopen(NbbSysInfo::pathForFopen(path).constData(), "r");
  EXPECT_NE(file, nullptr);
  if (file)
    std::fclose(file);
}
