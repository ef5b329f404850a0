#include "app/base/PathText.h"

#include <QDir>

namespace orvenal {

QString shownPath(const QString &path)
{
  const QString relative = QDir::current().relativeFilePath(path);
  return relative.size() < path.size() ? relative : path;
}

}  // namespace orvenal
