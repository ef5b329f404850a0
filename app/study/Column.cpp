#include "app/study/Column.h"

#include "basic/base/NbbGlobal.h"

#include <QObject>

#include <cmath>

namespace orvenal {

QStringList transformNames()
{
  return {QStringLiteral("none"), QStringLiteral("log"), QStringLiteral("sqrt")};
}

QString transformedName(Transform transform, const QString &name)
{
  return transform == Transform::NONE ? name : transformNames()[int(transform)] + ' ' + name;
}

bool applyTransform(Transform transform, double &value)
{
  if (!NbbGlobal::isDefined(value))
    return true;
  if (transform == Transform::LOG) {
    if (value <= 0.)
      return false;
    value = std::log(value);
  } else if (transform == Transform::SQRT) {
    if (value < 0.)
      return false;
    value = std::sqrt(value);
  }
  return true;
}

}  // namespace orvenal
