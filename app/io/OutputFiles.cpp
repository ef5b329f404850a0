#include "app/io/OutputFiles.h"

#include "app/base/PathText.h"
#include "app/io/TextFile.h"
#include "basic/error/NbeAssertion.h"
#include "basic/error/NbeUserError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QObject>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace orvenal {

namespace {

[[noreturn]] void failToWrite(const QString &path, const QString &reason)
{
  throw NbeUserError(QObject::tr("%1: cannot be written: %2").arg(shownPath(path), reason));
}

QString systemReason()
{
  return QString::fromLocal8Bit(std::strerror(errno));
}

/// Keeps other runs from putting files into the folders while it lives. A file system that has no
/// locks goes without.
class FolderLocks
{
public:
  /// Always in the same order, or two runs could wait for each other.
  explicit FolderLocks(QStringList folders)
  {
    std::sort(folders.begin(), folders.end());
    for (const QString &folder : folders) {
      const int descriptor = ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_CLOEXEC);
      if (descriptor < 0)
        continue;
      ::flock(descriptor, LOCK_EX);
      _descriptors.push_back(descriptor);
    }
  }
  ~FolderLocks()
  {
    for (const int descriptor : _descriptors)
      ::close(descriptor);
  }
  FolderLocks(const FolderLocks &) = delete;
  FolderLocks &operator=(const FolderLocks &) = delete;

private:
  std::vector<int> _descriptors;
};

}  // namespace

OutputFiles::~OutputFiles()
{
  discard();
}

void OutputFiles::reserve(const QStringList &paths)
{
  _refuseExisting(paths);
  for (const QString &path : paths)
    _reserveFile(path);
}

QString OutputFiles::getTemporaryPath(const QString &path) const
{
  return _find(path).temporary;
}

void OutputFiles::write(const QString &path, const QByteArray &content)
{
  TextFile file(getTemporaryPath(path), shownPath(path));
  file.text() = content;
  file.finish();
}

void OutputFiles::commit()
{
  QStringList folders;
  for (const Folder &folder : _folders)
    folders << folder.path;
  const FolderLocks locks(folders);
  QStringList paths;
  for (const File &file : _files)
    paths << file.path;
  _refuseExisting(paths);
  const QMutexLocker locker(&_mutex);
  for (File &file : _files) {
    if (std::rename(QFile::encodeName(file.temporary).constData(),
                    QFile::encodeName(file.path).constData()) != 0)
      failToWrite(file.path, systemReason());
    file.done = true;
  }
  _madeFolders.clear();
  _remove();
  _folders.clear();
}

void OutputFiles::discard()
{
  const QMutexLocker locker(&_mutex);
  _remove();
  _files.clear();
  _folders.clear();
  _madeFolders.clear();
}

void OutputFiles::_remove() const
{
  for (const Folder &folder : _folders)
    QDir(folder.temporary).removeRecursively();
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

void OutputFiles::_refuseExisting(const QStringList &paths) const
{
  constexpr int mostNamed = 10;
  if (_existing == REPLACE)
    return;
  QStringList names;
  for (const QString &path : paths) {
    const QFileInfo target(path);
    if (target.exists() && !target.isDir())
      names << shownPath(path);
  }
  if (names.isEmpty())
    return;
  if (names.size() == 1)
    throw NbeUserError(QObject::tr("%1 exists; --overwrite replaces it").arg(names.first()));
  QString text = QObject::tr("%1 files exist; --overwrite replaces them:").arg(names.size());
  for (const QString &name : names.mid(0, mostNamed))
    text += QStringLiteral("\n  ") + name;
  if (names.size() > mostNamed)
    text += QObject::tr("\n  and %1 more").arg(names.size() - mostNamed);
  throw NbeUserError(text);
}

void OutputFiles::_reserveFile(const QString &path)
{
  const QFileInfo target(path);
  if (target.isDir())
    failToWrite(path, QObject::tr("it is a folder"));
  if (target.exists() && !target.isWritable())
    failToWrite(path, QObject::tr("the file is protected"));
  const QString folder = target.absolutePath();
  _makeFolder(folder, path);
  const QMutexLocker locker(&_mutex);
  QFile file(_hiddenFolder(folder, path) + '/' + target.fileName());
  if (!file.open(QIODevice::WriteOnly))
    failToWrite(path, file.errorString());
  _files.push_back({path, file.fileName()});
}

QString OutputFiles::_hiddenFolder(const QString &folder, const QString &file)
{
  for (const Folder &known : _folders) {
    if (known.path == folder)
      return known.temporary;
  }
  QByteArray name = QFile::encodeName(folder + "/.orvenal-XXXXXX");
  if (!::mkdtemp(name.data()))
    failToWrite(file, systemReason());
  _folders.push_back({folder, QFile::decodeName(name)});
  return _folders.back().temporary;
}

/// Makes the missing folders one by one, so that they can be taken back.
void OutputFiles::_makeFolder(const QString &folder, const QString &file)
{
  const QFileInfo info(folder);
  if (info.isDir())
    return;
  if (!info.isRoot())
    _makeFolder(info.absolutePath(), file);
  const QMutexLocker locker(&_mutex);
  if (::mkdir(QFile::encodeName(folder).constData(), 0777) == 0)
    _madeFolders << folder;
  else if (info.exists() && !info.isDir())
    failToWrite(file, QObject::tr("%1 is no folder").arg(shownPath(folder)));
  else if (!QFileInfo(folder).isDir())
    failToWrite(file, QObject::tr("%1: %2").arg(shownPath(folder), systemReason()));
}

}  // namespace orvenal
