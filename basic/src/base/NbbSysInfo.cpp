#include "basic/base/NbbSysInfo.h"

#include <QDir>
#include <QFile>
#include <QThread>

#include <algorithm>
#include <limits>

#include <sys/resource.h>
#include <unistd.h>

namespace {

constexpr qint64 NO_LIMIT = std::numeric_limits<qint64>::max();

QByteArray readSmallFile(const QString &path)
{
  QFile file(path);
  return file.open(QIODevice::ReadOnly) ? file.read(1 << 16) : QByteArray();
}

/// The number in a limit file; NO_LIMIT for "max", for the huge value by which version 1 says the
/// same, and when the file is missing.
qint64 readLimit(const QString &path)
{
  bool ok = false;
  const qint64 limit = readSmallFile(path).trimmed().toLongLong(&ok);
  return ok && limit > 0 && limit < (NO_LIMIT >> 1) ? limit : NO_LIMIT;
}

/// The smallest limit of a group and of the groups around it.
qint64 smallestLimit(const QString &root, QString group, const QString &fileName)
{
  qint64 limit = NO_LIMIT;
  while (true) {
    limit = std::min(limit, readLimit(root + group + '/' + fileName));
    const int slash = group.lastIndexOf('/');
    if (slash < 0)
      return limit;
    group.truncate(slash);
  }
}

qint64 machineMemory()
{
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  return pages > 0 && pageSize > 0 ? qint64(pages) * pageSize : NO_LIMIT;
}

qint64 addressSpaceLimit()
{
  rlimit limit;
  const bool isLimited = getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY;
  return isLimited ? qint64(std::min<rlim_t>(limit.rlim_cur, NO_LIMIT)) : NO_LIMIT;
}

}  // namespace

int NbbSysInfo::idealThreadCount()
{
  return std::max(1, QThread::idealThreadCount());
}

qint64 NbbSysInfo::idealMaximumMemory()
{
  const qint64 ofGroup =
      getControlGroupLimit(QStringLiteral("/proc/self/cgroup"), QStringLiteral("/sys/fs/cgroup"));
  const qint64 usable = std::min(machineMemory(), addressSpaceLimit());
  return (ofGroup < 0 ? usable : std::min(usable, ofGroup)) / 2;
}

qint64 NbbSysInfo::getControlGroupLimit(const QString &processFile, const QString &mountPoint)
{
  // Lines are "id:controllers:group"; version 2 has id 0 and no controllers.
  qint64 limit = NO_LIMIT;
  const QStringList lines = QString::fromUtf8(readSmallFile(processFile)).split('\n');
  for (const QString &line : lines) {
    const QString controllers = line.section(':', 1, 1);
    QString group = line.section(':', 2);
    if (!group.startsWith('/'))
      continue;
    if (group == QLatin1String("/"))
      group.clear();
    if (controllers.isEmpty()) {
      const QString file = QStringLiteral("memory.max");
      limit = std::min(limit, smallestLimit(mountPoint, group, file));
      limit = std::min(limit, smallestLimit(mountPoint + QStringLiteral("/unified"), group, file));
    } else if (controllers.split(',').contains(QLatin1String("memory"))) {
      limit = std::min(limit, smallestLimit(mountPoint + QStringLiteral("/memory"), group,
                                            QStringLiteral("memory.limit_in_bytes")));
    }
  }
  return limit == NO_LIMIT ? -1 : limit;
}

QString NbbSysInfo::getStringSize(qint64 bytes)
{
  if (bytes < 1024)
    return QStringLiteral("%1 bytes").arg(bytes);
  const char *const units[] = {"KB", "MB", "GB"};
  double size = double(bytes) / 1024.;
  int unit = 0;
  // From here on one decimal would round to 1024.0.
  while (size >= 1023.95 && unit < 2) {
    size /= 1024.;
    ++unit;
  }
  return QString::number(size, 'f', 1) + ' ' + QLatin1String(units[unit]);
}

QByteArray NbbSysInfo::pathForFopen(const QString &path)
{
  return QFile::encodeName(QDir::toNativeSeparators(path));
}
