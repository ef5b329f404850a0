#include "basic/data/NbdValueConversion.h"

#include <charconv>

namespace {

/// Shortest decimal form that reads back the same value.
template <class T>
QString shortest(T value)
{
  char text[64];
  const std::to_chars_result end = std::to_chars(text, text + sizeof text, value);
  return QString::fromLatin1(text, int(end.ptr - text));
}

bool isTrue(const QString &text)
{
  return text.trimmed().compare(QLatin1String("true"), Qt::CaseInsensitive) == 0;
}

}  // namespace

QString nbdToText(double value)
{
  return NbbGlobal::isDefined(value) ? shortest(value) : QString();
}

QString nbdToText(float value)
{
  return NbbGlobal::isDefined(value) ? shortest(value) : QString();
}

QString nbdToText(qint64 value)
{
  return NbbGlobal::isDefined(value) ? shortest(value) : QString();
}

double nbdTextToDouble(const QString &text)
{
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  if (isNumber && NbbGlobal::isDefined(value))
    return value;
  return isTrue(text) ? 1. : NbbGlobal::D_FFFF;
}

qint64 nbdTextToInt64(const QString &text)
{
  bool isInteger = false;
  const qint64 value = text.toLongLong(&isInteger);
  return isInteger ? value : nbdConvert<qint64>(nbdTextToDouble(text));
}
