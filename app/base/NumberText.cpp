#include "app/base/NumberText.h"

#include "basic/base/NbbGlobal.h"

#include <QObject>

#include <cmath>

namespace orvenal {

QString numberText(double value)
{
  if (!NbbGlobal::isDefined(value))
    return NbbGlobal::STR_NA;
  const double size = std::abs(value);
  return size >= 1e6 && size < 1e10 ? QString::number(value, 'f', 0)
                                    : QString::number(value, 'g', 6);
}

QString lengthText(double value, const QString &unit)
{
  return unit.isEmpty() ? numberText(value) : numberText(value) + ' ' + unit;
}

QString groupedText(qint64 number)
{
  QString digits = QString::number(number);
  for (int place = digits.size() - 3; place > (number < 0 ? 1 : 0); place -= 3)
    digits.insert(place, ',');
  return digits;
}

QString durationText(double seconds)
{
  if (seconds < 60.)
    return QObject::tr("%1 s").arg(seconds, 0, 'g', 2);
  const qint64 whole = std::llround(seconds);
  const auto twoDigits = [](qint64 n) { return QString::number(n).rightJustified(2, '0'); };
  const QString minutes = whole < 3600
                              ? QString::number(whole / 60)
                              : QString::number(whole / 3600) + ':' + twoDigits(whole / 60 % 60);
  return minutes + ':' + twoDigits(whole % 60);
}

}  // namespace orvenal
