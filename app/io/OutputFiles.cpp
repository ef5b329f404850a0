#include "app/io/OutputFiles.h"

#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>
#include <QTemporaryFile>

#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace orvenal {

namespace {

[[noreturn]] void failToWrite(const QString &path, const QString &reason)
{
  throw NbeUserError(QObject::tr("%1: cannot be written: %2").arg(path, reason));
}

/// Temporary files are private; give a new file the rights that any program would give it.
void openRights(QFile &file)
{
  const mode_t mask = umask(0);
  umask(mask);
  fchmod(file.handle(), 0666 & ~mask);
}

/// The file, and those that its writer keeps beside it under longer names.
void removeTemporary(const QString &path)
{
  const QFileInfo info(path);
  const QDir folder = info.absoluteDir();
  const QStringList all = folder.entryList(QDir::Files | QDir::Hidden);
  for (const QString &name : all) {
    if (name.startsWith(info.fileName()))
      QFile::remove(folder.filePath(name));
  }
}

}  // namespace

OutputFiles::~OutputFiles()
{
  discard();
}

void OutputFiles::reserve(const QString &path)
{
  const QFileInfo target(path);
  if (target.isDir())
    failToWrite(path, QObject::tr("it is a folder"));
  if (target.exists() && !target.isWritable())
    failToWrite(path, QObject::tr("the file is protected"));
  _makeFolder(target.absolutePath());
  const QMutexLocker locker(&_mutex);
  QTemporaryFile file(target.absolutePath() + "/." + target.fileName() + ".XXXXXX.part");
  file.setAutoRemove(false);
  if (!file.open())
    failToWrite(path, file.errorString());
  openRights(file);
  _files.push_back({path, file.fileName()});
}

QString OutputFiles::getTemporaryPath(const QString &path) const
{
  return _find(path).temporary;
}

void OutputFiles::write(const QString &path, const QByteArray &content)
{
  QFile file(getTemporaryPath(path));
  if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
      file.write(content) != content.size() || !file.flush())
    failToWrite(path, file.errorString());
}

void OutputFiles::commit()
{
  const QMutexLocker locker(&_mutex);
  for (File &file : _files) {
    if (std::rename(QFile::encodeName(file.temporary).constData(),
                    QFile::encodeName(file.path).constData()) != 0)
      failToWrite(file.path, QString::fromLocal8Bit(std::strerror(errno)));
    file.done = true;
  }
  _madeFolders.clear();
}

void OutputFiles::discard()
{
  const QMutexLocker locker(&_mutex);
  _remove();
  _files.clear();
  _madeFolders.clear();
}

void OutputFiles::_remove() const
{
  for (const File &file : _files) {
    if (!file.done)
      removeTemporary(file.temporary);
  }
  for (int i = _madeFolders.size() - 1; i >= 0; --i)
    QDir().rmdir(_madeFolders[i]);
}

/// The process ends: the mutex stays locked, so that nothing is put in place any more.
bool OutputFiles::_abandon()
{
  _mutex.lock();
  _remove();
  return std::none_of(_files.begin(), _files.end(), [](const File &file) { return file.done; });
}

const OutputFiles::File &OutputFiles::_find(const QString &path) const
{
  for (const File &file : _files) {
    if (file.path == path)
      return file;
  }
  NBE_FAIL(QStringLiteral("reserved file"));
}

/// Makes the missing folders one by one, so that they can be taken back.
void OutputFiles::_makeFolder(const QString &folder)
{
  const QFileInfo info(folder);
  if (info.isDir())
    return;
  if (!info.isRoot())
    _makeFolder(info.absolutePath());
  const QMutexLocker locker(&_mutex);
  if (::mkdir(QFile::encodeName(folder).constData(), 0777) != 0 && !QFileInfo(folder).isDir())
    failToWrite(folder, QString::fromLocal8Bit(std::strerror(errno)));
  _madeFolders << folder;
}

}  // namespace orvenal
