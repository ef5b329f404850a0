#pragma once

#include "app/console/Interruption.h"

#include <QMutex>
#include <QString>
#include <QStringList>

#include <vector>

class QByteArray;

namespace orvenal {

/// The files of one run, all or none: each is written beside its final place and renamed when
/// everything has succeeded. What was not renamed is removed at the end, with the folders that were
/// made for it; so it is when the process is ended by a signal.
class OutputFiles
{
public:
  OutputFiles() = default;
  ~OutputFiles();
  OutputFiles(const OutputFiles &) = delete;
  OutputFiles &operator=(const OutputFiles &) = delete;

  /// Makes the folder of the file and an empty file beside it, so that a place that cannot be
  /// written is found before the work starts. An NbeUserError otherwise.
  void reserve(const QString &path);

  /// Where to write the content of a reserved file.
  QString getTemporaryPath(const QString &path) const;

  /// Writes the whole content of a reserved file.
  void write(const QString &path, const QByteArray &content);

  /// Renames all files into place.
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

  const File &_find(const QString &path) const;
  void _makeFolder(const QString &folder);
  void _remove() const;
  bool _abandon();

  QMutex _mutex;  // held while the list of files changes
  std::vector<File> _files;
  QStringList _madeFolders;
  Interruption::Cleanup _cleanup{[this] { return _abandon(); }};
};

}  // namespace orvenal
