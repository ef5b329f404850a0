#include "basic/unit/NbuEUnitClass.h"

#include "basic/error/NbeAssertion.h"

#include <QObject>

const NbuEUnitClass NbuEUnitClass::NONE(QObject::tr("None"), E_NONE, "NONE");
const NbuEUnitClass NbuEUnitClass::ANGLE(QObject::tr("Angle"), E_ANGLE, "ANGLE");
const NbuEUnitClass NbuEUnitClass::COORDINATE(QObject::tr("Coordinate"), E_COORDINATE,
                                              "COORDINATE");
const NbuEUnitClass NbuEUnitClass::ELEVATION(QObject::tr("Elevation"), E_ELEVATION, "ELEVATION");
const NbuEUnitClass NbuEUnitClass::LENGTH(QObject::tr("Length"), E_LENGTH, "LENGTH");
const NbuEUnitClass NbuEUnitClass::MASS(QObject::tr("Mass"), E_MASS, "MASS");
const NbuEUnitClass NbuEUnitClass::PERCENTAGE(QObject::tr("Percentage"), E_PERCENTAGE,
                                              "PERCENTAGE");
const NbuEUnitClass NbuEUnitClass::VOLUME(QObject::tr("Volume"), E_VOLUME, "VOLUME");

namespace {

const NbuEUnitClass *const ALL[] = {&NbuEUnitClass::NONE,       &NbuEUnitClass::ANGLE,
                                    &NbuEUnitClass::COORDINATE, &NbuEUnitClass::ELEVATION,
                                    &NbuEUnitClass::LENGTH,     &NbuEUnitClass::MASS,
                                    &NbuEUnitClass::PERCENTAGE, &NbuEUnitClass::VOLUME};

}

NbuEUnitClass::NbuEUnitClass() : NbuEUnitClass(NONE) {}

NbuEUnitClass::NbuEUnitClass(const QString &label, int value, const char *key)
    : NbbAEnum(label, value, key)
{
}

bool NbuEUnitClass::existsValue(int value)
{
  for (const NbuEUnitClass *item : ALL) {
    if (item->getValue() == value)
      return true;
  }
  return false;
}

const NbuEUnitClass &NbuEUnitClass::fromValue(int value)
{
  for (const NbuEUnitClass *item : ALL) {
    if (item->getValue() == value)
      return *item;
  }
  NBE_FAIL(QStringLiteral("%1 is not valid").arg(value));
}

const NbuEUnitClass &NbuEUnitClass::fromKey(const QString &key)
{
  for (const NbuEUnitClass *item : ALL) {
    if (item->getKeyString() == key)
      return *item;
  }
  NBE_FAIL(QStringLiteral("%1 is not valid").arg(key));
}
