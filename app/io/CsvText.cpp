#include "app/io/CsvText.h"

#include "basic/base/NbbGlobal.h"

#include <QString>

#include <algorithm>
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

QByteArray CsvText::field(const QString &text)
{
  const bool isSpecial = std::any_of(text.begin(), text.end(), [](QChar c) {
    return c == ',' || c == ';' || c == '"' || c == '\t' || c == '\n' || c == '\r';
  });
  return isSpecial || text != text.trimmed() ? quoted(text) : text.toUtf8();
}

}  // namespace orvenal
