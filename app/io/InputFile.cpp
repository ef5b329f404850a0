#include "app/io/InputFile.h"

#include "app/base/UsageError.h"

#include <QFileInfo>
#include <QObject>

namespace orvenal {

QString inputFileProblem(const QString &path, const QString &shownName)
{
  const QFileInfo file(path);
  if (path.isEmpty() || !file.exists())
    return QObject::tr("there is no file \"%1\"").arg(shownName);
  if (file.isDir())
    return QObject::tr("\"%1\" is a folder").arg(shownName);
  if (!file.isFile())
    return QObject::tr(
               "\"%1\" is not a regular file: inputs are read more than once, which a pipe "
               "cannot be; save what comes out of it as a file")
        .arg(shownName);
  return QString();
}

void requireInput(const QString &path)
{
  const QString problem = inputFileProblem(path, path);
  if (!problem.isEmpty())
    throw UsageError(problem);
}

}  // namespace orvenal
