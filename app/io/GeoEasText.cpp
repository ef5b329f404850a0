#include "app/io/GeoEasText.h"

#include "app/io/CsvText.h"
#include "basic/base/NbbGlobal.h"

#include <QObject>

namespace orvenal {

QByteArray GeoEasText::title(const QString &title, double undefinedMark)
{
  QByteArray mark;
  CsvText::append(mark, undefinedMark);
  return QObject::tr("%1 (undefined: %2)")
             .arg(title.simplified(), QString::fromLatin1(mark))
             .toUtf8() +
         '\n';
}

QByteArray GeoEasText::name(const QString &name)
{
  return name.simplified().toUtf8() + '\n';
}

void GeoEasText::append(QByteArray &line, double value, double undefinedMark)
{
  CsvText::append(line, NbbGlobal::isDefined(value) ? value : undefinedMark);
}

}  // namespace orvenal
