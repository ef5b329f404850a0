#include "basic/error/NbeAssertion.h"

#include "basic/error/NbeProgrammingError.h"

QString NbeAssertion::sourcePath(const char *file)
{
  QString path = QString::fromUtf8(file);
  path.replace('\\', '/');

  // Sources stand below <library>/src, public headers below <library>/include/<library>.
  const int source = path.lastIndexOf(QLatin1String("/src/"));
  const int header = path.lastIndexOf(QLatin1String("/include/"));
  if (header > source) {
    const int library = path.indexOf('/', header + 9);
    path = path.mid(library < 0 ? header + 9 : library + 1);
  } else if (source >= 0) {
    path = path.mid(source + 5);
  }

  const int dot = path.lastIndexOf('.');
  if (dot > path.lastIndexOf('/'))
    path.truncate(dot);
  if (!path.contains('/'))
    path.prepend(QLatin1String("./"));
  return path.replace('/', '\\');
}

QString NbeAssertion::text(const char *function, const QString &path, const QString &condition)
{
  return QStringLiteral("'%1' in file '%2' failed:\n\n%3")
      .arg(QString::fromUtf8(function), path, condition);
}

void NbeAssertion::fail(const char *function, const char *file, const QString &condition)
{
  failAt(function, sourcePath(file), condition);
}

void NbeAssertion::failAt(const char *function, const QString &path, const QString &condition)
{
  throw NbeProgrammingError(text(function, path, condition));
}
