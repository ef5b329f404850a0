#include "basic/base/NbbGlobal.h"

#include <cxxabi.h>
#include <cmath>
#include <cstdlib>
#include <memory>

const QString NbbGlobal::STR_NA = QStringLiteral("N/A");

namespace {

bool isFloating(const QVariant &variant)
{
  return variant.userType() == QMetaType::Double || variant.userType() == QMetaType::Float;
}

/// The value of a number that is the undefined one of its type, or of a variant without value.
bool isUndefined(const QVariant &variant)
{
  switch (variant.userType()) {
    case QMetaType::UnknownType:
      return true;
    case QMetaType::Double:
    case QMetaType::Float:
      return !NbbGlobal::isDefined(variant.toDouble());
    case QMetaType::Short:
      return !NbbGlobal::isDefined(qint16(variant.toInt()));
    case QMetaType::Int:
      return !NbbGlobal::isDefined(qint32(variant.toInt()));
    case QMetaType::Long:
    case QMetaType::LongLong:
      return !NbbGlobal::isDefined(qint64(variant.toLongLong()));
    case QMetaType::ULong:
    case QMetaType::ULongLong:
      return variant.toULongLong() == NbbGlobal::UI64_FFFF;
    default:
      return false;
  }
}

}  // namespace

qint64 NbbGlobal::findDefined(qint64 n, const double *values, unsigned char *defined)
{
  qint64 count = 0;
  for (qint64 i = 0; i < n; ++i) {
    const bool isOne = isDefined(values[i]);
    defined[i] = isOne;
    count += isOne;
  }
  return count;
}

bool NbbGlobal::convertVariant(const QVariant &variant, double &value)
{
  bool ok = !isUndefined(variant);
  const double converted = ok ? variant.toDouble(&ok) : 0.;
  if (!ok || !isDefined(converted))
    return false;
  value = converted;
  return true;
}

bool NbbGlobal::convertVariant(const QVariant &variant, int &value)
{
  qint64 converted = 0;
  bool ok = !isUndefined(variant);
  if (ok && isFloating(variant)) {
    const double rounded = std::round(variant.toDouble());
    ok = std::fabs(rounded) < 0x1p31;
    converted = ok ? qint64(rounded) : 0;
  } else if (ok) {
    converted = variant.toLongLong(&ok);
  }
  if (!ok || converted <= std::numeric_limits<qint32>::min() ||
      converted > std::numeric_limits<qint32>::max())
    return false;
  value = int(converted);
  return true;
}

bool NbbGlobal::convertVariant(const QVariant &variant, bool &value)
{
  if (variant.userType() == QMetaType::Bool) {
    value = variant.toBool();
    return true;
  }
  if (variant.userType() == QMetaType::QString) {
    const QString text = variant.toString().trimmed().toLower();
    const bool isTrue = text == QLatin1String("true") || text == QLatin1String("1");
    if (!isTrue && text != QLatin1String("false") && text != QLatin1String("0"))
      return false;
    value = isTrue;
    return true;
  }
  double number = 0.;
  if (!convertVariant(variant, number))
    return false;
  value = number != 0.;
  return true;
}

QString NbbGlobal::toString(const QVariant &variant)
{
  if (isUndefined(variant))
    return STR_NA;
  return isFloating(variant) ? QString::number(variant.toDouble()) : variant.toString();
}

QString NbbGlobal::demangle(const char *typeName)
{
  int status = 0;
  const std::unique_ptr<char, void (*)(void *)> name(
      abi::__cxa_demangle(typeName, nullptr, nullptr, &status), std::free);
  return QString::fromUtf8(status == 0 ? name.get() : typeName);
}
