#include "app/base/Documents.h"

#include "basic/error/NbeAssertion.h"

#include <QFile>

/// The resources of a static library are there once they are asked for.
static void initDocuments()
{
  Q_INIT_RESOURCE(documents);
}

namespace orvenal {

QByteArray readDocument(const QString &name)
{
  initDocuments();
  QFile file(QStringLiteral(":/docs/") + name);
  if (!file.open(QIODevice::ReadOnly))
    NBE_FAIL(QStringLiteral("document of the program"));
  return file.readAll();
}

}  // namespace orvenal
