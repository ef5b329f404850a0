#include "basic/unit/NbuUnitService.h"

#include "basic/error/NbeUserError.h"
#include "basic/unit/Nbu.h"

#include <QObject>

#include <cmath>

namespace {

constexpr double FOOT = 0.3048;          // metres, exact by international agreement (1959)
constexpr double POUND = 0.45359237e-3;  // tonnes, exact by the same agreement

NbuUnit makeUnit(const QString &symbol, const QString &name, const NbuEUnitClass &unitClass,
                 double toReference)
{
  return NbuUnit(symbol, name, unitClass, NbuUnitTransfo(toReference));
}

QList<NbuUnit> makeUnits()
{
  const NbuEUnitClass &angle = NbuEUnitClass::ANGLE;
  const NbuEUnitClass &length = NbuEUnitClass::LENGTH;
  const NbuEUnitClass &mass = NbuEUnitClass::MASS;
  const NbuEUnitClass &share = NbuEUnitClass::PERCENTAGE;
  const NbuEUnitClass &volume = NbuEUnitClass::VOLUME;
  return {
      makeUnit(Nbu::ANGLE_DEGREE, QObject::tr("degree"), angle, 1.),
      makeUnit(QStringLiteral("rad"), QObject::tr("radian"), angle, 180. / M_PI),
      makeUnit(QStringLiteral("gon"), QObject::tr("gradian"), angle, 0.9),
      makeUnit(QStringLiteral("m"), QObject::tr("metre"), length, 1.),
      makeUnit(QStringLiteral("mm"), QObject::tr("millimetre"), length, 1e-3),
      makeUnit(QStringLiteral("cm"), QObject::tr("centimetre"), length, 1e-2),
      makeUnit(QStringLiteral("km"), QObject::tr("kilometre"), length, 1e3),
      makeUnit(QStringLiteral("in"), QObject::tr("inch"), length, FOOT / 12.),
      makeUnit(QStringLiteral("ft"), QObject::tr("foot"), length, FOOT),
      makeUnit(QStringLiteral("yd"), QObject::tr("yard"), length, FOOT * 3.),
      makeUnit(QStringLiteral("mi"), QObject::tr("mile"), length, FOOT * 5280.),
      makeUnit(QStringLiteral("t"), QObject::tr("tonne"), mass, 1.),
      makeUnit(QStringLiteral("g"), QObject::tr("gram"), mass, 1e-6),
      makeUnit(QStringLiteral("kg"), QObject::tr("kilogram"), mass, 1e-3),
      makeUnit(QStringLiteral("kt"), QObject::tr("kilotonne"), mass, 1e3),
      makeUnit(QStringLiteral("Mt"), QObject::tr("megatonne"), mass, 1e6),
      makeUnit(QStringLiteral("lb"), QObject::tr("pound"), mass, POUND),
      makeUnit(QStringLiteral("oz t"), QObject::tr("troy ounce"), mass, POUND * 480. / 7000.),
      makeUnit(QStringLiteral("short ton"), QObject::tr("short ton"), mass, POUND * 2000.),
      makeUnit(Nbu::PER_RAW, QObject::tr("fraction"), share, 1.),
      makeUnit(QStringLiteral("%"), QObject::tr("percent"), share, 1e-2),
      makeUnit(QStringLiteral("‰"), QObject::tr("per mille"), share, 1e-3),
      makeUnit(QStringLiteral("ppm"), QObject::tr("parts per million"), share, 1e-6),
      makeUnit(QStringLiteral("ppb"), QObject::tr("parts per billion"), share, 1e-9),
      makeUnit(QStringLiteral("m³"), QObject::tr("cubic metre"), volume, 1.),
      makeUnit(QStringLiteral("l"), QObject::tr("litre"), volume, 1e-3),
      makeUnit(QStringLiteral("km³"), QObject::tr("cubic kilometre"), volume, 1e9),
      makeUnit(QStringLiteral("ft³"), QObject::tr("cubic foot"), volume, FOOT * FOOT * FOOT),
      makeUnit(QStringLiteral("bbl"), QObject::tr("barrel"), volume,
               42. * 231. * std::pow(FOOT / 12., 3)),
  };
}

const QList<NbuUnit> &allUnits()
{
  static const QList<NbuUnit> units = makeUnits();
  return units;
}

/// Coordinates and elevations are measured in lengths.
int familyOf(const NbuEUnitClass &unitClass)
{
  const int value = unitClass.getValue();
  const bool isLength = value == NbuEUnitClass::E_COORDINATE || value == NbuEUnitClass::E_ELEVATION;
  return isLength ? int(NbuEUnitClass::E_LENGTH) : value;
}

}  // namespace

NbuUnit NbuUnitService::getUnit(const QString &symbol)
{
  for (const NbuUnit &unit : allUnits()) {
    if (unit.getSymbol() == symbol)
      return unit;
  }
  return NbuUnit();
}

QList<NbuUnit> NbuUnitService::getUnits(const NbuEUnitClass &unitClass)
{
  QList<NbuUnit> units;
  for (const NbuUnit &unit : allUnits()) {
    if (familyOf(unit.getUnitClass()) == familyOf(unitClass))
      units.append(unit);
  }
  return units;
}

NbuUnitTransfo NbuUnitService::getConversion(const NbuUnit &from, const NbuUnit &to)
{
  if (!from.isValid() || !to.isValid() ||
      familyOf(from.getUnitClass()) != familyOf(to.getUnitClass()))
    throw NbeUserError(QObject::tr("There is no conversion from unit '%1' to unit '%2'.")
                           .arg(from.getSymbol(), to.getSymbol()));
  const NbuUnitTransfo &first = from.getTransfoToReference();
  const NbuUnitTransfo &last = to.getTransfoToReference();
  if (first == last)
    return NbuUnitTransfo::identity();
  return last.inverse() * first;
}

NbuUnitTransfo NbuUnitService::getConversionFromStorageUnit(const QString &storageUnit,
                                                            const NbuUnit &to)
{
  if (storageUnit.isEmpty())
    return NbuUnitTransfo::identity();
  const NbuUnit from = getUnit(storageUnit);
  if (!from.isValid())
    throw NbeUserError(QObject::tr("Unknown unit '%1'.").arg(storageUnit));
  return getConversion(from, to);
}
