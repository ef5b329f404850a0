#pragma once

#include "app/console/Interruption.h"

#include <QMutex>
#include <QString>
#include <QStringList>

#include <vector>

class QByteArray;

namespace orvenal {

/// The files of one run, all or none: each is written into a hidden folder beside its final place
/// and renamed when everything has succeeded. What was not renamed is removed at the end, with the
/// folders that were made for it; so it is when the process is ended by a signal.
///
/// Runs that write the same files at once do not mix them: they put their files in place one run
/// after the other.
class OutputFiles
{
public:
  /// What becomes of a file that is there already.
  enum Existing { REFUSE, REPLACE };

  explicit OutputFiles(Existing existing = REFUSE) : _existing(existing) {}
  ~OutputFiles();
  OutputFiles(const OutputFiles &) = delete;
  OutputFiles &operator=(const OutputFiles &) = delete;

  /// Makes the folders of the files and empty files to be filled, so that a place that cannot be
  /// written is found before the work starts. An NbeUserError otherwise; files that exist and may
  /// not be replaced are all named.
  void reserve(const QStringList &paths);

  /// Where to write the content of a reserved file: it has the name of the file, in another folder.
  QString getTemporaryPath(const QString &path) const;

  /// Writes the whole content of a reserved file.
  void write(const QString &path, const QByteArray &content);

  /// Renames all files into place. When one has come to exist meanwhile and may not be replaced,
  /// none is.
  void commit();

  /// Removes what is not in place.
  void discard();

private:
  struct File
  {
    QString path;
    QString temporary;
    bool done = false;
  };

  /// A folder of outputs, and the hidden one in it.
  struct Folder
  {
    QString path;
    QString temporary;
  };

  const File &_find(const QString &path) const;
  void _refuseExisting(const QStringList &paths) const;
  void _reserveFile(const QString &path);
  QString _hiddenFolder(const QString &folder, const QString &file);
  void _makeFolder(const QString &folder, const QString &file);
  void _remove() const;
  bool _abandon();

  Existing _existing;
  QMutex _mutex;  // held while the lists change
  std::vector<File> _files;
  std::vector<Folder> _folders;
  QStringList _madeFolders;
  Interruption::Cleanup _cleanup{[this] { return _abandon(); }};
};

}  // namespace orvenal
