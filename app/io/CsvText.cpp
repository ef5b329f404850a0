#include "app/io/CsvText.h"

#include "basic/base/NbbGlobal.h"

#include <QString>

#include <charconv>

namespace orvenal {

void CsvText::append(QByteArray &line, double value)
{
  if (!NbbGlobal::isDefined(value))
    return;
  char digits[32];
  const std::to_chars_result result = std::to_chars(digits, digits + sizeof(digits), value);
  line.append(digits, int(result.ptr - digits));
}

QByteArray CsvText::quoted(const QString &text)
{
  return '"' + QString(text).replace('"', QLatin1String("\"\"")).toUtf8() + '"';
}

}  // namespace orvenal
