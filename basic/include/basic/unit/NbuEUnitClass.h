#pragma once

#include "basic/base/NbbAEnum.h"

#include <QList>

/// What a unit measures.
class NbuEUnitClass : public NbbAEnum
{
public:
  enum EValue {
    E_NONE,
    E_ANGLE,
    E_COORDINATE,
    E_ELEVATION,
    E_LENGTH,
    E_MASS,
    E_PERCENTAGE,
    E_VOLUME
  };

  static const NbuEUnitClass NONE;
  static const NbuEUnitClass ANGLE;
  static const NbuEUnitClass COORDINATE;
  static const NbuEUnitClass ELEVATION;
  static const NbuEUnitClass LENGTH;
  static const NbuEUnitClass MASS;
  static const NbuEUnitClass PERCENTAGE;
  static const NbuEUnitClass VOLUME;

  /// NONE.
  NbuEUnitClass();

  EValue toEnum() const { return static_cast<EValue>(getValue()); }
  bool operator==(const NbuEUnitClass &other) const { return getValue() == other.getValue(); }
  bool operator!=(const NbuEUnitClass &other) const { return getValue() != other.getValue(); }
  bool operator<(const NbuEUnitClass &other) const { return getValue() < other.getValue(); }

  static bool existsValue(int value);

  /// NbeProgrammingError when the value or key is unknown.
  static const NbuEUnitClass &fromValue(int value);
  static const NbuEUnitClass &fromKey(const QString &key);

private:
  NbuEUnitClass(const QString &label, int value, const char *key);
};
